// The commands that make images from images, end to end.

#include <gmock/gmock.h>

#include "commands/ImageFixture.h"
#include "support/SharedData.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kImageFiles = "Image Files (*.lan)|*.lan|All Files (*.*)|*.*|";
constexpr const char* kTextFiles = "Text Files (*.txt)|*.txt|All Files (*.*)|*.*|";
constexpr const char* kAnImage = "Choose an Image.";
const std::string kOpenBox = "message warning: Open file none.lan error!";

class ImageToImageTest : public ImageCommandsTest {
 protected:
  void SetUp() override {
    ImageCommandsTest::SetUp();
    WriteFileBytes("a.lan", lan);
  }

  static ErdasHeader AHeader() {
    ErdasHeader header = HeaderOf(kPackByte, 1, 4, 3);
    header.xStart = 10;
    header.yStart = 20;
    header.xMap = 5.5f;
    header.yMap = 7.5f;
    return header;
  }

  // 4 columns and 3 rows of bytes from image-file coordinates (10, 20) on.
  const std::string lan =
      BytesOf(AHeader()) + PixelBytes<std::uint8_t>({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
};

// Image conversion

const std::string kForeignFiles = "All Files (*.*)|*.*|Lan Files (*.lan)|*.lan|Bil Files (*.bil)|*.bil|";
const std::string kLanFiles = "Lan Files (*.lan)|*.lan|";
const std::string kFloatHeader =
    "ncols 2\nnrows 1\nxllcorner 100\nyllcorner 200\ncellsize 2\nNODATA_value -9999\n";

TEST_F(ImageToImageTest, ConversionOfALanToAGeoTiff) {
  ui.files = {{"a.lan"}, {"out.tif"}};
  EXPECT_EQ(Run("Image conversion"), CommandResult::Done);
  ExpectChoosers({{kOpen, kForeignFiles, "Choose a Image."}, {kSave, kLanFiles, "Choose a Image."}});
  ErdasImg image;
  ASSERT_EQ(image.Read("out.tif"), 1);
  EXPECT_EQ(BandBytes(image, 0), lan.substr(128));
  EXPECT_EQ(ui.EventsWith("status").back(),
            "status 0: Written to out.tif: 3 rows, 4 columns. GeoTIFF, without its place on the ground.");
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(ImageToImageTest, ConversionOfAFloatGrid) {
  WriteFileBytes("f.hdr", kFloatHeader);
  WriteFileBytes("f.BIL", PixelBytes<float>({1.5f, 2}));
  ui.files = {{"f.BIL"}, {"out.lan"}};
  EXPECT_EQ(Run("Image conversion"), CommandResult::Done);
  ErdasHeader header = HeaderOf(kPackFloat, 1, 2, 1);
  header.xMap = 100.0f;
  header.yMap = 200.0f;
  header.xCell = 2.0f;
  header.yCell = -2.0f;
  EXPECT_EQ(ReadFileBytes("out.lan"), BytesOf(header) + PixelBytes<float>({1.5f, 2}));
}

TEST_F(ImageToImageTest, ConversionOfAnotherExtensionEndsSilently) {
  for (const char* name : {"a.tif", "lan", "a.lan.txt", "a.lanx", ".lan/a"}) {
    ui.events.clear();
    ui.choosers.clear();
    ui.files = {{name}};
    EXPECT_EQ(Run("Image conversion"), CommandResult::Done) << name;
    EXPECT_EQ(ui.choosers.size(), 1u);
    EXPECT_THAT(Messages(), IsEmpty());
  }
  EXPECT_THAT(Files(), ElementsAre("a.lan"));
}

TEST_F(ImageToImageTest, ConversionTakesTheExtensionInAnyCase) {
  WriteFileBytes("B.LAN", lan);
  ui.files = {{"B.LAN"}, {"out.lan"}};
  EXPECT_EQ(Run("Image conversion"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.lan"), lan);
}

TEST_F(ImageToImageTest, ConversionOfAnImageThatDoesNotOpen) {
  ui.files = {{"none.lan"}, {"out.lan"}};
  EXPECT_EQ(Run("Image conversion"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre(kOpenBox));
  EXPECT_EQ(ReadFileBytes("out.lan"), BytesOf(ErdasHeader()));
}

TEST_F(ImageToImageTest, ConversionOfAFloatGridThatCannotBeReadWritesNothing) {
  ExpectFailure("Image conversion", {{"f.bil"}, {"out.lan"}}, {"message warning: Open file f.hdr error!"});
  WriteFileBytes("f.hdr", kFloatHeader);
  ExpectFailure("Image conversion", {{"f.bil"}, {"out.lan"}}, {"message warning: Open file f.bil error!"});
  WriteFileBytes("f.hdr", "ncols 2147483647\nnrows 2147483647\n");
  ExpectFailure("Image conversion", {{"f.bil"}, {"out.lan"}},
                {"message warning: Allocate Memory for Image Fails"});
}

TEST_F(ImageToImageTest, ConversionThatCannotBeWritten) {
  ExpectFailure("Image conversion", {{"a.lan"}, {"none/out.lan"}},
                {"message warning: Write file none/out.lan error!"});
  ExpectFailure("Image conversion", {{"a.lan"}, {"none/out.tif"}},
                {"message warning: Write file none/out.tif error!"});
}

TEST_F(ImageToImageTest, ConversionCancelledWritesNothing) {
  ExpectCancelAtEach("Image conversion", "ff", {"a.lan", "out.lan"});
}

// Subset

TEST_F(ImageToImageTest, SubsetCutsAWindow) {
  ui.files = {{"a.lan"}, {"s.lan"}};
  ui.forms = {Enter({{"xStart", "11"}, {"yStart", "21.9"}, {"xEnd", "12.9"}})};
  EXPECT_EQ(Run("Subset"), CommandResult::Done);
  ExpectChoosers({{kOpen, kImageFiles, "Choose an Image to Subset"},
                  {kSave, kImageFiles, "Choose the file to save to"}});
  EXPECT_THAT(FieldsOf(ui.shownForms.at(0)), ElementsAre("XStart: 10", "YStart: 20", "XEnd 13", "YEnd: 22",
                                                         "Cell Size 1", "No-Data Value: 0"));
  ErdasHeader header = AHeader();
  header.cols = 2;
  header.rows = 2;
  header.xStart = 11;
  header.yStart = 21;
  EXPECT_EQ(ReadFileBytes("s.lan"), BytesOf(header) + PixelBytes<std::uint8_t>({6, 7, 10, 11}));
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Written to s.lan: 2 rows, 2 columns.");
}

TEST_F(ImageToImageTest, SubsetIsCutToTheImage) {
  ui.files = {{"a.lan"}, {"s.lan"}};
  ui.forms = {Enter({{"xStart", "-1e300"}, {"yStart", "-1e300"}, {"xEnd", "1e300"}, {"yEnd", "20"}})};
  EXPECT_EQ(Run("Subset"), CommandResult::Done);
  ErdasHeader header = AHeader();
  header.rows = 1;
  EXPECT_EQ(ReadFileBytes("s.lan"), BytesOf(header) + PixelBytes<std::uint8_t>({1, 2, 3, 4}));
}

TEST_F(ImageToImageTest, SubsetOfBandsAndWiderPixels) {
  WriteFileBytes("b.lan",
                 BytesOf(HeaderOf(kPackInt16, 2, 2, 2)) + PixelBytes<std::int16_t>({1, 2, 3, 4, 5, 6, 7, 8}));
  ui.files = {{"b.lan"}, {"s.lan"}};
  ui.forms = {Enter({{"xStart", "1"}})};
  EXPECT_EQ(Run("Subset"), CommandResult::Done);
  ErdasHeader header = HeaderOf(kPackInt16, 2, 1, 2);
  header.xStart = 1;
  EXPECT_EQ(ReadFileBytes("s.lan"), BytesOf(header) + PixelBytes<std::int16_t>({2, 4, 6, 8}));
}

TEST_F(ImageToImageTest, SubsetWhollyOutsideWritesNothingAndSaysNothing) {
  const std::vector<std::vector<std::pair<std::string, std::string>>> rects = {
      {{"xStart", "14"}, {"xEnd", "20"}},
      {{"yEnd", "19"}, {"yStart", "1"}},
      {{"xStart", "13"}, {"xEnd", "10"}}};
  for (const char* command : {"Subset", "Subset (to Text)"}) {
    for (const auto& rect : rects) {
      ui.events.clear();
      ui.files = {{"a.lan"}, {"s.out"}};
      ui.forms = {Enter(rect)};
      EXPECT_EQ(Run(command), CommandResult::Done);
      EXPECT_THAT(Messages(), IsEmpty());
      EXPECT_THAT(ui.EventsWith("status"), IsEmpty());
      EXPECT_THAT(Files(), ElementsAre("a.lan"));
    }
  }
}

TEST_F(ImageToImageTest, SubsetOfAnImageThatDoesNotOpen) {
  ui.files = {{"none.lan"}, {"s.lan"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("Subset"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre(kOpenBox));
  EXPECT_EQ(ReadFileBytes("s.lan"), BytesOf(ErdasHeader()) + PixelBytes<std::uint8_t>({0}));
}

TEST_F(ImageToImageTest, SubsetCancelledWritesNothing) {
  ExpectCancelAtEach("Subset", "ffe", {"a.lan", "s.lan"});
}

TEST_F(ImageToImageTest, SubsetThatCannotBeWritten) {
  ui.forms = {Accept};
  ExpectFailure("Subset", {{"a.lan"}, {"none/s.lan"}}, {"message warning: Write file none/s.lan error!"});
}

TEST_F(ImageToImageTest, SubsetOfAnImageThatPromisesTooMuch) {
  WriteFileBytes("huge.lan", BytesOf(HeaderOf(kPackDouble, 65535, INT32_MAX, INT32_MAX)));
  ui.files = {{"huge.lan"}, {"s.lan"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("Subset"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Allocate Memory for Image Fails"));
  EXPECT_EQ(ReadFileBytes("s.lan").size(), 129u);
}

// Subset (to Text)

TEST_F(ImageToImageTest, SubsetToTextWritesTheValues) {
  ui.files = {{"a.lan"}, {"s.txt"}};
  ui.forms = {Enter({{"xStart", "12"}, {"yEnd", "21"}})};
  EXPECT_EQ(Run("Subset (to Text)"), CommandResult::Done);
  ExpectChoosers(
      {{kOpen, kImageFiles, "Choose an Image to Subset"}, {kSave, kTextFiles, "Choose the file to save to"}});
  EXPECT_EQ(ReadFileBytes("s.txt"), "3 4 \n7 8 \n\n");
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Written to s.txt: 2 rows, 2 columns.");
}

TEST_F(ImageToImageTest, SubsetToTextFailures) {
  ui.forms = {Accept};
  ExpectFailure("Subset (to Text)", {{"a.lan"}, {"none/s.txt"}},
                {"message warning: Write file none/s.txt error!"});
  ExpectCancelAtEach("Subset (to Text)", "ffe", {"a.lan", "s.txt"});
}

// Sample Image

TEST_F(ImageToImageTest, SampleOfTenByTenByThree) {
  std::string bytes = BytesOf(HeaderOf(kPackByte, 1, 10, 10));
  for (char i = 0; i < 100; ++i) bytes += i;
  std::filesystem::create_directory("x.y");
  WriteFileBytes("x.y/ten.lan", bytes);
  ui.files = {{"x.y/ten.lan"}};
  ui.values = {3.9};
  EXPECT_EQ(Run("Sample Image"), CommandResult::Done);
  ExpectChoosers({{kOpen, kImageFiles, kAnImage}});
  EXPECT_THAT(ui.EventsWith("value"), ElementsAre("value: Please input a value. 2"));
  ErdasHeader header = HeaderOf(kPackByte, 1, 3, 3);
  header.xCell = 3.0f;
  header.yCell = -3.0f;
  EXPECT_EQ(ReadFileBytes("x.y/ten3.lan"),
            BytesOf(header) + PixelBytes<std::uint8_t>({0, 3, 6, 30, 33, 36, 60, 63, 66}));
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Written to x.y/ten3.lan: 3 rows, 3 columns.");
}

TEST_F(ImageToImageTest, SampleByLessThanTwoEndsSilently) {
  for (const double n : {1.99, 0.0, -3.0, -1e300}) {
    ui.events.clear();
    ui.files = {{"a.lan"}};
    ui.values = {n};
    EXPECT_EQ(Run("Sample Image"), CommandResult::Done);
    EXPECT_THAT(Messages(), IsEmpty());
  }
  EXPECT_THAT(Files(), ElementsAre("a.lan"));
}

TEST_F(ImageToImageTest, SampleWithNoRowsOrColumnsLeftEndsSilently) {
  for (const double n : {4.0, 5.0, 1e300}) {  // rows, both, both
    ui.events.clear();
    ui.files = {{"a.lan"}};
    ui.values = {n};
    EXPECT_EQ(Run("Sample Image"), CommandResult::Done);
    EXPECT_THAT(Messages(), IsEmpty());
  }
  EXPECT_THAT(Files(), ElementsAre("a.lan"));
}

TEST_F(ImageToImageTest, SampleOfAnImageThatDoesNotOpen) {
  ui.values = {2};
  ExpectFailure("Sample Image", {{"none.lan"}}, {kOpenBox});
}

TEST_F(ImageToImageTest, SampleCancelledWritesNothing) {
  ExpectCancelAtEach("Sample Image", "fv", {"a.lan"});
}

TEST_F(ImageToImageTest, SampleThatCannotBeWritten) {
  std::filesystem::create_directory("a2.lan");
  ui.values = {2};
  ExpectFailure("Sample Image", {{"a.lan"}}, {"message warning: Write file a2.lan error!"});
}

// Scale Pixel Value

TEST_F(ImageToImageTest, ScaleDivides) {
  WriteFileBytes("f.lan", LanOf<float>(kPackFloat, 3, 1, {1, -10, 0}));
  ui.files = {{"f.lan"}, {"out.lan"}};
  ui.values = {3.9};
  EXPECT_EQ(Run("Scale Pixel Value"), CommandResult::Done);
  ExpectChoosers({{kOpen, kImageFiles, kAnImage}, {kSave, kImageFiles, kAnImage}});
  EXPECT_THAT(ui.EventsWith("value"), ElementsAre("value: Input the scale factor 2"));
  EXPECT_EQ(ReadFileBytes("out.lan"),
            LanOf<float>(kPackFloat, 3, 1, {static_cast<float>(1.0 / 3), static_cast<float>(-10.0 / 3), 0}));
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Written to out.lan: 1 rows, 3 columns.");
}

TEST_F(ImageToImageTest, ScaleByZeroIsNotStopped) {
  ui.files = {{"a.lan"}, {"out.lan"}};
  ui.values = {-0.9};
  EXPECT_EQ(Run("Scale Pixel Value"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.lan"), lan.substr(0, 128) + std::string(12, '\xff'));
}

TEST_F(ImageToImageTest, ScaleByANegativeFactorEndsBeforeTheSaveChooser) {
  ui.files = {{"a.lan"}, {"out.lan"}};
  ui.values = {-1};
  EXPECT_EQ(Run("Scale Pixel Value"), CommandResult::Done);
  EXPECT_EQ(ui.choosers.size(), 1u);
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(Files(), ElementsAre("a.lan"));
}

TEST_F(ImageToImageTest, ScaleOfAnImageThatDoesNotOpen) {
  ui.files = {{"none.lan"}, {"out.lan"}};
  ui.values = {2};
  EXPECT_EQ(Run("Scale Pixel Value"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre(kOpenBox));
  EXPECT_EQ(ReadFileBytes("out.lan"), BytesOf(ErdasHeader()) + PixelBytes<std::uint8_t>({0}));
}

TEST_F(ImageToImageTest, ScaleCancelledWritesNothing) {
  ExpectCancelAtEach("Scale Pixel Value", "fvf", {"a.lan", "out.lan"});
}

// Difference Image

TEST_F(ImageToImageTest, DifferenceIsFirstMinusSecond) {
  WriteFileBytes("b.lan", LanOf<std::uint8_t>(kPackByte, 2, 2, {0, 1, 2, 20}));
  ui.files = {{"a.lan"}, {"b.lan"}, {"out.lan"}};
  EXPECT_EQ(Run("Difference Image"), CommandResult::Done);
  ExpectChoosers(
      {{kOpen, kImageFiles, kAnImage}, {kOpen, kImageFiles, kAnImage}, {kSave, kImageFiles, kAnImage}});
  EXPECT_EQ(ReadFileBytes("out.lan"),
            lan.substr(0, 128) + PixelBytes<std::uint8_t>({1, 1, 0, 0, 3, 242, 0, 0, 0, 0, 0, 0}));
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Written to out.lan: 3 rows, 4 columns.");
}

TEST_F(ImageToImageTest, DifferenceOfUnlikeTypesTellsAndGoesOn) {
  WriteFileBytes("b.lan", LanOf<float>(kPackFloat, 2, 1, {0.5f, 1}));
  ui.files = {{"b.lan"}, {"a.lan"}, {"out.lan"}};
  EXPECT_EQ(Run("Difference Image"), CommandResult::Done);
  EXPECT_THAT(Messages(), ElementsAre("message warning: The two images have different data type!"));
  EXPECT_EQ(ReadFileBytes("out.lan"), LanOf<float>(kPackFloat, 2, 1, {-0.5f, -1}));
}

TEST_F(ImageToImageTest, DifferenceWithImagesThatDoNotOpen) {
  ui.files = {{"a.lan"}, {"none.lan"}, {"out.lan"}, {"none.lan"}, {"a.lan"}, {"out2.lan"}};
  EXPECT_EQ(Run("Difference Image"), CommandResult::Failed);
  EXPECT_EQ(ReadFileBytes("out.lan"), lan.substr(0, 129) + std::string(11, '\0'));
  EXPECT_EQ(Run("Difference Image"), CommandResult::Failed);
  EXPECT_EQ(ReadFileBytes("out2.lan"), BytesOf(ErdasHeader()) + PixelBytes<std::uint8_t>({255}));
  EXPECT_THAT(Messages(), ElementsAre(kOpenBox, kOpenBox));
}

TEST_F(ImageToImageTest, DifferenceCancelledWritesNothing) {
  ExpectCancelAtEach("Difference Image", "fff", {"a.lan", "a.lan", "out.lan"});
}

TEST_F(ImageToImageTest, DifferenceThatCannotBeWritten) {
  ExpectFailure("Difference Image", {{"a.lan"}, {"a.lan"}, {"none/out.lan"}},
                {"message warning: Write file none/out.lan error!"});
}

// The DEM minus itself in another format: the GeoTIFF holds the same pixels.
TEST_F(ImageToImageTest, DifferenceOfARealDemAndItsGeoTiff) {
  const std::string path = SharedData("block/hills_dem.lan");
  if (path.empty()) GTEST_SKIP();
  ui.files = {{path}, {"dem.tif"}, {path}, {"dem.tif"}, {"out.lan"}};
  EXPECT_EQ(Run("Image conversion"), CommandResult::Done);
  EXPECT_EQ(Run("Difference Image"), CommandResult::Done);
  const std::string bytes = ReadFileBytes("out.lan");
  EXPECT_TRUE(bytes == ReadFileBytes(path).substr(0, 128) + std::string(4 * 324000, '\0'));
}

// I/O Test

TEST_F(ImageToImageTest, IoTestWritesAGeoTiffBesideTheImage) {
  ui.files = {{"a.lan"}};
  EXPECT_EQ(Run("I/O Test"), CommandResult::Done);
  ExpectChoosers({{kOpen, kImageFiles, "Choose a Image."}});
  EXPECT_THAT(Files(), ElementsAre("a.lan", "a.lanqvo"));
  EXPECT_EQ(ReadFileBytes("a.lanqvo").substr(0, 4), std::string("II*\0", 4));
  ErdasImg image;
  ASSERT_EQ(image.Read("a.lanqvo"), 1);
  EXPECT_EQ(BandBytes(image, 0), lan.substr(128));
  EXPECT_EQ(ui.EventsWith("status").back(),
            "status 0: Written to a.lanqvo: 3 rows, 4 columns. GeoTIFF, without its place on the ground.");
}

TEST_F(ImageToImageTest, IoTestOfAnImageThatDoesNotOpen) {
  ExpectFailure("I/O Test", {{"none.lan"}}, {kOpenBox, "message warning: Write file none.lanqvo error!"});
}

TEST_F(ImageToImageTest, IoTestCancelledWritesNothing) {
  ExpectCancelAtEach("I/O Test", "f", {"a.lan"});
}

TEST_F(ImageToImageTest, IoTestOfRealImages) {
  for (const char* name : {"images/landsat_rgb_512.lan", "formats/landsat_rgb_byte.tif"}) {
    const std::string path = SharedData(name);
    if (path.empty()) GTEST_SKIP();
    std::filesystem::copy_file(path, "real");
    ui.files = {{"real"}};
    EXPECT_EQ(Run("I/O Test"), CommandResult::Done) << name;
    ErdasImg image;
    ErdasImg written;
    ASSERT_EQ(image.Read("real"), 1);
    ASSERT_EQ(written.Read("realqvo"), 1);
    ASSERT_EQ(written.GetBandCount(), 3);
    for (int band = 0; band < 3; ++band) EXPECT_TRUE(BandBytes(written, band) == BandBytes(image, band));
    std::filesystem::remove("real");
  }
}

}  // namespace
}  // namespace corvane
