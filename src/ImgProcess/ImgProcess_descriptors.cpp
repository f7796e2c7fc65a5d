// Descriptors of the surroundings of a point.

#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <span>

#include "ImgProcess/ImgProcess.h"
#include "io/MachineMemory.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

// A square of bytes around a pixel, its rows one behind the other.
struct ByteWindow {
  std::span<const std::uint8_t> bytes;
  std::int64_t size = 0;  // rows, and columns

  int At(std::int64_t row, std::int64_t col) const {
    return bytes[static_cast<std::size_t>(row * size + col)];
  }

  double GetMean() const {
    std::int64_t sum = 0;
    for (const std::uint8_t byte : bytes) sum += byte;
    return static_cast<double>(sum) / static_cast<double>(bytes.size());
  }
};

// Whether a window of this size has a pixel in its middle.
bool HasMiddle(std::int32_t size) {
  return size > 0 && size % 2 == 1;
}

// The window of an odd size around the point, which becomes the image's subset; nothing where it is even or
// not all of it in the image.
// Kept: pixels count as bytes, so that wider ones give the first bytes of the subset's rows.
std::optional<ByteWindow> CutWindow(ErdasImg& image, double x, double y, std::int32_t size) {
  const auto col = TruncateToInt(x);
  const auto row = TruncateToInt(y);
  if (!HasMiddle(size) || !col || !row) return std::nullopt;
  const std::int32_t half = size / 2;
  const auto [cols, rows] = image.GetSize();
  const auto lies = [half](std::int64_t centre, std::int64_t n) {
    return centre >= half && centre + half < n;
  };
  if (!lies(*col, cols) || !lies(*row, rows)) return std::nullopt;
  const BandArray& subset = image.GetSubset(*col - half, *col + half, *row - half, *row + half);
  const auto nBytes = static_cast<std::size_t>(size) * static_cast<std::size_t>(size);
  const auto bytes = subset.GetBand(0);
  if (bytes.size() < nBytes) return std::nullopt;
  return ByteWindow{bytes.first(nBytes), size};
}

void StartFeature(FeaturePoint& feature, double x, double y, std::size_t nValues) {
  feature.x = x;
  feature.y = y;
  feature.scale = 1.0;
  feature.orientation = 0.0;
  feature.values.clear();
  feature.values.reserve(nValues);
}

// Without `normalize` the values stay as they are. A window of zeros has the mean 0, and its values become
// what the division gives.
void NormalizeFeature(FeaturePoint& feature, const ByteWindow& window, bool normalize) {
  if (!normalize) return;
  const double mean = window.GetMean();
  for (double& value : feature.values) value /= mean;
}

// The steps inwards from the ring that lies `k` pixels around the window's centre, 8 k of them: up the right
// side, along the top to the left, down the left side, along the bottom to the right. Corners belong to the
// sides.
void AppendRing(const ByteWindow& window, std::int64_t k, std::vector<double>& values) {
  const std::int64_t c = window.size / 2;
  // The pixel at (dy, dx) from the centre less the one a step closer to it: sideways, up or down, or both.
  const auto append = [&](std::int64_t dy, std::int64_t dx, std::int64_t rowStep, std::int64_t colStep) {
    const int inner = window.At(c + dy + rowStep, c + dx + colStep);
    values.push_back(window.At(c + dy, c + dx) - inner);
  };
  const auto rowStep = [k](std::int64_t dy) { return dy == k ? -1 : dy == -k ? 1 : 0; };
  for (std::int64_t dy = k; dy >= -k; --dy) append(dy, k, rowStep(dy), -1);
  for (std::int64_t dx = k - 1; dx > -k; --dx) append(-k, dx, 1, 0);
  for (std::int64_t dy = -k; dy <= k; ++dy) append(dy, -k, rowStep(dy), 1);
  for (std::int64_t dx = 1 - k; dx < k; ++dx) append(k, dx, -1, 0);
}

// A block of pixels; its first row and column count from the window's centre.
struct Region {
  int firstRow;
  int firstCol;
  int nRows;
  int nCols;
};

constexpr std::int32_t kSpiralSize = 17;

