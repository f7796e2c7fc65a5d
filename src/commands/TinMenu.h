#pragma once

#include "shell/CommandTable.h"

namespace corvane {

// Triangulates a points file into a TIN file.
CommandResult OnCreateTin(CCorvaneView& view);

}  // namespace corvane
