// Device-independent bitmaps and buffers of interleaved samples.

#include <gtest/gtest.h>

#include "erdasimg/ImageBytes.h"
#include "io/InputFile.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using Events = std::vector<std::string>;
using Bytes = std::vector<std::uint8_t>;

// Band b holds 10 * b + 1, 10 * b + 2 and so on.
void MakeImage(ErdasImg& image, std::uint16_t packType, std::uint16_t nBands, int cols, int rows) {
  ASSERT_EQ(image.Create(HeaderOf(packType, nBands, cols, rows), false), 1);
  for (int band = 0; band < nBands; ++band) {
    for (int i = 0; i < cols * rows; ++i) image.SetPixel(band, i / cols, i % cols, 10 * band + i + 1);
  }
}

template <typename Number>
Number NumberAt(const Bytes& bytes, std::size_t offset) {
  Number number;
  std::memcpy(&number, bytes.data() + offset, sizeof number);
  return number;
}

Bytes From(const Bytes& bytes, std::size_t offset) {
  return {bytes.begin() + static_cast<std::ptrdiff_t>(offset), bytes.end()};
}

TEST(ErdasImgInterleave, ADibOfOneBandHasHeaderPaletteAndRowsFromTheBottom) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 3, 2);
  image.GetHeader()->xCell = 0.5f;
  image.GetHeader()->yCell = -3.0f;
  const Bytes dib = image.MakeDib();
  ASSERT_EQ(dib.size(), 40u + 1024u + 8u);
  EXPECT_EQ(NumberAt<std::int32_t>(dib, 0), 40);
  EXPECT_EQ(NumberAt<std::int32_t>(dib, 4), 4);  // 3, made a multiple of 4
  EXPECT_EQ(NumberAt<std::int32_t>(dib, 8), 2);
  EXPECT_EQ(NumberAt<std::uint16_t>(dib, 12), 1);
  EXPECT_EQ(NumberAt<std::uint16_t>(dib, 14), 8);
  EXPECT_EQ(NumberAt<std::int32_t>(dib, 16), 0);
  EXPECT_EQ(NumberAt<std::int32_t>(dib, 20), 8);
  EXPECT_EQ(NumberAt<std::int32_t>(dib, 24), 2000000);
  EXPECT_EQ(NumberAt<std::int32_t>(dib, 28), -333333);
  EXPECT_EQ(NumberAt<std::int32_t>(dib, 32), 0);
  EXPECT_EQ(NumberAt<std::int32_t>(dib, 36), 0);
  for (std::size_t i = 0; i < 1024; ++i) EXPECT_EQ(dib[40 + i], i / 4);
  EXPECT_EQ(From(dib, 1064), (Bytes{4, 5, 6, 0xFF, 1, 2, 3, 0xFF}));
  EXPECT_EQ(image.MakeDib8(), dib);
}

TEST(ErdasImgInterleave, ADibOfThreeBandsHas24Bits) {
  ErdasImg image;
  MakeImage(image, kPackByte, 3, 3, 1);
  const Bytes dib = image.MakeDib();
  ASSERT_EQ(dib.size(), 52u);
  EXPECT_EQ(NumberAt<std::uint16_t>(dib, 14), 24);
  EXPECT_EQ(NumberAt<std::int32_t>(dib, 20), 12);
  EXPECT_EQ(From(dib, 40), (Bytes{1, 11, 21, 2, 12, 22, 3, 13, 23, 0xFF, 0xFF, 0xFF}));
}

TEST(ErdasImgInterleave, Dib8IsBandZeroAlone) {
  ErdasImg image;
  MakeImage(image, kPackByte, 3, 4, 1);
  const Bytes dib = image.MakeDib8();
  ASSERT_EQ(dib.size(), 1068u);
  EXPECT_EQ(NumberAt<std::int32_t>(dib, 20), 4);
  EXPECT_EQ(From(dib, 1064), (Bytes{1, 2, 3, 4}));
}

TEST(ErdasImgInterleave, ADibOfFourBandsShowsThree) {
  ErdasImg image;
  MakeImage(image, kPackByte, 4, 4, 1);
  EXPECT_EQ(From(image.MakeDib(), 40), (Bytes{1, 11, 21, 2, 12, 22, 3, 13, 23, 4, 14, 24}));
}

TEST(ErdasImgInterleave, ADibOfTwoBandsHasA16BitHeaderAndNoPixels) {
  ErdasImg image;
  MakeImage(image, kPackByte, 2, 3, 2);
  const Bytes dib = image.MakeDib();
  ASSERT_EQ(dib.size(), 56u);
  EXPECT_EQ(NumberAt<std::uint16_t>(dib, 14), 16);
  EXPECT_EQ(NumberAt<std::int32_t>(dib, 20), 16);
  EXPECT_EQ(From(dib, 40), Bytes(16, 0));
}

TEST(ErdasImgInterleave, PixelsOfADibAreBytesWhateverTheType) {
  ErdasImg image;
  MakeImage(image, kPackUInt16, 1, 4, 1);
  EXPECT_EQ(From(image.MakeDib(), 1064), (Bytes{1, 0, 2, 0}));
}

