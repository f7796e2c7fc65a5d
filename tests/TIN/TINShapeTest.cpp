// TINs as shape files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <shapefil.h>

#include <filesystem>

#include "TINSample.h"
#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A polygon as read back, "x y,x y,..." with its parts, type and bounds.
struct Polygon {
  int type = 0;
  int nParts = 0;
  std::vector<double> x;
  std::vector<double> y;
  int number = -1;  // of its record in the table
};

std::vector<Polygon> ReadShape(const std::string& path, const std::string& tablePath) {
  std::vector<Polygon> polygons;
  SHPHandle shapes = SHPOpen(path.c_str(), "rb");
  DBFHandle table = DBFOpen(tablePath.c_str(), "rb");
  if (!shapes || !table) return polygons;
  int count = 0;
  SHPGetInfo(shapes, &count, nullptr, nullptr, nullptr);
  for (int i = 0; i < count; ++i) {
    SHPObject* const shape = SHPReadObject(shapes, i);
    Polygon polygon;
    polygon.type = shape->nSHPType;
    polygon.nParts = shape->nParts;
    polygon.x.assign(shape->padfX, shape->padfX + shape->nVertices);
    polygon.y.assign(shape->padfY, shape->padfY + shape->nVertices);
    polygon.number = DBFReadIntegerAttribute(table, i, 0);
    polygons.push_back(polygon);
    SHPDestroyObject(shape);
  }
  SHPClose(shapes);
  DBFClose(table);
  return polygons;
}

class TINShape : public testing::Test {
 protected:
  void SetUp() override { WriteFileBytes("a.tin", TinBytes(TwoTriangles())); }

  static void ExpectSquare(const std::vector<Polygon>& polygons) {
    ASSERT_EQ(polygons.size(), 2u);
    EXPECT_EQ(polygons[0].type, SHPT_POLYGON);
    EXPECT_EQ(polygons[0].nParts, 1);
    EXPECT_THAT(polygons[0].x, ElementsAre(0, 10, 10, 0));
    EXPECT_THAT(polygons[0].y, ElementsAre(0, 0, 10, 0));
    EXPECT_EQ(polygons[0].number, 0);
    EXPECT_THAT(polygons[1].x, ElementsAre(0, 10, 0, 0));
    EXPECT_THAT(polygons[1].y, ElementsAre(0, 10, 10, 0));
    EXPECT_EQ(polygons[1].number, 1);
  }

  TempFolder folder;
  TestFrontEnd ui;
  TIN tin;
};

TEST_F(TINShape, RawTrianglesBecomeClosedPolygonsWithNumbers) {
  ASSERT_EQ(tin.ReadTIN("a.tin"), 0);
  ASSERT_EQ(tin.WriteShape("net.shp"), 0);
  ExpectSquare(ReadShape("net.shp", "net.dbf"));
  EXPECT_TRUE(std::filesystem::exists("net.shx"));
}

TEST_F(TINShape, TheStoredModelGivesTheSameFiles) {
  ASSERT_EQ(tin.ReadTIN("a.tin"), 0);
  ASSERT_EQ(tin.WriteShape("raw.shp"), 0);
  ASSERT_TRUE(Load(tin, "a.tin"));
  ASSERT_EQ(tin.WriteShape("stored.shp"), 0);
  ExpectSquare(ReadShape("stored.shp", "stored.dbf"));
  for (const std::string extension : {".shp", ".shx", ".dbf"})
    EXPECT_EQ(ReadFileBytes("raw" + extension), ReadFileBytes("stored" + extension)) << extension;
}

TEST_F(TINShape, DeletedTrianglesAreLeftOut) {
  ASSERT_TRUE(Load(tin, "a.tin"));
  tin.triangles[0].id = -1;
  ASSERT_EQ(tin.WriteShape("net.shp"), 0);
  const auto polygons = ReadShape("net.shp", "net.dbf");
  ASSERT_EQ(polygons.size(), 1u);
  EXPECT_THAT(polygons[0].x, ElementsAre(0, 10, 0, 0));
}

