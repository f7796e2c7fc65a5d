#pragma once

#include <cstdint>

#include "erdasimg/ErdasImg.h"

namespace corvane {

// New images from numbers and from images. Results are 1, or a negative status: -1 for a size that is not
// positive, -2 without memory; the result then has no pixels.

// An image of rows x cols pixels, cut towards zero, with zeroed bands in single allocations, and everything
// else as in `header`. -1 also for sizes that are no numbers; -2 for more than the machine's memory, too.
int MakeImage(ErdasHeader header, double rows, double cols, ErdasImg& image);

// The most cells of a DEM.
constexpr std::int64_t kMaxDemCells = std::int64_t{1} << 31;

// A DEM of rows x cols cells, cut towards zero: one band of floats, each `z`, with the place and cell of
// `header`. Also -1 if `xCell` or -`yCell` is no positive number; -2 for more than the machine's memory; -3
// for more than kMaxDemCells.
int FillDem(ErdasHeader header, double rows, double cols, double z, ErdasImg& dem);

// A DEM of one height over the rectangle: as many cells, rounded, as it is wide and high. `xMap` and `yMap`
// are the centre of the first cell. Results as of FillDem.
int FlatDem(const GroundExtent& rect, float cellSize, double z, ErdasImg& dem);

// Every Nth pixel of every Nth row, n >= 2: rows / n and cols / n of them, in cells n times as large.
// Kept: pixels are counted through the band as a whole, and after each sampled row the count goes on by rows
// mod n, which is where cols mod n would be expected: the sampled columns drift if the two differ. What would
// lie behind the band is 0.
int SampleImage(const ErdasImg& image, std::int32_t n, ErdasImg& sampled);

// Each pixel divided by n, as a double. 0 makes infinities, of which integer pixels take their own limits.
int DivideImage(const ErdasImg& image, std::int32_t n, ErdasImg& divided);

// First minus second where both have a pixel, in the first's pixel type, bytes and 16-bit integers wrapping
// around. Elsewhere, and for any type but bytes, signed 16-bit integers, floats and doubles, the result is 0.
int SubtractImages(const ErdasImg& first, const ErdasImg& second, ErdasImg& difference);

}  // namespace corvane
