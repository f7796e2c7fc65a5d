// The commands on the TIN menu that fit smooth surfaces.

#include "Surface/Surface.h"
#include "TIN/TINPoints.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/PointsInput.h"
#include "commands/PointsOutput.h"
#include "commands/TinMenu.h"
#include "shell/CommandShapes.h"
#include "ui/RunTimer.h"

namespace corvane {

namespace {

// Of "Surface Smooth".
constexpr double kTileLambda = 10.0;
constexpr double kTileShape = 1.0;
constexpr double kTileThreshold = 1.5;  // ground units

// Of "Surface Fitting (RBF)".
constexpr double kTrialLambda = 0.0;
constexpr double kTrialShape = 1.0;

std::vector<Point3> PositionsOf(const TINPoints& points) {
  std::vector<Point3> positions;
  positions.reserve(static_cast<std::size_t>(points.GetCount()));
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    const PointRecord& point = *points.GetPoint(i);
    positions.push_back({point.x, point.y, point.z});
  }
  return positions;
}

void TellFit(int fitted, std::int32_t nPoints) {
  std::string text = "Surface fitted to " + std::to_string(nPoints) + " points.";
  if (fitted == -1) {
    text = "No surface: fewer than three points, two at one place, or no solution.";
  } else if (fitted < 0) {
    text = "No surface: " + std::to_string(nPoints) + " points need too much memory.";
  }
  Ui().SetStatusText(0, text);
}

// Writes the points into the current folder; the failure is shown.
bool WriteInFolder(const TINPoints& points, const std::string& name) {
  if (points.Write(name) >= 0) return true;
  ShowWarning(WriteErrorText(name));
  return false;
}

}  // namespace

CommandResult OnSurfaceSmooth(CCorvaneView& view) {
  if (!HasLoadedTin(view)) return CommandResult::Failed;
  RunTimer timer;
  WaitCursor wait;
  std::int64_t nSkipped = 0;
  const int fitted = view.GetDocument().GetTIN().FitTiles(kTileLambda, kTileShape, kTileThreshold, &nSkipped);
  wait.End();
  timer.Stop();
  timer.ShowTotal();
  // The marks don't count as a change of the document.
  RedrawTin(view);
  if (fitted < 0) ShowWarning("Surface Smooth: there is not enough memory; some tiles are not fitted.");
  std::string kind = "Tiles with points off the surface";
  if (nSkipped > 0) kind = "Tiles that could not be fitted: " + std::to_string(nSkipped) + ". " + kind;
  const bool written = WriteSplitPoints(view, kind, "_SmGrd.pts", "_SmNonGrd.pts");
  return fitted >= 0 && written ? CommandResult::Done : CommandResult::Failed;
}

// Kept: the surface is never evaluated, so the first file holds the heights that were read and the second
// one zeros; the name that is asked for is not used.
CommandResult OnSurfaceFitting(CCorvaneView&) {
  const auto path = ChooseFile({.filter = kPointsFilter});
  if (!path) return CommandResult::Cancelled;
  ChooseFile(kSaveText);
  TINPoints points;
  if (!ReadPoints(*path, "Read points file error!\n", points)) return CommandResult::Failed;
  WaitCursor wait;
  const std::vector<Point3> positions = PositionsOf(points);
  const std::vector<Point3> before = positions;
  Ui().SetStatusText(0, "Fitting a surface to " + std::to_string(points.GetCount()) + " points ...");
  Surface surface;
  TellFit(surface.Fit(points.GetCount(), positions.data(), kGaussianKernel, kTrialLambda, kTrialShape),
          points.GetCount());

  const std::string lambdaText = std::to_string(static_cast<int>(kTrialLambda * 100.0));
  for (std::int32_t i = 0; i < points.GetCount(); ++i)
    points.points[static_cast<std::size_t>(i)].z = positions[static_cast<std::size_t>(i)].z;
  const bool interpolated = WriteInFolder(points, "Interp_" + lambdaText + ".pts");
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    const auto index = static_cast<std::size_t>(i);
    points.points[index].z = positions[index].z - before[index].z;
  }
  const bool different = WriteInFolder(points, "Diff_" + lambdaText + ".pts");
  return interpolated && different ? CommandResult::Done : CommandResult::Failed;
}

}  // namespace corvane
