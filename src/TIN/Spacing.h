#pragma once

#include <cmath>

namespace corvane {

// Whether points or cells can be so far apart: a positive number, and no infinite one.
inline bool IsSpacing(double value) {
  return value > 0.0 && std::isfinite(value);
}

}  // namespace corvane
