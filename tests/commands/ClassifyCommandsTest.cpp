// The commands Histogram, ISODATA and Wavelet Transform, end to end.

#include <gmock/gmock.h>

#include "commands/ImageFixture.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kImageFiles = "Image Files (*.lan)|*.lan|All Files (*.*)|*.*|";
const std::string kOpenBox = "message warning: Open file none.lan error!";

class ClassifyCommandsTest : public ImageCommandsTest {
 protected:
  // Rows of 100 pixels: 20 of each of the levels.
  static std::string StripesBytes(std::initializer_list<int> levels, std::uint16_t nBands = 1) {
    std::string bytes = BytesOf(HeaderOf(kPackByte, nBands, 100, static_cast<int>(levels.size()) * 20));
    for (const int level : levels) {
      for (int row = 0; row < 20; ++row) {
        bytes += std::string(100, static_cast<char>(level));
        for (int band = 1; band < nBands; ++band) bytes += std::string(100, static_cast<char>(row));
      }
    }
    return bytes;
  }
};

// ISODATA

TEST_F(ClassifyCommandsTest, IsodataWritesTheClassesToTheCurrentFolder) {
  std::filesystem::create_directory("photos");
  WriteFileBytes("photos/a.b.lan", StripesBytes({10, 90, 12, 200}));
  ui.files = {{"photos/a.b.lan"}};
  EXPECT_EQ(Run("ISODATA"), CommandResult::Done);
  ExpectChoosers({{kOpen, kImageFiles, "Choose a Image."}});
  EXPECT_THAT(Files(), ElementsAre("a.b_cls.lan", "isoDataLog.txt", "photos"));
  EXPECT_EQ(ReadFileBytes("isoDataLog.txt"), "");
  std::string classes;
  for (const char c : {1, 3, 2, 4}) classes += std::string(2000, c);  // peaks at 10, 12, 90, 200
  EXPECT_EQ(ReadFileBytes("a.b_cls.lan"), BytesOf(HeaderOf(kPackByte, 1, 100, 80)) + classes);
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(ui.EventsWith("status"),
              ElementsAre("status 0: Written to a.b_cls.lan: 80 rows, 100 columns. Classes: 4."));
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(ClassifyCommandsTest, IsodataOfThreeBandsGoesByTheFirst) {
  WriteFileBytes("a.lan", StripesBytes({10, 90}, 3));
  ui.files = {{"a.lan"}};
  EXPECT_EQ(Run("ISODATA"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("a_cls.lan"),
            BytesOf(HeaderOf(kPackByte, 1, 100, 40)) + std::string(2000, '\1') + std::string(2000, '\2'));
}

TEST_F(ClassifyCommandsTest, IsodataOfASmallImageFindsNoPeak) {
  WriteFileBytes("a.lan", LanOf<std::uint8_t>(kPackByte, 2, 1, {10, 20}));
  ui.files = {{"a.lan"}};
  EXPECT_EQ(Run("ISODATA"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("a_cls.lan"), LanOf<std::uint8_t>(kPackByte, 2, 1, {255, 255}));
  EXPECT_THAT(ui.EventsWith("status"),
              ElementsAre("status 0: Written to a_cls.lan: 1 rows, 2 columns. Classes: 0. No grey level is a "
                          "peak of more than 1000 pixels."));
}

TEST_F(ClassifyCommandsTest, IsodataWithoutPixelsLeavesTheOldClasses) {
  WriteFileBytes("none_cls.lan", "old");
  WriteFileBytes("flat_cls.lan", "old");
  WriteFileBytes("flat.lan", BytesOf(HeaderOf(kPackByte, 1, 5, 0)));
  ExpectFailure("ISODATA", {{"none.lan"}}, {kOpenBox});
  ExpectFailure("ISODATA", {{"flat.lan"}},
                {"message warning: Open file flat.lan error!\nIts header gives no rows, columns or bands."});
  EXPECT_EQ(ReadFileBytes("none_cls.lan"), "old");
  EXPECT_EQ(ReadFileBytes("flat_cls.lan"), "old");
  EXPECT_THAT(ui.EventsWith("status"), IsEmpty());
}

TEST_F(ClassifyCommandsTest, IsodataTellsHowManyClassesAreEmpty) {
  // A peak at 255 behind two others: all levels come to the last class.
  WriteFileBytes("a.lan", StripesBytes({50, 150, 255}));
  ui.files = {{"a.lan"}};
  EXPECT_EQ(Run("ISODATA"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: Written to a_cls.lan: 60 rows, 100 columns. "
                                                   "Classes: 3, of which 2 are empty."));
  // A peak at 255 behind one other: class 1 is up to (50 + 0) / 2 + 0.5 = 25.
  WriteFileBytes("a.lan", StripesBytes({50, 255}));
  ui.files = {{"a.lan"}};
  EXPECT_EQ(Run("ISODATA"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("status").back(), testing::EndsWith(" Classes: 2, of which 1 is empty."));
}

TEST_F(ClassifyCommandsTest, IsodataOfWidePixelsTakesTheirFirstBytes) {
  // 4000 pixels of two bytes: of the first 4000 bytes every second one is 20, and the others are 100.
  std::string bytes = BytesOf(HeaderOf(kPackUInt16, 1, 100, 40));
  for (int i = 0; i < 2000; ++i) bytes += std::string("\x14\x64");
  WriteFileBytes("a.lan", bytes + std::string(4000, '\xC8'));
  ui.files = {{"a.lan"}};
  EXPECT_EQ(Run("ISODATA"), CommandResult::Done);
  std::string classes;
  for (int i = 0; i < 2000; ++i) classes += std::string("\1\2");
  EXPECT_EQ(ReadFileBytes("a_cls.lan"), BytesOf(HeaderOf(kPackByte, 1, 100, 40)) + classes);
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: Written to a_cls.lan: 40 rows, 100 columns. "
                                                   "Classes: 2. Its pixels count as bytes."));
}

TEST_F(ClassifyCommandsTest, IsodataTellsThatItCannotWrite) {
  WriteFileBytes("a.lan", LanOf<std::uint8_t>(kPackByte, 2, 1, {10, 20}));
  std::filesystem::create_directory("a_cls.lan");
  ui.files = {{"a.lan"}};
  EXPECT_EQ(Run("ISODATA"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Write file a_cls.lan error!"));
}

TEST_F(ClassifyCommandsTest, IsodataOfWideImagesAndDamagedOnesDoesNoHarm) {
  for (const std::uint16_t packType : {2, 3, 6, 7, 99}) {
    WriteFileBytes("a.lan", BytesOf(HeaderOf(packType, 1, 50, 50)) + std::string(4000, '\7'));
    ui.files = {{"a.lan"}};
    EXPECT_EQ(Run("ISODATA"), CommandResult::Done) << packType;
    ErdasImg classes;
    EXPECT_EQ(classes.Read("a_cls.lan"), 1);
    EXPECT_EQ(classes.GetSize(), (ImageSize{50, 50}));
    EXPECT_EQ(classes.GetPackType(), kPackByte);
    EXPECT_EQ(classes.GetMissingBytes(), 0);
  }
  for (const std::int32_t size : {0, -1}) {
    WriteFileBytes("a.lan", BytesOf(HeaderOf(kPackByte, 1, size, size)));
    ui.files = {{"a.lan"}};
    EXPECT_EQ(Run("ISODATA"), CommandResult::Failed) << size;
  }
}

TEST_F(ClassifyCommandsTest, CancelLeavesNothing) {
  ExpectCancelAtEach("ISODATA", "f", {});
  ExpectCancelAtEach("Image > Histogram", "f", {});
}

// Histogram

TEST_F(ClassifyCommandsTest, HistogramGoesToTheDebugStream) {
  WriteFileBytes("a.lan", LanOf<std::uint8_t>(kPackByte, 3, 1, {7, 255, 7}));
  ui.files = {{"a.lan"}};
  EXPECT_EQ(Run("Image > Histogram"), CommandResult::Done);
  ExpectChoosers({{kOpen, kImageFiles, "Choose a Image."}});
  const auto lines = ui.EventsWith("trace");
  ASSERT_THAT(lines, SizeIs(257));
  EXPECT_EQ(lines[0], "trace: \n");
  EXPECT_EQ(lines[1], "trace: 0\t0\t-1\n");
  EXPECT_EQ(lines[8], "trace: 7\t2\t-1\n");
  EXPECT_EQ(lines[256], "trace: 255\t1\t-1\n");
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(ui.EventsWith("status"), IsEmpty());
  EXPECT_THAT(Files(), ElementsAre("a.lan"));
}

TEST_F(ClassifyCommandsTest, HistogramOfNoFileIsEmptyAndFails) {
  ui.files = {{"none.lan"}};
  EXPECT_EQ(Run("Image > Histogram"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre(kOpenBox));
  EXPECT_THAT(ui.EventsWith("trace"), SizeIs(257));
}

// Wavelet Transform

TEST_F(ClassifyCommandsTest, WaveletTransformAsksShowsAndWritesNothing) {
  EXPECT_EQ(Run("Wavelet Transform"), CommandResult::Done);
  EXPECT_THAT(ui.choosers, IsEmpty());
  EXPECT_THAT(Files(), IsEmpty());
  for (const char* kind : {"message", "status", "trace", "print", "value", "form"}) {
    EXPECT_THAT(ui.EventsWith(kind), IsEmpty()) << kind;
  }
}

}  // namespace
}  // namespace corvane
