#pragma once

#include <malloc.h>

#include <cstdio>

namespace corvane {

// The most memory that the process has held since the last ResetPeak, in bytes.
inline double PeakBytes() {
  std::FILE* status = std::fopen("/proc/self/status", "r");
  char line[256];
  double peak = 0.0;
  while (std::fgets(line, sizeof line, status) != nullptr) {
    double kilobytes = 0.0;
    if (std::sscanf(line, "VmHWM: %lf", &kilobytes) == 1) peak = kilobytes * 1024.0;
  }
  std::fclose(status);
  return peak;
}

inline void ResetPeak() {
  malloc_trim(0);  // what came before has left behind
  if (std::FILE* file = std::fopen("/proc/self/clear_refs", "w")) {
    std::fputs("5", file);
    std::fclose(file);
  }
}

}  // namespace corvane
