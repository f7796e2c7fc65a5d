#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "erdasimg/BandPixels.h"
#include "erdasimg/ErdasImg.h"
#include "io/InputFile.h"
#include "numerics/Histogram.h"
#include "numerics/Truncate.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// Band 0 as bytes, one a pixel.
struct BytePixels {
  explicit BytePixels(const ErdasImg& image)
      : held(image.m_bands.GetBand(0)), cols(image.m_header.cols), rows(image.m_header.rows) {
    const auto nPixels = static_cast<std::size_t>(std::int64_t{std::max(rows, 0)} * std::max(cols, 0));
    held = held.first(std::min(held.size(), nPixels));
    nMissing = nPixels - held.size();
  }

  bool IsInside(std::int64_t row, std::int64_t col) const {
    return row >= 0 && row < rows && col >= 0 && col < cols;
  }
  int At(std::int64_t row, std::int64_t col) const {
    const auto index = static_cast<std::size_t>(row * cols + col);
    return index < held.size() ? held[index] : 0;
  }
  // The pixels of a row from a column on, as far as they are there.
  std::span<const std::uint8_t> RowFrom(std::int64_t row, std::int64_t col, std::int64_t count) const {
    const std::size_t index = static_cast<std::size_t>(row * cols + col);
    if (index >= held.size()) return {};
    return held.subspan(index, std::min(static_cast<std::size_t>(count), held.size() - index));
  }

  std::span<const std::uint8_t> held;
  std::size_t nMissing = 0;  // pixels behind the end of the band, which are 0
  std::int32_t cols;
  std::int32_t rows;
};

// Sums of bytes: whole numbers, so that their order does not matter. They are made in 32 bits as far as these
// last, which is several times as fast as in 64.
constexpr std::size_t kShortSum = 65536;  // squares of bytes

struct ByteSums {
  std::uint64_t sum = 0;
  std::uint64_t sumSq = 0;
  std::uint64_t products = 0;  // with other bytes

  void Add(std::span<const std::uint8_t> bytes) {
    for (std::size_t first = 0; first < bytes.size(); first += kShortSum) {
      std::uint32_t partSum = 0;
      std::uint32_t partSq = 0;
      for (const std::uint32_t byte : bytes.subspan(first, std::min(kShortSum, bytes.size() - first))) {
        partSum += byte;
        partSq += byte * byte;
      }
      sum += partSum;
      sumSq += partSq;
    }
  }

  void AddProducts(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b) {
    const std::size_t count = std::min(a.size(), b.size());
    for (std::size_t first = 0; first < count; first += kShortSum) {
      const std::size_t end = std::min(first + kShortSum, count);
      std::uint32_t part = 0;
      for (std::size_t i = first; i < end; ++i) part += std::uint32_t{a[i]} * b[i];
      products += part;
    }
  }
};

constexpr std::int64_t kBlock = 1 << 16;  // bytes read at a time, whole pixels

// Adds pixels that are floats or doubles; a pixel that one side lacks is 0 there.
template <typename Pixel>
void AddPixels(const BandPixels<Pixel>& to, std::int64_t first, const BandPixels<Pixel>& from,
               std::int64_t count) {
  for (std::int64_t i = 0; i < count; ++i) to.Set(first + i, to.Get(first + i) + from.Get(i));
}

// Calls `add` with a pixel of the image's type if that is one of floating point.
template <typename Add>
void WithAddedType(const ErdasImg& image, Add add) {
  WithPixelType(image.m_header.packType, [&](auto pixel) {
    if constexpr (std::is_floating_point_v<decltype(pixel)>) add(pixel);
  });
}

// Adds the next line of a .lan, block by block. False if it is not whole.
template <typename Pixel>
bool AddLine(InputFile& file, const BandPixels<Pixel>& to, std::int64_t first, std::int32_t cols) {
  std::array<std::uint8_t, kBlock> block;
  std::int64_t nLeft = std::int64_t{cols} * static_cast<std::int64_t>(sizeof(Pixel));
  while (nLeft > 0) {
    const auto size = static_cast<std::size_t>(std::min(nLeft, kBlock));
    const std::size_t got = file.Read(block.data(), size);
    const auto nPixels = static_cast<std::int64_t>(got / sizeof(Pixel));
    AddPixels(to, first, BandPixels<Pixel>({block.data(), got}, sizeof(Pixel), 1, cols), nPixels);
    if (got < size) return false;
    first += nPixels;
    nLeft -= static_cast<std::int64_t>(size);
  }
  return true;
}

