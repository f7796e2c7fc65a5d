#include "io/TextScanner.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace corvane {
namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// The C library's scanf over a text in memory, one conversion a step.
class Reference {
 public:
  explicit Reference(std::string text)
      : text_(std::move(text)), file_(fmemopen(text_.data(), text_.size(), "r")) {}

  bool ScanDouble(double& value) { return std::fscanf(file_.get(), "%lf", &value) == 1; }
  bool ScanInt(std::int32_t& value) { return std::fscanf(file_.get(), "%d", &value) == 1; }
  bool ScanWord(std::string& word) {
    std::vector<char> buffer(text_.size() + 1);
    if (std::fscanf(file_.get(), "%s", buffer.data()) != 1) return false;
    word = buffer.data();  // up to its first zero
    return true;
  }
  bool MatchLiteral(char character) {
    const std::string format{character, '%', 'n'};
    int end = -1;
    std::fscanf(file_.get(), format.c_str(), &end);
    return end >= 0;
  }
  void SkipSpace() { std::fscanf(file_.get(), " "); }
  bool AtEnd() const { return std::feof(file_.get()) != 0; }
  std::size_t GetPosition() const { return static_cast<std::size_t>(std::ftell(file_.get())); }

 private:
  std::string text_;
  std::unique_ptr<std::FILE, FileCloser> file_;
};

// One step of a scan: 'f' a double, 'd' an integer, 's' a word, ' ' white space, else a literal. Returns
// whether both sides agree on match, value, position and end.
::testing::AssertionResult SameStep(TextScanner& scanner, Reference& reference, char step) {
  double real = 0.0, expectedReal = 0.0;
  std::int32_t integer = 0, expectedInteger = 0;
  std::string word, expectedWord;
  bool match = true, expectedMatch = true;
  if (step == 'f') {
    match = scanner.ScanDouble(real);
    expectedMatch = reference.ScanDouble(expectedReal);
  } else if (step == 'd') {
    match = scanner.ScanInt(integer);
    expectedMatch = reference.ScanInt(expectedInteger);
  } else if (step == 's') {
    match = scanner.ScanWord(word);
    expectedMatch = reference.ScanWord(expectedWord);
  } else if (step == ' ') {
    scanner.SkipSpace();
    reference.SkipSpace();
  } else {
    match = scanner.MatchLiteral(step);
    expectedMatch = reference.MatchLiteral(step);
  }
  if (match != expectedMatch) return ::testing::AssertionFailure() << step << ": match is " << match;
  if (std::bit_cast<std::uint64_t>(real) != std::bit_cast<std::uint64_t>(expectedReal)) {
    return ::testing::AssertionFailure() << "value " << real << " instead of " << expectedReal;
  }
  if (integer != expectedInteger) {
    return ::testing::AssertionFailure() << "value " << integer << " instead of " << expectedInteger;
  }
  if (word != expectedWord) return ::testing::AssertionFailure() << "word " << word;
  if (scanner.GetPosition() != reference.GetPosition()) {
    return ::testing::AssertionFailure()
           << step << ": position " << scanner.GetPosition() << " instead of " << reference.GetPosition();
  }
  if (scanner.AtEnd() != reference.AtEnd()) {
    return ::testing::AssertionFailure() << step << ": end is " << scanner.AtEnd();
  }
  return ::testing::AssertionSuccess();
}

void ExpectSame(const std::string& text, const std::string& steps) {
  TextScanner scanner(text);
  Reference reference(text);
  for (const char step : steps) {
    ASSERT_TRUE(SameStep(scanner, reference, step)) << "text \"" << text << "\", steps \"" << steps << '"';
  }
}

