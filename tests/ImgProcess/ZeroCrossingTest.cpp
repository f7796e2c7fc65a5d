#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "ImgProcess/ImgProcess.h"
#include "ImgProcess/PlainFilters.h"
#include "numerics/SimdVersion.h"
#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::Each;
using testing::ElementsAre;

template <typename Pixel>
std::vector<std::uint8_t> MarksOf(std::size_t cols, std::size_t rows, std::vector<Pixel> pixels,
                                  double threshold) {
  ImgProcess process;
  const auto image = ImageOf<Pixel>(cols, rows, std::move(pixels));
  const auto marks = ImageOf<std::uint8_t>(cols, rows, std::vector<std::uint8_t>(cols * rows, 7));
  EXPECT_EQ(process.ZeroCrossing(*image, threshold, *marks), 1);
  return BandPixelsOf<std::uint8_t>(*marks, 0);
}

TEST(ZeroCrossing, OfPositiveValuesMarksNothing) {
  EXPECT_THAT(MarksOf<float>(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9}, 0.0), Each(0));
}

TEST(ZeroCrossing, OfZeroBetweenFiveAndMinusFiveIsMarkedAtThreshold2) {
  EXPECT_THAT(MarksOf<float>(3, 1, {5, 0, -5}, 2.0), ElementsAre(0, 255, 0));
  EXPECT_THAT(MarksOf<double>(1, 3, {-5, 0, 5}, 2.0), ElementsAre(0, 255, 0));
  EXPECT_THAT(MarksOf<double>(3, 1, {-5, 0, 5}, 5.0), ElementsAre(0, 0, 0));   // -5 + 10 is not below 5
  EXPECT_THAT(MarksOf<double>(3, 1, {5, 0, 0}, 2.0), ElementsAre(0, 255, 0));  // 5 - 4 is above 0
}

TEST(ZeroCrossing, OfZeroLooksAtTheFourPairs) {
  for (const std::size_t k : {0, 1, 2, 3}) {
    std::vector<float> pixels(9, 0.0f);
    pixels[k] = -1.0f;
    pixels[8 - k] = 1.0f;
    EXPECT_EQ(MarksOf<float>(3, 3, pixels, 0.0)[4], 255) << k;
    EXPECT_EQ(MarksOf<float>(3, 3, pixels, 1.0)[4], 0) << k;
    pixels[k] = 1.0f;
    pixels[8 - k] = 1.0f;
    EXPECT_EQ(MarksOf<float>(3, 3, pixels, 0.0)[4], 0) << k;
  }
}

TEST(ZeroCrossing, OfAPositivePixelNeedsANegativeNeighbour) {
  for (const std::size_t k : {0, 1, 2, 3, 5, 6, 7, 8}) {
    std::vector<float> pixels(9, 0.0f);
    pixels[4] = 3.0f;
    EXPECT_EQ(MarksOf<float>(3, 3, pixels, 0.0)[4], 0);
    pixels[k] = -0.25f;
    EXPECT_EQ(MarksOf<float>(3, 3, pixels, 0.0)[4], 255) << k;
    EXPECT_EQ(MarksOf<float>(3, 3, pixels, 3.0)[4], 255) << k;
    EXPECT_EQ(MarksOf<float>(3, 3, pixels, 3.25)[4], 0) << k;  // -0.25 is not below 3 - 3.25
    EXPECT_EQ(MarksOf<float>(3, 3, pixels, 3.5)[4], 0) << k;
  }
}

TEST(ZeroCrossing, OfANegativePixelIsNeverMarked) {
  EXPECT_THAT(MarksOf<float>(3, 1, {-1, -2, 5}, 0.0), ElementsAre(0, 0, 255));
}

TEST(ZeroCrossing, ComparesAsDoubles) {
  const double threshold = 1.0 + 0x1p-30;  // 1 as a float, so that 1 - threshold would be 0
  EXPECT_EQ(MarksOf<float>(2, 1, {1.0f, -0x1p-29f}, threshold)[0], 255);
  EXPECT_EQ(MarksOf<float>(2, 1, {1.0f, -0x1p-31f}, threshold)[0], 0);
}

template <typename Pixel>
class ZeroCrossingTypes : public testing::Test {};
using RealPixels = testing::Types<float, double>;
TYPED_TEST_SUITE(ZeroCrossingTypes, RealPixels);

TYPED_TEST(ZeroCrossingTypes, AreThePlainComparisonsInAllVersions) {
  std::mt19937 random(4);
  const std::pair<std::size_t, std::size_t> shapes[] = {{1, 1}, {1, 7}, {7, 1}, {2, 2}, {67, 20}, {300, 40}};
  for (const auto& [cols, rows] : shapes) {
    for (const double threshold : {0.0, 0.5, 100.0, HUGE_VAL, std::nan("")}) {
      auto plane = RandomPlane<TypeParam>(cols, rows, Content::Wild, random);
      for (auto& pixel : plane.pixels) {
        if (random() % 8 == 0) pixel = 0;
      }
      Plane<double> wide{cols, rows, {plane.pixels.begin(), plane.pixels.end()}};
      std::vector<std::uint8_t> expected;
      for (std::size_t i = 0; i < cols * rows; ++i) {
        expected.push_back(PlainCrossing(wide, i / cols, i % cols, threshold) ? 255 : 0);
      }
      for (const SimdVersion version : AvailableSimdVersions()) {
        const ForcedSimdVersion forced(version);
        EXPECT_EQ(MarksOf<TypeParam>(cols, rows, plane.pixels, threshold), expected) << threshold;
      }
    }
  }
}

