#include "cli/CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/ScriptRecorder.h"
#include "commands/FileMenu.h"
#include "forms/ParamInput.h"
#include "forms/ValueInput.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "shell/CorvaneView.h"
#include "support/TempFolder.h"
#include "support/TinBytes.h"

namespace corvane {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// A command of each kind.

CommandResult OnAskAll(CCorvaneView&) {
  const auto path = ChooseFile({.filter = "Points Files (*.pts)|*.pts|"});
  if (!path) return CommandResult::Cancelled;
  ValueInput value;
  if (!value.Ask()) return CommandResult::Cancelled;
  ParamInput params;
  double slope = 30.0;
  double elevation = 1.0;
  if (params.Ask(&slope, &elevation) < 0) return CommandResult::Cancelled;
  Ui().Print(*path + " " + ShortestText(value.value) + " " + ShortestText(slope) + "\n");
  return CommandResult::Done;
}

CommandResult OnAskForEver(CCorvaneView&) {
  OutputFile file("half.out");
  file.Write("half");
  while (!ValueInput().Ask()) continue;
  return file.Commit() ? CommandResult::Done : CommandResult::Failed;
}

CommandResult OnAskOnce(CCorvaneView&) {
  ValueInput().Ask();  // a cancelled value stays as it was
  return CommandResult::Done;
}

CommandResult OnFail(CCorvaneView&) {
  return CommandResult::Failed;
}

CommandResult OnChange(CCorvaneView& view) {
  view.GetDocument().SetModifiedFlag(true);
  view.Invalidate();
  return CommandResult::Done;
}

CommandResult OnWork(CCorvaneView&) {
  Ui().SetStatusText(0, "working");
  return CommandResult::Done;
}

CommandResult OnTell(CCorvaneView&) {
  Ui().SetStatusText(0, "working");
  Ui().Trace("deep\n");
  ShowWarning("look out");
  return CommandResult::Done;
}

CommandResult OnFrame(CMainFrame&) {
  return CommandResult::Done;
}

const CommandRow kRows[] = {
    {MenuPlace::Standard, "File", "&New", "Create a new document", OnFileNew},
    {MenuPlace::Standard, "File", "&Open", "Open an existing document", OnFileOpen},
    {MenuPlace::Standard, "File", "&Close", "", OnFileClose},
    {MenuPlace::Standard, "File", "&Save", "", OnFileSave},
    {MenuPlace::Standard, "File", "Save &As", "", OnFileSaveAs},
    {MenuPlace::Working, "Test", "Ask &All", "Asks for \"all\".", OnAskAll},
    {MenuPlace::Working, "Test", "Ask For Ever", "", OnAskForEver},
    {MenuPlace::Working, "Test", "Ask Once", "", OnAskOnce},
    {MenuPlace::Working, "Test", " Fail ", "", OnFail},
    {MenuPlace::Working, "Test", "Change", "", OnChange},
    {MenuPlace::Working, "Test", "Tell", "", OnTell},
    {MenuPlace::Working, "Test", "Work", "", OnWork},
    {MenuPlace::Working, "Test", "No Handler", "Stands disabled.", {}},
    {MenuPlace::Working, "Test > A", "Twin", "", OnTell},
    {MenuPlace::Working, "Test > B", "Twin", "", OnTell},
    {MenuPlace::Working, "Test > A", "Clash", "", OnTell},
    {MenuPlace::Working, "Test > B", "Clash", "", OnFail},
    {MenuPlace::Frame, "LiDAR", "Bare Earth", "", OnFrame},
};

class CommandLineTest : public testing::Test {
 protected:
  // The exit status of "corvane-cli ARGUMENTS".
  int Call(const std::vector<std::string>& arguments, const std::string& input = "", bool terminal = false) {
    std::istringstream in(input);
    std::ostringstream out;
    return Call(arguments, in, out, terminal);
  }

  int Call(const std::vector<std::string>& arguments, std::istream& in, std::ostringstream& out,
           bool terminal = false) {
    std::ostringstream err;
    const ExitStatus status = RunCommandLine(arguments, kRows, {in, out, err, terminal});
    out_ = out.str();
    err_ = err.str();
    return static_cast<int>(status);
  }

