#pragma once

#include <string>

#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

// Tell the person why a command has failed: in a plain box, or with the warning icon.

inline CommandResult FailWith(const std::string& text) {
  ShowMessage(text);
  return CommandResult::Failed;
}

inline CommandResult FailWithWarning(const std::string& text) {
  ShowWarning(text);
  return CommandResult::Failed;
}

inline CommandResult FailToOpen(const std::string& path) {
  return FailWithWarning(OpenErrorText(path));
}

inline CommandResult FailToOpenPoints(const std::string& path) {
  return FailWithWarning("Open point file " + path + " error!");
}

// A reason, if there is one, stands in a second line.
inline CommandResult FailToWrite(const std::string& path, const std::string& reason = "") {
  return FailWithWarning(WriteErrorText(path) + (reason.empty() ? "" : "\n" + reason));
}

}  // namespace corvane
