#include "qt/ClipboardBitmap.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <cstring>

#include "qt/QtFrontEnd.h"

namespace corvane {

namespace {

// A bitmap of 5 x 3 whose bytes count up.
Dib CountingDib(int bitCount) {
  Dib dib = MakeBlackDib(5, 3, bitCount);
  std::uint8_t next = 1;
  for (std::int32_t y = 0; y < 3; ++y) {
    for (std::int64_t x = 0; x < 5 * bitCount / 8; ++x) DibRow(dib, y)[static_cast<std::size_t>(x)] = next++;
  }
  return dib;
}

QByteArray EncodedAs(const QImage& image, const char* format) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  image.save(&buffer, format);
  return bytes;
}

TEST(ClipboardBitmap, ComesBackByteForByte) {
  QtFrontEnd frontEnd;
  for (const int bitCount : {1, 4, 8, 16, 24, 32}) {
    Dib dib = CountingDib(bitCount);
    if (bitCount == 8) dib[40] = 77;  // a palette of its own
    frontEnd.PutBitmap(dib);
    EXPECT_TRUE(frontEnd.HasBitmap());
    EXPECT_EQ(frontEnd.GetBitmap(), dib) << bitCount;
  }
}

TEST(ClipboardBitmap, OtherProgramsGetABmpFileAndAnImage) {
  QtFrontEnd frontEnd;
  const Dib dib = CountingDib(24);
  frontEnd.PutBitmap(dib);
  const QMimeData& data = *QApplication::clipboard()->mimeData();
  const QByteArray bytes = data.data("image/bmp");
  ASSERT_EQ(bytes.size(), 14 + 40 + 3 * 16);
  EXPECT_EQ(bytes.left(2), "BM");
  EXPECT_EQ(static_cast<unsigned char>(bytes[2]), 14 + 40 + 3 * 16);
  EXPECT_EQ(static_cast<unsigned char>(bytes[10]), 14 + 40);
  EXPECT_EQ(std::memcmp(bytes.data() + 14, dib.data(), dib.size()), 0);
  // The same in the eyes of another reader of such files.
  const QImage read = QImage::fromData(bytes, "BMP").convertToFormat(QImage::Format_RGB32);
  EXPECT_EQ(qvariant_cast<QImage>(data.imageData()), read);
  EXPECT_EQ(read.pixel(0, 0), qRgb(3, 2, 1)) << "blue comes first";
  EXPECT_EQ(read.pixel(4, 2), qRgb(45, 44, 43));
}

TEST(ClipboardBitmap, ImageOfEveryDepthLooksAsItsBmpFileDoes) {
  for (const int bitCount : {1, 4, 8, 24, 32}) {
    const Dib dib = CountingDib(bitCount);
    const QImage read = QImage::fromData(BmpBytes(dib), "BMP").convertToFormat(QImage::Format_RGB32);
    ASSERT_FALSE(read.isNull());
    EXPECT_EQ(ImageOfDib(dib).convertToFormat(QImage::Format_RGB32), read) << bitCount;
  }
  Dib dib = MakeBlackDib(2, 1, 16);
  DibRow(dib, 0)[2] = 0xff;
  DibRow(dib, 0)[3] = 0x7f;
  EXPECT_EQ(ImageOfDib(dib).pixel(0, 0), qRgb(0, 0, 0));
  EXPECT_EQ(ImageOfDib(dib).pixel(1, 0), qRgb(255, 255, 255));
}

TEST(ClipboardBitmap, EmptyClipboardAndTextHaveNone) {
  QtFrontEnd frontEnd;
  QApplication::clipboard()->clear();
  EXPECT_FALSE(frontEnd.HasBitmap());
  EXPECT_TRUE(frontEnd.GetBitmap().empty());
  QApplication::clipboard()->setText("text");
  EXPECT_FALSE(frontEnd.HasBitmap());
  EXPECT_TRUE(frontEnd.GetBitmap().empty());
}

TEST(ClipboardBitmap, ColourImageComesWith24Bits) {
  QtFrontEnd frontEnd;
  QImage image(3, 2, QImage::Format_RGB32);
  image.fill(QColor(10, 20, 30));
  image.setPixel(2, 0, qRgb(40, 50, 60));
  QApplication::clipboard()->setImage(image);
  EXPECT_TRUE(frontEnd.HasBitmap());
  const Dib dib = frontEnd.GetBitmap();
  ASSERT_TRUE(IsDib(dib));
  EXPECT_EQ(DibBitCount(dib), 24);
  EXPECT_EQ(DibWidth(dib), 3);
  EXPECT_EQ(DibHeight(dib), 2);
  std::uint8_t color[3];
  EXPECT_EQ(GetPixelColor(dib, 2, 0, color), 3);
  EXPECT_EQ(color[0], 60);
  EXPECT_EQ(color[1], 50);
  EXPECT_EQ(color[2], 40);
  GetPixelColor(dib, 2, 1, color);
  EXPECT_EQ(color[0], 30);
}

TEST(ClipboardBitmap, GreyImageComesWith8Bits) {
  QImage grey(3, 2, QImage::Format_Grayscale8);
  grey.fill(100);
  grey.bits()[1] = 250;
  for (const QImage& image : {grey, grey.convertToFormat(QImage::Format_Indexed8)}) {
    const Dib dib = DibOfImage(image);
    EXPECT_EQ(DibBitCount(dib), 8);
    EXPECT_EQ(DibRow(dib, 0)[0], 100);
    EXPECT_EQ(DibRow(dib, 0)[1], 250);
    EXPECT_EQ(DibColours(dib).Get(DibRow(dib, 0), 1), 0xfafafau);
  }
  QImage colours = grey.convertToFormat(QImage::Format_Indexed8);
  colours.setColor(100, qRgb(100, 0, 0));
  EXPECT_EQ(DibBitCount(DibOfImage(colours)), 24);
}

TEST(ClipboardBitmap, TransparentPixelsBecomeWhite) {
  QImage image(2, 1, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  image.setPixelColor(1, 0, QColor(1, 2, 3));
  const Dib dib = DibOfImage(image);
  EXPECT_EQ(DibColours(dib).Get(DibRow(dib, 0), 0), 0xffffffu);
  EXPECT_EQ(DibColours(dib).Get(DibRow(dib, 0), 1), 0x010203u);
}

TEST(ClipboardBitmap, WhatCanNotBeReadIsNone) {
  EXPECT_TRUE(DibOfBmp("").empty());
  EXPECT_TRUE(DibOfBmp("BM").empty());
  EXPECT_TRUE(DibOfBmp(QByteArray(14, 'B')).empty());
  EXPECT_TRUE(DibOfBmp("BM" + QByteArray(1000, '\xff')).empty());
  const QByteArray whole = BmpBytes(CountingDib(8));
  EXPECT_TRUE(DibOfBmp(whole.left(60)).empty());
  EXPECT_TRUE(BmpBytes({}).isEmpty());
  EXPECT_TRUE(ImageOfDib({}).isNull());
  EXPECT_TRUE(DibOfImage(QImage()).empty());
}

// Qt writes rows bottom-up with a header of 40 bytes; a gap before the pixels is another program's way.
TEST(ClipboardBitmap, BmpFilesOfOtherShapesComeAsWhatTheyLookLike) {
  const Dib dib = CountingDib(24);
  QByteArray bytes = BmpBytes(dib);
  bytes.insert(14 + 40, QByteArray(2, '\0'));
  bytes[10] = static_cast<char>(bytes[10] + 2);
  EXPECT_EQ(DibColours(dib).Get(DibRow(dib, 1), 2), DibColours(dib).Get(DibRow(DibOfBmp(bytes), 1), 2));
  QImage image(4, 4, QImage::Format_RGB32);
  image.fill(QColor(9, 8, 7));
  const Dib other = DibOfBmp(EncodedAs(image, "BMP"));
  EXPECT_EQ(DibColours(other).Get(DibRow(other, 3), 3), 0x090807u);
}

// A program that offers a picture in a format of its own, and a .bmp that is none.
TEST(ClipboardBitmap, BrokenBmpBytesGiveWayToTheImage) {
  QMimeData data;
  QImage image(4, 4, QImage::Format_RGB32);
  image.fill(QColor(9, 8, 7));
  data.setImageData(image);
  data.setData("image/bmp", "broken");
  const Dib dib = BitmapOf(data);
  EXPECT_EQ(DibColours(dib).Get(DibRow(dib, 3), 3), 0x090807u);
}

}  // namespace

}  // namespace corvane
