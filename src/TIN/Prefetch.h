#pragma once

namespace corvane {

// Asks for an item of an array to be brought into the cache. Lookups at random places spend their time
// waiting for memory, one after the other; asked for together, many of them wait at once. Has no other
// effect, and any address may be asked for.
template <typename T>
void Prefetch(const T* item) {
  const char* const bytes = reinterpret_cast<const char*>(item);
  __builtin_prefetch(bytes);
  __builtin_prefetch(bytes + sizeof(T) - 1);  // an item may lie across two cache lines
  asm volatile("");  // or else the compiler drops calls of functions that do nothing but this
}

}  // namespace corvane
