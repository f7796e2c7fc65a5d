#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <random>

#include "TIN/TINPoints.h"
#include "io/OutputFile.h"
#include "support/PointsBytes.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

using testing::ElementsAre;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

const std::vector<double> kHeader = {0, 2, 3, 0, 1, 1};

// 3 rows, 4 columns, the origin at (0, 0).
TINPoints SmallGrid() {
  return TINPoints(1.0, 1.0, {0.0, 0.0, 3.0, 2.0});
}

void WriteRecords(const std::string& path, const std::vector<double>& records) {
  WriteFileBytes(path, PointsBytes(static_cast<std::int32_t>(records.size() / 4), kHeader, records));
}

// The occupied cells as row, column, z, value.
std::vector<std::vector<double>> Occupied(const TINPoints& grid) {
  std::vector<std::vector<double>> found;
  for (const GridCell& cell : grid.cells) {
    if (cell.z == kNoDataZ && cell.value == -1.0) continue;
    found.push_back({static_cast<double>(cell.id / grid.nCols), static_cast<double>(cell.id % grid.nCols),
                     cell.z, cell.value});
  }
  return found;
}

TEST(MergeFromFile, TakesTheHighestScoreOfACell) {
  TempFolder folder;
  WriteRecords("a.pts", {1, 1, 10, 0.5,  //
                         1, 1, 11, 0.4,  // lower
                         1, 1, 12, 0.5,  // equal: the first stays
                         2, 0, 20, 0.1});
  WriteRecords("b.pts", {1, 1, 13, 0.6, 2, 0, 21, 0.0});
  TINPoints grid = SmallGrid();
  EXPECT_EQ(grid.MergeFromFile("a.pts"), 1);
  EXPECT_EQ(grid.MergeFromFile("b.pts"), 1);
  EXPECT_THAT(Occupied(grid), ElementsAre(ElementsAre(0, 2, 20, 0.1), ElementsAre(1, 1, 13, 0.6)));
}

TEST(MergeFromFile, OnlyAScoreAboveMinusOneBeatsAnEmptyCell) {
  TempFolder folder;
  WriteRecords("a.pts", {0, 0, 5, -1.0, 1, 0, 6, -2.0, 2, 0, 7, -0.5, 3, 0, 8, kNaN});
  TINPoints grid = SmallGrid();
  EXPECT_EQ(grid.MergeFromFile("a.pts"), 1);
  EXPECT_THAT(Occupied(grid), ElementsAre(ElementsAre(0, 2, 7, -0.5)));
}

TEST(MergeFromFile, CutsTheAddressTowardsZero) {
  TempFolder folder;
  WriteRecords("a.pts", {2.9, 1.9, 5, 1, -0.9, -0.9, 6, 1});
  TINPoints grid = SmallGrid();
  EXPECT_EQ(grid.MergeFromFile("a.pts"), 1);
  EXPECT_THAT(Occupied(grid), ElementsAre(ElementsAre(0, 0, 6, 1), ElementsAre(1, 2, 5, 1)));
}

TEST(MergeFromFile, LeavesOutPointsBeyondTheGrid) {
  TempFolder folder;
  std::vector<double> records;
  for (const double far : {-1.0, 1e300, -1e300, 3e9, kInf, -kInf, kNaN}) {
    records.insert(records.end(), {far, 1, 5, 1, 1, far, 5, 1, far, far, 5, 1});
  }
  records.insert(records.end(), {4, 0, 5, 1, 0, 3, 5, 1});  // one cell too far
  WriteRecords("a.pts", records);
  TINPoints grid = SmallGrid();
  EXPECT_EQ(grid.MergeFromFile("a.pts"), 1);
  EXPECT_TRUE(Occupied(grid).empty());
}

TEST(MergeFromFile, TellsWhatIsMissing) {
  TempFolder folder;
  TINPoints none;
  EXPECT_EQ(none.MergeFromFile("a.pts"), -1);
  TINPoints grid = SmallGrid();
  EXPECT_EQ(grid.MergeFromFile("a.pts"), -2);
  EXPECT_EQ(grid.MergeFromFile("."), -2);
  for (const std::string& bytes :
       {std::string(), PointsBytes(1, kHeader, {}).substr(0, 51), PointsBytes(0, kHeader, {1, 1, 5, 1}),
        PointsBytes(-1, kHeader, {1, 1, 5, 1}), PointsBytes(INT32_MIN, kHeader, {1, 1, 5, 1}),
        PointsBytes(INT32_MAX, kHeader, {1, 1, 5, 1}), PointsBytes(100000, kHeader, {1, 1, 5, 1})}) {
    WriteFileBytes("a.pts", bytes);
    EXPECT_EQ(grid.MergeFromFile("a.pts"), -3);
  }
  EXPECT_TRUE(Occupied(grid).empty());
}

