#pragma once

#include <string>
#include <vector>

namespace corvane {

// What a modal file chooser is asked for.
struct FileChooser {
  enum class Mode { Open, Save };

  Mode mode = Mode::Open;
  std::string filter;                 // "Name (*.ext)|*.ext|...|": pairs of name and pattern
  std::string defaultExtension = {};  // appended to a typed name without extension
  std::string defaultName = {};
  std::string title = {};  // "" for the platform's own
  bool mustExist = false;  // an open chooser that refuses a name without a file
  bool multiple = false;   // any number of files
};

// One pair of a filter string.
struct FilterEntry {
  std::string name;     // "TIN Files (*.tin)"
  std::string pattern;  // "*.tin", several separated by ";"
};

// The pairs of a filter string, empty ends left out.
std::vector<FilterEntry> FilterEntries(const std::string& filter);

}  // namespace corvane
