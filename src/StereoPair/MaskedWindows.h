#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "erdasimg/ErdasImg.h"

namespace corvane {

// Whether this value of a disparity map is a disparity: finite, and not StereoPair::kNoDisparity.
bool IsDisparity(double value);

// The windows of a left image over a disparity map: each of their pixels has a disparity of its own, or none.
// The left pixel (row, col) of disparity d is compared with the right one at (row, truncate(col - d)). Pixels
// are bytes, those outside of an image 0, as everywhere in matching.
class MaskedWindows {
 public:
  // Windows of width x height pixels, both above 0. A pixel outside of the map has no disparity. Throws
  // std::bad_alloc.
  MaskedWindows(const ErdasImg& left, const ErdasImg& right, const ErdasImg& disparities, std::int32_t width,
                std::int32_t height);

  // Gives a pixel of the left image another disparity.
  void SetDisparity(std::int32_t row, std::int32_t col, double disparity);

  // CorrelationCoefficientMasked of the window around a pixel of the left image under this disparity for the
  // pixel itself; for the others their own counts, and those without one are left out, as is what the image
  // does not hold of the window. 0.0 for fewer than two pixels.
  double CompareMasked(std::int32_t row, std::int32_t col, double disparity) const;

 private:
  struct Sums;

  std::size_t IndexOf(std::int32_t row, std::int32_t col) const {
    return static_cast<std::size_t>(std::int64_t{row} * size_.cx + col);
  }
  std::uint8_t RightAt(std::int32_t row, std::int32_t col, double disparity) const;

  const ErdasImg& right_;
  ImageSize size_;  // of the left image
  std::int32_t width_;
  std::int32_t height_;
  std::vector<std::uint8_t> left_;       // the image
  std::vector<std::uint8_t> matched_;    // for each left pixel the right one, 0 where it has no disparity
  std::vector<std::uint8_t> isMatched_;  // 1 where it has one
};

}  // namespace corvane
