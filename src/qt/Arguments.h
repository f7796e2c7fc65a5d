#pragma once

#include <string>
#include <vector>

namespace corvane {

// corvane [FILE.tin] [--record FILE] [--trace] [--help] [--version]
struct Arguments {
  std::string file;    // "" to start with an empty document
  std::string record;  // the script to write, "" for none
  bool trace = false;  // the debug stream goes to standard error
  bool help = false;
  bool version = false;
  std::string problem;  // what is wrong with the call, "" if nothing is
};

// Reads the words of a call, the program's own name left out.
Arguments ReadArguments(const std::vector<std::string>& words);

// What --help prints.
extern const char* const kUsage;

}  // namespace corvane