  int Script(const std::string& text, std::vector<std::string> options = {}) {
    options.insert(options.begin(), "script");
    options.push_back("-");
    return Call(options, text);
  }

  TempFolder folder_;
  std::string out_;
  std::string err_;
};

TEST_F(CommandLineTest, RunAnswersPromptsInOrder) {
  EXPECT_EQ(Call({"run", "Ask All", "a.pts", "2.5", "maxSlope=45"}), 0);
  EXPECT_EQ(out_, "a.pts 2.5 45\n");
  EXPECT_EQ(err_, "");
}

TEST_F(CommandLineTest, NamesIgnoreCaseAccessKeysAndBlanks) {
  for (const std::string name : {"ask all", " ASK &ALL ", "Test > Ask All", "test>ask all"}) {
    EXPECT_EQ(Call({"run", name, "a", "1", ""}), 0) << name;
  }
}

TEST_F(CommandLineTest, EverythingAfterTheCommandIsAnAnswer) {
  EXPECT_EQ(Call({"run", "--quiet", "Ask All", "--quiet", "-10", "@ok"}), 0);
  EXPECT_EQ(out_, "--quiet -10 30\n");
  EXPECT_EQ(Call({"run", "Ask All", "--", "-1e3", "maxSlope=1"}), 0);
  EXPECT_EQ(out_, "-- -1000 1\n");
  EXPECT_EQ(Call({"run", "Ask All", "--help", "1", "", "--json", "list"}), 3);
  EXPECT_EQ(out_, "--help 1 30\n");
  EXPECT_THAT(err_, HasSubstr("\"--json\""));
  EXPECT_THAT(err_, HasSubstr("\"list\""));
}

TEST_F(CommandLineTest, CancelledPromptIsStatus2) {
  EXPECT_EQ(Call({"run", "Ask All", "@cancel"}), 2);
  EXPECT_EQ(Call({"run", "Ask All", "a", "1", "@cancel"}), 2);
  EXPECT_EQ(out_, "");
}

TEST_F(CommandLineTest, CommandThatGoesOnAfterACancelIsDone) {
  EXPECT_EQ(Call({"run", "Ask Once", "@cancel"}), 0);
}

TEST_F(CommandLineTest, FailedCommandIsStatus1) {
  EXPECT_EQ(Call({"run", "Fail"}), 1);
  EXPECT_EQ(err_, "corvane-cli: Test > Fail: failed\n");
}

TEST_F(CommandLineTest, MissingAnswerIsStatus3AndNamesThePrompt) {
  EXPECT_EQ(Call({"run", "Ask All"}), 3);
  EXPECT_THAT(err_, StartsWith("corvane-cli: Test > Ask All: no answer left for the file to open, "
                               "Points Files (*.pts)\n"));
  EXPECT_EQ(Call({"run", "Ask Once"}), 3) << "though the command ended well";
}

TEST_F(CommandLineTest, SecondMissingAnswerEndsTheProcess) {
  EXPECT_EQ(Script("\"Ask For Ever\" x\nTell\n", {"--keep-going", "--transcript", "t.jsonl"}), 3);
  EXPECT_THAT(err_, HasSubstr("corvane-cli: standard input:1: Test > Ask For Ever: stopped: "));
  EXPECT_THAT(err_, Not(HasSubstr("look out")));
  std::filesystem::remove("t.jsonl");
  EXPECT_TRUE(std::filesystem::is_empty(folder_.GetPath())) << "no file stays half written";
}

TEST_F(CommandLineTest, LeftOverAnswerIsStatus3) {
  EXPECT_EQ(Call({"run", "Tell", "more"}), 3);
  EXPECT_THAT(err_, HasSubstr("no prompt asked for the answer \"more\""));
  EXPECT_EQ(Call({"run", "Fail", "more"}), 3) << "before the command's own status";
}

TEST_F(CommandLineTest, RefusedAnswerIsAskedAgain) {
  EXPECT_EQ(Call({"run", "Ask All", "a", "1", "maxSlope=91", "maxSlope=90"}), 0);
  EXPECT_EQ(err_,
            "corvane-cli: Test > Ask All: refused \"maxSlope=91\": maxSlope: Please enter a number between 0 "
            "and 90.\n");
  EXPECT_EQ(Call({"run", "Ask All", "a", "1", "maxSlope=91"}), 3) << "no answer is left then";
}

TEST_F(CommandLineTest, WhatIsSaidAboutAnswersNamesThePlaceInTheScript) {
  WriteFileBytes("s.txt", "Tell\n\n\"Ask Once\" x\nTell more\n\"Ask For Ever\"\n");
  EXPECT_EQ(Call({"script", "--quiet", "--keep-going", "s.txt"}), 3);
  const std::string prompt = "no answer left for the number \"Please input a value.\", shown: 1\n";
  EXPECT_EQ(err_,
            "warning: look out\n"
            "corvane-cli: s.txt:3: Test > Ask Once: refused \"x\": Please enter a number.\n"
            "corvane-cli: s.txt:3: Test > Ask Once: " +
                prompt +
                "warning: look out\n"
                "corvane-cli: s.txt:4: Test > Tell: no prompt asked for the answer \"more\"\n"
                "corvane-cli: s.txt:5: Test > Ask For Ever: " +
                prompt + "corvane-cli: s.txt:5: Test > Ask For Ever: " + prompt +
                "corvane-cli: s.txt:5: Test > Ask For Ever: "
                "stopped: a second prompt of one command found no answer.\n");
}

TEST_F(CommandLineTest, DisabledCommandIsStatus4) {
  EXPECT_EQ(Call({"run", "No Handler"}), 4);
  EXPECT_EQ(err_, "corvane-cli: \"Test > No Handler\" is disabled: nothing serves it.\n");
  EXPECT_EQ(Script("\"File > Close\"\nTell\n"), 4);
  EXPECT_EQ(err_,
            "corvane-cli: standard input:2: \"Test > Tell\" is disabled: it needs an open TIN document.\n");
  EXPECT_EQ(Script("\"File > Close\"\n\"File > Save\"\n"), 4);
  EXPECT_EQ(err_, "corvane-cli: standard input:2: \"File > Save\" is disabled: it needs an open document.\n");
  EXPECT_EQ(Script("\"File > Close\"\n\"Bare Earth\"\n"), 0);
}

TEST_F(CommandLineTest, UnknownCommandIsStatus64WithTheNearestNames) {
  EXPECT_EQ(Call({"run", "Ask Ever"}), 64);
  EXPECT_THAT(err_, StartsWith("corvane-cli: unknown command \"Ask Ever\"; the nearest names:\n"));
  EXPECT_THAT(err_, HasSubstr("\n  Test > Ask For Ever\n"));
}

TEST_F(CommandLineTest, UnknownCommandIsShownWithoutControlCharacters) {
  EXPECT_EQ(Call({"run", "\033[2J\x7f\tX"}), 64);
  EXPECT_THAT(err_, StartsWith("corvane-cli: unknown command \"?[2J??X\"; "));
}

TEST_F(CommandLineTest, AmbiguousNameIsStatus64AndTwoPlacesAreNot) {
  EXPECT_EQ(Call({"run", "Clash"}), 64);
  EXPECT_EQ(err_,
            "corvane-cli: several commands are named \"Clash\":\n"
            "  Test > A > Clash\n  Test > B > Clash\n");
  EXPECT_EQ(Call({"run", "Test > B > Clash"}), 1);
  EXPECT_EQ(Call({"run", "Twin"}), 0);
}

TEST_F(CommandLineTest, WrongUsageIsStatus64) {
  EXPECT_EQ(Call({}), 64);
  EXPECT_EQ(Call({"run"}), 64);
  EXPECT_EQ(Call({"run", "--bogus", "Tell"}), 64);
  EXPECT_EQ(Call({"run", "--open"}), 64);
  EXPECT_EQ(Call({"bogus"}), 64);
  EXPECT_EQ(err_,
            "corvane-cli: run, script or list is wanted, not \"bogus\"; "
            "\"corvane-cli --help\" tells more.\n");
  EXPECT_EQ(Call({"list", "more"}), 64);
  EXPECT_EQ(Call({"script"}), 64);
  EXPECT_EQ(Call({"script", "missing.txt"}), 64);
  EXPECT_EQ(err_, "corvane-cli: the script missing.txt can't be read.\n");
}

TEST_F(CommandLineTest, UnknownOptionPointsAtTheHelp) {
  EXPECT_EQ(Call({"run", "--bogus", "Tell"}), 64);
  EXPECT_EQ(err_, "corvane-cli: run has no option \"--bogus\"; \"corvane-cli run --help\" tells more.\n");
  EXPECT_EQ(Call({"list", "--bogus"}), 64);
  EXPECT_THAT(err_, StartsWith("corvane-cli: "));
  EXPECT_THAT(err_, EndsWith("--bogus; \"corvane-cli list --help\" tells more.\n"));
}

TEST_F(CommandLineTest, EmptyNameOfAFileIsStatus64) {
  for (const std::string option : {"--open", "--transcript", "--pictures"}) {
    EXPECT_EQ(Call({"run", option, "", "Tell"}), 64);
    EXPECT_EQ(err_,
              "corvane-cli: " + option + ": the name is empty; \"corvane-cli run --help\" tells more.\n");
    EXPECT_EQ(Script("Tell\n", {option, ""}), 64);
  }
}

TEST_F(CommandLineTest, OneLeadingDoubleDashOfRunIsSkipped) {
  EXPECT_EQ(Call({"run", "--", "Ask All", "a", "-1", "--", "maxSlope=2"}), 0);
  EXPECT_THAT(err_, StartsWith("corvane-cli: Test > Ask All: refused \"--\""));
  EXPECT_EQ(Call({"run", "--quiet", "--", "Ask All", "--", "-1", "maxSlope=2"}), 0);
  EXPECT_EQ(out_, "-- -1 2\n");
  EXPECT_EQ(Call({"run", "--"}), 64);
  EXPECT_EQ(Call({"run", "--", "--", "Tell"}), 64);
  EXPECT_THAT(err_, StartsWith("corvane-cli: unknown command \"--\""));
}

TEST_F(CommandLineTest, StandardOutputThatCantBeWrittenIsStatus1) {
  std::istringstream in;
  std::ostringstream out;
  out.setstate(std::ios::badbit);
  EXPECT_EQ(Call({"list"}, in, out), 1);
  EXPECT_EQ(err_, "corvane-cli: standard output can't be written.\n");
  EXPECT_EQ(Call({"run", "No Handler"}, in, out), 4) << "the call's own status";
}

// An input that does not fit into memory.
class EndlessInput : public std::streambuf {
 protected:
  int underflow() override { throw std::bad_alloc(); }
};

TEST_F(CommandLineTest, ScriptThatDoesNotFitIntoMemoryIsStatus1) {
  EndlessInput endless;
  std::istream in(&endless);
  std::ostringstream out;
  EXPECT_EQ(Call({"script", "-"}, in, out), 1);
  EXPECT_EQ(err_, "corvane-cli: out of memory\n");
}

TEST_F(CommandLineTest, HelpAndVersion) {
  EXPECT_EQ(Call({"--help"}), 0);
  EXPECT_THAT(out_, HasSubstr("corvane-cli run \"TIN > Create TIN\" survey.pts survey.tin"));
  EXPECT_EQ(err_, "");
  EXPECT_EQ(Call({"run", "--help"}), 0);
  EXPECT_THAT(out_, HasSubstr("@cancel"));
  EXPECT_EQ(Call({"--version"}), 0);
  EXPECT_EQ(out_, "corvane-cli 1.0\n");
}

TEST_F(CommandLineTest, StatusTextsBoxesAndTrace) {
  EXPECT_EQ(Call({"run", "Tell"}), 0);
  EXPECT_EQ(err_, "working\nwarning: look out\n");
  EXPECT_EQ(Call({"run", "--quiet", "Tell"}), 0);
  EXPECT_EQ(err_, "warning: look out\n");
  EXPECT_EQ(Call({"run", "--trace", "Tell"}), 0);
  EXPECT_EQ(err_, "working\ndeep\nwarning: look out\n");
  EXPECT_EQ(Call({"run", "Tell"}, "", true), 0);
  EXPECT_EQ(err_, "\r\033[Kworking\r\033[Kwarning: look out\n");
  EXPECT_EQ(out_, "");
  EXPECT_EQ(Call({"run", "Work"}, "", true), 0);
  EXPECT_EQ(err_, "\r\033[Kworking\n") << "the line ends with the session";
}

TEST_F(CommandLineTest, ScriptStopsAtItsFirstFailure) {
  WriteFileBytes("s.txt", "\"Ask All\" a 1 \"\"\n# pause\nFail\nTell\n");
  EXPECT_EQ(Call({"script", "s.txt"}), 1);
  EXPECT_EQ(out_, "a 1 30\n");
  EXPECT_EQ(err_, "corvane-cli: s.txt:3: Test > Fail: failed\n");
}

TEST_F(CommandLineTest, ScriptKeepsGoingWithTheFirstStatus) {
  EXPECT_EQ(Script("\"Ask All\" @cancel\nFail\nTell\n", {"--keep-going"}), 2);
  EXPECT_THAT(err_, HasSubstr("look out"));
}

TEST_F(CommandLineTest, ScriptIsCheckedBeforeItsFirstCommand) {
  EXPECT_EQ(Script("Tell\nNonsense\n"), 64);
  EXPECT_THAT(err_, StartsWith("corvane-cli: standard input:2: unknown command \"Nonsense\""));
  EXPECT_EQ(Script("Tell\n\"Tell\n"), 64);
  EXPECT_EQ(err_, "corvane-cli: standard input:2: a quote is not closed\n");
  EXPECT_EQ(Script(""), 0);
}

TEST_F(CommandLineTest, ScriptRunsInOneSession) {
  WriteFileBytes("a.tin", SquareTinBytes());
  EXPECT_EQ(
      Script("\"File > Open\" a.tin\nChange\n\"File > Save As\" b.tin\n\"File > Close\"\n", {"--quiet"}), 0);
  EXPECT_EQ(ReadFileBytes("b.tin").size(), SquareTinBytes().size());
}

TEST_F(CommandLineTest, ClosingDropsChangesWithAWarning) {
  EXPECT_EQ(Script("Change\n\"File > Close\"\n"), 0);
  EXPECT_EQ(err_, "warning: Corvane1 was closed without saving its changes.\n");
}

TEST_F(CommandLineTest, EndDropsChangesWithAWarningForEachDocument) {
  EXPECT_EQ(Script("Change\n\"File > New\"\n\"File > New\"\nChange\n"), 0);
  EXPECT_EQ(err_,
            "warning: Corvane1 was closed without saving its changes.\n"
            "warning: Corvane3 was closed without saving its changes.\n");
}

TEST_F(CommandLineTest, TranscriptHasTheDroppedChanges) {
  EXPECT_EQ(Script("Change\n\"File > Close\"\n\"File > New\"\nChange\n", {"--transcript", "t.jsonl"}), 0);
  const auto warning = [](const std::string& title) {
    return R"({"event":"message","kind":"warning","buttons":"ok","text":")" + title +
           " was closed without saving its changes.\"}\n";
  };
  const std::string text = ReadFileBytes("t.jsonl");
  EXPECT_THAT(text, HasSubstr(R"("name":"File > Close","phase":"start"})"
                              "\n" +
                              warning("Corvane1")));
  EXPECT_THAT(text, EndsWith(R"("phase":"end","result":"done"})"
                             "\n" +
                             warning("Corvane2")));
}

