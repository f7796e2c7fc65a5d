#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "ImgProcess/Kernel1D.h"
#include "ImgProcess/LineKernels.h"

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
      : nRows_(nRows),
        nCols_(nCols),
        reach_(kernel.GetReach()),
        weights_(kernel.values.begin(), kernel.values.end()),
        lines_(weights_.size()),
        padded_(static_cast<std::size_t>(nCols + 2 * reach_)),
        nHeld_(std::min<std::int64_t>(kernel.size, nRows)),
        held_(static_cast<std::size_t>(nHeld_ * nCols)) {}

  // Rows that must follow a row before it can be had.
  std::int64_t GetReach() const { return reach_; }

  // Takes the next row.
  void Push(const Number* row) {
    const auto first = padded_.begin() + reach_;
    std::fill(padded_.begin(), first, row[0]);
    std::copy_n(row, nCols_, first);
    std::fill(first + nCols_, padded_.end(), row[nCols_ - 1]);
    for (std::size_t j = 0; j < lines_.size(); ++j) lines_[j] = padded_.data() + j;
    Sum(HeldRow(nPushed_++));
  }

  // The filtered row, while the rows are held that its sums reach.
  void Get(std::int64_t row, Number* filtered) {
    for (std::size_t j = 0; j < lines_.size(); ++j) {
      const std::int64_t from = row - reach_ + static_cast<std::int64_t>(j);
      lines_[j] = HeldRow(std::clamp<std::int64_t>(from, 0, nRows_ - 1));
    }
    Sum(filtered);
  }

 private:
  Number* HeldRow(std::int64_t row) { return held_.data() + row % nHeld_ * nCols_; }
  void Sum(Number* to) {
    WeightedSum(lines_.data(), weights_.data(), static_cast<std::ptrdiff_t>(lines_.size()), to, nCols_);
  }

  std::int64_t nRows_;
  std::int64_t nCols_;
  std::int64_t reach_;
  std::vector<Number> weights_;
  std::vector<const Number*> lines_;
  std::vector<Number> padded_;
  std::int64_t nHeld_;
  std::vector<Number> held_;  // filtered along the row: row r stands at r % nHeld_
  std::int64_t nPushed_ = 0;
};

}  // namespace corvane
