#include "TIN/GridIndex.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "numerics/Point3.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kTenByFive[4] = {0.0, 10.0, 0.0, 5.0};

using List = std::vector<std::int32_t>;

List CellList(const GridIndex& grid, std::int32_t row, std::int32_t col) {
  const auto cell = grid.GetCell(row, col);
  return {cell.begin(), cell.end()};
}

// 6 columns and 3 rows of size 2 over x 0..10, y 0..5.
GridIndex SmallGrid() {
  GridIndex grid;
  grid.SizeWithCell(kTenByFive, 2.0);
  EXPECT_EQ(grid.Allocate(), 0);
  return grid;
}

TEST(GridIndex, NewObjectIsEmptyWithCellSizeOne) {
  const GridIndex grid;
  EXPECT_EQ(grid.nRows, 0);
  EXPECT_EQ(grid.nCols, 0);
  EXPECT_EQ(grid.cellSize, 1.0);
  EXPECT_FALSE(grid.HasCells());
  EXPECT_TRUE(grid.GetCell(0, 0).empty());
  EXPECT_EQ(grid.MeanOccupancy(), 0);
}

TEST(GridIndex, SizeTakesCellsFromDensity) {
  GridIndex grid;
  grid.Size(kTenByFive, 100, 2.0);
  EXPECT_DOUBLE_EQ(grid.cellSize, 1.0);  // sqrt(10 * 5 * 2 / 100)
  EXPECT_EQ(grid.nCols, 11);
  EXPECT_EQ(grid.nRows, 6);
  EXPECT_EQ(grid.minX, 0.0);
  EXPECT_EQ(grid.maxX, 10.0);
  EXPECT_EQ(grid.minY, 0.0);
  EXPECT_EQ(grid.maxY, 5.0);
}

TEST(GridIndex, SizeDropsTheCellsThatAreThere) {
  GridIndex grid = SmallGrid();
  grid.Insert(9.0, 4.0, 1);
  grid.Size(kTenByFive, 1, 2.0);
  EXPECT_FALSE(grid.HasCells());
  EXPECT_TRUE(grid.GetCell(0, 0).empty());
  EXPECT_EQ(grid.Insert(9.0, 4.0, 2), 1);  // makes the new ones
  EXPECT_EQ(CellList(grid, 0, 0), List{2});
  grid.SizeWithCell(kTenByFive, 1.0);
  EXPECT_FALSE(grid.HasCells());
  EXPECT_TRUE(grid.GetCell(4, 9).empty());
}

TEST(GridIndex, SizeOfCrossedExtentsTakesTheirDistance) {
  const double crossed[4] = {10.0, 0.0, 5.0, 0.0};
  GridIndex grid;
  grid.Size(crossed, 100, 2.0);
  EXPECT_EQ(grid.nCols, 11);
  EXPECT_EQ(grid.nRows, 6);
}

TEST(GridIndex, AllItemsAtOnePointMakeOneCellOfSizeOne) {
  const double point[4] = {7.0, 7.0, 3.0, 3.0};
  GridIndex grid;
  grid.Size(point, 50, 4.0);
  EXPECT_EQ(grid.nRows, 1);
  EXPECT_EQ(grid.nCols, 1);
  EXPECT_EQ(grid.cellSize, 1.0);
}

TEST(GridIndex, LineAlongYIsOneColumnWithCellFromItsHeight) {
  const double line[4] = {7.0, 7.0, 0.0, 20.0};
  GridIndex grid;
  grid.Size(line, 10, 2.0);
  EXPECT_EQ(grid.nCols, 1);
  EXPECT_EQ(grid.cellSize, 4.0);  // 2 * 20 / 10
  EXPECT_EQ(grid.nRows, 6);
}

TEST(GridIndex, LineAlongXIsOneRowWithCellFromItsWidth) {
  const double line[4] = {0.0, 20.0, 7.0, 7.0};
  GridIndex grid;
  grid.Size(line, 10, 2.0);
  EXPECT_EQ(grid.nRows, 1);
  EXPECT_EQ(grid.cellSize, 4.0);
  EXPECT_EQ(grid.nCols, 6);
}

TEST(GridIndex, NoItemsDivideByZeroIntoOneCell) {
  GridIndex grid;
  grid.Size(kTenByFive, 0, 1.0);
  EXPECT_EQ(grid.cellSize, kInfinity);
  EXPECT_EQ(grid.nRows, 1);
  EXPECT_EQ(grid.nCols, 1);
}

