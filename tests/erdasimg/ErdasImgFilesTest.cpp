// The .lan file.

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

#include "erdasimg/ImageBytes.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using Events = std::vector<std::string>;

constexpr std::uint16_t kAllTypes[] = {kPackByte,   1,          kPackUInt16, kPackInt16,
                                       kPackUInt32, kPackInt32, kPackFloat,  kPackDouble};

void PutNumber(std::string& bytes, std::size_t offset, auto number) {
  std::memcpy(&bytes[offset], &number, sizeof number);
}

// A header of two bands, 3 x 2 pixels, made field by field at the offsets of the format.
std::string HandMadeHeader() {
  std::string bytes(128, '\0');
  bytes.replace(0, 6, "HEAD74");
  PutNumber(bytes, 8, std::uint16_t{2});
  PutNumber(bytes, 16, std::int32_t{3});
  PutNumber(bytes, 20, std::int32_t{2});
  PutNumber(bytes, 24, std::int32_t{-5});
  PutNumber(bytes, 28, std::int32_t{6});
  PutNumber(bytes, 88, std::uint16_t{1});
  PutNumber(bytes, 90, std::uint16_t{12});
  PutNumber(bytes, 112, 1000.5f);
  PutNumber(bytes, 116, 2000.25f);
  PutNumber(bytes, 120, 0.5f);
  PutNumber(bytes, 124, -0.5f);
  return bytes;
}

// Band 0 is "abc", "def"; band 1 "ABC", "DEF": for each row, a line of each band.
const std::string kHandMadePixels = "abcABCdefDEF";

TEST(ErdasImgFiles, ReadAHandMadeLan) {
  const TempFolder folder;
  TestFrontEnd ui;
  WriteFileBytes("a.lan", HandMadeHeader() + kHandMadePixels);
  ErdasImg image;
  EXPECT_EQ(image.Read("a.lan"), 1);
  EXPECT_EQ(image.GetSize(), (ImageSize{3, 2}));
  EXPECT_EQ(image.GetStart(), (ImageStart{-5, 6}));
  EXPECT_EQ(image.GetBandCount(), 2);
  EXPECT_EQ(image.GetHeader()->classCount, 12);
  EXPECT_EQ(image.GetHeader()->xMap, 1000.5f);
  EXPECT_EQ(image.GetHeader()->yMap, 2000.25f);
  EXPECT_EQ(image.GetHeader()->xCell, 0.5f);
  EXPECT_EQ(image.GetHeader()->yCell, -0.5f);
  EXPECT_EQ(BandBytes(image, 0), "abcdef");
  EXPECT_EQ(BandBytes(image, 1), "ABCDEF");
  EXPECT_EQ(image.m_bandsContiguous, 0);
  EXPECT_EQ(image.GetFileName(), "a.lan");
  EXPECT_EQ(ui.events, Events{});
}

TEST(ErdasImgFiles, WriteTheSameBytes) {
  const TempFolder folder;
  WriteFileBytes("a.lan", HandMadeHeader() + kHandMadePixels);
  ErdasImg image;
  ASSERT_EQ(image.Read("a.lan"), 1);
  EXPECT_EQ(image.Write("b.lan"), 1);
  EXPECT_EQ(ReadFileBytes("b.lan"), ReadFileBytes("a.lan"));
}

TEST(ErdasImgFiles, ReservedBytesOfTheHeaderAreKept) {
  const TempFolder folder;
  std::string bytes = HandMadeHeader() + kHandMadePixels;
  bytes[10] = 'x';
  bytes[60] = 'y';
  bytes[111] = 'z';
  bytes.replace(0, 6, "no lan");
  WriteFileBytes("a.lan", bytes);
  ErdasImg image;
  ASSERT_EQ(image.Read("a.lan"), 1);
  EXPECT_EQ(image.Write("b.lan"), 1);
  EXPECT_EQ(ReadFileBytes("b.lan"), bytes);
}

TEST(ErdasImgFiles, RoundTripOfAllTypesWithOneAndThreeBands) {
  const TempFolder folder;
  for (const std::uint16_t packType : kAllTypes) {
    for (const std::uint16_t nBands : {1, 3}) {
      for (const bool contiguous : {false, true}) {
        ErdasImg image;
        ASSERT_EQ(image.Create(HeaderOf(packType, nBands, 7, 5), contiguous), 1);
        FillWithPattern(image);
        ASSERT_EQ(image.Write("a.lan"), 1);
        EXPECT_EQ(std::filesystem::file_size("a.lan"), 128u + 35u * nBands * image.GetBytesPerPixel());
        ErdasImg back;
        ASSERT_EQ(back.Read("a.lan"), 1);
        EXPECT_EQ(BytesOf(*back.GetHeader()), BytesOf(*image.GetHeader()));
        for (int band = 0; band < nBands; ++band) EXPECT_EQ(BandBytes(back, band), BandBytes(image, band));
      }
    }
  }
}