TEST(ErdasImgInterleave, ThereIsNoDibOfNothing) {
  ErdasImg image;
  EXPECT_TRUE(image.MakeDib().empty());  // no bands
  MakeImage(image, kPackByte, 1, 2, 2);
  image.SetSize(0, 2);
  EXPECT_TRUE(image.MakeDib8().empty());
  image.SetSize(2, -1);
  EXPECT_TRUE(image.MakeDib8().empty());
  image.SetSize(INT32_MAX, INT32_MAX);
  EXPECT_TRUE(image.MakeDib8().empty());
}

TEST(ErdasImgInterleave, ADibOfASmallBandOrOddCellStaysInBounds) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 2, 2);
  image.SetSize(4, 2);
  image.GetHeader()->xCell = 0.0f;
  const Bytes dib = image.MakeDib8();
  EXPECT_EQ(NumberAt<std::int32_t>(dib, 24), INT32_MAX);
  EXPECT_EQ(From(dib, 1064), (Bytes{0, 0, 0, 0, 1, 2, 3, 4}));
}

TEST(ErdasImgInterleave, GetsUpToThreeBandsPixelByPixel) {
  ErdasImg image;
  MakeImage(image, kPackByte, 4, 2, 2);
  Bytes buffer(12, 99);
  image.GetInterleaved(buffer.data());
  EXPECT_EQ(buffer, (Bytes{1, 11, 21, 2, 12, 22, 3, 13, 23, 4, 14, 24}));
  MakeImage(image, kPackByte, 1, 2, 2);
  buffer.assign(4, 99);
  image.GetInterleaved(buffer.data());
  EXPECT_EQ(buffer, (Bytes{1, 2, 3, 4}));
}

TEST(ErdasImgInterleave, WhatABandLacksIsZeroInTheBuffer) {
  ErdasImg image;
  MakeImage(image, kPackByte, 2, 2, 1);
  image.SetSize(2, 2);
  Bytes buffer(8, 99);
  image.GetInterleaved(buffer.data());
  EXPECT_EQ(buffer, (Bytes{1, 11, 2, 12, 0, 0, 0, 0}));
}

TEST(ErdasImgInterleave, SetFromInterleavedLeavesTheFirstPixel) {
  ErdasImg image;
  MakeImage(image, kPackByte, 2, 2, 2);
  const Bytes buffer = {50, 60, 51, 61, 52, 62, 53, 63};
  image.SetFromInterleaved(buffer.data());
  EXPECT_EQ(BandPixelsOf<std::uint8_t>(image, 0), (Bytes{1, 51, 52, 53}));
  EXPECT_EQ(BandPixelsOf<std::uint8_t>(image, 1), (Bytes{11, 61, 62, 63}));
}

TEST(ErdasImgInterleave, SetFromInterleavedTakesAnyPixelSize) {
  ErdasImg image;
  MakeImage(image, kPackInt32, 2, 3, 1);
  const std::int32_t buffer[] = {-1, -2, -3, -4, -5, -6};
  image.SetFromInterleaved(reinterpret_cast<const std::uint8_t*>(buffer));
  EXPECT_EQ(BandPixelsOf<std::int32_t>(image, 0), (std::vector<std::int32_t>{1, -3, -5}));
  EXPECT_EQ(BandPixelsOf<std::int32_t>(image, 1), (std::vector<std::int32_t>{11, -4, -6}));
}

TEST(ErdasImgInterleave, SetFromInterleavedStaysWithinTheBands) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 2, 1);
  image.SetSize(2, 2);
  const Bytes buffer = {50, 51, 52, 53};
  image.SetFromInterleaved(buffer.data());
  EXPECT_EQ(BandPixelsOf<std::uint8_t>(image, 0), (Bytes{1, 51}));
  image.SetFromInterleaved(nullptr);
  ErdasImg empty;
  empty.SetFromInterleaved(buffer.data());
}

