#include <unistd.h>

#include <iostream>

#include "cli/CommandLine.h"
#include "commands/CommandRows.h"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const bool errIsTerminal = isatty(STDERR_FILENO) != 0;
  const bool outIsTerminal = isatty(STDOUT_FILENO) != 0;
  const auto status = corvane::RunCommandLine(arguments, corvane::CommandRows(),
                                              {std::cin, std::cout, std::cerr, errIsTerminal, outIsTerminal});
  return static_cast<int>(status);
}
