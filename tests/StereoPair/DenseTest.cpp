// "Area Correlation".

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <map>

#include "StereoPair/PlainDense.h"
#include "numerics/SimdVersion.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr int kCols = 40;
constexpr int kRows = 24;

// The search along the right row above, from `start` on; the column becomes that of the best place.
double PlainSearchAbove(const StereoPair& pair, int row, int col, std::int64_t start, std::int64_t half,
                        std::int64_t& best) {
  const std::int64_t halfW = pair.targetWidth / 2;
  const std::int64_t halfH = pair.targetHeight / 2;
  const auto [rightCols, rightRows] = pair.rightImage->GetSize();
  const std::int64_t first = std::max(start - half, halfW);
  const std::int64_t last = std::min<std::int64_t>(start + half, rightCols - 1 - halfW);
  best = start;
  // The only row of the rectangle, which is cut to the rows of whole windows.
  const std::int64_t rightRow = row - 1;
  if (rightRow < halfH || rightRow > rightRows - 1 - halfH) return 0.0;
  double bestScore = 0.0;
  // The rectangle is one row high and its bottom does not belong to it: the start is never compared first,
  // and in the loop it is left out.
  for (std::int64_t x = first; x <= last; ++x) {
    if (x == start) continue;
    const double score = PlainCompare(pair, row - halfH, col - halfW, rightRow - halfH, x - halfW);
    if (score > bestScore) {
      bestScore = score;
      best = x;
    }
  }
  return bestScore;
}

struct PlainMaps {
  std::vector<std::int16_t> disparities;
  std::vector<float> scores;
};

PlainMaps PlainDense(const StereoPair& pair, const std::function<double(int, int)>& startOf,
                     std::int64_t half, int step) {
  const auto [cols, rows] = pair.leftImage->GetSize();
  PlainMaps maps;
  maps.disparities.resize(static_cast<std::size_t>(cols) * static_cast<std::size_t>(rows));
  maps.scores.resize(maps.disparities.size());
  for (int row = pair.targetHeight / 2 + 1; row < rows - pair.targetHeight / 2 - 1; row += step) {
    for (int col = pair.targetWidth / 2 + 1; col < cols - pair.targetWidth / 2 - 1; col += step) {
      std::int64_t best = 0;
      const auto shift = static_cast<std::int64_t>(startOf(row, col) / pair.disparityScale);
      const double score = PlainSearchAbove(pair, row, col, col - shift, half, best);
      const auto i = static_cast<std::size_t>(row * cols + col);
      maps.disparities[i] = score < pair.matchThreshold ? -128 : static_cast<std::int16_t>(col - best);
      maps.scores[i] = static_cast<float>(score);
    }
  }
  return maps;
}

template <typename Pixel>
void ExpectBytes(const ErdasImg& image, const std::vector<Pixel>& expected) {
  const auto bytes = image.GetBands().GetBand(0);
  ASSERT_EQ(bytes.size(), expected.size() * sizeof(Pixel));
  EXPECT_EQ(std::memcmp(bytes.data(), expected.data(), bytes.size()), 0);
}

void ExpectMaps(const StereoPair& pair, const PlainMaps& expected) {
  ASSERT_TRUE(pair.disparityMap && pair.measureMap);
  ExpectBytes(*pair.disparityMap, expected.disparities);
  ExpectBytes(*pair.measureMap, expected.scores);
}

// How often each disparity stands in the map.
std::map<double, int> CountDisparities(const StereoPair& pair) {
  std::map<double, int> counts;
  const auto [cols, rows] = pair.disparityMap->GetSize();
  for (int row = 0; row < rows; ++row) {
    for (int col = 0; col < cols; ++col) ++counts[PixelAt(*pair.disparityMap, row, col)];
  }
  return counts;
}

