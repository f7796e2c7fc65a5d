#pragma once

#include <algorithm>
#include <cstdint>

#include "ImgProcess/KernelSums.h"

namespace corvane {

// Filters a plane along rows, then along columns, as its rows come by, with ImgProcess::ConvolveRows' and
// ConvolveColumnsInPlace's sums. It holds as many rows as the kernel has weights, or as the plane has.
//
//   SmoothedRows<float> smooth(kernel, nRows, nCols);
//   for (row = 0; row < nRows + smooth.GetReach(); ++row) {
//     if (row < nRows) smooth.Push(line of row);
//     if (row >= smooth.GetReach()) smooth.Get(row - smooth.GetReach(), filtered);
//   }
template <typename Number>
class SmoothedRows {
 public:
  SmoothedRows(const Kernel1D& kernel, std::int64_t nRows, std::int64_t nCols)
      : nCols_(nCols), alongRows_(kernel, nCols), alongColumns_(kernel, nRows, nCols) {}

  // Rows that must follow a row before it can be had.
  std::int64_t GetReach() const { return alongRows_.GetReach(); }

  // Takes the next row.
  void Push(const Number* row) {
    const std::int64_t begin = alongRows_.GetReach();
    std::copy_n(row, nCols_, alongRows_.GetLine().begin() + begin);
    alongRows_.Get(begin, begin + nCols_, alongColumns_.Add());
  }

  // The filtered row, while the rows are held that its sums reach.
  void Get(std::int64_t row, Number* filtered) { alongColumns_.Get(row, filtered); }

 private:
  std::int64_t nCols_;
  RowSums<Number, Number> alongRows_;
  ColumnSums<Number, Number> alongColumns_;
};

}  // namespace corvane
