// The orthophoto of the menu Image.

#include <algorithm>

#include "OpenGL/Stereo_2Cursor/OrthoMosaic.h"
#include "commands/Failures.h"
#include "commands/ImageExtent.h"
#include "commands/ImageFiles.h"
#include "commands/ImageMenu.h"
#include "io/Paths.h"

namespace corvane {

namespace {

// Their names may be of any length together: no buffer of 65,536 bytes holds them.
constexpr std::size_t kMostPhotos = 256;

const FileChooser kOpenDem{.filter = "DEM Files (*.dem)|*.dem|All Files (*.*)|*.*|",
                           .defaultExtension = ".dem",
                           .title = "Please select a DEM"};
const FileChooser kOpenPhotos{.filter = "Lan Files (*.lan)|*.lan|All Files (*.*)|*.*|",
                              .defaultExtension = "lan",
                              .title = "Please select images to create ortho",
                              .multiple = true};
const FileChooser kSaveOrtho{.mode = FileChooser::Mode::Save,
                             .filter = "",
                             .defaultExtension = "lan",
                             .title = "Please input the ortho photo name"};

const char* ReasonOf(OrthoMosaic::Taken taken) {
  switch (taken) {
    case OrthoMosaic::Taken::NoOrientation:
      return "no orientation file";
    case OrthoMosaic::Taken::NoHeader:
      return "does not open";
    case OrthoMosaic::Taken::NoImage:
      return "it is no image";
    case OrthoMosaic::Taken::Unoriented:
      return "its orientation file makes no orientation";
    case OrthoMosaic::Taken::Outside:
      return "outside of the extent";
    case OrthoMosaic::Taken::Yes:
      break;
  }
  return "";
}

// Adds to a list that begins with `title`.
void Append(std::string& list, const std::string& title, const std::string& item) {
  list += (list.empty() ? title : ", ") + item;
}

// What the last status text says of photos: those left out, with the reasons, those painted in part, and
// those cut short.
class PhotoNotes {
 public:
  void AddOmitted(const std::string& path, const std::string& reason) {
    AddOmitted(FileName(path) + " (" + reason + ")");
  }
  void AddRest(std::size_t n) {
    const std::string most = std::to_string(kMostPhotos);
    if (n > 0) AddOmitted("the last " + std::to_string(n) + ", as no more than " + most + " are taken");
  }
  // Of a photo whose painting has stopped after so many cells.
  void AddStopped(const std::string& path, std::int64_t nCells) {
    const std::string text = FileName(path) + " (its footprint can't be followed in cells of this size)";
    if (nCells > 0) Append(unfinished_, " Painted in part: ", text);
    if (nCells == 0) AddOmitted(text);
  }
  void AddIfCut(const AerialPhoto& photo) { cut_ += CutText(photo.image, FileName(photo.name)); }

  std::string GetText() const {
    return omitted_ + (omitted_.empty() ? "" : ".") + unfinished_ + (unfinished_.empty() ? "" : ".") + cut_;
  }

 private:
  void AddOmitted(const std::string& text) { Append(omitted_, " Left out: ", text); }

