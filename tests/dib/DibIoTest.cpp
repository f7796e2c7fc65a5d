#include "dib/DibIo.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

#include "DibFixture.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DibIo : public testing::Test {
 protected:
  std::string Store(const std::vector<std::uint8_t>& bytes) {
    const std::string path = "a.bmp";
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path;
  }

  // A file of the bitmap as the writer makes it, with bytes replaced.
  std::vector<std::uint8_t> FileOf(const Dib& dib) {
    const std::string path = "made.bmp";
    EXPECT_EQ(WriteDib(dib, path), 1);
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  template <typename Number>
  static void Put(std::vector<std::uint8_t>& bytes, std::size_t at, Number number) {
    std::memcpy(bytes.data() + at, &number, sizeof number);
  }

  int Read(const std::vector<std::uint8_t>& bytes) {
    InputFile file(Store(bytes));
    return ReadDib(file, dib);
  }

  TempFolder folder;
  TestFrontEnd ui;
  Dib dib;
};

TEST_F(DibIo, WritesTheFileHeaderBeforeTheBitmap) {
  const Dib written = ByteDib({{1, 2, 3}, {4, 5, 6}});
  const std::vector<std::uint8_t> file = FileOf(written);
  ASSERT_EQ(file.size(), 14 + written.size());
  EXPECT_THAT(std::vector<int>(file.begin(), file.begin() + 14),
              ElementsAre('B', 'M', 62, 4, 0, 0, 0, 0, 0, 0, 54, 4, 0, 0));  // 1086 bytes, bits at 1078
  EXPECT_TRUE(std::equal(written.begin(), written.end(), file.begin() + 14));
}

TEST_F(DibIo, WhatIsWrittenReadsBack) {
  for (const int bitCount : {1, 4, 8, 16, 24, 32}) {
    Dib written = MakeBlackDib(7, 5, bitCount);
    for (std::size_t i = 0; i < 5; ++i) DibBits(written)[i] = static_cast<std::uint8_t>(17 * i);
    EXPECT_EQ(Read(FileOf(written)), 1) << bitCount;
    EXPECT_EQ(dib, written) << bitCount;
  }
}

TEST_F(DibIo, TurnsTopDownRowsRound) {
  std::vector<std::uint8_t> file = FileOf(ByteDib({{1}, {2}, {3}}));
  Put(file, 22, std::int32_t{-3});
  ASSERT_EQ(Read(file), 1);
  EXPECT_EQ(DibHeight(dib), 3);
  EXPECT_EQ(DibRow(dib, 0)[0], 3);
  EXPECT_EQ(DibRow(dib, 1)[0], 2);
  EXPECT_EQ(DibRow(dib, 2)[0], 1);
}

TEST_F(DibIo, TakesLongerHeadersAndShorterPalettes) {
  const Dib made = ByteDib({{1, 0}});
  std::vector<std::uint8_t> file = FileOf(made);
  file.resize(14 + 40);
  file.insert(file.end(), 68, 0);                        // a header of 108 bytes
  file.insert(file.end(), {9, 8, 7, 0, 30, 20, 10, 0});  // two colours
  file.insert(file.end(), {99, 99});                     // a gap
  file.insert(file.end(), {1, 0, 0, 0});                 // the row
  Put(file, 14, std::uint32_t{108});
  Put(file, 46, std::uint32_t{2});
  Put(file, 10, static_cast<std::uint32_t>(file.size() - 4));
  ASSERT_EQ(Read(file), 1);
  EXPECT_EQ(DibColorCount(dib), 2);
  const DibColours colours(dib);
  EXPECT_EQ(colours.Get(DibRow(dib, 0), 0), 0x0a141eu);
  EXPECT_EQ(colours.Get(DibRow(dib, 0), 1), 0x070809u);
}

TEST_F(DibIo, APaletteBesidesFullColoursIsDropped) {
  std::vector<std::uint8_t> file = FileOf(MakeBlackDib(3, 2, 24));
  Put(file, 46, std::uint32_t{2});  // two colours, for screens that have few
  file.insert(file.begin() + 54, {1, 2, 3, 0, 4, 5, 6, 0});
  Put(file, 10, std::uint32_t{62});
  ASSERT_EQ(Read(file), 1);
  EXPECT_EQ(dib, MakeBlackDib(3, 2, 24));
}

TEST_F(DibIo, RefusesWhatIsNoBitmap) {
  const std::vector<std::uint8_t> good = FileOf(ByteDib({{1, 2}, {3, 4}}));
  const auto refused = [&](std::size_t at, auto number) {
    std::vector<std::uint8_t> file = good;
    Put(file, at, number);
    const int status = Read(file);
    EXPECT_THAT(dib, IsEmpty());
    return status;
  };
  EXPECT_EQ(refused(0, 'X'), -1);
  EXPECT_EQ(refused(18, std::int32_t{0}), -1);  // width
  EXPECT_EQ(refused(18, std::int32_t{-2}), -1);
  EXPECT_EQ(refused(18, INT32_MAX), -1);        // more than the file holds
  EXPECT_EQ(refused(22, std::int32_t{0}), -1);  // height
  EXPECT_EQ(refused(22, INT32_MIN), -1);
  EXPECT_EQ(refused(10, std::uint32_t{20}), -1);  // pixels within the header
  EXPECT_EQ(refused(10, UINT32_MAX), -1);
  EXPECT_EQ(refused(14, std::uint32_t{12}), -2);  // another header
  EXPECT_EQ(refused(14, UINT32_MAX), -2);
  EXPECT_EQ(refused(28, std::uint16_t{7}), -2);  // bits a pixel
  EXPECT_EQ(refused(30, std::uint32_t{1}), -2);  // compressed
  std::vector<std::uint8_t> huge = good;
  Put(huge, 18, INT32_MAX);
  Put(huge, 22, INT32_MAX);
  EXPECT_EQ(Read(huge), -3);
}

TEST_F(DibIo, RefusesAnyFileThatIsCutShort) {
  const std::vector<std::uint8_t> good = FileOf(ByteDib({{1, 2}, {3, 4}}));
  for (std::size_t size = 0; size < good.size(); ++size) {
    EXPECT_LT(Read({good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)}), 0) << size;
    EXPECT_THAT(dib, IsEmpty());
  }
}

TEST_F(DibIo, TellsFailuresOfPaths) {
  EXPECT_LT(ReadDib("none.bmp", dib), 0);
  EXPECT_LT(ReadDib(Store({1, 2, 3}), dib), 0);
  EXPECT_LT(WriteDib(ByteDib({{1}}), "no/folder.bmp"), 0);
  EXPECT_LT(WriteDib({}, "empty.bmp"), 0);
  EXPECT_THAT(
      ui.EventsWith("message"),
      ElementsAre("message warning: Open file none.bmp error!",
                  "message warning: Open file a.bmp error!\nIt is no bitmap file, or it is cut short.",
                  "message warning: Write file no/folder.bmp error!",
                  "message warning: Write file empty.bmp error!"));
  EXPECT_FALSE(std::ifstream("empty.bmp").is_open());
}

}  // namespace
}  // namespace corvane
