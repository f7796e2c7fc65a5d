#include "plot/AxisText.h"

#include <algorithm>
#include <cmath>

#include "io/NumberText.h"

namespace corvane {

namespace {

constexpr int kMostDecimals = 9;
constexpr int kMostDigits = 17;
constexpr double kLargestPlain = 1e15;

// How many decimals tell multiples of the step apart; one more than kMostDecimals if those are too few.
int DecimalsOf(double step) {
  int decimals = 0;
  for (double scaled = step; decimals <= kMostDecimals; ++decimals, scaled *= 10.0) {
    const double whole = std::round(scaled);
    if (whole >= 1.0 && std::abs(scaled - whole) <= 1e-6 * whole) break;
  }
  return decimals;
}

int Exponent(double value) {
  return static_cast<int>(std::floor(std::log10(std::abs(value))));
}

}  // namespace

std::string AxisText(double value, double step) {
  if (std::abs(value) < step * 1e-6) value = 0.0;  // no "-0"
  const int decimals = DecimalsOf(step);
  if (decimals <= kMostDecimals && std::abs(value) < kLargestPlain) return FixedText(value, decimals);
  if (value == 0.0) return "0";
  const int digits = Exponent(value) - Exponent(step) + 2;  // one more for a step such as 2.5
  return GeneralText(value, std::clamp(digits, 1, kMostDigits));
}

}  // namespace corvane
