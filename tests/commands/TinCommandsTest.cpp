// The filters and segmentations on the TIN menu, from prompts to files.

#include "TIN/TINPoints.h"
#include "commands/CommandsFixture.h"
#include "shell/CommandShapes.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kNoTin = "message warning: No TIN Read! Please load a TIN first!";
constexpr const char* kTotal = "message message: Total hrs: 00 mins: 00, secs: 00";

// A spike of height `z` at (0, 0) with id 0, and four neighbours around it, 10 away.
std::string TentBytes(double z) {
  return TinBytes(
      {{0, 0, 0, z, 1.0}, {1, 10, 0, 1, 1.0}, {2, 0, 10, 2, 1.0}, {3, -10, 0, 3, 1.0}, {4, 0, -10, 4, 1.0}},
      {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 1}});
}

// 5 x 5 points, 10 apart, with these heights.
std::string MeshBytes(double (*height)(int i)) {
  std::vector<PointRecord> points;
  for (int i = 0; i < 25; ++i) points.push_back({i, i % 5 * 10.0, i / 5 * 10.0, height(i), 1.0});
  std::vector<std::vector<std::size_t>> triangles;
  for (std::size_t i = 0; i < 19; ++i) {
    if (i % 5 == 4) continue;
    triangles.push_back({i, i + 1, i + 6});
    triangles.push_back({i, i + 6, i + 5});
  }
  return TinBytes(points, triangles);
}

// Level but for the middle one.
std::string MastBytes() {
  return MeshBytes([](int i) { return i == 12 ? 8.0 : 1.0; });
}

class TinCommandsTest : public CommandsTest {
 protected:
  TIN& Tin() { return Document().GetTIN(); }

  std::vector<double> Heights() {
    std::vector<double> heights;
    for (const TINVertex& vertex : Tin().vertices) heights.push_back(vertex.z);
    return heights;
  }
};