// Adds the lines of a .lan behind its header. False if one is not whole.
template <typename Pixel>
bool AddLines(const ErdasImg& image, InputFile& file) {
  const std::int32_t nRows = image.GetBandCount() > 0 ? image.m_header.rows : 0;
  for (std::int32_t row = 0; row < nRows; ++row) {
    for (std::int32_t band = 0; band < image.GetBandCount(); ++band) {
      const BandPixels<Pixel> to(image, band);
      if (!AddLine(file, to, to.IndexOf(row, 0), image.m_header.cols)) return false;
    }
  }
  return true;
}

// Cuts the window out as the subset. False if there is none.
bool CutCentred(ErdasImg& image, std::int32_t col, std::int32_t row, std::int32_t width,
                std::int32_t height) {
  if (width <= 0 || height <= 0) return false;
  const std::int64_t x0 = std::int64_t{col} - width / 2;
  const std::int64_t y0 = std::int64_t{row} - height / 2;
  const std::int64_t x1 = x0 + width - 1;
  const std::int64_t y1 = y0 + height - 1;
  if (std::min(x0, y0) < INT32_MIN || std::max(x1, y1) > INT32_MAX) return false;
  return static_cast<bool>(image.GetSubset(static_cast<std::int32_t>(x0), static_cast<std::int32_t>(x1),
                                           static_cast<std::int32_t>(y0), static_cast<std::int32_t>(y1)));
}

template <typename Pixel>
BandPixels<Pixel> SubsetPixels(const ErdasImg& image, std::int32_t band) {
  return {image.m_subset.GetBand(band), image.m_bytesPerPixel, image.m_subsetSize.cy, image.m_subsetSize.cx};
}

struct Range {
  double min = std::numeric_limits<double>::infinity();
  double max = -std::numeric_limits<double>::infinity();
};

template <typename Pixel>
Range RangeOf(const BandPixels<Pixel>& pixels) {
  Range range;
  for (std::int64_t i = 0; i < pixels.GetCount(); ++i) {
    const double value = static_cast<double>(pixels.Get(i));
    if (value < range.min) range.min = value;
    if (value > range.max) range.max = value;
  }
  return range;
}

// The entropy of the pixels' distribution over 256 bins of width 1 from 0 on; others fall into no bin.
template <typename Pixel>
double EntropyOf(const BandPixels<Pixel>& pixels) {
  std::array<std::int64_t, 256> bins = {};
  for (std::int64_t i = 0; i < pixels.GetCount(); ++i) {
    const double value = static_cast<double>(pixels.Get(i));
    if (value >= 0.0 && value < 256.0) ++bins[static_cast<std::size_t>(value)];
  }
  return HistogramEntropy(pixels.GetCount(), bins);
}

int ProminenceAt(const BytePixels& pixels, std::int64_t col, std::int64_t row, double threshold) {
  if (!pixels.IsInside(row, col)) return 0;
  const int v = pixels.At(row, col);
  for (std::int64_t i = 0; i < 9; ++i) {
    const std::int64_t neighbourRow = row - 1 + i / 3;
    const std::int64_t neighbourCol = col - 1 + i % 3;
    if (!pixels.IsInside(neighbourRow, neighbourCol)) continue;
    const int w = pixels.At(neighbourRow, neighbourCol);
    if (w == v) continue;
    const double difference = std::abs(w - v);
    if (difference / std::max(w, v) > threshold) return w > v ? 1 : 2;
  }
  return 0;
}

// From `first` to `last`, both included.
struct Interval {
  std::int64_t first;
  std::int64_t last;

  Interval CutTo(const Interval& other) const {
    return {std::max(first, other.first), std::min(last, other.last)};
  }
};

// The circles around a start, as far as they cross the image. The circle of radius r has pixels at each
// column dx from the start, -r to r, in the rows trunc(row - h - 0.5) and trunc(row + h + 0.5), where
// h = sqrt(r^2 - dx^2). These are rows of the image only for h between two bounds. Walking no more than these
// parts, all circles together take about as long as a walk over the image, however far away the start is.
class Circles {
 public:
  Circles(const BytePixels& pixels, std::int32_t col, std::int32_t row) {
    if (pixels.held.empty()) return;
    // Pixels behind the end of the band and their neighbours are all 0.
    const auto nHeld = static_cast<std::int64_t>(pixels.held.size());
    const std::int64_t nCols = std::min<std::int64_t>(pixels.cols, nHeld + 1);
    const std::int64_t nRows = std::min<std::int64_t>(pixels.rows, (nHeld - 1) / pixels.cols + 2);
    columns_ = {-std::int64_t{col}, nCols - 1 - col};
    leastH_ = std::max({0.0, static_cast<double>(row - nRows) - 0.5, -1.5 - row});
    mostH_ = std::max(row + 0.5, static_cast<double>(nRows - row) - 0.5);
    const auto nearest = static_cast<double>(std::max({std::int64_t{0}, columns_.first, -columns_.last}));
    const auto furthest = static_cast<double>(std::max(-columns_.first, columns_.last));
    radii_ = {std::max(Down(std::hypot(nearest, leastH_)), std::int64_t{1}),
              Up(std::hypot(furthest, mostH_))};
  }

