#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "ui/FrontEnd.h"

namespace corvane {

class CCorvaneView;
class CDocument;
class CMainFrame;

// What serves a command: the active TIN view, the active document of any kind, or the frame.
// Nothing serves an item that stands disabled.
using ViewHandler = CommandResult (*)(CCorvaneView& view);
using DocumentHandler = CommandResult (*)(CDocument& document);
using FrameHandler = CommandResult (*)(CMainFrame& frame);
using CommandHandler = std::variant<std::monostate, ViewHandler, DocumentHandler, FrameHandler>;

// The menus on which a row stands.
enum class MenuPlace {
  Standard,  // on every menu, under File
  Working,   // on the menu of a TIN document
  Frame,     // on the menu that shows with no document open
  None,      // on no menu: a command without an item
};

// One menu row. `path` is its menu with " > " between the levels; `item` is the text as it stands on the
// menu, with its access key; `prompt` is the status-bar text, "" for none.
struct CommandRow {
  MenuPlace place;
  const char* path;
  const char* item;
  const char* prompt;
  CommandHandler handler;
};

// The item as a person would type it: without "&" and outer blanks.
std::string PlainItem(const CommandRow& row);

// "TIN > Slope Filter".
std::string CommandName(const CommandRow& row);

inline bool HasHandler(const CommandRow& row) {
  return !std::holds_alternative<std::monostate>(row.handler);
}

// The row that a typed name means: the item, or the whole menu path and the item; "&", letter case and outer
// blanks do not count. Rows that share a handler are one command; the first of them is given.
struct CommandLookup {
  const CommandRow* row = nullptr;        // the one command meant, or none
  std::vector<std::string> nearestNames;  // otherwise: the commands meant (ambiguous), or the nearest names
  bool ambiguous = false;
};
CommandLookup FindCommand(std::span<const CommandRow> rows, std::string_view typed);

}  // namespace corvane
