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

// Why a command does not write to a file.
inline constexpr const char* kIsInputText = "It is one of the files that the command reads.";

// What a command's last status text says of an orientation file whose numbers make none.
inline std::string NoOrientationText(const std::string& path) {
  return " The numbers in " + path + " make no orientation: it is cut short, or a word stands among them.";
}

}  // namespace corvane
