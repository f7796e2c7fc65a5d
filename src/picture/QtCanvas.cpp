#include "picture/QtCanvas.h"

#include <QApplication>
#include <QFontInfo>
#include <QFontMetrics>
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

constexpr std::uint32_t kOpaque = 0xff000000;

// The ground of labels, and its room around the text: so much of the picture shows through that nothing is
// hidden, so little that the text reads on any picture.
constexpr QColor kLabelGround(255, 255, 255, 190);
constexpr int kLabelMargin = 2;  // pixels, left and right of the text
constexpr int kLabelGap = 3;     // pixels, between the place and its label

bool IsSafe(double value) {
  return std::abs(value) <= kSafeDistance;
}

int Round(double value) {
  return static_cast<int>(std::lround(value));
}

PixelRect Common(const PixelRect& a, const PixelRect& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
          std::min(a.bottom, b.bottom)};
}

// The desktop's font in pixels of the content, so that labels keep their proportions on a printed page.
QFont LabelFont() {
  QFont font = QApplication::font();
  font.setPixelSize(QFontInfo(font).pixelSize());
  return font;
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

// Only the visible part goes to the painter, whose coordinates are narrower than the content's.
void QtCanvas::DrawPixels(const PixelRect& place, std::span<const std::uint32_t> pixels) {
  const PixelRect part = Common(place, visible_);
  if (part.left >= part.right || part.top >= part.bottom) return;
  const std::int64_t rowLength = place.right - place.left;
  const auto width = static_cast<int>(part.right - part.left);
  const auto height = static_cast<int>(part.bottom - part.top);
  if (pixels_.width() != width || pixels_.height() != height) {
    pixels_ = QImage(width, height, QImage::Format_RGB32);
  }
  for (int y = 0; y < pixels_.height(); ++y) {  // none without memory
    const std::int64_t row = part.top + y - place.top;
    const std::uint32_t* from = pixels.data() + row * rowLength + (part.left - place.left);
    auto* to = reinterpret_cast<std::uint32_t*>(pixels_.scanLine(y));
    std::transform(from, from + width, to, [](std::uint32_t pixel) { return pixel | kOpaque; });
  }
  painter_.drawImage(static_cast<int>(part.left - origin_.x), static_cast<int>(part.top - origin_.y),
                     pixels_);
}

void QtCanvas::DrawLabel(PixelPoint place, const std::string& text) {
  const double x = static_cast<double>(place.x) - static_cast<double>(origin_.x);
  const double y = static_cast<double>(place.y) - static_cast<double>(origin_.y);
  // Out of sight: labels stand above their place and to the right.
  if (!IsSafe(x) || !IsSafe(y) || place.x >= visible_.right || place.y <= visible_.top) return;
  const QFont font = LabelFont();
  const QFontMetrics metrics(font, painter_.device());
  const QString shown = QString::fromStdString(text);
  const QRect ground(Round(x) + kLabelGap, Round(y) - kLabelGap - metrics.height(),
                     metrics.horizontalAdvance(shown) + 2 * kLabelMargin, metrics.height());
  painter_.setFont(font);
  painter_.fillRect(ground, kLabelGround);
  painter_.drawText(ground, Qt::AlignCenter | Qt::TextSingleLine, shown);
}

}  // namespace corvane
