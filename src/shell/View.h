#pragma once

#include <string>

#include "ui/WindowView.h"

namespace corvane {

class CDocument;

// A view on a document, in a window of its own.
class CView : public WindowView {
 public:
  explicit CView(CDocument& document) : document_(document) {}

  std::string GetTitle() const override;  // the document's; numbered where it has several windows
  PixelSize GetScrollSize() const override { return scrollSize_; }
  PixelPoint GetScrollPosition() const override { return scrollPosition_; }
  void SetScrollPosition(PixelPoint position) override;

  // Once, before the window shows.
  virtual void OnInitialUpdate() {}
  // After the document has changed.
  virtual void OnUpdate() {}

  // Asks for a new painting, soon or before the call returns.
  void Invalidate();
  void UpdateWindow();

  CDocument& GetDocumentBase() const { return document_; }

 protected:
  // Takes the new extent of the content and keeps the relative place of the scroll position.
  void SetScrollSize(PixelSize size);

 private:
  CDocument& document_;
  PixelSize scrollSize_{100, 100};
  PixelPoint scrollPosition_;
};

}  // namespace corvane
