// Raw floats with a sidecar, and ASCII grids.

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <random>
#include <sstream>

#include "erdasimg/AsciiGrid.h"
#include "erdasimg/ImageBytes.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "io/RecordReader.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using Doubles = std::vector<double>;
using Floats = std::vector<float>;

const std::string kPlace = "ncols 3\nnrows 2\nxllcorner 100.5\nyllcorner 200.25\ncellsize 0.5\n";

Doubles ReadCells(const std::string& text) {
  WriteFileBytes("a.asc", text);
  ErdasImg image;
  EXPECT_EQ(image.ReadAsciiGrid("a.asc"), 1);
  return BandPixelsOf<double>(image, 0);
}

TEST(FloatGrid, ReadsSizePlaceAndPixels) {
  const TempFolder folder;
  TestFrontEnd ui;
  WriteFileBytes("a.hdr", kPlace);
  WriteFileBytes("a.bil", PixelBytes<float>({1.5f, -2.0f, 3.0f, 4.0f, 5.0f, 6.25f}));
  ErdasImg image;
  image.GetHeader()->classCount = 7;
  EXPECT_EQ(image.ReadFloatGrid("a.bil"), 1);
  ErdasHeader expected = HeaderOf(kPackFloat, 1, 3, 2);
  expected.xMap = 100.5f;
  expected.yMap = 200.25f;
  expected.xCell = 0.5f;
  expected.yCell = -0.5f;
  EXPECT_EQ(BytesOf(*image.GetHeader()), BytesOf(expected));
  EXPECT_EQ(image.GetBytesPerPixel(), 4);
  EXPECT_EQ(BandPixelsOf<float>(image, 0), (Floats{1.5f, -2.0f, 3.0f, 4.0f, 5.0f, 6.25f}));
  EXPECT_TRUE(ui.events.empty());
}

TEST(FloatGrid, AWordOfMsbFirstAsSixthLineSwaps) {
  const TempFolder folder;
  const std::string swapped(
      "\x3F\xC0\x00\x00"
      "\xC0\x00\x00\x00"
      "\0\0\0\0"
      "\0\0\0\0"
      "\0\0\0\0"
      "\0\0\0\0",
      24);
  WriteFileBytes("a.bil", swapped);
  ErdasImg image;
  WriteFileBytes("a.hdr", kPlace + "byteorder MSBFIRST\n");
  ASSERT_EQ(image.ReadFloatGrid("a.bil"), 1);
  EXPECT_EQ(BandPixelsOf<float>(image, 0), (Floats{1.5f, -2.0f, 0, 0, 0, 0}));
  for (const char* rest : {"NODATA_value -9999\nbyteorder MSBFIRST\n", "byteorder msbfirst\n",
                           "byteorder LSBFIRST", "byteorder", ""}) {
    WriteFileBytes("a.hdr", kPlace + rest);
    ASSERT_EQ(image.ReadFloatGrid("a.bil"), 1);
    EXPECT_EQ(BandBytes(image, 0), swapped) << rest;
  }
  WriteFileBytes("a.hdr", kPlace + "byteorder MSBFIRST");
  ASSERT_EQ(image.ReadFloatGrid("a.bil"), 1);
  EXPECT_EQ(BandPixelsOf<float>(image, 0)[0], 1.5f);
}

TEST(FloatGrid, TellsWhatDoesNotOpen) {
  const TempFolder folder;
  TestFrontEnd ui;
  ErdasImg image;
  EXPECT_EQ(image.ReadFloatGrid("a.bil"), -1);
  WriteFileBytes("a.hdr", kPlace);
  EXPECT_EQ(image.ReadFloatGrid("a.bil"), -2);
  EXPECT_EQ(image.GetSize(), (ImageSize{3, 2}));
  EXPECT_TRUE(ui.events.empty());
}

TEST(FloatGrid, ThePathIsCutAtItsLastDot) {
  const TempFolder folder;
  WriteFileBytes("a.b.hdr", kPlace);
  WriteFileBytes("a.b.flt", "");
  ErdasImg image;
  EXPECT_EQ(image.ReadFloatGrid("a.b.flt"), 1);
}

TEST(FloatGrid, MissingPixelsAreZero) {
  const TempFolder folder;
  WriteFileBytes("a.hdr", kPlace);
  WriteFileBytes("a.bil", PixelBytes<float>({1.5f}) + "ab");
  ErdasImg image;
  EXPECT_EQ(image.ReadFloatGrid("a.bil"), 1);
  const auto pixels = BandPixelsOf<float>(image, 0);
  EXPECT_EQ(pixels[0], 1.5f);
  EXPECT_EQ(BandBytes(image, 0).substr(4), std::string("ab") + std::string(18, '\0'));
  EXPECT_EQ(image.GetMissingBytes(), 18);
}

