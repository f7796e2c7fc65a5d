#pragma once

#include <algorithm>
#include <cstdint>

#include "DisparityScene.h"

namespace corvane {

// What the plain forms of matching disparities share, and the scenes that they are tried on.

// The equations of smoothness of a grid of disparities: each along its row, then each along its column. They
// are the rows of the design from `rows` on.
inline void AddPlainSmoothness(double* const* rows, int nCols, int nRows, const Numbers& disparities,
                               Numbers& observations, Numbers& weights) {
  const int n = nCols * nRows;
  for (int k = 0; k < 2 * n; ++k) {
    const int i = k % n, place = k < n ? i % nCols : i / nCols, count = k < n ? nCols : nRows;
    const int step = k < n ? 1 : nCols;
    double* const row = rows[k];
    if (count > 1 && place > 0) row[i - step] = -1.0;
    if (count > 1 && place < count - 1) row[i + step] = place == 0 ? 1.0 : -1.0;
    if (count > 1) row[i] = place == 0 ? -1.0 : place == count - 1 ? 1.0 : 2.0;
    double sum = 0.0;
    for (int j = 0; j < n; ++j) sum += row[j] * disparities[static_cast<std::size_t>(j)];
    observations.push_back(-sum);
    weights.push_back(100.0);
  }
}

// Of even seeds ground that slopes, of odd ones noise over a faint likeness.
inline DisparityScene RandomScene(std::uint32_t seed, Dice& dice) {
  return DisparityScene([&dice, seed](double x, double y) {
    return seed % 2 == 0 ? TextureAt(x + 5.0 + 0.03 * y, y) : 40.0 + 0.3 * TextureAt(x, y) + dice.Byte() / 2;
  });
}

struct RandomPlaces {
  RandomPlaces(std::uint32_t seed, Dice& dice) : limit(seed % 3 == 0 ? 8.0 : 30.0) {
    left.x = dice.Between(0.0, 95.0);
    left.y = dice.Between(0.0, 75.0);
    right = {std::min(98.0, std::max(0.0, left.x - dice.Between(2.0, 8.0))), left.y};
  }

  Point2 left;
  Point2 right;
  double limit;  // of the disparities
};

}  // namespace corvane
