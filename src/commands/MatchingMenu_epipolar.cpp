// The epipolar images of the menu Matching.

#include <optional>

#include "OpenGL/Stereo_2Cursor/EpipolarPair.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/ImageFiles.h"
#include "commands/MatchingMenu.h"
#include "forms/ValueInput.h"
#include "io/InputFile.h"
#include "io/Paths.h"
#include "shell/CommandShapes.h"

namespace corvane {

namespace {

// Kept: the right image is asked for in the same words.
const FileChooser kOpenLeft{.filter = kImageFilter, .title = "Choose the left image."};

bool Opens(const std::string& path) {
  return InputFile(path).IsOpen();
}

bool LoadBeside(const std::string& imagePath, AerialPhoto& photo) {
  photo.name = imagePath;
  return photo.LoadOrientation(ExistingOrientation(DerivedName(imagePath, ".orn"))) >= 0;
}

// Reads the orientations. What could not be opened; "" if everything could.
std::string LoadPair(const std::string& leftPath, const std::string& rightPath, AerialPhoto& left,
                     AerialPhoto& right) {
  if (!Opens(leftPath)) return "Left Image";
  if (!Opens(rightPath)) return "Right Image";
  if (!LoadBeside(leftPath, left)) return "Left Orientation Parameters File";
  if (!LoadBeside(rightPath, right)) return "Right Orientation Parameters File";
  return "";
}

// A fraction above 0, whatever the text says. Cancel goes on with the value shown; nothing if that isn't
// above 0.
std::optional<double> AskOverlap() {
  ValueInput overlap{.title = "Please input the overlap % of the stereo pair", .value = 0.6};
  bool isEntered = overlap.Ask();
  while (isEntered && !(overlap.value > 0.0)) isEntered = overlap.Ask();
  return overlap.value > 0.0 ? std::optional(overlap.value) : std::nullopt;
}

// One of the two results, while a command makes it.
struct Side {
  AerialPhoto& source;
  AerialPhoto& epipolar;
  const EpipolarPair::Extent& extent;
  std::string name;    // "left"
  std::string suffix;  // of its files
};

// Resamples one of the images, and writes it and its orientation: that also where there is no image. False if
// something could not be written, and in `told` what has been.
bool WriteSide(const Side& side, double cell, std::string& told) {
  AerialPhoto& epipolar = side.epipolar;
  epipolar.name = DerivedName(side.source.name, side.suffix + ".lan");
  Ui().SetStatusText(0, "Resampling the " + side.name + " image: " + side.source.name);
  const bool isMade = epipolar.ResampleFrom(side.source, side.extent.data(), cell) > 0;
  const bool isWritten = isMade && WriteImage(epipolar.name, epipolar.image);
  const bool isOriented =
      epipolar.WriteOrientation(DerivedName(side.source.name, side.suffix + ".orn"), epipolar.name) > 0;
  const auto [cols, rows] = epipolar.image.GetSize();
  if (!isMade) {
    told += " There is no " + side.name + " image of that overlap and cell size, or no memory for it.";
  }
  if (isWritten) {
    told += " Written to " + epipolar.name + ": " + std::to_string(rows) + " rows, " + std::to_string(cols) +
            " columns.";
  }
  told += CutText(side.source.image, "The " + side.name + " image");
  epipolar.CloseImage();
  side.source.CloseImage();
  return isWritten && isOriented;
}

}  // namespace

CommandResult OnCreateEpipolarImages(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenLeft, kOpenLeft});
  if (!paths) return CommandResult::Cancelled;
  AerialPhoto left;
  AerialPhoto right;
  const std::string unopened = LoadPair((*paths)[0], (*paths)[1], left, right);
  if (!unopened.empty()) return FailWithWarning("Open " + unopened + " error!");

  WaitCursor wait;
  for (AerialPhoto* const photo : {&left, &right}) {
    if (photo->image.ReadHeader(photo->name) < 0) return CommandResult::Failed;
  }
  const auto overlap = AskOverlap();
  if (!overlap) return CommandResult::Cancelled;

  EpipolarPair pair(left, right, *overlap);
  bool isDone = true;
  std::string told;
  for (const Side& side : {Side{left, pair.left, pair.leftExtent, "left", "Epi_L"},
                           Side{right, pair.right, pair.rightExtent, "right", "Epi_R"}}) {
    const bool isRead = ReadImage(side.source.name, side.source.image);
    isDone = isRead && WriteSide(side, pair.cell, told) && isDone;
    if (!isRead) break;  // what has been written stays
  }
  if (!told.empty()) Ui().SetStatusText(0, told.substr(1));
  return ResultOf(isDone);
}

}  // namespace corvane
