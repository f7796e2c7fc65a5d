#include "cli/Console.h"

namespace corvane {

namespace {

constexpr const char* kClearLine = "\r\033[K";

}  // namespace

void Console::ErrorText(const std::string& text) {
  if (statusShown_) err_ << kClearLine;
  statusShown_ = false;
  err_ << text << std::flush;
}

void Console::Status(const std::string& text) {
  if (errIsTerminal_) {
    err_ << kClearLine << text << std::flush;
    statusShown_ = !text.empty();
  } else if (!text.empty()) {
    err_ << text << '\n' << std::flush;
  }
}

}  // namespace corvane
