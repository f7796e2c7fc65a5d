#include "erdasimg/ScanRegion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace corvane {
namespace {

int Rasterize(const std::vector<double>& points, ScanRegion& region, double cellY = -1.0, double cellX = 1.0,
              double originX = 0.0, double originY = 0.0) {
  return RasterizePolygon(static_cast<std::int32_t>(points.size() / 2), points.data(), originX, originY,
                          cellY, cellX, region);
}

TEST(ScanRegion, AnUprightRectangle) {
  ScanRegion region;
  ASSERT_EQ(Rasterize({1, 0, 1, -2, 4, -2, 4, 0}, region), 1);
  EXPECT_EQ(region.rowCount, 3);
  ASSERT_EQ(region.rows.size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(region.rows[i].y, static_cast<double>(i));
    EXPECT_EQ(region.rows[i].count, 2);
    EXPECT_EQ(region.rows[i].x, (std::vector<double>{1, 4}));
  }
  EXPECT_EQ(region.area, 9);
  EXPECT_EQ(region.minX, 1.0);
  EXPECT_EQ(region.maxX, 4.0);
  EXPECT_EQ(region.minY, 0.0);
  EXPECT_EQ(region.maxY, 2.0);
}

TEST(ScanRegion, AVertexBetweenTwoEdgesThatGoOnCountsOnce) {
  // Down the left side in two edges that meet at (0, -2): row 2 belongs to the second one.
  ScanRegion region;
  ASSERT_EQ(Rasterize({2, 0, 0, -2, 2, -4, 9, -4, 9, 0}, region), 1);
  ASSERT_EQ(region.rowCount, 5);
  EXPECT_EQ(region.rows[0].x, (std::vector<double>{2, 9}));
  EXPECT_EQ(region.rows[1].x, (std::vector<double>{1, 9}));
  EXPECT_EQ(region.rows[2].x, (std::vector<double>{0, 9}));
  EXPECT_EQ(region.rows[3].x, (std::vector<double>{1, 9}));
  EXPECT_EQ(region.rows[4].x, (std::vector<double>{2, 9}));
}

TEST(ScanRegion, TheSamePolygonTheOtherWayRound) {
  ScanRegion region;
  ASSERT_EQ(Rasterize({9, 0, 9, -4, 2, -4, 0, -2, 2, 0}, region), 1);
  ASSERT_EQ(region.rowCount, 5);
  EXPECT_EQ(region.rows[1].x, (std::vector<double>{1, 9}));
  EXPECT_EQ(region.rows[2].x, (std::vector<double>{0, 9}));
  EXPECT_EQ(region.rows[3].x, (std::vector<double>{1, 9}));
}

TEST(ScanRegion, AVertexAtATipCountsTwice) {
  ScanRegion region;
  ASSERT_EQ(Rasterize({4, 0, 0, -4, 8, -4}, region), 1);
  EXPECT_EQ(region.rows[0].x, (std::vector<double>{4, 4}));
  EXPECT_EQ(region.rows[2].x, (std::vector<double>{2, 6}));
  EXPECT_EQ(region.area, 0 + 2 + 4 + 6 + 8);
}

TEST(ScanRegion, WithAPositiveCellAVertexThatGoesOnMakesAnOddRow) {
  ScanRegion region;
  EXPECT_EQ(Rasterize({2, 0, 0, 2, 2, 4, 9, 4, 9, 0}, region, 1.0), -1);
  EXPECT_EQ(Rasterize({1, 0, 1, 2, 4, 2, 4, 0}, region, 1.0), 1);  // no such vertex
  EXPECT_EQ(region.area, 9);
}

TEST(ScanRegion, CellsAndOriginOfTheGround) {
  // Cells of 2 from (100, 200): rows 1 to 3, columns 5 to 10.
  ScanRegion region;
  ASSERT_EQ(Rasterize({110, 198, 110, 194, 120, 194, 120, 198}, region, -2.0, 2.0, 100.0, 200.0), 1);
  ASSERT_EQ(region.rowCount, 3);
  EXPECT_EQ(region.rows[0].y, 1.0);
  EXPECT_EQ(region.rows[2].y, 3.0);
  EXPECT_EQ(region.rows[1].x, (std::vector<double>{5, 10}));
  EXPECT_EQ(region.area, 15);
}

TEST(ScanRegion, CrossingsAreCutTowardsZero) {
  ScanRegion region;
  ASSERT_EQ(Rasterize({-1.9, 0, -1.9, -1, 3.9, -1, 3.9, 0}, region), 1);
  EXPECT_EQ(region.rows[0].x, (std::vector<double>{-1, 3}));
}

TEST(ScanRegion, RowsWithoutCrossingsAreEmpty) {
  // From 0.5 to 1.5: rows floor(0.5) = 0 to ceil(1.5) = 2, of which the edges cross trunc(0.5) to trunc(1.5).
  ScanRegion region;
  ASSERT_EQ(Rasterize({0, 0.5, 0, 1.5, 3, 1.5, 3, 0.5}, region, 1.0), 1);
  ASSERT_EQ(region.rowCount, 3);
  EXPECT_EQ(region.rows[0].count, 2);
  EXPECT_EQ(region.rows[1].count, 2);
  EXPECT_EQ(region.rows[2].count, 0);
  EXPECT_EQ(region.maxY, 1.0);
}

TEST(ScanRegion, RowsBeforeTheTableAreLeftOut) {
  // With a negative cell from row floor(1.5) = 1 to ceil(0.5) = 1, while the edges go from 0 to 1.
  ScanRegion region;
  ASSERT_EQ(Rasterize({0, -0.5, 0, -1.5, 3, -1.5, 3, -0.5}, region), 1);
  ASSERT_EQ(region.rowCount, 1);
  EXPECT_EQ(region.rows[0].y, 1.0);
  EXPECT_EQ(region.rows[0].x, (std::vector<double>{0, 3}));
  // Both ends swapped: rows ceil(0.5) = 1 to floor(2.5) = 2.
  ASSERT_EQ(Rasterize({0, -0.5, 0, -2.5, 3, -2.5, 3, -0.5}, region), 1);
  ASSERT_EQ(region.rowCount, 2);
  EXPECT_EQ(region.area, 6);
}

TEST(ScanRegion, EdgesThatAreHorizontalAreSkipped) {
  ScanRegion region;
  ASSERT_EQ(Rasterize({0, 0, 0, -2, 2, -2, 5, -2, 5, 0, 3, 0}, region), 1);
  EXPECT_EQ(region.rows[2].x, (std::vector<double>{0, 5}));
  EXPECT_EQ(region.area, 15);
}

TEST(ScanRegion, APolygonOfOneLineHasNoCrossings) {
  ScanRegion region;
  EXPECT_EQ(Rasterize({0, 0, 3, 0, 5, 0}, region), 1);
  EXPECT_EQ(region.area, 0);
  EXPECT_EQ(region.rowCount, 1);
}

TEST(ScanRegion, WhatMakesNoRasterFailsWithAnEmptyRegion) {
  const double nan = std::nan("");
  const double infinity = std::numeric_limits<double>::infinity();
  const std::vector<double> square = {0, 0, 0, -2, 2, -2, 2, 0};
  ScanRegion region;
  for (const double bad : {nan, infinity, -infinity}) {
    EXPECT_EQ(Rasterize({0, 0, 0, bad, 2, -2}, region), -1);
    EXPECT_EQ(Rasterize({0, 0, bad, -2, 2, -2}, region), -1);
    EXPECT_EQ(Rasterize(square, region, bad), -1);
    EXPECT_EQ(Rasterize(square, region, -1.0, bad), -1);
    EXPECT_EQ(Rasterize(square, region, -1.0, 1.0, bad), -1);
    EXPECT_EQ(Rasterize(square, region, -1.0, 1.0, 0.0, bad), -1);
  }
  EXPECT_EQ(Rasterize(square, region, 0.0), -1);
  EXPECT_EQ(Rasterize(square, region, -1.0, 0.0), -1);
  EXPECT_EQ(Rasterize({0, 0, 1, 1}, region), -1);
  EXPECT_EQ(Rasterize({0, 0, 0, -1e9, 2, 0}, region), -1);
  EXPECT_EQ(Rasterize({0, 1e300, 0, -1e300, 2, 0}, region), -1);
  EXPECT_EQ(Rasterize({0, 1e12, 0, 1e12 + 1, 2, 1e12}, region), -1);
  EXPECT_EQ(RasterizePolygon(3, nullptr, 0, 0, 1, 1, region), -1);
  EXPECT_EQ(RasterizePolygon(-3, square.data(), 0, 0, 1, 1, region), -1);
  EXPECT_EQ(region.rowCount, 0);
  EXPECT_TRUE(region.rows.empty());
}

TEST(ScanRegion, TooManyCrossingsFail) {
  std::vector<double> points;  // a comb of 100 teeth of a million rows
  for (int i = 0; i < 100; ++i) points.insert(points.end(), {2.0 * i, 0.0, 2.0 * i + 1.0, -1000000.0});
  ScanRegion region;
  EXPECT_EQ(Rasterize(points, region), -1);
}

TEST(ScanRegion, NearlyHorizontalEdgesStayWithin32Bits) {
  ScanRegion region;
  Rasterize({0, 0, 1e300, -1e-300, 5, -3}, region);
  for (const ScanRow& row : region.rows) {
    for (const double x : row.x) EXPECT_LE(std::abs(x), 2147483648.0);
  }
}

TEST(ScanRegion, AreaCountsTheCutRuns) {
  ScanRegion region;
  region.rowCount = 2;
  region.rows = {{0.0, 4, {0.9, 2.9, 5.0, 7.0}}, {1.0, 2, {-1.9, 1.0}}};
  EXPECT_EQ(region.ComputeArea(), 2 + 2 + 2);
  EXPECT_EQ(region.area, 6);
}

TEST(ScanRegion, AnOddRowHasNoArea) {
  ScanRegion region;
  region.rowCount = 3;
  region.rows = {{0.0, 2, {0, 3}}, {1.0, 1, {5}}, {2.0, 2, {0, 3}}};
  EXPECT_EQ(region.ComputeArea(), -1);
  EXPECT_EQ(region.area, 3);  // the rows before it
}

TEST(ScanRegion, RowsThatAreCountedButNotThereDoNotMatter) {
  ScanRegion region;
  region.rowCount = 9;
  region.rows = {{0.0, 8, {0, 3}}};
  EXPECT_EQ(region.ComputeArea(), 3);
  region.rowCount = -1;
  EXPECT_EQ(region.ComputeArea(), 0);
}

// RasterizePolygonRows

// The rows of the whole region that a range of rows is to have: up to before its first odd one.
std::vector<ScanRow> RowsWithin(const ScanRegion& whole, std::int32_t firstRow, std::int32_t lastRow,
                                int& status) {
  std::vector<ScanRow> rows;
  status = 1;
  for (const ScanRow& row : whole.rows) {
    if (row.y > lastRow) break;
    if (row.count % 2 != 0) {
      status = -1;
      break;
    }
    if (row.y >= firstRow) rows.push_back(row);
  }
  return rows;
}

TEST(RasterizePolygonRows, RowsAreThoseOfTheWholePolygon) {
  std::mt19937 random(5);
  int nOdd = 0;
  for (int n = 0; n < 3000; ++n) {
    const bool isFlat = n % 2 == 0;  // with sides that are nearly level
    std::uniform_real_distribution<double> x(-30, 30);
    std::uniform_real_distribution<double> y(isFlat ? -3 : -30, isFlat ? 3 : 30);
    std::vector<double> points;
    for (int i = 0; i < 4; ++i) points.insert(points.end(), {x(random), y(random)});
    const double cellY = n % 3 == 0 ? 0.7 : -0.7;
    ScanRegion whole;
    Rasterize(points, whole, cellY, 1.3, 2.0, 1.0);
    for (const auto& [first, last] : {std::pair{0, 9}, {-100, 100}, {-5, -1}, {3, 3}, {60, 70}, {4, 2}}) {
      int status = 1;
      const auto expected = RowsWithin(whole, first, last, status);
      ScanRegion part;
      EXPECT_EQ(RasterizePolygonRows(4, points.data(), 2.0, 1.0, cellY, 1.3, first, last, part), status);
      ASSERT_EQ(part.rows.size(), expected.size());
      for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(part.rows[i].y, expected[i].y);
        EXPECT_EQ(part.rows[i].count, expected[i].count);
        EXPECT_EQ(part.rows[i].x, expected[i].x);
      }
      nOdd += status < 0 ? 1 : 0;
    }
  }
  EXPECT_GT(nOdd, 100);
}

