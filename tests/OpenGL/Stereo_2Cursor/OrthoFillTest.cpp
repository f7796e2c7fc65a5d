// One photo painted onto a DEM.

#include <limits>

#include "OpenGL/Stereo_2Cursor/ResampleFixture.h"
#include "numerics/Extents.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// 200 x 200 pixels of a unit on the ground, from (900, 2100) to (1100, 1900).
const PhotoElements kVertical = {.f = 150.0, .a = 0.1, .c = -10.0, .e = -0.1, .g = 10.0};

// The documented routine, a cell at a time.
int FillPlainly(const AerialPhoto& photo, const Footprint& footprint, const ErdasImg& dem, ErdasImg& output,
                std::int64_t& nPainted) {
  const ErdasHeader& header = *output.GetHeader();
  const ErdasHeader& own = *photo.image.GetHeader();
  ScanRegion region;
  RasterizePolygon(4, footprint.data(), header.xMap, header.yMap, header.yCell, header.xCell, region);
  std::vector<double> values(16);
  for (const ScanRow& scanRow : region.rows) {
    if (scanRow.count % 2 != 0) return 0;
    const int r = static_cast<int>(scanRow.y);
    if (r < 0 || r >= header.rows) continue;
    const double y = r * static_cast<double>(header.yCell) + header.yMap;
    for (std::size_t k = 0; k < scanRow.x.size(); k += 2) {
      const int c0 = std::max(static_cast<int>(scanRow.x[k]), 0);
      const int c1 = std::min(static_cast<int>(scanRow.x[k + 1]), header.cols - 1);
      double z = 0.0;
      double x = c0 * static_cast<double>(header.xCell) + header.xMap;
      for (int c = c0; c <= c1; ++c) {
        dem.GetPixelXY(0, x, y, z);
        double col, row;
        photo.GroundToImage(x, y, z, col, row);
        x += header.xCell;
        const bool isInside = own.xStart <= col && col < 0.0 + own.xStart + own.cols && own.yStart <= row &&
                              row < 0.0 + own.yStart + own.rows;
        if (!isInside) continue;
        photo.image.GetPixels(static_cast<int>(row), static_cast<int>(col), values.data());
        output.SetPixels(r, c, values.data());
        ++nPainted;
      }
    }
  }
  return 1;
}

// An image of the footprint's extent in these cells.
void MakeOutput(const Footprint& footprint, float cell, std::uint16_t packType, std::uint16_t nBands,
                ErdasImg& output) {
  double extent[4];
  ExtentOfPoints(footprint.data(), 4, 2, extent);
  ErdasHeader header = HeaderOf(packType, nBands, static_cast<std::int32_t>((extent[2] - extent[0]) / cell),
                                static_cast<std::int32_t>((extent[3] - extent[1]) / cell));
  header.xMap = static_cast<float>(extent[0]);
  header.yMap = static_cast<float>(extent[3]);
  header.xCell = cell;
  header.yCell = -cell;
  ASSERT_EQ(output.Create(header, false), 1);
}

// A DEM of cells of 7.5 with heights of up to 90 in whole numbers, from (x, y) to the right and down.
void MakeDem(std::uint16_t packType, double x, double y, std::int32_t cols, std::int32_t rows,
             ErdasImg& dem) {
  ErdasHeader header = HeaderOf(packType, 1, cols, rows);
  header.xMap = static_cast<float>(x);
  header.yMap = static_cast<float>(y);
  header.xCell = 7.5f;
  header.yCell = -7.5f;
  ASSERT_EQ(dem.Create(header, false), 1);
  for (std::int32_t i = 0; i < cols * rows; ++i) dem.SetPixel(0, i / cols, i % cols, (i * 37) % 91);
}

// The output, painted by each version of the machine code, is what the plain routine paints. Returns how many
// cells are painted.
int ExpectAsPlain(const AerialPhoto& photo, const Footprint& footprint, const ErdasImg& dem,
                  const ErdasImg& start) {
  ErdasImg expected;
  start.CopyTo(expected);
  std::int64_t nExpected = 0;
  const int status = FillPlainly(photo, footprint, dem, expected, nExpected);
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    ErdasImg output;
    start.CopyTo(output);
    std::int64_t nPainted = -1;
    EXPECT_EQ(photo.OrthoFill(&footprint, false, &dem, &output, &nPainted), status);
    ExpectSamePixels(output, expected);
    EXPECT_EQ(nPainted, nExpected);
  }
  return CountPainted(expected);
}

