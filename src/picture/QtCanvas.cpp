#include "picture/QtCanvas.h"

#include <QPainter>
#include <QPen>
#include <algorithm>
#include <cmath>

#include "picture/SegmentClip.h"

namespace corvane {

namespace {

// Segments within this distance of the painter's origin go to the painter as they are, so that a line runs
// through the same pixels whatever part of it needs painting. Longer ones are cut at it.
constexpr double kSafeDistance = 16000.0;

constexpr std::size_t kBlock = 4096;  // lines handed over at a time

bool IsSafe(double value) {
  return std::abs(value) <= kSafeDistance;
}

int Round(double value) {
  return static_cast<int>(std::lround(value));
}

}  // namespace

QtCanvas::QtCanvas(QPainter& painter, PixelRect visible, PixelPoint origin)
    : painter_(painter), visible_(visible), origin_(origin) {
  painter_.setRenderHint(QPainter::Antialiasing, false);
  lines_.reserve(kBlock);
}

void QtCanvas::SetPen(Colour colour, int width) {
  QPen pen(QColor(colour.red, colour.green, colour.blue));
  pen.setWidth(std::max(width, 1));
  pen.setCosmetic(true);
  painter_.setPen(pen);
}

void QtCanvas::DrawSegments(std::span<const PixelSegment> segments) {
  for (const PixelSegment& segment : segments) {
    AddLine(segment);
    if (lines_.size() == kBlock) DrawLines();
  }
  DrawLines();
}

void QtCanvas::AddLine(const PixelSegment& segment) {
  const auto originX = static_cast<double>(origin_.x);
  const auto originY = static_cast<double>(origin_.y);
  const ClipSegment line = {
      static_cast<double>(segment.from.x) - originX, static_cast<double>(segment.from.y) - originY,
      static_cast<double>(segment.to.x) - originX, static_cast<double>(segment.to.y) - originY};
  if (IsSafe(line.x0) && IsSafe(line.y0) && IsSafe(line.x1) && IsSafe(line.y1)) {
    lines_.emplace_back(Round(line.x0), Round(line.y0), Round(line.x1), Round(line.y1));
    return;
  }
  const auto clipped = ClipToBox(line, {-kSafeDistance, -kSafeDistance, kSafeDistance, kSafeDistance});
  if (!clipped) return;
  lines_.emplace_back(Round(clipped->x0), Round(clipped->y0), Round(clipped->x1), Round(clipped->y1));
}

void QtCanvas::DrawLines() {
  if (!lines_.empty()) painter_.drawLines(lines_.data(), static_cast<int>(lines_.size()));
  lines_.clear();
}

}  // namespace corvane
