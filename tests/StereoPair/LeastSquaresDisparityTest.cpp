#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <set>

#include "DisparityScene.h"
#include "PlainDisparity.h"
#include "PlainLsm.h"
#include "StereoPair/DisparityPasses.h"
#include "StereoPair/LeastSquaresMatch.h"
#include "StereoPair/StereoPair.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

std::string LastEvent(const TestFrontEnd& frontEnd) {
  return frontEnd.events.empty() ? "" : frontEnd.events.back();
}

// The disparities, as they are defined: with the whole design of each pass.
struct PlainDisparities {
  Numbers d;
  double shift = 0.0;
  double gain = 1.0;
  double score = 0.0;
  std::string word = "\nIrregular";

  PlainDisparities(const StereoPair& pair, const Point2& left, const Point2& right, int width, int height,
                   bool hasGain, double limit) {
    const std::size_t n = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    d.assign(n, left.x - right.x);
    bool converged = false;
    for (int pass = 1; pass < 20; ++pass) {
      Numbers x(n + (hasGain ? 2 : 0));
      Pass(pair, left, right, width, height, x);
      if (converged || pass == 19) {
        if (converged) word = "\nConverged";
        return;
      }
      double least = x[0], most = x[0];
      for (std::size_t i = 0; i < n; ++i) {
        least = std::min(least, x[i]);
        most = std::max(most, x[i]);
      }
      converged = std::max(std::fabs(least), std::fabs(most)) < 1.5 && score > 0.75;
      bool diverges = false;
      for (std::size_t i = 0; i < n; ++i) diverges |= std::fabs(d[i] += x[i]) > limit;
      if (hasGain) {
        shift += x[n];
        gain += x[n + 1];
      }
      if (!diverges) continue;
      score = 0.0;
      word = "\nDiverge";
      return;
    }
  }

  void Pass(const StereoPair& pair, const Point2& left, const Point2& right, int width, int height,
            Numbers& x) {
    const int n = width * height;
    const OwnedMatrix design(AllocMatrix(3 * n, static_cast<int>(x.size())));
    Numbers l, weights, pattern, values;
    const int firstCol = static_cast<int>(left.x - width / 2),
              firstRow = static_cast<int>(left.y - height / 2);
    for (int i = 0; i < n; ++i) {
      const int col = firstCol + i % width, row = firstRow + i / width;
      const bool isThere = col >= 0 && row >= 0 && col < kSceneCols && row < kSceneRows;
      const double grey = isThere ? pair.leftImage->GetBands()[0][row * kSceneCols + col] : 0.0;
      const double X = col - d[static_cast<std::size_t>(i)], Y = row - (left.y - right.y);
      double sample = grey, v = grey, gCol = 0.0, gRow = 0.0;
      if (X >= 0.0 && X < kSceneCols && Y >= 0.0 && Y < kSceneRows) {
        pair.rightImage->GetPixelBilinear(0, Y, X, sample);
        pair.rightImage->GetGradientBilinear(0, Y, X, gCol, gRow);
        v = gain * sample + shift;
      }
      design[i][i] = -(gCol * gain);
      if (static_cast<int>(x.size()) > n) {
        design[i][n] = 1.0;
        design[i][n + 1] = sample;
      }
      l.push_back(grey - v);
      weights.push_back(1.0);
      pattern.push_back(grey);
      values.push_back(v);
    }
    AddPlainSmoothness(design.get() + n, width, height, d, l, weights);
    score = PlainCoefficient(pattern, values);
    WeightedLeastSquaresCholesky(design.get(), l.data(), weights.data(), 3 * n, static_cast<int>(x.size()),
                                 x.data());
  }
};

void ExpectPlainResults(DisparityForm form, bool hasGain) {
  std::set<std::string> words;
  for (std::uint32_t seed = 1; seed <= 120; ++seed) {
    Dice dice(seed);
    DisparityScene scene = RandomScene(seed, dice);
    const int width = 1 + static_cast<int>(seed % 8), height = 1 + static_cast<int>(seed % 5);
    const auto [left, right, limit] = RandomPlaces(seed, dice);
    TestFrontEnd frontEnd;
    const DisparityResult result =
        MatchDisparities(scene.pair, left, right, width, height, limit, 20, nullptr, form);
    const PlainDisparities plain(scene.pair, left, right, width, height, hasGain, limit);
    EXPECT_EQ(result.disparities, plain.d) << seed;
    EXPECT_EQ(result.score, plain.score) << seed;
    EXPECT_EQ(LastEvent(frontEnd), "trace: " + plain.word) << seed;
    words.insert(plain.word);
  }
  EXPECT_EQ(words, (std::set<std::string>{"\nConverged", "\nIrregular", "\nDiverge"}));
}