// Lines that are longer than a block, and blocks that end within a line.
TEST(ErdasImgFiles, RoundTripOfManyBlocks) {
  const TempFolder folder;
  for (const ImageSize size : {ImageSize{300001, 2}, ImageSize{1001, 500}}) {
    ErdasImg image;
    ASSERT_EQ(image.Create(HeaderOf(kPackByte, 3, size.cx, size.cy), false), 1);
    FillWithPattern(image);
    ASSERT_EQ(image.Write("a.lan"), 1);
    ErdasImg back;
    ASSERT_EQ(back.Read("a.lan"), 1);
    for (int band = 0; band < 3; ++band) EXPECT_TRUE(BandBytes(back, band) == BandBytes(image, band));
  }
}

TEST(ErdasImgFiles, RoundTripOfOneBandBeyondABlock) {
  const TempFolder folder;
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackFloat, 1, 2000, 1200), false), 1);
  FillWithPattern(image);
  ASSERT_EQ(image.Write("a.lan"), 1);
  ErdasImg back;
  ASSERT_EQ(back.Read("a.lan"), 1);
  EXPECT_TRUE(BandBytes(back, 0) == BandBytes(image, 0));
}

TEST(ErdasImgFiles, AnUpperCaseExtensionIsALan) {
  const TempFolder folder;
  TestFrontEnd ui;
  WriteFileBytes("A.LAN", HandMadeHeader() + kHandMadePixels);
  ErdasImg image;
  EXPECT_EQ(image.Read("A.LAN"), 1);
  EXPECT_EQ(image.Write("b.Lan"), 1);
  EXPECT_EQ(ReadFileBytes("b.Lan"), ReadFileBytes("A.LAN"));
  EXPECT_EQ(ui.events, Events{});
}

TEST(ErdasImgFiles, APathWithoutADotIsTriedByGdalAndThenAsALan) {
  const TempFolder folder;
  TestFrontEnd ui;
  std::string bytes = HandMadeHeader() + kHandMadePixels;
  bytes.replace(0, 6, "......");  // nothing that GDAL knows
  WriteFileBytes("image", bytes);
  ErdasImg image;
  EXPECT_EQ(image.Read("image"), 1);
  EXPECT_EQ(BandBytes(image, 1), "ABCDEF");
  EXPECT_EQ(image.GetFileName(), "image");
  EXPECT_EQ(ui.EventsWith("message"), Events{});
}

TEST(ErdasImgFiles, ADotInAFolderIsNoExtension) {
  const TempFolder folder;
  std::filesystem::create_directory("a.lan");
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 2, 2), false), 1);
  EXPECT_EQ(image.Write("a.lan/b"), 1);
  EXPECT_EQ(ReadFileBytes("a.lan/b").substr(0, 3), std::string("II*"));
}

TEST(ErdasImgFiles, AnEmptyPathFailsInSilence) {
  TestFrontEnd ui;
  ErdasImg image;
  EXPECT_EQ(image.Read(""), -1);
  EXPECT_EQ(ui.EventsWith("message"), Events{});
}

TEST(ErdasImgFiles, AFileThatDoesNotOpenIsTold) {
  const TempFolder folder;
  TestFrontEnd ui;
  ErdasImg image;
  EXPECT_EQ(image.Read("none.lan"), -1);
  EXPECT_EQ(image.Read("none.tif"), -1);
  EXPECT_EQ(image.ReadHeader("none.lan"), -1);
  EXPECT_EQ(ui.EventsWith("message"), (Events{"message warning: Open file none.lan error!",
                                              "message warning: Open file none.tif error!",
                                              "message warning: Open file none.lan error!"}));
  EXPECT_EQ(image.GetFileName(), "");
  WriteFileBytes("a.lan", HandMadeHeader() + kHandMadePixels);
  EXPECT_EQ(image.Read("a.lan"), 1);
  EXPECT_EQ(BandBytes(image, 0), "abcdef");
}

TEST(ErdasImgFiles, AFolderDoesNotOpen) {
  const TempFolder folder;
  TestFrontEnd ui;
  std::filesystem::create_directory("a.lan");
  ErdasImg image;
  EXPECT_EQ(image.Read("a.lan"), -1);
  EXPECT_EQ(image.Write("a.lan"), -1);
  EXPECT_EQ(ui.events,
            (Events{"message warning: Open file a.lan error!", "message warning: Write file a.lan error!"}));
}

