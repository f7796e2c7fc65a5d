#include "erdasimg/ErdasImg.h"

#include <gtest/gtest.h>

#include <cstddef>

#include "erdasimg/ImageBytes.h"

namespace corvane {
namespace {

TEST(ErdasHeader, LiesAtTheOffsetsOfTheFile) {
  EXPECT_EQ(sizeof(ErdasHeader), 128u);
  EXPECT_EQ(offsetof(ErdasHeader, packType), 6u);
  EXPECT_EQ(offsetof(ErdasHeader, bandCount), 8u);
  EXPECT_EQ(offsetof(ErdasHeader, cols), 16u);
  EXPECT_EQ(offsetof(ErdasHeader, rows), 20u);
  EXPECT_EQ(offsetof(ErdasHeader, xStart), 24u);
  EXPECT_EQ(offsetof(ErdasHeader, yStart), 28u);
  EXPECT_EQ(offsetof(ErdasHeader, mapType), 88u);
  EXPECT_EQ(offsetof(ErdasHeader, classCount), 90u);
  EXPECT_EQ(offsetof(ErdasHeader, xMap), 112u);
  EXPECT_EQ(offsetof(ErdasHeader, yMap), 116u);
  EXPECT_EQ(offsetof(ErdasHeader, xCell), 120u);
  EXPECT_EQ(offsetof(ErdasHeader, yCell), 124u);
}

TEST(ErdasImg, StartsEmptyWithTheDefaults) {
  const ErdasImg image;
  EXPECT_EQ(std::string(image.GetHeader()->magic, 6), "HEAD74");
  EXPECT_EQ(image.GetPackType(), 0);
  EXPECT_EQ(image.GetBandCount(), 1);
  EXPECT_EQ(image.GetSize(), (ImageSize{1, 1}));
  EXPECT_EQ(image.GetStart(), (ImageStart{0, 0}));
  EXPECT_EQ(image.GetHeader()->mapType, 1);
  EXPECT_EQ(image.GetHeader()->classCount, 0);
  EXPECT_EQ(image.GetHeader()->xMap, 0.0f);
  EXPECT_EQ(image.GetHeader()->yMap, 0.0f);
  EXPECT_EQ(image.GetHeader()->xCell, 1.0f);
  EXPECT_EQ(image.GetHeader()->yCell, -1.0f);
  EXPECT_EQ(image.GetBytesPerPixel(), 1);
  EXPECT_EQ(image.m_pixelSum, -1.0);
  EXPECT_EQ(image.m_pixelSumSq, -1.0);
  EXPECT_EQ(image.m_bandsContiguous, 0);
  EXPECT_EQ(image.m_subsetContiguous, 0);
  EXPECT_FALSE(image.GetBands());
  EXPECT_FALSE(image.GetSubsetBands());
  EXPECT_EQ(image.GetFileName(), "");
}

TEST(ErdasImg, CreateGivesZeroedBands) {
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackInt16, 3, 4, 5), false), 1);
  EXPECT_EQ(image.GetBytesPerPixel(), 2);
  EXPECT_EQ(image.GetImageBytes(), 40);
  EXPECT_EQ(image.m_bandsContiguous, 0);
  ASSERT_EQ(image.GetBands().size(), 3u);
  for (int band = 0; band < 3; ++band) EXPECT_EQ(BandBytes(image, band), std::string(40, '\0'));
}

TEST(ErdasImg, ContiguousBandsLieOneBehindTheOther) {
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 3, 4, 5), true), 1);
  EXPECT_EQ(image.m_bandsContiguous, 1);
  EXPECT_EQ(image.GetBands()[1], image.GetBands()[0] + 20);
  EXPECT_EQ(image.GetBands()[2], image.GetBands()[0] + 40);
  EXPECT_EQ(image.GetBands().GetBlock().size(), 60u);
}

TEST(ErdasImg, CreateTakesTheHeaderOfASizeThatIsNotPositive) {
  ErdasImg image;
  EXPECT_EQ(image.Create(HeaderOf(kPackFloat, 1, 0, 7), false), -1);
  EXPECT_EQ(image.GetSize(), (ImageSize{0, 7}));
  EXPECT_EQ(image.GetPackType(), kPackFloat);
  EXPECT_EQ(image.Create(HeaderOf(kPackFloat, 1, 7, -1), false), -1);
}

TEST(ErdasImg, CreateFailsWithoutMemory) {
  ErdasImg image;
  EXPECT_EQ(image.Create(HeaderOf(kPackDouble, 65535, INT32_MAX, INT32_MAX), false), -2);
  EXPECT_FALSE(image.GetBands());
  EXPECT_EQ(image.Create(HeaderOf(kPackDouble, 65535, INT32_MAX, INT32_MAX), true), -2);
  EXPECT_EQ(image.Create(HeaderOf(kPackByte, 1, 2, 2), true), 1);
}

