// Windows cut out of an image.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>

#include "erdasimg/ImageBytes.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using Events = std::vector<std::string>;

constexpr char kNoMemory[] = "message warning: Allocate Memory for Image Fails";

// A pixel's value tells where it is: 100 * band + 10 * row + col.
void MakeImage(ErdasImg& image, std::uint16_t packType, std::uint16_t nBands, int cols, int rows) {
  ASSERT_EQ(image.Create(HeaderOf(packType, nBands, cols, rows), nBands > 1), 1);
  for (int band = 0; band < nBands; ++band) {
    for (int i = 0; i < cols * rows; ++i) {
      image.SetPixel(band, i / cols, i % cols, 100 * band + 10 * (i / cols) + i % cols);
    }
  }
}

template <typename Pixel>
std::vector<Pixel> PixelsIn(std::span<const std::uint8_t> bytes) {
  std::vector<Pixel> pixels(bytes.size() / sizeof(Pixel));
  if (!pixels.empty()) std::memcpy(pixels.data(), bytes.data(), bytes.size());
  return pixels;
}

std::vector<int> SubsetOf(const ErdasImg& image, int band = 0) {
  const auto bytes = image.GetSubsetBands().GetBand(band);
  return {bytes.begin(), bytes.end()};
}

ScanRow RowOf(double y, std::vector<double> x) {
  return {y, static_cast<std::int32_t>(x.size()), std::move(x)};
}

ScanRegion RegionOf(std::vector<ScanRow> rows) {
  ScanRegion region;
  region.rowCount = static_cast<std::int32_t>(rows.size());
  region.rows = std::move(rows);
  region.ComputeArea();
  return region;
}

TEST(ErdasImgSubset, CutsTheWindowOfEveryBand) {
  ErdasImg image;
  MakeImage(image, kPackByte, 2, 6, 5);
  const BandArray& subset = image.GetSubset(1, 3, 2, 3);
  EXPECT_EQ(&subset, &image.GetSubsetBands());
  EXPECT_EQ(image.m_subsetSize, (ImageSize{3, 2}));
  EXPECT_EQ(image.m_subsetRect, (ImageRect{1, 2, 3, 3}));
  EXPECT_EQ(SubsetOf(image, 0), (std::vector<int>{21, 22, 23, 31, 32, 33}));
  EXPECT_EQ(SubsetOf(image, 1), (std::vector<int>{121, 122, 123, 131, 132, 133}));
}

TEST(ErdasImgSubset, CutsEveryPixelType) {
  ErdasImg image;
  MakeImage(image, kPackInt16, 1, 4, 3);
  EXPECT_EQ(PixelsIn<std::int16_t>(image.GetSubset(2, 3, 1, 2).GetBand(0)),
            (std::vector<std::int16_t>{12, 13, 22, 23}));
  MakeImage(image, kPackDouble, 1, 4, 3);
  EXPECT_EQ(PixelsIn<double>(image.GetSubset(2, 3, 1, 2).GetBand(0)), (std::vector<double>{12, 13, 22, 23}));
}

TEST(ErdasImgSubset, WhatLiesOutsideOfTheImageIsZero) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 3, 2);
  image.GetSubset(-1, 3, -1, 2);
  const std::vector<int> expected = {0, 0, 0, 0, 0, 0, 0, 1, 2, 0, 0, 10, 11, 12, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(SubsetOf(image), expected);
  image.GetSubset(100, 101, 0, 0);
  EXPECT_EQ(SubsetOf(image), (std::vector<int>{0, 0}));
  image.GetSubset(INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX);
  EXPECT_EQ(SubsetOf(image), (std::vector<int>{0}));
}

TEST(ErdasImgSubset, TheBufferIsUsedAgainForAsManyPixels) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 6, 5);
  const std::uint8_t* const first = image.GetSubset(0, 2, 0, 1)[0];
  EXPECT_EQ(image.GetSubset(0, 1, 0, 2)[0], first);  // 2 x 3 has as many as 3 x 2
  EXPECT_EQ(SubsetOf(image), (std::vector<int>{0, 1, 10, 11, 20, 21}));
  image.GetSubset(4, 6, 4, 5);
  EXPECT_EQ(SubsetOf(image), (std::vector<int>{44, 45, 0, 0, 0, 0}));
  image.GetSubset(0, 0, 0, 1);
  EXPECT_EQ(SubsetOf(image), (std::vector<int>{0, 10}));
}

