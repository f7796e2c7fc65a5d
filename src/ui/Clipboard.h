#pragma once

#include <cstdint>
#include <vector>

namespace corvane {

// The desktop's clipboard, as far as bitmaps go: packed device-independent ones, a header of 40 bytes, the
// palette, the rows bottom-up.
class Clipboard {
 public:
  virtual ~Clipboard() = default;

  virtual void PutBitmap(const std::vector<std::uint8_t>& dib) = 0;
  virtual bool HasBitmap() = 0;
  virtual std::vector<std::uint8_t> GetBitmap() = 0;  // empty if there is none
};

}  // namespace corvane
