#include "forms/ChosenPath.h"

#include <algorithm>
#include <cctype>

#include "io/Paths.h"

namespace corvane {

namespace {

std::string LowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
  return text;
}

}  // namespace

std::string ChosenPath(const FileChooser& chooser, const std::string& typed) {
  const std::string path = WithDefaultExtension(typed, chooser.defaultExtension);
  const bool asTyped = chooser.mode == FileChooser::Mode::Save ? IsDevice(typed) : FileExists(typed);
  if (path == typed || asTyped) return typed;
  const std::string lower = WithDefaultExtension(typed, LowerCase(chooser.defaultExtension));
  return !FileExists(path) && FileExists(lower) ? lower : path;
}

}  // namespace corvane
