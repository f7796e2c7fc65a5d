// Sums, tests of neighbourhoods, correlation and window statistics.

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "erdasimg/ImageBytes.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using Events = std::vector<std::string>;

void MakeImage(ErdasImg& image, std::uint16_t packType, int cols, const std::vector<double>& pixels) {
  const int rows = static_cast<int>(pixels.size()) / cols;
  ASSERT_EQ(image.Create(HeaderOf(packType, 1, cols, rows), false), 1);
  for (int i = 0; i < cols * rows; ++i) {
    image.SetPixel(0, i / cols, i % cols, pixels[static_cast<std::size_t>(i)]);
  }
}

void MakeNoise(ErdasImg& image, int cols, int rows, unsigned seed) {
  std::mt19937 random(seed);
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, cols, rows), false), 1);
  for (std::uint8_t& pixel : image.GetBands().GetBand(0)) pixel = static_cast<std::uint8_t>(random());
}

double PixelOf(const ErdasImg& image, std::int64_t row, std::int64_t col) {
  double value = 0.0;
  image.GetPixel(0, static_cast<std::int32_t>(row), static_cast<std::int32_t>(col), value);
  return value;
}

TEST(ErdasImgStatistics, SumsOfBandZero) {
  ErdasImg image;
  MakeImage(image, kPackByte, 3, {1, 2, 3, 4, 5, 255});
  image.ComputeSums();
  EXPECT_EQ(image.m_pixelSum, 270.0);
  EXPECT_EQ(image.m_pixelSumSq, 65080.0);
}

TEST(ErdasImgStatistics, SumsOfALargeBandAreExact) {
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 1000, 1000), false), 1);
  image.Fill(255.0);
  image.ComputeSums();
  EXPECT_EQ(image.m_pixelSum, 255e6);
  EXPECT_EQ(image.m_pixelSumSq, 65025e6);
}

TEST(ErdasImgStatistics, SumsWithoutAValue) {
  ErdasImg image;
  MakeImage(image, kPackByte, 3, {9, 2, 9, 4, 5, 9});
  image.ComputeSumsExcept(9);
  EXPECT_EQ(image.m_pixelSum, 11.0);
  EXPECT_EQ(image.m_pixelSumSq, 45.0);
  EXPECT_EQ(image.m_pixelCount, 3);
}

TEST(ErdasImgStatistics, PixelsBehindTheEndOfTheBandAreZeroInSums) {
  ErdasImg image;
  MakeImage(image, kPackByte, 2, {9, 2});
  image.SetSize(2, 3);
  image.ComputeSumsExcept(2);
  EXPECT_EQ(image.m_pixelSum, 9.0);
  EXPECT_EQ(image.m_pixelCount, 5);
  image.ComputeSumsExcept(0);
  EXPECT_EQ(image.m_pixelCount, 2);
  image.SetSize(INT32_MAX, INT32_MAX);
  image.ComputeSumsExcept(2);
  EXPECT_EQ(image.m_pixelCount, INT32_MAX);
  ErdasImg empty;
  empty.ComputeSums();
  EXPECT_EQ(empty.m_pixelSum, 0.0);
}

TEST(ErdasImgStatistics, SumsTakeOneByteAPixel) {
  ErdasImg image;
  MakeImage(image, kPackUInt16, 2, {9, 2});
  image.ComputeSums();
  EXPECT_EQ(image.m_pixelSum, 9.0);  // the bytes 9, 0
}

TEST(ErdasImgStatistics, AddsFloatsAndDoubles) {
  for (const std::uint16_t type : {kPackFloat, kPackDouble}) {
    ErdasImg image;
    ErdasImg other;
    MakeImage(image, type, 2, {1.5, 2, 3, 4});
    MakeImage(other, type, 2, {10, 20.25, 30, 40});
    EXPECT_EQ(image.AddImage(other), 1);
    EXPECT_EQ(PixelOf(image, 0, 0), 11.5);
    EXPECT_EQ(PixelOf(image, 0, 1), 22.25);
    EXPECT_EQ(PixelOf(image, 1, 1), 44.0);
  }
}

