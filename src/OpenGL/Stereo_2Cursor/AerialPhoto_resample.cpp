// Epipolar images.

#include <algorithm>
#include <cmath>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "OpenGL/Stereo_2Cursor/ImageProgress.h"
#include "OpenGL/Stereo_2Cursor/Matrix3.h"
#include "OpenGL/Stereo_2Cursor/PixelPlaces.h"
#include "erdasimg/RasterTools.h"
#include "io/Paths.h"
#include "numerics/Extents.h"

namespace corvane {

namespace {

// Whole numbers are the pixels' centres, and truncation moves the first edge on: the first pixel reaches from
// before -1.5 to 0.5, which is above -1 behind the shift by 0.5. Kept: it is wider than the others.
PlaceLimits LimitsOf(const ImageSize& size) {
  constexpr double kAboveMinusOne = -1.0 + 0x1p-53;
  return {kAboveMinusOne, static_cast<double>(size.cx), kAboveMinusOne, static_cast<double>(size.cy)};
}

// Strip by strip, so that a source that lies at a right angle to the result is not walked column by column.
void MapImage(const ErdasImg& from, ConstMatrix h, ErdasImg& to, const ImageProgress& progress) {
  const PlaceLimits limits = LimitsOf(from.GetSize());
  const auto [cols, rows] = to.GetSize();
  PixelPlaces places;
  for (std::int64_t first = 0; first < cols; first += PixelPlaces::kMost) {
    const auto firstCol = static_cast<std::int32_t>(first);
    const std::int32_t n = std::min(PixelPlaces::kMost, cols - firstCol);
    for (std::int32_t row = 0; row < rows; ++row) {
      MapCells(h, row, firstCol, n, limits, places);
      TakePixels(from, places, n, to, row, firstCol);
    }
    progress.Tell(first + n, cols);
  }
}

// Whether anybody makes an image of this size of the source: bad numbers may ask for any.
bool IsSensible(double rows, double cols, const ImageSize& source) {
  constexpr double kFew = 1 << 26;
  constexpr double kPixelsOfOne = 256.0;
  return std::trunc(rows) * std::trunc(cols) <= std::max(kFew, kPixelsOfOne * source.cx * source.cy);
}

}  // namespace

void AerialPhoto::MapExtentFrom(const AerialPhoto& source, double extent[6]) const {
  const double corners[4][2] = {
      {extent[0], extent[1]}, {extent[3], extent[1]}, {extent[3], extent[4]}, {extent[0], extent[4]}};
  double mapped[4][3];
  for (int i = 0; i < 4; ++i) {
    double inPhoto[3];
    double onGround[3];
    double v[3];
    source.ImageToPhoto(corners[i], inPhoto);
    source.RotateToGround(inPhoto, onGround);
    RotateToPhoto(onGround, v);
    mapped[i][0] = v[0] / v[2] * -focalLength;
    mapped[i][1] = v[1] / v[2] * -focalLength;
    mapped[i][2] = -focalLength;
  }
  ExtentOfPoints(mapped[0], 4, 3, extent);
}

void AerialPhoto::BuildResampleMap(const AerialPhoto& source) {
  const OwnedMatrix transposed = NewMatrix3();
  const OwnedMatrix toSource = NewMatrix3();  // from the ground's axes
  const OwnedMatrix turned = NewMatrix3();    // from this photo's axes
  TransposeMatrix(rotation.get(), transposed.get(), 3, 3);
  MultiplySquare(source.photoToImage.get(), source.rotation.get(), toSource.get(), 3, 3);
  MultiplySquare(toSource.get(), transposed.get(), turned.get(), 3, 3);
  MultiplySquare(turned.get(), imageToPhoto.get(), resampleMap.get(), 3, 3);
}

int AerialPhoto::ResampleFrom(const AerialPhoto& source, const double extent[6], double cell) {
  const double s = std::fabs(cell);
  const double interior[3][3] = {{s, 0.0, extent[0]}, {0.0, -s, extent[4]}, {0.0, 0.0, -focalLength}};
  for (int i = 0; i < 3; ++i) std::copy_n(interior[i], 3, imageToPhoto[i]);
  BuildResampleMap(source);

  ErdasHeader header = *source.image.GetHeader();
  header.xMap = static_cast<float>(extent[0]);
  header.yMap = static_cast<float>(extent[4]);
  header.xCell = static_cast<float>(s);
  header.yCell = static_cast<float>(-s);
  const double rows = (extent[4] - extent[1]) / s;
  const double cols = (extent[3] - extent[0]) / s;
  image.Free();
  if (!IsSensible(rows, cols, source.image.GetSize())) return -1;
  if (MakeImage(header, rows, cols, image) < 0) return -1;
  MapImage(source.image, resampleMap.get(), image, {"Resampling " + FileName(source.name), image.GetSize()});
  return 1;
}

}  // namespace corvane
