// The comparisons of TINs with check points, as whole commands.

#include <sys/resource.h>
#include <unistd.h>

#include <sstream>

#include "cli/CommandLine.h"
#include "commands/CommandsFixture.h"
#include "support/PointsBytes.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

constexpr const char* kFailed = "message stop: Failed to compare TIN/Points";
constexpr const char* kExtension = "message warning: There is error in points extension!!";
constexpr const char* kTime = "message message: Total hrs: 00 mins: 00, secs: 0";
constexpr const char* kLoaded = "message information: triangles: 2\nmin: 100.0";

struct Header {
  double minX = 100, maxY = 210, maxX = 110, minY = 200;
};

// The TIN is a square from (100, 200) to (110, 210) with heights 1, 2, 3, 4 counter-clockwise from (100,
// 200).
class CompareTest : public CommandsTest {
 protected:
  void SetUp() override {
    CommandsTest::SetUp();
    WriteFileBytes("t.tin", SquareTinBytes());
  }

  // A points file of these x, y, z, each with value 7.
  static std::string BytesOf(const Header& header, std::int32_t count, const std::vector<double>& xyz) {
    std::vector<double> records;
    for (std::size_t i = 0; i < xyz.size(); ++i) {
      records.push_back(xyz[i]);
      if (i % 3 == 2) records.push_back(7.0);
    }
    return PointsBytes(count, {header.minX, header.maxY, header.maxX, header.minY, 1.0, 1.0}, records);
  }

  static void WritePoints(const std::vector<double>& xyz, const Header& header = {}) {
    WriteFileBytes("p.pts", BytesOf(header, static_cast<std::int32_t>(xyz.size() / 3), xyz));
  }

  void OpenTin(const std::string& path = "t.tin") {
    ui.files = {{path}};
    ASSERT_EQ(Run("File > Open"), CommandResult::Done);
    ui.events.clear();
    ui.choosers.clear();
  }

  void AcceptForm() {
    ui.forms.push_back([](Form&) { return true; });
  }

  void EnterWindow(double xStart, double yStart, double xEnd, double yEnd) {
    ui.forms.push_back([=](Form& form) {
      form.Find("xStart")->value = xStart;
      form.Find("yStart")->value = yStart;
      form.Find("xEnd")->value = xEnd;
      form.Find("yEnd")->value = yEnd;
      return true;
    });
  }

  CommandResult Compare(const std::string& points = "p.pts") {
    ui.files.push_back({points});
    return Run("TIN/Points Comparing");
  }

  CommandResult CompareInMask(const std::string& points = "p.pts", const std::string& mask = "m.msk") {
    ui.files.push_back({points});
    ui.files.push_back({mask});
    return Run("TIN/Points Comparing2");
  }

  // The boxes that a comparison of the open TIN has shown.
  std::vector<std::string> Boxes() { return ui.EventsWith("message"); }
};

