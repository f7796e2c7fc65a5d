// Heights and places from several photos.

#include "OpenGL/Stereo_2Cursor/PhotoIntersection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "OpenGL/Stereo_2Cursor/PhotoFixture.h"

namespace corvane {
namespace {

// Three photos around (1300, 2100), with a principal point.
class PhotoIntersectionTest : public testing::Test {
 protected:
  void SetUp() override {
    SetPhoto(photos[0], {.principalX = 0.4, .principalY = -0.3, .omega = 1.0, .phi = -2.0, .kappa = 3.0});
    SetPhoto(photos[1], {.principalX = 0.4, .principalY = -0.3, .x = 1600.0, .y = 2010.0, .omega = -1.5});
    SetPhoto(photos[2], {.principalX = 0.4, .principalY = -0.3, .x = 1350.0, .y = 2700.0, .kappa = 180.0});
  }

  PhotoRay RayOf(int photo, const Point3& point) const {
    PhotoRay ray{&photos[photo], {}};
    ray.photo->GroundToImage(point.x, point.y, point.z, ray.pixel.x, ray.pixel.y);
    return ray;
  }

  std::vector<PhotoRay> RaysOf(const Point3& point) const {
    return {RayOf(0, point), RayOf(1, point), RayOf(2, point)};
  }

  static void ExpectNear(const Point3& point, const Point3& expected, double tolerance) {
    EXPECT_NEAR(point.x, expected.x, tolerance);
    EXPECT_NEAR(point.y, expected.y, tolerance);
    EXPECT_NEAR(point.z, expected.z, tolerance);
  }

  // The sum of squares of a point's distances from the rays' pixels, in photo units.
  static double SquaresAt(const std::vector<PhotoRay>& rays, const Point3& point) {
    double sum = 0.0;
    for (const PhotoRay& ray : rays) {
      const double pixel[2] = {ray.pixel.x, ray.pixel.y};
      double measured[3];
      double x = 0.0;
      double y = 0.0;
      ray.photo->ImageToPhoto(pixel, measured);
      ray.photo->GroundToPhoto(point.x, point.y, point.z, x, y);
      sum += (x - measured[0]) * (x - measured[0]) + (y - measured[1]) * (y - measured[1]);
    }
    return sum;
  }

