#pragma once

#include <cstdint>

namespace corvane {

// What has become of the lines of a pair file.
struct PairLines {
  std::int64_t nLeftOut = 0;  // of fewer than five numbers, empty ones not counted
  std::int64_t stopLine = 0;  // from 1: where reading ended with more to come; 0: nowhere
  bool stopIsEmpty = false;   // whether there is nothing in that line
  std::int64_t nColumns = 0;  // fields of the first line, which decides on them; only the first six are read
};

}  // namespace corvane