// A pair whose right image is the left one moved by -4 columns and one row up, with some noise of its own.
struct TexturedPair : VerticalPair {
  TexturedPair() : VerticalPair(kCols, kRows, LeftPixels(), RightPixels()) {
    pair.targetWidth = 5;
    pair.targetHeight = 3;
    pair.maxDisparity = 3;
    pair.columnOffset = -3;
    pair.matchThreshold = 0.75;
  }
  static std::vector<std::uint8_t> LeftPixels() { return Noise(kCols * kRows, 1); }
  static std::vector<std::uint8_t> RightPixels() {
    auto pixels = Moved(LeftPixels(), kCols, -1, -4);
    const auto noise = Noise(pixels.size(), 2);
    for (std::size_t i = 0; i < pixels.size(); i += 3) pixels[i] = noise[i];
    return pixels;
  }
  double OffsetStart(int, int) const { return -static_cast<double>(pair.columnOffset); }
};

class DenseCommand : public testing::Test {
 protected:
  DenseCommand() {
    TexturedPair made;
    StorePhoto(made.left, "left");
    StorePhoto(made.right, "right");
  }

  TempFolder folder_;
  TestFrontEnd frontEnd_;
  StereoPair pair_;
};

TEST(CorrelateDense, MapsAreThoseOfThePlainForm) {
  TexturedPair made;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  const auto expected = PlainDense(
      made.pair, [&](int r, int c) { return made.OffsetStart(r, c); }, 3, 1);
  ExpectMaps(made.pair, expected);
  EXPECT_GT(CountDisparities(made.pair)[4.0], 100) << "the test has matches";
  EXPECT_GT(CountDisparities(made.pair)[-128.0], 10) << "and places without";
}

TEST(CorrelateDense, MapsOfEvenWindowsAreThoseOfThePlainForm) {
  TexturedPair made;
  made.pair.targetWidth = 6;
  made.pair.targetHeight = 4;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  ExpectMaps(made.pair, PlainDense(
                            made.pair, [&](int r, int c) { return made.OffsetStart(r, c); }, 3, 1));
}

TEST(CorrelateDense, MapsOfWideWindowsAreThoseOfThePlainForm) {
  VerticalPair made(90, 60, Noise(90 * 60, 4), Moved(Noise(90 * 60, 4), 90, -1, -20));
  made.pair.maxDisparity = 16;
  made.pair.columnOffset = -10;
  ASSERT_EQ(made.pair.CorrelateDense(), 1) << "19 x 19";
  ExpectMaps(made.pair, PlainDense(
                            made.pair, [](int, int) { return 10.0; }, 16, 1));
  EXPECT_GT(CountDisparities(made.pair)[20.0], 1000);
}

TEST(CorrelateDense, MapsOfLargeWindowsAreThoseOfThePlainForm) {
  // Nearly white: the largest sums that there are, for the largest windows that are searched in rows, and
  // beyond.
  std::vector<std::uint8_t> pixels(270 * 268);
  const auto noise = Noise(pixels.size(), 3);
  for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<std::uint8_t>(255 - noise[i] / 128);
  for (const std::int32_t width : {256, 257}) {
    VerticalPair made(270, 268, pixels, Moved(pixels, 270, -1, -2));
    made.pair.targetWidth = width;
    made.pair.targetHeight = 256;
    made.pair.maxDisparity = 3;
    made.pair.columnOffset = -1;
    made.pair.groundSpacingY = 5.0;
    ASSERT_EQ(made.pair.CorrelateDense(), 1);
    const DensePlaces rows(268, 256, 5.0);
    const DensePlaces cols(270, width, 1.0);
    for (std::int64_t row = rows.first; row < rows.end; row += rows.step) {
      for (std::int64_t col = cols.first; col < cols.end; ++col) {
        std::int64_t best = 0;
        const int place[2] = {static_cast<int>(row), static_cast<int>(col)};
        const double score = PlainSearchAbove(made.pair, place[0], place[1], col - 1, 3, best);
        EXPECT_EQ(PixelAt(*made.pair.measureMap, place[0], place[1]), static_cast<float>(score));
      }
    }
  }
}

