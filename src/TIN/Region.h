#pragma once

#include <cstdint>
#include <vector>

namespace corvane {

// An area of a mask, in ground units.
struct Region {
  static constexpr std::int32_t kRectangle = 0;
  static constexpr std::int32_t kPolygon = 1;

  std::int32_t type = kRectangle;
  std::int32_t nVertices = 0;
  std::vector<double> coords;  // x, y pairs; a rectangle's are left, top, right, bottom; a polygon is closed

  friend bool operator==(const Region&, const Region&) = default;
};

// One piece of a scan line, both ends included.
struct ScanRun {
  double from = 0.0;
  double to = 0.0;
};

// An area held as runs along scan lines, one list a row.
struct ScanShape {
  std::int32_t firstRow = 0;               // the row of rows[0]
  std::vector<std::vector<ScanRun>> rows;  // consecutive rows
};

}  // namespace corvane
