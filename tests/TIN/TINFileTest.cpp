// ".tin" files that are broken, and what a TIN writes.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <limits>
#include <random>

#include "TIN/TIN.h"
#include "TINSample.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

template <typename T>
T At(const std::string& bytes, std::size_t offset) {
  T value{};
  std::memcpy(&value, bytes.data() + offset, sizeof value);
  return value;
}

class TINFile : public testing::Test {
 protected:
  void LoadTwo() {
    WriteFileBytes("two.tin", TinBytes(TwoTriangles()));
    ASSERT_TRUE(Load(tin, "two.tin"));
    ui.events.clear();
  }

  int ReadBytes(const std::string& bytes) {
    WriteFileBytes("a.tin", bytes);
    return tin.ReadTIN("a.tin");
  }

  template <typename Write>
  std::string Written(Write write) {
    OutputFile file("out");
    write(file);
    EXPECT_TRUE(file.Commit());
    return ReadFileBytes("out");
  }

  TempFolder folder;
  TestFrontEnd ui;
  TIN tin;
};

TEST_F(TINFile, MissingFileWarns) {
  EXPECT_EQ(tin.ReadTIN("none.tin"), -1);
  EXPECT_EQ(ui.events, std::vector<std::string>{"message warning: Open file none.tin error!"});
}

TEST_F(TINFile, FolderInPlaceOfAFileWarns) {
  EXPECT_EQ(tin.ReadTIN(folder.GetPath()), -1);
  EXPECT_EQ(ui.events.size(), 1U);
}

TEST_F(TINFile, NegativeCountIsAMemoryError) {
  EXPECT_EQ(ReadBytes(TinBytes(-5, TwoTriangles())), -1);
  EXPECT_EQ(ui.events.back(), "message message: ReadTIN: Memory allocation error!");
  EXPECT_EQ(tin.nTriangles, 0);
}

TEST_F(TINFile, CountBeyondTheFileIsAReadErrorWithoutAllocation) {
  for (const std::int32_t count : {3, 1000000, std::numeric_limits<std::int32_t>::max()}) {
    EXPECT_EQ(ReadBytes(TinBytes(count, TwoTriangles())), -2);
    EXPECT_EQ(ui.events.back(), "message message: ReadTIN: Read TIN error!");
    EXPECT_EQ(tin.nTriangles, 0);
    EXPECT_EQ(tin.rawRecords, nullptr);
  }
}

TEST_F(TINFile, BytesBehindTheTrianglesDoNotMatter) {
  EXPECT_EQ(ReadBytes(TinBytes(1, TwoTriangles())), 0);
  EXPECT_EQ(tin.StoreTriangle("a.tin"), 0);
  EXPECT_EQ(tin.GetPointCount(), 3);
}

TEST_F(TINFile, TruncationAtEveryLengthIsAReadError) {
  const std::string bytes = TinBytes(TwoTriangles());
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    EXPECT_EQ(ReadBytes(bytes.substr(0, length)), -2) << length;
    EXPECT_EQ(ui.events.back(), "message message: ReadTIN: Read TIN error!");
    EXPECT_EQ(tin.nTriangles, 0);
    EXPECT_EQ(tin.rawRecords, nullptr);
  }
}

TEST_F(TINFile, FailedReadLeavesNoTriangles) {
  LoadTwo();
  EXPECT_EQ(ReadBytes("x"), -2);
  EXPECT_EQ(tin.nTriangles, 0);
  EXPECT_TRUE(tin.triangles.empty());
}

TEST_F(TINFile, AnyBytesAreReadOrRefused) {
  std::mt19937 random(3);
  const std::string good = TinBytes(JitteredMesh(4, 4, 1));
  for (int round = 0; round < 2000; ++round) {
    std::string bytes = good;
    const int changes = round % 7 + 1;
    for (int i = 0; i < changes; ++i) {
      const std::size_t place = random() % (round % 2 == 0 ? bytes.size() : 60);
      bytes[place] = static_cast<char>(random());
    }
    const bool stored = ReadBytes(bytes) == 0 && tin.StoreTriangle("a.tin") == 0;
    EXPECT_EQ(tin.triangles.size(), static_cast<std::size_t>(stored ? tin.nTriangles : 0));
    std::int32_t triangle = 0;
    tin.FindTriangle({1002.0, -498.0, 0.0}, triangle);
    tin.BuildNeighbours();
  }
}