TEST(ErdasImgStatistics, OtherTypesStayWhenAdded) {
  const TempFolder folder;
  ErdasImg image;
  MakeImage(image, kPackInt32, 2, {1, 2});
  EXPECT_EQ(image.AddImage(image), 1);
  ASSERT_EQ(image.Write("a.lan"), 1);
  EXPECT_EQ(image.AddImage("a.lan"), 1);
  EXPECT_EQ(PixelOf(image, 0, 0), 1.0);
}

TEST(ErdasImgStatistics, OtherGeometryIsNotAdded) {
  ErdasImg image;
  ErdasImg other;
  MakeImage(image, kPackFloat, 2, {1, 2});
  MakeImage(other, kPackFloat, 1, {10, 20});
  EXPECT_EQ(image.AddImage(other), -1);
  MakeImage(other, kPackFloat, 2, {10, 20});
  other.GetHeader()->xMap = 1.0f;
  EXPECT_EQ(image.AddImage(other), -1);
  EXPECT_EQ(PixelOf(image, 0, 0), 1.0);
}

TEST(ErdasImgStatistics, AddsAFileLineByLine) {
  const TempFolder folder;
  ErdasImg image;
  ErdasImg other;
  ASSERT_EQ(image.Create(HeaderOf(kPackFloat, 2, 3, 2), false), 1);
  ASSERT_EQ(other.Create(HeaderOf(kPackFloat, 2, 3, 2), false), 1);
  image.Fill(1000.0);
  for (int i = 0; i < 12; ++i) other.SetPixel(i / 6, i % 6 / 3, i % 3, i);
  ASSERT_EQ(other.Write("a.lan"), 1);
  EXPECT_EQ(image.AddImage("a.lan"), 1);
  EXPECT_EQ(BandPixelsOf<float>(image, 0), (std::vector<float>{1000, 1001, 1002, 1003, 1004, 1005}));
  EXPECT_EQ(BandPixelsOf<float>(image, 1), (std::vector<float>{1006, 1007, 1008, 1009, 1010, 1011}));
}

TEST(ErdasImgStatistics, AFileThatIsCutShortIsAddedAsFarAsItGoesAndFails) {
  const TempFolder folder;
  TestFrontEnd ui;
  ErdasImg image;
  MakeImage(image, kPackFloat, 2, {1, 2, 3, 4});
  WriteFileBytes("a.lan", BytesOf(*image.GetHeader()) + PixelBytes<float>({10, 20, 30}) + "xy");
  EXPECT_EQ(image.AddImage("a.lan"), -1);
  EXPECT_EQ(BandPixelsOf<float>(image, 0), (std::vector<float>{11, 22, 33, 4}));
  EXPECT_EQ(ui.events, (Events{"message warning: Open file a.lan error!\nIt is cut short."}));
}

TEST(ErdasImgStatistics, AFileOfAHeaderAloneIsCutShort) {
  const TempFolder folder;
  TestFrontEnd ui;
  ErdasImg image;
  MakeImage(image, kPackDouble, 2, {1, 2});
  const std::string header = BytesOf(*image.GetHeader());
  for (const std::string& bytes : {header, header.substr(0, 127), std::string()}) {
    ui.events.clear();
    WriteFileBytes("a.lan", bytes);
    EXPECT_EQ(image.AddImage("a.lan"), -1);
    EXPECT_EQ(ui.events, (Events{"message warning: Open file a.lan error!\nIt is cut short."}));
  }
  EXPECT_EQ(PixelOf(image, 0, 1), 2.0);
}

