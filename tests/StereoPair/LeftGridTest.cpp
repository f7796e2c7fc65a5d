// The grid over the left image.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "StereoPair/PairMaker.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::int32_t> Cols(const LeftGrid& grid) {
  std::vector<std::int32_t> cols;
  for (std::int64_t j = 0; j < grid.nCols; ++j) cols.push_back(grid.GetCol(j));
  return cols;
}

std::vector<std::int32_t> Rows(const LeftGrid& grid) {
  std::vector<std::int32_t> rows;
  for (std::int64_t i = 0; i < grid.nRows; ++i) rows.push_back(grid.GetRow(i));
  return rows;
}

// Pixels of 0.1, so that a spacing of 1.0 is a step of 10 pixels.
LeftGrid GridOf(std::int32_t cols, std::int32_t rows, double spacing = 1.0, std::int32_t window = 19,
                int margin = 1) {
  VerticalPair made(cols, rows);
  made.right.maxRowDisparity = margin;
  made.pair.groundSpacingX = made.pair.groundSpacingY = spacing;
  made.pair.targetWidth = made.pair.targetHeight = window;
  return made.pair.GetLeftGrid();
}

TEST(LeftGridTest, PlacesLeaveRoomForWindowsAndRows) {
  const LeftGrid grid = GridOf(60, 53);
  EXPECT_THAT(Cols(grid), ElementsAre(9, 19, 29, 39, 49));  // (60 - 19) / 10 + 1 = 5.1
  EXPECT_THAT(Rows(grid), ElementsAre(10, 20, 30, 40));     // (53 - 19 - 2) / 10 + 1 = 4.2
}

TEST(LeftGridTest, MarginsOfNoneAndThreeRows) {
  EXPECT_THAT(Rows(GridOf(60, 53, 1.0, 19, 0)), ElementsAre(9, 19, 29, 39));
  EXPECT_THAT(Rows(GridOf(60, 53, 1.0, 19, 3)), ElementsAre(12, 22, 32));  // 28 / 10 + 1 = 3.8
}

TEST(LeftGridTest, StepsOfFractionsAreCut) {
  EXPECT_THAT(Cols(GridOf(30, 30, 0.25)), ElementsAre(9, 11, 14, 16, 19));  // 2.5 each
  EXPECT_THAT(Cols(GridOf(21, 21, 0.05)), ElementsAre(9, 9, 10, 10, 11));   // below a pixel: twice each
}

TEST(LeftGridTest, StepsBelowAPixelRepeatPlaces) {
  EXPECT_TRUE(GridOf(21, 21, 0.05).RepeatsPlaces());
  EXPECT_TRUE(GridOf(19, 23, 0.05).RepeatsPlaces()) << "rows alone";
  EXPECT_FALSE(GridOf(19, 21, 0.05).RepeatsPlaces()) << "one place";
  EXPECT_FALSE(GridOf(30, 30, 0.1).RepeatsPlaces());
  EXPECT_FALSE(GridOf(30, 30, 0.15).RepeatsPlaces());
  EXPECT_FALSE(GridOf(18, 50).RepeatsPlaces()) << "none";
}

TEST(LeftGridTest, AGridWithoutPlacesSaysWhy) {
  EXPECT_EQ(GridOf(60, 60).whyNone, "");
  const std::string none = ": there is no place to match.";
  for (const double spacing : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(GridOf(60, 60, spacing).whyNone, "The ground spacing is not above 0" + none);
  }
  EXPECT_EQ(GridOf(60, 60, 1e308).whyNone, "The ground spacing is too large" + none);
  EXPECT_EQ(GridOf(18, 60).whyNone, "The window is larger than the left image" + none);
  EXPECT_EQ(GridOf(60, 18).whyNone, "The window is larger than the left image" + none);
  EXPECT_EQ(GridOf(60, 20).whyNone, "The rows searched above and below the window leave no place to match.");
  EXPECT_EQ(GridOf(60, 60, 1.0, 19, -1).whyNone, "The row tolerance is negative" + none);
  for (const double spacing : {1e-3, 1e-300}) {
    EXPECT_EQ(GridOf(1019, 1021, spacing).whyNone,
              "The ground spacing makes more than 2147483647 places: none of them is matched.");
  }
  VerticalPair made(60, 60);
  made.left.pixelSizeY = 0.0;
  EXPECT_EQ(made.pair.GetLeftGrid().whyNone, "The left orientation's pixel size is no number above 0" + none);
}

