#include "erdasimg/RasterTools.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "erdasimg/ImageBytes.h"
#include "io/MachineMemory.h"

namespace corvane {
namespace {

using testing::ElementsAre;

constexpr float kInfinity = std::numeric_limits<float>::infinity();

// One band of that type, filled row by row.
void Fill(ErdasImg& image, std::uint16_t packType, std::int32_t cols, const std::vector<double>& values) {
  const auto rows = static_cast<std::int32_t>(values.size()) / cols;
  ASSERT_EQ(image.Create(HeaderOf(packType, 1, cols, rows), false), 1);
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto at = static_cast<std::int32_t>(i);
    image.SetPixel(0, at / cols, at % cols, values[i]);
  }
}

std::vector<double> Numbers(int n) {
  std::vector<double> numbers;
  for (int i = 0; i < n; ++i) numbers.push_back(i);
  return numbers;
}

// MakeImage

TEST(MakeImage, TakesTheHeaderAndTheSizeCutTowardsZero) {
  ErdasHeader header = HeaderOf(kPackInt16, 2, 77, 88);
  header.xStart = 5;
  header.mapType = 9;
  ErdasImg image;
  ASSERT_EQ(MakeImage(header, 3.9, 4.1, image), 1);
  header.rows = 3;
  header.cols = 4;
  EXPECT_EQ(BytesOf(*image.GetHeader()), BytesOf(header));
  EXPECT_EQ(BandBytes(image, 1), std::string(24, '\0'));
}

TEST(MakeImage, RefusesSizesThatMakeNone) {
  ErdasImg image;
  for (const double size : {0.0, 0.99, -1.0, std::nan(""), -double{kInfinity}}) {
    EXPECT_EQ(MakeImage(HeaderOf(kPackByte, 1, 1, 1), size, 4.0, image), -1) << size;
    EXPECT_EQ(MakeImage(HeaderOf(kPackByte, 1, 1, 1), 4.0, size, image), -1) << size;
  }
  for (const double size : {2147483648.0, 1e300, double{kInfinity}}) {
    EXPECT_EQ(MakeImage(HeaderOf(kPackByte, 1, 1, 1), size, 4.0, image), -2) << size;
    EXPECT_EQ(MakeImage(HeaderOf(kPackByte, 1, 1, 1), 4.0, size, image), -2) << size;
  }
  // More than the machine's memory: as many bytes in 65535 bands.
  const double rows = static_cast<double>(BytesOfMachine()) / 65535 / 1000 + 2;
  EXPECT_EQ(MakeImage(HeaderOf(kPackByte, 65535, 1, 1), rows, 1000.0, image), -2);
  EXPECT_FALSE(image.HasPixels());
}

// FlatDem

TEST(FlatDem, CentreOfTheFirstCellIsItsPlace) {
  ErdasImg dem;
  ASSERT_EQ(FlatDem({.minX = 10, .minY = 20, .maxX = 16, .maxY = 24}, 2.0f, 7.5, dem), 1);
  const ErdasHeader& header = *dem.GetHeader();
  EXPECT_EQ(header.packType, 6);
  EXPECT_EQ(header.bandCount, 1);
  EXPECT_EQ(header.mapType, 0);
  EXPECT_EQ(dem.GetSize(), (ImageSize{3, 2}));
  EXPECT_EQ(header.xMap, 11.0f);
  EXPECT_EQ(header.yMap, 23.0f);
  EXPECT_EQ(header.xCell, 2.0f);
  EXPECT_EQ(header.yCell, -2.0f);
  EXPECT_EQ(BandPixelsOf<float>(dem, 0), std::vector<float>(6, 7.5f));
}

TEST(FlatDem, CountsAreRounded) {
  ErdasImg dem;
  EXPECT_EQ(FlatDem({.minX = 0, .minY = 0, .maxX = 7.4, .maxY = 7.5}, 1.0f, 0, dem), 1);
  EXPECT_EQ(dem.GetSize(), (ImageSize{7, 8}));
  EXPECT_EQ(FlatDem({.minX = 0, .minY = 0, .maxX = 0.5, .maxY = 0.5}, 1.0f, 0, dem), 1);
  EXPECT_EQ(dem.GetSize(), (ImageSize{1, 1}));
}

TEST(FlatDem, RefusesWhatIsNoGrid) {
  const GroundExtent rect = {.minX = 0, .minY = 0, .maxX = 4, .maxY = 4};
  ErdasImg dem;
  for (const float cell : {0.0f, -1.0f, NAN, kInfinity, -kInfinity}) {
    EXPECT_EQ(FlatDem(rect, cell, 0, dem), -1) << cell;
  }
  EXPECT_EQ(FlatDem({.minX = 4, .minY = 0, .maxX = 0, .maxY = 4}, 1.0f, 0, dem), -1);
  EXPECT_EQ(FlatDem({.minX = 0, .minY = 0, .maxX = 4, .maxY = 0.4}, 1.0f, 0, dem), -1);
  EXPECT_EQ(FlatDem({.minX = 0, .minY = NAN, .maxX = 4, .maxY = 4}, 1.0f, 0, dem), -1);
}

TEST(FlatDem, RefusesMoreCellsThanTwoToThe31) {
  ErdasImg dem;
  EXPECT_EQ(FlatDem({.minX = 0, .minY = 0, .maxX = 65536, .maxY = 32769}, 1.0f, 0, dem), -3);
  EXPECT_EQ(FlatDem({.minX = 0, .minY = 0, .maxX = 2147483648.0, .maxY = 1}, 1.0f, 0, dem), -3);
  EXPECT_EQ(FlatDem({.minX = 0, .minY = 0, .maxX = 1e300, .maxY = 1e300}, 1.0f, 0, dem), -3);
  EXPECT_EQ(FlatDem({.minX = 0, .minY = 0, .maxX = 1, .maxY = 1}, 1e-30f, 0, dem), -3);
}

// Memory that is only promised costs nothing, so that the cells would be asked for all the same.
TEST(FlatDem, RefusesMoreThanTheMachinesMemory) {
  constexpr double kRows = 65536;
  constexpr double kCols = 32768;
  if (kRows * kCols * sizeof(float) <= static_cast<double>(BytesOfMachine())) GTEST_SKIP();
  ErdasImg dem;
  EXPECT_EQ(FlatDem({.minX = 0, .minY = 0, .maxX = kCols, .maxY = kRows}, 1.0f, 0, dem), -2);
  EXPECT_FALSE(dem.GetBands());
}

// SampleImage

TEST(SampleImage, EachNthPixelOfEachNthRow) {
  ErdasImg image;
  ErdasImg sampled;
  Fill(image, kPackByte, 4, Numbers(16));
  image.GetHeader()->xMap = 5.0f;
  image.GetHeader()->yMap = 6.0f;
  image.GetHeader()->xCell = 0.5f;
  image.GetHeader()->yCell = -0.25f;
  ASSERT_EQ(SampleImage(image, 2, sampled), 1);
  EXPECT_EQ(sampled.GetSize(), (ImageSize{2, 2}));
  EXPECT_THAT(BandPixelsOf<std::uint8_t>(sampled, 0), ElementsAre(0, 2, 8, 10));
  EXPECT_EQ(sampled.GetHeader()->xMap, 5.0f);
  EXPECT_EQ(sampled.GetHeader()->yMap, 6.0f);
  EXPECT_EQ(sampled.GetHeader()->xCell, 1.0f);
  EXPECT_EQ(sampled.GetHeader()->yCell, -0.5f);
}

// After three pixels the walk stands on column 9 and goes on by 10 mod 3 = 1 pixel and two rows.
TEST(SampleImage, TenByTenByThreeGivesThreeByThree) {
  ErdasImg image;
  ErdasImg sampled;
  Fill(image, kPackByte, 10, Numbers(100));
  ASSERT_EQ(SampleImage(image, 3, sampled), 1);
  EXPECT_EQ(sampled.GetSize(), (ImageSize{3, 3}));
  EXPECT_THAT(BandPixelsOf<std::uint8_t>(sampled, 0), ElementsAre(0, 3, 6, 30, 33, 36, 60, 63, 66));
}

// 6 rows mod 3 is 0, so that each sampled row begins 7 mod 3 = 1 pixel further to the left.
TEST(SampleImage, ColumnsDriftByTheRemainderOfTheRows) {
  ErdasImg image;
  ErdasImg sampled;
  Fill(image, kPackInt16, 7, Numbers(42));
  ASSERT_EQ(SampleImage(image, 3, sampled), 1);
  EXPECT_EQ(sampled.GetSize(), (ImageSize{2, 2}));
  EXPECT_THAT(BandPixelsOf<std::int16_t>(sampled, 0), ElementsAre(0, 3, 20, 23));
}

// 2 columns and 23 rows by 2: each sampled row begins 2 + 1 + 2 = 5 pixels behind the last, the eleventh one
// at pixel 50 of 46.
TEST(SampleImage, BehindTheBandIsZero) {
  ErdasImg image;
  ErdasImg sampled;
  Fill(image, kPackByte, 2, std::vector<double>(46, 1));
  ASSERT_EQ(SampleImage(image, 2, sampled), 1);
  EXPECT_THAT(BandPixelsOf<std::uint8_t>(sampled, 0), ElementsAre(1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0));
}

// The documented walk, with a test at each step whether it is still in the band.
std::vector<float> Walk(const std::vector<float>& band, int cols, int rows, int n) {
  std::vector<float> sampled;
  long at = 0;
  for (int row = 0; row < rows / n; ++row) {
    for (int col = 0; col < cols / n; ++col, at += n) {
      sampled.push_back(at < static_cast<long>(band.size()) ? band[static_cast<std::size_t>(at)] : 0.0f);
    }
    at += rows % n + (n - 1L) * cols;
  }
  return sampled;
}

TEST(SampleImage, WalksAsDocumentedForAllSizes) {
  std::mt19937 random(4);
  for (int i = 0; i < 300; ++i) {
    const int n = 2 + static_cast<int>(random() % 5);
    const int cols = n + static_cast<int>(random() % 12);
    const int rows = n + static_cast<int>(random() % 40);
    ErdasImg image;
    ASSERT_EQ(image.Create(HeaderOf(kPackFloat, 2, cols, rows), false), 1);
    FillWithPattern(image);
    ErdasImg sampled;
    ASSERT_EQ(SampleImage(image, n, sampled), 1);
    for (int band = 0; band < 2; ++band) {
      ASSERT_EQ(BandPixelsOf<float>(sampled, band), Walk(BandPixelsOf<float>(image, band), cols, rows, n))
          << cols << " x " << rows << " by " << n;
    }
  }
}

TEST(SampleImage, NothingLeft) {
  ErdasImg image;
  ErdasImg sampled;
  Fill(image, kPackByte, 4, Numbers(8));
  EXPECT_EQ(SampleImage(image, 3, sampled), -1);
  EXPECT_EQ(SampleImage(image, INT32_MAX, sampled), -1);
  EXPECT_FALSE(sampled.GetBands());
}

TEST(SampleImage, EmptyImage) {
  const ErdasImg empty;
  ErdasImg sampled;
  EXPECT_EQ(SampleImage(empty, 2, sampled), -1);
}

// DivideImage

TEST(DivideImage, CutsIntegersTowardsZero) {
  ErdasImg image;
  ErdasImg divided;
  Fill(image, kPackInt16, 4, {7, -7, 1, -32768});
  ASSERT_EQ(DivideImage(image, 2, divided), 1);
  EXPECT_THAT(BandPixelsOf<std::int16_t>(divided, 0), ElementsAre(3, -3, 0, -16384));
  EXPECT_EQ(BytesOf(*divided.GetHeader()), BytesOf(*image.GetHeader()));
}

TEST(DivideImage, DividesFloatsInDouble) {
  ErdasImg image;
  ErdasImg divided;
  Fill(image, kPackFloat, 2, {1, -10});
  ASSERT_EQ(DivideImage(image, 3, divided), 1);
  EXPECT_THAT(BandPixelsOf<float>(divided, 0),
              ElementsAre(static_cast<float>(1.0 / 3.0), static_cast<float>(-10.0 / 3.0)));
}

TEST(DivideImage, EachBand) {
  ErdasImg image;
  ErdasImg divided;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 3, 1, 1), false), 1);
  for (int band = 0; band < 3; ++band) image.SetPixel(band, 0, 0, 10.0 * band);
  ASSERT_EQ(DivideImage(image, 5, divided), 1);
  EXPECT_EQ(BandBytes(divided, 0) + BandBytes(divided, 1) + BandBytes(divided, 2),
            PixelBytes<std::uint8_t>({0, 2, 4}));
}