TEST(ErdasImgStatistics, LongLinesAreAddedWhole) {
  const TempFolder folder;
  const int cols = 20001;  // doubles, more than are read at a time
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackDouble, 2, cols, 2), false), 1);
  std::vector<double> first(std::size_t{2} * cols);
  std::vector<double> second = first;
  for (int i = 0; i < 2 * cols; ++i) {
    first[static_cast<std::size_t>(i)] = 2.0 * i;
    second[static_cast<std::size_t>(i)] = -2.0 * i;
    image.SetPixel(0, i / cols, i % cols, i);
    image.SetPixel(1, i / cols, i % cols, -i);
  }
  ASSERT_EQ(image.Write("a.lan"), 1);
  EXPECT_EQ(image.AddImage("a.lan"), 1);
  EXPECT_EQ(BandPixelsOf<double>(image, 0), first);
  EXPECT_EQ(BandPixelsOf<double>(image, 1), second);
}

TEST(ErdasImgStatistics, NoLineOfAnAbsurdImageIsHeldInMemory) {
  const TempFolder folder;
  for (const std::uint16_t nBands : {0, 1}) {
    ErdasImg image;
    *image.GetHeader() = HeaderOf(kPackDouble, nBands, INT32_MAX, INT32_MAX);
    WriteFileBytes("a.lan", BytesOf(*image.GetHeader()) + "12345678");
    EXPECT_EQ(image.AddImage("a.lan"), nBands == 0 ? 1 : -1);
  }
}

TEST(ErdasImgStatistics, AFileThatDoesNotOpenIsAWarning) {
  const TempFolder folder;
  TestFrontEnd ui;
  ErdasImg image;
  MakeImage(image, kPackFloat, 2, {1, 2});
  EXPECT_EQ(image.AddImage("none.lan"), -1);
  EXPECT_EQ(ui.events, (Events{"message warning: Open file none.lan error!"}));
}

TEST(ErdasImgStatistics, AUniformBlockBeginsAtThePixel) {
  ErdasImg image;
  MakeImage(image, kPackInt16, 4,
            {7, 7, 7, 1,  //
             7, 7, 7, 7,  //
             7, 7, 7, 7,  //
             1, 7, 7, 7});
  EXPECT_TRUE(image.IsUniform3x3(0, 0, 0));
  EXPECT_FALSE(image.IsUniform3x3(0, 0, 1));
  EXPECT_FALSE(image.IsUniform3x3(0, 1, 0));
  EXPECT_TRUE(image.IsUniform3x3(0, 1, 1));
}

TEST(ErdasImgStatistics, WhatABlockHasOutsideOfTheImageDoesNotCount) {
  ErdasImg image;
  MakeImage(image, kPackByte, 3, {5, 5, 5, 5, 5, 5, 5, 5, 6});
  EXPECT_FALSE(image.IsUniform3x3(0, 0, 0));
  EXPECT_FALSE(image.IsUniform3x3(0, 1, 1));
  EXPECT_TRUE(image.IsUniform3x3(0, 2, 2));
  image.Fill(0.0);
  EXPECT_TRUE(image.IsUniform3x3(0, 1, 1));
  EXPECT_FALSE(image.IsUniform3x3(0, -1, 0));
  EXPECT_FALSE(image.IsUniform3x3(0, 0, 3));
  EXPECT_FALSE(image.IsUniform3x3(0, INT32_MAX, INT32_MAX));
}

TEST(ErdasImgStatistics, ALocalMaximumIsGreaterThanItsNeighbours) {
  ErdasImg image;
  MakeImage(image, kPackFloat, 4,
            {9, 1, 2, 2,   //
             1, -3, 1, 1,  //
             1, 1, 1, 5});
  EXPECT_TRUE(image.IsLocalMax(0, 0, 0));  // three neighbours are in the image
  EXPECT_FALSE(image.IsLocalMax(0, 1, 1));
  EXPECT_TRUE(image.IsLocalMax(0, 2, 3));
  EXPECT_FALSE(image.IsLocalMax(0, 3, 0));
  EXPECT_FALSE(image.IsLocalMax(0, INT32_MIN, INT32_MAX));
}

