#include "TIN/TINPoints.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

template <typename T>
std::string Bytes(T value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

std::string Doubles(const std::vector<double>& values) {
  std::string bytes;
  for (const double value : values) bytes += Bytes(value);
  return bytes;
}

// A points file: extents are left, top, right, bottom.
std::string PointsFile(std::int32_t count, const std::vector<double>& extentAndSpacing,
                       const std::vector<double>& records) {
  return Bytes(count) + Doubles(extentAndSpacing) + Doubles(records);
}

const std::vector<double> kExtent = {0.0, 20.0, 10.0, 5.0, 1.0, 2.0};

TEST(PointRecord, StoredFormsHaveNoPadding) {
  const PointRecord record = {7, 1.0, 2.0, 3.0, 4.0};
  char vertex[kVertexBytes];
  PackVertex(record, vertex);
  EXPECT_EQ(std::string(vertex, sizeof vertex), Bytes(std::int32_t{7}) + Doubles({1, 2, 3, 4}));
  EXPECT_EQ(UnpackVertex(vertex), record);
  char point[kPointBytes];
  PackPoint(record, point);
  EXPECT_EQ(std::string(point, sizeof point), Doubles({1, 2, 3, 4}));
  EXPECT_EQ(UnpackPoint(point, 7), record);
}

TEST(PointRecord, BlocksAreRecordsInOrder) {
  const std::vector<PointRecord> records = {{5, 1, 2, 3, 4}, {6, 5, 6, 7, 8}};
  std::string bytes(2 * kPointBytes, '\0');
  PackPoints(records, bytes.data());
  EXPECT_EQ(bytes, Doubles({1, 2, 3, 4, 5, 6, 7, 8}));
  std::vector<PointRecord> read(2);
  UnpackPoints(bytes.data(), 5, read);
  EXPECT_EQ(read, records);
  std::string vertices(2 * kVertexBytes, '\0');
  PackVertices(records, vertices.data());
  UnpackVertices(vertices.data(), read);
  EXPECT_EQ(read, records);
}

TEST(TINPoints, NewObjectIsEmptyWithSpacingOne) {
  const TINPoints points;
  EXPECT_EQ(points.GetCount(), 0);
  EXPECT_EQ(points.spacingX, 1.0);
  EXPECT_EQ(points.spacingY, 1.0);
  EXPECT_EQ(points.GetPoint(0), nullptr);
  EXPECT_EQ(points.GetIndex(), nullptr);
}

TEST(TINPoints, ReadsHeaderAndPoints) {
  TempFolder folder;
  WriteFileBytes("a.pts", PointsFile(3, kExtent, {1, 6, 30, 0.5, 2, 7, 10, 0.6, 3, 8, 20, 0.7}));
  TINPoints points;
  EXPECT_EQ(points.Read("a.pts"), 1);
  Extent6 extent;
  points.GetExtent(extent);
  EXPECT_EQ(extent, (Extent6{0, 10, 5, 20, 10, 30}));
  EXPECT_EQ(points.spacingX, 1.0);
  EXPECT_EQ(points.spacingY, 2.0);
  EXPECT_EQ(points.nPoints, 3);
  EXPECT_EQ(points.capacity, 3);
  ASSERT_NE(points.GetPoint(2), nullptr);
  EXPECT_EQ(*points.GetPoint(2), (PointRecord{2, 3, 8, 20, 0.7}));
  EXPECT_EQ(points.GetPoint(3), nullptr);
  EXPECT_EQ(points.GetPoint(-1), nullptr);
}

TEST(TINPoints, CrossedYOfAHeaderIsRepairedAndCrossedXIsKept) {
  TempFolder folder;
  WriteFileBytes("a.pts", PointsFile(1, {10, 5, 0, 20, 1, 1}, {1, 6, 30, 0.5}));
  TINPoints points;
  EXPECT_EQ(points.Read("a.pts"), 1);
  EXPECT_EQ(points.minY, 5.0);
  EXPECT_EQ(points.maxY, 20.0);
  EXPECT_EQ(points.minX, 10.0);
  EXPECT_EQ(points.maxX, 0.0);
}

TEST(TINPoints, AFileOfNoPointsCanNotBeRead) {
  TempFolder folder;
  WriteFileBytes("a.pts", PointsFile(0, kExtent, {}));
  EXPECT_EQ(TINPoints().Read("a.pts"), -1);
}

TEST(TINPoints, AMissingFileAFolderAndACutHeaderCanNotBeRead) {
  TempFolder folder;
  EXPECT_EQ(TINPoints().Read("none.pts"), -1);
  EXPECT_EQ(TINPoints().Read("."), -1);
  const std::string whole = PointsFile(1, kExtent, {1, 2, 3, 4});
  for (const std::size_t size : {0u, 3u, 4u, 51u}) {
    WriteFileBytes("a.pts", whole.substr(0, size));
    TINPoints points;
    EXPECT_EQ(points.Read("a.pts"), -1);
    EXPECT_EQ(points.GetCount(), 0);
  }
}

TEST(TINPoints, ThePointsThatACutFileLacksAreZero) {
  TempFolder folder;
  const std::string whole = PointsFile(3, kExtent, {1, 6, 30, 0.5, 2, 7, 10, 0.6, 3, 8, 20, 0.7});
  WriteFileBytes("a.pts", whole.substr(0, 52 + 32 + 12));
  TINPoints points;
  EXPECT_EQ(points.Read("a.pts"), 1);
  ASSERT_EQ(points.GetCount(), 3);
  const std::string partOfY = Bytes(7.0).substr(0, 4) + std::string(4, '\0');
  double y = 0.0;
  std::memcpy(&y, partOfY.data(), sizeof y);
  EXPECT_EQ(*points.GetPoint(1), (PointRecord{1, 2, y, 0, 0}));
  EXPECT_EQ(*points.GetPoint(2), (PointRecord{2, 0, 0, 0, 0}));
  EXPECT_EQ(points.minZ, 0.0);
  EXPECT_EQ(points.maxZ, 30.0);
  EXPECT_EQ(points.GetMissingCount(), 2);  // one of them only in part
  WriteFileBytes("a.pts", whole);
  EXPECT_EQ(points.Read("a.pts"), 1);
  EXPECT_EQ(points.GetMissingCount(), 0);
}

TEST(TINPoints, AFailedReadIsNotTheEndOfTheFile) {
  InputFile memory("/proc/self/mem");
  if (!memory.IsOpen()) GTEST_SKIP() << "no such file on this system";
  EXPECT_EQ(TINPoints().Read(memory), -3);  // nothing stands at its start

  // One page of memory with a header of 1000 points, and none behind it.
  const auto page = static_cast<std::size_t>(getpagesize());
  void* const block = mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(block, MAP_FAILED);
  munmap(static_cast<char*>(block) + page, page);
  const std::string header = PointsFile(1000, kExtent, {});
  std::memcpy(block, header.data(), header.size());
  InputFile file("/proc/self/mem");
  ASSERT_TRUE(file.Seek(static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(block))));
  TINPoints points;
  EXPECT_EQ(points.Read(file), -3);
  EXPECT_EQ(points.GetCount(), 0);
  munmap(block, page);
}