TEST_F(CommandLineTest, TranscriptOfAStoppedSessionHasThePromptAndTheEnd) {
  EXPECT_EQ(Call({"run", "--transcript", "t.jsonl", "Ask For Ever"}), 3);
  const std::string prompt =
      R"({"event":"value-input","title":"Please input a value.","shown":1.0,"answer":null})"
      "\n";
  EXPECT_THAT(
      ReadFileBytes("t.jsonl"),
      EndsWith(R"("phase":"start"})"
               "\n" +
               prompt + prompt +
               R"({"event":"command","name":"Test > Ask For Ever","phase":"end","result":"cancelled"})"
               "\n"));
}

TEST_F(CommandLineTest, OpenTakesThePlaceOfTheEmptyDocument) {
  WriteFileBytes("a.tin", SquareTinBytes());
  EXPECT_EQ(Call({"run", "--quiet", "--open", "a.tin", "File > Save As", "b.tin"}), 0);
  EXPECT_NE(ReadFileBytes("b.tin"), "");
  EXPECT_EQ(Script("\"File > Close\"\nTell\n", {"--quiet", "--open", "a.tin"}), 4)
      << "no other document is open";
}

TEST_F(CommandLineTest, OpenOfAFileThatCantBeReadIsStatus1) {
  EXPECT_EQ(Call({"run", "--open", "gone.tin", "Tell"}), 1);
  EXPECT_THAT(err_, HasSubstr("no TIN could be read from gone.tin."));
  EXPECT_THAT(err_, Not(HasSubstr("look out")));
  WriteFileBytes("bad.tin", "xy");
  EXPECT_EQ(Call({"run", "--open", "bad.tin", "Tell"}), 1);
}

