#pragma once

namespace corvane {

// The axis-parallel box around points, in ground units. The order of the six is fixed: it is the order in
// which extents are handed around and shown. (Points files and grid indexes keep left, top, right, bottom.)
struct Extent6 {
  double minX = 0.0;
  double maxX = 0.0;
  double minY = 0.0;
  double maxY = 0.0;
  double minZ = 0.0;
  double maxZ = 0.0;

  friend bool operator==(const Extent6&, const Extent6&) = default;
};

}  // namespace corvane
