#include <algorithm>
#include <array>
#include <limits>
#include <new>

#include "ImgProcess/ImageFilter.h"
#include "ImgProcess/ImgProcess.h"
#include "ImgProcess/PointListFile.h"
#include "erdasimg/BandPixels.h"
#include "numerics/SimdVersion.h"

namespace corvane {

namespace {

constexpr std::uint8_t kMark = 255;

// Three rows of an image one above the other, each from the column before the first one to that behind the
// last one.
struct ThreeRows {
  const double* above;
  const double* centre;
  const double* below;
};

// The lesser one, or `b` if one is not a number.
[[gnu::always_inline]] inline double Lesser(double a, double b) {
  return a < b ? a : b;
}

// Conditions are joined with & and |, not && and ||, so that loops over pixels become vector code.

// Whether a pixel equal to 0 is a crossing for a pair of opposite neighbours.
[[gnu::always_inline]] inline bool LiesBetween(double a, double b, double threshold) {
  return ((a < 0.0) & (a + 2.0 * threshold < b)) | ((a > 0.0) & (a - 2.0 * threshold > b));
}

[[gnu::always_inline]] inline bool IsCrossedZero(const ThreeRows& rows, double threshold, std::ptrdiff_t i) {
  const bool falling = LiesBetween(rows.above[i], rows.below[i + 2], threshold);
  const bool upright = LiesBetween(rows.above[i + 1], rows.below[i + 1], threshold);
  const bool rising = LiesBetween(rows.above[i + 2], rows.below[i], threshold);
  const bool level = LiesBetween(rows.centre[i], rows.centre[i + 2], threshold);
  return (rows.centre[i + 1] == 0.0) & (falling | upright | rising | level);
}

[[gnu::always_inline]] inline bool IsCrossedAbove(const ThreeRows& rows, double threshold, std::ptrdiff_t i) {
  // Some neighbour is below a number if the least one is.
  double least = std::numeric_limits<double>::infinity();
  for (std::ptrdiff_t k = 0; k < 3; ++k) {
    least = Lesser(rows.above[i + k], least);
    least = Lesser(rows.centre[i + k], least);  // the pixel itself is not below where it is above 0
    least = Lesser(rows.below[i + k], least);
  }
  const double c = rows.centre[i + 1];
  return (c > 0.0) & (least < Lesser(c - threshold, 0.0));
}

// Without `withZeros` the middle row is known to hold no pixel equal to 0.
template <bool withZeros>
struct MarkKernel {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(ThreeRows rows, double threshold,
                                                std::uint8_t* __restrict marks, std::ptrdiff_t n) {
    for (std::ptrdiff_t i = 0; i < n; ++i) {
      bool isMarked = IsCrossedAbove(rows, threshold, i);
      if constexpr (withZeros) isMarked |= IsCrossedZero(rows, threshold, i);
      marks[i] = isMarked ? kMark : 0;
    }
  }
};

struct FindZeroKernel {
  template <std::size_t width>
  [[gnu::always_inline]] static inline bool Run(const double* values, std::ptrdiff_t n) {
    int found = 0;
    for (std::ptrdiff_t i = 0; i < n; ++i) found |= values[i] == 0.0 ? 1 : 0;
    return found != 0;
  }
};

// The rows of band 0 as doubles, with the edges repeated: three of them at a time.
template <typename Pixel>
class PaddedRows {
 public:
  explicit PaddedRows(const ErdasImg& image)
      : nCols_(image.m_header.cols),
        lastRow_(image.m_header.rows - 1),
        filter_(image, 0, {}, {0, image.m_header.cols}) {
    for (auto& line : lines_) line.resize(static_cast<std::size_t>(nCols_) + 2);
  }

  // Rows are asked for one after the other, from 0 on.
  ThreeRows Around(std::int32_t row) {
    for (; nRead_ <= std::min(row + 1, lastRow_); ++nRead_) Read(Line(nRead_));
    return {Line(std::max(row - 1, 0)), Line(row), Line(std::min(row + 1, lastRow_))};
  }

