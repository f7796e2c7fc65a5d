#include "io/TextScanner.h"

#include <locale.h>
#include <stdlib.h>

#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <system_error>

namespace corvane {

namespace {

bool IsSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
bool IsHexDigit(char c) {
  return IsDigit(c) || (Lower(c) >= 'a' && Lower(c) <= 'f');
}

// Characters at which a decimal number goes on as something longer.
bool IsExponentOrHex(char c) {
  return Lower(c) == 'e' || Lower(c) == 'x';
}

constexpr int kMaxShortDigits = 19;  // as many as 64 bits hold

constexpr auto kPowersOfTen = [] {
  std::array<std::uint64_t, kMaxShortDigits + 1> powers = {1};
  for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = 10 * powers[i - 1];
  return powers;
}();

// The double nearest to numerator / denominator, both above 0, ties to even. With both scaled up to 64 bits
// the quotient has 63 or 64; a remainder sets its last bit, far below the 53 of a double, so that the one
// rounding on the way to double sees on which side of a tie the true quotient lies.
double NearestQuotient(std::uint64_t numerator, std::uint64_t denominator) {
  __extension__ using Wide = unsigned __int128;
  const int numeratorShift = std::countl_zero(numerator);
  const int denominatorShift = std::countl_zero(denominator);
  const Wide wide = static_cast<Wide>(numerator << numeratorShift) << 63;
  const std::uint64_t divisor = denominator << denominatorShift;
  auto quotient = static_cast<std::uint64_t>(wide / divisor);
  if (quotient * divisor != static_cast<std::uint64_t>(wide)) quotient |= 1;
  const int exponent = denominatorShift - numeratorShift - 63;
  const auto scale = std::bit_cast<double>(static_cast<std::uint64_t>(1023 + exponent) << 52);  // 2^exponent
  return static_cast<double>(quotient) * scale;
}

static_assert(std::endian::native == std::endian::little, "eight characters are taken with the first lowest");

// Whether all eight bytes are digits: 0x30 to 0x39, so that 6 more leaves the high halves as they are.
bool AreEightDigits(std::uint64_t bytes) {
  constexpr std::uint64_t kHigh = 0xF0F0F0F0F0F0F0F0;
  constexpr std::uint64_t kDigits = 0x3030303030303030;
  return (bytes & kHigh) == kDigits && ((bytes + 0x0606060606060606) & kHigh) == kDigits;
}

// The number that eight digits are: pairs are joined in each second byte, then all four pairs at once, in the
// upper half of a sum of two products.
std::uint64_t NumberOfEightDigits(std::uint64_t bytes) {
  bytes -= 0x3030303030303030;
  bytes = 10 * bytes + (bytes >> 8);
  constexpr std::uint64_t kPair = 0x000000FF000000FF;
  constexpr std::uint64_t kFirstAndThird = 100 + (std::uint64_t{1000000} << 32);
  constexpr std::uint64_t kSecondAndFourth = 1 + (std::uint64_t{10000} << 32);
  return ((bytes & kPair) * kFirstAndThird + ((bytes >> 16) & kPair) * kSecondAndFourth) >> 32;
}

std::uint64_t TakeDigits(const char*& at, const char* end, std::uint64_t number) {
  for (std::uint64_t bytes = 0; end - at >= 8; at += 8) {
    std::memcpy(&bytes, at, sizeof bytes);
    if (!AreEightDigits(bytes)) break;
    number = 100000000 * number + NumberOfEightDigits(bytes);
  }
  for (; at != end && IsDigit(*at); ++at) number = 10 * number + static_cast<std::uint64_t>(*at - '0');
  return number;
}

// Reads digits with or without a point, up to 19 of them. Returns where they end, or null for none or more.
const char* ShortDecimal(const char* first, const char* end, double& value) {
  const char* at = first;
  std::uint64_t digits = TakeDigits(at, end, 0);
  std::ptrdiff_t nDigits = at - first;
  std::ptrdiff_t nDecimals = 0;
  if (at != end && *at == '.') {
    const char* const decimals = ++at;
    digits = TakeDigits(at, end, digits);
    nDecimals = at - decimals;
    nDigits += nDecimals;
  }
  if (nDigits == 0 || nDigits > kMaxShortDigits) return nullptr;
  const std::uint64_t power = kPowersOfTen[static_cast<std::size_t>(nDecimals)];
  // A power of ten up to the 22nd is exact, so that with exact digits the division rounds once.
  constexpr std::uint64_t kExact = std::uint64_t{1} << 53;
  value = digits <= kExact ? static_cast<double>(digits) / static_cast<double>(power)
                           : NearestQuotient(digits, power);
  return at;
}

// strtod in the "C" locale, whatever the process has set. False if the text does not begin with a number.
bool Convert(const std::string& field, double& value) {
  static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
  char* end = nullptr;
  const double converted = strtod_l(field.c_str(), &end, cLocale);
  if (end == field.c_str()) return false;
  value = converted;
  return true;
}

// Takes from a text the characters of one "%lf" field, as the C library does: it reads one character at a
// time and gives back at most the last one, so that a word which only begins like a number is lost.
class RealField {
 public:
  RealField(std::string_view text, std::size_t position) : text_(text), position_(position) {}

