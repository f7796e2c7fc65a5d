#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>

#include "LsmScenes.h"
#include "PlainLsm.h"
#include "StereoPair/LeastSquaresMatch.h"
#include "StereoPair/MatchRegion.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

// Rows of one run each, from `first` to before `end`.
struct PixelRun {
  double row;
  double first;
  double end;
};

MatchRegion MakeRegion(const std::vector<PixelRun>& runs) {
  MatchRegion region;
  region.id = 12;
  for (const auto& [row, first, end] : runs) region.scanRegion.rows.push_back({row, 2, {first, end}});
  region.scanRegion.rowCount = static_cast<std::int32_t>(runs.size());
  return region;
}

MatchRegion MakeBox(double left, double top, double right, double bottom) {
  std::vector<PixelRun> runs;
  for (double row = top; row < bottom; ++row) runs.push_back({row, left, right});
  MatchRegion region = MakeRegion(runs);
  region.centerX = (left + right) / 2.0;
  region.centerY = (top + bottom) / 2.0;
  region.leftBound = left;
  region.topBound = top;
  region.rightBound = right;
  region.bottomBound = bottom;
  return region;
}

// The left image is the texture; the right one shows it moved by (-6.4, 0.3).
struct Scene {
  ErdasImg left = MakeTexture(120, 100);
  ErdasImg right = MakeImage(120, 100, [](double x, double y) { return TextureAt(x + 6.4, y - 0.3); });
};

TEST(LeastSquaresMatchRegion, FindsTheRegionInTheOtherImage) {
  const Scene scene;
  for (const RegionMode mode : {RegionMode::All, RegionMode::ScanLines, RegionMode::Rectangle}) {
    Point2 position = {60.0, 50.0};
    LsmParameters p = {.a0 = -7.0};
    const double score =
        LeastSquaresMatchRegion(scene.left, scene.right, MakeBox(50, 42, 71, 59), position, p, mode, false);
    EXPECT_GT(score, 0.999);
    EXPECT_NEAR(position.x, 53.6, 0.05);
    EXPECT_NEAR(position.y, 50.3, 0.05);
  }
}

TEST(LeastSquaresMatchRegion, LeavesTheRowOfALockedMatch) {
  const Scene scene;
  Point2 position = {60.4, 50.7};
  LsmParameters p = {.a0 = -7.0, .b0 = 3.0, .b1 = 4.0, .b2 = 5.0};
  const ErdasImg right = MakeImage(120, 100, [](double x, double y) { return TextureAt(x + 6.4, y); });
  const double score =
      LeastSquaresMatchRegion(scene.left, right, MakeBox(50, 42, 71, 59), position, p, RegionMode::All, true);
  EXPECT_GT(score, 0.999);
  EXPECT_NEAR(p.a0, -6.4, 0.05);
  EXPECT_EQ(position, (Point2{60.4 + p.a0, 50.7}));
  EXPECT_EQ(p.b0, 3.0);
  EXPECT_EQ(p.b1, 4.0);
  EXPECT_EQ(p.b2, 5.0);
}

// The passes as they are defined.
PlainMatch MatchRegionPlainly(const ErdasImg& search, const std::vector<PlainPixel>& pixels,
                              const Point2& origin, bool isRowLocked) {
  PlainMatch match;
  match.position = origin;
  LsmParameters& p = match.parameters;
  bool converged = false;
  double x[8];
  for (int pass = 1; match.word.empty(); ++pass) {
    match.score =
        PlainPass(search, pixels, origin, p, {.isComposed = false, .nUnknowns = isRowLocked ? 5 : 8}, x);
    if (converged || pass == 19) {
      match.word = converged ? "Converged" : "Irregular\n";
      match.position.x += p.a0;
      if (!isRowLocked) match.position.y += p.b0;
      break;
    }
    PlainUpdate(p, x, false);
    if (std::fabs(x[2]) > 10.0 || std::fabs(x[5]) > 10.0) {
      match.word = "Diverge";
      match.score = 0.0;
    }
    converged = std::fabs(x[2]) < 0.15 && std::fabs(x[5]) < 0.15;
  }
  return match;
}