TEST(FootprintAtHeight, InterchangesRowsAndColumns) {
  AerialPhoto photo;
  SetPhoto(photo, kVertical);
  ErdasHeader& header = *photo.image.GetHeader();
  header.cols = 100;
  header.rows = 40;
  header.xStart = 10;
  header.yStart = 20;
  Footprint out;
  // Without a crop rows 20 to 60 count as columns, and columns 10 to 110 as rows: a pixel is a unit, and
  // pixel (0, 0) at (900, 2100).
  photo.FootprintAtHeight({}, 0.0, out);
  const Footprint whole = {920, 2090, 960, 2090, 960, 1990, 920, 1990};
  for (std::size_t i = 0; i < 8; ++i) EXPECT_NEAR(out[i], whole[i], 1e-9) << i;
  // Top 20 + 40 * 0.1, bottom 20 + 40 * 0.8, left 10 + 100 * 0.3, right 10 + 100 * 0.6.
  photo.FootprintAtHeight({.left = 0.3, .right = 0.4, .top = 0.1, .bottom = 0.2}, 0.0, out);
  const Footprint cropped = {924, 2060, 952, 2060, 952, 2030, 924, 2030};
  for (std::size_t i = 0; i < 8; ++i) EXPECT_NEAR(out[i], cropped[i], 1e-9) << i;
  // Half way up to the camera everything is half as far away from (1000, 2000).
  photo.FootprintAtHeight({}, 750.0, out);
  for (std::size_t i = 0; i < 8; ++i) {
    const double centre = i % 2 == 0 ? 1000.0 : 2000.0;
    EXPECT_NEAR(out[i], centre + (whole[i] - centre) / 2, 1e-9) << i;
  }
}

TEST(OrthoFill, NullArguments) {
  AerialPhoto photo;
  SetPhoto(photo, kVertical);
  const Footprint footprint{};
  const ErdasImg dem;
  ErdasImg output;
  std::int64_t nPainted = -1;
  EXPECT_EQ(photo.OrthoFill(nullptr, false, &dem, &output, &nPainted), 0);
  EXPECT_EQ(nPainted, 0);
  EXPECT_EQ(photo.OrthoFill(&footprint, false, nullptr, &output), 0);
  EXPECT_EQ(photo.OrthoFill(&footprint, false, &dem, nullptr), 0);
}

// A vertical photo over an output of its own pixels, 1 x n cells from (960, 2000) on.
class OrthoRow : public testing::Test {
 protected:
  void SetUp() override {
    PhotoElements elements = kVertical;  // moved off the edges of pixels
    elements.c = -10.03;
    elements.g = 10.03;
    SetPhoto(photo, elements);
    MakePattern(photo.image, kPackByte, 1, 200, 200);
    ErdasHeader header = HeaderOf(kPackByte, 1, 80, 1);
    header.xMap = 960.0f;
    header.yMap = 2000.0f;
    ASSERT_EQ(output.Create(header, false), 1);
  }

  // The pixel that shows the ground at (x, 2000, z): a pixel is 1 - z / 1500 units wide.
  double PixelOf(double x, double z) const {
    const double col = 100.3 + (x - 1000.0) / (1.0 - z / 1500.0);
    double value = 0.0;
    photo.image.GetPixel(0, 100, static_cast<std::int32_t>(col), value);
    return value;
  }

  double Painted(std::int32_t col) const {
    double value = 0.0;
    output.GetPixel(0, 0, col, value);
    return value;
  }

  AerialPhoto photo;
  ErdasImg output;
  const Footprint all = {900, 2100, 1100, 2100, 1100, 1900, 900, 1900};
};