TEST_F(CommandLineTest, TranscriptOfAWholeSession) {
  EXPECT_EQ(Call({"run", "--transcript", "t.jsonl", "Ask All", "a", "x", "1", "@cancel"}), 2);
  std::istringstream lines(ReadFileBytes("t.jsonl"));
  std::vector<std::string> events;
  for (std::string line; std::getline(lines, line);) events.push_back(line);
  ASSERT_EQ(events.size(), 6u);
  EXPECT_THAT(events[0], StartsWith(R"({"event":"window","kind":"tin","title":"Corvane1",)"));
  EXPECT_EQ(events[1], R"({"event":"command","name":"Test > Ask All","phase":"start"})");
  EXPECT_THAT(events[2], HasSubstr(R"("answer":["a"])"));
  EXPECT_THAT(events[3], HasSubstr(R"("answer":1.0)"));
  EXPECT_THAT(events[4], HasSubstr(R"("answer":null)"));
  EXPECT_EQ(events[5], R"({"event":"command","name":"Test > Ask All","phase":"end","result":"cancelled"})");
}

TEST_F(CommandLineTest, TranscriptThatCantBeWrittenIsStatus1) {
  EXPECT_EQ(Call({"run", "--transcript", "no/folder/t.jsonl", "Tell"}), 1);
  EXPECT_EQ(err_, "corvane-cli: the transcript no/folder/t.jsonl can't be written.\n");
}

