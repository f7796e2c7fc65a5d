// From the bytes of a ".tin" file to the stored model.

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "TIN/TIN.h"
#include "TINSample.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

using List = std::vector<std::int32_t>;

List ToList(std::span<const std::int32_t> list) {
  return {list.begin(), list.end()};
}

class TINStore : public testing::Test {
 protected:
  bool LoadTriangles(const std::vector<SampleTriangle>& triangles) {
    WriteFileBytes("a.tin", TinBytes(triangles));
    return Load(tin, "a.tin");
  }

  void ExpectEmpty() const {
    EXPECT_EQ(tin.GetTriangleCount(), 0);
    EXPECT_EQ(tin.GetPointCount(), 0);
    EXPECT_TRUE(tin.triangles.empty());
    EXPECT_TRUE(tin.vertices.empty());
    EXPECT_FALSE(tin.triangleGrid.HasCells());
    EXPECT_EQ(tin.rawRecords, nullptr);
    EXPECT_EQ(tin.GetExtent(), Extent6());
  }

  void ExpectRefused(const std::vector<SampleTriangle>& triangles, const std::string& box) {
    EXPECT_FALSE(LoadTriangles(triangles));
    EXPECT_EQ(ui.events.back(), box);
    ExpectEmpty();
  }

  TempFolder folder;
  TestFrontEnd ui;
  TIN tin;
};

void ExpectCells(const GridIndex& grid, const ReferenceTin& reference,
                 const std::map<ReferenceTin::Cell, List>& cells) {
  ASSERT_EQ(grid.nRows, reference.nRows);
  ASSERT_EQ(grid.nCols, reference.nCols);
  EXPECT_EQ(grid.cellSize, reference.cellSize);
  for (std::int32_t row = 0; row < grid.nRows; ++row) {
    for (std::int32_t col = 0; col < grid.nCols; ++col) {
      const auto found = cells.find({row, col});
      EXPECT_EQ(ToList(grid.GetCell(row, col)), found == cells.end() ? List() : found->second);
    }
  }
}

// Everything, bit for bit.
void ExpectSame(const TIN& tin, const ReferenceTin& reference) {
  EXPECT_EQ(tin.extent, (Extent6{reference.minX, reference.maxX, reference.minY, reference.maxY,
                                 reference.minZ, reference.maxZ}));
  ASSERT_EQ(tin.vertices.size(), reference.vertices.size());
  EXPECT_EQ(tin.nPoints, static_cast<std::int32_t>(reference.vertices.size()));
  for (std::size_t v = 0; v < tin.vertices.size(); ++v) {
    EXPECT_EQ(static_cast<const PointRecord&>(tin.vertices[v]), reference.vertices[v].record);
    EXPECT_EQ(ToList(tin.vertices[v].triangles), reference.vertices[v].triangles);
  }
  ASSERT_EQ(tin.triangles.size(), reference.triangles.size());
  for (std::size_t i = 0; i < tin.triangles.size(); ++i) {
    const TINTriangle& triangle = tin.triangles[i];
    EXPECT_EQ(triangle.id, static_cast<std::int32_t>(i));
    EXPECT_TRUE(std::equal(triangle.v, triangle.v + 3, reference.triangles[i].begin()));
    EXPECT_EQ((std::array{triangle.nx, triangle.ny, triangle.nz}), reference.normals[i]);
  }
  ExpectCells(tin.triangleGrid, reference, reference.triangleCells);
  ExpectCells(tin.vertexGrid, reference, reference.vertexCells);
}

TEST_F(TINStore, SharesVerticesOfTwoTriangles) {
  ASSERT_TRUE(LoadTriangles(TwoTriangles()));
  EXPECT_EQ(tin.GetTriangleCount(), 2);
  EXPECT_EQ(tin.GetPointCount(), 4);
  EXPECT_EQ(ToList(tin.vertices[0].triangles), (List{0, 1}));
  EXPECT_EQ(ToList(tin.vertices[1].triangles), List{0});
  EXPECT_EQ(ToList(tin.vertices[2].triangles), (List{0, 1}));
  EXPECT_EQ(ToList(tin.vertices[3].triangles), List{1});
  EXPECT_EQ(tin.GetVertex(1, 2).z, 4.0);
  EXPECT_EQ(tin.GetTriangle(1).id, 1);
  EXPECT_EQ(tin.extent, (Extent6{0.0, 10.0, 0.0, 10.0, 1.0, 4.0}));
  EXPECT_EQ(tin.ptsMinX, 0.0);
  EXPECT_EQ(tin.ptsMaxY, 10.0);
  EXPECT_EQ(tin.ptsMaxX, 10.0);
  EXPECT_EQ(tin.ptsMinY, 0.0);
  EXPECT_EQ(tin.ptsMinZ, 1.0);
  EXPECT_EQ(tin.ptsMaxZ, 4.0);
  EXPECT_EQ(tin.spacingX, 1.0);
  EXPECT_EQ(tin.rawRecords, nullptr);
}

