#include "cli/ScriptRecorder.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

#include "cli/FakeView.h"
#include "cli/ScriptFile.h"
#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

class ScriptRecorderTest : public testing::Test {
 protected:
  void SetUp() override { headSize_ = ReadFileBytes("day.txt").size(); }

  // What has been recorded behind the comment at the top.
  std::string Recorded() const { return ReadFileBytes("day.txt").substr(headSize_); }

  void Run(const std::string& name, CommandResult result, const std::function<void()>& prompts) {
    recorder_.CommandStarted(name);
    prompts();
    recorder_.CommandEnded(name, result);
  }

  TempFolder folder_;
  TestFrontEnd inner_;
  ScriptRecorder recorder_{inner_, "day.txt"};
  std::size_t headSize_ = 0;
};

TEST_F(ScriptRecorderTest, WritesCommandsWithTheirAnswers) {
  inner_.files = {{"/data/my survey.pts"}, {"/data/a.tin"}};
  inner_.values = {0.1};
  Run("TIN > Create TIN", CommandResult::Done, [&] {
    recorder_.ChooseFiles({});
    recorder_.ChooseFiles({});
    recorder_.AskValue("Spacing", 1.0);
  });
  Run("File > New", CommandResult::Done, [] {});
  EXPECT_EQ(Recorded(),
            "\"TIN > Create TIN\" \"/data/my survey.pts\" /data/a.tin 0.1\n"
            "\"File > New\"\n");
  EXPECT_EQ(inner_.events.front(), "command: TIN > Create TIN");
  EXPECT_TRUE(recorder_.IsGood());
}

TEST_F(ScriptRecorderTest, WritesCancelsAndFailedCommands) {
  Run("A", CommandResult::Cancelled, [&] { recorder_.ChooseFiles({}); });
  Run("B", CommandResult::Cancelled, [&] { recorder_.AskValue("", 1.0); });
  Form form;
  Run("C", CommandResult::Cancelled, [&] { recorder_.AskForm(form); });
  Run("D", CommandResult::Failed, [] {});
  EXPECT_EQ(Recorded(), "A @cancel\nB @cancel\nC @cancel\nD\n");
}

TEST_F(ScriptRecorderTest, WritesFormsThatComeBackWhole) {
  Form form{"MatchInput",
            "",
            {FileField("leftImage", "", "a;b \"c\".lan", {}), FileField("rightImage", "", "", {})}};
  inner_.forms = {[](Form&) { return true; }};
  Run("A", CommandResult::Done, [&] { recorder_.AskForm(form); });
  EXPECT_EQ(Recorded(), R"(A "leftImage=\"a;b \\\"c\\\".lan\";rightImage=")"
                        "\n");
  EXPECT_EQ(ParseScript(Recorded()).commands.at(0).answers.at(0), R"(leftImage="a;b \"c\".lan";rightImage=)");
}

TEST_F(ScriptRecorderTest, WritesSeveralFilesAsOneAnswer) {
  inner_.files = {{"a.pts", "b.pts"}, {"@cancel"}};
  Run("A", CommandResult::Done, [&] {
    recorder_.ChooseFiles({});
    recorder_.ChooseFiles({});
  });
  EXPECT_EQ(Recorded(), "A a.pts|b.pts ./@cancel\n");
}

TEST_F(ScriptRecorderTest, FileThatWasGivenIsTheChoosersAnswer) {
  Run("File > Open", CommandResult::Done, [&] { recorder_.FileGiven({}, "/data/a.tin"); });
  EXPECT_EQ(Recorded(), "\"File > Open\" /data/a.tin\n");
}

TEST_F(ScriptRecorderTest, FileIsAWholeScriptWhileACommandRuns) {
  inner_.values = {1.0, 2.0};
  recorder_.CommandStarted("A");
  EXPECT_EQ(Recorded(), "A\n");
  recorder_.AskValue("", 0.0);
  EXPECT_EQ(Recorded(), "A 1\n");
  recorder_.AskValue("", 0.0);
  EXPECT_EQ(Recorded(), "A 1 2\n");
}

TEST_F(ScriptRecorderTest, PromptsOutsideOfCommandsAreLeftOut) {
  Form form;
  recorder_.AskForm(form);
  recorder_.AskValue("", 1.0);
  recorder_.ChooseFiles({});
  EXPECT_EQ(Recorded(), "");
}

TEST_F(ScriptRecorderTest, SavingOnClosingIsASaveBeforeTheClose) {
  inner_.saveChoices = {SaveChoice::Save};
  inner_.files = {{"a.tin"}};
  Run("File > Close", CommandResult::Done, [&] {
    recorder_.AskSaveChanges("Corvane1");
    recorder_.ChooseFiles({});
  });
  EXPECT_EQ(Recorded(), "\"File > Save\" a.tin\n\"File > Close\"\n");
}

TEST_F(ScriptRecorderTest, DroppedChangesAreAPlainClose) {
  inner_.saveChoices = {SaveChoice::Discard};
  Run("File > Close", CommandResult::Done, [&] { recorder_.AskSaveChanges("Corvane1"); });
  EXPECT_EQ(Recorded(), "\"File > Close\"\n");
}

TEST_F(ScriptRecorderTest, CancelledClosingIsAComment) {
  inner_.saveChoices = {SaveChoice::Cancel, SaveChoice::Save};
  Run("File > Close", CommandResult::Cancelled, [&] { recorder_.AskSaveChanges("Corvane1"); });
  Run("File > Close", CommandResult::Cancelled, [&] {
    recorder_.AskSaveChanges("Corvane1");
    recorder_.ChooseFiles({});
  });
  Run("File > New", CommandResult::Done, [] {});
  EXPECT_EQ(Recorded(),
            "# \"File > Close\" was cancelled.\n"
            "\"File > Save\" @cancel\n"
            "# \"File > Close\" was cancelled.\n"
            "\"File > New\"\n");
}