TEST_F(CommandLineTest, PicturesOfOpenWindows) {
  WriteFileBytes("a.tin", SquareTinBytes());
  WriteFileBytes("b.tin", SquareTinBytes());
  EXPECT_EQ(Script("\"File > New\"\n\"File > Open\" a.tin\n\"File > Open\" b.tin\n", {"--pictures", "out/p"}),
            0);
  EXPECT_THAT(err_, HasSubstr("picture: out/p/01-a.tin.png\n"));
  EXPECT_THAT(err_, HasSubstr("picture: out/p/02-b.tin.png\n"));
  EXPECT_EQ(ReadFileBytes("out/p/01-a.tin.png").substr(1, 3), "PNG");
  EXPECT_EQ(ReadFileBytes("out/p/02-b.tin.png").substr(1, 3), "PNG");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator("out/p"), {}), 2);

  EXPECT_EQ(Call({"run", "--quiet", "--pictures", "q", "--open", "a.tin", "Change"}), 0);
  EXPECT_THAT(err_, Not(HasSubstr("picture")));
  EXPECT_TRUE(std::filesystem::exists("q/01-a.tin.png"));
}

TEST_F(CommandLineTest, NumbersStayInTheCLocaleAfterAPicture) {
  WriteFileBytes("a.tin", SquareTinBytes());
  EXPECT_EQ(Call({"run", "--pictures", "p", "--open", "a.tin", "Change"}), 0);
  EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
}