TEST(ErdasImgInterleave, ReadsALanWithoutItsOwnBands) {
  const TempFolder folder;
  WriteFileBytes("a.lan", BytesOf(HeaderOf(kPackByte, 4, 2, 2)) + "abABuvUVcdCDwxWX");
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 3, 3);
  InputFile file("a.lan");
  Bytes buffer;
  EXPECT_EQ(image.ReadInterleaved(file, buffer), 1);
  EXPECT_EQ(std::string(buffer.begin(), buffer.end()), "aAubBvcCwdDx");
  EXPECT_EQ(image.GetSize(), (ImageSize{2, 2}));
  EXPECT_EQ(image.GetBandCount(), 4);
  EXPECT_EQ(BandPixelsOf<std::uint8_t>(image, 0), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST(ErdasImgInterleave, SamplesThatTheFileLacksAreZero) {
  const TempFolder folder;
  WriteFileBytes("a.lan", BytesOf(HeaderOf(kPackByte, 2, 3, 2)) + "abcABCd");
  ErdasImg image;
  InputFile file("a.lan");
  Bytes buffer;
  EXPECT_EQ(image.ReadInterleaved(file, buffer), 1);
  EXPECT_EQ(buffer, (Bytes{'a', 'A', 'b', 'B', 'c', 'C', 'd', 0, 0, 0, 0, 0}));
}

TEST(ErdasImgInterleave, AbsurdSizesAreNotRead) {
  const TempFolder folder;
  const std::pair<int, int> sizes[] = {{0, 5}, {5, -1}, {INT32_MAX, INT32_MAX}};
  for (const auto& [cols, rows] : sizes) {
    WriteFileBytes("a.lan", BytesOf(HeaderOf(kPackByte, 65535, cols, rows)) + "abc");
    ErdasImg image;
    InputFile file("a.lan");
    Bytes buffer = {1};
    EXPECT_EQ(image.ReadInterleaved(file, buffer), -1);
    EXPECT_TRUE(buffer.empty());
  }
}

TEST(ErdasImgInterleave, AFileJustifiesItsSamplesAndNoMoreThan64Megabytes) {
  const TempFolder folder;
  const int cols = 1 << 24;
  for (const int nHeld : {cols, cols - 1}) {  // of five rows
    const std::string held(static_cast<std::size_t>(nHeld), 'a');
    WriteFileBytes("a.lan", BytesOf(HeaderOf(kPackByte, 1, cols, 5)) + held);
    ErdasImg image;
    InputFile file("a.lan");
    Bytes buffer;
    EXPECT_EQ(image.ReadInterleaved(file, buffer), nHeld == cols ? 1 : -1);
    EXPECT_EQ(buffer.size(), nHeld == cols ? std::size_t{5} * cols : 0u);
  }
}

TEST(ErdasImgInterleave, LongLinesAreReadWhole) {
  const TempFolder folder;
  const int cols = 150001;  // more than is read at a time
  std::string pixels(std::size_t{8} * cols, '\0');
  for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<char>(i * i / 7);
  pixels.resize(pixels.size() - 70000);
  WriteFileBytes("a.lan", BytesOf(HeaderOf(kPackByte, 4, cols, 2)) + pixels);
  ErdasImg image;
  InputFile file("a.lan");
  Bytes buffer;
  ASSERT_EQ(image.ReadInterleaved(file, buffer), 1);
  ASSERT_EQ(buffer.size(), std::size_t{6} * cols);
  Bytes expected;
  for (std::size_t i = 0; i < std::size_t{2} * cols; ++i) {
    for (std::size_t band = 0; band < 3; ++band) {
      const std::size_t place = (i / cols * 4 + band) * cols + i % cols;
      expected.push_back(place < pixels.size() ? static_cast<std::uint8_t>(pixels[place]) : 0);
    }
  }
  EXPECT_TRUE(buffer == expected);
}

TEST(ErdasImgInterleave, TheHeaderOfThreeBandsKeepsItsPixelType) {
  const TempFolder folder;
  ErdasImg image;
  MakeImage(image, kPackFloat, 1, 1, 1);
  const Bytes buffer = {'a', 'b', 'c'};
  EXPECT_EQ(image.WriteInterleavedLan("a.lan", buffer.data()), 1);
  EXPECT_EQ(ReadFileBytes("a.lan"), BytesOf(HeaderOf(kPackFloat, 3, 1, 1)) + "abc");
}

TEST(ErdasImgInterleave, AnImageOfNoBandsHasNoSamples) {
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 0, INT32_MAX, INT32_MAX), false), 1);
  Bytes buffer = {42};
  image.GetInterleaved(buffer.data());
  EXPECT_EQ(buffer, (Bytes{42}));
}

TEST(ErdasImgInterleave, WritesALanOfThreeBands) {
  const TempFolder folder;
  TestFrontEnd ui;
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 2, 2);
  const std::string buffer = "aAubBvcCwdDx";
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(buffer.data());
  EXPECT_EQ(image.WriteInterleaved("a.LAN", bytes), 1);
  EXPECT_EQ(image.GetBandCount(), 3);
  EXPECT_EQ(ReadFileBytes("a.LAN"), BytesOf(HeaderOf(kPackByte, 3, 2, 2)) + "abABuvcdCDwx");
  EXPECT_EQ(image.WriteInterleavedLan("no/such/folder/a.lan", bytes), -1);
  EXPECT_EQ(ui.events, Events());
}

TEST(ErdasImgInterleave, AnotherExtensionIsWrittenFromTheBands) {
  const TempFolder folder;
  TestFrontEnd ui;
  ErdasImg image;
  MakeImage(image, kPackByte, 3, 2, 1);
  const Bytes buffer = {50, 60, 70, 51, 61, 71};
  EXPECT_EQ(image.WriteInterleaved("a.tif", buffer.data()), 1);
  ErdasImg other;
  ASSERT_EQ(other.Read("a.tif"), 1);
  EXPECT_EQ(BandPixelsOf<std::uint8_t>(other, 0), (Bytes{1, 51}));
  EXPECT_EQ(BandPixelsOf<std::uint8_t>(other, 2), (Bytes{21, 71}));
}

}  // namespace
}  // namespace corvane