TEST_F(OrthoRow, CellsOffTheDemKeepTheHeightBeforeThem) {
  // Heights of 500 from x = 970 to 990 and of 750 from 990 to 1010.
  ErdasHeader header = HeaderOf(kPackFloat, 1, 2, 3);
  header.xMap = 970.0f;
  header.yMap = 2030.0f;
  header.xCell = 20.0f;
  header.yCell = -20.0f;
  ErdasImg dem;
  ASSERT_EQ(dem.Create(header, false), 1);
  for (std::int32_t row = 0; row < 3; ++row) {
    dem.SetPixel(0, row, 0, 500.0);
    dem.SetPixel(0, row, 1, 750.0);
  }
  ASSERT_EQ(photo.OrthoFill(&all, false, &dem, &output), 1);
  for (std::int32_t col = 0; col < 80; ++col) {
    const double x = 960.0 + col;
    // A truncated column of the DEM: its first one begins a cell before its edge.
    const double z = x <= 950.0 ? 0.0 : (x < 990.0 ? 500.0 : 750.0);
    EXPECT_EQ(Painted(col), PixelOf(x, z)) << col;
  }
}

TEST_F(OrthoRow, FirstCellsOfARunOffTheDemAreAtZero) {
  ErdasHeader header = HeaderOf(kPackFloat, 1, 1, 3);
  header.xMap = 1000.0f;
  header.yMap = 2030.0f;
  header.xCell = 20.0f;
  header.yCell = -20.0f;
  ErdasImg dem;
  ASSERT_EQ(dem.Create(header, false), 1);
  dem.Fill(500.0);
  ASSERT_EQ(photo.OrthoFill(&all, false, &dem, &output), 1);
  for (std::int32_t col = 0; col < 80; ++col) {
    const double x = 960.0 + col;
    EXPECT_EQ(Painted(col), PixelOf(x, x > 980.0 ? 500.0 : 0.0)) << col;
  }
  // In a row above the DEM all are.
  header.yMap = 1000.0f;
  ASSERT_EQ(dem.Create(header, false), 1);
  dem.Fill(500.0);
  ASSERT_EQ(photo.OrthoFill(&all, false, &dem, &output), 1);
  for (std::int32_t col = 0; col < 80; ++col) EXPECT_EQ(Painted(col), PixelOf(960.0 + col, 0.0)) << col;
}

TEST_F(OrthoRow, OnlyWhatTheFootprintCoversIsPainted) {
  output.Fill(7);
  ErdasImg dem;
  MakeDem(kPackFloat, 0, 0, 1, 1, dem);
  const Footprint middle = {980, 2010, 1000, 2010, 1000, 1990, 980, 1990};
  ASSERT_EQ(photo.OrthoFill(&middle, false, &dem, &output), 1);
  for (std::int32_t col = 0; col < 80; ++col) {
    const bool isCovered = col >= 20 && col <= 40;
    EXPECT_EQ(Painted(col), isCovered ? PixelOf(960.0 + col, 0.0) : 7.0) << col;
  }
}

TEST_F(OrthoRow, AFootprintInTheImageIsTakenToTheGroundUnderTheCamera) {
  ErdasImg dem;
  MakeDem(kPackFloat, 900, 2100, 30, 30, dem);
  dem.Fill(500.0);
  ErdasImg same;
  ASSERT_EQ(output.CopyTo(same), 1);
  const Footprint inImage = {60, 60, 120, 60, 120, 120, 60, 120};
  Footprint onGround;
  for (std::size_t i = 0; i < 8; i += 2) {
    onGround[i] = 1000.0 + (inImage[i] - 100.0) * (1.0 - 500.0 / 1500.0);
    onGround[i + 1] = 2000.0 - (inImage[i + 1] - 100.0) * (1.0 - 500.0 / 1500.0);
  }
  EXPECT_EQ(photo.OrthoFill(&inImage, true, &dem, &output), 1);
  EXPECT_EQ(photo.OrthoFill(&onGround, false, &dem, &same), 1);
  ExpectSamePixels(output, same);
  EXPECT_GT(CountPainted(output), 30);
}

