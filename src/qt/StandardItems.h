#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "shell/CommandTable.h"
#include "ui/WindowView.h"

namespace corvane {

// A menu item that the window itself serves. Its path, item and prompt are those of a CommandRow, and so is
// its name: "File > Print".
struct StandardItem {
  const char* path;
  const char* item;
  const char* prompt;
};
std::span<const StandardItem> StandardItems();
std::string ItemName(const StandardItem& item);

// Key sequences that choose a command or a standard item, in the text form of QKeySequence.
struct Accelerator {
  const char* name;
  const char* keys;
};
std::span<const Accelerator> Accelerators();

// Places in a menu for which there is no one item.
constexpr const char* kSeparator = "";
constexpr const char* kRecentFiles = "File > Recent File";

// One menu of a menu bar: its title with access key, and the names of its items.
struct MenuLayout {
  const char* title;
  std::vector<const char*> names;
};

// A menu bar: the menus in front, those of the command table's rows of one place, if any, and the menus
// behind. Rows whose path is a menu in front go to that menu's end.
struct MenuBarLayout {
  std::vector<MenuLayout> front;
  std::optional<MenuPlace> rows;
  std::vector<MenuLayout> back;
};

// The menu bar for the kind of the active window; nothing stands for no window open.
const MenuBarLayout& MenuBarFor(std::optional<WindowKind> kind);

// The toolbar's buttons, with kSeparator between groups.
std::span<const char* const> ToolBarNames();

}  // namespace corvane
