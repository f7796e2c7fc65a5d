#pragma once

#include <vector>

#include "Segmentation/PlaneImage.h"

namespace corvane {

// One half of a Gaussian of this sigma (pixels, at least 0.01), its centre first: ceil(4 sigma) + 1 weights,
// which with both halves add up to 1.
std::vector<float> GaussianMask(float sigma);

// Smooths along the rows and then along the columns. Pixels outside count as the outermost ones. All sums are
// floats: the centre first, then each pair of pixels at the same distance.
void SmoothPlane(PlaneImage<float>& plane, const std::vector<float>& mask);

}  // namespace corvane
