// Structural features and spiral descriptors, on windows made by hand.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "ImgProcess/ImgProcess.h"
#include "erdasimg/ImageBytes.h"
#include "support/MemoryLimit.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

class DescriptorsTest : public testing::Test {
 protected:
  static ErdasImg ImageOf(std::int32_t cols, std::int32_t rows, const std::vector<int>& pixels) {
    ErdasImg image;
    image.Create(HeaderOf(kPackByte, 1, cols, rows), false);
    std::copy(pixels.begin(), pixels.end(), image.GetBands()[0]);
    return image;
  }

  static ErdasImg PatternOf(std::int32_t cols, std::int32_t rows) {
    ErdasImg image;
    image.Create(HeaderOf(kPackByte, 1, cols, rows), false);
    FillWithPattern(image);
    return image;
  }

  // A 5 x 5 window whose steps are all different:
  //   ring 2 around ring 1 around the centre 50.
  const std::vector<int> five = {1,  2,  3,  4,  5,  //
                                 16, 60, 61, 62, 6,  //
                                 15, 67, 50, 63, 7,  //
                                 14, 66, 65, 64, 8,  //
                                 13, 12, 11, 10, 9};

  ImgProcess process;
  TestFrontEnd ui;
};

// Structural features

TEST_F(DescriptorsTest, StructuralFeatureWalksTheRingsOutwards) {
  ErdasImg image = ImageOf(5, 5, five);
  FeaturePoint feature;
  ASSERT_EQ(process.StructuralFeature(image, 2, 2, 5, feature, false), 1);
  const std::vector<double> expected = {64 - 50, 63 - 50, 62 - 50,  // right, upwards
                                        61 - 50,                    // top
                                        60 - 50, 67 - 50, 66 - 50,  // left, downwards
                                        65 - 50,                    // bottom
                                        9 - 64,  8 - 64,  7 - 63,  6 - 62,  5 - 62,  4 - 62,
                                        3 - 61,  2 - 60,  1 - 60,  16 - 60, 15 - 67, 14 - 66,
                                        13 - 66, 12 - 66, 11 - 65, 10 - 64};
  EXPECT_THAT(feature.values, ElementsAreArray(expected));
}

TEST_F(DescriptorsTest, AStructuralWindowOf7Has48Values) {
  ErdasImg image = PatternOf(9, 9);
  FeaturePoint feature;
  ASSERT_EQ(process.StructuralFeature(image, 4, 4, 7, feature, false), 1);
  ASSERT_EQ(feature.values.size(), 48u);
  const auto at = [&](int row, int col) { return double{0} + image.GetBands()[0][row * 9 + col]; };
  // The first pixel of ring 3 is the lower right corner, the last one the bottom's next to it.
  EXPECT_EQ(feature.values[24], at(7, 7) - at(6, 6));
  EXPECT_EQ(feature.values[30], at(1, 7) - at(2, 6));
  EXPECT_EQ(feature.values[31], at(1, 6) - at(2, 6));
  EXPECT_EQ(feature.values[36], at(1, 1) - at(2, 2));
  EXPECT_EQ(feature.values[42], at(7, 1) - at(6, 2));
  EXPECT_EQ(feature.values[43], at(7, 2) - at(6, 2));
  EXPECT_EQ(feature.values[47], at(7, 6) - at(6, 6));
}

TEST_F(DescriptorsTest, StructuralFeatureIsDividedByTheWindowsMean) {
  ErdasImg image = ImageOf(3, 3, {10, 20, 30, 40, 50, 60, 70, 80, 90});
  FeaturePoint feature;
  ASSERT_EQ(process.StructuralFeature(image, 1, 1, 3, feature, true), 1);
  EXPECT_THAT(feature.values, ElementsAre(40 / 50., 10 / 50., -20 / 50., -30 / 50., -40 / 50., -10 / 50.,
                                          20 / 50., 30 / 50.));
}

TEST_F(DescriptorsTest, AMeanOf0GivesWhatTheDivisionGives) {
  ErdasImg image = ImageOf(17, 17, {});
  FeaturePoint feature;
  ASSERT_EQ(process.StructuralFeature(image, 8, 8, 3, feature, true), 1);
  ASSERT_EQ(feature.values.size(), 8u);
  EXPECT_TRUE(std::isnan(feature.values[0]));
  ASSERT_EQ(process.SpiralFeature(image, 8, 8, 17, feature, true), 1);
  EXPECT_TRUE(std::isnan(feature.values[40]));
}

