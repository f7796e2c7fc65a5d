#include "qt/MainWindow.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QEventLoop>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QScopedValueRollback>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <algorithm>
#include <chrono>

#include "io/NumberText.h"
#include "qt/Icons.h"
#include "qt/QtText.h"
#include "qt/ViewWindow.h"
#include "shell/ChildFrm.h"
#include "shell/CorvaneView.h"

namespace corvane {

namespace {

constexpr const char* kProgramName = "Corvane";
constexpr const char* kClose = "File > Close";
constexpr QSize kFirstSize(1180, 800);

constexpr std::chrono::milliseconds kUncoverTime(30);

// New windows stand one step further down and to the right than the one before, over and over.
constexpr int kCascadeStep = 26;  // pixels
constexpr int kCascadeLength = 6;

// The frame of a view's window. Closing it is the application's to decide.
class CSubWindow : public QMdiSubWindow {
 public:
  CSubWindow(CViewWindow* window, std::function<void()> onClose) : onClose_(std::move(onClose)) {
    setWidget(window);
    setWindowIcon(ProgramIcon());
    ReleaseShortcuts();
  }

 protected:
  void closeEvent(QCloseEvent* event) override {
    event->ignore();
    onClose_();
  }

 private:
  // The keys of its menu would be those of every window, and of the main window's items, at once: none of
  // them would act.
  void ReleaseShortcuts() {
    for (QAction* action : systemMenu()->actions()) action->setShortcuts(QList<QKeySequence>());
  }

