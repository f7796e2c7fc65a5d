#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corvane {

// The text form of commands, one a line: the command and its answers, separated by blanks. Text in double
// quotes keeps its blanks, and within quotes \" and \\ stand for " and \. Empty lines and lines that begin
// with # are skipped, and so is a byte order mark at the start. A line ends with LF, CR LF or CR; no text
// runs over its end.

struct ScriptCommand {
  int line = 0;  // from 1
  std::string name;
  std::vector<std::string> answers;
};

struct Script {
  std::vector<ScriptCommand> commands;
  std::string error;  // "" for a good script
  int errorLine = 0;  // from 1
};

// Stops at the first error.
Script ParseScript(std::string_view text);

// One word of a script line, quoted only where it has to be. (A text with a line end fits on no line.)
std::string ScriptWord(std::string_view text);

// The text in double quotes, with \" and \\ for " and \.
std::string Quoted(std::string_view text);

// The quoted text as messages show it: with "?" for control characters.
std::string ShownText(std::string_view text);

// Reads a text whose first character is a double quote up to the closing one. `position` moves from the
// opening quote to behind the closing one; false if there is none.
bool ReadQuoted(std::string_view text, std::size_t& position, std::string& content);

}  // namespace corvane
