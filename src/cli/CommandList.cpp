#include "cli/CommandList.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

namespace corvane {

std::string CommandListText(std::span<const CommandRow> rows) {
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

std::string CommandListJson(std::span<const CommandRow> rows) {
  std::string text = "[";
  for (const CommandRow& row : rows) {
    const nlohmann::ordered_json object = {
        {"path", row.path}, {"item", row.item}, {"prompt", row.prompt}, {"enabled", HasHandler(row)}};
    text += text.size() == 1 ? "\n" : ",\n";
    text += object.dump();
  }
  return text + "\n]\n";
}

}  // namespace corvane
