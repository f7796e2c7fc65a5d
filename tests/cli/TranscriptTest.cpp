#include "cli/Transcript.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "FakeView.h"
#include "support/GraphData.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

class TranscriptTest : public testing::Test {
 protected:
  std::string Text() const { return ReadFileBytes("t.jsonl"); }

  TempFolder folder_;
  TestFrontEnd inner_;
  Transcript transcript_{inner_, "t.jsonl"};
};

TEST_F(TranscriptTest, Commands) {
  transcript_.CommandStarted("TIN > Create TIN");
  transcript_.CommandEnded("TIN > Create TIN", CommandResult::Done);
  transcript_.CommandEnded("X", CommandResult::Failed);
  transcript_.CommandEnded("X", CommandResult::Cancelled);
  EXPECT_EQ(Text(), R"({"event":"command","name":"TIN > Create TIN","phase":"start"})"
                    "\n"
                    R"({"event":"command","name":"TIN > Create TIN","phase":"end","result":"done"})"
                    "\n"
                    R"({"event":"command","name":"X","phase":"end","result":"failed"})"
                    "\n"
                    R"({"event":"command","name":"X","phase":"end","result":"cancelled"})"
                    "\n");
  EXPECT_EQ(inner_.events.front(), "command: TIN > Create TIN");
}

TEST_F(TranscriptTest, ChooserWithItsAnswer) {
  inner_.files = {{"survey.pts"}};
  const FileChooser chooser = {.mode = FileChooser::Mode::Open,
                               .filter = "Points Files (*.pts)|*.pts|All Files (*.*)|*.*|"};
  transcript_.ChooseFiles(chooser);
  transcript_.ChooseFiles({.mode = FileChooser::Mode::Save,
                           .filter = "",
                           .defaultExtension = ".TIN",
                           .defaultName = "a",
                           .title = "Save As",
                           .mustExist = true,
                           .multiple = true});
  EXPECT_EQ(
      Text(),
      R"({"event":"choose-file","mode":"open","title":"","filter":"Points Files (*.pts)|*.pts|All Files (*.*)|*.*|",)"
      R"("defaultExtension":"","defaultName":"","mustExist":false,"multiple":false,"answer":["survey.pts"]})"
      "\n"
      R"({"event":"choose-file","mode":"save","title":"Save As","filter":"","defaultExtension":".TIN",)"
      R"("defaultName":"a","mustExist":true,"multiple":true,"answer":null})"
      "\n");
}

TEST_F(TranscriptTest, FileThatWasGivenIsAChooserWithAnAnswer) {
  transcript_.FileGiven({.mode = FileChooser::Mode::Open, .filter = "F"}, "a.tin");
  EXPECT_EQ(
      Text(),
      R"({"event":"choose-file","mode":"open","title":"","filter":"F","defaultExtension":"","defaultName":"",)"
      R"("mustExist":false,"multiple":false,"answer":["a.tin"]})"
      "\n");
}

TEST_F(TranscriptTest, Values) {
  inner_.values = {2.5, 1e300};
  transcript_.AskValue("Please input a value.", 1.0);
  transcript_.AskValue("T", std::numeric_limits<double>::infinity());
  transcript_.AskValue("T", -std::numeric_limits<double>::infinity());
  transcript_.AskValue("T", std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(Text(), R"({"event":"value-input","title":"Please input a value.","shown":1.0,"answer":2.5})"
                    "\n"
                    R"({"event":"value-input","title":"T","shown":"inf","answer":1e+300})"
                    "\n"
                    R"({"event":"value-input","title":"T","shown":"-inf","answer":null})"
                    "\n"
                    R"({"event":"value-input","title":"T","shown":"nan","answer":null})"
                    "\n");
}

TEST_F(TranscriptTest, FormWithTypedValues) {
  const FormField text = FileField("image", "", "a \"b\"", {});
  const FormField width = IntegerField("width", "", 9);
  const FormField slope = RealField("maxSlope", "", 30.0);
  const FormField models{
      .name = "models", .label = "", .type = FieldType::Selection, .value = std::vector<int>{0, 2}};
  Form form{"ParamInput", "Parameters", {text, width, slope, models}};
  inner_.forms = {[](Form& asked) {
    asked.Find("maxSlope")->value = 45.5;
    return true;
  }};
  transcript_.AskForm(form);
  transcript_.AskForm(form);
  EXPECT_EQ(Text(), R"({"event":"form","form":"ParamInput","title":"Parameters",)"
                    R"("shown":{"image":"a \"b\"","width":9,"maxSlope":30.0,"models":[0,2]},)"
                    R"("answer":{"image":"a \"b\"","width":9,"maxSlope":45.5,"models":[0,2]}})"
                    "\n"
                    R"({"event":"form","form":"ParamInput","title":"Parameters",)"
                    R"("shown":{"image":"a \"b\"","width":9,"maxSlope":45.5,"models":[0,2]},"answer":null})"
                    "\n");
}

