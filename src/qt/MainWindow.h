#pragma once

#include <QMainWindow>
#include <QPointer>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "qt/GraphWindow.h"
#include "qt/Menus.h"
#include "qt/Printing.h"
#include "qt/StatusPanes.h"
#include "shell/CorvaneApp.h"

class QMdiArea;
class QMdiSubWindow;

namespace corvane {

class CViewWindow;

// The main window: menus, toolbar, status bar, and the area in which document windows stand. Which window is
// the active one is CMainFrame's to say; this window shows it and reports a person's changes.
class CMainWindow : public QMainWindow {
 public:
  explicit CMainWindow(CCorvaneApp& app);
  ~CMainWindow() override;

  // Hears of a person, not a command, having gone over to a window of another document: its path, "" if it
  // has none or has nothing of what is there, and its title.
  std::function<void(const std::string& path, const std::string& title)> onActivation;

  void OpenWindow(WindowView& view);
  void CloseWindow(WindowView& view);
  void ActivateWindow(WindowView& view);
  void RepaintWindow(WindowView& view, bool atOnce);
  void UpdateWindowFrame(WindowView& view);
  void SetStatusText(int pane, const std::string& text);

  // False if the view has no window. `browse` asks for the path of a file to save the graph in.
  bool ShowGraph(WindowView& view, const GraphView& graph, const CGraphWindow::Browser& browse);
  void PlotGraph(const GraphView& graph, int element);
  void ResizeGraph(const GraphView& graph);

  // While a command runs no other one starts. The message pane begins empty, and tells how a command ended
  // that has failed or has said nothing itself.
  void CommandStarted();
  void CommandEnded(CommandResult result);

  // Shows again what a menu or a dialog that has just closed left uncovered: a command that goes on from
  // there keeps the event loop waiting.
  void ShowUncovered();

  // Opens a path that was chosen without a chooser.
  void OpenPath(const std::string& path);

  // Shows the program's state as it is now: menus for the active window, titles, what can be chosen.
  void Refresh();

  CMenus& GetMenus() { return *menus_; }
  CStatusPanes& GetStatusPanes() { return *panes_; }
  QMdiArea& GetArea() { return *area_; }
  // The window on a view; null if there is none.
  CViewWindow* FindWindow(const WindowView& view) const;

 protected:
  void changeEvent(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void FocusActiveWindow();
  void MakeToolBar();
  void RunRow(const CommandRow& row);
  void RunItem(const std::string& name);
  QMdiSubWindow* FindSubWindow(const WindowView& view) const;
  CGraphWindow* FindGraph(const GraphView& graph) const;
  void ShowReadout(const QString& text);

  void OnSubWindowActivated(QMdiSubWindow* subWindow);
  void OnSubWindowClose(WindowView& view);
  void MakeActive(CView& view);
  void CloseActiveDocument();
  bool SaveOrDiscard(CDocument& document);
  void ShowEnd(CommandResult result);
  void ShowScale(const WindowView& view);

  void RefreshMenus();
  void RefreshEditItems();
  void RefreshTitles();
  void ListWindows();

  // Runs an item that belongs to the active window's view; false if it is none.
  bool RunViewItem(const std::string& name);
  void PrintPicture();
  void PreviewPicture();
  void SetUpPrinter();
  void ShowToolBar();
  void ShowStatusBar();
  void OpenNewWindow();
  void Cascade();
  void Tile();
  void ArrangeIcons();
  void ActivateNext();
  void ActivatePrevious();
  void CloseActiveWindow();
  void ShowHelpTopics();
  void ShowAbout();
  void Exit();

  CCorvaneApp& app_;
  QMdiArea* area_;
  QToolBar* toolBar_ = nullptr;
  std::unique_ptr<CStatusPanes> panes_;
  std::unique_ptr<CMenus> menus_;
  CPrinting printing_;
  std::map<const WindowView*, QMdiSubWindow*> windows_;
  std::vector<QAction*> windowActions_;  // the list of windows on the Window menu
  bool menusShown_ = false;
  std::optional<WindowKind> shownKind_;  // whose menus stand on the menu bar
  int nOpened_ = 0;                      // windows since the start
  int running_ = 0;                      // commands under way
  bool messageSet_ = false;              // the command has set the text of the message pane
  QString title_;                        // of this window
  bool following_ = false;               // windows change at the program's own wish
};

}  // namespace corvane
