#pragma once

#include <span>

namespace corvane {

// Statistics of the values in an array that are not `skip`, of which there are k. Sums run from the first
// value to the last.

// The sum over k; 0 if k is 0.
double ArrayMean(std::span<const double> values, double skip);

// The sample standard deviation around `mean`: sqrt((sum of squares - k * mean^2) / (k - 1)); 0 for k < 2,
// and where rounding leaves a difference below 0.
double ArrayStdDev(std::span<const double> values, double mean, double skip);

// sqrt(sum of squares / k); 0 if k is 0.
double ArrayRms(std::span<const double> values, double skip);

// The smallest; 0 of an empty array.
// Kept: the first value is never looked at; without any other the result is 1.7e+308.
double ArrayMin(std::span<const double> values, double skip);

// The largest; 0 of an empty array.
// Kept: the first value counts even if it is `skip`.
double ArrayMax(std::span<const double> values, double skip);

}  // namespace corvane