TEST(MergeFromFile, ThePointsThatACutFileLacksAreLeftOut) {
  TempFolder folder;
  WriteFileBytes("a.pts", PointsBytes(4, kHeader, {2, 1, 5, 1, 3, 2, 6, 1}).substr(0, 52 + 32 + 8));
  TINPoints grid = SmallGrid();
  EXPECT_EQ(grid.MergeFromFile("a.pts"), 1);
  EXPECT_EQ(grid.GetMissingCount(), 3);
  // of the second point only x is there
  EXPECT_THAT(Occupied(grid), ElementsAre(ElementsAre(1, 2, 5, 1)));
  WriteRecords("b.pts", {3, 0, 7, 1});
  EXPECT_EQ(grid.MergeFromFile("b.pts"), 1);
  EXPECT_EQ(grid.GetMissingCount(), 0);
}

TEST(MergeFromFile, ACutFileOfManyBlocksLosesItsEndAlone) {
  TempFolder folder;
  constexpr int kThere = 50000;  // of 100000: the cut lies within a block, and whole blocks are missing
  std::vector<double> records;
  for (int i = 0; i < kThere; ++i) records.insert(records.end(), {2, 1, static_cast<double>(i), 1.0 + i});
  records.insert(records.end(), {3, 2, 6, 1});
  const std::string bytes = PointsBytes(100000, kHeader, records);
  WriteFileBytes("a.pts", bytes.substr(0, bytes.size() - 1));
  TINPoints grid = SmallGrid();
  EXPECT_EQ(grid.MergeFromFile("a.pts"), 1);
  EXPECT_EQ(grid.GetMissingCount(), 100000 - kThere);
  EXPECT_THAT(Occupied(grid), ElementsAre(ElementsAre(1, 2, kThere - 1, kThere)));
}

TEST(MergeFromFile, AFileWithoutASingleWholePointIsRefused) {
  TempFolder folder;
  TINPoints grid = SmallGrid();
  for (const std::size_t nBytes : {0, 1, 31}) {
    WriteFileBytes("a.pts", PointsBytes(3, kHeader, {2, 1, 5, 1}).substr(0, 52 + nBytes));
    EXPECT_EQ(grid.MergeFromFile("a.pts"), -3);
  }
  EXPECT_TRUE(Occupied(grid).empty());
}

TEST(MergeFromFile, ManyBlocksAreOnePointAfterTheOther) {
  TempFolder folder;
  std::mt19937 random(3);
  std::uniform_real_distribution<double> place(-1.5, 5.5);
  std::uniform_int_distribution<int> score(-2, 6);
  std::vector<double> records;
  std::vector<std::pair<double, double>> best(12, {kNoDataZ, -1.0});  // z, value
  for (int i = 0; i < 100000; ++i) {
    const double x = place(random);
    const double y = place(random);
    const double value = score(random);
    records.insert(records.end(), {x, y, static_cast<double>(i), value});
    if (x <= -1 || y <= -1 || x >= 4 || y >= 3) continue;
    auto& cell = best[static_cast<std::size_t>(static_cast<int>(y) * 4 + static_cast<int>(x))];
    if (cell.second < value) cell = {i, value};
  }
  WriteRecords("a.pts", records);
  TINPoints grid = SmallGrid();
  ASSERT_EQ(grid.MergeFromFile("a.pts"), 1);
  for (std::size_t i = 0; i < best.size(); ++i) {
    EXPECT_EQ(grid.cells[i].z, best[i].first);
    EXPECT_EQ(grid.cells[i].value, best[i].second);
  }
}

TINPoints PointsOf(const std::vector<std::vector<double>>& records) {
  TINPoints points(static_cast<std::int32_t>(records.size()));
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    const auto& record = records[static_cast<std::size_t>(i)];
    points.SetPoint(i, record[0], record[1], record[2], record[3], i);
  }
  return points;
}

TEST(ReplaceFrom, SetsTheCellsAtWhoseNodesPointsLie) {
  TINPoints grid(2.0, 0.5, {10.0, 20.0, 16.0, 21.0});       // 3 rows, 4 columns
  const TINPoints points = PointsOf({{12, 20.5, 1, 0.1},    // row 1, column 1
                                     {13, 20.5, 2, 0.9},    // between columns
                                     {12, 20.6, 3, 0.9},    // between rows
                                     {16, 21, 4, -5},       // the last cell, whatever its score
                                     {12, 20.5, 5, 0.0}});  // once more: the last one stays
  EXPECT_EQ(grid.ReplaceFrom(points, {0, 0, 100, 100}), 3);
  EXPECT_THAT(Occupied(grid), ElementsAre(ElementsAre(1, 1, 5, 0), ElementsAre(2, 3, 4, -5)));
}