TEST(TINPoints, CountsThatTheFileCanNotJustifyAreRefused) {
  TempFolder folder;
  for (const std::int32_t count : {-1, INT32_MIN, INT32_MAX, 100000}) {
    WriteFileBytes("a.pts", PointsFile(count, kExtent, {1, 6, 30, 0.5}));
    TINPoints points;
    EXPECT_EQ(points.Read("a.pts"), -3) << count;
    EXPECT_EQ(points.GetCount(), 0);
  }
}

TEST(TINPoints, ReadReplacesWhatWasThere) {
  TempFolder folder;
  WriteFileBytes("a.pts", PointsFile(1, kExtent, {1, 6, 30, 0.5}));
  TINPoints points(5);
  EXPECT_EQ(points.Read("a.pts"), 1);
  EXPECT_EQ(points.GetCount(), 1);
  EXPECT_EQ(points.points.size(), 1u);
}

TEST(TINPoints, ManyBlocksReadAndWriteTheSameBytes) {
  TempFolder folder;
  std::vector<double> records(4 * 100001);
  for (std::size_t i = 0; i < records.size(); ++i) records[i] = static_cast<double>(i) / 7.0;
  const std::string bytes = PointsFile(100001, kExtent, records);
  WriteFileBytes("a.pts", bytes);
  TINPoints points;
  ASSERT_EQ(points.Read("a.pts"), 1);
  EXPECT_EQ(points.GetPoint(100000)->id, 100000);
  EXPECT_EQ(points.Write("b.pts"), 100001);
  EXPECT_EQ(ReadFileBytes("b.pts"), bytes);
}

