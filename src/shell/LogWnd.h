#pragma once

#include <string>

#include "ui/LogView.h"

namespace corvane {

// The modeless window "Log Window": a read-only text that grows while a command runs. It closes with this
// object.
class LogWnd : public LogView {
 public:
  LogWnd() = default;
  ~LogWnd() override { Close(); }
  LogWnd(const LogWnd&) = delete;
  LogWnd& operator=(const LogWnd&) = delete;

  // Opens the window, or does nothing where it is open. The text begins empty.
  void Open();
  void Close();
  bool IsOpen() const { return open_; }

  // Adds to the text of the open window, line ends included.
  void Append(const std::string& text);

  std::string GetTitle() const override { return "Log Window"; }
  const std::string& GetText() const override { return text_; }

 private:
  bool open_ = false;
  std::string text_;
};

}  // namespace corvane
