#include "erdasimg/Topaz.h"

#include <gtest/gtest.h>

#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

const std::string kPlace = "xllcorner 0\nyllcorner 0\ncellsize 1\n";

struct Converted {
  int status = 0;
  std::int64_t nCells = 0;
  std::string text;
};

Converted Convert(const std::string& ascii) {
  WriteFileBytes("in.asc", ascii);
  InputFile in("in.asc");
  OutputFile out("out.inp");
  AsciiGridHeader header;
  Converted result;
  result.status = AsciiGridToTopaz(in, out, header, result.nCells);
  EXPECT_TRUE(out.Commit());
  result.text = ReadFileBytes("out.inp");
  return result;
}

TEST(Topaz, NameIsInTheFolderOfTheGrid) {
  EXPECT_EQ(TopazName("grid.asc"), "DEDNM.INP");
  EXPECT_EQ(TopazName("/a/b.c/grid.asc"), "/a/b.c/DEDNM.INP");
  EXPECT_EQ(TopazName("C:\\a\\grid.asc"), "C:\\a\\DEDNM.INP");
  EXPECT_EQ(TopazName("a\\b/c\\grid.asc"), "a\\b/c\\DEDNM.INP");
  EXPECT_EQ(TopazName("a/"), "a/DEDNM.INP");
}

TEST(Topaz, OneCellALine) {
  TempFolder folder;
  const Converted done =
      Convert("ncols 3\nnrows 2\n" + kPlace + "NODATA_value -9999\n1 2.5 -3\r\n4e2 1.23456789 -9999\n");
  EXPECT_EQ(done.status, 1);
  EXPECT_EQ(done.nCells, 6);
  EXPECT_EQ(done.text, "1.000000\n2.500000\n-3.000000\n400.000000\n1.234568\n-9999.000000\n");
}

TEST(Topaz, GridWithoutNoDataLineMisreadsItsFirstRow) {
  TempFolder folder;
  const Converted done = Convert("ncols 2\nnrows 2\n" + kPlace + "1 2\n3 4\n");
  EXPECT_EQ(done.status, 1);
  EXPECT_EQ(done.nCells, 2);
  EXPECT_EQ(done.text, "3.000000\n4.000000\n");
}

TEST(Topaz, EndsWhereTheTextDoes) {
  TempFolder folder;
  const std::string head = "ncols 2147483647\nnrows 2147483647\n" + kPlace + "NODATA_value 0\n";
  EXPECT_EQ(Convert(head + "1 2 3").text, "1.000000\n2.000000\n3.000000\n");
  EXPECT_EQ(Convert(head + "1 2 x 3").text, "1.000000\n2.000000\n");
}

TEST(Topaz, CellsBehindTheLastAreLeft) {
  TempFolder folder;
  EXPECT_EQ(Convert("ncols 1\nnrows 1\n" + kPlace + "NODATA_value 0\n7 8 9").text, "7.000000\n");
  EXPECT_EQ(Convert("ncols 0\nnrows 1\n" + kPlace + "NODATA_value 0\n7 8 9").status, 1);
}

TEST(Topaz, FailsWithoutAnyCell) {
  TempFolder folder;
  const std::string head = "ncols 2\nnrows 2\n" + kPlace;
  for (const char* cells : {"", "NODATA_value 0\n", "NODATA_value 0\nx 1 2 3\n"}) {
    const Converted done = Convert(head + cells);
    EXPECT_EQ(done.status, -1) << cells;
    EXPECT_EQ(done.nCells, 0) << cells;
  }
}

TEST(Topaz, LongGridsRunThroughTheWindow) {
  TempFolder folder;
  std::string ascii = "ncols 1000\nnrows 500\n" + kPlace + "NODATA_value 0\n";
  std::string expected;
  for (int i = 0; i < 500000; ++i) {
    ascii += std::to_string(i) + " ";
    expected += std::to_string(i) + ".000000\n";
  }
  EXPECT_EQ(Convert(ascii).text, expected);
}

TEST(Topaz, FailsWithoutCounts) {
  TempFolder folder;
  for (const char* text :
       {"", "ncols", "ncols x\nnrows 2\n", "ncols 2\nnrows -2\n", "ncols -1\nnrows -1\n"}) {
    EXPECT_EQ(Convert(text).status, -1) << text;
  }
}

}  // namespace
}  // namespace corvane