  std::string omitted_;
  std::string unfinished_;
  std::string cut_;
};

void TellProgress(const std::string& step, std::size_t i, std::size_t n, const std::string& path) {
  Ui().SetStatusText(0, step + std::to_string(i + 1) + " of " + std::to_string(n) + ": " + path);
}

void AddPhotos(const std::vector<std::string>& paths, OrthoMosaic& mosaic, PhotoNotes& notes) {
  for (std::size_t i = 0; i < paths.size(); ++i) {
    TellProgress("Looking at photo ", i, paths.size(), paths[i]);
    const auto taken = mosaic.Add(paths[i]);
    if (taken != OrthoMosaic::Taken::Yes) notes.AddOmitted(paths[i], ReasonOf(taken));
  }
}

struct PaintedCounts {
  std::size_t nPhotos = 0;  // painted, if only in part
  std::int64_t nCells = 0;  // painted by any photo
};

// Each photo's pixels go before the next one's come.
PaintedCounts PaintPhotos(const OrthoMosaic& mosaic, const ErdasImg& dem, ErdasImg& output,
                          PhotoNotes& notes) {
  const auto& photos = mosaic.GetPhotos();
  PaintedCounts painted;
  for (std::size_t i = 0; i < photos.size(); ++i) {
    AerialPhoto& photo = photos[i]->photo;
    TellProgress("Orthophoto: photo ", i, photos.size(), photo.name);
    if (ReadImage(photo.name, photo.image)) {
      std::int64_t nCells = 0;
      const bool isWhole = photo.OrthoFill(&photos[i]->footprint, false, &dem, &output, &nCells) > 0;
      if (!isWhole) notes.AddStopped(photo.name, nCells);
      notes.AddIfCut(photo);
      painted.nPhotos += isWhole || nCells > 0 ? 1 : 0;
      painted.nCells += nCells;
    } else {
      notes.AddOmitted(photo.name, "could not be read");
    }
    photo.CloseImage();
  }
  return painted;
}

// Why there is no output of this cell size; "" if there is one. `status` is that of MakeOutput.
std::string WhyNoOutput(int status, float cell) {
  if (status > 0) return "";
  if (!(cell > 0.0f)) return "The cell size must be above 0.";
  if (status == -2) return "The orthophoto would be too large. Choose larger cells.";
  return "There is no cell in the extent of the photos.";
}

CommandResult FailInStatus(const std::string& text) {
  Ui().SetStatusText(0, text);
  return CommandResult::Failed;
}

// Paints the orthophoto and writes it. It fails if a photo of the mosaic is not in it.
CommandResult MakeOrthophoto(const OrthoMosaic& mosaic, const ErdasImg& dem, float cell, std::size_t nChosen,
                             PhotoNotes& notes, const std::string& outPath) {
  WaitCursor wait;
  ErdasImg output;
  const std::string failure = WhyNoOutput(mosaic.MakeOutput(cell, output), cell);
  if (!failure.empty()) return FailToWrite(outPath, failure);
  const PaintedCounts painted = PaintPhotos(mosaic, dem, output, notes);
  const std::string notesText = notes.GetText() + CutText(dem, "The DEM");
  if (painted.nCells == 0) {
    return FailInStatus("No cell is painted, so " + FileName(outPath) + " is not written." + notesText);
  }
  const std::string photosText =
      " Photos: " + std::to_string(painted.nPhotos) + " of " + std::to_string(nChosen) + ".";
  const bool isComplete = painted.nPhotos == mosaic.GetPhotos().size();
  return StoreImage(outPath, output, isComplete, photosText + notesText);
}

}  // namespace

CommandResult OnCreateOrthophoto(CCorvaneView&) {
  const auto demPath = ChooseFile(kOpenDem);
  if (!demPath) return CommandResult::Cancelled;
  ErdasImg dem;
  if (!ReadImage(*demPath, dem)) return CommandResult::Failed;
  auto paths = Ui().ChooseFiles(kOpenPhotos);
  if (!paths) return CommandResult::Cancelled;
  const std::size_t nChosen = paths->size();
  paths->resize(std::min(nChosen, kMostPhotos));  // Kept: no more are taken

  GroundExtent wanted = {.minX = -1.0, .minY = 0.0, .maxX = 0.0, .maxY = 0.0};  // Kept: after Cancel
  float cell = dem.GetHeader()->xCell;
  GetGroundExtent(*dem.GetHeader(), wanted, cell);
  OrthoMosaic mosaic(dem, wanted, paths->size());
  PhotoNotes notes;
  AddPhotos(*paths, mosaic, notes);
  notes.AddRest(nChosen - paths->size());
  if (mosaic.GetPhotos().empty()) return FailInStatus("No photo is left." + notes.GetText());
  const auto outPath = ChooseFile(kSaveOrtho);
  if (!outPath) return CommandResult::Cancelled;
  if (IsSameFile(*outPath, *demPath) || IsOneOfFiles(*outPath, *paths)) {
    return FailToWrite(*outPath, kIsInputText);
  }
  return MakeOrthophoto(mosaic, dem, cell, nChosen, notes, *outPath);
}

}  // namespace corvane
