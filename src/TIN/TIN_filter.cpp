// The slope filter and the smoother: they change heights, and nothing else.

#include <cmath>
#include <functional>
#include <new>

#include "TIN/TIN.h"
#include "TIN/TINPoints.h"
#include "numerics/Angles.h"

namespace corvane {

namespace {

double SquareDistance(const PointRecord& a, const PointRecord& b) {
  const double dx = a.x - b.x;
  const double dy = a.y - b.y;
  const double dz = a.z - b.z;
  return dx * dx + dy * dy + dz * dz;
}

}  // namespace

// The first corner whose height goes beyond that of all before it.
template <typename IsBeyond>
int TIN::FarthestCorner(const TINTriangle& triangle, IsBeyond isBeyond) const {
  const auto z = [&](int k) { return vertices[static_cast<std::size_t>(triangle.v[k])].z; };
  int farthest = 0;
  for (int k = 1; k < 3; ++k) {
    if (isBeyond(z(k), z(farthest))) farthest = k;
  }
  return farthest;
}

int TIN::HighestCorner(const TINTriangle& triangle) const {
  return FarthestCorner(triangle, std::greater<>());
}

int TIN::LowestCorner(const TINTriangle& triangle) const {
  return FarthestCorner(triangle, std::less<>());
}

double TIN::NeighbourMeanZ(std::int32_t vertex, double cosLimit) const {
  const TINVertex& v = vertices[static_cast<std::size_t>(vertex)];
  const auto k = static_cast<double>(v.triangles.size());
  double sumNz = 0.0;
  for (const std::int32_t t : v.triangles) sumNz += GetTriangle(t).nz;
  if (sumNz / k > cosLimit) return kNoDataZ;

  double sumZ = 0.0;
  for (const std::int32_t t : v.triangles) {
    for (int corner = 0; corner < 3; ++corner) sumZ += GetVertex(t, corner).z;
  }
  return (sumZ - k * v.z) / (2.0 * k);
}

// Moves the given corner to the height of its neighbours if it stands out by `minElevation` in the direction
// `sign`: 1 above the others, -1 below. 1 if it was moved, otherwise 0.
int TIN::LevelCorner(const TINTriangle& triangle, int corner, double sign, double cosLimit,
                     double minElevation) {
  const std::int32_t vertex = triangle.v[corner];
  const double z = vertices[static_cast<std::size_t>(vertex)].z;
  for (int k = 1; k < 3; ++k) {
    const double other = vertices[static_cast<std::size_t>(triangle.v[(corner + k) % 3])].z;
    const double standsOut = sign > 0.0 ? z - other : other - z;
    if (!(standsOut >= minElevation)) return 0;
  }
  const double newZ = NeighbourMeanZ(vertex, cosLimit);
  if (newZ == kNoDataZ) return 0;  // Kept: a mean of just this height moves nothing either
  vertices[static_cast<std::size_t>(vertex)].z = newZ;
  RecomputeNormals(vertex);
  NormalizeNormals(vertex);
  return 1;
}

std::int32_t TIN::SlopeFilter(double maxSlopeDegrees, double minElevation) {
  const double cosLimit = Cos(maxSlopeDegrees * kPi / 180.0);
  std::int32_t nChanged = 0;
  // Each pass sees the normals that it has changed itself.
  for (const TINTriangle& triangle : triangles) {
    if (!(triangle.nz <= cosLimit)) continue;
    nChanged += LevelCorner(triangle, HighestCorner(triangle), 1.0, cosLimit, minElevation);
  }
  for (const TINTriangle& triangle : triangles) {
    if (!(triangle.nz <= cosLimit)) continue;
    nChanged += LevelCorner(triangle, LowestCorner(triangle), -1.0, cosLimit, minElevation);
  }
  return nChanged;
}

// Kept: vertices that carry one id, such as the -1 of marked ones, do not count as each other's neighbours.
double TIN::BlendedZ(const TINVertex& v) const {
  double numerator = 0.0;
  double weight = 0.0;
  for (const std::int32_t t : v.triangles) {
    for (int corner = 0; corner < 3; ++corner) {
      const TINVertex& c = GetVertex(t, corner);
      if (c.id == v.id) continue;
      const double square = SquareDistance(v, c);
      if (square == 0.0) continue;
      const double w = 1.0 / std::sqrt(square);
      numerator += w * c.z;
      weight += w;
    }
  }
  return (numerator / weight + v.z) / 2.0;
}

int TIN::Smooth() {
  std::vector<double> blended;
  try {
    blended.reserve(vertices.size());
  } catch (const std::bad_alloc&) {
    return -1;
  }
  for (const TINVertex& vertex : vertices) blended.push_back(BlendedZ(vertex));
  for (std::size_t v = 0; v < vertices.size(); ++v) vertices[v].z = blended[v];
  return 1;
}

void TIN::SetPointInterval(double interval) {
  if (interval == 0.0) interval = std::sqrt((ptsMaxX - ptsMinX) * (ptsMaxY - ptsMinY) / nPoints);
  if (interval == 0.0) interval = 1.0;
  spacingX = interval;
  spacingY = interval;
}

}  // namespace corvane
