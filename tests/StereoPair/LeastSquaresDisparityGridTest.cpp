#include <gtest/gtest.h>

#include <cmath>

#include "DisparityScene.h"

namespace corvane {
namespace {

TEST(LeastSquaresDisparityGrid, FindsDisparitiesAtNodes) {
  DisparityScene scene(6.4);
  scene.pair.targetWidth = 19;
  scene.pair.targetHeight = 13;
  // Forward differences are halved, so that a pass corrects twice what is lacking: nothing but a start close
  // by, and the smoothness, can be expected of them.
  const DisparityResult result =
      MatchDisparities(scene.pair, {50.0, 40.0}, {43.6, 40.0}, 6, 5, 16.0, 20, nullptr, kDisparityForms[2]);
  EXPECT_GT(result.score, 0.99);
  ASSERT_EQ(result.disparities.size(), 16u);  // columns 0, 6, 12, 18, rows 0, 5, 10, 15
  for (const double disparity : result.disparities) EXPECT_NEAR(disparity, 6.4, 0.3);
  EXPECT_EQ(result.rowDisparities, Numbers(16, 0.0));
}

TEST(LeastSquaresDisparityGrid, NeedsThreeColumnsOfNodes) {
  DisparityScene scene(6.0);
  scene.pair.targetWidth = 9;
  scene.pair.targetHeight = 1;
  DisparityResult result =
      MatchDisparities(scene.pair, {50.0, 40.0}, {44.0, 40.0}, 8, 1, 16.0, 20, nullptr, kDisparityForms[2]);
  EXPECT_EQ(result.score, -1.0);
  EXPECT_TRUE(result.disparities.empty());
  EXPECT_TRUE(scene.pair.matchPairs.empty());
  result =
      MatchDisparities(scene.pair, {50.0, 40.0}, {44.0, 40.0}, 7, 1, 16.0, 20, nullptr, kDisparityForms[2]);
  EXPECT_NE(result.score, -1.0);
  EXPECT_EQ(result.disparities.size(), 3u);
}

TEST(LeastSquaresDisparityGrid, MakesPairsAtTheNodes) {
  DisparityScene scene(6.0);
  scene.pair.targetWidth = 9;
  scene.pair.targetHeight = 7;
  const DisparityResult result =
      MatchDisparities(scene.pair, {50.0, 40.0}, {44.0, 39.0}, 4, 5, 16.0, 1, nullptr, kDisparityForms[2]);
  EXPECT_EQ(result.disparities, Numbers(9, 6.0));
  ASSERT_EQ(scene.pair.matchPairs.size(), 9u);
  EXPECT_EQ(scene.pair.matchPairs[0], (MatchPair{0, {46.0, 37.0}, {40.0, 36.0}, 0.0}));
  EXPECT_EQ(scene.pair.matchPairs[1].left, (Point2{50.0, 37.0}));
  EXPECT_EQ(scene.pair.matchPairs[5].left, (Point2{54.0, 42.0}));
  EXPECT_EQ(scene.pair.matchPairs[8].left, (Point2{54.0, 47.0}));
}

// One pass of a row of five pixels with nodes at columns 0, 2 and 4, by hand: where the right image grows by
// 2 a column the gradient is 1, halved as it is, and the pixels' parts of the nodes are (1, 0, 0), (1/2, 1/2,
// 0), (0, 1, 0), (0, 1/2, 1/2), (0, 0, 1). All grey values lack 8, so that corrections of -8 fulfil
// everything.
TEST(LeastSquaresDisparityGrid, SpreadsThePixelsOverTheNodes) {
  DisparityScene scene([](double x, double) { return 2.0 * x; });
  scene.left.image =
      MakeImage(kSceneCols, kSceneRows, [](double x, double) { return 2.0 * (x - 40.0) + 8.0; });
  scene.pair.targetWidth = 5;
  scene.pair.targetHeight = 1;
  const DisparityResult result =
      MatchDisparities(scene.pair, {50.0, 40.0}, {10.0, 40.0}, 2, 1, 100.0, 2, nullptr, kDisparityForms[2]);
  ASSERT_EQ(result.disparities.size(), 3u);
  for (const double disparity : result.disparities) EXPECT_NEAR(disparity, 40.0 - 8.0, 1e-9);
}

TEST(LeastSquaresDisparityGrid, StartsFromTheMapAtTheNodes) {
  DisparityScene scene(6.0);
  scene.pair.targetWidth = 5;
  scene.pair.targetHeight = 3;
  const ErdasImg map = MakeImage(
      kSceneCols, kSceneRows, [](double x, double y) { return x + 1000.0 * y; }, kPackDouble);
  const DisparityResult result =
      MatchDisparities(scene.pair, {50.0, 40.0}, {44.0, 40.0}, 2, 2, 16.0, 1, &map, kDisparityForms[2]);
  EXPECT_EQ(result.disparities, (Numbers{39048, 39050, 39052, 41048, 41050, 41052}));
}

}  // namespace
}  // namespace corvane
