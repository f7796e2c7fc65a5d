#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace corvane {

// A packed device-independent bitmap: a header of 40 bytes, a palette of 4 bytes a colour (blue, green, red,
// 0) for up to 8 bits a pixel, and the rows bottom-up, each rounded up to a multiple of 4 bytes. Pixels have
// 1, 4, 8, 16, 24 or 32 bits; those of 24 bits are blue, green, red.
using Dib = std::vector<std::uint8_t>;

// Whether the bytes are such a bitmap, with every pixel in them. The operations below take no other one: of
// what is none they see no pixels.
bool IsDib(std::span<const std::uint8_t> bytes);

// A black bitmap; with 8 bits or less its palette is an even run of greys. Empty for a size that is not
// positive or beyond kMaxDibBytes, and without memory.
Dib MakeBlackDib(std::int32_t width, std::int32_t height, int bitCount);
constexpr std::int64_t kMaxDibBytes = std::int64_t{1} << 32;

std::int32_t DibWidth(const Dib& dib);
std::int32_t DibHeight(const Dib& dib);
int DibBitCount(const Dib& dib);
std::int32_t DibColorCount(const Dib& dib);  // colours of the palette, 0 without one
std::int32_t DibHeaderSize(const Dib& dib);  // bytes of the header proper: 40
std::int64_t DibRowBytes(const Dib& dib);

// The first byte of the pixels, which is the bottom row's; null where there is none.
std::uint8_t* DibBits(Dib& dib);
const std::uint8_t* DibBits(const Dib& dib);

// The row's bytes, y counted from the top; empty outside.
std::span<std::uint8_t> DibRow(Dib& dib, std::int32_t y);
std::span<const std::uint8_t> DibRow(const Dib& dib, std::int32_t y);

// The bytes of a pixel, y counted from the top: the pixel's one for 8 bits; for 24 its three as they stand.
// Returns their number; -1 outside, -2 for any other format, with `color` as it was.
int GetPixelColor(const Dib& dib, std::int32_t x, std::int32_t y, std::uint8_t* color);
int SetPixelColor(Dib& dib, std::int32_t x, std::int32_t y, const std::uint8_t* color);

// What a pixel looks like, by the palette: 0x00rrggbb.
class DibColours {
 public:
  explicit DibColours(const Dib& dib);

  // The pixel of a row of the bitmap; `x` is within it.
  std::uint32_t Get(std::span<const std::uint8_t> row, std::int32_t x) const;

 private:
  std::vector<std::uint32_t> palette_;  // 256 colours where there is a palette
  int bitCount_;
};

}  // namespace corvane
