// The camera calibration file. No line of it is tested: one that does not fit leaves what it should give as
// it was.

#include <bit>

#include "PhotoProject/PhotoProject.h"
#include "PhotoProject/ProjectText.h"
#include "io/InputFile.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr int kNotOpened = -11;

// "%s %lf\n"
void ScanNamedReal(TextScanner& text, double& value) {
  std::string unread;
  if (text.ScanWord(unread)) text.ScanDouble(value);
}

// The low 32 bits of a double, as an integer, and the double with others in their place.
std::int32_t LowHalf(double value) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(value)));
}

double WithLowHalf(double value, std::int32_t low) {
  constexpr std::uint64_t kHighHalf = 0xFFFFFFFF00000000;
  return std::bit_cast<double>((std::bit_cast<std::uint64_t>(value) & kHighHalf) |
                               static_cast<std::uint32_t>(low));
}

// Reads the lines until one does not fit: the number of them can be hundreds of millions by mistake.
void ScanFiducials(TextScanner& text, std::int32_t nLines, Fiducials& fiducials) {
  for (std::int32_t i = 0; i < nLines; ++i) {
    if (!ScanFiducial(text, fiducials)) return;
  }
}

void ScanCamera(TextScanner& text, PhotoProject& project) {
  std::string unread;
  text.ScanWord(unread);
  text.ScanWord(unread);
  ScanNamedReal(text, project.focalLength);
  ScanNamedReal(text, project.fiducialCountRaw);

  std::int32_t number = 0;
  if (text.ScanInt(number)) ScanReals(text, {&project.principalX, &project.principalY});
  ScanFiducials(text, LowHalf(project.fiducialCountRaw), project.fiducials);

  double notUsed = 0.0;
  if (text.ScanInt(number)) {
    project.focalLength = WithLowHalf(project.focalLength, number);
    ScanReals(text, {&notUsed, &project.cameraParam1, &project.cameraParam2, &project.cameraParam3,
                     &project.cameraParam4});
  }
}

int ReadCameraFile(const std::string& path, PhotoProject& project) {
  const auto content = ReadWholeFile(path);
  if (!content) {
    Ui().SetStatusText(0, "The camera file " + path + ", the third word of the project file, does not open.");
    return kNotOpened;
  }
  TextScanner text(*content);
  ScanCamera(text, project);
  return 1;
}

}  // namespace

int PhotoProject::ReadCamera(const std::string& path) {
  const int result = ReadWithinMemory(path, kNotOpened, [&] { return ReadCameraFile(path, *this); });
  if (result < 0) ShowMessage("Open camera calibration file error!");
  return result;
}

}  // namespace corvane
