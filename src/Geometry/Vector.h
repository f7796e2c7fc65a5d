#pragma once

#include <span>

#include "Geometry/Point.h"

namespace corvane {

// A direction with a length, in 1, 2 or 3 dimensions. Dimensions and `err` of results are as of points.
class Vector : public Point {
 public:
  using Point::Point;

  // The length in all 3 coordinates, and its square.
  double Len() const;
  double Len2() const;

  // Makes the length 1; a vector of length 0 stays.
  void Normalize();

  // The opposite, of the same dimension.
  Vector operator-() const;

  // The perpendicular (-y, x), keeping z. Its `err` is Edim unless this vector has 2 dimensions.
  Vector operator~() const;

  // The perp product in 2 dimensions, x * w.y - y * w.x. `err` of this vector becomes Edim unless both have 2
  // dimensions.
  double operator|(const Vector& w);

  // The operations below, in place.
  Vector& operator*=(double c);
  Vector& operator/=(double c);
  Vector& operator+=(const Vector& w);
  Vector& operator-=(const Vector& w);
  Vector& operator^=(const Vector& w);
};

// The coordinates times c, or divided by it.
Vector operator*(double c, const Vector& v);
Vector operator*(const Vector& v, double c);
Vector operator/(const Vector& v, double c);

// Coordinate by coordinate.
Vector operator+(const Vector& v, const Vector& w);
Vector operator-(const Vector& v, const Vector& w);

// The dot product of all 3 coordinates.
double operator*(const Vector& v, const Vector& w);

// The cross product, of dimension 3.
Vector operator^(const Vector& v, const Vector& w);

// The sum of weights[i] * vectors[i]. Of spans of unequal lengths the shorter one counts; of none the zero
// vector in 1 dimension comes out.
Vector Sum(std::span<const int> weights, std::span<const Vector> vectors);
Vector Sum(std::span<const double> weights, std::span<const Vector> vectors);

}  // namespace corvane
