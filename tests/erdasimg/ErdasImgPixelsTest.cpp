// Single pixels, rows and columns.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "erdasimg/ImageBytes.h"

namespace corvane {
namespace {

constexpr std::uint16_t kAllTypes[] = {kPackByte,   1,          kPackUInt16, kPackInt16,
                                       kPackUInt32, kPackInt32, kPackFloat,  kPackDouble};
constexpr double kUntouched = -77.5;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

double PixelOf(const ErdasImg& image, std::int32_t band, std::int32_t row, std::int32_t col) {
  double value = kUntouched;
  image.GetPixel(band, row, col, value);
  return value;
}

// 3 x 2 pixels, 1 to 6.
void MakeSix(ErdasImg& image, std::uint16_t packType) {
  ASSERT_EQ(image.Create(HeaderOf(packType, 1, 3, 2), false), 1);
  for (int i = 0; i < 6; ++i) image.SetPixel(0, i / 3, i % 3, i + 1);
}

TEST(ErdasImgPixels, EveryTypeGivesBackWhatFitsIt) {
  for (const std::uint16_t type : kAllTypes) {
    ErdasImg image;
    MakeSix(image, type);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(PixelOf(image, 0, i / 3, i % 3), i + 1) << type;
  }
}

TEST(ErdasImgPixels, PixelsStandInTheirTypeRowByRow) {
  ErdasImg image;
  MakeSix(image, kPackInt16);
  EXPECT_EQ(BandPixelsOf<std::int16_t>(image, 0), (std::vector<std::int16_t>{1, 2, 3, 4, 5, 6}));
  MakeSix(image, kPackDouble);
  EXPECT_EQ(BandPixelsOf<double>(image, 0), (std::vector<double>{1, 2, 3, 4, 5, 6}));
}

TEST(ErdasImgPixels, OutsideOfTheImageIsFalseAndLeavesTheValue) {
  ErdasImg image;
  MakeSix(image, kPackByte);
  const std::pair<int, int> places[] = {{2, 0},        {0, 3}, {-1, 0}, {0, -1}, {INT32_MAX, INT32_MAX},
                                        {1, INT32_MIN}};
  for (const auto& [row, col] : places) {
    double value = kUntouched;
    EXPECT_FALSE(image.GetPixel(0, row, col, value)) << row << " " << col;
    EXPECT_FALSE(image.GetPixels(row, col, &value));
    EXPECT_EQ(value, kUntouched);
  }
}

TEST(ErdasImgPixels, BandsThatAreNotThereReadAsZero) {
  ErdasImg image;
  double value = kUntouched;
  EXPECT_TRUE(image.GetPixel(0, 0, 0, value));
  EXPECT_EQ(value, 0.0);
  MakeSix(image, kPackFloat);
  EXPECT_EQ(PixelOf(image, 1, 0, 0), 0.0);
  EXPECT_EQ(PixelOf(image, -1, 0, 0), 0.0);
  EXPECT_TRUE(image.SetPixel(5, 0, 0, 9.0));
}

TEST(ErdasImgPixels, IntegersAreCutTowardsZeroToTheirWidth) {
  ErdasImg image;
  MakeSix(image, kPackByte);
  image.SetPixel(0, 0, 0, 300.9);
  EXPECT_EQ(PixelOf(image, 0, 0, 0), 44.0);
  image.SetPixel(0, 0, 0, -1.9);
  EXPECT_EQ(PixelOf(image, 0, 0, 0), 255.0);
  MakeSix(image, kPackInt16);
  image.SetPixel(0, 0, 0, 40000.0);
  EXPECT_EQ(PixelOf(image, 0, 0, 0), -25536.0);
  image.SetPixel(0, 0, 0, -2.9);
  EXPECT_EQ(PixelOf(image, 0, 0, 0), -2.0);
}

TEST(ErdasImgPixels, FloatsAreNarrowedAndDoublesKept) {
  ErdasImg image;
  MakeSix(image, kPackFloat);
  image.SetPixel(0, 0, 0, 0.1);
  EXPECT_EQ(PixelOf(image, 0, 0, 0), double{0.1f});
  MakeSix(image, kPackDouble);
  image.SetPixel(0, 0, 0, 0.1);
  EXPECT_EQ(PixelOf(image, 0, 0, 0), 0.1);
}

TEST(ErdasImgPixels, StoresOutsideAreDropped) {
  ErdasImg image;
  MakeSix(image, kPackByte);
  const std::string before = BandBytes(image, 0);
  EXPECT_TRUE(image.SetPixel(0, 0, 3, 99.0));
  EXPECT_TRUE(image.SetPixel(0, -1, 0, 99.0));
  EXPECT_TRUE(image.SetPixel(0, 2, 0, 99.0));
  EXPECT_TRUE(image.SetPixel(0, INT32_MAX, INT32_MAX, 99.0));
  EXPECT_EQ(BandBytes(image, 0), before);
}

TEST(ErdasImgPixels, PixelsBehindTheEndOfABandReadAsZero) {
  ErdasImg image;
  MakeSix(image, kPackInt32);
  image.SetSize(1000000, 1000000);
  EXPECT_EQ(PixelOf(image, 0, 0, 5), 6.0);
  EXPECT_EQ(PixelOf(image, 0, 0, 6), 0.0);
  EXPECT_EQ(PixelOf(image, 0, 999999, 999999), 0.0);
  image.SetPixel(0, 0, 6, 1.0);
  image.SetPixel(0, 999999, 999999, 1.0);
  std::vector<double> values(3, kUntouched);
  image.GetPixelRow(0, 0, 4, values);
  EXPECT_EQ(values, (std::vector<double>{5, 6, 0}));
  image.SetSize(INT32_MAX, INT32_MAX);
  EXPECT_EQ(PixelOf(image, 0, INT32_MAX - 1, INT32_MAX - 1), 0.0);
}

TEST(ErdasImgPixels, PixelSizeAndTypeMayDisagree) {
  for (const int size : {-4, 0, 1, 3, 16, INT32_MAX}) {
    ErdasImg image;
    MakeSix(image, kPackDouble);
    image.SetBytesPerPixel(size);
    for (int i = 0; i < 6; ++i) {
      image.SetPixel(0, i / 3, i % 3, 3.0);
      PixelOf(image, 0, i / 3, i % 3);
    }
    image.Fill(2.0);
    std::vector<double> values(3);
    image.GetPixelRow(0, 1, 0, values);
    image.SetPixelRow(0, 1, 0, values);
  }
}

TEST(ErdasImgPixels, AllBandsAtOnce) {
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackUInt16, 3, 2, 2), true), 1);
  const double stored[] = {7.0, 8.0, 9.0};
  EXPECT_TRUE(image.SetPixels(1, 0, stored));
  double values[3] = {};
  EXPECT_TRUE(image.GetPixels(1, 0, values));
  EXPECT_EQ(std::vector<double>(values, values + 3), (std::vector<double>{7, 8, 9}));
  EXPECT_EQ(PixelOf(image, 2, 1, 0), 9.0);
}

