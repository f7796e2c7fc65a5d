#pragma once

#include <optional>

namespace corvane {

// A rectangle and a segment in pixels as floating-point numbers, so that no difference overflows.
struct ClipBox {
  double left = 0.0;
  double top = 0.0;
  double right = 0.0;
  double bottom = 0.0;
};

struct ClipSegment {
  double x0 = 0.0;
  double y0 = 0.0;
  double x1 = 0.0;
  double y1 = 0.0;
};

// The part of the segment within the box, edges included; nothing if it misses the box.
// Liang and Barsky's method: each edge of the box bounds the segment's parameter from one side.
std::optional<ClipSegment> ClipToBox(const ClipSegment& segment, const ClipBox& box);

}  // namespace corvane
