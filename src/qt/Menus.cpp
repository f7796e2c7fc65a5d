#include "qt/Menus.h"

#include <QMainWindow>
#include <QMenuBar>
#include <QToolBar>
#include <algorithm>

#include "qt/Icons.h"
#include "qt/QtText.h"
#include "shell/RecentFiles.h"

namespace corvane {

namespace {

constexpr const char* kWindowMenu = "&Window";
constexpr qsizetype kRecentPathLength = 60;

QList<QKeySequence> KeysOf(const std::string& name) {
  QList<QKeySequence> keys;
  for (const Accelerator& accelerator : Accelerators()) {
    if (name == accelerator.name) keys.append(QKeySequence(QString(accelerator.keys)));
  }
  return keys;
}

// Menu titles carry access keys, paths of rows do not.
bool HasTitle(const QMenu& menu, const QString& plainTitle) {
  return menu.title().remove('&') == plainTitle;
}

// The submenu of that title, made at the menu's end where there is none yet.
QMenu& SubMenu(QMenu& menu, const QString& title) {
  for (QAction* action : menu.actions()) {
    if (action->menu() && HasTitle(*action->menu(), title)) return *action->menu();
  }
  return *menu.addMenu(title);
}

}  // namespace

CMenus::CMenus(QMainWindow& window, std::span<const CommandRow> rows, RowRunner runRow, ItemRunner runItem,
               PathRunner openRecent)
    : window_(window), rows_(rows) {
  MakeRowActions(std::move(runRow));
  MakeItemActions(std::move(runItem));
  MakeRecentActions(std::move(openRecent));
  for (const auto& [name, action] : actions_) {
    action->setShortcuts(KeysOf(name));
    action->setIcon(ItemIcon(name));
    action->setIconVisibleInMenu(false);
    window_.addAction(action);  // so that its keys act whatever menu is shown
  }
}

CMenus::~CMenus() = default;

void CMenus::MakeRowActions(RowRunner runRow) {
  for (const CommandRow& row : rows_) {
    auto* action = new QAction(row.item, &window_);
    action->setStatusTip(QString(row.prompt));
    action->setEnabled(HasHandler(row));
    QObject::connect(action, &QAction::triggered, &window_, [runRow, &row] { runRow(row); });
    rowActions_.push_back(action);
    actions_.emplace(CommandName(row), action);
  }
}

void CMenus::MakeItemActions(ItemRunner runItem) {
  for (const StandardItem& item : StandardItems()) {
    auto* action = new QAction(item.item, &window_);
    action->setStatusTip(QString(item.prompt));
    const std::string name = ItemName(item);
    QObject::connect(action, &QAction::triggered, &window_, [runItem, name] { runItem(name); });
    actions_.emplace(name, action);
  }
}

void CMenus::MakeRecentActions(PathRunner openRecent) {
  noRecentFile_ = new QAction("Recent File", &window_);
  noRecentFile_->setEnabled(false);
  for (std::size_t i = 0; i < RecentFileList::kMaxFiles; ++i) {
    auto* action = new QAction(&window_);
    action->setStatusTip("Open this document");
    action->setVisible(false);
    QObject::connect(action, &QAction::triggered, &window_,
                     [openRecent, action] { openRecent(Plain(action->data().toString())); });
    recentActions_.push_back(action);
  }
}

QAction* CMenus::Find(const std::string& name) const {
  const auto found = actions_.find(name);
  return found == actions_.end() ? nullptr : found->second;
}

void CMenus::Show(std::optional<WindowKind> kind) {
  QMenuBar& menuBar = *window_.menuBar();
  menuBar.clear();
  windowMenu_ = nullptr;
  for (const auto& menu : MenusFor(MenuBarFor(kind))) {
    menuBar.addMenu(menu.get());
    if (menu->title() == kWindowMenu) windowMenu_ = menu.get();
  }
}

const CMenus::Menus& CMenus::MenusFor(const MenuBarLayout& layout) {
  Menus& menus = menuBars_[&layout];
  if (!menus.empty()) return menus;
  for (const MenuLayout& menu : layout.front) menus.push_back(MakeMenu(menu));
  if (layout.rows) AddRows(*layout.rows, menus);
  for (const MenuLayout& menu : layout.back) menus.push_back(MakeMenu(menu));
  return menus;
}

std::unique_ptr<QMenu> CMenus::MakeEmptyMenu(const QString& title) const {
  auto menu = std::make_unique<QMenu>(title);
  QObject::connect(menu.get(), &QMenu::aboutToHide, &window_, [this] {
    if (onHide) onHide();
  });
  return menu;
}

std::unique_ptr<QMenu> CMenus::MakeMenu(const MenuLayout& layout) const {
  auto menu = MakeEmptyMenu(layout.title);
  for (const char* name : layout.names) {
    if (*name == '\0') {
      menu->addSeparator();
    } else if (QAction* action = Find(name)) {
      menu->addAction(action);
    } else {  // kRecentFiles
      menu->addAction(noRecentFile_);
      for (QAction* recent : recentActions_) menu->addAction(recent);
    }
  }
  return menu;
}

// Menus and submenus stand where the table names them first.
void CMenus::AddRows(MenuPlace place, Menus& menus) const {
  for (const CommandRow& row : rows_) {
    if (row.place != place) continue;
    const QStringList levels = QString(row.path).split(" > ");
    auto top = std::find_if(menus.begin(), menus.end(),
                            [&](const auto& menu) { return HasTitle(*menu, levels.front()); });
    if (top == menus.end()) top = menus.insert(top, MakeEmptyMenu(levels.front()));
    QMenu* menu = top->get();
    for (qsizetype i = 1; i < levels.size(); ++i) menu = &SubMenu(*menu, levels[i]);
    menu->addAction(&ActionOf(row));
  }
}

void CMenus::FillToolBar(QToolBar& toolBar) const {
  for (const char* name : ToolBarNames()) {
    if (*name == '\0') {
      toolBar.addSeparator();
    } else {
      toolBar.addAction(Find(name));
    }
  }
}

void CMenus::SetRecentFiles(const std::vector<std::string>& paths) {
  noRecentFile_->setVisible(paths.empty());
  for (std::size_t i = 0; i < recentActions_.size(); ++i) {
    recentActions_[i]->setVisible(i < paths.size());
    if (i >= paths.size()) continue;
    recentActions_[i]->setText(RecentFileText(i + 1, paths[i]));
    recentActions_[i]->setData(Shown(paths[i]));
  }
}

void CMenus::UpdateEnabled(const std::function<bool(const CommandRow&)>& isEnabled) {
  for (const CommandRow& row : rows_) ActionOf(row).setEnabled(isEnabled(row));
}

QString RecentFileText(std::size_t number, const std::string& path) {
  QString shown = Shown(path);
  while (shown.size() > kRecentPathLength) {
    const qsizetype folderEnd = shown.indexOf('/', shown.startsWith(".../") ? 4 : 1);
    if (folderEnd < 0) break;
    shown = "..." + shown.mid(folderEnd);
  }
  return QString("&%1 %2").arg(number).arg(shown.replace('&', "&&"));
}

}  // namespace corvane
