// Samples between pixels and their gradients.

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "erdasimg/ImageBytes.h"

namespace corvane {
namespace {

constexpr std::uint16_t kAllTypes[] = {kPackByte,   1,          kPackUInt16, kPackInt16,
                                       kPackUInt32, kPackInt32, kPackFloat,  kPackDouble};
constexpr double kUntouched = -77.5;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// 4 x 3 pixels of 10 * row + col.
void MakeRamp(ErdasImg& image, std::uint16_t packType) {
  ASSERT_EQ(image.Create(HeaderOf(packType, 1, 4, 3), false), 1);
  for (int row = 0; row < 3; ++row) {
    for (int col = 0; col < 4; ++col) image.SetPixel(0, row, col, 10 * row + col);
  }
}

double BilinearOf(const ErdasImg& image, double row, double col, std::int32_t band = 0) {
  double value = kUntouched;
  EXPECT_TRUE(image.GetPixelBilinear(band, row, col, value));
  return value;
}

double BicubicOf(const ErdasImg& image, double row, double col, std::int32_t band = 0) {
  double value = kUntouched;
  EXPECT_TRUE(image.GetPixelBicubic(band, row, col, value));
  return value;
}

// The formulas as they stand, through GetPixel alone.
double PlainPixel(const ErdasImg& image, double row, double col) {
  double value = 215.0;
  const double r = std::trunc(row + 0.5);
  const double c = std::trunc(col + 0.5);
  if (std::abs(r) < 1e6 && std::abs(c) < 1e6) {
    image.GetPixel(0, static_cast<int>(r), static_cast<int>(c), value);
  }
  return value;
}

double PlainBilinear(const ErdasImg& image, double row, double col) {
  const double a = PlainPixel(image, row - 0.5, col - 0.5);
  const double b = PlainPixel(image, row + 0.5, col - 0.5);
  const double d = PlainPixel(image, row + 0.5, col + 0.5);
  const double c = PlainPixel(image, row - 0.5, col + 0.5);
  const double fr = row - std::floor(row);
  const double fc = col - std::floor(col);
  return (1 - fc) * (1 - fr) * a + (1 - fc) * fr * b + fc * (1 - fr) * c + fc * fr * d;
}

void PlainWeights(double place, double w[4]) {
  double t = place - std::floor(place);
  t = t >= 0.5 ? t - 0.5 : t + 0.5;
  w[0] = -t + 2 * (t * t) - t * t * t;
  w[1] = 1 - 2 * (t * t) + t * t * t;
  w[2] = t + t * t - t * t * t;
  w[3] = -(t * t) + t * t * t;
}

double PlainBicubic(const ErdasImg& image, double row, double col) {
  double rowWeights[4];
  double colWeights[4];
  PlainWeights(row, rowWeights);
  PlainWeights(col, colWeights);
  double sum = 0.0;
  for (int i = 0; i < 4; ++i) {
    double rowSum = 0.0;
    for (int j = 0; j < 4; ++j) {
      rowSum +=
          colWeights[j] * PlainPixel(image, std::floor(row + 0.5) - 2 + i, std::floor(col + 0.5) - 2 + j);
    }
    sum += rowWeights[i] * rowSum;
  }
  if (sum < 0.0) return 0.0;
  return sum > 255.0 ? 255.0 : sum;
}

bool SameBits(double a, double b) {
  return (a != a && b != b) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// Places inside, on and outside of the border of 4 x 3 pixels, and odd ones.
struct Places {
  std::vector<double> rows;
  std::vector<double> cols;
};

Places MakePlaces() {
  std::mt19937 random(4711);
  std::uniform_real_distribution<double> anywhere(-4.0, 8.0);
  std::uniform_int_distribution<int> quarter(-16, 32);
  Places places;
  const auto add = [&](double row, double col) {
    places.rows.push_back(row);
    places.cols.push_back(col);
  };
  for (int i = 0; i < 20000; ++i) add(anywhere(random), anywhere(random));
  for (int i = 0; i < 5000; ++i) add(quarter(random) / 4.0, quarter(random) / 4.0);
  std::vector<double> odd = {-0.0, 1e-17, -1e-17,    1e300,      -1e300,
                             3e9,  -3e9,  kInfinity, -kInfinity, std::nan("")};
  for (const double whole : {-2.0, -1.0, -0.5, 0.5, 1.0, 2.0, 3.0, 4.0}) {
    odd.insert(odd.end(), {whole, std::nextafter(whole, -9.0), std::nextafter(whole, 9.0)});
  }
  for (const double row : odd) {
    for (const double col : odd) add(row, col);
    add(row, 1.25);
    add(1.25, row);
  }
  return places;
}

void ExpectPlainSamples(const ErdasImg& image, const Places& places) {
  const std::size_t count = places.rows.size();
  std::vector<double> nearest(count, kUntouched);
  std::vector<double> bilinear(count, kUntouched);
  std::vector<double> bicubic(count, kUntouched);
  image.GetPixelsNearest(0, places.rows, places.cols, nearest);
  image.GetPixelsBilinear(0, places.rows, places.cols, bilinear);
  image.GetPixelsBicubic(0, places.rows, places.cols, bicubic);
  for (std::size_t i = 0; i < count; ++i) {
    const double row = places.rows[i];
    const double col = places.cols[i];
    double single = kUntouched;
    image.GetPixelNearest(0, row, col, single);
    EXPECT_TRUE(SameBits(nearest[i], single)) << row << " " << col;
    image.GetPixelBilinear(0, row, col, single);
    EXPECT_TRUE(SameBits(bilinear[i], single)) << row << " " << col;
    EXPECT_TRUE(SameBits(single, PlainBilinear(image, row, col))) << row << " " << col;
    image.GetPixelBicubic(0, row, col, single);
    EXPECT_TRUE(SameBits(bicubic[i], single)) << row << " " << col;
    EXPECT_TRUE(SameBits(single, PlainBicubic(image, row, col))) << row << " " << col;
  }
}

TEST(ErdasImgSamples, ManyPlacesGiveThePlainArithmeticBitForBit) {
  const Places places = MakePlaces();
  std::mt19937 random(7);
  std::uniform_real_distribution<double> any(-300.0, 70000.0);
  for (const std::uint16_t type : kAllTypes) {
    SCOPED_TRACE(type);
    ErdasImg image;
    ASSERT_EQ(image.Create(HeaderOf(type, 1, 4, 3), false), 1);
    for (int i = 0; i < 12; ++i) image.SetPixel(0, i / 4, i % 4, any(random));
    ExpectPlainSamples(image, places);
  }
}

TEST(ErdasImgSamples, PixelsThatAreNoNumbersGivePlainSamples) {
  for (const std::uint16_t type : {kPackFloat, kPackDouble}) {
    ErdasImg image;
    MakeRamp(image, type);
    image.SetPixel(0, 1, 1, std::nan(""));
    image.SetPixel(0, 2, 3, kInfinity);
    image.SetPixel(0, 0, 0, -0.0);
    ExpectPlainSamples(image, MakePlaces());
    EXPECT_TRUE(std::isnan(BilinearOf(image, 0.5, 0.5)));
  }
}

TEST(ErdasImgSamples, BandsThatAreTooSmallGivePlainSamples) {
  for (const std::uint16_t type : {kPackByte, kPackFloat}) {
    ErdasImg image;
    MakeRamp(image, type);
    image.SetSize(5, 4);
    ExpectPlainSamples(image, MakePlaces());
    image.SetSize(4, 3);
    image.SetBytesPerPixel(3);
    ExpectPlainSamples(image, MakePlaces());
  }
}

TEST(ErdasImgSamples, NearestRoundsHalvesUpAndCutsTowardsZero) {
  ErdasImg image;
  MakeRamp(image, kPackByte);
  double value = kUntouched;
  EXPECT_TRUE(image.GetPixelNearest(0, 0.5, 1.49, value));
  EXPECT_EQ(value, 11.0);
  EXPECT_TRUE(image.GetPixelNearest(0, -1.4, -0.6, value));  // -0.9 and -0.1 are cut to 0
  EXPECT_EQ(value, 0.0);
}

TEST(ErdasImgSamples, NearestFailsOutsideAndForABandThatIsNotThere) {
  ErdasImg image;
  MakeRamp(image, kPackByte);
  double value = kUntouched;
  EXPECT_FALSE(image.GetPixelNearest(0, -1.5, 0.0, value));
  EXPECT_FALSE(image.GetPixelNearest(0, 2.5, 0.0, value));
  EXPECT_FALSE(image.GetPixelNearest(0, 0.0, 3.5, value));
  EXPECT_FALSE(image.GetPixelNearest(1, 0.0, 0.0, value));
  EXPECT_FALSE(image.GetPixelNearest(-1, 0.0, 0.0, value));
  EXPECT_FALSE(image.GetPixelNearest(0, std::nan(""), 0.0, value));
  EXPECT_FALSE(image.GetPixelNearest(0, 0.0, kInfinity, value));
  EXPECT_EQ(value, kUntouched);
}

TEST(ErdasImgSamples, BilinearIsLinearBetweenPixels) {
  ErdasImg image;
  MakeRamp(image, kPackByte);
  EXPECT_EQ(BilinearOf(image, 1.0, 2.0), 12.0);
  EXPECT_EQ(BilinearOf(image, 0.5, 1.25), 6.25);
}

TEST(ErdasImgSamples, BilinearMixesInTheBackgroundOnTheLastRowAndColumn) {
  ErdasImg image;
  MakeRamp(image, kPackByte);
  EXPECT_EQ(BilinearOf(image, 1.0, 3.5), 0.5 * 13 + 0.5 * 215);
  EXPECT_EQ(BilinearOf(image, 2.25, 1.0), 0.75 * 21 + 0.25 * 215);
  EXPECT_EQ(BilinearOf(image, 2.5, 3.5), 0.25 * 23 + 0.75 * 215);
}

TEST(ErdasImgSamples, BilinearFromBehindMinusOneIsTheFirstPixel) {
  ErdasImg image;
  MakeRamp(image, kPackByte);
  // Both corners are cut to row 0, with weights 0.25 and 0.75.
  EXPECT_EQ(BilinearOf(image, -0.25, 2.0), 2.0);
  // Between -2 and -1 the upper corner is outside, and the lower one is row 0: fraction 0.25.
  EXPECT_EQ(BilinearOf(image, -1.75, 2.0), 0.75 * 215 + 0.25 * 2);
  EXPECT_EQ(BilinearOf(image, -3.5, 2.0), 215.0);
}

TEST(ErdasImgSamples, BandsThatAreNotThereAreBackground) {
  ErdasImg image;
  MakeRamp(image, kPackByte);
  EXPECT_EQ(BilinearOf(image, 1.5, 1.5, 1), 215.0);
  EXPECT_EQ(BilinearOf(image, 1.5, 1.5, -1), 215.0);
  EXPECT_EQ(BicubicOf(image, 1.5, 1.5, 1), 215.0);
}

// Nowhere in and around the image is there a pixel of the band.
void ExpectBackground(const ErdasImg& image, std::int32_t band) {
  std::vector<double> rows;
  std::vector<double> cols;
  for (int i = 0; i < 25; ++i) {
    rows.push_back(-1.5 + 0.25 * (i / 5));  // to -0.5: cut towards zero, these would be row and column 0
    cols.push_back(-1.5 + 0.25 * (i % 5));
  }
  rows.insert(rows.end(), {0.0, 0.5});
  cols.insert(cols.end(), {0.0, -1.0});
  std::vector<double> nearest(rows.size(), kUntouched);
  std::vector<double> bilinear(rows.size());
  std::vector<double> bicubic(rows.size());
  image.GetPixelsNearest(band, rows, cols, nearest);
  image.GetPixelsBilinear(band, rows, cols, bilinear);
  image.GetPixelsBicubic(band, rows, cols, bicubic);
  const std::vector<double> background(rows.size(), 215.0);
  EXPECT_EQ(nearest, std::vector<double>(rows.size(), kUntouched));
  EXPECT_EQ(bilinear, background);
  EXPECT_EQ(bicubic, background);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    double value = kUntouched;
    EXPECT_FALSE(image.GetPixelNearest(band, rows[i], cols[i], value));
    EXPECT_EQ(value, kUntouched);
    EXPECT_EQ(BilinearOf(image, rows[i], cols[i], band), 215.0);
    EXPECT_EQ(BicubicOf(image, rows[i], cols[i], band), 215.0);
  }
}

TEST(ErdasImgSamples, ABandThatIsNotThereHasNoFirstPixelEither) {
  ErdasImg image;
  MakeRamp(image, kPackByte);
  ExpectBackground(image, 1);
  ExpectBackground(image, -1);
}

TEST(ErdasImgSamples, AnImageWithoutRowsOrColumnsHasNoPixels) {
  const std::pair<int, int> sizes[] = {{4, 0}, {0, 3}, {0, 0}, {4, -1}, {-2, 3}};
  for (const std::uint16_t type : kAllTypes) {
    ErdasImg image;
    MakeRamp(image, type);
    for (const auto& [cols, rows] : sizes) {
      SCOPED_TRACE(std::to_string(cols) + " x " + std::to_string(rows));
      image.SetSize(cols, rows);
      ExpectBackground(image, 0);
    }
  }
}

TEST(ErdasImgSamples, PlacesThatAreNoNumbersGiveSamplesThatAreNone) {
  ErdasImg image;
  MakeRamp(image, kPackByte);
  double value = kUntouched;
  EXPECT_FALSE(image.GetPixelNearest(0, 1.0, std::nan(""), value));
  EXPECT_TRUE(std::isnan(BilinearOf(image, std::nan(""), 1.0)));
  EXPECT_TRUE(std::isnan(BicubicOf(image, 1.0, std::nan(""))));
}

TEST(ErdasImgSamples, SamplesNearTheLargestCoordinatesStayInside) {
  ErdasImg image;
  image.SetSize(INT32_MAX, INT32_MAX);
  EXPECT_EQ(BilinearOf(image, 2147483646.0, 2147483646.0), 0.0);
  EXPECT_EQ(BilinearOf(image, 2147483646.5, 0.0), 0.5 * 215);
  // One of the 16 samples is inside, with the weight (-1 / 8)^2.
  EXPECT_EQ(BicubicOf(image, 2147483648.0, 2147483648.0), 215.0 * 63 / 64);
}

TEST(ErdasImgSamples, BicubicHasPixelCentresAtHalves) {
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 6, 6), false), 1);
  for (int i = 0; i < 36; ++i) image.SetPixel(0, i / 6, i % 6, 10 * (i / 6) + i % 6);
  EXPECT_EQ(BicubicOf(image, 2.5, 3.5), 23.0);
  EXPECT_EQ(BicubicOf(image, 3.0, 3.5), 28.0);  // t = 0.5: (-1, 5, 5, -1) / 8 of rows 1 to 4
}

