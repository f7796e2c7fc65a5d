#include "qt/GraphWindow.h"

#include <QAction>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QToolBar>
#include <QVBoxLayout>

#include "picture/Picture.h"
#include "plot/GraphCsv.h"
#include "qt/PlotPane.h"
#include "qt/QtText.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr double kKeyZoom = 1.25;
constexpr int kKeyStep = 40;           // pixels
constexpr double kPictureScale = 2.0;  // a saved picture is fine enough to be printed
constexpr const char* kHint =
    "Wheel: zoom \u00b7 Drag: move \u00b7 Right drag: rectangle \u00b7 Double click: all";
constexpr const char* kLongHint =
    "Wheel: zoom, over the numbers of an axis along it\n"
    "Drag: move\n"
    "Right drag, Shift+drag: zoom to a rectangle\n"
    "Double click, Home: show all curves\n"
    "Up, Down, Left, Right: zoom and move\n"
    "Esc: hide";

// A label that gives way where there is little room.
QLabel* MakeHint() {
  auto* hint = new QLabel(kHint);
  hint->setObjectName("hint");
  hint->setToolTip(kLongHint);
  hint->setForegroundRole(QPalette::PlaceholderText);
  hint->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  hint->setIndent(8);
  return hint;
}

}  // namespace

CGraphWindow::CGraphWindow(const GraphView& graph, Browser browse, QWidget* parent)
    : QWidget(parent), graph_(&graph), browse_(std::move(browse)), pane_(new CPlotPane) {
  setAutoFillBackground(true);
  AddItem("Reset", "Show all curves (double click, Home)", &CGraphWindow::Reset);
  AddItem("Save as PNG...", "Save what shows as a picture", &CGraphWindow::SaveAsPng);
  AddItem("Save as CSV...", "Save the points of all curves as a text", &CGraphWindow::SaveAsCsv);
  AddItem("Hide", "Show the TIN under the graph (Esc)", &CGraphWindow::Hide);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(MakeToolRow());
  layout->addWidget(pane_, 1);
  pane_->onMenu = [this](QPoint place) { ShowMenu(place); };
  Plot(-1);
}

void CGraphWindow::AddItem(const QString& text, const QString& tip, void (CGraphWindow::*run)()) {
  auto* action = new QAction(text, this);
  action->setToolTip(tip);
  action->setStatusTip(tip);
  connect(action, &QAction::triggered, this, run);
  items_.push_back(action);
}

QWidget* CGraphWindow::MakeToolRow() {
  auto* buttons = new QToolBar;
  buttons->setToolButtonStyle(Qt::ToolButtonTextOnly);
  for (QAction* item : items_) buttons->addAction(item);
  auto* row = new QWidget;
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 4, 0);
  layout->addWidget(buttons);
  layout->addWidget(MakeHint(), 1);
  return row;
}

void CGraphWindow::ShowMenu(QPoint place) {
  QMenu menu(this);
  for (QAction* item : items_) menu.addAction(item);
  menu.exec(place);
}

void CGraphWindow::Plot(int element) {
  if (graph_) pane_->Plot(*graph_, element);
}

bool CGraphWindow::OnKey(int key) {
  switch (key) {
    case Qt::Key_Up:
      pane_->ZoomAtCentre(1.0 / kKeyZoom);
      return true;
    case Qt::Key_Down:
      pane_->ZoomAtCentre(kKeyZoom);
      return true;
    case Qt::Key_Left:
      pane_->Move({kKeyStep, 0});
      return true;
    case Qt::Key_Right:
      pane_->Move({-kKeyStep, 0});
      return true;
    case Qt::Key_Home:
      Reset();
      return true;
    case Qt::Key_Escape:
      Hide();
      return true;
    default:
      return false;
  }
}

void CGraphWindow::Reset() {
  pane_->FitAxes();
}

void CGraphWindow::SaveAsPng() {
  const auto path = AskPath("PNG Images", ".png");
  if (!path) return;
  const WaitCursor wait;
  if (!WritePng(pane_->DrawPicture(pane_->size(), kPictureScale), *path)) ShowWarning(WriteErrorText(*path));
}

void CGraphWindow::SaveAsCsv() {
  const auto path = AskPath("Comma-Separated Values", ".csv");
  if (!path || !graph_) return;
  const WaitCursor wait;
  if (!WriteGraphCsv(graph_->GetElements(), *path)) ShowWarning(WriteErrorText(*path));
}

void CGraphWindow::Hide() {
  if (onHide) onHide();
}

std::optional<std::string> CGraphWindow::AskPath(const std::string& kind, const std::string& extension) {
  if (!graph_) return std::nullopt;
  FileChooser chooser;
  chooser.mode = FileChooser::Mode::Save;
  chooser.filter = kind + " (*" + extension + ")|*" + extension + "|All Files (*.*)|*.*|";
  chooser.defaultExtension = extension;
  chooser.defaultName = graph_->GetTitle() + extension;
  chooser.title = "Save Graph";
  return browse_(chooser);
}

}  // namespace corvane