  std::function<void()> onClose_;
};

CViewWindow& ViewWindowOf(const QMdiSubWindow& subWindow) {
  return *static_cast<CViewWindow*>(subWindow.widget());
}

// The local .tin files of a drag.
std::vector<std::string> TinFiles(const QMimeData& data) {
  std::vector<std::string> paths;
  for (const QUrl& url : data.urls()) {
    const QString path = url.toLocalFile();
    if (path.endsWith(".tin", Qt::CaseInsensitive)) paths.push_back(Plain(path));
  }
  return paths;
}

}  // namespace

CMainWindow::CMainWindow(CCorvaneApp& app) : app_(app), area_(new QMdiArea) {
  setWindowIcon(ProgramIcon());
  setWindowTitle(title_ = kProgramName);
  setContextMenuPolicy(Qt::NoContextMenu);
  setAcceptDrops(true);
  resize(kFirstSize);
  area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  area_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  area_->setBackground(palette().mid());
  setCentralWidget(area_);
  panes_ = std::make_unique<CStatusPanes>(*statusBar());
  menus_ = std::make_unique<CMenus>(
      *this, app_.GetCommands(), [this](const CommandRow& row) { RunRow(row); },
      [this](const std::string& name) { RunItem(name); },
      [this](const std::string& path) { OpenPath(path); });
  // A menu bar that was filled anew while it had the keyboard does not give it back.
  menus_->onHide = [this] { QTimer::singleShot(0, this, &CMainWindow::FocusActiveWindow); };
  MakeToolBar();
  connect(area_, &QMdiArea::subWindowActivated, this, &CMainWindow::OnSubWindowActivated);
  connect(QApplication::clipboard(), &QClipboard::dataChanged, this, &CMainWindow::RefreshEditItems);
}

// Windows that go down with this one are nobody's doing.
CMainWindow::~CMainWindow() {
  area_->disconnect(this);
}

void CMainWindow::FocusActiveWindow() {
  if (QApplication::activePopupWidget() || QApplication::activeModalWidget()) return;
  const CView* view = app_.GetMainFrame().GetActiveView();
  if (CViewWindow* window = view ? FindWindow(*view) : nullptr) window->setFocus();
}

void CMainWindow::MakeToolBar() {
  for (const char* name : {"View > Toolbar", "View > Status Bar"}) {
    menus_->Find(name)->setCheckable(true);
    menus_->Find(name)->setChecked(true);
  }
  toolBar_ = addToolBar("Toolbar");
  toolBar_->setIconSize(QSize(20, 20));
  menus_->FillToolBar(*toolBar_);
}

CViewWindow* CMainWindow::FindWindow(const WindowView& view) const {
  QMdiSubWindow* subWindow = FindSubWindow(view);
  return subWindow ? &ViewWindowOf(*subWindow) : nullptr;
}

QMdiSubWindow* CMainWindow::FindSubWindow(const WindowView& view) const {
  const auto found = windows_.find(&view);
  return found == windows_.end() ? nullptr : found->second;
}

void CMainWindow::OpenWindow(WindowView& view) {
  auto* window = new CViewWindow(view);
  window->onZoom = [this, &view] { ShowScale(view); };
  window->onReadout = [this](const QString& text) { ShowReadout(text); };
  auto* subWindow = new CSubWindow(window, [this, &view] { OnSubWindowClose(view); });
  windows_[&view] = subWindow;
  {
    const QScopedValueRollback following(following_, true);
    area_->addSubWindow(subWindow);
    const int step = nOpened_++ % kCascadeLength * kCascadeStep;
    subWindow->move(step, step);
    subWindow->show();
  }
  connect(subWindow, &QMdiSubWindow::windowStateChanged, this, &CMainWindow::RefreshTitles);
  ActivateWindow(view);
}

// The sub-window may be in the middle of its own close event, so its end comes later.
void CMainWindow::CloseWindow(WindowView& view) {
  QMdiSubWindow* subWindow = FindSubWindow(view);
  if (!subWindow) return;
  const QScopedValueRollback following(following_, true);
  ViewWindowOf(*subWindow).Detach();
  windows_.erase(&view);
  area_->removeSubWindow(subWindow);
  subWindow->deleteLater();
}

void CMainWindow::ActivateWindow(WindowView& view) {
  QMdiSubWindow* subWindow = FindSubWindow(view);
  if (!subWindow) return;
  {
    const QScopedValueRollback following(following_, true);
    if (subWindow->isMinimized()) subWindow->showNormal();
    area_->setActiveSubWindow(subWindow);
    ViewWindowOf(*subWindow).setFocus();
  }
  if (auto* active = dynamic_cast<CView*>(&view)) app_.GetMainFrame().SetActiveView(active);
  Refresh();
}

void CMainWindow::RepaintWindow(WindowView& view, bool atOnce) {
  CViewWindow* window = FindWindow(view);
  if (!window) return;
  if (atOnce) {
    window->viewport()->repaint();
  } else {
    window->viewport()->update();
  }
}

void CMainWindow::UpdateWindowFrame(WindowView& view) {
  if (CViewWindow* window = FindWindow(view)) window->UpdateScrollBars();
  RefreshTitles();
}

bool CMainWindow::ShowGraph(WindowView& view, const GraphView& graph, const CGraphWindow::Browser& browse) {
  CViewWindow* window = FindWindow(view);
  if (!window) return false;
  window->ShowGraph(graph, browse);
  return true;
}

void CMainWindow::PlotGraph(const GraphView& graph, int element) {
  if (CGraphWindow* window = FindGraph(graph)) window->Plot(element);
}

void CMainWindow::ResizeGraph(const GraphView& graph) {
  const PixelSize size = graph.GetSize();
  if (CGraphWindow* window = FindGraph(graph)) window->resize(size.width, size.height);
}

CGraphWindow* CMainWindow::FindGraph(const GraphView& graph) const {
  for (const auto& [view, subWindow] : windows_) {
    CGraphWindow* window = ViewWindowOf(*subWindow).GetGraph();
    if (window && window->GetGraph() == &graph) return window;
  }
  return nullptr;
}

// Over the message pane, whose text comes back when the pointer leaves the graph.
void CMainWindow::ShowReadout(const QString& text) {
  statusBar()->showMessage(text);
}

void CMainWindow::SetStatusText(int pane, const std::string& text) {
  panes_->SetText(pane, text);
  if (pane == 0) messageSet_ = true;
}

void CMainWindow::ShowScale(const WindowView& view) {
  if (const auto* tinView = dynamic_cast<const CCorvaneView*>(&view)) {
    panes_->SetText(0, "Scale: " + ShortestText(tinView->displayScale) + " pixels a unit");
  } else if (view.GetZoom() > 0.0) {
    panes_->SetText(0, "Zoom: " + GeneralText(100.0 * view.GetZoom(), 4) + " %");
  }
}

void CMainWindow::CommandStarted() {
  if (running_++ == 0) {
    panes_->SetText(0, "");
    messageSet_ = false;
  }
  ShowUncovered();
}

// The desktop takes the menu or dialog away and then asks for what was under it.
void CMainWindow::ShowUncovered() {
  if (!isVisible()) return;
  QEventLoop loop;
  QTimer::singleShot(kUncoverTime, &loop, &QEventLoop::quit);
  loop.exec(QEventLoop::ExcludeUserInputEvents);
}

void CMainWindow::CommandEnded(CommandResult result) {
  if (--running_ == 0) ShowEnd(result);
  Refresh();
}

void CMainWindow::ShowEnd(CommandResult result) {
  const std::string last = messageSet_ ? panes_->GetText(0).toStdString() : "";
  switch (result) {
    case CommandResult::Done:
      return panes_->SetText(0, last.empty() ? "Done." : last);
    case CommandResult::Failed:  // what the command has told last is the reason, or how far it came
      return panes_->SetText(0, last.empty() ? "Failed." : "Failed: " + last);
    case CommandResult::Cancelled:
      return panes_->SetText(0, "Cancelled.");
  }
}

void CMainWindow::OpenPath(const std::string& path) {
  if (running_ == 0) app_.OpenPath(path);
}

void CMainWindow::RunRow(const CommandRow& row) {
  if (running_ == 0 && app_.IsEnabled(row)) app_.RunCommand(row);
}

void CMainWindow::RunItem(const std::string& name) {
  static const struct {
    const char* name;
    void (CMainWindow::*run)();
  } kItems[] = {
      {"File > Print", &CMainWindow::PrintPicture},
      {"File > Print Preview", &CMainWindow::PreviewPicture},
      {"File > Print Setup", &CMainWindow::SetUpPrinter},
      {"File > Exit", &CMainWindow::Exit},
      {"View > Toolbar", &CMainWindow::ShowToolBar},
      {"View > Status Bar", &CMainWindow::ShowStatusBar},
      {"Window > New Window", &CMainWindow::OpenNewWindow},
      {"Window > Cascade", &CMainWindow::Cascade},
      {"Window > Tile", &CMainWindow::Tile},
      {"Window > Arrange Icons", &CMainWindow::ArrangeIcons},
      {"Window > Next Pane", &CMainWindow::ActivateNext},
      {"Window > Previous Pane", &CMainWindow::ActivatePrevious},
      {"Window > Close Window", &CMainWindow::CloseActiveWindow},
      {"Help > Help Topics", &CMainWindow::ShowHelpTopics},
      {"Help > About", &CMainWindow::ShowAbout},
  };
  if (running_ != 0 || RunViewItem(name)) return;
  for (const auto& item : kItems) {
    if (name == item.name) (this->*item.run)();
  }
}

// The area also reports nothing while another program's window is in front: the active view stays.
void CMainWindow::OnSubWindowActivated(QMdiSubWindow* subWindow) {
  if (following_ || !subWindow) return;
  if (auto* view = dynamic_cast<CView*>(ViewWindowOf(*subWindow).GetView())) MakeActive(*view);
}

// A person has gone over to this view's window.
void CMainWindow::MakeActive(CView& view) {
  const CDocument* before = app_.GetMainFrame().GetActiveDocument();
  app_.GetMainFrame().SetActiveView(&view);
  const CDocument& document = view.GetDocumentBase();
  if (before != &document && running_ == 0 && onActivation) {
    // To open the path again would read it anew where nothing has come of it so far; only a TIN can be
    // opened.
    const bool opensAgain = document.HasContent() && view.GetKind() == WindowKind::Tin;
    onActivation(opensAgain ? document.GetPathName() : "", document.GetTitle());
  }
  Refresh();
}

void CMainWindow::OnSubWindowClose(WindowView& view) {
  auto* closing = dynamic_cast<CView*>(&view);
  if (!closing || running_ != 0) return;
  MakeActive(*closing);
  if (closing->GetDocumentBase().GetFrames().size() > 1) {
    app_.CloseView(*closing);
  } else {
    CloseActiveDocument();
  }
  Refresh();
}

// As the command, so that a record of the session has it.
void CMainWindow::CloseActiveDocument() {
  for (const CommandRow& row : app_.GetCommands()) {
    if (CommandName(row) == kClose) app_.RunCommand(row);
  }
}

// Asks for each changed document and closes none: the program's end does, if all have answered.
void CMainWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (running_ != 0) return;
  const auto& documents = app_.GetDocuments();
  for (std::size_t i = 0; i < documents.size(); ++i) {
    if (documents[i]->IsModified() && !SaveOrDiscard(*documents[i])) return;
  }
  event->accept();
}

