#include "TIN/GridMerge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "support/PointsBytes.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using Added = GridMerge::Added;

class GridMergeTest : public testing::Test {
 protected:
  // A file of the points at (x0, y0) and (x0 + 1, y0 + 1), spacing 1, with these scores.
  void WriteTile(const std::string& path, double x0, double y0, double z, double score) {
    WriteFileBytes(
        path, PointsBytes(2, {x0, y0 + 1, x0 + 1, y0, 1, 1}, {x0, y0, z, score, x0 + 1, y0 + 1, z, score}));
  }
  void WriteHeader(const std::string& path, const std::vector<double>& header) {
    WriteFileBytes(path, PointsBytes(1, header, {1, 1, 5, 1}));
  }

  TempFolder folder;
  TestFrontEnd ui;
  GridMerge merge;
};

TEST_F(GridMergeTest, OverlappingCellsKeepTheHighestScore) {
  WriteTile("a.pts", 10, 20, 5, 0.5);
  WriteTile("b.pts", 11, 21, 6, 0.6);
  WriteTile("c.pts", 11, 21, 7, 0.1);
  for (const char* path : {"a.pts", "b.pts", "c.pts"}) EXPECT_EQ(merge.AddFile(path), Added::Yes);
  EXPECT_EQ(merge.Write("out.pts"), 3);
  EXPECT_EQ(ReadFileBytes("out.pts"),
            PointsBytes(3, {10, 22, 12, 20, 1, 1}, {10, 20, 5, 0.5, 11, 21, 6, 0.6, 12, 22, 6, 0.6}));
  EXPECT_THAT(ui.events, ElementsAre("status 0: Merging 1 of 3: a.pts", "status 0: Merging 2 of 3: b.pts",
                                     "status 0: Merging 3 of 3: c.pts"));
  EXPECT_EQ(merge.GetReport(), "Points written: 3 of 6. Files merged: 3 of 3.");
  EXPECT_EQ(merge.GetFailure(), "");
}

TEST_F(GridMergeTest, TheFirstFileThatReadsSetsTheSpacing) {
  WriteFileBytes("short.pts", PointsBytes(1, {0, 0, 0, 0, 9, 9}, {}).substr(0, 51));
  WriteHeader("flat.pts", {0, 0, 2, 0, 2, 3});
  WriteHeader("x.pts", {0, 2, 2, 0, 1, 3});
  WriteHeader("y.pts", {0, 2, 2, 0, 2, 1});
  WriteHeader("same.pts", {0, 2, 2, 0, 2, 3});
  EXPECT_EQ(merge.AddFile("none.pts"), Added::NotOpened);
  EXPECT_EQ(merge.AddFile("short.pts"), Added::NoHeader);
  EXPECT_EQ(merge.AddFile("flat.pts"), Added::NoRectangle);
  EXPECT_EQ(merge.AddFile("x.pts"), Added::OtherSpacing);
  EXPECT_EQ(merge.AddFile("y.pts"), Added::OtherSpacing);
  EXPECT_EQ(merge.AddFile("same.pts"), Added::Yes);
  EXPECT_EQ(merge.GetReport(),
            "Not merged: none.pts (does not open), short.pts (no whole header), flat.pts (no area in its "
            "header) and 2 more.");
}

TEST_F(GridMergeTest, ARectangleHasWidthAndHeight) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const std::vector<double>& header : std::vector<std::vector<double>>{{0, 2, 0, 0, 1, 1},
                                                                            {0, 0, 2, 0, 1, 1},
                                                                            {2, 2, 0, 0, 1, 1},
                                                                            {0, 0, 2, 2, 1, 1},
                                                                            {0, nan, 2, 0, 1, 1}}) {
    WriteHeader("a.pts", header);
    EXPECT_EQ(merge.AddFile("a.pts"), Added::NoRectangle);
  }
  EXPECT_EQ(merge.Write("out.pts"), -1);
  EXPECT_EQ(merge.GetFailure(), "No file could be merged.");
  EXPECT_EQ(ReadFileBytes("out.pts"), "");
}

TEST_F(GridMergeTest, GridsThatAreNoneFail) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  for (const std::vector<double>& header : std::vector<std::vector<double>>{{0, 2, 2, 0, 0, 1},
                                                                            {0, 2, 2, 0, 1, -1},
                                                                            {0, 2, 2, 0, nan, 1},
                                                                            {0, 2, 2, 0, 1, inf},
                                                                            {0, 2, inf, 0, 1, 1},
                                                                            {0, 1e300, 2, 0, 1, 1},
                                                                            {0, 1e5, 1e5, 0, 1, 1},
                                                                            {0, 2, 2, 0, 1e-300, 1}}) {
    WriteHeader("a.pts", header);
    GridMerge bad;
    EXPECT_EQ(bad.AddFile("a.pts"), Added::Yes);
    EXPECT_EQ(bad.Write("out.pts"), -1);
    EXPECT_NE(bad.GetFailure(), "");
  }
  EXPECT_EQ(ReadFileBytes("out.pts"), "");
}

// The count of a header makes no room by itself: 4400000 cells for a file of one point.
TEST_F(GridMergeTest, AGridIsAsLargeAsThePointsThatAreThereJustify) {
  WriteFileBytes("a.pts", PointsBytes(4000, {0, 1999, 2199, 0, 1, 1}, {1, 1, 5, 1}));
  EXPECT_EQ(merge.AddFile("a.pts"), Added::Yes);
  EXPECT_EQ(merge.Write("out.pts"), -1);
  EXPECT_EQ(merge.GetFailure(), "The grid is too large for the number of points.");
}