TEST(LeastSquaresDisparity, IsThePlainOneBitForBitWithAllOutcomes) {
  ExpectPlainResults(&StereoPair::LeastSquaresDisparity, false);
}

TEST(LeastSquaresDisparityGain, IsThePlainOneBitForBitWithAllOutcomes) {
  ExpectPlainResults(&StereoPair::LeastSquaresDisparityGain, true);
}

// A pass that corrects less than 1.5 pixels is the last one, which leaves what its linear model lacks.
TEST(LeastSquaresDisparity, FindsADisparityToATenthOfAPixel) {
  DisparityScene scene(6.4);
  const DisparityResult result = MatchDisparities(scene.pair, {50.0, 40.0}, {45.0, 40.0}, 11, 9);
  EXPECT_GT(result.score, 0.999);
  ASSERT_EQ(result.disparities.size(), 99u);
  for (const double disparity : result.disparities) EXPECT_NEAR(disparity, 6.4, 0.1);
  EXPECT_EQ(result.rowDisparities, Numbers(99, 0.0));
}

TEST(LeastSquaresDisparity, FindsASlope) {
  DisparityScene scene([](double x, double y) { return TextureAt(x + 6.0 + 0.05 * (y - 40.0), y); });
  const DisparityResult result = MatchDisparities(scene.pair, {50.0, 40.0}, {44.0, 40.0}, 9, 15);
  for (int row = 0; row < 15; ++row) {
    const double disparity = result.disparities[static_cast<std::size_t>(row) * 9 + 4];
    EXPECT_NEAR(disparity, 6.0 + 0.05 * (row - 7), row == 0 || row == 14 ? 0.15 : 0.1) << row;
  }
}

TEST(LeastSquaresDisparity, KeepsTheRowDisparity) {
  DisparityScene scene([](double x, double y) { return TextureAt(x + 5.3, y + 1.5); });
  const DisparityResult result = MatchDisparities(scene.pair, {50.0, 40.0}, {45.0, 38.5}, 9, 9);
  EXPECT_GT(result.score, 0.999);
  EXPECT_EQ(result.rowDisparities, Numbers(81, 1.5));
  EXPECT_NEAR(result.disparities[40], 5.3, 0.05);
}

TEST(LeastSquaresDisparity, StartsFromTheMapWhereItHasNumbers) {
  DisparityScene scene(6.4);
  ErdasImg map = MakeImage(
      kSceneCols, 40, [](double, double) { return 6.25; }, kPackFloat);
  map.SetPixel(0, 39, 50, std::nan(""));
  // Without passes the arrays are what the match starts from. The window reaches from row 38 to 42, beyond
  // the map's last one.
  const DisparityResult result =
      MatchDisparities(scene.pair, {50.0, 40.0}, {45.5, 40.0}, 3, 5, 16.0, 1, &map);
  EXPECT_EQ(result.disparities,
            (Numbers{6.25, 6.25, 6.25, 6.25, 4.5, 6.25, 4.5, 4.5, 4.5, 4.5, 4.5, 4.5, 4.5, 4.5, 4.5}));
  EXPECT_EQ(result.score, 0.0);
}

TEST(LeastSquaresDisparity, RunsPassesFrom1ToBeforeTheLimit) {
  DisparityScene scene(6.4);
  TestFrontEnd frontEnd;
  MatchDisparities(scene.pair, {50.0, 40.0}, {42.0, 40.0}, 9, 9, 16.0, 2);
  EXPECT_EQ(frontEnd.events.size(), 2u);  // a pass, and the outcome
  EXPECT_EQ(LastEvent(frontEnd), "trace: \nIrregular");
}

// The score is that of the start, where the samples are pixels; the corrections that follow have no part in
// it.
TEST(LeastSquaresDisparity, HasTheScoreBeforeTheCorrectionsThatTheLimitCutsOff) {
  DisparityScene scene(6.4);
  const DisparityResult result = MatchDisparities(scene.pair, {50.0, 40.0}, {45.0, 40.0}, 9, 9, 16.0, 2);
  Numbers left, right;
  for (int i = 0; i < 81; ++i) {
    const int first = (36 + i / 9) * kSceneCols + 46 + i % 9;
    left.push_back(scene.pair.leftImage->GetBands()[0][first]);
    right.push_back(scene.pair.rightImage->GetBands()[0][first - 5]);
  }
  EXPECT_EQ(result.score, PlainCoefficient(left, right));
  EXPECT_NE(result.disparities, Numbers(81, 5.0));
}

