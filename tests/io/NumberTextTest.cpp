#include "io/NumberText.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>

namespace corvane {
namespace {

// Of NaN the sign is left out.
std::string Printed(const char* format, int precision, double value) {
  if (std::isnan(value)) value = std::fabs(value);
  char text[2048];
  std::snprintf(text, sizeof text, format, precision, value);
  return text;
}

// Any bit pattern on even rounds, a plain ground coordinate on odd ones.
double RandomDouble(std::mt19937_64& random, int round) {
  const std::uint64_t bits = random();
  return round % 2 == 0 ? std::bit_cast<double>(bits) : static_cast<double>(bits % 2000000000) / 1000.0 - 1e6;
}

TEST(NumberText, FixedAndGeneralAreWhatPrintfWrites) {
  std::mt19937_64 random(3);
  for (int round = 0; round < 300000; ++round) {
    const double value = RandomDouble(random, round);
    const int precision = static_cast<int>(random() % 18);
    ASSERT_EQ(GeneralText(value, precision), Printed("%.*g", precision, value));
    ASSERT_EQ(FixedText(value, precision), Printed("%.*f", precision, value));
  }
}

TEST(NumberText, SpecialNumbersAreWhatPrintfWrites) {
  using Limits = std::numeric_limits<double>;
  for (const double value :
       {0.0, -0.0, Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), -Limits::quiet_NaN(),
        Limits::max(), Limits::min(), Limits::denorm_min(), 0.5, 1.5, 2.5, 999999.5, 1e15, 1e22}) {
    for (const int precision : {0, 1, 6, 13, 17, 400}) {
      EXPECT_EQ(GeneralText(value, precision), Printed("%.*g", precision, value));
      EXPECT_EQ(FixedText(value, precision), Printed("%.*f", precision, value));
    }
  }
}

TEST(NumberText, NaNHasNoSign) {
  const double nan = std::copysign(std::numeric_limits<double>::quiet_NaN(), -1.0);
  ASSERT_TRUE(std::signbit(nan));
  for (const double value : {nan, -nan}) {
    EXPECT_EQ(FixedText(value), "nan");
    EXPECT_EQ(GeneralText(value, 15), "nan");
    EXPECT_EQ(GeneralText(value, 400), "nan");
    EXPECT_EQ(ShortestText(value), "nan");
    EXPECT_EQ(ShortestText(static_cast<float>(value)), "nan");
    std::string text = "x ";
    AppendNumbers(text, {value, 1.0, value}, 6);
    EXPECT_EQ(text, "x nan, 1, nan");
  }
}

TEST(NumberText, ShortestTextReadsBack) {
  std::mt19937_64 random(4);
  for (int round = 0; round < 1000000; ++round) {
    const double value = RandomDouble(random, round);
    if (std::isnan(value)) continue;
    ASSERT_EQ(std::strtod(ShortestText(value).c_str(), nullptr), value);
    const float narrow = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    if (std::isnan(narrow)) continue;
    ASSERT_EQ(std::strtof(ShortestText(narrow).c_str(), nullptr), narrow);
  }
  EXPECT_EQ(ShortestText(0.1), "0.1");
  EXPECT_EQ(ShortestText(0.1f), "0.1");
  EXPECT_EQ(ShortestText(2.0), "2");
}

TEST(NumberText, ParseRealReadsWhatStrtodReads) {
  std::mt19937_64 random(5);
  for (int round = 0; round < 1000000; ++round) {
    const double value = RandomDouble(random, round);
    if (!std::isfinite(value)) continue;
    const std::string text = GeneralText(value, 1 + static_cast<int>(random() % 20));
    const double expected = std::strtod(text.c_str(), nullptr);
    if (!std::isfinite(expected)) continue;
    ASSERT_EQ(ParseReal(text), expected) << text;
  }
}

TEST(NumberText, ParseRealTakesOneFiniteNumber) {
  EXPECT_EQ(ParseReal(" 1.5\n"), 1.5);
  EXPECT_EQ(ParseReal("+2"), 2.0);
  EXPECT_EQ(ParseReal("-.5"), -0.5);
  EXPECT_EQ(ParseReal("1e-400"), 0.0);
  for (const char* text :
       {"", " ", "x", "1x", "1 2", "1e", "+-1", "++1", "+", "1e400", "-1e400", "inf", "nan", "1,5", "+inf"}) {
    EXPECT_EQ(ParseReal(text), std::nullopt) << text;
  }
}

TEST(NumberText, ParseIntegerTakesOneWholeNumber) {
  EXPECT_EQ(ParseInteger(" 42 "), 42);
  EXPECT_EQ(ParseInteger("+7"), 7);
  EXPECT_EQ(ParseInteger("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  for (const char* text : {"", "1.0", "1e3", "9223372036854775808", "x", "+-1", "- 1"}) {
    EXPECT_EQ(ParseInteger(text), std::nullopt) << text;
  }
}

TEST(NumberText, AppendIntAndTrimmed) {
  std::string text = "n=";
  AppendInt(text, -12);
  EXPECT_EQ(text, "n=-12");
  EXPECT_EQ(Trimmed(" \t a b\r\n"), "a b");
  EXPECT_EQ(Trimmed(" \n"), "");
}

TEST(NumberText, NumbersAreJoinedByCommasAndBlanks) {
  std::string text = "7: ";
  AppendNumbers(text, {1.5, -0.1, 1e20}, 3);
  EXPECT_EQ(text, "7: 1.5, -0.1, 1e+20");
  AppendNumbers(text, {}, 3);
  EXPECT_EQ(text, "7: 1.5, -0.1, 1e+20");
}

}  // namespace
}  // namespace corvane