  // False if the characters are no field. Those looked at are consumed either way.
  bool Collect() {
    if (Peek('+') || Peek('-')) Take();
    const std::size_t signLength = field_.size();
    if (!HasCharacter()) return false;
    if (Peek('n')) return TakeWord("nan");
    if (Peek('i')) return TakeInfinity();

    bool hexadecimal = false;
    if (Peek('0')) {
      Take();
      hexadecimal = Peek('x');
      if (hexadecimal) Take();
    }
    TakeDigits(hexadecimal, !hexadecimal && field_.size() > signLength);
    return field_.size() != signLength + (hexadecimal ? 2 : 0);
  }

  const std::string& GetField() const { return field_; }
  std::size_t GetPosition() const { return position_; }

  // Whether a character beyond the text was asked for. A field that is complete, or wrong, at the text's last
  // character does not ask.
  bool HasRunOut() const { return hasRunOut_; }

 private:
  bool HasCharacter() {
    hasRunOut_ = hasRunOut_ || position_ == text_.size();
    return !hasRunOut_;
  }

  bool Peek(char lowerCase) { return HasCharacter() && Lower(text_[position_]) == lowerCase; }

  void Take() { field_ += text_[position_++]; }

  // The character that differs is consumed too.
  bool TakeWord(std::string_view word) {
    for (const char c : word) {
      if (!HasCharacter()) return false;
      const bool same = Peek(c);
      Take();
      if (!same) return false;
    }
    return true;
  }

  bool TakeInfinity() { return TakeWord("inf") && (!Peek('i') || TakeWord("inity")); }

  void TakeDigits(bool hexadecimal, bool gotDigit) {
    const char exponentCharacter = hexadecimal ? 'p' : 'e';
    bool gotPoint = false;
    bool gotExponent = false;
    for (; HasCharacter(); Take()) {
      const char c = text_[position_];
      if (IsDigit(c) || (hexadecimal && !gotExponent && IsHexDigit(c))) {
        gotDigit = true;
      } else if (gotDigit && !gotExponent && Lower(c) == exponentCharacter) {
        gotExponent = gotPoint = true;
      } else if (c == '.' && !gotPoint) {
        gotPoint = true;
      } else if (!(gotExponent && (c == '+' || c == '-') && Lower(field_.back()) == exponentCharacter)) {
        return;
      }
    }
  }

