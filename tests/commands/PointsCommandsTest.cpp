#include <sys/resource.h>
#include <unistd.h>

#include <cstring>
#include <fstream>

#include "TIN/TINPoints.h"
#include "commands/CommandsFixture.h"
#include "forms/FieldText.h"

namespace corvane {
namespace {

using testing::ElementsAre;

// int32 count; minX, maxY, maxX, minY, spacingX, spacingY; records of x, y, z, value
std::string PointsBytes(std::int32_t count, const std::vector<double>& numbers) {
  std::string bytes;
  AppendBytes(bytes, count);
  for (const double number : numbers) AppendBytes(bytes, number);
  return bytes;
}

TEST_F(CommandsTest, TextPointsXyzAsksInOrderAndConverts) {
  WriteFileBytes("a b.txt", "1 2 3\n4 5 6\n2.5 9 -1e1\n");
  ui.files = {{"a b.txt"}, {"p.pts"}};
  ui.values = {0.5};
  EXPECT_EQ(Run("Text Points(XYZ) to Bin"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("open"), ElementsAre("open: Text Files (*.txt)|*.txt|All Files (*.*)|*.*|"));
  EXPECT_THAT(ui.EventsWith("save"),
              ElementsAre("save: Binary Points Files (*.pts)|*.pts|All Files (*.*)|*.*|"));
  EXPECT_THAT(ui.EventsWith("value"), ElementsAre("value: Please input the cell size 1"));
  EXPECT_EQ(ui.choosers[0].defaultExtension, "TXT");
  EXPECT_EQ(ui.choosers[0].defaultName, "*.txt");
  EXPECT_FALSE(ui.choosers[0].mustExist);
  EXPECT_EQ(ui.choosers[1].defaultExtension, "BIN");
  EXPECT_EQ(ui.choosers[1].defaultName, "*.pts");
  EXPECT_EQ(ReadFileBytes("p.pts"), PointsBytes(3, {1, 9, 4, 2, 0.5, 0.5,  //
                                                    1, 2, 3, 1, 4, 5, 6, 1, 2.5, 9, -10, 1}));
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(CommandsTest, TextPointsIdxyzKeepsItsOwnTitle) {
  WriteFileBytes("a.txt", "7, 1, 2, 3\n8, 0, 1, 2, 0.25\n");
  ui.files = {{"a.txt"}, {"p.pts"}};
  ui.values = {1.0};
  EXPECT_EQ(Run("Text Points(IDXYZ) to Bin"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("value"), ElementsAre("value: Please input a value. 1"));
  // the first point raises both maxima, so only the second is tested against the minima
  EXPECT_EQ(ReadFileBytes("p.pts"), PointsBytes(2, {0, 2, 1, 1, 1, 1,  //
                                                    1, 2, 3, 1, 0, 1, 2, 0.25}));
}

TEST_F(CommandsTest, SpacingRepeatsWhileItIsNotPositive) {
  WriteFileBytes("a.txt", "1 2 3\n");
  ui.files = {{"a.txt"}, {"p.pts"}};
  ui.values = {-5.0, 0.0, 2.0};
  EXPECT_EQ(Run("Text Points(XYZ) to Bin"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("value"),
              ElementsAre("value: Please input the cell size 1", "value: Please input the cell size -5",
                          "value: Please input the cell size 0"));
}

TEST_F(CommandsTest, SpacingCancelledKeepsTheValueShown) {
  WriteFileBytes("a.txt", "1 2 3\n");
  ui.files = {{"a.txt"}, {"p.pts"}};
  EXPECT_EQ(Run("Text Points(XYZ) to Bin"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("p.pts"), PointsBytes(1, {1, 2, 1, 2, 1, 1, 1, 2, 3, 1}));
}

TEST_F(CommandsTest, TextPointsCancelledWritesNothing) {
  WriteFileBytes("a.txt", "1 2 3\n");
  EXPECT_EQ(Run("Text Points(XYZ) to Bin"), CommandResult::Cancelled);
  ui.files = {{"a.txt"}};
  EXPECT_EQ(Run("Text Points(XYZ) to Bin"), CommandResult::Cancelled);
  EXPECT_TRUE(ui.EventsWith("message").empty());
  EXPECT_THAT(Files(), ElementsAre("a.txt"));
}

TEST_F(CommandsTest, TextPointsWithIdsCancelledWritesNothing) {
  WriteFileBytes("a.txt", "1, 1, 2, 3\n");
  EXPECT_EQ(Run("Text Points(IDXYZ) to Bin"), CommandResult::Cancelled);
  ui.files = {{"a.txt"}};
  EXPECT_EQ(Run("Text Points(IDXYZ) to Bin"), CommandResult::Cancelled);
  EXPECT_TRUE(ui.EventsWith("message").empty());
  EXPECT_THAT(Files(), ElementsAre("a.txt"));
}

TEST_F(CommandsTest, TextPointsThatDoNotOpenFail) {
  ui.files = {{"missing.txt"}, {"p.pts"}, {"missing.txt"}, {"p.pts"}};
  EXPECT_EQ(Run("Text Points(XYZ) to Bin"), CommandResult::Failed);
  EXPECT_EQ(Run("Text Points(IDXYZ) to Bin"), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message"),
              ElementsAre("message message: Failed to convert text file to binary",
                          "message message: Failed to convert text file to binary"));
  EXPECT_TRUE(Files().empty());
}

TEST_F(CommandsTest, TextPointsThatCannotBeWrittenFail) {
  WriteFileBytes("a.txt", "1 2 3\n");
  ui.files = {{"a.txt"}, {"missing/p.pts"}};
  EXPECT_EQ(Run("Text Points(XYZ) to Bin"), CommandResult::Failed);
  EXPECT_THAT(Files(), ElementsAre("a.txt"));
}

class PointsHeadTest : public CommandsTest {
 protected:
  const std::string bytes = PointsBytes(1, {10.7, 20.5, 11.2, 19.9, 0.3, 0.4, 11, 20, 5, 1});
};

TEST_F(PointsHeadTest, ShowsTheHeaderAndWritesTheSpacingAsFloat) {
  WriteFileBytes("p.pts", bytes);
  ui.files = {{"p.pts"}};
  ui.forms = {[](Form& form) {
    EXPECT_EQ(form.GetReal("xStart"), 9.0);
    EXPECT_EQ(form.GetReal("yStart"), 18.0);
    EXPECT_EQ(form.GetReal("xEnd"), 12.0);
    EXPECT_EQ(form.GetReal("yEnd"), 21.0);
    EXPECT_EQ(form.GetReal("cellSize"), static_cast<double>(0.3f));
    SetFieldFromText(*form.Find("xStart"), "-99");
    return !SetFieldFromText(*form.Find("cellSize"), "0.1");
  }};
  EXPECT_EQ(Run("View/Change Points Head"), CommandResult::Done);
  const double narrowed = 0.1f;
  EXPECT_EQ(ReadFileBytes("p.pts"),
            PointsBytes(1, {10.7, 20.5, 11.2, 19.9, narrowed, narrowed, 11, 20, 5, 1}));
}

TEST_F(PointsHeadTest, DoesNotRepairCrossedExtents) {
  WriteFileBytes("p.pts", PointsBytes(1, {9, 1, 2, 8, 1, 1, 0, 0, 0, 0}));
  ui.files = {{"p.pts"}};
  ui.forms = {[](Form&) { return true; }};
  EXPECT_EQ(Run("View/Change Points Head"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("p.pts"), PointsBytes(1, {9, 1, 2, 8, 1, 1, 0, 0, 0, 0}));
}

TEST_F(PointsHeadTest, ShowsZeroForWhatIsNoNumber) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::string damaged = PointsBytes(1, {nan, HUGE_VAL, 2, 8, nan, 1, 0, 0, 0, 0});
  WriteFileBytes("p.pts", damaged);
  ui.files = {{"p.pts"}};
  ui.forms = {[](Form& form) {
    for (const char* name : {"xStart", "yEnd", "cellSize"}) EXPECT_EQ(form.GetReal(name), 0.0);
    return !SetFieldFromText(*form.Find("cellSize"), "2");
  }};
  EXPECT_EQ(Run("View/Change Points Head"), CommandResult::Done);
  const std::string mended = ReadFileBytes("p.pts");
  EXPECT_EQ(mended.substr(0, 36), damaged.substr(0, 36));
  EXPECT_EQ(mended.substr(36), PointsBytes(1, {0, 0, 0, 0, 2, 2, 0, 0, 0, 0}).substr(36));
}

TEST_F(PointsHeadTest, CancelledChangesNothing) {
  WriteFileBytes("p.pts", bytes);
  EXPECT_EQ(Run("View/Change Points Head"), CommandResult::Cancelled);
  ui.files = {{"p.pts"}};
  EXPECT_EQ(Run("View/Change Points Head"), CommandResult::Cancelled);
  EXPECT_EQ(ReadFileBytes("p.pts"), bytes);
}

TEST_F(PointsHeadTest, MissingAndShortFilesFail) {
  ui.files = {{"none.pts"}};
  EXPECT_EQ(Run("View/Change Points Head"), CommandResult::Failed);
  WriteFileBytes("short.pts", bytes.substr(0, 51));
  ui.files = {{"short.pts"}};
  EXPECT_EQ(Run("View/Change Points Head"), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message message ok-cancel: Open file none.pts error!",
                                                    "message message ok-cancel: Open file short.pts error!"));
  EXPECT_TRUE(ui.EventsWith("form").empty());
  EXPECT_EQ(ReadFileBytes("short.pts"), bytes.substr(0, 51));
  EXPECT_THAT(Files(), ElementsAre("short.pts"));
}

class CreateTinTest : public CommandsTest {
 protected:
  static constexpr const char* kCannot =
      "message message: The points can not be triangulated: fewer than three distinct points, all on one "
      "line, "
      "or coordinates that are not numbers.\n";

  void WritePoints(const std::vector<double>& numbers) {
    std::vector<double> all = {0, 10, 10, 0, 1, 1};
    all.insert(all.end(), numbers.begin(), numbers.end());
    WriteFileBytes("p.pts", PointsBytes(static_cast<std::int32_t>(numbers.size() / 4), all));
  }

  CommandResult RunOn(const std::string& points, const std::string& tin) {
    ui.files = {{points}, {tin}};
    return Run("TIN > Create TIN");
  }

  static std::int32_t TriangleCount(const std::string& path) {
    std::int32_t count = -1;
    const std::string bytes = ReadFileBytes(path);
    if (bytes.size() >= 4) std::memcpy(&count, bytes.data(), 4);
    return count;
  }
};

TEST_F(CreateTinTest, WritesTheTrianglesAndLeavesTheDocument) {
  WritePoints({0, 0, 1, 9, 10, 0, 2, 9, 5, 10, 3, 9});
  EXPECT_EQ(RunOn("p.pts", "t.tin"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("open"), ElementsAre("open: Points Files (*.pts)|*.pts|All Files (*.*)|*.*|"));
  EXPECT_THAT(ui.EventsWith("save"), ElementsAre("save: TIN Files (*.tin)|*.tin|All Files (*.*)|*.*|"));
  EXPECT_EQ(ui.choosers[1].defaultExtension, "tin");
  EXPECT_EQ(TriangleCount("t.tin"), 1);
  EXPECT_EQ(ReadFileBytes("t.tin").size(), 4u + 108u);
  EXPECT_EQ(Document().GetTIN().GetTriangleCount(), 0);
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(CreateTinTest, EqualPointsBecomeOneCorner) {
  WritePoints({0, 0, 1, 9, 10, 0, 2, 9, 5, 10, 3, 9, 10, 0, 4, 9});
  EXPECT_EQ(RunOn("p.pts", "t.tin"), CommandResult::Done);
  EXPECT_EQ(TriangleCount("t.tin"), 1);
}

TEST_F(CreateTinTest, TellsOfACutPointsFile) {
  WritePoints({0, 0, 1, 9, 10, 0, 2, 9, 5, 10, 3, 9, 7, 7, 4, 9});
  EXPECT_EQ(RunOn("p.pts", "t.tin"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre());
  WriteFileBytes("p.pts", ReadFileBytes("p.pts").substr(0, 52 + 3 * 32 + 5));
  EXPECT_EQ(RunOn("p.pts", "t.tin"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("status"),
              ElementsAre("status 0: The points file is cut short: 3 of 4 points are there."));
}

TEST_F(CreateTinTest, WithoutMemoryTellsSoAndTheProgramLives) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer ends the process without memory";
#endif
  constexpr std::int32_t kPoints = 400000;
  ASSERT_EQ(TINPoints(kPoints).Write("p.pts"), kPoints);
  std::string bytes = ReadFileBytes("p.pts");
  const double corners[] = {0, 0, 1, 9, 10, 0, 2, 9, 5, 10, 3, 9};
  std::memcpy(bytes.data() + 52, corners, sizeof corners);
  WriteFileBytes("p.pts", bytes);
  const auto run = [this] {
    std::size_t nPages = 0;
    std::ifstream("/proc/self/statm") >> nPages;
    // Room for the points, 40 bytes each, and for a block of them, but not for a mesh.
    const rlim_t limit = nPages * static_cast<std::size_t>(getpagesize()) + kPoints * 80;
    const rlimit limits = {limit, limit};
    setrlimit(RLIMIT_AS, &limits);
    const bool failed = RunOn("p.pts", "t.tin") == CommandResult::Failed;
    const auto shown = ui.EventsWith("message");
    const bool told = shown.size() == 1 && shown[0] ==
                                               "message message: There is not enough memory to "
                                               "triangulate the points.\n";
    _exit(failed && told ? 7 : 0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(7), "");
}

TEST_F(CreateTinTest, CancellingTheSecondChooserLeavesNoFile) {
  WritePoints({0, 0, 1, 9, 10, 0, 2, 9, 5, 10, 3, 9});
  ui.files = {{"p.pts"}};
  EXPECT_EQ(Run("Create TIN"), CommandResult::Cancelled);
  EXPECT_EQ(Run("Create TIN"), CommandResult::Cancelled);
  EXPECT_THAT(Files(), ElementsAre("p.pts"));
}

TEST_F(CreateTinTest, PointsThatHaveNoTrianglesAreRefused) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<std::vector<double>> cases = {
      {},                                                    // none
      {0, 0, 1, 1, 1, 0, 1, 1},                              // two
      {5, 5, 1, 1, 5, 5, 2, 1, 5, 5, 3, 1, 5, 5, 4, 1},      // all in one place
      {0, 0, 1, 1, 1, 1, 1, 1, 2, 2, 1, 1, 3, 3, 1, 1},      // on a line
      {0, 0, 1, 1, 10, 0, 1, 1, nan, 10, 1, 1, 3, 3, 1, 1},  // not a number
      {0, 0, 1, 1, 10, 0, 1, 1, HUGE_VAL, 10, 1, 1, 3, 3, 1, 1}};
  for (const auto& numbers : cases) {
    ui.events.clear();
    WritePoints(numbers);
    EXPECT_EQ(RunOn("p.pts", "t.tin"), CommandResult::Failed);
    EXPECT_THAT(ui.EventsWith("message"), ElementsAre(kCannot));
  }
  EXPECT_THAT(Files(), ElementsAre("p.pts"));
  EXPECT_EQ(app.GetDocuments().size(), 1u);
}

TEST_F(CreateTinTest, ReportsFilesThatDoNotOpen) {
  EXPECT_EQ(RunOn("none.pts", "t.tin"), CommandResult::Failed);
  WritePoints({0, 0, 1, 9, 10, 0, 2, 9, 5, 10, 3, 9});
  EXPECT_EQ(RunOn("p.pts", "missing/t.tin"), CommandResult::Failed);
  std::filesystem::create_directory("d.tin");
  EXPECT_EQ(RunOn("p.pts", "d.tin"), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message message: Open points file error!\n",
                                                    "message message: Open TIN file error!\n",
                                                    "message message: Open TIN file error!\n"));
}

}  // namespace
}  // namespace corvane