TEST(ErdasImgSubset, ABufferOfOtherBandsOrPixelSizeIsNotUsedAgain) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 4, 4);
  image.GetSubset(0, 1, 0, 1);
  MakeImage(image, kPackInt32, 1, 4, 4);
  EXPECT_EQ(PixelsIn<std::int32_t>(image.GetSubset(0, 1, 0, 1).GetBand(0)),
            (std::vector<std::int32_t>{0, 1, 10, 11}));
  MakeImage(image, kPackInt32, 3, 4, 4);
  EXPECT_EQ(PixelsIn<std::int32_t>(image.GetSubset(0, 1, 0, 1).GetBand(2)),
            (std::vector<std::int32_t>{200, 201, 210, 211}));
}

TEST(ErdasImgSubset, WithoutAPositiveSizeTheSubsetStays) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 4, 4);
  EXPECT_FALSE(image.GetSubset(2, 1, 0, 0));
  image.GetSubset(0, 1, 0, 0);
  EXPECT_EQ(image.GetSubset(2, 1, 0, 0).size(), 1u);
  image.GetSubset(0, 0, INT32_MAX, INT32_MIN);
  image.GetSubsetFlipped(0, 0, 3, 2, true);
  image.GetSubsetRegion(ScanRegion{});
  EXPECT_EQ(SubsetOf(image), (std::vector<int>{0, 1}));
  EXPECT_EQ(image.m_subsetSize, (ImageSize{2, 1}));
  EXPECT_EQ(image.m_subsetRect, (ImageRect{0, 0, 1, 0}));
}

TEST(ErdasImgSubset, WithoutMemoryThereIsAWarningAndNoSubset) {
  TestFrontEnd ui;
  ErdasImg image;
  MakeImage(image, kPackDouble, 3, 2, 2);
  image.GetSubset(0, 1, 0, 1);
  EXPECT_FALSE(image.GetSubset(0, INT32_MAX - 1, 0, INT32_MAX - 1));
  EXPECT_FALSE(image.GetSubset(INT32_MIN, INT32_MAX, 0, 0));
  EXPECT_FALSE(image.GetSubsetFlipped(INT32_MIN, INT32_MAX, INT32_MIN, INT32_MAX, true));
  EXPECT_EQ(ui.events, Events(3, kNoMemory));
  EXPECT_TRUE(image.GetSubset(0, 1, 0, 1));
  EXPECT_EQ(ui.events.size(), 3u);
}

TEST(ErdasImgSubset, AnImageWithoutBandsGivesZeros) {
  ErdasImg image;
  image.SetSize(9, 9);
  image.GetSubset(0, 1, 0, 0);
  EXPECT_EQ(SubsetOf(image), (std::vector<int>{0, 0}));
}

TEST(ErdasImgSubset, BandsThatAreTooSmallGiveZeros) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 3, 2);
  image.GetSubset(0, 2, 0, 2);
  image.SetSize(3, 1000000);
  image.GetSubset(0, 2, 1, 3);
  EXPECT_EQ(SubsetOf(image), (std::vector<int>{10, 11, 12, 0, 0, 0, 0, 0, 0}));
  image.GetSubset(0, 0, INT32_MAX - 1, INT32_MAX);
  EXPECT_EQ(SubsetOf(image), (std::vector<int>{0, 0}));
}

TEST(ErdasImgSubset, FlippedRowsCountFromTheBottom) {
  ErdasImg image;
  MakeImage(image, kPackByte, 2, 3, 5);
  image.GetSubsetFlipped(0, 1, 1, 2, false);  // rows 5 - 1 - 1 = 3 and 5 - 2 - 1 = 2
  EXPECT_EQ(SubsetOf(image, 0), (std::vector<int>{30, 31, 20, 21}));
  EXPECT_EQ(SubsetOf(image, 1), (std::vector<int>{130, 131, 120, 121}));
  EXPECT_EQ(image.m_subsetContiguous, 0);
  image.GetSubsetFlipped(2, 3, -1, 0, false);
  EXPECT_EQ(SubsetOf(image, 0), (std::vector<int>{0, 0, 42, 0}));
}