TEST(ZeroCrossing, MarksWith255InTheResultsType) {
  ImgProcess process;
  const auto image = ImageOf<float>(2, 1, {1, -1});
  const std::pair<std::uint16_t, double> packs[] = {{kPackUInt16, 255}, {kPackInt16, 255},
                                                    {kPackUInt32, 255}, {kPackInt32, 255},
                                                    {kPackFloat, 255},  {kPackDouble, 255}};
  for (const auto& [pack, mark] : packs) {
    ErdasImg marks;
    ASSERT_EQ(marks.Create(HeaderOf(pack, 2, 2, 1), false), 1);
    FillWithPattern(marks);
    const std::string second = BandBytes(marks, 1);
    EXPECT_EQ(process.ZeroCrossing(*image, 0.0, marks), 1);
    double values[2] = {};
    marks.GetPixelRow(0, 0, 0, values);
    EXPECT_THAT(values, ElementsAre(mark, 0.0)) << pack;
    EXPECT_EQ(BandBytes(marks, 1), second);
  }
}

TEST(ZeroCrossing, OfOtherTypesLeavesTheResult) {
  ImgProcess process;
  const auto image = ImageOf<std::uint8_t>(2, 1, {1, 0});
  const auto marks = ImageOf<std::uint8_t>(2, 1, {7, 7});
  EXPECT_EQ(process.ZeroCrossing(*image, 0.0, *marks), 1);
  EXPECT_THAT(BandPixelsOf<std::uint8_t>(*marks, 0), ElementsAre(7, 7));
}

TEST(ZeroCrossing, FailsOnImagesThatDoNotFit) {
  ImgProcess process;
  const auto image = ImageOf<float>(2, 1, {1, -1});
  const auto marks = ImageOf<std::uint8_t>(1, 2, {7, 7});
  ErdasImg empty;
  EXPECT_EQ(process.ZeroCrossing(*image, 0.0, *marks), -1);
  EXPECT_EQ(process.ZeroCrossing(*image, 0.0, empty), -1);
  EXPECT_EQ(process.ZeroCrossing(empty, 0.0, *marks), -1);
  EXPECT_THAT(BandPixelsOf<std::uint8_t>(*marks, 0), ElementsAre(7, 7));
}

TEST(WriteMarkedPixels, ListsColumnAndRowOfPixelsAbove0) {
  const TempFolder folder;
  ImgProcess process;
  const auto bytes = ImageOf<std::uint8_t>({{3, 2, {0, 1, 0, 0, 0, 255}}, {3, 2, {9, 0, 0, 0, 0, 0}}});
  EXPECT_EQ(process.WriteMarkedPixels(*bytes, "a.txt"), 1);
  EXPECT_EQ(ReadFileBytes("a.txt"), "0, 1, 0\n1, 2, 1\n2, 0, 0\n");
  const auto floats = ImageOf<float>(4, 1, {-1.0f, 0.0f, 1e-30f, std::nanf("")});
  EXPECT_EQ(process.WriteMarkedPixels(*floats, "b.txt"), 1);
  EXPECT_EQ(ReadFileBytes("b.txt"), "0, 2, 0\n");
  const auto doubles = ImageOf<double>(1, 2, {-1.0, 2.0});
  EXPECT_EQ(process.WriteMarkedPixels(*doubles, "c.txt"), 1);
  EXPECT_EQ(ReadFileBytes("c.txt"), "0, 0, 1\n");
}

TEST(WriteMarkedPixels, OfOtherTypesIsEmpty) {
  const TempFolder folder;
  ImgProcess process;
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackInt16, 1, 2, 2), false), 1);
  FillWithPattern(image);
  WriteFileBytes("a.txt", "old");
  EXPECT_EQ(process.WriteMarkedPixels(image, "a.txt"), 1);
  EXPECT_EQ(ReadFileBytes("a.txt"), "");
}

TEST(WriteMarkedPixels, TellsTheirNumber) {
  const TempFolder folder;
  ImgProcess process;
  std::int64_t nMarked = -1;
  const auto image = ImageOf<std::uint8_t>({{3, 1, {0, 1, 255}}, {3, 1, {9, 0, 0}}});
  EXPECT_EQ(process.WriteMarkedPixels(*image, "a.txt", &nMarked), 1);
  EXPECT_EQ(nMarked, 3);
}

TEST(WriteMarkedPixels, ThatCanNotOpenFails) {
  const TempFolder folder;
  TestFrontEnd ui;
  ImgProcess process;
  EXPECT_EQ(process.WriteMarkedPixels(*ImageOf<float>(1, 1, {1}), "none/a.txt"), -1);
  EXPECT_THAT(ui.events, ElementsAre("message warning: Open file none/a.txt error!"));
}

TEST(WriteMarkedPixels, OnAFullDiskLeavesTheOldFile) {
  const TempFolder folder;
  TestFrontEnd ui;
  ImgProcess process;
  WriteFileBytes("a.txt", "old");
  const FileSizeLimit limit(100);
  EXPECT_EQ(process.WriteMarkedPixels(*ImageOf<float>(50, 1, std::vector<float>(50, 1.0f)), "a.txt"), -3);
  EXPECT_THAT(ui.events, ElementsAre("message warning: Write file a.txt error!"));
  EXPECT_EQ(ReadFileBytes("a.txt"), "old");
}

}  // namespace
}  // namespace corvane
