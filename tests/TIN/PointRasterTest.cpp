#include "TIN/PointRaster.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "TIN/TINPoints.h"
#include "io/OutputFile.h"
#include "support/PointsBytes.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

using testing::ElementsAre;

constexpr float kNoPixel = -4096.0f;

ErdasHeader DemHeader(std::int32_t cols, std::int32_t rows, float cell) {
  ErdasHeader header;
  header.packType = kPackFloat;
  header.cols = cols;
  header.rows = rows;
  header.xCell = cell;
  header.yCell = -cell;
  return header;
}

std::string PointsOf(const ErdasImg& image, const PixelWindow& window) {
  OutputFile file("out.pts");
  EXPECT_EQ(WriteRasterPoints(image, window, file), 1);
  EXPECT_TRUE(file.Commit());
  return ReadFileBytes("out.pts");
}

TINPoints Points(const std::vector<double>& header, const std::vector<double>& records) {
  WriteFileBytes("in.pts", PointsBytes(static_cast<std::int32_t>(records.size() / 4), header, records));
  TINPoints points;
  EXPECT_EQ(points.Read("in.pts"), 1);
  return points;
}

std::vector<float> Pixels(const ErdasImg& image) {
  const auto bytes = image.GetBands().GetBand(0);
  std::vector<float> pixels(bytes.size() / sizeof(float));
  std::memcpy(pixels.data(), bytes.data(), bytes.size());
  return pixels;
}

TEST(WriteRasterPoints, ExtentsAreTheFirstAndTheLastCentre) {
  TempFolder folder;
  ErdasImg image;
  ErdasHeader header = DemHeader(2, 2, 2.0f);
  header.xMap = 100.0f;
  header.yMap = 204.0f;
  ASSERT_EQ(image.Create(header, false), 1);
  for (int i = 0; i < 4; ++i) image.SetPixel(0, i / 2, i % 2, 10 + i);
  EXPECT_EQ(PointsOf(image, {0, 0, 2, 2}),
            PointsBytes(4, {101, 203, 103, 201, 2, 2},
                        {101, 203, 10, 0, 103, 203, 11, 0, 101, 201, 12, 0, 103, 201, 13, 0}));
  EXPECT_EQ(PointsOf(image, {1, 1, 1, 1}), PointsBytes(1, {103, 201, 103, 201, 2, 2}, {103, 201, 13, 0}));
  EXPECT_EQ(PointsOf(image, {0, 0, 0, 0}), PointsBytes(0, {101, 203, 99, 205, 2, 2}, {}));
}

// x and y are steps of the cell in single precision; only the first of a row is not rounded.
TEST(WriteRasterPoints, GathersTheErrorOfSinglePrecision) {
  TempFolder folder;
  ErdasImg image;
  ErdasHeader header = DemHeader(50, 40, 0.1f);
  header.xMap = 431000.25f;
  header.yMap = 5300000.5f;
  ASSERT_EQ(image.Create(header, false), 1);
  const double cell = 0.1f;
  const double firstX = 0.5 * cell + 431000.25;
  const double firstY = 0.5 * -cell + 5300000.5;
  std::vector<double> records;
  double y = firstY;
  for (int row = 0; row < 40; ++row) {
    double x = firstX;
    for (int col = 0; col < 50; ++col) {
      records.insert(records.end(), {x, y, 0, 0});
      const float narrowed = static_cast<float>(x);
      x = narrowed + 0.1f;
    }
    const float narrowed = static_cast<float>(y);
    y = narrowed - 0.1f;
  }
  EXPECT_EQ(PointsOf(image, {0, 0, 40, 50}),
            PointsBytes(2000, {firstX, firstY, 49.5 * cell + 431000.25, 39.5 * -cell + 5300000.5, cell, cell},
                        records));
  EXPECT_NE(records[4], firstX + cell);
}

TEST(WriteRasterPoints, PixelsOutsideRepeatTheLastValue) {
  TempFolder folder;
  ErdasImg image;
  ASSERT_EQ(image.Create(DemHeader(1, 1, 1.0f), false), 1);
  image.Fill(5);
  EXPECT_EQ(PointsOf(image, {0, 0, 1, 2}),
            PointsBytes(2, {0.5, -0.5, 1.5, -0.5, 1, 1}, {0.5, -0.5, 5, 0, 1.5, -0.5, 5, 0}));
}

TEST(WriteRasterPoints, RefusesMorePointsThanTheFileCanNumber) {
  TempFolder folder;
  ErdasImg image;
  OutputFile file("out.pts");
  EXPECT_EQ(WriteRasterPoints(image, {0, 0, 65536, 32768}, file), -2);
}

TEST(PointsToDem, CellsAroundTheNodes) {
  TempFolder folder;
  const TINPoints points = Points({10, 24, 14, 20, 2, 2}, {10, 24, 1, 0, 14, 20, 2, 0, 12, 22, 3, 0});
  ErdasImg dem;
  std::int32_t nPlaced = 0;
  ASSERT_EQ(PointsToDem(points, dem, nPlaced), 1);
  EXPECT_EQ(nPlaced, 3);
  const ErdasHeader& header = *dem.GetHeader();
  EXPECT_EQ(header.packType, 6);
  EXPECT_EQ(header.mapType, 0);
  EXPECT_EQ(header.xMap, 9.0f);
  EXPECT_EQ(header.yMap, 25.0f);
  EXPECT_EQ(header.xCell, 2.0f);
  EXPECT_EQ(header.yCell, -2.0f);
  EXPECT_EQ(dem.GetSize(), (ImageSize{3, 3}));
  EXPECT_THAT(Pixels(dem), ElementsAre(1, kNoPixel, kNoPixel, kNoPixel, 3, kNoPixel, kNoPixel, kNoPixel, 2));
}

