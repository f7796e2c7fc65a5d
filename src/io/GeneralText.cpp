#include "io/GeneralText.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace corvane {

namespace {

using Wide = unsigned __int128;

constexpr int kMaxDigits = 17;
constexpr int kMaxShift = 27;  // the largest power of five in 64 bits
constexpr int kMantissaBits = 52;

template <std::size_t N>
constexpr std::array<std::uint64_t, N> PowersOf(std::uint64_t base) {
  std::array<std::uint64_t, N> powers = {1};
  for (std::size_t i = 1; i < N; ++i) powers[i] = base * powers[i - 1];
  return powers;
}

constexpr auto kPowersOfFive = PowersOf<kMaxShift + 1>(5);
constexpr auto kPowersOfTen = PowersOf<kMaxDigits + 1>(10);

// "00" to "99".
constexpr auto kPairs = [] {
  std::array<char, 200> pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();

// A normal number above 0: mantissa * 2^exponent.
struct Binary {
  std::uint64_t mantissa = 0;
  int exponent = 0;
};

// A decimal number of a fixed count of digits, the first of which stands for 10^exponent.
struct Decimal {
  std::uint64_t digits = 0;
  int exponent = 0;
};

// The whole part and what is left of mantissa * 2^exponent * 10^shift.
struct Scaled {
  std::uint64_t whole = 0;
  Wide rest = 0;
  Wide half = 0;
};

Scaled Scale(Binary number, int shift) {
  const Wide product = Wide{number.mantissa} * kPowersOfFive[static_cast<std::size_t>(shift)];
  const int drop = -(number.exponent + shift);  // below 116: the whole part is not 0
  if (drop <= 0) return {static_cast<std::uint64_t>(product << -drop), 0, 1};
  const auto whole = static_cast<std::uint64_t>(product >> drop);
  return {whole, product - (Wide{whole} << drop), Wide{1} << (drop - 1)};
}

// Rounds to `nDigits` digits; false if the number is too small or too large for it.
bool Round(Binary number, int nDigits, Decimal& decimal) {
  // floor(log10(2^n)) for every n of a double; the number itself may have one digit more
  int exponent = ((number.exponent + kMantissaBits) * 1262611) >> 22;
  int shift = nDigits - 1 - exponent;
  if (shift < 0 || shift > kMaxShift) return false;
  const std::uint64_t end = kPowersOfTen[static_cast<std::size_t>(nDigits)];
  Scaled scaled = Scale(number, shift);
  if (scaled.whole >= end) {
    ++exponent;
    if (--shift < 0) return false;
    scaled = Scale(number, shift);
  }
  const bool isTie = scaled.rest == scaled.half;
  if (scaled.rest > scaled.half || (isTie && scaled.whole % 2 == 1)) ++scaled.whole;
  decimal = {scaled.whole, exponent};
  if (decimal.digits == end) decimal = {end / 10, exponent + 1};
  return true;
}

// The digits of a number, copied in blocks of one size, which is much faster than in just as many as there
// are.
struct DigitText {
  static constexpr std::size_t kBlock = 24;

  char text[2 * kBlock];  // a block from any digit on lies within it
};

void WritePair(std::uint64_t pair, char* to) {
  std::memcpy(to, &kPairs[2 * pair], 2);
}

// Eight digits, in halves of halves, so that the divisions do not wait for each other.
void WriteEight(std::uint64_t digits, char* to) {
  const std::uint64_t high = digits / 10000;
  const std::uint64_t low = digits % 10000;
  WritePair(high / 100, to);
  WritePair(high % 100, to + 2);
  WritePair(low / 100, to + 4);
  WritePair(low % 100, to + 6);
}

void WriteDigits(const Decimal& decimal, int nDigits, DigitText& digits) {
  // 17 digits with the first one in front, whatever their number
  const std::uint64_t all = decimal.digits * kPowersOfTen[static_cast<std::size_t>(kMaxDigits - nDigits)];
  constexpr std::uint64_t kEight = kPowersOfTen[8];
  const std::uint64_t rest = all % (kEight * kEight);
  digits.text[0] = static_cast<char>('0' + all / (kEight * kEight));
  WriteEight(rest / kEight, digits.text + 1);
  WriteEight(rest % kEight, digits.text + 9);
}

// The digits without the zeros at their end, but at least one.
int CountUsed(const DigitText& digits, int nDigits) {
  while (nDigits > 1 && digits.text[nDigits - 1] == '0') --nDigits;
  return nDigits;
}

void CopyBlock(const DigitText& digits, int first, char* to) {
  std::memcpy(to, digits.text + first, DigitText::kBlock);
}

char* WriteFixed(char* to, const DigitText& digits, int nUsed, int exponent) {
  if (exponent < 0) {
    std::string_view("0.000").copy(to, 5);
    CopyBlock(digits, 0, to + 1 - exponent);
    return to + 1 - exponent + nUsed;
  }
  const int nWhole = exponent + 1;
  CopyBlock(digits, 0, to);
  if (nUsed <= nWhole) return to + nWhole;  // zeros at the end of these belong to the number
  to[nWhole] = '.';
  CopyBlock(digits, nWhole, to + nWhole + 1);
  return to + nUsed + 1;
}

char* WriteScientific(char* to, const DigitText& digits, int nUsed, int exponent) {
  to[0] = digits.text[0];
  to[1] = '.';
  CopyBlock(digits, 1, to + 2);
  to += nUsed > 1 ? nUsed + 1 : 1;
  *to++ = 'e';
  *to++ = exponent < 0 ? '-' : '+';
  WritePair(static_cast<std::uint64_t>(exponent < 0 ? -exponent : exponent), to);
  return to + 2;
}

}  // namespace

char* WritePlainGeneral(char* to, double value, int precision) {
  if (precision < 1 || precision > kMaxDigits) return nullptr;
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const int biased = static_cast<int>(bits >> kMantissaBits) & 0x7FF;
  if (biased == 0 || biased == 0x7FF) return nullptr;  // zero, subnormal, infinite or no number
  constexpr std::uint64_t kHiddenBit = std::uint64_t{1} << kMantissaBits;
  Decimal decimal;
  if (!Round({(bits & (kHiddenBit - 1)) | kHiddenBit, biased - 1023 - kMantissaBits}, precision, decimal)) {
    return nullptr;
  }
  DigitText digits{};
  WriteDigits(decimal, precision, digits);
  const int nUsed = CountUsed(digits, precision);
  if (bits >> 63 != 0) *to++ = '-';
  const bool isFixed = decimal.exponent >= -4 && decimal.exponent < precision;
  return (isFixed ? WriteFixed : WriteScientific)(to, digits, nUsed, decimal.exponent);
}

}  // namespace corvane
