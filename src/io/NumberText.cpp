#include "io/NumberText.h"

#include <charconv>
#include <cmath>
#include <system_error>

#include "io/GeneralText.h"
#include "io/TextScanner.h"

namespace corvane {

namespace {

// The digits before the point of the largest double, sign, point, exponent and some room.
constexpr std::size_t kMaxIntegerPart = 340;

// The sign of what is no number depends on the machine that made it.
constexpr const char* kNaNText = "nan";

void AppendReal(std::string& text, double value, std::chars_format format, int precision) {
  if (std::isnan(value)) {
    text += kNaNText;
    return;
  }
  char buffer[kMaxIntegerPart + 64];
  auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value, format, precision);
  if (error == std::errc()) {
    text.append(buffer, end);
    return;
  }
  std::string large(kMaxIntegerPart + static_cast<std::size_t>(precision), '\0');
  end = std::to_chars(large.data(), large.data() + large.size(), value, format, precision).ptr;
  text.append(large.data(), end);
}

template <typename T>
std::string Shortest(T value) {
  if (std::isnan(value)) return kNaNText;
  char buffer[64];
  return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

// A leading "+", which from_chars does not take, left out.
std::string_view WithoutPlus(std::string_view text) {
  const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  return plus ? text.substr(1) : text;
}

}  // namespace

void AppendFixed(std::string& text, double value, int decimals) {
  AppendReal(text, value, std::chars_format::fixed, decimals);
}

void AppendGeneral(std::string& text, double value, int precision) {
  char buffer[kPlainGeneralRoom];
  if (char* end = WritePlainGeneral(buffer, value, precision)) {
    text.append(buffer, end);
    return;
  }
  AppendReal(text, value, std::chars_format::general, precision);
}

void AppendNumbers(std::string& text, std::initializer_list<double> numbers, int precision) {
  bool isFirst = true;
  for (const double number : numbers) {
    if (!isFirst) text += ", ";
    isFirst = false;
    AppendGeneral(text, number, precision);
  }
}

void AppendInt(std::string& text, std::int64_t value) {
  char buffer[24];
  text.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

std::string FixedText(double value, int decimals) {
  std::string text;
  AppendFixed(text, value, decimals);
  return text;
}

std::string GeneralText(double value, int precision) {
  std::string text;
  AppendGeneral(text, value, precision);
  return text;
}

std::string ShortestText(double value) {
  return Shortest(value);
}
std::string ShortestText(float value) {
  return Shortest(value);
}

std::optional<double> ParseReal(std::string_view text) {
  text = WithoutPlus(Trimmed(text));
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::invalid_argument || end != text.data() + text.size()) return std::nullopt;
  if (error == std::errc::result_out_of_range && !TextScanner(text).ScanDouble(value)) return std::nullopt;
  if (!std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<std::int64_t> ParseInteger(std::string_view text) {
  text = WithoutPlus(Trimmed(text));
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kSpace = " \t\n\v\f\r";
  const std::size_t first = text.find_first_not_of(kSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

}  // namespace corvane
