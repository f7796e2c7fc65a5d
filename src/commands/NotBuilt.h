#pragma once

#include "shell/CommandTable.h"

namespace corvane {

// Commands that are on the menu before they can do their work: one plain box, and the command has failed.
CommandResult OnNotBuilt(CCorvaneView& view);

}  // namespace corvane
