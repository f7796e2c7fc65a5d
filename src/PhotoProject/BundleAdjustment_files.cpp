// What an adjustment writes of its solutions and results.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "PhotoProject/BundleAdjustment.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "numerics/MatrixText.h"

namespace corvane {

namespace {

// "%f, %f, %f\n" of as many as there are
void AppendPlainLine(std::string& text, std::initializer_list<double> numbers) {
  for (const double number : numbers) {
    AppendElement(text, number, Zeros::Long);
    text += ", ";
  }
  text.replace(text.size() - 2, 2, "\n");
}

void AppendPhoto(std::string& text, std::size_t strip, const AerialPhoto& photo) {
  text += "Strip: " + std::to_string(strip) + ", PhotoName: " + photo.name + "\n";
  AppendPlainLine(text, {photo.omega, photo.phi, photo.kappa, photo.perspectiveX, photo.perspectiveY,
                         photo.perspectiveZ});
  text += '\n';
}

}  // namespace

int WriteSolution(const std::string& path, int p, int q, const double* x, std::string_view separator) {
  std::string text;
  for (int k = 0; k < p; ++k, x += kPhotoUnknowns) AppendMatrixRow(text, x, kPhotoUnknowns, separator);
  for (int j = 0; j < q; ++j, x += kPointUnknowns) AppendMatrixRow(text, x, kPointUnknowns, separator);
  return WriteWholeFile(path, text) ? 1 : -1;
}

int WriteResult(const PhotoProject& project, const std::string& path) {
  std::string text;
  for (std::size_t strip = 0; strip < project.photos.size(); ++strip) {
    for (const auto& photo : project.photos[strip]) AppendPhoto(text, strip, *photo);
  }
  const std::int64_t nCounted = std::int64_t{project.controlCount} + project.passCount;
  const std::int64_t nPoints = std::min(nCounted, static_cast<std::int64_t>(project.groundPoints.size()));
  for (std::int64_t i = 0; i < nPoints; ++i) {
    const GroundPoint& point = project.groundPoints[static_cast<std::size_t>(i)];
    text += point.name + ": ";
    AppendPlainLine(text, {point.x, point.y, point.z});
    if (i + 1 == project.controlCount) text += '\n';
  }
  return WriteWholeFile(path, text) ? 1 : -1;
}

}  // namespace corvane
