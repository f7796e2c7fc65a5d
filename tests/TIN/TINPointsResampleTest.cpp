#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <random>
#include <set>

#include "TIN/TINPoints.h"
#include "io/OutputFile.h"
#include "support/PointsBytes.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// Random points over x 100..110.9, y 50..60.9, the extents in the header.
TINPoints RandomPoints(std::int32_t n) {
  TINPoints points(n);
  std::mt19937 random(9);
  std::uniform_real_distribution<double> offset(0.0, 10.9);
  for (std::int32_t i = 0; i < n; ++i) {
    points.SetPoint(i, 100 + offset(random), 50 + offset(random), i, 0.5 * i, i);
  }
  points.SetExtent(4, {100, 110.9, 50, 60.9, 0, 0});
  return points;
}

// The same by its definition, without the index.
std::string Sampled(const TINPoints& points, double indexCell, double spacing) {
  std::map<std::pair<int, int>, std::vector<std::int32_t>> cells;  // row, col
  const auto cellOf = [&](double x, double y) {
    return std::pair(static_cast<int>((y - points.minY) / indexCell),
                     static_cast<int>((x - points.minX) / indexCell));
  };
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    cells[cellOf(points.GetPoint(i)->x, points.GetPoint(i)->y)].push_back(i);
  }
  const int rows = static_cast<int>(static_cast<int>(points.maxY - points.minY) / spacing);
  const int cols = static_cast<int>(static_cast<int>(points.maxX - points.minX) / spacing);
  std::int32_t count = 0;
  double minX = points.maxX, maxX = points.minX, minY = points.maxY, maxY = points.minY;
  std::vector<double> records;
  double y = points.minY - spacing;
  for (int row = 0; row < rows; ++row) {
    y += spacing;
    double x = points.minX - spacing;
    for (int col = 0; col < cols; ++col) {
      x += spacing;
      const auto& list = cells[cellOf(x, y)];
      if (list.empty()) continue;
      const PointRecord& p = *points.GetPoint(list[static_cast<std::size_t>(std::rand()) % list.size()]);
      minX = std::min(minX, p.x);
      maxX = std::max(maxX, p.x);
      minY = std::min(minY, p.y);
      maxY = std::max(maxY, p.y);
      records.insert(records.end(), {p.x, p.y, p.z, p.value});
      ++count;
    }
  }
  return PointsBytes(count, {minX, maxY, maxX, minY, spacing, spacing}, records);
}

TEST(Resample, PicksOnePointForEachSample) {
  TempFolder folder;
  for (const double indexCell : {0.5, 1.0, 3.0}) {
    for (const double spacing : {0.25, 1.0, 1.7, 4.0}) {
      TINPoints points = RandomPoints(300);
      ASSERT_EQ(points.BuildIndexWithCell(indexCell), 1);
      std::srand(4);
      ASSERT_EQ(points.Resample("a.pts", spacing), 0);
      std::srand(4);
      EXPECT_EQ(ReadFileBytes("a.pts"), Sampled(points, indexCell, spacing));
    }
  }
}

TEST(Resample, WithAnEqualSpacingKeepsAtMostOnePointACell) {
  TempFolder folder;
  TINPoints points = RandomPoints(500);
  ASSERT_EQ(points.BuildIndexWithCell(1.0), 1);
  ASSERT_EQ(points.Resample("a.pts", 1.0), 0);
  TINPoints sample;
  ASSERT_EQ(sample.Read("a.pts"), 1);
  std::set<std::pair<int, int>> cells;
  for (const PointRecord& point : sample.points) {
    EXPECT_TRUE(cells.insert({static_cast<int>(point.x - 100), static_cast<int>(point.y - 50)}).second);
  }
  EXPECT_GT(cells.size(), 50u);
}

TEST(Resample, BelowTheSourcesSpacingTakesPointsAgain) {
  TempFolder folder;
  TINPoints points(2);
  points.SetPoint(0, 0.5, 0.5, 7, 8, 0);
  points.SetPoint(1, 2, 2, 1, 1, 1);
  points.SetExtent(4, {0, 2, 0, 2, 0, 0});
  ASSERT_EQ(points.BuildIndexWithCell(2.0), 1);
  EXPECT_EQ(points.Resample("a.pts", 1.0), 0);  // four samples in one cell
  EXPECT_EQ(ReadFileBytes("a.pts"),
            PointsBytes(4, {0.5, 0.5, 0.5, 0.5, 1, 1},
                        {0.5, 0.5, 7, 8, 0.5, 0.5, 7, 8, 0.5, 0.5, 7, 8, 0.5, 0.5, 7, 8}));
}