// The centre and its neighbours, then four rings of eight blocks; all clockwise from the top.
// clang-format off
constexpr std::array<Region, 41> kSpiral = {{
    {0, 0, 1, 1},
    {-1, 0, 1, 1}, {-1, 1, 1, 1}, {0, 1, 1, 1}, {1, 1, 1, 1}, {1, 0, 1, 1}, {1, -1, 1, 1}, {0, -1, 1, 1}, {-1, -1, 1, 1},
    {-2, 0, 1, 2}, {-2, 2, 2, 1}, {0, 2, 2, 1}, {2, 1, 1, 2}, {2, -1, 1, 2}, {1, -2, 2, 1}, {-1, -2, 2, 1}, {-2, -2, 1, 2},
    {-3, 0, 1, 3}, {-3, 3, 3, 1}, {0, 3, 3, 1}, {3, 1, 1, 3}, {3, -2, 1, 3}, {1, -3, 3, 1}, {-2, -3, 3, 1}, {-3, -3, 1, 3},
    {-5, 0, 2, 4}, {-4, 4, 4, 2}, {0, 4, 4, 2}, {4, 1, 2, 4}, {4, -3, 2, 4}, {1, -5, 4, 2}, {-3, -5, 4, 2}, {-5, -4, 2, 4},
    {-8, 0, 3, 6}, {-6, 6, 6, 3}, {0, 6, 6, 3}, {6, 1, 3, 6}, {6, -5, 3, 6}, {1, -8, 6, 3}, {-5, -8, 6, 3}, {-8, -6, 3, 6},
}};
// clang-format on

// The mean of the block's pixels, cut to a whole number.
int MeanOf(const ByteWindow& window, const Region& region) {
  const std::int64_t c = window.size / 2;
  int sum = 0;
  for (int row = 0; row < region.nRows; ++row) {
    for (int col = 0; col < region.nCols; ++col) {
      sum += window.At(c + region.firstRow + row, c + region.firstCol + col);
    }
  }
  return sum / (region.nRows * region.nCols);
}

// Whether the point lies at least `margin` pixels from the outermost pixels of the image.
bool IsWithinMargin(const ImageSize& size, const Point2& point, std::int32_t margin) {
  const double first = margin;
  return point.x >= first && point.x <= size.cx - 1.0 - first && point.y >= first &&
         point.y <= size.cy - 1.0 - first;
}

// Whether the machine can hold `nValues` values for each of the points within the margin.
bool IsRoomFor(const ImageSize& size, const std::vector<Point2>& points, std::int32_t margin,
               double nValues) {
  const auto nPoints = std::count_if(
      points.begin(), points.end(), [&](const Point2& point) { return IsWithinMargin(size, point, margin); });
  return static_cast<double>(nPoints) * nValues * sizeof(double) <
         0.5 * static_cast<double>(BytesOfMachine());
}

// The features of points within the margin, as far as they have one, with ids from 0. 1; -2, with an empty
// list, without memory for `nValues` values each.
template <typename Describe>
int DescribePoints(const ImageSize& size, const std::vector<Point2>& points, std::int32_t margin,
                   double nValues, FeaturePointList& features, Describe describe) {
  if (!IsRoomFor(size, points, margin, nValues)) return -2;
  try {
    for (const Point2& point : points) {
      FeaturePoint feature{.id = static_cast<std::int32_t>(features.size())};
      if (!IsWithinMargin(size, point, margin) || describe(point, feature) < 0) continue;
      features.push_back(std::move(feature));
    }
    return 1;
  } catch (const std::bad_alloc&) {
    features = FeaturePointList();
    return -2;
  }
}

}  // namespace

int ImgProcess::StructuralFeature(ErdasImg& image, double x, double y, std::int32_t windowSize,
                                  FeaturePoint& feature, bool normalize) {
  const auto window = CutWindow(image, x, y, windowSize);
  if (!window) return -1;
  StartFeature(feature, x, y, window->bytes.size() - 1);
  for (std::int64_t k = 1; k <= windowSize / 2; ++k) AppendRing(*window, k, feature.values);
  NormalizeFeature(feature, *window, normalize);
  return 1;
}

int ImgProcess::StructuralFeatures(ErdasImg& image, const std::vector<Point2>& points,
                                   std::int32_t windowSize, FeaturePointList& features, bool normalize) {
  features.clear();
  const ImageSize size = image.GetSize();
  if (!HasMiddle(windowSize)) return 1;
  const auto describe = [&](const Point2& point, FeaturePoint& feature) {
    return StructuralFeature(image, point.x, point.y, windowSize, feature, normalize);
  };
  return DescribePoints(size, points, windowSize, 1.0 * windowSize * windowSize, features, describe);
}

int ImgProcess::SpiralFeature(ErdasImg& image, double x, double y, std::int32_t, FeaturePoint& feature,
                              bool normalize) {
  const auto window = CutWindow(image, x, y, kSpiralSize);
  if (!window) return -1;
  StartFeature(feature, x, y, kSpiral.size());
  for (const Region& region : kSpiral) feature.values.push_back(MeanOf(*window, region));
  NormalizeFeature(feature, *window, normalize);
  return 1;
}

int ImgProcess::SpiralFeatures(ErdasImg& image, const std::vector<Point2>& points, std::int32_t windowSize,
                               FeaturePointList& features, bool normalize) {
  features.clear();
  const auto describe = [&](const Point2& point, FeaturePoint& feature) {
    return SpiralFeature(image, point.x, point.y, windowSize, feature, normalize);
  };
  return DescribePoints(image.GetSize(), points, windowSize, kSpiral.size(), features, describe);
}

}  // namespace corvane
