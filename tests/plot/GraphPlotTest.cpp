#include "plot/GraphPlot.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <cmath>
#include <limits>

#include "support/GraphData.h"

namespace corvane {
namespace {

const QRgb kRedPixel = qRgb(255, 0, 0);
const QRgb kBluePixel = qRgb(0, 0, 255);
const QRgb kWhitePixel = qRgb(255, 255, 255);

// A plot of 400 x 300 pixels, painted.
class Plotted {
 public:
  explicit Plotted(const GraphData& graph) {
    plot.resize(400, 300);
    plot.Plot(graph, -1);
    Paint();
  }

  void Paint() {
    plot.grab();  // lays the axes out
    QApplication::processEvents();
    image = plot.grab().toImage().convertToFormat(QImage::Format_RGB32);
  }

  // The pixel at a point's place, moved by some pixels.
  QRgb At(double x, double y, QPoint by = {}) const {
    return image.pixel(plot.PixelOf({x, y}).toPoint() + by);
  }

  // Whether a line of that colour goes through a point; where it is not smoothed, it may be a pixel off.
  bool HasLine(QRgb colour, double x, double y) const {
    for (const QPoint by : {QPoint(0, 0), QPoint(-1, 0), QPoint(1, 0), QPoint(0, -1), QPoint(0, 1)}) {
      if (At(x, y, by) == colour) return true;
    }
    return false;
  }

  int Count(QRgb colour) const {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) count += image.pixel(x, y) == colour;
    }
    return count;
  }

  GraphPlot plot;
  QImage image;
};

void ExpectRange(const GraphPlot& plot, const GraphRange& wanted) {
  const GraphRange range = plot.GetRange();
  EXPECT_NEAR(range.minX, wanted.minX, 1e-9 * std::abs(wanted.maxX));
  EXPECT_NEAR(range.maxX, wanted.maxX, 1e-9 * std::abs(wanted.maxX));
  EXPECT_NEAR(range.minY, wanted.minY, 1e-9 * std::abs(wanted.maxY));
  EXPECT_NEAR(range.maxY, wanted.maxY, 1e-9 * std::abs(wanted.maxY));
}

TEST(GraphPlot, DrawsCurvesInTheirColoursOnWhite) {
  const Plotted plotted(GraphData({{{{0, 0}, {10, 0}}, kRed, 3}, {{{0, 7}, {10, 7}}, kBlue, 3}}));
  EXPECT_EQ(plotted.At(3.3, 0), kRedPixel);
  EXPECT_EQ(plotted.At(3.3, 7), kBluePixel);
  EXPECT_EQ(plotted.At(3.3, 3.3), kWhitePixel);
  EXPECT_EQ(plotted.image.pixel(1, 1), kWhitePixel);
}

TEST(GraphPlot, WidthIsInPixels) {
  const Plotted thin(GraphData({{{{0, 0}, {10, 0}}, kRed, 1}}));
  const Plotted thick(GraphData({{{{0, 0}, {10, 0}}, kRed, 5}}));
  EXPECT_EQ(thick.At(5, 0, {0, 2}), kRedPixel);
  EXPECT_EQ(thick.At(5, 0, {0, -2}), kRedPixel);
  EXPECT_NE(thin.At(5, 0, {0, 2}), kRedPixel);
  EXPECT_NE(thick.At(5, 0, {0, 4}), kRedPixel);
}

TEST(GraphPlot, LaterElementsStandInFront) {
  const std::vector<GraphPoint> across = {{0, 0}, {10, 10}};
  // The second is no ascending one, which takes another way through the drawing.
  const std::vector<GraphPoint> back = {{10, 10}, {0, 0}};
  EXPECT_EQ(Plotted(GraphData({{across, kRed, 3}, {back, kBlue, 3}})).At(4, 4), kBluePixel);
  EXPECT_EQ(Plotted(GraphData({{back, kBlue, 3}, {across, kRed, 3}})).At(4, 4), kRedPixel);
}

TEST(GraphPlot, ElementThatIsPlottedAgainKeepsItsPlace) {
  GraphData graph({{{{0, 0}, {10, 10}}, kRed, 3}, {{{0, 0}, {10, 10}}, kBlue, 3}});
  Plotted plotted(graph);
  graph.elements[0].points = {{10, 10}, {0, 0}, {10, 0}};
  plotted.plot.Plot(graph, 0);
  plotted.Paint();
  EXPECT_EQ(plotted.At(4, 4), kBluePixel);
  EXPECT_EQ(plotted.At(4, 0), kRedPixel);
}

