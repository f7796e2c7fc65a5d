#include "io/LargePages.h"

#include <sys/mman.h>

#include <cstdint>

namespace corvane {

namespace {

constexpr std::uintptr_t kPage = 4096;
constexpr std::size_t kWorthwhile = std::size_t{4} << 20;  // two large pages, in bytes

}  // namespace

void UseLargePages(void* block, std::size_t size) {
#ifdef MADV_HUGEPAGE
  if (size < kWorthwhile) return;
  const std::size_t skipped = (kPage - reinterpret_cast<std::uintptr_t>(block) % kPage) % kPage;
  madvise(static_cast<char*>(block) + skipped, (size - skipped) / kPage * kPage, MADV_HUGEPAGE);
#else
  static_cast<void>(block);
  static_cast<void>(size);
#endif
}

}  // namespace corvane
