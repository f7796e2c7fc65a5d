#pragma once

#include "TIN/PointRecord.h"
#include "numerics/Extent6.h"

namespace corvane {

// The extent of a single point.
inline Extent6 ExtentOf(const PointRecord& record) {
  return {record.x, record.x, record.y, record.y, record.z, record.z};
}

// Widens a range by a value. One that is no number leaves it alone.
inline void Widen(double& min, double& max, double value) {
  min = value < min ? value : min;
  max = value > max ? value : max;
}

// Kept: a number that sets the minimum is not tested against the maximum. The first occupied row or column of
// a grid so sets the minimum alone, and the first height of a file neither.
template <typename T>
void FollowMinFirst(T number, T& min, T& max) {
  if (number < min) {
    min = number;
  } else if (number > max) {
    max = number;
  }
}

inline void Widen(Extent6& extent, const PointRecord& record) {
  Widen(extent.minX, extent.maxX, record.x);
  Widen(extent.minY, extent.maxY, record.y);
  Widen(extent.minZ, extent.maxZ, record.z);
}

}  // namespace corvane
