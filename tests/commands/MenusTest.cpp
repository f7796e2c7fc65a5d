#include "commands/CommandsFixture.h"

namespace corvane {
namespace {

using testing::ElementsAre;

TEST_F(CommandsTest, BareEarthDoesNothingAtAll) {
  EXPECT_EQ(Run("Bare Earth"), CommandResult::Done);
  EXPECT_THAT(ui.events, ElementsAre("command: LiDAR > Bare Earth", "end: LiDAR > Bare Earth done"));
  EXPECT_TRUE(Files().empty());
}

TEST_F(CommandsTest, CannyEdgeCannotBeChosen) {
  EXPECT_FALSE(app.IsEnabled(*FindCommand(app.GetCommands(), "Canny Edge").row));
}

TEST_F(CommandsTest, ACommandThatIsNotBuiltSaysSo) {
  EXPECT_EQ(Run("Vectorization"), CommandResult::Failed);
  EXPECT_EQ(Run("Template Matching"), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message message: This command is not built yet.",
                                                    "message message: This command is not built yet."));
}

TEST_F(CommandsTest, TestShowsNothing) {
  EXPECT_EQ(Run("Utilities > Test"), CommandResult::Done);
  EXPECT_TRUE(ui.EventsWith("message").empty());
  EXPECT_TRUE(Files().empty());
}

TEST_F(CommandsTest, FileNewOpenSaveClose) {
  WriteFileBytes("square.tin", SquareTinBytes());
  EXPECT_EQ(Run("File > New"), CommandResult::Done);
  EXPECT_EQ(Document().GetTitle(), "Corvane2");
  ui.files = {{"square.tin"}};
  EXPECT_EQ(Run("File > Open"), CommandResult::Done);
  EXPECT_EQ(ui.choosers.at(0).filter, "Files(*.tin)|*.TIN|");
  EXPECT_EQ(Document().GetTIN().GetTriangleCount(), 2);
  EXPECT_EQ(Run("File > Save"), CommandResult::Done);
  EXPECT_THAT(Files(), ElementsAre("square.tin", "square_filted.pts"));
  EXPECT_EQ(Run("File > Close"), CommandResult::Done);
  EXPECT_EQ(Document().GetTitle(), "Corvane2");
  EXPECT_EQ(Run("File > Open"), CommandResult::Cancelled);
  EXPECT_EQ(app.GetDocuments().size(), 2u);
}

TEST_F(CommandsTest, FileSaveOfANewDocumentAsksForItsPath) {
  EXPECT_EQ(Run("File > Save"), CommandResult::Cancelled);
  EXPECT_EQ(ui.choosers.at(0).mode, FileChooser::Mode::Save);
  EXPECT_EQ(ui.choosers.at(0).defaultName, "Corvane1");
  EXPECT_TRUE(Files().empty());
}

}  // namespace
}  // namespace corvane