TEST_F(TINStore, PrintsTheCountAndShowsTheStatistics) {
  ASSERT_TRUE(LoadTriangles(TwoTriangles()));
  const std::vector<std::string> expected = {"print: Number of triangles = 2\n",
                                             "message information: triangles: 2\nmin: 0.000000 0.000000 "
                                             "1.000000\nmax: 10.000000 10.000000 4.000000"};
  EXPECT_EQ(ui.events, expected);
}

TEST_F(TINStore, EqualsTheReferenceOnRandomMeshes) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    const auto triangles = JitteredMesh(static_cast<int>(seed) * 3, 17, seed);
    ASSERT_TRUE(LoadTriangles(triangles));
    ExpectSame(tin, ReferenceTin(triangles));
  }
}

TEST_F(TINStore, EqualsTheReferenceInAnyOrderOfTriangles) {
  auto triangles = JitteredMesh(20, 20, 7);
  std::shuffle(triangles.begin(), triangles.end(), std::mt19937(1));
  ASSERT_TRUE(LoadTriangles(triangles));
  ExpectSame(tin, ReferenceTin(triangles));
}

TEST_F(TINStore, EqualsTheReferenceForIdsAtSeveralPlaces) {
  auto triangles = JitteredMesh(20, 20, 8);
  for (SampleTriangle& triangle : triangles) {
    for (PointRecord& corner : triangle) corner.id %= 37;
  }
  ASSERT_TRUE(LoadTriangles(triangles));
  ExpectSame(tin, ReferenceTin(triangles));
}

TEST_F(TINStore, EqualsTheReferenceForMarkedAndHugeIds) {
  auto triangles = JitteredMesh(20, 20, 9);
  for (SampleTriangle& triangle : triangles) {
    for (PointRecord& corner : triangle) {
      if (corner.id % 3 == 0) corner.id = -1;
      if (corner.id % 3 == 1) corner.id += 2000000000;
    }
  }
  ASSERT_TRUE(LoadTriangles(triangles));
  ExpectSame(tin, ReferenceTin(triangles));
}

TEST_F(TINStore, EqualsTheReferenceForOneIdEverywhere) {
  auto triangles = JitteredMesh(15, 15, 10);
  for (SampleTriangle& triangle : triangles) {
    for (PointRecord& corner : triangle) corner.id = 5;
  }
  ASSERT_TRUE(LoadTriangles(triangles));
  ExpectSame(tin, ReferenceTin(triangles));
}

TEST_F(TINStore, EqualsTheReferenceForScatteredTriangles) {
  std::mt19937 random(11);
  const auto number = [&random] { return static_cast<double>(random()) / 4294967296.0; };
  std::vector<SampleTriangle> triangles(150);
  for (SampleTriangle& triangle : triangles) {
    for (PointRecord& corner : triangle) {
      corner = {static_cast<std::int32_t>(random() % 400), number() * 3.0, number() * 2.0, number(), 0.0};
    }
  }
  ASSERT_TRUE(LoadTriangles(triangles));
  ExpectSame(tin, ReferenceTin(triangles));
}

TEST_F(TINStore, SameIdInOneCellKeepsTheFirstRecord) {
  auto triangles = TwoTriangles();  // cells of size 10 / sqrt(2)
  triangles[1][0] = {0, 1.0, 2.0, 9.0, 7.0};
  ASSERT_TRUE(LoadTriangles(triangles));
  EXPECT_EQ(tin.GetPointCount(), 4);
  EXPECT_EQ(tin.GetVertex(1, 0).x, 0.0);
  EXPECT_EQ(tin.GetVertex(1, 0).z, 1.0);
  EXPECT_EQ(tin.extent.maxZ, 9.0);  // the statistics know all records
  Extent6 box;
  tin.TriangleBox(1, box);
  EXPECT_EQ(box, (Extent6{0.0, 10.0, 0.0, 10.0, 1.0, 4.0}));
  ExpectSame(tin, ReferenceTin(triangles));
}

