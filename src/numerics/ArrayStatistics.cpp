#include "numerics/ArrayStatistics.h"

#include <cmath>
#include <cstddef>

namespace corvane {

namespace {

struct Sum {
  double total = 0.0;
  std::size_t count = 0;
};

template <typename Term>
Sum SumOf(std::span<const double> values, double skip, Term term) {
  Sum sum;
  for (const double value : values) {
    if (value == skip) continue;
    sum.total += term(value);
    ++sum.count;
  }
  return sum;
}

Sum SumOfSquares(std::span<const double> values, double skip) {
  return SumOf(values, skip, [](double value) { return value * value; });
}

}  // namespace

double ArrayMean(std::span<const double> values, double skip) {
  const Sum sum = SumOf(values, skip, [](double value) { return value; });
  return sum.count > 0 ? sum.total / static_cast<double>(sum.count) : 0.0;
}

double ArrayStdDev(std::span<const double> values, double mean, double skip) {
  const Sum squares = SumOfSquares(values, skip);
  if (squares.count < 2) return 0.0;
  const auto k = static_cast<double>(squares.count);
  const double variance = (squares.total - k * (mean * mean)) / (k - 1.0);
  return variance < 0.0 ? 0.0 : std::sqrt(variance);
}

double ArrayRms(std::span<const double> values, double skip) {
  const Sum squares = SumOfSquares(values, skip);
  return squares.count > 0 ? std::sqrt(squares.total / static_cast<double>(squares.count)) : 0.0;
}

double ArrayMin(std::span<const double> values, double skip) {
  if (values.empty()) return 0.0;
  double min = 1.7e+308;
  for (const double value : values.subspan(1)) {
    if (value != skip && value < min) min = value;
  }
  return min;
}

double ArrayMax(std::span<const double> values, double skip) {
  if (values.empty()) return 0.0;
  double max = values.front();
  for (const double value : values.subspan(1)) {
    if (value != skip && value > max) max = value;
  }
  return max;
}

}  // namespace corvane
