#pragma once

#include "StereoPair/PlainDense.h"

namespace corvane {

// The masked coefficient of the window around a pixel: disparityOf(row, col) is what a pixel has, NaN or -128
// for nothing.
inline double PlainMasked(const StereoPair& pair, int row, int col,
                          const std::function<double(int, int)>& disparityOf) {
  const auto [cols, rows] = pair.leftImage->GetSize();
  std::vector<double> a, b;
  for (int i = 0; i < pair.targetHeight; ++i) {
    for (int j = 0; j < pair.targetWidth; ++j) {
      const int y = row - pair.targetHeight / 2 + i;
      const int x = col - pair.targetWidth / 2 + j;
      if (y < 0 || y >= rows || x < 0 || x >= cols) continue;
      const double disparity = disparityOf(y, x);
      if (!std::isfinite(disparity) || disparity == -128.0) continue;
      a.push_back(ByteAt(*pair.leftImage, y, x));
      b.push_back(ByteAt(*pair.rightImage, y, static_cast<std::int64_t>(std::trunc(x - disparity))));
    }
  }
  return a.size() > 1 ? PlainCoefficient(a, b) : 0.0;
}

}  // namespace corvane