TEST(ReplaceFrom, TheRectanglesEdgesBelongToIt) {
  const TINPoints points =
      PointsOf({{0, 1, 1, 1}, {1, 1, 2, 1}, {3, 1, 3, 1}, {1, 0, 4, 1}, {2, 2, 5, 1}, {2, 1, 6, 1}});
  TINPoints grid = SmallGrid();
  EXPECT_EQ(grid.ReplaceFrom(points, {1, 1, 2, 2}), 3);
  EXPECT_THAT(Occupied(grid),
              ElementsAre(ElementsAre(1, 1, 2, 1), ElementsAre(1, 2, 6, 1), ElementsAre(2, 2, 5, 1)));
}

TEST(ReplaceFrom, ANodeIsAnExactWholeQuotient) {
  TINPoints grid(0.1, 0.1, {0, 0, 1, 1});
  EXPECT_EQ(grid.ReplaceFrom(PointsOf({{0.3, 0.2, 1, 1}}), {0, 0, 1, 1}), 0);  // 0.3 / 0.1 is not 3
  EXPECT_EQ(grid.ReplaceFrom(PointsOf({{0.4, 0.2, 1, 1}}), {0, 0, 1, 1}), 1);
}

TEST(ReplaceFrom, LeavesOutPointsBeyondTheGridAndWhatIsNoNumber) {
  TINPoints grid = SmallGrid();
  const TINPoints points = PointsOf({{-1, 0, 1, 1},
                                     {0, -1, 1, 1},
                                     {4, 0, 1, 1},
                                     {0, 3, 1, 1},
                                     {1e18, 1e18, 1, 1},
                                     {kInf, 0, 1, 1},
                                     {0, kNaN, 1, 1}});
  EXPECT_EQ(grid.ReplaceFrom(points, {-kInf, -kInf, kInf, kInf}), 0);
  EXPECT_EQ(grid.ReplaceFrom(points, {kNaN, kNaN, kNaN, kNaN}), 0);
  EXPECT_TRUE(Occupied(grid).empty());
}

TEST(ReplaceFrom, NeedsAGrid) {
  TINPoints none;
  EXPECT_EQ(none.ReplaceFrom(PointsOf({{1, 1, 1, 1}}), {0, 0, 2, 2}), -1);
}

// The file that walking the cells one by one makes; "" without any.
std::string WalkedGrid(const TINPoints& grid) {
  std::int32_t count = 0, minRow = grid.nRows, maxRow = 0, minCol = grid.nCols, maxCol = 0;
  std::vector<double> records;
  double x = grid.gridMinX;
  for (int col = 0; col < grid.nCols; ++col, x += grid.spacingX) {
    double y = grid.gridMinY;
    for (int row = 0; row < grid.nRows; ++row, y += grid.spacingY) {
      const GridCell& cell = grid.cells[static_cast<std::size_t>(row * grid.nCols + col)];
      if (cell.z == -4096.0) continue;
      ++count;
      if (row < minRow)
        minRow = row;
      else if (row > maxRow)
        maxRow = row;
      if (col < minCol)
        minCol = col;
      else if (col > maxCol)
        maxCol = col;
      records.insert(records.end(), {x, y, cell.z, cell.value});
    }
  }
  if (count == 0) return "";
  return PointsBytes(count,
                     {grid.gridMinX + minCol * grid.spacingX, maxRow * grid.spacingY + grid.gridMinY,
                      maxCol * grid.spacingX + grid.gridMinX, grid.gridMinY + minRow * grid.spacingY,
                      grid.spacingX, grid.spacingY},
                     records);
}

TEST(WriteGrid, IsTheWalkOverTheCells) {
  TempFolder folder;
  std::mt19937 random(5);
  // narrow, wide, with so many rows that columns go one by one, and piece by piece
  const std::pair<int, int> sizes[] = {{1, 1},   {1, 100},    {100, 1},    {7, 31},     {7, 32},    {7, 33},
                                       {50, 97}, {200000, 2}, {262144, 1}, {262145, 2}, {600000, 1}};
  for (const auto& [nRows, nCols] : sizes) {
    for (const int share : {1, 3, 100, 1000}) {
      TINPoints grid(0.1, 0.7, {3.3, -8.1, 3.3 + 0.1 * (nCols - 0.5), -8.1 + 0.7 * (nRows - 0.5)});
      ASSERT_EQ(grid.nRows, nRows);
      ASSERT_EQ(grid.nCols, nCols);
      for (GridCell& cell : grid.cells) {
        if (random() % static_cast<unsigned>(share) == 0) cell.z = cell.value = random();
      }
      const std::string expected = WalkedGrid(grid);
      std::filesystem::remove("a.pts");
      EXPECT_EQ(grid.WriteGrid("a.pts"), expected.empty() ? -1 : 1);
      EXPECT_TRUE(ReadFileBytes("a.pts") == expected) << nRows << " x " << nCols << ", one of " << share;
    }
  }
}

