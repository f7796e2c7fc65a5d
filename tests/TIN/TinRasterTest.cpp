#include "TIN/TinRaster.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "TINSample.h"
#include "numerics/SimdVersion.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

constexpr double kDefaultZ = 230.0;

struct Nodes {
  std::vector<double> xs;
  std::vector<double> ys;
};

// nCols x nRows nodes from the upper left one on, each a step from the one before.
Nodes NodesFrom(double x, double y, double cellSize, int nCols, int nRows) {
  Nodes nodes;
  for (int col = 0; col < nCols; ++col, x += cellSize) nodes.xs.push_back(x);
  for (int row = 0; row < nRows; ++row, y -= cellSize) nodes.ys.push_back(y);
  return nodes;
}

// The height that the stored model, searched word for word, gives a node.
float ReferenceHeight(const ReferenceTin& reference, double x, double y) {
  std::int32_t t = -1;
  const int result = reference.Find(x, y, t);
  if (result <= 0) return static_cast<float>(kDefaultZ);
  const auto& corners = reference.triangles[static_cast<std::size_t>(t)];
  const auto corner = [&](int k) -> const PointRecord& {
    return reference.vertices[static_cast<std::size_t>(corners[static_cast<std::size_t>(k)])].record;
  };
  if (result < 3) return static_cast<float>(corner(result).z);
  const auto& n = reference.normals[static_cast<std::size_t>(t)];
  if (!(std::fabs(n[2]) >= 1e-12)) return static_cast<float>(kDefaultZ);
  const PointRecord& a = corner(0);
  return static_cast<float>((n[0] * a.x + n[1] * a.y + n[2] * a.z - n[0] * x - n[1] * y) / n[2]);
}

class TinRasterTest : public testing::Test {
 protected:
  void LoadTriangles(const std::vector<SampleTriangle>& triangles) {
    WriteFileBytes("a.tin", TinBytes(triangles));
    ASSERT_TRUE(Load(tin, "a.tin"));
  }

  std::vector<float> Filled(const Nodes& nodes, double cellSize) {
    std::vector<float> heights(nodes.xs.size() * nodes.ys.size());
    TinRaster(tin, nodes.xs, nodes.ys, cellSize, kDefaultZ, heights).Fill();
    return heights;
  }

  std::vector<float> FilledByNode(const Nodes& nodes, double cellSize) {
    std::vector<float> heights(nodes.xs.size() * nodes.ys.size());
    TinRaster(tin, nodes.xs, nodes.ys, cellSize, kDefaultZ, heights).FillByNode();
    return heights;
  }

  // Compares with the reference model, and counts the nodes that have a height of their own.
  int ExpectReferenceHeights(const std::vector<SampleTriangle>& triangles, const Nodes& nodes,
                             double cellSize) {
    LoadTriangles(triangles);
    const ReferenceTin reference(triangles);
    const std::vector<float> heights = FilledByNode(nodes, cellSize);
    for (const SimdVersion version : AvailableSimdVersions()) {
      const ForcedSimdVersion forced(version);
      EXPECT_EQ(Filled(nodes, cellSize), heights) << static_cast<int>(version);
    }
    int nHeights = 0;
    std::size_t i = 0;
    for (const double y : nodes.ys) {
      for (const double x : nodes.xs) {
        EXPECT_EQ(heights[i], ReferenceHeight(reference, x, y)) << x << ' ' << y;
        if (heights[i++] != static_cast<float>(kDefaultZ)) ++nHeights;
      }
    }
    return nHeights;
  }

  TempFolder folder;
  TestFrontEnd ui;
  TIN tin;
};

TEST_F(TinRasterTest, GivesWhatTheSearchGivesOnAMesh) {
  const auto mesh = JitteredMesh(12, 9, 7);
  EXPECT_GT(ExpectReferenceHeights(mesh, NodesFrom(999.0, -488.0, 0.23, 60, 70), 0.23), 1000);
  EXPECT_GT(ExpectReferenceHeights(mesh, NodesFrom(1000.05, -489.0, 1.0, 9, 12), 1.0), 60);
  EXPECT_GT(ExpectReferenceHeights(mesh, NodesFrom(1000.05, -489.0, 3.7, 3, 4), 3.7), 4);
}

TEST_F(TinRasterTest, CentreOnCornerZeroKeepsTheDefaultOnCornersOneAndTwoTakesTheirHeights) {
  LoadTriangles(TwoTriangles());
  const std::vector<float> heights = Filled(NodesFrom(0.0, 10.0, 10.0, 2, 2), 10.0);
  // (0, 10) is corner 2 of the second triangle, (10, 10) corner 2 of the first; (0, 0) is corner 0 of the
  // first, (10, 0) its corner 1.
  EXPECT_EQ(heights, (std::vector<float>{4.0f, 3.0f, 230.0f, 2.0f}));
}

