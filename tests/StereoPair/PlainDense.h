#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "StereoPair/PairMaker.h"
#include "StereoPair/PlainCoefficient.h"
#include "support/TestFrontEnd.h"

namespace corvane {

// What dense matching is compared with: the same in its plainest form.

inline double ByteAt(const ErdasImg& image, std::int64_t row, std::int64_t col) {
  const auto [cols, rows] = image.GetSize();
  if (row < 0 || row >= rows || col < 0 || col >= cols) return 0.0;
  const auto bytes = image.GetBands().GetBand(0);
  const auto index = static_cast<std::size_t>(row * cols + col);
  return index < bytes.size() ? bytes[index] : 0.0;
}

// The windows that begin at these pixels.
inline double PlainCompare(const StereoPair& pair, std::int64_t leftRow, std::int64_t leftCol,
                           std::int64_t rightRow, std::int64_t rightCol) {
  std::vector<double> a, b;
  for (int i = 0; i < pair.targetHeight; ++i) {
    for (int j = 0; j < pair.targetWidth; ++j) {
      a.push_back(ByteAt(*pair.leftImage, leftRow + i, leftCol + j));
      b.push_back(ByteAt(*pair.rightImage, rightRow + i, rightCol + j));
    }
  }
  return PlainCoefficient(a, b);
}

// Random pixels 0 .. 255.
inline std::vector<std::uint8_t> Noise(std::size_t n, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<std::uint8_t> pixels(n);
  for (auto& pixel : pixels) pixel = static_cast<std::uint8_t>(random() % 256);
  return pixels;
}

// The image moved by (dRow, dCol): what leaves it is lost, what comes in is 0.
inline std::vector<std::uint8_t> Moved(const std::vector<std::uint8_t>& pixels, int cols, int dRow,
                                       int dCol) {
  std::vector<std::uint8_t> moved(pixels.size());
  const int rows = static_cast<int>(pixels.size()) / cols;
  for (int row = 0; row < rows; ++row) {
    for (int col = 0; col < cols; ++col) {
      const int fromRow = row - dRow;
      const int fromCol = col - dCol;
      if (fromRow < 0 || fromRow >= rows || fromCol < 0 || fromCol >= cols) continue;
      moved[static_cast<std::size_t>(row * cols + col)] =
          pixels[static_cast<std::size_t>(fromRow * cols + fromCol)];
    }
  }
  return moved;
}

// A float image of these values, row by row; what is not given is 0.
inline ErdasImg FloatImage(std::int32_t cols, std::int32_t rows, const std::vector<double>& values) {
  ErdasHeader header;
  header.packType = kPackFloat;
  header.cols = cols;
  header.rows = rows;
  ErdasImg image;
  image.Create(header, false);
  for (std::size_t i = 0; i < values.size(); ++i) {
    image.SetPixel(0, static_cast<std::int32_t>(i) / cols, static_cast<std::int32_t>(i) % cols, values[i]);
  }
  return image;
}

inline double PixelAt(const ErdasImg& image, std::int32_t row, std::int32_t col) {
  double value = std::numeric_limits<double>::quiet_NaN();
  image.GetPixel(0, row, col, value);
  return value;
}

// The image holds these pixels, in the form that it keeps them in.
template <typename Pixel>
void ExpectBytes(const ErdasImg& image, const std::vector<Pixel>& expected) {
  const auto bytes = image.GetBands().GetBand(0);
  ASSERT_EQ(bytes.size(), expected.size() * sizeof(Pixel));
  EXPECT_EQ(std::memcmp(bytes.data(), expected.data(), bytes.size()), 0);
}

// Confirms the form for left.lan and right.lan of the current folder after `change`.
inline std::function<bool(Form&)> FilledForm(const std::function<void(Form&)>& change = {}) {
  return [change](Form& form) {
    form.Find("leftImage")->value = std::string("left.lan");
    form.Find("rightImage")->value = std::string("right.lan");
    form.Find("windowWidth")->value = std::int64_t{5};
    form.Find("windowHeight")->value = std::int64_t{3};
    if (change) change(form);
    return true;
  };
}

}  // namespace corvane