TEST_F(CommandLineTest, PictureThatCantBeWrittenIsStatus1) {
  WriteFileBytes("a.tin", SquareTinBytes());
  std::filesystem::create_directories("p/01-a.tin.png");
  EXPECT_EQ(Call({"run", "--quiet", "--pictures", "p", "--open", "a.tin", "Change"}), 1);
  EXPECT_THAT(err_, HasSubstr("corvane-cli: The picture p/01-a.tin.png could not be written.\n"));
}

TEST_F(CommandLineTest, PicturesFolderThatCantBeWrittenIsReportedBeforeTheWork) {
  WriteFileBytes("p", "a file in the folder's place");
  for (const std::string folder : {"p", "p/q"}) {
    EXPECT_EQ(Call({"run", "--pictures", folder, "Tell"}), 1);
    EXPECT_EQ(err_, "corvane-cli: the folder " + folder + " can't be written.\n");
  }
}

TEST_F(CommandLineTest, PicturesFolderIsMadeAtTheStart) {
  EXPECT_EQ(Call({"run", "--pictures", "p/q", "Fail"}), 1);
  EXPECT_TRUE(std::filesystem::is_empty("p/q"));
}

TEST_F(CommandLineTest, SaveAsGivesThePictureItsNewTitle) {
  WriteFileBytes("a.tin", SquareTinBytes());
  EXPECT_EQ(Script("Change\n\"File > Save As\" b.tin\n", {"--pictures", "p", "--open", "a.tin"}), 0);
  EXPECT_TRUE(std::filesystem::exists("p/01-a.tin.png"));
  EXPECT_EQ(ReadFileBytes("p/01-b.tin.png"), ReadFileBytes("p/01-a.tin.png"));
}

