#pragma once

#include <cstdint>

namespace corvane {

// The header proper of a bitmap, little-endian.
struct DibHeader {
  std::uint32_t size = 40;
  std::int32_t width = 0;
  std::int32_t height = 0;  // below 0 in files whose rows stand top-down
  std::uint16_t planes = 1;
  std::uint16_t bitCount = 0;
  std::uint32_t compression = 0;
  std::uint32_t imageSize = 0;
  std::int32_t xPixelsPerMetre = 0;
  std::int32_t yPixelsPerMetre = 0;
  std::uint32_t colorsUsed = 0;  // 0: as many as the bits can tell apart
  std::uint32_t colorsImportant = 0;
};
static_assert(sizeof(DibHeader) == 40);

constexpr std::size_t kDibHeaderBytes = sizeof(DibHeader);
constexpr std::size_t kPaletteEntryBytes = 4;

inline bool IsDibBitCount(int bitCount) {
  return bitCount == 1 || bitCount == 4 || bitCount == 8 || bitCount == 16 || bitCount == 24 ||
         bitCount == 32;
}

// Colours in the palette of a bitmap of up to 8 bits; those of more have none here.
inline std::int32_t PaletteSize(int bitCount, std::uint32_t colorsUsed) {
  if (bitCount > 8) return 0;
  const std::uint32_t most = std::uint32_t{1} << bitCount;
  return static_cast<std::int32_t>(colorsUsed == 0 || colorsUsed > most ? most : colorsUsed);
}

inline std::int64_t PaddedRowBytes(std::int32_t width, int bitCount) {
  return (std::int64_t{width} * bitCount + 31) / 32 * 4;
}

}  // namespace corvane
