#include "Geometry/Plane2D.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace corvane {
namespace {

TEST(Plane2D, PointsArePlainNumbers) {
  EXPECT_EQ(sizeof(Point2D), 2 * sizeof(double));
  EXPECT_EQ(Point2D(), (Point2D{0, 0}));
}

TEST(Plane2D, Distances) {
  EXPECT_EQ(Distance2D({1, 2}, {4, 6}), 5.0);
  EXPECT_EQ(DistanceSquared2D(1, 2, 4, 6), 25.0);
}

TEST(Plane2D, DotOfAVectorWithItselfIsItsLength) {
  EXPECT_EQ(Dot2D({3, 4}, {3, 4}), 5.0);
  EXPECT_EQ(Dot2D({1, 2}, {3, 3}), 3.0);
}

TEST(Plane2D, AreaIsPositiveForACounterClockwisePolygon) {
  const std::vector<Point2D> square = {{1, 1}, {3, 1}, {3, 3}, {1, 3}};
  Point2D centroid;
  EXPECT_EQ(PolygonArea(square, centroid), 4.0);
  EXPECT_EQ(centroid, (Point2D{2, 2}));
  EXPECT_EQ(PolygonArea(std::vector<Point2D>(square.rbegin(), square.rend()), centroid), -4.0);
  EXPECT_EQ(centroid, (Point2D{2, 2}));
  const std::vector<Point2D> triangle = {{0, 0}, {6, 0}, {0, 3}};
  EXPECT_EQ(PolygonArea(triangle, centroid), 9.0);
  EXPECT_EQ(centroid, (Point2D{2, 1}));
}

TEST(Plane2D, WithoutAreaTheCentroidStays) {
  Point2D centroid = {7, 8};
  EXPECT_EQ(PolygonArea(std::vector<Point2D>{{0, 0}, {1, 1}, {2, 2}}, centroid), 0.0);
  EXPECT_EQ(PolygonArea({}, centroid), 0.0);
  EXPECT_EQ(centroid, (Point2D{7, 8}));
}

TEST(Plane2D, BoundsOfPoints) {
  Box2D box = {-1, -1, -1, -1};
  PolygonBounds(std::vector<Point2D>{{5, 6}, {2, 9}, {7, 3}}, box);
  EXPECT_EQ(box, (Box2D{2, 3, 7, 9}));
  PolygonBounds(std::vector<Point2D>{{5, 6}}, box);
  EXPECT_EQ(box, (Box2D{5, 6, 5, 6}));
  PolygonBounds({}, box);
  EXPECT_EQ(box, (Box2D{5, 6, 5, 6}));
}

TEST(Plane2D, ANaNStaysInTheBoundsOnlyOfTheFirstPoint) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  Box2D box;
  PolygonBounds(std::vector<Point2D>{{5, nan}, {nan, 9}, {7, 3}}, box);
  EXPECT_EQ(box.minX, 5.0);
  EXPECT_EQ(box.maxX, 7.0);
  EXPECT_TRUE(std::isnan(box.minY) && std::isnan(box.maxY));
}

TEST(Plane2D, BoundsOfAListOfCoordinates) {
  Box2D box;
  PointListBounds(std::vector<double>{5, 6, 2, 9, 7, 3}, box);
  EXPECT_EQ(box, (Box2D{2, 3, 7, 9}));
  PointListBounds(std::vector<double>{1, 2, 3}, box);  // half a point does not count
  EXPECT_EQ(box, (Box2D{1, 2, 1, 2}));
}

}  // namespace
}  // namespace corvane