TEST(GraphPlot, ClosedPolygonsKeepTheOrderOfTheirPoints) {
  const Plotted plotted(GraphData({{{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}, kRed, 3}}));
  for (const auto& [x, y] : {std::pair(5, 0), std::pair(10, 5), std::pair(5, 10), std::pair(0, 5)}) {
    EXPECT_EQ(plotted.At(x, y), kRedPixel) << x << ", " << y;
  }
  EXPECT_EQ(plotted.At(5.3, 5.3), kWhitePixel) << "no line through the middle";
}

TEST(GraphPlot, BarsStandBetweenNeighboursFromZeroUp) {
  const Plotted plotted(GraphData({{{{0, 10}, {1, 4}, {2, 8}}, kRed, 1, GraphElement::Style::Bars}}));
  EXPECT_TRUE(plotted.HasLine(kRedPixel, 0.5, 10)) << "top of the first bar";
  EXPECT_TRUE(plotted.HasLine(kRedPixel, 0, 9)) << "its left side";
  EXPECT_TRUE(plotted.HasLine(kRedPixel, 1, 9)) << "its right side";
  EXPECT_TRUE(plotted.HasLine(kRedPixel, 3, 6)) << "the last bar is as wide as the others";
  EXPECT_TRUE(plotted.HasLine(kRedPixel, 1.5, 4));
  EXPECT_EQ(plotted.At(1.6, 9), kWhitePixel) << "above the second bar";
  const QRgb inside = plotted.At(0.6, 3);
  EXPECT_EQ(qRed(inside), 255);
  EXPECT_LT(qGreen(inside), 250);
  ExpectRange(plotted.plot, {-0.06, 3.06, 0.0, 10.5});
}

// Many narrow bars, one of them far higher than its neighbours.
TEST(GraphPlot, NarrowBarsHaveNoSpikesAboveThem) {
  for (const int width : {1, 3}) {
    GraphElement bars = {{}, kRed, width, GraphElement::Style::Bars};
    for (int i = 0; i < 600; ++i) bars.points.push_back({i * 1.0, i == 300 ? 1000.0 : 100.0 + i % 7 * 50.0});
    const Plotted plotted{GraphData({bars})};
    const QImage image = plotted.plot.DrawPicture({400, 300}, 2.0);
    const double top = 2.0 * plotted.plot.PixelOf({300, 1000}).y();
    int highest = image.height();
    for (int y = image.height() - 1; y >= 0; --y) {
      for (int x = 0; x < image.width(); ++x) {
        if (image.pixel(x, y) == kRedPixel) highest = y;
      }
    }
    EXPECT_GE(highest, top - 2.0 * width);
    EXPECT_LE(highest, top + 2.0 * width);
  }
}

TEST(GraphPlot, BarsLeaveGapsOpen) {
  const Plotted plotted(GraphData({{{{0, 10}, {1, 10}, {8, 10}}, kRed, 1, GraphElement::Style::Bars}}));
  EXPECT_TRUE(plotted.HasLine(kRedPixel, 1.5, 10));
  EXPECT_EQ(plotted.At(5.1, 9.3), kWhitePixel);
  EXPECT_TRUE(plotted.HasLine(kRedPixel, 8.5, 10));
}

TEST(GraphPlot, BarsOfUnorderedPointsAreTheSame) {
  const auto kBars = GraphElement::Style::Bars;
  const Plotted ordered(GraphData({{{{0, 10}, {1, 4}, {2, 8}}, kRed, 1, kBars}}));
  const Plotted shuffled(GraphData({{{{2, 8}, {0, 10}, {1, 4}}, kRed, 1, kBars}}));
  EXPECT_EQ(ordered.image, shuffled.image);
  const Plotted holed(GraphData({{{{2, 8}, {NAN, 5}, {0, 10}, {1, 4}}, kRed, 1, kBars}}));
  EXPECT_EQ(ordered.image, holed.image) << "also where a point is left out";
}

TEST(GraphPlot, ManyBarsAreSteps) {
  GraphElement bars = {{}, kRed, 1, GraphElement::Style::Bars};
  for (int i = 0; i < 30000; ++i) bars.points.push_back({i * 1.0, i < 15000 ? 10.0 : 5.0});
  const Plotted plotted{GraphData({bars})};
  EXPECT_TRUE(plotted.HasLine(kRedPixel, 7000, 10));
  EXPECT_TRUE(plotted.HasLine(kRedPixel, 22000, 5));
  EXPECT_EQ(plotted.At(22100, 7), kWhitePixel);
  EXPECT_LT(qGreen(plotted.At(7100, 3)), 250);
}

