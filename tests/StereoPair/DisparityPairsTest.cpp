#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>

#include "DisparityScene.h"

namespace corvane {
namespace {

TEST(AddDisparityWindow, AddsAPairAndAGroundPointForEachPixel) {
  DisparityScene scene(0.0);
  StereoPair& pair = scene.pair;
  scene.left.image.GetHeader()->xStart = 7;
  scene.right.image.GetHeader()->xStart = 5;
  pair.matchPairs.resize(3);
  const Numbers disparities = {8.0, 18.0};
  EXPECT_EQ(pair.AddDisparityWindow({50.9, 40.2}, 2, 1, disparities, Numbers{0.0, 0.0}, 0.875), 1);
  ASSERT_EQ(pair.matchPairs.size(), 5u);
  EXPECT_EQ(pair.matchPairs[3], (MatchPair{3, {49.0, 40.0}, {41.0, 40.0}, 0.875}));
  EXPECT_EQ(pair.matchPairs[4], (MatchPair{4, {50.0, 40.0}, {32.0, 40.0}, 0.875}));
  // In the scans the columns are 56 and 46: a disparity of 10, which is height 0; then 57 and 37, 20, where
  // 1500 * 10 / (1500 - Z) is 20: 750.
  ASSERT_TRUE(pair.groundPoints);
  ASSERT_EQ(pair.groundPoints->nPoints, 2);
  const PointRecord& first = *pair.groundPoints->GetPoint(0);
  EXPECT_EQ(first.id, 3);
  EXPECT_NEAR(first.x, 1006.0, 1e-6);
  EXPECT_NEAR(first.y, 2010.0, 1e-6);
  EXPECT_NEAR(first.z, 0.0, 1e-6);
  EXPECT_EQ(first.value, 0.875);
  const PointRecord& second = *pair.groundPoints->GetPoint(1);
  EXPECT_EQ(second.id, 4);
  EXPECT_NEAR(second.x, 1003.5, 1e-6);
  EXPECT_NEAR(second.z, 750.0, 1e-6);
}

TEST(AddDisparityWindow, TakesOffTheRowDisparity) {
  DisparityScene scene(0.0);
  scene.pair.AddDisparityWindow({50.0, 40.0}, 1, 2, Numbers{8.0, 9.0}, Numbers{0.5, -0.5}, 1.0);
  ASSERT_EQ(scene.pair.matchPairs.size(), 2u);
  EXPECT_EQ(scene.pair.matchPairs[0].right, (Point2{42.0, 38.5}));
  EXPECT_EQ(scene.pair.matchPairs[1].right, (Point2{41.0, 40.5}));
}

TEST(AddDisparityWindow, AddsNothingWithoutPhotosOrDisparities) {
  DisparityScene scene(0.0);
  StereoPair empty;
  EXPECT_EQ(empty.AddDisparityWindow({5.0, 5.0}, 1, 1, Numbers{1.0}, Numbers{0.0}, 1.0), 0);
  EXPECT_EQ(scene.pair.AddDisparityWindow({5.0, 5.0}, 2, 2, Numbers{1.0}, Numbers{0.0}, 1.0), -1);
  EXPECT_EQ(scene.pair.AddDisparityWindow({5.0, 5.0}, 0, 2, {}, {}, 1.0), -1);
  EXPECT_TRUE(scene.pair.matchPairs.empty());
}

TEST(LeastSquaresDisparity, MakesPairsWhateverTheOutcome) {
  DisparityScene scene(6.4);
  const DisparityResult good = MatchDisparities(scene.pair, {50.0, 40.0}, {44.0, 40.0}, 5, 3);
  ASSERT_EQ(scene.pair.matchPairs.size(), 15u);
  EXPECT_EQ(scene.pair.matchPairs[0],
            (MatchPair{0, {48.0, 39.0}, {48.0 - good.disparities[0], 39.0}, good.score}));
  MatchDisparities(scene.pair, {50.0, 40.0}, {44.0, 40.0}, 5, 3, 1.0);
  ASSERT_EQ(scene.pair.matchPairs.size(), 30u);
  EXPECT_EQ(scene.pair.matchPairs[15].id, 15);
  EXPECT_EQ(scene.pair.matchPairs[15].score, 0.0);
  EXPECT_EQ(scene.pair.groundPoints->nPoints, 30);
}

// A map of 6 x 5 pixels that are all -1, as whole numbers or as they are.
StereoPair& WithMap(StereoPair& pair, std::uint16_t packType) {
  pair.disparityMap = std::make_unique<ErdasImg>(MakeImage(
      6, 5, [](double, double) { return 0.0; }, packType));
  pair.disparityMap->Fill(-1.0);
  return pair;
}

Numbers ValuesOf(const ErdasImg& map) {
  Numbers values(30);
  for (int i = 0; i < 30; ++i) map.GetPixel(0, i / 6, i % 6, values[static_cast<std::size_t>(i)]);
  return values;
}

TEST(StoreDisparityWindow, LeavesTheMarginsAndAddsAHalf) {
  StereoPair pair;
  Numbers disparities(20);
  for (std::size_t i = 0; i < 20; ++i) disparities[i] = 10.0 + 0.25 * static_cast<double>(i);
  // The window begins at column 1, row 0; its inner pixels are those of columns 2 to 4, rows 1 and 2.
  WithMap(pair, kPackFloat).StoreDisparityWindow({3.9, 2.0}, 5, 4, disparities, 1, 1);
  Numbers expected(30, -1.0);
  for (std::size_t row = 1; row <= 2; ++row) {
    for (std::size_t col = 2; col <= 4; ++col) expected[row * 6 + col] = disparities[row * 5 + col - 1] + 0.5;
  }
  EXPECT_EQ(ValuesOf(*pair.disparityMap), expected);
}

TEST(StoreDisparityWindow, CutsTowardsZeroInAMapOfWholeNumbers) {
  StereoPair pair;
  WithMap(pair, kPackInt16).StoreDisparityWindow({0.0, 0.0}, 1, 1, Numbers{7.4}, 0, 0);
  WithMap(pair, kPackInt16).StoreDisparityWindow({0.0, 0.0}, 1, 1, Numbers{7.4}, 0, 0);
  EXPECT_EQ(ValuesOf(*pair.disparityMap)[0], 7.0);
  pair.StoreDisparityWindow({0.0, 0.0}, 1, 1, Numbers{7.5}, 0, 0);
  EXPECT_EQ(ValuesOf(*pair.disparityMap)[0], 8.0);
  pair.StoreDisparityWindow({0.0, 0.0}, 1, 1, Numbers{-9.75}, 0, 0);
  EXPECT_EQ(ValuesOf(*pair.disparityMap)[0], -9.0);
}

TEST(StoreDisparityWindow, DropsWhatIsOutsideOfTheMap) {
  StereoPair pair;
  pair.StoreDisparityWindow({0.0, 0.0}, 1, 1, Numbers{7.0}, 0, 0);  // without a map
  WithMap(pair, kPackFloat).StoreDisparityWindow({0.0, 0.0}, 3, 3, Numbers(9, 1.5), 0, 0);
  Numbers expected(30, -1.0);
  for (const std::size_t i : {0, 1, 6, 7}) expected[i] = 2.0;
  EXPECT_EQ(ValuesOf(*pair.disparityMap), expected);
  for (const Point2& place : {Point2{-50.0, 0.0}, {1e300, -1e300}, {std::nan(""), 60.0}}) {
    pair.StoreDisparityWindow(place, 3, 3, Numbers(9, 5.0), 0, 0);
  }
  pair.StoreDisparityWindow({3.0, 3.0}, 3, 3, Numbers(9, 5.0), 2, 2);
  pair.StoreDisparityWindow({3.0, 3.0}, 3, 3, Numbers(9, 5.0), INT32_MAX, 0);
  pair.StoreDisparityWindow({3.0, 3.0}, 3, 3, Numbers(8, 5.0), 0, 0);
  EXPECT_EQ(ValuesOf(*pair.disparityMap), expected);
  pair.StoreDisparityWindow({3.0, 3.0}, 1, 1, Numbers{7.0}, INT32_MIN, -1);
  EXPECT_EQ(ValuesOf(*pair.disparityMap)[21], 7.5);
}

}  // namespace
}  // namespace corvane