TEST(ErdasImgSamples, BicubicIsHeldToBytesOnAFloatDem) {
  ErdasImg image;
  MakeRamp(image, kPackFloat);
  image.Fill(1234.5);
  EXPECT_EQ(BicubicOf(image, 1.5, 1.5), 255.0);
  image.Fill(-3.0);
  EXPECT_EQ(BicubicOf(image, 1.5, 1.5), 0.0);
}

TEST(ErdasImgSamples, ManyPlacesStopAtTheShortestSpan) {
  ErdasImg image;
  MakeRamp(image, kPackByte);
  const std::vector<double> rows = {0, 1, 2};
  const std::vector<double> cols = {0, 1};
  std::vector<double> values(4, kUntouched);
  image.GetPixelsNearest(0, rows, cols, values);
  EXPECT_EQ(values, (std::vector<double>{0, 11, kUntouched, kUntouched}));
  values.assign(1, kUntouched);
  image.GetPixelsBilinear(0, rows, cols, values);
  image.GetPixelsBicubic(0, rows, cols, {});
  EXPECT_EQ(values, (std::vector<double>{0}));
}

struct Gradient {
  bool found = false;
  double gCol = kUntouched;
  double gRow = kUntouched;
};

using GradientForm = bool (ErdasImg::*)(std::int32_t, double, double, double&, double&) const;

