// Where a point lies in the net, and how high the net is there.

#include <algorithm>
#include <array>
#include <cmath>

#include "Geometry/Cross.h"
#include "TIN/Prefetch.h"
#include "TIN/TIN.h"

namespace corvane {

namespace {

constexpr std::size_t kSearchBlock = 32;   // points whose reads are asked for together
constexpr std::size_t kLikelyTested = 12;  // of a cell's triangles: longer lists are rare

}  // namespace

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

bool TIN::IsWithinExtent(const Point3& p) const {
  const bool withinX = p.x >= extent.minX && p.x <= extent.maxX;
  const bool withinY = p.y >= extent.minY && p.y <= extent.maxY;
  return withinX && withinY;
}

int TIN::TestCandidates(const Point3& p, std::span<const std::int32_t> candidates,
                        std::int32_t& triangle) const {
  for (const std::int32_t i : candidates) {
    triangle = i;
    const int result = TestPoint(p, corners_[static_cast<std::size_t>(i)]);
    if (result >= 0) return result;
  }
  return -2;
}

int TIN::FindTriangle(const Point3& p, std::int32_t& triangle) const {
  if (!IsWithinExtent(p)) return -1;
  std::int32_t col = 0;
  std::int32_t row = 0;
  triangleGrid.CellOf(p.x, p.y, col, row);
  return TestCandidates(p, triangleGrid.GetCell(row, col), triangle);
}

void TIN::FindTriangles(std::span<const Point3> points, std::span<FoundTriangle> found) const {
  for (std::size_t first = 0; first < points.size(); first += kSearchBlock) {
    const std::size_t size = std::min(kSearchBlock, points.size() - first);
    FindBlock(points.subspan(first, size), found.subspan(first, size));
  }
}

// A search reads a cell's list by way of where it begins, and the triangles by way of the list: three waits
// for memory in a row. Here all points of the block go through each step before any goes on to the next.
void TIN::FindBlock(std::span<const Point3> points, std::span<FoundTriangle> found) const {
  struct Cell {
    std::int32_t row = -1;
    std::int32_t col = -1;
  };
  std::array<Cell, kSearchBlock> cells;
  std::array<std::span<const std::int32_t>, kSearchBlock> candidates;
  std::array<std::span<const std::int32_t>, kSearchBlock> likely;
  for (std::size_t i = 0; i < points.size(); ++i) {
    found[i] = {};
    if (!IsWithinExtent(points[i])) continue;
    triangleGrid.CellOf(points[i].x, points[i].y, cells[i].col, cells[i].row);
    triangleGrid.PrefetchCell(cells[i].row, cells[i].col);
  }
  for (std::size_t i = 0; i < points.size(); ++i) {
    candidates[i] = triangleGrid.GetCell(cells[i].row, cells[i].col);
    likely[i] = candidates[i].first(std::min(candidates[i].size(), kLikelyTested));
    if (likely[i].empty()) continue;
    Prefetch(&likely[i].front());
    Prefetch(&likely[i].back());
  }
  for (std::size_t i = 0; i < points.size(); ++i) {
    for (const std::int32_t t : likely[i]) Prefetch(&corners_[static_cast<std::size_t>(t)]);
  }
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (!IsWithinExtent(points[i])) continue;
    found[i].result = TestCandidates(points[i], candidates[i], found[i].triangle);
  }
}

double TIN::InterpolateZ(const Point3& p, std::int32_t triangle) const {
  const TINTriangle& found = GetTriangle(triangle);
  return InterpolateZ(p, GetVertex(triangle, 0), {found.nx, found.ny, found.nz});
}

double TIN::InterpolateZ(const Point3& p, const PointRecord& vertex, const Point3& normal) {
  if (!(std::fabs(normal.z) >= kMinNormalZ)) return p.z;
  return (normal.x * vertex.x + normal.y * vertex.y + normal.z * vertex.z - normal.x * p.x - normal.y * p.y) /
         normal.z;
}

}  // namespace corvane
