#pragma once

#include <cstdint>
#include <vector>

#include "numerics/Matrix.h"
#include "numerics/Point3.h"

namespace corvane {

// The distance functions of Surface, of r^2 in the plane and the shape c.
enum SurfaceKernel : std::int32_t {
  kLinearKernel = 0,        // r
  kThinPlateKernel = 1,     // r^2 / 2 * log10(r^2); the common logarithm, not the natural one
  kMultiquadricKernel = 2,  // sqrt(r^2 + c^2)
  kGaussianKernel = 3,      // exp(-c^2 r^2)
};

// A rectangle of the plane, in ground units.
struct SurfaceRect {
  double minX = 0.0;
  double minY = 0.0;
  double maxX = 0.0;
  double maxY = 0.0;
};

// A surface of radial basis functions through scattered points, or near them:
//
//   height(x, y) = sum of coefficient[i] * phi(distance to point i)
//                + coefficient[n] + coefficient[n + 1] x + coefficient[n + 2] y + coefficient[n + 3] x^2 +
//                ...
//
// Only the thin plate has the polynomial part. The system is dense: its cost is cubic in the number of
// points, its memory quadratic (32 MB for 2000 points).
class Surface {
 public:
  // A system of more unknowns, 800 MB and a minute's work, counts as one without memory.
  static constexpr std::int32_t kMaxOrder = 10000;

  virtual ~Surface() = default;

  // Fits the surface to n points, which must stay where they are as long as it is evaluated. `lambda`
  // smooths: n * lambda is added to the diagonal. What the solver returns: 1, or -1 for a singular system; -1
  // for fewer than 3 points; or the negative status of BuildSystem. Kept: with any kernel but the thin plate
  // the object loses its polynomial part for good.
  int Fit(std::int32_t n, const Point3* points, std::int32_t kernel, double lambda, double shape);

  // Fills matrix and right side from the points and settings that are there. 1; -1: no points, an unknown
  // kernel, or two points at one (x, y); -2: no memory.
  int BuildSystem(double lambda);

  // Sets p.z to the surface's height at (x, y). Returns the height without the polynomial part. Without a fit
  // p stays as it was, and the result is 0.
  double Evaluate(Point3& p) const;

  void EvaluateAll(std::int32_t n, Point3* points) const;

  // Appends points on the surface, row by row from the rectangle's minimum on, int(width / stepX) + 1 of them
  // in a row. None if that is no number from 1 to 10,000.
  // Kept: as many rows as there are points in a row, whatever the height.
  void EvaluateGrid(const SurfaceRect& rect, double stepX, double stepY, std::vector<Point3>& list) const;

  std::int32_t nPoints = 0;
  const Point3* points = nullptr;  // the caller's
  OwnedMatrix matrix;              // order x order; order = nPoints + nPolyTerms
  std::vector<double> rhs;
  std::vector<double> coefficients;
  std::int32_t nPolyTerms = 5;
  std::int32_t polyOrder = 2;
  std::int32_t kernel = kGaussianKernel;
  double shape = 1.0;

 private:
  std::int32_t GetOrder() const { return nPoints + nPolyTerms; }
  double Phi(double r2) const;
  bool FillDistances();
  void FillPolynomial();
};

}  // namespace corvane
