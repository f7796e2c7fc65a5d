#pragma once

#include "shell/CommandTable.h"

namespace corvane {

// The commands of the menu Matching.

// Resamples a stereo pair so that corresponding points share a row.
CommandResult OnCreateEpipolarImages(CCorvaneView& view);

// Projects ground points into the photo that is shown, and draws them over it.
CommandResult OnShowGroundPoints(CCorvaneView& view);

// Match a grid of places of the left image by their windows: by correlation, by the sum of differences, at
// zero crossings, by the steps from pixel to pixel outwards, and from left to right and back.
CommandResult OnAreaCorrelationCoeff(CCorvaneView& view);
CommandResult OnAreaDifference(CCorvaneView& view);
CommandResult OnAreaFeatureCC(CCorvaneView& view);
CommandResult OnStructuralDescriptorCC(CCorvaneView& view);
CommandResult OnTwoWayMatch(CCorvaneView& view);

// Maps the disparity of every pixel, found by correlation.
CommandResult OnAreaCorrelation(CCorvaneView& view);

// Scores a true disparity map, and smooths what correlation finds around it.
CommandResult OnExamTruth(CCorvaneView& view);

// Maps the entropy of the window around each pixel.
CommandResult OnEntropyMap(CCorvaneView& view);

}  // namespace corvane
