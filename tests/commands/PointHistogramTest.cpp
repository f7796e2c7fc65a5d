// The histogram of point values, end to end.

#include "commands/PointUtilitiesFixture.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(PointUtilitiesTest, HistogramIsPlotted) {
  WriteFileBytes("v.txt", "1 0 0 5 0.25\n2 1 0 5 0.5\n3 0 1 5 1.25\n4 1 1 5 0.25\n");
  ui.files = {{"v.txt"}};
  ui.values = {0.5};
  EXPECT_EQ(Run("Point Value Histgram"), CommandResult::Done);
  ASSERT_EQ(ui.choosers.size(), 1u);
  ExpectChooser(0, kOpen, "Points Files (*.txt)|*.txt|Log Files (*.log)|*.log|All Files (*.*)|*.*|", "");
  EXPECT_THAT(ui.EventsWith("value"), ElementsAre("value: Please input the histogram bin interval 0.05"));
  const auto elements = app.GetMainFrame().GetTinView()->graph.GetElements();
  ASSERT_EQ(elements.size(), 1u);
  EXPECT_THAT(elements[0].points, ElementsAre(GraphPoint{0.25, 3}, GraphPoint{0.75, 0}, GraphPoint{1.25, 1}));
  EXPECT_THAT(ui.EventsWith("show-graph"), ElementsAre("show-graph: Data Graph"));
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(PointUtilitiesTest, HistogramGoesOnAfterCancelWithTheIntervalShown) {
  WriteFileBytes("v.txt", "1 0 0 0\n2 1 1 0.125\n");
  ui.files = {{"v.txt"}};
  EXPECT_EQ(Run("Point Value Histgram"), CommandResult::Done);
  const auto elements = app.GetMainFrame().GetTinView()->graph.GetElements();
  ASSERT_EQ(elements.size(), 1u);
  EXPECT_THAT(elements[0].points, ElementsAre(GraphPoint{0, 1}, GraphPoint{0.05, 0}, GraphPoint{0.1, 1}));
}

TEST_F(PointUtilitiesTest, HistogramOfAnEmptyListEndsSilently) {
  for (const char* text : {"", "id x y value\n", "1 2\n3 4\n"}) {
    WriteFileBytes("v.txt", text);
    ui.files = {{"v.txt"}};
    EXPECT_EQ(Run("Point Value Histgram"), CommandResult::Done);
  }
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(ui.EventsWith("value"), IsEmpty());
  EXPECT_THAT(ui.EventsWith("show-graph"), IsEmpty());
}

TEST_F(PointUtilitiesTest, HistogramCancelledAtTheChooserAsksNothing) {
  EXPECT_EQ(Run("Point Value Histgram"), CommandResult::Cancelled);
  EXPECT_THAT(ui.EventsWith("value"), IsEmpty());
}

TEST_F(PointUtilitiesTest, HistogramTellsWhatItCanNotOpen) {
  ExpectFailure("Point Value Histgram", {{"none.txt"}}, {"message warning: Open point file none.txt error!"});
}

TEST_F(PointUtilitiesTest, HistogramWarnsOfPointsThatMakeNoGridAndGoesOn) {
  WriteFileBytes("v.txt", "1 nan 0 0.5\n2 1 1 0.5\n");
  ui.files = {{"v.txt"}};
  EXPECT_EQ(Run("Point Value Histgram"), CommandResult::Done);
  EXPECT_THAT(Messages(), ElementsAre(kExtensionBox));
  EXPECT_EQ(app.GetMainFrame().GetTinView()->graph.GetElementCount(), 1);
}

TEST_F(PointUtilitiesTest, HistogramTellsOfLinesWithoutAnId) {
  WriteFileBytes("v.txt", "0.5 1.5 5 0.25\n1.5 2.5 6 0.5\n");
  ui.files = {{"v.txt"}};
  EXPECT_EQ(Run("Point Value Histgram"), CommandResult::Done);
  EXPECT_THAT(ui.EventsWith("status"),
              testing::Contains(testing::HasSubstr(
                  "The first field of line 1 is no whole number; records are id, x, y, z, value.")));
}

TEST_F(PointUtilitiesTest, HistogramOfMoreThanTenMillionBinsFails) {
  WriteFileBytes("v.txt", "1 0 0 0\n2 1 1 10000000\n");
  ui.values = {1.0};
  ExpectFailure("Point Value Histgram", {{"v.txt"}},
                {"message warning: HistogramThresh:Histogram has error!"});
}

TEST_F(PointUtilitiesTest, HistogramRefusesAbsurdBins) {
  WriteFileBytes("v.txt", "1 0 0 0\n2 1 1 100\n");
  for (const double bin : {0.0, -1.0, 1e-12, HUGE_VAL, kNaN}) {
    ui.values = {bin};
    ExpectFailure("Point Value Histgram", {{"v.txt"}},
                  {"message warning: HistogramThresh:Histogram has error!"});
  }
  WriteFileBytes("v.txt", "1 0 0 0\n2 1 1 inf\n");
  ui.values = {1.0};
  ExpectFailure("Point Value Histgram", {{"v.txt"}},
                {"message warning: HistogramThresh:Histogram has error!"});
  EXPECT_THAT(ui.EventsWith("show-graph"), IsEmpty());
}

}  // namespace
}  // namespace corvane