TEST(OrthoFill, FastLoopsGiveTheCellsOfThePlainOne) {
  RandomPhotos random;
  int nPainted = 0;
  for (const std::uint16_t packType : {0, 2, 3, 4, 5, 6, 7, 300}) {
    for (const std::uint16_t demType : {0, 3, 6, 7}) {
      AerialPhoto photo;
      const PhotoElements elements = {.f = 150.0,
                                      .x = random.In(-50000, 50000),
                                      .y = random.In(-50000, 50000),
                                      .omega = random.In(-8.0, 8.0),
                                      .phi = random.In(-8.0, 8.0),
                                      .kappa = random.In(-180.0, 180.0),
                                      .a = 0.1,
                                      .c = -7.0,
                                      .e = -0.1,
                                      .g = 6.5};
      SetPhoto(photo, elements);
      MakePattern(photo.image, packType, 2, 140, 130);
      ErdasImg dem;  // that ends within the photo
      MakeDem(demType, elements.x - 50, elements.y + random.In(0, 40), 12, 13, dem);
      Footprint footprint;
      photo.FootprintAtHeight({}, 30.0, footprint);
      ErdasImg output;
      MakeOutput(footprint, static_cast<float>(random.In(0.5, 1.5)), packType, 2, output);
      nPainted += ExpectAsPlain(photo, footprint, dem, output);
    }
  }
  EXPECT_GT(nPainted, 32 * 5000);
}

TEST(OrthoFill, WiderThanAStripAndFinerThanTheGroundUnit) {
  AerialPhoto photo;
  SetPhoto(photo, {.omega = 0.7, .kappa = 1.0, .a = 0.1, .c = -7.0, .e = -0.1, .g = 6.5});
  MakePattern(photo.image, kPackByte, 1, 140, 130);
  ErdasImg dem;
  MakeDem(kPackFloat, 950, 2050, 10, 10, dem);
  Footprint footprint;
  photo.FootprintAtHeight({}, 30.0, footprint);
  ErdasImg output;
  MakeOutput(footprint, 0.0999f, kPackByte, 1, output);
  EXPECT_GT(ExpectAsPlain(photo, footprint, dem, output), 1000000);
}

TEST(OrthoFill, WhereAdditionsOfTheCellAreRounded) {
  // 1e9 + k * 1.2e-7 does not fit a double's digits: each run has sums of its own.
  AerialPhoto photo;
  SetPhoto(
      photo,
      {.x = 1e9, .y = 0.0, .omega = 0.5, .phi = 0.5, .kappa = 30, .a = 0.1, .c = -7.0, .e = -0.1, .g = 6.5});
  MakePattern(photo.image, kPackByte, 1, 140, 130);
  ErdasImg dem;
  MakeDem(kPackFloat, 1e9 - 200, 50, 40, 10, dem);
  Footprint footprint;
  photo.FootprintAtHeight({}, 30.0, footprint);
  ErdasImg output;
  MakeOutput(footprint, 0.7654321f, kPackByte, 1, output);
  output.GetHeader()->xMap = 1e9f;
  output.GetHeader()->xCell = 1.2345678e-7f;
  const Footprint wide = {1e9 - 1, 20, 1e9 + 1, 21, 1e9 + 1, -20, 1e9 - 2, -19};
  EXPECT_GT(ExpectAsPlain(photo, wide, dem, output), 100);
}

TEST(OrthoFill, MixedBandsAndTypes) {
  for (const auto& [photoBands, outputBands] : {std::pair{1, 3}, {3, 1}, {2, 2}}) {
    for (const std::uint16_t outputType : {0, 6}) {
      AerialPhoto photo;
      SetPhoto(photo, {.a = 0.1, .c = -3.0, .e = -0.1, .g = 3.0});
      MakePattern(photo.image, kPackByte, static_cast<std::uint16_t>(photoBands), 60, 60);
      ErdasImg dem;
      MakeDem(kPackFloat, 900, 2100, 30, 30, dem);
      Footprint footprint;
      photo.FootprintAtHeight({}, 0.0, footprint);
      ErdasImg output;
      MakeOutput(footprint, 0.75f, outputType, static_cast<std::uint16_t>(outputBands), output);
      output.Fill(9);
      ExpectAsPlain(photo, footprint, dem, output);
    }
  }
}

