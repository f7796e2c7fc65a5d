#include "StereoPair/LeastSquaresMatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "LsmScenes.h"
#include "PlainLsm.h"
#include "numerics/SimdVersion.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

constexpr PlainForm kComposedForm = {};
constexpr PlainForm kAdditiveForm = {.usesPlaces = true, .isComposed = false};

std::size_t CountOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
  return count;
}

bool IsSame(double a, double b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

// A random search image, template and position; three kinds of them in turn.
struct RandomScene {
  explicit RandomScene(std::uint32_t seed) : dice(seed) {
    const auto noise = [&](double, double) { return double{0} + dice.Byte(); };
    const auto faintNoise = [&](double, double) { return 100.0 + dice.Byte() / 8; };
    const std::uint32_t kind = seed % 3;
    search = kind == 0   ? MakeTexture(60, 50)
             : kind == 1 ? MakeImage(60, 50, noise)
                         : MakeImage(60, 50, faintNoise);
    const auto cols = static_cast<std::int32_t>(dice.Between(1.0, 14.0));
    const auto rows = static_cast<std::int32_t>(dice.Between(1.0, 14.0));
    place = {dice.Between(0.0, 59.0), dice.Between(0.0, 49.0)};
    if (kind == 0) {
      const double x = place.x + dice.Between(-4.0, 4.0);
      pattern = MakeTemplate(cols, rows, {.x = x, .y = place.y + dice.Between(-4.0, 4.0)});
      return;
    }
    pattern = MakeImage(cols, rows, [&](double col, double row) {
      double value = 0.0;
      const double y = place.y + row - rows / 2.0 + 0.5 + dice.Between(-1.0, 1.0);
      search.GetPixelBilinear(0, y, place.x + col - cols / 2.0 + 0.5, value);
      return value;
    });
  }

  Dice dice;
  ErdasImg search;
  ErdasImg pattern;
  Point2 place;
};

// Compares one of the forms with the plain one, bit for bit, on random scenes: all outcomes come up.
template <typename Match>
void ExpectPlainResults(const PlainForm& form, Match match) {
  std::set<std::string> words;
  for (std::uint32_t seed = 1; seed <= 400; ++seed) {
    RandomScene scene(seed);
    const PlainMatch plain = MatchPlainly(scene.search, scene.pattern, scene.place, {}, form);
    LsmParameters parameters;
    std::string log;
    Point2 position = scene.place;
    const double score = match(scene.search, scene.pattern, position, parameters, &log);
    EXPECT_TRUE(IsSame(score, plain.score)) << seed;
    EXPECT_EQ(position, plain.position) << seed;
    EXPECT_EQ(parameters, plain.parameters) << seed;
    EXPECT_NE(log.find(plain.word + "\n"), std::string::npos) << seed;
    words.insert(plain.word);
  }
  EXPECT_EQ(words, (std::set<std::string>{"Converged", "Oscillating", "Irregular", "Diverge"}));
}

TEST(LeastSquaresMatch, IsThePlainOneBitForBitWithAllOutcomes) {
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    ExpectPlainResults(kComposedForm, LeastSquaresMatch);
  }
}

TEST(LeastSquaresMatchTemplate, IsThePlainOneBitForBitWithAllOutcomes) {
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    ExpectPlainResults(kAdditiveForm, LeastSquaresMatchTemplate);
  }
}

// The first scene with that outcome.
RandomScene SceneWith(const std::string& word, const PlainForm& form) {
  for (std::uint32_t seed = 1; seed <= 1000; ++seed) {
    RandomScene scene(seed);
    if (MatchPlainly(scene.search, scene.pattern, scene.place, {}, form).word == word) return scene;
  }
  ADD_FAILURE() << "no scene with " << word;
  return RandomScene(1);
}

// The patch of a shape, found from (100, 80) in the texture.
struct Found {
  double score;
  Point2 position = {100.0, 80.0};
  LsmParameters parameters;
};
template <typename Match>
Found Find(const TemplateShape& shape, Match match, std::int32_t size = 21) {
  const ErdasImg search = MakeTexture(200, 160);
  ErdasImg pattern = MakeTemplate(size, size, shape);
  Found found;
  found.score = match(search, pattern, found.position, found.parameters, nullptr);
  return found;
}

