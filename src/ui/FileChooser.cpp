#include "ui/FileChooser.h"

namespace corvane {

std::vector<FilterEntry> FilterEntries(const std::string& filter) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  while (start < filter.size()) {
    std::size_t end = filter.find('|', start);
    if (end == std::string::npos) end = filter.size();
    parts.push_back(filter.substr(start, end - start));
    start = end + 1;
  }

  std::vector<FilterEntry> entries;
  for (std::size_t i = 0; i + 1 < parts.size(); i += 2) {
    if (!parts[i].empty() && !parts[i + 1].empty()) entries.push_back({parts[i], parts[i + 1]});
  }
  return entries;
}

}  // namespace corvane