TEST(ErdasImgPixels, FillReachesEveryPixelOfEveryBand) {
  for (const std::uint16_t type : kAllTypes) {
    ErdasImg image;
    ASSERT_EQ(image.Create(HeaderOf(type, 2, 3, 2), false), 1);
    image.Fill(5.0);
    for (int i = 0; i < 12; ++i) EXPECT_EQ(PixelOf(image, i / 6, i % 6 / 3, i % 3), 5.0);
  }
}

TEST(ErdasImgPixels, PlacesOnTheGround) {
  ErdasImg image;
  MakeSix(image, kPackByte);
  image.GetHeader()->xMap = 100.0f;
  image.GetHeader()->yMap = 200.0f;
  image.GetHeader()->xCell = 10.0f;
  image.GetHeader()->yCell = -10.0f;
  double value = kUntouched;
  EXPECT_TRUE(image.GetPixelXY(0, 125.0, 185.0, value));  // col 2, row -trunc(15 / -10) = 1
  EXPECT_EQ(value, 6.0);
  EXPECT_TRUE(image.GetPixelXY(0, 95.0, 205.0, value));  // both cut to 0
  EXPECT_EQ(value, 1.0);
  value = kUntouched;
  EXPECT_FALSE(image.GetPixelXY(0, 130.0, 185.0, value));
  EXPECT_FALSE(image.GetPixelXY(0, 125.0, 180.0, value));
  EXPECT_FALSE(image.GetPixelXY(0, 90.0, 200.0, value));
  EXPECT_EQ(value, kUntouched);
}

TEST(ErdasImgPixels, PlacesThatAreNoNumbersAreOutside) {
  ErdasImg image;
  MakeSix(image, kPackByte);
  double value = kUntouched;
  for (const double bad : {std::nan(""), kInfinity, -kInfinity, 1e300, -1e300}) {
    EXPECT_FALSE(image.GetPixelXY(0, bad, 0.0, value));
    EXPECT_FALSE(image.GetPixelXY(0, 0.0, bad, value));
  }
  image.GetHeader()->yCell = 0.0f;
  EXPECT_FALSE(image.GetPixelXY(0, 0.0, 0.0, value));
  EXPECT_EQ(value, kUntouched);
}

TEST(ErdasImgPixels, RowsOfPixelsKeepWhatLiesOutside) {
  for (const std::uint16_t type : kAllTypes) {
    ErdasImg image;
    MakeSix(image, type);
    std::vector<double> values(6, kUntouched);
    image.GetPixelRow(0, 1, -2, values);
    EXPECT_EQ(values, (std::vector<double>{kUntouched, kUntouched, 4, 5, 6, kUntouched}));
    values.assign(2, kUntouched);
    image.GetPixelRow(0, 2, 0, values);
    image.GetPixelRow(0, -1, 0, values);
    image.GetPixelRow(0, 0, INT32_MAX, values);
    image.GetPixelRow(0, 0, INT32_MIN, values);
    EXPECT_EQ(values, (std::vector<double>{kUntouched, kUntouched}));
    image.GetPixelRow(0, 0, 1, values);
    EXPECT_EQ(values, (std::vector<double>{2, 3}));
  }
}

