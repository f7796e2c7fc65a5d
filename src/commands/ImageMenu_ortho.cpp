// The orthophoto of the menu Image.

#include <algorithm>

#include "OpenGL/Stereo_2Cursor/OrthoMosaic.h"
#include "commands/ImageExtent.h"
#include "commands/ImageFiles.h"
#include "commands/ImageMenu.h"

namespace corvane {

namespace {

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
    case OrthoMosaic::Taken::Outside:
      return "outside of the extent";
    case OrthoMosaic::Taken::Yes:
      break;
  }
  return "";
}

// What the last status text says of photos: those left out, with the reasons, and those cut short.
class PhotoNotes {
 public:
  void AddOmitted(const std::string& path, const std::string& reason) {
    omitted_ += (omitted_.empty() ? " Left out: " : ", ") + path + " (" + reason + ")";
  }
  void AddIfCut(const AerialPhoto& photo) { cut_ += CutText(photo.image, photo.name); }

  std::string GetText() const { return omitted_ + (omitted_.empty() ? "" : ".") + cut_; }

 private:
  std::string omitted_;
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

// Returns how many photos could be read. Each one's pixels go before the next one's come.
std::size_t PaintPhotos(const OrthoMosaic& mosaic, const ErdasImg& dem, ErdasImg& output, PhotoNotes& notes) {
  const auto& photos = mosaic.GetPhotos();
  std::size_t nPainted = 0;
  for (std::size_t i = 0; i < photos.size(); ++i) {
    AerialPhoto& photo = photos[i]->photo;
    TellProgress("Orthophoto: photo ", i, photos.size(), photo.name);
    if (ReadImage(photo.name, photo.image)) {
      photo.OrthoFill(&photos[i]->footprint, false, &dem, &output);
      notes.AddIfCut(photo);
      ++nPainted;
    } else {
      notes.AddOmitted(photo.name, "could not be read");
    }
    photo.CloseImage();
  }
  return nPainted;
}

CommandResult FailInStatus(const std::string& text) {
  Ui().SetStatusText(0, text);
  return CommandResult::Failed;
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
  if (mosaic.GetPhotos().empty()) return FailInStatus("No photo is left." + notes.GetText());
  const auto outPath = ChooseFile(kSaveOrtho);
  if (!outPath) return CommandResult::Cancelled;

  WaitCursor wait;
  ErdasImg output;
  const int status = mosaic.MakeOutput(cell, output);
  if (status == -2) return FailInStatus(ErdasImg::kNoMemoryText);
  if (status < 0) return FailInStatus("There is no cell in the extent of the photos.");
  const std::size_t nPainted = PaintPhotos(mosaic, dem, output, notes);
  const std::string photosText =
      " Photos: " + std::to_string(nPainted) + " of " + std::to_string(nChosen) + ".";
  return StoreImage(*outPath, output, true, photosText + notes.GetText() + CutText(dem, "The DEM"));
}

}  // namespace corvane
