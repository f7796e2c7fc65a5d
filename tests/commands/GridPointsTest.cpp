// Merging and patching of grids of points, end to end.

#include "commands/PointUtilitiesFixture.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A points file of as many records as its header tells.
void ExpectWholePointsFile(const std::string& path) {
  TINPoints points;
  ASSERT_EQ(points.Read(path), 1);
  EXPECT_EQ(points.GetMissingCount(), 0);
  EXPECT_EQ(ReadFileBytes(path).size(), 52 + 32 * static_cast<std::size_t>(points.GetCount()));
}

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
  EXPECT_THAT(ui.EventsWith("status"),
              ElementsAre("status 0: Merging 1 of 2: p.pts", "status 0: Merging 2 of 2: g.pts",
                          "status 0: Points written: 6 of 7. Files merged: 2 of 4. Not merged: none.pts "
                          "(does not open), half.pts (other cell size)."));
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(PointUtilitiesTest, MergeCancelledWritesNothing) {
  ExpectCancelAtEachChooser("Merge Grid Points", {{"out.pts"}, {"p.pts"}});
}

TEST_F(PointUtilitiesTest, MergeThatMakesNoGridFails) {
  const std::string box = "message warning: Write file out.pts error!\n";
  ExpectFailure("Merge Grid Points", {{"out.pts"}, {"none.pts"}}, {box + "No file could be merged."});
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Not merged: none.pts (does not open).");
  struct Case {
    std::vector<double> header;
    std::string reason;
  };
  const std::vector<Case> cases = {
      {{0, 4, 4, 0, 0, 1}, "There is no grid: cell size 0."},
      {{0, 4, 4, 0, 1, -1}, "There is no grid: cell size -1."},
      {{0, 4, 4, 4, 1, 1}, "No file could be merged."},
      {{4, 4, 0, 0, 1, 1}, "No file could be merged."},
      {{0, 4, HUGE_VAL, 0, 1, 1}, "The grid is too large for the number of points."},
      {{0, 1e7, 1e7, 0, 1, 1}, "The grid is too large for the number of points."},
      {{90, 99, 99, 90, 1, 1}, "No point lies in the grid."}};
  for (const auto& [wrong, reason] : cases) {
    WriteFileBytes("wrong.pts", File(wrong, {a, b}));
    ExpectFailure("Merge Grid Points", {{"out.pts"}, {"wrong.pts"}}, {box + reason});
  }
}

TEST_F(PointUtilitiesTest, MergeTellsAnOutputThatDoesNotOpen) {
  ExpectFailure("Merge Grid Points", {{"none/out.pts"}, {"p.pts"}},
                {"message warning: Open file none/out.pts error!"});
}

TEST_F(PointUtilitiesTest, MergeLeavesOutThePointsThatACutFileLacks) {
  WriteFileBytes("cut.pts", File(header, {a, d, e}).substr(0, 52 + 2 * 32 + 8));
  ui.files = {{"out.pts"}, {"cut.pts"}};
  EXPECT_EQ(Run("Merge Grid Points"), CommandResult::Done);
  EXPECT_EQ(
      ui.EventsWith("status").back(),
      "status 0: Points written: 2 of 2. Files merged: 1 of 1. Cut short: cut.pts (points missing: 1).");
  TINPoints merged;
  ASSERT_EQ(merged.Read("out.pts"), 1);
  EXPECT_EQ(merged.GetCount(), 2);
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
    WriteFileBytes("out.pts", "old");
    const CommandResult result = Run("Merge Grid Points");
    EXPECT_EQ(ui.waitDepth, 0);
    if (result == CommandResult::Done) {
      ExpectWholePointsFile("out.pts");
    } else {
      EXPECT_EQ(result, CommandResult::Failed);
      EXPECT_EQ(ReadFileBytes("out.pts"), "old");
    }
  }
}