TEST(ErdasImgPixels, RowsOfPixelsAreStoredAsSinglesAre) {
  const std::vector<double> values = {-1.5, 300.7, 70000.0, kInfinity, std::nan(""), -3e9};
  for (const std::uint16_t type : kAllTypes) {
    ErdasImg row;
    ErdasImg single;
    ASSERT_EQ(row.Create(HeaderOf(type, 2, 4, 2), true), 1);
    ASSERT_EQ(single.Create(HeaderOf(type, 2, 4, 2), true), 1);
    row.SetPixelRow(1, 1, -1, values);
    for (int i = 0; i < 6; ++i) single.SetPixel(1, 1, i - 1, values[static_cast<std::size_t>(i)]);
    EXPECT_EQ(BandBytes(row, 0), BandBytes(single, 0));
    EXPECT_EQ(BandBytes(row, 1), BandBytes(single, 1)) << type;
  }
}

TEST(ErdasImgPixels, GetRowGivesAnEmptyBufferItsSize) {
  ErdasImg image;
  MakeSix(image, kPackUInt16);
  std::vector<std::uint8_t> buffer;
  image.GetRow(1, 0, buffer);
  EXPECT_EQ(buffer, (std::vector<std::uint8_t>{4, 0, 5, 0, 6, 0}));
  buffer.assign(2, 9);
  image.GetRow(0, 0, buffer);  // as much as there is room for
  EXPECT_EQ(buffer, (std::vector<std::uint8_t>{1, 0}));
  buffer.assign(6, 9);
  image.GetRow(2, 0, buffer);
  EXPECT_EQ(buffer, std::vector<std::uint8_t>(6, 0));
}

TEST(ErdasImgPixels, CopyRowDoesNothingWithoutABuffer) {
  ErdasImg image;
  MakeSix(image, kPackByte);
  image.CopyRow(0, 0, nullptr);
  std::uint8_t row[3] = {9, 9, 9};
  image.CopyRow(1, 0, row);
  EXPECT_EQ(std::vector<int>(row, row + 3), (std::vector<int>{4, 5, 6}));
  image.CopyRow(1, 7, row);  // no such band
  EXPECT_EQ(std::vector<int>(row, row + 3), (std::vector<int>{0, 0, 0}));
}

TEST(ErdasImgPixels, RowPointersLeadIntoTheBand) {
  ErdasImg image;
  MakeSix(image, kPackUInt16);
  std::uint8_t* pointer = nullptr;
  image.GetRowPointer(1, 0, pointer);
  EXPECT_EQ(pointer, image.GetBands()[0] + 6);
  image.GetRowPointer(2, 0, pointer);
  EXPECT_EQ(pointer, nullptr);
  image.GetRowPointer(0, 1, pointer);
  EXPECT_EQ(pointer, nullptr);
  image.SetSize(5, 2);  // the band holds the first row and a part of the second
  image.GetRowPointer(0, 0, pointer);
  EXPECT_EQ(pointer, image.GetBands()[0]);
  image.GetRowPointer(1, 0, pointer);
  EXPECT_EQ(pointer, nullptr);
  std::vector<std::uint8_t> buffer(10, 9);
  image.GetRow(1, 0, buffer);
  EXPECT_EQ(buffer, (std::vector<std::uint8_t>{6, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(ErdasImgPixels, ColumnsHaveOnePixelARow) {
  ErdasImg image;
  MakeSix(image, kPackInt32);
  std::int32_t column[2] = {};
  image.GetColumn(1, 0, reinterpret_cast<std::uint8_t*>(column));
  EXPECT_EQ(column[0], 2);
  EXPECT_EQ(column[1], 5);
  const std::int32_t stored[2] = {70, 80};
  image.SetColumn(2, 0, reinterpret_cast<const std::uint8_t*>(stored));
  EXPECT_EQ(BandPixelsOf<std::int32_t>(image, 0), (std::vector<std::int32_t>{1, 2, 70, 4, 5, 80}));
}

TEST(ErdasImgPixels, ColumnsStayWithinTheBand) {
  ErdasImg image;
  MakeSix(image, kPackByte);
  image.SetSize(4, 3);  // 6 of 12 pixels are there
  std::uint8_t column[3] = {9, 9, 9};
  image.GetColumn(1, 0, column);
  EXPECT_EQ(std::vector<int>(column, column + 3), (std::vector<int>{2, 6, 0}));
  image.GetColumn(2, 0, column);
  EXPECT_EQ(std::vector<int>(column, column + 3), (std::vector<int>{3, 0, 0}));
  image.GetColumn(4, 0, column);
  EXPECT_EQ(std::vector<int>(column, column + 3), (std::vector<int>{0, 0, 0}));
  const std::uint8_t stored[3] = {50, 60, 70};
  image.SetColumn(1, 0, stored);
  image.SetColumn(4, 0, stored);
  image.SetColumn(-1, 0, stored);
  EXPECT_EQ(BandPixelsOf<std::uint8_t>(image, 0), (std::vector<std::uint8_t>{1, 50, 3, 4, 5, 60}));
}

}  // namespace
}  // namespace corvane
