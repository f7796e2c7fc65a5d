#pragma once

#include <unistd.h>

#include <cstdint>

namespace corvane {

// The memory of the machine, in bytes: the limit for what no file's length limits.
inline std::int64_t BytesOfMachine() {
  return std::int64_t{sysconf(_SC_PHYS_PAGES)} * sysconf(_SC_PAGE_SIZE);
}

}  // namespace corvane
