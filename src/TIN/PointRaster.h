#pragma once

#include <cstdint>

#include "erdasimg/PixelWindow.h"

namespace corvane {

class OutputFile;
class TINPoints;

// A raster of heights and the points of a regular grid, one made from the other.

// Writes the pixels of band 0 in a window as a points file, row by row from the top, with the pixel in z and
// 0 in value; `xMap` and `yMap` are the upper left corner of the image. The header's extents are the first
// and the last pixel's centres, so that its spacings are `xCell` and -`yCell`.
// 1; -1: the file does not take the bytes; -2: more points than a points file can number.
// Kept: x and y are steps of one cell, each added in single precision, from the unrounded first centre on.
int WriteRasterPoints(const ErdasImg& image, const PixelWindow& window, OutputFile& file);

// Makes a DEM from points: a cell of `spacingX` x `spacingY` around each node of the grid over their extents,
// -4096 where there is no point, the last one's z where there are several. `nPlaced`, the points in the
// DEM's cells: those outside of the extents and those that are no numbers are left out. Results as of
// FillDem. Kept: a point's cell is counted from the corner as the header holds it, in single precision.
int PointsToDem(const TINPoints& points, ErdasImg& dem, std::int32_t& nPlaced);

}  // namespace corvane
