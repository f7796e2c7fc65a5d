#include "erdasimg/PixelWindow.h"

#include <algorithm>
#include <cmath>

#include "erdasimg/AsciiGrid.h"
#include "io/OutputFile.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

std::int32_t FirstAlong(double length, double cell) {
  return std::max(TruncateSaturated(std::floor(length / cell)), 0);
}

std::int32_t CountAlong(double length, double cell, std::int32_t nPixels) {
  return std::clamp(TruncateSaturated(length / cell), 0, std::max(nPixels, 0));
}

}  // namespace

PixelWindow WindowOf(const ErdasHeader& header, const GroundExtent& rect) {
  const double cell = header.xCell;
  return {.firstRow = FirstAlong(header.yMap - rect.maxY, cell),
          .firstCol = FirstAlong(rect.minX - header.xMap, cell),
          .nRows = CountAlong(rect.maxY - rect.minY, cell, header.rows),
          .nCols = CountAlong(rect.maxX - rect.minX, cell, header.cols)};
}

WindowRows::WindowRows(const ErdasImg& image, const PixelWindow& window)
    : image_(image),
      row_(window.firstRow),
      firstCol_(window.firstCol),
      values_(static_cast<std::size_t>(window.nCols)) {}

std::span<const double> WindowRows::Next() {
  const ImageSize size = image_.GetSize();
  const std::int64_t colsLeft = row_ < size.cy ? std::int64_t{size.cx} - firstCol_ : 0;
  const auto nInside = static_cast<std::size_t>(
      std::clamp<std::int64_t>(colsLeft, 0, static_cast<std::int64_t>(values_.size())));
  const std::span<double> inside = std::span(values_).first(nInside);
  if (!inside.empty()) {
    image_.GetPixelRow(0, static_cast<std::int32_t>(row_), firstCol_, inside);
    last_ = inside.back();
  }
  std::fill(values_.begin() + static_cast<std::ptrdiff_t>(nInside), values_.end(), last_);
  ++row_;
  return values_;
}

bool WriteAsciiGrid(const ErdasImg& image, const PixelWindow& window, double noData, OutputFile& file) {
  const ErdasHeader& header = *image.GetHeader();
  const double endRow = static_cast<double>(window.firstRow) + window.nRows;
  const AsciiGridHeader grid = {.nCols = window.nCols,
                                .nRows = window.nRows,
                                .xllCorner = window.firstCol * double{header.xCell} + header.xMap,
                                .yllCorner = endRow * header.yCell + header.yMap,
                                .cellSize = header.xCell,
                                .noData = noData};
  if (!WriteAsciiGridHeader(file, grid)) return false;
  WindowRows rows(image, window);
  for (std::int32_t row = 0; row < window.nRows; ++row) {
    if (!WriteAsciiGridRow(file, rows.Next())) return false;
  }
  return true;
}

}  // namespace corvane
