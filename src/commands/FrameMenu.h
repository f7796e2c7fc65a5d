#pragma once

#include "shell/CommandTable.h"

namespace corvane {

// The commands of the menu that shows with no document open.

// Kept: the item is enabled and does nothing.
CommandResult OnBareEarth(CMainFrame& frame);

// Makes a random-dot stereogram of a depth image.
CommandResult OnStereoGram(CMainFrame& frame);

}  // namespace corvane
