#include "qt/Printing.h"

#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>

#include "picture/QtCanvas.h"
#include "qt/QtText.h"

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
  QPrintDialog dialog(&GetPrinter(), parent);
  dialog.setWindowTitle("Print");
  GetPrinter().setDocName(Shown(view.GetTitle()));
  if (dialog.exec() == QDialog::Accepted) DrawPage(view, GetPrinter());
}

void CPrinting::Preview(WindowView& view, QWidget* parent) {
  QPrintPreviewDialog dialog(&GetPrinter(), parent);
  dialog.setWindowTitle("Print Preview");
  dialog.resize(parent->size() * 4 / 5);
  QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                   [&view](QPrinter* printer) { DrawPage(view, *printer); });
  dialog.exec();
}

void CPrinting::SetUp(QWidget* parent) {
  QPrintDialog dialog(&GetPrinter(), parent);
  dialog.setWindowTitle("Print Setup");
  dialog.exec();
}

void DrawPage(WindowView& view, QPrinter& printer) {
  const PixelSize picture = view.GetPictureSize();
  QPainter painter;
  if (picture.width < 1 || picture.height < 1 || !painter.begin(&printer)) return;
  const QRect page = painter.viewport();
  const double scale = std::min(static_cast<double>(page.width()) / picture.width,
                                static_cast<double>(page.height()) / picture.height);
  painter.translate((page.width() - picture.width * scale) / 2, (page.height() - picture.height * scale) / 2);
  painter.scale(scale, scale);
  QtCanvas canvas(painter, {0, 0, picture.width, picture.height});
  view.DrawPicture(canvas);
}

}  // namespace corvane
