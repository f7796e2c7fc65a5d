#pragma once

#include <cstddef>
#include <cstdint>

namespace corvane {

// Loops over rows of doubles, in the version of the machine code that fits. Each product and each sum or
// difference is rounded by itself, in the order told, whatever the version.

// to[j] += factor * from[j] for j < n.
void AddMultiple(double* to, const double* from, double factor, std::ptrdiff_t n);

// row[j] -= term[j] * factor for j < n.
void SubtractMultiple(double* row, const double* term, double factor, std::ptrdiff_t n);

// The same with `nTerms` rows one after the other, up to kMostTerms.
constexpr int kMostTerms = 8;
void SubtractMultiples(double* row, const double* const* terms, const double* factors, int nTerms,
                       std::ptrdiff_t n);

// row[j] -= (term[j] * factor) * weight for each of the `nTerms` rows.
void SubtractWeightedMultiples(double* row, const double* const* terms, const double* factors,
                               const double* weights, int nTerms, std::ptrdiff_t n);

// The mask of an element that SubtractAndSearch looks at, which clears the sign, and of one that it does not.
constexpr std::int64_t kShown = INT64_MAX;
constexpr std::int64_t kHidden = 0;

// SubtractMultiple of each of `nRows` rows, up to kMostRows, with its own factor, and in `largest` the
// largest absolute value that is left in it among the elements whose mask is kShown: 0 where these hold
// nothing but 0 and NaN.
constexpr int kMostRows = 4;
void SubtractAndSearch(double* const* rows, const double* factors, int nRows, const double* pivot,
                       const std::int64_t* mask, std::ptrdiff_t n, double* largest);

}  // namespace corvane
