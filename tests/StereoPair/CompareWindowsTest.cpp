// A comparison of two windows, what it writes for the test place, and what surrounds a search.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "StereoPair/PairMaker.h"
#include "StereoPair/PlainCoefficient.h"
#include "StereoPair/PlainDense.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

TEST(CompareWindows, WithoutExtractionTakesTheLeftWindowThatIsKept) {
  VerticalPair photos(9, 3, Noise(27, 1), Noise(27, 1));
  StereoPair& pair = photos.pair;
  EXPECT_NEAR(pair.CompareWindows({2.0, 1.0}, {2.0, 1.0}, true, 3, 3, false), 1.0, 1e-12);
  EXPECT_NEAR(pair.CompareWindows({6.0, 1.0}, {2.0, 1.0}, false, 3, 3, false), 1.0, 1e-12);
  EXPECT_EQ(pair.CompareWindows({6.0, 1.0}, {2.0, 1.0}, false, 3, 2, false), -1.0);
  // One of no size is none, and the one before it is gone.
  EXPECT_EQ(pair.CompareWindows({2.0, 1.0}, {2.0, 1.0}, true, 0, 3, false), -1.0);
  EXPECT_EQ(pair.CompareWindows({2.0, 1.0}, {2.0, 1.0}, false, 3, 3, false), -1.0);
}

TEST(CompareWindows, EvenWindowsBeginHalfTheirSizeBeforeThePlace) {
  VerticalPair photos(6, 1, {0, 1, 2, 3, 4, 9}, {0, 1, 2, 3, 9, 4});
  // Columns 1 to 4 both: 1 2 3 4 and 1 2 3 9
  EXPECT_EQ(photos.pair.CompareWindows({3.0, 0.0}, {3.9, 0.0}, true, 4, 1, false),
            PlainCoefficient({1.0, 2.0, 3.0, 4.0}, {1.0, 2.0, 3.0, 9.0}));
}

TEST(CompareWindows, RejectsDifferencesThatSpreadTooFarAndSaysSo) {
  VerticalPair photos(3, 1, {10, 20, 30}, {20, 40, 60});
  TestFrontEnd frontEnd;
  // Differences -10, -20, -30: standard deviation 10
  photos.pair.maxDiffStdev = 10.0;
  EXPECT_EQ(photos.pair.CompareWindows({1.0, 0.0}, {1.0, 0.0}, true, 3, 1, true), 1.0);
  photos.pair.maxDiffStdev = 9.5;
  EXPECT_EQ(photos.pair.CompareWindows({1.0, 0.0}, {1.0, 0.0}, true, 3, 1, true), -1.0);
  EXPECT_EQ(photos.pair.CompareWindows({1.0, 0.0}, {1.0, 0.0}, true, 3, 1, false), 1.0);
  EXPECT_EQ(frontEnd.EventsWith("trace: "), std::vector<std::string>(2, "trace: CCC: 1, diffStdev: 10\n"));
}

class DumpedPlace : public testing::Test {
 protected:
  DumpedPlace() : photos_(280, 870, MakePixels(1), MakePixels(2)) {
    photos_.pair.targetWidth = 3;
    photos_.pair.targetHeight = 2;
  }

  static std::vector<std::uint8_t> MakePixels(std::uint8_t first) {
    std::vector<std::uint8_t> pixels(280 * 870);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
      pixels[i] = static_cast<std::uint8_t>(first + i % 280 % 10 * 10 + i / 280 % 10);
    }
    return pixels;
  }

  TempFolder folder_;
  VerticalPair photos_;
};

TEST_F(DumpedPlace, IsWrittenInRowsOfTheTargetHeight) {
  photos_.pair.CompareWindows({271.0, 866.0}, {100.0, 100.0}, true, 3, 2, false);
  EXPECT_EQ(ReadFileBytes("leftSubImg.txt"), "");
  photos_.pair.CompareWindows({272.0, 866.0}, {100.0, 100.0}, true, 3, 2, false);
  // Columns 271 to 273, rows 865 and 866; columns 99 to 101, rows 99 and 100
  EXPECT_EQ(ReadFileBytes("leftSubImg.txt"), "16 26\n36 17\n27 37\n");
  EXPECT_EQ(ReadFileBytes("rightSubImg.txt"), "101 11\n21 92\n2 12\n");
}

TEST_F(DumpedPlace, OfASearchIsThatOfTheLastComparison) {
  Point2 right{99.0, 100.0};
  photos_.pair.SearchCorrelation({272.0, 866.0}, right, 3, 2, {90, 100, 100, 100}, false);
  EXPECT_EQ(ReadFileBytes("rightSubImg.txt"), "101 11\n21 92\n2 12\n");
  right = {101.0, 100.0};
  photos_.pair.SearchCorrelation({272.0, 866.0}, right, 3, 2, {90, 100, 101, 100}, false);
  EXPECT_EQ(ReadFileBytes("rightSubImg.txt"), "101 11\n21 92\n2 12\n");
}

TEST(SearchRect, IsTruncatedAndCutToThePlacesOfWholeWindows) {
  EXPECT_EQ(StereoPair::BuildSearchRect({50.7, 40.2}, 3.0, 2.0, {100, 80}, 5, 7),
            (ImageRect{47, 38, 53, 42}));
  EXPECT_EQ(StereoPair::BuildSearchRect({1.0, 79.0}, 5.0, 5.0, {100, 80}, 5, 7), (ImageRect{2, 74, 6, 76}));
  EXPECT_EQ(StereoPair::BuildSearchRect({1e300, -1e300}, 5.0, 5.0, {100, 80}, 5, 7),
            (ImageRect{INT32_MAX, 3, 97, INT32_MIN}));
  ImageRect rect{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
  StereoPair::ClipRect(rect, {100, 80}, 19, 21);
  EXPECT_EQ(rect, (ImageRect{9, 10, 90, 69}));
}

TEST(WindowEntropy, IsThatOfTheWindowInNats) {
  VerticalPair photos(6, 1, {1, 1, 2, 2, 3, 9});
  std::vector<double> values;
  StereoPair::WindowEntropy(photos.left.image, {2.0, 0.0}, 4, 1, values);
  // 1 1 2 2
  ASSERT_EQ(values.size(), 1U);
  EXPECT_NEAR(values[0], std::log(2.0), 1e-15);
  StereoPair::WindowEntropy(photos.left.image, {1e300, 0.0}, 4, 1, values);
  StereoPair::WindowEntropy(photos.left.image, {2.0, 0.0}, 0, 1, values);
  EXPECT_EQ(values.size(), 1U);
}

}  // namespace
}  // namespace corvane
