#pragma once

#include <span>

namespace corvane {

// Points of the plane as plain pairs of numbers.
struct Point2D {
  double x = 0.0;
  double y = 0.0;

  friend bool operator==(const Point2D&, const Point2D&) = default;
};
using Vector2D = Point2D;

// An axis-parallel box.
struct Box2D {
  double minX = 0.0;
  double minY = 0.0;
  double maxX = 0.0;
  double maxY = 0.0;

  friend bool operator==(const Box2D&, const Box2D&) = default;
};

// The distance of two points, and its square.
double Distance2D(const Point2D& p, const Point2D& q);
double DistanceSquared2D(double x0, double y0, double x1, double y1);

// The square root of the sum of products: of a vector with itself its length. NaN if the sum is negative.
double Dot2D(const Vector2D& v, const Vector2D& w);

// The signed area of a closed polygon, positive for one that runs counter-clockwise (x to the right, y up).
// Its centroid goes to `centroid`, which stays as it was for an area of 0. A NaN makes all of them NaN.
double PolygonArea(std::span<const Point2D> points, Point2D& centroid);

// The bounding box of points, or of their coordinates x, y, x, y...; half a point not counted; stays
// as it was without points. A NaN in the first point stays in the box, in another one it is passed over.
void PolygonBounds(std::span<const Point2D> points, Box2D& box);
void PointListBounds(std::span<const double> values, Box2D& box);

}  // namespace corvane