TEST(ErdasImg, FreeLetsBandsAndSubsetGo) {
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 2, 2), false), 1);
  image.m_subset = image.AllocateBands(1, 1, 1, 1, false);
  image.Free();
  EXPECT_FALSE(image.GetBands());
  EXPECT_FALSE(image.GetSubsetBands());
}

TEST(ErdasImg, CopyToCopiesHeaderAndPixels) {
  for (const bool contiguous : {false, true}) {
    ErdasImg image;
    ErdasHeader header = HeaderOf(kPackUInt32, 2, 3, 2);
    header.xMap = 77.5f;
    ASSERT_EQ(image.Create(header, contiguous), 1);
    FillWithPattern(image);
    ErdasImg copy;
    EXPECT_EQ(image.CopyTo(copy), 1);
    EXPECT_EQ(BytesOf(*copy.GetHeader()), BytesOf(header));
    EXPECT_EQ(copy.GetBytesPerPixel(), 4);
    EXPECT_EQ(copy.m_bandsContiguous, 0);
    EXPECT_EQ(BandBytes(copy, 0), BandBytes(image, 0));
    EXPECT_EQ(BandBytes(copy, 1), BandBytes(image, 1));
    EXPECT_NE(copy.GetBands()[0], image.GetBands()[0]);
  }
}

TEST(ErdasImg, CopyToItselfChangesNothing) {
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 3, 2), false), 1);
  FillWithPattern(image);
  const std::string before = BandBytes(image, 0);
  EXPECT_EQ(image.CopyTo(image), 1);
  EXPECT_EQ(BandBytes(image, 0), before);
}

TEST(ErdasImg, CopyOfAnImageWithoutBandsIsZero) {
  const ErdasImg image;
  ErdasImg copy;
  EXPECT_EQ(image.CopyTo(copy), 1);
  EXPECT_EQ(BandBytes(copy, 0), std::string(1, '\0'));
}

TEST(ErdasImg, BytesPerPixelFollowFromThePackType) {
  ErdasImg image;
  const std::int32_t bytes[] = {1, 1, 2, 2, 4, 4, 4, 8, 1};
  for (std::uint16_t packType = 0; packType < 9; ++packType) {
    EXPECT_EQ(image.BytesPerPixelOf(packType), bytes[packType]) << packType;
    EXPECT_EQ(image.GetBytesPerPixel(), bytes[packType]);
  }
  EXPECT_EQ(image.BytesPerPixelOf(0xFFFE), 1);
  EXPECT_EQ(image.GetPackType(), 0);
}

TEST(ErdasImg, SameGeometryComparesTypeSizePlaceAndCell) {
  ErdasImg a;
  ErdasImg b;
  EXPECT_TRUE(a.SameGeometry(b));
  b.GetHeader()->classCount = 9;
  b.GetHeader()->mapType = 0;
  b.GetHeader()->xStart = 4;
  EXPECT_TRUE(a.SameGeometry(b));
  const auto differs = [&](auto change) {
    ErdasImg other;
    change(*other.GetHeader());
    return !a.SameGeometry(other);
  };
  EXPECT_TRUE(differs([](ErdasHeader& header) { header.bandCount = 2; }));
  EXPECT_TRUE(differs([](ErdasHeader& header) { header.cols = 2; }));
  EXPECT_TRUE(differs([](ErdasHeader& header) { header.rows = 2; }));
  EXPECT_TRUE(differs([](ErdasHeader& header) { header.packType = 2; }));
  EXPECT_TRUE(differs([](ErdasHeader& header) { header.xCell = 2; }));
  EXPECT_TRUE(differs([](ErdasHeader& header) { header.yCell = 2; }));
  EXPECT_TRUE(differs([](ErdasHeader& header) { header.xMap = 2; }));
  EXPECT_TRUE(differs([](ErdasHeader& header) { header.yMap = 2; }));
}

TEST(BandArray, IsEmptyForNegativeSizes) {
  EXPECT_FALSE(BandArray::Allocate(-1, 10, false));
  EXPECT_FALSE(BandArray::Allocate(1, -10, false));
  EXPECT_FALSE(BandArray::Allocate(2, INT64_MAX, true));
  EXPECT_TRUE(BandArray::Allocate(0, 10, false));
  EXPECT_TRUE(BandArray::Allocate(1, 0, true));
}

TEST(BandArray, CopiesShareTheBuffers) {
  BandArray copy;
  {
    const BandArray array = BandArray::Allocate(2, 8, true);
    copy = array;
    array[1][7] = 42;
  }
  EXPECT_EQ(copy[1][7], 42);
  EXPECT_EQ(copy[2], nullptr);
  EXPECT_EQ(copy[-1], nullptr);
  EXPECT_TRUE(copy.GetBand(2).empty());
}

}  // namespace
}  // namespace corvane
