#pragma once

#include <array>
#include <cmath>
#include <cstddef>

#include "StereoPair/LsmParameters.h"
#include "numerics/Point2.h"

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

// Whether a template's match ends without a result. A step that converges is never too far.
inline bool HasDiverged(const LsmParameters& parameters, const LsmStep& step) {
  const LsmStep shift = {parameters.a0, parameters.b0};
  return !AreFinite(parameters) || !(step.IsSmall() || (step.IsBounded() && shift.IsBounded()));
}

// The one that is smaller in magnitude; the second of equal ones.
inline double SmallerOf(double a, double b) {
  return std::fabs(a) < std::fabs(b) ? a : b;
}

// The shifts of the last four passes that neither converged nor diverged, that of a pass in slot pass mod 4.
// Kept: 0 where there is none yet, so that three passes, or fewer, can be taken for a swing.
struct ShiftRing {
  std::array<double, 4> a0 = {};
  std::array<double, 4> b0 = {};

  void Store(int pass, const LsmParameters& parameters) {
    const auto slot = static_cast<std::size_t>(pass % 4);
    a0[slot] = parameters.a0;
    b0[slot] = parameters.b0;
  }

  // Whether the patch jumps between two places: every other one is the same, neighbours are not.
  bool Swings() const {
    const bool repeats =
        LsmStep{a0[2] - a0[0], b0[2] - b0[0]}.IsSmall() && LsmStep{a0[3] - a0[1], b0[3] - b0[1]}.IsSmall();
    const double limit = 2.0 * kLsmTolerance;
    return repeats && (std::fabs(a0[2] - a0[3]) > limit || std::fabs(b0[2] - b0[3]) > limit);
  }

  // Where a swing ends; centreX is the column of the template's centre.
  // Kept: two additions to the column, and none to the row.
  void MovePosition(double centreX, Point2& position) const {
    position.x += SmallerOf(a0[3], centreX);
    position.x += SmallerOf(b0[3], a0[0]);
  }
};

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
