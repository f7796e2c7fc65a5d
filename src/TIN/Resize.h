#pragma once

#include <cstddef>
#include <new>
#include <stdexcept>
#include <vector>

#include "io/LargePages.h"

namespace corvane {

// Gives `items` this size; false without the memory, with `items` as it was.
template <typename T>
bool Resize(std::vector<T>& items, std::size_t size) {
  try {
    if (items.empty()) ReserveLarge(items, size);
    items.resize(size);
  } catch (const std::bad_alloc&) {
    return false;
  } catch (const std::length_error&) {
    return false;
  }
  return true;
}

}  // namespace corvane
