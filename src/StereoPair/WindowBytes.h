#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "erdasimg/ErdasImg.h"
#include "numerics/Point2.h"

namespace corvane {

// Images as bytes: pixel (row, col) is the byte row * cols + col of band 0, whatever the pixel type. Pixels
// outside of the image, and those behind the end of the band, are 0.

// The pixels of a row from column `col` on.
void CopyBytes(const ErdasImg& image, std::int64_t row, std::int64_t col, std::span<std::uint8_t> to);

// The first pixel of the window around `place`: truncate(x - width / 2), truncate(y - height / 2), with
// integer halves; numbers beyond +-2^62 are held there.
struct WindowCorner {
  WindowCorner(std::int64_t firstCol, std::int64_t firstRow) : col(firstCol), row(firstRow) {}
  WindowCorner(const Point2& place, std::int32_t width, std::int32_t height);

  std::int64_t col;
  std::int64_t row;
};

// The pixels of a window, row by row. False, with none, without a positive size or memory.
bool CutWindow(const ErdasImg& image, const WindowCorner& corner, std::int32_t width, std::int32_t height,
               std::vector<std::uint8_t>& pixels);

}  // namespace corvane
