#include "Geometry/Plane2D.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace corvane {

namespace {

// The box of `count` points, of which `pointAt` gives the one of an index.
template <typename PointAt>
void Bound(std::size_t count, PointAt pointAt, Box2D& box) {
  for (std::size_t i = 0; i < count; ++i) {
    const Point2D p = pointAt(i);
    if (i == 0) box = {p.x, p.y, p.x, p.y};
    box.minX = std::min(box.minX, p.x);
    box.minY = std::min(box.minY, p.y);
    box.maxX = std::max(box.maxX, p.x);
    box.maxY = std::max(box.maxY, p.y);
  }
}

}  // namespace

double Distance2D(const Point2D& p, const Point2D& q) {
  return std::sqrt(DistanceSquared2D(p.x, p.y, q.x, q.y));
}

double DistanceSquared2D(double x0, double y0, double x1, double y1) {
  return (x1 - x0) * (x1 - x0) + (y1 - y0) * (y1 - y0);
}

double Dot2D(const Vector2D& v, const Vector2D& w) {
  return std::sqrt(v.x * w.x + v.y * w.y);
}

double PolygonArea(std::span<const Point2D> points, Point2D& centroid) {
  double sum = 0.0;
  double sumX = 0.0;
  double sumY = 0.0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point2D& p = points[i > 0 ? i - 1 : points.size() - 1];
    const Point2D& q = points[i];
    const double cross = p.x * q.y - q.x * p.y;
    sum += cross;
    sumX += (q.x + p.x) * cross;
    sumY += (q.y + p.y) * cross;
  }
  if (sum != 0.0) centroid = {sumX / (3.0 * sum), sumY / (3.0 * sum)};
  return sum / 2.0;
}

void PolygonBounds(std::span<const Point2D> points, Box2D& box) {
  Bound(
      points.size(), [&](std::size_t i) { return points[i]; }, box);
}

void PointListBounds(std::span<const double> values, Box2D& box) {
  Bound(
      values.size() / 2,
      [&](std::size_t i) {
        return Point2D{values[2 * i], values[2 * i + 1]};
      },
      box);
}

}  // namespace corvane
