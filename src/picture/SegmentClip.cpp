#include "picture/SegmentClip.h"

#include <algorithm>

namespace corvane {

namespace {

// The range of the parameter t, from 0 at the start of the segment to 1 at its end.
struct ParameterRange {
  double from = 0.0;
  double to = 1.0;

  // Keeps the t with step * t <= room; false if none is left.
  bool Bound(double step, double room) {
    if (step == 0.0) return room >= 0.0;
    const double t = room / step;
    if (step > 0.0) {
      to = std::min(to, t);
    } else {
      from = std::max(from, t);
    }
    return from <= to;
  }
};

}  // namespace

std::optional<ClipSegment> ClipToBox(const ClipSegment& segment, const ClipBox& box) {
  const double dx = segment.x1 - segment.x0;
  const double dy = segment.y1 - segment.y0;
  ParameterRange range;
  const bool inside = range.Bound(-dx, segment.x0 - box.left) && range.Bound(dx, box.right - segment.x0) &&
                      range.Bound(-dy, segment.y0 - box.top) && range.Bound(dy, box.bottom - segment.y0);
  if (!inside) return std::nullopt;

  // Ends that need no clipping stay as they are, and rounding never leaves the box.
  ClipSegment clipped = segment;
  if (range.from > 0.0) {
    clipped.x0 = std::clamp(segment.x0 + range.from * dx, box.left, box.right);
    clipped.y0 = std::clamp(segment.y0 + range.from * dy, box.top, box.bottom);
  }
  if (range.to < 1.0) {
    clipped.x1 = std::clamp(segment.x0 + range.to * dx, box.left, box.right);
    clipped.y1 = std::clamp(segment.y0 + range.to * dy, box.top, box.bottom);
  }
  return clipped;
}

}  // namespace corvane
