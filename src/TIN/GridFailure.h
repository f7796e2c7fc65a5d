#pragma once

#include <string>

#include "io/NumberText.h"

namespace corvane {

// Why no grid of points is made, as sentences for the person.

inline constexpr const char* kGridTooLarge = "The grid is too large for the number of points.";
inline constexpr const char* kNoPointInGrid = "No point lies in the grid.";

// For a cell size that is no positive number.
inline std::string NoGridText(double cellSize) {
  return "There is no grid: cell size " + GeneralText(cellSize, 6) + ".";
}

}  // namespace corvane