  std::string_view text_;
  std::size_t position_;
  std::string field_;
  bool hasRunOut_ = false;
};

}  // namespace

bool TextScanner::SkipToField() {
  SkipSpace();
  return position_ < text_.size();
}

void TextScanner::SkipSpace() {
  while (position_ < text_.size() && IsSpace(text_[position_])) ++position_;
  NoticeEnd();
}

bool TextScanner::ScanDouble(double& value) {
  if (!SkipToField()) return false;
  if (ScanPlainDecimal(value)) return true;
  RealField field(text_, position_);
  const bool collected = field.Collect();
  position_ = field.GetPosition();
  hitEnd_ = hitEnd_ || field.HasRunOut();
  return collected && Convert(field.GetField(), value);
}

// The common case: a decimal number within the range of a double that ends at a character which could not
// be part of a longer field. Anything else is left, with nothing consumed.
bool TextScanner::ScanPlainDecimal(double& value) {
  const char* const end = text_.data() + text_.size();
  const char* first = text_.data() + position_;
  const bool negative = *first == '-';
  if (negative || *first == '+') ++first;
  if (first == end || !(IsDigit(*first) || *first == '.')) return false;
  double magnitude = 0.0;
  const char* stop = ShortDecimal(first, end, magnitude);
  if (!stop) {
    const auto [longStop, error] = std::from_chars(first, end, magnitude);
    if (error != std::errc()) return false;
    stop = longStop;
  }
  if (stop != end && IsExponentOrHex(*stop)) return false;
  value = negative ? -magnitude : magnitude;
  position_ = static_cast<std::size_t>(stop - text_.data());
  NoticeEnd();
  return true;
}

bool TextScanner::ScanInt(std::int32_t& value) {
  if (!SkipToField()) return false;
  const bool negative = text_[position_] == '-';
  if (negative || text_[position_] == '+') ++position_;
  const std::size_t first = position_;
  while (position_ < text_.size() && IsDigit(text_[position_])) ++position_;
  NoticeEnd();
  if (position_ == first) return false;

  const std::string_view digits = text_.substr(first, position_ - first);
  std::uint64_t magnitude = 0;
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), magnitude);
  const std::uint64_t limit = (std::uint64_t{1} << 63) - (negative ? 0 : 1);
  if (error != std::errc() || magnitude > limit) magnitude = limit;
  value = static_cast<std::int32_t>(negative ? 0 - magnitude : magnitude);
  return true;
}

bool TextScanner::ScanWord(std::string& word, std::size_t width) {
  if (!SkipToField()) return false;
  const std::size_t first = position_;
  while (position_ < text_.size() && position_ - first < width && !IsSpace(text_[position_])) ++position_;
  if (position_ - first < width) NoticeEnd();
  const std::string_view field = text_.substr(first, position_ - first);
  word.assign(field.substr(0, field.find('\0')));
  return true;
}

bool TextScanner::MatchLiteral(char character) {
  NoticeEnd();
  if (hitEnd_ || text_[position_] != character) return false;
  ++position_;
  return true;
}

void TextScanner::Rewind() {
  position_ = 0;
  hitEnd_ = false;
}

std::string_view FirstLine(std::string_view text, std::size_t bufferSize) {
  if (bufferSize == 0) return {};
  std::string_view line = text.substr(0, text.find('\n'));
  if (line.size() < text.size() && line.ends_with('\r')) line.remove_suffix(1);
  line = line.substr(0, bufferSize - 1);
  return line.substr(0, line.find('\0'));
}

int CountFields(std::string_view line, std::string_view separators) {
  int count = 0;
  bool inField = false;
  for (const char c : line) {
    const bool separator = separators.find(c) != std::string_view::npos;
    if (!separator && !inField) ++count;
    inField = !separator;
  }
  return count;
}

bool HasCommas(std::string_view line) {
  TextScanner scanner(line);
  double number = 0.0;
  return scanner.ScanDouble(number) && scanner.MatchLiteral(',') && scanner.ScanDouble(number);
}

}  // namespace corvane
