#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>

#include "qt/Arguments.h"
#include "qt/ModalScript.h"
#include "qt/QtFrontEnd.h"

namespace corvane {

namespace {

TEST(QtFrontEnd, FourKindsOfBoxes) {
  QtFrontEnd frontEnd;
  const std::pair<MessageKind, QMessageBox::Icon> kKinds[] = {
      {MessageKind::Message, QMessageBox::NoIcon},
      {MessageKind::Stop, QMessageBox::Critical},
      {MessageKind::Warning, QMessageBox::Warning},
      {MessageKind::Information, QMessageBox::Information}};
  for (const auto& [kind, icon] : kKinds) {
    ModalScript script({[&, wanted = icon](QWidget& dialog) {
      const auto& box = dynamic_cast<QMessageBox&>(dialog);
      EXPECT_EQ(box.windowTitle(), "Corvane");
      EXPECT_EQ(box.icon(), wanted);
      EXPECT_EQ(box.text(), "a <b>&\nc");
      EXPECT_EQ(box.textFormat(), Qt::PlainText);
      EXPECT_EQ(box.buttons().size(), 1);
      PressButton(dialog, "OK");
    }});
    EXPECT_TRUE(frontEnd.ShowMessage(kind, MessageButtons::Ok, "a <b>&\nc"));
  }
}

TEST(QtFrontEnd, BoxWithCancel) {
  QtFrontEnd frontEnd;
  {
    ModalScript script({Press("Cancel")});
    EXPECT_FALSE(frontEnd.ShowMessage(MessageKind::Warning, MessageButtons::OkCancel, "?"));
  }
  {
    ModalScript script({[](QWidget& box) { PressKey(box, Qt::Key_Escape); }});
    EXPECT_FALSE(frontEnd.ShowMessage(MessageKind::Warning, MessageButtons::OkCancel, "?"));
  }
  ModalScript script({Press("OK")});
  EXPECT_TRUE(frontEnd.ShowMessage(MessageKind::Warning, MessageButtons::OkCancel, "?"));
}

TEST(QtFrontEnd, EscOnABoxWithOkAloneIsOk) {
  QtFrontEnd frontEnd;
  ModalScript script({[](QWidget& box) { PressKey(box, Qt::Key_Escape); }});
  EXPECT_TRUE(frontEnd.ShowMessage(MessageKind::Message, MessageButtons::Ok, "!"));
}

TEST(QtFrontEnd, AskSaveChangesHasThreeAnswers) {
  QtFrontEnd frontEnd;
  const std::pair<const char*, SaveChoice> kAnswers[] = {
      {"Save", SaveChoice::Save}, {"Don't Save", SaveChoice::Discard}, {"Cancel", SaveChoice::Cancel}};
  for (const auto& [button, choice] : kAnswers) {
    ModalScript script({[pressed = button](QWidget& box) {
      EXPECT_EQ(BoxText(box), "Save changes to a.tin?");
      PressButton(box, pressed);
    }});
    EXPECT_EQ(frontEnd.AskSaveChanges("a.tin"), choice);
  }
}

TEST(QtFrontEnd, WaitCursorsNest) {
  QtFrontEnd frontEnd;
  frontEnd.SetWaitCursor(true);
  frontEnd.SetWaitCursor(true);
  frontEnd.SetWaitCursor(false);
  ASSERT_NE(QApplication::overrideCursor(), nullptr);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
  frontEnd.SetWaitCursor(false);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST(QtFrontEnd, BoxInALongCommandShowsTheArrow) {
  QtFrontEnd frontEnd;
  frontEnd.SetWaitCursor(true);
  {
    ModalScript script({[](QWidget& box) {
      EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::ArrowCursor);
      PressButton(box, "OK");
    }});
    frontEnd.ShowMessage(MessageKind::Message, MessageButtons::Ok, "half way");
  }
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
  frontEnd.SetWaitCursor(false);
}

TEST(QtFrontEnd, PrintGoesToStandardOutput) {
  QtFrontEnd frontEnd;
  testing::internal::CaptureStdout();
  frontEnd.Print("Number of triangles = 2\n");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Number of triangles = 2\n");
}

TEST(QtFrontEnd, TraceGoesToStandardErrorIfAsked) {
  QtFrontEnd frontEnd;
  testing::internal::CaptureStderr();
  frontEnd.Trace("hidden\n");
  frontEnd.SetTracing(true);
  frontEnd.Trace("row 5\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "row 5\n");
}

TEST(QtFrontEnd, ValueQuestionStandsAboveTheBox) {
  QtFrontEnd frontEnd;
  ModalScript script({[](QWidget& dialog) {
    EXPECT_EQ(dialog.windowTitle(), "Please input the cell size");
    const auto* question = dialog.findChild<QLabel*>("question");
    EXPECT_EQ(question->text(), "Please input the cell size");
    EXPECT_LT(question->geometry().bottom(), dialog.findChild<QLineEdit*>("value")->geometry().top());
    PressKey(dialog, Qt::Key_Escape);
  }});
  EXPECT_EQ(frontEnd.AskValue("Please input the cell size", 1.0), std::nullopt);
}

TEST(Arguments, FileAndRecord) {
  const Arguments arguments = ReadArguments({"a.tin", "--record", "day.txt"});
  EXPECT_EQ(arguments.file, "a.tin");
  EXPECT_EQ(arguments.record, "day.txt");
  EXPECT_EQ(arguments.problem, "");
  EXPECT_EQ(ReadArguments({"--record=day.txt"}).record, "day.txt");
  EXPECT_EQ(ReadArguments({"--", "--odd.tin"}).file, "--odd.tin");
  EXPECT_TRUE(ReadArguments({"--trace"}).trace);
  EXPECT_FALSE(ReadArguments({"a.tin"}).trace);
  EXPECT_TRUE(ReadArguments({"--help"}).help);
  EXPECT_TRUE(ReadArguments({"--version"}).version);
}

TEST(Arguments, WrongCallsAreNamed) {
  EXPECT_EQ(ReadArguments({"--record"}).problem, "--record needs a file.");
  EXPECT_EQ(ReadArguments({"--fast"}).problem, "Unknown option --fast.");
  EXPECT_EQ(ReadArguments({"a.tin", "b.tin"}).problem, "Only one file can be opened at the start.");
}

}  // namespace

}  // namespace corvane
