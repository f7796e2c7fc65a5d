#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace corvane {

// Reads numbers and words from a text with the meaning of the C library's scanf in the "C" locale: any white
// space separates, fields run over line ends, signs, exponents, hexadecimal numbers, "inf" and "nan" count.
// The text must outlive the scanner.
//
// A caller strings the steps together as a scanf format would: "%lf,%lf" is ScanDouble, MatchLiteral(','),
// ScanDouble. The first step that does not match ends the record.
class TextScanner {
 public:
  explicit TextScanner(std::string_view text) : text_(text) {}

  // "%lf". On a match stores the value. A mismatch consumes what scanf would: white space and the part of
  // the field that could have begun a number.
  bool ScanDouble(double& value);

  // "%d". Values beyond 64 bits are held at the nearest end before they are cut to 32 bits.
  bool ScanInt(std::int32_t& value);

  // "%s", or "%<width>s": a longer word is read as far as that, and the rest is left for the next step. Of a
  // word that holds a zero the part before it is given, as it is in C, and the whole is consumed.
  static constexpr std::size_t kAnyWidth = static_cast<std::size_t>(-1);
  bool ScanWord(std::string& word, std::size_t width = kAnyWidth);

  // A character of the format that is not white space: matches itself, without skipping white space.
  bool MatchLiteral(char character);

  // White space in the format: skips any amount of white space, none included.
  void SkipSpace();

  // True once a step has run into the end of the text, as feof() after scanf.
  bool AtEnd() const { return hitEnd_; }

  // Back to the start, with the end no longer noticed.
  void Rewind();

  std::size_t GetPosition() const { return position_; }

 private:
  bool SkipToField();
  bool ScanPlainDecimal(double& value);
  void NoticeEnd() { hitEnd_ = hitEnd_ || position_ == text_.size(); }

  std::string_view text_;
  std::size_t position_ = 0;
  bool hitEnd_ = false;
};

// The first line, without its line end, as fgets with a buffer of `bufferSize` bytes sees it in text mode:
// the end is "\n" or "\r\n". Cut at a zero.
std::string_view FirstLine(std::string_view text, std::size_t bufferSize = 256);

// The number of fields in a line, fields being what strtok finds between the given separators.
int CountFields(std::string_view line, std::string_view separators = " ,\t\n");

// Whether a line begins with two numbers and a comma between them: "%lf,%lf".
bool HasCommas(std::string_view line);

}  // namespace corvane