TEST(TINPoints, WriteKeepsDeletedPointsAndDoesNotRecompute) {
  TempFolder folder;
  const std::string bytes = PointsFile(2, kExtent, {1, 6, 30, 0.5, 2, 7, 10, 0.6});
  WriteFileBytes("a.pts", bytes);
  TINPoints points;
  ASSERT_EQ(points.Read("a.pts"), 1);
  EXPECT_EQ(points.RemovePoint(0), 1);
  EXPECT_EQ(points.points[0].id, -1);
  EXPECT_EQ(points.Write("b.pts"), 2);
  EXPECT_EQ(ReadFileBytes("b.pts"), bytes);
  TINPoints again;
  EXPECT_EQ(again.Read("b.pts"), 1);
  EXPECT_EQ(*again.GetPoint(0), (PointRecord{0, 1, 6, 30, 0.5}));  // alive once more
}

TEST(TINPoints, IsMovedWithoutACopy) {
  TINPoints points(3);
  const PointRecord* const first = points.GetPoint(0);
  TINPoints moved = std::move(points);
  EXPECT_EQ(moved.GetPoint(0), first);
  points = std::move(moved);
  EXPECT_EQ(points.GetPoint(0), first);
  const TINPoints copy = points;
  EXPECT_EQ(copy.GetCount(), 3);
  EXPECT_NE(copy.GetPoint(0), first);
}

TEST(TINPoints, TruncateAndCompactDropTheIndex) {
  TINPoints points(4);
  for (int i = 0; i < 4; ++i) points.SetPointXY(i, i, i, i);
  points.RecalcExtent();
  ASSERT_EQ(points.BuildIndex(1.0), 1);
  EXPECT_EQ(points.Truncate(5), 0);
  EXPECT_NE(points.GetIndex(), nullptr);
  EXPECT_EQ(points.Truncate(3), 1);
  EXPECT_EQ(points.GetIndex(), nullptr);
  ASSERT_EQ(points.BuildIndex(1.0), 1);
  points.Compact();
  EXPECT_EQ(points.GetIndex(), nullptr);
}

TEST(TINPoints, AnEmptySetWritesItsHeaderAlone) {
  TempFolder folder;
  EXPECT_EQ(TINPoints().Write("a.pts"), 0);
  EXPECT_EQ(ReadFileBytes("a.pts"), PointsFile(0, {0, 0, 0, 0, 1, 1}, {}));
}

TEST(TINPoints, AFailedWriteLeavesNothing) {
  TempFolder folder;
  EXPECT_EQ(TINPoints(1).Write("none/a.pts"), -1);
  EXPECT_EQ(TINPoints(1).Write("."), -1);
  OutputFile full("/dev/full");
  if (full.IsOpen()) {
    EXPECT_EQ(TINPoints(1).Write("/dev/full"), -1);
  }
}

TEST(TINPoints, SetPointIsRefusedBeyondThePoints) {
  TINPoints points(2);
  EXPECT_EQ(points.SetPoint(4, 1, 2, 3, 5, 1), 1);
  EXPECT_EQ(*points.GetPoint(1), (PointRecord{4, 1, 2, 3, 5}));
  EXPECT_EQ(points.SetPointXY(8, 6, 7, 1), 1);
  EXPECT_EQ(*points.GetPoint(1), (PointRecord{8, 6, 7, 3, 5}));
  EXPECT_EQ(points.SetPoint(4, 1, 2, 3, 5, 2), -1);
  EXPECT_EQ(points.SetPointXY(4, 1, 2, -1), -1);
}

TEST(TINPoints, TruncateIsRefusedBeyondThePoints) {
  TINPoints points(3);
  EXPECT_EQ(points.Truncate(4), 0);
  EXPECT_EQ(points.Truncate(-1), 0);
  EXPECT_EQ(points.GetCount(), 3);
  EXPECT_EQ(points.Truncate(2), 1);
  EXPECT_EQ(points.GetCount(), 2);
}

TEST(TINPoints, SetExtentTakesTwoFourOrSixEntries) {
  const Extent6 values = {1, 2, 3, 4, 5, 6};
  TINPoints points;
  Extent6 extent;
  points.SetExtent(3, values);
  points.GetExtent(extent);
  EXPECT_EQ(extent, Extent6());
  points.SetExtent(2, values);
  points.GetExtent(extent);
  EXPECT_EQ(extent, (Extent6{1, 2, 0, 0, 0, 0}));
  points.SetExtent(4, values);
  points.GetExtent(extent);
  EXPECT_EQ(extent, (Extent6{1, 2, 3, 4, 0, 0}));
  points.SetExtent(6, values);
  points.GetExtent(extent);
  EXPECT_EQ(extent, values);
}