TEST_F(TINStore, EqualCoordinatesWithOtherIdsStayTwoVertices) {
  auto triangles = TwoTriangles();
  triangles[1][0].id = 8;
  ASSERT_TRUE(LoadTriangles(triangles));
  EXPECT_EQ(tin.GetPointCount(), 5);
}

TEST_F(TINStore, TriangleWithOneVertexAtTwoCornersIsListedTwice) {
  auto triangles = TwoTriangles();
  triangles[1][1] = triangles[1][0];
  ASSERT_TRUE(LoadTriangles(triangles));
  EXPECT_EQ(ToList(tin.vertices[0].triangles), (List{0, 1, 1}));
  EXPECT_EQ(tin.GetTriangle(1).nz, 1.0);  // no area
  EXPECT_EQ(tin.GetTriangle(1).nx, 0.0);
}

TEST_F(TINStore, VertexCapacityStartsAtTheCountBelowTwentyTriangles) {
  const auto mesh = JitteredMesh(11, 11, 3);
  ASSERT_TRUE(LoadTriangles({mesh.begin(), mesh.begin() + 18}));  // 20 vertices
  EXPECT_EQ(tin.vertexCapacity, 28);                              // 18, grown by 10
  ASSERT_TRUE(LoadTriangles({mesh.begin(), mesh.begin() + 4}));   // 6 vertices
  EXPECT_EQ(tin.vertexCapacity, 14);                              // 4, grown by 10
  ASSERT_TRUE(LoadTriangles({mesh[0], mesh[0], mesh[0], mesh[0]}));
  EXPECT_EQ(tin.vertexCapacity, 4);
}

TEST_F(TINStore, VertexCapacityStartsAtSixTenthsFromTwentyTrianglesOn) {
  const auto mesh = JitteredMesh(41, 41, 3);  // 3200 triangles, 1681 vertices
  ASSERT_TRUE(LoadTriangles(mesh));
  EXPECT_EQ(tin.vertexCapacity, 1920);
  ASSERT_TRUE(LoadTriangles({mesh.begin(), mesh.begin() + 21}));  // 23 vertices
  EXPECT_EQ(tin.vertexCapacity, 32);                              // 12, grown by 10 twice
}

TEST_F(TINStore, AllVerticesAtOnePointFailWithoutABoxOfTheirOwn) {
  auto triangles = TwoTriangles();
  for (SampleTriangle& triangle : triangles) {
    for (PointRecord& corner : triangle) corner.x = corner.y = 4.0;
  }
  ASSERT_FALSE(LoadTriangles(triangles));
  EXPECT_EQ(ui.events.size(), 2U);
  EXPECT_EQ(
      ui.events.back(),
      "message information: triangles: 2\nmin: 4.000000 4.000000 1.000000\nmax: 4.000000 4.000000 4.000000");
  // Its triangles are not lost.
  EXPECT_FALSE(tin.IsStored());
  EXPECT_TRUE(tin.vertices.empty());
  EXPECT_EQ(tin.GetTriangleCount(), 2);
  OutputFile file("b.tin");
  EXPECT_EQ(tin.WriteTIN(file), 0);
  EXPECT_TRUE(file.Commit());
  EXPECT_EQ(ReadFileBytes("b.tin"), TinBytes(triangles));
}

TEST_F(TINStore, ARawTinThatCanNotBeStoredStaysRaw) {
  auto triangles = TwoTriangles();
  triangles[1][2].x = kNaN;
  WriteFileBytes("a.tin", TinBytes(triangles));
  ASSERT_EQ(tin.ReadTIN("a.tin"), 0);
  EXPECT_EQ(tin.StoreRawTriangles(), -2);
  EXPECT_FALSE(tin.IsStored());
  EXPECT_EQ(tin.GetTriangleCount(), 2);
  EXPECT_EQ(tin.StoreTriangle("a.tin"), -2);  // whose file form gives the raw triangles up
  ExpectEmpty();
}

TEST_F(TINStore, AllVerticesOnALineAlongYAreStoredInOneColumn) {
  auto triangles = TwoTriangles();
  for (SampleTriangle& triangle : triangles) {
    for (PointRecord& corner : triangle) corner.x = 4.0;
  }
  ASSERT_TRUE(LoadTriangles(triangles));
  EXPECT_EQ(tin.triangleGrid.nCols, 1);
  EXPECT_EQ(tin.triangleGrid.cellSize, 5.0);  // 1 * 10 / 2
  EXPECT_EQ(tin.triangleGrid.nRows, 3);
}

