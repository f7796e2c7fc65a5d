#include <cmath>
#include <filesystem>
#include <new>

#include "shell/ChildFrm.h"
#include "shell/ShellFixture.h"
#include "ui/RunTimer.h"

namespace corvane {
namespace {

using testing::Contains;
using testing::ElementsAre;

class AppTest : public ShellTest {};

TEST_F(AppTest, StartsWithOneEmptyTinDocument) {
  Start();
  ASSERT_EQ(app.GetDocuments().size(), 1u);
  EXPECT_EQ(Document().GetTitle(), "Corvane1");
  EXPECT_EQ(Document().GetPathName(), "");
  EXPECT_EQ(Document().GetTIN().GetTriangleCount(), 0);
  EXPECT_THAT(ui.events, ElementsAre("open-window: Corvane1"));
  EXPECT_EQ(app.GetTinTemplate().GetResourceId(), 129);
  EXPECT_EQ(app.GetImageTemplate().GetResourceId(), 130);
  EXPECT_EQ(app.GetImageTemplate().GetFilterName(), "Bitmap Files (*.bmp)");
}

TEST_F(AppTest, StartsWithTheFileOfTheCommandLine) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  ASSERT_EQ(app.GetDocuments().size(), 1u);
  EXPECT_EQ(Document().GetTitle(), "square.tin");
  EXPECT_EQ(Document().GetTIN().GetTriangleCount(), 2);
  EXPECT_THAT(ui.EventsWith("given"), ElementsAre("given: square.tin"));
}

TEST_F(AppTest, FileOpenOffersOnlyTin) {
  Start();
  const FileChooser chooser = app.GetTinTemplate().MakeChooser(FileChooser::Mode::Open, "");
  EXPECT_EQ(chooser.filter, "Files(*.tin)|*.TIN|");
  EXPECT_EQ(chooser.defaultExtension, ".TIN");
  EXPECT_FALSE(chooser.mustExist);
}

TEST_F(AppTest, OpeningReportsItsStepsInOrder) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  EXPECT_THAT(
      ui.events,
      ElementsAre("command: File > Open", "given: square.tin", "status 0: Reading TIN from square.tin",
                  "print: Number of triangles = 2\n", "status 0: Done reading TIN.",
                  "message information: triangles: 2\nmin: 100.000000 200.000000 1.000000\n"
                  "max: 110.000000 210.000000 4.000000",
                  "open-window: square.tin", "end: File > Open done"));
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(AppTest, AMissingFileOpensAnEmptyWindowAfterItsOneLetterMessage) {
  Start();
  EXPECT_EQ(app.OpenDocumentFile("missing.tin"), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Open file m error!"));
  EXPECT_EQ(Document().GetTitle(), "missing.tin");
  EXPECT_EQ(Document().GetTIN().GetTriangleCount(), 0);
}

TEST_F(AppTest, AFolderInPlaceOfAFileIsAMissingFile) {
  std::filesystem::create_directory("f.tin");
  Start("f.tin");
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Open file f error!"));
}

TEST_F(AppTest, ADamagedFileOpensEmpty) {
  WriteFileBytes("damaged.tin", SquareTinBytes().substr(0, 100));
  Start("damaged.tin");
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message message: ReadTIN: Read TIN error!"));
  EXPECT_EQ(Document().GetTIN().GetTriangleCount(), 0);
}

TEST_F(AppTest, AllVerticesAtOnePlaceOpensAndIsSavedAsItIs) {
  const std::string bytes = TinBytes({{0, 5, 5, 1, 1}, {1, 5, 5, 2, 1}, {2, 5, 5, 3, 1}}, {{0, 1, 2}});
  WriteFileBytes("point.tin", bytes);
  Start("point.tin");
  EXPECT_FALSE(Document().GetTIN().IsStored());
  EXPECT_EQ(app.SaveDocument(Document(), false), CommandResult::Failed);  // no points to write beside it
  EXPECT_EQ(ReadFileBytes("point.tin"), bytes);
}

TEST_F(AppTest, AFileThatDidNotReadIsNotOverwritten) {
  WriteFileBytes("damaged.tin", SquareTinBytes().substr(0, 100));
  Start();
  EXPECT_EQ(app.OpenDocumentFile("damaged.tin"), CommandResult::Failed);
  EXPECT_EQ(app.SaveDocument(Document(), false), CommandResult::Failed);
  EXPECT_THAT(ui.events, Contains("message warning: Write file damaged.tin error!\n"
                                  "It did not read when it was opened, and is left as it is."));
  ui.files = {{"./damaged.tin"}};
  EXPECT_EQ(app.SaveDocument(Document(), true), CommandResult::Failed);
  EXPECT_EQ(ReadFileBytes("damaged.tin"), SquareTinBytes().substr(0, 100));
  EXPECT_TRUE(app.GetRecentFiles().GetPaths().empty());
}

TEST_F(AppTest, AFileWithACornerThatIsNoNumberIsNotOverwritten) {
  const std::string bytes = TinBytes({{0, NAN, 5, 1, 1}, {1, 5, 5, 2, 1}, {2, 5, 9, 3, 1}, {3, 0, 0, 0, 0}},
                                     {{3, 1, 2}, {0, 1, 2}});
  WriteFileBytes("nan.tin", bytes);
  Start("nan.tin");
  EXPECT_THAT(ui.events, Contains("message message: StoreTriangle: Read TIN error!"));
  EXPECT_EQ(app.SaveDocument(Document(), false), CommandResult::Failed);
  EXPECT_EQ(ReadFileBytes("nan.tin"), bytes);
}

TEST_F(AppTest, SaveReportsAFullDisk) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  std::filesystem::create_symlink("/dev/full", "full.tin");
  ui.files = {{"full.tin"}};
  EXPECT_EQ(app.SaveDocument(Document(), true), CommandResult::Failed);
  std::filesystem::create_symlink("/dev/full", "square_filted.pts");
  EXPECT_EQ(app.SaveDocument(Document(), false), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message warning"),
              ElementsAre("message warning: Write file full.tin error!",
                          "message warning: Write file square_filted.pts error!"));
}

TEST_F(AppTest, AFileThatDidNotReadIsOpenedAnewWhenChosenAgain) {
  Start();
  EXPECT_EQ(app.OpenDocumentFile("later.tin"), CommandResult::Failed);
  WriteFileBytes("later.tin", SquareTinBytes());
  EXPECT_EQ(app.OpenDocumentFile("later.tin"), CommandResult::Done);
  EXPECT_EQ(Document().GetTIN().GetTriangleCount(), 2);
  EXPECT_EQ(app.GetDocuments().size(), 2u);
}

TEST_F(AppTest, OpeningAnOpenFileActivatesIt) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  CDocument* first = &Document();
  app.NewDocument();
  EXPECT_NE(&Document(), first);
  EXPECT_EQ(app.OpenDocumentFile("./square.tin"), CommandResult::Done);
  EXPECT_EQ(&Document(), first);
  EXPECT_EQ(app.GetDocuments().size(), 2u);
}

