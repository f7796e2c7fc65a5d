#include "erdasimg/PixelCopy.h"

#include <algorithm>
#include <cstring>

namespace corvane {

namespace {

// With a size that the compiler knows a copy is one move.
template <std::size_t kSize>
void CopyFixed(const std::uint8_t* from, std::size_t fromStep, std::uint8_t* to, std::size_t toStep,
               std::int64_t count) {
  for (std::int64_t i = 0; i < count; ++i) {
    std::memcpy(to, from, kSize);
    from += fromStep;
    to += toStep;
  }
}

}  // namespace

std::span<std::uint8_t> HeldRow(const ErdasImg& image, std::int64_t row, std::int64_t band) {
  const auto bytes = image.m_bands.GetBand(band);
  const auto nBytes = static_cast<std::int64_t>(bytes.size());
  const std::int64_t rowBytes = std::int64_t{image.m_header.cols} * image.m_bytesPerPixel;
  const bool isInImage = row >= 0 && row < image.m_header.rows && image.m_header.cols > 0;
  if (!isInImage || rowBytes <= 0 || row > nBytes / rowBytes) return {};
  const std::int64_t first = row * rowBytes;
  return bytes.subspan(static_cast<std::size_t>(first),
                       static_cast<std::size_t>(std::min(rowBytes, nBytes - first)));
}

void CopyPixels(const std::uint8_t* from, std::size_t fromStep, std::uint8_t* to, std::size_t toStep,
                std::int64_t count, std::size_t size) {
  if (count <= 0) return;
  if (fromStep == size && toStep == size) {
    std::memcpy(to, from, static_cast<std::size_t>(count) * size);
    return;
  }
  switch (size) {
    case 1:
      return CopyFixed<1>(from, fromStep, to, toStep, count);
    case 2:
      return CopyFixed<2>(from, fromStep, to, toStep, count);
    case 4:
      return CopyFixed<4>(from, fromStep, to, toStep, count);
    case 8:
      return CopyFixed<8>(from, fromStep, to, toStep, count);
    default:
      for (std::int64_t i = 0; i < count; ++i) {
        std::memcpy(to + static_cast<std::size_t>(i) * toStep, from + static_cast<std::size_t>(i) * fromStep,
                    size);
      }
  }
}

}  // namespace corvane
