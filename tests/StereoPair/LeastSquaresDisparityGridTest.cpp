#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>
#include <string>

#include "DisparityScene.h"
#include "PlainCoefficient.h"
#include "PlainDisparity.h"
#include "numerics/LeastSquares.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

// The form with nodes, as it is defined: with the whole design of each pass.
struct PlainNodes {
  const StereoPair& pair;
  Point2 left;
  Point2 right;
  int stepX;
  int stepY;
  double limit;
  int nCols = (pair.targetWidth - 1 + stepX - 1) / stepX + 1;
  int nRows = (pair.targetHeight - 1 + stepY - 1) / stepY + 1;
  Numbers d = Numbers(static_cast<std::size_t>(nCols * nRows), left.x - right.x);
  double score = 0.0;
  std::vector<std::string> traces = {};

  void Run() {
    bool converged = false;
    Numbers x(d.size());
    for (int pass = 1;; ++pass) {
      RunPass(x);
      if (converged || pass == 19) {
        traces.push_back(converged ? "trace: \nConverged" : "trace: \nIrregular");
        return;
      }
      const double least = *std::min_element(x.begin(), x.end());
      const double most = *std::max_element(x.begin(), x.end());
      converged = std::max(std::fabs(least), std::fabs(most)) < 1.5 && score > 0.75;
      bool diverges = false;
      for (std::size_t i = 0; i < d.size(); ++i) diverges |= std::fabs(d[i] += x[i]) > limit;
      if (diverges) {
        score = 0.0;
        traces.push_back("trace: \nDiverge");
        return;
      }
      char line[100];
      std::snprintf(line, sizeof line, "trace: \n%.15g %.15g %.15g", score, least + 0.0, most + 0.0);
      traces.push_back(line);
    }
  }

  // Writes a pixel's row of the design; its observation is appended.
  void AddPixel(int i, double* row, Numbers& l, Numbers& pattern, Numbers& samples) const {
    const int dx = i % pair.targetWidth, dy = i / pair.targetWidth;
    const int col = static_cast<int>(left.x - pair.targetWidth / 2) + dx;
    const int line = static_cast<int>(left.y - pair.targetHeight / 2) + dy;
    const bool isThere = col >= 0 && line >= 0 && col < kSceneCols && line < kSceneRows;
    const double grey = isThere ? pair.leftImage->GetBands()[0][line * kSceneCols + col] : 0.0;
    const double fx = static_cast<double>(dx % stepX) / stepX, fy = static_cast<double>(dy % stepY) / stepY;
    const int first = dy / stepY * nCols + dx / stepX;
    const int nodes[] = {first, first + 1, first + nCols, first + nCols + 1};
    const double parts[] = {(1.0 - fx) * (1.0 - fy), fx * (1.0 - fy), (1.0 - fx) * fy, fx * fy};
    double disparity = 0.0;
    for (int k = 0; k < 4; ++k) {
      if (parts[k] > 0.0) disparity += parts[k] * d[static_cast<std::size_t>(nodes[k])];
    }
    const double X = col - disparity, Y = line - (left.y - right.y);
    double sample = grey, gCol = 0.0, gRow = 0.0;
    if (X >= 0.0 && X < kSceneCols && Y >= 0.0 && Y < kSceneRows) {
      pair.rightImage->GetPixelBilinear(0, Y, X, sample);
      pair.rightImage->GetGradientBilinearFore(0, Y, X, gCol, gRow);
    }
    for (int k = 0; k < 4; ++k) {
      if (parts[k] > 0.0) row[nodes[k]] = -(gCol * parts[k]);
    }
    l.push_back(grey - sample);
    pattern.push_back(grey);
    samples.push_back(sample);
  }

