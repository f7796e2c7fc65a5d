#include "TIN/TinRaster.h"

#include <gtest/gtest.h>

#include <algorithm>
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

// A TIN and a raster that lie badly: coordinates from tiny to huge, triangles thin down to their rounding, on
// a coarse grid, clockwise, far smaller or larger than a cell, and nodes on and about their corners.
class BadCase {
 public:
  explicit BadCase(unsigned seed) : random_(seed) {
    static constexpr double kBases[] = {0.0, 0.0, 0.0, 1e6 + 0.1, 5.4e6 + 0.2, -1e6, 450000.1, 1e15, -1e-20};
    base_ = kBases[Whole(0, 8)];
    const double size = std::max(std::fabs(base_), 1e-300);
    const double scales[] = {1e-3, size * std::exp2(-Whole(20, 52)), std::pow(10.0, Whole(-30, 30)), size,
                             std::pow(10.0, Whole(-2, 4))};
    scale_ = scales[Whole(0, 4)];
    kind_ = Whole(0, 5);
    grid_ = Whole(0, 1) == 0 ? 0 : Whole(2, 16);
    angle_ = Real(0.0, 6.3);
    thinness_ = std::pow(10.0, Real(-17.0, 0.0));
    const int nTriangles = Whole(1, 40);
    for (int i = 0; i < nTriangles; ++i) AddTriangle();
  }

  double CellSize(const Extent6& extent) {
    const double side = std::max(extent.maxX - extent.minX, extent.maxY - extent.minY);
    const double sizes[] = {side * std::pow(10.0, Real(-3.0, 3.0)), side * std::pow(10.0, Real(-12.0, 20.0)),
                            side * thinness_ * std::pow(10.0, Real(-2.0, 2.0)), side / Whole(1, 32),
                            side / Real(1.0, 40.0)};
    const double size = sizes[Whole(0, 4)];
    return Whole(0, 1) == 0 ? size : static_cast<float>(size);
  }

  // Around a corner of some triangle, exactly on it or a little off.
  Nodes NodesAround(double cellSize) {
    const int nCols = Whole(0, 3) > 0 ? Whole(1, 40) : Whole(1, 5);
    const int nRows = Whole(0, 3) > 0 ? Whole(1, 40) : Whole(1, 5);
    const PointRecord& corner =
        triangles[static_cast<std::size_t>(Whole(0, static_cast<int>(triangles.size()) - 1))][0];
    const double off = Whole(0, 1) == 0 ? 0.0 : Whole(-3, 3) / 128.0 * cellSize;
    return NodesFrom(corner.x - Whole(0, nCols) * cellSize + off, corner.y + Whole(0, nRows) * cellSize + off,
                     cellSize, nCols, nRows);
  }

  std::vector<SampleTriangle> triangles;

 private:
  int Whole(int from, int to) {
    return from + static_cast<int>(random_() % static_cast<unsigned>(to - from + 1));
  }
  double Real(double from, double to) { return from + (to - from) * (random_() / 4294967296.0); }

  PointRecord Corner() {
    double a = Real(0.0, 1.0);
    double b = Real(0.0, 1.0);
    if (grid_ > 0) {
      a = std::floor(a * grid_) / grid_;
      b = std::floor(b * grid_) / grid_;
    }
    if (kind_ == 1 || kind_ == 2) {  // near one line
      const double across = (b - 0.5) * thinness_;
      b = a * std::sin(angle_) + across * std::cos(angle_);
      a = a * std::cos(angle_) - across * std::sin(angle_);
    } else if (kind_ == 3) {  // a few units of rounding off a line
      b = a / 2.0 + Whole(-3, 3) * 0x1p-52 * (std::fabs(base_) / scale_ + 1.0);
    }
    return {nCorners_++, base_ + a * scale_, base_ + b * scale_, Real(-100.0, 100.0), 1.0};
  }

  void AddTriangle() {
    const PointRecord centre = Corner();
    const double shrink = kind_ == 4 ? std::pow(10.0, -Real(0.0, 6.0)) : 1.0;
    SampleTriangle triangle;
    for (PointRecord& corner : triangle) {
      corner = Corner();
      if (kind_ == 4) {
        corner.x = centre.x + (corner.x - base_) * shrink;
        corner.y = centre.y + (corner.y - base_) * shrink;
      }
      if (!triangles.empty() && Whole(0, 3) == 0)
        corner = triangles.back()[static_cast<std::size_t>(Whole(0, 2))];
    }
    const auto& [p, q, r] = triangle;
    if (Whole(0, 3) > 0 && (q.x - p.x) * (r.y - p.y) < (r.x - p.x) * (q.y - p.y))
      std::swap(triangle[1], triangle[2]);
    triangles.push_back(triangle);
  }

