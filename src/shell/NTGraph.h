#pragma once

#include <string>
#include <vector>

#include "ui/GraphView.h"

namespace corvane {

// The graph that a view holds: numbered elements, each a curve of its own colour and width. Made at first
// use, it covers the view's client area until the view closes.
class CNTGraph : public GraphView {
 public:
  // Shows the graph over the view, which makes it at first use. -1, with a warning, if it can't be made.
  int Show(WindowView& view, const std::string& title, PixelSize clientArea);
  bool IsCreated() const { return created_; }

  // Elements are numbered from 0. What belongs to one element goes to the current one, or to a new one where
  // there is none.
  void ClearGraph();
  int GetElementCount() const { return static_cast<int>(elements_.size()); }
  // Makes an element the current one: the given one, or a new one for -1 or a number that there is not yet.
  void SetElement(int element);
  void SetElementColour(Colour colour) { Current().colour = colour; }
  void SetElementWidth(int width) { Current().width = width; }
  void SetElementStyle(GraphElement::Style style) { Current().style = style; }
  void Reserve(std::size_t nPoints) { Current().points.reserve(Current().points.size() + nPoints); }
  void PlotXY(double x, double y) { Current().points.push_back({x, y}); }

  // Paints the current element, with axes that fit all elements; without one, the empty axes.
  void Redraw();
  void Resize(PixelSize clientArea);

  std::string GetTitle() const override { return title_; }
  std::span<const GraphElement> GetElements() const override { return elements_; }
  PixelSize GetSize() const override { return size_; }

 private:
  GraphElement& Current();

  bool created_ = false;
  std::string title_;
  PixelSize size_{960, 640};
  std::vector<GraphElement> elements_;
  int current_ = -1;
};

}  // namespace corvane
