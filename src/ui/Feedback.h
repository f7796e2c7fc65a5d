#pragma once

#include <string>

namespace corvane {

// What a front end shows while a command runs, without waiting for an answer.
class Feedback {
 public:
  virtual ~Feedback() = default;

  // Pane 0 is the message pane of the status bar.
  virtual void SetStatusText(int pane, const std::string& text) = 0;

  // Nested calls count: the cursor ends with the last `false`.
  virtual void SetWaitCursor(bool on) = 0;

  // Standard output of a command, line ends included.
  virtual void Print(const std::string& text) = 0;

  // The debug stream, line ends included.
  virtual void Trace(const std::string& text) = 0;
};

}  // namespace corvane
