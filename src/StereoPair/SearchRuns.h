#pragma once

#include <cstdint>
#include <vector>

#include "erdasimg/ErdasImg.h"
#include "numerics/Point2.h"

namespace corvane {

// Along one axis: places `first`, `first` + 1, ... whose windows begin at pixels `corner`, `corner` + 1, ...
struct SearchRun {
  std::int64_t first = 0;
  std::int64_t corner = 0;
  std::int64_t n = 0;

  friend bool operator==(const SearchRun&, const SearchRun&) = default;
};

// The positions base + first to base + last of a search, as far as they need to be looked at: the windows of
// `length` pixels around them begin at truncate(position - length / 2). Windows wholly outside of an image of
// `size` pixels are all alike, so that of the places before it, and of those behind it, only the first three
// count: one that is left out, the best and the second best. No more places come than about size + length,
// whatever the range is.
void FindSearchRuns(double base, std::int64_t first, std::int64_t last, std::int32_t length,
                    std::int32_t size, std::vector<SearchRun>& runs);

// Whether the place that a search begins with counts in the rectangle.
// Kept: the right and the bottom edge do not belong to the rectangle here, but in the walk.
bool HoldsStart(const ImageRect& rect, const Point2& start);

}  // namespace corvane
