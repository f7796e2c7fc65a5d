#include "Geometry/Vector.h"

#include <cmath>

#include "Geometry/Coordinatewise.h"

namespace corvane {

double Vector::Len() const {
  return std::sqrt(Len2());
}
double Vector::Len2() const {
  return x * x + y * y + z * z;
}

void Vector::Normalize() {
  const double length = Len();
  if (length != 0.0) *this /= length;
}

Vector Vector::operator-() const {
  return Made<Vector>(dim, -x, -y, -z);
}

Vector Vector::operator~() const {
  Vector v = Made<Vector>(dim, -y, x, z);
  if (dim != 2) v.err = Edim;
  return v;
}

double Vector::operator|(const Vector& w) {
  if (dim != 2 || w.dim != 2) err = Edim;
  return x * w.y - y * w.x;
}

Vector& Vector::operator*=(double c) {
  x *= c;
  y *= c;
  z *= c;
  return *this;
}

Vector& Vector::operator/=(double c) {
  x /= c;
  y /= c;
  z /= c;
  return *this;
}

Vector& Vector::operator+=(const Vector& w) {
  Point::operator+=(w);
  return *this;
}

Vector& Vector::operator-=(const Vector& w) {
  Point::operator-=(w);
  return *this;
}

Vector& Vector::operator^=(const Vector& w) {
  const Vector product = *this ^ w;
  dim = product.dim;
  x = product.x;
  y = product.y;
  z = product.z;
  return *this;
}

Vector operator*(double c, const Vector& v) {
  return Scaled<Vector>(v, c);
}
Vector operator*(const Vector& v, double c) {
  return Scaled<Vector>(v, c);
}
Vector operator/(const Vector& v, double c) {
  return Divided<Vector>(v, c);
}

Vector operator+(const Vector& v, const Vector& w) {
  return Combined<Vector>(v, w, 1.0);
}
Vector operator-(const Vector& v, const Vector& w) {
  return Combined<Vector>(v, w, -1.0);
}

double operator*(const Vector& v, const Vector& w) {
  return v.x * w.x + v.y * w.y + v.z * w.z;
}

Vector operator^(const Vector& v, const Vector& w) {
  return Made<Vector>(3, v.y * w.z - v.z * w.y, v.z * w.x - v.x * w.z, v.x * w.y - v.y * w.x);
}

Vector Sum(std::span<const int> weights, std::span<const Vector> vectors) {
  return WeightedSum(weights, vectors);
}
Vector Sum(std::span<const double> weights, std::span<const Vector> vectors) {
  return WeightedSum(weights, vectors);
}

}  // namespace corvane
