// Points that stand out: local maxima of a response, and prominent pixels.

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>

#include "ImgProcess/ImgProcess.h"
#include "erdasimg/BandPixels.h"
#include "numerics/SimdVersion.h"

namespace corvane {

namespace {

// The largest number of the type that is not above the threshold: one of the type exceeds it exactly where it
// exceeds the threshold.
template <typename Number>
Number ThresholdAs(double threshold) {
  const auto rounded = static_cast<Number>(threshold);
  return rounded > threshold ? std::nextafter(rounded, -std::numeric_limits<Number>::infinity()) : rounded;
}

// Marks the pixels i = 1 to n - 2 of a row that exceed the threshold and that none of their eight neighbours
// equals or exceeds. A neighbour that is not a number does neither.
template <typename Number>
struct MarkMaximaKernel {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const Number* above, const Number* row, const Number* below,
                                                Number threshold, std::uint8_t* __restrict marks,
                                                std::ptrdiff_t n) {
    for (std::ptrdiff_t i = 1; i < n - 1; ++i) {
      const Number centre = row[i];
      const bool isReached = (row[i - 1] >= centre) | (row[i + 1] >= centre) | (above[i - 1] >= centre) |
                             (above[i] >= centre) | (above[i + 1] >= centre) | (below[i - 1] >= centre) |
                             (below[i] >= centre) | (below[i + 1] >= centre);
      marks[i] = (centre > threshold) & !isReached;
    }
  }
};

// Calls visit(row, col) for the maxima of one row, whose neighbours above and below are given; beyond the
// image these hold no numbers.
template <typename Number, typename Visit>
class RowMaxima {
 public:
  RowMaxima(const ErdasImg& response, double threshold, Visit visit)
      : response_(response),
        threshold_(threshold),
        visit_(visit),
        cols_(response.GetSize().cx),
        beyond_(static_cast<std::size_t>(cols_), std::numeric_limits<Number>::quiet_NaN()),
        marks_(static_cast<std::size_t>(cols_) + kStep) {}

  void Find() {
    const std::int32_t rows = response_.GetSize().cy;
    for (std::int32_t row = 0; row < rows; ++row) {
      VisitEdge(row, 0);
      if (cols_ > 2) VisitMiddle(row);
      if (cols_ > 1) VisitEdge(row, cols_ - 1);
    }
  }

 private:
  static constexpr std::int32_t kStep = sizeof(std::uint64_t);

  const Number* LineOf(std::int32_t row) const {
    std::uint8_t* pixels = nullptr;
    response_.GetRowPointer(row, 0, pixels);
    return pixels ? reinterpret_cast<const Number*>(pixels) : beyond_.data();
  }

  void VisitEdge(std::int32_t row, std::int32_t col) {
    double value = 0.0;
    response_.GetPixel(0, row, col, value);
    if (value > threshold_ && response_.IsLocalMax(0, row, col)) visit_(row, col);
  }

  void VisitMiddle(std::int32_t row) {
    RunSimd<MarkMaximaKernel<Number>>(LineOf(row - 1), LineOf(row), LineOf(row + 1),
                                      ThresholdAs<Number>(threshold_), marks_.data(), std::ptrdiff_t{cols_});
    for (std::int32_t first = 0; first < cols_ - 1; first += kStep) {
      std::uint64_t marks = 0;
      std::memcpy(&marks, marks_.data() + first, sizeof marks);
      if (marks == 0) continue;
      for (std::int32_t col = first; col < first + kStep; ++col) {
        if (marks_[static_cast<std::size_t>(col)]) visit_(row, col);
      }
    }
  }

  const ErdasImg& response_;
  double threshold_;
  Visit visit_;
  std::int32_t cols_;
  std::vector<Number> beyond_;
  std::vector<std::uint8_t> marks_;  // of pixels 1 to cols - 2; others are never marked
};

template <typename Visit>
void FindMaximaPlainly(const ErdasImg& response, double threshold, Visit visit) {
  const auto [cols, rows] = response.GetSize();
  for (std::int32_t row = 0; row < rows; ++row) {
    for (std::int32_t col = 0; col < cols; ++col) {
      double value = 0.0;
      response.GetPixel(0, row, col, value);
      if (value > threshold && response.IsLocalMax(0, row, col)) visit(row, col);
    }
  }
}

// Calls visit(row, col) for the local maxima of band 0 above the threshold, row by row.
template <typename Visit>
void FindMaxima(const ErdasImg& response, double threshold, Visit visit) {
  WithPixelType(response.GetPackType(), [&](auto pixel) {
    using Pixel = decltype(pixel);
    if constexpr (std::is_floating_point_v<Pixel>) {
      const auto place = reinterpret_cast<std::uintptr_t>(response.GetBands()[0]);
      const BandPixels<Pixel> pixels(response, 0);
      if (pixels.IsPlain() && pixels.GetCount() > 0 && place % alignof(Pixel) == 0) {
        RowMaxima<Pixel, Visit>(response, threshold, visit).Find();
        return;
      }
    }
    FindMaximaPlainly(response, threshold, visit);
  });
}

// Between which values a pixel's neighbours must all be for it not to be prominent. (w - v) / w rises with w
// and falls with v, so that the greatest and the least neighbour decide.
struct ProminenceLimits {
  explicit ProminenceLimits(double threshold) {
    const auto stands = [threshold](int low, int high) {
      return static_cast<double>(high - low) / high > threshold;
    };
    for (int v = 0; v < 256; ++v) {
      int high = v + 1;
      while (high < 256 && !stands(v, high)) ++high;
      int low = v - 1;
      while (low >= 0 && !stands(low, v)) --low;
      most[static_cast<std::size_t>(v)] = static_cast<std::uint8_t>(high - 1);
      least[static_cast<std::size_t>(v)] = static_cast<std::uint8_t>(low + 1);
    }
  }

