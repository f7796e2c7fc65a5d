#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "OpenGL/Stereo_2Cursor/PhotoFixture.h"
#include "erdasimg/ImageBytes.h"
#include "numerics/SimdVersion.h"

namespace corvane {

// An image of ordinary numbers that differ from pixel to pixel.
inline void MakePattern(ErdasImg& image, std::uint16_t packType, std::uint16_t nBands, std::int32_t cols,
                        std::int32_t rows) {
  ASSERT_EQ(image.Create(HeaderOf(packType, nBands, cols, rows), false), 1);
  for (std::int32_t band = 0; band < nBands; ++band) {
    for (std::int32_t i = 0; i < cols * rows; ++i) {
      image.SetPixel(band, i / cols, i % cols, 1 + (7 * i + 31 * band) % 113);
    }
  }
}

inline void ExpectSamePixels(const ErdasImg& actual, const ErdasImg& expected) {
  ASSERT_EQ(BytesOf(*actual.GetHeader()), BytesOf(*expected.GetHeader()));
  for (std::int32_t band = 0; band < expected.GetBandCount(); ++band) {
    EXPECT_TRUE(BandBytes(actual, band) == BandBytes(expected, band)) << "band " << band;
  }
}

// How many pixels of a band are not 0.
inline int CountPainted(const ErdasImg& image, std::int32_t band = 0) {
  int n = 0;
  for (std::int32_t row = 0; row < image.GetSize().cy; ++row) {
    for (std::int32_t col = 0; col < image.GetSize().cx; ++col) {
      double value = 0.0;
      image.GetPixel(band, row, col, value);
      n += value != 0.0 ? 1 : 0;
    }
  }
  return n;
}

// A bright spot at (col, row), added to an image of bytes.
inline void AddMark(ErdasImg& image, double col, double row) {
  constexpr double kSigma = 1.6;
  const auto c0 = static_cast<std::int32_t>(std::floor(col));
  const auto r0 = static_cast<std::int32_t>(std::floor(row));
  for (std::int32_t r = r0 - 6; r <= r0 + 7; ++r) {
    for (std::int32_t c = c0 - 6; c <= c0 + 7; ++c) {
      double value = 0.0;
      image.GetPixel(0, r, c, value);
      const double d2 = (c - col) * (c - col) + (r - row) * (r - row);
      const double bright = 250.0 * std::exp(-0.5 * d2 / (kSigma * kSigma));
      image.SetPixel(0, r, c, std::fmin(value + bright, 255.0));
    }
  }
}

// The centre of the bright spot around (col, row): the mean of the pixels' places, weighted by their values.
inline bool FindMark(const ErdasImg& image, double col, double row, double& foundCol, double& foundRow) {
  const auto c0 = static_cast<std::int32_t>(std::lround(col));
  const auto r0 = static_cast<std::int32_t>(std::lround(row));
  double sum = 0.0;
  double sumCol = 0.0;
  double sumRow = 0.0;
  for (std::int32_t r = r0 - 8; r <= r0 + 8; ++r) {
    for (std::int32_t c = c0 - 8; c <= c0 + 8; ++c) {
      double value = 0.0;
      if (!image.GetPixel(0, r, c, value)) return false;
      sum += value;
      sumCol += value * c;
      sumRow += value * r;
    }
  }
  if (sum < 500.0) return false;
  foundCol = sumCol / sum;
  foundRow = sumRow / sum;
  return true;
}

}  // namespace corvane