TEST(LeastSquaresMatchRegion, IsThePlainOneBitForBitWithAllOutcomes) {
  std::set<std::string> words;
  for (std::uint32_t seed = 1; seed <= 400; ++seed) {
    Dice dice(seed);
    const bool isRowLocked = seed % 2 == 0;
    const ErdasImg left = MakeTexture(60, 50);
    const ErdasImg right = MakeImage(60, 50, [&](double x, double y) {
      return seed % 3 == 0 ? TextureAt(x + 1.3, y) : 60.0 + 0.5 * TextureAt(x, y) + dice.Byte() / 4;
    });
    const Point2 origin = {std::floor(dice.Between(5.0, 55.0)), std::floor(dice.Between(5.0, 45.0))};
    std::vector<PixelRun> runs;
    std::vector<PlainPixel> pixels;
    for (int dy = -2; dy <= 2; ++dy) {
      const PixelRun run = {origin.y + dy, origin.x - 3 - (seed + dy) % 3, origin.x + 4 + (seed + dy) % 2};
      runs.push_back(run);
      for (double col = run.first; col < run.end; ++col) {
        if (col < 0.0 || col >= 60.0) continue;
        const auto index = static_cast<std::size_t>(run.row * 60.0 + col);
        pixels.push_back({col - origin.x, run.row - origin.y, left.GetBands()[0][index]});
      }
    }
    const PlainMatch plain = MatchRegionPlainly(right, pixels, origin, isRowLocked);
    TestFrontEnd frontEnd;
    Point2 position = origin;
    LsmParameters p;
    const double score =
        LeastSquaresMatchRegion(left, right, MakeRegion(runs), position, p, RegionMode::All, isRowLocked);
    EXPECT_EQ(score, plain.score) << seed;
    EXPECT_EQ(p, plain.parameters) << seed;
    EXPECT_EQ(position, plain.position) << seed;
    EXPECT_EQ(frontEnd.events,
              (std::vector<std::string>{"trace: \nRegion ID: 12\n", "trace: " + plain.word}));
    words.insert(plain.word);
  }
  EXPECT_EQ(words, (std::set<std::string>{"Converged", "Irregular\n", "Diverge"}));
}

TEST(LeastSquaresMatchRegion, HoldsOnlyTheStepsAgainstTheLimit) {
  const Scene scene;
  const ErdasImg right = MakeImage(120, 100, [](double x, double y) { return TextureAt(x + 30.2, y); });
  Point2 position = {60.0, 50.0};
  LsmParameters p = {.a0 = -30.0};
  EXPECT_GT(
      LeastSquaresMatchRegion(scene.left, right, MakeBox(50, 42, 71, 59), position, p, RegionMode::All, true),
      0.999);
  EXPECT_NEAR(position.x, 29.8, 0.05);
}

TEST(LeastSquaresMatchRegion, CountsFromTheIntegerPartOfThePosition) {
  const Scene scene;
  const MatchRegion region = MakeBox(50, 42, 71, 59);
  Point2 whole = {60.0, 50.0};
  Point2 position = {60.75, 50.25};
  LsmParameters p = {.a0 = -6.0};
  LsmParameters q = p;
  const double score =
      LeastSquaresMatchRegion(scene.left, scene.right, region, whole, p, RegionMode::All, false);
  EXPECT_EQ(LeastSquaresMatchRegion(scene.left, scene.right, region, position, q, RegionMode::All, false),
            score);
  EXPECT_EQ(q, p);
  EXPECT_EQ(position, (Point2{60.75 + p.a0, 50.25 + p.b0}));
}