  void RunPass(Numbers& x) {
    const int n = nCols * nRows, nPixels = pair.targetWidth * pair.targetHeight, m = nPixels + 2 * n;
    const OwnedMatrix design(AllocMatrix(m, n));
    Numbers l, pattern, samples, weights(static_cast<std::size_t>(nPixels), 1.0);
    for (int i = 0; i < nPixels; ++i) AddPixel(i, design[i], l, pattern, samples);
    AddPlainSmoothness(design.get() + nPixels, nCols, nRows, d, l, weights);
    score = PlainCoefficient(pattern, samples);
    WeightedLeastSquares(design.get(), l.data(), weights.data(), m, n, x.data());
  }
};

DisparityResult MatchNodes(StereoPair& pair, const Point2& left, const Point2& right, int stepX, int stepY,
                           double limit = 16.0, int iterations = 20, const ErdasImg* map = nullptr) {
  return MatchDisparities(pair, left, right, stepX, stepY, limit, iterations, map,
                          &StereoPair::LeastSquaresDisparityGrid);
}

// One pass of a row of five pixels with nodes at columns 0, 2 and 4, which start from a disparity of 40.
void ExpectCorrectionOfARow(StereoPair& pair, double correction) {
  pair.targetWidth = 5;
  pair.targetHeight = 1;
  const DisparityResult result = MatchNodes(pair, {50.0, 40.0}, {10.0, 40.0}, 2, 1, 100.0, 2);
  ASSERT_EQ(result.disparities.size(), 3u);
  for (const double disparity : result.disparities) EXPECT_NEAR(disparity, 40.0 + correction, 1e-9);
}

TEST(LeastSquaresDisparityGrid, IsThePlainOneBitForBitWithAllOutcomesAndTraces) {
  std::set<std::string> words;
  for (std::uint32_t seed = 1; seed <= 150; ++seed) {
    Dice dice(seed);
    DisparityScene scene = RandomScene(seed, dice);
    const int stepX = 1 + static_cast<int>(seed % 4), stepY = 1 + static_cast<int>(seed % 3);
    scene.pair.targetWidth = stepX + 2 + static_cast<int>(dice.Between(0.0, 9.0));
    scene.pair.targetHeight = 1 + static_cast<int>(dice.Between(0.0, 9.0));
    const auto [left, right, limit] = RandomPlaces(seed, dice);
    TestFrontEnd frontEnd;
    const DisparityResult result = MatchNodes(scene.pair, left, right, stepX, stepY, limit);
    PlainNodes plain = {scene.pair, left, right, stepX, stepY, limit};
    plain.Run();
    EXPECT_EQ(result.disparities, plain.d) << seed;
    EXPECT_EQ(result.score, plain.score) << seed;
    EXPECT_EQ(frontEnd.events, plain.traces) << seed;
    words.insert(plain.traces.back());
  }
  EXPECT_EQ(words, (std::set<std::string>{"trace: \nConverged", "trace: \nIrregular", "trace: \nDiverge"}));
}

TEST(LeastSquaresDisparityGrid, FindsDisparitiesAtNodes) {
  DisparityScene scene(6.4);
  scene.pair.targetWidth = 19;
  scene.pair.targetHeight = 13;
  // Forward differences are halved, so that a pass corrects twice what is lacking: nothing but a start close
  // by, and the smoothness, can be expected of them.
  const DisparityResult result = MatchNodes(scene.pair, {50.0, 40.0}, {43.6, 40.0}, 6, 5);
  EXPECT_GT(result.score, 0.99);
  ASSERT_EQ(result.disparities.size(), 16u);  // columns 0, 6, 12, 18, rows 0, 5, 10, 15
  for (const double disparity : result.disparities) EXPECT_NEAR(disparity, 6.4, 0.3);
  EXPECT_EQ(result.rowDisparities, Numbers(16, 0.0));
}

TEST(LeastSquaresDisparityGrid, NeedsThreeColumnsOfNodes) {
  DisparityScene scene(6.0);
  scene.pair.targetWidth = 9;
  scene.pair.targetHeight = 1;
  DisparityResult result = MatchNodes(scene.pair, {50.0, 40.0}, {44.0, 40.0}, 8, 1);
  EXPECT_EQ(result.score, -1.0);
  EXPECT_TRUE(result.disparities.empty());
  EXPECT_TRUE(scene.pair.matchPairs.empty());
  result = MatchNodes(scene.pair, {50.0, 40.0}, {44.0, 40.0}, 7, 1);
  EXPECT_NE(result.score, -1.0);
  EXPECT_EQ(result.disparities.size(), 3u);
}

