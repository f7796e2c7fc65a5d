// Windows whose pixels have disparities of their own.

#include <gtest/gtest.h>

#include "StereoPair/MaskedWindows.h"
#include "StereoPair/PlainMasked.h"

namespace corvane {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kNone = -128.0;
constexpr int kCols = 21;
constexpr int kRows = 15;

// Disparities from -3.0 to 8.5 in halves; every tenth pixel or so has none.
std::vector<double> RandomDisparities(unsigned seed) {
  std::mt19937 random(seed);
  std::vector<double> disparities(kCols * kRows);
  for (double& disparity : disparities) {
    disparity = random() % 10 == 0 ? kNone : static_cast<double>(random() % 24) / 2.0 - 3.0;
  }
  return disparities;
}

struct NoisyPair : VerticalPair {
  NoisyPair() : VerticalPair(kCols, kRows, Noise(kCols * kRows, 1), Noise(kCols * kRows, 2)) {
    pair.targetWidth = 5;
    pair.targetHeight = 7;
  }
  MaskedWindows WindowsOver(const ErdasImg& map) const {
    return {left.image, right.image, map, pair.targetWidth, pair.targetHeight};
  }
};

TEST(MaskedWindows, ScoresAreThoseOfThePlainForm) {
  NoisyPair made;
  const auto own = RandomDisparities(3);
  for (const int size : {1, 4, 5, 30}) {
    made.pair.targetWidth = size;
    const MaskedWindows windows = made.WindowsOver(FloatImage(kCols, kRows, own));
    for (int row = 0; row < kRows; ++row) {
      for (int col = 0; col < kCols; ++col) {
        for (const double centre : {own[static_cast<std::size_t>(row * kCols + col)], 2.0, kNone}) {
          const auto disparityOf = [&](int y, int x) {
            return y == row && x == col ? centre : own[static_cast<std::size_t>(y * kCols + x)];
          };
          ASSERT_EQ(windows.CompareMasked(row, col, centre), PlainMasked(made.pair, row, col, disparityOf));
        }
      }
    }
  }
}

TEST(MaskedWindows, OnePixelScoresZero) {
  NoisyPair made;
  std::vector<double> own(kCols * kRows, kNone);
  EXPECT_EQ(made.WindowsOver(FloatImage(kCols, kRows, own)).CompareMasked(7, 9, 2.0), 0.0);
  EXPECT_EQ(made.WindowsOver(FloatImage(kCols, kRows, own)).CompareMasked(7, 9, kNone), 0.0);
  own[8 * kCols + 9] = 2.0;
  const double score = made.WindowsOver(FloatImage(kCols, kRows, own)).CompareMasked(7, 9, 2.0);
  EXPECT_NEAR(std::abs(score), 1.0, 1e-12) << "two points lie on a line";
}

TEST(MaskedWindows, WindowOfOnePixelScoresZeroEvenIfItIsFlat) {
  const VerticalPair made(5, 3, std::vector<std::uint8_t>(15, 9), std::vector<std::uint8_t>(15, 9));
  const ErdasImg map = FloatImage(5, 3, std::vector<double>(15, 0.0));
  EXPECT_EQ(MaskedWindows(made.left.image, made.right.image, map, 1, 1).CompareMasked(1, 2, 0.0), 0.0);
  EXPECT_EQ(MaskedWindows(made.left.image, made.right.image, map, 1, 1).CompareMasked(1, 2, kNone), 0.0);
  // Two pixels are enough.
  EXPECT_EQ(MaskedWindows(made.left.image, made.right.image, map, 2, 1).CompareMasked(1, 2, 0.0), 1.0);
  EXPECT_EQ(MaskedWindows(made.left.image, made.right.image, map, 2, 1).CompareMasked(1, 2, kNone), 0.0);
  EXPECT_EQ(MaskedWindows(made.left.image, made.right.image, map, 2, 1).CompareMasked(1, 2, 100.0), 0.0)
      << "only the right ones differ: 9 and 0";
}

TEST(MaskedWindows, WithoutAFiniteNumberThereIsNoDisparity) {
  EXPECT_TRUE(IsDisparity(0.0));
  EXPECT_TRUE(IsDisparity(-127.9));
  EXPECT_TRUE(IsDisparity(-1e300));
  EXPECT_FALSE(IsDisparity(kNone));
  EXPECT_FALSE(IsDisparity(kNaN));
  EXPECT_FALSE(IsDisparity(std::numeric_limits<double>::infinity()));
}

TEST(MaskedWindows, PixelsOutsideOfTheMapHaveNoDisparity) {
  NoisyPair made;
  const ErdasImg map = FloatImage(6, 4, std::vector<double>(24, 1.0));
  const MaskedWindows windows = made.WindowsOver(map);
  const auto disparityOf = [](int y, int x) { return y < 4 && x < 6 ? 1.0 : kNaN; };
  EXPECT_EQ(windows.CompareMasked(4, 5, kNone), PlainMasked(made.pair, 4, 5, disparityOf));
  EXPECT_EQ(windows.CompareMasked(12, 15, kNone), 0.0);
}

TEST(MaskedWindows, RightPixelsOutsideOfTheImageAreZero) {
  VerticalPair made(5, 3, {9, 9, 9, 9, 9, 9, 9, 8, 9, 9, 9, 9, 9, 9, 9}, std::vector<std::uint8_t>(15, 77));
  made.pair.targetWidth = 3;
  made.pair.targetHeight = 3;
  for (const double far : {1e300, -1e300, 100.0, -5.0}) {
    const MaskedWindows windows(made.left.image, made.right.image,
                                FloatImage(5, 3, std::vector<double>(15, 0.0)), 3, 3);
    // Eight pairs (9, 77) and (8, 0).
    EXPECT_NEAR(windows.CompareMasked(1, 2, far), 1.0, 1e-12) << far;
  }
}

TEST(MaskedWindows, PixelTakesANewDisparity) {
  NoisyPair made;
  auto own = RandomDisparities(5);
  MaskedWindows windows = made.WindowsOver(FloatImage(kCols, kRows, own));
  const auto disparityOf = [&](int y, int x) { return own[static_cast<std::size_t>(y * kCols + x)]; };
  for (const double disparity : {4.0, kNone, -2.5}) {
    own[6 * kCols + 8] = disparity;
    windows.SetDisparity(6, 8, disparity);
    EXPECT_EQ(windows.CompareMasked(7, 9, disparityOf(7, 9)), PlainMasked(made.pair, 7, 9, disparityOf));
    EXPECT_EQ(windows.CompareMasked(6, 8, disparity), PlainMasked(made.pair, 6, 8, disparityOf));
  }
}

TEST(MaskedWindows, SumsOfWideWindowsAreExact) {
  VerticalPair made(70001, 3, std::vector<std::uint8_t>(70001 * 3, 255),
                    std::vector<std::uint8_t>(70001 * 3, 255));
  made.pair.targetWidth = 70001;
  made.pair.targetHeight = 3;
  const auto band = made.left.image.GetBands().GetBand(0);
  for (std::size_t i = 0; i < band.size(); i += 5) band[i] = 250;
  const ErdasImg map = FloatImage(70001, 3, {});
  const MaskedWindows windows(made.left.image, made.right.image, map, 70001, 3);
  EXPECT_EQ(windows.CompareMasked(1, 35000, 1.0),
            PlainMasked(made.pair, 1, 35000, [](int y, int x) { return y == 1 && x == 35000 ? 1.0 : 0.0; }));
}

TEST(ScoreOfDisparityMap, ScoresOfAllPlacesAreThoseOfThePlainForm) {
  NoisyPair made;
  const auto own = RandomDisparities(8);
  ErdasImg scores;
  ASSERT_EQ(made.pair.ScoreOfDisparityMap(FloatImage(kCols, kRows, own), scores), 1);
  EXPECT_EQ(scores.GetPackType(), kPackFloat);
  EXPECT_EQ(scores.GetSize(), (ImageSize{kCols, kRows}));
  const auto disparityOf = [&](int y, int x) { return own[static_cast<std::size_t>(y * kCols + x)]; };
  for (int row = 0; row < kRows; ++row) {
    for (int col = 0; col < kCols; ++col) {
      const bool isPlace = row >= 4 && row < kRows - 4 && col >= 3 && col < kCols - 3;
      const bool isScored = isPlace && disparityOf(row, col) != kNone;
      const double expected = isScored ? PlainMasked(made.pair, row, col, disparityOf) : 0.0;
      EXPECT_EQ(PixelAt(scores, row, col), static_cast<float>(expected)) << row << ' ' << col;
    }
  }
}

}  // namespace
}  // namespace corvane
