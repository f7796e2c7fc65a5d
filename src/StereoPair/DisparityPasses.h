#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "StereoPair/LeastSquaresMatch.h"
#include "StereoPair/LeastSquaresPasses.h"

namespace corvane {

// What the forms of least-squares matching with many disparities share: disparities at the crossings of
// nRows x nCols lines, row by row, which second differences keep smooth, and the passes of the adjustment.

constexpr double kBrightnessWeight = 1.0;
constexpr double kSmoothnessWeight = 100.0;

// A difference of disparities that are neighbours in a row or column, by their indices in ascending order:
// -1, 2, -1 within, -1, 1 at either end; none where there is no neighbour. Its observation is that it is 0.
struct DisparityDifference {
  std::size_t count = 0;
  std::size_t unknowns[3] = {};
  double factors[3] = {};

  // What the present disparities lack.
  double GetObservation(std::span<const double> disparities) const;
};

struct DisparityLattice {
  std::size_t nCols = 0;
  std::size_t nRows = 0;

  std::size_t GetCount() const { return nCols * nRows; }
  // The largest distance of two indices in a difference.
  std::size_t GetBand() const { return std::min(2 * std::max(nCols, std::size_t{1}), GetCount() - 1); }
  // Along the row, then down the column: 2 GetCount() of them.
  DisparityDifference GetDifference(std::size_t k) const;
};

// When the passes end.
struct DisparityLimits {
  double disparity = 0.0;       // the largest, in magnitude
  int iterations = 0;           // passes run from 1 to before it
  double matchThreshold = 0.0;  // a score that is not above it does not converge
};

struct DisparityMatch {
  LsmOutcome outcome = LsmOutcome::Irregular;
  double score = 0.0;
};

// Adds the corrections to the disparities. Returns whether the match goes on to another pass; the debug
// stream then gets "\n" with the score, the smallest and the largest correction. As the outcome does, the
// line begins with its newline and ends without one.
bool CorrectDisparities(std::span<const double> corrections, const DisparityLimits& limits,
                        std::span<double> disparities, DisparityMatch& match);

// Runs the passes of a model, which offers
//   double Sample(disparities)              samples with them; the score
//   bool Adjust(disparities, corrections)   false without memory
// until the outcome. Converged, with one pass more for the score, when no correction reaches 1.5 pixels and
// the score is above the threshold; Irregular in pass 19, or with the iterations; Diverge, with the score
// 0.0, when a disparity is beyond its limit or no number. `corrections` is room for as many as there are
// disparities. The score is that of the last samples: where the iterations end the passes they were taken
// before the last corrections, and without any pass it is 0.0. False without memory.
template <typename Model>
bool RunDisparityPasses(Model& model, const DisparityLimits& limits, std::span<double> disparities,
                        std::span<double> corrections, DisparityMatch& match) {
  for (int pass = 1; pass < limits.iterations; ++pass) {
    match.score = model.Sample(disparities);
    if (match.outcome == LsmOutcome::Converged || pass == kLastLsmPass) return true;
    if (!model.Adjust(disparities, corrections)) return false;
    if (!CorrectDisparities(corrections, limits, disparities, match)) return true;
  }
  return true;
}

}  // namespace corvane
