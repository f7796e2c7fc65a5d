#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvane {

// A one-dimensional filter: an odd number of weights, the centre at size / 2.
struct Kernel1D {
  std::int32_t size = 0;
  std::vector<double> values;

  // Whether there are weights, as many as `size` says.
  bool IsWhole() const { return size > 0 && values.size() == static_cast<std::size_t>(size); }

  // Pixels that the filter reaches to the left of, or above, the one that it is for.
  std::int32_t GetReach() const { return size / 2; }
};

}  // namespace corvane
