#pragma once

#include <array>
#include <cstdint>
#include <span>
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
  // The bitmap reduced by 2^k, k being above 0: rows from the top, nChannels_ bytes a pixel, which are one of
  // grey, or red, green, blue.
  struct Level {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint8_t> samples;
  };

  void DrawEnlarged(Canvas& canvas, const PixelRect& place, double zoom) const;
  void DrawReduced(Canvas& canvas, const PixelRect& place, double zoom);

  void MakeLevels(int k);
  Level MakeLevel(int k) const;
  std::int32_t WidthOf(int k) const;
  std::int32_t HeightOf(int k) const;
  // Copies samples of a row of level k, 0 being the bitmap.
  void ReadSamples(int k, std::int32_t row, std::int32_t firstCol, std::int32_t nCols,
                   std::uint8_t* samples) const;
  void ExpandPixels(std::span<const std::uint8_t> row, std::int32_t firstCol, std::int32_t nCols,
                    std::uint8_t* samples) const;

  const Dib& dib_;
  DibColours colours_;
  std::int32_t width_;
  std::int32_t height_;
  int bitCount_;
  std::int32_t nChannels_;
  std::array<std::uint8_t, 256> greys_{};  // of the palette, where all of its colours are grey
  std::vector<Level> levels_;              // level k stands at k - 1
};

}  // namespace corvane
