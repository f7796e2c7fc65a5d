#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

namespace corvane {

// The correlation coefficient as it is defined, as one loop over doubles; 1.0 if both sides are flat, 0.0 if
// one is.
template <typename Value>
double PlainCoefficient(const Value* a, const Value* b, std::size_t count) {
  double sA = 0.0, sAA = 0.0, sB = 0.0, sBB = 0.0, sAB = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    const double left = a[i];
    const double right = b[i];
    sA += left;
    sAA += left * left;
    sB += right;
    sBB += right * right;
    sAB += left * right;
  }
  const double n = static_cast<double>(count);
  const double vA = sAA - sA * sA / n;
  const double vB = sBB - sB * sB / n;
  if (vA == 0.0 && vB == 0.0) return 1.0;
  if (vA == 0.0 || vB == 0.0) return 0.0;
  return (sAB - sA * sB / n) / std::sqrt(vA * vB);
}

inline double PlainCoefficient(const std::vector<double>& a, const std::vector<double>& b) {
  return PlainCoefficient(a.data(), b.data(), a.size());
}

}  // namespace corvane
