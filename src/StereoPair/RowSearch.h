#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "erdasimg/ErdasImg.h"

namespace corvane {

// Columns that are added to a left one to give the right ones to look at, both ends included, but one.
struct ShiftRange {
  std::int64_t first = 0;
  std::int64_t last = -1;
  std::int64_t leftOut = 0;
};

// The search for the best correlation coefficient along one row, for all columns of a left image at once, as
// long as they all look at the same shifts: bit for bit what StereoPair::SearchCorrelation finds one by one.
// Each pair of windows is gone over as a whole, but side by side with its neighbours, one lane of a register
// a left window; what only one of the images has a part in is made once for the row.
class RowSearch {
 public:
  // Whether windows of this size are taken in an image of so many columns: their sums have to fit 32 bits,
  // and the buffers are to stay small.
  static bool Takes(std::int32_t width, std::int32_t height, std::int32_t cols);

  // Windows of width x height pixels that begin in the rows `leftTop` and `rightTop`. Throws std::bad_alloc.
  void SetRows(const ErdasImg& left, std::int64_t leftTop, const ErdasImg& right, std::int64_t rightTop,
               std::int32_t width, std::int32_t height);

  // Compares the left windows around the columns from `firstCol` to before `endCol` with the right ones at
  // all shifts whose windows lie within the right image's columns. Left windows lie within theirs.
  void Search(std::int64_t firstCol, std::int64_t endCol, const ShiftRange& shifts);

  // The best score of a left column of the search, which is above 0.0, and the first of its shifts; 0.0 and
  // `leftOut` if there is none.
  double GetScore(std::int64_t col) const { return scores_[static_cast<std::size_t>(col)]; }
  double GetShift(std::int64_t col) const { return shifts_[static_cast<std::size_t>(col)]; }

 private:
  // Those of one image.
  struct Windows {
    void Set(const ErdasImg& image, std::int64_t top, std::int32_t width, std::int32_t height);

    std::int64_t nCols = 0;            // of the image
    std::size_t stride = 0;            // elements a row
    std::vector<std::uint32_t> pairs;  // height x stride: pixel j, and j + 1 in the upper half
    std::vector<double> sums;          // of the window that begins in column j
    std::vector<double> variances;     // sum of squares - sum^2 / n
    std::vector<std::uint32_t> scratch;
    std::vector<std::uint8_t> bytes;  // of a row
  };

  std::int32_t width_ = 0;
  std::int32_t height_ = 0;
  Windows left_;
  Windows right_;
  std::vector<std::uint32_t> products_;
  std::vector<double> scores_;  // by the left column
  std::vector<double> shifts_;
};

}  // namespace corvane
