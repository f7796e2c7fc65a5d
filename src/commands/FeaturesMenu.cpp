#include "commands/FeaturesMenu.h"

#include "ImgProcess/ImgProcess.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/ImageFiles.h"
#include "forms/ValueInput.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
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
  if (!HasPixels(source.image)) return CommandResult::Failed;
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
  for (const Point2& point : points) places.insert(places.end(), {point.x, point.y});
  return places;
}

// Writes a line "index, x, y" for each point. False, with a warning, if the file can't be written.
bool WritePoints(const std::string& path, const std::vector<Point2>& points) {
  OutputFile file(path);
  if (!file.IsOpen()) {
    ShowWarning(OpenErrorText(path));
    return false;
  }
  std::string text;
  for (std::size_t i = 0; i < points.size(); ++i) {
    AppendInt(text, static_cast<std::int64_t>(i));
    text += ", ";
    AppendNumbers(text, {points[i].x, points[i].y}, 6);
    text += '\n';
  }
  if (file.Write(text) && file.Commit()) return true;
  ShowWarning(WriteErrorText(path));
  return false;
}

// Finds the corners; false, with a warning, if that fails.
bool FindCorners(ImgProcess& process, const SourceImage& source, const HarrisParam& param,
                 std::vector<Point2>& corners) {
  switch (process.HarrisCorners(source.image, corners, param)) {
    case 1:
      return true;
    case -1:
      ShowWarning("There is no Gaussian with this sigma. Please enter one from 0 to " +
                  ShortestText(ImgProcess::kMaxSigma) + ".");
      return false;
    case -2:
      ShowWarning(ErdasImg::kNoMemoryText);
      return false;
    case -4:
      ShowWarning("The temporary files beside the image have been changed by another program.");
      return false;
    default:  // told
      return false;
  }
}

// Shows the corners over the image, and writes them beside it. `more` ends the text in the message pane.
CommandResult StoreCorners(CCorvaneView& view, const SourceImage& source, const std::vector<Point2>& corners,
                           const std::string& more = "") {
  const bool isShown = ShowPoints(view, source, PlacesOf(corners));
  const std::string path = DerivedName(source.path, "_Pt.txt");
  if (!WritePoints(path, corners)) return CommandResult::Failed;
  Ui().SetStatusText(0, "Written to " + path + ": " + std::to_string(corners.size()) + " corners." + more +
                            CutText(source.image));
  return ResultOf(source.isRead && isShown);
}

using MakeFeatures = int (ImgProcess::*)(ErdasImg&, const std::vector<Point2>&, std::int32_t,
                                         FeaturePointList&, bool);

// A command that describes the corners of an image.
CommandResult DescribeCorners(CCorvaneView& view, MakeFeatures makeFeatures, double windowSize,
                              const std::string& path) {
  SourceImage source;
  const CommandResult opened = OpenSource(source);
  if (opened != CommandResult::Done) return opened;
  const auto threshold = AskThreshold();
  if (!threshold) return CommandResult::Cancelled;
  const auto size = AskWhole("Input feature descriptor window size", windowSize);
  if (!size) return CommandResult::Cancelled;

  WaitCursor wait;
  ImgProcess process;
  std::vector<Point2> corners;
  if (!FindCorners(process, source, {.threshold = 1.0 * *threshold}, corners)) return CommandResult::Failed;
  FeaturePointList features;
  if ((process.*makeFeatures)(source.image, corners, *size, features, true) < 0) {
    return FailWithWarning(ErdasImg::kNoMemoryText);
  }
  if (WriteFeaturePoints(path, features) < 0) return CommandResult::Failed;
  const char* const why = features.empty() && !corners.empty()
                              ? " No corner has a window of an odd size around it that is all in the image."
                              : "";
  return StoreCorners(view, source, corners,
                      " To " + path + ": " + std::to_string(features.size()) + " descriptors." + why);
}

}  // namespace

CommandResult OnPoints(CCorvaneView& view) {
  SourceImage source;
  const CommandResult opened = OpenSource(source);
  if (opened != CommandResult::Done) return opened;
  WaitCursor wait;
  std::vector<double> places;
  ImgProcess().ProminentPixels(source.image, kProminence, places);
  const std::size_t nPoints = places.size() / 2;
  if (!ShowPoints(view, source, std::move(places))) return CommandResult::Failed;
  Ui().SetStatusText(0, std::to_string(nPoints) + " prominent points." + CutText(source.image));
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

  WaitCursor wait;
  ImgProcess process;
  std::vector<Point2> corners;
  const HarrisParam param{.sigma = sigma.value, .threshold = 1.0 * *threshold};
  if (!FindCorners(process, source, param, corners)) return CommandResult::Failed;
  return StoreCorners(view, source, corners);
}

CommandResult OnStructuralFeature(CCorvaneView& view) {
  return DescribeCorners(view, &ImgProcess::StructuralFeatures, 7.0, "Descriptor.txt");
}

CommandResult OnSpiralDescriptor(CCorvaneView& view) {
  return DescribeCorners(view, &ImgProcess::SpiralFeatures, 17.0, "Spiral_Descrip.txt");
}

}  // namespace corvane