TEST(GraphPlot, AxesFitAllCurvesWithRoomAround) {
  const Plotted plotted(GraphData({{{{100, 0}, {150, 30}}, kRed}, {{{200, 40}, {120, -10}}, kBlue}}));
  ExpectRange(plotted.plot, {98, 202, -12.5, 42.5});  // 2 % of 100, 5 % of 50
}

TEST(GraphPlot, EmptyGraphHasAxes) {
  const Plotted plotted{GraphData()};
  ExpectRange(plotted.plot, {0, 1, 0, 1});
  EXPECT_LT(plotted.Count(kWhitePixel), 400 * 300 - 1000);
}

TEST(GraphPlot, OnePointShowsAsADotInASaneRange) {
  const Plotted plotted(GraphData({{{{636001.8, 17.25}}, kBlue}}));
  EXPECT_EQ(plotted.At(636001.8, 17.25), kBluePixel);
  const GraphRange range = plotted.plot.GetRange();
  EXPECT_NEAR(range.minX, 636001.8 - 0.636, 1e-3);
  EXPECT_NEAR(range.maxX, 636001.8 + 0.636, 1e-3);
  EXPECT_EQ(range.minY, 16.75);
  EXPECT_EQ(range.maxY, 17.75);
}

TEST(GraphPlot, ConstantCurveShowsInASaneRange) {
  const Plotted plotted(GraphData({{{{0, 5}, {10, 5}}, kBlue, 3}}));
  EXPECT_EQ(plotted.At(5, 5), kBluePixel);
  ExpectRange(plotted.plot, {-0.2, 10.2, 4.5, 5.5});
}

TEST(GraphPlot, PointsThatAreNotFiniteAreLeftOut) {
  const double infinity = std::numeric_limits<double>::infinity();
  const Plotted plotted(
      GraphData({{{{0, 0}, {NAN, 3}, {5, NAN}, {infinity, 2}, {6, -infinity}, {7, 1e200}, {10, 10}}, kRed, 3},
                 {{{NAN, NAN}}, kBlue},
                 {{{1, NAN}}, kBlue, 1, GraphElement::Style::Bars}}));
  EXPECT_EQ(plotted.At(4, 4), kRedPixel) << "the line runs on to the next point";
  ExpectRange(plotted.plot, {-0.2, 10.2, -0.5, 10.5});
}

TEST(GraphPlot, ClearedGraphLosesItsCurves) {
  GraphData graph({{{{0, 0}, {10, 10}}, kRed, 3}, {{{0, 5}, {10, 5}}, kBlue, 3}});
  Plotted plotted(graph);
  graph.elements = {{{{0, 0}, {1, 1}}, kRed, 3}};
  plotted.plot.Plot(graph, 0);
  plotted.Paint();
  EXPECT_EQ(plotted.Count(kBluePixel), 0);
  ExpectRange(plotted.plot, {-0.02, 1.02, -0.05, 1.05});
  graph.elements.clear();
  plotted.plot.Plot(graph, -1);
  plotted.Paint();
  EXPECT_EQ(plotted.Count(kRedPixel), 0);
}

TEST(GraphPlot, RangesThatCanNotBeShownAreNotTaken) {
  Plotted plotted(GraphData({{{{0, 0}, {10, 10}}, kRed}}));
  plotted.plot.SetRange({1, 2, 3, 4});
  for (const GraphRange& wrong :
       {GraphRange{1, 1, 3, 4}, GraphRange{1, 1 + 1e-14, 3, 4}, GraphRange{-1e300, 1e300, 3, 4},
        GraphRange{1, 2, 4, 3}, GraphRange{1, 2, NAN, 4}}) {
    plotted.plot.SetRange(wrong);
    ExpectRange(plotted.plot, {1, 2, 3, 4});
  }
}

// The widths of the numbers under the x axis, in pixels. Gaps of that many columns part them.
std::vector<int> NumbersOfX(const Plotted& plotted) {
  constexpr int kGap = 10;
  const int top = plotted.plot.GetPlotArea().bottom() + 8;
  std::vector<int> widths;
  int start = -1;
  int last = -kGap;
  for (int x = 0; x < plotted.image.width(); ++x) {
    bool dark = false;
    for (int y = top; y < plotted.image.height(); ++y) dark |= qGreen(plotted.image.pixel(x, y)) < 160;
    if (!dark) continue;
    if (x - last >= kGap && start >= 0) widths.push_back(last - start + 1);
    if (x - last >= kGap) start = x;
    last = x;
  }
  if (start >= 0) widths.push_back(last - start + 1);
  return widths;
}

