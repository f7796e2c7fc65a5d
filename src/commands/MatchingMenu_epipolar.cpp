// The epipolar images of the menu Matching.

#include <cmath>
#include <optional>

#include "OpenGL/Stereo_2Cursor/EpipolarPair.h"
#include "commands/Choosers.h"
#include "commands/Failures.h"
#include "commands/ImageFiles.h"
#include "commands/MatchingMenu.h"
#include "forms/ValueInput.h"
#include "io/InputFile.h"
#include "io/NumberText.h"
#include "io/Paths.h"
#include "numerics/Angles.h"
#include "shell/CommandShapes.h"

namespace corvane {

namespace {

// Kept: the right image is asked for in the same words.
const FileChooser kOpenLeft{.filter = kImageFilter, .title = "Choose the left image."};

bool Opens(const std::string& path) {
  return InputFile(path).IsOpen();
}

std::string OrientationOf(const AerialPhoto& photo) {
  return ExistingOrientation(DerivedName(photo.name, ".orn"));
}

struct Unopened {
  std::string word;  // "" if everything has been opened
  std::string path;
};

// Reads the orientations of photos that have their names.
Unopened LoadPair(AerialPhoto& left, AerialPhoto& right) {
  if (!Opens(left.name)) return {"Left Image", left.name};
  if (!Opens(right.name)) return {"Right Image", right.name};
  for (AerialPhoto* const photo : {&left, &right}) {
    const std::string path = OrientationOf(*photo);
    const std::string side = photo == &left ? "Left" : "Right";
    if (photo->LoadOrientation(path) < 0) return {side + " Orientation Parameters File", path};
  }
  return {};
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

constexpr const char* kLeftSuffix = "Epi_L";
constexpr const char* kRightSuffix = "Epi_R";

std::string ResultPath(const AerialPhoto& source, const std::string& suffix, const std::string& extension) {
  return DerivedName(source.name, suffix + extension);
}

// The result that one of the inputs would be lost to; "" if there is none.
std::string FindInputAmongResults(const AerialPhoto& left, const AerialPhoto& right) {
  const std::vector<std::string> inputs = {left.name, right.name, OrientationOf(left), OrientationOf(right)};
  for (const char* const extension : {".lan", ".orn"}) {
    for (const std::string& result :
         {ResultPath(left, kLeftSuffix, extension), ResultPath(right, kRightSuffix, extension)}) {
      if (IsOneOfFiles(result, inputs)) return result;
    }
  }
  return "";
}

// What the last status text says.
class PairNotes {
 public:
  void Add(const std::string& sentence) { sentences_ += sentence; }
  void AddWritten(const AerialPhoto& photo) {
    const auto [cols, rows] = photo.image.GetSize();
    written_ += (written_.empty() ? " Written: " : ", ") + FileName(photo.name) + " (" +
                std::to_string(cols) + " x " + std::to_string(rows) + ")";
  }

  std::string GetText() const { return written_ + (written_.empty() ? "" : ".") + sentences_; }

 private:
  std::string written_;
  std::string sentences_;
};

// Resamples one of the images, and writes it and its orientation: that also where there is no image. False if
// something could not be written.
bool WriteSide(const Side& side, double cell, PairNotes& notes) {
  AerialPhoto& epipolar = side.epipolar;
  epipolar.name = ResultPath(side.source, side.suffix, ".lan");
  Ui().SetStatusText(0, "Resampling the " + side.name + " image: " + side.source.name);
  const bool isMade = epipolar.ResampleFrom(side.source, side.extent.data(), cell) > 0;
  const bool isWritten = isMade && WriteImage(epipolar.name, epipolar.image);
  const bool isOriented =
      epipolar.WriteOrientation(ResultPath(side.source, side.suffix, ".orn"), epipolar.name) > 0;
  if (isWritten) notes.AddWritten(epipolar);
  if (!isMade) notes.Add(" There is no " + side.name + " image of that overlap and cell size.");
  notes.Add(CutText(side.source.image, "The " + side.name + " image"));
  epipolar.CloseImage();
  side.source.CloseImage();
  return isWritten && isOriented;
}

// Reads, resamples and writes both. Where the second can't be read what has been written stays.
bool WritePair(AerialPhoto& left, AerialPhoto& right, EpipolarPair& pair, PairNotes& notes) {
  bool isDone = true;
  for (const Side& side : {Side{left, pair.left, pair.leftExtent, "left", kLeftSuffix},
                           Side{right, pair.right, pair.rightExtent, "right", kRightSuffix}}) {
    if (!ReadImage(side.source.name, side.source.image)) return false;
    isDone = WriteSide(side, pair.cell, notes) && isDone;
  }
  return isDone;
}

// Whether the images lie more than a right angle off the photo that they are made from.
bool IsTurnedOver(const AerialPhoto& source, const AerialPhoto& epipolar) {
  return std::fabs(std::remainder(ToDegrees(epipolar.kappa - source.kappa), 360.0)) > 90.0;
}

// What the person may not have meant.
void AddDoubts(const AerialPhoto& left, const AerialPhoto& right, const EpipolarPair& pair, double overlap,
               PairNotes& notes) {
  const auto numberText = [](double number) { return GeneralText(number, 6); };
  for (const AerialPhoto* const photo : {&left, &right}) {
    if (!photo->IsOriented()) notes.Add(NoOrientationText(FileName(OrientationOf(*photo))));
  }
  const bool areOriented = left.IsOriented() && right.IsOriented();
  if (areOriented && pair.cell == 0.0) {
    notes.Add(" The left photo's scale, " + numberText(left.GetScale()) + ", is 0 in thousandths.");
  }
  if (areOriented && IsTurnedOver(left, pair.left)) {
    notes.Add(" The images are turned by more than 90 degrees: is the left photo really the left one?");
  }
  if (overlap > 1.0) {
    notes.Add(" The overlap is a fraction: " + numberText(overlap) + " means " + numberText(100.0 * overlap) +
              " %.");
  }
}

}  // namespace

CommandResult OnCreateEpipolarImages(CCorvaneView&) {
  const auto paths = ChooseInOrder({kOpenLeft, kOpenLeft});
  if (!paths) return CommandResult::Cancelled;
  AerialPhoto left;
  AerialPhoto right;
  left.name = (*paths)[0];
  right.name = (*paths)[1];
  const Unopened unopened = LoadPair(left, right);
  if (!unopened.word.empty()) {
    Ui().SetStatusText(0, unopened.path + " does not open.");
    return FailWithWarning("Open " + unopened.word + " error!");
  }
  const std::string endangered = FindInputAmongResults(left, right);
  if (!endangered.empty()) return FailToWrite(endangered, kIsInputText);

  WaitCursor wait;
  for (AerialPhoto* const photo : {&left, &right}) {
    if (photo->image.ReadHeader(photo->name) < 0) return CommandResult::Failed;
  }
  const auto overlap = AskOverlap();
  if (!overlap) return CommandResult::Cancelled;

  EpipolarPair pair(left, right, *overlap);
  PairNotes notes;
  const bool isDone = WritePair(left, right, pair, notes);
  AddDoubts(left, right, pair, *overlap, notes);
  const std::string text = notes.GetText();
  if (!text.empty()) Ui().SetStatusText(0, text.substr(1));
  return ResultOf(isDone);
}

}  // namespace corvane
