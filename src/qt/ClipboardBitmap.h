#pragma once

#include <QImage>
#include <QMimeData>

#include "dib/Dib.h"

namespace corvane {

// A bitmap as other programs see it on the clipboard: as the bytes of a .bmp file, with every pixel and
// colour as it is, and as an image in any format that they ask for, which is made then.
class CBitmapMimeData : public QMimeData {
 public:
  explicit CBitmapMimeData(Dib dib) : dib_(std::move(dib)) {}

  QStringList formats() const override;
  bool hasFormat(const QString& mimeType) const override;

 protected:
  QVariant retrieveData(const QString& mimeType, QMetaType type) const override;

 private:
  Dib dib_;
};

bool HasBitmap(const QMimeData& data);
// The bitmap that a program has put on the clipboard, from its .bmp bytes where it offers them. Empty if
// there is none, or none that can be read.
Dib BitmapOf(const QMimeData& data);

// The bytes of a .bmp file of the bitmap, and the other way. A file that holds no packed bitmap as it is used
// here, a compressed one for instance, comes as what it looks like; empty for what is no .bmp file.
QByteArray BmpBytes(const Dib& dib);
Dib DibOfBmp(const QByteArray& bytes);

// What a bitmap looks like. A null image for what is no bitmap, or without memory.
QImage ImageOfDib(const Dib& dib);

// A bitmap of 8 bits and greys for an image of at most 8 bits that is all grey, of 24 bits for any other one.
// What is transparent becomes white. Empty for a null image, or without memory.
Dib DibOfImage(const QImage& image);

}  // namespace corvane