TEST(GraphPlot, NumbersOfTheXAxisNeverTouch) {
  QFont font("DejaVu Sans");
  font.setPixelSize(12);
  const QFontMetrics metrics(font);
  struct Case {
    double middle, half;
    const char* widest;  // as wide as any number of the range
  };
  // 636001.8 with as small a range as can be shown, and numbers around 0 with a far smaller one.
  for (const Case& shown :
       {Case{636001.8, 5e9, "-10000000000"}, Case{636001.8, 1e14, "-100000000000000"},
        Case{636001.8, 1e20, "-2.5e+20"}, Case{636001.8, 5e-7, "636001.80000025"},
        Case{636001.8, 0.5, "636001.88"}, Case{0, 5e-10, "-0.000000001"}, Case{0, 0.05, "-0.004"}}) {
    for (const int width : {250, 400, 700, 960}) {
      Plotted plotted{GraphData()};
      plotted.plot.resize(width, 300);
      plotted.plot.SetRange({shown.middle - shown.half, shown.middle + shown.half, -1e9, 3e9});
      ASSERT_NEAR(plotted.plot.GetRange().maxX - shown.middle, shown.half, 1e-6 * shown.half + 1e-10);
      plotted.Paint();
      const std::vector<int> widths = NumbersOfX(plotted);
      EXPECT_GE(widths.size(), width < 700 ? 1u : 2u) << shown.half << ", " << width;
      for (const int number : widths) {
        EXPECT_LE(number, metrics.horizontalAdvance(shown.widest) + 2) << shown.half << ", " << width;
      }
    }
  }
}

TEST(GraphPlot, RangeSmallerThanItsNumbersTellApartIsNotTaken) {
  Plotted plotted(GraphData({{{{636001, 0}, {636002, 10}}, kRed}}));
  const GraphRange before = plotted.plot.GetRange();
  plotted.plot.SetRange({636001.8 - 5e-10, 636001.8 + 5e-10, 0, 10});
  EXPECT_EQ(plotted.plot.GetRange().minX, before.minX);
  EXPECT_EQ(plotted.plot.GetRange().maxX, before.maxX);
}

TEST(GraphPlot, PixelsAndPointsAreTheSamePlaces) {
  const Plotted plotted(GraphData({{{{0, 0}, {10, 10}}, kRed}}));
  const GraphPoint point = plotted.plot.PointAt(plotted.plot.PixelOf({2.5, 7.5}));
  EXPECT_NEAR(point.x, 2.5, 1e-9);
  EXPECT_NEAR(point.y, 7.5, 1e-9);
  const QRect area = plotted.plot.GetPlotArea();
  EXPECT_TRUE(QRect(0, 0, 400, 300).contains(area));
  EXPECT_GT(area.width(), 300);
}

TEST(GraphPlot, ReadoutHasTheDigitsInWhichPixelsDiffer) {
  Plotted plotted(GraphData({{{{636000, 0}, {636100, 3000}}, kRed}}));
  // About 0.3 units a pixel along x, about 14 along y.
  EXPECT_EQ(plotted.plot.ReadoutAt(plotted.plot.PixelOf({636001.84, 1234})), "636001.8, 1234");
}

TEST(GraphPlot, PictureIsThePlotAtItsOwnSize) {
  const Plotted plotted(GraphData({{{{0, 0}, {10, 10}}, kRed, 3}}));
  const QImage image = plotted.plot.DrawPicture({800, 500}, 1.0);
  EXPECT_EQ(image.size(), QSize(800, 500));
  EXPECT_EQ(plotted.plot.DrawPicture({800, 500}, 2.0).size(), QSize(1600, 1000));
  EXPECT_EQ(plotted.plot.DrawPicture({400, 300}, 1.0).convertToFormat(QImage::Format_RGB32), plotted.image)
      << "the picture shows what the window shows";
}

// Points that go to and fro, wide lines and bars are the slow ways.
TEST(GraphPlot, MillionsOfPointsTakeSeconds) {
  GraphElement ascending = {{}, kBlue, 1};
  GraphElement random = {{}, kRed, 3};
  GraphElement bars = {{}, kRed, 1, GraphElement::Style::Bars};
  unsigned state = 1;
  for (int i = 0; i < 1000000; ++i) {
    state = state * 1664525u + 1013904223u;
    ascending.points.push_back({1.0 * i, 1.0 * (state >> 8)});
    random.points.push_back({1.0 * (state >> 16), 1.0 * (state & 0xffff)});
    bars.points.push_back({1.0 * i, 1.0 * (state >> 8)});
  }
  QElapsedTimer timer;
  for (const GraphElement& element : {ascending, random, bars}) {
    timer.start();
    const Plotted plotted{GraphData({element})};
    EXPECT_LT(timer.elapsed(), 20000);
  }
}

}  // namespace
}  // namespace corvane