TEST(LeastSquaresMatchRegion, NeedsEightOfAllPixels) {
  const Scene scene;
  const MatchRegion seven = MakeRegion({{50, 60, 64}, {51, 60, 63}});
  const MatchRegion eight = MakeRegion({{50, 60, 64}, {51, 60, 64}});
  TestFrontEnd frontEnd;
  Point2 position = {61.0, 50.0};
  LsmParameters p;
  EXPECT_EQ(LeastSquaresMatchRegion(scene.left, scene.right, seven, position, p, RegionMode::All, true),
            -1.0);
  EXPECT_EQ(position, (Point2{61.0, 50.0}));
  EXPECT_TRUE(frontEnd.events.empty());
  EXPECT_NE(LeastSquaresMatchRegion(scene.left, scene.right, eight, position, p, RegionMode::All, true),
            -1.0);
  position = {61.0, 50.0};
  EXPECT_NE(LeastSquaresMatchRegion(scene.left, scene.right, seven, position, p, RegionMode::ScanLines, true),
            -1.0);
}

TEST(LeastSquaresMatchRegion, KeepsScanLinesInTheCache) {
  const Scene scene;
  const MatchRegion region = MakeRegion({{50, 60, 63}, {51, 58, 60}});
  RegionPixels cache;
  Point2 position = {60.0, 50.0};
  LsmParameters p;
  LeastSquaresMatchRegion(scene.left, scene.right, region, position, p, RegionMode::ScanLines, true, &cache);
  const auto byte = [&](int col, int row) { return scene.left.GetBands()[0][row * 120 + col]; };
  const RegionPixels expected = {{60, 50, byte(60, 50)},
                                 {61, 50, byte(61, 50)},
                                 {62, 50, byte(62, 50)},
                                 {58, 51, byte(58, 51)},
                                 {59, 51, byte(59, 51)}};
  EXPECT_EQ(cache, expected);

  // What is there is not made again: the other region has other pixels.
  Point2 first = {60.0, 50.0};
  Point2 second = {60.0, 50.0};
  LsmParameters q;
  p = {};
  const double score = LeastSquaresMatchRegion(scene.left, scene.right, region, first, p,
                                               RegionMode::ScanLines, true, nullptr);
  EXPECT_EQ(LeastSquaresMatchRegion(scene.left, scene.right, MakeBox(10, 10, 30, 30), second, q,
                                    RegionMode::ScanLines, true, &cache),
            score);
  EXPECT_EQ(second, first);
  EXPECT_EQ(cache, expected);
}

// What becomes of the parameters tells which pixels have taken part.
LsmParameters Refined(const Scene& scene, const MatchRegion& region, RegionMode mode) {
  Point2 position = {60.0, 50.0};
  LsmParameters p = {.a0 = -6.0};
  LeastSquaresMatchRegion(scene.left, scene.right, region, position, p, mode, true);
  return p;
}

// A box of this size around (60.7, 50.2).
MatchRegion MakeBounds(double width, double height) {
  MatchRegion region;
  region.centerX = 60.7;
  region.centerY = 50.2;
  region.leftBound = 3.0;
  region.topBound = 4.0;
  region.rightBound = 3.0 + width;
  region.bottomBound = 4.0 + height;
  return region;
}

TEST(LeastSquaresMatchRegion, GrowsTheRectangleToOddNumbersAroundTheCentre) {
  const Scene scene;
  const LsmParameters p5x3 = Refined(scene, MakeBox(58, 49, 63, 52), RegionMode::All);
  for (const auto& [width, height] : {std::pair{5.0, 3.0}, {4.0, 2.0}, {4.6, 3.0}, {3.1, 1.5}}) {
    EXPECT_EQ(Refined(scene, MakeBounds(width, height), RegionMode::Rectangle), p5x3) << width;
  }
  const LsmParameters p7x3 = Refined(scene, MakeBox(57, 49, 64, 52), RegionMode::All);
  EXPECT_EQ(Refined(scene, MakeBounds(5.1, 3.0), RegionMode::Rectangle), p7x3);
  EXPECT_NE(p7x3, p5x3);
}

