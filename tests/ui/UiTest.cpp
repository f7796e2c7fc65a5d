#include <gtest/gtest.h>

#include "support/TestFrontEnd.h"
#include "ui/FrontEnd.h"

namespace corvane {
namespace {

TEST(FileChooser, SplitsFilterStrings) {
  const auto entries = FilterEntries("TIN Files (*.tin)|*.tin|All Files (*.*)|*.*|");
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].name, "TIN Files (*.tin)");
  EXPECT_EQ(entries[0].pattern, "*.tin");
  EXPECT_EQ(entries[1].pattern, "*.*");
  EXPECT_EQ(FilterEntries("Image Files (*.lan)|*.lan|All Files (*.*)|*.*||").size(), 2u);
  EXPECT_TRUE(FilterEntries("").empty());
  EXPECT_TRUE(FilterEntries("only a name").empty());
}

TEST(FrontEnd, WithoutOnePromptsAreCancelled) {
  EXPECT_FALSE(ChooseFile({.filter = ""}));
  EXPECT_FALSE(Ui().AskValue("", 1.0));
}

TEST(FrontEnd, TheLastInstalledOneServes) {
  TestFrontEnd outer;
  {
    TestFrontEnd inner;
    ShowWarning("in");
    EXPECT_EQ(inner.events, std::vector<std::string>{"message warning: in"});
  }
  ShowStop("out");
  EXPECT_EQ(outer.events, std::vector<std::string>{"message stop: out"});
}

TEST(WaitCursor, EndsOnce) {
  TestFrontEnd ui;
  {
    WaitCursor wait;
    EXPECT_EQ(ui.waitDepth, 1);
    wait.End();
    EXPECT_EQ(ui.waitDepth, 0);
  }
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST(Form, FindsFieldsByName) {
  Form form{.name = "F", .title = "", .fields = {RealField("a", "A:", 1.5), IntegerField("n", "N:", 3)}};
  EXPECT_EQ(form.GetReal("a"), 1.5);
  EXPECT_EQ(form.GetInteger("n"), 3);
  EXPECT_EQ(form.Find("b"), nullptr);
}

}  // namespace
}  // namespace corvane
