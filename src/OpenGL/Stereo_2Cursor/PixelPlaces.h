#pragma once

#include <cstddef>
#include <cstdint>

#include "numerics/Matrix.h"

namespace corvane {

class ErdasImg;

// Up to kMost cells of a row, and the pixels of another image that they take: coordinates cut towards zero.
struct PixelPlaces {
  static constexpr std::int32_t kMost =
      512;  // what a strip of this width needs of either image stays at hand
  static constexpr std::int32_t kNone = INT32_MIN;  // as a row: the cell takes none

  alignas(64) std::int32_t rows[kMost];
  alignas(64) std::int32_t cols[kMost];
};

// Coordinates that give a pixel: first <= coordinate < end. All are held within 32 bits.
struct PlaceLimits {
  double firstCol = 0.0;
  double endCol = 0.0;
  double firstRow = 0.0;
  double endRow = 0.0;
};

// The following compute in the documented order, each operation rounded by itself, whatever the version of
// the machine code that fits. They write the first `n` places, and may write more; n <= kMost.

// Of the cells (row, firstCol), (row, firstCol + 1), ...: with (u, v, w) = H (col, row, 1), each component
// summed from left to right, the coordinates are u / w + 0.5 and v / w + 0.5.
void MapCells(ConstMatrix h, std::int32_t row, std::int32_t firstCol, std::int32_t n,
              const PlaceLimits& limits, PixelPlaces& places);

// Of points on the ground: with n = P (x - centre x, y - centre y, z - centre z), as AerialPhoto's
// GroundToImage, the coordinates are n0 / n2 and n1 / n2. `x` and `z` have room for kMost numbers.
void ProjectCells(ConstMatrix p, const double centre[3], const double* x, double y, const double* z,
                  std::int32_t n, const PlaceLimits& limits, PixelPlaces& places);

// Stores the pixels at the places, which lie within `from`, into the cells from (row, firstCol) on of `to`,
// an image of the same pixel type: in all of its bands, 0 in those that `from` lacks.
void TakePixels(const ErdasImg& from, const PixelPlaces& places, std::int32_t n, ErdasImg& to,
                std::int32_t row, std::int32_t firstCol);

}  // namespace corvane
