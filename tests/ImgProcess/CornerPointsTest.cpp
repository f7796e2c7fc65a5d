// Points of an image that stand out of their neighbours: corners of a response, and prominent pixels.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "ImgProcess/ImgProcess.h"
#include "erdasimg/ImageBytes.h"
#include "numerics/SimdVersion.h"
#include "support/MemoryLimit.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

ErdasImg ImageOf(std::uint16_t packType, std::int32_t cols, std::int32_t rows) {
  ErdasImg image;
  image.Create(HeaderOf(packType, 1, cols, rows), false);
  return image;
}

class CornerPointsTest : public testing::Test {
 protected:
  ImgProcess process;
  TestFrontEnd ui;
};

// Local maxima

TEST_F(CornerPointsTest, EqualNeighboursAreNoCorners) {
  ErdasImg response = ImageOf(kPackFloat, 5, 1);
  for (const auto& [col, value] : std::vector<std::pair<int, double>>{{0, 3}, {1, 3}, {3, 2}}) {
    response.SetPixel(0, 0, col, value);
  }
  std::vector<Point2> points;
  process.ExtractCorners(response, {.threshold = 0}, points);
  EXPECT_THAT(points, ElementsAre(Point2{3, 0}));
}

TEST_F(CornerPointsTest, AResponseEqualToTheThresholdIsNoCorner) {
  ErdasImg response = ImageOf(kPackFloat, 3, 3);
  response.SetPixel(0, 1, 1, 1200);
  std::vector<Point2> points;
  process.ExtractCorners(response, {.threshold = 1200}, points);
  EXPECT_THAT(points, IsEmpty());
  process.ExtractCorners(response, {.threshold = std::nextafter(1200.0, 0.0)}, points);
  EXPECT_THAT(points, ElementsAre(Point2{1, 1}));
}

TEST_F(CornerPointsTest, PixelsAtTheEdgeHaveTheNeighboursWithinTheImage) {
  ErdasImg response = ImageOf(kPackFloat, 7, 5);
  for (const auto& [row, col] :
       std::vector<std::pair<int, int>>{{0, 0}, {0, 3}, {0, 6}, {2, 0}, {2, 6}, {4, 0}, {4, 6}}) {
    response.SetPixel(0, row, col, 9);
  }
  std::vector<Point2> points;
  process.ExtractCorners(response, {.threshold = 0}, points);
  EXPECT_THAT(points, ElementsAre(Point2{0, 0}, Point2{3, 0}, Point2{6, 0}, Point2{0, 2}, Point2{6, 2},
                                  Point2{0, 4}, Point2{6, 4}));
}

TEST_F(CornerPointsTest, CornersAreThoseOfIsLocalMaxPixelByPixel) {
  std::mt19937 random(3);
  const double values[] = {-kInfinity, -1.5, 0.0, 0.1, 0.5, 1.0, 1.25, 2.0, kInfinity, kNan};
  for (const std::uint16_t pack : {kPackFloat, kPackDouble, kPackByte, kPackInt16}) {
    for (const auto& [cols, rows] : std::vector<std::pair<int, int>>{
             {1, 1}, {1, 20}, {20, 1}, {2, 2}, {3, 3}, {17, 9}, {64, 20}, {66, 5}, {131, 31}}) {
      ErdasImg response = ImageOf(pack, cols, rows);
      for (std::int32_t i = 0; i < cols * rows; ++i)
        response.SetPixel(0, i / cols, i % cols, values[random() % 10]);
      for (const double threshold : {-kInfinity, -2.0, 0.1, 0.5, 1e300, kInfinity, kNan}) {
        std::vector<Point2> expected;
        for (std::int32_t i = 0; i < cols * rows; ++i) {
          double value = 0.0;
          response.GetPixel(0, i / cols, i % cols, value);
          if (value > threshold && response.IsLocalMax(0, i / cols, i % cols))
            expected.push_back({1.0 * (i % cols), 1.0 * (i / cols)});
        }
        for (const SimdVersion version : AvailableSimdVersions()) {
          const ForcedSimdVersion forced(version);
          std::vector<Point2> points;
          process.ExtractCorners(response, {.threshold = threshold}, points);
          EXPECT_EQ(points, expected) << pack << " " << cols << " " << rows << " " << threshold;
        }
      }
    }
  }
}

TEST_F(CornerPointsTest, AResponseWithoutPixelsHasNoCorners) {
  ErdasImg empty;
  empty.GetHeader()->packType = kPackFloat;
  std::vector<Point2> points(2);
  process.ExtractCorners(empty, {.threshold = -1}, points);
  empty.SetSize(-5, 3);
  process.ExtractCorners(empty, {.threshold = -1}, points);
  EXPECT_THAT(points, IsEmpty());
}

// Prominent pixels