TEST(TextScanner, AdversarialNumbers) {
  const std::vector<std::string> texts = {"1",
                                          "-1",
                                          "+1",
                                          "--1",
                                          "+-1",
                                          "1.",
                                          ".5",
                                          ".",
                                          "-.",
                                          "+.e1",
                                          "1e",
                                          "1e+",
                                          "1e-",
                                          "1e+x",
                                          "1E5",
                                          "1e5e5",
                                          "1e5.5",
                                          "1.5.5",
                                          "1..5",
                                          "0x",
                                          "0x.",
                                          "0x.p1",
                                          "0x1",
                                          "0x1p",
                                          "0x1p+",
                                          "0x1p-3",
                                          "0X1.8P2",
                                          "0xg",
                                          "-0x",
                                          "-0x1fz",
                                          "0x1.8e3",
                                          "00x1",
                                          "inf",
                                          "INF",
                                          "-inf",
                                          "infi",
                                          "infin",
                                          "infinity",
                                          "infinityx",
                                          "infinit",
                                          "infx",
                                          "in",
                                          "i",
                                          "nan",
                                          "NaN",
                                          "-nan",
                                          "nan(1)",
                                          "na",
                                          "nax",
                                          "n",
                                          "nn",
                                          "1e400",
                                          "-1e400",
                                          "1e-400",
                                          "-1e-400",
                                          "4.9e-324",
                                          "2e-324",
                                          "1.7976931348623157e308",
                                          "1.7976931348623159e308",
                                          "2.2250738585072011e-308",
                                          "1,2",
                                          "1 ,2",
                                          "1d5",
                                          "1f",
                                          "1_000",
                                          "0",
                                          "-0",
                                          "-0.0",
                                          "0e",
                                          "0e0",
                                          "0e999999999999999999999",
                                          "1e99999999999999999999",
                                          "1e-99999999999999999999",
                                          "0.000",
                                          "1\n2",
                                          "\t\v\f\r\n 1",
                                          "",
                                          " ",
                                          "\n",
                                          "+",
                                          "-",
                                          "+ 1",
                                          "e5",
                                          ".e5",
                                          "x",
                                          "1x",
                                          "1e1x",
                                          "0.1e1.",
                                          "9007199254740993",
                                          "9007199254740992.999999999999999999999999999",
                                          "0x1.00000000000008p0",
                                          "2147483647",
                                          "2147483648",
                                          "-2147483648",
                                          "-2147483649",
                                          "9223372036854775807",
                                          "9223372036854775808",
                                          "-9223372036854775808",
                                          "-9223372036854775809",
                                          "99999999999999999999999999",
                                          "000000000000000000000000000000000000001"};
  for (const std::string& text : texts) {
    for (const char* tail : {"", " ", " 7", ",7", "\n7.5", "e", "+", "."}) {
      for (const char* steps : {"fff", "ddd", "sss", "f,f", "d,f", "f f", "dff", "f.f", " f"}) {
        if (text.empty() && *tail == '\0') continue;
        ExpectSame(text + tail, steps);
      }
    }
  }
}

TEST(TextScanner, RandomTextsScanAsTheCLibraryDoes) {
  std::mt19937_64 random(1);
  const std::string alphabets[] = {"0123456789.-+eE, \n", "0123456789.,\n \t", "0xX1aAfFpP.+-e ",
                                   "infatyINFATY -+1 ", std::string("1 \0x.\n,", 8)};
  const std::string steps[] = {"ffff", "f,f,f", "d,f,f", "dfdf", "sfs", "f f,d", "d, f, f, f"};
  for (int round = 0; round < 100000; ++round) {
    const std::string& alphabet = alphabets[random() % std::size(alphabets)];
    std::string text(1 + random() % 20, ' ');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    ExpectSame(text, steps[random() % std::size(steps)]);
    if (HasFatalFailure()) return;
  }
}

TEST(TextScanner, RandomNumbersHaveTheSameBits) {
  std::mt19937_64 random(2);
  const char* const formats[] = {"%.17g", "%.15g", "%.3f", "%.6e", "%a", "%.0f", "%+.20g", "%.25f"};
  for (int round = 0; round < 100000; ++round) {
    const std::uint64_t bits = random();
    const double value =
        round % 2 == 0 ? std::bit_cast<double>(bits) : static_cast<double>(bits % 1000000000) / 1000.0;
    char text[512];
    std::snprintf(text, sizeof text, formats[random() % std::size(formats)], value);
    ExpectSame(text, "ff");
    if (HasFatalFailure()) return;
  }
}

TEST(TextScanner, ShortDecimalsAreRoundedToTheNearest) {
  std::mt19937_64 random(11);
  for (int round = 0; round < 200000; ++round) {
    std::string text = std::to_string(random() >> random() % 64);
    if (text.size() > 1 && random() % 2) text.insert(random() % text.size(), 1, '.');
    ExpectSame(text, "f");
    // Half way between two doubles, and one unit of the last place beside it.
    const std::uint64_t tie = (random() % (1ull << 53) << 1 | 1) + (1ull << 54);
    for (const std::uint64_t number : {tie - 1, tie, tie + 1}) ExpectSame(std::to_string(number) + ".0", "f");
    if (HasFatalFailure()) return;
  }
}

TEST(TextScanner, VeryLongDigitStrings) {
  const std::string digits(100000, '7');
  const std::string zeros(100000, '0');
  for (const std::string& text :
       {digits, "0." + digits, zeros + "1.5", "0." + zeros + "1", "-" + digits + "e-99999", "1e" + digits,
        "1e-" + digits, "1e" + zeros + "2", "0x" + digits, "0x." + zeros + "1p400005"}) {
    ExpectSame(text, "ff");
    ExpectSame(text + " 1", "ff");
    ExpectSame(text + ",1", "d,f");
  }
}