  // The radii of circles that may have pixels in the image.
  Interval GetRadii() const { return radii_; }

  // The columns, from the start, where the circle may have pixels in the image, from left to right.
  std::array<Interval, 2> ColumnsOf(std::int64_t r) const {
    const std::int64_t inner = Down(LegOf(r, mostH_));
    const std::int64_t outer = std::min(Up(LegOf(r, leastH_)), r);
    return {Interval{-outer, -inner}.CutTo(columns_),
            Interval{std::max(inner, std::int64_t{1}), outer}.CutTo(columns_)};
  }

 private:
  // Whole numbers that are surely not greater, or not less, whatever was rounded.
  static std::int64_t Down(double x) { return std::max(TruncateTo64(x) - 1, std::int64_t{0}); }
  static std::int64_t Up(double x) { return TruncateTo64(x) + 2; }

  // The other leg of a right triangle; 0 if the given one is longer than the hypotenuse.
  static double LegOf(std::int64_t hypotenuse, double leg) {
    const auto c = static_cast<double>(hypotenuse);
    return std::sqrt(std::max((c - leg) * (c + leg), 0.0));
  }

  Interval columns_ = {0, -1};
  Interval radii_ = {1, 0};
  double leastH_ = 0.0;
  double mostH_ = 0.0;
};

// The first prominent pixel of a part of a circle goes to `col` and `row`. Its prominence; 0 if there is
// none.
int ProminenceIn(const BytePixels& pixels, std::int64_t r, const Interval& columns, std::int32_t& col,
                 std::int32_t& row, double threshold) {
  for (std::int64_t dx = columns.first; dx <= columns.last; ++dx) {
    const double h = std::sqrt(static_cast<double>(r * r - dx * dx));
    for (const double place : {row - h - 0.5, row + h + 0.5}) {
      const std::int64_t y = TruncateTo64(place);
      const int result = ProminenceAt(pixels, col + dx, y, threshold);
      if (result == 0) continue;
      col = static_cast<std::int32_t>(col + dx);
      row = static_cast<std::int32_t>(y);
      return result;
    }
  }
  return 0;
}

}  // namespace

void ErdasImg::ComputeSums() {
  ByteSums sums;
  sums.Add(BytePixels(*this).held);
  m_pixelSum = static_cast<double>(sums.sum);
  m_pixelSumSq = static_cast<double>(sums.sumSq);
}

void ErdasImg::ComputeSumsExcept(std::uint8_t value) {
  const BytePixels pixels(*this);
  ByteSums sums;
  sums.Add(pixels.held);
  const auto nLeftOut = static_cast<std::uint64_t>(std::count(pixels.held.begin(), pixels.held.end(), value));
  const std::uint64_t nTaken = pixels.held.size() - nLeftOut + (value != 0 ? pixels.nMissing : 0);
  m_pixelSum = static_cast<double>(sums.sum - nLeftOut * value);
  m_pixelSumSq = static_cast<double>(sums.sumSq - nLeftOut * value * value);
  m_pixelCount = static_cast<std::int32_t>(std::min<std::uint64_t>(nTaken, INT32_MAX));
}

int ErdasImg::AddImage(const ErdasImg& other) {
  if (!SameGeometry(other)) return -1;
  WithAddedType(*this, [&](auto pixel) {
    for (std::int32_t band = 0; band < GetBandCount(); ++band) {
      const BandPixels<decltype(pixel)> to(*this, band);
      const BandPixels<decltype(pixel)> from(other, band);
      AddPixels(to, 0, from, std::min(to.GetHeldCount(), from.GetHeldCount()));
    }
  });
  return 1;
}

int ErdasImg::AddImage(const std::string& path) {
  InputFile file(path);
  if (!file.IsOpen()) {
    ShowWarning(OpenErrorText(path));
    return -1;
  }
  ErdasImg other;
  bool isWhole = file.Read(&other.m_header, sizeof other.m_header) == sizeof other.m_header;
  if (isWhole) {
    if (!SameGeometry(other)) return -1;
    if (m_header.cols <= 0) return 1;
    WithAddedType(*this, [&](auto pixel) { isWhole = AddLines<decltype(pixel)>(*this, file); });
  }
  if (isWhole) return 1;
  ShowWarning(OpenErrorText(path) + "\nIt is cut short.");
  return -1;
}