// Grey values are whole numbers, the samples bilinear, and a match ends with a step below 0.15: a twentieth
// of a pixel is what is to be expected; one of an affine shape has more to estimate.
TEST(LeastSquaresMatch, FindsShiftsToATwentiethOfAPixel) {
  for (const Point2 shift : {Point2{0.4, -0.3}, {1.25, 0.8}, {-1.7, 1.1}, {0.05, 0.02}}) {
    const Found found = Find({.x = 100.0 + shift.x, .y = 80.0 + shift.y}, LeastSquaresMatch);
    EXPECT_NEAR(found.position.x, 100.0 + shift.x, 0.05);
    EXPECT_NEAR(found.position.y, 80.0 + shift.y, 0.05);
    EXPECT_GT(found.score, 0.999);
  }
}

TEST(LeastSquaresMatch, FindsAnAffineShape) {
  const TemplateShape shape = {.x = 100.6, .y = 79.5, .a1 = 1.03, .a2 = 0.04, .b1 = -0.03, .b2 = 0.97};
  const Found found = Find(shape, LeastSquaresMatch);
  EXPECT_NEAR(found.position.x, 100.6, 0.05);
  EXPECT_NEAR(found.position.y, 79.5, 0.05);
  EXPECT_NEAR(found.parameters.a1, 1.03, 0.01);
  EXPECT_NEAR(found.parameters.a2, 0.04, 0.01);
  EXPECT_NEAR(found.parameters.b1, -0.03, 0.01);
  EXPECT_NEAR(found.parameters.b2, 0.97, 0.01);
}

TEST(LeastSquaresMatch, FindsGainAndShiftOfGreyValues) {
  const Found found = Find({.x = 100.5, .y = 80.4, .gain = 0.7, .shift = 25.0}, LeastSquaresMatch);
  EXPECT_NEAR(found.position.x, 100.5, 0.05);
  EXPECT_NEAR(found.position.y, 80.4, 0.05);
  EXPECT_NEAR(found.parameters.r1, 0.7, 0.02);
  EXPECT_NEAR(found.parameters.r0, 25.0, 2.5);
}

TEST(LeastSquaresMatchTemplate, FindsShiftShapeAndGain) {
  const TemplateShape shape = {.x = 100.6, .y = 79.5, .a1 = 1.02, .b2 = 0.98, .gain = 0.8, .shift = 10.0};
  const Found found = Find(shape, LeastSquaresMatchTemplate);
  EXPECT_NEAR(found.position.x, 100.6, 0.05);
  EXPECT_NEAR(found.position.y, 79.5, 0.05);
  EXPECT_NEAR(found.parameters.r1, 0.8, 0.02);
}

TEST(LeastSquaresMatch, FindsATemplateInAnImageOf16Bits) {
  const ErdasImg search = MakeImage(
      200, 160, [](double x, double y) { return 100.0 * TextureAt(x, y); }, kPackUInt16);
  ErdasImg pattern = MakeTemplate(21, 21, {.x = 100.5, .y = 80.3});
  Point2 position = {100.0, 80.0};
  LsmParameters parameters = {.r1 = 0.01};
  EXPECT_GT(LeastSquaresMatch(search, pattern, position, parameters), 0.999);
  EXPECT_NEAR(position.x, 100.5, 0.05);
  EXPECT_NEAR(position.y, 80.3, 0.05);
  EXPECT_NEAR(parameters.r1, 0.01, 0.0005);
}

// Solves (At A) x = At l of the pass by Gaussian elimination in long doubles.
void SolveExactly(const std::vector<std::array<double, 9>>& rows, long double* x) {
  long double n[8][9] = {};
  for (const auto& row : rows) {
    for (int i = 0; i < 8; ++i) {
      for (int j = 0; j < 9; ++j) n[i][j] += static_cast<long double>(row[i]) * row[j];
    }
  }
  for (int k = 0; k < 8; ++k) {
    for (int i = k + 1; i < 8; ++i) {
      const long double factor = n[i][k] / n[k][k];
      for (int j = k; j < 9; ++j) n[i][j] -= factor * n[k][j];
    }
  }
  for (int i = 7; i >= 0; --i) {
    x[i] = n[i][8];
    for (int j = i + 1; j < 8; ++j) x[i] -= n[i][j] * x[j];
    x[i] /= n[i][i];
  }
}