TEST_F(TINShape, FieldIsAnIntegerOfFiveDigitsNamedDD) {
  ASSERT_EQ(tin.ReadTIN("a.tin"), 0);
  ASSERT_EQ(tin.WriteShape("net.shp"), 0);
  DBFHandle table = DBFOpen("net.dbf", "rb");
  ASSERT_TRUE(table);
  char name[12];
  int width = 0;
  int decimals = -1;
  EXPECT_EQ(DBFGetFieldCount(table), 1);
  EXPECT_EQ(DBFGetFieldInfo(table, 0, name, &width, &decimals), FTInteger);
  EXPECT_STREQ(name, "DD");
  EXPECT_EQ(width, 5);
  EXPECT_EQ(decimals, 0);
  DBFClose(table);
}

TEST_F(TINShape, TableOfAPathWithoutPointIsTheExtensionAlone) {
  ASSERT_EQ(tin.ReadTIN("a.tin"), 0);
  std::filesystem::create_directory("sub");
  ASSERT_EQ(tin.WriteShape("sub/net"), 0);
  ExpectSquare(ReadShape("sub/net.shp", "./.dbf"));
}

TEST_F(TINShape, EmptyTinGivesAnEmptyFile) {
  ASSERT_EQ(tin.WriteShape("net.shp"), 0);
  EXPECT_THAT(ReadShape("net.shp", "net.dbf"), IsEmpty());
  EXPECT_EQ(ReadFileBytes("net.shp").size(), 100u);
}

TEST_F(TINShape, FailuresNameTheFileAndLeaveTheOldOnes) {
  ASSERT_EQ(tin.ReadTIN("a.tin"), 0);
  EXPECT_EQ(tin.WriteShape("missing/net.shp"), -1);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Unable to create:missing/net.shp."));
  ui.events.clear();
  WriteFileBytes("net.shp", "old");
  std::filesystem::create_directory("net.dbf");
  EXPECT_EQ(tin.WriteShape("net.shp"), -2);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: DBFCreate(net.dbf) failed."));
  EXPECT_EQ(ReadFileBytes("net.shp"), "old");
  EXPECT_FALSE(std::filesystem::exists("net.shx"));
}

TEST_F(TINShape, WhatStandsInTheWayOfOneFileStopsAll) {
  ASSERT_EQ(tin.ReadTIN("a.tin"), 0);
  WriteFileBytes("net.dbf", "old");
  std::filesystem::create_directory("net.shx");
  EXPECT_EQ(tin.WriteShape("net.shp"), -4);
  EXPECT_EQ(ReadFileBytes("net.dbf"), "old");
  EXPECT_FALSE(std::filesystem::exists("net.shp"));
}

TEST_F(TINShape, DevicesAreRefused) {
  ASSERT_EQ(tin.ReadTIN("a.tin"), 0);
  std::filesystem::create_symlink("/dev/null", "net.shp");
  EXPECT_EQ(tin.WriteShape("net.shp"), -1);
  EXPECT_FALSE(std::filesystem::exists("net.dbf"));
}

TEST_F(TINShape, FullDiskLeavesTheOldFiles) {
  WriteFileBytes("many.tin", TinBytes(GridMesh(20, 20, 1.0, [](int, int) { return 0.0; })));
  ASSERT_EQ(tin.ReadTIN("many.tin"), 0);
  ASSERT_EQ(tin.WriteShape("net.shp"), 0);
  const std::string whole = ReadFileBytes("net.shp");
  for (const rlim_t size : {100, 5000, 20000}) {
    const FileSizeLimit limit(size);
    EXPECT_EQ(tin.WriteShape("net.shp"), -4) << size;
  }
  EXPECT_EQ(ReadFileBytes("net.shp"), whole);
}

TEST_F(TINShape, NumbersOfSixDigitsLoseTheirLast) {
  const std::vector<SampleTriangle> one(100002, TwoTriangles()[0]);
  WriteFileBytes("many.tin", TinBytes(one));
  ASSERT_EQ(tin.ReadTIN("many.tin"), 0);
  std::int64_t nPolygons = 0;
  ASSERT_EQ(tin.WriteShape("net.shp", &nPolygons), 0);
  EXPECT_EQ(nPolygons, 100002);
  DBFHandle table = DBFOpen("net.dbf", "rb");
  ASSERT_TRUE(table);
  EXPECT_EQ(DBFGetRecordCount(table), 100002);
  EXPECT_EQ(DBFReadIntegerAttribute(table, 99999, 0), 99999);
  EXPECT_EQ(DBFReadIntegerAttribute(table, 100001, 0), 10000);
  DBFClose(table);
}

}  // namespace
}  // namespace corvane
