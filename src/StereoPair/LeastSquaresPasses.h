#pragma once

#include <cmath>

#include "StereoPair/LsmParameters.h"

namespace corvane {

// What decides when a least-squares match ends. Passes are counted from 1.
constexpr double kLsmTolerance = 0.15;  // pixels
constexpr double kLsmLimit = 10.0;      // pixels
constexpr int kLastLsmPass = 19;

// A shift of the patch, in pixels.
struct LsmStep {
  double x = 0.0;
  double y = 0.0;

  // Whether a match has converged with it. Not that of exactly the tolerance.
  bool IsSmall() const { return std::fabs(x) < kLsmTolerance && std::fabs(y) < kLsmTolerance; }

  // False where a match diverges: beyond the limit, and for what is no number.
  bool IsBounded() const { return std::fabs(x) <= kLsmLimit && std::fabs(y) <= kLsmLimit; }
};

// A match diverges with parameters that are not.
inline bool AreFinite(const LsmParameters& p) {
  return std::isfinite(p.r0) && std::isfinite(p.r1) && std::isfinite(p.a0) && std::isfinite(p.a1) &&
         std::isfinite(p.a2) && std::isfinite(p.b0) && std::isfinite(p.b1) && std::isfinite(p.b2);
}

// Adds the unknowns to the parameters, one by one. The step is that of a0 and b0.
inline LsmStep AddCorrections(LsmParameters& p, const double* x) {
  p.r0 += x[0];
  p.r1 += x[1];
  p.a0 += x[2];
  p.a1 += x[3];
  p.a2 += x[4];
  p.b0 += x[5];
  p.b1 += x[6];
  p.b2 += x[7];
  return {x[2], x[5]};
}

}  // namespace corvane