TEST(LeastSquaresMatchRegion, LeavesOutWhatIsNotOnTheLeftImage) {
  const Scene scene;
  MatchRegion bounds = MakeBounds(21.0, 9.0);
  bounds.centerX = 115.0;
  bounds.centerY = 2.0;
  const LsmParameters p = Refined(scene, MakeBox(105, 0, 120, 7), RegionMode::All);
  EXPECT_EQ(Refined(scene, bounds, RegionMode::Rectangle), p);
  EXPECT_EQ(Refined(scene, MakeBox(105, -2, 126, 7), RegionMode::All), p);
}

TEST(LeastSquaresMatchRegion, HasNoPixelsInRowsAndRunsThatAreNotFinite) {
  const Scene scene;
  const double nan = std::nan("");
  const double infinity = std::numeric_limits<double>::infinity();
  const LsmParameters p = Refined(scene, MakeBox(58, 49, 63, 52), RegionMode::All);
  for (const double bad : {nan, infinity, -infinity}) {
    MatchRegion region = MakeBox(58, 49, 63, 52);
    for (const PixelRun& run : {PixelRun{bad, 3, 9}, {0, bad, 9}, {0, 3, bad}, {bad, bad, bad}}) {
      region.scanRegion.rows.push_back({run.row, 2, {run.first, run.end}});
    }
    region.scanRegion.rowCount = static_cast<std::int32_t>(region.scanRegion.rows.size());
    EXPECT_EQ(Refined(scene, region, RegionMode::All), p) << bad;
  }
}

TEST(LeastSquaresMatchRegion, HasNoRectangleAroundACentreOrOfBoundsThatAreNotFinite) {
  const Scene scene;
  double MatchRegion::*const fields[] = {&MatchRegion::centerX,    &MatchRegion::centerY,
                                         &MatchRegion::leftBound,  &MatchRegion::topBound,
                                         &MatchRegion::rightBound, &MatchRegion::bottomBound};
  for (const auto field : fields) {
    for (const double bad : {std::nan(""), std::numeric_limits<double>::infinity()}) {
      MatchRegion region = MakeBounds(5.0, 3.0);
      region.*field = bad;
      Point2 position = {60.0, 50.0};
      LsmParameters p;
      EXPECT_EQ(
          LeastSquaresMatchRegion(scene.left, scene.right, region, position, p, RegionMode::Rectangle, true),
          -1.0);
    }
  }
}

TEST(LeastSquaresMatchRegion, SurvivesAbsurdRegions) {
  const Scene scene;
  const double huge = 1e300;
  MatchRegion region =
      MakeRegion({{-5, 0, 50}, {1e12, 0, 50}, {50, -huge, huge}, {51, huge, -huge}, {std::nan(""), 3, 7}});
  region.scanRegion.rows.push_back({52.0, 3, {1.0, 4.0, 9.0}});
  region.scanRegion.rowCount = 1000;
  region.centerX = huge;
  region.centerY = -huge;
  region.rightBound = huge;
  region.topBound = std::nan("");
  for (const RegionMode mode : {RegionMode::All, RegionMode::ScanLines, RegionMode::Rectangle}) {
    for (const Point2& place : {Point2{60.0, 50.0}, {std::nan(""), 50.0}, {huge, huge}, {-1.0, 3.0}}) {
      Point2 position = place;
      LsmParameters p;
      const double score = LeastSquaresMatchRegion(scene.left, scene.right, region, position, p, mode, true);
      EXPECT_TRUE(place.x == 60.0 || score == -1.0);
    }
  }
  Point2 position = {60.0, 50.0};
  LsmParameters p;
  EXPECT_EQ(LeastSquaresMatchRegion(ErdasImg(), scene.right, region, position, p, RegionMode::All, true),
            -1.0);
  EXPECT_EQ(LeastSquaresMatchRegion(scene.left, ErdasImg(), region, position, p, RegionMode::All, true),
            -1.0);
}

}  // namespace
}  // namespace corvane
