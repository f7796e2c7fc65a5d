#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include "numerics/Truncate.h"

namespace corvane {

// The pixel types of an image, `packType` in its header. Any other value reads as a byte image.
enum PackType : std::uint16_t {
  kPackByte = 0,
  kPackUInt16 = 2,
  kPackInt16 = 3,
  kPackUInt32 = 4,
  kPackInt32 = 5,
  kPackFloat = 6,
  kPackDouble = 7,
};

// What `visit` returns for a value of the pixel's type: so that the type is looked up once, outside of the
// loop over the pixels.
template <typename Visit>
decltype(auto) WithPixelType(std::uint16_t packType, Visit&& visit) {
  switch (packType) {
    case kPackUInt16:
      return visit(std::uint16_t{});
    case kPackInt16:
      return visit(std::int16_t{});
    case kPackUInt32:
      return visit(std::uint32_t{});
    case kPackInt32:
      return visit(std::int32_t{});
    case kPackFloat:
      return visit(float{});
    case kPackDouble:
      return visit(double{});
    default:
      return visit(std::uint8_t{});
  }
}

inline std::int32_t BytesOfPackType(std::uint16_t packType) {
  return WithPixelType(packType, [](auto pixel) { return static_cast<std::int32_t>(sizeof pixel); });
}

// Whether pixels of this type can be filtered and plotted.
inline bool IsByteOrReal(std::uint16_t packType) {
  return packType == kPackByte || packType == kPackFloat || packType == kPackDouble;
}

// Whether pixels of this type can be written as text: a type of the list.
inline bool HasTextForm(std::uint16_t packType) {
  return packType == kPackByte || (packType >= kPackUInt16 && packType <= kPackDouble);
}

// The value as a pixel: a float is narrowed, an integer type takes the value cut towards zero to its own
// width, so that 300 becomes 44 in a byte. What does not fit 32 bits, infinities included, is held at the
// nearest end of the type; not-a-number becomes 0.
template <typename Pixel>
Pixel PixelFrom(double value) {
  if constexpr (std::is_floating_point_v<Pixel>) {
    return static_cast<Pixel>(value);
  } else {
    using Limits = std::numeric_limits<Pixel>;
    if (value >= 4294967296.0 || (Limits::is_signed && value >= 2147483648.0)) return Limits::max();
    if (value <= -2147483649.0) return Limits::min();
    if (value != value) return 0;
    return static_cast<Pixel>(static_cast<std::int64_t>(value));
  }
}

}  // namespace corvane
