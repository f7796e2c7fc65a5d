#include "cli/Console.h"

namespace corvane {

namespace {

constexpr const char* kClearLine = "\r\033[K";

}  // namespace

Console::~Console() {
  if (statusShown_) err_ << '\n' << std::flush;
}

void Console::Print(const std::string& text) {
  if (outIsTerminal_) ClearStatus();
  out_ << text << std::flush;
}

void Console::ErrorText(const std::string& text) {
  ClearStatus();
  lastStatus_.clear();
  err_ << text << std::flush;
}

void Console::Status(const std::string& text) {
  if (errIsTerminal_) {
    err_ << kClearLine << text << std::flush;
    statusShown_ = !text.empty();
  } else if (!text.empty() && text != lastStatus_) {
    err_ << text << '\n' << std::flush;
  }
  lastStatus_ = text;
}

void Console::ClearStatus() {
  if (statusShown_) err_ << kClearLine << std::flush;
  statusShown_ = false;
}

}  // namespace corvane
