#pragma once

#include <string>

namespace corvane {

// The composed texts of file failures.

inline std::string OpenErrorText(const std::string& path) {
  return "Open file " + path + " error!";
}

inline std::string WriteErrorText(const std::string& path) {
  return "Write file " + path + " error!";
}

}  // namespace corvane
