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
  bool outIsTerminal = false;
};

// The whole command line of corvane-cli on the commands of a table. `arguments` come without the program's
// name. A standard output that can't be written makes a call fail that went well otherwise.
ExitStatus RunCommandLine(const std::vector<std::string>& arguments, std::span<const CommandRow> rows,
                          StandardStreams streams);

}  // namespace corvane