TEST(LeastSquaresDisparity, WithoutAPassMakesPairsOfTheStart) {
  for (const int iterations : {1, 0, -7}) {
    DisparityScene scene(6.4);
    TestFrontEnd frontEnd;
    const DisparityResult result =
        MatchDisparities(scene.pair, {50.0, 40.0}, {45.0, 40.0}, 1, 2, 16.0, iterations);
    EXPECT_EQ(result.score, 0.0);
    EXPECT_EQ(result.disparities, (Numbers{5.0, 5.0}));
    EXPECT_EQ(frontEnd.events, std::vector<std::string>{"trace: \nIrregular"});
    ASSERT_EQ(scene.pair.matchPairs.size(), 2u);
    EXPECT_EQ(scene.pair.matchPairs[0], (MatchPair{0, {50.0, 39.0}, {45.0, 39.0}, 0.0}));
  }
}

TEST(LeastSquaresDisparity, TellsScoreAndSmallestAndLargestCorrection) {
  DisparityScene scene(5.0);
  TestFrontEnd frontEnd;
  MatchDisparities(scene.pair, {50.0, 40.0}, {45.0, 40.0}, 9, 9);
  EXPECT_EQ(frontEnd.events, (std::vector<std::string>{"trace: \n1 0 0", "trace: \nConverged"}));
}

TEST(LeastSquaresDisparity, DivergesBeyondTheLimit) {
  DisparityScene scene(6.4);
  TestFrontEnd frontEnd;
  EXPECT_EQ(MatchDisparities(scene.pair, {50.0, 40.0}, {45.0, 40.0}, 9, 9, 6.0).score, 0.0);
  EXPECT_EQ(LastEvent(frontEnd), "trace: \nDiverge");
}

TEST(LeastSquaresDisparity, DoesNotDivergeAtTheLimit) {
  DisparityScene scene(5.0);
  EXPECT_EQ(MatchDisparities(scene.pair, {50.0, 40.0}, {45.0, 40.0}, 9, 9, 5.0).score, 1.0);
}

TEST(LeastSquaresDisparity, OfWindowsWithoutNeighbours) {
  DisparityScene scene(6.2);
  for (const auto& [width, height] : {std::pair{1, 1}, {1, 7}, {7, 1}, {2, 2}, {1, 2}}) {
    const DisparityResult result = MatchDisparities(scene.pair, {50.0, 40.0}, {44.0, 40.0}, width, height);
    ASSERT_EQ(result.disparities.size(), static_cast<std::size_t>(width * height));
    for (const double disparity : result.disparities) EXPECT_TRUE(std::isfinite(disparity));
  }
}

// With a flat right image no pixel ties its disparity, and the smoothness leaves them as they are.
TEST(LeastSquaresDisparity, OfFlatAreasStaysWhereItStarts) {
  DisparityScene scene([](double, double) { return 90.0; });
  EXPECT_EQ(MatchDisparities(scene.pair, {50.0, 40.0}, {45.0, 40.0}, 5, 5).disparities, Numbers(25, 5.0));
  scene.left.image = MakeImage(kSceneCols, kSceneRows, [](double, double) { return 90.0; });
  EXPECT_EQ(MatchDisparities(scene.pair, {50.0, 40.0}, {45.0, 40.0}, 5, 5).score, 1.0);
}

TEST(LeastSquaresDisparity, IsRefusedOutsideOfTheImages) {
  DisparityScene scene(6.0);
  const double nan = std::nan("");
  const double huge = 1e300;
  for (const DisparityForm form : kDisparityForms) {
    for (const Point2& place : {Point2{-1.0, 40.0}, {100.0, 40.0}, {50.0, 80.0}, {nan, 40.0}, {50.0, huge}}) {
      DisparityResult result =
          MatchDisparities(scene.pair, place, {45.0, 40.0}, 5, 5, 16.0, 20, nullptr, form);
      EXPECT_EQ(result.score, -1.0);
      EXPECT_TRUE(result.disparities.empty());
      EXPECT_EQ(MatchDisparities(scene.pair, {50.0, 40.0}, place, 5, 5, 16.0, 20, nullptr, form).score, -1.0);
    }
  }
  EXPECT_TRUE(scene.pair.matchPairs.empty());
}

