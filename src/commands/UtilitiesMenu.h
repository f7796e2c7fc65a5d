#pragma once

#include "shell/CommandTable.h"

namespace corvane {

// Turn text points into a points file: "x y z value" and "id, x, y, z, value".
CommandResult OnTextPointsXyzToBin(CCorvaneView& view);
CommandResult OnTextPointsIdxyzToBin(CCorvaneView& view);

// Shows the header of a points file and changes its spacing.
CommandResult OnPointsHead(CCorvaneView& view);

// A place for trying routines out; it serves no general use.
CommandResult OnTest(CCorvaneView& view);

}  // namespace corvane
