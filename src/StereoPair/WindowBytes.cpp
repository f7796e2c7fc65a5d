#include "StereoPair/WindowBytes.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <stdexcept>

#include "numerics/Truncate.h"

namespace corvane {

void CopyBytes(const ErdasImg& image, std::int64_t row, std::int64_t col, std::span<std::uint8_t> to) {
  const std::int64_t nCols = image.m_header.cols;
  const std::int64_t n = static_cast<std::int64_t>(to.size());
  // The part that is there, counted from `col`.
  const std::int64_t first = std::clamp<std::int64_t>(-col, 0, n);
  std::int64_t end = std::clamp<std::int64_t>(nCols - col, first, n);
  if (row < 0 || row >= image.m_header.rows || first == end) {
    std::fill(to.begin(), to.end(), std::uint8_t{0});
    return;
  }
  const auto held = image.m_bands.GetBand(0);
  const std::int64_t index = row * nCols + col;
  end = std::clamp(static_cast<std::int64_t>(held.size()) - index, first, end);
  std::fill(to.begin(), to.begin() + first, std::uint8_t{0});
  if (end > first) {
    std::memcpy(to.data() + first, held.data() + index + first, static_cast<std::size_t>(end - first));
  }
  std::fill(to.begin() + end, to.end(), std::uint8_t{0});
}

WindowCorner::WindowCorner(const Point2& place, std::int32_t width, std::int32_t height)
    : col(TruncateTo64(place.x - width / 2)), row(TruncateTo64(place.y - height / 2)) {}

bool CutWindow(const ErdasImg& image, const WindowCorner& corner, std::int32_t width, std::int32_t height,
               std::vector<std::uint8_t>& pixels) {
  pixels.clear();
  if (width <= 0 || height <= 0) return false;
  const auto nCols = static_cast<std::size_t>(width);
  try {
    pixels.resize(nCols * static_cast<std::size_t>(height));
  } catch (const std::bad_alloc&) {
    return false;
  } catch (const std::length_error&) {
    return false;
  }
  for (std::int32_t i = 0; i < height; ++i) {
    CopyBytes(image, corner.row + i, corner.col,
              std::span(pixels).subspan(static_cast<std::size_t>(i) * nCols, nCols));
  }
  return true;
}

}  // namespace corvane
