#pragma once

#include "shell/CommandTable.h"

namespace corvane {

// The commands of the menu Matching.

// Resamples a stereo pair so that corresponding points share a row.
CommandResult OnCreateEpipolarImages(CCorvaneView& view);

// Projects ground points into the photo that is shown, and draws them over it.
CommandResult OnShowGroundPoints(CCorvaneView& view);

}  // namespace corvane