TEST_F(GridMergeTest, NoPointInTheGridFails) {
  WriteFileBytes("a.pts", PointsBytes(1, {0, 2, 2, 0, 1, 1}, {9, 9, 5, 1}));
  merge.AddFile("a.pts");
  EXPECT_EQ(merge.Write("out.pts"), -1);
  EXPECT_EQ(merge.GetFailure(), "No point lies in the grid.");
  EXPECT_EQ(ReadFileBytes("out.pts"), "");
}

TEST_F(GridMergeTest, NoFileWithPointsFails) {
  WriteFileBytes("a.pts", PointsBytes(0, {0, 2, 2, 0, 1, 1}, {}));
  merge.AddFile("a.pts");
  EXPECT_EQ(merge.Write("out.pts"), -1);
  EXPECT_EQ(merge.GetFailure(), "No file could be merged.");
  EXPECT_EQ(merge.GetReport(), "Not merged: a.pts (no points that can be read).");
}

// The union is made from all files, so that the extents of each lie in the grid that is written.
TEST_F(GridMergeTest, EachFileLiesInTheUnion) {
  const std::vector<std::pair<double, double>> origins = {{10, 20}, {-7, 31}, {40, -3}, {0, 0}};
  for (std::size_t i = 0; i < origins.size(); ++i) {
    const std::string path = "tile" + std::to_string(i) + ".pts";
    WriteTile(path, origins[i].first, origins[i].second, 5, 1);
    ASSERT_EQ(merge.AddFile(path), Added::Yes);
  }
  ASSERT_EQ(merge.Write("out.pts"), 4);
  TINPoints out;
  ASSERT_EQ(out.Read("out.pts"), 1);
  EXPECT_EQ(out.GetCount(), 8);  // so none of their points lay outside
  for (const auto& [x0, y0] : origins) {
    EXPECT_LE(out.minX, x0);
    EXPECT_LE(out.minY, y0);
    EXPECT_GE(out.maxX, x0 + 1);
    EXPECT_GE(out.maxY, y0 + 1);
  }
}

TEST_F(GridMergeTest, SparseUnionsWork) {
  WriteTile("a.pts", 0, 0, 5, 1);
  WriteTile("b.pts", 3000, 999, 6, 1);
  merge.AddFile("a.pts");
  merge.AddFile("b.pts");
  EXPECT_EQ(merge.Write("out.pts"), 2);
  EXPECT_EQ(
      ReadFileBytes("out.pts"),
      PointsBytes(4, {0, 1000, 3001, 0, 1, 1}, {0, 0, 5, 1, 1, 1, 5, 1, 3000, 999, 6, 1, 3001, 1000, 6, 1}));
}

TEST_F(GridMergeTest, PointsBeyondAWrongHeaderAreLeftOut) {
  WriteFileBytes("a.pts", PointsBytes(3, {0, 2, 2, 0, 1, 1}, {1, 1, 5, 1, 3, 1, 6, 1, 1e9, -1e9, 7, 1}));
  merge.AddFile("a.pts");
  EXPECT_EQ(merge.Write("out.pts"), 1);
  EXPECT_EQ(ReadFileBytes("out.pts"), PointsBytes(1, {1, 0, 0, 1, 1, 1}, {1, 1, 5, 1}));
}

TEST_F(GridMergeTest, TellsWhatCouldNotBeMerged) {
  WriteTile("a.pts", 0, 0, 5, 1);
  WriteFileBytes("empty.pts", PointsBytes(0, {0, 2, 2, 0, 1, 1}, {}));
  WriteFileBytes("cut.pts", PointsBytes(3, {0, 2, 2, 0, 1, 1}, {2, 2, 6, 1}));
  for (const char* path : {"a.pts", "empty.pts", "cut.pts"}) EXPECT_EQ(merge.AddFile(path), Added::Yes);
  EXPECT_EQ(merge.Write("out.pts"), 2);
  EXPECT_EQ(merge.GetReport(),
            "Points written: 3 of 3. Files merged: 2 of 3. Not merged: empty.pts (no points that can be "
            "read). Cut short: cut.pts (points missing: 2).");
  EXPECT_EQ(ReadFileBytes("out.pts"),
            PointsBytes(3, {0, 2, 2, 0, 1, 1}, {0, 0, 5, 1, 1, 1, 5, 1, 2, 2, 6, 1}));
}

TEST_F(GridMergeTest, AnOutputThatCanNotBeWrittenFails) {
  WriteTile("a.pts", 0, 0, 5, 1);
  merge.AddFile("a.pts");
  EXPECT_EQ(merge.Write("none/out.pts"), -2);
  EXPECT_EQ(merge.Write("."), -2);
  EXPECT_EQ(merge.GetFailure(), "");
}

TEST_F(GridMergeTest, AnOutputThatTakesNoBytesFails) {
  WriteTile("a.pts", 0, 0, 5, 1);
  merge.AddFile("a.pts");
  EXPECT_EQ(merge.Write("/dev/full"), -3);
  EXPECT_EQ(merge.GetFailure(), "");
}

TEST_F(GridMergeTest, AnInputMayBeTheOutput) {
  WriteTile("a.pts", 0, 0, 5, 1);
  const std::string before = ReadFileBytes("a.pts");
  merge.AddFile("a.pts");
  EXPECT_EQ(merge.Write("a.pts"), 1);
  EXPECT_EQ(ReadFileBytes("a.pts"), before);
}

}  // namespace
}  // namespace corvane
