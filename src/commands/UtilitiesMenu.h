#pragma once

#include "shell/CommandTable.h"

namespace corvane {

// Turn text points into a points file: "x y z value" and "id, x, y, z, value".
CommandResult OnTextPointsXyzToBin(CCorvaneView& view);
CommandResult OnTextPointsIdxyzToBin(CCorvaneView& view);

// Leaves out the points in the areas of a mask.
CommandResult OnCropOutPoints(CCorvaneView& view);

// Write as text the points in a rectangle that have a least score, or those in the areas of a mask.
CommandResult OnSubsetPoints(CCorvaneView& view);
CommandResult OnSubsetPoints2(CCorvaneView& view);

// Takes one point for each node of a regular grid.
CommandResult OnResamplePoints(CCorvaneView& view);

// Merges grids of points, the highest score first, and puts points of one grid in the place of another's.
CommandResult OnMergeGridPoints(CCorvaneView& view);
CommandResult OnReplaceGridPoints(CCorvaneView& view);

// Shows the header of a points file and changes its spacing.
CommandResult OnPointsHead(CCorvaneView& view);

// A place for trying routines out; it serves no general use.
CommandResult OnTest(CCorvaneView& view);

}  // namespace corvane