TEST(ErdasImgSubset, InterleavedSamplesStandPixelByPixel) {
  ErdasImg image;
  MakeImage(image, kPackInt16, 3, 3, 2);
  image.GetSubset(0, 1, 0, 1);
  image.GetSubsetFlipped(1, 2, 0, 1, true);
  EXPECT_EQ(image.m_subsetContiguous, 1);
  EXPECT_EQ(PixelsIn<std::int16_t>(image.GetSubsetBands().GetBlock()),
            (std::vector<std::int16_t>{11, 111, 211, 12, 112, 212, 1, 101, 201, 2, 102, 202}));
  image.GetSubset(1, 2, 0, 1);
  EXPECT_EQ(PixelsIn<std::int16_t>(image.GetSubsetBands().GetBand(2)),
            (std::vector<std::int16_t>{201, 202, 211, 212}));
}

TEST(ErdasImgSubset, OneBandIsNotInterleaved) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 3, 2);
  image.GetSubsetFlipped(0, 1, 0, 1, true);
  EXPECT_EQ(image.m_subsetContiguous, 0);
  EXPECT_EQ(SubsetOf(image), (std::vector<int>{10, 11, 0, 1}));
}

TEST(ErdasImgSubset, TheImagesOwnBandsKeepTheirFlag) {
  ErdasImg image;
  MakeImage(image, kPackByte, 3, 3, 2);
  ASSERT_EQ(image.m_bandsContiguous, 1);
  image.GetSubset(0, 1, 0, 1);
  EXPECT_EQ(image.m_bandsContiguous, 1);
}

TEST(ErdasImgSubset, ARegionIsOneRowOfItsRuns) {
  ErdasImg image;
  MakeImage(image, kPackByte, 2, 8, 4);
  ScanRegion region = RegionOf({RowOf(1, {1, 3, 5, 6}), RowOf(2, {0, 2})});
  region.minX = 0.9;
  region.minY = 1.0;
  region.maxX = 6.2;
  region.maxY = 2.0;
  image.GetSubsetRegion(region);
  EXPECT_EQ(image.m_subsetSize, (ImageSize{5, 1}));
  EXPECT_EQ(image.m_subsetRect, (ImageRect{0, 1, 6, 2}));
  EXPECT_EQ(SubsetOf(image, 0), (std::vector<int>{11, 12, 15, 20, 21}));
  EXPECT_EQ(SubsetOf(image, 1), (std::vector<int>{111, 112, 115, 120, 121}));
}

TEST(ErdasImgSubset, ARegionBeyondTheImageGivesZerosThere) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 3, 2);
  image.GetSubsetRegion(RegionOf({RowOf(-1, {0, 1}), RowOf(0, {-1, 2}), RowOf(1, {2, 5}), RowOf(7, {0, 1})}));
  EXPECT_EQ(SubsetOf(image), (std::vector<int>{0, 0, 0, 1, 12, 0, 0, 0}));
}

TEST(ErdasImgSubset, AnOddRowEndsTheCopyOfARegion) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 4, 4);
  ScanRegion region = RegionOf({RowOf(1, {0, 2}), RowOf(2, {0, 1, 2}), RowOf(3, {0, 2})});
  EXPECT_EQ(region.area, 2);
  region.area = 6;
  image.GetSubsetRegion(region);
  EXPECT_EQ(SubsetOf(image), (std::vector<int>{10, 11, 0, 0, 0, 0}));
}

TEST(ErdasImgSubset, ARegionThatTellsTheWrongNumbersStaysWithinItsBuffer) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 4, 4);
  ScanRegion region = RegionOf({RowOf(1, {0, 2}), RowOf(2, {3, 1}), RowOf(3, {0, 3})});
  region.area = 3;
  region.rowCount = 99;
  image.GetSubsetRegion(region);
  EXPECT_EQ(SubsetOf(image), (std::vector<int>{10, 11, 0}));
  region = RegionOf({RowOf(std::nan(""), {-1e300, std::numeric_limits<double>::infinity()})});
  region.area = 2;
  image.GetSubsetRegion(region);
  EXPECT_EQ(SubsetOf(image), (std::vector<int>{0, 0}));
}

