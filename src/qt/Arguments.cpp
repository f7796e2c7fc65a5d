#include "qt/Arguments.h"

namespace corvane {

const char* const kUsage =
    "Usage: corvane [OPTION...] [FILE.tin]\n"
    "\n"
    "Opens the workbench, on FILE.tin or on an empty document.\n"
    "\n"
    "  --record FILE  write what is done in the window as a script for corvane-cli\n"
    "  --trace        the debug stream goes to standard error\n"
    "  --help         show this text\n"
    "  --version      show the version\n";

Arguments ReadArguments(const std::vector<std::string>& words) {
  Arguments arguments;
  bool optionsEnded = false;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    const bool option = !optionsEnded && word.starts_with("-");
    if (option && word == "--") {
      optionsEnded = true;
    } else if (option && (word == "--help" || word == "-h")) {
      arguments.help = true;
    } else if (option && word == "--version") {
      arguments.version = true;
    } else if (option && word == "--trace") {
      arguments.trace = true;
    } else if (option && word.starts_with("--record=")) {
      arguments.record = word.substr(word.find('=') + 1);
    } else if (option && word == "--record" && i + 1 < words.size()) {
      arguments.record = words[++i];
    } else if (option) {
      arguments.problem = word == "--record" ? "--record needs a file." : "Unknown option " + word + ".";
    } else if (!arguments.file.empty()) {
      arguments.problem = "Only one file can be opened at the start.";
    } else {
      arguments.file = word;
    }
  }
  return arguments;
}

}  // namespace corvane