TEST_F(TinRasterTest, NodesOnCornersAndSidesOfARegularMesh) {
  const auto mesh = GridMesh(6, 6, 2.0, [](int row, int col) { return row * 10.0 + col; });
  EXPECT_GT(ExpectReferenceHeights(mesh, NodesFrom(-2.0, 12.0, 1.0, 15, 15), 1.0), 80);
  EXPECT_GT(ExpectReferenceHeights(mesh, NodesFrom(0.0, 10.0, 2.0, 6, 6), 2.0), 20);
}

TEST_F(TinRasterTest, LargeTriangles) {
  EXPECT_GT(ExpectReferenceHeights(TwoTriangles(), NodesFrom(-1.0, 11.0, 0.125, 97, 97), 0.125), 6000);
  EXPECT_GT(ExpectReferenceHeights(TwoTriangles(), NodesFrom(0.01, 10.0, 0.3, 31, 34), 0.3), 900);
  for (int nCols = 1; nCols < 9; ++nCols)
    ExpectReferenceHeights(TwoTriangles(), NodesFrom(0.01, 9.9, 1.1, nCols, 9), 1.1);
}

TEST_F(TinRasterTest, NothingOutsideOfTheTin) {
  LoadTriangles(TwoTriangles());
  for (const float height : Filled(NodesFrom(10.5, 30.0, 1.0, 5, 5), 1.0)) EXPECT_EQ(height, 230.0f);
  for (const float height : Filled(NodesFrom(-1e9, 1e9, 1e8, 5, 5), 1e8)) EXPECT_EQ(height, 230.0f);
}

// Triangles on small whole numbers: clockwise ones, ones without area, ones on top of each other, and nodes
// on corners, sides and their lines.
TEST_F(TinRasterTest, GivesWhatTheSearchGivesOnASoup) {
  std::mt19937 random(5);
  std::uniform_int_distribution<int> place(0, 6);
  for (int round = 0; round < 150; ++round) {
    std::vector<SampleTriangle> soup;
    for (int t = 0; t < 25; ++t) {
      SampleTriangle triangle;
      for (PointRecord& corner : triangle) {
        corner = {0, 1.0 * place(random), 1.0 * place(random), 1.0 * place(random), 1.0};
        corner.id = static_cast<std::int32_t>(corner.x * 100 + corner.y * 10 + corner.z);
      }
      soup.push_back(triangle);
    }
    ExpectReferenceHeights(soup, NodesFrom(-1.0, 7.0, 0.5, 17, 17), 0.5);
    if (HasFailure()) break;
  }
}

// Slivers of a width near the rounding of their coordinates: there a node may pass the test beside the
// triangle, or beyond its end.
TEST_F(TinRasterTest, GivesWhatTheSearchGivesOnSlivers) {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> along(0.0, 1.0);
  std::uniform_int_distribution<int> ulps(-3, 3);
  for (int round = 0; round < 100; ++round) {
    std::vector<SampleTriangle> slivers;
    const double x0 = 450000.1;
    const double y0 = 5400000.2;
    for (int t = 0; t < 12; ++t) {
      SampleTriangle triangle;
      for (PointRecord& corner : triangle) {
        const double place = 8.0 * along(random);
        corner = {0, x0 + place, y0 + place / 2.0 + ulps(random) * 1e-9, along(random), 1.0};
        corner.id = static_cast<std::int32_t>(random() % 1000000);
      }
      slivers.push_back(triangle);
    }
    ExpectReferenceHeights(slivers, NodesFrom(x0 - 1.0, y0 + 5.0, 0.125, 80, 50), 0.125);
    if (HasFailure()) break;
  }
}

// So many triangles on top of each other that the nodes are looked up instead.
TEST_F(TinRasterTest, ManyLayersEndInTheSearch) {
  std::vector<SampleTriangle> layers;
  for (std::int32_t i = 0; i < 3000; ++i) {
    layers.push_back({{{3 * i, 0.5 * (i % 7), 0.0, 1.0 * i, 1.0},
                       {3 * i + 1, 100.0, 0.01 * i, 2.0, 1.0},
                       {3 * i + 2, 0.02 * i, 100.0, 3.0, 1.0}}});
  }
  LoadTriangles(layers);
  const Nodes nodes = NodesFrom(0.25, 99.0, 0.5, 200, 200);
  EXPECT_EQ(Filled(nodes, 0.5), FilledByNode(nodes, 0.5));
}

}  // namespace
}  // namespace corvane
