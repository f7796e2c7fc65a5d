// Normals of triangles.

#include <cmath>

#include "TIN/TIN.h"

namespace corvane {

namespace {

void Normalize(TINTriangle& triangle) {
  const double square = triangle.nx * triangle.nx + triangle.ny * triangle.ny + triangle.nz * triangle.nz;
  if (square == 0.0) {
    triangle.nx = 0.0;
    triangle.ny = 0.0;
    triangle.nz = 1.0;
    return;
  }
  const double factor = 1.0 / std::sqrt(square);
  triangle.nx *= factor;
  triangle.ny *= factor;
  triangle.nz *= factor;
}

Point3 Difference(const PointRecord& to, const PointRecord& from) {
  return {to.x - from.x, to.y - from.y, to.z - from.z};
}

}  // namespace

// The cross product of the first two sides.
void TIN::ComputeNormal(TINTriangle& triangle) const {
  const auto corner = [&](int k) -> const TINVertex& {
    return vertices[static_cast<std::size_t>(triangle.v[k])];
  };
  const Point3 e1 = Difference(corner(1), corner(0));
  const Point3 e2 = Difference(corner(2), corner(1));
  triangle.nx = e1.y * e2.z - e2.y * e1.z;
  triangle.ny = e1.z * e2.x - e2.z * e1.x;
  triangle.nz = e1.x * e2.y - e2.x * e1.y;
}

void TIN::ComputeNormals() {
  for (TINTriangle& triangle : triangles) {
    ComputeNormal(triangle);
    Normalize(triangle);
  }
}

void TIN::RecomputeNormals(std::int32_t vertex) {
  for (const std::int32_t t : vertices[static_cast<std::size_t>(vertex)].triangles) {
    ComputeNormal(triangles[static_cast<std::size_t>(t)]);
  }
}

void TIN::NormalizeNormals(std::int32_t vertex) {
  for (const std::int32_t t : vertices[static_cast<std::size_t>(vertex)].triangles) {
    Normalize(triangles[static_cast<std::size_t>(t)]);
  }
}

}  // namespace corvane