TEST(ErdasImgStatistics, AFlatAreaHasNoLocalMaximum) {
  ErdasImg image;
  MakeImage(image, kPackByte, 3, std::vector<double>(9, 5.0));
  for (int i = 0; i < 9; ++i) EXPECT_FALSE(image.IsLocalMax(0, i / 3, i % 3));
}

TEST(ErdasImgStatistics, ProminenceOfThePixelAgainstItsNeighbours) {
  ErdasImg image;
  MakeImage(image, kPackByte, 3, {10, 10, 10, 10, 10, 10, 10, 10, 20});
  EXPECT_EQ(image.IsProminent(1, 1, 0.3), 1);  // (20 - 10) / 20
  EXPECT_EQ(image.IsProminent(1, 1, 0.5), 0);  // not greater than the threshold
  EXPECT_EQ(image.IsProminent(2, 2, 0.3), 2);  // (20 - 10) / 20
  EXPECT_EQ(image.IsProminent(0, 0, 0.3), 0);
}

TEST(ErdasImgStatistics, TheFirstProminentNeighbourDecides) {
  ErdasImg image;
  MakeImage(image, kPackByte, 3, {10, 10, 1, 10, 10, 90, 10, 10, 10});
  EXPECT_EQ(image.IsProminent(1, 1, 0.3), 2);
  MakeImage(image, kPackByte, 3, {10, 90, 1, 10, 10, 90, 10, 10, 10});
  EXPECT_EQ(image.IsProminent(1, 1, 0.3), 1);
}

TEST(ErdasImgStatistics, ZeroAmongZerosIsNotProminent) {
  ErdasImg image;
  MakeImage(image, kPackByte, 3, std::vector<double>(9, 0.0));
  EXPECT_EQ(image.IsProminent(1, 1, 0.0), 0);
  image.SetPixel(0, 0, 0, 1.0);
  EXPECT_EQ(image.IsProminent(1, 1, 0.99), 1);
}

TEST(ErdasImgStatistics, NothingIsProminentOutsideOfTheImage) {
  ErdasImg image;
  MakeImage(image, kPackByte, 3, std::vector<double>(9, 50.0));
  EXPECT_EQ(image.IsProminent(-1, 0, 0.1), 0);
  EXPECT_EQ(image.IsProminent(0, 3, 0.1), 0);
  EXPECT_EQ(image.IsProminent(0, 0, 0.1), 0);  // neighbours outside do not count
  EXPECT_EQ(image.IsProminent(INT32_MAX, INT32_MIN, 0.1), 0);
}

TEST(ErdasImgStatistics, ProminentPixelsAreFoundOnGrowingCircles) {
  ErdasImg image;
  std::vector<double> pixels(11 * 11, 10.0);
  pixels[1 * 11 + 5] = 90.0;  // row 1, column 5
  MakeImage(image, kPackByte, 11, pixels);
  std::int32_t col = 5;
  std::int32_t row = 5;
  EXPECT_EQ(image.FindProminent(col, row, 1, 0.3), 0);  // from row trunc(5 - 1 - 0.5) = 3 down
  EXPECT_EQ(col, 5);
  EXPECT_EQ(row, 5);
  // At 1 pixel to the left, row trunc(5 - sqrt(3) - 0.5) = 2, which has the bright one as a neighbour.
  EXPECT_EQ(image.FindProminent(col, row, 2, 0.3), 1);
  EXPECT_EQ(col, 4);
  EXPECT_EQ(row, 2);
}

struct Find {
  int result;
  int col;
  int row;

  friend bool operator==(const Find&, const Find&) = default;
};

