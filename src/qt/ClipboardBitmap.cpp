#include "qt/ClipboardBitmap.h"

#include <QPainter>
#include <algorithm>
#include <new>

#include "dib/DibIo.h"

namespace corvane {

namespace {

constexpr QLatin1String kBmp("image/bmp");
constexpr QLatin1String kImage("application/x-qt-image");  // QMimeData's own name for a QImage

// An image of the size of the bitmap, its rows made by `makeRow(row of the bitmap, bytes of the image)`.
template <typename MakeRow>
QImage MakeImage(const Dib& dib, QImage::Format format, const MakeRow& makeRow) {
  QImage image(DibWidth(dib), DibHeight(dib), format);
  for (int y = 0; y < image.height(); ++y) makeRow(DibRow(dib, y), image.scanLine(y));
  return image;
}

// A bitmap with the rows of the image, whose pixels have `nBytes` bytes.
Dib CopyRows(const QImage& image, int nBytes) {
  Dib dib = MakeBlackDib(image.width(), image.height(), 8 * nBytes);
  if (dib.empty()) return dib;
  for (int y = 0; y < image.height(); ++y) {
    std::copy_n(image.constScanLine(y), std::ptrdiff_t{image.width()} * nBytes, DibRow(dib, y).begin());
  }
  return dib;
}

QImage OnWhite(const QImage& image) {
  QImage opaque(image.size(), QImage::Format_RGB32);
  if (opaque.isNull()) return opaque;
  opaque.fill(Qt::white);
  QPainter(&opaque).drawImage(0, 0, image);
  return opaque;
}

}  // namespace

QStringList CBitmapMimeData::formats() const {
  return {kBmp, kImage};
}

bool CBitmapMimeData::hasFormat(const QString& mimeType) const {
  return mimeType == kBmp || mimeType == kImage;
}

QVariant CBitmapMimeData::retrieveData(const QString& mimeType, QMetaType) const {
  try {
    if (mimeType == kBmp) return BmpBytes(dib_);
    if (mimeType == kImage) return ImageOfDib(dib_);
  } catch (const std::bad_alloc&) {  // the program that asks gets nothing
  }
  return {};
}

bool HasBitmap(const QMimeData& data) {
  return data.hasFormat(kBmp) || data.hasImage();
}

Dib BitmapOf(const QMimeData& data) {
  Dib dib = data.hasFormat(kBmp) ? DibOfBmp(data.data(kBmp)) : Dib();
  return dib.empty() && data.hasImage() ? DibOfImage(qvariant_cast<QImage>(data.imageData())) : dib;
}

QByteArray BmpBytes(const Dib& dib) {
  if (!IsDib(dib)) return {};
  const auto header = DibFileHeader(dib);
  QByteArray bytes(static_cast<qsizetype>(header.size() + dib.size()), Qt::Uninitialized);
  std::copy(dib.begin(), dib.end(), std::copy(header.begin(), header.end(), bytes.begin()));
  return bytes;
}

Dib DibOfBmp(const QByteArray& bytes) {
  constexpr auto kHeader = static_cast<qsizetype>(kDibFileHeaderBytes);
  if (bytes.size() <= kHeader) return {};
  const Dib dib(bytes.begin() + kHeader, bytes.end());
  if (IsDib(dib) && bytes.startsWith(QByteArrayView(DibFileHeader(dib)))) return dib;
  return DibOfImage(QImage::fromData(bytes, "BMP"));
}

QImage ImageOfDib(const Dib& dib) {
  if (!IsDib(dib)) return {};
  const DibColours colours(dib);
  const std::int32_t width = DibWidth(dib);
  if (DibBitCount(dib) != 8) {
    return MakeImage(dib, QImage::Format_RGB32, [&](std::span<const std::uint8_t> row, std::uint8_t* bytes) {
      auto* to = reinterpret_cast<QRgb*>(bytes);
      for (std::int32_t x = 0; x < width; ++x) to[x] = 0xff000000 | colours.Get(row, x);
    });
  }
  QImage image = MakeImage(
      dib, QImage::Format_Indexed8,
      [width](std::span<const std::uint8_t> row, std::uint8_t* to) { std::copy_n(row.begin(), width, to); });
  QList<QRgb> palette;
  for (int i = 0; i < 256; ++i) {
    const auto index = static_cast<std::uint8_t>(i);
    palette.append(0xff000000 | colours.Get({&index, 1}, 0));
  }
  image.setColorTable(palette);
  return image;
}

Dib DibOfImage(const QImage& image) {
  if (image.hasAlphaChannel()) return DibOfImage(OnWhite(image));
  if (image.depth() <= 8 && image.allGray()) {
    return CopyRows(image.convertToFormat(QImage::Format_Grayscale8), 1);
  }
  return CopyRows(image.convertToFormat(QImage::Format_BGR888), 3);  // the order of a bitmap's bytes
}

}  // namespace corvane
