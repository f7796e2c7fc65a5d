// Queries on a stored TIN: search, heights, normals, areas, neighbours.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "Geometry/Cross.h"
#include "TIN/TIN.h"
#include "TINSample.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using List = std::vector<std::int32_t>;

List ToList(std::span<const std::int32_t> list) {
  return {list.begin(), list.end()};
}

class TINSearch : public testing::Test {
 protected:
  void LoadTriangles(const std::vector<SampleTriangle>& triangles) {
    WriteFileBytes("a.tin", TinBytes(triangles));
    ASSERT_TRUE(Load(tin, "a.tin"));
    ui.events.clear();
  }

  int Find(double x, double y) { return tin.FindTriangle({x, y, 0.0}, found); }

  TempFolder folder;
  TestFrontEnd ui;
  TIN tin;
  std::int32_t found = -1;
};

TEST(Cross, IsPositiveToTheLeft) {
  EXPECT_EQ(Cross(Point3{0, 0, 0}, Point3{4, 0, 0}, Point3{1, 3, 0}), 12.0);
  EXPECT_EQ(Cross(Point3{0, 0, 0}, Point3{4, 0, 0}, Point3{1, -3, 0}), -12.0);
  EXPECT_EQ(Cross(Point3{0, 0, 0}, Point3{4, 0, 0}, Point3{9, 0, 0}), 0.0);
}

TEST_F(TINSearch, PointInsideGivesThree) {
  LoadTriangles(TwoTriangles());
  EXPECT_EQ(Find(8.0, 3.0), 3);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(Find(3.0, 8.0), 3);
  EXPECT_EQ(found, 1);
}

TEST_F(TINSearch, PointExactlyOnAVertexGivesThatCorner) {
  LoadTriangles(TwoTriangles());
  EXPECT_EQ(Find(0.0, 0.0), 0);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(Find(10.0, 0.0), 1);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(Find(10.0, 10.0), 2);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(Find(0.0, 10.0), 2);
  EXPECT_EQ(found, 1);
  EXPECT_EQ(tin.GetVertex(found, 2).z, 4.0);
}

TEST_F(TINSearch, PointOnASharedEdgeBelongsToTheFirstListed) {
  LoadTriangles(TwoTriangles());
  EXPECT_EQ(Find(5.0, 5.0), 3);
  EXPECT_EQ(found, 0);
  const auto triangles = TwoTriangles();
  LoadTriangles({triangles[1], triangles[0]});
  EXPECT_EQ(Find(5.0, 5.0), 3);
  EXPECT_EQ(found, 0);
  EXPECT_EQ(tin.GetVertex(found, 2).id, 3);
}

TEST_F(TINSearch, EdgesOfTheExtentsAreInside) {
  LoadTriangles(TwoTriangles());
  EXPECT_EQ(Find(10.0, 5.0), 3);
  EXPECT_EQ(Find(5.0, 10.0), 3);
  EXPECT_EQ(Find(0.0, 5.0), 3);
  EXPECT_EQ(Find(5.0, 0.0), 3);
}

TEST_F(TINSearch, PointOutsideTheExtentsGivesMinusOne) {
  LoadTriangles(TwoTriangles());
  found = 77;
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const double bad : {-1e-9, 10.0000001, 1e300, kNaN, kInfinity, -kInfinity}) {
    EXPECT_EQ(Find(bad, 5.0), -1);
    EXPECT_EQ(Find(5.0, bad), -1);
  }
  EXPECT_EQ(found, 77);
}

TEST_F(TINSearch, PointOfAConcaveHullInsideTheExtentsGivesMinusTwo) {
  LoadTriangles({TwoTriangles()[0]});
  EXPECT_EQ(Find(2.0, 8.0), -2);
  EXPECT_EQ(found, 0);  // the last one tested
}

TEST_F(TINSearch, ClockwiseTrianglesHoldNothingButTheirFirstCorner) {
  auto triangle = TwoTriangles()[0];
  std::swap(triangle[1], triangle[2]);
  LoadTriangles({triangle});
  EXPECT_EQ(Find(8.0, 3.0), -2);
  EXPECT_EQ(Find(0.0, 0.0), 0);
  EXPECT_EQ(Find(10.0, 0.0), -2);  // refused by the first side already
}

