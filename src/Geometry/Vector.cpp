#include "Geometry/Vector.h"

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

Vector VectorOf(int dim, double x, double y, double z) {
  Vector v;
  v.dim = dim;
  v.x = x;
  v.y = y;
  v.z = z;
  return v;
}

template <typename Number>
Vector WeightedSum(std::span<const Number> weights, std::span<const Vector> vectors) {
  const std::size_t count = std::min(weights.size(), vectors.size());
  Vector sum = VectorOf(1, 0.0, 0.0, 0.0);
  for (std::size_t i = 0; i < count; ++i) sum += static_cast<double>(weights[i]) * vectors[i];
  return sum;
}

}  // namespace

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
  return VectorOf(dim, -x, -y, -z);
}

Vector Vector::operator~() const {
  Vector v = VectorOf(dim, -y, x, z);
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
  return *this = *this ^ w;
}

Vector operator*(double c, const Vector& v) {
  return VectorOf(v.dim, c * v.x, c * v.y, c * v.z);
}
Vector operator*(const Vector& v, double c) {
  return c * v;
}
Vector operator/(const Vector& v, double c) {
  return VectorOf(v.dim, v.x / c, v.y / c, v.z / c);
}

Vector operator+(const Vector& v, const Vector& w) {
  return VectorOf(std::max(v.dim, w.dim), v.x + w.x, v.y + w.y, v.z + w.z);
}
Vector operator-(const Vector& v, const Vector& w) {
  return VectorOf(std::max(v.dim, w.dim), v.x - w.x, v.y - w.y, v.z - w.z);
}

double operator*(const Vector& v, const Vector& w) {
  return v.x * w.x + v.y * w.y + v.z * w.z;
}

Vector operator^(const Vector& v, const Vector& w) {
  return VectorOf(3, v.y * w.z - v.z * w.y, v.z * w.x - v.x * w.z, v.x * w.y - v.y * w.x);
}

Vector Sum(std::span<const int> weights, std::span<const Vector> vectors) {
  return WeightedSum(weights, vectors);
}
Vector Sum(std::span<const double> weights, std::span<const Vector> vectors) {
  return WeightedSum(weights, vectors);
}

}  // namespace corvane
