#pragma once

#include "shell/CommandTable.h"

namespace corvane {

// Triangulates a points file into a TIN file.
CommandResult OnCreateTin(CCorvaneView& view);

// Shows how many points of a text have which value.
CommandResult OnPointValueHistogram(CCorvaneView& view);

// The slope filter on the loaded TIN, up to three passes.
CommandResult OnSlopeFilter(CCorvaneView& view);

// One pass of smoothing over the loaded TIN.
CommandResult OnSmooth(CCorvaneView& view);

// Measures the TIN against check points in a rectangle, or in the regions of a mask.
CommandResult OnTinPointsComparing(CCorvaneView& view);
CommandResult OnTinPointsComparing2(CCorvaneView& view);

// Measures the TINs of a batch file against one set of check points, each in the regions of its own mask.
CommandResult OnTinPtsCompareBatch(CCorvaneView& view);

// Filters and smooths the TINs of a batch file: three times up to three passes and one smoothing each.
CommandResult OnFilterBatch(CCorvaneView& view);

// Splits the vertices into ground and objects by plane cuts, and writes both as points files.
CommandResult OnTinSegmentation(CCorvaneView& view);

// The same from the steepest vertices.
CommandResult OnSurfaceReduction(CCorvaneView& view);

CommandResult OnTinClassification(CCorvaneView& view);
CommandResult OnTinDifferential(CCorvaneView& view);

// Marks the vertices that lie far from a smooth surface through their surroundings, and writes them and the
// others as points files.
CommandResult OnSurfaceSmooth(CCorvaneView& view);

// A trial of surfaces of radial basis functions on a points file.
CommandResult OnSurfaceFitting(CCorvaneView& view);

// Shows how many vertices there are at which height.
CommandResult OnTinZHistogram(CCorvaneView& view);

}  // namespace corvane
