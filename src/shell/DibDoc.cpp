#include "shell/DibDoc.h"

#include "dib/DibIo.h"
#include "io/Paths.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

void CDibDoc::SetDib(Dib dib) {
  dib_ = std::move(dib);
  size_ = {DibWidth(dib_), DibHeight(dib_)};
  imagePath_.clear();
  UpdateAllViews();
}

void CDibDoc::SetEmptySize(PixelSize size) {
  dib_.clear();
  size_ = size;
  imagePath_.clear();
  UpdateAllViews();
}

int CDibDoc::OnOpenDocument(const std::string& path) {
  Dib dib;
  const int status = ReadDib(path, dib);
  SetDib(std::move(dib));
  SetModifiedFlag(false);
  return status == 1 ? 1 : -1;
}

int CDibDoc::OnSaveDocument(const std::string& path) {
  if (dib_.empty()) {
    ShowWarning(WriteErrorText(path) + "\nThere is no picture to save.");
    return 0;
  }
  if (WriteDib(dib_, path) != 1) return 0;
  SetModifiedFlag(false);
  return 1;
}

std::string CDibDoc::GetSuggestedName() const {
  return FileTitle(GetTitle()) + ".bmp";
}

}  // namespace corvane
