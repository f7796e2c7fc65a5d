#pragma once

#include "numerics/Matrix.h"

namespace corvane {

// What a photo does with its 3 x 3 matrices. Sums run from left to right; `out` is not an argument.

// A matrix of zeros. Throws std::bad_alloc.
OwnedMatrix NewMatrix3();

// out = m v.
inline void MultiplyVector3(ConstMatrix m, const double v[3], double out[3]) {
  for (int i = 0; i < 3; ++i) out[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
}

// out = mt v, mt being the transpose of m.
inline void MultiplyTransposed3(ConstMatrix m, const double v[3], double out[3]) {
  for (int i = 0; i < 3; ++i) out[i] = m[0][i] * v[0] + m[1][i] * v[1] + m[2][i] * v[2];
}

}  // namespace corvane
