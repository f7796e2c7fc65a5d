#pragma once

#include <string>

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

}  // namespace corvane