TEST(CorrelateDense, SearchInRowsIsTheSearchPlaceByPlace) {
  TestFrontEnd frontEnd;
  for (unsigned seed = 0; seed < 20; ++seed) {
    // Few grey levels, so that scores are equal now and then, and windows flat.
    auto left = Noise(30 * 14, seed);
    auto right = Noise(30 * 14, seed + 50);
    for (auto* image : {&left, &right}) {
      for (auto& pixel : *image) pixel = static_cast<std::uint8_t>(pixel < 200 ? 7 : 8);
    }
    VerticalPair made(30, 14, left, right);
    made.pair.targetWidth = 3;
    made.pair.targetHeight = 3;
    made.pair.maxDisparity = 9;
    made.pair.columnOffset = static_cast<int>(seed) - 10;
    made.pair.matchThreshold = 0.5;
    ASSERT_EQ(made.pair.CorrelateDense(), 1);
    const PlainMaps expected = PlainDense(
        made.pair, [&](int, int) { return -static_cast<double>(made.pair.columnOffset); }, 9, 1);
    ExpectMaps(made.pair, expected);
    made.pair.useDiffCheck = true;
    made.pair.maxDiffStdev = kInfinity;
    ASSERT_EQ(made.pair.CorrelateDense(), 1);
    ExpectMaps(made.pair, expected);
  }
}

TEST(CorrelateDense, ComparesWithTheRowAbove) {
  VerticalPair made(kCols, kRows, TexturedPair::LeftPixels(),
                    Moved(TexturedPair::LeftPixels(), kCols, -1, -4));
  made.pair.targetWidth = 5;
  made.pair.targetHeight = 3;
  made.pair.columnOffset = -2;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  EXPECT_EQ(PixelAt(*made.pair.disparityMap, 10, 20), 4.0);
  EXPECT_EQ(PixelAt(*made.pair.measureMap, 10, 20), 1.0);
}

TEST(CorrelateDense, MapsHaveTheHeaderOfTheLeftImageAndOneBand) {
  TexturedPair made;
  ErdasHeader& header = *made.left.image.GetHeader();
  header.bandCount = 3;
  header.xStart = 17;
  header.xMap = 2.5f;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  ErdasHeader expected = header;
  expected.bandCount = 1;
  expected.packType = 3;
  EXPECT_EQ(std::memcmp(made.pair.disparityMap->GetHeader(), &expected, sizeof expected), 0);
  EXPECT_EQ(made.pair.disparityMap->GetBytesPerPixel(), 2);
  expected.packType = 6;
  EXPECT_EQ(std::memcmp(made.pair.measureMap->GetHeader(), &expected, sizeof expected), 0);
  EXPECT_EQ(made.pair.measureMap->GetBytesPerPixel(), 4);
}

TEST(CorrelateDense, EndsAreExcludedAndPixelsBeyondStayZero) {
  VerticalPair made(12, 9);  // all flat: each place scores 1.0 but where there is nothing to compare
  made.pair.targetWidth = 5;
  made.pair.targetHeight = 3;
  made.pair.columnOffset = 0;
  DenseCounts counts;
  ASSERT_EQ(made.pair.CorrelateDense(&counts), 1);
  for (int row = 0; row < 9; ++row) {
    for (int col = 0; col < 12; ++col) {
      const bool isVisited = row >= 2 && row < 7 && col >= 3 && col < 9;
      EXPECT_EQ(PixelAt(*made.pair.measureMap, row, col), isVisited ? 1.0 : 0.0) << row << ' ' << col;
    }
  }
  EXPECT_EQ(PixelAt(*made.pair.disparityMap, 1, 3), 0.0);
  EXPECT_EQ(PixelAt(*made.pair.disparityMap, 7, 8), 0.0);
  EXPECT_EQ(PixelAt(*made.pair.disparityMap, 6, 9), 0.0);
  EXPECT_EQ(counts.nPlaces, 5 * 6);
  EXPECT_EQ(counts.nMatched, 5 * 6);
}

TEST(CorrelateDense, SpacingIsCutToWholePixels) {
  TexturedPair made;
  made.pair.groundSpacingX = 2.9;
  made.pair.groundSpacingY = 2.9;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  ExpectMaps(made.pair, PlainDense(
                            made.pair, [&](int r, int c) { return made.OffsetStart(r, c); }, 3, 2));
}

