// The graph of a view.

#include <limits>

#include "ShellFixture.h"

namespace corvane {
namespace {

using testing::ElementsAre;

constexpr Colour kRed{255, 0, 0};
constexpr Colour kBlue{0, 0, 255};

constexpr const char* kCanNotCreate =
    "message warning: Can not create the graph window! Please register NTGraph.ocx";

class GraphTest : public ShellTest {
 protected:
  GraphTest() { Start(); }

  std::span<const GraphElement> Elements() { return View().graph.GetElements(); }

  const std::vector<double> xs_ = {1.0, 2.0};
  const std::vector<double> ys_ = {10.0, 20.0};
};

TEST_F(GraphTest, IsMadeAtFirstUse) {
  EXPECT_FALSE(View().graph.IsCreated());
  EXPECT_EQ(View().PlotValues(-1, ys_, kRed, 1), 0);
  EXPECT_TRUE(View().graph.IsCreated());
  EXPECT_EQ(View().graph.GetTitle(), "Data Graph");
  EXPECT_THAT(ui.EventsWith("show-graph"), ElementsAre("show-graph: Data Graph"));
  EXPECT_THAT(ui.EventsWith("plot"), ElementsAre("plot: 0"));
}

TEST_F(GraphTest, HistogramClearsTheGraph) {
  View().PlotSeries(-1, xs_, ys_, kBlue, 2);
  View().PlotSeries(-1, xs_, ys_, kBlue, 2);
  EXPECT_EQ(View().PlotHistogram(0, std::vector<double>{0.5, 0.6, 0.7}, std::vector<std::int32_t>{3, 0, 7}),
            0);
  ASSERT_EQ(Elements().size(), 1u);
  EXPECT_THAT(Elements()[0].points,
              ElementsAre(GraphPoint{0.5, 3.0}, GraphPoint{0.6, 0.0}, GraphPoint{0.7, 7.0}));
  EXPECT_EQ(Elements()[0].colour, kRed);
  EXPECT_EQ(Elements()[0].style, GraphElement::Style::Bars);
}

TEST_F(GraphTest, HistogramOfNothingIsAnEmptyElement) {
  EXPECT_EQ(View().PlotHistogram(0, {}, {}), 0);
  ASSERT_EQ(Elements().size(), 1u);
  EXPECT_TRUE(Elements()[0].points.empty());
}

TEST_F(GraphTest, SeriesDoesNotClear) {
  View().PlotHistogram(0, xs_, std::vector<std::int32_t>{1, 2});
  EXPECT_EQ(View().PlotSeries(-1, xs_, ys_, kBlue, 3), 0);
  ASSERT_EQ(Elements().size(), 2u);
  EXPECT_THAT(Elements()[1].points, ElementsAre(GraphPoint{1, 10}, GraphPoint{2, 20}));
  EXPECT_EQ(Elements()[1].colour, kBlue);
  EXPECT_EQ(Elements()[1].width, 3);
  EXPECT_EQ(Elements()[1].style, GraphElement::Style::Line);
  EXPECT_THAT(ui.EventsWith("plot"), ElementsAre("plot: 0", "plot: 1"));
}

TEST_F(GraphTest, ElementOfMinusOneOrFromTheCountOnIsANewOne) {
  View().PlotValues(-1, ys_, kRed, 1);
  View().PlotValues(1, ys_, kRed, 1);
  View().PlotValues(100, ys_, kRed, 1);
  View().PlotValues(-7, ys_, kRed, 1);
  EXPECT_EQ(View().graph.GetElementCount(), 4);
}

TEST_F(GraphTest, ElementThatIsThereGetsThePointsInAddition) {
  View().PlotValues(-1, ys_, kRed, 1);
  View().PlotValues(-1, ys_, kRed, 1);
  View().PlotSeries(0, xs_, ys_, kBlue, 2);
  ASSERT_EQ(Elements().size(), 2u);
  EXPECT_EQ(Elements()[0].points.size(), 4u);
  EXPECT_EQ(Elements()[0].colour, kBlue);
  EXPECT_EQ(Elements()[1].points.size(), 2u);
}

TEST_F(GraphTest, PairsTakeDoublesAndIntegers) {
  View().PlotPairs(-1, std::vector<double>{636001.8, 0.5, 636000.0, 0.25}, kRed, 1);
  View().PlotPairs(-1, std::vector<std::int32_t>{3, -4, 1, 2, 9}, kRed, 1);
  EXPECT_THAT(Elements()[0].points, ElementsAre(GraphPoint{636001.8, 0.5}, GraphPoint{636000.0, 0.25}));
  EXPECT_THAT(Elements()[1].points, ElementsAre(GraphPoint{3, -4}, GraphPoint{1, 2}));
}

TEST_F(GraphTest, ValuesStandAtTheirIndex) {
  View().PlotValues(-1, std::vector<double>{5.0, 6.0, 5.5}, kRed, 1);
  EXPECT_THAT(Elements()[0].points, ElementsAre(GraphPoint{0, 5}, GraphPoint{1, 6}, GraphPoint{2, 5.5}));
}

TEST_F(GraphTest, OfTwoListsTheShorterOneCounts) {
  View().PlotSeries(-1, xs_, std::vector<double>{1.0}, kRed, 1);
  EXPECT_EQ(Elements()[0].points.size(), 1u);
}

TEST_F(GraphTest, FrontEndThatCanMakeNoneGivesTheOneMessage) {
  ui.canMakeGraphs = false;
  EXPECT_EQ(View().PlotHistogram(0, xs_, std::vector<std::int32_t>{1, 2}), -1);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre(kCanNotCreate));
  EXPECT_FALSE(View().graph.IsCreated());
  EXPECT_EQ(View().graph.GetElementCount(), 0);
  EXPECT_EQ(View().PlotSeries(-1, xs_, ys_, kRed, 1), -1);
  EXPECT_EQ(View().PlotPairs(-1, xs_, kRed, 1), -1);
  EXPECT_EQ(View().PlotValues(-1, ys_, kRed, 1), -1);
  EXPECT_EQ(ui.EventsWith("message").size(), 4u);
  EXPECT_TRUE(ui.EventsWith("plot").empty());
  ui.canMakeGraphs = true;
  EXPECT_EQ(View().PlotValues(-1, ys_, kRed, 1), 0) << "the next use tries again";
}

TEST_F(GraphTest, FollowsTheClientArea) {
  View().OnSize({300, 200});
  EXPECT_TRUE(ui.EventsWith("resize-graph").empty()) << "there is none yet";
  View().PlotValues(-1, ys_, kRed, 1);
  EXPECT_EQ(View().graph.GetSize(), (PixelSize{300, 200}));
  View().OnSize({310, 220});
  EXPECT_EQ(View().graph.GetSize(), (PixelSize{310, 220}));
  EXPECT_THAT(ui.EventsWith("resize-graph"), ElementsAre("resize-graph: 310 x 220"));
}

TEST_F(GraphTest, HasASizeWithoutAWindow) {
  View().PlotValues(-1, ys_, kRed, 1);
  EXPECT_EQ(View().graph.GetSize(), (PixelSize{960, 640}));
}

TEST_F(GraphTest, EachWindowHasItsOwn) {
  CCorvaneView& first = View();
  first.PlotValues(-1, ys_, kRed, 1);
  auto& second = static_cast<CCorvaneView&>(first.GetDocument().AddView());
  EXPECT_FALSE(second.graph.IsCreated());
  second.PlotValues(-1, ys_, kRed, 1);
  second.PlotValues(-1, ys_, kRed, 1);
  EXPECT_EQ(first.graph.GetElementCount(), 1);
  EXPECT_EQ(second.graph.GetElementCount(), 2);
}

TEST(NTGraph, PointWithoutAnElementMakesOne) {
  TestFrontEnd ui;
  CNTGraph graph;
  graph.PlotXY(1, 2);
  graph.SetElementWidth(3);
  ASSERT_EQ(graph.GetElementCount(), 1);
  EXPECT_EQ(graph.GetElements()[0].width, 3);
  graph.ClearGraph();
  graph.Redraw();
  EXPECT_EQ(graph.GetElementCount(), 0);
  EXPECT_THAT(ui.EventsWith("plot"), ElementsAre("plot: -1"));
}

}  // namespace
}  // namespace corvane
