#include "dib/Dib.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>

#include "dib/DibHeader.h"

namespace corvane {

namespace {

constexpr int kFormatUnknown = -2;

// Where the parts of a valid bitmap stand.
struct Layout {
  std::int32_t width = 0;
  std::int32_t height = 0;
  int bitCount = 0;
  std::int32_t nColours = 0;
  std::int64_t rowBytes = 0;
  std::int64_t bitsOffset = 0;
};

std::optional<Layout> LayoutOf(std::span<const std::uint8_t> bytes) {
  DibHeader header;
  if (bytes.size() < sizeof header) return std::nullopt;
  std::memcpy(&header, bytes.data(), sizeof header);
  if (header.size != sizeof header || header.compression != 0 || !IsDibBitCount(header.bitCount)) {
    return std::nullopt;
  }
  if (header.width <= 0 || header.height <= 0) return std::nullopt;
  Layout layout;
  layout.width = header.width;
  layout.height = header.height;
  layout.bitCount = header.bitCount;
  layout.nColours = PaletteSize(header.bitCount, header.colorsUsed);
  layout.rowBytes = PaddedRowBytes(header.width, header.bitCount);
  layout.bitsOffset = static_cast<std::int64_t>(kDibHeaderBytes + static_cast<std::size_t>(layout.nColours) *
                                                                      kPaletteEntryBytes);
  const std::int64_t left = static_cast<std::int64_t>(bytes.size()) - layout.bitsOffset;
  if (left < 0 || left / layout.rowBytes < layout.height) return std::nullopt;
  return layout;
}

template <typename Byte>
std::span<Byte> RowOf(Byte* bytes, const Layout& layout, std::int32_t y) {
  const std::int64_t offset = layout.bitsOffset + (layout.height - 1 - y) * layout.rowBytes;
  return {bytes + offset, static_cast<std::size_t>(layout.rowBytes)};
}

template <typename Byte>
std::span<Byte> RowIn(Byte* bytes, std::size_t size, std::int32_t y) {
  const auto layout = LayoutOf({bytes, size});
  if (!layout || y < 0 || y >= layout->height) return {};
  return RowOf(bytes, *layout, y);
}

// The offset of a pixel of whole bytes, and in `nBytes` how many it has, or why there is none.
std::int64_t FindPixel(const Dib& dib, std::int32_t x, std::int32_t y, int& nBytes) {
  const auto layout = LayoutOf(dib);
  nBytes = -1;
  if (!layout || x < 0 || x >= layout->width || y < 0 || y >= layout->height) return 0;
  const bool hasBytes = layout->bitCount == 8 || layout->bitCount == 24;
  nBytes = hasBytes ? layout->bitCount / 8 : kFormatUnknown;
  return layout->bitsOffset + (layout->height - 1 - y) * layout->rowBytes + std::int64_t{x} * nBytes;
}

std::uint32_t Rgb(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
  return red << 16 | green << 8 | blue;
}

// The value of 5 bits on the scale of 8.
std::uint32_t WidenFiveBits(std::uint32_t value) {
  return value << 3 | value >> 2;
}

}  // namespace

bool IsDib(std::span<const std::uint8_t> bytes) {
  return LayoutOf(bytes).has_value();
}

Dib MakeBlackDib(std::int32_t width, std::int32_t height, int bitCount) {
  if (width <= 0 || height <= 0 || !IsDibBitCount(bitCount)) return {};
  const std::int64_t rowBytes = PaddedRowBytes(width, bitCount);
  const std::int32_t nColours = PaletteSize(bitCount, 0);
  if (rowBytes > kMaxDibBytes / height) return {};
  DibHeader header;
  header.width = width;
  header.height = height;
  header.bitCount = static_cast<std::uint16_t>(bitCount);
  header.imageSize = static_cast<std::uint32_t>(rowBytes * height);
  Dib dib;
  try {
    dib.resize(kDibHeaderBytes + static_cast<std::size_t>(nColours) * kPaletteEntryBytes +
               static_cast<std::size_t>(rowBytes * height));
  } catch (const std::bad_alloc&) {
    return {};
  }
  std::memcpy(dib.data(), &header, sizeof header);
  for (std::int32_t i = 0; i < nColours; ++i) {
    const auto grey = static_cast<std::uint8_t>(i * 255 / (nColours - 1));
    std::fill_n(dib.begin() + static_cast<std::ptrdiff_t>(kDibHeaderBytes) + i * 4, 3, grey);
  }
  return dib;
}

std::int32_t DibWidth(const Dib& dib) {
  const auto layout = LayoutOf(dib);
  return layout ? layout->width : 0;
}

std::int32_t DibHeight(const Dib& dib) {
  const auto layout = LayoutOf(dib);
  return layout ? layout->height : 0;
}

int DibBitCount(const Dib& dib) {
  const auto layout = LayoutOf(dib);
  return layout ? layout->bitCount : 0;
}

std::int32_t DibColorCount(const Dib& dib) {
  const auto layout = LayoutOf(dib);
  return layout ? layout->nColours : 0;
}

std::int32_t DibHeaderSize(const Dib& dib) {
  return IsDib(dib) ? static_cast<std::int32_t>(kDibHeaderBytes) : 0;
}

std::int64_t DibRowBytes(const Dib& dib) {
  const auto layout = LayoutOf(dib);
  return layout ? layout->rowBytes : 0;
}

std::uint8_t* DibBits(Dib& dib) {
  const auto layout = LayoutOf(dib);
  return layout ? dib.data() + layout->bitsOffset : nullptr;
}

const std::uint8_t* DibBits(const Dib& dib) {
  const auto layout = LayoutOf(dib);
  return layout ? dib.data() + layout->bitsOffset : nullptr;
}

std::span<std::uint8_t> DibRow(Dib& dib, std::int32_t y) {
  return RowIn(dib.data(), dib.size(), y);
}

std::span<const std::uint8_t> DibRow(const Dib& dib, std::int32_t y) {
  return RowIn(dib.data(), dib.size(), y);
}

int GetPixelColor(const Dib& dib, std::int32_t x, std::int32_t y, std::uint8_t* color) {
  int nBytes = 0;
  const std::int64_t offset = FindPixel(dib, x, y, nBytes);
  if (nBytes > 0) std::copy_n(dib.data() + offset, nBytes, color);
  return nBytes;
}

int SetPixelColor(Dib& dib, std::int32_t x, std::int32_t y, const std::uint8_t* color) {
  int nBytes = 0;
  const std::int64_t offset = FindPixel(dib, x, y, nBytes);
  if (nBytes > 0) std::copy_n(color, nBytes, dib.data() + offset);
  return nBytes;
}

DibColours::DibColours(const Dib& dib) : bitCount_(DibBitCount(dib)) {
  if (bitCount_ == 0 || bitCount_ > 8) return;
  palette_.resize(256);  // an index beyond the palette is black
  const std::uint8_t* entry = dib.data() + kDibHeaderBytes;
  for (std::int32_t i = 0; i < DibColorCount(dib); ++i, entry += kPaletteEntryBytes) {
    palette_[static_cast<std::size_t>(i)] = Rgb(entry[2], entry[1], entry[0]);
  }
}

std::uint32_t DibColours::Get(std::span<const std::uint8_t> row, std::int32_t x) const {
  const auto i = static_cast<std::size_t>(x);
  switch (bitCount_) {
    case 1:
      return palette_[row[i / 8] >> (7 - i % 8) & 1];
    case 4:
      return palette_[row[i / 2] >> (i % 2 == 0 ? 4 : 0) & 15];
    case 8:
      return palette_[row[i]];
    case 16: {
      const std::uint32_t pixel = row[2 * i] | static_cast<std::uint32_t>(row[2 * i + 1]) << 8;
      return Rgb(WidenFiveBits(pixel >> 10 & 31), WidenFiveBits(pixel >> 5 & 31), WidenFiveBits(pixel & 31));
    }
    default: {
      const std::size_t at = i * static_cast<std::size_t>(bitCount_ / 8);
      return Rgb(row[at + 2], row[at + 1], row[at]);
    }
  }
}

}  // namespace corvane
