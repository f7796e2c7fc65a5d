#pragma once

#include <span>
#include <string>

#include "shell/CommandTable.h"

namespace corvane {

// The rows as aligned text, one a line: "Features > Canny Edge (disabled)  Extracr Canny egde".
std::string CommandListText(std::span<const CommandRow> rows);

// The rows as a JSON array of objects with path, item (as it stands on the menu), prompt and enabled, one a
// line.
std::string CommandListJson(std::span<const CommandRow> rows);

}  // namespace corvane
