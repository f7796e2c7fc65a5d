#include "StereoPair/DisparityPasses.h"

#include <string>

#include "io/NumberText.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr double kLargestCorrection = 1.5;  // pixels; of a pass that converges, it is less

// The difference at position `place` of `count` neighbours that are `stride` apart, `i` being its index.
DisparityDifference DifferenceAt(std::size_t i, std::size_t place, std::size_t count, std::size_t stride) {
  if (count < 2) return {};
  if (place == 0) return {2, {i, i + stride}, {-1.0, 1.0}};
  if (place == count - 1) return {2, {i - stride, i}, {-1.0, 1.0}};
  return {3, {i - stride, i, i + stride}, {-1.0, 2.0, -1.0}};
}

}  // namespace

double DisparityDifference::GetObservation(std::span<const double> disparities) const {
  double sum = 0.0;
  for (std::size_t k = 0; k < count; ++k) sum += factors[k] * disparities[unknowns[k]];
  return -sum;
}

DisparityDifference DisparityLattice::GetDifference(std::size_t k) const {
  const std::size_t n = GetCount();
  return k < n ? DifferenceAt(k, k % nCols, nCols, 1) : DifferenceAt(k - n, (k - n) / nCols, nRows, nCols);
}

bool CorrectDisparities(std::span<const double> corrections, const DisparityLimits& limits,
                        std::span<double> disparities, DisparityMatch& match) {
  const auto [least, most] = std::minmax_element(corrections.begin(), corrections.end());
  const double largest = std::max(std::fabs(*least), std::fabs(*most));
  if (largest < kLargestCorrection && match.score > limits.matchThreshold) {
    match.outcome = LsmOutcome::Converged;
  }
  bool areBounded = true;
  for (std::size_t i = 0; i < disparities.size(); ++i) {
    disparities[i] += corrections[i];
    areBounded &= std::fabs(disparities[i]) <= limits.disparity;
  }
  if (!areBounded) {
    match = {LsmOutcome::Diverge, 0.0};
    return false;
  }
  std::string line = "\n";
  AppendGeneral(line, match.score, 15);
  line += ' ';
  AppendGeneral(line, *least + 0.0, 15);  // without the sign of a zero
  line += ' ';
  AppendGeneral(line, *most + 0.0, 15);
  Ui().Trace(line);
  return true;
}

}  // namespace corvane