TEST_F(ScriptRecorderTest, SavingAWindowThatIsClosedByHandIsASave) {
  inner_.saveChoices = {SaveChoice::Save, SaveChoice::Discard};
  inner_.files = {{"a.tin"}};
  recorder_.AskSaveChanges("Corvane1");
  recorder_.ChooseFiles({});
  recorder_.AskSaveChanges("Corvane2");
  EXPECT_EQ(Recorded(), "\"File > Save\" a.tin\n");
}

TEST_F(ScriptRecorderTest, CommandWhoseAnswerHoldsALineEndIsAComment) {
  inner_.files = {{"a\nb.pts"}, {"c\rd.pts"}, {"e.pts"}};
  for (const std::string name : {"A", "B", "C"}) {
    Run(name, CommandResult::Done, [&] { recorder_.ChooseFiles({}); });
  }
  recorder_.NoteActivation("f\ng.tin", "");
  EXPECT_EQ(Recorded(),
            "# Left out, because an answer holds a line end: A \"a b.pts\"\n"
            "# Left out, because an answer holds a line end: B \"c d.pts\"\n"
            "C e.pts\n"
            "# Left out, because an answer holds a line end: \"File > Open\" \"f g.tin\"\n");
}

TEST_F(ScriptRecorderTest, RecordThatCantBeWrittenAnyMoreIsToldOnceAfterTheCommand) {
  const FileSizeLimit limit(headSize_ + 3);
  Run("A", CommandResult::Done, [] {});
  EXPECT_TRUE(recorder_.IsGood());
  Run("B", CommandResult::Done, [] {});
  Run("C", CommandResult::Done, [] {});
  EXPECT_FALSE(recorder_.IsGood());
  EXPECT_EQ(inner_.events,
            (std::vector<std::string>{"command: A", "end: A done", "command: B", "end: B done",
                                      "message warning: The record day.txt can not be written any more.",
                                      "command: C", "end: C done"}));
}

TEST_F(ScriptRecorderTest, ActivatedWindowIsOpenedAgain) {
  recorder_.NoteActivation("/data/a.tin", "a.tin");
  recorder_.NoteActivation("", "Corvane\n2");
  EXPECT_EQ(Recorded(),
            "\"File > Open\" /data/a.tin\n"
            "# The window on Corvane 2 became the active one.\n");
}

TEST_F(ScriptRecorderTest, WhatIsDoneToAWindowThatAScriptCannotReachIsNoted) {
  recorder_.NoteActivation("", "a.lan");
  inner_.files = {{"b.bmp"}, {"c.bmp"}, {"d.tin"}};
  const auto choose = [&] { recorder_.ChooseFiles({}); };
  Run("File > Save As", CommandResult::Done, choose);
  Run("File > Close", CommandResult::Done, [] {});
  Run("Image > Show Image", CommandResult::Done, [&] {
    choose();
    FakeView view("c");
    recorder_.OpenWindow(view);
  });
  Run("File > Close", CommandResult::Done, [] {});
  recorder_.NoteActivation("", "a.lan");
  recorder_.NoteActivation("/data/a.tin", "a.tin");
  Run("File > Save As", CommandResult::Done, choose);
  EXPECT_EQ(Recorded(),
            "# The window on a.lan became the active one.\n"
            "# \"File > Save As\" b.bmp\n"
            "# \"File > Close\"\n"
            "\"Image > Show Image\" c.bmp\n"
            "\"File > Close\"\n"
            "# The window on a.lan became the active one.\n"
            "\"File > Open\" /data/a.tin\n"
            "\"File > Save As\" d.tin\n");
}

TEST_F(ScriptRecorderTest, PastedPicturesAreNoted) {
  inner_.clipboard = {1, 2, 3};
  EXPECT_EQ(recorder_.GetBitmap(), inner_.clipboard);
  EXPECT_EQ(Recorded(), "# A picture was pasted from the clipboard.\n");
}

TEST(ScriptRecorder, OnlyAnOlderRecordMayBeReplaced) {
  const TempFolder folder;
  EXPECT_TRUE(ScriptRecorder::MayReplace("new.txt"));
  WriteFileBytes("empty.txt", "");
  EXPECT_TRUE(ScriptRecorder::MayReplace("empty.txt"));
  WriteFileBytes("survey.tin", std::string(84, '\0'));
  EXPECT_FALSE(ScriptRecorder::MayReplace("survey.tin"));
  WriteFileBytes("other.txt", "# My own script\n");
  EXPECT_FALSE(ScriptRecorder::MayReplace("other.txt"));
  TestFrontEnd inner;
  {
    ScriptRecorder recorder(inner, "day.txt");
    recorder.CommandStarted("A");
  }
  EXPECT_TRUE(ScriptRecorder::MayReplace("day.txt"));
}

TEST(ScriptRecorder, StartsANewScript) {
  const TempFolder folder;
  WriteFileBytes("day.txt", std::string(10000, 'x'));
  TestFrontEnd inner;
  ScriptRecorder recorder(inner, "day.txt");
  EXPECT_TRUE(recorder.IsGood());
  EXPECT_TRUE(ParseScript(ReadFileBytes("day.txt")).commands.empty());
  EXPECT_FALSE(ScriptRecorder(inner, "no/such/folder/day.txt").IsGood());
}

}  // namespace
}  // namespace corvane
