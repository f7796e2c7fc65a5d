// Where a point lies in the net, and how high the net is there.

#include <cmath>

#include "TIN/Cross.h"
#include "TIN/TIN.h"

namespace corvane {

// The number of the corner that p is exactly on, 3 inside or on an edge, -1 outside.
int TIN::TestPoint(const Point3& p, const Corners& corners) {
  for (int k = 0; k < 3; ++k) {
    const auto& a = corners.c[k];
    const auto& b = corners.c[(k + 1) % 3];
    if (p.x == a.x && p.y == a.y) return k;
    if (Cross(a, b, p) < 0.0) return -1;
  }
  return 3;
}

int TIN::FindTriangle(const Point3& p, std::int32_t& triangle) const {
  const bool withinX = p.x >= extent.minX && p.x <= extent.maxX;
  const bool withinY = p.y >= extent.minY && p.y <= extent.maxY;
  if (!withinX || !withinY) return -1;
  std::int32_t col = 0;
  std::int32_t row = 0;
  triangleGrid.CellOf(p.x, p.y, col, row);
  const auto candidates = triangleGrid.GetCell(row, col);
  for (const std::int32_t i : candidates) {
    triangle = i;
    const int result = TestPoint(p, corners_[static_cast<std::size_t>(i)]);
    if (result >= 0) return result;
  }
  return -2;
}

double TIN::InterpolateZ(const Point3& p, std::int32_t triangle) const {
  const TINTriangle& found = GetTriangle(triangle);
  return InterpolateZ(p, GetVertex(triangle, 0), {found.nx, found.ny, found.nz});
}

double TIN::InterpolateZ(const Point3& p, const PointRecord& vertex, const Point3& normal) {
  if (!(std::fabs(normal.z) >= 1e-12)) return p.z;
  return (normal.x * vertex.x + normal.y * vertex.y + normal.z * vertex.z - normal.x * p.x - normal.y * p.y) /
         normal.z;
}

}  // namespace corvane