// The whole circles, pixel by pixel.
Find PlainFind(const ErdasImg& image, int col, int row, int radius, double threshold) {
  for (int r = 1; r <= radius; ++r) {
    for (int dx = -r; dx <= r; ++dx) {
      const double h = std::sqrt(static_cast<double>(r * r - dx * dx));
      for (const double place : {row - h - 0.5, row + h + 0.5}) {
        const int y = static_cast<int>(place);
        const int result = image.IsProminent(col + dx, y, threshold);
        if (result != 0) return {result, col + dx, y};
      }
    }
  }
  return {0, col, row};
}

Find FindOf(const ErdasImg& image, std::int32_t col, std::int32_t row, std::int32_t radius,
            double threshold) {
  const int result = image.FindProminent(col, row, radius, threshold);
  return {result, col, row};
}

TEST(ErdasImgStatistics, TheFirstFindOfACircleIsTaken) {
  ErdasImg image;
  MakeNoise(image, 30, 30, 5);
  for (int col = 0; col < 30; ++col) {
    EXPECT_EQ(FindOf(image, col, 29 - col, 6, 0.985), PlainFind(image, col, 29 - col, 6, 0.985));
  }
}

TEST(ErdasImgStatistics, ProminentPixelsAreFoundFromStartsInAndAroundTheImage) {
  std::mt19937 random(11);
  const std::pair<int, int> sizes[] = {{1, 1}, {9, 7}, {1, 25}, {25, 1}, {6, 20}};
  for (const auto& [cols, rows] : sizes) {
    SCOPED_TRACE(std::to_string(cols) + " x " + std::to_string(rows));
    for (int i = 0; i < 300; ++i) {
      ErdasImg image;
      ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, cols, rows), false), 1);
      const auto pixels = image.GetBands().GetBand(0);
      pixels[random() % pixels.size()] = 90;
      if (i % 3 == 0) image.SetSize(cols + i % 2, rows + 1);  // the band lacks some
      const int col = static_cast<int>(random() % 120) - 50;
      const int row = static_cast<int>(random() % 120) - 50;
      const int radius = static_cast<int>(random() % 110);
      EXPECT_EQ(FindOf(image, col, row, radius, 0.5), PlainFind(image, col, row, radius, 0.5))
          << col << " " << row << " " << radius;
    }
  }
}

TEST(ErdasImgStatistics, AProminentPixelIsFoundFromFarAway) {
  ErdasImg image;
  MakeImage(image, kPackByte, 3, {0, 0, 0, 0, 90, 0, 0, 0, 0});
  // The circle of radius 2e9 is the first to reach column 0, at row trunc(1 - 0 - 0.5).
  EXPECT_EQ(FindOf(image, -2000000000, 1, INT32_MAX, 0.5), (Find{1, 0, 0}));
  EXPECT_EQ(FindOf(image, -2000000000, 1, 1999999999, 0.5), (Find{0, -2000000000, 1}));
}

TEST(ErdasImgStatistics, NoRadiusTakesLongerThanAWalkOverTheImage) {
  const std::pair<int, int> sizes[] = {{1, 300000}, {300000, 1}, {500, 600}};
  for (const auto& [cols, rows] : sizes) {
    ErdasImg image;
    ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, cols, rows), false), 1);
    for (const int col : {INT32_MIN, -1, cols / 2, cols, INT32_MAX}) {
      for (const int row : {INT32_MIN, -1, rows / 2, rows, INT32_MAX}) {
        EXPECT_EQ(FindOf(image, col, row, INT32_MAX, 0.1), (Find{0, col, row}));
      }
    }
    image.SetSize(INT32_MAX, INT32_MAX);  // only what the band holds counts
    EXPECT_EQ(FindOf(image, 5, 5, INT32_MAX, 0.1), (Find{0, 5, 5}));
  }
}

TEST(ErdasImgStatistics, AnAbsurdRadiusEnds) {
  ErdasImg image;
  MakeImage(image, kPackByte, 3, std::vector<double>(9, 50.0));
  std::int32_t col = 1;
  std::int32_t row = 1;
  EXPECT_EQ(image.FindProminent(col, row, INT32_MAX, 0.1), 0);
  EXPECT_EQ(image.FindProminent(col, row, -5, 0.1), 0);
}

