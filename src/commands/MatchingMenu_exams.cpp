// The commands of the menu Matching > Exams.

#include <algorithm>
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

CommandResult ShowOverImage(CDibView& window, const TINPoints& points, const std::string& notes) {
  const std::string imagePath = window.GetDocument().GetImagePath();
  if (imagePath.empty()) {
    return FailWithWarning("The window " + window.GetTitle() +
                           " shows no image file, and so no orientation goes with it.");
  }
  AerialPhoto photo;
  const std::string path = ExistingOrientation(DerivedName(imagePath, ".ORN"));
  if (photo.LoadOrientation(path) < 0) return FailToOpen(path);
  if (!ReadStart(imagePath, photo.image)) return CommandResult::Failed;
  if (photo.ProjectPoints(points) < 0) return FailWithWarning("There is not enough memory for the points.");

  PointOverlay overlay;
  std::int32_t nInside = 0;
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    const PointRecord& point = *photo.groundPoints->GetPoint(i);
    overlay.Add(point.x, point.y, point.value);
    nInside += IsInPicture(point, window.GetDocument().GetSize());
  }
  Show(window, std::move(overlay));
  Ui().SetStatusText(0, std::to_string(points.GetCount()) + " points projected, " + std::to_string(nInside) +
                            " of them in the image." + notes);
  return CommandResult::Done;
}

// An empty picture of the points' extent, a pixel to the ground unit, with the smallest x at its left edge
// and the largest y at its top.
CommandResult ShowOverGround(CMainFrame& frame, TINPoints& points, const std::string& title,
                             const std::string& notes) {
  points.RecalcExtent();
  PointOverlay overlay;
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    const PointRecord& point = *points.GetPoint(i);
    overlay.Add(point.x - points.minX, points.maxY - point.y, point.value);
  }
  const PixelSize size = {TruncateSaturated(points.maxX - points.minX + 1.0),
                          TruncateSaturated(points.maxY - points.minY + 1.0)};
  Show(OpenEmptyWindow(frame, size, title), std::move(overlay));
  Ui().SetStatusText(0, std::to_string(points.GetCount()) + " points, without an image." + notes);
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
  return hasImage ? ShowOverImage(*window, points, notes)
                  : ShowOverGround(frame, points, FileName(*path), notes);
}

}  // namespace corvane