TEST(TextScanner, ZeroBytesAreOrdinaryCharacters) {
  const std::string text("1\0 2", 4);
  TextScanner scanner(text);
  double value = 0.0;
  EXPECT_TRUE(scanner.ScanDouble(value));
  EXPECT_EQ(scanner.GetPosition(), 1u);
  EXPECT_FALSE(scanner.ScanDouble(value));
  EXPECT_TRUE(scanner.MatchLiteral('\0'));
  EXPECT_TRUE(scanner.ScanDouble(value));
  EXPECT_EQ(value, 2.0);
}

TEST(TextScanner, WordEndsAtItsFirstZeroButIsConsumed) {
  TextScanner scanner(std::string_view("  ab\0cd\0 \0x y", 14));
  std::string word;
  ASSERT_TRUE(scanner.ScanWord(word));
  EXPECT_EQ(word, "ab");
  EXPECT_EQ(scanner.GetPosition(), 8u);
  ASSERT_TRUE(scanner.ScanWord(word));
  EXPECT_EQ(word, "");
  ASSERT_TRUE(scanner.ScanWord(word, 5));
  EXPECT_EQ(word, "y");
  EXPECT_TRUE(scanner.AtEnd());
}

TEST(TextScanner, EmptyTextIsAtItsEndAfterTheFirstStep) {
  TextScanner scanner("");
  double value = 3.0;
  EXPECT_FALSE(scanner.AtEnd());
  EXPECT_FALSE(scanner.ScanDouble(value));
  EXPECT_TRUE(scanner.AtEnd());
  EXPECT_EQ(value, 3.0);
  scanner.Rewind();
  EXPECT_FALSE(scanner.AtEnd());
}

TEST(TextScanner, RewindStartsAgain) {
  TextScanner scanner("7");
  std::int32_t value = 0;
  EXPECT_TRUE(scanner.ScanInt(value));
  EXPECT_TRUE(scanner.AtEnd());
  scanner.Rewind();
  value = 0;
  EXPECT_TRUE(scanner.ScanInt(value));
  EXPECT_EQ(value, 7);
}

TEST(FirstLine, IsWhatFgetsSees) {
  EXPECT_EQ(FirstLine("ab\ncd\n"), "ab");
  EXPECT_EQ(FirstLine("ab"), "ab");
  EXPECT_EQ(FirstLine(""), "");
  EXPECT_EQ(FirstLine(std::string(300, 'x')).size(), 255u);
  EXPECT_EQ(FirstLine(std::string_view("a\0b\n", 4)), "a");
}

TEST(FirstLine, ACarriageReturnCountsUnlessALineFeedFollows) {
  EXPECT_EQ(FirstLine("ab \r\ncd"), "ab ");
  EXPECT_EQ(FirstLine("\r\ncd"), "");
  EXPECT_EQ(FirstLine("ab\r\r\ncd"), "ab\r");
  EXPECT_EQ(FirstLine("a\rb\ncd"), "a\rb");
  EXPECT_EQ(FirstLine("ab\r"), "ab\r");
  // The line feed stands beyond what fgets takes, and is looked at all the same.
  EXPECT_EQ(FirstLine("abc\r\n", 5), "abc");
}

TEST(CountFields, CountsWhatStandsBetweenSeparators) {
  EXPECT_EQ(CountFields("1,2,3\n"), 3);
  EXPECT_EQ(CountFields(" 1 ,, 2\t3 \n"), 3);
  EXPECT_EQ(CountFields(""), 0);
  EXPECT_EQ(CountFields(" ,\t\n"), 0);
}

TEST(TextScanner, WordOfAWidthLeavesTheRest) {
  TextScanner scanner("  abcdef ghi");
  std::string word;
  ASSERT_TRUE(scanner.ScanWord(word, 4));
  EXPECT_EQ(word, "abcd");
  ASSERT_TRUE(scanner.ScanWord(word, 4));
  EXPECT_EQ(word, "ef");
  ASSERT_TRUE(scanner.ScanWord(word, 3));
  EXPECT_EQ(word, "ghi");
  EXPECT_FALSE(scanner.AtEnd());
  EXPECT_FALSE(scanner.ScanWord(word, 3));
  EXPECT_TRUE(scanner.AtEnd());
}

TEST(TextScanner, ALineHasCommasIfItBeginsWithTwoNumbersAndOneBetween) {
  EXPECT_TRUE(HasCommas("1,2"));
  EXPECT_TRUE(HasCommas(" 1, -2.5e3, x"));
  EXPECT_FALSE(HasCommas("1 2"));
  EXPECT_FALSE(HasCommas("1 ,2"));
  EXPECT_FALSE(HasCommas("1,x"));
  EXPECT_FALSE(HasCommas("x,2"));
  EXPECT_FALSE(HasCommas(""));
}

}  // namespace
}  // namespace corvane
