// Ground points of places in both images.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "StereoPair/PairMaker.h"
#include "support/MemoryLimit.h"

namespace corvane {
namespace {

struct Place {
  long double x = 0.0L;
  long double y = 0.0L;
  long double z = 0.0L;
};

// The middle between two rays by the normal equations of the shortest line: the parameters s, t minimize
// |l + s u - r - t v|.
Place PlainIntersection(const std::array<double, 3>& l, const PlainPhoto::Vector& u,
                        const std::array<double, 3>& r, const PlainPhoto::Vector& v) {
  const auto dot = [](const PlainPhoto::Vector& a, const PlainPhoto::Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
  };
  PlainPhoto::Vector w;
  for (std::size_t i = 0; i < 3; ++i) w[i] = static_cast<long double>(r[i]) - l[i];
  const long double uu = dot(u, u);
  const long double uv = dot(u, v);
  const long double vv = dot(v, v);
  const long double determinant = uu * vv - uv * uv;
  const long double s = (dot(w, u) * vv - dot(w, v) * uv) / determinant;
  const long double t = (dot(w, u) * uv - dot(w, v) * uu) / determinant;
  std::array<long double, 3> middle;
  for (std::size_t i = 0; i < 3; ++i) middle[i] = (l[i] + s * u[i] + r[i] + t * v[i]) / 2.0L;
  return {middle[0], middle[1], middle[2]};
}

void ExpectIntersection(const Point2& left, const Point2& right, const Point3& expected) {
  const VerticalPair made(10, 10);
  Point3 out;
  EXPECT_EQ(made.pair.IntersectImagePoints(left, right, out), 1);
  EXPECT_NEAR(out.x, expected.x, 1e-9);
  EXPECT_NEAR(out.y, expected.y, 1e-9);
  EXPECT_NEAR(out.z, expected.z, 1e-9);
}

TEST(StereoPairGround, IntersectionByHand) {
  // (1020, 1990, 300): 1500 * 20 / 1200 = 25 columns to the right, 12.5 rows down; 12.5 columns from the
  // right photo's centre.
  ExpectIntersection({75.0, 62.5}, {62.5, 62.5}, {1020.0, 1990.0, 300.0});
}

TEST(StereoPairGround, RaysThatMissMeetInTheMiddle) {
  // Directions (0.5, 0.1, -150) and (-0.5, -0.1, -150), 10 apart in x: after s of each the points are 10 - s
  // and 0.2 s apart, least for s = 10 / 1.04, and lie on either side of (1005, 2000).
  ExpectIntersection({55.0, 49.0}, {45.0, 51.0}, {1005.0, 2000.0, 1500.0 - 150.0 * 10.0 / 1.04});
}

TEST(StereoPairGround, RandomPhotosAgainstThePlainReference) {
  RandomPhotos random;
  int nTried = 0;
  while (nTried < 2000) {
    const PhotoElements l = random.Next();
    PhotoElements r = random.Next();
    r.x = l.x + random.In(-2000.0, 2000.0);
    r.y = l.y + random.In(-2000.0, 2000.0);
    r.z = l.z + random.In(-50.0, 50.0);
    AerialPhoto left;
    AerialPhoto right;
    SetPhoto(left, l);
    SetPhoto(right, r);
    StereoPair pair(left, right);
    const Point2 pLeft = {random.In(0.0, 3000.0), random.In(0.0, 3000.0)};
    const Point2 pRight = {random.In(0.0, 3000.0), random.In(0.0, 3000.0)};
    const auto u = PlainPhoto(l).Ray(pLeft.x, pLeft.y);
    const auto v = PlainPhoto(r).Ray(pRight.x, pRight.y);
    const Place expected = PlainIntersection({l.x, l.y, l.z}, u, {r.x, r.y, r.z}, v);
    Point3 out;
    EXPECT_EQ(pair.IntersectImagePoints(pLeft, pRight, out), 1);
    // Nearly parallel rays magnify rounding: by the square of the distance over the base.
    const double far = std::fabs(static_cast<double>(expected.z)) + std::fabs(l.z);
    if (!(far < 1e5)) continue;
    ++nTried;
    EXPECT_NEAR(out.x, static_cast<double>(expected.x), 1e-4);
    EXPECT_NEAR(out.y, static_cast<double>(expected.y), 1e-4);
    EXPECT_NEAR(out.z, static_cast<double>(expected.z), 1e-4);
  }
}

TEST(StereoPairGround, ParallelRaysAreNotFinite) {
  const VerticalPair made(10, 10);
  Point3 out;
  EXPECT_EQ(made.pair.IntersectImagePoints({70.0, 60.0}, {70.0, 60.0}, out), 1);
  EXPECT_FALSE(std::isfinite(out.x));
  EXPECT_FALSE(std::isfinite(out.y));
  EXPECT_FALSE(std::isfinite(out.z));
}

TEST(StereoPairGround, PartsOfScansAddTheirOrigins) {
  const VerticalPair made(10, 10);
  ErdasHeader leftHeader;
  leftHeader.xStart = 70;
  leftHeader.yStart = 60;
  ErdasHeader rightHeader;
  rightHeader.xStart = -100;
  rightHeader.yStart = 50;
  Point3 whole;
  Point3 part;
  made.pair.IntersectImagePoints({75.0, 62.5}, {62.5, 62.5}, whole);
  EXPECT_EQ(made.pair.IntersectSubsetPoints({5.0, 2.5}, {162.5, 12.5}, leftHeader, rightHeader, part), 1);
  EXPECT_EQ(part, whole);
}

TEST(StereoPairGround, PairsCountOnAndAreTakenAsTheyAre) {
  VerticalPair made(10, 10);
  made.left.image.GetHeader()->xStart = 1000;  // does not count
  const std::vector<MatchPair> pairs = {{-5, {75.0, 62.5}, {62.5, 62.5}, 0.5},
                                        {9, {50.0, 50.0}, {40.0, 50.0}, 0.25}};
  TINPoints points;
  points.AddPoint({77, 1, 2, 3, 4});
  EXPECT_EQ(made.pair.AddPairsToGround(pairs, points), 1);
  ASSERT_EQ(points.nPoints, 3);
  EXPECT_EQ(points.GetPoint(0)->id, 77);
  const PointRecord& first = *points.GetPoint(1);
  EXPECT_EQ(first.id, 1);
  EXPECT_NEAR(first.x, 1020.0, 1e-9);
  EXPECT_NEAR(first.z, 300.0, 1e-9);
  EXPECT_EQ(first.value, 0.5);
  const PointRecord& second = *points.GetPoint(2);
  EXPECT_EQ(second.id, 2);
  EXPECT_NEAR(second.x, 1000.0, 1e-9);
  EXPECT_NEAR(second.z, 0.0, 1e-9);
  EXPECT_EQ(second.value, 0.25);
}

TEST(StereoPairGround, APairInTheImagesAddsTheirOrigins) {
  VerticalPair made(10, 10);
  made.left.image.GetHeader()->xStart = 70;
  made.left.image.GetHeader()->yStart = 60;
  made.right.image.GetHeader()->xStart = 60;
  made.right.image.GetHeader()->yStart = 50;
  TINPoints points;
  points.AddPoint({});
  EXPECT_EQ(made.pair.AddGroundPoint({0, {5.0, 2.5}, {2.5, 12.5}, 0.5}, points), 1);
  ASSERT_EQ(points.nPoints, 2);
  const PointRecord& added = *points.GetPoint(1);
  EXPECT_EQ(added.id, 0) << "the pair's";
  EXPECT_NEAR(added.x, 1020.0, 1e-9);
  EXPECT_NEAR(added.y, 1990.0, 1e-9);
  EXPECT_NEAR(added.z, 300.0, 1e-9);
  EXPECT_EQ(added.value, 0.5);
}

TEST(StereoPairGround, PointListsKeepTheLeftIdsAndValues) {
  const VerticalPair made(10, 10);
  TINPoints left;
  TINPoints right;
  left.AddPoint({5, 75.0, 62.5, 0, 0.5});
  right.AddPoint({6, 62.5, 62.5, 0, 0.75});
  left.AddPoint({-1, 75.0, 62.5, 0, 0.5});
  right.AddPoint({7, 62.5, 62.5, 0, 0.75});
  left.AddPoint({8, 75.0, 62.5, 0, 0.5});
  right.AddPoint({-1, 62.5, 62.5, 0, 0.75});
  left.AddPoint({5, 50.0, 50.0, 0, -1.0});
  right.AddPoint({6, 40.0, 50.0, 0, 0.75});
  TINPoints points;
  EXPECT_EQ(made.pair.AddPointListsToGround(&left, &right, points), 1);
  ASSERT_EQ(points.nPoints, 2);
  EXPECT_EQ(points.GetPoint(0)->id, 5);
  EXPECT_EQ(points.GetPoint(0)->value, 0.5);
  EXPECT_NEAR(points.GetPoint(0)->z, 300.0, 1e-9);
  EXPECT_EQ(points.GetPoint(1)->id, 5);
  EXPECT_EQ(points.GetPoint(1)->value, -1.0);
  EXPECT_NEAR(points.GetPoint(1)->z, 0.0, 1e-9);
}

TEST(StereoPairGround, PointListsThatDoNotBelongTogether) {
  const VerticalPair made(10, 10);
  TINPoints two(2);
  TINPoints three(3);
  TINPoints points;
  EXPECT_EQ(made.pair.AddPointListsToGround(nullptr, &two, points), -1);
  EXPECT_EQ(made.pair.AddPointListsToGround(&two, nullptr, points), -1);
  EXPECT_EQ(made.pair.AddPointListsToGround(&two, &three, points), -2);
  EXPECT_EQ(points.nPoints, 0);
  const TINPoints none;
  EXPECT_EQ(made.pair.AddPointListsToGround(&none, &none, points), 1);
}

TEST(StereoPairGroundDeathTest, WithoutMemory) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer has a memory of its own";
#endif
  const VerticalPair made(10, 10);
  const std::vector<MatchPair> pairs(2000000, MatchPair{0, {55.0, 50.0}, {45.0, 50.0}, 1.0});
  TINPoints lists(2000000);
  const auto addPairs = [&] {
    TINPoints points;
    return made.pair.AddPairsToGround(pairs, points);
  };
  const auto addLists = [&] {
    TINPoints points;
    return made.pair.AddPointListsToGround(&lists, &lists, points);
  };
  EXPECT_EXIT(RunWithin(std::size_t{30} << 20, addPairs), testing::ExitedWithCode(11), "");
  EXPECT_EXIT(RunWithin(std::size_t{30} << 20, addLists), testing::ExitedWithCode(11), "");
}

TEST(StereoPairGround, GroundPointsAreMadeOnce) {
  StereoPair pair;
  TINPoints& points = pair.GetGroundPoints();
  EXPECT_EQ(points.spacingX, 1.0);
  points.AddPoint({});
  EXPECT_EQ(&pair.GetGroundPoints(), &points);
  EXPECT_EQ(pair.groundPoints->nPoints, 1);
}

}  // namespace
}  // namespace corvane
