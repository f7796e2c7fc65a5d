#include "io/GeneralText.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <optional>
#include <random>
#include <string>

namespace corvane {
namespace {

std::optional<std::string> Plain(double value, int precision) {
  char text[kPlainGeneralRoom];
  const char* const end = WritePlainGeneral(text, value, precision);
  if (end == nullptr) return std::nullopt;
  return std::string(text, static_cast<std::size_t>(end - text));
}

std::string Printed(double value, int precision) {
  char text[64];
  const int size = std::snprintf(text, sizeof text, "%.*g", precision, value);
  return std::string(text, static_cast<std::size_t>(size));
}

std::string Converted(double value, int precision) {
  char text[64];
  return {text, std::to_chars(text, text + sizeof text, value, std::chars_format::general, precision).ptr};
}

// Whether a number is written at all, and if so as std::to_chars does.
bool IsPlainAndRight(double value, int precision) {
  const auto text = Plain(value, precision);
  if (!text) return false;
  EXPECT_EQ(*text, Converted(value, precision)) << precision;
  return true;
}

TEST(GeneralText, WritesWhatPrintfWrites) {
  for (const double value :
       {1.0, -1.0, 0.5, 123456.789, 451234.25, 5423100.0, 1e14, 999999999999999.0, 0.1, -0.0001, 0.00012345,
        0.00001, -1.25e-9, 1.0 / 3.0, 99.99999999999999, 4096.0, -4096.0}) {
    EXPECT_EQ(Plain(value, 15), Printed(value, 15));
    EXPECT_EQ(Plain(value, 17), Printed(value, 17));
  }
}

TEST(GeneralText, WritesAllMagnitudesOfEverydayNumbersAt15Digits) {
  EXPECT_EQ(Plain(1e-12, 15), "1e-12");
  EXPECT_EQ(Plain(123456789012345.0, 15), "123456789012345");
  EXPECT_EQ(Plain(9.99999999999999e14, 15), "999999999999999");
}

TEST(GeneralText, LeavesTheOtherNumbersAlone) {
  using Limits = std::numeric_limits<double>;
  for (const double value : {0.0, -0.0, Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(),
                             Limits::max(), Limits::min(), Limits::denorm_min(), 1e17, 1e-14}) {
    EXPECT_EQ(Plain(value, 15), std::nullopt) << value;
  }
  for (const int precision : {-1, 0, 18, 400}) EXPECT_EQ(Plain(1.0, precision), std::nullopt);
}

TEST(GeneralText, TiesGoToTheEvenDigit) {
  EXPECT_EQ(Plain(0.5, 1), "0.5");
  EXPECT_EQ(Plain(2.5, 1), "2");
  EXPECT_EQ(Plain(3.5, 1), "4");
  EXPECT_EQ(Plain(1.5, 1), "2");
  EXPECT_EQ(Plain(0.125, 2), "0.12");
  EXPECT_EQ(Plain(0.375, 2), "0.38");
  EXPECT_EQ(Plain(9.5, 1), "1e+01");
  EXPECT_EQ(Plain(1000000000000.0625, 16), "1000000000000.062");
  EXPECT_EQ(Plain(std::nextafter(2.5, 3.0), 1), "3");
  EXPECT_EQ(Plain(std::nextafter(3.5, 3.0), 1), "3");
}

// Every number k + 1/2 with k of `precision` digits is a tie.
TEST(GeneralText, RandomTiesAreWhatToCharsWrites) {
  std::mt19937_64 random(1);
  for (int round = 0; round < 300000; ++round) {
    const int precision = 1 + static_cast<int>(random() % 15);
    const auto end = static_cast<std::uint64_t>(std::pow(10.0, precision));
    const double tie = static_cast<double>(end / 10 + random() % (end - end / 10)) + 0.5;
    ASSERT_TRUE(IsPlainAndRight(tie, precision)) << tie;
    ASSERT_TRUE(IsPlainAndRight(-std::nextafter(tie, 0.0), precision));
    ASSERT_TRUE(IsPlainAndRight(std::nextafter(tie, 1e300), precision));
  }
}

TEST(GeneralText, PowersOfTenAndTheirNeighboursAreWhatToCharsWrites) {
  for (int exponent = -320; exponent <= 308; ++exponent) {
    const double power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
    for (int precision = 1; precision <= 17; ++precision) {
      const bool isEveryday = exponent >= precision - 27 && exponent < precision;
      for (const double value : {power, std::nextafter(power, 0.0), std::nextafter(power, 1e300), power * 9.5,
                                 power * (1.0 - std::pow(10.0, -precision) / 2.0)}) {
        const bool isPlain = IsPlainAndRight(value, precision);
        const bool mustBePlain = value == power && isEveryday;
        EXPECT_TRUE(isPlain || !mustBePlain) << power << " " << precision;
      }
    }
  }
}

TEST(GeneralText, DecimalsOfFewDigitsAreWhatToCharsWrites) {
  std::mt19937_64 random(2);
  for (int round = 0; round < 500000; ++round) {
    const auto digits = static_cast<double>(random() % 1000000000);
    const double value = digits / std::pow(10.0, static_cast<double>(random() % 10));
    const bool isPlain = IsPlainAndRight(value, 15);
    ASSERT_EQ(isPlain, value != 0.0) << value;
    IsPlainAndRight(-value, static_cast<int>(random() % 18));
  }
}

TEST(GeneralText, RandomNumbersAreWhatToCharsWrites) {
  std::mt19937_64 random(3);
  for (int round = 0; round < 2000000; ++round) {
    const std::uint64_t bits = random();
    const int precision = round % 2 == 0 ? 15 : 1 + static_cast<int>(random() % 17);
    // half of them of any magnitude, half from 2^-93 to 2^64
    const int exponent = -static_cast<int>(random() % 158);
    const double value = round % 4 < 2 ? std::bit_cast<double>(bits)
                                       : std::ldexp(static_cast<double>(bits >> 11) + 0x1p53, 10 + exponent);
    IsPlainAndRight(value, precision);
    if (HasFailure()) FAIL() << value;
  }
}

}  // namespace
}  // namespace corvane
