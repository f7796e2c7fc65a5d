#pragma once

#include <cstdint>
#include <optional>

namespace corvane {

// The value cut towards zero, or nothing if it is not a number or does not fit 32 bits.
inline std::optional<std::int32_t> TruncateToInt(double value) {
  if (!(value > -2147483649.0 && value < 2147483648.0)) return std::nullopt;
  return static_cast<std::int32_t>(value);
}

// The same with values beyond 32 bits held at the nearest end, and 0 for not-a-number.
inline std::int32_t TruncateSaturated(double value) {
  if (value <= -2147483648.0) return INT32_MIN;
  if (value >= 2147483647.0) return INT32_MAX;
  return value == value ? static_cast<std::int32_t>(value) : 0;
}

// The value cut towards zero; beyond +-2^62 held there, and 0 for not-a-number.
inline std::int64_t TruncateTo64(double value) {
  constexpr double kLimit = 4611686018427387904.0;  // 2^62
  if (value >= kLimit) return static_cast<std::int64_t>(kLimit);
  if (value <= -kLimit) return -static_cast<std::int64_t>(kLimit);
  return value == value ? static_cast<std::int64_t>(value) : 0;
}

}  // namespace corvane