TEST(GridIndex, SizesThatAreNoNumberGiveNoCells) {
  const double cases[][4] = {{kNaN, 1.0, 0.0, 1.0},
                             {0.0, kInfinity, 0.0, 1.0},
                             {-kInfinity, kInfinity, -kInfinity, kInfinity},
                             {-1.7e308, 1.7e308, 0.0, 1.0},
                             {0.0, 1e-200, 0.0, 1e-200}};  // w * h underflows
  for (const auto& extent : cases) {
    GridIndex grid;
    grid.Size(extent, 10, 1.0);
    EXPECT_EQ(grid.Allocate(), -1);
    EXPECT_FALSE(grid.HasCells());
  }
}

TEST(GridIndex, AllocateRefusesMoreThanAHundredCellsAnItemAndAMillion) {
  const double line[4] = {0.0, 1000999.5, 0.0, 0.0};
  GridIndex grid;
  grid.SizeWithCell(line, 1.0);
  EXPECT_EQ(grid.nCols, 1001000);
  EXPECT_EQ(grid.Allocate(), -1);
  grid.SizeWithCell(line, 1.0, 10);
  EXPECT_EQ(grid.Allocate(), 0);
  grid.SizeWithCell(line, 1.0, 9);
  EXPECT_EQ(grid.Allocate(), -1);
  EXPECT_FALSE(grid.HasCells());
}

TEST(GridIndex, AllocateNeedsARowAndAColumn) {
  GridIndex grid;
  EXPECT_EQ(grid.Allocate(), -1);
  grid.nRows = 1;
  EXPECT_EQ(grid.Allocate(), -1);
  grid.nCols = 1;
  EXPECT_EQ(grid.Allocate(), 0);
}

TEST(GridIndex, PointAtMaxXOfAnExactMultipleLandsInTheLastColumn) {
  GridIndex grid = SmallGrid();
  EXPECT_EQ(grid.nCols, 6);
  EXPECT_EQ(grid.Insert(10.0, 0.0, 4), 1);
  EXPECT_EQ(CellList(grid, 0, 5), List{4});
}

TEST(GridIndex, SlightlyNegativeOffsetCountsAsInside) {
  GridIndex grid = SmallGrid();
  EXPECT_EQ(grid.Insert(-1.9, -1.9, 4), 1);
  EXPECT_EQ(CellList(grid, 0, 0), List{4});
}

TEST(GridIndex, InsertAllocatesAtFirstUse) {
  GridIndex grid;
  grid.SizeWithCell(kTenByFive, 2.0);
  EXPECT_EQ(grid.Insert(3.9, 4.0, 11), 1);
  EXPECT_EQ(CellList(grid, 2, 1), List{11});
}

TEST(GridIndex, InsertWithoutRowsFails) {
  GridIndex grid;
  EXPECT_EQ(grid.Insert(0.0, 0.0, 1), -1);
}

TEST(GridIndex, PointsOutsideAreReportedAndTraced) {
  TestFrontEnd ui;
  GridIndex grid = SmallGrid();
  EXPECT_EQ(grid.Insert(12.0, 0.0, 1), -2);  // an address equal to nCols is outside
  const std::vector<std::string> expected = {
      "trace: rectangle: 0.000000, 5.000000, 10.000000, 0.000000, row: 0, col: 6\n",
      "message warning: There is error in points extension!!"};
  EXPECT_EQ(ui.events, expected);
  EXPECT_EQ(grid.Insert(0.0, 6.0, 1), -2);  // so is one equal to nRows
  EXPECT_EQ(grid.Insert(-2.0, 0.0, 1), -2);
  EXPECT_EQ(grid.Insert(0.0, -2.0, 1), -2);
  EXPECT_EQ(grid.Remove(0.0, -2.0, 1), -2);
  EXPECT_EQ(ui.EventsWith("message warning").size(), 5U);
}

TEST(GridIndex, CoordinatesThatAreNoNumberOrHugeAreOutside) {
  TestFrontEnd ui;
  GridIndex grid = SmallGrid();
  for (const double bad : {kNaN, kInfinity, -kInfinity, 1e300, -1e300}) {
    EXPECT_EQ(grid.Insert(bad, 0.0, 1), -2) << bad;
    EXPECT_EQ(grid.Insert(0.0, bad, 1), -2) << bad;
  }
}

TEST(GridIndex, InsertAppendsToTheCell) {
  GridIndex grid = SmallGrid();
  List expected;
  for (std::int32_t id = 40; id > 0; --id) {
    EXPECT_EQ(grid.Insert(3.0, 3.0, id), 1);
    EXPECT_EQ(grid.Insert(5.0, 3.0, -id), 1);
    expected.push_back(id);
  }
  EXPECT_EQ(CellList(grid, 1, 1), expected);
  EXPECT_EQ(grid.GetCell(1, 2).size(), 40U);
  EXPECT_TRUE(grid.GetCell(0, 0).empty());
}

