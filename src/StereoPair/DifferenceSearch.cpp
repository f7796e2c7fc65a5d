#include "StereoPair/DifferenceSearch.h"

#include <algorithm>
#include <cstdlib>

#include "StereoPair/WindowBytes.h"
#include "numerics/SimdVersion.h"

namespace corvane {

namespace {

constexpr std::size_t kMostTerms = 257;  // 257 x 255 is the largest 16-bit number

// parts[i] += |window[k] - pixels[k + i]| for k < nCols, i < nPlaces.
struct AddDifferences {
  template <std::size_t>
  [[gnu::always_inline]] static inline void Run(std::uint16_t* __restrict parts, const std::uint8_t* window,
                                                std::size_t nCols, const std::uint8_t* __restrict pixels,
                                                std::size_t nPlaces) {
    for (std::size_t k = 0; k < nCols; ++k) {
      const int value = window[k];
      for (std::size_t i = 0; i < nPlaces; ++i) {
        parts[i] = static_cast<std::uint16_t>(parts[i] + std::abs(value - pixels[k + i]));
      }
    }
  }
};

}  // namespace

std::int64_t DifferenceSearch::Find(const ErdasImg& leftImage, const ErdasImg& rightImage, const Point2& left,
                                    Point2& right, const ImageSize& size, const ImageRect& rect) {
  if (!CutWindow(leftImage, WindowCorner(left, size.cx, size.cy), size.cx, size.cy, window_)) return -1;
  size_ = size;
  AddUp(rightImage, right, 1);
  std::int64_t least = sums_.front();
  if (rect.left > rect.right) return least;
  const auto nPlaces = static_cast<std::size_t>(std::int64_t{rect.right} - rect.left + 1);
  for (std::int64_t row = rect.top; row <= rect.bottom; ++row) {
    AddUp(rightImage, {static_cast<double>(rect.left), static_cast<double>(row)}, nPlaces);
    const auto found = std::min_element(sums_.begin(), sums_.end());
    if (*found >= least) continue;
    least = *found;
    right = {static_cast<double>(rect.left + (found - sums_.begin())), static_cast<double>(row)};
  }
  return least;
}

// Makes the sums of `nPlaces` places of a row from `first` on.
void DifferenceSearch::AddUp(const ErdasImg& image, const Point2& first, std::size_t nPlaces) {
  const auto width = static_cast<std::size_t>(size_.cx);
  const WindowCorner corner(first, size_.cx, size_.cy);
  sums_.assign(nPlaces, 0);
  parts_.assign(nPlaces, 0);
  pixels_.resize(nPlaces + width - 1);
  nTerms_ = 0;
  for (std::int32_t row = 0; row < size_.cy; ++row) {
    CopyBytes(image, corner.row + row, corner.col, pixels_);
    AddRow(window_.data() + static_cast<std::size_t>(row) * width);
  }
  Flush();
}

// Adds the differences between a row of the window and the pixels.
void DifferenceSearch::AddRow(const std::uint8_t* window) {
  const auto width = static_cast<std::size_t>(size_.cx);
  for (std::size_t first = 0; first < width; first += kMostTerms) {
    const std::size_t count = std::min(kMostTerms, width - first);
    if (nTerms_ + count > kMostTerms) Flush();
    RunSimd<AddDifferences>(parts_.data(), window + first, count, pixels_.data() + first, parts_.size());
    nTerms_ += count;
  }
}

void DifferenceSearch::Flush() {
  for (std::size_t i = 0; i < sums_.size(); ++i) sums_[i] += parts_[i];
  std::fill(parts_.begin(), parts_.end(), std::uint16_t{0});
  nTerms_ = 0;
}

}  // namespace corvane
