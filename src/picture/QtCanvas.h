#pragma once

#include <QImage>
#include <QLine>
#include <string>
#include <vector>

#include "ui/Canvas.h"

class QPainter;

namespace corvane {

// A canvas on a painter: a window on screen, a printed page, a picture. Lines are drawn in bulk, lines and
// pixels without smoothing; coordinates of any size are safe.
class QtCanvas : public Canvas {
 public:
  // `visible` is the part of the content that needs painting, `origin` the content's pixel that comes to the
  // painter's (0, 0): the scroll position of a window.
  QtCanvas(QPainter& painter, PixelRect visible, PixelPoint origin = {});

  PixelRect GetVisible() const override { return visible_; }
  void SetPen(Colour colour, int width) override;
  void DrawSegments(std::span<const PixelSegment> segments) override;
  void DrawPixels(const PixelRect& place, std::span<const std::uint32_t> pixels) override;
  void DrawLabel(PixelPoint place, const std::string& text) override;

 private:
  void AddLine(const PixelSegment& segment);
  void DrawLines();

  QPainter& painter_;
  PixelRect visible_;
  PixelPoint origin_;
  std::vector<QLine> lines_;  // a block on its way to the painter
  QImage pixels_;             // kept between calls, for its memory
};

}  // namespace corvane
