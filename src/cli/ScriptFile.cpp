#include "cli/ScriptFile.h"

#include <algorithm>
#include <optional>

namespace corvane {

namespace {

constexpr const char* kByteOrderMark = "\xef\xbb\xbf";
constexpr const char* kBlanks = " \t";

// Takes the first line off the text; a line ends with LF, CR LF or CR.
std::string_view TakeLine(std::string_view& text) {
  const std::size_t length = std::min(text.find_first_of("\r\n"), text.size());
  const std::string_view line = text.substr(0, length);
  text.remove_prefix(length);
  text.remove_prefix(text.starts_with("\r\n") ? 2 : std::min<std::size_t>(text.size(), 1));
  return line;
}

// Reads the word at `position`, which may be quoted in part. False if a quote is not closed.
bool ReadWord(std::string_view line, std::size_t& position, std::string& word) {
  const std::string_view blanks = kBlanks;
  while (position < line.size() && blanks.find(line[position]) == blanks.npos) {
    if (line[position] != '"') {
      word += line[position++];
    } else if (!ReadQuoted(line, position, word)) {
      return false;
    }
  }
  return true;
}

// The words of a line, none of a comment; nothing if a quote is not closed.
std::optional<std::vector<std::string>> ReadWords(std::string_view line) {
  std::vector<std::string> words;
  std::size_t position = line.find_first_not_of(kBlanks);
  if (position != line.npos && line[position] == '#') return words;
  for (; position != line.npos; position = line.find_first_not_of(kBlanks, position)) {
    if (!ReadWord(line, position, words.emplace_back())) return std::nullopt;
  }
  return words;
}

}  // namespace

Script ParseScript(std::string_view text) {
  Script script;
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(std::string_view(kByteOrderMark).size());
  for (int line = 1; !text.empty(); ++line) {
    const auto words = ReadWords(TakeLine(text));
    if (!words) {
      script.error = "a quote is not closed";
      script.errorLine = line;
      return script;
    }
    if (words->empty()) continue;
    script.commands.push_back({line, words->front(), {words->begin() + 1, words->end()}});
  }
  return script;
}

std::string ScriptWord(std::string_view text) {
  const bool plain = !text.empty() && text.front() != '#' && text.find_first_of(" \t\r\n\"") == text.npos;
  return plain ? std::string(text) : Quoted(text);
}

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') quoted += '\\';
    quoted += character;
  }
  return quoted + '"';
}

std::string ShownText(std::string_view text) {
  std::string shown = Quoted(text);
  std::replace_if(
      shown.begin(), shown.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; },
      '?');
  return shown;
}

bool ReadQuoted(std::string_view text, std::size_t& position, std::string& content) {
  std::size_t at = position + 1;
  for (; at < text.size() && text[at] != '"'; ++at) {
    const bool escape =
        text[at] == '\\' && at + 1 < text.size() && (text[at + 1] == '"' || text[at + 1] == '\\');
    if (escape) ++at;
    content += text[at];
  }
  if (at >= text.size()) return false;
  position = at + 1;
  return true;
}

}  // namespace corvane
