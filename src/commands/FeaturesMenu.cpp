#include "commands/FeaturesMenu.h"

#include <algorithm>

#include "ImgProcess/ImgProcess.h"
#include "ImgProcess/PointListFile.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/FilterTexts.h"
#include "commands/ImageFiles.h"
#include "forms/ValueInput.h"
#include "io/NumberText.h"
#include "io/Paths.h"
#include "numerics/Truncate.h"
#include "shell/CorvaneView.h"
#include "shell/DibView.h"

namespace corvane {

namespace {

const FileChooser kOpenImage{.filter = kImageFilter};

constexpr double kProminence = 0.3;

struct SourceImage {
  std::string path;
  ErdasImg image;
  bool isRead = false;  // wholly
};

// Asks for an image and reads it. Done when it has pixels.
CommandResult OpenSource(SourceImage& source) {
  const auto path = ChooseFile(kOpenImage);
  if (!path) return CommandResult::Cancelled;
  source.path = *path;
  source.isRead = ReadImage(*path, source.image);
  if (!source.image.HasPixels()) return CommandResult::Failed;
  source.image.SetFileName(*path);
  return CommandResult::Done;
}

// The number that the person enters, cut to a whole one; nothing on Cancel.
std::optional<std::int32_t> AskWhole(const std::string& title, double shown) {
  ValueInput input{.title = title, .value = shown};
  if (!input.Ask()) return std::nullopt;
  return TruncateSaturated(input.value);
}

std::optional<std::int32_t> AskThreshold() {
  return AskWhole("Input corner strength thresh", 1200.0);
}

// Opens a bitmap window on the image with these points over it. False if there can be none, which is told.
bool ShowPoints(CCorvaneView& view, const SourceImage& source, std::vector<double> places) {
  CMainFrame& frame = view.GetDocument().GetMainFrame();
  CDibView* const window = OpenImageWindow(frame, &source.image, FileName(source.path));
  if (!window) return false;
  window->m_points = std::move(places);
  window->Redraw();
  return true;
}

std::vector<double> PlacesOf(const std::vector<Point2>& points) {
  std::vector<double> places;
  places.reserve(2 * points.size());
  for (const Point2& point : points) places.insert(places.end(), {point.x, point.y});
  return places;
}

// Writes a line "index, x, y" for each point. False, with a warning, if the file can't be written.
bool WritePoints(const std::string& path, const std::vector<Point2>& points) {
  PointListFile file(path);
  for (const Point2& point : points) {
    file.Add([&](std::string& line) { AppendNumbers(line, {point.x, point.y}, 6); });
  }
  return file.Commit() == 1;
}

struct Corners {
  std::vector<Point2> points;
  bool isResponseStored = false;
};

// Finds the corners; false, with a warning, if that fails. That the response can't be stored is told, too,
// but the corners are there.
bool FindCorners(const SourceImage& source, const HarrisParam& param, Corners& corners) {
  const int status = ImgProcess().HarrisCorners(source.image, corners.points, param);
  corners.isResponseStored = status == 1;
  switch (status) {
    case 1:
    case -5:
      return true;
    case -3:  // told
      return false;
    case -4:
      ShowWarning("The temporary files beside the image do not match it.");
      return false;
    default:
      ShowWarning(ErdasImg::kNoMemoryText);
      return false;
  }
}

// Shows the corners over the image, and writes them beside it. `more` goes on in the message pane about what
// has been written, and `notes` ends the text there.
CommandResult StoreCorners(CCorvaneView& view, const SourceImage& source, const Corners& corners,
                           const std::string& more, const std::string& notes) {
  const bool isShown = ShowPoints(view, source, PlacesOf(corners.points));
  const std::string path = DerivedName(source.path, "_Pt.txt");
  if (!WritePoints(path, corners.points)) return CommandResult::Failed;
  const char* const sideFile = corners.isResponseStored ? " Side file: cornerResponse.lan." : "";
  Ui().SetStatusText(0, "Written to " + path + ": " + std::to_string(corners.points.size()) + " corners." +
                            more + sideFile + notes);
  return ResultOf(source.isRead && isShown && corners.isResponseStored);
}

// What a command that describes corners has of its own.
struct Descriptor {
  int (ImgProcess::*makeFeatures)(ErdasImg&, const std::vector<Point2>&, std::int32_t, FeaturePointList&,
                                  bool);
  double windowSize;       // that is shown
  std::int32_t fixedSize;  // of the window whatever is entered; 0 if it is as entered
  const char* path;
};

// Why there can be no window of this size; "" if there can.
std::string WhyNoWindow(const Descriptor& descriptor, std::int32_t windowSize) {
  if (descriptor.fixedSize > 0) return "";
  const std::string size = "The window size " + std::to_string(windowSize);
  if (windowSize % 2 == 0) return size + " is not odd.";
  return windowSize < 0 ? size + " is not positive." : "";
}

// Why no corner has a descriptor.
std::string WhyNone(const Descriptor& descriptor, std::int32_t windowSize) {
  // A fixed window keeps a margin of its own.
  const std::int32_t margin = std::max(windowSize, descriptor.fixedSize / 2);
  return " No corner lies " + std::to_string(margin) + " pixels or more inside the image's edges.";
}

// A command that describes the corners of an image.
CommandResult DescribeCorners(CCorvaneView& view, const Descriptor& descriptor) {
  SourceImage source;
  const CommandResult opened = OpenSource(source);
  if (opened != CommandResult::Done) return opened;
  const auto threshold = AskThreshold();
  if (!threshold) return CommandResult::Cancelled;
  // The corners do not need the size, but their file is written with them: Cancel would leave it behind.
  const auto size = AskWhole("Input feature descriptor window size", descriptor.windowSize);
  if (!size) return CommandResult::Cancelled;
  const std::string noWindow = WhyNoWindow(descriptor, *size);
  if (!noWindow.empty()) return FailWithWarning(noWindow);

  WaitCursor wait;
  Corners corners;
  if (!FindCorners(source, {.threshold = 1.0 * *threshold}, corners)) return CommandResult::Failed;
  FeaturePointList features;
  ImgProcess process;
  if ((process.*descriptor.makeFeatures)(source.image, corners.points, *size, features, true) < 0) {
    return FailWithWarning(ErdasImg::kNoMemoryText);
  }
  std::string more;
  const bool isWritten = WriteFeaturePoints(descriptor.path, features) == 1;
  if (isWritten)
    more = std::string(" To ") + descriptor.path + ": " + std::to_string(features.size()) + " descriptors.";
  if (features.empty() && !corners.points.empty()) more += WhyNone(descriptor, *size);
  const CommandResult stored = StoreCorners(
      view, source, corners, more, FilterNotes(source.image) + AsBytesText(source.image.GetPackType()));
  return isWritten ? stored : CommandResult::Failed;
}

}  // namespace

CommandResult OnPoints(CCorvaneView& view) {
  SourceImage source;
  const CommandResult opened = OpenSource(source);
  if (opened != CommandResult::Done) return opened;
  WaitCursor wait;
  std::vector<double> places;
  if (ImgProcess().ProminentPixels(source.image, kProminence, places) < 0) {
    return FailWithWarning(ErdasImg::kNoMemoryText);
  }
  const std::size_t nPoints = places.size() / 2;
  if (!ShowPoints(view, source, std::move(places))) return CommandResult::Failed;
  Ui().SetStatusText(0, std::to_string(nPoints) + " prominent points." + CutText(source.image) +
                            AsBytesText(source.image.GetPackType()));
  return ResultOf(source.isRead);
}

CommandResult OnHarrisCorner(CCorvaneView& view) {
  SourceImage source;
  const CommandResult opened = OpenSource(source);
  if (opened != CommandResult::Done) return opened;
  ValueInput sigma{.title = "Input the sigma value", .value = 2.0};
  if (!sigma.Ask()) return CommandResult::Cancelled;
  const auto threshold = AskThreshold();
  if (!threshold) return CommandResult::Cancelled;
  if (!CheckSigma(sigma.value)) return CommandResult::Failed;

  WaitCursor wait;
  Corners corners;
  const HarrisParam param{.sigma = sigma.value, .threshold = 1.0 * *threshold};
  if (!FindCorners(source, param, corners)) return CommandResult::Failed;
  return StoreCorners(view, source, corners, "", FilterNotes(source.image, sigma.value));
}

CommandResult OnStructuralFeature(CCorvaneView& view) {
  return DescribeCorners(view, {.makeFeatures = &ImgProcess::StructuralFeatures,
                                .windowSize = 7.0,
                                .fixedSize = 0,
                                .path = "Descriptor.txt"});
}

CommandResult OnSpiralDescriptor(CCorvaneView& view) {
  return DescribeCorners(view, {.makeFeatures = &ImgProcess::SpiralFeatures,
                                .windowSize = 17.0,
                                .fixedSize = 17,
                                .path = "Spiral_Descrip.txt"});
}

}  // namespace corvane