TEST_F(TINStore, StoreWithoutReadShowsNoTinRead) {
  WriteFileBytes("a.tin", TinBytes(TwoTriangles()));
  EXPECT_EQ(tin.StoreTriangle("a.tin"), -1);
  EXPECT_EQ(ui.events, std::vector<std::string>{"message message: StoreTriangle: No TIN read"});
}

TEST_F(TINStore, StoreOfNoTrianglesShowsNoTinRead) {
  WriteFileBytes("a.tin", TinBytes({}));
  EXPECT_EQ(tin.ReadTIN("a.tin"), 0);
  EXPECT_EQ(tin.StoreTriangle("a.tin"), -1);
  const std::vector<std::string> expected = {"print: Number of triangles = 0\n",
                                             "message message: StoreTriangle: No TIN read"};
  EXPECT_EQ(ui.events, expected);
}

TEST_F(TINStore, SecondStoreOfOneReadLeavesTheTin) {
  ASSERT_TRUE(LoadTriangles(TwoTriangles()));
  EXPECT_EQ(tin.StoreTriangle("a.tin"), -1);
  EXPECT_EQ(ui.events.back(), "message message: StoreTriangle: No TIN read");
  EXPECT_EQ(tin.nTriangles, 2);
  EXPECT_TRUE(tin.IsStored());
}

TEST_F(TINStore, StoreFromAMissingPathWarns) {
  WriteFileBytes("a.tin", TinBytes(TwoTriangles()));
  EXPECT_EQ(tin.ReadTIN("a.tin"), 0);
  EXPECT_EQ(tin.StoreTriangle("none.tin"), -1);
  EXPECT_EQ(ui.events.back(), "message warning: Open file none.tin error!");
  EXPECT_EQ(tin.StoreTriangle("a.tin"), 0);
}

TEST_F(TINStore, ARawTinWritesItsRawTriangles) {
  WriteFileBytes("a.tin", TinBytes(TwoTriangles()) + "tail");
  EXPECT_EQ(tin.ReadTIN("a.tin"), 0);
  EXPECT_FALSE(tin.IsStored());
  OutputFile file("b.tin");
  EXPECT_EQ(tin.WriteTIN(file), 0);
  EXPECT_TRUE(file.Commit());
  EXPECT_EQ(ReadFileBytes("b.tin"), TinBytes(TwoTriangles()));
  OutputFile compact("c.tin");
  EXPECT_EQ(tin.WriteCompactTIN(compact), -1);
}

TEST_F(TINStore, CoordinatesThatAreNoNumbersAreRefused) {
  for (const double bad : {kNaN, kInfinity, -kInfinity}) {
    for (const std::size_t corner : {0U, 2U}) {
      auto triangles = TwoTriangles();
      triangles[corner / 2][corner].x = bad;
      ExpectRefused(triangles, "message message: StoreTriangle: Read TIN error!");
      triangles = TwoTriangles();
      triangles[corner / 2][corner].y = bad;
      ExpectRefused(triangles, "message message: StoreTriangle: Read TIN error!");
    }
  }
}

TEST_F(TINStore, HeightsThatAreNoNumbersAreStored) {
  auto triangles = TwoTriangles();
  triangles[0][1].z = kNaN;
  ASSERT_TRUE(LoadTriangles(triangles));
  EXPECT_EQ(tin.extent.maxZ, 4.0);
  EXPECT_NE(tin.GetTriangle(0).nz, tin.GetTriangle(0).nz);
}

TEST_F(TINStore, ExtentsWhoseGridDoesNotFitNumbersAreRefused) {
  auto triangles = TwoTriangles();
  for (SampleTriangle& triangle : triangles) {
    for (PointRecord& corner : triangle) {
      corner.x *= 1e306;
      corner.y *= 1e-306;
    }
  }
  ExpectRefused(triangles, "message message: StoreTriangle: Read TIN error!");
  triangles = TwoTriangles();
  for (SampleTriangle& triangle : triangles) {
    for (PointRecord& corner : triangle) {
      corner.x *= 1e-200;
      corner.y *= 1e-200;
    }
  }
  ExpectRefused(triangles, "message message: StoreTriangle: Read TIN error!");
}

