// The command Segmention, end to end.

#include <gmock/gmock.h>

#include <cstdlib>

#include "commands/ImageFixture.h"
#include "support/FileSizeLimit.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kCommand = "Segmention";
constexpr int kCols = 12;
constexpr int kRows = 10;
constexpr int kBright = 5;  // columns at the left

class SegmentCommandTest : public ImageCommandsTest {
 protected:
  // A bright part and a dark one, without noise.
  static std::string StepBytes(std::uint16_t nBands, std::uint16_t packType = kPackByte) {
    ErdasHeader header = HeaderOf(packType, nBands, kCols, kRows);
    header.xMap = 100.0f;
    header.xStart = 7;
    std::string bytes = BytesOf(header);
    for (int i = 0; i < kRows * nBands; ++i) {
      bytes += std::string(kBright, '\xC8') + std::string(kCols - kBright, '\0');
    }
    return bytes;
  }

  CommandResult Segment(const std::string& input, const std::string& output) {
    ui.forms = {Enter({{"minRegionSize", "10"},
                       {"scale", "100"},
                       {"inputPath", input},
                       {"outputPath", output},
                       {"sigma", "0"}})};
    return Run(kCommand);
  }

  // Whether each part has one colour, and another one than the other part.
  static void ExpectTwoParts(const ErdasImg& image) {
    ASSERT_EQ(image.GetBandCount(), 3);
    std::array<std::string, 2> colours;
    for (int i = 1; i < kCols * kRows; ++i) {
      std::string colour;
      for (int band = 0; band < 3; ++band) colour += static_cast<char>(image.GetBands()[band][i]);
      std::string& expected = colours[i % kCols < kBright ? 0 : 1];
      if (expected.empty()) expected = colour;
      EXPECT_EQ(colour, expected) << i;
    }
    EXPECT_NE(colours[0], colours[1]);
  }
};

TEST_F(SegmentCommandTest, GreyAndColourImagesBecomeColouredRegions) {
  for (const std::uint16_t nBands : {1, 3}) {
    WriteFileBytes("a.lan", StepBytes(nBands));
    ui.events.clear();
    EXPECT_EQ(Segment("a.lan", "out.lan"), CommandResult::Done);
    EXPECT_THAT(ui.EventsWith("form"), ElementsAre("form: SegmentParam"));
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_THAT(ui.EventsWith("status"),
                ElementsAre("status 0: Written to out.lan: 10 rows, 12 columns. Regions: 2."));
    ErdasImg image;
    ASSERT_EQ(image.Read("out.lan"), 1);
    EXPECT_EQ(image.GetMissingBytes(), 0);
    EXPECT_EQ(image.GetHeader()->classCount, 2);
    EXPECT_EQ(image.GetHeader()->xMap, 100.0f);
    EXPECT_EQ(image.GetHeader()->xStart, 7);
    EXPECT_EQ(image.GetSize(), (ImageSize{kCols, kRows}));
    ExpectTwoParts(image);
  }
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(SegmentCommandTest, ColoursAreThoseOfTheRootInTheFixedSequence) {
  // Two pixels that differ: each is a region of its own, and its own root.
  WriteFileBytes("a.lan", LanOf<std::uint8_t>(kPackByte, 2, 1, {0, 250}));
  ui.forms = {
      Enter({{"minRegionSize", "1"}, {"scale", "1"}, {"inputPath", "a.lan"}, {"outputPath", "o.lan"}})};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  std::srand(55);
  std::string colours;
  for (int i = 0; i < 6; ++i) colours += static_cast<char>(std::rand());
  const std::string bytes = ReadFileBytes("o.lan").substr(128);
  ASSERT_EQ(bytes.size(), 6u);  // by bands
  for (std::size_t pixel = 0; pixel < 2; ++pixel) {
    for (std::size_t band = 0; band < 3; ++band)
      EXPECT_EQ(bytes[2 * band + pixel], colours[3 * pixel + band]);
  }
}

TEST_F(SegmentCommandTest, TheRegionCountIsCutTo16Bits) {
  // 70000 pixels of which all neighbours differ: 70000 - 65536 is 4464.
  std::string bytes = BytesOf(HeaderOf(kPackByte, 1, 700, 100));
  for (int row = 0; row < 100; ++row) {
    for (int col = 0; col < 700; ++col) bytes += static_cast<char>(col % 5 * 50 + row % 5 * 9);
  }
  WriteFileBytes("a.lan", bytes);
  ui.forms = {Enter({{"minRegionSize", "1"},
                     {"scale", "1"},
                     {"inputPath", "a.lan"},
                     {"outputPath", "o.lan"},
                     {"sigma", "0"}})};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  ErdasImg image;
  ASSERT_EQ(image.ReadHeader("o.lan"), 1);
  EXPECT_EQ(image.GetHeader()->classCount, 4464);
  EXPECT_EQ(ui.EventsWith("status").back(),
            "status 0: Written to o.lan: 100 rows, 700 columns. Regions: 70000.");
}

TEST_F(SegmentCommandTest, OtherExtensionsBecomeGeoTiff) {
  for (const std::uint16_t packType : {kPackByte, kPackUInt16, kPackDouble}) {
    WriteFileBytes("a.lan", StepBytes(1, packType));
    EXPECT_EQ(Segment("a.lan", "out.tif"), CommandResult::Done);
    ErdasImg image;
    ASSERT_EQ(image.Read("out.tif"), 1);
    EXPECT_EQ(image.GetPackType(), kPackByte);
    if (packType == kPackByte) ExpectTwoParts(image);
  }
}

TEST_F(SegmentCommandTest, OfWidePixelsTheFirstBytesAreSegmentedAndGiveAnImageOfBytes) {
  // As many bytes as the image has pixels form the step; those behind them would spoil it.
  std::string bytes = StepBytes(1, kPackInt16);
  for (int i = 0; i < kCols * kRows; ++i) bytes += static_cast<char>(i % 2 * 255);
  WriteFileBytes("a.lan", bytes);
  EXPECT_EQ(Segment("a.lan", "out.lan"), CommandResult::Done);
  ErdasImg image;
  ASSERT_EQ(image.Read("out.lan"), 1);
  EXPECT_EQ(image.GetPackType(), kPackByte);
  EXPECT_EQ(image.GetMissingBytes(), 0);
  EXPECT_EQ(image.GetHeader()->classCount, 2);
  ExpectTwoParts(image);
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: Written to out.lan: 10 rows, 12 columns. "
                                                   "Regions: 2. Its pixels count as bytes."));
}

