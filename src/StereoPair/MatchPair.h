#pragma once

#include <cstdint>

#include "numerics/Point2.h"

namespace corvane {

// One place seen in both images of a pair, in columns (x) and rows (y) of the images as held in memory: the
// origin of an image that is a part of a scan is not in them.
struct MatchPair {
  std::int32_t id = -1;
  Point2 left;
  Point2 right;
  double score = -1.0;  // what it means depends on the method; -1.0: failed or unknown

  friend bool operator==(const MatchPair&, const MatchPair&) = default;
};

}  // namespace corvane
