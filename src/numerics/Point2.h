#pragma once

namespace corvane {

// A place in the plane. In an image x is the column and y the row; whole numbers are the pixels' centres.
struct Point2 {
  double x = 0.0;
  double y = 0.0;

  friend bool operator==(const Point2&, const Point2&) = default;
};

}  // namespace corvane
