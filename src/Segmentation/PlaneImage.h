#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace corvane {

struct Rgb {
  std::uint8_t r = 0;
  std::uint8_t g = 0;
  std::uint8_t b = 0;

  friend bool operator==(const Rgb&, const Rgb&) = default;
};
static_assert(sizeof(Rgb) == 3);

// An image of bytes, colours or floats whose pixels lie one behind the other: (x, y) at y * width + x.
template <typename T>
struct PlaneImage {
  static constexpr int kChannels = std::is_same_v<T, Rgb> ? 3 : 1;

  PlaneImage() = default;
  // All pixels zero. Throws std::bad_alloc without memory.
  PlaneImage(std::int32_t imageWidth, std::int32_t imageHeight)
      : width(imageWidth),
        height(imageHeight),
        pixels(static_cast<std::size_t>(imageWidth) * static_cast<std::size_t>(imageHeight)) {}

  T* Row(std::int32_t y) { return pixels.data() + static_cast<std::ptrdiff_t>(y) * width; }
  const T* Row(std::int32_t y) const { return pixels.data() + static_cast<std::ptrdiff_t>(y) * width; }

  std::int32_t width = 0;
  std::int32_t height = 0;
  std::vector<T> pixels;
};

}  // namespace corvane
