#pragma once

#include <sys/resource.h>
#include <unistd.h>

#include <cstddef>
#include <fstream>

namespace corvane {

// For a death test: ends the process with 10 minus the status of `operation`, which may take so much memory
// beyond what the process has.
template <typename Operation>
[[noreturn]] void RunWithin(std::size_t spareBytes, Operation operation) {
  std::ifstream statm("/proc/self/statm");
  std::size_t nPages = 0;
  statm >> nPages;
  const rlim_t most = nPages * static_cast<std::size_t>(getpagesize()) + spareBytes;
  const rlimit limit = {most, most};
  setrlimit(RLIMIT_AS, &limit);
  _exit(10 - operation());
}

}  // namespace corvane