  std::mt19937 random_;
  double base_;
  double scale_;
  int kind_;
  int grid_;
  double angle_;
  double thinness_;
  std::int32_t nCorners_ = 0;
};

TEST_F(TinRasterTest, GivesWhatTheSearchGivesInBadCases) {
  int nHeights = 0;
  for (unsigned seed = 1; seed <= 5000; ++seed) {
    BadCase bad(seed);
    WriteFileBytes("a.tin", TinBytes(bad.triangles));
    if (!Load(tin, "a.tin")) continue;
    const double cellSize = bad.CellSize(tin.GetExtent());
    if (!(cellSize > 0.0) || !std::isfinite(cellSize)) continue;
    const Nodes nodes = bad.NodesAround(cellSize);
    const std::vector<float> expected = FilledByNode(nodes, cellSize);
    for (const SimdVersion version : AvailableSimdVersions()) {
      const ForcedSimdVersion forced(version);
      const std::vector<float> heights = Filled(nodes, cellSize);
      const bool areEqual =
          std::equal(heights.begin(), heights.end(), expected.begin(),
                     [](float a, float b) { return a == b || (std::isnan(a) && std::isnan(b)); });
      ASSERT_TRUE(areEqual) << "seed " << seed << ", version " << static_cast<int>(version);
    }
    nHeights += static_cast<int>(
        std::count_if(expected.begin(), expected.end(), [](float z) { return z != 230.0f; }));
  }
  EXPECT_GT(nHeights, 50000);
}

// A node a hair beside a triangle far larger than its cells, which rounding lets pass the test.
TEST_F(TinRasterTest, NodesBesideTheBoxAreNotTaken) {
  const std::vector<SampleTriangle> triangles = {
      {{{0, 0x1.29e4129e4129fp-6, 0x1.745d1745d1746p-5, -4.0, 1.0},
        {1, 0x1.79ca10c924223p-67, 0x1.79ca10c924223p-67, 96.5, 1.0},
        {2, 0x1.29e4129e4129fp-5, 0x1.29e4129e4129fp-6, -46.0, 1.0}}}};
  const double cellSize = 0x1.5cbae2p-27;
  ExpectReferenceHeights(triangles, NodesFrom(-0x1.5cbae1ffff432p-26, 0x1.7ap-67, cellSize, 4, 1), cellSize);
}

// A node a hair beside a triangle, and over the border of the index's cell from it: the triangle passes the
// test by rounding, but the search never looks at it from there.
TEST_F(TinRasterTest, NodesInCellsWithoutTheTriangleAreNotTaken) {
  constexpr int kNinths[][2] = {
      {1, 8}, {1, 1}, {6, 7}, {8, 4}, {0, 7}, {4, 6}, {0, 2}, {8, 2}, {5, 3}, {0, 1}, {5, 3}, {0, 8},
      {1, 8}, {4, 1}, {6, 3}, {5, 3}, {2, 7}, {0, 5}, {5, 8}, {1, 4}, {6, 3}, {5, 7}, {5, 7}, {2, 3},
      {3, 8}, {5, 2}, {8, 2}, {5, 3}, {0, 7}, {3, 4}, {5, 2}, {0, 8}, {3, 4}, {4, 2}, {8, 3}, {5, 3},
      {5, 4}, {2, 7}, {6, 2}, {2, 8}, {0, 0}, {8, 3}, {8, 3}, {0, 8}, {2, 8}, {4, 4}, {0, 2}, {4, 3}};
  std::vector<SampleTriangle> triangles(std::size(kNinths) / 3);
  for (std::size_t i = 0; i < std::size(kNinths); ++i) {
    triangles[i / 3][i % 3] = {static_cast<std::int32_t>(i), kNinths[i][0] / 9.0 * 1000.0,
                               kNinths[i][1] / 9.0 * 1000.0, static_cast<double>(i), 1.0};
  }
  const double cellSize = 0x1.70b9dep+6;
  ExpectReferenceHeights(triangles, NodesFrom(0x1.861f442aaaaaap+8, 0x1.bc71c71c71c7p+7, cellSize, 4, 1),
                         cellSize);
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
