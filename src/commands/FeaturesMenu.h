#pragma once

#include "shell/CommandTable.h"

namespace corvane {

// The commands of the menu Features: points of an image, shown over it.

// Pixels that stand out of their neighbours.
CommandResult OnPoints(CCorvaneView& view);

// Harris corners, alone or with a descriptor each.
CommandResult OnHarrisCorner(CCorvaneView& view);
CommandResult OnStructuralFeature(CCorvaneView& view);
CommandResult OnSpiralDescriptor(CCorvaneView& view);

}  // namespace corvane