bool ErdasImg::IsUniform3x3(std::int32_t band, std::int32_t row, std::int32_t col) const {
  return WithPixelType(m_header.packType, [&](auto type) {
    const BandPixels<decltype(type)> pixels(*this, band);
    if (!pixels.IsInside(row, col)) return false;
    const auto first = pixels.Get(pixels.IndexOf(row, col));
    for (std::int64_t i = 0; i < 9; ++i) {
      const std::int64_t blockRow = row + i / 3;
      const std::int64_t blockCol = col + i % 3;
      if (!pixels.IsInside(blockRow, blockCol)) continue;
      if (pixels.Get(pixels.IndexOf(blockRow, blockCol)) != first) return false;
    }
    return true;
  });
}

bool ErdasImg::IsLocalMax(std::int32_t band, std::int32_t row, std::int32_t col) const {
  return WithPixelType(m_header.packType, [&](auto type) {
    const BandPixels<decltype(type)> pixels(*this, band);
    if (!pixels.IsInside(row, col)) return false;
    const auto centre = pixels.Get(pixels.IndexOf(row, col));
    for (std::int64_t i = 0; i < 9; ++i) {
      const std::int64_t neighbourRow = std::int64_t{row} - 1 + i / 3;
      const std::int64_t neighbourCol = std::int64_t{col} - 1 + i % 3;
      if (i == 4 || !pixels.IsInside(neighbourRow, neighbourCol)) continue;
      if (pixels.Get(pixels.IndexOf(neighbourRow, neighbourCol)) >= centre) return false;
    }
    return true;
  });
}

int ErdasImg::IsProminent(std::int32_t col, std::int32_t row, double threshold) const {
  return ProminenceAt(BytePixels(*this), col, row, threshold);
}

int ErdasImg::FindProminent(std::int32_t& col, std::int32_t& row, std::int32_t radius,
                            double threshold) const {
  const BytePixels pixels(*this);
  const Circles circles(pixels, col, row);
  const Interval radii = circles.GetRadii().CutTo({1, radius});
  for (std::int64_t r = radii.first; r <= radii.last; ++r) {
    for (const Interval& columns : circles.ColumnsOf(r)) {
      const int result = ProminenceIn(pixels, r, columns, col, row, threshold);
      if (result != 0) return result;
    }
  }
  return 0;
}

double ErdasImg::CorrelateWindow(const ErdasImg& pattern, std::int32_t col, std::int32_t row,
                                 const ErdasImg& other) {
  const BytePixels ours(pattern);
  const BytePixels theirs(other);
  if (ours.cols <= 0 || ours.rows <= 0) return 0.0;
  const std::int64_t left = std::int64_t{col} - ours.cols / 2;
  const std::int64_t top = std::int64_t{row} - ours.rows / 2;
  // The part of the window that is in the image; what lies outside of it is 0.
  const std::int64_t firstCol = std::max<std::int64_t>(-left, 0);
  const std::int64_t nCols = std::min<std::int64_t>(ours.cols, theirs.cols - left) - firstCol;
  const std::int64_t firstRow = std::max<std::int64_t>(-top, 0);
  const std::int64_t endRow = std::min<std::int64_t>(ours.rows, theirs.rows - top);
  ByteSums sums;
  for (std::int64_t i = firstRow; nCols > 0 && i < endRow; ++i) {
    const auto window = theirs.RowFrom(top + i, left + firstCol, nCols);
    sums.Add(window);
    sums.AddProducts(ours.RowFrom(i, firstCol, nCols), window);
  }
  const double n = static_cast<double>(ours.cols) * ours.rows;
  const double s = static_cast<double>(sums.sum);
  const double a = pattern.m_pixelSumSq - pattern.m_pixelSum * pattern.m_pixelSum / n;
  const double b = static_cast<double>(sums.sumSq) - s * s / n;
  if (a == 0.0 && b == 0.0) return 1.0;
  if (a == 0.0 || b == 0.0) return 0.0;
  return (static_cast<double>(sums.products) - s * pattern.m_pixelSum / n) / std::sqrt(a * b);
}

void ErdasImg::GetWindowStatistics(std::int32_t col, std::int32_t row, std::int32_t width,
                                   std::int32_t height, std::vector<double>& values) {
  if (!CutCentred(*this, col, row, width, height)) return;
  for (std::int32_t band = 0; band < GetBandCount(); ++band) {
    const Range range = WithPixelType(
        m_header.packType, [&](auto pixel) { return RangeOf(SubsetPixels<decltype(pixel)>(*this, band)); });
    values.push_back(range.min);
    values.push_back(range.max);
  }
}

void ErdasImg::GetWindowEntropy(std::int32_t col, std::int32_t row, std::int32_t width, std::int32_t height,
                                std::vector<double>& values) {
  if (!CutCentred(*this, col, row, width, height)) return;
  for (std::int32_t band = 0; band < GetBandCount(); ++band) {
    values.push_back(WithPixelType(m_header.packType, [&](auto pixel) {
      return EntropyOf(SubsetPixels<decltype(pixel)>(*this, band));
    }));
  }
}

}  // namespace corvane
