#pragma once

#include <span>

#include "shell/CommandTable.h"

namespace corvane {

// The command table: every row of the menus, in menu order.
std::span<const CommandRow> CommandRows();

}  // namespace corvane
