#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "erdasimg/ErdasImg.h"
#include "numerics/Point2.h"

namespace corvane {

// Looks for the window of one image that differs least from a window of another one: by the sum of the
// absolute differences of their bytes (WindowBytes.h). The differences of a row of places are added up side
// by side; each window is gone over as a whole. The object keeps its buffers from one search to the next.
class DifferenceSearch {
 public:
  // The place of the rectangle, all edges included, with the smallest sum becomes `right`; the position given
  // comes first, whether or not it lies in the rectangle, and then row by row the first of equals. Returns
  // that sum; -1, with the position as it was, for a size that is not positive or without memory for the
  // left window.
  std::int64_t Find(const ErdasImg& leftImage, const ErdasImg& rightImage, const Point2& left, Point2& right,
                    const ImageSize& size, const ImageRect& rect);

 private:
  void AddUp(const ErdasImg& image, const Point2& first, std::size_t nPlaces);
  void AddRow(const std::uint8_t* window);
  void Flush();

  ImageSize size_;                    // of the window
  std::vector<std::uint8_t> window_;  // of the left image, row by row
  std::vector<std::uint8_t> pixels_;  // of one row of the right image, under all windows
  std::vector<std::uint16_t> parts_;  // sums of up to kMostTerms differences, one a place
  std::vector<std::int64_t> sums_;    // of what was in parts_ before
  std::size_t nTerms_ = 0;
};

}  // namespace corvane
