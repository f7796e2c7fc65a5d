#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "TIN/PointRecord.h"

namespace corvane {

template <typename T>
void AppendBytes(std::string& bytes, const T& value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

inline void AppendVertexBytes(std::string& bytes, const PointRecord& record) {
  AppendBytes(bytes, record.id);
  for (const double number : {record.x, record.y, record.z, record.value}) AppendBytes(bytes, number);
}

// The bytes of a ".tin" file of these triangles, three positions in `points` each.
inline std::string TinBytes(const std::vector<PointRecord>& points,
                            const std::vector<std::vector<std::size_t>>& triangles) {
  std::string bytes;
  AppendBytes(bytes, static_cast<std::int32_t>(triangles.size()));
  for (const auto& triangle : triangles) {
    for (const std::size_t corner : triangle) AppendVertexBytes(bytes, points[corner]);
  }
  return bytes;
}

// Two triangles over the square from (100, 200) to (110, 210): heights 1, 2, 3, 4 counter-clockwise from
// (100, 200).
inline std::string SquareTinBytes() {
  return TinBytes(
      {{0, 100, 200, 1, 1.0}, {1, 110, 200, 2, 1.0}, {2, 110, 210, 3, 1.0}, {3, 100, 210, 4, 1.0}},
      {{0, 1, 2}, {0, 2, 3}});
}

}  // namespace corvane
