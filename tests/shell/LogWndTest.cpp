#include "shell/LogWnd.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;

TEST(LogWnd, OpensFillsAndCloses) {
  TestFrontEnd ui;
  LogWnd log;
  log.Open();
  EXPECT_TRUE(log.IsOpen());
  log.Append("one\n");
  log.Append("two\n");
  EXPECT_EQ(log.GetText(), "one\ntwo\n");
  log.Close();
  log.Close();
  EXPECT_FALSE(log.IsOpen());
  EXPECT_THAT(ui.events,
              ElementsAre("open-log: Log Window", "log: one\n", "log: two\n", "close-log: Log Window"));
}

TEST(LogWnd, ClosesWithTheCommandThatOpenedIt) {
  TestFrontEnd ui;
  {
    LogWnd log;
    log.Open();
  }
  EXPECT_THAT(ui.events, ElementsAre("open-log: Log Window", "close-log: Log Window"));
}

TEST(LogWnd, NeverOpenedItShowsNothing) {
  TestFrontEnd ui;
  {
    LogWnd log;
    log.Append("lost\n");
    EXPECT_EQ(log.GetText(), "");
  }
  EXPECT_TRUE(ui.events.empty());
}

TEST(LogWnd, OpenedTwiceItIsOneWindow) {
  TestFrontEnd ui;
  LogWnd log;
  log.Open();
  log.Append("one\n");
  log.Open();
  EXPECT_EQ(log.GetText(), "one\n");
  EXPECT_EQ(ui.EventsWith("open-log").size(), 1u);
}

TEST(LogWnd, OpenedAnewItIsEmpty) {
  TestFrontEnd ui;
  LogWnd log;
  log.Open();
  log.Append("one\n");
  log.Close();
  log.Open();
  EXPECT_EQ(log.GetText(), "");
}

}  // namespace
}  // namespace corvane