// The design of a first pass from the parameters given; with whole offsets and shifts the samples are pixels.
std::vector<std::array<double, 9>> RowsOf(const ErdasImg& search, const ErdasImg& pattern, int x, int y,
                                          double r0, double r1) {
  const auto grey = [&](int row, int col) {
    return double{0} + search.GetBands()[0][row * search.GetSize().cx + col];
  };
  std::vector<std::array<double, 9>> rows;
  const auto [nCols, nRows] = pattern.GetSize();
  for (int row = 0; row < nRows; ++row) {
    for (int col = 0; col < nCols; ++col) {
      const int dx = col - nCols / 2;
      const int dy = row - nRows / 2;
      const double v = r1 * grey(y + dy, x + dx) + r0;
      const double gCol = r1 * (grey(y + dy, x + dx + 1) - grey(y + dy, x + dx - 1)) / 2.0;
      const double gRow = r1 * (grey(y + dy + 1, x + dx) - grey(y + dy - 1, x + dx)) / 2.0;
      const double t = pattern.GetBands()[0][row * nCols + col];
      rows.push_back({1.0, v, gCol, dx * gCol, dy * gCol, gRow, dx * gRow, dy * gRow, t - v});
    }
  }
  return rows;
}

// A match that converges at once has made exactly one update.
TEST(LeastSquaresMatch, ComposesOneUpdateWithTheOldParameters) {
  const ErdasImg search = MakeTexture(100, 100);
  ErdasImg pattern = MakeTemplate(15, 13, {.x = 50.05, .y = 39.95, .gain = 0.9, .shift = 6.0});
  Point2 position = {47.0, 42.0};
  const LsmParameters start = {.r0 = 5.0, .r1 = 0.9, .a0 = 3.0, .b0 = -2.0};
  LsmParameters p = start;
  std::string log;
  LeastSquaresMatch(search, pattern, position, p, &log);
  ASSERT_EQ(CountOf(log, "\n\n"), 1u);
  long double x[8];
  SolveExactly(RowsOf(search, pattern, 50, 40, 5.0, 0.9), x);
  EXPECT_NEAR(p.r0, static_cast<double>(x[1] * 5.0 + x[0] + 5.0), 1e-7);
  EXPECT_NEAR(p.r1, static_cast<double>(x[1] * 0.9 + 0.9), 1e-9);
  EXPECT_NEAR(p.a0, static_cast<double>(3.0 + (x[4] * -2.0 + x[3] * 3.0 + x[2])), 1e-9);
  EXPECT_NEAR(p.a1, static_cast<double>(x[3] + 1.0), 1e-10);
  EXPECT_NEAR(p.a2, static_cast<double>(x[4]), 1e-10);
  EXPECT_NEAR(p.b0, static_cast<double>(-2.0 + (x[7] * -2.0 + x[6] * 3.0 + x[5])), 1e-9);
  EXPECT_NEAR(p.b1, static_cast<double>(x[6]), 1e-10);
  EXPECT_NEAR(p.b2, static_cast<double>(x[7] + 1.0), 1e-10);
  EXPECT_EQ(position, (Point2{47.0 + p.a0, 42.0 + p.b0}));
}

TEST(LeastSquaresMatchTemplate, AddsOneUpdateInTheOrderOfTheParameters) {
  const ErdasImg search = MakeTexture(100, 100);
  ErdasImg pattern = MakeTemplate(15, 13, {.x = 50.05, .y = 39.95, .gain = 0.9, .shift = 6.0});
  Point2 position = {50.0, 40.0};
  LsmParameters p = {.r0 = 5.0, .r1 = 0.9};
  std::string log;
  LeastSquaresMatchTemplate(search, pattern, position, p, &log);
  ASSERT_EQ(CountOf(log, "\n"), 3u);
  long double x[8];
  SolveExactly(RowsOf(search, pattern, 50, 40, 5.0, 0.9), x);
  const double got[8] = {p.r0 - 5.0, p.r1 - 0.9, p.a0, p.a1 - 1.0, p.a2, p.b0, p.b1, p.b2 - 1.0};
  for (int i = 0; i < 8; ++i) EXPECT_NEAR(got[i], static_cast<double>(x[i]), 1e-7) << i;
}

