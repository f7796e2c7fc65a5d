#pragma once

#include <algorithm>
#include <string_view>

namespace corvane {

// Whether the texts are the same but for the case of their letters A to Z.
constexpr bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::ranges::equal(a, b, {}, lower, lower);
}

}  // namespace corvane
