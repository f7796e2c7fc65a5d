// The commands of the menu Matching > Exams.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "TIN/TINPoints.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/MatchingMenu.h"
#include "commands/PointsInput.h"
#include "io/NumberText.h"
#include "io/Paths.h"
#include "numerics/Truncate.h"
#include "shell/CorvaneView.h"
#include "shell/DibView.h"

namespace corvane {

namespace {

// What a window shows of points: their places, and their values as labels.
struct PointOverlay {
  std::vector<double> places;  // x, y, x, y, ...
  std::vector<ViewLabel> labels;

  void Add(double x, double y, double value) {
    places.push_back(x);
    places.push_back(y);
    labels.push_back({x, y, FixedText(value, 2)});
  }
};

void Show(CDibView& window, PointOverlay overlay) {
  window.m_points = std::move(overlay.places);
  window.m_labels = std::move(overlay.labels);
  window.m_showOverlay = 1;
  window.m_showLabels = 1;
  window.GetDocument().GetMainFrame().SetActiveView(&window);
  Ui().ActivateWindow(window);
  window.Redraw();
}

// Takes the place of the image's first pixel from its file. False, with a warning, if it does not open.
bool ReadStart(const std::string& path, ErdasImg& image) {
  if (image.ReadHeader(path) < 0) return false;
  const ErdasHeader noStart;
  const bool hasHeader = std::memcmp(image.GetHeader()->magic, noStart.magic, sizeof noStart.magic) == 0;
  // A foreign format begins with something else.
  if (!hasHeader && !ErdasImg::IsLan(path)) *image.GetHeader() = noStart;
  return true;
}

// Whole columns and rows are the centres of pixels.
bool IsInPicture(const PointRecord& point, PixelSize size) {
  return point.x >= -0.5 && point.x < size.width - 0.5 && point.y >= -0.5 && point.y < size.height - 0.5;
}

// Whether a photo can see the point at all: behind it, places are mirrored ones.
bool IsBefore(const AerialPhoto& photo, const PointRecord& point) {
  const double d[3] = {point.x - photo.perspectiveX, point.y - photo.perspectiveY,
                       point.z - photo.perspectiveZ};
  double v[3];
  photo.RotateToPhoto(d, v);
  return v[2] < 0.0;
}

bool HasPlace(const PointRecord& point) {
  return std::isfinite(point.x) && std::isfinite(point.y);
}

// About points that are nowhere, if there are any.
std::string NowhereText(std::int32_t nNowhere) {
  return nNowhere == 0 ? "" : " Points without a place: " + std::to_string(nNowhere) + ".";
}

CommandResult ShowOverImage(CDibView& window, const TINPoints& points, const std::string& notes) {
  const std::string imagePath = window.GetDocument().GetImagePath();
  if (imagePath.empty()) {
    return FailWithWarning("The window " + window.GetTitle() +
                           " shows no image file, and so no orientation goes with it.");
  }
  AerialPhoto photo;
  const std::string path = ExistingOrientation(DerivedName(imagePath, ".ORN"));
  if (photo.LoadOrientation(path) < 0) {
    return FailWithWarning(OpenErrorText(path) + "\nThe orientation of " + FileName(imagePath) +
                           " stands beside it, in a file .ORN or .orn.");
  }
  if (!ReadStart(imagePath, photo.image)) return CommandResult::Failed;
  if (photo.ProjectPoints(points) < 0) return FailWithWarning("There is not enough memory for the points.");

  PointOverlay overlay;
  std::int32_t nInside = 0;
  std::int32_t nNowhere = 0;
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    const PointRecord& point = *photo.groundPoints->GetPoint(i);
    overlay.Add(point.x, point.y, point.value);
    nInside += IsInPicture(point, window.GetDocument().GetSize()) && IsBefore(photo, *points.GetPoint(i));
    nNowhere += !HasPlace(point);
  }
  Show(window, std::move(overlay));
  Ui().SetStatusText(0, std::to_string(points.GetCount()) + " points projected, " + std::to_string(nInside) +
                            " of them in the image." + NowhereText(nNowhere) +
                            (photo.IsOriented() ? "" : NoOrientationText(path)) + notes);
  return CommandResult::Done;
}

// The extent of the set, as its file has it; where that is none, that of its points. False if there is no
// place among them.
bool FindExtent(const TINPoints& points, GroundRect& extent) {
  extent = {points.minX, points.minY, points.maxX, points.maxY};
  const bool isFinite = std::isfinite(extent.minX) && std::isfinite(extent.minY) &&
                        std::isfinite(extent.maxX) && std::isfinite(extent.maxY);
  if (isFinite && extent.minX < extent.maxX && extent.minY < extent.maxY) return true;
  TINPoints placed;
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    if (HasPlace(*points.GetPoint(i))) placed.AddPoint(*points.GetPoint(i));
  }
  placed.RecalcExtent();
  extent = {placed.minX, placed.minY, placed.maxX, placed.maxY};
  return placed.GetCount() > 0;
}

// An empty picture of the points' extent, a pixel to the ground unit, with the smallest x at its left edge
// and the largest y at its top.
CommandResult ShowOverGround(CMainFrame& frame, const TINPoints& points, const std::string& path,
                             const std::string& notes) {
  GroundRect extent;
  if (!FindExtent(points, extent)) return FailToOpenPoints(path);
  PointOverlay overlay;
  std::int32_t nNowhere = 0;
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    const PointRecord& point = *points.GetPoint(i);
    overlay.Add(point.x - extent.minX, extent.maxY - point.y, point.value);
    nNowhere += !HasPlace(point);
  }
  const PixelSize size = {TruncateSaturated(extent.maxX - extent.minX + 1.0),
                          TruncateSaturated(extent.maxY - extent.minY + 1.0)};
  Show(OpenEmptyWindow(frame, size, FileName(path)), std::move(overlay));
  Ui().SetStatusText(
      0, std::to_string(points.GetCount()) + " points, without an image." + NowhereText(nNowhere) + notes);
  return CommandResult::Done;
}

}  // namespace

CommandResult OnShowGroundPoints(CCorvaneView& view) {
  const auto path = ChooseFile(kOpenPoints);
  if (!path) return CommandResult::Cancelled;
  WaitCursor wait;
  TINPoints points;
  if (points.Read(*path) < 1) return FailToOpenPoints(*path);
  const std::string notes = MissingText(points, *path);
  LeaveOutMissing(points);
  if (points.GetCount() < 1) return FailToOpenPoints(*path);
  CMainFrame& frame = view.GetDocument().GetMainFrame();
  CDibView* const window = frame.GetDibView();
  // A plan of points, such as an earlier call leaves, is no photo.
  const bool hasImage = window && window->GetDocument().HasContent();
  return hasImage ? ShowOverImage(*window, points, notes) : ShowOverGround(frame, points, *path, notes);
}

}  // namespace corvane
