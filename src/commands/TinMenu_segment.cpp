// The commands on the TIN menu that tell objects from ground.

#include "commands/Failures.h"
#include "commands/PointsOutput.h"
#include "commands/TinMenu.h"
#include "forms/ValueInput.h"
#include "shell/CommandShapes.h"
#include "ui/RunTimer.h"

namespace corvane {

namespace {

constexpr double kCutStep = 0.1;    // ground units
constexpr double kHeightBin = 0.1;  // ground units
constexpr double kHighestShare = 0.05;

// Writes ground and objects apart.
CommandResult WriteSplit(CCorvaneView& view) {
  return WriteSplitPoints(view, "Groups of objects", "_Grd.pts", "_NonGrd.pts") ? CommandResult::Done
                                                                                : CommandResult::Failed;
}

// The largest plan area of an object, in square ground units; nothing on Cancel.
std::optional<double> AskAreaLimit(double shown) {
  ValueInput input;
  input.value = shown;
  if (!input.Ask()) return std::nullopt;
  return input.value;
}

}  // namespace

CommandResult OnTinSegmentation(CCorvaneView& view) {
  if (!HasLoadedTin(view)) return CommandResult::Failed;
  const auto areaLimit = AskAreaLimit(50000.0);
  if (!areaLimit) return CommandResult::Cancelled;
  TIN& tin = view.GetDocument().GetTIN();
  RunTimer timer;
  WaitCursor wait;
  const int segmented = tin.SegmentByPlaneCut(tin.extent.minZ, tin.extent.maxZ, kCutStep, *areaLimit);
  wait.End();

  tin.DropFlatGroups(0.0);
  std::vector<std::int32_t> pits;
  tin.FindPits(0.0, pits);
  tin.MarkVertices(pits);
  timer.Stop();
  timer.ShowTotal();
  if (segmented < 0) return FailWithWarning("Failed to do the TIN segmentation!");
  // The marks don't count as a change of the document.
  const CommandResult result = WriteSplit(view);
  RedrawTin(view);
  return result;
}

CommandResult OnSurfaceReduction(CCorvaneView& view) {
  if (!HasLoadedTin(view)) return CommandResult::Failed;
  const auto areaLimit = AskAreaLimit(10000.0);
  if (!areaLimit) return CommandResult::Cancelled;
  RunTimer timer;
  WaitCursor wait;
  const int reduced = view.GetDocument().GetTIN().ReduceSurface(*areaLimit);
  wait.End();
  timer.Stop();
  timer.ShowTotal();
  RedrawTin(view);
  const CommandResult result = WriteSplit(view);
  if (reduced >= 0) return result;
  return FailWithWarning(
      "Surface Reduction: no objects were looked for. The slopes reach too far for a histogram, or memory "
      "ran out.");
}

// Kept: it classifies nothing and writes nothing.
CommandResult OnTinClassification(CCorvaneView& view) {
  if (!HasLoadedTin(view)) return CommandResult::Failed;
  { WaitCursor wait; }
  RedrawTin(view);
  return CommandResult::Done;
}

// Kept: slopes live in memory only, so the file holds the triangles and heights of the document.
CommandResult OnTinDifferential(CCorvaneView& view) {
  if (!HasLoadedTin(view)) return CommandResult::Failed;
  TIN& tin = view.GetDocument().GetTIN();
  WaitCursor wait;
  if (tin.ComputeSlopes() < 0) return FailWithWarning("Failed to create the differential TIN!");
  const std::string path = BesideDocument(view, "_Diff.tin");
  const int written = tin.WriteCompactTIN(path);
  wait.End();
  if (written < 0) ShowWarning(WriteErrorText(path));
  RedrawTin(view);
  return written < 0 ? CommandResult::Failed : CommandResult::Done;
}

CommandResult OnTinZHistogram(CCorvaneView& view) {
  if (!HasLoadedTin(view)) return CommandResult::Failed;
  TIN& tin = view.GetDocument().GetTIN();
  WaitCursor wait;
  tin.RecalcZExtent();
  Histogram histogram;
  const int counted = tin.ZHistogram(kHeightBin, histogram);
  const int plotted = counted < 0 ? -1 : view.PlotHistogram(0, histogram.binStarts, histogram.counts);
  double threshold = kNoThreshold;
  HistogramThreshold(tin.GetPointCount(), histogram, kHighestShare, threshold);
  wait.End();
  RedrawTin(view);
  if (threshold == kNoThreshold) ShowWarning("HistogramThresh:Histogram has error!");
  return plotted < 0 || threshold == kNoThreshold ? CommandResult::Failed : CommandResult::Done;
}

}  // namespace corvane
