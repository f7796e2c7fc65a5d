#include "TIN/StoredPoints.h"

#include <cstring>
#include <new>

#include "TIN/PointBlocks.h"
#include "io/LargePages.h"

namespace corvane {

std::optional<std::vector<StoredPoint>> ReadStoredPoints(InputFile& file, std::int32_t nPoints,
                                                         std::int32_t* nMissing) {
  PointBlocks blocks(file, nPoints);
  if (!blocks.IsBelievable() || !blocks.Allocate()) return std::nullopt;
  try {
    std::vector<StoredPoint> points;
    if (blocks.IsSizeKnown()) ReserveLarge(points, static_cast<std::size_t>(nPoints));
    for (auto block = blocks.Next(); !block.empty(); block = blocks.Next()) {
      const std::size_t first = points.size();
      points.resize(first + block.size() / kPointBytes);
      std::memcpy(points.data() + first, block.data(), block.size());
    }
    if (!blocks.IsComplete()) return std::nullopt;
    if (nMissing) *nMissing = blocks.GetMissingCount();
    return points;
  } catch (const std::bad_alloc&) {
  }
  return std::nullopt;
}

}  // namespace corvane
