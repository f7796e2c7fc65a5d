#pragma once

#include <QImage>
#include <vector>

#include "ui/Canvas.h"

namespace corvane {

// The pixels of a white picture that are no longer white.
inline std::vector<PixelPoint> DrawnPixels(const QImage& image) {
  std::vector<PixelPoint> drawn;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixel(x, y) != qRgb(255, 255, 255)) drawn.push_back({x, y});
    }
  }
  return drawn;
}

}  // namespace corvane
