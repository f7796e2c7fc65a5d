// Epipolar geometry, and the searches along an epipolar line and a vertical line.

#include <algorithm>
#include <cmath>
#include <limits>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "OpenGL/Stereo_2Cursor/Matrix3.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

constexpr double kProminence = 0.3;

// What a search returns in which nothing correlates.
constexpr double kNoScore = std::numeric_limits<double>::epsilon();

// A pixel of an image in memory.
struct PixelPlace {
  std::int32_t col = 0;
  std::int32_t row = 0;
};

// The best of the places that have been tried; the first of equals.
struct BestPlace {
  double score = 0.0;
  PixelPlace place;

  void Try(double newScore, PixelPlace newPlace) {
    if (!(newScore > score)) return;
    score = newScore;
    place = newPlace;
  }
};

// Scores the prominent pixels of a column from `firstRow` to `lastRow`.
void SearchColumn(const ErdasImg& image, const ErdasImg& window, std::int32_t col, std::int64_t firstRow,
                  std::int64_t lastRow, BestPlace& best) {
  const std::int64_t begin = std::max<std::int64_t>(firstRow, 0);
  const std::int64_t last = std::min<std::int64_t>(lastRow, image.GetSize().cy - 1);
  for (std::int64_t i = begin; i <= last; ++i) {
    const auto row = static_cast<std::int32_t>(i);
    if (image.IsProminent(col, row, kProminence) == 0) continue;
    best.Try(ErdasImg::CorrelateWindow(window, col, row, image), {col, row});
  }
}

// The first pixel of a window around the projection of a ground point. False if it is no number, or the
// window reaches beyond what pixels can be counted to.
bool WindowAt(const AerialPhoto& photo, const Point3& point, int width, int height, PixelPlace& first) {
  double col = 0.0;
  double row = 0.0;
  photo.GroundToImage(point.x, point.y, point.z, col, row);
  const auto left = TruncateToInt(col - width / 2 - photo.startX);
  const auto top = TruncateToInt(row - height / 2 - photo.startY);
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  if (!left || !top || *left + std::int64_t{width} > kMost || *top + std::int64_t{height} > kMost)
    return false;
  first = {*left, *top};
  return true;
}

// 0.0 if there are no windows to compare.
double CorrelateAt(AerialPhoto& left, const AerialPhoto& right, const Point3& point, int width, int height) {
  PixelPlace leftPlace;
  PixelPlace rightPlace;
  if (!WindowAt(left, point, width, height, leftPlace)) return 0.0;
  if (!WindowAt(right, point, width, height, rightPlace)) return 0.0;
  ErdasImg window;
  left.image.ExtractTo(leftPlace.col, leftPlace.col + width - 1, leftPlace.row, leftPlace.row + height - 1,
                       true, window);
  if (!window.HasPixels()) return 0.0;
  window.ComputeSums();
  // What CorrelateWindow takes from the image is centred on its place: it begins where this window does.
  return ErdasImg::CorrelateWindow(window, rightPlace.col + width / 2, rightPlace.row + height / 2,
                                   right.image);
}

}  // namespace

void AerialPhoto::ComputeBase(const AerialPhoto& other) {
  baseX = other.perspectiveX - perspectiveX;
  baseY = other.perspectiveY - perspectiveY;
  baseZ = other.perspectiveZ - perspectiveZ;
  const double skew[3][3] = {{0.0, -baseZ, baseY}, {baseZ, 0.0, -baseX}, {-baseY, baseX, 0.0}};
  for (int col = 0; col < 3; ++col) {
    double ray[3];  // a column of Rt A
    const double v[3] = {imageToPhoto[0][col], imageToPhoto[1][col], imageToPhoto[2][col]};
    RotateToGround(v, ray);
    for (int row = 0; row < 3; ++row) {
      epipolarMap[row][col] = skew[row][0] * ray[0] + skew[row][1] * ray[1] + skew[row][2] * ray[2];
    }
  }
}

int AerialPhoto::EpipolarLine(const double p[2], double out[3]) const {
  const double pixel[3] = {p[0], p[1], 1.0};
  double t[3];
  MultiplyVector3(epipolarMap.get(), pixel, t);
  MultiplyTransposed3(imageToGround.get(), t, out);
  return 1;
}

double AerialPhoto::SearchEpipolar(ErdasImg& window, int firstCol, int lastCol, const double line[2],
                                   Point2& best) const {
  window.ComputeSums();
  const double slope = line[0];
  const double t = startX * slope + line[1] - startY;
  // Pixels beyond the image are not prominent.
  const auto first = std::max<std::int64_t>(std::int64_t{firstCol} - startX, 0);
  const auto last = std::min<std::int64_t>(std::int64_t{lastCol} - startX, image.GetSize().cx - 1);
  BestPlace found;
  for (std::int64_t col = first; col <= last; ++col) {
    const double row = static_cast<double>(col) * slope + t;
    if (!std::isfinite(row)) continue;
    const std::int64_t middle = TruncateTo64(row);
    SearchColumn(image, window, static_cast<std::int32_t>(col), middle - maxRowDisparity,
                 middle + maxRowDisparity, found);
  }
  if (found.score == 0.0) return kNoScore;
  best = {static_cast<double>(found.place.col) + startX, static_cast<double>(found.place.row) + startY};
  return found.score;
}

double VerticalLineSearch(AerialPhoto& left, const AerialPhoto& right, Point3& point, double zEnd,
                          double zStart, double zStep, int width, int height) {
  if (width <= 0 || height <= 0 || std::int64_t{width} * height > kMaxWindow) return kNoScore;
  if (!left.image.HasPixels() || !right.image.HasPixels()) return kNoScore;
  double best = 0.0;
  Point3 tried = point;
  double z = zStart;
  for (int n = 0; n < kMaxHeights; ++n) {
    tried.z = z + zStep;
    const double score = CorrelateAt(left, right, tried, width, height);
    if (score > best) {
      best = score;
      point.z = tried.z;
    }
    if (!(tried.z < zEnd) || !(tried.z > z)) break;
    z = tried.z;
  }
  return best > 0.0 ? best : kNoScore;
}

}  // namespace corvane