TEST(GridIndex, RemoveErasesTheFirstAndKeepsTheOrder) {
  GridIndex grid = SmallGrid();
  for (const std::int32_t id : {1, 2, 3, 2, 4}) grid.Insert(3.0, 3.0, id);
  EXPECT_EQ(grid.Remove(3.0, 3.0, 2), 1);
  EXPECT_EQ(CellList(grid, 1, 1), (List{1, 3, 2, 4}));
}

TEST(GridIndex, RemoveOfAnAbsentIdentifierLeavesTheList) {
  GridIndex grid = SmallGrid();
  grid.Insert(3.0, 3.0, 1);
  EXPECT_EQ(grid.Remove(3.0, 3.0, 2), 0);
  EXPECT_EQ(CellList(grid, 1, 1), List{1});
}

TEST(GridIndex, RemoveWithoutCellsFails) {
  GridIndex grid;
  grid.SizeWithCell(kTenByFive, 2.0);
  EXPECT_EQ(grid.Remove(3.0, 3.0, 2), -1);
}

TEST(GridIndex, InsertAllGivesTheListsOfSingleInserts) {
  std::mt19937 random(5);
  std::vector<Point3> points(500);
  for (Point3& point : points) point = {random() % 1000 / 100.0, random() % 500 / 100.0, 0.0};
  GridIndex bulk;
  bulk.Size(kTenByFive, 500, 3.0);
  GridIndex single = bulk;
  const auto n = static_cast<std::int32_t>(points.size());
  const auto pointAt = [&points](std::int32_t id) { return points[static_cast<std::size_t>(id)]; };
  EXPECT_EQ(bulk.InsertAll(n, pointAt), 1);
  for (std::int32_t id = 0; id < n; ++id) EXPECT_EQ(single.Insert(pointAt(id).x, pointAt(id).y, id), 1);
  for (std::int32_t row = 0; row < bulk.nRows; ++row) {
    for (std::int32_t col = 0; col < bulk.nCols; ++col) {
      EXPECT_EQ(CellList(bulk, row, col), CellList(single, row, col)) << row << " " << col;
    }
  }
  EXPECT_EQ(bulk.MeanOccupancy(), single.MeanOccupancy());
}

TEST(GridIndex, InsertAndRemoveGoOnAfterABulkBuild) {
  GridIndex grid;
  grid.SizeWithCell(kTenByFive, 2.0);
  const double x[] = {3.0, 5.0, 3.5, 3.1};
  EXPECT_EQ(grid.InsertAll(4, [&x](std::int32_t id) { return Point3{x[id], 3.0, 0.0}; }), 1);
  EXPECT_EQ(grid.Insert(3.0, 3.0, 9), 1);
  EXPECT_EQ(CellList(grid, 1, 1), (List{0, 2, 3, 9}));
  EXPECT_EQ(CellList(grid, 1, 2), List{1});
  EXPECT_EQ(grid.Remove(3.0, 3.0, 2), 1);
  EXPECT_EQ(grid.Remove(5.0, 3.0, 1), 1);
  EXPECT_EQ(CellList(grid, 1, 1), (List{0, 3, 9}));
  EXPECT_TRUE(grid.GetCell(1, 2).empty());
}

TEST(GridIndex, BulkBuildReplacesWhatWasThere) {
  GridIndex grid = SmallGrid();
  grid.Insert(1.0, 1.0, 7);
  EXPECT_EQ(grid.InsertAll(1, [](std::int32_t) { return Point3{3.0, 3.0, 0.0}; }), 1);
  EXPECT_TRUE(grid.GetCell(0, 0).empty());
  EXPECT_EQ(CellList(grid, 1, 1), List{0});
}

TEST(GridIndex, FailedBulkBuildShowsOneBox) {
  TestFrontEnd ui;
  GridIndex grid;
  grid.SizeWithCell(kTenByFive, 2.0);
  EXPECT_EQ(grid.InsertAll(100, [](std::int32_t id) { return Point3{id * 1.0, 0.0, 0.0}; }), -2);
  EXPECT_EQ(ui.EventsWith("message warning: There is error in points extension!!").size(), 1U);
  EXPECT_EQ(ui.EventsWith("trace: ").size(), 1U);
  EXPECT_FALSE(grid.HasCells());
  EXPECT_EQ(grid.nCols, 6);
}

TEST(GridIndex, FillCellsListsAnItemInEachOfItsCells) {
  GridIndex grid;
  grid.SizeWithCell(kTenByFive, 2.0);
  const CellRange ranges[] = {{0, 1, 0, 1}, {1, 1, 1, 2}};
  EXPECT_EQ(grid.FillCells(2, [&ranges](std::int32_t id) { return ranges[id]; }), 1);
  EXPECT_EQ(CellList(grid, 0, 0), List{0});
  EXPECT_EQ(CellList(grid, 0, 1), List{0});
  EXPECT_EQ(CellList(grid, 1, 1), (List{0, 1}));
  EXPECT_EQ(CellList(grid, 1, 2), List{1});
  EXPECT_TRUE(grid.GetCell(2, 2).empty());
}