TEST(LeastSquaresDisparity, IsRefusedWithoutImagesWindowOrMemory) {
  DisparityScene scene(6.0);
  StereoPair empty;
  for (const DisparityForm form : kDisparityForms) {
    for (const auto& [width, height] : {std::pair{0, 5}, {5, -1}, {10000, 10000}, {INT32_MAX, INT32_MAX}}) {
      EXPECT_EQ(
          MatchDisparities(scene.pair, {50.0, 40.0}, {45.0, 40.0}, width, height, 16.0, 20, nullptr, form)
              .score,
          -1.0);
    }
    EXPECT_EQ(MatchDisparities(empty, {50.0, 40.0}, {45.0, 40.0}, 5, 5, 16.0, 20, nullptr, form).score, -1.0);
  }
  scene.pair.targetWidth = 100000;
  scene.pair.targetHeight = 100000;
  EXPECT_EQ(
      MatchDisparities(scene.pair, {50.0, 40.0}, {45.0, 40.0}, 1, 1, 16.0, 20, nullptr, kDisparityForms[2])
          .score,
      -1.0);
}

TEST(LeastSquaresDisparity, FailsWithoutMemoryForThePairs) {
  DisparityScene scene(6.0);
  scene.pair.groundPoints = std::make_unique<TINPoints>();
  scene.pair.groundPoints->nPoints = INT32_MAX;  // no more can be counted
  scene.pair.groundPoints->capacity = INT32_MAX;
  scene.pair.targetWidth = 9;
  for (const DisparityForm form : kDisparityForms) {
    EXPECT_EQ(MatchDisparities(scene.pair, {50.0, 40.0}, {45.0, 40.0}, 3, 3, 16.0, 20, nullptr, form).score,
              -1.0);
  }
  scene.pair.groundPoints->nPoints = 0;
  scene.pair.groundPoints->capacity = 0;
  EXPECT_TRUE(scene.pair.matchPairs.empty());
}

// Of a narrow window the equations are a narrow band.
TEST(LeastSquaresDisparity, TakesAWindowThatIsTooLargeForDenseEquations) {
  DisparityScene scene(5.0);
  const DisparityResult result = MatchDisparities(scene.pair, {50.0, 40.0}, {45.0, 40.0}, 9, 9001, 16.0, 3);
  EXPECT_EQ(result.score, 1.0);
  EXPECT_EQ(result.disparities.size(), 9u * 9001u);
}

TEST(LeastSquaresDisparityGain, TakesUpTo4096Unknowns) {
  DisparityScene scene(6.0);
  const auto match = [&](int width, int height) {
    return MatchDisparities(scene.pair, {50.0, 40.0}, {44.0, 40.0}, width, height, 16.0, 1, nullptr,
                            kDisparityForms[1]);
  };
  EXPECT_EQ(match(46, 89).score, 0.0);  // 4094 disparities, shift and gain
  const DisparityResult refused = match(63, 65);
  EXPECT_EQ(refused.score, -1.0);
  EXPECT_TRUE(refused.disparities.empty());
}

TEST(LeastSquaresDisparity, OfAWindowThatLeavesTheImages) {
  DisparityScene scene(2.0);
  for (const DisparityForm form : kDisparityForms) {
    for (const Point2& place : {Point2{0.0, 0.0}, {98.0, 78.0}, {0.5, 78.5}, {98.9, 0.1}}) {
      EXPECT_NE(MatchDisparities(scene.pair, place, place, 9, 7, 16.0, 20, nullptr, form).score, -1.0);
    }
  }
}

TEST(LeastSquaresDisparity, SurvivesPixelsThatAreNotFinite) {
  DisparityScene scene(5.0);
  scene.right.image = MakeImage(
      kSceneCols, kSceneRows, [](double x, double y) { return TextureAt(x + 5.0, y); }, kPackFloat);
  for (const double value : {std::nan(""), std::numeric_limits<double>::infinity(), 1e38}) {
    scene.right.image.SetPixel(0, 40, 46, value);
    for (const DisparityForm form : kDisparityForms) {
      const DisparityResult result =
          MatchDisparities(scene.pair, {50.0, 40.0}, {45.0, 40.0}, 5, 5, 16.0, 20, nullptr, form);
      EXPECT_FALSE(scene.pair.IsMatched(result.score));
    }
  }
}

TEST(LeastSquaresDisparityGain, FindsDisparitiesUnderAnotherGain) {
  DisparityScene scene(6.4, 0.8, 20.0);
  const DisparityResult result =
      MatchDisparities(scene.pair, {50.0, 40.0}, {45.5, 40.0}, 11, 9, 16.0, 20, nullptr, kDisparityForms[1]);
  EXPECT_GT(result.score, 0.999);
  for (const double disparity : result.disparities) EXPECT_NEAR(disparity, 6.4, 0.2);
}