TEST_F(AppTest, SaveWritesTheTinAndItsPointsBeside) {
  WriteFileBytes("x.y.tin", SquareTinBytes());
  Start("x.y.tin");
  std::filesystem::remove("x.y.tin");
  Document().SetModifiedFlag(true);
  ui.events.clear();
  EXPECT_EQ(app.SaveDocument(Document(), false), CommandResult::Done);
  EXPECT_THAT(ui.events,
              ElementsAre("status 0: Writing TIN to x.y.tin", "status 0: Done writing TIN.",
                          "status 0: Writing Pts to x.y_filted.pts", "status 0: Done writing PTS."));
  EXPECT_EQ(ReadFileBytes("x.y.tin"), SquareTinBytes());
  EXPECT_EQ(ReadFileBytes("x.y_filted.pts").size(), 52u + 4u * 32u);
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(AppTest, SaveAsAsksForAPathAndTakesIt) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  ui.files = {{"other.tin"}};
  EXPECT_EQ(app.SaveDocument(Document(), true), CommandResult::Done);
  EXPECT_EQ(ui.choosers.at(0).mode, FileChooser::Mode::Save);
  EXPECT_EQ(ui.choosers.at(0).title, "Save As");
  EXPECT_EQ(Document().GetPathName(), "other.tin");
  EXPECT_EQ(ReadFileBytes("other.tin"), SquareTinBytes());
  EXPECT_EQ(app.SaveDocument(Document(), true), CommandResult::Cancelled);
}