TEST(CorrelateDense, SpacingBelowOnePixelCountsAsOne) {
  for (const double spacing : {1e-300, 0.4, 0.999}) {
    TexturedPair made;
    made.pair.groundSpacingX = spacing;
    made.pair.groundSpacingY = spacing;
    ASSERT_EQ(made.pair.CorrelateDense(), 1);
    ExpectMaps(made.pair, PlainDense(
                              made.pair, [&](int r, int c) { return made.OffsetStart(r, c); }, 3, 1));
  }
}

TEST(CorrelateDense, NothingMatchesAtASpacingThatIsNotAboveZero) {
  for (const double spacing : {0.0, -0.0, -1.0, -0.5, kNaN, -kInfinity}) {
    TexturedPair made;
    for (double* const own : {&made.pair.groundSpacingX, &made.pair.groundSpacingY}) {
      made.pair.groundSpacingX = 1.0;
      made.pair.groundSpacingY = 1.0;
      *own = spacing;
      DenseCounts counts;
      ASSERT_EQ(made.pair.CorrelateDense(&counts), 1);
      EXPECT_EQ(counts.nPlaces, 0);
      EXPECT_EQ(CountDisparities(made.pair).size(), 1u) << "all are 0";
    }
  }
}

TEST(CorrelateDense, HugeSpacingVisitsTheFirstPlace) {
  TexturedPair made;
  made.pair.groundSpacingX = kInfinity;
  made.pair.groundSpacingY = 1e300;
  DenseCounts counts;
  ASSERT_EQ(made.pair.CorrelateDense(&counts), 1);
  EXPECT_EQ(counts.nPlaces, 1);
}

TEST(CorrelateDense, ScoreEqualToTheThresholdIsKept) {
  TexturedPair made;
  made.pair.matchThreshold = 0.0;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  const int row = 9;
  const int col = 21;
  std::int64_t best = 0;
  const double score = PlainSearchAbove(made.pair, row, col, col - 3, 3, best);
  ASSERT_GT(score, 0.0);
  made.pair.matchThreshold = score;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  EXPECT_EQ(PixelAt(*made.pair.disparityMap, row, col), static_cast<double>(col - best));
  made.pair.matchThreshold = std::nextafter(score, 2.0);
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  EXPECT_EQ(PixelAt(*made.pair.disparityMap, row, col), -128.0);
  EXPECT_EQ(PixelAt(*made.pair.measureMap, row, col), static_cast<float>(score)) << "the score stays";
}

TEST(CorrelateDense, NoScoreIsBelowAThresholdThatIsNoNumber) {
  TexturedPair made;
  made.pair.matchThreshold = kNaN;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  EXPECT_EQ(CountDisparities(made.pair).count(-128.0), 0u);
}

TEST(CorrelateDense, DemReplacesOffsetAndRange) {
  TexturedPair made;
  std::vector<double> truth(kCols * kRows);
  for (std::size_t i = 0; i < truth.size(); ++i) truth[i] = 2.0 + static_cast<double>(i % 7) * 0.7;
  made.pair.dem = std::make_unique<ErdasImg>(FloatImage(kCols, kRows, truth));
  made.pair.demAccuracy = 2.9;
  const auto start = [&](int row, int col) { return PixelAt(*made.pair.dem, row, col); };
  for (const int scale : {1, 2}) {
    made.pair.disparityScale = scale;
    ASSERT_EQ(made.pair.CorrelateDense(), 1);
    ExpectMaps(made.pair, PlainDense(made.pair, start, 2, 1));
  }
}

TEST(CorrelateDense, WhereTheDemHasNoNumberTheOffsetCounts) {
  TexturedPair made;
  std::vector<double> truth(30 * 11, 4.0);  // smaller than the images
  truth[5 * 30 + 7] = kNaN;
  truth[5 * 30 + 8] = kInfinity;
  truth[5 * 30 + 9] = -kInfinity;
  made.pair.dem = std::make_unique<ErdasImg>(FloatImage(30, 11, truth));
  const auto start = [&](int row, int col) {
    const bool hasNumber = row < 11 && col < 30 && !(row == 5 && col >= 7 && col <= 9);
    return hasNumber ? 4.0 : 3.0;
  };
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  ExpectMaps(made.pair, PlainDense(made.pair, start, 2, 1));
}

