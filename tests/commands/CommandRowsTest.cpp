#include "commands/CommandRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

namespace corvane {
namespace {

std::vector<CommandRow> RowsAt(MenuPlace place) {
  std::vector<CommandRow> found;
  for (const CommandRow& row : CommandRows()) {
    if (row.place == place) found.push_back(row);
  }
  return found;
}

TEST(CommandRows, TheWorkingMenuHas120RowsOf115Commands) {
  const auto rows = RowsAt(MenuPlace::Working);
  EXPECT_EQ(rows.size(), 120u);
  std::set<std::string> items;
  for (const CommandRow& row : rows) items.insert(PlainItem(row));
  EXPECT_EQ(items.size(), 115u);
}

TEST(CommandRows, FiveCommandsSitAtTwoPlaces) {
  std::map<std::string, std::vector<CommandRow>> byItem;
  for (const CommandRow& row : RowsAt(MenuPlace::Working)) byItem[row.item].push_back(row);
  std::set<std::string> twice;
  for (const auto& [item, rows] : byItem) {
    if (rows.size() < 2) continue;
    twice.insert(item);
    EXPECT_STREQ(rows[0].prompt, rows[1].prompt);
    EXPECT_TRUE(rows[0].handler == rows[1].handler);
  }
  EXPECT_EQ(twice, (std::set<std::string>{"Check Plate", "Create TIN", "Exam Truth", "Matching Exam",
                                          "Show Vector"}));
}

// FNV-1a over "path|item|prompt" and a line end for each row.
std::uint64_t Checksum(const std::vector<CommandRow>& rows) {
  std::uint64_t sum = 0xcbf29ce484222325;
  for (const CommandRow& row : rows) {
    for (const char c : std::string(row.path) + '|' + row.item + '|' + row.prompt + '\n') {
      sum = (sum ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    }
  }
  return sum;
}

// The constant was computed from the written table, not from these rows.
TEST(CommandRows, AllTextsOfTheWorkingMenuAreLiteral) {
  EXPECT_EQ(Checksum(RowsAt(MenuPlace::Working)), 0x99c3a241f1985992u);
}

TEST(CommandRows, OneEntryHasNoItem) {
  const auto rows = RowsAt(MenuPlace::None);
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_STREQ(rows[0].prompt, "Matching based on a grid on ground.");
  EXPECT_TRUE(rows[0].handler == FindCommand(CommandRows(), "Ground-Based Matching").row->handler);
  EXPECT_EQ(FindCommand(CommandRows(), "").row, nullptr);
}

TEST(CommandRows, EveryRowIsFoundByItsWholeName) {
  for (const CommandRow& row : CommandRows()) {
    if (row.place == MenuPlace::None) continue;
    EXPECT_EQ(FindCommand(CommandRows(), CommandName(row)).row, &row);
  }
}

TEST(CommandRows, NoItemIsAmbiguous) {
  for (const CommandRow& row : CommandRows())
    EXPECT_FALSE(FindCommand(CommandRows(), row.item).ambiguous) << row.item;
}

TEST(CommandRows, OnlyCannyEdgeStandsDisabled) {
  for (const CommandRow& row : CommandRows()) {
    EXPECT_EQ(HasHandler(row), std::string(row.item) != "Canny Edge") << row.item;
  }
}

TEST(CommandRows, RowsOfAMenuStandTogetherInMenuOrder) {
  std::vector<std::string> menus;
  for (const CommandRow& row : RowsAt(MenuPlace::Working)) {
    const std::string path = row.path;
    const std::string menu = path.substr(0, path.find(" > "));
    if (menus.empty() || menus.back() != menu) menus.push_back(menu);
  }
  EXPECT_THAT(menus, testing::ElementsAre("Features", "Matching", "TIN", "Image", "Vector", "Utilities"));
}

TEST(CommandRows, TextsAreLiteral) {
  const auto promptOf = [](const char* name) {
    return std::string(FindCommand(CommandRows(), name).row->prompt);
  };
  EXPECT_EQ(promptOf("Canny Edge"), "Extracr Canny egde");
  EXPECT_EQ(promptOf("TIN to Shape"), "Convet TIN file to shape files.");
  EXPECT_EQ(promptOf("Histogram"), "Create hostogram for image.");
  EXPECT_EQ(promptOf("Image > Wavelet Transform"),
            "Conduct one level 1-D wavelet decomposition/reconstruction(For Alg. Test).");
  EXPECT_EQ(promptOf("Matching Exam"),
            "Exam the steps of matching. Press \"g\" to start with a 3D point.Using arrow to change X,Y,Z.");
  EXPECT_EQ(promptOf("&Slope Filter"), "");
  EXPECT_EQ(promptOf("Surface Smooth"),
            "Fitting a surface to points and then remove points above/below the  surface >threshold.");
  EXPECT_STREQ(FindCommand(CommandRows(), "Slope Filter").row->item, "&Slope Filter");
  EXPECT_STREQ(FindCommand(CommandRows(), "Edges ( of Regions)").row->item, "Edges ( of Regions) ");
  EXPECT_STREQ(FindCommand(CommandRows(), "Bare Earth").row->path, "LiDAR");
}

}  // namespace
}  // namespace corvane
