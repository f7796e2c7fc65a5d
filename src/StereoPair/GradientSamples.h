#pragma once

#include <span>

#include "erdasimg/ErdasImg.h"

namespace corvane {

// The bilinear samples of band 0 at many places, and their central differences gCol and gRow: what
// GetPixelBilinear and GetGradientBilinear give, bit for bit. All spans have the same size.
//
// Cost: of a byte image, with all places inside of it by a pixel or two, about a third of sampling five
// times.
void SampleWithGradients(const ErdasImg& image, std::span<const double> rows, std::span<const double> cols,
                         std::span<double> samples, std::span<double> gCol, std::span<double> gRow);

}  // namespace corvane
