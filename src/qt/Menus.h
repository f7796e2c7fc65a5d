#pragma once

#include <QAction>
#include <QMenu>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "qt/StandardItems.h"
#include "shell/CommandTable.h"

class QMainWindow;
class QMenuBar;
class QToolBar;

namespace corvane {

// The actions of the main window and the menus made of them: one action for each row of the command table
// and each standard item, shared by every menu and the toolbar that shows it.
class CMenus {
 public:
  // Chooses what is behind a row; runs the standard item of a name.
  using RowRunner = std::function<void(const CommandRow&)>;
  using ItemRunner = std::function<void(const std::string& name)>;
  using PathRunner = std::function<void(const std::string& path)>;

  CMenus(QMainWindow& window, std::span<const CommandRow> rows, RowRunner runRow, ItemRunner runItem,
         PathRunner openRecent);
  ~CMenus();

  // Hears of a menu having closed.
  std::function<void()> onHide;

  // The action of a row or standard item by its name, "TIN > Slope Filter"; null if there is none.
  QAction* Find(const std::string& name) const;
  QAction& ActionOf(const CommandRow& row) const { return *rowActions_[&row - rows_.data()]; }

  // Puts the menus for the kind of the active window on the menu bar.
  void Show(std::optional<WindowKind> kind);
  void FillToolBar(QToolBar& toolBar) const;

  // The recent-file list as it stands now, the latest first.
  void SetRecentFiles(const std::vector<std::string>& paths);
  // Asks for rows' enabled state, for every row.
  void UpdateEnabled(const std::function<bool(const CommandRow&)>& isEnabled);

  // The menu that lists the windows, if it is on the menu bar.
  QMenu* GetWindowMenu() const { return windowMenu_; }

 private:
  using Menus = std::vector<std::unique_ptr<QMenu>>;

  void MakeRowActions(RowRunner runRow);
  void MakeItemActions(ItemRunner runItem);
  void MakeRecentActions(PathRunner openRecent);
  const Menus& MenusFor(const MenuBarLayout& layout);
  std::unique_ptr<QMenu> MakeEmptyMenu(const QString& title) const;
  std::unique_ptr<QMenu> MakeMenu(const MenuLayout& layout) const;
  void AddRows(MenuPlace place, Menus& menus) const;

  QMainWindow& window_;
  std::span<const CommandRow> rows_;
  std::vector<QAction*> rowActions_;  // of rows_, in their order
  std::map<std::string, QAction*> actions_;
  std::vector<QAction*> recentActions_;
  QAction* noRecentFile_ = nullptr;
  std::map<const MenuBarLayout*, Menus> menuBars_;
  QMenu* windowMenu_ = nullptr;
};

// An entry of the recent-file list, numbered from 1: "&1 /folder/name.tin". A path that is too long for a
// menu loses its first folders.
QString RecentFileText(std::size_t number, const std::string& path);

}  // namespace corvane
