#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "LsmScenes.h"
#include "PlainLsm.h"
#include "StereoPair/LeastSquaresMatch.h"

namespace corvane {
namespace {

bool IsSame(double a, double b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

// Flat areas.

double MatchFlat(double searchGrey, double patternGrey, std::int32_t size, LsmParameters& p, Point2& position,
                 std::string* log = nullptr) {
  const ErdasImg search = MakeImage(60, 60, [&](double, double) { return searchGrey; });
  ErdasImg pattern = MakeImage(size, size, [&](double, double) { return patternGrey; });
  return LeastSquaresMatch(search, pattern, position, p, log);
}

// The normal matrix has no third pivot, so the unknowns are At l: n d, n d g and zeros, g being the search
// area's grey value and d the difference.
TEST(LeastSquaresMatch, OfAFlatTemplateOnAFlatAreaIsPerfect) {
  Point2 position = {30.0, 30.0};
  LsmParameters p;
  EXPECT_EQ(MatchFlat(50.0, 60.0, 5, p, position), 1.0);
  EXPECT_EQ(p, (LsmParameters{.r0 = 250.0, .r1 = 12501.0}));
  EXPECT_EQ(position, (Point2{30.0, 30.0}));
}

TEST(LeastSquaresMatch, OfFlatAreasIsPerfectWhateverTheirSumsRoundTo) {
  for (int grey = 1; grey < 256; grey += 7) {
    Point2 position = {30.25, 30.75};
    LsmParameters p = {.r0 = 0.1, .r1 = 1.1};
    EXPECT_EQ(MatchFlat(grey, 101.0, 21, p, position), 1.0) << grey;
  }
}

TEST(LeastSquaresMatch, OfATemplateWithTextureOnAFlatAreaIsWorthless) {
  const ErdasImg search = MakeImage(60, 60, [](double, double) { return 93.0; });
  ErdasImg pattern = MakeTemplate(21, 21, {.x = 50.0, .y = 50.0});
  Point2 position = {30.3, 30.7};
  LsmParameters p;
  EXPECT_EQ(LeastSquaresMatch(search, pattern, position, p), 0.0);
}

// Without change down the columns three columns of the design are 0, and the unknowns are At l.
TEST(LeastSquaresMatch, OfAnImageWithoutRowGradientsDiverges) {
  const ErdasImg search = MakeImage(60, 60, [](double x, double) { return 200.0 * Wave(x / 20.0); });
  ErdasImg pattern = MakeImage(9, 9, [](double x, double) { return 200.0 * Wave((x + 25.0) / 20.0); });
  Point2 position = {30.0, 30.0};
  LsmParameters p;
  std::string log;
  EXPECT_EQ(LeastSquaresMatch(search, pattern, position, p, &log), 0.0);
  EXPECT_TRUE(log.ends_with("\n\nDiverge\n"));
  EXPECT_EQ(position, (Point2{30.0, 30.0}));
}

// Where a match may begin.

TEST(LeastSquaresMatch, BeginsOnlyWithinTheImage) {
  const ErdasImg search = MakeTexture(40, 30);
  ErdasImg pattern = MakeTemplate(5, 5, {.x = 20.0, .y = 15.0});
  const double nan = std::nan("");
  const double infinity = std::numeric_limits<double>::infinity();
  const Point2 refused[] = {{-0.001, 15.0}, {40.0, 15.0}, {20.0, -0.001}, {20.0, 30.0},  {39.0, 15.0},
                            {20.0, 29.0},   {nan, 15.0},  {20.0, nan},    {infinity, 1}, {1e300, -1e300}};
  for (const Point2& place : refused) {
    for (const auto match : {LeastSquaresMatch, LeastSquaresMatchTemplate}) {
      Point2 position = place;
      LsmParameters p = {.r0 = 7.0};
      std::string log;
      EXPECT_EQ(match(search, pattern, position, p, &log), -1.0) << place.x << ' ' << place.y;
      EXPECT_TRUE(position == place || std::isnan(place.x + place.y));
      EXPECT_EQ(p, LsmParameters{.r0 = 7.0});
      EXPECT_EQ(log, "");
    }
  }
  for (const Point2& place : {Point2{0.0, 0.0}, {38.99, 28.99}, {39.5, 15.0}}) {
    Point2 position = place;
    LsmParameters p;
    EXPECT_NE(LeastSquaresMatch(search, pattern, position, p), -1.0) << place.x << ' ' << place.y;
  }
}

TEST(LeastSquaresMatch, FailsWithoutPixels) {
  const ErdasImg search = MakeTexture(40, 30);
  ErdasImg pattern = MakeTemplate(5, 5, {.x = 20.0, .y = 15.0});
  ErdasImg empty;
  Point2 position = {20.0, 15.0};
  LsmParameters p;
  EXPECT_EQ(LeastSquaresMatch(empty, pattern, position, p), -1.0);
  EXPECT_EQ(LeastSquaresMatch(search, empty, position, p), -1.0);
  pattern.SetSize(INT32_MAX, INT32_MAX);
  EXPECT_EQ(LeastSquaresMatch(search, pattern, position, p), -1.0);
}

// A patch that has left the image adds nothing to the equations, and fits.
TEST(LeastSquaresMatch, OfAPatchOutsideIsPerfect) {
  const ErdasImg search = MakeTexture(40, 30);
  ErdasImg pattern = MakeTemplate(3, 3, {.x = 20.0, .y = 15.0});
  Point2 position = {35.0, 15.0};
  LsmParameters p = {.a0 = 9.0};
  EXPECT_EQ(LeastSquaresMatch(search, pattern, position, p), 1.0);
  EXPECT_EQ(p, LsmParameters{.a0 = 9.0});
  EXPECT_EQ(position, (Point2{44.0, 15.0}));
}

TEST(LeastSquaresMatch, TakesTemplatesOfAnySize) {
  const ErdasImg search = MakeTexture(20, 20);
  for (const auto& [cols, rows] : {std::pair{1, 1}, {2, 3}, {1, 9}, {8, 1}, {50, 60}}) {
    ErdasImg pattern = MakeTemplate(cols, rows, {.x = 10.2, .y = 9.9});
    const Point2 place = {10.0, 10.0};
    const PlainMatch plain = MatchPlainly(search, pattern, place, {}, {});
    Point2 position = place;
    LsmParameters p;
    EXPECT_TRUE(IsSame(LeastSquaresMatch(search, pattern, position, p), plain.score)) << cols << ' ' << rows;
    EXPECT_EQ(p, plain.parameters);
    EXPECT_EQ(position, plain.position);
  }
}

TEST(LeastSquaresMatch, DivergesWithNumbersThatAreNotFinite) {
  ErdasImg search = MakeImage(40, 40, TextureAt, kPackFloat);
  search.SetPixel(0, 20, 20, std::nan(""));
  ErdasImg pattern = MakeTemplate(7, 7, {.x = 20.0, .y = 20.0});
  Point2 position = {20.0, 20.0};
  LsmParameters p;
  EXPECT_EQ(LeastSquaresMatch(search, pattern, position, p), 0.0);
  EXPECT_EQ(position, (Point2{20.0, 20.0}));
}

// The coefficients.

TEST(CorrelationOfPatch, IsTheCoefficientByHand) {
  // Deviations -1, 0, 1 and -2, 1, 1: 3 / sqrt(2 * 6).
  const std::uint8_t pattern[] = {1, 2, 3};
  const double samples[] = {3.0, 6.0, 6.0};
  EXPECT_NEAR(CorrelationOfPatch(pattern, samples, 6.0, 14.0), 3.0 / std::sqrt(12.0), 1e-15);
  const double doubles[] = {1.0, 2.0, 3.0};
  EXPECT_NEAR(CorrelationOfPatchDoubles(doubles, samples, 6.0, 14.0), 3.0 / std::sqrt(12.0), 1e-15);
}

TEST(CorrelationOfPatch, OfFlatWindows) {
  const std::uint8_t flat[] = {7, 7, 7};
  const std::uint8_t pattern[] = {1, 2, 3};
  const double flatSamples[] = {0.1, 0.1, 0.1};  // whose sums do not cancel
  const double nearlyFlat[] = {0.1, std::nextafter(0.1, 1.0), std::nextafter(0.1, 0.0)};
  const double samples[] = {3.0, 6.0, 6.0};
  EXPECT_EQ(CorrelationOfPatch(flat, flatSamples, 21.0, 147.0), 1.0);
  EXPECT_EQ(CorrelationOfPatch(flat, nearlyFlat, 21.0, 147.0), 1.0);
  EXPECT_EQ(CorrelationOfPatch(pattern, nearlyFlat, 6.0, 14.0), 0.0);
  EXPECT_EQ(CorrelationOfPatch(flat, samples, 21.0, 147.0), 0.0);
  EXPECT_EQ(CorrelationOfPatch(pattern, flatSamples, 6.0, 14.0), 0.0);
  EXPECT_EQ(CorrelationOfPatch({}, {}, 0.0, 0.0), 0.0);
}

}  // namespace
}  // namespace corvane
