#pragma once

#include <cstddef>
#include <vector>

namespace corvane {

// Asks the system to hold a block that is not yet in use in large pages. Lookups at random places in a block
// of many megabytes otherwise spend most of their time on the translation of addresses, and filling it on
// page faults. Only a request: small blocks, and systems without large pages, stay as they are.
void UseLargePages(void* block, std::size_t size);

// Reserves room for `n` items, in large pages if it is much. Throws std::bad_alloc as reserve does.
template <typename T>
void ReserveLarge(std::vector<T>& items, std::size_t n) {
  items.reserve(n);
  UseLargePages(items.data(), items.capacity() * sizeof(T));
}

}  // namespace corvane
