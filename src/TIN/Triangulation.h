#pragma once

#include <cstdint>
#include <vector>

namespace corvane {

// The triangles of a point set.
struct Triangulation {
  std::int32_t nTriangles = 0;
  std::vector<std::int32_t> corners;  // three point indices a triangle, counter-clockwise
};

}  // namespace corvane