TEST(DivideImage, ByZeroMakesInfinitiesAndSaturatesIntegers) {
  ErdasImg image;
  ErdasImg divided;
  Fill(image, kPackFloat, 3, {1, -1, 0});
  ASSERT_EQ(DivideImage(image, 0, divided), 1);
  const auto floats = BandPixelsOf<float>(divided, 0);
  EXPECT_EQ(floats[0], kInfinity);
  EXPECT_EQ(floats[1], -kInfinity);
  EXPECT_TRUE(std::isnan(floats[2]));
  Fill(image, kPackInt16, 3, {1, -1, 0});
  ASSERT_EQ(DivideImage(image, 0, divided), 1);
  EXPECT_THAT(BandPixelsOf<std::int16_t>(divided, 0), ElementsAre(32767, -32768, 0));
  Fill(image, kPackByte, 2, {9, 0});
  ASSERT_EQ(DivideImage(image, 0, divided), 1);
  EXPECT_THAT(BandPixelsOf<std::uint8_t>(divided, 0), ElementsAre(255, 0));
}

// SubtractImages

TEST(SubtractImages, BytesWrapAround) {
  ErdasImg first;
  ErdasImg second;
  ErdasImg difference;
  Fill(first, kPackByte, 3, {5, 0, 255});
  Fill(second, kPackByte, 3, {2, 1, 255});
  ASSERT_EQ(SubtractImages(first, second, difference), 1);
  EXPECT_THAT(BandPixelsOf<std::uint8_t>(difference, 0), ElementsAre(3, 255, 0));
}

