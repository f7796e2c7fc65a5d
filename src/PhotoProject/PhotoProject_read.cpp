// The project file. White space of any kind separates its fields:
//   a word, the project's title, the camera file's path
//   the focal length and four more numbers of the camera
//   the number of strips, and for each its number of photos and its name
//   a name and a label for each photo, strip by strip
//   the photos' interior blocks, in any order:
//     count of fiducials, strip, photo (both from 1), a word
//     for each fiducial its number, x, y
//     a, b, c, d, e, g of x = a col + b row + c, y = d col + e row + g
//     count of measurements of pass points, count of those of control points
//     for each measurement the point's name, col, row
//   the photos' exterior blocks, in any order:
//     a number, strip, photo, a word
//     six numbers, which are not used
//     omega, phi, kappa (degrees), X, Y, Z

#include <algorithm>
#include <unordered_set>

#include "PhotoProject/PhotoProject.h"
#include "PhotoProject/ProjectText.h"
#include "io/InputFile.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "io/Paths.h"
#include "numerics/Angles.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr int kNotOpened = -21;
constexpr int kStripFailed = -22;
constexpr int kLineFailed = -23;

constexpr std::size_t kMaxText = 256;  // bytes of the project's title and of its camera's path

// Less than what the lines of any photo take, in bytes.
constexpr std::size_t kLeastPhotoSize = 32;

constexpr int kTellEach = 50;  // photos

// Writes a photo's orientation file. A box tells of a failure; for a project whose folders can't be written
// that would be a box for each photo, so only the first one is shown.
void StoreOrientation(const AerialPhoto& photo, PhotoProject& project) {
  constexpr const char* kWord = "RightPhoto";
  const std::string path = OrientationPath(photo.name);
  const int result = project.unwrittenFiles.empty() ? photo.WriteOrientation(path, kWord)
                                                    : photo.StoreOrientation(path, kWord);
  project.NoteFile(path, result > 0);
}

// Reads the project file into a project that has its ground points. No count allocates anything: strips,
// photos and measurements are made as their lines arrive.
class ProjectReader {
 public:
  // The text's size is in bytes.
  ProjectReader(PhotoProject& project, TextScanner& text, std::size_t size)
      : project_(project), text_(text), size_(size) {}

  // 1, or a negative result of Read.
  int Run() {
    if (!ReadTitles()) return kLineFailed;
    if (const int status = project_.ReadCamera(project_.cameraFile); status < 0) return status;
    if (!ReadCameraLine()) return kLineFailed;
    if (!ReadStrips()) return kStripFailed;
    if (!ReadPhotos() || !ReadInteriors() || !ReadExteriors()) return kLineFailed;
    NotePhotosWithoutBlock();
    return 1;
  }

 private:
  using Photos = std::unordered_set<const AerialPhoto*>;

  bool ReadTitles() {
    std::string unread;
    return text_.ScanWord(unread) && ScanText(project_.projectTitle) && ScanText(project_.cameraFile);
  }

  // A longer word is cut, and what is cut off is gone: the fields behind it keep their places.
  bool ScanText(std::string& word) {
    if (!text_.ScanWord(word)) return false;
    word.resize(std::min(word.size(), kMaxText));
    return true;
  }

  bool ReadCameraLine() {
    return ScanReals(text_, {&project_.focalLength, &project_.cameraParam1, &project_.cameraParam2,
                             &project_.cameraParam3, &project_.cameraParam4}) &&
           ScanCount(project_.stripCount);
  }

  bool ReadStrips() {
    for (int strip = 0; strip < project_.stripCount; ++strip) {
      int nPhotos = 0;
      std::string name;
      if (!ScanCount(nPhotos) || !text_.ScanWord(name)) return false;
      if (nPhotos > std::numeric_limits<int>::max() - project_.photoCount) return false;
      project_.stripPhotoCounts.push_back(nPhotos);
      project_.modelNames.push_back(std::move(name));
      project_.photoCount += nPhotos;
    }
    return true;
  }

