// Points in the order of their places.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "TIN/TINPoints.h"

namespace corvane {
namespace {

using testing::ElementsAre;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct XY {
  double x = 0.0;
  double y = 0.0;
};

// The positions, before sorting, of points at these places.
std::vector<int> SortedPositions(const std::vector<XY>& places) {
  TINPoints points;
  for (const XY& place : places) points.AddPoint({points.nPoints, place.x, place.y, 0.0, 0.0});
  points.SortByPlace();
  std::vector<int> positions;
  for (std::int32_t i = 0; i < points.nPoints; ++i) positions.push_back(points.GetPoint(i)->id);
  return positions;
}

TEST(TINPointsSort, ByYThenX) {
  EXPECT_THAT(SortedPositions({{1, 3}, {9, 2}, {5, 2}, {7, 1}}), ElementsAre(3, 2, 1, 0));
}

TEST(TINPointsSort, EqualPlacesKeepTheirOrder) {
  EXPECT_THAT(SortedPositions({{1, 1}, {0, 1}, {1, 1}, {-0.0, 1}, {1, 1}}), ElementsAre(1, 3, 0, 2, 4));
}

TEST(TINPointsSort, NaNComesAfterAllNumbers) {
  EXPECT_THAT(SortedPositions({{0, kNaN}, {kNaN, 1}, {5, kInfinity}, {2, 1}, {kNaN, kNaN}, {3, -kInfinity}}),
              ElementsAre(5, 3, 1, 2, 0, 4));
}

TEST(TINPointsSort, ZAndValueGoAlong) {
  TINPoints points;
  points.AddPoint({7, 1, 2, 3, 4});
  points.AddPoint({-1, 1, 1, 5, 6});
  points.SortByPlace();
  EXPECT_EQ(*points.GetPoint(0), (PointRecord{-1, 1, 1, 5, 6}));
  EXPECT_EQ(*points.GetPoint(1), (PointRecord{7, 1, 2, 3, 4}));
}

TEST(TINPointsSort, OnlyPointsInUseAreSorted) {
  TINPoints points(3);
  points.SetPoint(0, 0, 9, 0, 0, 0);
  points.SetPoint(1, 0, 8, 0, 0, 1);
  points.Truncate(2);
  points.SortByPlace();
  EXPECT_EQ(points.GetPoint(0)->id, 1);
  EXPECT_EQ(points.GetPoint(1)->id, 0);
  TINPoints none;
  none.SortByPlace();
  EXPECT_EQ(none.nPoints, 0);
}

TEST(TINPointsSort, TheIndexIsDropped) {
  TINPoints points;
  for (int i = 0; i < 4; ++i) points.AddPoint({i, 1.0 * i, 4.0 - i, 0, 0});
  points.RecalcExtent();
  ASSERT_EQ(points.BuildIndex(1.0), 1);
  points.SortByPlace();
  EXPECT_EQ(points.GetIndex(), nullptr);
}

TEST(TINPointsSort, RandomPlacesWithManyNaN) {
  std::mt19937 random(3);
  TINPoints points;
  const double numbers[] = {kNaN, -kInfinity, kInfinity, 0.0, -0.0, 1.0, 2.0, -1.0};
  for (std::int32_t i = 0; i < 20000; ++i) {
    points.AddPoint({i, numbers[random() % 8], numbers[random() % 8], 0, 0});
  }
  points.SortByPlace();
  // A number's place among the others: NaN as a value above infinity, whose rank is 1.
  const auto rank = [](double number) {
    return std::isnan(number) ? std::pair(2, 0.0)
                              : std::pair(std::isinf(number) && number > 0 ? 1 : 0, number);
  };
  for (std::int32_t i = 1; i < points.nPoints; ++i) {
    const PointRecord& a = *points.GetPoint(i - 1);
    const PointRecord& b = *points.GetPoint(i);
    ASSERT_LT(std::tuple(rank(a.y), rank(a.x), a.id), std::tuple(rank(b.y), rank(b.x), b.id));
  }
}

}  // namespace
}  // namespace corvane