TEST(TINPoints, SpacingIsSetAndGot) {
  TINPoints points;
  points.SetSpacing(2.0, 3.0);
  double x = 0.0;
  double y = 0.0;
  points.GetSpacing(x, y);
  EXPECT_EQ(x, 2.0);
  EXPECT_EQ(y, 3.0);
}

TEST(TINPoints, RecalcExtentCountsDeletedPoints) {
  TINPoints points(3);
  points.SetPoint(0, 5, 6, 7, 0, 0);
  points.SetPoint(-1, 9, 1, 8, 0, 1);
  points.SetPoint(2, 4, 7, 2, 0, 2);
  points.RecalcExtent();
  Extent6 extent;
  points.GetExtent(extent);
  EXPECT_EQ(extent, (Extent6{4, 9, 1, 7, 2, 8}));
}

TEST(TINPoints, AddPointGrowsByAHundredthAtLeastTen) {
  TINPoints points;
  EXPECT_EQ(points.AddPoint({1, 2, 3, 4, 5}), 1);
  EXPECT_EQ(points.capacity, 10);
  TINPoints many(2000);
  EXPECT_EQ(many.AddPoint(many.points[3]), 1);
  EXPECT_EQ(many.capacity, 2020);
  EXPECT_EQ(many.points.size(), 2020u);
  EXPECT_EQ(many.GetCount(), 2001);
}

TEST(TINPoints, CompactMovesLivePointsDownAndLeavesZAlone) {
  TINPoints points(4);
  points.SetPoint(0, 1, 1, 1, 0, 0);
  points.SetPoint(1, 2, 8, 2, 0, 1);
  points.SetPoint(2, 3, 3, 3, 0, 2);
  points.SetPoint(3, 9, 4, 4, 0, 3);
  points.RecalcExtent();
  EXPECT_EQ(points.RemovePoint(0), 1);
  EXPECT_EQ(points.RemovePoint(3), 1);
  EXPECT_EQ(points.RemovePoint(4), -1);
  points.Compact();
  ASSERT_EQ(points.GetCount(), 2);
  EXPECT_EQ(points.GetPoint(0)->id, 1);
  EXPECT_EQ(points.GetPoint(1)->id, 2);
  Extent6 extent;
  points.GetExtent(extent);
  EXPECT_EQ(extent, (Extent6{2, 3, 3, 8, 1, 4}));
}

TEST(TINPoints, CompactOfDeletedPointsAloneLeavesAnEmptyFile) {
  TempFolder folder;
  TINPoints points(1);
  points.RemovePoint(0);
  points.Compact();
  EXPECT_EQ(points.GetCount(), 0);
  EXPECT_EQ(points.Write("a.pts"), 0);
  EXPECT_EQ(ReadFileBytes("a.pts").size(), 52u);
  EXPECT_EQ(TINPoints().Read("a.pts"), -1);
}

TEST(TINPoints, GridHasACellMoreThanStepsAlongEachSide) {
  const TINPoints grid(2.0, 1.0, {0.0, 10.0, 5.0, 13.0});
  EXPECT_EQ(grid.nRows, 4);
  EXPECT_EQ(grid.nCols, 3);
  ASSERT_EQ(grid.cells.size(), 12u);
  EXPECT_EQ(grid.cells[7].id, 7);
  EXPECT_EQ(grid.cells[7].z, -4096.0);
  EXPECT_EQ(grid.cells[7].value, -1.0);
  EXPECT_EQ(grid.gridMinX, 0.0);
  EXPECT_EQ(grid.gridMinY, 10.0);
}

TEST(TINPoints, ImpossibleGridsStayEmpty) {
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(TINPoints(1, 1, {5, 0, 4, 1}).cells.empty());
  EXPECT_TRUE(TINPoints(1, 1, {0, 5, 1, 4}).cells.empty());
  EXPECT_TRUE(TINPoints(0, 1, {0, 0, 1, 1}).cells.empty());
  EXPECT_TRUE(TINPoints(-1, 1, {0, 0, 1, 1}).cells.empty());
  EXPECT_TRUE(TINPoints(kNaN, 1, {0, 0, 1, 1}).cells.empty());
  EXPECT_TRUE(TINPoints(1, 1, {0, 0, inf, 1}).cells.empty());
  EXPECT_TRUE(TINPoints(1, 1, {0, 0, 1e6, 1e6}).cells.empty());
}

