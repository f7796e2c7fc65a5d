// Where the outputs of image commands go: over their inputs, to full disks, into other forms.

#include <gmock/gmock.h>

#include "commands/ImageFixture.h"
#include "support/FileSizeLimit.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ImageOutputsTest : public ImageCommandsTest {
 protected:
  void SetUp() override {
    ImageCommandsTest::SetUp();
    WriteFileBytes("a.lan", LanOf<std::uint8_t>(kPackByte, 4, 2, {10, 20, 30, 40, 50, 60, 70, 80}));
  }

  std::string LastStatus() const { return ui.EventsWith("status").back(); }
};

// Over the input

TEST_F(ImageOutputsTest, TheInputMayBeTheOutput) {
  ui.files = {{"a.lan"}, {"a.lan"}, {"a.lan"}, {"a.lan"}, {"a.lan"}, {"a.lan"}, {"a.lan"}};
  ui.forms = {Enter({{"xEnd", "1"}})};
  ui.values = {2};
  EXPECT_EQ(Run("Subset"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("a.lan"), LanOf<std::uint8_t>(kPackByte, 2, 2, {10, 20, 50, 60}));
  EXPECT_EQ(Run("Scale Pixel Value"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("a.lan"), LanOf<std::uint8_t>(kPackByte, 2, 2, {5, 10, 25, 30}));
  EXPECT_EQ(Run("Difference Image"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("a.lan"), LanOf<std::uint8_t>(kPackByte, 2, 2, {0, 0, 0, 0}));
  EXPECT_THAT(Files(), ElementsAre("a.lan"));
}

TEST_F(ImageOutputsTest, TheOutputMayBeALinkToTheInput) {
  std::filesystem::create_symlink("a.lan", "link.lan");
  ui.files = {{"a.lan"}, {"link.lan"}, {"link.lan"}, {"a.lan"}};
  ui.values = {2, 5};
  EXPECT_EQ(Run("Scale Pixel Value"), CommandResult::Done);
  EXPECT_TRUE(std::filesystem::is_symlink("link.lan"));
  EXPECT_EQ(ReadFileBytes("a.lan"), LanOf<std::uint8_t>(kPackByte, 4, 2, {5, 10, 15, 20, 25, 30, 35, 40}));
  EXPECT_EQ(Run("Scale Pixel Value"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("link.lan"), LanOf<std::uint8_t>(kPackByte, 4, 2, {1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_THAT(Files(), ElementsAre("a.lan", "link.lan"));
}

TEST_F(ImageOutputsTest, AGeoTiffMayReplaceItself) {
  ErdasImg image;
  ASSERT_EQ(image.Read("a.lan"), 1);
  ASSERT_EQ(image.Write("a.tif"), 1);
  ui.files = {{"a.tif"}, {"a.tif"}};
  ui.values = {10};
  EXPECT_EQ(Run("Scale Pixel Value"), CommandResult::Done);
  ASSERT_EQ(image.Read("a.tif"), 1);
  EXPECT_EQ(BandBytes(image, 0), PixelBytes<std::uint8_t>({1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_THAT(Files(), ElementsAre("a.lan", "a.tif"));
}

// Full disks

TEST_F(ImageOutputsTest, AFullDiskLeavesTheOldFiles) {
  constexpr std::int32_t kSide = 400;
  ErdasImg dem;
  ASSERT_EQ(dem.Create(HeaderOf(kPackFloat, 1, kSide, kSide), false), 1);
  ASSERT_EQ(dem.Write("dem.lan"), 1);
  std::string grid = "ncols 400\nnrows 400\nx 0\ny 0\ncellsize 1\nNODATA_value 0\n";
  for (int i = 0; i < kSide * kSide; ++i) grid += "1234.5\n";
  WriteFileBytes("g.asc", grid);
  for (const char* name : {"out.asc", "out.pts", "out.lan", "out.txt", "DEDNM.INP"}) WriteFileBytes(name, "");

  const auto fail = [&](const std::string& command, const std::vector<std::string>& paths) {
    for (const std::size_t size : {100u, 300000u}) {  // within the first block, and behind it
      for (const auto& path : paths) ui.files.push_back({path});
      ui.forms = {Accept};
      const FileSizeLimit limit(size);
      ui.events.clear();
      EXPECT_EQ(Run(command), CommandResult::Failed) << command;
      ui.forms.clear();
    }
    return Messages();
  };
  const auto cannotWrite = [](const std::string& path) {
    return ElementsAre("message warning: Write file " + path + " error!");
  };
  EXPECT_THAT(fail("DEM to ASCII Grid", {"dem.lan", "out.asc"}), cannotWrite("out.asc"));
  EXPECT_THAT(fail("DEM to Points(.pts)", {"dem.lan", "out.pts"}), cannotWrite("out.pts"));
  EXPECT_THAT(fail("ASCII Grid to TOPAZ", {"g.asc"}), cannotWrite("DEDNM.INP"));
  EXPECT_THAT(fail("ASCII Grid to DEM", {"g.asc", "out.lan"}), cannotWrite("out.lan"));
  EXPECT_THAT(fail("Subset", {"dem.lan", "out.lan"}), cannotWrite("out.lan"));
  EXPECT_THAT(fail("Subset (to Text)", {"dem.lan", "out.txt"}), cannotWrite("out.txt"));
  EXPECT_THAT(Files(), ElementsAre("DEDNM.INP", "a.lan", "dem.lan", "g.asc", "out.asc", "out.lan", "out.pts",
                                   "out.txt"));
  for (const char* name : {"out.asc", "out.pts", "out.lan", "out.txt", "DEDNM.INP"}) {
    EXPECT_EQ(ReadFileBytes(name), "") << name;
  }
}

// Subset (to Text)

TEST_F(ImageOutputsTest, SubsetToTextOfSeveralBands) {
  WriteFileBytes(
      "b.lan", BytesOf(HeaderOf(kPackInt16, 2, 2, 2)) + PixelBytes<std::int16_t>({1, -2, 5, 6, 3, 4, 7, -8}));
  ui.files = {{"b.lan"}, {"s.txt"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("Subset (to Text)"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("s.txt"), "1 -2 \n3 4 \n\n5 6 \n7 -8 \n\n");
}

TEST_F(ImageOutputsTest, SubsetToTextOfAnImageThatDoesNotOpen) {
  ui.files = {{"none.lan"}, {"s.txt"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("Subset (to Text)"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Open file none.lan error!"));
  EXPECT_EQ(ReadFileBytes("s.txt"), "0 \n\n");
}

TEST_F(ImageOutputsTest, SubsetToTextOfATypeWithoutText) {
  for (const std::uint16_t packType : {1, 9}) {
    ui.events.clear();
    WriteFileBytes("b.lan", LanOf<std::uint8_t>(packType, 2, 1, {1, 2}));
    ui.files = {{"b.lan"}, {"s.txt"}};
    ui.forms = {Accept};
    EXPECT_EQ(Run("Subset (to Text)"), CommandResult::Done);
    EXPECT_EQ(ReadFileBytes("s.txt"), "");
    EXPECT_EQ(LastStatus(), "status 0: Written to s.txt: no values, the pixel type has no text form.");
  }
}

// Sample Image

// 3 columns and 4 rows by 2: behind the one sampled pixel of a row, which moves on by 2, comes 4 mod 2 = 0
// and a row of 3, so that the second sample is pixel 5, not 6.
TEST_F(ImageOutputsTest, SampleOfThreeBands) {
  std::string bytes = BytesOf(HeaderOf(kPackByte, 3, 3, 4));
  for (int row = 0; row < 4; ++row) {
    for (int band = 0; band < 3; ++band) {
      for (int col = 0; col < 3; ++col) bytes += static_cast<char>(20 * band + 3 * row + col);
    }
  }
  WriteFileBytes("rgb.lan", bytes);
  ui.files = {{"rgb.lan"}};
  ui.values = {2};
  EXPECT_EQ(Run("Sample Image"), CommandResult::Done);
  ErdasHeader header = HeaderOf(kPackByte, 3, 1, 2);
  header.xCell = 2.0f;
  header.yCell = -2.0f;
  EXPECT_EQ(ReadFileBytes("rgb2.lan"), BytesOf(header) + PixelBytes<std::uint8_t>({0, 20, 40, 5, 25, 45}));
}

TEST_F(ImageOutputsTest, SampleOfAGeoTiff) {
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackInt16, 2, 4, 4), false), 1);
  for (int i = 0; i < 16; ++i) {
    for (int band = 0; band < 2; ++band) image.SetPixel(band, i / 4, i % 4, 100 * band - i);
  }
  ASSERT_EQ(image.Write("in.tif"), 1);
  ui.files = {{"in.tif"}};
  ui.values = {2};
  EXPECT_EQ(Run("Sample Image"), CommandResult::Done);
  ErdasHeader header = HeaderOf(kPackInt16, 2, 2, 2);
  header.xCell = 2.0f;
  header.yCell = -2.0f;
  EXPECT_EQ(ReadFileBytes("in2.lan"),
            BytesOf(header) + PixelBytes<std::int16_t>({0, -2, 100, 98, -8, -10, 92, 90}));
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(LastStatus(), "status 0: Written to in2.lan: 2 rows, 2 columns.");
}

}  // namespace
}  // namespace corvane