TEST(SubtractImages, ShortIntegersWrapAround) {
  ErdasImg first;
  ErdasImg second;
  ErdasImg difference;
  Fill(first, kPackInt16, 3, {32767, -32768, 3});
  Fill(second, kPackInt16, 3, {-1, 1, 5});
  ASSERT_EQ(SubtractImages(first, second, difference), 1);
  EXPECT_THAT(BandPixelsOf<std::int16_t>(difference, 0), ElementsAre(-32768, 32767, -2));
}

TEST(SubtractImages, FloatsInTheirOwnPrecision) {
  ErdasImg first;
  ErdasImg second;
  ErdasImg difference;
  Fill(first, kPackFloat, 2, {16777216, 0.1});
  Fill(second, kPackFloat, 2, {0.5, 0.3});
  ASSERT_EQ(SubtractImages(first, second, difference), 1);
  EXPECT_THAT(BandPixelsOf<float>(difference, 0), ElementsAre(16777216.0f, 0.1f - 0.3f));
  Fill(first, kPackDouble, 2, {16777216, 0.1});
  Fill(second, kPackDouble, 2, {0.5, 0.3});
  ASSERT_EQ(SubtractImages(first, second, difference), 1);
  EXPECT_THAT(BandPixelsOf<double>(difference, 0), ElementsAre(16777215.5, 0.1 - 0.3));
}

