#pragma once

#include <functional>
#include <memory>
#include <string>

#include "shell/Document.h"
#include "shell/View.h"
#include "ui/FileChooser.h"

namespace corvane {

// A document kind: its strings, and how its document and view are made.
class CDocTemplate {
 public:
  using DocumentFactory = std::function<std::unique_ptr<CDocument>(CMainFrame&)>;
  using ViewFactory = std::function<std::unique_ptr<CView>(CDocument&)>;

  // `strings` holds the template's texts, a line each: window title, document name, name for File New,
  // filter name, filter extension, type id, type name.
  CDocTemplate(int resourceId, const std::string& strings, DocumentFactory makeDocument,
               ViewFactory makeView);

  // The template's place among the program's resources: 129 for the TIN, 130 for the image.
  int GetResourceId() const { return resourceId_; }

  const std::string& GetDocumentName() const { return documentName_; }
  const std::string& GetFilterName() const { return filterName_; }
  const std::string& GetFilterExtension() const { return filterExtension_; }

  // The chooser of File Open and File Save As for this kind.
  FileChooser MakeChooser(FileChooser::Mode mode, const std::string& defaultName) const;

  std::unique_ptr<CDocument> MakeDocument(CMainFrame& frame) const;
  std::unique_ptr<CView> MakeView(CDocument& document) const { return makeView_(document); }

 private:
  int resourceId_;
  std::string documentName_;
  std::string filterName_;
  std::string filterExtension_;
  DocumentFactory makeDocument_;
  ViewFactory makeView_;
};

}  // namespace corvane
