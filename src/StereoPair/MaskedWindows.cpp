#include "StereoPair/MaskedWindows.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

#include "StereoPair/StereoPair.h"
#include "StereoPair/WindowBytes.h"
#include "StereoPair/WindowSimilarity.h"
#include "numerics/Truncate.h"

namespace corvane {

bool IsDisparity(double value) {
  return std::isfinite(value) && value != StereoPair::kNoDisparity;
}

// Sums over pixels that have a disparity: whole numbers, so that their order does not matter.
struct MaskedWindows::Sums {
  std::uint64_t n = 0;
  std::uint64_t a = 0;  // left
  std::uint64_t aa = 0;
  std::uint64_t b = 0;  // right
  std::uint64_t bb = 0;
  std::uint64_t ab = 0;

  void Add(std::uint32_t left, std::uint32_t right) {
    ++n;
    a += left;
    aa += left * left;
    b += right;
    bb += right * right;
    ab += left * right;
  }

  // Adds a run of pixels, right ones that are not matched being 0. Up to kShortRun at a time the sums fit 32
  // bits, which is several times as fast as 64.
  void AddRun(const std::uint8_t* left, const std::uint8_t* right, const std::uint8_t* isMatched,
              std::size_t nPixels) {
    constexpr std::size_t kShortRun = 65536;
    for (; nPixels > 0; nPixels -= std::min(nPixels, kShortRun)) {
      const std::size_t nShort = std::min(nPixels, kShortRun);
      std::uint32_t part[6] = {};
      for (std::size_t i = 0; i < nShort; ++i) {
        const std::uint32_t l = std::uint32_t{left[i]} * isMatched[i];
        const std::uint32_t r = right[i];
        part[0] += isMatched[i];
        part[1] += l;
        part[2] += l * l;
        part[3] += r;
        part[4] += r * r;
        part[5] += l * r;
      }
      n += part[0];
      a += part[1];
      aa += part[2];
      b += part[3];
      bb += part[4];
      ab += part[5];
      left += nShort;
      right += nShort;
      isMatched += nShort;
    }
  }

  double GetCoefficient() const {
    if (n < 2) return 0.0;
    CorrelationSums sums;
    sums.n = static_cast<double>(n);
    sums.a = static_cast<double>(a);
    sums.aa = static_cast<double>(aa);
    sums.b = static_cast<double>(b);
    sums.bb = static_cast<double>(bb);
    sums.ab = static_cast<double>(ab);
    return sums.GetCoefficient();
  }
};

MaskedWindows::MaskedWindows(const ErdasImg& left, const ErdasImg& right, const ErdasImg& disparities,
                             std::int32_t width, std::int32_t height)
    : right_(right), size_(left.GetSize()), width_(width), height_(height) {
  const auto nCols = static_cast<std::size_t>(std::max(size_.cx, 0));
  const std::size_t nPixels = nCols * static_cast<std::size_t>(std::max(size_.cy, 0));
  left_.resize(nPixels);
  matched_.resize(nPixels);
  isMatched_.resize(nPixels);
  std::vector<double> row(nCols);
  for (std::int32_t y = 0; y < size_.cy; ++y) {
    CopyBytes(left, y, 0, std::span(left_).subspan(IndexOf(y, 0), nCols));
    std::fill(row.begin(), row.end(), std::numeric_limits<double>::quiet_NaN());
    disparities.GetPixelRow(0, y, 0, row);
    for (std::int32_t x = 0; x < size_.cx; ++x) SetDisparity(y, x, row[static_cast<std::size_t>(x)]);
  }
}

void MaskedWindows::SetDisparity(std::int32_t row, std::int32_t col, double disparity) {
  const bool isOne = IsDisparity(disparity);
  isMatched_[IndexOf(row, col)] = isOne ? 1 : 0;
  matched_[IndexOf(row, col)] = isOne ? RightAt(row, col, disparity) : 0;
}

double MaskedWindows::CompareMasked(std::int32_t row, std::int32_t col, double disparity) const {
  const auto fit = [](std::int64_t pixel, std::int32_t nPixels) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(pixel, 0, nPixels));
  };
  const std::int64_t left = std::int64_t{col} - width_ / 2;
  const std::int64_t top = std::int64_t{row} - height_ / 2;
  const std::int32_t firstCol = fit(left, size_.cx);
  const std::int32_t endRow = fit(top + height_, size_.cy);
  const auto nCols = static_cast<std::size_t>(fit(left + width_, size_.cx) - firstCol);
  Sums sums;
  for (std::int32_t y = fit(top, size_.cy); y < endRow; ++y) {
    const std::size_t first = IndexOf(y, firstCol);
    if (y != row) {
      sums.AddRun(&left_[first], &matched_[first], &isMatched_[first], nCols);
      continue;
    }
    const std::size_t centre = IndexOf(row, col);
    const std::size_t nBefore = centre - first;
    sums.AddRun(&left_[first], &matched_[first], &isMatched_[first], nBefore);
    if (IsDisparity(disparity)) sums.Add(left_[centre], RightAt(row, col, disparity));
    sums.AddRun(left_.data() + centre + 1, matched_.data() + centre + 1, isMatched_.data() + centre + 1,
                nCols - nBefore - 1);
  }
  return sums.GetCoefficient();
}

std::uint8_t MaskedWindows::RightAt(std::int32_t row, std::int32_t col, double disparity) const {
  const std::int64_t rightCol = TruncateTo64(col - disparity);
  std::uint8_t pixel = 0;
  CopyBytes(right_, row, rightCol, {&pixel, 1});
  return pixel;
}

}  // namespace corvane