TEST(FloatGrid, APixelThatIsCutIsSwappedWhole) {
  const TempFolder folder;
  WriteFileBytes("a.hdr", kPlace + "byteorder MSBFIRST\n");
  WriteFileBytes("a.bil", "abcdxy");
  ErdasImg image;
  EXPECT_EQ(image.ReadFloatGrid("a.bil"), 1);
  EXPECT_EQ(BandBytes(image, 0), std::string("dcba\0\0yx", 8) + std::string(16, '\0'));
}

TEST(FloatGrid, SizesThatTheFileCannotJustifyFail) {
  const TempFolder folder;
  WriteFileBytes("a.bil", "");
  for (const char* sizes :
       {"c 2000000000\nr 2000000000\n", "c -1\nr 5\n", "c 5\nr -1\n", "c 30000\nr 30000\n"}) {
    WriteFileBytes("a.hdr", std::string(sizes) + "x 1\ny 2\ns 3\n");
    ErdasImg image;
    EXPECT_EQ(image.ReadFloatGrid("a.bil"), -3) << sizes;
    EXPECT_FALSE(image.GetBands());
  }
  std::filesystem::remove("a.bil");
  ErdasImg image;
  EXPECT_EQ(image.ReadFloatGrid("a.bil"), -3);
}

TEST(FloatGrid, FieldsThatDoNotParseAreZero) {
  const TempFolder folder;
  WriteFileBytes("a.bil", "pixels");
  for (const char* text : {"", "ncols", "ncols x", "\0\xFF\x01", "ncols 2 nrows y"}) {
    WriteFileBytes("a.hdr", text);
    ErdasImg image;
    EXPECT_EQ(image.ReadFloatGrid("a.bil"), 1);
    EXPECT_EQ(image.GetBands().GetBandBytes(), 0u);
  }
}

TEST(FloatGrid, TheReferenceFieldsMayHaveAnyForm) {
  const TempFolder folder;
  WriteFileBytes("a.bil", "");
  const std::string longLabel(kLabelWidth, 'x');
  WriteFileBytes("a.hdr", longLabel + " +2\r\nnrows\t1 xllcorner 0x10 yllcorner -inf\n\n\ncellsize 1e1\n");
  ErdasImg image;
  ASSERT_EQ(image.ReadFloatGrid("a.bil"), 1);
  EXPECT_EQ(image.GetSize(), (ImageSize{2, 1}));
  EXPECT_EQ(image.GetHeader()->xMap, 16.0f);
  EXPECT_EQ(image.GetHeader()->yMap, -std::numeric_limits<float>::infinity());
  EXPECT_EQ(image.GetHeader()->xCell, 10.0f);
  EXPECT_EQ(image.GetHeader()->yCell, -10.0f);
}

TEST(AsciiGrid, ReadsSizePlaceAndCells) {
  const TempFolder folder;
  TestFrontEnd ui;
  WriteFileBytes("a.asc", kPlace + "NODATA_value -9\n1 2.5 -9\n4e1 5 6\n");
  ErdasImg image;
  EXPECT_EQ(image.ReadAsciiGrid("a.asc"), 1);
  ErdasHeader expected = HeaderOf(kPackDouble, 1, 3, 2);
  expected.xMap = 100.5f;
  expected.yMap = 200.25f;
  expected.xCell = 0.5f;
  expected.yCell = -0.5f;
  EXPECT_EQ(BytesOf(*image.GetHeader()), BytesOf(expected));
  EXPECT_EQ(image.GetBytesPerPixel(), 8);
  EXPECT_EQ(BandPixelsOf<double>(image, 0), (Doubles{1, 2.5, -9, 40, 5, 6}));
  EXPECT_TRUE(ui.events.empty());
}