TEST_F(DescriptorsTest, AFeatureKeepsThePointAsGivenAndItsId) {
  ErdasImg image = ImageOf(5, 5, five);
  FeaturePoint feature{.id = 7, .scale = 3, .orientation = 2, .values = {1, 2, 3}};
  ASSERT_EQ(process.StructuralFeature(image, 2.9, 1.5, 3, feature, false), 1);
  EXPECT_EQ(feature.id, 7);
  EXPECT_EQ(feature.x, 2.9);
  EXPECT_EQ(feature.y, 1.5);
  EXPECT_EQ(feature.scale, 1.0);
  EXPECT_EQ(feature.orientation, 0.0);
  EXPECT_THAT(feature.values,
              ElementsAre(63 - 61, 62 - 61, 4 - 61, 3 - 61, 2 - 61, 60 - 61, 67 - 61, 50 - 61));
  EXPECT_EQ(image.m_subsetRect, (ImageRect{1, 0, 3, 2}));
}

TEST_F(DescriptorsTest, AWindowOf1HasNoRings) {
  ErdasImg image = ImageOf(1, 1, {9});
  FeaturePoint feature{.values = {1}};
  EXPECT_EQ(process.StructuralFeature(image, 0, 0, 1, feature, true), 1);
  EXPECT_THAT(feature.values, IsEmpty());
}

TEST_F(DescriptorsTest, EvenOrEmptyWindowsGiveNoFeature) {
  ErdasImg image = PatternOf(20, 20);
  FeaturePoint feature{.x = 5};
  for (const std::int32_t size : {0, -1, -7, 2, 6, INT32_MIN, INT32_MAX - 1}) {
    EXPECT_LT(process.StructuralFeature(image, 10, 10, size, feature, false), 0) << size;
  }
  EXPECT_EQ(feature.x, 5);
}

TEST_F(DescriptorsTest, WindowsThatLeaveTheImageGiveNoFeature) {
  ErdasImg image = PatternOf(20, 10);
  FeaturePoint feature;
  EXPECT_EQ(process.StructuralFeature(image, 3, 3, 7, feature, false), 1);
  EXPECT_EQ(process.StructuralFeature(image, 16, 6, 7, feature, false), 1);
  for (const auto& [x, y] : std::vector<std::pair<double, double>>{
           {2.9, 5}, {17, 5}, {10, 2}, {10, 7}, {-1, 5}, {1e300, 5}, {kNan, 5}, {10, -1e10}, {10, kNan}}) {
    EXPECT_LT(process.StructuralFeature(image, x, y, 7, feature, false), 0) << x << " " << y;
  }
  EXPECT_LT(process.StructuralFeature(image, 10, 5, INT32_MAX, feature, false), 0);
  EXPECT_LT(process.StructuralFeature(image, 10, 5, 11, feature, false), 0);
}

TEST_F(DescriptorsTest, StructuralFeaturesTakePointsWithinTheMargin) {
  ErdasImg image = PatternOf(20, 18);
  const std::vector<Point2> points = {{6.9, 8}, {7, 7}, {12, 10}, {12.1, 10}, {12, 10.5}, {10, 6.9}, {9, 9}};
  FeaturePointList features(2);
  EXPECT_EQ(process.StructuralFeatures(image, points, 7, features, false), 1);
  ASSERT_EQ(features.size(), 3u);
  for (std::int32_t i = 0; i < 3; ++i) EXPECT_EQ(features[static_cast<std::size_t>(i)].id, i);
  EXPECT_EQ(features[0].x, 7);
  EXPECT_EQ(features[1].y, 10);
  EXPECT_EQ(features[2].x, 9);
  EXPECT_EQ(features[2].values.size(), 48u);
}