TEST_F(CompareTest, AsksInOrderMeasuresAndTells) {
  // differences 1, 2, -1 and, inside, that of height 1 - 0.1 * 2 + 0.3 * 5
  WritePoints({100, 200, 0, 110, 200, 0, 110, 210, 4, 102, 205, 2.25});
  ui.files = {{"t.tin"}, {"p.pts"}};
  AcceptForm();
  EXPECT_EQ(Run("TIN/Points Comparing"), CommandResult::Done);
  const auto isShown = [](const std::string& event) {
    return event.starts_with("open:") || event.starts_with("form:") || event.starts_with("message");
  };
  std::vector<std::string> shown;
  std::copy_if(ui.events.begin(), ui.events.end(), std::back_inserter(shown), isShown);
  EXPECT_THAT(shown, ElementsAre("open: TIN Files (*.tin)|*.tin|All Files (*.*)|*.*|", StartsWith(kLoaded),
                                 "open: Points Files (*.pts)|*.pts|All Files (*.*)|*.*|", "form: ExtentInput",
                                 StartsWith(kTime),
                                 "message information: mean: 0.512500 stddev: 1.284767 RMS: 1.225000"));
  EXPECT_EQ(ui.choosers[0].defaultExtension, "");
  EXPECT_EQ(ui.choosers[1].defaultExtension, "Choose a Points Set.");
  EXPECT_FALSE(ui.choosers[1].mustExist);
  EXPECT_THAT(ReadFileBytes("t.log"),
              StartsWith("0, 100, 200, 0, 1\n1, 110, 200, 0, 2\n2, 110, 210, 4, -1\n3, 102, 205, 2.25, 0.0"));
  EXPECT_THAT(Files(), ElementsAre("p.pts", "t.log", "t.tin"));
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(CompareTest, TinIsLoadedWithPaintingOffAndNamesTheDocument) {
  WritePoints({100, 200, 0});
  ui.files = {{"t.tin"}};
  AcceptForm();
  EXPECT_EQ(Compare(), CommandResult::Done);
  EXPECT_FALSE(app.GetMainFrame().GetTinView()->paintEnabled);
  EXPECT_EQ(Document().GetPathName(), "t.tin");
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(CompareTest, FormShowsTheTinsExtentsWidened) {
  OpenTin();
  WritePoints({100, 200, 0});
  AcceptForm();
  EXPECT_EQ(Compare(), CommandResult::Done);
  Form& form = ui.shownForms.at(0);
  EXPECT_EQ(form.GetReal("xStart"), 99.0);
  EXPECT_EQ(form.GetReal("yStart"), 199.0);
  EXPECT_EQ(form.GetReal("xEnd"), 111.0);
  EXPECT_EQ(form.GetReal("yEnd"), 211.0);
  EXPECT_EQ(form.GetReal("cellSize"), 1.0);
}

TEST_F(CompareTest, LastLineHoldsCountMinMaxMeanDeviationAndRms) {
  OpenTin();
  // differences 4, 1, -1, 5: the first is the start of the maximum only; mean 9 / 4, squares 43
  WritePoints({100, 200, -3, 110, 200, 1, 110, 210, 4, 100, 210, -1});
  AcceptForm();
  EXPECT_EQ(Compare(), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("t.log"),
            "0, 100, 200, -3, 4\n1, 110, 200, 1, 1\n2, 110, 210, 4, -1\n3, 100, 210, -1, 5\n"
            "4, -1, 5, 2.25, 2.75378527364305, 3.278719262151\n");
}

TEST_F(CompareTest, OnlyPointsInTheWindowAreMeasuredEdgesIncluded) {
  OpenTin();
  WritePoints({100, 200, 0, 110, 200, 0, 110, 210, 0, 100, 210, 0, std::nan(""), 205, 0});
  EnterWindow(100, 200, 110, 205);
  EXPECT_EQ(Compare(), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("t.log"),
            "0, 100, 200, 0, 1\n1, 110, 200, 0, 2\n2, 2, 2, 1.5, 0.707106781186548, 1.58113883008419\n");
}

TEST_F(CompareTest, PointOutsideTheHullButInTheWindowIsNotCounted) {
  WriteFileBytes(
      "t.tin", TinBytes({{0, 100, 200, 1, 1.0}, {1, 110, 200, 2, 1.0}, {2, 110, 210, 3, 1.0}}, {{0, 1, 2}}));
  OpenTin();
  WritePoints({101, 209, 0, 110.5, 205, 0, 110, 210, 0});
  AcceptForm();
  EXPECT_EQ(Compare(), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("t.log"), "2, 110, 210, 0, 3\n1, 3, 3, 3, 0, 3\n");
}

TEST_F(CompareTest, ExtentsThatTouchAtAnEdgeOverlap) {
  OpenTin();
  const std::vector<std::array<double, 4>> touching = {
      {90, 200, 100, 210}, {110, 200, 120, 210}, {100, 190, 110, 200}, {100, 210, 110, 220}};
  for (const auto& window : touching) {
    ui.events.clear();
    WritePoints({100, 200, 0});
    EnterWindow(window[0], window[1], window[2], window[3]);
    EXPECT_EQ(Compare(), CommandResult::Done);
    EXPECT_THAT(Boxes(), ElementsAre(StartsWith(kTime), StartsWith("message information: mean: ")));
  }
}

TEST_F(CompareTest, WindowBesideThePointsIsTold) {
  OpenTin();
  WritePoints({100, 200, 0});
  const std::vector<std::array<double, 4>> beside = {
      {90, 200, 99.5, 210}, {110.5, 200, 120, 210}, {100, 190, 110, 199.5}, {100, 210.5, 110, 220}};
  for (const auto& window : beside) {
    ui.events.clear();
    EnterWindow(window[0], window[1], window[2], window[3]);
    EXPECT_EQ(Compare(), CommandResult::Failed);
    EXPECT_THAT(Boxes(),
                ElementsAre("message message: There is no overlap between TIN and Points!\n", kFailed));
  }
  EXPECT_THAT(Files(), ElementsAre("p.pts", "t.tin"));
}

TEST_F(CompareTest, CrossedTopAndBottomOfTheHeaderAreExchanged) {
  OpenTin();
  WritePoints({100, 200, 0}, {.maxY = 200, .minY = 210});
  EnterWindow(100, 205, 110, 206);  // misses the bounds as they are written
  EXPECT_EQ(Compare(), CommandResult::Done);
}

TEST_F(CompareTest, CancelAtEachPromptWritesNothing) {
  WritePoints({100, 200, 0});
  EXPECT_EQ(Run("TIN/Points Comparing"), CommandResult::Cancelled);
  EXPECT_TRUE(Boxes().empty());
  OpenTin();
  EXPECT_EQ(Run("TIN/Points Comparing"), CommandResult::Cancelled);
  EXPECT_TRUE(Boxes().empty());
  EXPECT_EQ(Compare(), CommandResult::Failed);  // in the form
  EXPECT_THAT(Boxes(), ElementsAre(kFailed));
  EXPECT_THAT(Files(), ElementsAre("p.pts", "t.tin"));
}

TEST_F(CompareTest, TinThatDoesNotOpenEndsIt) {
  ui.files = {{"none.tin"}};
  EXPECT_EQ(Run("TIN/Points Comparing"), CommandResult::Failed);
  EXPECT_THAT(Boxes(), ElementsAre("message warning: Open file n error!"));
}

TEST_F(CompareTest, PointsThatDoNotOpenAreTold) {
  OpenTin();
  WriteFileBytes("short.pts", "abc");
  for (const char* path : {"none.pts", "short.pts", "."}) {
    ui.events.clear();
    EXPECT_EQ(Compare(path), CommandResult::Failed);
    EXPECT_THAT(Boxes(), ElementsAre("message message: Open file error!\n", kFailed));
    EXPECT_TRUE(ui.EventsWith("form").empty());
  }
}

TEST_F(CompareTest, CountThatTheFileCanNotHoldIsRefused) {
  OpenTin();
  for (const std::int32_t count : {-1, INT32_MIN, INT32_MAX}) {
    ui.events.clear();
    WriteFileBytes("p.pts", BytesOf({}, count, {100, 200, 0}));
    AcceptForm();
    EXPECT_EQ(Compare(), CommandResult::Failed);
    EXPECT_THAT(Boxes(), ElementsAre("message message: Can not allocate memory for points!\n", kFailed));
  }
  EXPECT_THAT(Files(), ElementsAre("p.pts", "t.tin"));
}

TEST_F(CompareTest, PointsThatACutFileLacksAreAtTheOriginAndTold) {
  OpenTin();
  WriteFileBytes("p.pts", BytesOf({.minX = 0, .minY = 0}, 3, {100, 200, 0}));
  EnterWindow(0, 0, 110, 210);
  EXPECT_EQ(Compare(), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("status"),
              ElementsAre("status 0: Comparing with p.pts",
                          "status 0: The points file is cut short: 1 of 3 points are there.",
                          "status 0: 1 of 3 points measured; log: t.log"));
  EXPECT_EQ(ReadFileBytes("t.log"), "0, 100, 200, 0, 1\n1, 1.7e+308, 1, 1, 0, 1\n");
}

TEST_F(CompareTest, FileOfNoPointsGivesALogOfNone) {
  OpenTin();
  WritePoints({});
  AcceptForm();
  EXPECT_EQ(Compare(), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("t.log"), "0, 0, 0, 0, 0, 0\n");
}

TEST_F(CompareTest, LogThatCanNotBeWrittenIsTold) {
  OpenTin();
  WritePoints({100, 200, 0});
  std::filesystem::create_directory("t.log");
  AcceptForm();
  EXPECT_EQ(Compare(), CommandResult::Failed);
  EXPECT_THAT(Boxes(), ElementsAre("message warning: Write file t.log error!", kFailed));
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(CompareTest, LogOfAFullDiskIsTold) {
  OpenTin();
  WritePoints({100, 200, 0});
  std::filesystem::create_symlink("/dev/full", "t.log");
  AcceptForm();
  EXPECT_EQ(Compare(), CommandResult::Failed);
  EXPECT_THAT(Boxes(), ElementsAre("message warning: Write file t.log error!", kFailed));
}

TEST_F(CompareTest, LogDoesNotTakeThePlaceOfAnInput) {
  WritePoints({100, 200, 0});
  std::filesystem::create_symlink("p.pts", "t.log");
  OpenTin();
  AcceptForm();
  EXPECT_EQ(Compare(), CommandResult::Failed);  // the points
  WriteFileBytes("u.log", SquareTinBytes());
  OpenTin("u.log");
  AcceptForm();
  EXPECT_EQ(Compare(), CommandResult::Failed);  // the TIN
  EXPECT_THAT(Boxes(), ElementsAre("message warning: Write file u.log error!", kFailed));
  WriteFileBytes("v.tin", SquareTinBytes());
  const std::string mask = "1\n0 2\n90 190\n120 220\n";
  WriteFileBytes("v.log", mask);
  OpenTin("v.tin");
  EXPECT_EQ(CompareInMask("p.pts", "v.log"), CommandResult::Failed);  // the mask
  EXPECT_THAT(Boxes(), ElementsAre("message warning: Write file v.log error!", kFailed));
  EXPECT_EQ(ui.waitDepth, 0);
  EXPECT_EQ(ReadFileBytes("p.pts"), BytesOf({}, 1, {100, 200, 0}));
  EXPECT_EQ(ReadFileBytes("u.log"), SquareTinBytes());
  EXPECT_EQ(ReadFileBytes("v.log"), mask);
}

TEST_F(CompareTest, OldLogIsReplaced) {
  OpenTin();
  WritePoints({100, 200, 0});
  WriteFileBytes("t.log", std::string(1000, 'x'));
  AcceptForm();
  EXPECT_EQ(Compare(), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("t.log"), "0, 100, 200, 0, 1\n1, 1.7e+308, 1, 1, 0, 1\n");
}

TEST_F(CompareTest, LogNameIsCutAtTheLastPoint) {
  WriteFileBytes("x.y.tin", SquareTinBytes());
  WriteFileBytes("bare", SquareTinBytes());
  WritePoints({100, 200, 0});
  OpenTin("x.y.tin");
  AcceptForm();
  EXPECT_EQ(Compare(), CommandResult::Done);
  OpenTin("bare");
  AcceptForm();
  EXPECT_EQ(Compare(), CommandResult::Done);
  EXPECT_THAT(Files(), ElementsAre(".log", "bare", "p.pts", "t.tin", "x.y.log", "x.y.tin"));
}

TEST_F(CompareTest, MaskFormAsksInOrderAndLogsThreeColumns) {
  OpenTin();
  WritePoints({100, 200, 0, 110, 200, 0, 110, 210, 1});
  // the first region holds all, the second the last one again, the third is no polygon
  WriteFileBytes("m.msk", "3\n0 2\n90 190\n120 220\n0 2\n105 205\n120 220\n1 3\n0 0\n9 0\n9 9\n");
  EXPECT_EQ(CompareInMask(), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("open"), ElementsAre("open: Points Files (*.pts)|*.pts|All Files (*.*)|*.*|",
                                                 "open: Mask Files (*.msk)|*.msk|All Files (*.*)|*.*|"));
  EXPECT_EQ(ui.choosers[0].defaultExtension, "Choose a Points Set.");
  EXPECT_EQ(ui.choosers[1].defaultExtension, "msk");
  EXPECT_THAT(Boxes(), ElementsAre(StartsWith(kTime),
                                   "message information: mean: 1.750000 stddev: 0.500000 RMS: "
                                   "1.802776"));
  EXPECT_EQ(ReadFileBytes("t.log"),
            "100, 200, 1\n110, 200, 2\n110, 210, 2\n110, 210, 2\n4, 2, 2, 1.75, 0.5, 1.80277563773199\n");
  EXPECT_THAT(ui.EventsWith("status"),
              ElementsAre("status 0: Comparing with p.pts", "status 0: 4 of 4 points measured; log: t.log"));
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(CompareTest, MaskFormTakesConvexPolygonsAndTheRulesOfTheirEdges) {
  OpenTin();
  WritePoints({100, 200, 0, 105, 200, 0, 110, 210, 0});
  WriteFileBytes("m.msk", "1\n1 4\n100 200\n110 200\n110 205\n100 200\n");  // counter-clockwise: edges belong
  EXPECT_EQ(CompareInMask(), CommandResult::Done);
  EXPECT_THAT(ReadFileBytes("t.log"), StartsWith("100, 200, 1\n105, 200, 1.5\n2, "));
  WriteFileBytes("m.msk", "1\n1 4\n100 200\n110 205\n110 200\n100 200\n");  // clockwise: they do not
  EXPECT_EQ(CompareInMask(), CommandResult::Failed);
}

TEST_F(CompareTest, MaskFormCancelledAtEachPrompt) {
  WritePoints({100, 200, 0});
  EXPECT_EQ(Run("TIN/Points Comparing2"), CommandResult::Cancelled);
  OpenTin();
  EXPECT_EQ(Run("TIN/Points Comparing2"), CommandResult::Cancelled);
  EXPECT_TRUE(Boxes().empty());
  ui.files = {{"p.pts"}};
  EXPECT_EQ(Run("TIN/Points Comparing2"), CommandResult::Failed);
  EXPECT_THAT(Boxes(), ElementsAre(kFailed));
  EXPECT_THAT(Files(), ElementsAre("p.pts", "t.tin"));
}

TEST_F(CompareTest, MaskFormTellsWhatItCanNotRead) {
  OpenTin();
  ui.files = {{"none.pts"}};
  EXPECT_EQ(Run("TIN/Points Comparing2"), CommandResult::Failed);
  WritePoints({100, 200, 0});
  ui.files.clear();
  EXPECT_EQ(CompareInMask("p.pts", "none.msk"), CommandResult::Failed);
  EXPECT_THAT(Boxes(), ElementsAre("message message: Read points file error!\n", kFailed,
                                   "message message: Read region file error!\n", kFailed));
}

TEST_F(CompareTest, MaskFormWithoutAPointInTheRegions) {
  OpenTin();
  WritePoints({100, 200, 0});
  for (const char* mask : {"", "1\n0 2\n0 0\n9 9\n", "nothing at all", "1000000000\n0 2\n"}) {
    ui.events.clear();
    WriteFileBytes("m.msk", mask);
    EXPECT_EQ(CompareInMask(), CommandResult::Failed);
    EXPECT_THAT(Boxes(),
                ElementsAre("message message: There is no Points in the comparing area!\n", kFailed));
  }
  EXPECT_THAT(Files(), ElementsAre("m.msk", "p.pts", "t.tin"));
}

TEST_F(CompareTest, MaskFormEndsWithPointsOutsideTheirHeadersExtents) {
  OpenTin();
  WritePoints({100, 200, 0, 500, 500, 0});
  WriteFileBytes("m.msk", "1\n0 2\n90 190\n120 220\n");
  EXPECT_EQ(CompareInMask(), CommandResult::Failed);
  EXPECT_THAT(Boxes(), ElementsAre(kExtension, kFailed));
  EXPECT_THAT(ui.choosers, testing::SizeIs(1));  // the mask is not asked for
}

TEST_F(CompareTest, MaskFormTellsThatThePointsFileIsCutShort) {
  OpenTin();
  WriteFileBytes("p.pts", BytesOf({.minX = 0, .minY = 0}, 3, {100, 200, 0}));
  WriteFileBytes("m.msk", "1\n0 2\n90 190\n120 220\n");
  EXPECT_EQ(CompareInMask(), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("status"),
              ElementsAre("status 0: The points file is cut short: 1 of 3 points are there.",
                          "status 0: Comparing with p.pts", "status 0: 1 of 1 points measured; log: t.log"));
  EXPECT_EQ(ReadFileBytes("t.log"), "100, 200, 1\n1, 1.7e+308, 1, 1, 0, 1\n");
}

TEST_F(CompareTest, MaskThatBeginsWithNoNumberIsTold) {
  OpenTin();
  WritePoints({100, 200, 0});
  const std::vector<std::string> told = {"status 0: The mask begins with no number of regions."};
  for (const char* mask : {"", " \n", "0\n", "0 regions"}) {
    WriteFileBytes("m.msk", mask);
    EXPECT_EQ(CompareInMask(), CommandResult::Failed);
  }
  EXPECT_TRUE(ui.EventsWith("status").empty());
  WriteFileBytes("m.msk", "\n nothing at all");
  EXPECT_EQ(CompareInMask(), CommandResult::Failed);
  EXPECT_EQ(ui.EventsWith("status"), told);
}

TEST_F(CompareTest, FileThatGivesNoTinEndsBothForms) {
  WritePoints({100, 200, 0});
  WriteFileBytes("point.tin", TinBytes({{0, 100, 200, 1, 1.0}}, {{0, 0, 0}}));
  for (const char* command : {"TIN/Points Comparing", "TIN/Points Comparing2"}) {
    ui.events.clear();
    ui.files = {{"point.tin"}, {"p.pts"}};
    EXPECT_EQ(Run(command), CommandResult::Failed);
    EXPECT_EQ(Boxes().back(), "message warning: No TIN Read! Please load a TIN first!");
    EXPECT_THAT(ui.files, testing::SizeIs(1));  // the points are not asked for
  }
}

TEST_F(CompareTest, NameWithoutAnExtensionGetsTheTitle) {
  WriteFileBytes("p.Choose a Points Set.", BytesOf({}, 1, {100, 200, 0}));
  std::istringstream in;
  std::ostringstream out;
  std::ostringstream err;
  EXPECT_EQ(RunCommandLine({"run", "--open", "t.tin", "TIN/Points Comparing", "p", "@ok"}, CommandRows(),
                           {in, out, err}),
            ExitStatus::Done);
  EXPECT_EQ(ReadFileBytes("t.log"), "0, 100, 200, 0, 1\n1, 1.7e+308, 1, 1, 0, 1\n");
  EXPECT_THAT(err.str(), testing::HasSubstr("1 of 1 points measured; log: t.log\n"));
}

TEST_F(CompareTest, MaskFormWhoseLogCanNotBeWritten) {
  OpenTin();
  WritePoints({100, 200, 0});
  WriteFileBytes("m.msk", "1\n0 2\n90 190\n120 220\n");
  std::filesystem::create_directory("t.log");
  EXPECT_EQ(CompareInMask(), CommandResult::Failed);
  EXPECT_THAT(Boxes(), ElementsAre("message warning: Write file t.log error!", kFailed));
}

class CompareBatchTest : public CompareTest {
 protected:
  void SetUp() override {
    CompareTest::SetUp();
    WritePoints({100, 200, 0, 110, 200, 0, 110, 210, 1});
    WriteFileBytes("m.msk", "1\n0 2\n90 190\n120 220\n");
    WriteFileBytes("far.msk", "1\n0 2\n0 0\n9 9\n");
  }

  CommandResult RunBatch(const std::string& text) {
    WriteFileBytes("b.txt", text);
    ui.files = {{"b.txt"}};
    return Run("TIN/Pts Compare(Batch)");
  }
};

constexpr const char* kRows = "100, 200, 0, 1 ,1\n110, 200, 0, 2 ,2\n110, 210, 1, 3 ,2\n";
// differences 1, 2, 2: mean 5 / 3, squares 9, variance (9 - 25 / 3) / 2
constexpr const char* kNumbers = "3, 2.000000, 2.000000, 1.666667, 0.577350, 1.732051\n";

TEST_F(CompareBatchTest, MeasuresEveryLine) {
  WriteFileBytes("u.v.tin", SquareTinBytes());
  EXPECT_EQ(RunBatch("p.pts check\nt.tin m.msk\nu.v.tin far.msk\n"), CommandResult::Done);
  EXPECT_EQ(ui.choosers.at(0).filter, "Batch Files (*.txt)|*.txt|All Files (*.*)|*.*|");
  EXPECT_EQ(ui.choosers[0].defaultExtension, "TXT");
  EXPECT_TRUE(ui.choosers[0].mustExist);
  const std::string log = ReadFileBytes("t_check.log");
  EXPECT_THAT(log, StartsWith(std::string(kRows) + "3, 2, 2, 1.66666666666667, 0.57735026918962"));
  EXPECT_EQ(ReadFileBytes("u.v_check.log"), "0, 0, 0, 0, 0, 0\n");
  EXPECT_EQ(ReadFileBytes("b.txt.log"),
            std::string("t.tin, m.msk, ") + kNumbers +
                "u.v.tin, far.msk, 0, 0.000000, 0.000000, 0.000000, 0.000000, 0.000000\n");
  EXPECT_THAT(Boxes(), ElementsAre(StartsWith(kLoaded), StartsWith(kLoaded)));  // no time, no statistics
  EXPECT_EQ(ui.waitDepth, 0);
  EXPECT_EQ(Document().GetPathName(), "");
}

TEST_F(CompareBatchTest, CancelWritesNothing) {
  EXPECT_EQ(Run("TIN/Pts Compare(Batch)"), CommandResult::Cancelled);
  EXPECT_THAT(Files(), ElementsAre("far.msk", "m.msk", "p.pts", "t.tin"));
}

TEST_F(CompareBatchTest, LinesThatDoNotReadAreToldAndPassedOver) {
  WriteFileBytes("cut.tin", SquareTinBytes().substr(0, 50));
  EXPECT_EQ(RunBatch("p.pts x\nnone.tin m.msk\ncut.tin m.msk\nt.tin none.msk\nt.tin m.msk\n"),
            CommandResult::Done);
  EXPECT_THAT(Boxes(), ElementsAre("message warning: Open file none.tin error!",
                                   "message message: ReadTIN: Read TIN error!", StartsWith(kLoaded),
                                   "message warning: Open file none.msk error!", StartsWith(kLoaded)));
  EXPECT_EQ(ReadFileBytes("b.txt.log"), std::string("t.tin, m.msk, ") + kNumbers);
}

TEST_F(CompareBatchTest, TinWithoutTrianglesHasNoHeights) {
  WriteFileBytes("empty.tin", TinBytes({}, {}));
  EXPECT_EQ(RunBatch("p.pts x\nempty.tin m.msk\n"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("empty_x.log"), "0, 1.7e+308, -4096, 0, 0, 0\n");
  EXPECT_THAT(ReadFileBytes("b.txt.log"), StartsWith("empty.tin, m.msk, 0, 1"));
}

TEST_F(CompareBatchTest, TinOfOnePointHasNoHeights) {
  WriteFileBytes("point.tin", TinBytes({{0, 100, 200, 1, 1.0}}, {{0, 0, 0}}));
  WritePoints({100, 200, 0, 0, 0, 0}, {.minX = 0, .minY = 0});
  WriteFileBytes("all.msk", "1\n0 2\n-1 -1\n120 220\n");
  EXPECT_EQ(RunBatch("p.pts x\npoint.tin all.msk\n"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("point_x.log"), "0, 1.7e+308, -4096, 0, 0, 0\n");
}

TEST_F(CompareBatchTest, PointsThatDoNotReadEndIt) {
  WriteFileBytes("b.txt.log", "old");
  for (const char* text : {"none.pts x\nt.tin m.msk\n", "", "\n \n"}) {
    ui.events.clear();
    EXPECT_EQ(RunBatch(text), CommandResult::Failed);
    EXPECT_THAT(Boxes(), ElementsAre("message message: Read points file error!\n"));
    EXPECT_EQ(ui.waitDepth, 0);
  }
  EXPECT_EQ(ReadFileBytes("b.txt.log"), "old");
}

TEST_F(CompareBatchTest, PointsOutsideTheirHeadersExtentsEndIt) {
  WriteFileBytes("b.txt.log", "old");
  WritePoints({100, 200, 0, 500, 500, 0});
  EXPECT_EQ(RunBatch("p.pts x\nt.tin m.msk\n"), CommandResult::Failed);
  EXPECT_THAT(Boxes(), ElementsAre(kExtension));
  EXPECT_EQ(ReadFileBytes("b.txt.log"), "old");
  EXPECT_EQ(ReadFileBytes("t_x.log"), "");
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(CompareBatchTest, LineThatTheMemoryDoesNotHoldIsToldAndTheRestGoesOn) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer ends the process without memory";
#endif
  constexpr rlim_t kHuge = rlim_t{4} << 30;
  WriteFileBytes("huge.msk", "1\n");
  std::filesystem::resize_file("huge.msk", kHuge);
  const auto run = [this] {
    const rlimit limits = {kHuge, kHuge};
    setrlimit(RLIMIT_AS, &limits);
    const bool done = RunBatch("p.pts x\nt.tin huge.msk\nt.tin m.msk\n") == CommandResult::Done;
    const auto boxes = Boxes();
    const bool told =
        boxes.size() == 3 && boxes[1] == "message message: Can not allocate memory for points!\n";
    const bool counted = ReadFileBytes("b.txt.log") == std::string("t.tin, m.msk, ") + kNumbers;
    _exit(done && told && counted ? 7 : 0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(7), "");
}

TEST_F(CompareBatchTest, FirstLineAlone) {
  EXPECT_EQ(RunBatch("p.pts"), CommandResult::Done);
  EXPECT_EQ(RunBatch("p.pts x"), CommandResult::Done);
  EXPECT_THAT(Files(), ElementsAre("b.txt", "b.txt.log", "far.msk", "m.msk", "p.pts", "t.tin"));
  EXPECT_EQ(ReadFileBytes("b.txt.log"), "");
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: The batch ends with one word alone: p.pts"));
}

TEST_F(CompareBatchTest, WordsHaveNoLengthLimit) {
  const std::string tag(200, 'g');
  EXPECT_EQ(RunBatch("./" + std::string(400, '/') + "p.pts " + tag + "\nt.tin m.msk\n"), CommandResult::Done);
  EXPECT_THAT(ReadFileBytes("t_" + tag + ".log"), StartsWith(kRows));
}

TEST_F(CompareBatchTest, BatchAndSummaryThatDoNotOpenAreTold) {
  ui.files = {{"none.txt"}};
  EXPECT_EQ(Run("TIN/Pts Compare(Batch)"), CommandResult::Failed);
  std::filesystem::create_directory("b.txt.log");
  EXPECT_EQ(RunBatch("p.pts x\nt.tin m.msk\n"), CommandResult::Failed);
  EXPECT_THAT(Boxes(), ElementsAre("message warning: Open file none.txt error!",
                                   "message warning: Open file b.txt.log error!"));
  EXPECT_EQ(ReadFileBytes("t_x.log"), "");
}

TEST_F(CompareBatchTest, LogOfALineThatCanNotBeWrittenIsToldAndTheRestGoesOn) {
  std::filesystem::create_directory("t_x.log");
  WriteFileBytes("u.tin", SquareTinBytes());
  EXPECT_EQ(RunBatch("p.pts x\nt.tin m.msk\nu.tin m.msk\n"), CommandResult::Done);
  EXPECT_THAT(Boxes(), ElementsAre(StartsWith(kLoaded), "message warning: Write file t_x.log error!",
                                   StartsWith(kLoaded)));
  EXPECT_EQ(ReadFileBytes("b.txt.log"),
            std::string("t.tin, m.msk, ") + kNumbers + "u.tin, m.msk, " + kNumbers);
}

TEST_F(CompareBatchTest, LogDoesNotTakeThePlaceOfAnInput) {
  WriteFileBytes("t_x.log", ReadFileBytes("p.pts"));
  EXPECT_EQ(RunBatch("t_x.log x\nt.tin m.msk\n"), CommandResult::Done);
  EXPECT_THAT(Boxes(), ElementsAre(StartsWith(kLoaded), "message warning: Write file t_x.log error!"));
  EXPECT_EQ(ReadFileBytes("b.txt.log"), std::string("t.tin, m.msk, ") + kNumbers);
  EXPECT_EQ(ReadFileBytes("t_x.log"), ReadFileBytes("p.pts"));

  std::filesystem::copy("m.msk", "t_y.log");
  EXPECT_EQ(RunBatch("p.pts y\nt.tin t_y.log\n"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("t_y.log"), ReadFileBytes("m.msk"));
}

TEST_F(CompareBatchTest, SummaryDoesNotTakeThePlaceOfAnInput) {
  std::filesystem::copy("m.msk", "b.txt.log");
  EXPECT_EQ(RunBatch("p.pts x\nt.tin b.txt.log\nt.tin m.msk\n"), CommandResult::Failed);
  EXPECT_THAT(Boxes(), ElementsAre(StartsWith(kLoaded), StartsWith(kLoaded),
                                   "message warning: Write file b.txt.log error!"));
  EXPECT_EQ(ReadFileBytes("b.txt.log"), ReadFileBytes("m.msk"));
  EXPECT_THAT(ReadFileBytes("t_x.log"), StartsWith(kRows));
}

TEST_F(CompareBatchTest, SummaryOfAFullDiskIsTold) {
  std::filesystem::create_symlink("/dev/full", "b.txt.log");
  EXPECT_EQ(RunBatch("p.pts x\nt.tin m.msk\n"), CommandResult::Failed);
  EXPECT_THAT(Boxes(), ElementsAre(StartsWith(kLoaded), "message warning: Write file b.txt.log error!"));
  EXPECT_THAT(ReadFileBytes("t_x.log"), StartsWith(kRows));
}

}  // namespace
}  // namespace corvane
