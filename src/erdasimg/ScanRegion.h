#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace corvane {

// One row of a polygon raster: the columns where the polygon's edges cross it, ascending. Each pair is one
// run inside the polygon.
struct ScanRow {
  double y = 0.0;  // the row, in pixels
  std::int32_t count = 0;
  std::vector<double> x;

  // The crossings that are counted and there.
  std::span<const double> GetCrossings() const {
    return std::span(x).first(std::min(static_cast<std::size_t>(std::max(count, 0)), x.size()));
  }
};

// A polygon as runs of pixels. Coordinates are pixel columns and rows, whole numbers held as doubles.
struct ScanRegion {
  double rowY = 0.0;  // scratch while it is built
  double minX = 0.0;  // the bounding box of the crossings
  double minY = 0.0;
  double maxX = 0.0;
  double maxY = 0.0;
  std::int32_t rowCount = 0;
  std::vector<ScanRow> rows;
  std::int32_t area = 0;  // pixels in the runs

  // The rows that are counted and there.
  std::span<const ScanRow> GetRows() const {
    return std::span(rows).first(std::min(static_cast<std::size_t>(std::max(rowCount, 0)), rows.size()));
  }

  // Counts the pixels of the runs, the sum of trunc(x[2k + 1]) - trunc(x[2k]), into `area` and returns it;
  // -1 if a row has an odd number of crossings, and `area` then counts the rows before it.
  std::int32_t ComputeArea();
};

// Turns a closed polygon of `count` points, x and y pairs in ground units, into the runs of the raster whose
// pixel (0, 0) begins at the origin; x runs along the rows. Row r is the line y = r * cellY + originY. The
// region's rows go from floor((minY - originY) / cellY) to ceil((maxY - originY) / cellY), or the other way
// round; where an edge crosses one its x, in cells from the origin, is cut towards zero. Rows that no edge
// crosses are empty.
//
// 1; -1 if a row has an odd number of crossings. -1, with an empty region, for fewer than 3 points, a number
// that is not finite, a cell of 0, rows beyond 32 bits, and more than 4 million rows or 64 million crossings.
int RasterizePolygon(std::int32_t count, const double* points, double originX, double originY, double cellY,
                     double cellX, ScanRegion& region);

// The rows from `firstRow` to `lastRow` of that region alone, up to before the first row of the whole region
// that has an odd number of crossings. However far the polygon reaches, these rows are all that is held.
//
// 1; -1 if there is such a row at or before `lastRow`. -1, with an empty region, as above, the limits being
// on these rows.
int RasterizePolygonRows(std::int32_t count, const double* points, double originX, double originY,
                         double cellY, double cellX, std::int32_t firstRow, std::int32_t lastRow,
                         ScanRegion& region);

}  // namespace corvane
