// What commands make of images that are cut short, damaged, or no images.

#include <gmock/gmock.h>

#include "commands/ImageFixture.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ImageDamageTest : public ImageCommandsTest {
 protected:
  // A GeoTIFF of 100 x 100 bytes of 9.
  static std::string TiffBytes() {
    ErdasImg image;
    image.Create(HeaderOf(kPackByte, 1, 100, 100), false);
    image.Fill(9);
    EXPECT_EQ(image.Write("whole.tif"), 1);
    return ReadFileBytes("whole.tif");
  }

  std::vector<std::string> Statuses() const { return ui.EventsWith("status"); }

  static constexpr const char* kVirtual =
      "<VRTDataset rasterXSize=\"2000000000\" rasterYSize=\"2000000000\">"
      "<VRTRasterBand dataType=\"Byte\" band=\"1\"/></VRTDataset>";
};

// GDAL

TEST_F(ImageDamageTest, ACutTiffIsToldAndGivesThePixelsThatAreThere) {
  const std::string bytes = TiffBytes();
  WriteFileBytes("a.tif", bytes.substr(0, bytes.size() - 100));
  ui.files = {{"a.tif"}, {"out.lan"}};
  ui.values = {1};
  EXPECT_EQ(Run("Scale Pixel Value"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Open file a.tif error!\nThe file is damaged; what "
                                      "could not be read is zero."));
  const std::string pixels = ReadFileBytes("out.lan").substr(128);
  ASSERT_EQ(pixels.size(), 10000u);
  EXPECT_EQ(pixels.front(), 9);
  EXPECT_EQ(pixels.back(), 0);
  EXPECT_THAT(Statuses(), ElementsAre("status 0: Written to out.lan: 100 rows, 100 columns."));
}

