#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <type_traits>
#include <vector>

#include "ImgProcess/KernelSums.h"
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

// The type in which pixels meet the weights: that of the sums, but doubles are not narrowed.
template <typename Pixel, typename Sum>
using FilteredNumber = std::conditional_t<std::is_same_v<Pixel, double>, double, Sum>;

// Filters a strip of one band, row after row, and holds no more of it than the rows that a column's kernel
// spans (RowSums, ColumnSums). Sums are built in the type Sum.
//
// An image row may be overwritten as soon as NextRow has gone beyond it, that is, in place; with a kernel
// along the rows only if the strip is the whole image.
//
// Without memory the constructor throws std::bad_alloc.
template <typename Pixel, typename Sum>
class SeparableFilter {
 public:
  SeparableFilter(const ErdasImg& image, std::int32_t band, const FilterKernels& kernels, ColumnStrip strip)
      : image_(image), band_(band), strip_(strip) {
    const std::int32_t rows = image.m_header.rows;
    if (kernels.alongRows) alongRows_.emplace(*kernels.alongRows, strip.count);
    if (!kernels.alongColumns) return;
    if (kernels.alongRows) {
      alongBoth_.emplace(*kernels.alongColumns, rows, strip.count);
    } else {
      alongColumns_.emplace(*kernels.alongColumns, rows, strip.count);
    }
  }
  SeparableFilter(SeparableFilter&&) noexcept = default;

  // The output of the next row, from row 0 on: as many numbers as the strip has columns.
  void NextRow(Sum* to) {
    const std::int32_t row = next_++;
    if (alongBoth_) {
      while (alongBoth_->GetCount() < alongBoth_->GetNeeded(row)) FilterRow(nRead_++, alongBoth_->Add());
      alongBoth_->Get(row, to);
    } else if (alongColumns_) {
      while (alongColumns_->GetCount() < alongColumns_->GetNeeded(row))
        ReadStrip(nRead_++, alongColumns_->Add());
      alongColumns_->Get(row, to);
    } else if (alongRows_) {
      FilterRow(row, to);
    } else {
      ReadStrip(row, to);
    }
  }

 private:
  using Number = FilteredNumber<Pixel, Sum>;

  // The strip's part of a row, filtered along the row.
  void FilterRow(std::int32_t row, Sum* to) {
    const auto line = alongRows_->GetLine();
    const std::int64_t firstCol = strip_.first - alongRows_->GetReach();  // of the line
    const std::int64_t begin = std::max<std::int64_t>(-firstCol, 0);
    const std::int64_t end =
        std::min(image_.m_header.cols - firstCol, static_cast<std::int64_t>(line.size()));
    Convert(RowPixels(row), firstCol + begin, end - begin, line.data() + begin);
    alongRows_->Get(begin, end, to);
  }

  // The strip's part of a row as it is.
  template <typename To>
  void ReadStrip(std::int32_t row, To* to) {
    Convert(RowPixels(row), strip_.first, strip_.count, to);
  }

  template <typename To>
  static void Convert(const std::uint8_t* pixels, std::int64_t firstCol, std::int64_t count, To* to) {
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
  std::optional<RowSums<Number, Sum>> alongRows_;
  std::optional<ColumnSums<Sum, Sum>> alongBoth_;        // of what comes out along the rows
  std::optional<ColumnSums<Number, Sum>> alongColumns_;  // of the image
  std::vector<std::uint8_t> partial_;
  std::int32_t nRead_ = 0;  // rows that have gone to the columns
  std::int32_t next_ = 0;
};

}  // namespace corvane
