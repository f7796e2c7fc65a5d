// Vertices off a surface through their tile.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "Surface/Surface.h"
#include "TINSample.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TINFit : public testing::Test {
 protected:
  void LoadTriangles(const std::vector<SampleTriangle>& triangles) {
    WriteFileBytes("a.tin", TinBytes(triangles));
    ASSERT_TRUE(Load(tin, "a.tin"));
    ui.events.clear();
  }

  std::vector<std::int32_t> IdsOf(const TINGroup& group) const {
    std::vector<std::int32_t> ids;
    for (const std::int32_t v : group.members) ids.push_back(tin.vertices[static_cast<std::size_t>(v)].id);
    std::ranges::sort(ids);
    return ids;
  }

  TempFolder folder;
  TestFrontEnd ui;
  TIN tin;
};

// Level ground with a spike and a pit. (Smoothing holds the polynomial down as well, so that a surface near
// the origin does not climb to high ground.)
double GroundWithOutliers(int row, int col) {
  if (row == 4 && col == 7) return 9.0;
  if (row == 10 && col == 3) return -9.0;
  return 0.0;
}

TEST_F(TINFit, VerticesFarFromTheSurfaceBecomeAGroup) {
  LoadTriangles(GridMesh(15, 12, 1.0, GroundWithOutliers));
  ASSERT_EQ(tin.FitTiles(10.0, 1.0, 1.5), 1);
  ASSERT_EQ(tin.groups.size(), 1u);
  EXPECT_EQ(tin.groups[0].label, 0);
  EXPECT_THAT(IdsOf(tin.groups[0]), ElementsAre(4 * 12 + 7, 10 * 12 + 3));
  EXPECT_EQ(std::ranges::count(tin.labels, 0), 2);
  EXPECT_EQ(std::ranges::count(tin.labels, -1), 15 * 12 - 2);
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: Fitting tile 1 of 1 ..."));
}

TEST_F(TINFit, ThresholdItselfCounts) {
  LoadTriangles(GridMesh(5, 5, 1.0, [](int row, int col) { return row == 2 && col == 2 ? 3.0 : 0.0; }));
  std::vector<Point3> points;
  for (const TINVertex& v : tin.vertices) points.push_back({v.x, v.y, v.z});
  Surface surface;
  ASSERT_EQ(surface.Fit(25, points.data(), kThinPlateKernel, 10.0, 1.0), 1);
  double largest = 0.0;
  for (const Point3& point : points) {
    Point3 fitted = point;
    surface.Evaluate(fitted);
    largest = std::max(largest, std::fabs(fitted.z - point.z));
  }
  ASSERT_EQ(tin.FitTiles(10.0, 1.0, largest), 1);
  ASSERT_EQ(tin.groups.size(), 1u);
  EXPECT_THAT(IdsOf(tin.groups[0]), ElementsAre(12));
}

TEST_F(TINFit, DeletedVerticesDoNotTakePartOthersWithNegativeIdsDo) {
  LoadTriangles(GridMesh(15, 12, 1.0, GroundWithOutliers));
  for (TINVertex& vertex : tin.vertices) {
    if (vertex.id == 4 * 12 + 7) vertex.id = -1;
    if (vertex.id == 10 * 12 + 3) vertex.id = -2;
  }
  ASSERT_EQ(tin.FitTiles(10.0, 1.0, 1.5), 1);
  ASSERT_EQ(tin.groups.size(), 1u);
  EXPECT_THAT(IdsOf(tin.groups[0]), ElementsAre(-2));
}

// 60 x 60 vertices over 59 x 59 units: cells of sqrt(59 * 59 * 2000 / 3600) = 43.98 units, two by two tiles.
TEST_F(TINFit, TilesAreFittedOnTheirOwnRowByRowAndCountLabels) {
  const auto outliers = [](int row, int col) { return row % 50 == 5 && col % 50 == 5 ? 60.0 : 0.0; };
  LoadTriangles(GridMesh(60, 60, 1.0, outliers));
  ASSERT_EQ(tin.FitTiles(10.0, 1.0, 1.5), 1);
  ASSERT_EQ(tin.groups.size(), 4u);
  for (std::int32_t i = 0; i < 4; ++i) EXPECT_EQ(tin.groups[static_cast<std::size_t>(i)].label, i);
  const auto has = [&](std::size_t group, std::int32_t id) {
    return std::ranges::count(IdsOf(tin.groups[group]), id) == 1;
  };
  EXPECT_TRUE(has(0, 5 * 60 + 5));
  EXPECT_TRUE(has(1, 5 * 60 + 55));
  EXPECT_TRUE(has(2, 55 * 60 + 5));
  EXPECT_TRUE(has(3, 55 * 60 + 55));
  EXPECT_THAT(ui.EventsWith("status").back(), "status 0: Fitting tile 4 of 4 ...");
}

