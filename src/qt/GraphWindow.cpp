#include "qt/GraphWindow.h"

#include <QAction>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QToolBar>
#include <QVBoxLayout>
#include <algorithm>

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
    "Wheel: zoom around the pointer, over the numbers of an axis along it\n"
    "Up, Down: zoom around the centre\n"
    "Drag, Left, Right: move\n"
    "Right drag, Shift+drag: zoom to a rectangle, a thin one along its long side\n"
    "Double click, Home: show all curves\n"
    "Esc: hide";
constexpr int kHintIndent = 8;

// A label that gives way: it shows as much of the hint as there is room for.
class CHint : public QLabel {
 public:
  CHint() {
    setObjectName("hint");
    setToolTip(kLongHint);
    setForegroundRole(QPalette::PlaceholderText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    setIndent(kHintIndent);
  }

 protected:
  void resizeEvent(QResizeEvent*) override {
    const int room = contentsRect().width() - kHintIndent;
    setText(fontMetrics().elidedText(kHint, Qt::ElideRight, std::max(room, 0)));
  }
};

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
  layout->addWidget(new CHint, 1);
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
  Save(png_, [this](const std::string& path) {
    return WritePng(pane_->DrawPicture(pane_->size(), kPictureScale), path);
  });
}

void CGraphWindow::SaveAsCsv() {
  Save(csv_, [this](const std::string& path) { return WriteGraphCsv(graph_->GetElements(), path); });
}

void CGraphWindow::Save(FileKind& kind, const std::function<bool(const std::string& path)>& write) {
  const auto path = AskPath(kind);
  if (!path || !graph_) return;
  WaitCursor wait;
  const bool saved = write(*path);
  wait.End();
  kind.failedPath = saved ? "" : *path;
  if (saved) {
    Ui().SetStatusText(0, "Saved " + *path);
  } else {
    ShowWarning(WriteErrorText(*path));
  }
}

void CGraphWindow::Hide() {
  if (!onHide) return;
  onHide();
  Ui().SetStatusText(0, "Graph hidden; the right-button menu shows it again");
}

std::optional<std::string> CGraphWindow::AskPath(const FileKind& kind) {
  if (!graph_) return std::nullopt;
  const std::string& extension = kind.extension;
  FileChooser chooser;
  chooser.mode = FileChooser::Mode::Save;
  chooser.filter = kind.name + " (*" + extension + ")|*" + extension + "|All Files (*.*)|*.*|";
  chooser.defaultExtension = extension;
  chooser.defaultName = kind.failedPath.empty() ? graph_->GetTitle() + extension : kind.failedPath;
  chooser.title = "Save Graph";
  return browse_(chooser);
}

}  // namespace corvane
