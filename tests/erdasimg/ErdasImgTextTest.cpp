#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

#include "erdasimg/ImageBytes.h"
#include "io/OutputFile.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

template <typename Pixel>
void SetBand(ErdasImg& image, int band, std::initializer_list<Pixel> pixels) {
  const std::string bytes = PixelBytes<Pixel>(pixels);
  const auto to = image.GetBands().GetBand(band);
  ASSERT_EQ(bytes.size(), to.size());
  std::copy(bytes.begin(), bytes.end(), to.begin());
}

template <typename Pixel>
std::string TextOf(std::uint16_t packType, std::initializer_list<Pixel> pixels) {
  ErdasImg image;
  EXPECT_EQ(image.Create(HeaderOf(packType, 1, static_cast<std::int32_t>(pixels.size()), 1), false), 1);
  SetBand(image, 0, pixels);
  EXPECT_EQ(image.WriteText("a.txt"), 1);
  return ReadFileBytes("a.txt");
}

TEST(ErdasImgText, ALineARowAndAnEmptyLineABand) {
  const TempFolder folder;
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 2, 3, 2), false), 1);
  SetBand<std::uint8_t>(image, 0, {1, 2, 3, 4, 5, 6});
  SetBand<std::uint8_t>(image, 1, {10, 20, 30, 40, 50, 255});
  EXPECT_EQ(image.WriteText("a.txt"), 1);
  EXPECT_EQ(ReadFileBytes("a.txt"), "1 2 3 \n4 5 6 \n\n10 20 30 \n40 50 255 \n\n");
}

TEST(ErdasImgText, NumbersByType) {
  const TempFolder folder;
  EXPECT_EQ(TextOf<std::uint16_t>(kPackUInt16, {0, 65535}), "0 65535 \n\n");
  EXPECT_EQ(TextOf<std::int16_t>(kPackInt16, {-32768, 32767}), "-32768 32767 \n\n");
  EXPECT_EQ(TextOf<std::uint32_t>(kPackUInt32, {0, 4294967295u}), "0 4294967295 \n\n");
  EXPECT_EQ(TextOf<std::int32_t>(kPackInt32, {INT32_MIN, 7}), "-2147483648 7 \n\n");
  EXPECT_EQ(TextOf<float>(kPackFloat, {0.1f, -2.0f}), "0.100000 -2.000000 \n\n");
  EXPECT_EQ(TextOf<double>(kPackDouble, {1e10, -0.0000001}), "10000000000.000000 -0.000000 \n\n");
  EXPECT_EQ(TextOf<double>(kPackDouble, {std::numeric_limits<double>::infinity()}), "inf \n\n");
}

TEST(ErdasImgText, ATypeOutsideOfTheListEndsInSilence) {
  const TempFolder folder;
  TestFrontEnd ui;
  for (const std::uint16_t packType : {1, 8, 0xFFFE}) {
    ErdasImg image;
    ASSERT_EQ(image.Create(HeaderOf(packType, 1, 2, 2), false), 1);
    EXPECT_EQ(image.WriteText("a.txt"), 1);
    EXPECT_TRUE(std::filesystem::exists("a.txt"));
    EXPECT_EQ(ReadFileBytes("a.txt"), "");
  }
  EXPECT_TRUE(ui.events.empty());
}

TEST(ErdasImgText, AnImageWithoutBandsGivesNoText) {
  const TempFolder folder;
  ErdasImg image;
  image.SetSize(INT32_MAX, INT32_MAX);
  EXPECT_EQ(image.WriteText("a.txt"), 1);
  EXPECT_EQ(ReadFileBytes("a.txt"), "");
}

TEST(ErdasImgText, RowsThatAreNotThereAreLeftOut) {
  const TempFolder folder;
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 2, 2), false), 1);
  image.SetSize(2, INT32_MAX);
  EXPECT_EQ(image.WriteText("a.txt"), 1);
  EXPECT_EQ(ReadFileBytes("a.txt"), "0 0 \n0 0 \n\n");
}

TEST(ErdasImgText, LongTextsAreWhole) {
  const TempFolder folder;
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 1000, 300), false), 1);
  EXPECT_EQ(image.WriteText("a.txt"), 1);
  std::string row;
  for (int col = 0; col < 1000; ++col) row += "0 ";
  row += '\n';
  std::string expected;
  for (int i = 0; i < 300; ++i) expected += row;
  EXPECT_TRUE(ReadFileBytes("a.txt") == expected + "\n");
}

TEST(ErdasImgText, AFailureIsToldAndLeavesTheOldFile) {
  const TempFolder folder;
  TestFrontEnd ui;
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 2, 2), false), 1);
  EXPECT_EQ(image.WriteText("missing/a.txt"), -1);
  EXPECT_EQ(ui.events, std::vector<std::string>{"message warning: Write file missing/a.txt error!"});
  if (!std::filesystem::exists("/dev/full")) return;
  OutputFile full("/dev/full");
  ErdasImg large;
  ASSERT_EQ(large.Create(HeaderOf(kPackByte, 1, 2000, 1000), false), 1);
  EXPECT_EQ(large.WriteTextTo(full), -1);
}

}  // namespace
}  // namespace corvane