TEST(ErdasImgSubset, ClearingKeepsTheRunsOfTheRegion) {
  ErdasImg image;
  MakeImage(image, kPackByte, 2, 8, 6);
  image.GetSubset(1, 6, 1, 4);
  image.ClearSubsetRegion(RegionOf({RowOf(1, {2, 4}), RowOf(2, {1, 2, 5, 7}), RowOf(4, {0, 9})}));
  const std::vector<int> expected = {0,  12, 13, 0,  0,  0,   //
                                     21, 0,  0,  0,  25, 26,  //
                                     0,  0,  0,  0,  0,  0,   // a row that the region does not have
                                     41, 42, 43, 44, 45, 46};
  EXPECT_EQ(SubsetOf(image, 0), expected);
  EXPECT_EQ(SubsetOf(image, 1)[1], 112);
  EXPECT_EQ(SubsetOf(image, 1)[0], 0);
}

TEST(ErdasImgSubset, ClearingMakesNoHarmWhereNothingFits) {
  ErdasImg image;
  const ScanRegion region =
      RegionOf({RowOf(1e300, {0, 1}), RowOf(0, {-1e300, 1e300}), RowOf(1, {5, 2, 1, 3})});
  image.ClearSubsetRegion(region);  // no subset
  MakeImage(image, kPackInt32, 1, 4, 4);
  image.GetSubset(0, 3, 0, 3);
  image.m_subsetSize = {1000, 1000};  // more than the buffer has
  image.ClearSubsetRegion(region);
  image.m_subsetSize = {-1, 4};
  image.ClearSubsetRegion(region);
  EXPECT_EQ(PixelsIn<std::int32_t>(image.GetSubsetBands().GetBand(0))[1], 1);
}

TEST(ErdasImgSubset, ExtractSharesThePixelsAndMovesTheStart) {
  ErdasImg image;
  MakeImage(image, kPackInt16, 1, 4, 4);
  image.GetHeader()->xStart = 100;
  image.GetHeader()->yStart = 200;
  ErdasImg dest;
  image.ExtractTo(1, 2, 2, 3, true, dest);
  EXPECT_EQ(dest.GetSize(), (ImageSize{2, 2}));
  EXPECT_EQ(dest.GetStart(), (ImageStart{101, 202}));
  EXPECT_EQ(dest.GetBytesPerPixel(), 2);
  EXPECT_EQ(dest.GetBands()[0], image.GetSubsetBands()[0]);
  EXPECT_EQ(BandPixelsOf<std::int16_t>(dest, 0), (std::vector<std::int16_t>{21, 22, 31, 32}));
  image.ExtractTo(1, 2, 0, 1, false, dest);
  EXPECT_EQ(BandPixelsOf<std::int16_t>(dest, 0), (std::vector<std::int16_t>{31, 32, 21, 22}));
}

TEST(ErdasImgSubset, AnExtractKeepsItsPixelsWhenTheNextWindowIsCut) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 4, 4);
  ErdasImg dest;
  image.ExtractTo(0, 1, 0, 1, true, dest);
  image.GetSubset(2, 3, 2, 3);
  EXPECT_EQ(BandPixelsOf<std::uint8_t>(dest, 0), (std::vector<std::uint8_t>{0, 1, 10, 11}));
}

TEST(ErdasImgSubset, AnExtractOutlivesItsSource) {
  ErdasImg dest;
  {
    auto image = std::make_unique<ErdasImg>();
    MakeImage(*image, kPackByte, 1, 4, 4);
    image->ExtractTo(0, 1, 0, 1, true, dest);
  }
  EXPECT_EQ(BandPixelsOf<std::uint8_t>(dest, 0), (std::vector<std::uint8_t>{0, 1, 10, 11}));
}

TEST(ErdasImgSubset, AnImageMayExtractToItself) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 4, 4);
  image.ExtractTo(1, 3, 1, 3, true, image);
  image.ExtractTo(0, 1, 1, 2, true, image);
  EXPECT_EQ(BandPixelsOf<std::uint8_t>(image, 0), (std::vector<std::uint8_t>{21, 22, 31, 32}));
  EXPECT_EQ(image.GetStart(), (ImageStart{1, 2}));
}