TEST_F(TINSearch, EmptyTinHoldsNothing) {
  EXPECT_LT(Find(0.0, 0.0), 0);
}

TEST_F(TINSearch, EqualsTheReferenceOnRandomPoints) {
  auto triangles = JitteredMesh(25, 25, 12);
  std::shuffle(triangles.begin(), triangles.end(), std::mt19937(1));
  LoadTriangles(triangles);
  const ReferenceTin reference(triangles);
  std::mt19937 random(2);
  const auto within = [&random](double from, double to) {
    return from + (to - from) * static_cast<double>(random()) / 4294967296.0;
  };
  for (int i = 0; i < 20000; ++i) {
    double x = within(reference.minX - 0.5, reference.maxX + 0.5);
    double y = within(reference.minY - 0.5, reference.maxY + 0.5);
    const PointRecord& vertex = reference.vertices[random() % reference.vertices.size()].record;
    if (i % 3 == 1) x = vertex.x;
    if (i % 9 == 1) y = vertex.y;
    std::int32_t expected = -1;
    found = -1;
    const int result = reference.Find(x, y, expected);
    EXPECT_EQ(Find(x, y), result);
    EXPECT_EQ(found, expected);
  }
}

TEST_F(TINSearch, InterpolateZFollowsThePlane) {
  LoadTriangles(TwoTriangles());  // z = 1 + 0.1 x + 0.1 y; and z = 1 - 0.1 x + 0.3 y
  EXPECT_NEAR(tin.InterpolateZ({8.0, 3.0, 99.0}, 0), 1.0 + 0.8 + 0.3, 1e-12);
  EXPECT_NEAR(tin.InterpolateZ({3.0, 8.0, 99.0}, 1), 1.0 - 0.3 + 2.4, 1e-12);
}

TEST_F(TINSearch, InterpolateZOfAnUprightTriangleGivesThePointsOwnZ) {
  SampleTriangle upright = TwoTriangles()[0];
  upright[2] = {2, 10.0, 0.0, 30.0, 0.0};
  SampleTriangle flat = TwoTriangles()[1];
  LoadTriangles({upright, flat});
  EXPECT_EQ(tin.GetTriangle(0).nz, 0.0);
  EXPECT_EQ(tin.InterpolateZ({5.0, 0.0, 99.0}, 0), 99.0);
}

TEST_F(TINSearch, InterpolateZWithVertexAndNormal) {
  const PointRecord vertex = {0, 1.0, 2.0, 3.0, 0.0};
  EXPECT_EQ(TIN::InterpolateZ({4.0, 5.0, 99.0}, vertex, {0.0, 0.0, 1.0}), 3.0);
  EXPECT_EQ(TIN::InterpolateZ({4.0, 5.0, 99.0}, vertex, {1.0, 0.0, 1e-13}), 99.0);
  EXPECT_NEAR(TIN::InterpolateZ({4.0, 5.0, 99.0}, vertex, {-0.6, 0.0, 0.8}), 3.0 + 0.75 * 3.0, 1e-12);
}

TEST_F(TINSearch, NormalsAreUnitAndPointUp) {
  LoadTriangles(TwoTriangles());
  const double length = std::sqrt(0.1 * 0.1 + 0.1 * 0.1 + 1.0);
  EXPECT_NEAR(tin.GetTriangle(0).nx, -0.1 / length, 1e-15);
  EXPECT_NEAR(tin.GetTriangle(0).ny, -0.1 / length, 1e-15);
  EXPECT_NEAR(tin.GetTriangle(0).nz, 1.0 / length, 1e-15);
}

TEST_F(TINSearch, RecomputedNormalsOfAChangedVertex) {
  LoadTriangles(TwoTriangles());
  tin.vertices[1].z = 101.0;  // triangle 0 alone holds it
  const TINTriangle before = tin.GetTriangle(1);
  tin.RecomputeNormals(1);
  // e1 = (10, 0, 100), e2 = (0, 10, -98): raw normal (-1000, 980, 100)
  EXPECT_EQ(tin.GetTriangle(0).nx, -1000.0);
  EXPECT_EQ(tin.GetTriangle(0).ny, 980.0);
  EXPECT_EQ(tin.GetTriangle(0).nz, 100.0);
  tin.NormalizeNormals(1);
  EXPECT_NEAR(tin.GetTriangle(0).nz, 100.0 / std::sqrt(1000.0 * 1000.0 + 980.0 * 980.0 + 100.0 * 100.0),
              1e-15);
  EXPECT_EQ(tin.GetTriangle(1).nx, before.nx);
  EXPECT_EQ(tin.GetTriangle(1).nz, before.nz);
}