TEST(CorrelateDense, HugeNumbersEndSoon) {
  TexturedPair made;
  made.pair.maxDisparity = INT32_MAX;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  ExpectMaps(made.pair, PlainDense(
                            made.pair, [&](int r, int c) { return made.OffsetStart(r, c); }, INT32_MAX, 1));

  for (const std::int32_t offset : {INT32_MIN, INT32_MAX}) {
    made.pair.columnOffset = offset;
    made.pair.maxDisparity = 10;
    ASSERT_EQ(made.pair.CorrelateDense(), 1);
    EXPECT_EQ(PixelAt(*made.pair.measureMap, 5, 10), 0.0) << "nothing to compare with";
    EXPECT_EQ(PixelAt(*made.pair.disparityMap, 5, 10), -128.0);
  }

  made.pair.columnOffset = 0;
  for (const double value : {1e300, -1e300, 3e9}) {
    made.pair.dem = std::make_unique<ErdasImg>(FloatImage(kCols, kRows, {}));
    made.pair.demAccuracy = value;
    made.pair.dem->Fill(value / 1e265);
    EXPECT_EQ(made.pair.CorrelateDense(), 1);
  }
  for (const double accuracy : {kNaN, kInfinity, -kInfinity}) {
    made.pair.demAccuracy = accuracy;
    EXPECT_EQ(made.pair.CorrelateDense(), 1);
  }
  made.pair.disparityScale = 0;
  EXPECT_EQ(made.pair.CorrelateDense(), 1);
}

TEST(CorrelateDense, NegativeRangeFindsNothing) {
  TexturedPair made;
  made.pair.maxDisparity = -1;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  EXPECT_EQ(PixelAt(*made.pair.measureMap, 5, 10), 0.0);
  EXPECT_EQ(PixelAt(*made.pair.disparityMap, 5, 10), -128.0);
}

TEST(CorrelateDense, WindowLargerThanTheImageVisitsNothing) {
  for (const std::int32_t size : {kRows - 1, kCols + 1, 10000, INT32_MAX, 0, -3}) {
    TexturedPair made;
    made.pair.targetWidth = size;
    made.pair.targetHeight = size;
    DenseCounts counts;
    ASSERT_EQ(made.pair.CorrelateDense(&counts), 1);
    EXPECT_EQ(counts.nPlaces, 0) << size;
  }
}

TEST(CorrelateDense, ImagesMayHaveDifferentSizes) {
  TexturedPair made;
  SetBytes(made.right.image, 23, 15, Noise(23 * 15, 5));
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  ExpectMaps(made.pair, PlainDense(
                            made.pair, [&](int r, int c) { return made.OffsetStart(r, c); }, 3, 1));
  SetBytes(made.right.image, 1, 1, {7});
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  ExpectMaps(made.pair, PlainDense(
                            made.pair, [&](int r, int c) { return made.OffsetStart(r, c); }, 3, 1));
}

TEST(CorrelateDense, WidePixelsCountAsBytes) {
  TexturedPair made;
  for (AerialPhoto* photo : {&made.left, &made.right}) {
    ErdasHeader header = *photo->image.GetHeader();
    header.packType = kPackUInt16;
    photo->image.Create(header, false);
    const auto bytes = photo->image.GetBands().GetBand(0);
    const auto noise = Noise(bytes.size(), 6);
    std::copy(noise.begin(), noise.end(), bytes.begin());
  }
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  ExpectMaps(made.pair, PlainDense(
                            made.pair, [&](int r, int c) { return made.OffsetStart(r, c); }, 3, 1));
}

