#include "Surface/Surface.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace corvane {
namespace {

std::vector<Point3> ScatteredPoints(int n) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> place(0.0, 10.0);
  std::vector<Point3> points;
  for (int i = 0; i < n; ++i) points.push_back({place(random), place(random), place(random)});
  return points;
}

double Phi(int kernel, double r2, double c) {
  if (kernel == kLinearKernel) return std::sqrt(r2);
  if (kernel == kThinPlateKernel) return r2 == 0.0 ? 0.0 : r2 / 2.0 * std::log10(r2);
  if (kernel == kMultiquadricKernel) return std::sqrt(r2 + c * c);
  return std::exp(-c * c * r2);
}

TEST(Surface, StartsAsAGaussianWithAPolynomialOfOrderTwo) {
  const Surface surface;
  EXPECT_EQ(surface.nPolyTerms, 5);
  EXPECT_EQ(surface.polyOrder, 2);
  EXPECT_EQ(surface.kernel, 3);
  EXPECT_EQ(surface.shape, 1.0);
}

TEST(Surface, GoesThroughItsPointsWithEveryKernel) {
  const std::vector<Point3> points = ScatteredPoints(40);
  for (int kernel = 0; kernel < 4; ++kernel) {
    Surface surface;
    ASSERT_EQ(surface.Fit(40, points.data(), kernel, 0.0, 0.7), 1);
    for (const Point3& point : points) {
      Point3 at = point;
      at.z = 0.0;
      surface.Evaluate(at);
      EXPECT_NEAR(at.z, point.z, 1e-7) << kernel;
    }
  }
}

TEST(Surface, SystemHoldsDistancesHeightsAndPolynomial) {
  const std::vector<Point3> points = {{0, 0, 5}, {3, 4, 6}, {1, 0, 7}};
  Surface surface;
  surface.nPoints = 3;
  surface.points = points.data();
  surface.kernel = kThinPlateKernel;
  ASSERT_EQ(surface.BuildSystem(0.5), 1);
  // 0.5 * 3 on the diagonal, the polynomial block's too; r^2 = 25, 1 and 20.
  const double far = 12.5 * std::log10(25.0);
  const double middle = 10.0 * std::log10(20.0);
  const double expected[8][8] = {{1.5, far, 0, 1, 0, 0, 0, 0},    {far, 1.5, middle, 1, 3, 4, 9, 16},
                                 {0, middle, 1.5, 1, 1, 0, 1, 0}, {1, 1, 1, 1.5, 0, 0, 0, 0},
                                 {0, 3, 1, 0, 1.5, 0, 0, 0},      {0, 4, 0, 0, 0, 1.5, 0, 0},
                                 {0, 9, 1, 0, 0, 0, 1.5, 0},      {0, 16, 0, 0, 0, 0, 0, 1.5}};
  for (int i = 0; i < 8; ++i) {
    for (int j = 0; j < 8; ++j) EXPECT_DOUBLE_EQ(surface.matrix[i][j], expected[i][j]) << i << ' ' << j;
  }
  EXPECT_EQ(surface.rhs, (std::vector<double>{5, 6, 7, 0, 0, 0, 0, 0}));
}

TEST(Surface, DiagonalOfEachKernel) {
  const std::vector<Point3> points = {{0, 0, 5}, {3, 4, 6}, {1, 0, 7}};
  const double diagonal[] = {0.0, 0.0, 2.5, 1.0};
  for (int kernel = 0; kernel < 4; ++kernel) {
    Surface surface;
    surface.nPoints = 3;
    surface.points = points.data();
    surface.kernel = kernel;
    surface.shape = -2.5;
    ASSERT_EQ(surface.BuildSystem(0.0), 1);
    EXPECT_EQ(surface.matrix[1][1], diagonal[kernel]);
    EXPECT_DOUBLE_EQ(surface.matrix[0][1], Phi(kernel, 25.0, -2.5));
    EXPECT_DOUBLE_EQ(surface.matrix[1][0], surface.matrix[0][1]);
  }
}

TEST(Surface, ThinPlateKeepsThePolynomialAndOtherKernelsLoseItForGood) {
  const std::vector<Point3> points = ScatteredPoints(10);
  Surface surface;
  surface.Fit(10, points.data(), kThinPlateKernel, 0.0, 1.0);
  EXPECT_EQ(surface.polyOrder, 2);
  EXPECT_EQ(surface.nPolyTerms, 5);
  EXPECT_EQ(surface.coefficients.size(), 15u);
  surface.Fit(10, points.data(), kLinearKernel, 0.0, 1.0);
  EXPECT_EQ(surface.polyOrder, 0);
  EXPECT_EQ(surface.nPolyTerms, 0);
  surface.Fit(10, points.data(), kThinPlateKernel, 0.0, 1.0);
  EXPECT_EQ(surface.nPolyTerms, 0);
  EXPECT_EQ(surface.coefficients.size(), 10u);
}

