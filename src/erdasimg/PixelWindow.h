#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "erdasimg/ErdasImg.h"

namespace corvane {

class OutputFile;

// A block of an image's pixels, which may reach beyond the image or lie outside of it.
struct PixelWindow {
  std::int32_t firstRow = 0;
  std::int32_t firstCol = 0;
  std::int32_t nRows = 0;
  std::int32_t nCols = 0;

  friend bool operator==(const PixelWindow&, const PixelWindow&) = default;
};

// The window of a rectangle on the ground, from the pixel in which its upper left corner lies, or the first
// one, on: with as many whole cells as it is wide and high, at most as many as the image has.
// Kept: rows are counted in `xCell`, too, as pixels are taken to be square; and a window that begins within
// the image is not cut shorter for that.
PixelWindow WindowOf(const ErdasHeader& header, const GroundExtent& rect);

// The values of band 0 in a window, row by row. A pixel outside of the image repeats the last one read, at
// first 0.
class WindowRows {
 public:
  WindowRows(const ErdasImg& image, const PixelWindow& window);

  // The next row; valid until the next call. There are as many as the window has.
  std::span<const double> Next();

 private:
  const ErdasImg& image_;
  std::int64_t row_;  // of the image
  std::int32_t firstCol_;
  double last_ = 0.0;
  std::vector<double> values_;
};

// Writes the window of an image as an ASCII grid in which `noData` stands for no value. False if a write
// fails.
bool WriteAsciiGrid(const ErdasImg& image, const PixelWindow& window, double noData, OutputFile& file);

}  // namespace corvane