// The end of a pass.

// The outcome of two corrections to two disparities of 5.0, when more passes follow.
LsmOutcome OutcomeOf(double first, double second, double score, double threshold) {
  Numbers disparities(2, 5.0);
  DisparityMatch match = {LsmOutcome::Irregular, score};
  EXPECT_TRUE(CorrectDisparities(Numbers{first, second}, {16.0, 20, threshold}, disparities, match));
  EXPECT_EQ(disparities, (Numbers{5.0 + first, 5.0 + second}));
  EXPECT_EQ(match.score, score);
  return match.outcome;
}

TEST(CorrectDisparities, OfExactlyOneAndAHalfPixelsHasNotConverged) {
  const double below = std::nextafter(1.5, 0.0);
  EXPECT_EQ(OutcomeOf(below, -below, 0.9, 0.75), LsmOutcome::Converged);
  EXPECT_EQ(OutcomeOf(1.5, 0.0, 0.9, 0.75), LsmOutcome::Irregular);
  EXPECT_EQ(OutcomeOf(0.0, -1.5, 0.9, 0.75), LsmOutcome::Irregular);
}

TEST(CorrectDisparities, WithExactlyTheThresholdAsScoreHasNotConverged) {
  EXPECT_EQ(OutcomeOf(0.1, 0.1, 0.75, 0.75), LsmOutcome::Irregular);
  EXPECT_EQ(OutcomeOf(0.1, 0.1, std::nextafter(0.75, 1.0), 0.75), LsmOutcome::Converged);
}

TEST(CorrectDisparities, TellsALineThatBeginsWithItsNewline) {
  TestFrontEnd frontEnd;
  OutcomeOf(0.5, -0.25, 0.875, 0.75);
  EXPECT_EQ(frontEnd.events, std::vector<std::string>{"trace: \n0.875 -0.25 0.5"});
}

TEST(CorrectDisparities, BeyondTheLimitDivergesWithoutALine) {
  TestFrontEnd frontEnd;
  for (const double correction : {-21.5, 11.5, std::nan("")}) {
    Numbers disparities(2, 5.0);
    DisparityMatch match = {LsmOutcome::Irregular, 0.9};
    EXPECT_FALSE(CorrectDisparities(Numbers{correction, 0.0}, {16.0, 20, 0.75}, disparities, match));
    EXPECT_EQ(match.outcome, LsmOutcome::Diverge);
    EXPECT_EQ(match.score, 0.0);
  }
  EXPECT_TRUE(frontEnd.events.empty());
}

// Differences.

TEST(DisparityLattice, HasSecondDifferencesWithinAndFirstOnesAtTheEnds) {
  const DisparityLattice lattice = {4, 3};
  const auto expect = [&](std::size_t k, const std::vector<std::size_t>& unknowns, const Numbers& factors) {
    const DisparityDifference difference = lattice.GetDifference(k);
    EXPECT_EQ(std::vector(difference.unknowns, difference.unknowns + difference.count), unknowns) << k;
    EXPECT_EQ(Numbers(difference.factors, difference.factors + difference.count), factors) << k;
  };
  expect(4, {4, 5}, {-1.0, 1.0});
  expect(5, {4, 5, 6}, {-1.0, 2.0, -1.0});
  expect(7, {6, 7}, {-1.0, 1.0});
  expect(12 + 1, {1, 5}, {-1.0, 1.0});
  expect(12 + 5, {1, 5, 9}, {-1.0, 2.0, -1.0});
  expect(12 + 11, {7, 11}, {-1.0, 1.0});
}

TEST(DisparityLattice, HasNoDifferencesOfASingleColumnOrRow) {
  EXPECT_EQ((DisparityLattice{1, 5}.GetDifference(2).count), 0u);
  EXPECT_EQ((DisparityLattice{5, 1}.GetDifference(5 + 2).count), 0u);
  EXPECT_EQ((DisparityLattice{1, 5}.GetDifference(5 + 2).count), 3u);
}

TEST(DisparityDifference, ObservesWhatTheDisparitiesLack) {
  const DisparityDifference difference = DisparityLattice{3, 1}.GetDifference(1);
  EXPECT_EQ(difference.GetObservation(Numbers{1.0, 5.0, 3.0}), -6.0);
}

}  // namespace
}  // namespace corvane
