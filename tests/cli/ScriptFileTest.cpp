#include "cli/ScriptFile.h"

#include <gtest/gtest.h>

#include <random>

namespace corvane {
namespace {

using Words = std::vector<std::string>;

TEST(ScriptFile, TakesCommandsAndAnswers) {
  const Script script = ParseScript(
      "\"TIN > Create TIN\" survey.pts survey.tin\n"
      "\n"
      "# a comment \"with a quote\n"
      "\t \"File > Save\"\t\n"
      "Test  1.0   -10 --x");
  ASSERT_EQ(script.error, "");
  ASSERT_EQ(script.commands.size(), 3u);
  EXPECT_EQ(script.commands[0].line, 1);
  EXPECT_EQ(script.commands[0].name, "TIN > Create TIN");
  EXPECT_EQ(script.commands[0].answers, (Words{"survey.pts", "survey.tin"}));
  EXPECT_EQ(script.commands[1].line, 4);
  EXPECT_EQ(script.commands[1].name, "File > Save");
  EXPECT_TRUE(script.commands[1].answers.empty());
  EXPECT_EQ(script.commands[2].line, 5);
  EXPECT_EQ(script.commands[2].name, "Test");
  EXPECT_EQ(script.commands[2].answers, (Words{"1.0", "-10", "--x"}));
}

TEST(ScriptFile, QuotesKeepBlanksAndEscapes) {
  const Script script = ParseScript(R"(X "a  b" "say \"hi\"" "back\\slash" "C:\data" "" f="a b"c)");
  ASSERT_EQ(script.error, "");
  EXPECT_EQ(script.commands.at(0).answers,
            (Words{"a  b", "say \"hi\"", "back\\slash", "C:\\data", "", "f=a bc"}));
}

TEST(ScriptFile, BackslashOutsideOfQuotesIsItself) {
  EXPECT_EQ(ParseScript(R"(X C:\data\a.pts \")").error, "a quote is not closed");
  EXPECT_EQ(ParseScript(R"(X C:\data\a.pts \n)").commands.at(0).answers, (Words{"C:\\data\\a.pts", "\\n"}));
}

TEST(ScriptFile, TakesLineEndsOfEitherKind) {
  const Script script = ParseScript("A 1\r\nB\r\n\r\n");
  ASSERT_EQ(script.commands.size(), 2u);
  EXPECT_EQ(script.commands[0].answers, (Words{"1"}));
  EXPECT_EQ(script.commands[1].name, "B");
}

TEST(ScriptFile, CarriageReturnAloneEndsALine) {
  const Script script = ParseScript("A 1\rB\r\r\nC");
  ASSERT_EQ(script.commands.size(), 3u);
  EXPECT_EQ(script.commands[0].answers, (Words{"1"}));
  EXPECT_EQ(script.commands[1].line, 2);
  EXPECT_EQ(script.commands[2].line, 4);
}

TEST(ScriptFile, ByteOrderMarkAtTheStartIsSkipped) {
  EXPECT_EQ(ParseScript("\xef\xbb\xbf\"A\" 1\n").commands.at(0).name, "A");
  EXPECT_TRUE(ParseScript("\xef\xbb\xbf# comment").commands.empty());
  EXPECT_TRUE(ParseScript("\xef\xbb\xbf").commands.empty());
  EXPECT_EQ(ParseScript("A\n\xef\xbb\xbf").commands.size(), 2u) << "elsewhere it is text";
}

TEST(ScriptFile, HashWithinALineIsText) {
  EXPECT_EQ(ParseScript("A #1 b#").commands.at(0).answers, (Words{"#1", "b#"}));
}

TEST(ScriptFile, LineEndInQuotesIsAnErrorAtTheOpeningQuote) {
  for (const std::string lineEnd : {"\n", "\r\n", "\r"}) {
    const Script script = ParseScript("A" + lineEnd + "B \"x" + lineEnd + "y\"" + lineEnd + "C");
    EXPECT_EQ(script.error, "a quote is not closed");
    EXPECT_EQ(script.errorLine, 2);
  }
}

TEST(ScriptFile, OpenQuoteIsAnErrorWithItsLine) {
  const Script script = ParseScript("A 1\n\nB \"x\nC\n");
  EXPECT_EQ(script.error, "a quote is not closed");
  EXPECT_EQ(script.errorLine, 3);
}

TEST(ScriptFile, EmptyScriptHasNoCommands) {
  EXPECT_TRUE(ParseScript("").commands.empty());
  EXPECT_EQ(ParseScript("\n\n# only this").error, "");
}

TEST(ScriptFile, WritesWordsPlainWhereItCan) {
  EXPECT_EQ(ScriptWord("survey.pts"), "survey.pts");
  EXPECT_EQ(ScriptWord("File > Open"), "\"File > Open\"");
  EXPECT_EQ(ScriptWord(""), "\"\"");
  EXPECT_EQ(ScriptWord("#1"), "\"#1\"");
  EXPECT_EQ(ScriptWord("a\"b\\c d"), "\"a\\\"b\\\\c d\"");
  EXPECT_EQ(ScriptWord("C:\\data"), "C:\\data");
}

TEST(ScriptFile, ShownTextHasNoControlCharacters) {
  EXPECT_EQ(ShownText("a\033[0m\n\x7f\"H\xc3\xb6he"), "\"a?[0m??\\\"H\xc3\xb6he\"");
}

TEST(ScriptFile, EveryTextComesBack) {
  std::mt19937 random(1);
  const std::string characters = "ab \t\"\\#;=|@\xc3\xa9";
  for (int round = 0; round < 20000; ++round) {
    Words words(1 + random() % 4);
    std::string line;
    for (std::string& word : words) {
      for (std::size_t n = random() % 8; n > 0; --n) word += characters[random() % characters.size()];
      line += ScriptWord(word) + ' ';
    }
    const Script script = ParseScript(line + "\n");
    ASSERT_EQ(script.error, "") << line;
    ASSERT_EQ(script.commands.size(), 1u) << line;
    Words back = script.commands[0].answers;
    back.insert(back.begin(), script.commands[0].name);
    ASSERT_EQ(back, words) << line;
  }
}

}  // namespace
}  // namespace corvane
