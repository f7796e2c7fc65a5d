#pragma once

#include <string>

namespace corvane {

// A number that stands beside others of that step apart, with the decimals that multiples of the step need
// and no more: 636001.75 with a step of 0.25 gives "636001.75", with 0.5 "636001.8". Plain digits, but for
// steps below 1e-9 and numbers from 1e15 on, which take an exponent. `step` must be above 0.
std::string AxisText(double value, double step);

}  // namespace corvane
