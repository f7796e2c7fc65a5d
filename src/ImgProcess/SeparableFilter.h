#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "ImgProcess/Kernel1D.h"
#include "ImgProcess/LineKernels.h"
#include "erdasimg/ErdasImg.h"

namespace corvane {

// What is done to an image: a kernel along its rows, and one along the columns of what comes out. Null leaves
// that direction as it is.
struct FilterKernels {
  const Kernel1D* alongRows = nullptr;
  const Kernel1D* alongColumns = nullptr;
};

// Columns of an image that are filtered together.
struct ColumnStrip {
  std::int32_t first = 0;
  std::int32_t count = 0;
};

// Filters a strip of one band, row after row, and holds no more of it than the rows that a column's kernel
// spans. Pixels of type Pixel are converted to Sum, the type of the sums and of the weights.
//
// The output at i of a line is the sum of line[i + j - size / 2] * weight[j], j rising, the line being
// continued at both ends with its end pixel. An image row may be overwritten as soon as NextRow has gone
// beyond it, that is, in place; with a kernel along the rows only if the strip is the whole image.
//
// Without memory the constructor throws std::bad_alloc.
template <typename Pixel, typename Sum>
class SeparableFilter {
 public:
  SeparableFilter(const ErdasImg& image, std::int32_t band, const FilterKernels& kernels, ColumnStrip strip)
      : image_(image), band_(band), strip_(strip) {
    if (kernels.alongRows) SetRowKernel(*kernels.alongRows);
    if (kernels.alongColumns) SetColumnKernel(*kernels.alongColumns);
  }
  SeparableFilter(SeparableFilter&&) noexcept = default;

  // The output of the next row, from row 0 on: as many numbers as the strip has columns.
  void NextRow(Sum* to) {
    const std::int64_t row = next_++;
    if (columnWeights_.empty()) {
      FilterRow(static_cast<std::int32_t>(row), to);
      return;
    }
    const std::int64_t lastRow = image_.m_header.rows - 1;
    const auto size = static_cast<std::int64_t>(columnWeights_.size());
    const std::int64_t first = row - size / 2;
    for (; nFiltered_ <= std::min(first + size - 1, lastRow); ++nFiltered_) {
      FilterRow(static_cast<std::int32_t>(nFiltered_), SlotOf(nFiltered_));
    }
    for (std::int64_t j = 0; j < size; ++j) {
      spanned_[static_cast<std::size_t>(j)] = SlotOf(std::clamp<std::int64_t>(first + j, 0, lastRow));
    }
    WeightedSum(spanned_.data(), columnWeights_.data(), size, to, strip_.count);
  }

 private:
  static std::vector<Sum> WeightsOf(const Kernel1D& kernel) {
    std::vector<Sum> weights;
    for (const double value : kernel.values) weights.push_back(static_cast<Sum>(value));
    return weights;
  }

  void SetRowKernel(const Kernel1D& kernel) {
    rowWeights_ = WeightsOf(kernel);
    padded_.resize(static_cast<std::size_t>(strip_.count) + rowWeights_.size() - 1);
    for (std::size_t j = 0; j < rowWeights_.size(); ++j) shifted_.push_back(padded_.data() + j);
  }

  void SetColumnKernel(const Kernel1D& kernel) {
    columnWeights_ = WeightsOf(kernel);
    spanned_.resize(columnWeights_.size());
    nSlots_ = std::min(kernel.size, image_.m_header.rows);
    filtered_.resize(static_cast<std::size_t>(nSlots_) * static_cast<std::size_t>(strip_.count));
  }

  // Where a row stands between its own filter and that of the columns.
  Sum* SlotOf(std::int64_t row) { return filtered_.data() + row % nSlots_ * strip_.count; }

  // The strip's part of a row, filtered along the row.
  void FilterRow(std::int32_t row, Sum* to) {
    const std::uint8_t* const pixels = RowPixels(row);
    if (rowWeights_.empty()) {
      Convert(pixels, strip_.first, strip_.count, to);
      return;
    }
    const auto size = static_cast<std::int64_t>(rowWeights_.size());
    const auto nPadded = static_cast<std::int64_t>(padded_.size());
    const std::int64_t firstCol = strip_.first - size / 2;  // of the padded line
    const std::int64_t begin = std::max<std::int64_t>(-firstCol, 0);
    const std::int64_t end = std::min(image_.m_header.cols - firstCol, nPadded);
    Convert(pixels, firstCol + begin, end - begin, padded_.data() + begin);
    std::fill_n(padded_.data(), begin, padded_[static_cast<std::size_t>(begin)]);
    std::fill_n(padded_.data() + end, nPadded - end, padded_[static_cast<std::size_t>(end - 1)]);
    WeightedSum(shifted_.data(), rowWeights_.data(), size, to, strip_.count);
  }

  static void Convert(const std::uint8_t* pixels, std::int64_t firstCol, std::int64_t count, Sum* to) {
    ConvertLine<Pixel>(pixels + firstCol * static_cast<std::int64_t>(sizeof(Pixel)), to, count);
  }

  // The bytes of a row; of one that the band does not hold, a copy in which what is missing is 0.
  const std::uint8_t* RowPixels(std::int32_t row) {
    std::uint8_t* pixels = nullptr;
    image_.GetRowPointer(row, band_, pixels);
    if (pixels) return pixels;
    partial_.resize(static_cast<std::size_t>(image_.m_header.cols) * sizeof(Pixel));
    image_.CopyRow(row, band_, partial_.data());
    return partial_.data();
  }

  const ErdasImg& image_;
  std::int32_t band_;
  ColumnStrip strip_;
  std::vector<Sum> rowWeights_;
  std::vector<Sum> columnWeights_;
  std::vector<Sum> padded_;          // a row that is continued at both ends
  std::vector<const Sum*> shifted_;  // padded_ from pixel j on, for each weight
  std::vector<Sum> filtered_;        // the last nSlots_ rows, row r in slot r % nSlots_
  std::vector<const Sum*> spanned_;  // the rows that the column's kernel spans
  std::vector<std::uint8_t> partial_;
  std::int32_t nSlots_ = 1;
  std::int64_t nFiltered_ = 0;
  std::int64_t next_ = 0;
};

}  // namespace corvane
