#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "TIN/PointRecord.h"

namespace corvane {

class InputFile;

// A point of a ".pts" file as it stands there.
struct StoredPoint {
  double x = 0.0;  // ground units
  double y = 0.0;
  double z = 0.0;
  double value = 0.0;
};
static_assert(sizeof(StoredPoint) == kPointBytes);

// The next `nPoints` points of a file, zeros for those that a cut one lacks (as PointBlocks has them), whose
// number goes to `nMissing` where it is wanted. Nothing if the file can't hold so many, memory runs out or a
// read fails.
std::optional<std::vector<StoredPoint>> ReadStoredPoints(InputFile& file, std::int32_t nPoints,
                                                         std::int32_t* nMissing = nullptr);

}  // namespace corvane