// What a person does by hand, here with given answers, and the same again from its record.
TEST_F(CommandLineTest, RecordReplaysToTheSameResults) {
  WriteFileBytes("a.tin", SquareTinBytes());
  std::ostringstream printed;
  std::ostringstream shown;
  Console console(printed, shown, false);
  ScriptedFrontEnd person(console, {}, [] {});
  {
    ScriptRecorder recorder(person, "day.txt");
    const InstalledFrontEnd installed(recorder);
    CCorvaneApp app(kRows, "");
    ASSERT_TRUE(app.InitInstance("a.tin"));
    printed.str("");
    const auto run = [&](const std::string& name, const std::vector<std::string>& answers) {
      person.SetAnswers(answers);
      app.RunCommand(*FindCommand(kRows, name).row);
    };
    run("Ask All", {"one \"1\".pts", "0.1", "maxSlope=91", "maxSlope=33.3"});
    run("Ask All", {"two.pts", "@cancel"});
    run("Change", {});
    run("File > Save As", {"b"});
  }
  EXPECT_THAT(printed.str(), StartsWith("one \"1\".pts 0.1 33.3\n"));
  const std::string saved = ReadFileBytes("b.TIN");
  ASSERT_NE(saved, "");
  std::filesystem::remove("b.TIN");

  EXPECT_EQ(Call({"script", "--keep-going", "day.txt"}), 2) << "the cancelled command's status";
  EXPECT_THAT(out_, EndsWith(printed.str()));
  EXPECT_EQ(ReadFileBytes("b.TIN"), saved);
}

TEST_F(CommandLineTest, ListShowsEveryRowInOrder) {
  EXPECT_EQ(Call({"list"}), 0);
  EXPECT_EQ(std::count(out_.begin(), out_.end(), '\n'), std::ssize(kRows));
  EXPECT_THAT(out_, StartsWith("File > New                    Create a new document\n"));
  EXPECT_THAT(out_, HasSubstr("\nTest > Ask For Ever\n"));
  EXPECT_THAT(out_, HasSubstr("\nTest > No Handler (disabled)  Stands disabled.\n"));
}

TEST_F(CommandLineTest, ListAsJson) {
  EXPECT_EQ(Call({"list", "--json"}), 0);
  EXPECT_THAT(out_, StartsWith("[\n{\"path\":\"File\",\"item\":\"&New\",\"prompt\":\"Create a new document\","
                               "\"enabled\":true},\n"));
  EXPECT_THAT(out_, HasSubstr(R"({"path":"Test","item":" Fail ","prompt":"","enabled":true})"));
  EXPECT_THAT(out_,
              HasSubstr(R"({"path":"Test","item":"Ask &All","prompt":"Asks for \"all\".","enabled":true})"));
  EXPECT_THAT(out_, HasSubstr(R"("item":"No Handler","prompt":"Stands disabled.","enabled":false})"));
  EXPECT_EQ(nlohmann::json::parse(out_).size(), std::size(kRows));
}

}  // namespace
}  // namespace corvane
