#pragma once

#include <optional>
#include <string>
#include <vector>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "StereoPair/MatchPair.h"

namespace corvane {

// A raster of true heights: they belong to the cells' centres, between which they are bilinear.
class TrueGround {
 public:
  explicit TrueGround(const std::string& path);

  // Nothing beyond the outer cells' centres.
  std::optional<double> HeightAt(double x, double y) const;

  // Where the ray of an image place meets the ground; nothing if it does not.
  std::optional<Point3> Meet(const AerialPhoto& photo, const Point2& place) const;

 private:
  ErdasImg dem_;
};

// Where the right photo shows what the left one shows at a place of its image in memory; nothing if that is
// not on the ground.
std::optional<Point2> TrueRight(const TrueGround& ground, const AerialPhoto& left, const AerialPhoto& right,
                                const Point2& place);

// Numbers about differences.
struct ErrorFigures {
  std::size_t count = 0;
  double mean = 0.0;
  double stdev = 0.0;
  double rms = 0.0;
  double withinOne = 0.0;  // shares
  double withinTwo = 0.0;

  static ErrorFigures Of(const std::vector<double>& errors);
};

}  // namespace corvane
