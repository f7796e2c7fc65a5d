#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

namespace corvane {

// The correlation coefficient as it is defined; 1.0 if both sides are flat, 0.0 if one is.
inline double PlainCoefficient(const std::vector<double>& a, const std::vector<double>& b) {
  const double n = static_cast<double>(a.size());
  double sA = 0.0, sAA = 0.0, sB = 0.0, sBB = 0.0, sAB = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    sA += a[i];
    sAA += a[i] * a[i];
    sB += b[i];
    sBB += b[i] * b[i];
    sAB += a[i] * b[i];
  }
  const double vA = sAA - sA * sA / n;
  const double vB = sBB - sB * sB / n;
  if (vA == 0.0 && vB == 0.0) return 1.0;
  if (vA == 0.0 || vB == 0.0) return 0.0;
  return (sAB - sA * sB / n) / std::sqrt(vA * vB);
}

}  // namespace corvane