  bool ReadPhotos() {
    if (IsTooShort()) return false;
    for (int strip = 0; strip < project_.stripCount; ++strip) {
      auto& row = project_.photos.emplace_back();
      for (int i = 0; i < project_.stripPhotoCounts[static_cast<std::size_t>(strip)]; ++i) {
        std::string name;
        std::string label;
        if (!text_.ScanWord(name) || !text_.ScanWord(label)) return false;
        AerialPhoto& photo = *row.emplace_back(std::make_unique<AerialPhoto>());
        photo.name = std::move(name);
        photo.label = std::move(label);
        photo.stripIndex = strip;
        photo.photoIndex = i;
      }
    }
    return true;
  }

  // Whether the rest of the file can't hold what its photos need, being far larger in memory. It is then read
  // to its end.
  bool IsTooShort() {
    const std::size_t nPossible = (size_ - text_.GetPosition()) / kLeastPhotoSize;
    if (static_cast<std::size_t>(project_.photoCount) <= nPossible) return false;
    std::string unread;
    while (text_.ScanWord(unread)) {
    }
    return true;
  }

  bool ReadInteriors() {
    for (int i = 0; i < project_.photoCount; ++i) {
      int nFiducials = 0;
      AerialPhoto* const photo = ScanBlockStart(nFiducials, withInterior_);
      if (!photo || nFiducials < 0) return false;
      photo->fiducialCount = nFiducials;
      if (!ReadFiducials(*photo) || !ReadInterior(*photo) || !ReadMeasurements(*photo)) return false;
    }
    return true;
  }

  bool ReadExteriors() {
    for (int i = 0; i < project_.photoCount; ++i) {
      int unread = 0;
      AerialPhoto* const photo = ScanBlockStart(unread, withExterior_);
      if (!photo || !ReadExterior(*photo)) return false;
      photo->Recompute();
      StoreOrientation(*photo, project_);
      if (i % kTellEach == kTellEach - 1) TellProgress(i + 1);
    }
    return true;
  }

  void NotePhotosWithoutBlock() {
    for (const auto& strip : project_.photos) {
      for (const auto& photo : strip) {
        const bool hasBoth = withInterior_.contains(photo.get()) && withExterior_.contains(photo.get());
        if (!hasBoth) project_.photosWithoutBlock.push_back(photo->name);
      }
    }
  }

  void TellProgress(int nWritten) {
    Ui().SetStatusText(0, "Orientation files: " + std::to_string(nWritten) + " of " +
                              std::to_string(project_.photoCount) + " ...");
  }

  bool ScanCount(int& count) { return text_.ScanInt(count) && count >= 0; }

  // The first line of a block: the photo that it names, which joins those with a block; null if there is
  // none.
  AerialPhoto* ScanBlockStart(int& first, Photos& withBlock) {
    int strip = 0;
    int number = 0;
    if (!text_.ScanInt(first) || !text_.ScanInt(strip) || !text_.ScanInt(number)) return nullptr;
    std::string unread;
    text_.ScanWord(unread);
    AerialPhoto* const photo = strip > 0 && number > 0 ? project_.GetPhoto(strip - 1, number - 1) : nullptr;
    if (photo) withBlock.insert(photo);
    return photo;
  }

  bool ReadFiducials(AerialPhoto& photo) {
    for (int i = 0; i < photo.fiducialCount; ++i) {
      if (!ScanFiducial(text_, photo.fiducials)) return false;
    }
    return true;
  }

  bool ReadInterior(AerialPhoto& photo) {
    const Matrix a = photo.imageToPhoto.get();
    if (!ScanReals(text_, {&a[0][0], &a[0][1], &a[0][2], &a[1][0], &a[1][1], &a[1][2]})) return false;
    photo.principalX = project_.principalX;
    photo.principalY = project_.principalY;
    photo.CompleteInterior(project_.focalLength);
    return true;
  }