TEST(OrthoFill, APhotoThatIsAWindowOfTheScan) {
  // Coordinates of the scan are taken for pixels of the image: those beyond it repeat the pixel before them.
  for (const auto& [xStart, yStart] : {std::pair{30, 20}, {-12, 5}, {-2147483647 - 1, 0}, {2147483647, 0}}) {
    AerialPhoto photo;
    SetPhoto(photo, {.kappa = 20.0, .a = 0.1, .c = -6.0, .e = -0.1, .g = 5.0});
    MakePattern(photo.image, kPackByte, 2, 60, 60);
    photo.image.GetHeader()->xStart = xStart;
    photo.image.GetHeader()->yStart = yStart;
    ErdasImg dem;
    MakeDem(kPackFloat, 900, 2100, 30, 30, dem);
    const Footprint footprint = {900, 2080, 1090, 2100, 1080, 1910, 890, 1900};
    ErdasImg output;
    MakeOutput(footprint, 1.0f, kPackByte, 2, output);
    ExpectAsPlain(photo, footprint, dem, output);
  }
}

TEST(OrthoFill, RowsWithAnOddNumberOfCrossingsEndThePainting) {
  // The second side is nearly level and goes on down: it counts in the row above, too, where it makes three.
  AerialPhoto photo;
  SetPhoto(photo, kVertical);
  MakePattern(photo.image, kPackByte, 1, 200, 200);
  ErdasImg dem;
  MakeDem(kPackFloat, 0, 0, 1, 1, dem);
  ErdasHeader header = HeaderOf(kPackByte, 1, 30, 30);
  header.xMap = 990.0f;
  header.yMap = 2010.0f;
  ErdasImg output;
  ASSERT_EQ(output.Create(header, false), 1);
  const Footprint footprint = {995, 2008, 995, 2000.3, 999, 2000.1, 1015, 1985};
  EXPECT_EQ(photo.OrthoFill(&footprint, false, &dem, &output), 0);
  const int nPainted = ExpectAsPlain(photo, footprint, dem, output);
  EXPECT_GT(nPainted, 10);
  // The same from a row above the output on: nothing is painted.
  header.yMap = 1995.0f;
  ASSERT_EQ(output.Create(header, false), 1);
  EXPECT_EQ(ExpectAsPlain(photo, footprint, dem, output), 0);
}

TEST(OrthoFill, FootprintsThatReachTheHorizon) {
  AerialPhoto photo;
  SetPhoto(photo, kVertical);
  MakePattern(photo.image, kPackByte, 1, 200, 200);
  ErdasImg dem;
  MakeDem(kPackFloat, 900, 2100, 30, 30, dem);
  ErdasHeader header = HeaderOf(kPackByte, 1, 100, 1100);
  header.xMap = 950.0f;
  header.yMap = 2050.0f;
  header.yCell = -0.1f;
  ErdasImg output;
  ASSERT_EQ(output.Create(header, false), 1);
  const Footprint far = {-1e12, 1e12, 1e12, 1e12, 1e12, -1e12, -1e12, -1e12};
  EXPECT_EQ(photo.OrthoFill(&far, false, &dem, &output), 1);
  EXPECT_EQ(CountPainted(output), 100 * 1100);
  ASSERT_EQ(output.Create(header, false), 1);
  for (const double bad : {kNaN, kInfinity, -kInfinity}) {
    Footprint none = far;
    none[3] = bad;
    EXPECT_EQ(photo.OrthoFill(&none, false, &dem, &output), 0);
    EXPECT_EQ(CountPainted(output), 0);
  }
}

TEST(OrthoFill, TheWayToALargeOutputIsTold) {
  TestFrontEnd ui;
  AerialPhoto photo;
  SetPhoto(photo, kVertical);
  photo.name = "photos/a.lan";
  MakePattern(photo.image, kPackByte, 1, 200, 200);
  ErdasImg dem;
  MakeDem(kPackFloat, 0, 0, 1, 1, dem);
  const Footprint footprint = {1000, 2000, 1010, 2000, 1010, 1990, 1000, 1990};
  ErdasHeader header = HeaderOf(kPackByte, 1, 1024, 65536);
  header.xMap = 1000.0f;
  header.yMap = 2000.0f;
  ErdasImg output;
  ASSERT_EQ(output.Create(header, false), 1);
  EXPECT_EQ(photo.OrthoFill(&footprint, false, &dem, &output), 1);
  EXPECT_TRUE(ui.EventsWith("status").empty());
  ++header.cols;
  ASSERT_EQ(output.Create(header, false), 1);
  EXPECT_EQ(photo.OrthoFill(&footprint, false, &dem, &output), 1);
  const auto told = ui.EventsWith("status");
  ASSERT_EQ(told.size(), 64u);
  EXPECT_EQ(told.front(), "status 0: Orthophoto: a.lan, 1 %");
  EXPECT_EQ(told.back(), "status 0: Orthophoto: a.lan, 100 %");
}