TEST(SubtractImages, OtherTypesStayZero) {
  for (const int packType : {1, 2, 4, 5, 9}) {
    ErdasImg first;
    ErdasImg second;
    ErdasImg difference;
    Fill(first, static_cast<std::uint16_t>(packType), 2, {5, 6});
    Fill(second, static_cast<std::uint16_t>(packType), 2, {1, 1});
    ASSERT_EQ(SubtractImages(first, second, difference), 1);
    EXPECT_EQ(difference.GetPackType(), packType);
    const std::string bytes = BandBytes(difference, 0);
    EXPECT_EQ(bytes, std::string(bytes.size(), '\0')) << packType;
  }
}

TEST(SubtractImages, OnlyWhereBothHavePixels) {
  ErdasImg first;
  ErdasImg second;
  ErdasImg difference;
  Fill(first, kPackByte, 3, {9, 9, 9, 9, 9, 9});
  Fill(second, kPackByte, 2, {1, 2, 3, 4, 5, 6});
  ASSERT_EQ(SubtractImages(first, second, difference), 1);
  EXPECT_THAT(BandPixelsOf<std::uint8_t>(difference, 0), ElementsAre(8, 7, 0, 6, 5, 0));
  ASSERT_EQ(SubtractImages(second, first, difference), 1);
  EXPECT_THAT(BandPixelsOf<std::uint8_t>(difference, 0), ElementsAre(248, 249, 250, 251, 0, 0));
}

