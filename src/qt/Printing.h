#pragma once

#include <memory>

#include "ui/WindowView.h"

class QPrinter;
class QWidget;

namespace corvane {

// Prints a view's picture, fitted to the page. The printer and its settings last as long as the object.
class CPrinting {
 public:
  CPrinting();
  ~CPrinting();

  // Each shows the desktop's own dialog first.
  void Print(WindowView& view, QWidget* parent);
  void Preview(WindowView& view, QWidget* parent);
  void SetUp(QWidget* parent);

 private:
  QPrinter& GetPrinter();

  std::unique_ptr<QPrinter> printer_;  // made when first needed: looking for printers takes time
};

// Draws the picture on one page, as large as fits, centred. False if there is no picture, or the printer
// takes none.
bool DrawPage(WindowView& view, QPrinter& printer);

}  // namespace corvane
