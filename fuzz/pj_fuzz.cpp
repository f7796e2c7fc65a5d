// Any bytes as a project: the project file, the ground points and the camera, with "~" between them. What has
// been read holds together, and is solved and adjusted if it is small. The three files stay as they are.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "FuzzFolder.h"
#include "PhotoProject/BundleAdjustment.h"
#include "io/InputFile.h"
#include "numerics/LeastSquares.h"
#include "numerics/MatrixText.h"

namespace corvane {
namespace {

void Expect(bool isTrue) {
  if (!isTrue) std::abort();
}

// A folder for one run, the current one while it lasts, as relative names of photos belong to it.
class RunFolder {
 public:
  RunFolder() : previous_(std::filesystem::current_path()), folder_(FuzzPath("run")) {
    std::filesystem::create_directory(folder_);
    std::filesystem::current_path(folder_);
  }
  ~RunFolder() {
    std::filesystem::current_path(previous_);
    std::filesystem::remove_all(folder_);
  }

 private:
  std::filesystem::path previous_;
  std::filesystem::path folder_;
};

void MakeFile(const std::string& name, std::string_view text) {
  FuzzFile("run/" + name, reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

// The text up to the next "~", which is taken away with it.
std::string_view TakePart(std::string_view& text) {
  const std::size_t end = std::min(text.find('~'), text.size());
  const std::string_view part = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return part;
}

void CheckPhoto(const PhotoProject& project, const AerialPhoto& photo) {
  Expect(project.GetPhoto(photo.stripIndex, photo.photoIndex) == &photo);
  for (const ImageMeasurement& measurement : photo.measurements) {
    Expect(measurement.groundIndex == project.FindGroundPoint(measurement.type, measurement.name));
    Expect(measurement.groundIndex >= 0);
    const int place = PhotoProject::FindMeasurement(project.passPoints, measurement);
    Expect(place == project.FindPassPoint(measurement.name));
    Expect(place >= 0 || measurement.type == kControlPoint);
  }
}

void CheckProject(PhotoProject& project) {
  Expect(project.photos.size() == static_cast<std::size_t>(project.stripCount));
  std::size_t nPhotos = 0;
  for (std::size_t i = 0; i < project.photos.size(); ++i) {
    Expect(project.photos[i].size() == static_cast<std::size_t>(project.stripPhotoCounts[i]));
    nPhotos += project.photos[i].size();
    for (const auto& photo : project.photos[i]) CheckPhoto(project, *photo);
  }
  Expect(nPhotos == static_cast<std::size_t>(project.photoCount));
  Expect(project.groundPoints.size() == static_cast<std::size_t>(project.controlCount + project.passCount));

  std::string text;
  project.DumpGroundPoints(text);
  const std::size_t nStrips = project.modelNames.size();
  project.BuildModelNames();
  int strip = 0;
  int photo = 0;
  const int nModels = static_cast<int>(project.modelNames.size() - nStrips);
  Expect(nModels == 0 || project.LocateModel(nModels - 1, strip, photo));
  Expect(nModels == 0 || project.GetPhoto(strip, photo + 1) != nullptr);
  Expect(!project.LocateModel(nModels, strip, photo));
}

// What the import makes of the project.
void SolveOnce(PhotoProject& project) {
  BundleSystem system;
  BundleOutcome outcome;
  const BundleStep step = {.title = "", .path = "inBundleMat.txt", .solver = LeastSquaresCholesky};
  const OwnedArray<double> x = SolveSystem(step, project, system, outcome);
  Expect(outcome.isHeld && x);
  const double* const row = x.get();
  Expect(WriteMatrixBare("inSolution.txt", 1, system.cols, &row, ",") == 1);
  Expect(project.measurementCursor == project.MeasurementCount());
  project.measurementCursor = 0;
}

void RunProject() {
  PhotoProject project;
  const int status = project.Read("in.pj");
  Expect(status == 1 || status == -11 || status == -12 || status == -22 || status == -23);
  if (status != 1) return;
  CheckProject(project);
  constexpr std::size_t kFewUnknowns = 60;
  const std::size_t nUnknowns = kPhotoUnknowns * static_cast<std::size_t>(project.photoCount) +
                                kPointUnknowns * project.passPoints.size();
  if (nUnknowns > kFewUnknowns) return;
  SolveOnce(project);
  Expect(RunBundleAdjustment(project).isHeld);
}

void Run(std::string_view text) {
  if (text.find('/') != text.npos) return;  // names of photos are where files are written
  const RunFolder folder;
  const std::string_view parts[] = {TakePart(text), TakePart(text), TakePart(text)};
  const char* const names[] = {"in.pj", "in.gpt", "cam.txt"};
  for (int i = 0; i < 3; ++i) MakeFile(names[i], parts[i]);
  RunProject();
  for (int i = 0; i < 3; ++i) Expect(ReadWholeFile(names[i]) == parts[i]);
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  corvane::Run({reinterpret_cast<const char*>(data), size});
  return 0;
}
