#include "numerics/Extents.h"

#include <algorithm>
#include <cstddef>

#include "numerics/Angles.h"

namespace corvane {

namespace {

bool IsApart(const double a[4], const double b[4], int axis) {
  return a[2 + axis] < b[axis] || a[axis] > b[2 + axis];
}

}  // namespace

void ExtentOfPoints(const double* points, int n, int d, double* out) {
  if (n <= 0 || d <= 0) return;
  std::copy_n(points, d, out);
  std::copy_n(points, d, out + d);
  for (int i = 1; i < n; ++i) {
    const double* const point = points + static_cast<std::ptrdiff_t>(i) * d;
    for (int k = 0; k < d; ++k) {
      out[k] = std::min(out[k], point[k]);
      out[d + k] = std::max(out[d + k], point[k]);
    }
  }
}

int IntersectExtents(const double a[4], const double b[4], double out[4]) {
  if (IsApart(a, b, 0) || IsApart(a, b, 1)) return 0;
  for (int k = 0; k < 2; ++k) {
    out[k] = std::max(a[k], b[k]);
    out[2 + k] = std::min(a[2 + k], b[2 + k]);
  }
  return 1;
}

void UnionExtents(double a[4], const double b[4]) {
  for (int k = 0; k < 2; ++k) {
    a[k] = std::min(a[k], b[k]);
    a[2 + k] = std::max(a[2 + k], b[2 + k]);
  }
}

void RotatePoint(double p[2], double angle) {
  const double x = p[0];
  const double y = p[1];
  const double cosine = Cos(angle);
  const double sine = Sin(angle);
  p[0] = x * cosine - y * sine;
  p[1] = x * sine + y * cosine;
}

void RotateExtent(double e[4], double angle) {
  double corners[8] = {e[0], e[1], e[2], e[1], e[0], e[3], e[2], e[3]};
  for (int i = 0; i < 4; ++i) RotatePoint(corners + 2 * i, angle);
  ExtentOfPoints(corners, 4, 2, e);
}

}  // namespace corvane