TEST_F(TranscriptTest, FloatFieldsHaveTheirShortestText) {
  const double beyond = std::numeric_limits<double>::infinity();
  Form form{"F",
            "",
            {FloatField("a", "", 0.1f),
             FloatField("b", "", 16777216.0f),
             FloatField("c", "", -3e-7f),
             {.name = "d", .label = "", .type = FieldType::Float, .value = beyond},
             RealField("e", "", 0.1f)}};
  transcript_.AskForm(form);
  EXPECT_EQ(Text(), R"({"event":"form","form":"F","title":"",)"
                    R"("shown":{"a":0.1,"b":16777216.0,"c":-3e-07,"d":"inf","e":0.10000000149011612},)"
                    R"("answer":null})"
                    "\n");
}

// A front end that ends the session at each prompt.
class StoppingFrontEnd : public TestFrontEnd {
 public:
  std::optional<std::vector<std::string>> ChooseFiles(const FileChooser&) override { throw 1; }
  std::optional<double> AskValue(const std::string&, double) override { throw 1; }
  bool AskForm(Form&) override { throw 1; }
};

TEST(Transcript, PromptAtWhichTheSessionStopsIsCancelled) {
  const TempFolder folder;
  StoppingFrontEnd inner;
  Transcript transcript(inner, "t.jsonl");
  Form form{"F", "", {}};
  EXPECT_THROW(transcript.ChooseFiles({}), int);
  EXPECT_THROW(transcript.AskValue("T", 2.0), int);
  EXPECT_THROW(transcript.AskForm(form), int);
  EXPECT_EQ(ReadFileBytes("t.jsonl"),
            R"({"event":"choose-file","mode":"open","title":"","filter":"","defaultExtension":"",)"
            R"("defaultName":"","mustExist":false,"multiple":false,"answer":null})"
            "\n"
            R"({"event":"value-input","title":"T","shown":2.0,"answer":null})"
            "\n"
            R"({"event":"form","form":"F","title":"","shown":{},"answer":null})"
            "\n");
}

TEST_F(TranscriptTest, Boxes) {
  transcript_.ShowMessage(MessageKind::Warning, MessageButtons::Ok, "No TIN Read!");
  transcript_.ShowMessage(MessageKind::Message, MessageButtons::OkCancel, "a\nb");
  EXPECT_EQ(Text(), R"({"event":"message","kind":"warning","buttons":"ok","text":"No TIN Read!"})"
                    "\n"
                    R"({"event":"message","kind":"message","buttons":"ok-cancel","text":"a\nb"})"
                    "\n");
}

TEST_F(TranscriptTest, WaitCursorIsWrittenWhereItChanges) {
  transcript_.SetWaitCursor(true);
  transcript_.SetWaitCursor(true);
  transcript_.SetWaitCursor(false);
  transcript_.SetWaitCursor(false);
  EXPECT_EQ(Text(), R"({"event":"wait-cursor","on":true})"
                    "\n"
                    R"({"event":"wait-cursor","on":false})"
                    "\n");
  EXPECT_EQ(inner_.waitDepth, 0);
}

