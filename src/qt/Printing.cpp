#include "qt/Printing.h"

#include <QPageSetupDialog>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>

#include "picture/QtCanvas.h"
#include "qt/QtText.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// Lines are one printer dot wide: coarse enough to be seen.
constexpr int kDotsPerInch = 200;

}  // namespace

CPrinting::CPrinting() = default;
CPrinting::~CPrinting() = default;

QPrinter& CPrinting::GetPrinter() {
  if (!printer_) {
    printer_ = std::make_unique<QPrinter>();
    printer_->setResolution(kDotsPerInch);
  }
  return *printer_;
}

void CPrinting::Print(WindowView& view, QWidget* parent) {
  GetPrinter().setDocName(Shown(view.GetTitle()));  // the dialog shows it
  QPrintDialog dialog(&GetPrinter(), parent);
  dialog.setWindowTitle("Print");
  if (dialog.exec() != QDialog::Accepted) return;
  bool printed = false;
  {
    WaitCursor wait;
    printed = DrawPage(view, GetPrinter());
  }
  if (!printed) ShowWarning("The page could not be printed.");
}

void CPrinting::Preview(WindowView& view, QWidget* parent) {
  GetPrinter().setDocName(Shown(view.GetTitle()));
  QPrintPreviewDialog dialog(&GetPrinter(), parent);
  dialog.setWindowTitle("Print Preview");
  dialog.resize(parent->size() * 4 / 5);
  QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog, [&view](QPrinter* printer) {
    WaitCursor wait;
    DrawPage(view, *printer);
  });
  dialog.exec();
}

void CPrinting::SetUp(QWidget* parent) {
  QPageSetupDialog dialog(&GetPrinter(), parent);
  dialog.setWindowTitle("Print Setup");
  dialog.exec();
}

bool DrawPage(WindowView& view, QPrinter& printer) {
  const PixelSize picture = view.GetPictureSize();
  QPainter painter;
  if (picture.width < 1 || picture.height < 1 || !painter.begin(&printer)) return false;
  const QRect page = painter.viewport();
  const double scale = std::min(static_cast<double>(page.width()) / picture.width,
                                static_cast<double>(page.height()) / picture.height);
  painter.translate((page.width() - picture.width * scale) / 2, (page.height() - picture.height * scale) / 2);
  painter.scale(scale, scale);
  painter.setRenderHint(QPainter::SmoothPixmapTransform, scale < 1.0);  // enlarged pixels stay crisp
  QtCanvas canvas(painter, {0, 0, picture.width, picture.height});
  view.DrawPicture(canvas);
  return painter.end();
}

}  // namespace corvane
