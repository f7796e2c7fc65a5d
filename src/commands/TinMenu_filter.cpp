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

// The result is no full fixed point: the third pass ends it in any case. Tells how many vertices moved.
void FilterRepeatedly(TIN& tin, const SlopeLimits& limits) {
  std::string moved;
  for (int pass = 0; pass < kMostPasses; ++pass) {
    const std::int32_t nMoved = tin.SlopeFilter(limits.maxSlope, limits.minElevation);
    moved += (pass > 0 ? ", " : "") + std::to_string(nMoved);
    if (nMoved == 0) break;
  }
  Ui().SetStatusText(0, "Vertices moved, pass by pass: " + moved + ".");
}

int SmoothTin(TIN& tin) {
  if (tin.Smooth() >= 0) return 1;
  ShowWarning("There is not enough memory to smooth the TIN.");
  return -1;
}

// Reads and stores a TIN. False after a failure, which has been told. A file without triangles gives an empty
// TIN.
bool LoadTin(TIN& tin, const std::string& path) {
  if (tin.ReadTIN(path) < 0 || tin.StoreTriangle(path) < -1) return false;
  if (tin.IsStored() || tin.GetTriangleCount() == 0) return true;
  ShowWarning(path + ": All vertices are at one place, so it is left out.");
  return false;
}

void FilterAndSmooth(const SlopeLimits& limits, const std::string& inputPath, const std::string& outputPath) {
  TIN tin;
  if (!LoadTin(tin, inputPath)) return;
  for (int round = 0; round < 3; ++round) {
    FilterRepeatedly(tin, limits);
    if (SmoothTin(tin) < 0) return;
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
  return RunOnLoadedTin(view, {}, SmoothTin);
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