// The coefficient as it stands, in doubles.
double PlainCorrelation(const ErdasImg& pattern, int col, int row, const ErdasImg& other) {
  const ImageSize size = pattern.GetSize();
  double s = 0.0;
  double q = 0.0;
  double p = 0.0;
  for (int i = 0; i < size.cy; ++i) {
    for (int j = 0; j < size.cx; ++j) {
      const double w = PixelOf(other, row - size.cy / 2 + i, col - size.cx / 2 + j);
      s += w;
      q += w * w;
      p += w * PixelOf(pattern, i, j);
    }
  }
  const double n = static_cast<double>(size.cx) * size.cy;
  const double a = pattern.m_pixelSumSq - pattern.m_pixelSum * pattern.m_pixelSum / n;
  const double b = q - s * s / n;
  return (p - s * pattern.m_pixelSum / n) / std::sqrt(a * b);
}

TEST(ErdasImgStatistics, CorrelationIsThePlainFormulaInsideAndAcrossTheBorder) {
  ErdasImg pattern;
  ErdasImg other;
  MakeNoise(pattern, 7, 4, 1);
  MakeNoise(other, 20, 15, 2);
  pattern.ComputeSums();
  for (int row = -1; row < 16; ++row) {
    for (int col = -2; col < 22; ++col) {
      EXPECT_EQ(ErdasImg::CorrelateWindow(pattern, col, row, other),
                PlainCorrelation(pattern, col, row, other));
    }
  }
}

TEST(ErdasImgStatistics, APatternWithoutSumsHasNoCorrelation) {
  ErdasImg image;
  MakeNoise(image, 5, 5, 3);
  EXPECT_TRUE(std::isnan(ErdasImg::CorrelateWindow(image, 2, 2, image)));  // Q - S^2 / n is negative
  image.Fill(3.0);
  EXPECT_EQ(ErdasImg::CorrelateWindow(image, 2, 2, image), 0.0);
}

TEST(ErdasImgStatistics, AnImageCorrelatesWithItself) {
  ErdasImg pattern;
  MakeNoise(pattern, 5, 5, 3);
  pattern.ComputeSums();
  EXPECT_NEAR(ErdasImg::CorrelateWindow(pattern, 2, 2, pattern), 1.0, 1e-12);
}

TEST(ErdasImgStatistics, FlatWindowsCorrelateByRule) {
  ErdasImg flat;
  ErdasImg other;
  MakeImage(flat, kPackByte, 3, std::vector<double>(9, 7.0));
  MakeNoise(other, 3, 3, 4);
  flat.ComputeSums();
  other.ComputeSums();
  EXPECT_EQ(ErdasImg::CorrelateWindow(flat, 1, 1, flat), 1.0);
  EXPECT_EQ(ErdasImg::CorrelateWindow(flat, 1, 1, other), 0.0);
  EXPECT_EQ(ErdasImg::CorrelateWindow(other, 1, 1, flat), 0.0);
  EXPECT_EQ(ErdasImg::CorrelateWindow(other, INT32_MAX, INT32_MIN, other), 0.0);  // all outside: flat
  ErdasImg none;
  none.SetSize(0, 0);
  EXPECT_EQ(ErdasImg::CorrelateWindow(none, 0, 0, other), 0.0);
}

TEST(ErdasImgStatistics, CorrelationStaysWithinTheBands) {
  ErdasImg pattern;
  MakeNoise(pattern, 4, 4, 6);
  pattern.ComputeSums();
  pattern.SetSize(1000, 1000);
  ErdasImg other;
  MakeNoise(other, 4, 4, 7);
  other.SetSize(3000, 3000);
  EXPECT_TRUE(std::isfinite(ErdasImg::CorrelateWindow(pattern, 500, 500, other)));
}

