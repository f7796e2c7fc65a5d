#pragma once

#include <ostream>
#include <string>

namespace corvane {

// Standard output and standard error of a command line.
class Console {
 public:
  // On a terminal, status texts rewrite one line of standard error. Elsewhere each is a line of its own, but
  // for one that repeats the line before: a progress text comes oftener than its number changes.
  Console(std::ostream& out, std::ostream& err, bool errIsTerminal, bool outIsTerminal = false)
      : out_(out), err_(err), errIsTerminal_(errIsTerminal), outIsTerminal_(outIsTerminal) {}
  // Ends the line of a status text.
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  // Standard output, at once: commands also print through the C library.
  void Print(const std::string& text);

  // Standard error: a whole line, a text with line ends of its own, or a status text.
  void ErrorLine(const std::string& text) { ErrorText(text + '\n'); }
  void ErrorText(const std::string& text);
  void Status(const std::string& text);

 private:
  void ClearStatus();

  std::ostream& out_;
  std::ostream& err_;
  bool errIsTerminal_;
  bool outIsTerminal_;
  bool statusShown_ = false;  // the terminal's last line holds a status text
  std::string lastStatus_;    // "" if another line of standard error has come since
};

}  // namespace corvane
