#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "Geometry/Point.h"

namespace corvane {

// What points and vectors do coordinate by coordinate; `Result` is Point or Vector. All results have `err`
// Enot.

template <typename Result>
Result Made(int dim, double x, double y, double z) {
  Result result;
  result.dim = dim;
  result.x = x;
  result.y = y;
  result.z = z;
  return result;
}

// p + q or, with a sign of -1, p - q, in the larger dimension.
template <typename Result>
Result Combined(const Point& p, const Point& q, double sign) {
  return Made<Result>(std::max(p.dim, q.dim), p.x + sign * q.x, p.y + sign * q.y, p.z + sign * q.z);
}

template <typename Result>
Result Scaled(const Point& p, double c) {
  return Made<Result>(p.dim, c * p.x, c * p.y, c * p.z);
}

template <typename Result>
Result Divided(const Point& p, double c) {
  return Made<Result>(p.dim, p.x / c, p.y / c, p.z / c);
}

// The sum of weights[i] * terms[i], from the first to the last; of none the origin in 1 dimension.
template <typename Result, typename Number>
Result WeightedSum(std::span<const Number> weights, std::span<const Result> terms) {
  const std::size_t count = std::min(weights.size(), terms.size());
  Result sum = Made<Result>(1, 0.0, 0.0, 0.0);
  for (std::size_t i = 0; i < count; ++i) {
    sum = Combined<Result>(sum, Scaled<Result>(terms[i], static_cast<double>(weights[i])), 1.0);
  }
  return sum;
}

}  // namespace corvane
