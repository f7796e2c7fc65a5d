#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

// Numbers as text and back, always in the "C" locale. What is no number is "nan", without the sign that it
// may have: which one a computation leaves is the machine's affair.

// Appends printf's "%.<decimals>f".
void AppendFixed(std::string& text, double value, int decimals = 6);

// Appends printf's "%.<precision>g", which is also a C++ stream's default form at that precision.
void AppendGeneral(std::string& text, double value, int precision);

// Numbers in that form, joined by ", ".
void AppendNumbers(std::string& text, std::initializer_list<double> numbers, int precision);

void AppendInt(std::string& text, std::int64_t value);

std::string FixedText(double value, int decimals = 6);
std::string GeneralText(double value, int precision);

// The shortest text that reads back as the same number.
std::string ShortestText(double value);
std::string ShortestText(float value);

// The number that the whole text is, blanks around it aside; nothing if it is not one finite number.
std::optional<double> ParseReal(std::string_view text);
std::optional<std::int64_t> ParseInteger(std::string_view text);

// The text without white space at either end.
std::string_view Trimmed(std::string_view text);

}  // namespace corvane
