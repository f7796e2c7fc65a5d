#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "StereoPair/SearchRuns.h"
#include "erdasimg/ErdasImg.h"
#include "numerics/Point2.h"

namespace corvane {

// Looks for the place of one image whose structural descriptor is most like that of a place of another one:
// by the correlation coefficient of their size^2 - 1 values, ImgProcess::StructuralFeature without
// normalization. The values are differences of bytes (WindowBytes.h), so that sums are whole numbers, exact
// in any order, and those of a row of places are added up side by side.
//
// Any place has a descriptor, of the window of size x size pixels around it, those outside of the image being
// 0; but only an odd size has a middle, and so a descriptor at all. The object keeps its buffers from one
// search to the next.
class DescriptorSearch {
 public:
  // As StereoPair::SearchCorrelation, with this coefficient. Without a descriptor, or memory for the left
  // one, nothing is compared: the result is 0.0, with the position as it was.
  double Find(const ErdasImg& leftImage, const ErdasImg& rightImage, const Point2& left, Point2& right,
              std::int32_t size, const ImageRect& rect);

  // What the person should know of windows of this width: that they have no descriptor; "" if they have.
  static std::string NoteOn(std::int32_t size);

 private:
  // For each of a row of places the sums of the values of its descriptor, of their squares and of their
  // products with the left one's.
  template <typename T>
  struct Sums {
    std::vector<T> b;
    std::vector<T> bb;
    std::vector<T> ab;

    void Clear(std::size_t n);
  };

  static bool HasDescriptor(std::int32_t size) { return size > 0 && size % 2 != 0; }

  bool DescribeLeft(const ErdasImg& image, const Point2& place);
  void SearchRow(const ErdasImg& image, const SearchRun& places, std::int64_t row, const Point2& start,
                 double& best, Point2& right);
  void AddUp(const ErdasImg& image, std::int64_t col, std::int64_t row, std::size_t nPlaces);
  void AddRow(std::int64_t dy);
  void Flush();
  double GetScore(std::size_t i) const;

  std::int64_t size_ = 0;
  std::vector<std::int16_t> values_;  // of the left place, each where its outer pixel is in the window
  double leftSum_ = 0.0;              // of them
  double leftSumSq_ = 0.0;
  std::vector<std::uint8_t> pixels_;       // of one row of the right image, under all windows
  std::vector<std::uint8_t> innerPixels_;  // of the row that lies a step closer to the middle
  Sums<std::int32_t> parts_;               // of up to kMostTerms values a place
  Sums<std::int64_t> sums_;                // of what was in parts_ before
  std::size_t nTerms_ = 0;
  std::vector<SearchRun> rowRuns_;
  std::vector<SearchRun> colRuns_;
};

}  // namespace corvane
