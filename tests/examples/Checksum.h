#pragma once

#include <cstdint>
#include <string>

namespace corvane {

// FNV-1a, 64 bits.
inline std::uint64_t Checksum(const std::string& bytes) {
  std::uint64_t sum = 0xCBF29CE484222325u;
  for (const char byte : bytes) sum = (sum ^ static_cast<unsigned char>(byte)) * 0x100000001B3u;
  return sum;
}

}  // namespace corvane
