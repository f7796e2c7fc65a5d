#pragma once

#include "Geometry/Plane2D.h"
#include "Geometry/Point.h"

namespace corvane {

// A line through two points, with its ends in the plane beside them.
class Line {
 public:
  Line() = default;
  virtual ~Line() = default;
  Line(const Line&) = default;
  Line& operator=(const Line&) = default;

  Point P0;
  Point P1;
  Point2D a;
  Point2D b;
};

}  // namespace corvane