TEST_F(ImageDamageTest, AVirtualImageBeyondTheMemoryIsTold) {
  WriteFileBytes("a.vrt", kVirtual);
  ui.files = {{"a.vrt"}, {"out.lan"}};
  ui.values = {1};
  EXPECT_EQ(Run("Scale Pixel Value"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Allocate Memory for Image Fails"));
  EXPECT_EQ(ReadFileBytes("out.lan"), BytesOf(ErdasHeader()) + PixelBytes<std::uint8_t>({0}));
}

// .lan

TEST_F(ImageDamageTest, ALanThatLacksPixelsTellsHowManyBytes) {
  WriteFileBytes("cut.lan", BytesOf(HeaderOf(kPackInt16, 2, 2, 1)) + PixelBytes<std::int16_t>({7, 8}) + "x");
  ui.files = {{"cut.lan"}, {"out.lan"}};
  EXPECT_EQ(Run("Image conversion"), CommandResult::Done);
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(Statuses(),
              ElementsAre("status 0: The image is cut short: bytes missing: 3.",
                          "status 0: Written to out.lan: 1 rows, 2 columns. The image is cut short: bytes "
                          "missing: 3."));
  EXPECT_EQ(ReadFileBytes("out.lan"),
            BytesOf(HeaderOf(kPackInt16, 2, 2, 1)) + PixelBytes<std::int16_t>({7, 8, 'x', 0}));
}

TEST_F(ImageDamageTest, ACutImageIsToldByEachCommand) {
  const std::string cut = " The image is cut short: bytes missing: 2.";
  WriteFileBytes("cut.lan", BytesOf(HeaderOf(kPackByte, 1, 2, 2)) + "ab");
  const auto lastStatus = [&](const std::string& command) {
    ui.files = {{"cut.lan"}, {"out"}};
    ui.forms = {Accept};
    ui.values = {2};
    EXPECT_EQ(Run(command), CommandResult::Done) << command;
    return Statuses().back();
  };
  const std::string tiff = " GeoTIFF, without its place on the ground.";
  EXPECT_EQ(lastStatus("Subset"), "status 0: Written to out: 2 rows, 2 columns." + tiff + cut);
  EXPECT_EQ(lastStatus("Subset (to Text)"), "status 0: Written to out: 2 rows, 2 columns." + cut);
  EXPECT_EQ(lastStatus("Sample Image"), "status 0: Written to cut2.lan: 1 rows, 1 columns." + cut);
  EXPECT_EQ(lastStatus("Scale Pixel Value"), "status 0: Written to out: 2 rows, 2 columns." + tiff + cut);
  EXPECT_EQ(lastStatus("I/O Test"), "status 0: Written to cut.lanqvo: 2 rows, 2 columns." + tiff + cut);
  EXPECT_EQ(lastStatus("DEM to ASCII Grid"), "status 0: Written to out: 2 rows, 2 columns." + cut);
  EXPECT_EQ(lastStatus("DEM to Points(.pts)"), "status 0: Written to out: 2 rows, 2 columns." + cut);
}

TEST_F(ImageDamageTest, ADifferenceTellsWhichImageIsCut) {
  WriteFileBytes("cut.lan", BytesOf(HeaderOf(kPackByte, 1, 2, 2)) + "ab");
  WriteFileBytes("cut2.lan", BytesOf(HeaderOf(kPackByte, 1, 2, 2)) + "a");
  ui.files = {{"cut.lan"}, {"cut2.lan"}, {"out.lan"}};
  EXPECT_EQ(Run("Difference Image"), CommandResult::Done);
  EXPECT_THAT(Statuses(), ElementsAre("status 0: The image is cut short: bytes missing: 2.",
                                      "status 0: The image is cut short: bytes missing: 3.",
                                      "status 0: Written to out.lan: 2 rows, 2 columns. The first image is "
                                      "cut short: bytes missing: 2. The second image is cut short: bytes "
                                      "missing: 3."));
}

TEST_F(ImageDamageTest, ALanShorterThanItsHeaderIsNoImage) {
  for (const std::size_t size : {0u, 127u}) {
    ui.events.clear();
    WriteFileBytes("short.lan", BytesOf(ErdasHeader()).substr(0, size));
    ui.files = {{"short.lan"}, {"out.lan"}};
    EXPECT_EQ(Run("Image conversion"), CommandResult::Failed);
    EXPECT_THAT(Messages(), ElementsAre("message warning: Open file short.lan error!\nIt is shorter than the "
                                        "header of an image."));
    EXPECT_EQ(ReadFileBytes("out.lan"), BytesOf(ErdasHeader()));
    EXPECT_THAT(Statuses(), ElementsAre("status 0: Written to out.lan: a header without pixels."));
  }
  std::filesystem::remove("out.lan");
  WriteFileBytes("whole.lan", BytesOf(ErdasHeader()));
  ui.events.clear();
  ui.files = {{"whole.lan"}, {"out.lan"}};
  EXPECT_EQ(Run("Image conversion"), CommandResult::Done);
  EXPECT_THAT(Messages(), IsEmpty());
}

// The first bytes of the text are taken for the pixel type, the number of bands and the size.
TEST_F(ImageDamageTest, AShortTextAsImage) {
  WriteFileBytes("notes.lan", "These are notes, no pixels.");
  ui.files = {{"notes.lan"}, {"out.lan"}};
  EXPECT_EQ(Run("Image conversion"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Open file notes.lan error!\nIt is shorter than the "
                                      "header of an image."));
  EXPECT_EQ(ReadFileBytes("out.lan"), BytesOf(ErdasHeader()));
  EXPECT_THAT(Statuses(), ElementsAre("status 0: Written to out.lan: a header without pixels."));
}

// Sparse files, so that the bytes cost nothing.
TEST_F(ImageDamageTest, ALanThatLacksMostOfItsPixelsIsNoImage) {
  const auto read = [&](std::int32_t cols, std::int32_t rows, std::uintmax_t nHeld) {
    WriteFileBytes("cut.lan", BytesOf(HeaderOf(kPackByte, 1, cols, rows)));
    std::filesystem::resize_file("cut.lan", 128 + nHeld);
    ui.events.clear();
    ui.files = {{"cut.lan"}};
    return Run("Image > Histogram");
  };
  const auto missing = [](int n) {
    return "status 0: The image is cut short: bytes missing: " + std::to_string(n) + ".";
  };
  // 2^26 bytes may always be missing, and as many as there are.
  EXPECT_EQ(read(8192, 8192, 0), CommandResult::Done);
  EXPECT_THAT(Statuses(), ElementsAre(missing(67108864)));
  EXPECT_EQ(read(10000, 14000, 69999936), CommandResult::Done);  // with the header 70000064
  EXPECT_THAT(Statuses(), ElementsAre(missing(70000064)));
  EXPECT_THAT(Messages(), IsEmpty());
  for (const std::uintmax_t nHeld : {0, 69999935}) {
    EXPECT_EQ(read(10000, 14000, nHeld), CommandResult::Failed);
    EXPECT_THAT(Messages(), ElementsAre("message warning: Open file cut.lan error!\nMost of its pixels are "
                                        "missing."));
    EXPECT_THAT(Statuses(), IsEmpty());
    EXPECT_EQ(ui.EventsWith("trace")[1], "trace: 0\t0\t-1\n");
  }
}

TEST_F(ImageDamageTest, AnImageWithoutASizeIsNoImage) {
  for (const ErdasHeader& header : {HeaderOf(kPackByte, 1, 0, 5), HeaderOf(kPackByte, 1, 5, 0),
                                    HeaderOf(kPackByte, 0, 5, 5), HeaderOf(kPackByte, 1, -5, 5),
                                    HeaderOf(kPackByte, 3, 5, INT32_MIN), HeaderOf(kPackByte, 1, -5, -5)}) {
    ui.events.clear();
    WriteFileBytes("none.lan", BytesOf(header));
    ui.files = {{"none.lan"}, {"out.lan"}};
    EXPECT_EQ(Run("Image conversion"), CommandResult::Failed);
    EXPECT_THAT(Messages(), ElementsAre("message warning: Open file none.lan error!\nIts header gives no "
                                        "rows, columns or bands."));
    EXPECT_THAT(Statuses(), ElementsAre("status 0: Written to out.lan: a header without pixels."));
  }
}

TEST_F(ImageDamageTest, AMissingLanMakesNoGeoTiff) {
  ExpectFailure("Image conversion", {{"none.lan"}, {"out.tif"}},
                {"message warning: Open file none.lan error!", "message warning: Write file out.tif error!"});
}

// Float grids

TEST_F(ImageDamageTest, AFloatGridThatLacksPixelsTellsHowManyBytes) {
  WriteFileBytes("f.hdr", "ncols 2\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\n");
  WriteFileBytes("f.bil", PixelBytes<float>({1.5f}));
  ui.files = {{"f.bil"}, {"out.lan"}};
  EXPECT_EQ(Run("Image conversion"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.lan").substr(128), PixelBytes<float>({1.5f, 0}));
  EXPECT_EQ(Statuses().back(),
            "status 0: Written to out.lan: 1 rows, 2 columns. The image is cut short: bytes missing: 4.");
}

TEST_F(ImageDamageTest, AFloatGridWhoseSizeIsNoneIsTold) {
  WriteFileBytes("f.bil", "1234");
  for (const char* text : {"", "BYTEORDER M\nLAYOUT BIL\n", "ncols 0\nnrows 5\n", "ncols 2\nnrows -2\n"}) {
    WriteFileBytes("f.hdr", text);
    ExpectFailure("Image conversion", {{"f.bil"}, {"out.lan"}},
                  {"message warning: Open file f.hdr error!\nIts first two lines give no columns and rows."});
  }
}

}  // namespace
}  // namespace corvane