TEST_F(DescriptorsTest, StructuralFeaturesOfAnEvenOrSillySizeAreNone) {
  ErdasImg image = PatternOf(20, 20);
  FeaturePointList features;
  for (const std::int32_t size : {-3, 0, 4, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(process.StructuralFeatures(image, {{10, 10}}, size, features, true), 1) << size;
    EXPECT_THAT(features, IsEmpty());
  }
}

TEST_F(DescriptorsTest, FeaturesBeyondTheMachinesMemoryAreRefused) {
  ErdasImg image = PatternOf(3001, 3001);
  const std::vector<Point2> points(100000, {1500, 1500});
  FeaturePointList features(1);
  EXPECT_EQ(process.StructuralFeatures(image, points, 1499, features, true), -2);
  EXPECT_THAT(features, IsEmpty());
}

TEST_F(DescriptorsTest, FeaturesWithoutMemoryAreNone) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer needs memory of its own";
#endif
  ErdasImg image = PatternOf(41, 41);
  const std::vector<Point2> points(100000, {20, 20});
  const auto describe = [&](auto makeFeatures, std::int32_t size) {
    FeaturePointList features(1);
    const int status = (process.*makeFeatures)(image, points, size, features, true);
    return features.empty() && features.capacity() == 0 ? status : 10;
  };
  // 48 or 41 values of 8 bytes each.
  EXPECT_EXIT(RunWithin(std::size_t{20} << 20, [&] { return describe(&ImgProcess::StructuralFeatures, 7); }),
              testing::ExitedWithCode(12), "");
  EXPECT_EXIT(RunWithin(std::size_t{20} << 20, [&] { return describe(&ImgProcess::SpiralFeatures, 17); }),
              testing::ExitedWithCode(12), "");
}

TEST_F(DescriptorsTest, WiderPixelsCountAsBytes) {
  ErdasImg image;
  image.Create(HeaderOf(kPackFloat, 1, 9, 9), false);
  image.Fill(1e30);
  FeaturePoint feature;
  EXPECT_EQ(process.StructuralFeature(image, 4, 4, 7, feature, true), 1);
  EXPECT_EQ(feature.values.size(), 48u);
}

TEST_F(DescriptorsTest, AnImageWithoutPixelsGivesNothing) {
  ErdasImg image;
  FeaturePoint feature;
  EXPECT_LT(process.StructuralFeature(image, 0, 0, 3, feature, true), 0);
  EXPECT_LT(process.SpiralFeature(image, 0, 0, 17, feature, true), 0);
}

// Spiral descriptors

// What each sample of the spiral covers: first and last row, first and last column, from the centre. Written
// down apart from the code: the ring's blocks are a mirror image of each other by quarter turns.
struct Block {
  int top;
  int bottom;
  int left;
  int right;
};

std::vector<Block> SpiralBlocks() {
  std::vector<Block> blocks = {{0, 0, 0, 0}};
  for (const auto& [row, col] : std::vector<std::pair<int, int>>{
           {-1, 0}, {-1, 1}, {0, 1}, {1, 1}, {1, 0}, {1, -1}, {0, -1}, {-1, -1}}) {
    blocks.push_back({row, row, col, col});
  }
  // Ring A
  for (const Block& block : std::vector<Block>{{-2, -2, 0, 1},
                                               {-2, -1, 2, 2},
                                               {0, 1, 2, 2},
                                               {2, 2, 1, 2},
                                               {2, 2, -1, 0},
                                               {1, 2, -2, -2},
                                               {-1, 0, -2, -2},
                                               {-2, -2, -2, -1}}) {
    blocks.push_back(block);
  }
  // Ring B
  for (const Block& block : std::vector<Block>{{-3, -3, 0, 2},
                                               {-3, -1, 3, 3},
                                               {0, 2, 3, 3},
                                               {3, 3, 1, 3},
                                               {3, 3, -2, 0},
                                               {1, 3, -3, -3},
                                               {-2, 0, -3, -3},
                                               {-3, -3, -3, -1}}) {
    blocks.push_back(block);
  }
  // Ring C
  for (const Block& block : std::vector<Block>{{-5, -4, 0, 3},
                                               {-4, -1, 4, 5},
                                               {0, 3, 4, 5},
                                               {4, 5, 1, 4},
                                               {4, 5, -3, 0},
                                               {1, 4, -5, -4},
                                               {-3, 0, -5, -4},
                                               {-5, -4, -4, -1}}) {
    blocks.push_back(block);
  }
  // Ring D
  for (const Block& block : std::vector<Block>{{-8, -6, 0, 5},
                                               {-6, -1, 6, 8},
                                               {0, 5, 6, 8},
                                               {6, 8, 1, 6},
                                               {6, 8, -5, 0},
                                               {1, 6, -8, -6},
                                               {-5, 0, -8, -6},
                                               {-8, -6, -6, -1}}) {
    blocks.push_back(block);
  }
  return blocks;
}

