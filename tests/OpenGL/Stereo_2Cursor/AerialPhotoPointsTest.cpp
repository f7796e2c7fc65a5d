// Ground points projected into an image.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "OpenGL/Stereo_2Cursor/PhotoFixture.h"
#include "TIN/TINPoints.h"

namespace corvane {
namespace {

// Points with their extent, 10 units of the ground apart.
TINPoints PointsOf(const std::vector<PointRecord>& records) {
  TINPoints points;
  for (const PointRecord& record : records) points.AddPoint(record);
  points.RecalcExtent();
  points.SetSpacing(10.0, 20.0);
  return points;
}

class AerialPhotoPointsTest : public testing::Test {
 protected:
  void SetUp() override {
    SetPhoto(photo, {});  // from (1000, 2000, 1500), 1 pixel a unit at height 0, the middle at (500, 500)
  }

  AerialPhoto photo;
};

TEST_F(AerialPhotoPointsTest, PointsGoToTheirColumnsAndRows) {
  const TINPoints points = PointsOf(
      {{3, 1100.0, 2050.0, 0.0, 0.5}, {4, 900.0, 2050.0, 750.0, 0.25}, {-1, 1000.0, 2000.0, 0.0, 1.0}});
  EXPECT_EQ(photo.ProjectPoints(points), 1);
  ASSERT_NE(photo.groundPoints, nullptr);
  ASSERT_EQ(photo.groundPoints->GetCount(), 3);
  const PointRecord& first = *photo.groundPoints->GetPoint(0);
  EXPECT_EQ(first.id, 3);
  EXPECT_NEAR(first.x, 600.0, 1e-9);
  EXPECT_NEAR(first.y, 450.0, 1e-9);
  EXPECT_EQ(first.z, 0.0);
  EXPECT_EQ(first.value, 0.5);
  const PointRecord& second = *photo.groundPoints->GetPoint(1);
  EXPECT_NEAR(second.x, 300.0, 1e-9);
  EXPECT_NEAR(second.y, 400.0, 1e-9);
  EXPECT_EQ(second.z, 750.0);
  EXPECT_EQ(photo.groundPoints->GetPoint(2)->id, -1) << "a deleted point stays deleted";
  EXPECT_EQ(photo.groundPoints->GetIndex(), nullptr);
}

TEST_F(AerialPhotoPointsTest, TheStartOfTheImageIsTakenOffAs16Bits) {
  const TINPoints points = PointsOf({{0, 1100.0, 2050.0, 0.0, 0.0}});
  photo.image.GetHeader()->xStart = 100;
  photo.image.GetHeader()->yStart = -50;
  photo.ProjectPoints(points);
  EXPECT_NEAR(photo.groundPoints->GetPoint(0)->x, 500.0, 1e-9);
  EXPECT_NEAR(photo.groundPoints->GetPoint(0)->y, 500.0, 1e-9);
  photo.image.GetHeader()->xStart = 40000;      // -25536 in 16 bits with a sign
  photo.image.GetHeader()->yStart = 65536 + 7;  // 7
  photo.ProjectPoints(points);
  EXPECT_NEAR(photo.groundPoints->GetPoint(0)->x, 600.0 + 25536.0, 1e-9);
  EXPECT_NEAR(photo.groundPoints->GetPoint(0)->y, 450.0 - 7.0, 1e-9);
}

TEST_F(AerialPhotoPointsTest, TheExtentIsThatOfTheCornersWithAMargin) {
  // Corners at heights 0 and 750, where a unit is 1 and 2 pixels.
  const TINPoints points = PointsOf({{0, 900.0, 1950.0, 0.0, 0.0}, {1, 1200.0, 2050.0, 750.0, 0.0}});
  photo.image.GetHeader()->xStart = 30;
  photo.image.GetHeader()->yStart = 40;
  photo.ProjectPoints(points);
  Extent6 extent;
  photo.groundPoints->GetExtent(extent);
  EXPECT_NEAR(extent.minX, 300.0 - 1030.0, 1e-9);  // 500 - 2 * 100
  EXPECT_NEAR(extent.maxX, 900.0 + 970.0, 1e-9);   // 500 + 2 * 200
  EXPECT_NEAR(extent.minY, 400.0 - 1040.0, 1e-9);
  EXPECT_NEAR(extent.maxY, 600.0 + 960.0, 1e-9);
  EXPECT_EQ(extent.minZ, 0.0);
  EXPECT_EQ(extent.maxZ, 750.0);
}

TEST_F(AerialPhotoPointsTest, TheSpacingIsThatBelowThePerspectiveCentreInWholePixels) {
  TINPoints points = PointsOf({{0, 900.0, 1950.0, 750.0, 0.0}, {1, 1200.0, 2050.0, 800.0, 0.0}});
  points.SetSpacing(3.3, 5.9);  // at 750: 6.6 and 11.8 pixels
  photo.ProjectPoints(points);
  double x = 0.0;
  double y = 0.0;
  photo.groundPoints->GetSpacing(x, y);
  EXPECT_EQ(x, 6.0);
  EXPECT_EQ(y, 11.0);
  points.SetSpacing(0.1, -0.1);
  photo.ProjectPoints(points);
  photo.groundPoints->GetSpacing(x, y);
  EXPECT_EQ(x, 0.0);
  EXPECT_EQ(y, 0.0);
}

TEST_F(AerialPhotoPointsTest, AbsurdNumbersAreSafe) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  TINPoints points = PointsOf({{0, 1e300, -1e300, 1500.0, kNaN}, {1, kNaN, 0.0, kNaN, 0.0}});
  for (const double spacing : {0.0, kNaN, 1e300, -1e300}) {
    points.SetSpacing(spacing, spacing);
    EXPECT_EQ(photo.ProjectPoints(points), 1);
    double x = 0.0;
    double y = 0.0;
    photo.groundPoints->GetSpacing(x, y);
    EXPECT_GE(x, 0.0);
    EXPECT_GE(y, 0.0);
  }
  AerialPhoto unset;
  EXPECT_EQ(unset.ProjectPoints(points), 1);
}

TEST_F(AerialPhotoPointsTest, AnotherSetTakesThePlaceOfTheFirst) {
  photo.ProjectPoints(PointsOf({{0, 1.0, 2.0, 3.0, 4.0}, {1, 1.0, 2.0, 3.0, 4.0}}));
  photo.ProjectPoints(PointsOf({{7, 1.0, 2.0, 3.0, 4.0}}));
  ASSERT_EQ(photo.groundPoints->GetCount(), 1);
  EXPECT_EQ(photo.groundPoints->GetPoint(0)->id, 7);
  EXPECT_EQ(photo.ProjectPoints(TINPoints()), 1);
  EXPECT_EQ(photo.groundPoints->GetCount(), 0);
}

TEST_F(AerialPhotoPointsTest, ItsOwnPointsCanBeTheSource) {
  photo.ProjectPoints(PointsOf({{0, 1100.0, 2050.0, 0.0, 0.5}}));
  const TINPoints copy = *photo.groundPoints;
  EXPECT_EQ(photo.ProjectPoints(*photo.groundPoints), 1);
  const PointRecord once = *photo.groundPoints->GetPoint(0);
  photo.ProjectPoints(copy);
  EXPECT_EQ(once, *photo.groundPoints->GetPoint(0));
}

TEST_F(AerialPhotoPointsTest, APointIsAddedAtItsId) {
  EXPECT_EQ(photo.AddPoint({0, 1.0, 2.0, 3.0, 4.0}), -1) << "no set yet";
  photo.ProjectPoints(PointsOf({{0, 1.0, 2.0, 3.0, 4.0}, {1, 1.0, 2.0, 3.0, 4.0}}));
  EXPECT_EQ(photo.AddPoint({1, 1100.0, 2050.0, 0.0, 0.5}), 1);
  const PointRecord& added = *photo.groundPoints->GetPoint(1);
  EXPECT_EQ(added.id, 1);
  EXPECT_NEAR(added.x, 600.0, 1e-9);
  EXPECT_NEAR(added.y, 450.0, 1e-9);
  EXPECT_EQ(added.value, 0.5);
  EXPECT_EQ(photo.AddPoint({2, 1100.0, 2050.0, 0.0, 0.5}), -1);
  EXPECT_EQ(photo.AddPoint({-1, 1100.0, 2050.0, 0.0, 0.5}), -1);
}

TEST_F(AerialPhotoPointsTest, RaisingAPointKeepsItOnItsRay) {
  Point3 point = {1300.0, 1900.0, 300.0};
  EXPECT_EQ(photo.RaiseToHeight(120.0, point), 1);
  // A tenth of the 1200 to the centre: X 30 less, Y 10 more.
  EXPECT_NEAR(point.x, 1270.0, 1e-10);
  EXPECT_NEAR(point.y, 1910.0, 1e-10);
  EXPECT_EQ(point.z, 420.0);
  double col = 0.0;
  double row = 0.0;
  photo.GroundToImage(point.x, point.y, point.z, col, row);
  double colBefore = 0.0;
  double rowBefore = 0.0;
  photo.GroundToImage(1300.0, 1900.0, 300.0, colBefore, rowBefore);
  EXPECT_NEAR(col, colBefore, 1e-9);
  EXPECT_NEAR(row, rowBefore, 1e-9);
}

}  // namespace
}  // namespace corvane