TEST(AsciiGrid, WithoutNoDataLineStillYieldsEveryCell) {
  const TempFolder folder;
  EXPECT_EQ(ReadCells(kPlace + "1 2 3\n4 5 6\n"), (Doubles{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(ReadCells(kPlace + "\n\n   1 2 3 4 5 6"), (Doubles{1, 2, 3, 4, 5, 6}));
}

TEST(AsciiGrid, TheNoDataLabelIgnoresCase) {
  const TempFolder folder;
  EXPECT_EQ(ReadCells(kPlace + "nodata_VALUE 7\n1 2 3"), (Doubles{1, 2, 3, 7, 7, 7}));
  EXPECT_EQ(ReadCells(kPlace + "NODATA_value\n\n  7 1 2 3"), (Doubles{1, 2, 3, 7, 7, 7}));
}

// fscanf takes "n", asks for an "a" and has taken the "o" by then, so that each such word fails cell by cell.
TEST(AsciiGrid, AnotherSixthLabelIsReadAsCells) {
  const TempFolder folder;
  const double no = -9999.0;
  EXPECT_EQ(ReadCells(kPlace + "nothing 1 2 3 4 5 6"), (Doubles{no, no, no, no, no, no}));
  EXPECT_EQ(ReadCells(kPlace + "no 1 2 3 4 5 6"), (Doubles{no, 1, 2, 3, 4, 5}));
  EXPECT_EQ(ReadCells(kPlace + "NODATA 1 2 3 4 5 6"), (Doubles{no, no, no, no, no, no}));
}

TEST(AsciiGrid, MissingAndUnreadableCellsGetTheNoDataValue) {
  const TempFolder folder;
  EXPECT_EQ(ReadCells(kPlace + "NODATA_value -1\n"), (Doubles{-1, -1, -1, -1, -1, -1}));
  EXPECT_EQ(ReadCells(kPlace), (Doubles{-9999, -9999, -9999, -9999, -9999, -9999}));
  EXPECT_EQ(ReadCells(kPlace + "NODATA_value"), (Doubles{-9999, -9999, -9999, -9999, -9999, -9999}));
  EXPECT_EQ(ReadCells(kPlace + "NODATA_value -1\n1 2 * 4 5 6"), (Doubles{1, 2, -1, -1, -1, -1}));
  EXPECT_EQ(ReadCells(kPlace + "NODATA_value -1\n1 - 3 4 5 6"), (Doubles{1, -1, 3, 4, 5, 6}));
}

TEST(AsciiGrid, CountsTheCellsThatCannotBeRead) {
  const TempFolder folder;
  const auto unread = [](const std::string& cells) {
    WriteFileBytes("a.asc", kPlace + "NODATA_value -1\n" + cells);
    ErdasImg image;
    std::int64_t nUnread = -1;
    EXPECT_EQ(image.ReadAsciiGrid("a.asc", &nUnread), 1);
    EXPECT_EQ(image.GetMissingBytes(), 0);
    return nUnread;
  };
  EXPECT_EQ(unread("1 2 3 4 5 6"), 0);
  EXPECT_EQ(unread("1 2 -1 nan 5 6 7"), 0);
  EXPECT_EQ(unread("1 2 3 4"), 2);
  EXPECT_EQ(unread(""), 6);
  EXPECT_EQ(unread("1 2 * 4 5 6"), 4);
  EXPECT_EQ(unread("1 - 3 4 5 6"), 1);
}

TEST(AsciiGrid, CellsMayBeInfiniteOrNoNumber) {
  const TempFolder folder;
  const Doubles cells = ReadCells(kPlace + "NODATA_value -1\ninf -INFINITY nan 0x1p4 1e999 6");
  EXPECT_EQ(cells[0], std::numeric_limits<double>::infinity());
  EXPECT_EQ(cells[1], -std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(cells[2]));
  EXPECT_EQ(cells[3], 16.0);
  EXPECT_EQ(cells[4], std::numeric_limits<double>::infinity());
  EXPECT_EQ(cells[5], 6.0);
}

TEST(AsciiGrid, DoesNotOpen) {
  const TempFolder folder;
  TestFrontEnd ui;
  ErdasImg image;
  EXPECT_EQ(image.ReadAsciiGrid("none.asc"), -1);
  EXPECT_EQ(image.ReadAsciiGrid(""), -1);
  EXPECT_TRUE(ui.events.empty());
}

TEST(AsciiGrid, CellsThatTheFileCannotJustifyFail) {
  const TempFolder folder;
  for (const char* sizes : {"c 2000000000\nr 2000000000\n", "c -1\nr 5\n", "c 5\nr -1\n",
                            "c 20000\nr 20000\n", "c 3000\nr 3000\n"}) {
    WriteFileBytes("a.asc", std::string(sizes) + "x 1\ny 2\ns 3\n1 2 3");
    ErdasImg image;
    EXPECT_EQ(image.ReadAsciiGrid("a.asc"), -3) << sizes;
    EXPECT_FALSE(image.GetBands());
  }
}

TEST(AsciiGrid, ManyMissingCellsAreFilledAtOnce) {
  const TempFolder folder;
  WriteFileBytes("a.asc", "c 2800\nr 2800\nx 1\ny 2\ns 3\nNODATA_value 4\n1 2 3");
  ErdasImg image;
  ASSERT_EQ(image.ReadAsciiGrid("a.asc"), 1);
  const auto cells = BandPixelsOf<double>(image, 0);
  ASSERT_EQ(cells.size(), 7840000u);
  EXPECT_EQ(cells[2], 3.0);
  EXPECT_EQ(cells[3], 4.0);
  EXPECT_EQ(cells.back(), 4.0);
}

TEST(AsciiGrid, SizesThatDoNotParseGiveAnEmptyImage) {
  const TempFolder folder;
  for (const char* text : {"", "ncols", "ncols x\nnrows y\n", "\n\n\n"}) {
    EXPECT_EQ(ReadCells(text), Doubles{}) << text;
  }
}

// The word after the fifth line, and its number, cross the end of the reader's window.
TEST(AsciiGrid, TheNoDataLineMayLieAnywhere) {
  const TempFolder folder;
  for (std::size_t before = RecordReader::kWindow - 40; before < RecordReader::kWindow + 4; ++before) {
    const std::string end = " 1\nr 1\nx 1\ny 2\ns 3\n";
    const std::string label = "c" + std::string(before - end.size() - 1, ' ');
    ASSERT_EQ(ReadCells(label + end + "NODATA_value -12345\n"), Doubles{-12345}) << before;
    ASSERT_EQ(ReadCells(label + end + "123456789012\n"), Doubles{123456789012}) << before;
  }
}

// What a label has beyond its width is no number, so that nothing after it is read; nor is it held in memory.
TEST(AsciiGrid, LabelsBeyondTheirWidthEndTheReading) {
  const TempFolder folder;
  EXPECT_EQ(ReadCells(std::string(kLabelWidth, 'c') + " 1\nr 1\nx 1\ny 2\ns 3\n7\n"), Doubles{7});
  EXPECT_EQ(ReadCells(std::string(kLabelWidth + 1, 'c') + " 1\nr 1\nx 1\ny 2\ns 3\n7\n"), Doubles{});
}

TEST(AsciiGrid, WritesTheSixLinesAndTheRows) {
  const TempFolder folder;
  OutputFile file("a.asc");
  EXPECT_TRUE(WriteAsciiGridHeader(file, {3, 2, 100.5, 1234567.890123, 0.1, -4096}));
  EXPECT_TRUE(WriteAsciiGridRow(file, Doubles{1, 2.5, -4096}));
  EXPECT_TRUE(WriteAsciiGridRow(file, Doubles{0, 1e10, 1.0 / 3}));
  ASSERT_TRUE(file.Commit());
  EXPECT_EQ(ReadFileBytes("a.asc"),
            "ncols 3\nnrows 2\nxllcorner 100.5\nyllcorner 1234567.89\ncellsize 0.1\nNODATA_value -4096\n"
            "1 2.5 -4096\n0 1e+10 0.3333333333\n");
}

TEST(AsciiGrid, ARowWithoutCellsIsAnEmptyLine) {
  const TempFolder folder;
  OutputFile file("a.asc");
  EXPECT_TRUE(WriteAsciiGridRow(file, {}));
  ASSERT_TRUE(file.Commit());
  EXPECT_EQ(ReadFileBytes("a.asc"), "\n");
}

TEST(AsciiGrid, RowsAreThoseOfAFormattedStream) {
  const TempFolder folder;
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> exponent(-300, 300);
  Doubles cells(10000);
  for (double& cell : cells) cell = std::pow(10.0, exponent(random)) * (random() % 2 ? 1 : -1);
  cells[5] = std::numeric_limits<double>::infinity();
  cells[6] = -0.0;
  std::ostringstream expected;
  expected.precision(10);
  for (std::size_t i = 0; i < cells.size(); ++i) expected << (i > 0 ? " " : "") << cells[i];
  OutputFile file("a.asc");
  EXPECT_TRUE(WriteAsciiGridRow(file, cells));
  ASSERT_TRUE(file.Commit());
  EXPECT_EQ(ReadFileBytes("a.asc"), expected.str() + "\n");
}

TEST(AsciiGrid, AFailedWriteIsTold) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP();
  OutputFile file("/dev/full");
  const Doubles cells(1000000, 1.5);
  EXPECT_FALSE(WriteAsciiGridRow(file, cells));
}

}  // namespace
}  // namespace corvane
