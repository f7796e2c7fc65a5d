#pragma once

#include <unistd.h>

#include <cstdint>

namespace corvane {

// The memory of the machine, in bytes: the limit for what no file's length limits.
inline std::int64_t BytesOfMachine() {
  const std::int64_t nPages = sysconf(_SC_PHYS_PAGES);
  const std::int64_t pageSize = sysconf(_SC_PAGE_SIZE);
  constexpr std::int64_t kUnknown = std::int64_t{1} << 32;
  return nPages > 0 && pageSize > 0 ? nPages * pageSize : kUnknown;
}

}  // namespace corvane
