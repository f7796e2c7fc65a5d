#pragma once

#include "StereoPair/StereoPair.h"
#include "shell/CommandTable.h"

namespace corvane {

// What a method of StereoPair comes to as a command.
CommandResult ResultOfMatching(int status);

// Runs a method of the view's pair, which tells its progress in the message pane.
CommandResult RunMatching(CCorvaneView& view, int (StereoPair::*method)());

// The same for a method that leaves its photos: whatever its result, both images are shown with the pairs
// that it has. Then the photos go.
CommandResult RunMatchingWithDisplay(CCorvaneView& view, int (StereoPair::*method)());

// Opens a window on each image and draws the pairs' places over it, numbered with their ids. Nothing happens
// without pairs or without both images.
void ShowMatchPairs(CMainFrame& frame, const StereoPair& pair);

}  // namespace corvane
