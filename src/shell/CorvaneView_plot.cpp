// The graph of CCorvaneView.

#include <algorithm>

#include "shell/CorvaneView.h"

namespace corvane {

namespace {

constexpr const char* kGraphTitle = "Data Graph";
constexpr Colour kHistogramColour{255, 0, 0};

}  // namespace

int CCorvaneView::ShowGraph() {
  return graph.Show(*this, kGraphTitle, clientArea_);
}

int CCorvaneView::PlotHistogram(int element, std::span<const double> xs,
                                std::span<const std::int32_t> counts) {
  if (ShowGraph() < 0) return -1;
  graph.ClearGraph();
  graph.SetElement(element);
  graph.SetElementColour(kHistogramColour);
  graph.SetElementStyle(GraphElement::Style::Bars);
  const std::size_t n = std::min(xs.size(), counts.size());
  graph.Reserve(n);
  for (std::size_t i = 0; i < n; ++i) graph.PlotXY(xs[i], counts[i]);
  graph.Redraw();
  return 0;
}

template <typename PointAt>
int CCorvaneView::PlotCurve(int element, std::size_t n, Colour colour, int width, PointAt pointAt) {
  if (ShowGraph() < 0) return -1;
  graph.SetElement(element);
  graph.SetElementColour(colour);
  graph.SetElementWidth(width);
  for (std::size_t i = 0; i < n; ++i) {
    const GraphPoint point = pointAt(i);
    graph.PlotXY(point.x, point.y);
  }
  graph.Redraw();
  return 0;
}

int CCorvaneView::PlotSeries(int element, std::span<const double> xs, std::span<const double> ys,
                             Colour colour, int width) {
  return PlotCurve(element, std::min(xs.size(), ys.size()), colour, width, [&](std::size_t i) {
    return GraphPoint{xs[i], ys[i]};
  });
}

int CCorvaneView::PlotPairs(int element, std::span<const double> pairs, Colour colour, int width) {
  return PlotCurve(element, pairs.size() / 2, colour, width, [&](std::size_t i) {
    return GraphPoint{pairs[2 * i], pairs[2 * i + 1]};
  });
}

int CCorvaneView::PlotPairs(int element, std::span<const std::int32_t> pairs, Colour colour, int width) {
  return PlotCurve(element, pairs.size() / 2, colour, width, [&](std::size_t i) {
    return GraphPoint{static_cast<double>(pairs[2 * i]), static_cast<double>(pairs[2 * i + 1])};
  });
}

int CCorvaneView::PlotValues(int element, std::span<const double> ys, Colour colour, int width) {
  return PlotCurve(element, ys.size(), colour, width, [&](std::size_t i) {
    return GraphPoint{static_cast<double>(i), ys[i]};
  });
}

}  // namespace corvane