// A damaged count or extent leaves the points of the sound file; only a damaged cell size can shut it out.
TEST_F(PointUtilitiesTest, MergeKeepsTheSoundFileBesideADamagedOne) {
  const std::string bytes = ReadFileBytes("p.pts");
  WriteFileBytes("negative.pts", PointsBytes(-5, header, {9, 9, 9, 9}));
  WriteFileBytes("huge.pts", PointsBytes(INT32_MAX, header, {9, 9, 9, 9}));
  WriteFileBytes("head.pts", bytes.substr(0, 52));
  WriteFileBytes("short.pts", bytes.substr(0, 51));
  WriteFileBytes("nothing.pts", "");
  ui.files = {{"out.pts"}, {"negative.pts", "huge.pts", "head.pts", "short.pts", "nothing.pts", "p.pts"}};
  EXPECT_EQ(Run("Merge Grid Points"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.pts"), File(header, {a, d, e, b, c}));
  EXPECT_EQ(
      ui.EventsWith("status").back(),
      "status 0: Points written: 5 of 5. Files merged: 1 of 6. Not merged: short.pts (no whole header), "
      "nothing.pts (no whole header), negative.pts (no points that can be read) and 2 more.");
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
  struct Case {
    std::vector<double> header;
    std::string reason;
  };
  const std::vector<Case> cases = {
      {{0, 4, 4, 0, 0, 1}, "There is no grid: cell size 0."},
      {{0, 4, 4, 0, 1, -1}, "There is no grid: cell size -1."},
      {{0, 4, 4, 0, 1, HUGE_VAL}, "There is no grid: cell size inf."},
      {{4, 4, 0, 0, 1, 1}, "There is no grid: the extents are crossed or no numbers."},
      {{0, 4, HUGE_VAL, 0, 1, 1}, "The grid is too large for the number of points."},
      {{0, 1e9, 4, 0, 1, 1}, "The grid is too large for the number of points."},
      {{0.5, 4, 4, 0, 1, 1}, "No point lies in the grid."}};
  for (const auto& [wrong, reason] : cases) {
    const std::string bytes = File(wrong, {b, c});
    WriteFileBytes("first.pts", bytes);
    ui.forms = {Enter({{"xStart", "9"}, {"yStart", "9"}, {"xEnd", "9"}, {"yEnd", "9"}})};
    ExpectFailure("Replace Grid Points", {{"first.pts"}, {"g.pts"}},
                  {"message warning: Write file first.pts error!\n" + reason});
    EXPECT_EQ(ReadFileBytes("first.pts"), bytes);
  }
}

TEST_F(PointUtilitiesTest, ReplaceOnADamagedFirstFileThatFailsLeavesEveryByte) {
  WriteFileBytes("g.pts", File(header, {e}));
  const std::string sound = ReadFileBytes("p.pts");
  for (std::size_t i = 0; i < 52; ++i) {
    std::string damaged = sound;
    damaged[i] = '\x7f';
    WriteFileBytes("first.pts", damaged);
    ui.files = {{"first.pts"}, {"g.pts"}};
    ui.forms = {Accept};
    if (Run("Replace Grid Points") == CommandResult::Done) {
      ExpectWholePointsFile("first.pts");
    } else {
      EXPECT_EQ(ReadFileBytes("first.pts"), damaged) << i;
    }
    EXPECT_EQ(ui.waitDepth, 0);
  }
}

TEST_F(PointUtilitiesTest, ReplaceLeavesOutAndTellsThePointsThatCutFilesLack) {
  const std::vector<double> middle = {1, 1, 15, 0.5};
  WriteFileBytes("first.pts", File(header, {middle, b, c, d}).substr(0, 52 + 3 * 32));
  WriteFileBytes("g.pts", File(header, {e, a, a}).substr(0, 52 + 32 + 8));
  ui.files = {{"first.pts"}, {"g.pts"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("Replace Grid Points"), CommandResult::Done);
  EXPECT_EQ(ui.EventsWith("status").back(),
            "status 0: Points of the first file on its grid: 3 of 3. Points of the second put in: 1. Points "
            "missing in first.pts: 1. Points missing in g.pts: 2.");
  EXPECT_EQ(ReadFileBytes("first.pts"), File({1, 4, 4, 0, 1, 1}, {middle, e, b, c}));  // none at (0, 0)
}

// The cells that the points of both files justify.
TEST_F(PointUtilitiesTest, ReplaceMakesAGridForThePointsOfBothFiles) {
  // 2101 x 2001 cells are 204101 more than 4000000: 2042 points at least
  const std::vector<double> large = {0, 2000, 2100, 0, 1, 1};
  WriteFileBytes("first.pts", File(large, {a, b}));
  WriteFileBytes("g.pts", File(large, std::vector<std::vector<double>>(2040, e)));
  ui.files = {{"first.pts"}, {"g.pts"}};
  ui.forms = {Accept};
  EXPECT_EQ(Run("Replace Grid Points"), CommandResult::Done);
  WriteFileBytes("first.pts", File(large, {a, b}));
  WriteFileBytes("g.pts", File(large, std::vector<std::vector<double>>(2039, e)));
  ui.forms = {Accept};
  ExpectFailure(
      "Replace Grid Points", {{"first.pts"}, {"g.pts"}},
      {"message warning: Write file first.pts error!\nThe grid is too large for the number of points."});
}

}  // namespace
}  // namespace corvane