Gradient GradientOf(const ErdasImg& image, GradientForm form, double row, double col, std::int32_t band = 0) {
  Gradient g;
  g.found = (image.*form)(band, row, col, g.gCol, g.gRow);
  return g;
}

TEST(ErdasImgSamples, GradientsAreCentralDifferences) {
  ErdasImg image;
  MakeRamp(image, kPackByte);
  for (const GradientForm form : {&ErdasImg::GetGradientNearest, &ErdasImg::GetGradientBilinear}) {
    const Gradient g = GradientOf(image, form, 1.0, 1.0);
    EXPECT_TRUE(g.found);
    EXPECT_EQ(g.gCol, 1.0);
    EXPECT_EQ(g.gRow, 10.0);
  }
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 8, 8), false), 1);
  for (int i = 0; i < 64; ++i) image.SetPixel(0, i / 8, i % 8, 10 * (i / 8) + i % 8);
  const Gradient g = GradientOf(image, &ErdasImg::GetGradientBicubic, 3.5, 4.5);
  EXPECT_EQ(g.gCol, 1.0);
  EXPECT_EQ(g.gRow, 10.0);
}

TEST(ErdasImgSamples, AFailedSampleOfAGradientCountsAsTheCentre) {
  ErdasImg image;
  MakeRamp(image, kPackByte);
  const Gradient g = GradientOf(image, &ErdasImg::GetGradientNearest, 2.0, 3.0);
  EXPECT_TRUE(g.found);
  EXPECT_EQ(g.gCol, 0.5);  // (23 - 22) / 2
  EXPECT_EQ(g.gRow, 5.0);  // (23 - 13) / 2
}

