// The commands of the menu Image that show things: an image, points over it, a row as a curve.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <vector>

#include "TIN/TINPoints.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/ImageFiles.h"
#include "commands/ImageMenu.h"
#include "forms/ValueInput.h"
#include "io/Paths.h"
#include "numerics/Truncate.h"
#include "shell/CorvaneView.h"
#include "shell/DibView.h"

namespace corvane {

namespace {

const FileChooser kOpenShown{.filter = "Image Files (*.lan)|*.lan|All Files (*.*)|*.*||",
                             .title = "Please choose an image"};
const FileChooser kOpenPointList{.filter = "Points Files (*.txt)|*.txt|All Files (*.*)|*.*|"};

constexpr double kFirstProfileRow = 530.0;

CMainFrame& FrameOf(const CCorvaneView& view) {
  return view.GetDocument().GetMainFrame();
}

void BringToFront(CMainFrame& frame, CView& view) {
  frame.SetActiveView(&view);
  Ui().ActivateWindow(view);
}

std::string Count(std::int32_t n, const std::string& noun) {
  return std::to_string(n) + " " + noun + (n == 1 ? "" : "s");
}

std::string ShownText(const ErdasImg& image) {
  const auto [cols, rows] = image.GetSize();
  const std::int32_t nBands = image.GetBandCount();
  std::string text = Count(rows, "row") + ", " + Count(cols, "column") + ", " + Count(nBands, "band") + ".";
  if (nBands == 2) return text + " Two bands show as black.";
  if (nBands > 3) text += " The first three are shown.";
  if (image.GetBytesPerPixel() > 1) text += " The lowest byte of each pixel is shown.";
  return text;
}

// From the first column and row to the last point.
PixelSize BoundingSize(const std::vector<double>& points) {
  double maxX = 0.0;
  double maxY = 0.0;
  for (std::size_t i = 1; i < points.size(); i += 2) {
    maxX = std::fmax(maxX, points[i - 1]);
    maxY = std::fmax(maxY, points[i]);
  }
  return {TruncateSaturated(maxX + 1.0), TruncateSaturated(maxY + 1.0)};
}

// Reads the image of the profiles, and shows it if it is one of bytes. Done when it is there.
CommandResult OpenProfileImage(CCorvaneView& view) {
  const auto path = ChooseFile(kOpenAnImage);
  if (!path) return CommandResult::Cancelled;
  ErdasImg& image = view.profileImage;
  if (!ReadImage(*path, image)) {
    image.Free();
    return CommandResult::Failed;
  }
  image.SetFileName(*path);
  if (image.GetPackType() != kPackByte) return CommandResult::Done;
  OpenImageWindow(FrameOf(view), &image, FileName(*path));
  BringToFront(FrameOf(view), view);
  return CommandResult::Done;
}

// Each component the low 8 bits of a random number.
Colour RandomColour() {
  const auto next = [] { return static_cast<std::uint8_t>(std::rand() & 255); };
  Colour colour;
  colour.red = next();
  colour.green = next();
  colour.blue = next();
  return colour;
}

CommandResult PlotRow(CCorvaneView& view, std::int32_t row) {
  const ErdasImg& image = view.profileImage;
  std::vector<double> cols(static_cast<std::size_t>(image.GetSize().cx));
  std::iota(cols.begin(), cols.end(), 0.0);
  std::vector<double> values(cols.size());
  image.GetPixelRow(0, row, 0, values);
  for (double& value : values) value = std::abs(value);
  return view.PlotSeries(-1, cols, values, RandomColour(), 1) < 0 ? CommandResult::Failed
                                                                  : CommandResult::Done;
}

}  // namespace

CommandResult OnShowImage(CCorvaneView& view) {
  const auto path = ChooseFile(kOpenShown);
  if (!path) return CommandResult::Cancelled;
  ErdasImg image;
  const bool isRead = ReadImage(*path, image);
  if (!image.HasPixels()) return CommandResult::Failed;
  image.SetFileName(*path);
  if (!OpenImageWindow(FrameOf(view), &image, FileName(*path))) return CommandResult::Failed;
  Ui().SetStatusText(0, ShownText(image) + CutText(image));
  return ResultOf(isRead);
}

CommandResult OnShowPoints(CCorvaneView& view) {
  const auto path = ChooseFile(kOpenPointList);
  if (!path) return CommandResult::Cancelled;
  WaitCursor wait;
  TINPoints list;
  if (list.ReadText(*path) < 1 || list.GetCount() < 1) return FailToOpenPoints(*path);
  std::vector<double> points;
  for (std::int32_t i = 0; i < list.GetCount(); ++i) {
    points.push_back(list.GetPoint(i)->x);
    points.push_back(list.GetPoint(i)->y);
  }
  CMainFrame& frame = FrameOf(view);
  CDibView* window = frame.GetDibView();
  if (!window) window = &OpenEmptyWindow(frame, BoundingSize(points), FileName(*path));
  window->m_points = std::move(points);
  window->m_showOverlay = 1;
  BringToFront(frame, *window);
  window->Redraw();
  return CommandResult::Done;
}

// Kept: the image is asked for once, and the numbers shown for the rows are those of the columns.
CommandResult OnImageProfile(CCorvaneView& view) {
  ErdasImg& image = view.profileImage;
  if (!image.HasPixels()) {
    const CommandResult opened = OpenProfileImage(view);
    if (opened != CommandResult::Done) return opened;
  }
  const auto [cols, rows] = image.GetSize();
  ValueInput input{.title = "Input the row#(0-" + std::to_string(cols - 1) + ")", .value = kFirstProfileRow};
  if (!input.Ask()) return CommandResult::Cancelled;
  if (!IsByteOrReal(image.GetPackType())) {
    image.Free();  // the next call asks for another one
    return FailWith("Data type is not supported!");
  }
  if (!(input.value > -1.0 && input.value < rows)) {
    return FailWithWarning("There is no such row: the rows of " + FileName(image.GetFileName()) +
                           " are 0 to " + std::to_string(rows - 1) + ".");
  }
  return PlotRow(view, TruncateSaturated(input.value));
}

}  // namespace corvane
