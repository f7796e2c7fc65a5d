#include "numerics/Extents.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace corvane {
namespace {

using Row = std::vector<double>;

TEST(ExtentOfPoints, GivesMinimaThenMaxima) {
  const double points[] = {1, 9, -3, 4, 2, 8, 2, 5, -5};
  double extent[6];
  ExtentOfPoints(points, 3, 3, extent);
  EXPECT_EQ(Row(extent, extent + 6), Row({1, 2, -5, 4, 9, 8}));
}

TEST(ExtentOfPoints, OfNoPointsStaysAsItIs) {
  double extent[] = {1, 2, 3, 4};
  ExtentOfPoints(nullptr, 0, 2, extent);
  EXPECT_EQ(Row(extent, extent + 4), Row({1, 2, 3, 4}));
}

TEST(IntersectExtents, TakesTheInnerSides) {
  const double a[] = {0, 0, 10, 10};
  const double b[] = {4, -5, 20, 6};
  double out[4];
  EXPECT_EQ(IntersectExtents(a, b, out), 1);
  EXPECT_EQ(Row(out, out + 4), Row({4, 0, 10, 6}));
}

TEST(IntersectExtents, LetsBoxesThatTouchOverlap) {
  const double a[] = {0, 0, 10, 10};
  const struct {
    double b[4];
    Row overlap;
  } cases[] = {{{10, 2, 20, 8}, {10, 2, 10, 8}},
               {{-5, 2, 0, 8}, {0, 2, 0, 8}},
               {{2, 10, 8, 20}, {2, 10, 8, 10}},
               {{2, -5, 8, 0}, {2, 0, 8, 0}},
               {{10, 10, 20, 20}, {10, 10, 10, 10}}};
  for (const auto& [b, overlap] : cases) {
    double out[4];
    EXPECT_EQ(IntersectExtents(a, b, out), 1);
    EXPECT_EQ(Row(out, out + 4), overlap);
  }
}

TEST(IntersectExtents, OfBoxesApartIsNone) {
  const double a[] = {0, 0, 10, 10};
  const double apart[][4] = {{11, 0, 12, 10}, {-2, 0, -1, 10}, {0, 11, 10, 12}, {0, -2, 10, -1}};
  for (const auto& b : apart) {
    double out[] = {7, 7, 7, 7};
    EXPECT_EQ(IntersectExtents(a, b, out), 0);
    EXPECT_EQ(Row(out, out + 4), Row(4, 7));
  }
}

TEST(UnionExtents, WidensTheFirst) {
  double a[] = {0, 0, 10, 10};
  const double b[] = {4, -5, 20, 6};
  UnionExtents(a, b);
  EXPECT_EQ(Row(a, a + 4), Row({0, -5, 20, 10}));
}

TEST(RotatePoint, TurnsCounterClockwise) {
  double p[] = {2, 1};
  RotatePoint(p, std::numbers::pi / 2);
  EXPECT_NEAR(p[0], -1.0, 1e-15);
  EXPECT_NEAR(p[1], 2.0, 1e-15);
}

TEST(RotateExtent, BoundsTheTurnedCorners) {
  double e[] = {1, 2, 3, 5};
  RotateExtent(e, std::numbers::pi / 2);  // (x, y) goes to (-y, x)
  const double expected[] = {-5, 1, -2, 3};
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(e[i], expected[i], 1e-14);
}

// The corners (0, 0), (2, 0), (0, 1), (2, 1) go to (0, 0), (r, 1), (-1/2, r / 2), (r - 1/2, 1 + r / 2), where
// r is the root of 3; clockwise to (0, 0), (r, -1), (1/2, r / 2), (r + 1/2, r / 2 - 1).
TEST(RotateExtent, TurnsByAnyAngleEitherWay) {
  const double root = std::numbers::sqrt3;
  const double expected[][4] = {{-0.5, 0, root, 1 + root / 2}, {0, -1, root + 0.5, root / 2}};
  for (const int way : {0, 1}) {
    double e[] = {0, 0, 2, 1};
    RotateExtent(e, (way == 0 ? 1 : -1) * std::numbers::pi / 6);
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(e[i], expected[way][i], 1e-15) << way << i;
  }
}

TEST(Extents, LetANaNStayOnlyWhereItStandsFirst) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double points[] = {nan, 1, 5, nan, 7, 3};
  double extent[4];
  ExtentOfPoints(points, 3, 2, extent);
  EXPECT_TRUE(std::isnan(extent[0]) && std::isnan(extent[2]));
  EXPECT_EQ(extent[1], 1.0);
  EXPECT_EQ(extent[3], 3.0);

  const double a[] = {nan, 0, 10, 10};
  const double b[] = {1, nan, nan, 8};
  double out[4];
  EXPECT_EQ(IntersectExtents(a, b, out), 1);
  EXPECT_TRUE(std::isnan(out[0]));
  EXPECT_EQ(Row(out + 1, out + 4), Row({0, 10, 8}));
  double both[] = {nan, 0, 10, 10};
  UnionExtents(both, b);
  EXPECT_TRUE(std::isnan(both[0]));
  EXPECT_EQ(Row(both + 1, both + 4), Row({0, 10, 10}));
}

TEST(RotateExtent, ByNothingSortsTheCorners) {
  double e[] = {3, 5, 1, 2};
  RotateExtent(e, 0.0);
  EXPECT_EQ(Row(e, e + 4), Row({1, 2, 3, 5}));
}

}  // namespace
}  // namespace corvane
