#include "Geometry/Point.h"

#include <algorithm>
#include <cmath>
#include <istream>
#include <locale>
#include <ostream>

#include "Geometry/Cross.h"
#include "Geometry/Vector.h"

namespace corvane {

namespace {

bool IsDimension(int n) {
  return n >= 1 && n <= 3;
}

// A stream in the C locale for a scope.
class ClassicLocale {
 public:
  explicit ClassicLocale(std::ios& stream)
      : stream_(stream), previous_(stream.imbue(std::locale::classic())) {}
  ~ClassicLocale() { stream_.imbue(previous_); }
  ClassicLocale(const ClassicLocale&) = delete;
  ClassicLocale& operator=(const ClassicLocale&) = delete;

 private:
  std::ios& stream_;
  std::locale previous_;
};

template <typename Result>
Result Combined(const Point& p, const Point& q, double sign) {
  Result result;
  result.dim = std::max(p.dim, q.dim);
  result.x = p.x + sign * q.x;
  result.y = p.y + sign * q.y;
  result.z = p.z + sign * q.z;
  return result;
}

template <typename Number>
Point AffineSum(std::span<const Number> weights, std::span<const Point> points) {
  const std::size_t count = std::min(weights.size(), points.size());
  Point sum;
  sum.dim = 1;
  double weightSum = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    const double weight = weights[i];
    weightSum += weight;
    sum = sum + weight * points[i];
  }
  sum.err = weightSum == 1.0 ? Point::Enot : Point::Esum;
  return sum;
}

}  // namespace

template <typename Number>
void Point::Take(int n, const Number* values) {
  dim = n;
  err = IsDimension(n) ? Enot : Edim;
  if (err != Enot) return;
  x = values[0];
  if (n >= 2) y = values[1];
  if (n == 3) z = values[2];
}
template void Point::Take(int n, const int* values);
template void Point::Take(int n, const double* values);

int Point::SetDim(int n) {
  if (!IsDimension(n)) {
    err = Edim;
    return 1;
  }
  dim = n;
  if (n < 2) y = 0.0;
  if (n < 3) z = 0.0;
  return n;
}

const char* Point::ErrorText() const {
  switch (err) {
    case Enot:
      return "no error";
    case Edim:
      return "error: invalid dimension for operation";
    case Esum:
      return "error: Point sum is not affine";
    default:
      return "error: unknown err value";
  }
}

Point& Point::operator+=(const Vector& v) {
  dim = std::max(dim, v.dim);
  x += v.x;
  y += v.y;
  z += v.z;
  return *this;
}

Point& Point::operator-=(const Vector& v) {
  return *this += -v;
}

bool operator==(const Point& p, const Point& q) {
  return p.dim == q.dim && (p.dim < 1 || p.x == q.x) && (p.dim < 2 || p.y == q.y) &&
         (p.dim < 3 || p.z == q.z);
}

Vector operator-(const Point& p, const Point& q) {
  return Combined<Vector>(p, q, -1.0);
}
Point operator+(const Point& p, const Vector& v) {
  return Combined<Point>(p, v, 1.0);
}
Point operator-(const Point& p, const Vector& v) {
  return Combined<Point>(p, v, -1.0);
}
Point operator+(const Point& p, const Point& q) {
  return Combined<Point>(p, q, 1.0);
}

Point operator*(double c, const Point& p) {
  Point result;
  result.dim = p.dim;
  result.x = c * p.x;
  result.y = c * p.y;
  result.z = c * p.z;
  return result;
}
Point operator*(const Point& p, double c) {
  return c * p;
}
Point operator/(const Point& p, double c) {
  Point result;
  result.dim = p.dim;
  result.x = p.x / c;
  result.y = p.y / c;
  result.z = p.z / c;
  return result;
}

Point Asum(std::span<const int> weights, std::span<const Point> points) {
  return AffineSum(weights, points);
}
Point Asum(std::span<const double> weights, std::span<const Point> points) {
  return AffineSum(weights, points);
}

double Distance(const Point& p, const Point& q) {
  return std::sqrt(Distance2(p, q));
}
double Distance2(const Point& p, const Point& q) {
  const double dx = p.x - q.x;
  const double dy = p.y - q.y;
  const double dz = p.z - q.z;
  return dx * dx + dy * dy + dz * dz;
}

double IsLeft(Point& p0, const Point& p1, const Point& p2) {
  if (p0.dim != 2 || p1.dim != 2 || p2.dim != 2) p0.err = Point::Edim;
  return Cross(p0, p1, p2);
}

std::istream& operator>>(std::istream& in, Point& p) {
  const ClassicLocale locale(in);
  Point read;
  char mark = 0;
  in >> mark >> read.x >> mark;
  read.dim = 1;
  if (in && mark != ')') {
    in >> read.y >> mark;
    read.dim = 2;
  }
  if (in && mark != ')') {
    in >> read.z >> mark;
    read.dim = 3;
  }
  if (!in) return in;
  p.dim = read.dim;
  p.x = read.x;
  p.y = read.y;
  p.z = read.z;
  return in;
}

std::ostream& operator<<(std::ostream& out, const Point& p) {
  const ClassicLocale locale(out);
  if (!IsDimension(p.dim)) return out << "Error: P.dim = " << p.dim;
  out << "(" << p.x;
  if (p.dim >= 2) out << ", " << p.y;
  if (p.dim == 3) out << ", " << p.z;
  return out << ")";
}

}  // namespace corvane