TEST(Surface, TwoPointsAtOnePlaceFailForEveryKernel) {
  std::vector<Point3> points = ScatteredPoints(5);
  points[4].x = points[1].x;
  points[4].y = points[1].y;
  for (int kernel = 0; kernel < 4; ++kernel) {
    Surface surface;
    EXPECT_EQ(surface.Fit(5, points.data(), kernel, 0.0, 1.0), -1);
    EXPECT_TRUE(surface.coefficients.empty());
  }
}

TEST(Surface, FailsWithoutPointsOrKernelOrMemory) {
  const std::vector<Point3> points = ScatteredPoints(4);
  Surface surface;
  EXPECT_EQ(surface.Fit(2, points.data(), 0, 0.0, 1.0), -1);
  EXPECT_EQ(surface.BuildSystem(0.0), -1);
  EXPECT_EQ(surface.Fit(4, points.data(), 4, 0.0, 1.0), -1);
  EXPECT_EQ(surface.Fit(4, points.data(), -1, 0.0, 1.0), -1);
  EXPECT_EQ(surface.Fit(Surface::kMaxOrder + 1, points.data(), 0, 0.0, 1.0), -2);
}

TEST(Surface, EvaluateReturnsTheHeightWithoutThePolynomial) {
  const std::vector<Point3> points = {{0, 0, 1}, {1, 0, 2}, {0, 2, 3}};
  Surface surface;
  surface.nPoints = 3;
  surface.points = points.data();
  surface.kernel = kThinPlateKernel;
  surface.coefficients = {2, 3, 5, 7, 11, 13, 17, 19};
  Point3 p{1, 2, 0};
  // r^2 = 5, 4 and 1 from the point; x = 1, y = 2.
  const double radial = 2 * 2.5 * std::log10(5.0) + 3 * 2.0 * std::log10(4.0) + 5 * 0.5 * std::log10(1.0);
  EXPECT_DOUBLE_EQ(surface.Evaluate(p), radial);
  EXPECT_DOUBLE_EQ(p.z, radial + 7 + 11 * 1 + 13 * 2 + 17 * 1 + 19 * 4);

  Point3 onPoint{1, 0, 0};
  EXPECT_DOUBLE_EQ(surface.Evaluate(onPoint), 2 * 0.5 * std::log10(1.0) + 5 * 2.5 * std::log10(5.0));
}

TEST(Surface, OddSettingsStayWithinTheSystem) {
  const std::vector<Point3> points = ScatteredPoints(6);
  Surface surface;
  surface.polyOrder = 0;
  surface.nPolyTerms = 2;
  surface.Fit(6, points.data(), kThinPlateKernel, 0.0, 1.0);
  EXPECT_EQ(surface.coefficients.size(), 8u);
  Point3 p{1, 2, 9};
  surface.Evaluate(p);
  surface.nPolyTerms = 5;  // no longer those of the fit
  p.z = 9.0;
  EXPECT_EQ(surface.Evaluate(p), 0.0);
  EXPECT_EQ(p.z, 9.0);
}

TEST(Surface, EvaluateLeavesPointsAloneWithoutAFit) {
  const Surface surface;
  Point3 p{1, 2, 9};
  EXPECT_EQ(surface.Evaluate(p), 0.0);
  EXPECT_EQ(p.z, 9.0);
}

TEST(Surface, GridHasAsManyRowsAsColumns) {
  const std::vector<Point3> points = {{0, 0, 1}, {4, 0, 2}, {0, 4, 3}};
  Surface surface;
  ASSERT_EQ(surface.Fit(3, points.data(), kLinearKernel, 0.0, 1.0), 1);
  std::vector<Point3> grid;
  surface.EvaluateGrid({0, 0, 2, 100}, 1.0, 0.5, grid);
  ASSERT_EQ(grid.size(), 9u);
  EXPECT_EQ(grid[1].x, 1.0);
  EXPECT_EQ(grid[1].y, 0.0);
  EXPECT_EQ(grid[8].x, 2.0);
  EXPECT_EQ(grid[8].y, 1.0);
  EXPECT_NEAR(grid[0].z, 1.0, 1e-12);
  grid.clear();
  surface.EvaluateGrid({0, 0, 2, 2}, 0.0, 1.0, grid);
  surface.EvaluateGrid({0, 0, 2, 2}, -1.0, 1.0, grid);
  EXPECT_TRUE(grid.empty());
}

}  // namespace
}  // namespace corvane