 private:
  double* Line(std::int32_t row) { return lines_[static_cast<std::size_t>(row) % lines_.size()].data(); }

  void Read(double* line) {
    filter_.NextRow(line + 1);
    line[0] = line[1];
    line[nCols_ + 1] = line[nCols_];
  }

  std::ptrdiff_t nCols_;
  std::int32_t lastRow_;
  std::int32_t nRead_ = 0;
  SeparableFilter<Pixel, double> filter_;
  std::array<std::vector<double>, 3> lines_;
};

// Stores a row of marks in band 0.
void StoreMarks(ErdasImg& result, std::int32_t row, const std::vector<std::uint8_t>& marks) {
  WithPixelType(result.GetPackType(), [&](auto type) {
    using Pixel = decltype(type);
    const BandPixels<Pixel> pixels(result, 0);
    std::int64_t index = pixels.IndexOf(row, 0);
    for (const std::uint8_t mark : marks) pixels.Set(index++, PixelFrom<Pixel>(mark));
  });
}

template <typename Pixel>
void MarkCrossings(const ErdasImg& image, double threshold, ErdasImg& result) {
  const auto [cols, rows] = image.GetSize();
  PaddedRows<Pixel> padded(image);
  std::vector<std::uint8_t> marks(static_cast<std::size_t>(cols));
  const std::ptrdiff_t nCols = cols;
  for (std::int32_t row = 0; row < rows; ++row) {
    const ThreeRows around = padded.Around(row);
    if (RunSimd<FindZeroKernel>(around.centre + 1, nCols)) {
      RunSimd<MarkKernel<true>>(around, threshold, marks.data(), nCols);
    } else {
      RunSimd<MarkKernel<false>>(around, threshold, marks.data(), nCols);
    }
    StoreMarks(result, row, marks);
  }
}

bool IsReal(const ErdasImg& image) {
  return image.GetPackType() == kPackFloat || image.GetPackType() == kPackDouble;
}

template <typename Pixel>
void WriteMarks(const ErdasImg& image, std::int32_t band, PointListFile& file) {
  const BandPixels<Pixel> pixels(image, band);
  const std::int64_t nHeld = pixels.GetHeldCount();
  for (std::int64_t i = 0; i < nHeld; ++i) {
    if (!(pixels.Get(i) > 0)) continue;
    file.Add([&](std::string& line) {
      AppendInt(line, i % image.m_header.cols);
      AppendInt(line += ", ", i / image.m_header.cols);
    });
  }
}

}  // namespace

int ImgProcess::ZeroCrossing(const ErdasImg& image, double threshold, ErdasImg& result) {
  if (!image.HasPixels() || image.GetSize() != result.GetSize() || !HoldsItsPixels(result)) return -1;
  if (!IsReal(image) || image.GetBytesPerPixel() != BytesOfPackType(image.GetPackType())) return 1;
  try {
    if (image.GetPackType() == kPackFloat) {
      MarkCrossings<float>(image, threshold, result);
    } else {
      MarkCrossings<double>(image, threshold, result);
    }
  } catch (const std::bad_alloc&) {
    return -2;
  }
  return 1;
}

int ImgProcess::WriteMarkedPixels(const ErdasImg& image, const std::string& path, std::int64_t* nMarked) {
  PointListFile file(path);
  for (std::int32_t band = 0; band < image.GetBandCount(); ++band) {
    if (image.GetPackType() == kPackByte) WriteMarks<std::uint8_t>(image, band, file);
    if (image.GetPackType() == kPackFloat) WriteMarks<float>(image, band, file);
    if (image.GetPackType() == kPackDouble) WriteMarks<double>(image, band, file);
  }
  if (nMarked) *nMarked = file.GetCount();
  return file.Commit();
}

}  // namespace corvane
