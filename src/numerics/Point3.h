#pragma once

namespace corvane {

// A ground point, in ground units.
struct Point3 {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  friend bool operator==(const Point3&, const Point3&) = default;
};

}  // namespace corvane
