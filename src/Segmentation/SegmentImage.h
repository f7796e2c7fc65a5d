#pragma once

#include <cstdint>

#include "Segmentation/PlaneImage.h"

namespace corvane {

// The most that `sigma` may be, in pixels.
constexpr float kLargestSigma = 10000.0f;

// Whether there is the memory to segment an image of so many pixels: about 70 bytes for each.
bool HasMemoryToSegment(std::int64_t nPixels);

// Breaks an image into regions of similar colour: smooths it, joins neighbouring pixels with SegmentGraph
// along PixelEdges, the lightest first, and then joins regions of fewer than `minSize` pixels to a neighbour.
// `sigma` is that of the Gaussian, in pixels, 0.01 at least; `c` the scale, which for larger regions is
// larger.
//
// Every pixel gets the colour of its region. Colours are random, the same ones at each call: three numbers
// of std::rand for each pixel of the image after std::srand(55), of which the region takes those of its
// root. Two regions may have the same colour by chance.
//
// Of images of more than 4 million pixels the message pane tells the steps.
//
// `regionCount` is the number of regions. The result is empty, with a count of 0, for an image without
// pixels, a sigma above kLargestSigma, and without memory.
PlaneImage<Rgb> SegmentImage(const PlaneImage<std::uint8_t>& image, float sigma, float c,
                             std::int32_t minSize, std::int32_t& regionCount);
PlaneImage<Rgb> SegmentImage(const PlaneImage<Rgb>& image, float sigma, float c, std::int32_t minSize,
                             std::int32_t& regionCount);

}  // namespace corvane