TEST(ErdasImgStatistics, MinimumAndMaximumOfEachBand) {
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackInt16, 2, 5, 5), false), 1);
  for (int i = 0; i < 50; ++i) image.SetPixel(i / 25, i % 25 / 5, i % 5, i % 25 - 12 + 100 * (i / 25));
  std::vector<double> values = {-1.0};
  image.GetWindowStatistics(2, 2, 3, 3, values);  // columns and rows 1 to 3: pixels 6 to 18
  EXPECT_EQ(values, (std::vector<double>{-1, -6, 6, 94, 106}));
  EXPECT_EQ(image.m_subsetRect, (ImageRect{1, 1, 3, 3}));
}

TEST(ErdasImgStatistics, AnEvenWindowReachesFurtherToTheLeft) {
  ErdasImg image;
  MakeImage(image, kPackByte, 5, {1, 2, 3, 4, 5});
  std::vector<double> values;
  image.GetWindowStatistics(2, 0, 4, 1, values);  // columns 0 to 3
  EXPECT_EQ(values, (std::vector<double>{1, 4}));
}

TEST(ErdasImgStatistics, NotANumberDoesNotCount) {
  ErdasImg image;
  MakeImage(image, kPackDouble, 3, {std::nan(""), 2, 5});
  std::vector<double> values;
  image.GetWindowStatistics(1, 0, 3, 1, values);
  EXPECT_EQ(values, (std::vector<double>{2, 5}));
}

TEST(ErdasImgStatistics, ThereIsNothingToTellOfAWindowWithoutSize) {
  ErdasImg image;
  MakeImage(image, kPackByte, 5, {1, 2, 3, 4, 5});
  image.GetSubset(0, 1, 0, 0);
  std::vector<double> values;
  image.GetWindowStatistics(2, 0, 0, 1, values);
  image.GetWindowEntropy(2, 0, 1, -1, values);
  image.GetWindowEntropy(INT32_MAX, 0, 9, 1, values);
  image.GetWindowStatistics(INT32_MIN, 0, 9, 1, values);
  EXPECT_TRUE(values.empty());
}

TEST(ErdasImgStatistics, EntropyInNaturalLogarithms) {
  ErdasImg image;
  MakeImage(image, kPackByte, 4, {1, 1, 2, 2, 3, 3, 4, 4});
  std::vector<double> values;
  image.GetWindowEntropy(2, 1, 4, 2, values);
  ASSERT_EQ(values.size(), 1u);
  EXPECT_NEAR(values[0], std::log(4.0), 1e-15);  // four values, equally often
  image.Fill(9.0);
  image.GetWindowEntropy(2, 1, 4, 2, values);
  EXPECT_NEAR(values[1], 0.0, 1e-15);
}

TEST(ErdasImgStatistics, EntropyOfEachBandByTheFormula) {
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 2, 4, 1), false), 1);
  for (int col = 0; col < 4; ++col) image.SetPixel(1, 0, col, col == 0 ? 255 : 0);
  std::vector<double> values;
  image.GetWindowEntropy(2, 0, 4, 1, values);
  ASSERT_EQ(values.size(), 2u);
  EXPECT_EQ(values[0], 0.0);
  EXPECT_NEAR(values[1], std::log(4.0) - 3.0 * std::log(3.0) / 4.0, 1e-15);
}

TEST(ErdasImgStatistics, ValuesBeyondTheBinsFallIntoNone) {
  ErdasImg image;
  MakeImage(image, kPackFloat, 4, {0.0, 0.9, 256.0, std::nan("")});
  std::vector<double> values;
  image.GetWindowEntropy(2, 0, 4, 1, values);
  EXPECT_NEAR(values[0], std::log(4.0) - 2.0 * std::log(2.0) / 4.0, 1e-15);
}

}  // namespace
}  // namespace corvane
