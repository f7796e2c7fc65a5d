#pragma once

#include <cstdint>
#include <string_view>

namespace corvane {

// The places of the left image that the grid methods match, row by row. Place (i, j) is at column
// truncate(halfW + j stepCol) and row truncate(i stepRow + halfH + margin), `margin` being the row tolerance
// of matching.
struct LeftGrid {
  std::int64_t nRows = 0;
  std::int64_t nCols = 0;
  double stepCol = 1.0;  // pixels
  double stepRow = 1.0;
  std::int32_t halfW = 0;
  std::int32_t halfH = 0;
  std::int32_t margin = 0;
  std::string_view whyNone;  // a sentence, if there are no places

  std::int32_t GetCol(std::int64_t j) const {
    return static_cast<std::int32_t>(halfW + static_cast<double>(j) * stepCol);
  }
  std::int32_t GetRow(std::int64_t i) const {
    return static_cast<std::int32_t>(static_cast<double>(i) * stepRow + halfH + margin);
  }
  // Whether some places are the same, at steps below a pixel.
  bool RepeatsPlaces() const {
    if (nRows <= 0 || nCols <= 0) return false;
    return GetCol(nCols - 1) - GetCol(0) < nCols - 1 || GetRow(nRows - 1) - GetRow(0) < nRows - 1;
  }
};

}  // namespace corvane