  std::array<std::uint8_t, 256> least;
  std::array<std::uint8_t, 256> most;
};

// The least and the greatest of the nine pixels around each pixel i = 1 to n - 2 of a row.
struct BlockRangeKernel {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const std::uint8_t* middle, std::ptrdiff_t cols,
                                                std::uint8_t* __restrict least,
                                                std::uint8_t* __restrict greatest) {
    for (std::ptrdiff_t i = 1; i < cols - 1; ++i) {
      std::uint8_t low = middle[i];
      std::uint8_t high = low;
      for (std::ptrdiff_t down = -1; down <= 1; ++down) {
        for (std::ptrdiff_t right = -1; right <= 1; ++right) {
          const std::uint8_t w = middle[i + down * cols + right];
          low = w < low ? w : low;
          high = w > high ? w : high;
        }
      }
      least[i] = low;
      greatest[i] = high;
    }
  }
};

// For an image that does not hold all of its pixels.
template <typename Visit>
void VisitProminentPlainly(const ErdasImg& image, double threshold, Visit visit) {
  const auto [cols, rows] = image.GetSize();
  for (std::int32_t row = 1; row < rows - 1; ++row) {
    for (std::int32_t col = 1; col < cols - 1; ++col) {
      if (image.IsProminent(col, row, threshold) != 0) visit(row, col);
    }
  }
}

// Calls visit(row, col) for the prominent pixels of band 0, row by row.
template <typename Visit>
void VisitProminent(const ErdasImg& image, double threshold, Visit visit) {
  const auto [cols, rows] = image.GetSize();
  const auto band = image.GetBands().GetBand(0);
  if (cols < 3 || rows < 3) return;
  const auto nCols = static_cast<std::size_t>(cols);
  if (band.size() < nCols * static_cast<std::size_t>(rows)) {
    VisitProminentPlainly(image, threshold, visit);
    return;
  }
  const ProminenceLimits limits(threshold);
  std::vector<std::uint8_t> least(nCols);
  std::vector<std::uint8_t> greatest(nCols);
  for (std::int32_t row = 1; row < rows - 1; ++row) {
    const std::uint8_t* const line = band.data() + static_cast<std::size_t>(row) * nCols;
    RunSimd<BlockRangeKernel>(line, static_cast<std::ptrdiff_t>(cols), least.data(), greatest.data());
    for (std::size_t col = 1; col + 1 < nCols; ++col) {
      const std::uint8_t v = line[col];
      if (least[col] < limits.least[v] || greatest[col] > limits.most[v])
        visit(row, static_cast<std::int32_t>(col));
    }
  }
}

// What `fill` puts into the list in place of what it holds. 1; -2, with an empty list, without memory.
template <typename List, typename Fill>
int Refill(List& list, Fill fill) {
  list.clear();
  try {
    fill();
    return 1;
  } catch (const std::bad_alloc&) {
    list = List();
    return -2;
  }
}

}  // namespace

int ImgProcess::ExtractCorners(const ErdasImg& response, const HarrisParam& param,
                               std::vector<Point2>& points) {
  return Refill(points, [&] {
    FindMaxima(response, param.threshold, [&](std::int32_t row, std::int32_t col) {
      points.push_back({static_cast<double>(col), static_cast<double>(row)});
    });
  });
}

int ImgProcess::ExtractCornerFeatures(const ErdasImg& response, const HarrisParam& param,
                                      FeaturePointList& features) {
  return Refill(features, [&] {
    FindMaxima(response, param.threshold, [&](std::int32_t row, std::int32_t col) {
      features.push_back({.id = static_cast<std::int32_t>(features.size()),
                          .y = static_cast<double>(row),
                          .x = static_cast<double>(col)});
    });
  });
}

int ImgProcess::ProminentPixels(const ErdasImg& image, double threshold, std::vector<double>& places) {
  return Refill(places, [&] {
    std::size_t count = 0;
    VisitProminent(image, threshold, [&](std::int32_t, std::int32_t) { ++count; });
    places.reserve(2 * count);
    VisitProminent(image, threshold, [&](std::int32_t row, std::int32_t col) {
      places.push_back(col);
      places.push_back(row);
    });
  });
}

}  // namespace corvane