TEST_F(CornerPointsTest, ProminentPixelsAreThoseOfIsProminent) {
  ErdasImg image = ImageOf(kPackByte, 150, 40);
  std::mt19937 random(4);
  for (std::int32_t i = 0; i < 150 * 40; ++i) {
    image.GetBands()[0][i] = static_cast<std::uint8_t>(i % 150 < 50    ? random() % 3
                                                       : i % 150 < 100 ? 150 + random() % 60
                                                                       : random());
  }
  for (const double threshold : {0.3, 0.0, 0.25, 0.99, 1.0, -0.5, -2.0, kNan, kInfinity}) {
    std::vector<double> expected;
    for (std::int32_t row = 1; row < 39; ++row) {
      for (std::int32_t col = 1; col < 149; ++col) {
        if (image.IsProminent(col, row, threshold) > 0)
          expected.insert(expected.end(), {1.0 * col, 1.0 * row});
      }
    }
    for (const SimdVersion version : AvailableSimdVersions()) {
      const ForcedSimdVersion forced(version);
      std::vector<double> places = {-1.0};  // is replaced
      process.ProminentPixels(image, threshold, places);
      EXPECT_EQ(places, expected) << threshold;
    }
  }
}

TEST_F(CornerPointsTest, ABlackAreaHasNoProminentPixels) {
  ErdasImg image = ImageOf(kPackByte, 9, 9);
  EXPECT_EQ(image.IsProminent(4, 4, 0.3), 0);
  std::vector<double> places;
  process.ProminentPixels(image, 0.3, places);
  EXPECT_THAT(places, IsEmpty());
}

TEST_F(CornerPointsTest, TheOutermostRingHasNoProminentPixels) {
  ErdasImg image = ImageOf(kPackByte, 3, 3);
  image.SetPixel(0, 0, 0, 200);
  std::vector<double> places;
  process.ProminentPixels(image, 0.3, places);
  EXPECT_THAT(places, ElementsAre(1, 1));
  ErdasImg small = ImageOf(kPackByte, 2, 9);
  EXPECT_EQ(process.ProminentPixels(small, 0.3, places), 1);
  EXPECT_THAT(places, IsEmpty());
}

// Every second pixel of every second row: 16 bytes each as points, and more as features.
ErdasImg DotsOf(std::uint16_t packType) {
  ErdasImg image = ImageOf(packType, 2000, 2000);
  for (std::int32_t row = 1; row < 2000; row += 2) {
    for (std::int32_t col = 1; col < 2000; col += 2) image.SetPixel(0, row, col, 200);
  }
  return image;
}

TEST_F(CornerPointsTest, CornersWithoutMemoryAreNone) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer needs memory of its own";
#endif
  const ErdasImg response = DotsOf(kPackFloat);
  const auto extract = [&] {
    std::vector<Point2> points;
    const int status = process.ExtractCorners(response, {.threshold = 1}, points);
    return status < 0 && (!points.empty() || points.capacity() > 0) ? 10 : status;
  };
  const auto extractFeatures = [&] {
    FeaturePointList features;
    const int status = process.ExtractCornerFeatures(response, {.threshold = 1}, features);
    return status < 0 && (!features.empty() || features.capacity() > 0) ? 10 : status;
  };
  EXPECT_EXIT(RunWithin(std::size_t{8} << 20, extract), testing::ExitedWithCode(12), "");
  EXPECT_EXIT(RunWithin(std::size_t{60} << 20, extract), testing::ExitedWithCode(9), "");
  EXPECT_EXIT(RunWithin(std::size_t{20} << 20, extractFeatures), testing::ExitedWithCode(12), "");
}

TEST_F(CornerPointsTest, ProminentPixelsTakeTheMemoryThatTheyNeedAndNoMore) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer needs memory of its own";
#endif
  const ErdasImg image = DotsOf(kPackByte);  // every pixel stands out: 1998 * 1998 * 16 bytes, 61 MiB
  const auto find = [&] {
    std::vector<double> places;
    const int status = process.ProminentPixels(image, 0.3, places);
    return places.size() == (status < 0 ? 0 : 2 * 1998 * 1998) ? status : 10;
  };
  EXPECT_EXIT(RunWithin(std::size_t{63} << 20, find), testing::ExitedWithCode(9), "");
  EXPECT_EXIT(RunWithin(std::size_t{40} << 20, find), testing::ExitedWithCode(12), "");
}

TEST_F(CornerPointsTest, ProminentPixelsOfABandThatIsTooShort) {
  ErdasImg image = ImageOf(kPackByte, 9, 4);
  image.Fill(90);
  image.SetSize(9, 9);
  std::vector<double> places;
  process.ProminentPixels(image, 0.3, places);
  EXPECT_THAT(places, ElementsAre(1, 3, 2, 3, 3, 3, 4, 3, 5, 3, 6, 3, 7, 3, 1, 4, 2, 4, 3, 4, 4, 4, 5, 4, 6,
                                  4, 7, 4));
  ErdasImg empty;
  places.clear();
  process.ProminentPixels(empty, 0.3, places);
  EXPECT_THAT(places, IsEmpty());
}

}  // namespace
}  // namespace corvane
