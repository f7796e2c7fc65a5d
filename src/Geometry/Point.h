#pragma once

#include <iosfwd>
#include <span>

namespace corvane {

class Vector;

// A point of 1, 2 or 3 dimensions. Operations follow the affine rules: point - point is a vector, point +
// vector a point, and a weighted sum of points is one if the weights add up to 1. A result of two operands
// has the larger of their dimensions.
//
// Nothing throws or stops at an error; `err` tells of it. A new object that comes out of an operation has its
// own `err`, Enot if nothing else is said, whatever the operands have. What changes an object in place (+=,
// ^=, SetDim, Normalize, reading) leaves its `err` as it was, if nothing else is said; copies take it along.
class Point {
 public:
  enum Error { Enot, Edim, Esum };

  Point() = default;

  // Takes `n` values, 1 to 3. Any other `n` stays as `dim`, with `err` Edim and all coordinates 0.
  Point(int n, const int* values) { Take(n, values); }
  Point(int n, const double* values) { Take(n, values); }
  virtual ~Point() = default;
  Point(const Point&) = default;
  Point& operator=(const Point&) = default;

  int GetDim() const { return dim; }

  // Changes the dimension, with the coordinates beyond it set to 0. Returns it. For a number that is not 1, 2
  // or 3 it stays, `err` becomes Edim, and the result is 1.
  int SetDim(int n);

  // What `err` means: "no error" and the like.
  const char* ErrorText() const;

  // Moves the point, which gets the larger dimension.
  Point& operator+=(const Vector& v);
  Point& operator-=(const Vector& v);

  int dim = 3;
  int err = Enot;
  double x = 0.0;  // coordinates beyond the dimension are 0
  double y = 0.0;
  double z = 0.0;

 private:
  template <typename Number>
  void Take(int n, const Number* values);
};

// Whether the dimensions and as many coordinates are equal.
bool operator==(const Point& p, const Point& q);

// The way from q to p.
Vector operator-(const Point& p, const Point& q);

// The point moved by a vector.
Point operator+(const Point& p, const Vector& v);
Point operator-(const Point& p, const Vector& v);

// The coordinates times c, or divided by it.
Point operator*(double c, const Point& p);
Point operator*(const Point& p, double c);
Point operator/(const Point& p, double c);

// The sum of the coordinates, as a part of an affine sum.
Point operator+(const Point& p, const Point& q);

// The sum of weights[i] * points[i]. `err` is Esum unless the weights add up to exactly 1. Of spans of
// unequal lengths the shorter one counts; of none the origin in 1 dimension comes out, with Esum.
Point Asum(std::span<const int> weights, std::span<const Point> points);
Point Asum(std::span<const double> weights, std::span<const Point> points);

// The distance in all 3 coordinates, and its square.
double Distance(const Point& p, const Point& q);
double Distance2(const Point& p, const Point& q);

// Positive if p2 lies to the left of the way from p0 to p1, 0 if on its line, negative if to the right: twice
// the signed area of the triangle. `err` of p0 becomes Edim unless all three have 2 dimensions.
double IsLeft(Point& p0, const Point& p1, const Point& p2);

// "(x)", "(x, y)" or "(x, y, z)" in the C locale, in the stream's precision; "Error: P.dim = " and the number
// for any other dimension. When reading, any character that is no white space does for a bracket or comma;
// only ")" has a meaning, and the number of coordinates before it becomes the dimension. A point that can't
// be read stays as it was, and the stream has failed; `err` stays in any case.
std::istream& operator>>(std::istream& in, Point& p);
std::ostream& operator<<(std::ostream& out, const Point& p);

}  // namespace corvane