TEST(LeastSquaresMatchTemplate, MultipliesGradientsByTheTransformedOffsets) {
  const ErdasImg search = MakeTexture(100, 100);
  ErdasImg pattern = MakeTemplate(15, 13, {.x = 53.05, .y = 37.95});
  Point2 position = {50.0, 40.0};
  LsmParameters p = {.a0 = 3.0, .b0 = -2.0};
  std::string log;
  LeastSquaresMatchTemplate(search, pattern, position, p, &log);
  ASSERT_EQ(CountOf(log, "\n"), 3u);
  auto rows = RowsOf(search, pattern, 53, 38, 0.0, 1.0);
  for (auto& row : rows) {
    row[3] += 3.0 * row[2];
    row[4] -= 2.0 * row[2];
    row[6] += 3.0 * row[5];
    row[7] -= 2.0 * row[5];
  }
  long double x[8];
  SolveExactly(rows, x);
  EXPECT_NEAR(p.a0, static_cast<double>(3.0 + x[2]), 1e-8);
  EXPECT_NEAR(p.b0, static_cast<double>(-2.0 + x[5]), 1e-8);
  EXPECT_NEAR(p.a1, static_cast<double>(1.0 + x[3]), 1e-9);
}

TEST(LeastSquaresMatch, MakesOnePassMoreAfterConvergenceForTheScoreAlone) {
  const ErdasImg search = MakeTexture(100, 100);
  ErdasImg pattern = MakeTemplate(11, 11, {.x = 50.04, .y = 40.03});
  Point2 position = {50.0, 40.0};
  LsmParameters p;
  std::string log;
  const double score = LeastSquaresMatch(search, pattern, position, p, &log);
  EXPECT_EQ(CountOf(log, "\n\n"), 1u);
  double x[8];
  EXPECT_EQ(score, PlainPass(search, PlainPixels(pattern), {50.0, 40.0}, p, {}, x));
  EXPECT_NE(score, PlainPass(search, PlainPixels(pattern), {50.0, 40.0}, {}, {}, x));
}

TEST(LeastSquaresMatch, TakesPass19AsAResult) {
  RandomScene scene = SceneWith("Irregular", kComposedForm);
  LsmParameters p;
  std::string log;
  Point2 position = scene.place;
  const double score = LeastSquaresMatch(scene.search, scene.pattern, position, p, &log);
  EXPECT_EQ(CountOf(log, "\n\n"), 18u);
  EXPECT_TRUE(log.ends_with("\n\nIrregular\n"));
  EXPECT_EQ(position, (Point2{scene.place.x + p.a0, scene.place.y + p.b0}));
  EXPECT_NE(score, 0.0);
}

TEST(LeastSquaresMatch, MovesAnOscillatingMatchTwiceAlongTheRowAndNeverDown) {
  RandomScene scene = SceneWith("Oscillating", kComposedForm);
  LsmParameters p;
  std::string log;
  Point2 position = scene.place;
  LeastSquaresMatch(scene.search, scene.pattern, position, p, &log);
  EXPECT_TRUE(log.ends_with("\n\nOscillating\n"));
  EXPECT_EQ(position.y, scene.place.y);
  EXPECT_NE(position.x, scene.place.x + p.a0);
}

// Three passes, the third of which comes back to the first one. There is no pass 4 yet, and A[0] is 0:
// |A[2] - A[0]| = 0.019, |A[3] - A[1]| = 0.115, |A[2] - A[3]| = 0.394. The column moves by A[3], -0.413,
// which is smaller than the centre's 2, and by A[0].
TEST(LeastSquaresMatch, CanOscillateWhileTheRingIsNotFilled) {
  Dice dice(1036);
  const ErdasImg search = MakeImage(30, 30, [&](double, double) { return double{0} + dice.Byte(); });
  ErdasImg pattern = MakeImage(5, 5, [&](double col, double row) {
    double value = 0.0;
    search.GetPixelBilinear(0, 12.6 + row, 12.7 + col, value);
    return value;
  });
  Point2 position = {15.0, 15.0};
  LsmParameters p;
  std::string log;
  LeastSquaresMatch(search, pattern, position, p, &log);
  EXPECT_EQ(CountOf(log, "\n\n"), 3u) << log;
  EXPECT_TRUE(log.ends_with("\n\nOscillating\n"));
  EXPECT_NEAR(p.a0, -0.4134, 1e-4);
  EXPECT_EQ(position, (Point2{15.0 + p.a0, 15.0}));
}