TEST_F(AppTest, SaveReportsWhatCannotBeWritten) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  Document().SetModifiedFlag(true);
  ui.files = {{"missing/other.tin"}};
  ui.events.clear();
  EXPECT_EQ(app.SaveDocument(Document(), true), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Write file m error!"));
  EXPECT_EQ(Document().GetPathName(), "square.tin");
  EXPECT_TRUE(Document().IsModified());

  std::filesystem::create_directory("square_filted.pts");
  EXPECT_EQ(app.SaveDocument(Document(), false), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message"), Contains("message warning: Write file square_filted.pts error!"));
}

TEST_F(AppTest, ClosingAChangedDocumentAsks) {
  Start();
  Document().SetModifiedFlag(true);
  EXPECT_FALSE(app.CloseDocument(Document()));
  EXPECT_EQ(app.GetDocuments().size(), 1u);
  ui.saveChoices = {SaveChoice::Discard};
  EXPECT_TRUE(app.CloseDocument(Document()));
  EXPECT_TRUE(app.GetDocuments().empty());
  EXPECT_EQ(app.GetMainFrame().GetActiveView(), nullptr);
  EXPECT_THAT(ui.EventsWith("save-changes"), testing::SizeIs(2));
}

TEST_F(AppTest, ClosingSavesWhereAsked) {
  WriteFileBytes("square.tin", SquareTinBytes());
  Start("square.tin");
  Document().SetModifiedFlag(true);
  ui.saveChoices = {SaveChoice::Save};
  EXPECT_TRUE(app.CloseDocument(Document()));
  EXPECT_TRUE(std::filesystem::exists("square_filted.pts"));
}

TEST_F(AppTest, ADocumentGoesWithItsLastWindow) {
  Start();
  Document().AddView();
  ASSERT_EQ(Document().GetFrames().size(), 2u);
  EXPECT_EQ(View().GetTitle(), "Corvane1:2");
  CView& first = Document().GetFrames().front()->GetView();
  EXPECT_EQ(first.GetTitle(), "Corvane1:1");
  EXPECT_TRUE(app.CloseView(View()));
  EXPECT_EQ(app.GetMainFrame().GetActiveView(), &first);
  EXPECT_EQ(first.GetTitle(), "Corvane1");
  EXPECT_TRUE(app.CloseView(first));
  EXPECT_TRUE(app.GetDocuments().empty());
}

TEST_F(AppTest, TheDocumentBelowBecomesActive) {
  Start();
  app.NewDocument();
  EXPECT_EQ(Document().GetTitle(), "Corvane2");
  EXPECT_TRUE(app.CloseDocument(Document()));
  EXPECT_EQ(Document().GetTitle(), "Corvane1");
}

CommandResult RunsOutOfMemory(CMainFrame&) {
  throw std::bad_alloc();
}
CommandResult OnFrame(CMainFrame&) {
  return CommandResult::Done;
}
CommandResult OnView(CCorvaneView&) {
  return CommandResult::Cancelled;
}
CommandResult OnDocument(CDocument&) {
  return CommandResult::Done;
}

TEST_F(AppTest, RunsCommandsBetweenTheirEvents) {
  Start();
  ui.events.clear();
  EXPECT_EQ(app.RunCommand({MenuPlace::Working, "TIN", "&View Item", "", OnView}), CommandResult::Cancelled);
  EXPECT_THAT(ui.events, ElementsAre("command: TIN > View Item", "end: TIN > View Item cancelled"));
}

TEST_F(AppTest, AHandlerOutOfMemoryFails) {
  Start();
  EXPECT_EQ(app.RunCommand({MenuPlace::Frame, "View", "Big", "", RunsOutOfMemory}), CommandResult::Failed);
  EXPECT_THAT(ui.events, Contains("message message: Out of memory."));
}

TEST_F(AppTest, EnablesWhatCanRun) {
  Start();
  const CommandRow view{MenuPlace::Working, "TIN", "A", "", OnView};
  const CommandRow document{MenuPlace::Standard, "File", "B", "", OnDocument};
  const CommandRow frame{MenuPlace::Frame, "View", "C", "", OnFrame};
  const CommandRow none{MenuPlace::Working, "Features", "Canny Edge", "", {}};
  EXPECT_TRUE(app.IsEnabled(view));
  EXPECT_TRUE(app.IsEnabled(document));
  EXPECT_TRUE(app.IsEnabled(frame));
  EXPECT_FALSE(app.IsEnabled(none));
  app.CloseDocument(Document());
  EXPECT_FALSE(app.IsEnabled(view));
  EXPECT_FALSE(app.IsEnabled(document));
  EXPECT_TRUE(app.IsEnabled(frame));
}

TEST_F(AppTest, StatusSlotsJoinInOrder) {
  Start();
  CMainFrame& frame = app.GetMainFrame();
  std::snprintf(frame.GetStatusSlot(2), CMainFrame::kStatusSlotSize, "three");
  std::snprintf(frame.GetStatusSlot(0), CMainFrame::kStatusSlotSize, "one ");
  EXPECT_EQ(frame.GetStatusSlot(3), nullptr);
  EXPECT_EQ(frame.GetStatusSlot(-1), nullptr);
  frame.ShowStatusSlots(0);
  EXPECT_EQ(frame.GetStatusBar().GetPaneText(0), "one three");
  EXPECT_THAT(ui.events, Contains("status 0: one three"));
}

TEST(RecentFileList, KeepsTheLastSixAcrossRuns) {
  const TempFolder folder;
  RecentFileList list("config/deep/recent.txt");
  for (const char* name : {"/a", "/b", "/c", "/d", "/e", "/f", "/g", "/c"}) list.Add(name);
  EXPECT_THAT(list.GetPaths(), ElementsAre("/c", "/g", "/f", "/e", "/d", "/b"));
  EXPECT_EQ(RecentFileList("config/deep/recent.txt").GetPaths(), list.GetPaths());
  RecentFileList("config/deep/recent.txt").Add("/h");  // another window
  list.Add("/i");
  EXPECT_THAT(list.GetPaths(), ElementsAre("/i", "/h", "/c", "/g", "/f", "/e"));
}

TEST(RecentFileList, ReadsAnyBytes) {
  const TempFolder folder;
  WriteFileBytes("recent.txt", std::string("\n\n/x\n\0\xFF", 7) + std::string(100, '\n'));
  EXPECT_EQ(RecentFileList("recent.txt").GetPaths().size(), 2u);
}

TEST(RunTimer, ShowsHoursMinutesSeconds) {
  EXPECT_EQ(TimeSpanText(std::chrono::seconds(0)), "Total hrs: 00 mins: 00, secs: 00");
  EXPECT_EQ(TimeSpanText(std::chrono::seconds(3723)), "Total hrs: 01 mins: 02, secs: 03");
  EXPECT_EQ(TimeSpanText(std::chrono::seconds(25 * 3600 + 59)), "Total hrs: 01 mins: 00, secs: 59");
  EXPECT_EQ(TimeSpanText(std::chrono::seconds(-5)), "Total hrs: 00 mins: 00, secs: 00");
}

TEST(RunTimer, ShowsItsBox) {
  TestFrontEnd ui;
  RunTimer timer;
  timer.Stop();
  timer.ShowTotal();
  EXPECT_THAT(ui.events,
              ElementsAre(testing::StartsWith("message message: Total hrs: 00 mins: 00, secs: 0")));
}

}  // namespace
}  // namespace corvane
