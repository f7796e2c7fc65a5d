#include "qt/LogWindow.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QPlainTextEdit>
#include <QScrollBar>

#include "qt/PaintCounter.h"
#include "qt/Workbench.h"
#include "shell/LogWnd.h"

namespace corvane {

namespace {

class LogWindowTest : public testing::Test {
 protected:
  CLogWindow* Shown() { return bench_.window.findChild<CLogWindow*>(); }

  Workbench bench_;
};

TEST_F(LogWindowTest, ShowsTheTextOfALog) {
  LogWnd log;
  log.Open();
  ASSERT_NE(Shown(), nullptr);
  EXPECT_TRUE(Shown()->isVisible());
  EXPECT_FALSE(Shown()->isModal());
  EXPECT_EQ(Shown()->windowTitle(), "Log Window");
  EXPECT_TRUE(Shown()->findChild<QPlainTextEdit*>()->isReadOnly());
  log.Append("one <b>\n");
  log.Append("H\xc3\xb6he\n");
  EXPECT_EQ(Shown()->GetText().toStdString(), "one <b>\nH\xc3\xb6he\n");
}

TEST_F(LogWindowTest, ScrollsAlongUnlessAPersonHasScrolledBack) {
  LogWnd log;
  log.Open();
  QScrollBar& bar = *Shown()->findChild<QPlainTextEdit*>()->verticalScrollBar();
  for (int i = 0; i < 200; ++i) log.Append(std::to_string(i) + "\n");
  EXPECT_GT(bar.maximum(), 0);
  EXPECT_EQ(bar.value(), bar.maximum());
  bar.setValue(3);
  log.Append("more\n");
  EXPECT_EQ(bar.value(), 3);
}

TEST_F(LogWindowTest, ClosesWithItsLog) {
  {
    LogWnd log;
    log.Open();
  }
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  EXPECT_EQ(Shown(), nullptr);
}

TEST_F(LogWindowTest, APersonMayCloseItFirst) {
  LogWnd log;
  log.Open();
  Shown()->close();
  QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  log.Append("unseen\n");
  log.Close();
  EXPECT_EQ(Shown(), nullptr);
  log.Open();
  log.Append("seen\n");
  EXPECT_EQ(Shown()->GetText(), "seen\n");
}

// No event is processed in between, as in the middle of a command.
TEST_F(LogWindowTest, TextThatCameFastIsPaintedWithTheNextSignOfLife) {
  LogWnd log;
  log.Open();
  QApplication::processEvents();
  PaintCounter painted(*Shown()->findChild<QPlainTextEdit*>()->viewport());
  const auto appendFast = [&] {
    for (const char* text : {"first\n", "second\n", "third\n"}) log.Append(text);
    painted.Clear();
  };
  appendFast();
  bench_.frontEnd.SetStatusText(0, "Row 5 of 10");
  EXPECT_EQ(painted.Count(), 1);
  bench_.frontEnd.SetStatusText(0, "Row 6 of 10");
  EXPECT_EQ(painted.Count(), 1) << "there is nothing new";
  appendFast();
  bench_.frontEnd.SetWaitCursor(true);
  EXPECT_EQ(painted.Count(), 1);
  bench_.frontEnd.SetWaitCursor(false);
}

TEST_F(LogWindowTest, ManyLinesTakeNoTimeForPainting) {
  LogWnd log;
  log.Open();
  QElapsedTimer timer;
  timer.start();
  for (int i = 0; i < 20000; ++i) log.Append("row 17: 0.934211, 120.5, 88.25\n");
  EXPECT_LT(timer.elapsed(), 10000);
}

TEST(LogOfTheApplication, ClosesWithIt) {
  LogWnd log;
  {
    Workbench bench;
    log.Open();
    log.Append("one\n");
    bench.window.close();
  }
  log.Append("two\n");
  log.Close();
}

TEST(LogWithoutAWindow, ShowsNothing) {
  QtFrontEnd frontEnd;
  const InstalledFrontEnd installed(frontEnd);
  LogWnd log;
  log.Open();
  log.Append("one\n");
  log.Close();
}

}  // namespace

}  // namespace corvane
