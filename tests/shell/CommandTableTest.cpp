#include "shell/CommandTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvane {
namespace {

CommandResult First(CCorvaneView&) {
  return CommandResult::Done;
}
CommandResult Second(CCorvaneView&) {
  return CommandResult::Done;
}

const CommandRow kRows[] = {
    {MenuPlace::Working, "TIN", "Create TIN", "", First},
    {MenuPlace::Working, "TIN", "&Slope Filter", "", Second},
    {MenuPlace::Working, "Utilities", "Create TIN", "", First},
    {MenuPlace::Working, "Matching", "Edges ( of Regions) ", "", First},
    {MenuPlace::Working, "Matching > Exams", "Same", "", First},
    {MenuPlace::Working, "Utilities", "Same", "", Second},
    {MenuPlace::Working, "Features", "Canny Edge", "", {}},
};

TEST(CommandTable, NamesAreTheWholePath) {
  EXPECT_EQ(CommandName(kRows[1]), "TIN > Slope Filter");
  EXPECT_EQ(CommandName(kRows[4]), "Matching > Exams > Same");
  EXPECT_EQ(PlainItem(kRows[3]), "Edges ( of Regions)");
}

TEST(CommandTable, FindsByItemWhateverTheCaseAndBlanks) {
  for (const char* typed :
       {"&Slope Filter", "slope filter", "  SLOPE FILTER ", "TIN > Slope Filter", "tin>&slope filter"}) {
    EXPECT_EQ(FindCommand(kRows, typed).row, &kRows[1]) << typed;
  }
  EXPECT_EQ(FindCommand(kRows, "Edges ( of Regions)").row, &kRows[3]);
  EXPECT_EQ(FindCommand(kRows, "Edges ( of Regions) ").row, &kRows[3]);
}

TEST(CommandTable, TwoPlacesOfOneCommandAreOneCommand) {
  EXPECT_EQ(FindCommand(kRows, "Create TIN").row, &kRows[0]);
  EXPECT_EQ(FindCommand(kRows, "Utilities > Create TIN").row, &kRows[2]);
}

TEST(CommandTable, AnAmbiguousNameListsWhatItMayMean) {
  const CommandLookup lookup = FindCommand(kRows, "same");
  EXPECT_EQ(lookup.row, nullptr);
  EXPECT_TRUE(lookup.ambiguous);
  EXPECT_THAT(lookup.nearestNames, testing::ElementsAre("Matching > Exams > Same", "Utilities > Same"));
  EXPECT_EQ(FindCommand(kRows, "Utilities > Same").row, &kRows[5]);
}

TEST(CommandTable, AnUnknownNameListsTheNearest) {
  const CommandLookup lookup = FindCommand(kRows, "Slop Filter");
  EXPECT_EQ(lookup.row, nullptr);
  EXPECT_FALSE(lookup.ambiguous);
  ASSERT_EQ(lookup.nearestNames.size(), 5u);
  EXPECT_EQ(lookup.nearestNames.front(), "TIN > Slope Filter");
  EXPECT_EQ(FindCommand(kRows, "TIN > Same").row, nullptr);
  EXPECT_EQ(FindCommand(kRows, "").row, nullptr);
}

TEST(CommandTable, OnlyHandlersEnable) {
  EXPECT_TRUE(HasHandler(kRows[0]));
  EXPECT_FALSE(HasHandler(kRows[6]));
}

}  // namespace
}  // namespace corvane