TEST(GridIndex, QueryRectWalksRowsThenColumns) {
  GridIndex grid = SmallGrid();
  grid.Insert(1.0, 3.0, 1);  // row 1, column 0
  grid.Insert(5.0, 1.0, 2);  // row 0, column 2
  grid.Insert(3.0, 1.0, 3);  // row 0, column 1
  grid.Insert(3.0, 1.5, 4);  // the same cell
  grid.Insert(9.0, 1.0, 5);  // beyond the rectangle
  List list = {77};
  EXPECT_EQ(grid.QueryRect(0, 0, 5, 3, list), 1);
  EXPECT_EQ(list, (List{77, 3, 4, 2, 1}));
}

TEST(GridIndex, QueryRectIsClampedToTheGrid) {
  GridIndex grid = SmallGrid();
  grid.Insert(0.0, 0.0, 1);
  grid.Insert(10.0, 5.0, 2);
  List list;
  constexpr std::int32_t kFar = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(grid.QueryRect(-kFar, -kFar, kFar, kFar, list), 1);
  EXPECT_EQ(list, (List{1, 2}));
}

TEST(GridIndex, QueryRectBeyondTheGridReturnsZeroAndAppendsNothing) {
  GridIndex grid = SmallGrid();
  grid.Insert(0.0, 0.0, 1);
  List list;
  EXPECT_EQ(grid.QueryRect(-9, 0, -4, 5, list), 0);
  EXPECT_EQ(grid.QueryRect(0, -9, 5, -4, list), 0);
  EXPECT_EQ(grid.QueryRect(12, 0, 20, 5, list), 0);
  EXPECT_EQ(grid.QueryRect(0, 6, 5, 20, list), 0);
  EXPECT_TRUE(list.empty());
}

TEST(GridIndex, QueryRectWithoutCellsReturnsZero) {
  GridIndex grid;
  grid.nRows = grid.nCols = std::numeric_limits<std::int32_t>::max();
  List list;
  EXPECT_EQ(grid.QueryRect(0, 0, 1000000000, 1000000000, list), 0);
}

TEST(GridIndex, QueryPolygonTakesTheBoundsCutToWholeNumbers) {
  GridIndex grid = SmallGrid();
  for (std::int32_t id = 0; id < 6; ++id) grid.Insert(2.0 * id + 1.0, 1.0, id);
  List list;
  // x from 2.9 (cut to 2: column 1) to 5.9 (cut to 5: column 2); the closing vertex does not count.
  const double closed[] = {2.9, 0.5, 5.9, 0.5, 4.0, 1.5, 9.0, 0.5};
  EXPECT_EQ(grid.QueryPolygon(closed, list), 1);
  EXPECT_EQ(list, (List{1, 2}));
}

TEST(GridIndex, QueryPolygonNeedsThreeVertices) {
  GridIndex grid = SmallGrid();
  List list;
  const double twoAndClosed[] = {0.0, 0.0, 5.0, 0.0, 0.0, 0.0};
  EXPECT_EQ(grid.QueryPolygon(twoAndClosed, list), 0);
  EXPECT_EQ(grid.QueryPolygon({}, list), 0);
}

TEST(GridIndex, QueryPolygonWithoutNumbersMissesTheGrid) {
  GridIndex grid = SmallGrid();
  grid.Insert(0.0, 0.0, 1);
  List list;
  const double bad[] = {kNaN, 0.0, 5.0, 0.0, 4.0, 1.5, kNaN, 0.0};
  EXPECT_EQ(grid.QueryPolygon(bad, list), 0);
  const double wide[] = {-kInfinity, -1e300, kInfinity, 0.0, 4.0, 1e300, -kInfinity, -1e300};
  EXPECT_EQ(grid.QueryPolygon(wide, list), 1);
  EXPECT_EQ(list, List{1});
}

TEST(GridIndex, MeanOccupancyIsRounded) {
  GridIndex grid = SmallGrid();  // 18 cells
  for (std::int32_t id = 0; id < 26; ++id) grid.Insert(1.0, 1.0, id);
  EXPECT_EQ(grid.MeanOccupancy(), 1);  // 26 / 18 = 1.44
  grid.Insert(1.0, 1.0, 26);
  EXPECT_EQ(grid.MeanOccupancy(), 2);  // 27 / 18 = 1.5
}

TEST(GridIndex, FreeDropsTheListsAndKeepsTheSize) {
  GridIndex grid = SmallGrid();
  grid.Insert(1.0, 1.0, 1);
  grid.Free();
  EXPECT_FALSE(grid.HasCells());
  EXPECT_EQ(grid.nCols, 6);
  EXPECT_TRUE(grid.GetCell(0, 0).empty());
}

}  // namespace
}  // namespace corvane
