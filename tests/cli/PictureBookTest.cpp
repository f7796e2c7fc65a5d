#include "cli/PictureBook.h"

#include <gtest/gtest.h>

#include <QImage>
#include <filesystem>

#include "FakeView.h"
#include "shell/CorvaneApp.h"
#include "shell/DibView.h"
#include "support/GraphData.h"
#include "support/Pixels.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

class PictureBookTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(book_.MakeFolder()); }

  TempFolder folder_;
  TestFrontEnd inner_;
  PictureBook book_{inner_, "out"};
  FakeView a_{"a.lan"};
  FakeView b_{"b.lan"};
};

using Paths = std::vector<std::string>;

TEST_F(PictureBookTest, SavesThePictureOfAView) {
  a_.segments = {{{5, 7}, {8, 7}}};
  book_.OpenWindow(a_);
  EXPECT_EQ(book_.Save().paths, Paths{"out/01-a.lan.png"});
  const QImage image("out/01-a.lan.png");
  EXPECT_EQ(image.size(), QSize(40, 30));
  EXPECT_EQ(DrawnPixels(image), (std::vector<PixelPoint>{{5, 7}, {6, 7}, {7, 7}, {8, 7}}));
}

TEST_F(PictureBookTest, NumbersGoByTheFirstPicture) {
  a_.hasPicture = false;
  book_.OpenWindow(a_);
  book_.OpenWindow(b_);
  EXPECT_EQ(book_.Save().paths, Paths{"out/01-b.lan.png"});
  a_.hasPicture = true;
  EXPECT_EQ(book_.Save().paths, Paths{"out/02-a.lan.png"});
}

TEST_F(PictureBookTest, OnlyNewAndRepaintedWindowsAreSaved) {
  book_.OpenWindow(a_);
  book_.OpenWindow(b_);
  EXPECT_EQ(book_.Save().paths.size(), 2u);
  EXPECT_TRUE(book_.Save().paths.empty());
  b_.title = "c/d:e.lan";
  book_.RepaintWindow(b_, true);
  EXPECT_EQ(book_.Save().paths, Paths{"out/02-c_d_e.lan.png"}) << "a window keeps its number";
}

TEST_F(PictureBookTest, ClosedWindowsAreForgotten) {
  book_.OpenWindow(a_);
  book_.Save();
  book_.CloseWindow(a_);
  book_.OpenWindow(b_);
  EXPECT_EQ(book_.Save().paths, Paths{"out/02-b.lan.png"});
  EXPECT_EQ(inner_.EventsWith("close-window"), std::vector<std::string>{"close-window: a.lan"});
}

TEST_F(PictureBookTest, RenamedWindowIsSavedAgainBesideItsOldPicture) {
  book_.OpenWindow(a_);
  book_.Save();
  a_.title = "b.lan";
  EXPECT_EQ(book_.Save().paths, Paths{"out/01-b.lan.png"});
  EXPECT_TRUE(book_.Save().paths.empty());
  EXPECT_TRUE(std::filesystem::exists("out/01-a.lan.png"));
}

TEST_F(PictureBookTest, FolderThatCantBeWrittenIsTold) {
  WriteFileBytes("file", "");
  EXPECT_FALSE(PictureBook(inner_, "file").MakeFolder());
  EXPECT_FALSE(PictureBook(inner_, "file/folder").MakeFolder());
  EXPECT_TRUE(PictureBook(inner_, "new/folder/").MakeFolder());
  EXPECT_TRUE(std::filesystem::is_empty("new/folder")) << "the trial leaves nothing behind";
}

TEST_F(PictureBookTest, FailureIsReported) {
  std::filesystem::remove("out");
  WriteFileBytes("out", "");
  book_.OpenWindow(a_);
  EXPECT_EQ(book_.Save().failures, Paths{"The picture out/01-a.lan.png could not be written."});
}

TEST_F(PictureBookTest, GraphIsAPictureOfItsOwn) {
  GraphData graph({{{{0, 0}, {10, 10}}, kRed}});
  book_.OpenWindow(a_);
  EXPECT_TRUE(book_.ShowGraph(a_, graph));
  EXPECT_EQ(book_.Save().paths, (Paths{"out/01-a.lan.png", "out/02-Data Graph.png"}));
  EXPECT_EQ(QImage("out/02-Data Graph.png").size(), QSize(400, 300));
  EXPECT_EQ(inner_.EventsWith("show-graph"), Paths{"show-graph: Data Graph"});
}

TEST_F(PictureBookTest, GraphIsSavedAgainWhenItIsPlottedAgain) {
  GraphData graph({{{{0, 0}, {10, 10}}, kRed}});
  book_.OpenWindow(a_);
  book_.ShowGraph(a_, graph);
  book_.PlotGraph(graph, 0);
  book_.Save();
  book_.ShowGraph(a_, graph);
  EXPECT_TRUE(book_.Save().paths.empty()) << "shown, but nothing new in it";
  book_.RepaintWindow(a_, false);
  EXPECT_EQ(book_.Save().paths, Paths{"out/01-a.lan.png"});
  book_.PlotGraph(graph, 0);
  EXPECT_EQ(book_.Save().paths, Paths{"out/02-Data Graph.png"});
}