TEST(RasterizePolygonRows, OfAPolygonThatIsFarTooLarge) {
  const double points[8] = {-1e15, 1e15, 1e15, 1e15, 1e15, -1e15, -1e15, -1e15};
  ScanRegion region;
  EXPECT_EQ(RasterizePolygon(4, points, 0, 0, -1, 1, region), -1);
  ASSERT_EQ(RasterizePolygonRows(4, points, 0, 0, -1, 1, 10, 12, region), 1);
  ASSERT_EQ(region.rowCount, 3);
  EXPECT_EQ(region.rows[0].y, 10.0);
  EXPECT_EQ(region.rows[2].x, (std::vector<double>{INT32_MIN, INT32_MAX}));
}

TEST(RasterizePolygonRows, WhatMakesNoRaster) {
  ScanRegion region;
  const double infinity = std::numeric_limits<double>::infinity();
  const double points[8] = {0, 0, 0, -5, 5, -5, 5, infinity};
  EXPECT_EQ(RasterizePolygonRows(4, points, 0, 0, -1, 1, 0, 5, region), -1);
  EXPECT_EQ(region.rowCount, 0);
  EXPECT_EQ(RasterizePolygonRows(2, points, 0, 0, -1, 1, 0, 5, region), -1);
  EXPECT_EQ(RasterizePolygonRows(3, points, 0, 0, 0, 1, 0, 5, region), -1);
  EXPECT_EQ(RasterizePolygonRows(3, nullptr, 0, 0, -1, 1, 0, 5, region), -1);
}

}  // namespace
}  // namespace corvane