TEST(ErdasImgFiles, MissingPixelsAreZero) {
  const TempFolder folder;
  TestFrontEnd ui;
  WriteFileBytes("a.lan", HandMadeHeader() + "abcAB");
  ErdasImg image;
  EXPECT_EQ(image.Read("a.lan"), 1);
  EXPECT_EQ(BandBytes(image, 0), std::string("abc\0\0\0", 6));
  EXPECT_EQ(BandBytes(image, 1), std::string("AB\0\0\0\0", 6));
  WriteFileBytes("b.lan", BytesOf(HeaderOf(kPackUInt16, 1, 3, 1)) + "xy");
  EXPECT_EQ(image.Read("b.lan"), 1);
  EXPECT_EQ(BandBytes(image, 0), std::string("xy\0\0\0\0", 6));
  EXPECT_EQ(ui.events, Events{});
}

TEST(ErdasImgFiles, MissingBytesAreThoseOfHeaderAndPixels) {
  const TempFolder folder;
  ErdasImg image;
  const auto missing = [&](const std::string& bytes) {
    WriteFileBytes("a.lan", bytes);
    EXPECT_EQ(image.Read("a.lan"), 1);
    return image.GetMissingBytes();
  };
  EXPECT_EQ(image.GetMissingBytes(), 0);
  const std::string whole = HandMadeHeader() + kHandMadePixels;
  EXPECT_EQ(missing(whole), 0);
  EXPECT_EQ(missing(whole + "more"), 0);
  EXPECT_EQ(missing(whole.substr(0, 133)), 7);
  EXPECT_EQ(missing(whole.substr(0, 128)), 12);
  EXPECT_EQ(missing(whole.substr(0, 100)), 28 + 12);
  EXPECT_EQ(missing(BytesOf(HeaderOf(kPackUInt16, 1, 3, 1)) + "xy"), 4);
  EXPECT_EQ(missing(BytesOf(HeaderOf(kPackByte, 1, 0, 0))), 0);
  ASSERT_EQ(missing(whole.substr(0, 133)), 7);
  EXPECT_EQ(image.Read("none.lan"), -1);
  EXPECT_EQ(image.GetMissingBytes(), 0);
}

TEST(ErdasImgFiles, BytesBehindThePixelsAreLeft) {
  const TempFolder folder;
  WriteFileBytes("a.lan", HandMadeHeader() + kHandMadePixels + "more");
  ErdasImg image;
  EXPECT_EQ(image.Read("a.lan"), 1);
  EXPECT_EQ(BandBytes(image, 1), "ABCDEF");
}

// The fields that the file does not reach stay as the image had them.
TEST(ErdasImgFiles, AShortHeaderIsTakenAsFarAsItGoes) {
  const TempFolder folder;
  TestFrontEnd ui;
  WriteFileBytes("empty.lan", "");
  ErdasImg image;
  EXPECT_EQ(image.Read("empty.lan"), 1);
  EXPECT_EQ(image.GetSize(), (ImageSize{1, 1}));
  EXPECT_EQ(BandBytes(image, 0), std::string(1, '\0'));
  WriteFileBytes("short.lan", HandMadeHeader().substr(0, 20));
  EXPECT_EQ(image.Read("short.lan"), 1);
  EXPECT_EQ(image.GetSize(), (ImageSize{3, 1}));
  EXPECT_EQ(image.GetBands().size(), 2u);
  EXPECT_EQ(ui.events, Events{});
}

TEST(ErdasImgFiles, AHeaderMayPromiseMoreThanTheFileHolds) {
  const TempFolder folder;
  TestFrontEnd ui;
  WriteFileBytes("a.lan", BytesOf(HeaderOf(kPackByte, 1, 20000, 10000)) + "x");
  ErdasImg image;
  EXPECT_EQ(image.Read("a.lan"), 1);
  ASSERT_EQ(image.GetBands().GetBandBytes(), 200000000u);
  EXPECT_EQ(image.GetBands()[0][0], 'x');
  EXPECT_EQ(image.GetBands()[0][1], 0);
  EXPECT_EQ(image.GetBands()[0][199999999], 0);
  EXPECT_EQ(ui.events, Events{});
}