TEST(Resample, ExtentsAreCutToWholeNumbersFirst) {
  TempFolder folder;
  TINPoints points(1);
  points.SetPoint(0, 0.1, 0.1, 1, 1, 0);
  points.SetExtent(4, {0, 0.9, 0, 5, 0, 0});
  ASSERT_EQ(points.BuildIndexWithCell(10.0), 1);
  EXPECT_EQ(points.Resample("a.pts", 0.1), 0);  // no column at all: the bounds stay crossed
  EXPECT_EQ(ReadFileBytes("a.pts"), PointsBytes(0, {0.9, 0, 0, 5, 0.1, 0.1}, {}));
}

TEST(Resample, RefusesWhatIsNoSpacing) {
  TempFolder folder;
  TINPoints points = RandomPoints(10);
  EXPECT_EQ(points.Resample("a.pts", 1.0), -2);  // not indexed
  ASSERT_EQ(points.BuildIndexWithCell(1.0), 1);
  for (const double spacing : {0.0, -1.0, kNaN, kInf}) {
    EXPECT_EQ(points.Resample("a.pts", spacing), -2) << spacing;
  }
  for (const double spacing : {1e-4, 1e-9, 1e-300}) {
    EXPECT_EQ(points.Resample("a.pts", spacing), -3) << spacing;
  }
  EXPECT_EQ(points.Resample("none/a.pts", 1.0), -1);
  EXPECT_EQ(ReadFileBytes("a.pts"), "");
}

TEST(Resample, AFailedWriteLeavesTheOldFile) {
  TempFolder folder;
  TINPoints points = RandomPoints(10);
  ASSERT_EQ(points.BuildIndexWithCell(1.0), 1);
  WriteFileBytes("a.pts", "old");
  EXPECT_EQ(points.Resample("a.pts", 1e-6), -3);
  EXPECT_EQ(ReadFileBytes("a.pts"), "old");
  EXPECT_EQ(points.Resample("/dev/full", 1.0), -1);
}

// Ten points bear 1001 x 1000 samples, and no row more.
TEST(Resample, TakesAHundredSamplesForEachPointAndAMillion) {
  TempFolder folder;
  TINPoints points(10);
  points.SetExtent(4, {0, 1001, 0, 1000, 0, 0});
  ASSERT_EQ(points.BuildIndexWithCell(100.0), 1);
  EXPECT_EQ(points.Resample("a.pts", 1.0), 0);
  points.maxY = 1001;
  EXPECT_EQ(points.Resample("a.pts", 1.0), -3);
}

TEST(Resample, OfNoWidthIsQuickAtAnyHeight) {
  TempFolder folder;
  TINPoints points(1);
  points.SetExtent(4, {0, 0.5, 0, 2e9, 0, 0});
  ASSERT_EQ(points.BuildIndexWithCell(1e6), 1);
  EXPECT_EQ(points.Resample("a.pts", 1.0), 0);
}

TEST(Resample, TellsHowFarItIs) {
  TempFolder folder;
  TestFrontEnd ui;
  TINPoints points(90000);
  points.SetExtent(4, {0, 1000, 0, 9000, 0, 0});
  ASSERT_EQ(points.BuildIndexWithCell(500.0), 1);
  OutputFile file("a.pts");
  std::int32_t nWritten = 0;
  EXPECT_EQ(points.Resample(file, 1.0, &nWritten), 0);
  EXPECT_EQ(nWritten, 500 * 500);  // all points lie at (0, 0), in the first cell
  EXPECT_EQ(ui.events, (std::vector<std::string>{"status 0: Resampling: 4000000 of 9000000 samples",
                                                 "status 0: Resampling: 8000000 of 9000000 samples"}));
}

TEST(BuildIndexWithCell, WarnsOfASizeThatIsNone) {
  for (const double size : {0.0, -1.0, kNaN, kInf}) {
    TestFrontEnd frontEnd;
    TINPoints points = RandomPoints(10);
    EXPECT_EQ(points.BuildIndexWithCell(size), -1);
    ASSERT_EQ(frontEnd.events.size(), 1u);
    EXPECT_EQ(frontEnd.events[0], "message warning: There is error in points extension!!");
  }
}

}  // namespace
}  // namespace corvane