TEST(CorrelateDense, HeaderMayPromiseMoreThanThereIs) {
  TexturedPair made;
  made.left.image.SetSize(kCols, kRows + 5);
  made.right.image.SetSize(kCols + 9, kRows);
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  ExpectMaps(made.pair, PlainDense(
                            made.pair, [&](int r, int c) { return made.OffsetStart(r, c); }, 3, 1));
}

TEST(CorrelateDense, RejectedWindowsScoreLessThanNothing) {
  TestFrontEnd frontEnd;
  TexturedPair made;
  made.pair.useDiffCheck = true;
  made.pair.maxDiffStdev = -1.0;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  EXPECT_EQ(CountDisparities(made.pair).size(), 2u) << "0 and -128";
  EXPECT_THAT(frontEnd.EventsWith("trace: CCC: "), testing::SizeIs(testing::Gt(100u)));
}

TEST(CorrelateDense, DumpsTheWindowsOfTheTestPlace) {
  const TempFolder folder;
  VerticalPair made(300, 900);
  made.pair.targetWidth = 5;
  made.pair.targetHeight = 5;
  made.pair.groundSpacingX = 272 - 3;
  made.pair.groundSpacingY = 866 - 3;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  EXPECT_TRUE(std::filesystem::exists("leftSubImg.txt"));
  EXPECT_TRUE(std::filesystem::exists("rightSubImg.txt"));
}

TEST(CorrelateDense, TellsProgressOnceARow) {
  TestFrontEnd frontEnd;
  VerticalPair made(12, 9);
  made.pair.targetWidth = 5;
  made.pair.targetHeight = 3;
  made.pair.progressWindow = &frontEnd;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  EXPECT_THAT(frontEnd.events,
              ElementsAre("status 0: Done 0% ...", "status 0: Done 20% ...", "status 0: Done 40% ...",
                          "status 0: Done 60% ...", "status 0: Done 80% ..."));
}

TEST_F(DenseCommand, AsksMatchesAndWrites) {
  frontEnd_.forms.push_back(
      FilledForm([](Form& form) { form.Find("maxDisparity")->value = std::int64_t{3}; }));
  frontEnd_.values = {-3.9};
  pair_.matchThreshold = 0.1;
  pair_.maxDisparity = 10;
  ASSERT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kDone);

  ASSERT_EQ(frontEnd_.shownForms.size(), 1u);
  EXPECT_EQ(frontEnd_.shownForms[0].GetReal("matchThreshold"), 0.75);
  EXPECT_EQ(frontEnd_.shownForms[0].GetInteger("maxDisparity"), 55);
  EXPECT_THAT(frontEnd_.EventsWith("value"), ElementsAre("value: Please input a value. -10"));
  EXPECT_EQ(pair_.columnOffset, -3);
  EXPECT_EQ(frontEnd_.waitDepth, 0);
  EXPECT_EQ(pair_.leftPhoto, nullptr);

  TexturedPair made;
  const auto expected = PlainDense(
      made.pair, [&](int r, int c) { return made.OffsetStart(r, c); }, 3, 1);
  ExpectMaps(pair_, expected);
  ErdasImg disparities, scores;
  ASSERT_EQ(disparities.Read("left_DispMap.lan"), 1);
  ExpectBytes(disparities, expected.disparities);
  ASSERT_EQ(scores.Read("left_MeasureMap.lan"), 1);
  ExpectBytes(scores, expected.scores);
  int nMatched = 0;
  for (int row = 2; row < kRows - 2; ++row) {
    for (int col = 3; col < kCols - 3; ++col) nMatched += PixelAt(disparities, row, col) != -128.0;
  }
  EXPECT_EQ(frontEnd_.events.back(),
            "status 0: " + std::to_string(nMatched) +
                " of 680 places matched. Written: left_DispMap.lan, left_MeasureMap.lan.");
}

TEST_F(DenseCommand, CancelledFormEndsIt) {
  EXPECT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kCancelled);
  EXPECT_THAT(frontEnd_.events, ElementsAre("form: MatchInput"));
}