TEST(ErdasImgFiles, AbsurdSizesGiveNoBandsAndTheMessageUnlessNegative) {
  const TempFolder folder;
  const ErdasHeader absurd[] = {
      HeaderOf(kPackByte, 1, INT32_MAX, INT32_MAX),
      HeaderOf(kPackDouble, 65535, INT32_MAX, INT32_MAX),
      HeaderOf(kPackByte, 2, 65536, 32768),
      HeaderOf(kPackByte, 1, -1, 5),
      HeaderOf(kPackByte, 1, 5, -1),
      HeaderOf(kPackByte, 1, -5, -5),
      HeaderOf(kPackByte, 3, INT32_MIN, INT32_MIN),
      HeaderOf(kPackDouble, 3, INT32_MIN, 1),
  };
  for (const ErdasHeader& header : absurd) {
    const bool isNegative = header.cols < 0 || header.rows < 0;
    TestFrontEnd ui;
    WriteFileBytes("a.lan", BytesOf(header) + "some pixels");
    ErdasImg image;
    ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 2, 2), false), 1);
    EXPECT_EQ(image.Read("a.lan"), 1);
    EXPECT_EQ(ui.events, isNegative ? Events{} : Events{"message warning: Allocate Memory for Image Fails"});
    EXPECT_FALSE(image.GetBands());
    EXPECT_EQ(BytesOf(*image.GetHeader()), BytesOf(header));
    EXPECT_EQ(image.Write("b.lan"), 1);
    EXPECT_EQ(ReadFileBytes("b.lan"), BytesOf(header));
  }
}

TEST(ErdasImgFiles, ZeroSizesGiveAnEmptyImage) {
  const TempFolder folder;
  TestFrontEnd ui;
  for (const ErdasHeader& header :
       {HeaderOf(kPackByte, 1, 0, 5), HeaderOf(kPackByte, 3, 5, 0),
        HeaderOf(kPackByte, 0, INT32_MAX, INT32_MAX), HeaderOf(kPackByte, 65535, 0, INT32_MAX)}) {
    WriteFileBytes("a.lan", BytesOf(header) + "pixels");
    ErdasImg image;
    EXPECT_EQ(image.Read("a.lan"), 1);
    EXPECT_EQ(image.GetBands().GetBandBytes() * image.GetBands().size(), 0u);
    EXPECT_EQ(image.Write("b.lan"), 1);
    EXPECT_EQ(ReadFileBytes("b.lan"), BytesOf(header));
  }
  EXPECT_EQ(ui.events, Events{});
}

TEST(ErdasImgFiles, UnknownTypesAreReadAsBytes) {
  const TempFolder folder;
  for (const std::uint16_t packType : {1, 8, 11, 0xFFFE, 0xFFFF}) {
    WriteFileBytes("a.lan", BytesOf(HeaderOf(packType, 1, 3, 1)) + "abcdef");
    ErdasImg image;
    EXPECT_EQ(image.Read("a.lan"), 1);
    EXPECT_EQ(image.GetBytesPerPixel(), 1);
    EXPECT_EQ(BandBytes(image, 0), "abc");
  }
}

TEST(ErdasImgFiles, ReadHeaderLeavesThePixels) {
  const TempFolder folder;
  WriteFileBytes("a.lan", HandMadeHeader());
  ErdasImg image;
  EXPECT_EQ(image.ReadHeader("a.lan"), 1);
  EXPECT_EQ(BytesOf(*image.GetHeader()), HandMadeHeader());
  EXPECT_FALSE(image.GetBands());
  EXPECT_EQ(image.GetFileName(), "");
}

TEST(ErdasImgFiles, ReadLanBeginsAtTheFilesPosition) {
  const TempFolder folder;
  WriteFileBytes("a.lan", "1234" + HandMadeHeader() + kHandMadePixels);
  InputFile file("a.lan");
  file.Seek(4);
  ErdasImg image;
  EXPECT_EQ(image.ReadLan(file), 1);
  EXPECT_EQ(BandBytes(image, 1), "ABCDEF");
}

TEST(ErdasImgFiles, AFailedWriteLeavesTheOldFile) {
  const TempFolder folder;
  TestFrontEnd ui;
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 1000, 1000), false), 1);
  EXPECT_EQ(image.Write("missing/a.lan"), -1);
  EXPECT_EQ(ui.events, Events{"message warning: Write file missing/a.lan error!"});
  WriteFileBytes("a.lan", "old");
  {
    const FileSizeLimit limit(65536);
    EXPECT_EQ(image.Write("a.lan"), -1);
    EXPECT_EQ(image.WriteText("a.lan"), -1);
  }
  EXPECT_EQ(ui.events.back(), "message warning: Write file a.lan error!");
  EXPECT_EQ(ReadFileBytes("a.lan"), "old");
  EXPECT_EQ(image.Write("a.lan"), 1);
}

TEST(ErdasImgFiles, BandsThatAreNotThereAreWrittenAsZeros) {
  const TempFolder folder;
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 2, 2), false), 1);
  FillWithPattern(image);
  image.GetHeader()->bandCount = 2;
  EXPECT_EQ(image.Write("a.lan"), 1);
  const std::string band = BandBytes(image, 0);
  const std::string zeros(2, '\0');
  EXPECT_EQ(ReadFileBytes("a.lan"),
            BytesOf(*image.GetHeader()) + band.substr(0, 2) + zeros + band.substr(2) + zeros);
}

}  // namespace
}  // namespace corvane
