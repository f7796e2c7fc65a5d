#include "StereoPair/GradientSamples.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <vector>

#include "LsmScenes.h"
#include "numerics/SimdVersion.h"

namespace corvane {
namespace {

ErdasImg MakeNoise(std::int32_t cols, std::int32_t rows, std::uint16_t packType) {
  Dice dice(7);
  return MakeImage(
      cols, rows, [&](double, double) { return double{0} + dice.Byte(); }, packType);
}

std::vector<std::uint64_t> BitsOf(const std::vector<double>& numbers) {
  std::vector<std::uint64_t> bits;
  for (const double number : numbers)
    bits.push_back(std::isnan(number) ? 0 : std::bit_cast<std::uint64_t>(number));
  return bits;
}

void ExpectSingleSamples(const ErdasImg& image, const std::vector<double>& rows,
                         const std::vector<double>& cols) {
  const std::size_t n = rows.size();
  std::vector<double> samples(n), gCol(n), gRow(n), sample(n), col(n), row(n);
  for (std::size_t i = 0; i < n; ++i) {
    image.GetPixelBilinear(0, rows[i], cols[i], sample[i]);
    image.GetGradientBilinear(0, rows[i], cols[i], col[i], row[i]);
  }
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    SampleWithGradients(image, rows, cols, samples, gCol, gRow);
    EXPECT_EQ(BitsOf(samples), BitsOf(sample));
    EXPECT_EQ(BitsOf(gCol), BitsOf(col));
    EXPECT_EQ(BitsOf(gRow), BitsOf(row));
  }
}

TEST(SampleWithGradients, IsTheSamplesOneByOneBitForBit) {
  const ErdasImg image = MakeNoise(150, 140, kPackByte);
  Dice dice(1);
  for (int n = 0; n < 200; ++n) {
    const double row = dice.Between(0.0, 130.0);
    const double col = dice.Between(0.0, 140.0);
    std::vector<double> rows, cols;
    for (int i = 0; i < n; ++i) {
      rows.push_back(row + dice.Between(0.0, 9.0));
      cols.push_back(col + dice.Between(0.0, 9.0));
    }
    ExpectSingleSamples(image, rows, cols);
  }
}

TEST(SampleWithGradients, OfPlacesBesideWholeNumbersAndPowersOfTwo) {
  const ErdasImg image = MakeNoise(150, 140, kPackByte);
  for (const double whole : {1.0, 2.0, 3.0, 4.0, 7.0, 8.0, 31.0, 32.0, 63.0, 64.0, 127.0, 128.0}) {
    for (const double place : {whole, std::nextafter(whole, 0.0), std::nextafter(whole, 200.0),
                               whole - 0x1p-49, whole + 0x1p-48, whole - 0.5, whole + 0.3}) {
      ExpectSingleSamples(image, std::vector<double>(16, place), std::vector<double>(16, 20.3));
      ExpectSingleSamples(image, std::vector<double>(16, 20.3), std::vector<double>(16, place));
    }
  }
}

TEST(SampleWithGradients, OfPlacesNearTheBordersAndBeyond) {
  const ErdasImg image = MakeNoise(9, 8, kPackByte);
  std::vector<double> rows, cols;
  for (double row = -3.0; row < 11.0; row += 0.25) {
    for (double col = -3.0; col < 12.0; col += 0.25) {
      rows.push_back(row);
      cols.push_back(col);
    }
  }
  ExpectSingleSamples(image, rows, cols);
  for (std::size_t i = 0; i + 8 <= rows.size(); i += 8) {
    ExpectSingleSamples(image, {rows.begin() + i, rows.begin() + i + 8},
                        {cols.begin() + i, cols.begin() + i + 8});
  }
}

TEST(SampleWithGradients, OfPlacesThatAreNoNumbers) {
  const ErdasImg image = MakeNoise(50, 50, kPackByte);
  std::vector<double> rows(16, 20.5), cols(16, 20.5);
  rows[3] = std::nan("");
  cols[9] = HUGE_VAL;
  ExpectSingleSamples(image, rows, cols);
}

TEST(SampleWithGradients, OfOtherPixelTypes) {
  for (const std::uint16_t type :
       {kPackUInt16, kPackInt16, kPackUInt32, kPackInt32, kPackFloat, kPackDouble}) {
    const ErdasImg image = MakeNoise(50, 50, type);
    ExpectSingleSamples(image, std::vector<double>(19, 20.7), std::vector<double>(19, 20.2));
  }
}

TEST(SampleWithGradients, OfHeadersThatPromiseTooMuch) {
  ErdasImg image = MakeNoise(50, 50, kPackByte);
  image.SetSize(200, 300);
  ExpectSingleSamples(image, std::vector<double>(16, 150.5), std::vector<double>(16, 150.5));
  const ErdasImg empty;
  ExpectSingleSamples(empty, std::vector<double>(16, 0.5), std::vector<double>(16, 0.5));
}

}  // namespace
}  // namespace corvane
