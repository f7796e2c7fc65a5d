#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/TinBytes.h"

namespace corvane {

// A points file: the numbers of its header are minX, maxY, maxX, minY, spacingX, spacingY, those of a record
// x, y, z, value.
inline std::string PointsBytes(std::int32_t count, const std::vector<double>& header,
                               const std::vector<double>& records) {
  std::string bytes;
  AppendBytes(bytes, count);
  for (const double number : header) AppendBytes(bytes, number);
  for (const double number : records) AppendBytes(bytes, number);
  return bytes;
}

}  // namespace corvane
