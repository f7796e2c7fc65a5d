#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "erdasimg/ErdasImg.h"

namespace corvane {

class ResultFiles;

// Maps of dense matching: images of one band that lie pixel by pixel over another image.

// The rows, or the columns, that dense matching visits: `first` and every `step`-th one behind it, before
// `end`.
struct DensePlaces {
  std::int64_t first = 0;
  std::int64_t end = 0;
  std::int64_t step = 1;

  // Along an image of `length` pixels: half a window and one more from each end, with the spacing cut to
  // whole pixels, of which 0 counts as 1. None for a spacing that is not above 0, or a window of no pixels.
  DensePlaces(std::int32_t length, std::int32_t window, double spacing);

  std::int64_t GetCount() const { return first < end ? (end - first - 1) / step + 1 : 0; }
};

// How many places have been visited, and at how many of them the score is not below the threshold.
struct DenseCounts {
  std::int64_t nPlaces = 0;
  std::int64_t nMatched = 0;
};

// A map over the image, with its header and pixels of this type, all 0; null without memory. It has one band,
// however many the image has: only the first one is matched.
std::unique_ptr<ErdasImg> MakeMap(const ErdasImg& image, std::uint16_t packType);

// Writes the map; a failure is shown. Either way `files` knows of it.
void WriteMap(const std::string& path, ErdasImg& map, ResultFiles& files);

}  // namespace corvane