TEST_F(PictureBookTest, GraphClosesWithItsWindow) {
  GraphData graph;
  book_.OpenWindow(a_);
  book_.OpenWindow(b_);
  book_.ShowGraph(a_, graph);
  book_.CloseWindow(a_);
  book_.PlotGraph(graph, -1);
  EXPECT_EQ(book_.Save().paths, Paths{"out/01-b.lan.png"});
}

TEST_F(PictureBookTest, GraphThatCanNotBeMadeHasNoPicture) {
  inner_.canMakeGraphs = false;
  GraphData graph;
  EXPECT_FALSE(book_.ShowGraph(a_, graph));
  EXPECT_TRUE(book_.Save().paths.empty());
}

// Bitmap windows, with what lies over them.
class BitmapPictureTest : public testing::Test {
 protected:
  BitmapPictureTest() {
    EXPECT_TRUE(book_.MakeFolder());
    app_.InitInstance("");
    view_ = &OpenBitmapWindow(app_.GetMainFrame(), MakeBlackDib(500, 400, 8), "a.lan");
  }
  ~BitmapPictureTest() override { app_.ExitInstance(); }

  TempFolder folder_;
  TestFrontEnd inner_;
  PictureBook book_{inner_, "out"};
  InstalledFrontEnd installed_{book_};
  CCorvaneApp app_{{}, ""};
  CDibView* view_ = nullptr;
};

TEST_F(BitmapPictureTest, HoldsTheBitmapAndItsOverlays) {
  view_->m_points = {50, 60};
  view_->m_polylines = {{0, 200, 499, 200}};
  view_->m_labels = {{100, 120, "17"}};
  ASSERT_EQ(book_.Save().paths, Paths{"out/01-a.lan.png"});
  const QImage image("out/01-a.lan.png");
  ASSERT_EQ(image.size(), QSize(500, 400));
  EXPECT_EQ(image.pixel(0, 0), qRgb(0, 0, 0));
  EXPECT_EQ(image.pixel(50, 60), qRgb(255, 0, 0)) << "a point";
  EXPECT_EQ(image.pixel(53, 60), qRgb(255, 0, 0));
  EXPECT_EQ(image.pixel(54, 60), qRgb(0, 0, 0));
  EXPECT_GT(qGreen(image.pixel(250, 200)), 100) << "a polyline";
  EXPECT_GT(qRed(image.pixel(105, 115)), 150) << "the ground of a label";
  EXPECT_EQ(image.pixel(98, 115), qRgb(0, 0, 0));
}

TEST_F(BitmapPictureTest, ChangedOverlaysAreSavedAgain) {
  book_.Save();
  EXPECT_TRUE(book_.Save().paths.empty());
  view_->m_points = {50, 60};
  view_->Redraw();
  EXPECT_EQ(book_.Save().paths, Paths{"out/01-a.lan.png"});
  EXPECT_EQ(QImage("out/01-a.lan.png").pixel(50, 60), qRgb(255, 0, 0));
}

TEST_F(BitmapPictureTest, IsThatOfTheWholeBitmapAtAnyZoom) {
  book_.Save();
  const QImage before("out/01-a.lan.png");
  view_->SetZoom(0, 8.0);
  view_->SetScrollPosition({1000, 1000});
  EXPECT_EQ(book_.Save().paths, Paths{"out/01-a.lan.png"});
  EXPECT_EQ(QImage("out/01-a.lan.png"), before);
}

TEST_F(BitmapPictureTest, WindowWithoutABitmapHasNone) {
  OpenBitmapWindow(app_.GetMainFrame(), {}, "empty");
  EXPECT_EQ(book_.Save().paths, Paths{"out/01-a.lan.png"});
}

TEST(PictureFileName, HoldsWhatAFileNameCan) {
  EXPECT_EQ(PictureFileName(1, "survey.tin"), "01-survey.tin.png");
  EXPECT_EQ(PictureFileName(100, "a:2"), "100-a_2.png");
  EXPECT_EQ(PictureFileName(12, "a/b\\c\nd"), "12-a_b_c_d.png");
  EXPECT_EQ(PictureFileName(2, "H\xc3\xb6he"), "02-H\xc3\xb6he.png");
  // 150 characters of two bytes are cut at 100 of them.
  std::string title;
  for (int i = 0; i < 150; ++i) title += "\xc3\xb6";
  EXPECT_EQ(PictureFileName(1, title), "01-" + title.substr(0, 200) + ".png");
  EXPECT_EQ(PictureFileName(1, "x" + title), "01-x" + title.substr(0, 198) + ".png");
}

}  // namespace
}  // namespace corvane
