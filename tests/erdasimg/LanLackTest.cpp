// When a .lan is no image.

#include "erdasimg/LanLack.h"

#include <gtest/gtest.h>

#include "erdasimg/ImageBytes.h"

namespace corvane {
namespace {

TEST(LackOf, FilesShorterThanAHeader) {
  const ErdasHeader header = HeaderOf(kPackByte, 1, 10, 10);
  EXPECT_EQ(LackOf(header, 0), LanLack::Header);
  EXPECT_EQ(LackOf(header, 127), LanLack::Header);
  EXPECT_EQ(LackOf(header, 128), LanLack::Nothing);
  EXPECT_EQ(LackOf(header, 1000), LanLack::Nothing);
}

TEST(LackOf, HeadersWithoutASize) {
  for (const ErdasHeader& header :
       {HeaderOf(kPackByte, 0, 10, 10), HeaderOf(kPackByte, 1, 0, 10), HeaderOf(kPackByte, 1, 10, 0),
        HeaderOf(kPackByte, 1, -10, 10), HeaderOf(kPackByte, 1, -10, -10)}) {
    EXPECT_EQ(LackOf(header, 1000), LanLack::Size);
  }
}

TEST(LackOf, UpTo64MegabytesMayBeMissing) {
  EXPECT_EQ(LackOf(HeaderOf(kPackByte, 1, 8192, 8192), 128), LanLack::Nothing);
  EXPECT_EQ(LackOf(HeaderOf(kPackByte, 1, 8192, 8193), 128), LanLack::Pixels);
  EXPECT_EQ(LackOf(HeaderOf(kPackDouble, 8, 1024, 1024), 128), LanLack::Nothing);
  EXPECT_EQ(LackOf(HeaderOf(kPackDouble, 8, 1024, 1025), 128), LanLack::Pixels);
}

TEST(LackOf, AsMuchMayBeMissingAsTheFileHolds) {
  const ErdasHeader header = HeaderOf(kPackByte, 1, 10000, 14000);  // with itself 140000128 bytes
  EXPECT_EQ(LackOf(header, 70000064), LanLack::Nothing);
  EXPECT_EQ(LackOf(header, 70000063), LanLack::Pixels);
}

TEST(LackOf, SizesBeyond64Bits) {
  const ErdasHeader header = HeaderOf(kPackDouble, 65535, INT32_MAX, INT32_MAX);
  EXPECT_EQ(LackOf(header, 128), LanLack::Pixels);
  EXPECT_EQ(LackOf(header, std::int64_t{1} << 40), LanLack::Pixels);
}

}  // namespace
}  // namespace corvane
