#pragma once

#include <string>

#include "TIN/TIN.h"
#include "shell/Document.h"

namespace corvane {

class InputFile;

// The TIN document.
class CCorvaneDoc : public CDocument {
 public:
  using CDocument::CDocument;

  TIN& GetTIN() { return tin; }

  // 1 when the flow has run to its end, -1 if the file does not open. A TIN that does not read has been
  // reported and leaves the document empty.
  int OnOpenDocument(const std::string& path) override;

  bool HasContent() const override { return tin.GetTriangleCount() >= 1; }

  // Writes the .tin and, beside it, all vertices as "_filted.pts". 1 on success; 0 if the .tin, -1 or -2 if
  // the points could not be written, each reported. A file that is there and did not read when it was opened
  // is not overwritten: what it holds may still be rescued by other means.
  int OnSaveDocument(const std::string& path) override;

  TIN tin;

 private:
  std::string unreadPath_;  // the file that was opened and did not read, "" for none

  int ReadAndStore(InputFile& file);
  bool SaveTin(const std::string& path);
  int SavePoints(const std::string& path);
};

}  // namespace corvane