TEST_F(TranscriptTest, StatusPrintAndTrace) {
  transcript_.SetStatusText(0, "Done reading TIN.");
  transcript_.Print("1\n");
  transcript_.Trace("deep");
  EXPECT_EQ(Text(), R"({"event":"status","pane":0,"text":"Done reading TIN."})"
                    "\n"
                    R"({"event":"print","stream":"output","text":"1\n"})"
                    "\n"
                    R"({"event":"print","stream":"trace","text":"deep"})"
                    "\n");
}

TEST_F(TranscriptTest, Windows) {
  FakeView view("a.lan");
  view.size = {512, 256};
  transcript_.OpenWindow(view);
  transcript_.CloseWindow(view);
  EXPECT_EQ(Text(), R"({"event":"window","kind":"bitmap","title":"a.lan","width":512,"height":256})"
                    "\n");
  EXPECT_EQ(inner_.events, (std::vector<std::string>{"open-window: a.lan", "close-window: a.lan"}));
}

TEST_F(TranscriptTest, BytesThatAreNoTextAreReplaced) {
  transcript_.SetStatusText(0, "a\xff");
  EXPECT_EQ(Text(), "{\"event\":\"status\",\"pane\":0,\"text\":\"a\xef\xbf\xbd\"}\n");
}

TEST(Transcript, TellsThatItsFileCantBeWritten) {
  const TempFolder folder;
  TestFrontEnd inner;
  EXPECT_FALSE(Transcript(inner, "no/such/folder/t.jsonl").IsGood());
}

TEST_F(TranscriptTest, GraphWithItsPlots) {
  FakeView view("a.tin");
  GraphData graph({{std::vector<GraphPoint>(256), kRed, 1}, {{{1, 2}}, Colour{0, 10, 171}, 3}});
  transcript_.ShowGraph(view, graph);
  transcript_.PlotGraph(graph, 0);
  transcript_.ShowGraph(view, graph);
  transcript_.PlotGraph(graph, 1);
  transcript_.PlotGraph(graph, -1);
  EXPECT_EQ(Text(), R"({"event":"window","kind":"graph","title":"Data Graph","width":400,"height":300})"
                    "\n"
                    R"({"event":"plot","element":0,"count":256,"colour":"#ff0000","width":1})"
                    "\n"
                    R"({"event":"plot","element":1,"count":1,"colour":"#000aab","width":3})"
                    "\n");
  EXPECT_EQ(inner_.EventsWith("plot").size(), 3u);
}

TEST_F(TranscriptTest, GraphOfAWindowThatCameInAClosedOnesPlaceIsNew) {
  FakeView view("a.tin");
  GraphData graph;
  transcript_.ShowGraph(view, graph);
  transcript_.CloseWindow(view);
  transcript_.ShowGraph(view, graph);
  EXPECT_THAT(Text(), testing::HasSubstr("}\n{"));
  EXPECT_EQ(inner_.EventsWith("close-window").size(), 1u);
}

TEST_F(TranscriptTest, GraphThatCanNotBeMadeIsNotWritten) {
  FakeView view("a.tin");
  inner_.canMakeGraphs = false;
  EXPECT_FALSE(transcript_.ShowGraph(view, GraphData()));
  EXPECT_EQ(Text(), "");
}

struct FakeLog : LogView {
  std::string GetTitle() const override { return "Log Window"; }
  const std::string& GetText() const override { return text; }
  std::string text;
};

TEST_F(TranscriptTest, LogWithItsText) {
  FakeLog log;
  transcript_.OpenLog(log);
  transcript_.AppendToLog(log, "1, 2\n");
  transcript_.CloseLog(log);
  EXPECT_EQ(Text(), R"({"event":"window","kind":"log","title":"Log Window","width":640,"height":420})"
                    "\n"
                    R"({"event":"print","stream":"log","text":"1, 2\n"})"
                    "\n");
  EXPECT_EQ(inner_.EventsWith("log"), std::vector<std::string>{"log: 1, 2\n"});
}

}  // namespace
}  // namespace corvane
