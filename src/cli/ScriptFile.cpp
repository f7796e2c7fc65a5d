#include "cli/ScriptFile.h"

#include <algorithm>

namespace corvane {

namespace {

bool IsBlank(char character) {
  return character == ' ' || character == '\t' || character == '\r';
}

class ScriptParser {
 public:
  explicit ScriptParser(std::string_view text) : text_(text) {}

  Script Parse() {
    while (position_ < text_.size() && script_.error.empty()) ParseLine();
    return std::move(script_);
  }

 private:
  void ParseLine() {
    ScriptCommand command;
    command.line = line_;
    std::vector<std::string> words;
    SkipBlanks();
    if (!AtLineEnd() && text_[position_] == '#') SkipLine();
    while (!AtLineEnd() && script_.error.empty()) {
      words.push_back(ParseWord());
      SkipBlanks();
    }
    ++position_;
    ++line_;
    if (words.empty() || !script_.error.empty()) return;
    command.name = words.front();
    command.answers.assign(words.begin() + 1, words.end());
    script_.commands.push_back(std::move(command));
  }

  // A word may be quoted in part; a quoted part may run over line ends.
  std::string ParseWord() {
    std::string word;
    while (!AtLineEnd() && !IsBlank(text_[position_])) {
      if (text_[position_] == '"') {
        if (!ParseQuotedPart(word)) break;
      } else {
        word += text_[position_++];
      }
    }
    return word;
  }

  bool ParseQuotedPart(std::string& word) {
    const std::size_t start = position_;
    std::string content;
    if (!ReadQuoted(text_, position_, content)) {
      script_.error = "a quote is not closed";
      script_.errorLine = line_;
      return false;
    }
    const std::string_view part = text_.substr(start, position_ - start);
    line_ += static_cast<int>(std::count(part.begin(), part.end(), '\n'));
    word += content;
    return true;
  }

  void SkipBlanks() {
    while (!AtLineEnd() && IsBlank(text_[position_])) ++position_;
  }

  void SkipLine() { position_ = std::min(text_.find('\n', position_), text_.size()); }

  bool AtLineEnd() const { return position_ >= text_.size() || text_[position_] == '\n'; }

  std::string_view text_;
  std::size_t position_ = 0;
  int line_ = 1;
  Script script_;
};

}  // namespace

Script ParseScript(std::string_view text) {
  return ScriptParser(text).Parse();
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
