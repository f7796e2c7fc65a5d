#include "Surface/Surface.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>

#include "numerics/Solvers.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

constexpr std::int32_t kMaxGridSide = 10000;

double SquaredDistance(const Point3& a, const Point3& b) {
  const double dx = a.x - b.x;
  const double dy = a.y - b.y;
  return dx * dx + dy * dy;
}

}  // namespace

double Surface::Phi(double r2) const {
  switch (kernel) {
    case kLinearKernel:
      return std::sqrt(r2);
    case kThinPlateKernel:
      return r2 / 2.0 * std::log10(r2);
    case kMultiquadricKernel:
      return std::sqrt(r2 + shape * shape);
    default:
      return std::exp(-(shape * shape) * r2);
  }
}

int Surface::Fit(std::int32_t n, const Point3* fitted, std::int32_t fittedKernel, double lambda,
                 double fittedShape) {
  if (n < 3) return -1;
  nPoints = n;
  points = fitted;
  kernel = fittedKernel;
  shape = fittedShape;
  coefficients.clear();
  if (kernel != kThinPlateKernel) {
    polyOrder = 0;
    nPolyTerms = 0;
  }
  const int built = BuildSystem(lambda);
  if (built < 0) return built;
  const int solved = LuSolve(matrix.get(), GetOrder(), rhs.data());
  coefficients = rhs;
  return solved;
}

int Surface::BuildSystem(double lambda) {
  if (polyOrder >= 1) nPolyTerms = 2 * polyOrder + 1;
  if (nPoints < 1 || !points || kernel < kLinearKernel || kernel > kGaussianKernel) return -1;
  if (std::int64_t{nPoints} + nPolyTerms > kMaxOrder) return -2;
  const std::int32_t order = GetOrder();
  matrix.reset(AllocMatrix(order, order));
  if (!matrix) return -2;
  try {
    rhs.assign(static_cast<std::size_t>(order), 0.0);
  } catch (const std::bad_alloc&) {
    return -2;
  }
  if (!FillDistances()) return -1;
  if (kernel == kThinPlateKernel && nPolyTerms > 1) FillPolynomial();
  if (lambda != 0.0) {
    for (std::int32_t i = 0; i < order; ++i) matrix[i][i] += nPoints * lambda;
  }
  return 1;
}

// The block of distances and the heights; false if two points are at one place.
bool Surface::FillDistances() {
  const double diagonal[] = {0.0, 0.0, std::fabs(shape), 1.0};
  for (std::int32_t i = 0; i < nPoints; ++i) {
    double* const row = matrix[i];
    row[i] = diagonal[kernel];
    for (std::int32_t j = i + 1; j < nPoints; ++j) {
      const double r2 = SquaredDistance(points[i], points[j]);
      if (r2 == 0.0) return false;
      row[j] = Phi(r2);
      matrix[j][i] = row[j];
    }
    rhs[static_cast<std::size_t>(i)] = points[i].z;
  }
  return true;
}

void Surface::FillPolynomial() {
  for (std::int32_t i = 0; i < nPoints; ++i) {
    const Point3& p = points[i];
    const double terms[] = {1.0, p.x, p.y, p.x * p.x, p.y * p.y};
    const std::int32_t nTerms = std::min(nPolyTerms, nPolyTerms > 3 ? 5 : 3);
    for (std::int32_t k = 0; k < nTerms; ++k) {
      matrix[i][nPoints + k] = terms[k];
      matrix[nPoints + k][i] = terms[k];
    }
  }
}

double Surface::Evaluate(Point3& p) const {
  if (coefficients.empty() || static_cast<std::int32_t>(coefficients.size()) != GetOrder()) return 0.0;
  double radial = 0.0;
  for (std::int32_t i = 0; i < nPoints; ++i) {
    const double r2 = SquaredDistance(p, points[i]);
    if (kernel == kThinPlateKernel && r2 == 0.0) continue;
    radial += coefficients[static_cast<std::size_t>(i)] * Phi(r2);
  }
  double height = radial;
  const double* const polynomial = coefficients.data() + nPoints;
  if (nPolyTerms > 0) height += polynomial[0];
  double xPower = 1.0;
  double yPower = 1.0;
  for (std::int32_t k = 1; 2 * k < nPolyTerms; ++k) {
    xPower *= p.x;
    yPower *= p.y;
    height += polynomial[2 * k - 1] * xPower;
    height += polynomial[2 * k] * yPower;
  }
  p.z = height;
  return radial;
}

void Surface::EvaluateAll(std::int32_t n, Point3* evaluated) const {
  for (std::int32_t i = 0; i < n; ++i) Evaluate(evaluated[i]);
}

void Surface::EvaluateGrid(const SurfaceRect& rect, double stepX, double stepY,
                           std::vector<Point3>& list) const {
  const auto whole = TruncateToInt((rect.maxX - rect.minX) / stepX);
  if (!whole || *whole < 0 || *whole >= kMaxGridSide) return;
  for (std::int32_t row = 0; row <= *whole; ++row) {
    for (std::int32_t col = 0; col <= *whole; ++col) {
      Point3 p{rect.minX + col * stepX, rect.minY + row * stepY, 0.0};
      Evaluate(p);
      list.push_back(p);
    }
  }
}

}  // namespace corvane