TEST(SubtractImages, BandsThatTheSecondLacksStayZero) {
  ErdasImg first;
  ErdasImg second;
  ErdasImg difference;
  ASSERT_EQ(first.Create(HeaderOf(kPackByte, 2, 1, 1), false), 1);
  first.Fill(7);
  Fill(second, kPackByte, 1, {3});
  ASSERT_EQ(SubtractImages(first, second, difference), 1);
  EXPECT_EQ(BandBytes(difference, 0) + BandBytes(difference, 1), PixelBytes<std::uint8_t>({4, 0}));
}

// The size was changed behind the pixels' back.
TEST(SubtractImages, RowsThatAreNotThereAreZero) {
  ErdasImg first;
  ErdasImg second;
  ErdasImg difference;
  Fill(first, kPackByte, 2, {9, 9, 9, 9});
  Fill(second, kPackByte, 2, {1, 2});
  second.SetSize(2, 2);
  ASSERT_EQ(SubtractImages(first, second, difference), 1);
  EXPECT_THAT(BandPixelsOf<std::uint8_t>(difference, 0), ElementsAre(8, 7, 9, 9));
}

TEST(SubtractImages, UnlikeTypesTakeTheFirstsType) {
  ErdasImg first;
  ErdasImg second;
  ErdasImg difference;
  Fill(first, kPackFloat, 2, {1.5, 2});
  Fill(second, kPackByte, 2, {1, 255});
  ASSERT_EQ(SubtractImages(first, second, difference), 1);
  EXPECT_THAT(BandPixelsOf<float>(difference, 0), ElementsAre(0.5f, -253.0f));
  ASSERT_EQ(SubtractImages(second, first, difference), 1);
  EXPECT_THAT(BandPixelsOf<std::uint8_t>(difference, 0), ElementsAre(0, 253));
}

TEST(SubtractImages, EmptyImages) {
  const ErdasImg empty;
  ErdasImg image;
  ErdasImg difference;
  Fill(image, kPackByte, 2, {5, 6});
  ASSERT_EQ(SubtractImages(image, empty, difference), 1);
  EXPECT_THAT(BandPixelsOf<std::uint8_t>(difference, 0), ElementsAre(5, 0));
  ASSERT_EQ(SubtractImages(empty, image, difference), 1);
  EXPECT_EQ(difference.GetSize(), (ImageSize{1, 1}));
}

}  // namespace
}  // namespace corvane