TEST_F(DescriptorsTest, TheSpiralSamplesBlocksAroundThePoint) {
  ErdasImg image = PatternOf(30, 25);
  FeaturePoint feature{.id = 3};
  ASSERT_EQ(process.SpiralFeature(image, 12.7, 10.2, 17, feature, false), 1);
  EXPECT_EQ(feature.id, 3);
  EXPECT_EQ(feature.x, 12.7);
  EXPECT_EQ(feature.y, 10.2);
  std::vector<double> expected;
  for (const Block& block : SpiralBlocks()) {
    int sum = 0;
    int n = 0;
    for (int row = block.top; row <= block.bottom; ++row) {
      for (int col = block.left; col <= block.right; ++col, ++n) {
        sum += image.GetBands()[0][(10 + row) * 30 + 12 + col];
      }
    }
    expected.push_back(sum / n);
  }
  ASSERT_EQ(expected.size(), 41u);
  EXPECT_THAT(feature.values, ElementsAreArray(expected));
}

TEST_F(DescriptorsTest, TheBlocksMeansAreCutToWholeNumbers) {
  ErdasImg image = ImageOf(17, 17, {});
  image.GetBands()[0][6 * 17 + 8] = 7;  // ring A, north: 7 and 0
  FeaturePoint feature;
  ASSERT_EQ(process.SpiralFeature(image, 8, 8, 17, feature, false), 1);
  EXPECT_EQ(feature.values[9], 3);
  ASSERT_EQ(process.SpiralFeature(image, 8, 8, 17, feature, true), 1);
  EXPECT_EQ(feature.values[9], 3 / (7.0 / 289.0));
}

TEST_F(DescriptorsTest, TheSpiralIgnoresTheWindowSize) {
  ErdasImg image = PatternOf(30, 25);
  FeaturePoint feature;
  ASSERT_EQ(process.SpiralFeature(image, 12, 10, 17, feature, true), 1);
  for (const std::int32_t size : {0, -5, 3, 8, INT32_MAX}) {
    FeaturePoint other;
    ASSERT_EQ(process.SpiralFeature(image, 12, 10, size, other, true), 1);
    EXPECT_EQ(other.values, feature.values);
  }
}

TEST_F(DescriptorsTest, TheSpiralSkipsPointsWhoseWindowLeavesTheImage) {
  ErdasImg image = PatternOf(30, 25);
  FeaturePoint feature;
  for (const auto& [x, y] : std::vector<std::pair<double, double>>{
           {7, 10}, {22, 10}, {12, 7}, {12, 17}, {-1e18, 10}, {12, kNan}}) {
    EXPECT_LT(process.SpiralFeature(image, x, y, 17, feature, false), 0) << x << " " << y;
  }
  FeaturePointList features;
  EXPECT_EQ(process.SpiralFeatures(image, {{3, 10}, {8, 8}, {21, 16}, {22, 16}}, 3, features, false), 1);
  ASSERT_EQ(features.size(), 2u);
  EXPECT_EQ(features[1].id, 1);
  EXPECT_EQ(features[1].x, 21);
}

TEST_F(DescriptorsTest, TheSpiralTakesTheMarginOfItsWindowSize) {
  ErdasImg image = PatternOf(40, 40);
  FeaturePointList features;
  EXPECT_EQ(process.SpiralFeatures(image, {{16, 20}, {17, 17}, {22, 22}, {22, 23}}, 17, features, false), 1);
  ASSERT_EQ(features.size(), 2u);
  EXPECT_EQ(features[0].x, 17);
  EXPECT_EQ(features[1].x, 22);
}

}  // namespace
}  // namespace corvane
