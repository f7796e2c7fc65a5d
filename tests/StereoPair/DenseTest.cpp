// "Area Correlation": the maps.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <limits>

#include "StereoPair/DenseScene.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

using testing::ElementsAre;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(CorrelateDense, MapsAreThoseOfThePlainForm) {
  TexturedPair made;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  const auto expected = made.PlainMapsAtOffset();
  ExpectMaps(made.pair, expected);
  EXPECT_GT(CountDisparities(made.pair)[4.0], 100) << "the test has matches";
  EXPECT_GT(CountDisparities(made.pair)[-128.0], 10) << "and places without";
}

TEST(CorrelateDense, MapsOfEvenWindowsAreThoseOfThePlainForm) {
  TexturedPair made;
  made.pair.targetWidth = 6;
  made.pair.targetHeight = 4;
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  ExpectMaps(made.pair, made.PlainMapsAtOffset());
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
  ExpectMaps(made.pair, made.PlainMapsAtOffset(3, 2));
}

TEST(CorrelateDense, SpacingBelowOnePixelCountsAsOne) {
  for (const double spacing : {1e-300, 0.4, 0.999}) {
    TexturedPair made;
    made.pair.groundSpacingX = spacing;
    made.pair.groundSpacingY = spacing;
    ASSERT_EQ(made.pair.CorrelateDense(), 1);
    ExpectMaps(made.pair, made.PlainMapsAtOffset());
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
  ExpectMaps(made.pair, made.PlainMapsAtOffset(INT32_MAX));

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
  ExpectMaps(made.pair, made.PlainMapsAtOffset());
  SetBytes(made.right.image, 1, 1, {7});
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  ExpectMaps(made.pair, made.PlainMapsAtOffset());
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
  ExpectMaps(made.pair, made.PlainMapsAtOffset());
}

TEST(CorrelateDense, HeaderMayPromiseMoreThanThereIs) {
  TexturedPair made;
  made.left.image.SetSize(kCols, kRows + 5);
  made.right.image.SetSize(kCols + 9, kRows);
  ASSERT_EQ(made.pair.CorrelateDense(), 1);
  ExpectMaps(made.pair, made.PlainMapsAtOffset());
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

}  // namespace
}  // namespace corvane
