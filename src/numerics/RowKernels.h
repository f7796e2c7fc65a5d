#pragma once

#include <cstddef>

namespace corvane {

// Loops over rows of doubles, in the version of the machine code that fits. Each product and each sum or
// difference is rounded by itself, in the order told, whatever the version.

// to[j] += factor * from[j] for j < n.
void AddMultiple(double* to, const double* from, double factor, std::ptrdiff_t n);

// row[j] -= pivot[j] * factor for j < n.
void SubtractMultiple(double* row, const double* pivot, double factor, std::ptrdiff_t n);

// The same with `nPivots` rows one after the other, up to kMostPivots.
constexpr int kMostPivots = 8;
void SubtractMultiples(double* row, const double* const* pivots, const double* factors, int nPivots,
                       std::ptrdiff_t n);

// The mask of an element that SubtractAndSearch looks at, all bits but the sign, and of one that it does not.
constexpr double kHidden = 0.0;
double Shown();

// SubtractMultiple of each of `nRows` rows, up to kMostRows, with its own factor, and in `largest` the
// largest absolute value that is left in it among the elements whose mask is Shown(): 0 where these hold
// nothing but 0 and NaN.
constexpr int kMostRows = 4;
void SubtractAndSearch(double* const* rows, const double* factors, int nRows, const double* pivot,
                       const double* mask, std::ptrdiff_t n, double* largest);

}  // namespace corvane