TEST_F(TINFile, RandomBytesAreReadOrRefused) {
  std::mt19937 random(4);
  for (int round = 0; round < 500; ++round) {
    std::string bytes(4 + 108 * 6, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    bytes.replace(0, 4, std::string{static_cast<char>(round % 7), '\0', '\0', '\0'});
    if (ReadBytes(bytes) == 0) tin.StoreTriangle("a.tin");
  }
}

TEST_F(TINFile, WriteTinWritesTheFileBack) {
  const auto triangles = JitteredMesh(9, 9, 5);
  const std::string bytes = TinBytes(triangles);
  WriteFileBytes("a.tin", bytes);
  ASSERT_TRUE(Load(tin, "a.tin"));
  EXPECT_TRUE(Written([this](OutputFile& file) { EXPECT_EQ(tin.WriteTIN(file), 0); }) == bytes);
  EXPECT_TRUE(Written([this](OutputFile& file) { EXPECT_EQ(tin.WriteCompactTIN(file), 0); }) == bytes);
  EXPECT_EQ(tin.WriteCompactTIN("b.tin"), 0);
  EXPECT_TRUE(ReadFileBytes("b.tin") == bytes);
}

TEST_F(TINFile, WriteTinTakesChangedHeights) {
  LoadTwo();
  tin.vertices[2].z = -8.5;
  const std::string bytes = Written([this](OutputFile& file) { EXPECT_EQ(tin.WriteTIN(file), 0); });
  EXPECT_EQ(At<double>(bytes, 4 + 2 * 36 + 20), -8.5);    // third corner of the first triangle
  EXPECT_EQ(At<double>(bytes, 4 + 108 + 36 + 20), -8.5);  // second corner of the second
}

TEST_F(TINFile, WriteTinOfDeletedTrianglesPutsTheCountOnTheFirstId) {
  LoadTwo();
  tin.triangles[0].id = -1;
  const std::string bytes = Written([this](OutputFile& file) { EXPECT_EQ(tin.WriteTIN(file), 0); });
  ASSERT_EQ(bytes.size(), 4U + 108U);
  EXPECT_EQ(At<std::int32_t>(bytes, 0), 2);  // as it was
  EXPECT_EQ(At<std::int32_t>(bytes, 4), 1);  // in place of id 0
  EXPECT_EQ(At<double>(bytes, 4 + 20), 1.0);
  EXPECT_EQ(At<std::int32_t>(bytes, 4 + 36), 2);
  EXPECT_EQ(At<std::int32_t>(bytes, 4 + 72), 3);
}

TEST_F(TINFile, WriteCompactTinCountsTheLiveTriangles) {
  LoadTwo();
  tin.triangles[0].id = -1;
  const std::string bytes = Written([this](OutputFile& file) { EXPECT_EQ(tin.WriteCompactTIN(file), 0); });
  EXPECT_EQ(bytes, TinBytes({TwoTriangles()[1]}));
}

TEST_F(TINFile, WritePointsModeZeroWritesTheStoredHeader) {
  LoadTwo();
  tin.spacingX = 2.5;
  tin.spacingY = 3.5;
  tin.vertices[1].id = -1;
  EXPECT_EQ(tin.WritePoints("a.pts", 0), 4);
  const std::string bytes = ReadFileBytes("a.pts");
  ASSERT_EQ(bytes.size(), 52U + 4 * 32);
  EXPECT_EQ(At<std::int32_t>(bytes, 0), 4);
  EXPECT_EQ(At<double>(bytes, 4), 0.0);    // left
  EXPECT_EQ(At<double>(bytes, 12), 10.0);  // top
  EXPECT_EQ(At<double>(bytes, 20), 10.0);  // right
  EXPECT_EQ(At<double>(bytes, 28), 0.0);   // bottom
  EXPECT_EQ(At<double>(bytes, 36), 2.5);
  EXPECT_EQ(At<double>(bytes, 44), 3.5);
  EXPECT_EQ(At<double>(bytes, 52 + 32), 10.0);          // x of the second vertex
  EXPECT_EQ(At<double>(bytes, 52 + 3 * 32 + 8), 10.0);  // y of the fourth
  EXPECT_EQ(At<double>(bytes, 52 + 3 * 32 + 16), 4.0);  // z
  EXPECT_EQ(At<double>(bytes, 52 + 3 * 32 + 24), 0.5);  // value
}

TEST_F(TINFile, WritePointsModesOneAndTwoSplitByIdWithTheirOwnBounds) {
  LoadTwo();
  tin.vertices[2].id = -1;
  tin.vertices[3].id = -7;
  EXPECT_EQ(tin.WritePoints("live.pts", 1), 1);
  const std::string live = ReadFileBytes("live.pts");
  ASSERT_EQ(live.size(), 52U + 2 * 32);
  EXPECT_EQ(At<std::int32_t>(live, 0), 2);
  EXPECT_EQ(At<double>(live, 4), 0.0);
  EXPECT_EQ(At<double>(live, 12), 0.0);  // both at y = 0
  EXPECT_EQ(At<double>(live, 20), 10.0);
  EXPECT_EQ(At<double>(live, 28), 0.0);
  EXPECT_EQ(At<double>(live, 52 + 16), 1.0);
  EXPECT_EQ(At<double>(live, 52 + 32 + 16), 2.0);
  EXPECT_EQ(tin.WritePoints("marked.pts", 2), 1);
  const std::string marked = ReadFileBytes("marked.pts");
  ASSERT_EQ(marked.size(), 52U + 2 * 32);
  EXPECT_EQ(At<double>(marked, 12), 10.0);
  EXPECT_EQ(At<double>(marked, 28), 10.0);
  EXPECT_EQ(At<double>(marked, 52 + 16), 3.0);
}

TEST_F(TINFile, WritePointsWithoutAChosenVertexWritesCrossedBounds) {
  LoadTwo();
  tin.ptsMinX = 1.0;
  tin.ptsMaxX = 9.0;
  tin.ptsMinY = 2.0;
  tin.ptsMaxY = 8.0;
  EXPECT_EQ(tin.WritePoints("a.pts", 2), 1);
  const std::string bytes = ReadFileBytes("a.pts");
  ASSERT_EQ(bytes.size(), 52U);
  EXPECT_EQ(At<std::int32_t>(bytes, 0), 0);
  EXPECT_EQ(At<double>(bytes, 4), 9.0);   // minX
  EXPECT_EQ(At<double>(bytes, 12), 2.0);  // maxY
  EXPECT_EQ(At<double>(bytes, 20), 1.0);  // maxX
  EXPECT_EQ(At<double>(bytes, 28), 8.0);  // minY
  EXPECT_EQ(At<double>(bytes, 36), 1.0);
}

TEST_F(TINFile, WritePointsOfAnEmptyTinFailsAndKeepsTheOldFile) {
  WriteFileBytes("a.pts", "old");
  OutputFile file("b.pts");
  for (const int mode : {0, 1, 2, 3}) {
    EXPECT_EQ(tin.WritePoints(file, mode), -1);
    EXPECT_EQ(tin.WritePoints("a.pts", mode), -2);
  }
  EXPECT_EQ(ReadFileBytes("a.pts"), "old");
}

TEST_F(TINFile, WritePointsToAPathThatCanNotBeOpenedWarns) {
  LoadTwo();
  EXPECT_EQ(tin.WritePoints("none/a.pts", 0), -1);
  EXPECT_EQ(ui.events, std::vector<std::string>{"message warning: Write file none/a.pts error!"});
  EXPECT_EQ(tin.WriteCompactTIN("none/a.tin"), -1);
}

TEST_F(TINFile, FailingWritesReturnNegative) {
  struct stat status = {};
  if (stat("/dev/full", &status) != 0) GTEST_SKIP();
  const auto triangles = JitteredMesh(60, 60, 5);  // more than any buffer
  WriteFileBytes("a.tin", TinBytes(triangles));
  ASSERT_TRUE(Load(tin, "a.tin"));
  OutputFile tinFile("/dev/full");
  EXPECT_EQ(tin.WriteTIN(tinFile), -1);
  OutputFile compactFile("/dev/full");
  EXPECT_EQ(tin.WriteCompactTIN(compactFile), -1);
  EXPECT_EQ(tin.WriteCompactTIN("/dev/full"), -1);
  for (const int mode : {0, 1}) EXPECT_EQ(tin.WritePoints("/dev/full", mode), -2);
}

TEST_F(TINFile, UncommittedWriteLeavesTheOldFile) {
  LoadTwo();
  WriteFileBytes("old.tin", "old");
  {
    OutputFile file("old.tin");
    EXPECT_EQ(tin.WriteTIN(file), 0);
  }
  EXPECT_EQ(ReadFileBytes("old.tin"), "old");
}

}  // namespace
}  // namespace corvane
