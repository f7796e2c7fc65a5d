#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "StereoPair/PlainDense.h"

namespace corvane {

constexpr int kCols = 40;
constexpr int kRows = 24;

// "Area Correlation" in its plainest form, and a pair to try it on.

// The search along the right row above, from `start` on; the column becomes that of the best place.
inline double PlainSearchAbove(const StereoPair& pair, int row, int col, std::int64_t start,
                               std::int64_t half, std::int64_t& best) {
  const std::int64_t halfW = pair.targetWidth / 2;
  const std::int64_t halfH = pair.targetHeight / 2;
  const auto [rightCols, rightRows] = pair.rightImage->GetSize();
  const std::int64_t first = std::max(start - half, halfW);
  const std::int64_t last = std::min<std::int64_t>(start + half, rightCols - 1 - halfW);
  best = start;
  // The only row of the rectangle, which is cut to the rows of whole windows.
  const std::int64_t rightRow = row - 1;
  if (rightRow < halfH || rightRow > rightRows - 1 - halfH) return 0.0;
  double bestScore = 0.0;
  // The rectangle is one row high and its bottom does not belong to it: the start is never compared first,
  // and in the loop it is left out.
  for (std::int64_t x = first; x <= last; ++x) {
    if (x == start) continue;
    const double score = PlainCompare(pair, row - halfH, col - halfW, rightRow - halfH, x - halfW);
    if (score > bestScore) {
      bestScore = score;
      best = x;
    }
  }
  return bestScore;
}

struct PlainMaps {
  std::vector<std::int16_t> disparities;
  std::vector<float> scores;
};

inline PlainMaps PlainDense(const StereoPair& pair, const std::function<double(int, int)>& startOf,
                            std::int64_t half, int step) {
  const auto [cols, rows] = pair.leftImage->GetSize();
  PlainMaps maps;
  maps.disparities.resize(static_cast<std::size_t>(cols) * static_cast<std::size_t>(rows));
  maps.scores.resize(maps.disparities.size());
  for (int row = pair.targetHeight / 2 + 1; row < rows - pair.targetHeight / 2 - 1; row += step) {
    for (int col = pair.targetWidth / 2 + 1; col < cols - pair.targetWidth / 2 - 1; col += step) {
      std::int64_t best = 0;
      const auto shift = static_cast<std::int64_t>(startOf(row, col) / pair.disparityScale);
      const double score = PlainSearchAbove(pair, row, col, col - shift, half, best);
      const auto i = static_cast<std::size_t>(row * cols + col);
      maps.disparities[i] = score < pair.matchThreshold ? -128 : static_cast<std::int16_t>(col - best);
      maps.scores[i] = static_cast<float>(score);
    }
  }
  return maps;
}

inline void ExpectMaps(const StereoPair& pair, const PlainMaps& expected) {
  ASSERT_TRUE(pair.disparityMap && pair.measureMap);
  ExpectBytes(*pair.disparityMap, expected.disparities);
  ExpectBytes(*pair.measureMap, expected.scores);
}

// How often each disparity stands in the map.
inline std::map<double, int> CountDisparities(const StereoPair& pair) {
  std::map<double, int> counts;
  const auto [cols, rows] = pair.disparityMap->GetSize();
  for (int row = 0; row < rows; ++row) {
    for (int col = 0; col < cols; ++col) ++counts[PixelAt(*pair.disparityMap, row, col)];
  }
  return counts;
}

// A pair whose right image is the left one moved by -4 columns and one row up, with some noise of its own.
struct TexturedPair : VerticalPair {
  TexturedPair() : VerticalPair(kCols, kRows, LeftPixels(), RightPixels()) {
    pair.targetWidth = 5;
    pair.targetHeight = 3;
    pair.maxDisparity = 3;
    pair.columnOffset = -3;
    pair.matchThreshold = 0.75;
  }
  static std::vector<std::uint8_t> LeftPixels() { return Noise(kCols * kRows, 1); }
  static std::vector<std::uint8_t> RightPixels() {
    auto pixels = Moved(LeftPixels(), kCols, -1, -4);
    const auto noise = Noise(pixels.size(), 2);
    for (std::size_t i = 0; i < pixels.size(); i += 3) pixels[i] = noise[i];
    return pixels;
  }

  // The maps of the plain form whose searches begin at the offset.
  PlainMaps PlainMapsAtOffset(std::int64_t half = 3, int step = 1) const {
    return PlainDense(
        pair, [this](int, int) { return -static_cast<double>(pair.columnOffset); }, half, step);
  }
};

}  // namespace corvane
