// Which photos an orthophoto takes, and what its image covers.

#include "OpenGL/Stereo_2Cursor/OrthoMosaic.h"

#include "OpenGL/Stereo_2Cursor/ResampleFixture.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using Taken = OrthoMosaic::Taken;

// Photos of 100 x 100 pixels of a unit on the ground at height 0, over a DEM from (900, 2200) to (1300,
// 1800).
class OrthoMosaicTest : public testing::Test {
 protected:
  void SetUp() override {
    ErdasHeader header = HeaderOf(kPackFloat, 1, 40, 40);
    header.xMap = 900.0f;
    header.yMap = 2200.0f;
    header.xCell = 10.0f;
    header.yCell = -10.0f;
    ASSERT_EQ(dem.Create(header, false), 1);
  }

  // With its upper left pixel at (x, y).
  void WritePhoto(const std::string& stem, double x, double y, std::uint16_t nBands = 1) {
    AerialPhoto photo;
    SetPhoto(photo, {.x = x + 50.0, .y = y - 50.0, .a = 0.1, .c = -5.0, .e = -0.1, .g = 5.0});
    ErdasHeader header = HeaderOf(kPackByte, nBands, 100, 100);
    header.mapType = 5;
    WriteFileBytes(stem + ".lan", BytesOf(header));
    ASSERT_EQ(photo.WriteOrientation(stem + ".orn", "w"), 1);
  }

  // The rows, columns, place and cell of the output.
  std::vector<double> OutputOf(const OrthoMosaic& mosaic, float cell) {
    ErdasImg output;
    EXPECT_EQ(mosaic.MakeOutput(cell, output), 1);
    const ErdasHeader& header = *output.GetHeader();
    return {static_cast<double>(header.rows),
            static_cast<double>(header.cols),
            header.xMap,
            header.yMap,
            header.xCell,
            header.yCell};
  }

  TempFolder folder;
  TestFrontEnd ui;
  ErdasImg dem;
  const GroundExtent everything = {.minX = 0.0, .minY = 0.0, .maxX = 1e6, .maxY = 1e6};
};

TEST_F(OrthoMosaicTest, OnePhotoIsNotCropped) {
  WritePhoto("a", 1000, 2000, 2);
  OrthoMosaic mosaic(dem, everything, 1);
  ASSERT_EQ(mosaic.Add("a.lan"), Taken::Yes);
  EXPECT_EQ(OutputOf(mosaic, 2.0f), (std::vector<double>{50, 50, 1000, 2000, 2, -2}));
  EXPECT_EQ(mosaic.GetPhotos()[0]->photo.name, "a.lan");
  ErdasImg output;
  ASSERT_EQ(mosaic.MakeOutput(2.0f, output), 1);
  EXPECT_EQ(output.GetBandCount(), 2);  // as the first photo's header
  EXPECT_EQ(output.GetHeader()->mapType, 5);
  EXPECT_EQ(CountPainted(output), 0);
}

TEST_F(OrthoMosaicTest, SeveralPhotosLoseTheirSides) {
  // Rows count as columns: 20 % are lost in x, 30 % in y.
  WritePhoto("a", 1000, 2000);
  OrthoMosaic mosaic(dem, everything, 2);
  ASSERT_EQ(mosaic.Add("a.lan"), Taken::Yes);
  EXPECT_EQ(OutputOf(mosaic, 1.0f), (std::vector<double>{40, 60, 1020, 1970, 1, -1}));
}

TEST_F(OrthoMosaicTest, CropFollowsTheNumberChosen) {
  WritePhoto("a", 1000, 2000);
  OrthoMosaic mosaic(dem, everything, 2);
  EXPECT_EQ(mosaic.Add("none.lan"), Taken::NoOrientation);
  EXPECT_EQ(mosaic.Add("a.lan"), Taken::Yes);
  EXPECT_EQ(mosaic.GetPhotos().size(), 1u);
  EXPECT_EQ(OutputOf(mosaic, 1.0f), (std::vector<double>{40, 60, 1020, 1970, 1, -1}));
}

TEST_F(OrthoMosaicTest, PhotosThatAreLeftOut) {
  WritePhoto("a", 1000, 2000);
  WriteFileBytes("b.orn", ReadFileBytes("a.orn"));
  WriteFileBytes("c.lan", ReadFileBytes("a.lan"));
  OrthoMosaic mosaic(dem, {.minX = 0, .minY = 0, .maxX = 999, .maxY = 1e6}, 1);
  EXPECT_EQ(mosaic.Add("c.lan"), Taken::NoOrientation);
  EXPECT_TRUE(ui.EventsWith("message").empty());
  EXPECT_EQ(mosaic.Add("b.lan"), Taken::NoHeader);
  EXPECT_EQ(ui.EventsWith("message"), std::vector<std::string>{"message warning: Open file b.lan error!"});
  EXPECT_EQ(mosaic.Add("a.lan"), Taken::Outside);
  EXPECT_TRUE(mosaic.GetPhotos().empty());
}

