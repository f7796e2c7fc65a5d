#pragma once

#include <istream>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "cli/Session.h"

namespace corvane {

struct StandardStreams {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  bool errIsTerminal = false;
};

// The whole command line of corvane-cli on the commands of a table. `arguments` come without the program's
// name.
ExitStatus RunCommandLine(std::vector<std::string> arguments, std::span<const CommandRow> rows,
                          StandardStreams streams);

}  // namespace corvane