// Whether a step is small is asked first: a0 may be beyond 10 then.
TEST(LeastSquaresMatch, ConvergesBeyondTheLimitOfShifts) {
  const ErdasImg search = MakeTexture(100, 100);
  ErdasImg pattern = MakeTemplate(15, 13, {.x = 50.02, .y = 40.0});
  Point2 position = {38.0, 40.0};
  LsmParameters p = {.a0 = 12.0};
  std::string log;
  EXPECT_GT(LeastSquaresMatch(search, pattern, position, p, &log), 0.99);
  EXPECT_EQ(CountOf(log, "\n\n"), 1u) << log;
  EXPECT_TRUE(log.ends_with("\n\nConverged\n"));
  EXPECT_GT(p.a0, 10.0);
  EXPECT_EQ(position, (Point2{38.0 + p.a0, 40.0 + p.b0}));
  EXPECT_NEAR(position.x, 50.02, 0.15);
}

TEST(LeastSquaresMatch, LeavesThePositionOfAMatchThatDiverges) {
  RandomScene scene = SceneWith("Diverge", kComposedForm);
  LsmParameters p;
  std::string log;
  Point2 position = scene.place;
  EXPECT_EQ(LeastSquaresMatch(scene.search, scene.pattern, position, p, &log), 0.0);
  EXPECT_TRUE(log.ends_with("\n\nDiverge\n"));
  EXPECT_EQ(position, scene.place);
}

// The template's sums.

TEST(LeastSquaresMatch, MakesTheTemplatesSumsOnce) {
  const ErdasImg search = MakeTexture(60, 60);
  ErdasImg pattern = MakeTemplate(5, 4, {.x = 30.1, .y = 30.0});
  EXPECT_EQ(pattern.m_pixelSumSq, -1.0);
  double sum = 0.0, sumSq = 0.0;
  for (const std::uint8_t byte : pattern.GetBands().GetBand(0)) {
    sum += byte;
    sumSq += byte * byte;
  }
  Point2 position = {30.0, 30.0};
  LsmParameters p;
  LeastSquaresMatch(search, pattern, position, p);
  EXPECT_EQ(pattern.m_pixelSum, sum);
  EXPECT_EQ(pattern.m_pixelSumSq, sumSq);
}

TEST(LeastSquaresMatch, BelievesSumsThatAreThere) {
  const ErdasImg search = MakeTexture(60, 60);
  ErdasImg pattern = MakeTemplate(5, 4, {.x = 30.1, .y = 30.0});
  pattern.m_pixelSum = 0.0;
  pattern.m_pixelSumSq = 0.0;  // a variance of 0
  Point2 position = {30.0, 30.0};
  LsmParameters p;
  EXPECT_EQ(LeastSquaresMatch(search, pattern, position, p), 0.0);
}

// Logs.

TEST(LeastSquaresMatch, LogsScoreAndShiftsCutToThreeDecimals) {
  const ErdasImg search = MakeTexture(100, 100);
  ErdasImg pattern = MakeTemplate(15, 13, {.x = 50.05, .y = 39.95});
  Point2 position = {50.0, 40.0};
  LsmParameters p;
  std::string log = "before\n";
  LeastSquaresMatch(search, pattern, position, p, &log);
  double x[8];
  const double score = PlainPass(search, PlainPixels(pattern), {50.0, 40.0}, {}, {}, x);
  char line[100];
  std::snprintf(line, sizeof line, "before\n%f %f %f\n\nConverged\n", std::trunc(score * 1000.0) / 1000.0,
                std::trunc(p.a0 * 1000.0) / 1000.0, std::trunc(p.b0 * 1000.0) / 1000.0);
  EXPECT_EQ(log, line);
}

TEST(LeastSquaresMatch, TellsTheDebugStreamNothing) {
  TestFrontEnd frontEnd;
  Find({.x = 100.3, .y = 80.2}, LeastSquaresMatch);
  EXPECT_TRUE(frontEnd.events.empty());
}

TEST(LeastSquaresMatchTemplate, TellsTheDebugStreamWhatItWouldLog) {
  const ErdasImg search = MakeTexture(100, 100);
  ErdasImg pattern = MakeTemplate(15, 13, {.x = 50.0, .y = 40.0});
  TestFrontEnd frontEnd;
  for (std::string* const log : {static_cast<std::string*>(nullptr), new std::string()}) {
    Point2 position = {50.0, 40.0};
    LsmParameters p;
    LeastSquaresMatchTemplate(search, pattern, position, p, log);
    const std::string text = "1 0 0\nConverged\n50 40\n";
    EXPECT_EQ(log ? *log : text, text);
    delete log;
  }
  EXPECT_EQ(frontEnd.events, std::vector<std::string>{"trace: 1 0 0\nConverged\n50 40\n"});
}

}  // namespace
}  // namespace corvane
