#include "shell/CommandTable.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

#include "io/NumberText.h"

namespace corvane {

namespace {

constexpr std::size_t kNearestNames = 5;

std::string WithoutAccessKey(std::string_view text) {
  std::string plain;
  std::copy_if(text.begin(), text.end(), std::back_inserter(plain), [](char c) { return c != '&'; });
  return std::string(Trimmed(plain));
}

// Lower case, no "&", no blanks around the levels of a path.
std::string Normalised(std::string_view typed) {
  std::string result;
  while (true) {
    const std::size_t separator = typed.find('>');
    result += WithoutAccessKey(typed.substr(0, separator));
    if (separator == std::string_view::npos) break;
    result += '>';
    typed.remove_prefix(separator + 1);
  }
  std::transform(result.begin(), result.end(), result.begin(),
                 [](unsigned char c) { return std::tolower(c); });
  return result;
}

// The number of single-character edits between two texts.
std::size_t EditDistance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i);
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
    }
  }
  return row.back();
}

// How far a row is from what was typed; a row that holds the typed text is nearer than any other.
std::size_t Distance(const CommandRow& row, const std::string& typed) {
  const std::string item = Normalised(row.item);
  if (!typed.empty() && item.find(typed) != std::string::npos) return 0;
  return 1 + std::min(EditDistance(item, typed), EditDistance(Normalised(CommandName(row)), typed));
}

std::vector<std::string> NearestNames(std::span<const CommandRow> rows, const std::string& typed) {
  std::vector<std::pair<std::size_t, std::string>> ranked;
  for (const CommandRow& row : rows) {
    if (row.place != MenuPlace::None) ranked.emplace_back(Distance(row, typed), CommandName(row));
  }
  std::stable_sort(ranked.begin(), ranked.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> names;
  for (const auto& [distance, name] : ranked) {
    if (names.size() < kNearestNames) names.push_back(name);
  }
  return names;
}

}  // namespace

std::string PlainItem(const CommandRow& row) {
  return WithoutAccessKey(row.item);
}

std::string CommandName(const CommandRow& row) {
  return std::string(row.path) + " > " + PlainItem(row);
}

CommandLookup FindCommand(std::span<const CommandRow> rows, std::string_view typed) {
  const std::string wanted = Normalised(typed);
  std::vector<const CommandRow*> matches;
  for (const CommandRow& row : rows) {
    if (row.place == MenuPlace::None) continue;
    if (wanted == Normalised(row.item) || wanted == Normalised(CommandName(row))) matches.push_back(&row);
  }

  CommandLookup lookup;
  if (matches.empty()) {
    lookup.nearestNames = NearestNames(rows, wanted);
    return lookup;
  }
  lookup.ambiguous = std::any_of(matches.begin(), matches.end(), [&](const CommandRow* row) {
    return row->handler != matches.front()->handler;
  });
  if (!lookup.ambiguous) {
    lookup.row = matches.front();
  } else {
    for (const CommandRow* row : matches) lookup.nearestNames.push_back(CommandName(*row));
  }
  return lookup;
}

}  // namespace corvane