TEST_F(SegmentCommandTest, OtherTypesOfOneByteBecomeBytes) {
  WriteFileBytes("a.lan", StepBytes(1, 99));
  EXPECT_EQ(Segment("a.lan", "out.lan"), CommandResult::Done);
  ErdasImg image;
  ASSERT_EQ(image.Read("out.lan"), 1);
  EXPECT_EQ(image.GetPackType(), kPackByte);
  EXPECT_THAT(ui.EventsWith("status").back(), testing::EndsWith("Regions: 2."));
}

TEST_F(SegmentCommandTest, TwoAndMoreThanThreeBandsAreRefused) {
  for (const std::uint16_t nBands : {2, 4, 7}) {
    WriteFileBytes("a.lan", StepBytes(nBands));
    ui.events.clear();
    EXPECT_EQ(Segment("a.lan", "out.lan"), CommandResult::Failed);
    EXPECT_THAT(Messages(), ElementsAre("message message: The image has more than 3 bands!"));
    EXPECT_THAT(Files(), ElementsAre("a.lan"));
    EXPECT_EQ(ui.waitDepth, 0);
  }
}

TEST_F(SegmentCommandTest, AnEmptyPathIsToldOnce) {
  EXPECT_EQ(Segment("", "out.lan"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message message: Read image failed!"));
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(SegmentCommandTest, AFailedReadIsToldTwice) {
  EXPECT_EQ(Segment("none.lan", "out.lan"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Open file none.lan error!",
                                      "message message: Read image failed!"));
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(SegmentCommandTest, ImagesWithoutASizeAreRefused) {
  for (const std::int32_t size : {0, -5, INT32_MAX}) {
    WriteFileBytes("a.lan", BytesOf(HeaderOf(kPackByte, 1, size, size)));
    ui.events.clear();
    EXPECT_EQ(Segment("a.lan", "out.lan"), CommandResult::Failed) << size;
    const char* const why =
        size > 0 ? "message warning: Allocate Memory for Image Fails"
                 : "message warning: Open file a.lan error!\nIts header gives no rows, columns "
                   "or bands.";
    EXPECT_THAT(Messages(), ElementsAre(why, "message message: Read image failed!"));
    EXPECT_THAT(Files(), ElementsAre("a.lan"));
  }
}

TEST_F(SegmentCommandTest, AnOutputThatCannotBeWrittenIsToldBeforeTheWork) {
  // Of so many pixels the steps would be told.
  WriteFileBytes("a.lan", BytesOf(HeaderOf(kPackByte, 1, 2001, 2000)) + std::string(2001 * 2000, '\7'));
  EXPECT_EQ(Segment("a.lan", "no/out.lan"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Write file no/out.lan error!"));
  EXPECT_THAT(ui.EventsWith("status"), IsEmpty());
}

TEST_F(SegmentCommandTest, AFailedWriteIsTold) {
  WriteFileBytes("a.lan", StepBytes(1));
  for (const char* output : {"no/out.lan", "no/out.tif", ""}) {
    ui.events.clear();
    EXPECT_EQ(Segment("a.lan", output), CommandResult::Failed) << output;
    EXPECT_THAT(Messages(), ElementsAre(std::string("message warning: Write file ") + output + " error!"));
    EXPECT_THAT(Files(), ElementsAre("a.lan"));
  }
}

TEST_F(SegmentCommandTest, ACutImageIsTold) {
  WriteFileBytes("a.lan", StepBytes(1).substr(0, 128 + 100));
  EXPECT_EQ(Segment("a.lan", "out.lan"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("status").back(),
              testing::EndsWith("Regions: 2. The image is cut short: bytes missing: 20."));
}

TEST_F(SegmentCommandTest, AWriteThatFailsInTheEndLeavesTheOldFile) {
  WriteFileBytes("a.lan", StepBytes(1));
  WriteFileBytes("out.lan", "old");
  const FileSizeLimit limit(200);
  EXPECT_EQ(Segment("a.lan", "out.lan"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Write file out.lan error!"));
  EXPECT_EQ(ReadFileBytes("out.lan"), "old");
  EXPECT_THAT(Files(), ElementsAre("a.lan", "out.lan"));
}

TEST_F(SegmentCommandTest, TheResultMayReplaceItsInput) {
  WriteFileBytes("a.lan", StepBytes(1));
  EXPECT_EQ(Segment("a.lan", "a.lan"), CommandResult::Done);
  ErdasImg image;
  ASSERT_EQ(image.Read("a.lan"), 1);
  ExpectTwoParts(image);
}

TEST_F(SegmentCommandTest, CancelLeavesNothing) {
  EXPECT_EQ(Run(kCommand), CommandResult::Cancelled);
  EXPECT_THAT(ui.choosers, IsEmpty());
  EXPECT_THAT(Files(), IsEmpty());
}

}  // namespace
}  // namespace corvane