TEST_F(OrthoMosaicTest, FilesThatAreNoImagesAreLeftOut) {
  WritePhoto("a", 1000, 2000);
  const std::string orientation = ReadFileBytes("a.orn");
  const auto add = [&](const std::string& bytes) {
    WriteFileBytes("b.lan", bytes);
    WriteFileBytes("b.orn", orientation);
    OrthoMosaic mosaic(dem, everything, 1);
    const Taken taken = mosaic.Add("b.lan");
    EXPECT_EQ(mosaic.GetPhotos().size(), taken == Taken::Yes ? 1u : 0u);
    return taken;
  };
  EXPECT_EQ(add(""), Taken::NoImage);
  EXPECT_EQ(add(BytesOf(HeaderOf(kPackByte, 1, 100, 100)).substr(0, 127)), Taken::NoImage);
  EXPECT_EQ(add(BytesOf(HeaderOf(kPackByte, 0, 100, 100))), Taken::NoImage);
  EXPECT_EQ(add(BytesOf(HeaderOf(kPackByte, 1, -100, 100))), Taken::NoImage);
  EXPECT_EQ(add(orientation), Taken::NoImage);  // letters as a size
  // 60 million bytes may be missing, 600 million may not.
  EXPECT_EQ(add(BytesOf(HeaderOf(kPackByte, 6000, 100, 100))), Taken::Yes);
  EXPECT_EQ(add(BytesOf(HeaderOf(kPackByte, 60000, 100, 100))), Taken::NoImage);
  EXPECT_TRUE(ui.EventsWith("message").empty());
}

TEST_F(OrthoMosaicTest, OrientationWithTheExtensionInCapitals) {
  WritePhoto("a", 1000, 2000);
  WriteFileBytes("b.lan", ReadFileBytes("a.lan"));
  WriteFileBytes("b.ORN", ReadFileBytes("a.orn"));
  OrthoMosaic mosaic(dem, everything, 1);
  EXPECT_EQ(mosaic.Add("b.lan"), Taken::Yes);
}

TEST_F(OrthoMosaicTest, APhotoOutsideOfTheExtentDoesNotWidenTheOutput) {
  WritePhoto("a", 1000, 2000);
  WritePhoto("b", 1300, 2000);
  OrthoMosaic mosaic(dem, {.minX = 1010, .minY = 1950, .maxX = 1200, .maxY = 2100}, 2);
  EXPECT_EQ(mosaic.Add("a.lan"), Taken::Yes);
  EXPECT_EQ(mosaic.Add("b.lan"), Taken::Outside);
  EXPECT_EQ(OutputOf(mosaic, 1.0f), (std::vector<double>{20, 60, 1020, 1970, 1, -1}));
}

TEST_F(OrthoMosaicTest, OutputIsTheUnionOfTheClippedFootprints) {
  WritePhoto("a", 1000, 2000);  // cropped: 1020 to 1080, 1970 to 1930
  WritePhoto("b", 1050, 1980);  // 1070 to 1130, 1950 to 1910
  OrthoMosaic mosaic(dem, {.minX = 1030, .minY = 0, .maxX = 5000, .maxY = 1960}, 2);
  EXPECT_EQ(mosaic.Add("a.lan"), Taken::Yes);
  EXPECT_EQ(mosaic.Add("b.lan"), Taken::Yes);
  EXPECT_EQ(OutputOf(mosaic, 1.0f), (std::vector<double>{50, 100, 1030, 1960, 1, -1}));
}

TEST_F(OrthoMosaicTest, FootprintsLieAtTheHeightUnderTheCamera) {
  dem.Fill(750.0);  // half way to the camera
  WritePhoto("a", 1000, 2000);
  OrthoMosaic mosaic(dem, everything, 1);
  EXPECT_EQ(mosaic.Add("a.lan"), Taken::Yes);
  EXPECT_EQ(OutputOf(mosaic, 1.0f), (std::vector<double>{50, 50, 1025, 1975, 1, -1}));
  // Beside the DEM it is 0.
  WritePhoto("b", 2000, 2000);
  OrthoMosaic beside(dem, everything, 1);
  EXPECT_EQ(beside.Add("b.lan"), Taken::Yes);
  EXPECT_EQ(OutputOf(beside, 1.0f), (std::vector<double>{100, 100, 2000, 2000, 1, -1}));
}

TEST_F(OrthoMosaicTest, CellsAndOrientationsThatMakeNoImage) {
  WritePhoto("a", 1000, 2000);
  OrthoMosaic mosaic(dem, everything, 1);
  ASSERT_EQ(mosaic.Add("a.lan"), Taken::Yes);
  ErdasImg output;
  for (const float cell : {-1.0f, 101.0f, std::nanf("")}) EXPECT_EQ(mosaic.MakeOutput(cell, output), -1);
  for (const float cell : {0.0f, 1e-6f, 1e-30f}) EXPECT_EQ(mosaic.MakeOutput(cell, output), -2);
  EXPECT_FALSE(output.HasPixels());

  WriteFileBytes("b.lan", ReadFileBytes("a.lan"));
  WriteFileBytes("b.orn", "");  // all zero
  EXPECT_EQ(mosaic.Add("b.lan"), Taken::Unoriented);
  WriteFileBytes("b.orn", "O n w nan");
  EXPECT_EQ(mosaic.Add("b.lan"), Taken::Unoriented);
}

TEST_F(OrthoMosaicTest, APhotoWithoutAnOrientationCountsAsThatOutsideOfTheExtent) {
  // f is 0, and all rays meet the ground at the point (50, 60) below the camera.
  WriteFileBytes("a.lan", BytesOf(HeaderOf(kPackByte, 1, 100, 100)));
  WriteFileBytes("a.orn", "O n w\n0\n50 60 1500\n180 90 0\n0 0 0\n0 0 1\n0 0 1\n0 0\n");
  OrthoMosaic within(dem, everything, 1);
  EXPECT_EQ(within.Add("a.lan"), Taken::Yes);
  OrthoMosaic beside(dem, {.minX = 1e8, .minY = 1e8, .maxX = 1e9, .maxY = 1e9}, 1);
  EXPECT_EQ(beside.Add("a.lan"), Taken::Unoriented);
}

}  // namespace
}  // namespace corvane
