// The orientation file, and the image.

#include <algorithm>
#include <initializer_list>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "io/Paths.h"
#include "io/TextCase.h"
#include "io/TextScanner.h"
#include "numerics/Angles.h"
#include "numerics/MatrixText.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// "%lf %lf %lf\n": ends at the first field that is no number.
void ScanLine(TextScanner& text, std::initializer_list<double*> numbers) {
  for (double* const number : numbers) {
    if (!text.ScanDouble(*number)) return;
  }
  text.SkipSpace();
}

void SkipWords(TextScanner& text, int n) {
  std::string word;
  for (int i = 0; i < n; ++i) {
    if (!text.ScanWord(word)) return;
  }
  text.SkipSpace();
}

// A record's word, which is never empty and has no white space.
std::string AsWord(std::string word) {
  std::replace_if(
      word.begin(), word.end(), [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }, '_');
  return word.empty() ? "_" : word;
}

// "\t%f\t%f\t%f\n", here and below with a NaN as in texts of matrices.
void AppendLine(std::string& text, std::initializer_list<double> numbers) {
  for (const double number : numbers) {
    text += '\t';
    AppendElement(text, number, Zeros::Long);
  }
  text += '\n';
}

// "%lf %lf\n"
void AppendPair(std::string& text, double x, double y) {
  AppendElement(text, x, Zeros::Long);
  text += ' ';
  AppendElement(text, y, Zeros::Long);
  text += '\n';
}

std::string RecordText(const AerialPhoto& photo, const std::string& word) {
  const ConstMatrix a = photo.imageToPhoto.get();
  std::string text = "ORIENTATION " + AsWord(photo.name) + " " + AsWord(word) + "\n";
  AppendLine(text, {photo.focalLength});
  AppendLine(text, {photo.perspectiveX, photo.perspectiveY, photo.perspectiveZ});
  AppendLine(text, {ToDegrees(photo.omega), ToDegrees(photo.phi), ToDegrees(photo.kappa)});
  AppendLine(text, {photo.frameWidth, 0.0, 0.0});
  AppendLine(text, {a[0][0], a[0][1], a[0][2] + photo.principalX});
  AppendLine(text, {a[1][0], a[1][1], a[1][2] + photo.principalY});
  AppendPair(text, photo.principalX, photo.principalY);
  AppendPair(text, photo.pixelSizeX, photo.pixelSizeY);
  return text;
}

}  // namespace

int AerialPhoto::ReadOrientation(TextScanner* text) {
  if (!text) return -1;
  const Matrix a = imageToPhoto.get();
  double unread = 0.0;
  SkipWords(*text, 3);
  ScanLine(*text, {&focalLength});
  ScanLine(*text, {&perspectiveX, &perspectiveY, &perspectiveZ});
  ScanLine(*text, {&omega, &phi, &kappa});
  ScanLine(*text, {&unread, &unread, &unread});
  ScanLine(*text, {&a[0][0], &a[0][1], &a[0][2]});
  ScanLine(*text, {&a[1][0], &a[1][1], &a[1][2]});
  ScanLine(*text, {&principalX, &principalY});
  if (!text->AtEnd()) ScanLine(*text, {&pixelSizeX, &pixelSizeY});

  CompleteInterior(focalLength);
  omega = ToRadians(omega);
  phi = ToRadians(phi);
  kappa = ToRadians(kappa);
  return 1;
}

int AerialPhoto::LoadOrientation(const std::string& path) {
  if (path.empty()) return -1;
  const auto bytes = ReadWholeFile(path);
  if (!bytes) return -1;
  TextScanner text(*bytes);
  ReadOrientation(&text);
  Recompute();
  return 1;
}

int AerialPhoto::LoadOrientationChecked(const std::string& path) {
  const auto bytes = ReadWholeFile(path);
  if (!bytes) {
    ShowWarning("Orientation Parameters File Cannot be opened!");
    return -1;
  }
  TextScanner text(*bytes);
  return ReadOrientation(&text);
}

int AerialPhoto::WriteOrientation(const std::string& path, const std::string& word) const {
  const int result = StoreOrientation(path, word);
  if (result < 0) ShowWarning("Orientation Parameters File Cannot be opened for writing!");
  return result;
}

int AerialPhoto::StoreOrientation(const std::string& path, const std::string& word) const {
  return WriteWholeFile(path, RecordText(*this, word)) ? 1 : -1;
}

int AerialPhoto::OpenImage(const std::string& path) {
  image.Read(path);
  startX = image.GetStart().x;
  startY = image.GetStart().y;
  return 1;
}

std::string ExistingOrientation(const std::string& path) {
  constexpr std::size_t kLetters = 3;
  if (FileExists(path) || path.size() < kLetters) return path;
  const std::string stem = path.substr(0, path.size() - kLetters);
  const std::string other = stem + (path.ends_with("orn") ? "ORN" : "orn");
  return EqualIgnoringCase(FileExtension(path), ".orn") && FileExists(other) ? other : path;
}

}  // namespace corvane