  AerialPhoto photos[3];
};

TEST_F(PhotoIntersectionTest, RaysThatMeetGiveTheirPoint) {
  const Point3 truth = {1280.0, 2150.0, 275.0};
  Point3 point;
  EXPECT_EQ(IntersectMany(RaysOf(truth), point), 1);
  ExpectNear(point, truth, 1e-7);
}

TEST_F(PhotoIntersectionTest, TheSumOfSquaresIsSmallest) {
  auto rays = RaysOf({1280.0, 2150.0, 275.0});
  rays[0].pixel.x += 1.5;
  rays[1].pixel.y -= 2.0;
  rays[2].pixel.x += 0.7;
  Point3 point;
  ASSERT_EQ(IntersectMany(rays, point), 1);
  const double least = SquaresAt(rays, point);
  EXPECT_GT(least, 0.0);
  for (const double step : {-0.01, 0.01}) {
    EXPECT_GT(SquaresAt(rays, {point.x + step, point.y, point.z}), least);
    EXPECT_GT(SquaresAt(rays, {point.x, point.y + step, point.z}), least);
    EXPECT_GT(SquaresAt(rays, {point.x, point.y, point.z + step}), least);
  }
}

TEST_F(PhotoIntersectionTest, TwoRaysGiveWhatIntersectRaysGives) {
  const Point3 truth = {1280.0, 2150.0, 275.0};
  Point3 point;
  EXPECT_EQ(IntersectMany(std::vector<PhotoRay>{RayOf(0, truth), RayOf(1, truth)}, point), 1);
  ExpectNear(point, truth, 1e-7);
}

TEST_F(PhotoIntersectionTest, RoundsAreLogged) {
  const Point3 truth = {1280.0, 2150.0, 275.0};
  std::string log = "before";
  Point3 point;
  ASSERT_EQ(IntersectMany(std::vector<PhotoRay>{RayOf(0, truth), RayOf(1, truth)}, point, &log), 1);
  EXPECT_THAT(log, testing::StartsWith("before\nB:\n"));
  std::vector<std::string> lines;
  std::string line;
  for (const char c : log) {
    if (c != '\n') {
      line += c;
    } else {
      lines.push_back(line);
      line.clear();
    }
  }
  // A round: empty, B:, 4 rows, empty, E:, 4 rows, empty, deltaParam:, 1 row.
  ASSERT_GE(lines.size(), 15u);
  EXPECT_EQ(lines.size() % 15, 0u);
  EXPECT_EQ(lines[7], "E:");
  EXPECT_EQ(lines[13], "deltaParam:");
  EXPECT_EQ(std::count(lines[2].begin(), lines[2].end(), ','), 2);
  EXPECT_EQ(std::count(lines[8].begin(), lines[8].end(), ','), 0);
  // Rays that meet leave nothing to correct.
  for (const char c : lines[14]) EXPECT_TRUE(std::string("-0., ").find(c) != std::string::npos) << lines[14];
}

TEST_F(PhotoIntersectionTest, ASystemThatCanNotBeSolvedIsLoggedBeforeItFails) {
  AerialPhoto flat;  // its pixels have rays, but they move nothing: f is 0
  SetPhoto(flat, {});
  flat.focalLength = 0.0;
  std::string log;
  Point3 point;
  EXPECT_EQ(
      IntersectMany(std::vector<PhotoRay>{{&flat, {500.0, 500.0}}, {&flat, {501.0, 500.0}}}, point, &log),
      -1);
  EXPECT_THAT(log, testing::StartsWith("\nB:\n"));
  EXPECT_THAT(log, testing::Not(testing::HasSubstr("deltaParam")));
}

TEST_F(PhotoIntersectionTest, RaysThatGiveNoPoint) {
  const Point3 truth = {1280.0, 2150.0, 275.0};
  Point3 point = {7.0, 8.0, 9.0};
  const PhotoRay ray = RayOf(0, truth);
  EXPECT_EQ(IntersectMany({}, point), -1);
  EXPECT_EQ(IntersectMany(std::vector<PhotoRay>{ray}, point), -1);
  EXPECT_EQ(IntersectMany(std::vector<PhotoRay>{ray, ray}, point), -1) << "one ray twice";
  PhotoRay odd = RayOf(1, truth);
  odd.pixel.x = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(IntersectMany(std::vector<PhotoRay>{ray, odd}, point), -1);
  EXPECT_EQ(IntersectMany(std::vector<PhotoRay>{ray, RayOf(1, truth), odd}, point), -1);
  const AerialPhoto unset;
  EXPECT_EQ(IntersectMany(std::vector<PhotoRay>{ray, {&unset, {}}}, point), -1);
  EXPECT_EQ(point, (Point3{7.0, 8.0, 9.0}));
}

TEST_F(PhotoIntersectionTest, TheHeightIsFoundWhereTheImageDistanceVanishes) {
  const Point3 truth = {1280.0, 2150.0, 275.0};
  const PhotoRay left = RayOf(0, truth);
  const PhotoRay right = RayOf(1, truth);
  const double p[2] = {left.pixel.x, left.pixel.y};
  const double q[2] = {right.pixel.x, right.pixel.y};
  for (const double start : {0.0, 275.0, 600.0, -400.0}) {
    double z = start;
    EXPECT_EQ(RefineHeight(photos[0], photos[1], p, q, z), 1);
    EXPECT_NEAR(z, 275.0, 1e-4) << start;
  }
}

TEST_F(PhotoIntersectionTest, TheHeightOfRaysThatPassIsWhereTheDistanceIsLeast) {
  // Two vertical photos with a base along the rows: a row's difference changes nothing.
  SetPhoto(photos[0], {});
  SetPhoto(photos[1], {.x = 1600.0});
  const double p[2] = {875.0, 312.5};  // of (1300, 2150, 300)
  const double q[2] = {125.0, 314.5};
  double z = 0.0;
  EXPECT_EQ(RefineHeight(photos[0], photos[1], p, q, z), 1);
  EXPECT_NEAR(z, 300.0, 1e-4);
}

TEST_F(PhotoIntersectionTest, AHeightThatRunsAwayEndsAfterTenRounds) {
  SetPhoto(photos[0], {});
  SetPhoto(photos[1], {.x = 1600.0});
  const double p[2] = {875.0, 312.5};
  const double q[2] = {875.0, 312.5};  // no parallax: the rays meet nowhere
  double z = 0.0;
  EXPECT_EQ(RefineHeight(photos[0], photos[1], p, q, z), 0);
  EXPECT_NE(z, 0.0);
}

TEST_F(PhotoIntersectionTest, WithoutParallaxThereIsNoHeight) {
  const double p[2] = {875.0, 312.5};
  double z = 12.0;
  EXPECT_EQ(RefineHeight(photos[0], photos[0], p, p, z), -1) << "the photo itself";
  const double odd[2] = {std::numeric_limits<double>::quiet_NaN(), 0.0};
  EXPECT_EQ(RefineHeight(photos[0], photos[1], p, odd, z), -1);
  EXPECT_EQ(RefineHeight(photos[0], photos[1], odd, p, z), -1);
  EXPECT_EQ(RefineHeight(AerialPhoto(), AerialPhoto(), p, p, z), -1);
  EXPECT_EQ(z, 12.0);
}

}  // namespace
}  // namespace corvane
