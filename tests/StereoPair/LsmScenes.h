#pragma once

#include <cmath>
#include <cstdint>
#include <random>

#include "erdasimg/ErdasImg.h"

namespace corvane {

// Images for least-squares matching.

// From 0 to 1 and back while x grows by 1, smoothly, and the same on every machine.
inline double Wave(double x) {
  const double t = x - std::floor(x);
  return 16.0 * t * t * (1.0 - t) * (1.0 - t);
}

// Grey values from 40 to 210, with waves of about 25 pixels.
inline double TextureAt(double x, double y) {
  return 40.0 + 90.0 * Wave(0.041 * x + 0.013 * y + 0.1) + 80.0 * Wave(-0.017 * x + 0.037 * y + 0.3);
}

// An image whose pixels are what `grey` gives for column and row, rounded if they are whole numbers.
template <typename Grey>
ErdasImg MakeImage(std::int32_t cols, std::int32_t rows, Grey grey, std::uint16_t packType = kPackByte) {
  ErdasHeader header;
  header.cols = cols;
  header.rows = rows;
  header.packType = packType;
  ErdasImg image;
  image.Create(header, true);
  const double half = packType == kPackFloat || packType == kPackDouble ? 0.0 : 0.5;
  for (std::int32_t row = 0; row < rows; ++row) {
    for (std::int32_t col = 0; col < cols; ++col) image.SetPixel(0, row, col, grey(col, row) + half);
  }
  return image;
}

inline ErdasImg MakeTexture(std::int32_t cols, std::int32_t rows) {
  return MakeImage(cols, rows, [](double x, double y) { return TextureAt(x, y); });
}

// What the texture shows around (x, y), turned, stretched and sheared by a1, a2, b1, b2.
struct TemplateShape {
  double x;
  double y;
  double a1 = 1.0;
  double a2 = 0.0;
  double b1 = 0.0;
  double b2 = 1.0;
  double gain = 1.0;
  double shift = 0.0;
};

inline ErdasImg MakeTemplate(std::int32_t cols, std::int32_t rows, const TemplateShape& shape) {
  return MakeImage(cols, rows, [&](double col, double row) {
    const double dx = col - (cols / 2.0 - 0.5);
    const double dy = row - (rows / 2.0 - 0.5);
    const double grey =
        TextureAt(shape.x + shape.a1 * dx + shape.a2 * dy, shape.y + shape.b1 * dx + shape.b2 * dy);
    return shape.gain * grey + shape.shift;
  });
}

// Numbers that are the same on every machine.
class Dice {
 public:
  explicit Dice(std::uint32_t seed) : random_(seed) {}

  double Between(double low, double high) { return low + (high - low) * 0x1p-32 * random_(); }
  std::uint8_t Byte() { return static_cast<std::uint8_t>(random_() >> 24); }

 private:
  std::mt19937 random_;
};

}  // namespace corvane
