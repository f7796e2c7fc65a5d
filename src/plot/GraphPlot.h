#pragma once

#include <QImage>
#include <QWidget>
#include <vector>

#include "ui/GraphView.h"

class QCPAbstractPlottable;
class QCustomPlot;

namespace corvane {

// The part of the plane that a plot shows.
struct GraphRange {
  double minX = 0.0;
  double maxX = 1.0;
  double minY = 0.0;
  double maxY = 1.0;
};

// A graph's curves over two axes, under its title: the drawing of both front ends, on screen and in pictures,
// the same under every language, font setting and theme of the desktop.
//
// Curves are drawn in the order of their elements, a later one in front. Points that are not finite, or
// farther than 1e100 from 0, are left out. A single point shows as a dot.
class GraphPlot : public QWidget {
 public:
  explicit GraphPlot(QWidget* parent = nullptr);

  // Takes the curves over from `element` on, all of them for -1, and fits the axes. The elements before it
  // are those of the last call. The graph is not kept.
  void Plot(const GraphView& graph, int element);

  // Shows all curves with a little room around them; 0 to 1 on an axis without points.
  void FitAxes();

  // Ranges that doubles can't divide into pixels any more, or beyond 1e101, are not taken.
  void SetRange(const GraphRange& range);
  GraphRange GetRange() const;

  // The pixels between the axes, and the way from pixels to coordinates and back.
  QRect GetPlotArea() const;
  GraphPoint PointAt(QPointF pixel) const;
  QPointF PixelOf(GraphPoint point) const;

  // "636001.8, 12" of a pixel: with the digits in which neighbouring pixels differ.
  QString ReadoutAt(QPointF pixel) const;

  // What shows, drawn at a size of its own, each pixel of it `scale` times as wide and high. A null image if
  // there is no memory for it.
  QImage DrawPicture(QSize size, double scale) const;

  QSize sizeHint() const override { return {960, 640}; }

 protected:
  // The plot has been drawn anew, after any change of range, curves or size: pixels have other coordinates.
  virtual void OnDrawn() {}

  void resizeEvent(QResizeEvent* event) override;

 private:
  struct Curve {
    QCPAbstractPlottable* plottable = nullptr;
    GraphRange extent;      // min above max without points
    bool grounded = false;  // its bars stand on the x axis
  };

  void AddCurve(const GraphElement& element);

  QCustomPlot* plot_;
  std::vector<Curve> curves_;  // an element each
};

}  // namespace corvane
