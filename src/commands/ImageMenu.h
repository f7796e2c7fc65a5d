#pragma once

#include "shell/CommandTable.h"

namespace corvane {

// The commands of the menu Image.

// Counts the grey levels into the debug stream.
CommandResult OnImageHistogram(CCorvaneView& view);

// Classifies grey levels around the peaks of their histogram.
CommandResult OnIsodata(CCorvaneView& view);

// Runs the wavelet filters over a fixed signal; shows and writes nothing.
CommandResult OnWaveletTransform(CCorvaneView& view);

// Breaks an image into regions, each in a colour of its own.
CommandResult OnSegmention(CCorvaneView& view);

// Marks the zero crossings of the Laplacian of Gaussian.
CommandResult OnZeroCrossing(CCorvaneView& view);

// Smooth an image, and give the magnitude of its gradient.
CommandResult OnGaussianSmooth(CCorvaneView& view);
CommandResult OnGradientImage(CCorvaneView& view);

// Plots a row of an image in the graph.
CommandResult OnImageProfile(CCorvaneView& view);

// Show an image in a window of its own, and points over the image that is shown.
CommandResult OnShowImage(CCorvaneView& view);
CommandResult OnShowPoints(CCorvaneView& view);

// Reads what a resection of a photo would start from, and computes nothing.
CommandResult OnSpaceResection(CCorvaneView& view);

// Adjusts a block of photos in three rounds.
CommandResult OnBundleAdjustment(CCorvaneView& view);

// Projects photos onto a DEM, as one image.
CommandResult OnCreateOrthophoto(CCorvaneView& view);

}  // namespace corvane
