#include <unistd.h>

#include <csignal>
#include <iostream>

#include "cli/CommandLine.h"
#include "commands/CommandRows.h"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  std::signal(SIGXFSZ, SIG_IGN);  // a write beyond the limit of file sizes fails, which is told
  const bool errIsTerminal = isatty(STDERR_FILENO) != 0;
  const bool outIsTerminal = isatty(STDOUT_FILENO) != 0;
  const auto status = corvane::RunCommandLine(arguments, corvane::CommandRows(),
                                              {std::cin, std::cout, std::cerr, errIsTerminal, outIsTerminal});
  return static_cast<int>(status);
}