TEST(OrthoFill, GridsThatAreNone) {
  AerialPhoto photo;
  SetPhoto(photo, kVertical);
  MakePattern(photo.image, kPackByte, 1, 200, 200);
  ErdasImg dem;
  MakeDem(kPackFloat, 900, 2100, 30, 30, dem);
  const Footprint footprint = {900, 2100, 1100, 2100, 1100, 1900, 900, 1900};
  ErdasImg output;
  ASSERT_EQ(output.Create(HeaderOf(kPackByte, 1, 10, 10), false), 1);
  for (const float cell :
       {0.0f, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
    output.GetHeader()->xCell = cell;
    EXPECT_EQ(photo.OrthoFill(&footprint, false, &dem, &output), 0);
  }
  output.GetHeader()->xCell = 1.0f;
  output.GetHeader()->xMap = 950.0f;
  output.GetHeader()->yMap = 2050.0f;
  for (const float cell : {0.0f, std::numeric_limits<float>::quiet_NaN()}) {  // the DEM is nowhere
    dem.GetHeader()->xCell = cell;
    EXPECT_EQ(photo.OrthoFill(&footprint, false, &dem, &output), 1);
  }
  ErdasImg empty;  // a header alone
  EXPECT_EQ(photo.OrthoFill(&footprint, false, &dem, &empty), 1);
}

TEST(OrthoFill, FiftyMarksOnTheirOwnDemAreWithinACell) {
  constexpr float kCell = 0.8f;
  const PhotoElements elements = {
      .omega = 2.0, .phi = -1.5, .kappa = 12.0, .a = 0.05, .c = -20.0, .e = -0.05, .g = 20.0};
  const auto heightAt = [](double x, double y) { return 60.0 * std::sin(0.02 * x) * std::cos(0.015 * y); };
  ErdasHeader demHeader = HeaderOf(kPackFloat, 1, 800, 800);
  demHeader.xMap = 800.0f;
  demHeader.yMap = 2200.0f;
  demHeader.xCell = 0.5f;
  demHeader.yCell = -0.5f;
  ErdasImg dem;
  ASSERT_EQ(dem.Create(demHeader, false), 1);
  for (std::int32_t row = 0; row < 800; ++row) {
    for (std::int32_t col = 0; col < 800; ++col) {
      dem.SetPixel(0, row, col, heightAt(800.0 + 0.5 * (col + 0.5), 2200.0 - 0.5 * (row + 0.5)));
    }
  }
  AerialPhoto photo;
  SetPhoto(photo, elements);
  ASSERT_EQ(photo.image.Create(HeaderOf(kPackByte, 1, 800, 800), false), 1);
  RandomPhotos random;
  std::vector<std::pair<double, double>> marks;
  for (int i = 0; i < 50; ++i) {
    marks.emplace_back(900.0 + 25.0 * (i % 8) + random.In(0, 4), 2080.0 - 25.0 * (i / 8) + random.In(0, 4));
    const auto [x, y] = marks.back();
    const auto place = PlainPhoto(elements).Project(x, y, heightAt(x, y));
    AddMark(photo.image, static_cast<double>(place[0]), static_cast<double>(place[1]));
  }
  Footprint footprint;
  photo.FootprintAtHeight({}, 0.0, footprint);
  ErdasImg output;
  MakeOutput(footprint, kCell, kPackByte, 1, output);
  ASSERT_EQ(photo.OrthoFill(&footprint, false, &dem, &output), 1);
  for (const auto& [x, y] : marks) {
    const double col = (x - output.GetHeader()->xMap) / kCell;
    const double row = (output.GetHeader()->yMap - y) / kCell;
    double foundCol = 0.0;
    double foundRow = 0.0;
    ASSERT_TRUE(FindMark(output, col, row, foundCol, foundRow));
    EXPECT_LT(std::fabs(foundCol - col), 1.0);
    EXPECT_LT(std::fabs(foundRow - row), 1.0);
  }
}

}  // namespace
}  // namespace corvane
