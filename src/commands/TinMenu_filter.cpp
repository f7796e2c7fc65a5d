// The filters on the TIN menu.

#include "commands/TinMenu.h"
#include "forms/ParamInput.h"
#include "shell/CommandShapes.h"

namespace corvane {

namespace {

constexpr int kMostPasses = 3;

struct SlopeLimits {
  double maxSlope = 30.0;     // degrees
  double minElevation = 1.0;  // ground units
};

// The result is no full fixed point: the third pass ends it in any case.
void FilterRepeatedly(TIN& tin, const SlopeLimits& limits) {
  for (int pass = 0; pass < kMostPasses; ++pass) {
    if (tin.SlopeFilter(limits.maxSlope, limits.minElevation) == 0) break;
  }
}

void FilterAndSmooth(const SlopeLimits& limits, const std::string& inputPath, const std::string& outputPath) {
  TIN tin;
  if (tin.ReadTIN(inputPath) < 0 || tin.StoreTriangle(inputPath) < 0) return;
  for (int round = 0; round < 3; ++round) {
    FilterRepeatedly(tin, limits);
    tin.Smooth();
  }
  if (tin.WriteCompactTIN(outputPath) < 0) ShowWarning(WriteErrorText(outputPath));
}

}  // namespace

CommandResult OnSlopeFilter(CCorvaneView& view) {
  SlopeLimits limits;
  const auto ask = [&] {
    ParamInput input;
    if (input.Ask(&limits.maxSlope, &limits.minElevation) < 0) return false;
    view.GetDocument().GetTIN().SetPointInterval(input.pointsInterval);
    return true;
  };
  return RunOnLoadedTin(view, ask, [&](TIN& tin) {
    FilterRepeatedly(tin, limits);
    return 0;
  });
}

CommandResult OnSmooth(CCorvaneView& view) {
  return RunOnLoadedTin(view, {}, [](TIN& tin) { return tin.Smooth(); });
}

CommandResult OnFilterBatch(CCorvaneView&) {
  SlopeLimits limits;
  ParamInput input;
  if (input.Ask(&limits.maxSlope, &limits.minElevation) < 0) return CommandResult::Cancelled;
  const auto path = ChooseBatchFile();
  if (!path) return CommandResult::Cancelled;
  BatchLines lines;
  if (!lines.Open(*path)) return CommandResult::Failed;

  WaitCursor wait;
  std::string inputPath;
  std::string outputPath;
  while (lines.Next(inputPath, outputPath)) {
    Ui().SetStatusText(0, "Filtering " + inputPath);
    FilterAndSmooth(limits, inputPath, outputPath);
  }
  return CommandResult::Done;
}

}  // namespace corvane