// A vertex is judged by the surface through the vertices of its own tile alone.
TEST_F(TINFit, TileBordersAreNotBlended) {
  LoadTriangles(
      GridMesh(60, 60, 1.0, [](int row, int col) { return row == 43 && col < 44 ? 4.0 : 0.1 * (col % 3); }));
  const double cell = std::sqrt(59.0 * 59.0 * 2000.0 / 3600.0);
  std::vector<std::int32_t> firstTile;
  std::vector<Point3> points;
  for (const TINVertex& v : tin.vertices) {
    if (v.x >= cell || v.y >= cell) continue;
    firstTile.push_back(v.id);
    points.push_back({v.x, v.y, v.z});
  }
  Surface surface;
  ASSERT_EQ(surface.Fit(static_cast<std::int32_t>(points.size()), points.data(), kThinPlateKernel, 10.0, 1.0),
            1);
  std::vector<std::int32_t> expected;
  for (std::size_t i = 0; i < points.size(); ++i) {
    Point3 fitted = points[i];
    surface.Evaluate(fitted);
    if (std::fabs(fitted.z - points[i].z) >= 1.5) expected.push_back(firstTile[i]);
  }
  std::ranges::sort(expected);
  ASSERT_FALSE(expected.empty());
  ASSERT_EQ(tin.FitTiles(10.0, 1.0, 1.5), 1);
  EXPECT_EQ(IdsOf(tin.groups[0]), expected);
}

TEST_F(TINFit, SkippedTilesAreCounted) {
  auto mesh = GridMesh(15, 12, 1.0, GroundWithOutliers);
  mesh.push_back({{{1000, 3.0, 3.0, 5.0, 1.0}, {1001, 4.0, 3.0, 5.0, 1.0}, {1002, 3.0, 4.0, 5.0, 1.0}}});
  LoadTriangles(mesh);
  std::int64_t nSkipped = 0;
  ASSERT_EQ(tin.FitTiles(10.0, 1.0, 1.5, &nSkipped), 1);
  EXPECT_EQ(nSkipped, 1);
}

TEST_F(TINFit, LabelsCountOnFromTheLastGroup) {
  LoadTriangles(GridMesh(15, 12, 1.0, GroundWithOutliers));
  tin.groups.resize(1);
  tin.groups[0].label = 41;
  ASSERT_EQ(tin.FitTiles(10.0, 1.0, 1.5), 1);
  ASSERT_EQ(tin.groups.size(), 2u);
  EXPECT_EQ(tin.groups[1].label, 42);
}

TEST_F(TINFit, TileWithTwoVerticesAtOnePlaceIsSkipped) {
  auto mesh = GridMesh(15, 12, 1.0, GroundWithOutliers);
  mesh.push_back({{{1000, 3.0, 3.0, 5.0, 1.0}, {1001, 4.0, 3.0, 5.0, 1.0}, {1002, 3.0, 4.0, 5.0, 1.0}}});
  LoadTriangles(mesh);
  ASSERT_EQ(tin.FitTiles(10.0, 1.0, 1.5), 1);
  EXPECT_THAT(tin.groups, IsEmpty());
}

TEST_F(TINFit, TooFewLiveVerticesAreSkipped) {
  LoadTriangles(TwoTriangles());
  tin.vertices[0].id = -1;
  tin.vertices[1].id = -1;
  EXPECT_EQ(tin.FitTiles(10.0, 1.0, 0.0), 1);
  EXPECT_THAT(tin.groups, IsEmpty());
}

TEST_F(TINFit, VerticesOnALineAreOneTile) {
  LoadTriangles({{{{0, 0, 5, 1, 1.0}, {1, 10, 5, 2, 1.0}, {2, 20, 5, 3, 1.0}}}});
  EXPECT_EQ(tin.FitTiles(10.0, 1.0, 0.0), 1);
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: Fitting tile 1 of 1 ..."));
}

}  // namespace
}  // namespace corvane
