// The main window's standard items.

#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMessageBox>
#include <QStatusBar>
#include <QToolBar>
#include <new>

#include "qt/Icons.h"
#include "qt/MainWindow.h"
#include "qt/QtText.h"

namespace corvane {

namespace {

constexpr const char* kAboutText = "Corvane Version 1.0";

constexpr int kHelpWidth = 660;  // pixels
constexpr const char* kHelpText =
    "<p>The user's guide stands in the folder <b>docs</b> of Corvane's sources. The status bar tells what "
    "each "
    "menu item does.</p>"
    "<p><b>In the window of a TIN</b></p>"
    "<table cellspacing='0' cellpadding='3'>"
    "<tr><td>Up, Down</td><td>zoom in, zoom out (also Ctrl + wheel)</td></tr>"
    "<tr><td>Left, Right, Page Up, Page Down, wheel</td><td>scroll</td></tr>"
    "<tr><td>Home, End</td><td>to the top left, to the bottom right</td></tr>"
    "<tr><td>drag with the left or middle button</td><td>pan</td></tr>"
    "<tr><td>A, D</td><td>exam point west, east</td></tr>"
    "<tr><td>S, E</td><td>exam point south, north</td></tr>"
    "<tr><td>G</td><td>enter the exam point</td></tr>"
    "<tr><td>wheel, with an exam open</td><td>exam point up, down</td></tr>"
    "<tr><td>menu of the right button</td><td>show the hidden graph</td></tr>"
    "<tr><td>F6, Shift + F6</td><td>next window, previous window</td></tr>"
    "<tr><td>Ctrl + W, Ctrl + F4</td><td>close the window</td></tr>"
    "</table>"
    "<p><b>In the window of an image</b></p>"
    "<table cellspacing='0' cellpadding='3'>"
    "<tr><td>wheel</td><td>zoom around the pointer</td></tr>"
    "<tr><td>+, -, Ctrl + 1</td><td>zoom around the centre, back to 1:1</td></tr>"
    "<tr><td>drag with the left or middle button</td><td>pan</td></tr>"
    "<tr><td>arrows, Page Up, Page Down</td><td>scroll; over polylines the arrows move the "
    "first one's start</td></tr>"
    "<tr><td>Shift + wheel</td><td>scroll sideways</td></tr>"
    "<tr><td>Home, End</td><td>to the top left, to the bottom right</td></tr>"
    "<tr><td>L</td><td>show or hide labels</td></tr>"
    "<tr><td>Ctrl + C, Ctrl + V</td><td>copy the image, paste another in its place</td></tr>"
    "</table>"
    "<p><b>In a graph</b></p>"
    "<table cellspacing='0' cellpadding='3'>"
    "<tr><td>wheel</td><td>zoom around the pointer; over the numbers of an axis along it</td></tr>"
    "<tr><td>Up, Down</td><td>zoom around the centre</td></tr>"
    "<tr><td>drag with the left button, Left, Right</td><td>move</td></tr>"
    "<tr><td>drag with the right button, Shift + drag</td><td>zoom to a rectangle; a thin one along its "
    "long side</td></tr>"
    "<tr><td>double click, Home</td><td>show all curves</td></tr>"
    "<tr><td>click with the right button</td><td>save as PNG or CSV, hide</td></tr>"
    "<tr><td>Esc</td><td>hide the graph</td></tr>"
    "</table>";

}  // namespace

bool CMainWindow::RunViewItem(const std::string& name) {
  static constexpr struct {
    const char* name;
    EditItem item;
  } kEditItems[] = {{"Edit > Copy", EditItem::Copy}, {"Edit > Paste", EditItem::Paste}};
  static constexpr struct {
    const char* name;
    ZoomItem item;
  } kZoomItems[] = {{"View > Zoom In", ZoomItem::In},
                    {"View > Zoom Out", ZoomItem::Out},
                    {"View > Zoom 1:1", ZoomItem::OneToOne},
                    {"View > Zoom 1:5", ZoomItem::OneToFive}};
  CView* view = app_.GetMainFrame().GetActiveView();
  for (const auto& entry : kEditItems) {
    if (name != entry.name) continue;
    try {
      if (view) view->OnEditItem(entry.item);
    } catch (const std::bad_alloc&) {
      ShowMessage("Out of memory.");
    }
    Refresh();
    return true;
  }
  for (const auto& entry : kZoomItems) {
    if (name != entry.name) continue;
    if (view) view->OnZoomItem(entry.item);
    if (view) ShowScale(*view);
    return true;
  }
  return false;
}

void CMainWindow::PrintPicture() {
  printing_.Print(*app_.GetMainFrame().GetActiveView(), this);
}

void CMainWindow::PreviewPicture() {
  printing_.Preview(*app_.GetMainFrame().GetActiveView(), this);
}

void CMainWindow::SetUpPrinter() {
  printing_.SetUp(this);
}

void CMainWindow::Exit() {
  close();
}

void CMainWindow::ShowToolBar() {
  toolBar_->setVisible(menus_->Find("View > Toolbar")->isChecked());
}

void CMainWindow::ShowStatusBar() {
  statusBar()->setVisible(menus_->Find("View > Status Bar")->isChecked());
}

void CMainWindow::OpenNewWindow() {
  if (CDocument* document = app_.GetMainFrame().GetActiveDocument()) document->AddView();
}

void CMainWindow::Cascade() {
  area_->cascadeSubWindows();
}

void CMainWindow::Tile() {
  area_->tileSubWindows();
}

// Rows of icons from the bottom left corner upwards.
void CMainWindow::ArrangeIcons() {
  const QSize area = area_->viewport()->size();
  QPoint next(0, area.height());
  for (QMdiSubWindow* icon : area_->subWindowList(QMdiArea::CreationOrder)) {
    if (!icon->isMinimized()) continue;
    if (next.x() > 0 && next.x() + icon->width() > area.width()) next = {0, next.y() - icon->height()};
    icon->move(next.x(), next.y() - icon->height());
    next.rx() += icon->width();
  }
}

void CMainWindow::ActivateNext() {
  area_->activateNextSubWindow();
}

void CMainWindow::ActivatePrevious() {
  area_->activatePreviousSubWindow();
}

void CMainWindow::CloseActiveWindow() {
  area_->closeActiveSubWindow();
}

void CMainWindow::ListWindows() {
  qDeleteAll(windowActions_);
  windowActions_.clear();
  QMenu& menu = *menus_->GetWindowMenu();
  windowActions_.push_back(menu.addSeparator());
  int number = 0;
  for (QMdiSubWindow* subWindow : area_->subWindowList(QMdiArea::CreationOrder)) {
    const QString title = subWindow->windowTitle().remove("[*]").replace('&', "&&");
    const QString key = ++number <= 9 ? "&" : "";
    QAction* action = menu.addAction(key + QString::number(number) + " " + title);
    action->setStatusTip("Activate this window");
    action->setCheckable(true);
    action->setChecked(subWindow == area_->currentSubWindow());
    connect(action, &QAction::triggered, subWindow, [this, subWindow] {
      if (subWindow->isMinimized()) subWindow->showNormal();
      area_->setActiveSubWindow(subWindow);
    });
    windowActions_.push_back(action);
  }
}

void CMainWindow::ShowHelpTopics() {
  QMessageBox box(QMessageBox::Information, "Help Topics", kHelpText, QMessageBox::Ok, this);
  box.setTextFormat(Qt::RichText);
  box.findChild<QLabel*>("qt_msgbox_label")->setMinimumWidth(kHelpWidth);  // no line of the table wraps
  box.exec();
}

void CMainWindow::ShowAbout() {
  QMessageBox box(QMessageBox::NoIcon, "About Corvane", kAboutText, QMessageBox::Ok, this);
  box.setIconPixmap(ProgramIcon().pixmap(64, 64));
  box.exec();
}

}  // namespace corvane
