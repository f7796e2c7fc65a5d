#include "dib/Dib.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "DibFixture.h"

namespace corvane {
namespace {

using testing::ElementsAre;

TEST(Dib, IsMadeBlackWithAGreyPalette) {
  const Dib dib = MakeBlackDib(5, 3, 8);
  EXPECT_TRUE(IsDib(dib));
  EXPECT_EQ(DibWidth(dib), 5);
  EXPECT_EQ(DibHeight(dib), 3);
  EXPECT_EQ(DibBitCount(dib), 8);
  EXPECT_EQ(DibColorCount(dib), 256);
  EXPECT_EQ(DibHeaderSize(dib), 40);
  EXPECT_EQ(DibRowBytes(dib), 8);  // 5 rounded up to a multiple of 4
  EXPECT_EQ(dib.size(), 40u + 1024u + 3u * 8u);
  EXPECT_EQ(DibBits(dib), dib.data() + 40 + 1024);
  EXPECT_THAT(std::vector<int>(dib.begin() + 40 + 4 * 200, dib.begin() + 40 + 4 * 201),
              ElementsAre(200, 200, 200, 0));
}

TEST(Dib, RowsRunBottomUp) {
  const Dib dib = ByteDib({{1, 2}, {3, 4}});
  EXPECT_EQ(DibBits(dib)[0], 3);
  EXPECT_EQ(DibRow(dib, 0)[1], 2);
  EXPECT_TRUE(DibRow(dib, 2).empty());
  EXPECT_TRUE(DibRow(dib, -1).empty());
}

TEST(Dib, GetPixelColorTellsTheBytesOfAPixel) {
  const Dib grey = ByteDib({{7, 8}, {9, 10}});
  std::uint8_t color[3] = {};
  EXPECT_EQ(GetPixelColor(grey, 1, 0, color), 1);
  EXPECT_EQ(color[0], 8);
  Dib colours = MakeBlackDib(2, 2, 24);
  const std::uint8_t blueGreenRed[] = {1, 2, 3};
  EXPECT_EQ(SetPixelColor(colours, 1, 1, blueGreenRed), 3);
  EXPECT_EQ(GetPixelColor(colours, 1, 1, color), 3);
  EXPECT_THAT(color, ElementsAre(1, 2, 3));
}

TEST(Dib, GetPixelColorIsMinusOneOutsideAndLessForOtherFormats) {
  const Dib grey = ByteDib({{7}});
  std::uint8_t color[3] = {5, 5, 5};
  for (const auto& [x, y] : {std::pair(-1, 0), std::pair(1, 0), std::pair(0, -1), std::pair(0, 1)}) {
    EXPECT_EQ(GetPixelColor(grey, x, y, color), -1);
  }
  for (const int bitCount : {1, 4, 16, 32}) {
    const Dib other = MakeBlackDib(2, 2, bitCount);
    EXPECT_LT(GetPixelColor(other, 0, 0, color), -1) << bitCount;
    EXPECT_EQ(GetPixelColor(other, 2, 0, color), -1) << bitCount;
  }
  EXPECT_EQ(GetPixelColor({}, 0, 0, color), -1);
  EXPECT_THAT(color, ElementsAre(5, 5, 5));
}

TEST(Dib, WhatIsNoBitmapHasNoPixels) {
  Dib cut = MakeBlackDib(4, 4, 8);
  cut.pop_back();
  EXPECT_FALSE(IsDib(cut));
  EXPECT_EQ(DibWidth(cut), 0);
  EXPECT_EQ(DibBits(cut), nullptr);
  EXPECT_TRUE(DibRow(cut, 0).empty());
  for (const std::size_t at :
       {std::size_t{0}, std::size_t{14}, std::size_t{16}}) {  // size, bits, compression
    Dib odd = MakeBlackDib(4, 4, 8);
    odd[at] = 9;
    EXPECT_FALSE(IsDib(odd)) << at;
  }
  EXPECT_TRUE(MakeBlackDib(0, 4, 8).empty());
  EXPECT_TRUE(MakeBlackDib(4, -1, 8).empty());
  EXPECT_TRUE(MakeBlackDib(4, 4, 7).empty());
  EXPECT_TRUE(MakeBlackDib(INT32_MAX, INT32_MAX, 32).empty());
}

TEST(Dib, ColoursComeFromThePaletteOrThePixel) {
  Dib grey = ByteDib({{0, 200}});
  EXPECT_EQ(DibColours(grey).Get(DibRow(grey, 0), 1), 0xc8c8c8u);

  Dib bits = MakeBlackDib(9, 1, 1);
  DibRow(bits, 0)[0] = 0x40;
  DibRow(bits, 0)[1] = 0x80;
  const DibColours blackWhite(bits);
  EXPECT_EQ(blackWhite.Get(DibRow(bits, 0), 0), 0u);
  EXPECT_EQ(blackWhite.Get(DibRow(bits, 0), 1), 0xffffffu);
  EXPECT_EQ(blackWhite.Get(DibRow(bits, 0), 8), 0xffffffu);

  Dib nibbles = MakeBlackDib(2, 1, 4);
  DibRow(nibbles, 0)[0] = 0x3f;
  EXPECT_EQ(DibColours(nibbles).Get(DibRow(nibbles, 0), 0), 0x333333u);
  EXPECT_EQ(DibColours(nibbles).Get(DibRow(nibbles, 0), 1), 0xffffffu);

  Dib words = MakeBlackDib(1, 1, 16);
  DibRow(words, 0)[0] = 0x1f;  // blue 31, green 0, red 16
  DibRow(words, 0)[1] = 0x40;
  EXPECT_EQ(DibColours(words).Get(DibRow(words, 0), 0), 0x8400ffu);

  for (const int bitCount : {24, 32}) {
    Dib full = MakeBlackDib(2, 1, bitCount);
    const std::size_t at = static_cast<std::size_t>(bitCount / 8);
    DibRow(full, 0)[at] = 1;
    DibRow(full, 0)[at + 1] = 2;
    DibRow(full, 0)[at + 2] = 3;
    EXPECT_EQ(DibColours(full).Get(DibRow(full, 0), 1), 0x030201u);
  }
}

}  // namespace
}  // namespace corvane