TEST(LeftGridTest, ColumnsAndRowsHaveStepsOfTheirOwn) {
  VerticalPair made(30, 60);
  made.left.pixelSizeX = 0.5;
  made.left.pixelSizeY = 0.25;
  made.right.pixelSizeX = 77.0;  // does not count
  made.pair.groundSpacingX = 3.0;
  made.pair.groundSpacingY = 4.0;
  made.pair.targetWidth = 9;
  made.pair.targetHeight = 11;
  const LeftGrid grid = made.pair.GetLeftGrid();
  EXPECT_THAT(Cols(grid), ElementsAre(4, 10, 16, 22));  // 21 / 6 + 1
  EXPECT_THAT(Rows(grid), ElementsAre(6, 22, 38));      // 47 / 16 + 1
}

TEST(LeftGridTest, EvenWindowsReachFurtherToTheLeft) {
  EXPECT_THAT(Cols(GridOf(40, 40, 1.0, 20)), ElementsAre(10, 20, 30));  // the last from 20 to 39
}

TEST(LeftGridTest, AnImageOfTheWindowsSizeHasOnePlace) {
  const LeftGrid grid = GridOf(19, 21);
  EXPECT_THAT(Cols(grid), ElementsAre(9));
  EXPECT_THAT(Rows(grid), ElementsAre(10));
}

TEST(LeftGridTest, AnImageNarrowerThanTheWindowHasNone) {
  EXPECT_THAT(Cols(GridOf(18, 50)), IsEmpty());
  EXPECT_THAT(Cols(GridOf(1, 50)), IsEmpty());
  EXPECT_THAT(Rows(GridOf(50, 20)), IsEmpty());
  EXPECT_THAT(Rows(GridOf(50, 1)), IsEmpty());
}

TEST(LeftGridTest, NoSpacingOrPixelSizeNoPlaces) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const double number : {0.0, -0.0, -1.0, kNaN, -kInfinity}) {
    EXPECT_EQ(GridOf(60, 60, number).nCols, 0) << number;
    VerticalPair made(60, 60);
    made.left.pixelSizeX = number;
    EXPECT_EQ(made.pair.GetLeftGrid().nCols, 0) << number;
    made.left.pixelSizeX = 0.1;
    made.left.pixelSizeY = number;
    EXPECT_EQ(made.pair.GetLeftGrid().nRows, 0) << number;
  }
}

TEST(LeftGridTest, BothNegativeIsNoStepEither) {
  VerticalPair made(60, 60);
  made.pair.groundSpacingX = made.pair.groundSpacingY = -1.0;
  made.left.pixelSizeX = made.left.pixelSizeY = -0.1;
  EXPECT_EQ(made.pair.GetLeftGrid().nCols, 0);
}

TEST(LeftGridTest, StepsBeyondAllNumbersMakeNoPlaces) {
  EXPECT_EQ(GridOf(60, 60, std::numeric_limits<double>::infinity()).nCols, 0);
  EXPECT_EQ(GridOf(60, 60, std::numeric_limits<double>::max()).nCols, 0) << "times 10";
  EXPECT_THAT(Cols(GridOf(60, 60, 1e300)), ElementsAre(9));
}

TEST(LeftGridTest, MorePlacesThanIdsAreNone) {
  const LeftGrid grid = GridOf(1019, 1021, 1e-3);  // 100000 x 100000 places and a few more
  EXPECT_EQ(grid.nCols, 0);
  EXPECT_EQ(grid.nRows, 0);
  EXPECT_EQ(GridOf(60, 60, 1e-300).nCols, 0);
  EXPECT_EQ(GridOf(1019, 1021, 1e-2).nCols, 10001);
}

TEST(LeftGridTest, ANegativeRowToleranceMakesNoPlaces) {
  EXPECT_EQ(GridOf(60, 60, 1.0, 19, INT32_MIN).nRows, 0);
  EXPECT_EQ(GridOf(60, 60, 1.0, 19, INT32_MAX).nRows, 0);
}

}  // namespace
}  // namespace corvane
