#include "erdasimg/ErdasImg.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>
#include <utility>

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

TEST(ErdasImg, SetBandsSharesTheBuffersAndTellsHowTheyLie) {
  for (const bool contiguous : {false, true}) {
    const BandArray bands = BandArray::Allocate(2, 6, contiguous);
    ErdasImg image;
    image.m_bandsContiguous = contiguous ? 0 : 1;
    image.SetBands(bands);
    EXPECT_EQ(image.m_bandsContiguous, contiguous ? 1 : 0);
    EXPECT_EQ(image.GetBands()[1], bands[1]);
  }
}

TEST(ErdasImg, MovesItsPixelsAndLeavesNone) {
  static_assert(std::is_nothrow_move_constructible_v<ErdasImg>);
  static_assert(!std::is_copy_constructible_v<ErdasImg> && !std::is_copy_assignable_v<ErdasImg>);
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackUInt16, 2, 3, 2), true), 1);
  FillWithPattern(image);
  image.SetFileName("a.lan");
  image.GetSubset(0, 1, 0, 0);
  const std::uint8_t* const first = image.GetBands()[0];
  const std::string pixels = BandBytes(image, 1);

  ErdasImg moved(std::move(image));
  EXPECT_EQ(moved.GetBands()[0], first);
  EXPECT_EQ(moved.GetSize(), (ImageSize{3, 2}));
  EXPECT_EQ(moved.m_subsetSize, (ImageSize{2, 1}));
  EXPECT_FALSE(image.GetBands());  // NOLINT: what is left is told
  EXPECT_FALSE(image.GetSubsetBands());
  double value = 1.0;
  EXPECT_TRUE(image.GetPixel(0, 0, 0, value));
  EXPECT_EQ(value, 0.0);

  ErdasImg other;
  ASSERT_EQ(other.Create(HeaderOf(kPackByte, 1, 9, 9), false), 1);
  other = std::move(moved);
  EXPECT_EQ(other.GetBands()[0], first);
  EXPECT_EQ(BandBytes(other, 1), pixels);
  EXPECT_EQ(other.GetFileName(), "a.lan");
  EXPECT_EQ(other.GetBytesPerPixel(), 2);
  EXPECT_FALSE(moved.GetBands());
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

TEST(BandArray, TellsWhetherItsBandsLieInOneAllocation) {
  EXPECT_FALSE(BandArray().IsContiguous());
  EXPECT_FALSE(BandArray::Allocate(2, 8, false).IsContiguous());
  const BandArray array = BandArray::Allocate(2, 8, true);
  EXPECT_TRUE(array.IsContiguous());
  EXPECT_EQ(array[1], array[0] + 8);
}

TEST(BandArray, IsEmptyWhenMovedFrom) {
  BandArray array = BandArray::Allocate(2, 8, true);
  const std::uint8_t* const first = array[0];
  BandArray moved(std::move(array));
  EXPECT_EQ(moved[0], first);
  EXPECT_FALSE(moved.IsShared());
  EXPECT_FALSE(array);
  EXPECT_EQ(array.size(), 0u);
  EXPECT_EQ(array.GetBandBytes(), 0u);
  array = std::move(moved);
  EXPECT_EQ(array[0], first);
  EXPECT_FALSE(moved);
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