// Alone in the second of three pieces: the header's largest row and column stay 0.
TEST(WriteGrid, ACellOfATallColumnMayBeTheOnlyOne) {
  TempFolder folder;
  TINPoints grid(1.0, 1.0, {5.0, 0.0, 5.0, 599999.0});
  ASSERT_EQ(grid.nCols, 1);
  grid.cells[300000].z = 7;
  grid.cells[300000].value = 1;
  EXPECT_EQ(grid.WriteGrid("a.pts"), 1);
  EXPECT_EQ(ReadFileBytes("a.pts"), PointsBytes(1, {5, 0, 5, 300000, 1, 1}, {5, 300000, 7, 1}));
}

TEST(WriteGrid, TellsTheNumberOfPoints) {
  TempFolder folder;
  TINPoints grid = SmallGrid();
  OutputFile file("a.pts");
  std::int32_t nWritten = -1;
  EXPECT_EQ(grid.WriteGrid(file, &nWritten), -1);
  EXPECT_EQ(nWritten, 0);
  grid.cells[1].z = grid.cells[6].z = 5;
  EXPECT_EQ(grid.WriteGrid(file, &nWritten), 1);
  EXPECT_EQ(nWritten, 2);
}

TEST(WriteGrid, KeepsTheOldFileWithoutCells) {
  TempFolder folder;
  WriteFileBytes("a.pts", "old");
  EXPECT_EQ(SmallGrid().WriteGrid("a.pts"), -1);
  EXPECT_EQ(ReadFileBytes("a.pts"), "old");
}

TEST(GridOfCells, TakesNoMoreMemoryThanItsPointsJustify) {
  // 5000 x 1000 cells: 100 for each of 10000 points, and 4000000
  EXPECT_TRUE(TINPoints(1, 1, {0, 0, 4999, 999}, 9999).cells.empty());
  EXPECT_EQ(TINPoints(1, 1, {0, 0, 4999, 999}, 10000).cells.size(), 5000000u);
  // 2000 x 2000 without any
  EXPECT_EQ(TINPoints(1, 1, {0, 0, 1999, 1999}, 0).cells.size(), 4000000u);
  EXPECT_TRUE(TINPoints(1, 1, {0, 0, 2000, 1999}, 0).cells.empty());
  EXPECT_TRUE(TINPoints(1, 1, {0, 0, 2000, 1999}, -5).cells.empty());
}

TEST(GridOfCells, NumbersItsEmptyCells) {
  const TINPoints grid = SmallGrid();
  ASSERT_EQ(grid.cells.size(), 12u);
  for (std::size_t i = 0; i < grid.cells.size(); ++i) {
    EXPECT_EQ(grid.cells[i].id, static_cast<std::int32_t>(i));
    EXPECT_EQ(grid.cells[i].z, kNoDataZ);
    EXPECT_EQ(grid.cells[i].value, -1.0);
  }
}

TEST(GridOfCells, TellsWhyThereIsNone) {
  const GroundRect rect = {0, 0, 3, 2};
  EXPECT_EQ(TINPoints::WhyNoGrid(0, 1, rect, 1), "There is no grid: cell size 0.");
  EXPECT_EQ(TINPoints::WhyNoGrid(1, -0.5, rect, 1), "There is no grid: cell size -0.5.");
  EXPECT_EQ(TINPoints::WhyNoGrid(kInf, 1, rect, 1), "There is no grid: cell size inf.");
  for (const GroundRect& bad : {GroundRect{3, 0, 0, 2}, GroundRect{0, kNaN, 3, 2}}) {
    EXPECT_EQ(TINPoints::WhyNoGrid(1, 1, bad, 1), "There is no grid: the extents are crossed or no numbers.");
  }
  for (const double far : {2001.0, 1e5, 1e300, kInf}) {
    EXPECT_EQ(TINPoints::WhyNoGrid(1, 1, {0, 0, far, 1999}, 0),
              "The grid is too large for the number of points.");
  }
}

TEST(GridOfCells, NeedsASpacingThatIsANumber) {
  for (const double spacing : {0.0, -1.0, kNaN, kInf}) {
    EXPECT_TRUE(TINPoints(spacing, 1, {0, 0, 1, 1}).cells.empty());
    EXPECT_TRUE(TINPoints(1, spacing, {0, 0, 1, 1}).cells.empty());
  }
}

}  // namespace
}  // namespace corvane
