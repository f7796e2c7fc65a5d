#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "ImgProcess/Kernel1D.h"
#include "ImgProcess/LineKernels.h"

namespace corvane {

// A kernel over lines of numbers. The output at i of a line is the sum of line[i + j - size / 2] * weight[j],
// j rising, the line being continued at both ends with its end number (WeightedSum). Sum is the type of the
// weights and of the output.
//
// Without memory the constructors throw std::bad_alloc.

template <typename Sum>
std::vector<Sum> WeightsOf(const Kernel1D& kernel) {
  std::vector<Sum> weights;
  weights.reserve(kernel.values.size());
  for (const double value : kernel.values) weights.push_back(static_cast<Sum>(value));
  return weights;
}

// Along rows: one row at a time.
template <typename Number, typename Sum>
class RowSums {
 public:
  // Of `nCols` outputs.
  RowSums(const Kernel1D& kernel, std::int64_t nCols)
      : reach_(kernel.GetReach()),
        nCols_(nCols),
        weights_(WeightsOf<Sum>(kernel)),
        line_(static_cast<std::size_t>(nCols) + weights_.size() - 1) {
    for (std::size_t j = 0; j < weights_.size(); ++j) shifted_.push_back(line_.data() + j);
  }
  RowSums(RowSums&&) noexcept = default;

  // Numbers of the line in front of the first output's own one.
  std::int64_t GetReach() const { return reach_; }

  // All numbers that the sums reach.
  std::span<Number> GetLine() { return line_; }

  // The sums over the line. Numbers from `begin` to before `end` are there; those outside become copies of
  // the nearest one.
  void Get(std::int64_t begin, std::int64_t end, Sum* to) {
    std::fill(line_.begin(), line_.begin() + begin, line_[static_cast<std::size_t>(begin)]);
    std::fill(line_.begin() + end, line_.end(), line_[static_cast<std::size_t>(end - 1)]);
    WeightedSum(shifted_.data(), weights_.data(), static_cast<std::ptrdiff_t>(weights_.size()), to, nCols_);
  }

 private:
  std::int64_t reach_;
  std::ptrdiff_t nCols_;
  std::vector<Sum> weights_;
  std::vector<Number> line_;
  std::vector<const Number*> shifted_;  // line_ from number j on, for each weight
};

// Along columns, of which the rows come one after the other: it holds as many as the kernel has weights, or
// as there are.
template <typename Number, typename Sum>
class ColumnSums {
 public:
  ColumnSums(const Kernel1D& kernel, std::int64_t nRows, std::int64_t nCols)
      : reach_(kernel.GetReach()),
        nRows_(nRows),
        nCols_(nCols),
        weights_(WeightsOf<Sum>(kernel)),
        spanned_(weights_.size()),
        nHeld_(std::min<std::int64_t>(kernel.size, nRows)),
        held_(static_cast<std::size_t>(nHeld_ * nCols)) {}
  ColumnSums(ColumnSums&&) noexcept = default;

  // Rows that must have come before the sums of a row can be had: those up to the last that they reach.
  std::int64_t GetNeeded(std::int64_t row) const {
    return std::min(row - reach_ + static_cast<std::int64_t>(weights_.size()), nRows_);
  }

  // The place for the next row.
  std::int64_t GetCount() const { return nCome_; }
  Number* Add() { return HeldRow(nCome_++); }

  // The sums of a row, while the rows are held that they reach.
  void Get(std::int64_t row, Sum* to) {
    for (std::size_t j = 0; j < spanned_.size(); ++j) {
      const std::int64_t from = row - reach_ + static_cast<std::int64_t>(j);
      spanned_[j] = HeldRow(std::clamp<std::int64_t>(from, 0, nRows_ - 1));
    }
    WeightedSum(spanned_.data(), weights_.data(), static_cast<std::ptrdiff_t>(weights_.size()), to, nCols_);
  }

 private:
  Number* HeldRow(std::int64_t row) { return held_.data() + row % nHeld_ * nCols_; }

  std::int64_t reach_;
  std::int64_t nRows_;
  std::ptrdiff_t nCols_;
  std::vector<Sum> weights_;
  std::vector<const Number*> spanned_;
  std::int64_t nHeld_;
  std::vector<Number> held_;  // row r stands at r % nHeld_
  std::int64_t nCome_ = 0;
};

}  // namespace corvane