TEST(ErdasImgSubset, AnEmptyWindowLeavesTheOtherImage) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 4, 4);
  ErdasImg dest;
  MakeImage(dest, kPackByte, 1, 2, 1);
  image.ExtractTo(3, 2, 0, 0, true, dest);
  EXPECT_EQ(dest.GetSize(), (ImageSize{2, 1}));
  EXPECT_EQ(BandPixelsOf<std::uint8_t>(dest, 0), (std::vector<std::uint8_t>{0, 1}));
}

TEST(ErdasImgSubset, StartsAreHeldTo32Bits) {
  ErdasImg image;
  MakeImage(image, kPackByte, 1, 4, 4);
  image.GetHeader()->xStart = INT32_MAX;
  image.GetHeader()->yStart = INT32_MIN;
  ErdasImg dest;
  image.ExtractTo(3, 3, -1, -1, true, dest);
  EXPECT_EQ(dest.GetStart(), (ImageStart{INT32_MAX, INT32_MIN}));
}

TEST(ErdasImgSubset, ARandomWindowIsWhatTheSinglePixelsGive) {
  std::mt19937 random(99);
  std::uniform_int_distribution<int> corner(-6, 14);
  ErdasImg image;
  MakeImage(image, kPackFloat, 2, 9, 7);
  for (int trial = 0; trial < 2000; ++trial) {
    const int x0 = corner(random);
    const int x1 = corner(random);
    const int y0 = corner(random);
    const int y1 = corner(random);
    if (x1 < x0 || y1 < y0) continue;
    std::vector<float> expected;
    for (int y = y0; y <= y1; ++y) {
      for (int x = x0; x <= x1; ++x) {
        double value = 0.0;
        image.GetPixel(1, y, x, value);
        expected.push_back(static_cast<float>(value));
      }
    }
    EXPECT_EQ(PixelsIn<float>(image.GetSubset(x0, x1, y0, y1).GetBand(1)), expected);
  }
}

TEST(ErdasImgSubset, RectanglesAreCutToTheImage) {
  ErdasImg image;
  image.SetSize(10, 20);
  image.GetHeader()->xStart = 5;
  image.GetHeader()->yStart = -5;
  ImageRect rect = {0, 0, 100, 100};
  EXPECT_EQ(image.ClipToImage(rect), 1);
  EXPECT_EQ(rect, (ImageRect{5, 0, 14, 14}));
  rect = {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
  EXPECT_EQ(image.ClipToImage(rect), 1);
  EXPECT_EQ(rect, (ImageRect{5, -5, 14, 14}));
  rect = {15, 0, 20, 5};
  EXPECT_EQ(image.ClipToImage(rect), -1);
  EXPECT_GT(rect.left, rect.right);
  image.GetHeader()->xStart = INT32_MAX;
  rect = {0, 0, INT32_MAX, 5};
  EXPECT_EQ(image.ClipToImage(rect), 1);
  EXPECT_EQ(rect, (ImageRect{INT32_MAX, 0, INT32_MAX, 5}));
  image.SetSize(INT32_MIN, 5);
  image.GetHeader()->xStart = INT32_MIN;
  EXPECT_EQ(image.ClipToImage(rect), -1);
}

TEST(ErdasImgSubset, GroundRectanglesAreCutToTheImage) {
  ErdasImg image;
  image.SetSize(10, 20);
  image.GetHeader()->xMap = 1000.0f;
  image.GetHeader()->yMap = 500.0f;
  image.GetHeader()->xCell = 2.0f;
  image.GetHeader()->yCell = -3.0f;
  GroundExtent rect = {0, 0, 9999, 9999};
  image.ClipToExtent(rect);
  EXPECT_EQ(rect, (GroundExtent{1000, 440, 1020, 500}));
  image.GetHeader()->yCell = 3.0f;  // from yMap up
  rect = {1001, 0, 1002, 9999};
  image.ClipToExtent(rect);
  EXPECT_EQ(rect, (GroundExtent{1001, 500, 1002, 560}));
}

}  // namespace
}  // namespace corvane
