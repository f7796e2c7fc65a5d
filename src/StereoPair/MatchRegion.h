#pragma once

#include <cstdint>

#include "StereoPair/LsmParameters.h"
#include "erdasimg/ScanRegion.h"

namespace corvane {

// What the matching of regions reads and writes of a region of the left image. Places are columns and rows.
struct MatchRegion {
  std::int32_t id = 0;
  std::int32_t classState = 0;  // 1: on the ground, as far as is known; 2: raised above it
  double area = 0.0;
  double perimeter = 0.0;
  double centerX = 0.0;  // the centroid
  double centerY = 0.0;
  std::uint8_t matchState = 0;  // 0: unmatched; 1 to 3: from that many points or more; 4: matched; 5: refined
  double colDisparity = 0.0;    // left minus right
  double rowDisparity = 0.0;
  LsmParameters lsmParameters;
  double score = 0.0;
  // The bounding box, along the edges of pixels: it begins with the pixel at (leftBound, topBound) and ends
  // before the one at (rightBound, bottomBound).
  double leftBound = 0.0;
  double topBound = 0.0;
  double rightBound = 0.0;
  double bottomBound = 0.0;
  ScanRegion scanRegion;  // its pixels
};

}  // namespace corvane
