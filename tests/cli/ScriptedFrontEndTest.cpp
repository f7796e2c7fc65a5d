#include "cli/ScriptedFrontEnd.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/TempFolder.h"

namespace corvane {
namespace {

struct Stopped {};

class ScriptedFrontEndTest : public testing::Test {
 protected:
  void Answer(std::vector<std::string> answers) { frontEnd_.SetAnswers(std::move(answers)); }

  static FileChooser OpenChooser() {
    return {.mode = FileChooser::Mode::Open,
            .filter = "Points Files (*.pts)|*.pts|All Files (*.*)|*.*|",
            .defaultExtension = "pts"};
  }

  static Form SlopeForm() {
    const FormField slope = RealField("maxSlope", "Maximum Slope:", 30.0, FieldLimits{0.0, 90.0});
    return {"ParamInput", "Input Slope Filter Parameters", {slope}};
  }

  std::ostringstream out_;
  std::ostringstream err_;
  Console console_{out_, err_, false};
  ScriptedFrontEnd frontEnd_{console_, {}, [] { throw Stopped(); }};
};

using Paths = std::vector<std::string>;

TEST_F(ScriptedFrontEndTest, ChooserTakesAPathAndAppendsTheDefaultExtension) {
  Answer({"survey.txt", "survey", "a|b.pts"});
  EXPECT_EQ(frontEnd_.ChooseFiles(OpenChooser()), Paths{"survey.txt"});
  EXPECT_EQ(frontEnd_.ChooseFiles(OpenChooser()), Paths{"survey.pts"});
  EXPECT_EQ(frontEnd_.ChooseFiles(OpenChooser()), Paths{"a|b.pts"});
  EXPECT_TRUE(frontEnd_.FinishAnswers());
  EXPECT_EQ(err_.str(), "");
}

TEST_F(ScriptedFrontEndTest, ChooserWithMultipleSelectionSplitsAtBars) {
  FileChooser chooser = OpenChooser();
  chooser.multiple = true;
  Answer({"a.pts|b|c d.pts"});
  EXPECT_EQ(frontEnd_.ChooseFiles(chooser), (Paths{"a.pts", "b.pts", "c d.pts"}));
}

TEST_F(ScriptedFrontEndTest, ChooserThatRequiresAFileRefusesAMissingOneAndAsksAgain) {
  const TempFolder folder;
  WriteFileBytes("here.pts", "");
  FileChooser chooser = OpenChooser();
  chooser.mustExist = true;
  Answer({"gone.pts", "here.pts"});
  EXPECT_EQ(frontEnd_.ChooseFiles(chooser), Paths{"here.pts"});
  EXPECT_EQ(err_.str(),
            "corvane-cli: refused \"gone.pts\": gone.pts: File not found. "
            "Please verify the correct file name was given.\n");
  EXPECT_TRUE(frontEnd_.FinishAnswers());
}

TEST_F(ScriptedFrontEndTest, ChooserAcceptsItsDefaultNameAndRefusesNone) {
  FileChooser chooser = OpenChooser();
  chooser.mode = FileChooser::Mode::Save;
  chooser.defaultName = "grid";
  Answer({"@ok"});
  EXPECT_EQ(frontEnd_.ChooseFiles(chooser), Paths{"grid.pts"});
  Answer({"@ok", "", "x"});
  EXPECT_EQ(frontEnd_.ChooseFiles(OpenChooser()), Paths{"x.pts"});
  EXPECT_EQ(err_.str(),
            "corvane-cli: refused \"@ok\": Please enter a file name.\n"
            "corvane-cli: refused \"\": Please enter a file name.\n");
}

TEST_F(ScriptedFrontEndTest, ValueTakesANumberAndRefusesAnythingElse) {
  Answer({"-10", "", "ten", "2.5", "@ok"});
  EXPECT_EQ(frontEnd_.AskValue("Spacing", 1.0), -10.0);
  EXPECT_EQ(frontEnd_.AskValue("Spacing", 1.0), 2.5);
  EXPECT_EQ(frontEnd_.AskValue("Spacing", 7.0), 7.0);
  EXPECT_EQ(err_.str(),
            "corvane-cli: refused \"\": Please enter a number.\n"
            "corvane-cli: refused \"ten\": Please enter a number.\n");
}

TEST_F(ScriptedFrontEndTest, FormTakesFieldsAndRefusesInItsOwnWords) {
  Form form = SlopeForm();
  Answer({"maxSlope=91", "maxSlope=40"});
  EXPECT_TRUE(frontEnd_.AskForm(form));
  EXPECT_EQ(form.GetReal("maxSlope"), 40.0);
  EXPECT_EQ(err_.str(),
            "corvane-cli: refused \"maxSlope=91\": maxSlope: Please enter a number between 0 and 90.\n");
  Answer({"", "@ok"});
  EXPECT_TRUE(frontEnd_.AskForm(form));
  EXPECT_TRUE(frontEnd_.AskForm(form));
  EXPECT_EQ(form.GetReal("maxSlope"), 40.0);
}

TEST_F(ScriptedFrontEndTest, CancelAnswerCancelsAnyPrompt) {
  Form form = SlopeForm();
  Answer({"@cancel", "@cancel", "@cancel"});
  EXPECT_EQ(frontEnd_.ChooseFiles(OpenChooser()), std::nullopt);
  EXPECT_EQ(frontEnd_.AskValue("Spacing", 1.0), std::nullopt);
  EXPECT_FALSE(frontEnd_.AskForm(form));
  EXPECT_TRUE(frontEnd_.FinishAnswers());
  EXPECT_EQ(err_.str(), "");
}

TEST_F(ScriptedFrontEndTest, MissingAnswerCancelsOnceAndStopsTheSecondTime) {
  Answer({"gone"});
  EXPECT_EQ(frontEnd_.AskValue("Please input a value.", 1.5), std::nullopt);
  EXPECT_EQ(err_.str(),
            "corvane-cli: refused \"gone\": Please enter a number.\n"
            "corvane-cli: no answer left for the number \"Please input a value.\", shown: 1.5\n");
  EXPECT_FALSE(frontEnd_.FinishAnswers());
  EXPECT_THROW(frontEnd_.ChooseFiles(OpenChooser()), Stopped);
  EXPECT_TRUE(
      err_.str().ends_with("corvane-cli: no answer left for the file to open, Points Files (*.pts)\n"));
}

TEST_F(ScriptedFrontEndTest, MissingAnswersAreCountedForEachCommand) {
  Form form = SlopeForm();
  for (int command = 0; command < 3; ++command) {
    Answer({});
    EXPECT_FALSE(frontEnd_.AskForm(form));
    EXPECT_FALSE(frontEnd_.FinishAnswers());
  }
  EXPECT_TRUE(
      err_.str().starts_with("corvane-cli: no answer left for the form ParamInput \"Input Slope Filter "
                             "Parameters\", shown: maxSlope=30\n"));
}

TEST_F(ScriptedFrontEndTest, LeftOverAnswersAreNamed) {
  Answer({"1", "2", "a \"b\""});
  EXPECT_EQ(frontEnd_.AskValue("Spacing", 1.0), 1.0);
  EXPECT_FALSE(frontEnd_.FinishAnswers());
  EXPECT_EQ(err_.str(),
            "corvane-cli: no prompt asked for the answer \"2\"\n"
            "corvane-cli: no prompt asked for the answer \"a \\\"b\\\"\"\n");
}

TEST_F(ScriptedFrontEndTest, BoxesGoToStandardErrorWithTheirKindAndTakeOk) {
  EXPECT_TRUE(frontEnd_.ShowMessage(MessageKind::Message, MessageButtons::Ok, "Done.\n"));
  EXPECT_TRUE(frontEnd_.ShowMessage(MessageKind::Stop, MessageButtons::OkCancel, "a\nb"));
  frontEnd_.ShowMessage(MessageKind::Warning, MessageButtons::Ok, "w");
  frontEnd_.ShowMessage(MessageKind::Information, MessageButtons::Ok, "i");
  EXPECT_EQ(err_.str(), "message: Done.\nstop: a\nb\nwarning: w\ninformation: i\n");
}

TEST_F(ScriptedFrontEndTest, LineEndsAtTheEndOfABoxAreNotPrinted) {
  frontEnd_.ShowMessage(MessageKind::Warning, MessageButtons::Ok, "a\n\nb\r\n\n");
  frontEnd_.ShowMessage(MessageKind::Warning, MessageButtons::Ok, "\n");
  EXPECT_EQ(err_.str(), "warning: a\n\nb\nwarning: \n");
}

TEST_F(ScriptedFrontEndTest, WhatIsSaidAboutAnswersBeginsWithThePlace) {
  frontEnd_.SetAnswers({"\x1bx", "2", "3\n"}, "s.txt:3: X: ");
  EXPECT_EQ(frontEnd_.AskValue("T", 1.0), 2.0);
  EXPECT_FALSE(frontEnd_.FinishAnswers());
  EXPECT_EQ(frontEnd_.AskValue("T", 1.0), std::nullopt);
  EXPECT_EQ(err_.str(),
            "corvane-cli: s.txt:3: X: refused \"?x\": Please enter a number.\n"
            "corvane-cli: s.txt:3: X: no prompt asked for the answer \"3?\"\n"
            "corvane-cli: s.txt:3: X: no answer left for the number \"T\", shown: 1\n");
}

TEST_F(ScriptedFrontEndTest, ChangesAreDroppedWithAWarning) {
  const InstalledFrontEnd installed(frontEnd_);
  EXPECT_EQ(frontEnd_.AskSaveChanges("a.tin"), SaveChoice::Discard);
  EXPECT_EQ(err_.str(), "warning: a.tin was closed without saving its changes.\n");
}

TEST_F(ScriptedFrontEndTest, StatusTextsOfPaneZeroAreLines) {
  frontEnd_.SetStatusText(0, "one");
  frontEnd_.SetStatusText(1, "pane one");
  frontEnd_.SetStatusText(0, "");
  frontEnd_.SetStatusText(0, "two");
  EXPECT_EQ(err_.str(), "one\ntwo\n");
}

TEST_F(ScriptedFrontEndTest, PrintGoesToStandardOutputAndTraceNowhere) {
  frontEnd_.Print("1, 2\n");
  frontEnd_.Trace("deep\n");
  EXPECT_EQ(out_.str(), "1, 2\n");
  EXPECT_EQ(err_.str(), "");
}

TEST_F(ScriptedFrontEndTest, QuietDropsStatusTextsAndKeepsBoxes) {
  ScriptedFrontEnd quiet(console_, {.quiet = true}, [] {});
  quiet.SetStatusText(0, "one");
  quiet.ShowMessage(MessageKind::Message, MessageButtons::Ok, "box");
  EXPECT_EQ(err_.str(), "message: box\n");
}

TEST_F(ScriptedFrontEndTest, TraceGoesToStandardErrorOnRequest) {
  ScriptedFrontEnd tracing(console_, {.trace = true}, [] {});
  tracing.Trace("deep\n");
  EXPECT_EQ(err_.str(), "deep\n");
}

struct FakeLog : LogView {
  std::string GetTitle() const override { return "Log Window"; }
  const std::string& GetText() const override { return text; }
  std::string text;
};

TEST_F(ScriptedFrontEndTest, LogGoesToStandardErrorUnlessQuiet) {
  const FakeLog log;
  frontEnd_.OpenLog(log);
  frontEnd_.AppendToLog(log, "1, 2\n");
  frontEnd_.CloseLog(log);
  ScriptedFrontEnd quiet(console_, {.quiet = true}, [] {});
  quiet.AppendToLog(log, "3, 4\n");
  EXPECT_EQ(err_.str(), "1, 2\n");
  EXPECT_EQ(out_.str(), "");
}

TEST_F(ScriptedFrontEndTest, LogTextWithoutALineEndKeepsItsLineToItself) {
  const FakeLog log;
  ScriptedFrontEnd frontEnd(console_, {.trace = true}, [] {});
  frontEnd.OpenLog(log);
  frontEnd.AppendToLog(log, "row 1: ");
  frontEnd.AppendToLog(log, "0.5");
  frontEnd.ShowMessage(MessageKind::Warning, MessageButtons::Ok, "box");
  frontEnd.AppendToLog(log, "row 2");
  frontEnd.SetStatusText(0, "status");
  frontEnd.AppendToLog(log, "row 3");
  frontEnd.Trace("trace\n");
  frontEnd.AppendToLog(log, "row 4");
  frontEnd.SetAnswers({"left"});
  EXPECT_FALSE(frontEnd.FinishAnswers());
  frontEnd.AppendToLog(log, "row 5");
  frontEnd.AppendToLog(log, "");
  frontEnd.CloseLog(log);
  frontEnd.ShowMessage(MessageKind::Message, MessageButtons::Ok, "end");
  EXPECT_EQ(err_.str(),
            "row 1: 0.5\nwarning: box\nrow 2\nstatus\nrow 3\ntrace\nrow 4\n"
            "corvane-cli: no prompt asked for the answer \"left\"\nrow 5\nmessage: end\n");
}

TEST(Console, PrintOnATerminalClearsTheStatusTextFirst) {
  std::ostringstream terminal;
  Console console(terminal, terminal, true, true);
  console.Status("one");
  console.Print("1\n");
  console.Print("2\n");
  EXPECT_EQ(terminal.str(), "\r\033[Kone\r\033[K1\n2\n");
}

TEST(Console, PrintIntoAFileLeavesTheStatusText) {
  std::ostringstream out;
  std::ostringstream err;
  Console console(out, err, true);
  console.Status("one");
  console.Print("1\n");
  EXPECT_EQ(out.str(), "1\n");
  EXPECT_EQ(err.str(), "\r\033[Kone");
}

TEST(Console, EndEndsTheLineOfAStatusText) {
  std::ostringstream out;
  std::ostringstream err;
  { Console(out, err, true).Status("one"); }
  { Console(out, err, true).Status(""); }
  { Console(out, err, false).Status("two"); }
  EXPECT_EQ(err.str(), "\r\033[Kone\n\r\033[Ktwo\n");
}

TEST(Console, StatusTextsRewriteOneLineOfATerminal) {
  std::ostringstream out;
  std::ostringstream err;
  Console console(out, err, true);
  console.Status("one");
  console.Status("two");
  console.ErrorLine("box");
  console.ErrorLine("next");
  EXPECT_EQ(err.str(), "\r\033[Kone\r\033[Ktwo\r\033[Kbox\nnext\n");
}

}  // namespace
}  // namespace corvane
