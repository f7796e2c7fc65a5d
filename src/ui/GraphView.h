#pragma once

#include <span>
#include <string>
#include <vector>

#include "ui/Canvas.h"
#include "ui/WindowView.h"

namespace corvane {

struct GraphPoint {
  double x = 0.0;
  double y = 0.0;

  friend bool operator==(const GraphPoint&, const GraphPoint&) = default;
};

// One numbered curve of a graph.
struct GraphElement {
  enum class Style {
    Line,  // from point to point
    Bars,  // a bar from 0 up to each point, which begins at its x and is as wide as two points are apart
  };

  std::vector<GraphPoint> points;
  Colour colour;
  int width = 1;  // of the line, in pixels
  Style style = Style::Line;
};

// The toolkit-free side of a graph, which covers the client area of a window. The front end draws the curves
// on a white ground with axes, and keeps what part of them shows.
class GraphView {
 public:
  virtual ~GraphView() = default;

  virtual std::string GetTitle() const = 0;
  virtual std::span<const GraphElement> GetElements() const = 0;
  virtual PixelSize GetSize() const = 0;
};

}  // namespace corvane
