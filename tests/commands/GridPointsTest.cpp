// Merging and patching of grids of points, end to end.

#include "commands/PointUtilitiesFixture.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Merge Grid Points

TEST_F(PointUtilitiesTest, MergeJoinsGridsOfOneSpacing) {
  WriteFileBytes("g.pts", File({4, 6, 6, 4, 1, 1}, {{4, 4, 20, 0.9}, {6, 6, 21, 0.9}}));
  WriteFileBytes("half.pts", File({0, 1, 1, 0, 0.5, 0.5}, {{0, 0, 30, 9}}));
  ui.files = {{"out.pts"}, {"p.pts", "none.pts", "half.pts", "g.pts"}};
  EXPECT_EQ(Run("Merge Grid Points"), CommandResult::Done);
  ASSERT_EQ(ui.choosers.size(), 2u);
  ExpectChooser(0, kSave, kPointsFiles, "pts");
  ExpectChooser(1, kOpen, kPointsFiles, "pts", false, true);
  EXPECT_THAT(Messages(),
              ElementsAre("message message ok-cancel: half.pts: The points spacing does not match, so "
                          "won't be merged."));
  EXPECT_EQ(ReadFileBytes("out.pts"),
            File({0, 6, 6, 0, 1, 1}, {a, d, e, b, {4, 4, 20, 0.9}, {6, 6, 21, 0.9}}));
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Files merged: 2 of 4.");
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(PointUtilitiesTest, MergeCancelledWritesNothing) {
  ExpectCancelAtEachChooser("Merge Grid Points", {{"out.pts"}, {"p.pts"}});
}

TEST_F(PointUtilitiesTest, MergeThatMakesNoGridFails) {
  const std::vector<std::string> box = {"message warning: Write file out.pts error!"};
  ExpectFailure("Merge Grid Points", {{"out.pts"}, {"none.pts"}}, box);
  const std::vector<std::vector<double>> headers = {
      {0, 4, 4, 0, 0, 1}, {0, 4, 4, 0, -1, 1},       {0, 4, 4, 0, kNaN, 1}, {0, 4, 4, 4, 1, 1},
      {4, 4, 0, 0, 1, 1}, {0, 4, HUGE_VAL, 0, 1, 1}, {0, 1e7, 1e7, 0, 1, 1}};
  for (const auto& wrong : headers) {
    WriteFileBytes("wrong.pts", File(wrong, {a, b}));
    ExpectFailure("Merge Grid Points", {{"out.pts"}, {"wrong.pts"}}, box);
  }
  WriteFileBytes("outside.pts", File({90, 99, 99, 90, 1, 1}, {a, b}));
  ExpectFailure("Merge Grid Points", {{"out.pts"}, {"outside.pts"}}, box);
  ExpectFailure("Merge Grid Points", {{"none/out.pts"}, {"p.pts"}},
                {"message warning: Write file none/out.pts error!"});
}

TEST_F(PointUtilitiesTest, MergeLeavesOutPointsBeyondAWrongHeader) {
  WriteFileBytes("wrong.pts", File({0, 2, 2, 0, 1, 1}, {a, b, c, d, e, {1e300, 0, 5, 1}, {kNaN, 0, 5, 1}}));
  ui.files = {{"out.pts"}, {"wrong.pts"}};
  EXPECT_EQ(Run("Merge Grid Points"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.pts"), File({0, 2, 2, 0, 1, 1}, {a, e}));
}

TEST_F(PointUtilitiesTest, MergeTakesAnyBytesAsPointsFiles) {
  std::string bytes = ReadFileBytes("p.pts");
  for (std::size_t i = 0; i < 52; ++i) {
    std::string damaged = bytes;
    damaged[i] = '\x7f';
    WriteFileBytes("damaged" + std::to_string(i) + ".pts", damaged);
    ui.files = {{"out.pts"}, {"damaged" + std::to_string(i) + ".pts", "p.pts"}};
    Run("Merge Grid Points");
    EXPECT_EQ(ui.waitDepth, 0);
  }
}

// Replace Grid Points

TEST_F(PointUtilitiesTest, ReplacePutsTheSecondFilesPointsIntoTheFirst) {
  WriteFileBytes("g.pts",
                 File({0, 4, 4, 0, 1, 1}, {{0, 0, 20, 0}, {2, 2, 21, -9}, {3, 3, 22, 1}, {2.5, 2, 23, 1}}));
  ui.files = {{"p.pts"}, {"g.pts"}};
  ui.forms = {[](Form& form) {
    EXPECT_EQ(form.GetReal("xStart"), -1.0);
    EXPECT_EQ(form.GetReal("yEnd"), 5.0);
    EXPECT_EQ(form.GetReal("cellSize"), 1.0);
    return Enter({{"xStart", "1"}, {"yStart", "1"}})(form);
  }};
  EXPECT_EQ(Run("Replace Grid Points"), CommandResult::Done);
  ASSERT_EQ(ui.choosers.size(), 2u);
  ExpectChooser(0, kSave, kPointsFiles, "pts");
  ExpectChooser(1, kOpen, kPointsFiles, "pts", true);
  EXPECT_EQ(ReadFileBytes("p.pts"), File(header, {a, d, {2, 2, 21, -9}, {3, 3, 22, 1}, b, c}));
  EXPECT_EQ(ui.EventsWith("status").back(),
            "status 0: Points of the first file on its grid: 5 of 5. Points of the second put in: 2.");
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(PointUtilitiesTest, ReplaceByAnOffsetGridChangesNothing) {
  WriteFileBytes("first.pts", File(header, {a, d, e, b, c}));  // as a grid is written
  WriteFileBytes("g.pts", File({0.5, 4, 4, 0, 1, 1}, {{0.5, 0, 20, 1}, {1.5, 2, 21, 1}, {2, 2.25, 22, 1}}));
  ui.files = {{"first.pts"}, {"g.pts"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("Replace Grid Points"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("first.pts"), File(header, {a, d, e, b, c}));
}

TEST_F(PointUtilitiesTest, ReplaceDropsPointsOfTheFirstFileThatAreOnNoNode) {
  // 0.3 / 0.1 is not 3
  WriteFileBytes("p.pts", File({0, 0.4, 0.4, 0, 0.1, 0.1}, {{0, 0, 1, 1}, {0.3, 0, 2, 1}, {0.4, 0.4, 3, 1}}));
  WriteFileBytes("g.pts", File(header, {e}));
  ui.files = {{"p.pts"}, {"g.pts"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("Replace Grid Points"), CommandResult::Done);
  EXPECT_EQ(ui.EventsWith("status").back(),
            "status 0: Points of the first file on its grid: 2 of 3. Points of the second put in: 0.");
  TINPoints points;
  ASSERT_EQ(points.Read("p.pts"), 1);
  EXPECT_EQ(points.GetCount(), 2);
}

TEST_F(PointUtilitiesTest, ReplaceCancelledChangesNothing) {
  const std::string before = ReadFileBytes("p.pts");
  WriteFileBytes("g.pts", File(header, {e}));
  ExpectCancelAtEachChooser("Replace Grid Points", {{"p.pts"}, {"g.pts"}});
  ui.files = {{"p.pts"}, {"g.pts"}};
  EXPECT_EQ(Run("Replace Grid Points"), CommandResult::Cancelled);
  EXPECT_EQ(ReadFileBytes("p.pts"), before);
}

TEST_F(PointUtilitiesTest, ReplaceTellsWhatItCanNotReadOrWrite) {
  WriteFileBytes("g.pts", File(header, {e}));
  ExpectFailure("Replace Grid Points", {{"none.pts"}, {"g.pts"}},
                {"message message: Read points file none.pts error!\n"});
  EXPECT_THAT(ui.shownForms, IsEmpty());
  ui.forms = {Accept};
  ExpectFailure("Replace Grid Points", {{"p.pts"}, {"none.pts"}},
                {"message message: Read points file none.pts error!\n"});
  EXPECT_EQ(ui.shownForms.size(), 1u);
}

TEST_F(PointUtilitiesTest, ReplaceOnWhatIsNoGridFailsAndKeepsTheFile) {
  WriteFileBytes("g.pts", File(header, {e}));
  const std::vector<std::vector<double>> headers = {
      {0, 4, 4, 0, 0, 1},        {0, 4, 4, 0, 1, -1},  {0, 4, 4, 0, 1, kNaN}, {4, 4, 0, 0, 1, 1},
      {0, 4, HUGE_VAL, 0, 1, 1}, {0, 1e9, 4, 0, 1, 1}, {0.5, 4, 4, 0, 1, 1}};  // the last: no point on a node
  for (const auto& wrong : headers) {
    const std::string bytes = File(wrong, {b, c});
    WriteFileBytes("first.pts", bytes);
    ui.forms = {Enter({{"xStart", "9"}, {"yStart", "9"}, {"xEnd", "9"}, {"yEnd", "9"}})};
    ExpectFailure("Replace Grid Points", {{"first.pts"}, {"g.pts"}},
                  {"message warning: Write file first.pts error!"});
    EXPECT_EQ(ReadFileBytes("first.pts"), bytes);
  }
}

}  // namespace
}  // namespace corvane