// False if the person cancelled, or the saving failed.
bool CMainWindow::SaveOrDiscard(CDocument& document) {
  CView& view = document.GetFrames().front()->GetView();
  MakeActive(view);
  ActivateWindow(view);
  const SaveChoice choice = Ui().AskSaveChanges(document.GetTitle());
  if (choice != SaveChoice::Save) return choice == SaveChoice::Discard;
  const bool saved = app_.SaveDocument(document, false) == CommandResult::Done;
  Refresh();
  return saved;
}

void CMainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (running_ == 0 && !TinFiles(*event->mimeData()).empty()) event->acceptProposedAction();
}

// The drag's source waits for the end of the event; what the opening shows and asks must not keep it.
void CMainWindow::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  QTimer::singleShot(0, this, [this, paths = TinFiles(*event->mimeData())] {
    for (const std::string& path : paths) OpenPath(path);
  });
}

void CMainWindow::Refresh() {
  RefreshMenus();
  RefreshTitles();
}

void CMainWindow::RefreshMenus() {
  CView* view = app_.GetMainFrame().GetActiveView();
  const auto kind = view ? std::optional(view->GetKind()) : std::nullopt;
  if (!menusShown_ || kind != shownKind_) {
    menus_->Show(kind);
    menusShown_ = true;
    shownKind_ = kind;
    if (QMenu* menu = menus_->GetWindowMenu()) {
      connect(menu, &QMenu::aboutToShow, this, &CMainWindow::ListWindows, Qt::UniqueConnection);
    }
  }
  menus_->UpdateEnabled([this](const CommandRow& row) { return app_.IsEnabled(row); });
  menus_->SetRecentFiles(app_.GetRecentFiles().GetPaths());
  RefreshEditItems();
  // Only a picture can be printed, and only one with a zoom of its own be zoomed.
  for (const char* name : {"File > Print", "File > Print Preview"}) {
    menus_->Find(name)->setEnabled(view && view->HasPicture());
  }
  for (const char* name : {"View > Zoom In", "View > Zoom Out", "View > Zoom 1:1", "View > Zoom 1:5"}) {
    menus_->Find(name)->setEnabled(view && view->GetZoom() > 0.0);
  }
}

