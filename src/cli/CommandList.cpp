#include "cli/CommandList.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <vector>

namespace corvane {

namespace {

std::vector<CommandRow> RowsOnMenus(std::span<const CommandRow> rows) {
  std::vector<CommandRow> onMenus;
  std::copy_if(rows.begin(), rows.end(), std::back_inserter(onMenus),
               [](const CommandRow& row) { return row.place != MenuPlace::None; });
  return onMenus;
}

}  // namespace

std::string CommandListText(std::span<const CommandRow> table) {
  const std::vector<CommandRow> rows = RowsOnMenus(table);
  std::vector<std::string> names;
  std::size_t width = 0;
  for (const CommandRow& row : rows) {
    names.push_back(CommandName(row) + (HasHandler(row) ? "" : " (disabled)"));
    width = std::max(width, names.back().size());
  }

  std::string text;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::string prompt = rows[i].prompt;
    text += names[i];
    if (!prompt.empty()) text += std::string(width + 2 - names[i].size(), ' ') + prompt;
    text += '\n';
  }
  return text;
}

std::string CommandListJson(std::span<const CommandRow> table) {
  std::string text = "[";
  for (const CommandRow& row : RowsOnMenus(table)) {
    const nlohmann::ordered_json object = {
        {"path", row.path}, {"item", row.item}, {"prompt", row.prompt}, {"enabled", HasHandler(row)}};
    text += text.size() == 1 ? "\n" : ",\n";
    text += object.dump();
  }
  return text + "\n]\n";
}

}  // namespace corvane