TEST_F(DenseCommand, CancelledOffsetEndsIt) {
  frontEnd_.forms.push_back(FilledForm());
  pair_.columnOffset = 77;
  EXPECT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kCancelled);
  EXPECT_EQ(pair_.columnOffset, 77);
  EXPECT_EQ(pair_.leftPhoto, nullptr);
  EXPECT_EQ(frontEnd_.waitDepth, 0);
  EXPECT_FALSE(std::filesystem::exists("left_DispMap.lan"));
  EXPECT_THAT(frontEnd_.EventsWith("message"), IsEmpty());
}

TEST_F(DenseCommand, MissingImageEndsIt) {
  frontEnd_.forms.push_back(FilledForm());
  frontEnd_.values = {0.0};
  std::filesystem::remove("right.lan");
  EXPECT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kNotLoaded);
  EXPECT_THAT(frontEnd_.EventsWith("value"), IsEmpty());
  EXPECT_EQ(pair_.leftPhoto, nullptr);
}

TEST_F(DenseCommand, ResultThatReplacesAnInputIsRefused) {
  std::filesystem::rename("right.lan", "left_DispMap.lan");
  std::filesystem::rename("right.orn", "left_DispMap.orn");
  frontEnd_.forms.push_back(
      FilledForm([](Form& form) { form.Find("rightImage")->value = std::string("left_DispMap.lan"); }));
  frontEnd_.values = {0.0};
  const std::string before = ReadFileBytes("left_DispMap.lan");
  EXPECT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kNotWritten);
  EXPECT_THAT(frontEnd_.EventsWith("message"),
              ElementsAre("message warning: Write file left_DispMap.lan error!\n"
                          "It is one of the files that the command reads."));
  EXPECT_EQ(ReadFileBytes("left_DispMap.lan"), before);
  EXPECT_EQ(pair_.leftPhoto, nullptr);
}

TEST_F(DenseCommand, ResultThatCannotBeWrittenIsTold) {
  std::filesystem::create_directory("left_DispMap.lan");
  frontEnd_.forms.push_back(FilledForm());
  frontEnd_.values = {-3.0};
  EXPECT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kNotWritten);
  EXPECT_THAT(frontEnd_.EventsWith("message"), ElementsAre(HasSubstr("Write file left_DispMap.lan error!")));
  EXPECT_THAT(frontEnd_.events.back(), HasSubstr(" Written: left_MeasureMap.lan."));
}

TEST_F(DenseCommand, SpacingThatIsNotAboveZeroIsTold) {
  for (const double spacing : {0.0, -2.0, kNaN}) {
    frontEnd_.forms = {FilledForm([spacing](Form& form) { form.Find("groundSpacing")->value = spacing; })};
    frontEnd_.values = {-3.0};
    EXPECT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kDone);
    EXPECT_EQ(frontEnd_.events.back(),
              "status 0: There is no place to match in the left image. The ground spacing is not above 0. "
              "Written: left_DispMap.lan, left_MeasureMap.lan.");
  }
}

TEST_F(DenseCommand, NothingToMatchIsTold) {
  frontEnd_.forms.push_back(
      FilledForm([](Form& form) { form.Find("windowWidth")->value = std::int64_t{1000}; }));
  frontEnd_.values = {-3.0};
  EXPECT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kDone);
  EXPECT_EQ(frontEnd_.events.back(),
            "status 0: There is no place to match in the left image. "
            "Written: left_DispMap.lan, left_MeasureMap.lan.");
}

TEST_F(DenseCommand, ReadsTheDemOfTheForm) {
  FloatImage(kCols, kRows, std::vector<double>(kCols * kRows, 4.0)).Write("truth.lan");
  frontEnd_.forms.push_back(FilledForm([](Form& form) {
    form.Find("demFile")->value = std::string("truth.lan");
    form.Find("demAccuracy")->value = 1.0;
  }));
  frontEnd_.values = {100.0};
  ASSERT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kDone);
  TexturedPair made;
  ExpectMaps(pair_, PlainDense(
                        made.pair, [](int, int) { return 4.0; }, 1, 1));
}

}  // namespace
}  // namespace corvane