TEST(PointsToDem, PointOnTheMaximumCornerLandsWithin) {
  TempFolder folder;
  const TINPoints points = Points({0, 2.4, 2.4, 0, 1, 1}, {2.4, 2.4, 7, 0, 0, 0, 8, 0});
  ErdasImg dem;
  std::int32_t nPlaced = 0;
  ASSERT_EQ(PointsToDem(points, dem, nPlaced), 1);
  EXPECT_EQ(dem.GetSize(), (ImageSize{3, 3}));  // int(2.4 + 1.5)
  EXPECT_EQ(nPlaced, 2);
  EXPECT_EQ(Pixels(dem)[2], 7.0f);
  EXPECT_EQ(Pixels(dem)[6], 8.0f);
}

TEST(PointsToDem, LaterPointReplacesAnEarlierOne) {
  TempFolder folder;
  const TINPoints points = Points({0, 1, 1, 0, 1, 1}, {0, 0, 5, 9, 0.2, 0.1, 6, 1});
  ErdasImg dem;
  std::int32_t nPlaced = 0;
  ASSERT_EQ(PointsToDem(points, dem, nPlaced), 1);
  EXPECT_THAT(Pixels(dem), ElementsAre(kNoPixel, kNoPixel, 6, kNoPixel));
}

TEST(PointsToDem, LeavesOutWhatLiesOutside) {
  TempFolder folder;
  const TINPoints points =
      Points({0, 1, 1, 0, 1, 1}, {0, 0, 5,   0, -9, 0, 6, 0,   9, 0, 6,     0, 0, 9, 6, 0,         0, -9,
                                  6, 0, NAN, 0, 6,  0, 0, NAN, 6, 0, 1e300, 0, 6, 0, 0, -INFINITY, 6, 0});
  ErdasImg dem;
  std::int32_t nPlaced = 0;
  ASSERT_EQ(PointsToDem(points, dem, nPlaced), 1);
  EXPECT_EQ(nPlaced, 1);
  EXPECT_THAT(Pixels(dem), ElementsAre(kNoPixel, kNoPixel, 5, kNoPixel));
}

// The corner is 1000000.05 + 0.05, which single precision rounds to 1000000.125.
TEST(PointsToDem, CountsCellsFromTheCornerInSinglePrecision) {
  TempFolder folder;
  const double top = 1000000.05;
  const TINPoints points = Points({0, top, 0, top - 0.3, 0.1, 0.1}, {0, top, 5, 0});
  ErdasImg dem;
  std::int32_t nPlaced = 0;
  ASSERT_EQ(PointsToDem(points, dem, nPlaced), 1);
  EXPECT_EQ(dem.GetHeader()->yMap, 1000000.125f);
  const auto row = static_cast<std::size_t>((1000000.125 - top) / 0.1);  // 0.75
  EXPECT_EQ(Pixels(dem)[row], 5.0f);
}

TEST(PointsToDem, RefusesWhatIsNoGrid) {
  TempFolder folder;
  ErdasImg dem;
  std::int32_t nPlaced = 0;
  const double inf = INFINITY;
  for (const double bad : {0.0, -1.0, static_cast<double>(NAN), inf, 1e-300, 1e300}) {
    EXPECT_EQ(PointsToDem(Points({0, 4, 4, 0, bad, 1}, {0, 0, 5, 0}), dem, nPlaced), -1) << bad;
    EXPECT_EQ(PointsToDem(Points({0, 4, 4, 0, 1, bad}, {0, 0, 5, 0}), dem, nPlaced), -1) << bad;
  }
  EXPECT_EQ(PointsToDem(Points({4, 4, 0, 0, 1, 1}, {0, 0, 5, 0}), dem, nPlaced), -1);
  EXPECT_EQ(PointsToDem(Points({0, 4, NAN, 0, 1, 1}, {0, 0, 5, 0}), dem, nPlaced), -1);
  EXPECT_EQ(PointsToDem(Points({0, 4, inf, 0, 1, 1}, {0, 0, 5, 0}), dem, nPlaced), -3);
  EXPECT_EQ(PointsToDem(Points({0, 65536, 32768, 0, 1, 1}, {0, 0, 5, 0}), dem, nPlaced), -3);
  EXPECT_FALSE(dem.GetBands());
}

// A raster that becomes points and a raster again has its values and place.
TEST(PointsToDem, TurnsRasterPointsBack) {
  TempFolder folder;
  ErdasImg image;
  ErdasHeader header = DemHeader(7, 5, 2.5f);
  header.xMap = 1000.0f;
  header.yMap = 5000.0f;
  ASSERT_EQ(image.Create(header, false), 1);
  for (int i = 0; i < 35; ++i) image.SetPixel(0, i / 7, i % 7, i * 0.5);
  WriteFileBytes("back.pts", PointsOf(image, {0, 0, 5, 7}));
  TINPoints points;
  ASSERT_EQ(points.Read("back.pts"), 1);
  ErdasImg dem;
  std::int32_t nPlaced = 0;
  ASSERT_EQ(PointsToDem(points, dem, nPlaced), 1);
  EXPECT_TRUE(dem.SameGeometry(image));
  EXPECT_EQ(Pixels(dem), Pixels(image));
}

}  // namespace
}  // namespace corvane
