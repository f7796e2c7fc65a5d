#include "erdasimg/PixelWindow.h"

#include <gtest/gtest.h>

#include <cmath>

#include "erdasimg/ImageBytes.h"
#include "io/OutputFile.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

// 4 columns and 3 rows of 2 ground units from (100, 206) to (108, 200), holding 0, 1, 2, ...
class PixelWindowTest : public testing::Test {
 protected:
  PixelWindowTest() {
    ErdasHeader header = HeaderOf(kPackFloat, 1, 4, 3);
    header.xMap = 100.0f;
    header.yMap = 206.0f;
    header.xCell = 2.0f;
    header.yCell = -2.0f;
    image.Create(header, false);
    for (int i = 0; i < 12; ++i) image.SetPixel(0, i / 4, i % 4, i);
  }

  PixelWindow Window(double minX, double minY, double maxX, double maxY) const {
    return WindowOf(*image.GetHeader(), {.minX = minX, .minY = minY, .maxX = maxX, .maxY = maxY});
  }

  std::vector<double> Values(const PixelWindow& window) const {
    WindowRows rows(image, window);
    std::vector<double> values;
    for (std::int32_t row = 0; row < window.nRows; ++row) {
      const auto next = rows.Next();
      values.insert(values.end(), next.begin(), next.end());
    }
    return values;
  }

  std::string Ascii(const PixelWindow& window) const {
    OutputFile file("out.asc");
    EXPECT_TRUE(WriteAsciiGrid(image, window, -4096.0, file));
    EXPECT_TRUE(file.Commit());
    return ReadFileBytes("out.asc");
  }

  TempFolder folder;
  ErdasImg image;
};

TEST_F(PixelWindowTest, WholeImage) {
  EXPECT_EQ(Window(100, 200, 108, 206), (PixelWindow{0, 0, 3, 4}));
  EXPECT_EQ(Ascii({0, 0, 3, 4}),
            "ncols 4\nnrows 3\nxllcorner 100\nyllcorner 200\ncellsize 2\nNODATA_value -4096\n"
            "0 1 2 3\n4 5 6 7\n8 9 10 11\n");
}

TEST_F(PixelWindowTest, FirstPixelIsTheOneThatHoldsTheCorner) {
  EXPECT_EQ(Window(102, 200, 106, 204), (PixelWindow{1, 1, 2, 2}));
  EXPECT_EQ(Window(103.9, 200, 107.9, 202.1), (PixelWindow{1, 1, 1, 2}));
  EXPECT_EQ(Ascii({1, 1, 2, 2}),
            "ncols 2\nnrows 2\nxllcorner 102\nyllcorner 200\ncellsize 2\nNODATA_value -4096\n"
            "5 6\n9 10\n");
}

TEST_F(PixelWindowTest, CountsAreTruncated) {
  EXPECT_EQ(Window(100, 200, 103.9, 203.9), (PixelWindow{1, 0, 1, 1}));
  EXPECT_EQ(Window(100, 205, 101.9, 206), (PixelWindow{0, 0, 0, 0}));
}

// The cut to the image's size does not look at where the window begins.
TEST_F(PixelWindowTest, WindowMayReachBeyondTheImage) {
  EXPECT_EQ(Window(104, 100, 204, 204), (PixelWindow{1, 2, 3, 4}));
  EXPECT_EQ(Window(50, 0, 300, 400), (PixelWindow{0, 0, 3, 4}));
}

TEST_F(PixelWindowTest, WindowBackwardsHasNoCells) {
  EXPECT_EQ(Window(108, 206, 100, 200), (PixelWindow{3, 4, 0, 0}));
  EXPECT_EQ(Ascii({0, 0, 0, 0}),
            "ncols 0\nnrows 0\nxllcorner 100\nyllcorner 206\ncellsize 2\nNODATA_value -4096\n");
}

TEST_F(PixelWindowTest, PixelsOutsideRepeatTheLastValueRead) {
  EXPECT_EQ(Values({1, 2, 3, 4}), (std::vector<double>{6, 7, 7, 7, 10, 11, 11, 11, 11, 11, 11, 11}));
  EXPECT_EQ(Values({0, 4, 2, 2}), (std::vector<double>{0, 0, 0, 0}));
  EXPECT_EQ(Values({INT32_MAX, INT32_MAX, 3, 2}), (std::vector<double>(6, 0.0)));
}

TEST_F(PixelWindowTest, RowsAreCountedInColumnCells) {
  image.GetHeader()->yCell = -1.0f;
  EXPECT_EQ(Window(100, 203, 108, 204), (PixelWindow{1, 0, 0, 4}));
}

TEST_F(PixelWindowTest, NumbersBeyondAllCountingAreHeld) {
  EXPECT_EQ(Window(-1e300, -1e300, 1e300, 1e300), (PixelWindow{0, 0, 3, 4}));
  EXPECT_EQ(Window(1e300, 0, 1e300, -1e300), (PixelWindow{INT32_MAX, INT32_MAX, 0, 0}));
  image.GetHeader()->xCell = 0.0f;
  EXPECT_EQ(Window(100, 200, 108, 206), (PixelWindow{0, 0, 3, 4}));
  image.GetHeader()->xCell = NAN;
  EXPECT_EQ(Window(100, 200, 108, 206), (PixelWindow{0, 0, 0, 0}));
}

// The rectangle that the header gives is the whole image also where the cell is no exact number.
TEST_F(PixelWindowTest, OwnExtentGivesTheWholeImage) {
  ErdasHeader header = HeaderOf(kPackFloat, 1, 10, 10);
  header.xCell = 0.1f;
  header.yCell = -0.1f;
  const double side = 10 * static_cast<double>(0.1f);
  EXPECT_EQ(WindowOf(header, {.minX = 0, .minY = -side, .maxX = side, .maxY = 0}),
            (PixelWindow{0, 0, 10, 10}));
}

TEST_F(PixelWindowTest, TenSignificantDigits) {
  image.GetHeader()->packType = kPackDouble;
  ErdasHeader header = HeaderOf(kPackDouble, 1, 2, 1);
  header.xMap = 1234567.125f;
  image.Create(header, false);
  image.SetPixel(0, 0, 0, 1.0 / 3.0);
  image.SetPixel(0, 0, 1, 123456789012.0);
  EXPECT_EQ(Ascii({0, 0, 1, 2}),
            "ncols 2\nnrows 1\nxllcorner 1234567.125\nyllcorner -1\ncellsize 1\nNODATA_value -4096\n"
            "0.3333333333 1.23456789e+11\n");
}

TEST_F(PixelWindowTest, EmptyImageReadsAsZero) {
  const ErdasImg empty;
  WindowRows rows(empty, {0, 0, 1, 1});
  EXPECT_EQ(rows.Next()[0], 0.0);
}

}  // namespace
}  // namespace corvane
