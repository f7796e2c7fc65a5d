#include "StereoPair/BandedEquations.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "numerics/RowKernels.h"

namespace corvane {

BandedEquations::BandedEquations(std::size_t n, std::size_t band)
    : n_(n),
      band_(band),
      stride_(2 * band + 1),
      columns_(NewArray<double>(static_cast<std::int64_t>(n * stride_))),
      vector_(NewArray<double>(static_cast<std::int64_t>(n))),
      pivots_(NewArray<double>(static_cast<std::int64_t>(n))) {}

void BandedEquations::Clear() {
  std::fill_n(columns_.get(), n_ * stride_, 0.0);
  std::fill_n(vector_.get(), n_, 0.0);
}

void BandedEquations::Add(std::span<const std::size_t> unknowns, std::span<const double> factors, double l,
                          double weight) {
  for (std::size_t s = 0; s < unknowns.size(); ++s) {
    if (factors[s] == 0.0) continue;  // whatever it is multiplied by
    double* const column = GetColumn(unknowns[s]);
    for (std::size_t t = s; t < unknowns.size(); ++t) {
      if (factors[t] != 0.0) column[unknowns[t] - unknowns[s]] += factors[s] * factors[t] * weight;
    }
    if (l != 0.0) vector_[unknowns[s]] += factors[s] * l * weight;
  }
}

void BandedEquations::Solve(double* x) {
  std::copy_n(vector_.get(), n_, x);
  if (!Decompose()) return;
  Substitute(x);
  const bool areFinite = std::all_of(x, x + n_, [](double unknown) { return std::isfinite(unknown); });
  if (!areFinite) std::fill_n(x, n_, std::numeric_limits<double>::quiet_NaN());
}

bool BandedEquations::Decompose() {
  for (std::size_t i = 0; i < n_; ++i) {
    MakeColumn(i);
    double* const column = GetColumn(i);
    if (!(column[0] > 0.0)) return false;
    pivots_[i] = std::sqrt(column[0]);
    for (std::size_t j = 1; j <= band_; ++j) column[j] /= pivots_[i];
  }
  return true;
}

// Takes off the products with the columns before, the newest one first.
void BandedEquations::MakeColumn(std::size_t i) {
  const double* terms[kMostTerms];
  double factors[kMostTerms];
  const auto length = static_cast<std::ptrdiff_t>(band_ + 1);
  const std::size_t end = std::min(band_, i);  // of the distance to a column before
  for (std::size_t first = 1; first <= end; first += kMostTerms) {
    int count = 0;
    for (std::size_t k = first; k <= end && count < kMostTerms; ++k) {
      terms[count] = GetColumn(i - k) + k;
      factors[count++] = *(GetColumn(i - k) + k);
    }
    SubtractMultiples(GetColumn(i), terms, factors, count, length);
  }
}

void BandedEquations::Substitute(double* x) {
  for (std::size_t i = 0; i < n_; ++i) {
    double sum = x[i];
    for (std::size_t k = 1; k <= std::min(band_, i); ++k) sum -= GetColumn(i - k)[k] * x[i - k];
    x[i] = sum / pivots_[i];
  }
  for (std::size_t i = n_; i-- > 0;) {
    double sum = x[i];
    const double* const column = GetColumn(i);
    for (std::size_t k = 1; k <= std::min(band_, n_ - 1 - i); ++k) sum -= column[k] * x[i + k];
    x[i] = sum / pivots_[i];
  }
}

}  // namespace corvane
