#pragma once

#include "erdasimg/ErdasImg.h"

namespace corvane {

// The extent form for images. 0 on OK, -1 on Cancel with nothing changed.

// Shows what the image covers on the ground, `xMap` and `yMap` being its upper left corner.
int GetGroundExtent(const ErdasHeader& header, GroundExtent& rect);

// The same, and what has been entered as the cell size; `xCell` is shown.
int GetGroundExtent(const ErdasHeader& header, GroundExtent& rect, float& cellSize);

// Shows the image-file coordinates of the first and the last pixel. What is entered is cut to whole numbers.
int GetPixelExtent(const ErdasHeader& header, ImageRect& rect);

// Shows the bounds widened as ExtentInput does, and asks for a cell size and a height, too.
int GetExtent(const GroundExtent& bounds, GroundExtent& rect, float& cellSize, float& z);

}  // namespace corvane