TEST_F(TINStore, ExtentsWhoseAreaOverflowsGetOneCell) {
  auto triangles = TwoTriangles();
  for (SampleTriangle& triangle : triangles) {
    for (PointRecord& corner : triangle) {
      corner.x *= 1e200;
      corner.y *= 1e200;
    }
  }
  ASSERT_TRUE(LoadTriangles(triangles));
  EXPECT_EQ(tin.triangleGrid.nRows, 1);
  EXPECT_EQ(ToList(tin.triangleGrid.GetCell(0, 0)), (List{0, 1}));
}

TEST_F(TINStore, LongAndThinExtentsThatNeedTooManyCellsAreRefused) {
  auto triangles = TwoTriangles();
  for (SampleTriangle& triangle : triangles) {
    for (PointRecord& corner : triangle) corner.x *= 1e14;  // sqrt(1e15 / 10 * 2) cells in a row, 1.4e7
  }
  ExpectRefused(triangles, "message message: StoreTriangle: The triangles need too large a grid!");
}

TEST_F(TINStore, TrianglesThatAllSpanTheWholeGridAreRefused) {
  const SampleTriangle whole = TwoTriangles()[0];
  // 5000 triangles of 70 * 70 cells, more than 256 each and 16,000,000.
  ExpectRefused(std::vector<SampleTriangle>(5000, whole),
                "message message: StoreTriangle: The triangles need too large a grid!");
}

TEST_F(TINStore, CornersThatTheFileHasLostSinceReadAsZeros) {
  const std::string bytes = TinBytes(TwoTriangles());
  WriteFileBytes("a.tin", bytes);
  EXPECT_EQ(tin.ReadTIN("a.tin"), 0);
  WriteFileBytes("a.tin", bytes.substr(0, 4 + 5 * kVertexBytes));
  EXPECT_EQ(tin.StoreTriangle("a.tin"), 0);
  EXPECT_EQ(tin.GetTriangle(1).v[2], 0);  // id 0 at (0, 0)
  EXPECT_EQ(tin.GetPointCount(), 3);
}

TEST_F(TINStore, LostCornersOutsideTheGridAreRefused) {
  const auto triangles = JitteredMesh(3, 3, 1);
  const std::string bytes = TinBytes(triangles);
  WriteFileBytes("a.tin", bytes);
  EXPECT_EQ(tin.ReadTIN("a.tin"), 0);
  WriteFileBytes("a.tin", bytes.substr(0, 4));
  EXPECT_EQ(tin.StoreTriangle("a.tin"), -2);
  EXPECT_EQ(ui.events.back(), "message message: StoreTriangle: Read TIN error!");
  ExpectEmpty();
}

TEST_F(TINStore, CornersMovedSinceReadStayWithinTheGrid) {
  WriteFileBytes("a.tin", TinBytes(TwoTriangles()));
  EXPECT_EQ(tin.ReadTIN("a.tin"), 0);
  auto triangles = TwoTriangles();
  triangles[1][2].y = 1e6;
  WriteFileBytes("a.tin", TinBytes(triangles));
  EXPECT_EQ(tin.StoreTriangle("a.tin"), -2);
  ExpectEmpty();
}

TEST_F(TINStore, SecondReadStartsFromEmpty) {
  ASSERT_TRUE(LoadTriangles(JitteredMesh(8, 8, 2)));
  tin.BuildNeighbours();
  tin.CalcTrianglesArea();
  tin.labels = {1};
  tin.highlight = {1};
  tin.spacingX = 9.0;
  ASSERT_TRUE(LoadTriangles(TwoTriangles()));
  ExpectSame(tin, ReferenceTin(TwoTriangles()));
  EXPECT_TRUE(tin.neighbours.empty());
  EXPECT_TRUE(tin.triangleAreas.empty());
  EXPECT_TRUE(tin.labels.empty());
  EXPECT_TRUE(tin.highlight.empty());
  EXPECT_EQ(tin.spacingX, 1.0);
}

TEST_F(TINStore, RawTinHoldsTheRecordsOfTheFile) {
  const std::string bytes = TinBytes(TwoTriangles());
  WriteFileBytes("a.tin", bytes);
  EXPECT_EQ(tin.ReadTIN("a.tin"), 0);
  EXPECT_EQ(tin.nTriangles, 2);
  EXPECT_EQ(std::string(tin.rawRecords.get(), 216), bytes.substr(4));
  EXPECT_TRUE(tin.triangles.empty());
}

}  // namespace
}  // namespace corvane