TEST_F(TinCommandsTest, CommandsOnALoadedTinWarnWithoutOne) {
  for (const char* name : {"Slope Filter", "Smooth", "TIN Segmentation", "TIN Classification",
                           "TIN Points Z Histgram", "TIN Differential", "Surface Reduction"}) {
    ui.events.clear();
    EXPECT_EQ(Run(name), CommandResult::Failed) << name;
    EXPECT_THAT(ui.EventsWith("message"), ElementsAre(kNoTin));
    EXPECT_THAT(ui.EventsWith("form"), IsEmpty());
    EXPECT_THAT(ui.EventsWith("value"), IsEmpty());
  }
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(TinCommandsTest, SlopeFilterAsksFiltersAndMarksTheDocument) {
  OpenTin("a.tin", TentBytes(40.0));
  ui.forms = {[](Form&) { return true; }};
  EXPECT_EQ(Run("Slope Filter"), CommandResult::Done);
  ASSERT_EQ(ui.shownForms.size(), 1u);
  EXPECT_EQ(ui.shownForms[0].GetReal("maxSlope"), 30.0);
  EXPECT_EQ(ui.shownForms[0].GetReal("minElevation"), 1.0);
  EXPECT_EQ(ui.shownForms[0].GetReal("pointsInterval"), 1.0);
  EXPECT_EQ(Heights(), (std::vector<double>{2.5, 1.0, 2.0, 3.0, 4.0}));
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: Vertices moved, pass by pass: 1, 0."));
  EXPECT_TRUE(Document().IsModified());
  EXPECT_THAT(ui.EventsWith("repaint"), testing::Not(IsEmpty()));
  EXPECT_EQ(ui.waitDepth, 0);
  EXPECT_EQ(Files(), std::vector<std::string>{"a.tin"});
  EXPECT_EQ(Run("File > Save"), CommandResult::Done);
  EXPECT_EQ(HeightsIn("a_filted.pts"), Heights());
}

TEST_F(TinCommandsTest, SlopeFilterTakesTheIntervalForThePointsFile) {
  OpenTin("a.tin", TentBytes(40.0));
  ui.forms = {[](Form& form) {
    form.Find("pointsInterval")->value = 2.5;
    return true;
  }};
  Run("Slope Filter");
  EXPECT_EQ(Tin().spacingX, 2.5);
  EXPECT_EQ(Tin().spacingY, 2.5);
}

TEST_F(TinCommandsTest, SlopeFilterEndsAfterThreePasses) {
  OpenTin("a.tin", MeshBytes([](int i) { return i * 37 % 11 * 1.0; }));
  ui.forms = {[](Form& form) {
    form.Find("maxSlope")->value = 0.5;
    form.Find("minElevation")->value = 0.001;
    return true;
  }};
  TIN plain;
  plain.ReadTIN("a.tin");
  plain.StoreTriangle("a.tin");
  for (int pass = 0; pass < 3; ++pass) ASSERT_GT(plain.SlopeFilter(0.5, 0.001), 0);
  Run("Slope Filter");
  for (std::size_t v = 0; v < 25; ++v) EXPECT_EQ(Heights()[v], plain.vertices[v].z);
  EXPECT_GT(plain.SlopeFilter(0.5, 0.001), 0);  // a fourth one would have changed something
}

TEST_F(TinCommandsTest, CancelOfTheSlopeFilterChangesNothing) {
  OpenTin("a.tin", TentBytes(40.0));
  EXPECT_EQ(Run("Slope Filter"), CommandResult::Cancelled);
  EXPECT_EQ(Heights().front(), 40.0);
  EXPECT_EQ(Tin().spacingX, 1.0);
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(TinCommandsTest, SmoothAsksNothing) {
  OpenTin("a.tin", TentBytes(10.0));
  EXPECT_EQ(Run("Smooth"), CommandResult::Done);
  EXPECT_THAT(ui.shownForms, IsEmpty());
  EXPECT_LT(Heights().front(), 10.0);
  EXPECT_TRUE(Document().IsModified());
}

TEST_F(TinCommandsTest, FilterBatchAsksParametersFirstAndGoesOnAfterAMissingFile) {
  WriteFileBytes("a.tin", TentBytes(40.0));
  WriteFileBytes("b.tin", MastBytes());
  WriteFileBytes("batch.txt", "a.tin a_out.tin\nnone.tin none_out.tin\nb.tin b_out.tin\n");
  ui.forms = {[](Form& form) {
    form.Find("maxSlope")->value = 20.0;
    return true;
  }};
  ui.files = {{"batch.txt"}};
  EXPECT_EQ(Run("Filter (Batch)"), CommandResult::Done);
  EXPECT_EQ(ui.events[1], "form: ParamInput");
  EXPECT_TRUE(ui.choosers.at(0).mustExist);
  EXPECT_THAT(ui.EventsWith("message warning"), ElementsAre("message warning: Open file none.tin error!"));
  EXPECT_EQ(ui.EventsWith("message information").size(), 2u);  // a statistics box a line
  EXPECT_EQ(Files(), (std::vector<std::string>{"a.tin", "a_out.tin", "b.tin", "b_out.tin", "batch.txt"}));
  EXPECT_EQ(ui.waitDepth, 0);

  TIN plain;
  ASSERT_EQ(plain.ReadTIN("a.tin"), 0);
  ASSERT_EQ(plain.StoreTriangle("a.tin"), 0);
  for (int round = 0; round < 3; ++round) {
    for (int pass = 0; pass < 3 && plain.SlopeFilter(20.0, 1.0) > 0; ++pass) {
    }
    plain.Smooth();
  }
  plain.WriteCompactTIN("expected.tin");
  EXPECT_EQ(ReadFileBytes("a_out.tin"), ReadFileBytes("expected.tin"));
}

TEST_F(TinCommandsTest, FilterBatchReportsAnOutputThatCanNotBeWritten) {
  WriteFileBytes("a.tin", TentBytes(40.0));
  WriteFileBytes("batch.txt", "a.tin no/such/folder.tin\na.tin b.tin\n");
  ui.forms = {[](Form&) { return true; }};
  ui.files = {{"batch.txt"}};
  EXPECT_EQ(Run("Filter (Batch)"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("message warning"),
              ElementsAre("message warning: Write file no/such/folder.tin error!"));
  EXPECT_NE(ReadFileBytes("b.tin"), "");
}

TEST_F(TinCommandsTest, FilterBatchEndsWithCancelOrAMissingBatch) {
  EXPECT_EQ(Run("Filter (Batch)"), CommandResult::Cancelled);
  EXPECT_THAT(ui.choosers, IsEmpty());
  ui.forms = {[](Form&) { return true; }, [](Form&) { return true; }};
  EXPECT_EQ(Run("Filter (Batch)"), CommandResult::Cancelled);
  ui.files = {{"none.txt"}};
  EXPECT_EQ(Run("Filter (Batch)"), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Open file none.txt error!"));
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(TinCommandsTest, SegmentationWritesGroundAndObjects) {
  OpenTin("m.tin", MastBytes());
  ui.values = {50000.0};
  EXPECT_EQ(Run("TIN Segmentation"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("value"), ElementsAre("value: Please input a value. 50000"));
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre(kTotal));
  // the mast, and the pits around it: level ground beside a step
  EXPECT_THAT(HeightsIn("m_NonGrd.pts"), testing::UnorderedElementsAre(8.0, 1.0, 1.0, 1.0, 1.0, 1.0, 1.0));
  EXPECT_EQ(HeightsIn("m_Grd.pts"), std::vector<double>(18, 1.0));
  EXPECT_FALSE(Document().IsModified());
  EXPECT_THAT(ui.EventsWith("repaint"), testing::Not(IsEmpty()));
  EXPECT_EQ(Files(), (std::vector<std::string>{"m.tin", "m_Grd.pts", "m_NonGrd.pts"}));
}

TEST_F(TinCommandsTest, SegmentationKeepsItsMarksForTheNextRun) {
  OpenTin("m.tin", MastBytes());
  ui.values = {50000.0, 50000.0};
  Run("TIN Segmentation");
  for (TINVertex& vertex : Tin().vertices) vertex.z = 1.0;  // nothing is left to find
  Run("TIN Segmentation");
  EXPECT_EQ(HeightsIn("m_NonGrd.pts").size(), 7u);
  EXPECT_EQ(Tin().groups.size(), 1u);
}

TEST_F(TinCommandsTest, CancelOfASegmentationWritesNothing) {
  OpenTin("m.tin", MastBytes());
  EXPECT_EQ(Run("TIN Segmentation"), CommandResult::Cancelled);
  EXPECT_EQ(Run("Surface Reduction"), CommandResult::Cancelled);
  EXPECT_TRUE(Tin().groups.empty());
  EXPECT_EQ(Files(), std::vector<std::string>{"m.tin"});
}

TEST_F(TinCommandsTest, SegmentationReportsWhatCanNotBeWritten) {
  OpenTin("m.tin", MastBytes());
  std::filesystem::create_directory("m_Grd.pts");
  ui.values = {50000.0};
  EXPECT_EQ(Run("TIN Segmentation"), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message warning"), ElementsAre("message warning: Write file m_Grd.pts error!"));
  EXPECT_EQ(HeightsIn("m_NonGrd.pts").size(), 7u);
}

TEST_F(TinCommandsTest, SurfaceReductionWritesGroundAndObjects) {
  OpenTin("m.tin", MastBytes());
  ui.values = {1000.0};
  EXPECT_EQ(Run("Surface Reduction"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("value"), ElementsAre("value: Please input a value. 10000"));
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre(kTotal));
  EXPECT_EQ(HeightsIn("m_NonGrd.pts"), std::vector<double>{8.0});
  EXPECT_EQ(HeightsIn("m_Grd.pts").size(), 24u);
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(TinCommandsTest, SurfaceReductionOfAbsurdSlopesFails) {
  OpenTin("t.tin", MeshBytes([](int i) { return i == 12 ? 1e12 : 1.0; }));
  ui.values = {10000.0};
  EXPECT_EQ(Run("Surface Reduction"), CommandResult::Failed);
  EXPECT_THAT(
      ui.EventsWith("message"),
      ElementsAre(kTotal,
                  "message warning: Surface Reduction: no objects were looked for. The slopes reach too "
                  "far for a histogram, or memory ran out."));
  EXPECT_EQ(HeightsIn("t_Grd.pts").size(), 25u);
}

TEST_F(TinCommandsTest, ClassificationOnlyRedraws) {
  OpenTin("m.tin", MastBytes());
  EXPECT_EQ(Run("TIN Classification"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("message"), IsEmpty());
  EXPECT_THAT(ui.EventsWith("repaint"), testing::Not(IsEmpty()));
  EXPECT_EQ(Files(), std::vector<std::string>{"m.tin"});
  EXPECT_FALSE(Document().IsModified());
}

TEST_F(TinCommandsTest, DifferentialWritesTheSameTriangles) {
  OpenTin("m.tin", MastBytes());
  EXPECT_EQ(Run("TIN Differential"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("m_Diff.tin"), MastBytes());
  EXPECT_EQ(Tin().vertexSlopes.size(), 25u);
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(TinCommandsTest, DifferentialReportsWhatCanNotBeWritten) {
  OpenTin("m.tin", MastBytes());
  std::filesystem::create_directory("m_Diff.tin");
  EXPECT_EQ(Run("TIN Differential"), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Write file m_Diff.tin error!"));
}

TEST_F(TinCommandsTest, ZHistogramGoesToTheGraph) {
  OpenTin("m.tin", MastBytes());
  Tin().vertices[0].z = 0.5;
  EXPECT_EQ(Run("TIN Points Z Histgram"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("show-graph"), ElementsAre("show-graph: Data Graph"));
  EXPECT_THAT(ui.EventsWith("plot"), ElementsAre("plot: 0"));
  EXPECT_THAT(ui.EventsWith("message"), IsEmpty());
  const auto& points = app.GetMainFrame().GetTinView()->graph.GetElements()[0].points;
  ASSERT_EQ(points.size(), 76u);  // from 0.5 to 8 in steps of 0.1
  EXPECT_EQ(points.front(), (GraphPoint{0.5, 1.0}));
  EXPECT_EQ(points.back().y, 1.0);
  EXPECT_EQ(Tin().extent.minZ, 0.5);
}

TEST_F(TinCommandsTest, ZHistogramOfAbsurdHeightsFails) {
  OpenTin("t.tin", TentBytes(1e9));
  EXPECT_EQ(Run("TIN Points Z Histgram"), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: HistogramThresh:Histogram has error!"));
  EXPECT_THAT(ui.EventsWith("plot"), IsEmpty());
}

TEST_F(TinCommandsTest, GraphThatCanNotBeMadeIsReported) {
  OpenTin("m.tin", MastBytes());
  ui.canMakeGraphs = false;
  EXPECT_EQ(Run("TIN Points Z Histgram"), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message"),
              ElementsAre("message warning: Can not create the graph window! Please register NTGraph.ocx"));
}

TEST_F(TinCommandsTest, RawTinIsStoredByTheGuardAndSavedAsItIs) {
  WriteFileBytes("m.tin", MastBytes());
  ASSERT_EQ(Tin().ReadTIN("m.tin"), 0);
  Document().SetPathName("copy.tin", false);
  EXPECT_NE(Run("File > Save"), CommandResult::Done);  // the raw TIN has no points yet
  EXPECT_EQ(ReadFileBytes("copy.tin"), MastBytes());
  EXPECT_EQ(Run("TIN Classification"), CommandResult::Done);
  EXPECT_TRUE(Tin().IsStored());
}

TEST_F(TinCommandsTest, RawTinThatCanNotBeStoredCountsAsNone) {
  WriteFileBytes("m.tin", TinBytes({{0, 1, 1, 1, 1.0}, {1, 1, 1, 2, 1.0}, {2, 1, 1, 3, 1.0}}, {{0, 1, 2}}));
  ASSERT_EQ(Tin().ReadTIN("m.tin"), 0);
  ui.events.clear();
  EXPECT_EQ(Run("Smooth"), CommandResult::Failed);
  EXPECT_THAT(ui.EventsWith("message warning"), ElementsAre(kNoTin));
}

TEST_F(TinCommandsTest, SaveOfATinAtOnePlaceLosesNothing) {
  const std::string bytes = TinBytes({{0, 1, 1, 1, 1.0}, {1, 1, 1, 2, 1.0}, {2, 1, 1, 3, 1.0}}, {{0, 1, 2}});
  OpenTin("m.tin", bytes);
  EXPECT_EQ(Run("Smooth"), CommandResult::Failed);
  EXPECT_EQ(Run("File > Save"), CommandResult::Failed);  // there are no points for "m_filted.pts"
  EXPECT_EQ(ReadFileBytes("m.tin"), bytes);
}

TEST_F(TinCommandsTest, FilterBatchNamesATinAtOnePlace) {
  WriteFileBytes("m.tin", TinBytes({{0, 1, 1, 1, 1.0}, {1, 1, 1, 2, 1.0}, {2, 1, 1, 3, 1.0}}, {{0, 1, 2}}));
  WriteFileBytes("empty.tin", std::string(4, '\0'));
  WriteFileBytes("batch.txt", "m.tin m_out.tin\nempty.tin empty_out.tin\n");
  ui.forms = {[](Form&) { return true; }};
  ui.files = {{"batch.txt"}};
  EXPECT_EQ(Run("Filter (Batch)"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("message warning"),
              ElementsAre("message warning: m.tin: All vertices are at one place, so it is left out."));
  EXPECT_EQ(ReadFileBytes("m_out.tin"), "");
  EXPECT_EQ(ReadFileBytes("empty_out.tin"), std::string(4, '\0'));
}

}  // namespace
}  // namespace corvane
