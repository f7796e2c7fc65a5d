#include "shell/CommandShapes.h"

#include "shell/ShellFixture.h"

namespace corvane {
namespace {

using testing::ElementsAre;

class CommandShapesTest : public ShellTest {};

TEST_F(CommandShapesTest, LoadedTinCommandWarnsWithoutATin) {
  Start();
  ui.events.clear();
  bool ran = false;
  EXPECT_EQ(RunOnLoadedTin(View(), nullptr,
                           [&](TIN&) {
                             ran = true;
                             return 0;
                           }),
            CommandResult::Failed);
  EXPECT_FALSE(ran);
  EXPECT_THAT(ui.events, ElementsAre("message warning: No TIN Read! Please load a TIN first!"));
}

TEST_F(CommandShapesTest, LoadedTinCommandAsksRunsAndRepaints) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  ui.events.clear();
  const auto run = [&](TIN&) {
    EXPECT_EQ(ui.waitDepth, 1);
    return 3;
  };
  EXPECT_EQ(RunOnLoadedTin(
                View(), [] { return true; }, run),
            CommandResult::Done);
  EXPECT_TRUE(Document().IsModified());
  EXPECT_EQ(ui.waitDepth, 0);
  EXPECT_THAT(ui.events,
              ElementsAre("repaint: square.tin", "repaint: square.tin", "activate-window: square.tin"));
}

TEST_F(CommandShapesTest, LoadedTinCommandCancelledChangesNothing) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  bool ran = false;
  EXPECT_EQ(RunOnLoadedTin(
                View(), [] { return false; },
                [&](TIN&) {
                  ran = true;
                  return 0;
                }),
            CommandResult::Cancelled);
  EXPECT_FALSE(ran);
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(CommandShapesTest, LoadedTinCommandThatFailsLeavesTheDocumentUnmarked) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  EXPECT_EQ(RunOnLoadedTin(View(), nullptr, [](TIN&) { return -1; }), CommandResult::Failed);
  EXPECT_FALSE(Document().IsModified());
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(CommandShapesTest, ChoosersComeInOrderAndEndWithTheFirstCancel) {
  ui.files = {{"a.txt"}};
  EXPECT_FALSE(ChooseInOrder({{.filter = "first"}, {.filter = "second"}, {.filter = "third"}}));
  EXPECT_THAT(ui.events, ElementsAre("open: first", "open: second"));
  ui.files = {{"a.txt"}, {"b.txt"}};
  EXPECT_THAT(*ChooseInOrder({{.filter = "first"}, {.filter = "second"}}), ElementsAre("a.txt", "b.txt"));
}

TEST_F(CommandShapesTest, ComposedTexts) {
  EXPECT_EQ(OpenErrorText("a b.tin"), "Open file a b.tin error!");
  EXPECT_EQ(WriteErrorText("x"), "Write file x error!");
}

TEST_F(CommandShapesTest, TinOnDemandLoadsWithPaintingOff) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start();
  ui.files = {{"square.tin"}};
  EXPECT_EQ(LoadTinOnDemand(View()), CommandResult::Done);
  EXPECT_EQ(ui.choosers.at(0).filter, "TIN Files (*.tin)|*.tin|All Files (*.*)|*.*|");
  EXPECT_FALSE(View().paintEnabled);
  EXPECT_EQ(Document().GetPathName(), "square.tin");
  EXPECT_EQ(Document().GetTIN().GetTriangleCount(), 2);
  EXPECT_THAT(app.GetRecentFiles().GetPaths(), testing::SizeIs(1));
  RecordingCanvas canvas({0, 0, 100, 100});
  View().OnDraw(canvas);
  EXPECT_TRUE(canvas.edges.empty());
  Document().AddView().OnDraw(canvas);  // only a new window paints
  EXPECT_EQ(canvas.edges.size(), 6u);
}

TEST_F(CommandShapesTest, TinOnDemandUsesTheLoadedOne) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  ui.events.clear();
  EXPECT_EQ(LoadTinOnDemand(View()), CommandResult::Done);
  EXPECT_TRUE(ui.EventsWith("open").empty());
  EXPECT_TRUE(ui.EventsWith("message").empty());
  EXPECT_FALSE(View().paintEnabled);
}

TEST_F(CommandShapesTest, TinOnDemandEndsWithCancelOrFailure) {
  Start();
  EXPECT_EQ(LoadTinOnDemand(View()), CommandResult::Cancelled);
  EXPECT_TRUE(View().paintEnabled);
  ui.files = {{"missing.tin"}};
  EXPECT_EQ(LoadTinOnDemand(View()), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Open file m error!"));
  EXPECT_EQ(Document().GetPathName(), "");
}

TEST_F(CommandShapesTest, TinOnDemandTellsAFileThatGivesNoTin) {
  const PointRecord corner = {0, 5, 5, 1, 1.0};
  WriteFileBytes("empty.tin", TinBytes({}, {}));
  WriteFileBytes("point.tin", TinBytes({corner}, {{0, 0, 0}}));
  Start();
  for (const char* path : {"empty.tin", "point.tin"}) {
    ui.events.clear();
    ui.files = {{path}};
    EXPECT_EQ(LoadTinOnDemand(View()), CommandResult::Failed);
    EXPECT_EQ(ui.EventsWith("message").back(), "message warning: No TIN Read! Please load a TIN first!");
    EXPECT_EQ(Document().GetPathName(), "");
    EXPECT_TRUE(View().paintEnabled);
  }
}

TEST_F(CommandShapesTest, BatchFileMustExist) {
  ui.files = {{"batch.txt"}};
  EXPECT_EQ(ChooseBatchFile(), "batch.txt");
  EXPECT_EQ(ui.choosers.at(0).filter, "Batch Files (*.txt)|*.txt|All Files (*.*)|*.*|");
  EXPECT_EQ(ui.choosers.at(0).defaultExtension, "TXT");
  EXPECT_TRUE(ui.choosers.at(0).mustExist);
}

TEST_F(CommandShapesTest, BatchGivesTwoWordsALine) {
  WriteFileBytes("batch.txt", "a.tin b.tin\n\n  c.tin\td.tin\r\nlast");
  BatchLines lines;
  ASSERT_TRUE(lines.Open("batch.txt"));
  std::vector<std::string> read;
  for (std::string a, b; lines.Next(a, b);) read.push_back(a + "+" + b);
  EXPECT_THAT(read, ElementsAre("a.tin+b.tin", "c.tin+d.tin"));
  EXPECT_THAT(ui.events, ElementsAre("status 0: The batch ends with one word alone: last"));
  ui.events.clear();
  WriteFileBytes("whole.txt", "a.tin b.tin\n \n");
  BatchLines whole;
  ASSERT_TRUE(whole.Open("whole.txt"));
  std::string a, b;
  EXPECT_TRUE(whole.Next(a, b));
  EXPECT_FALSE(whole.Next(a, b));
  EXPECT_TRUE(ui.events.empty());
  BatchLines none;
  EXPECT_FALSE(none.Open("none.txt"));
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Open file none.txt error!"));
}

}  // namespace
}  // namespace corvane
