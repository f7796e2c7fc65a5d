#include "Geometry/Point.h"

#include <algorithm>
#include <cmath>
#include <istream>
#include <iterator>
#include <locale>
#include <ostream>

#include "Geometry/Coordinatewise.h"
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

// The texts of Point::Error.
constexpr const char* kErrorTexts[] = {"no error", "error: invalid dimension for operation",
                                       "error: Point sum is not affine"};

template <typename Number>
Point AffineSum(std::span<const Number> weights, std::span<const Point> points) {
  Point sum = WeightedSum(weights, points);
  double weightSum = 0.0;
  for (const Number weight : weights.first(std::min(weights.size(), points.size()))) weightSum += weight;
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
  const bool isKnown = err >= 0 && err < static_cast<int>(std::size(kErrorTexts));
  return isKnown ? kErrorTexts[err] : "error: unknown err value";
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
  return Scaled<Point>(p, c);
}
Point operator*(const Point& p, double c) {
  return Scaled<Point>(p, c);
}
Point operator/(const Point& p, double c) {
  return Divided<Point>(p, c);
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
  return (p - q).Len2();
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
