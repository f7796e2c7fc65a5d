// The search for many points finds what the search for each of them does.

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "TIN/TIN.h"
#include "TINSample.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

class TINSearchBlock : public testing::Test {
 protected:
  void LoadTriangles(const std::vector<SampleTriangle>& triangles) {
    WriteFileBytes("a.tin", TinBytes(triangles));
    ASSERT_TRUE(Load(tin, "a.tin"));
  }

  void ExpectSameAsOneByOne(const std::vector<Point3>& points) {
    std::vector<FoundTriangle> found(points.size(), FoundTriangle{77, 77});
    tin.FindTriangles(points, found);
    for (std::size_t i = 0; i < points.size(); ++i) {
      FoundTriangle expected;
      expected.result = tin.FindTriangle(points[i], expected.triangle);
      ASSERT_EQ(found[i], expected) << i;
    }
  }

  // From a unit outside of the TIN to a unit beyond it.
  double Anywhere(double min, double max) {
    return min - 1.0 + (max - min + 2.0) * static_cast<double>(random()) / 4294967296.0;
  }

  // Some exactly on vertices, on the lines through them, or no points at all.
  Point3 RandomPoint() {
    const Extent6& extent = tin.GetExtent();
    Point3 p = {Anywhere(extent.minX, extent.maxX), Anywhere(extent.minY, extent.maxY), 0.0};
    const TINVertex& vertex = tin.vertices[random() % tin.vertices.size()];
    const auto kind = random() % 8;
    if (kind < 3) p.x = vertex.x;
    if (kind == 1 || kind == 3) p.y = vertex.y;
    if (random() % 100 == 0) p.x = std::numeric_limits<double>::quiet_NaN();
    return p;
  }

  std::vector<Point3> RandomPoints(std::size_t n) {
    std::vector<Point3> points(n);
    std::generate(points.begin(), points.end(), [this] { return RandomPoint(); });
    return points;
  }

  TempFolder folder;
  TestFrontEnd ui;
  TIN tin;
  std::mt19937 random{5};
};

TEST_F(TINSearchBlock, EqualsTheSingleSearchOnRandomPoints) {
  auto triangles = JitteredMesh(30, 30, 4);
  std::shuffle(triangles.begin(), triangles.end(), std::mt19937(1));
  triangles.resize(triangles.size() - 200);  // holes
  LoadTriangles(triangles);
  ExpectSameAsOneByOne(RandomPoints(50000));
}

TEST_F(TINSearchBlock, EqualsTheSingleSearchForAnyNumberOfPoints) {
  LoadTriangles(JitteredMesh(5, 5, 4));
  for (std::size_t n = 0; n < 100; ++n) ExpectSameAsOneByOne(RandomPoints(n));
}

TEST_F(TINSearchBlock, EqualsTheSingleSearchOnDegenerateTriangles) {
  std::vector<SampleTriangle> triangles;
  std::int32_t id = 0;
  for (int i = 0; i < 60; ++i) {  // on a coarse lattice: many without area, clockwise or one over the other
    SampleTriangle triangle;
    for (PointRecord& corner : triangle) {
      corner = {id++, static_cast<double>(random() % 4), static_cast<double>(random() % 4), 1.0, 0.0};
    }
    triangles.push_back(triangle);
  }
  LoadTriangles(triangles);
  std::vector<Point3> points = RandomPoints(2000);
  for (int i = 0; i < 16; ++i)
    points.push_back({static_cast<double>(i % 4), static_cast<double>(i / 4), 0.0});
  ExpectSameAsOneByOne(points);
}

TEST_F(TINSearchBlock, EqualsTheSingleSearchWhereManyTrianglesShareACell) {
  std::vector<SampleTriangle> fan;
  const PointRecord centre = {0, 0.0, 0.0, 1.0, 0.0};
  for (std::int32_t i = 0; i < 500; ++i) {
    const double y = 0.01 * i;
    fan.push_back(
        {centre, PointRecord{i + 1, 5.0, y, 1.0, 0.0}, PointRecord{i + 2, 5.0, y + 0.01, 1.0, 0.0}});
  }
  LoadTriangles(fan);
  ExpectSameAsOneByOne(RandomPoints(5000));
}

TEST_F(TINSearchBlock, EmptyTinHoldsNothing) {
  std::vector<FoundTriangle> found(2);
  tin.FindTriangles(std::vector<Point3>{{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}}, found);
  EXPECT_LT(found[0].result, 0);
  EXPECT_EQ(found[1], FoundTriangle());
}

}  // namespace
}  // namespace corvane
