#include "erdasimg/BandArray.h"

#include <cstdlib>
#include <new>

#include "io/LargePages.h"

namespace corvane {

namespace {

// Zeroed bytes that the system hands out page by page as they are touched; null without memory.
std::shared_ptr<std::uint8_t> ZeroedBytes(std::size_t size) {
  auto* const bytes = static_cast<std::uint8_t*>(std::calloc(size > 0 ? size : 1, 1));
  if (!bytes) return nullptr;
  UseLargePages(bytes, size);
  return {bytes, [](std::uint8_t* block) { std::free(block); }};
}

}  // namespace

BandArray BandArray::Allocate(std::int32_t nBands, std::int64_t bandBytes, bool contiguous) {
  if (nBands < 0 || bandBytes < 0) return {};
  std::int64_t total = 0;
  if (__builtin_mul_overflow(std::int64_t{nBands}, bandBytes, &total)) return {};
  BandArray array;
  array.bandBytes_ = static_cast<std::size_t>(bandBytes);
  array.isContiguous_ = contiguous;
  try {
    array.bands_.reserve(static_cast<std::size_t>(nBands));
    const auto whole = contiguous ? ZeroedBytes(static_cast<std::size_t>(total)) : nullptr;
    if (contiguous && !whole) return {};
    for (std::size_t band = 0; band < static_cast<std::size_t>(nBands); ++band) {
      auto buffer = contiguous ? std::shared_ptr<std::uint8_t>(whole, whole.get() + band * array.bandBytes_)
                               : ZeroedBytes(array.bandBytes_);
      if (!buffer) return {};
      array.bands_.push_back(std::move(buffer));
    }
  } catch (const std::bad_alloc&) {
    return {};
  }
  array.isAllocated_ = true;
  return array;
}

}  // namespace corvane