TEST(LeastSquaresDisparityGrid, MakesPairsAtTheNodes) {
  DisparityScene scene(6.0);
  scene.pair.targetWidth = 9;
  scene.pair.targetHeight = 7;
  const DisparityResult result = MatchNodes(scene.pair, {50.0, 40.0}, {44.0, 39.0}, 4, 5, 16.0, 1);
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
  ExpectCorrectionOfARow(scene.pair, -8.0);
}

// Of the grey value x * x the halved forward gradient at column x is x + 1/2, the backward one x - 1/2. The
// left image has what is at x + 1, so 2 x + 1 is lacking, and corrections of -2 fulfil everything.
TEST(LeastSquaresDisparityGrid, TakesForwardGradients) {
  DisparityScene scene(0.0);
  scene.right.image = MakeImage(
      kSceneCols, kSceneRows, [](double x, double) { return x * x; }, kPackDouble);
  scene.left.image = MakeImage(
      kSceneCols, kSceneRows, [](double x, double) { return (x - 39.0) * (x - 39.0); }, kPackDouble);
  ExpectCorrectionOfARow(scene.pair, -2.0);
}

// The window has columns -2 to 2, and the right one 8 to 12.
TEST(LeastSquaresDisparityGrid, CountsLeftPixelsOutsideAsZero) {
  DisparityScene scene([](double x, double) { return x < 10.0 ? 0.0 : 100.0; });
  scene.left.image = MakeImage(kSceneCols, kSceneRows, [](double, double) { return 100.0; });
  scene.pair.targetWidth = 5;
  scene.pair.targetHeight = 1;
  TestFrontEnd frontEnd;
  const DisparityResult result = MatchNodes(scene.pair, {0.0, 40.0}, {10.0, 40.0}, 2, 1);
  EXPECT_EQ(result.score, 1.0);
  EXPECT_EQ(result.disparities, Numbers(3, -10.0));
  EXPECT_EQ(frontEnd.events, (std::vector<std::string>{"trace: \n1 0 0", "trace: \nConverged"}));
  ASSERT_EQ(scene.pair.matchPairs.size(), 3u);
  EXPECT_EQ(scene.pair.matchPairs[0].left, (Point2{-2.0, 40.0}));  // pairs may lie off the image
}

TEST(LeastSquaresDisparityGrid, TakesUpTo4096Nodes) {
  DisparityScene scene(6.0);
  const auto match = [&](int width, int height) {
    scene.pair.targetWidth = width;
    scene.pair.targetHeight = height;
    return MatchNodes(scene.pair, {50.0, 40.0}, {44.0, 40.0}, 1, 1, 16.0, 1);
  };
  EXPECT_EQ(match(64, 64).score, 0.0);
  const DisparityResult refused = match(17, 241);  // 4097
  EXPECT_EQ(refused.score, -1.0);
  EXPECT_TRUE(refused.disparities.empty());
}

TEST(LeastSquaresDisparityGrid, StartsFromTheMapAtTheNodes) {
  DisparityScene scene(6.0);
  scene.pair.targetWidth = 5;
  scene.pair.targetHeight = 3;
  const ErdasImg map = MakeImage(
      kSceneCols, kSceneRows, [](double x, double y) { return x + 1000.0 * y; }, kPackDouble);
  const DisparityResult result = MatchNodes(scene.pair, {50.0, 40.0}, {44.0, 40.0}, 2, 2, 16.0, 1, &map);
  EXPECT_EQ(result.disparities, (Numbers{39048, 39050, 39052, 41048, 41050, 41052}));
}

}  // namespace
}  // namespace corvane