TEST(TINPoints, WriteGridGoesColumnByColumnAndMovesTheOrigin) {
  TempFolder folder;
  TINPoints grid(2.0, 1.0, {0.0, 10.0, 5.0, 13.0});  // 4 rows, 3 columns
  const auto set = [&grid](int row, int col, double z, double value) {
    GridCell& cell = grid.cells[static_cast<std::size_t>(row * 3 + col)];
    cell.z = z;
    cell.value = value;
  };
  set(3, 1, 7.0, 0.7);
  set(1, 1, 5.0, 0.5);
  set(2, 2, 6.0, 0.6);
  EXPECT_EQ(grid.WriteGrid("a.pts"), 1);
  EXPECT_EQ(ReadFileBytes("a.pts"),
            PointsFile(3, {2, 13, 4, 11, 2, 1}, {2, 11, 5, 0.5, 2, 13, 7, 0.7, 4, 12, 6, 0.6}));
  EXPECT_EQ(grid.gridMinX, 2.0);
  EXPECT_EQ(grid.gridMinY, 11.0);
}

TEST(TINPoints, WriteGridAddsTheSpacingRepeatedly) {
  TempFolder folder;
  TINPoints grid(0.1, 0.1, {0.0, 0.0, 0.95, 0.05});
  ASSERT_EQ(grid.nCols, 10);
  grid.cells[3].z = 1.0;
  EXPECT_EQ(grid.WriteGrid("a.pts"), 1);
  EXPECT_EQ(ReadFileBytes("a.pts").substr(52, 8), Bytes(0.1 + 0.1 + 0.1));
}

TEST(TINPoints, WriteGridOfOneCellAwayFromTheOriginHasCrossedExtents) {
  TempFolder folder;
  TINPoints grid(1.0, 1.0, {0.0, 0.0, 9.0, 9.0});
  grid.cells[4 * 10 + 6].z = 3.0;
  EXPECT_EQ(grid.WriteGrid("a.pts"), 1);
  EXPECT_EQ(ReadFileBytes("a.pts"), PointsFile(1, {6, 0, 0, 4, 1, 1}, {6, 4, 3, -1}));
}

TEST(TINPoints, WriteGridRefusesAnEmptyGrid) {
  TempFolder folder;
  TINPoints grid(1.0, 1.0, {0.0, 0.0, 9.0, 9.0});
  EXPECT_EQ(grid.WriteGrid("a.pts"), -1);
  EXPECT_EQ(ReadFileBytes("a.pts"), "");
  EXPECT_EQ(TINPoints().WriteGrid("a.pts"), -1);
  grid.cells[0].z = 1.0;
  EXPECT_EQ(grid.WriteGrid("none/a.pts"), -1);
}

TEST(TINPoints, AFailedWriteGridLeavesTheOrigin) {
  OutputFile full("/dev/full");
  if (!full.IsOpen()) GTEST_SKIP() << "no such device on this system";
  TINPoints grid(1.0, 1.0, {5.0, 7.0, 9.0, 9.0});
  grid.cells[7].z = 3.0;                       // row 1, column 2
  EXPECT_EQ(grid.WriteGrid("/dev/full"), -1);  // fails at its end
  OutputFile closed;
  EXPECT_EQ(grid.WriteGrid(closed), -1);
  EXPECT_EQ(grid.gridMinX, 5.0);
  EXPECT_EQ(grid.gridMinY, 7.0);
}

TEST(TINPoints, DumpTextWritesALineAPoint) {
  TempFolder folder;
  TINPoints points(2);
  points.SetPoint(0, 1234567.25, 2, -3.5, 0.1, 0);
  points.SetPoint(-1, 1, 2, 3, 4, 1);
  points.DumpText("");
  EXPECT_EQ(ReadFileBytes("tinPoint.txt"), "0, 1.23457e+06, 2, -3.5, 0.1\n-1, 1, 2, 3, 4\n");
  points.DumpText("a.txt");
  EXPECT_EQ(ReadFileBytes("a.txt"), ReadFileBytes("tinPoint.txt"));
}

TEST(TINPoints, DumpTextTellsTheDebugStreamWhenTheFileDoesNotOpen) {
  TempFolder folder;
  TestFrontEnd frontEnd;
  TINPoints(1).DumpText("none/a.txt");
  ASSERT_EQ(frontEnd.events.size(), 1u);
  EXPECT_EQ(frontEnd.events[0], "trace: Unable to open file for dump");
}

}  // namespace
}  // namespace corvane
