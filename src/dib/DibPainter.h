#pragma once

#include <cstdint>
#include <vector>

#include "dib/Dib.h"
#include "ui/Canvas.h"

namespace corvane {

// Draws a bitmap at any zoom: pixel by pixel where it is enlarged, as means of pixels where it is reduced.
// Only what is asked for is computed. Reduced forms of the bitmap, each half as large as the one before, are
// made at their first use.
class DibPainter {
 public:
  // The bitmap must outlive the painter, and not change.
  explicit DibPainter(const Dib& dib);

  // Draws what is visible of the bitmap, whose pixel (col, row) covers the content from (col, row) * zoom to
  // (col + 1, row + 1) * zoom.
  void Draw(Canvas& canvas, double zoom);

 private:
  // A reduced form: rows from the top, `nChannels` bytes a pixel: one of grey, or red, green, blue.
  struct Level {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint8_t> samples;
  };

  const Level& GetLevel(int index);
  Level ReduceBitmap() const;
  Level ReduceLevel(const Level& larger) const;
  void DrawEnlarged(Canvas& canvas, const PixelRect& place, double zoom) const;
  void DrawReduced(Canvas& canvas, const PixelRect& place, double zoom);

  const Dib& dib_;
  DibColours colours_;
  int nChannels_;
  std::vector<Level> levels_;  // level i is the bitmap reduced by 2^(i + 1)
};

}  // namespace corvane