TEST_F(TINSearch, RecalcZExtentTakesTheChangedHeights) {
  LoadTriangles(TwoTriangles());
  tin.vertices[0].z = -3.0;
  tin.vertices[3].z = 3.5;
  tin.RecalcZExtent();
  EXPECT_EQ(tin.ptsMinZ, -3.0);
  EXPECT_EQ(tin.ptsMaxZ, 3.5);
  EXPECT_EQ(tin.GetExtent().minZ, -3.0);
  EXPECT_EQ(tin.GetExtent().maxZ, 3.5);
  EXPECT_EQ(tin.GetExtent().maxX, 10.0);
}

TEST_F(TINSearch, RecalcZExtentOfAnEmptyTinChangesNothing) {
  tin.RecalcZExtent();
  EXPECT_EQ(tin.GetExtent(), Extent6());
}

TEST_F(TINSearch, AreasAreSigned) {
  auto triangles = TwoTriangles();
  triangles[1][1].x = 6.0;
  triangles[1][1].id = 9;
  std::swap(triangles[1][1], triangles[1][2]);
  LoadTriangles(triangles);
  EXPECT_EQ(tin.CalcTrianglesArea(), 1);
  EXPECT_EQ(tin.triangleAreas, (std::vector<double>{50.0, -30.0}));
  tin.vertices[0].z = 400.0;
  EXPECT_EQ(tin.CalcTrianglesArea(), 1);
  EXPECT_EQ(tin.triangleAreas, (std::vector<double>{50.0, -30.0}));
}

TEST_F(TINSearch, AreasOfAnEmptyTinShowABox) {
  EXPECT_EQ(tin.CalcTrianglesArea(), -1);
  EXPECT_EQ(ui.events, std::vector<std::string>{"message message: CalcTrianglesArea(): No TIN read"});
}

TEST_F(TINSearch, NeighboursAreListedInFirstSeenOrder) {
  LoadTriangles(TwoTriangles());
  EXPECT_EQ(tin.BuildNeighbours(), 1);
  ASSERT_EQ(tin.neighbours.size(), 4U);
  EXPECT_EQ(ToList(tin.neighbours[0]), (List{1, 2, 3}));
  EXPECT_EQ(ToList(tin.neighbours[1]), (List{0, 2}));
  EXPECT_EQ(ToList(tin.neighbours[2]), (List{0, 1, 3}));
  EXPECT_EQ(ToList(tin.neighbours[3]), (List{0, 2}));
  const auto* const first = tin.neighbours[0].data();
  EXPECT_EQ(tin.BuildNeighbours(), 1);
  EXPECT_EQ(tin.neighbours[0].data(), first);
}

TEST_F(TINSearch, NeighboursEqualTheReference) {
  auto triangles = JitteredMesh(12, 9, 3);
  std::shuffle(triangles.begin(), triangles.end(), std::mt19937(1));
  LoadTriangles(triangles);
  tin.BuildNeighbours();
  const ReferenceTin reference(triangles);
  for (std::size_t v = 0; v < reference.vertices.size(); ++v) {
    List expected;
    for (const std::int32_t t : reference.vertices[v].triangles) {
      for (const std::int32_t corner : reference.triangles[static_cast<std::size_t>(t)]) {
        const bool isNew = std::find(expected.begin(), expected.end(), corner) == expected.end();
        if (corner != static_cast<std::int32_t>(v) && isNew) expected.push_back(corner);
      }
    }
    EXPECT_EQ(ToList(tin.neighbours[v]), expected);
  }
}

TEST_F(TINSearch, NeighboursOfAnEmptyTinAreNone) {
  EXPECT_EQ(tin.BuildNeighbours(), 1);
  EXPECT_EQ(tin.neighbours.size(), 0U);
}

}  // namespace
}  // namespace corvane
