#pragma once

#include <string>

#include "dib/Dib.h"
#include "shell/Document.h"
#include "ui/WindowView.h"

namespace corvane {

// The bitmap document: a picture in a window of its own, with overlays that commands fill.
class CDibDoc : public CDocument {
 public:
  using CDocument::CDocument;

  const Dib& GetDib() const { return dib_; }  // empty without a bitmap

  // Takes a bitmap in place of the one that is there, which shows no image file; the views see it.
  void SetDib(Dib dib);

  // The bitmap's size, or that of the empty picture.
  PixelSize GetSize() const { return size_; }
  // Makes room for overlays without a bitmap.
  void SetEmptySize(PixelSize size);

  // The image file that the bitmap was read from, which saving does not write over; "" if there is none.
  const std::string& GetImagePath() const { return imagePath_; }
  void SetImagePath(const std::string& path) { imagePath_ = path; }

  // Reads a .bmp. One that can't be read has been told and leaves the document empty: -1 then.
  int OnOpenDocument(const std::string& path) override;
  bool HasContent() const override { return !dib_.empty(); }

  // The title's with ".bmp" for its extension: an image that a command showed is not written over.
  std::string GetSuggestedName() const override;

  // Writes a .bmp: 1, or 0, which has been told.
  int OnSaveDocument(const std::string& path) override;

 private:
  Dib dib_;
  PixelSize size_;
  std::string imagePath_;
};

}  // namespace corvane