TEST(ErdasImgSamples, GradientsOutsideStayAsTheyWere) {
  ErdasImg image;
  MakeRamp(image, kPackByte);
  for (const double row : {-2.0, 3.0}) {
    const Gradient g = GradientOf(image, &ErdasImg::GetGradientNearest, row, 1.0);
    EXPECT_FALSE(g.found);
    EXPECT_EQ(g.gCol, kUntouched);
    EXPECT_EQ(g.gRow, kUntouched);
  }
  EXPECT_FALSE(GradientOf(image, &ErdasImg::GetGradientNearest, 1.0, 1.0, 3).found);
  EXPECT_TRUE(GradientOf(image, &ErdasImg::GetGradientBilinear, -9.0, 1.0).found);
}

TEST(ErdasImgSamples, OneSidedGradientsAreHalved) {
  ErdasImg image;
  MakeRamp(image, kPackByte);
  image.SetPixel(0, 1, 2, 100.0);
  const Gradient back = GradientOf(image, &ErdasImg::GetGradientBilinearBack, 1.0, 1.0);
  EXPECT_TRUE(back.found);
  EXPECT_EQ(back.gCol, 0.5);
  EXPECT_EQ(back.gRow, 5.0);
  const Gradient fore = GradientOf(image, &ErdasImg::GetGradientBilinearFore, 1.0, 1.0);
  EXPECT_TRUE(fore.found);
  EXPECT_EQ(fore.gCol, (100.0 - 11.0) / 2.0);
  EXPECT_EQ(fore.gRow, 5.0);
}

}  // namespace
}  // namespace corvane
