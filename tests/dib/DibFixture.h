#pragma once

#include <cstdint>
#include <vector>

#include "dib/Dib.h"

namespace corvane {

// A bitmap of 8 bits whose rows, from the top, hold these bytes.
inline Dib ByteDib(const std::vector<std::vector<std::uint8_t>>& rows) {
  Dib dib =
      MakeBlackDib(static_cast<std::int32_t>(rows.front().size()), static_cast<std::int32_t>(rows.size()), 8);
  for (std::size_t y = 0; y < rows.size(); ++y) {
    for (std::size_t x = 0; x < rows[y].size(); ++x) {
      SetPixelColor(dib, static_cast<std::int32_t>(x), static_cast<std::int32_t>(y), &rows[y][x]);
    }
  }
  return dib;
}

}  // namespace corvane