// No window has anything to undo or to cut.
void CMainWindow::RefreshEditItems() {
  const CView* view = app_.GetMainFrame().GetActiveView();
  for (const char* name : {"Edit > Undo", "Edit > Cut"}) menus_->Find(name)->setEnabled(false);
  menus_->Find("Edit > Copy")->setEnabled(view && view->IsEnabled(EditItem::Copy));
  menus_->Find("Edit > Paste")->setEnabled(view && view->IsEnabled(EditItem::Paste));
}

void CMainWindow::RefreshTitles() {
  for (const auto& [view, subWindow] : windows_) {
    const auto* documentView = dynamic_cast<const CView*>(view);
    subWindow->setWindowTitle(Shown(view->GetTitle()) + "[*]");
    subWindow->setWindowModified(documentView && documentView->GetDocumentBase().IsModified());
  }
  const CView* active = app_.GetMainFrame().GetActiveView();
  title_ = active ? Shown(active->GetTitle()) + "[*] - " + kProgramName : QString(kProgramName);
  setWindowTitle(title_);
  setWindowModified(active && active->GetDocumentBase().IsModified());
}

// A maximised document window adds its own title to this one's; the title names it already.
void CMainWindow::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::WindowTitleChange) setWindowTitle(title_);
}

}  // namespace corvane