  bool ReadMeasurements(AerialPhoto& photo) {
    int nPass = 0;
    int nControl = 0;
    if (!ScanCount(nPass) || !ScanCount(nControl)) return false;
    for (std::int64_t i = 0; i < std::int64_t{nPass} + nControl; ++i) {
      ImageMeasurement measurement;
      measurement.type = i < nPass ? kPassPoint : kControlPoint;
      if (!text_.ScanWord(measurement.name) || !ScanReals(text_, {&measurement.col, &measurement.row})) {
        return false;
      }
      measurement.name = std::string(PointName(measurement.name));
      StoreMeasurement(photo, std::move(measurement), static_cast<int>(i));
    }
    return true;
  }

  // Joins a measurement, the i-th of its block, to its photo and its ground point, which is made if need be.
  void StoreMeasurement(AerialPhoto& photo, ImageMeasurement measurement, int i) {
    measurement.groundIndex = project_.FindGroundPoint(measurement.type, measurement.name);
    if (measurement.groundIndex < 0) {
      GroundPoint added;
      added.type = measurement.type;
      added.name = measurement.name;
      measurement.groundIndex = project_.AddGroundPoint(std::move(added));
      ++project_.passCount;
    }
    if (measurement.type == kPassPoint && project_.FindPassPoint(measurement.name) < 0) {
      project_.AddPassPoint(measurement);
    }
    GroundPoint& point = project_.groundPoints[static_cast<std::size_t>(measurement.groundIndex)];
    point.stripIndices.push_back(photo.stripIndex);
    point.photoIndices.push_back(photo.photoIndex);
    // Kept: the number within the block. Where a photo has two interior blocks, rays of the second one so
    // name measurements of the first, and a point without a position is intersected from these.
    point.measurementIndices.push_back(i);
    photo.measurements.push_back(std::move(measurement));
  }

  bool ReadExterior(AerialPhoto& photo) {
    double unread[6];
    ScanReals(text_, {&unread[0], &unread[1], &unread[2], &unread[3], &unread[4], &unread[5]});
    if (!ScanReals(text_, {&photo.omega, &photo.phi, &photo.kappa, &photo.perspectiveX, &photo.perspectiveY,
                           &photo.perspectiveZ})) {
      return false;
    }
    photo.omega = ToRadians(photo.omega);
    photo.phi = ToRadians(photo.phi);
    photo.kappa = ToRadians(photo.kappa);
    photo.focalLength = project_.focalLength;
    return true;
  }

  PhotoProject& project_;
  TextScanner& text_;
  std::size_t size_;
  Photos withInterior_;
  Photos withExterior_;
};

void StorePassPoints(PhotoProject& project) {
  constexpr int kPrecision = 15;  // significant digits
  std::string text;
  for (const ImageMeasurement& measurement : project.passPoints) {
    text += measurement.name + ", ";
    AppendNumbers(text, {measurement.col, measurement.row}, kPrecision);
    text += '\n';
  }
  const std::string path = project.name + "_PassPt.txt";
  const bool isWritten = WriteWholeFile(path, text);
  if (!isWritten) ShowWarning(WriteErrorText(path));
  project.NoteFile(path, isWritten);
}

int ReadProjectFile(const std::string& path, PhotoProject& project) {
  const auto content = ReadWholeFile(path);
  if (!content) {
    Ui().SetStatusText(0, "The project file " + path + " does not open.");
    return kNotOpened;
  }
  TextScanner text(*content);
  const int status = ProjectReader(project, text, content->size()).Run();
  if (status == kLineFailed || status == kStripFailed) TellWhereStopped(path, *content, text);
  if (status == 1) StorePassPoints(project);
  return status;
}

}  // namespace

int PhotoProject::Read(const std::string& path) {
  if (const int status = ReadGroundPoints(DerivedName(path, ".gpt")); status < 0) return status;
  return ReadWithinMemory(path, kLineFailed, [&] { return ReadProjectFile(path, *this); });
}

}  // namespace corvane
