#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace corvane {

// What HarrisCorners looks for.
struct HarrisParam {
  double k = 0.04;            // weight of the squared trace in the response
  double sigma = 2.0;         // of the Gaussian that smooths the products of gradients, pixels
  double threshold = 1200.0;  // a corner's response exceeds it
  double minDistance = 10.0;  // carried, not read: corners are not thinned
};

// A point feature with its descriptor.
struct FeaturePoint {
  std::int32_t id = 0;
  double y = 0.0;  // row
  double x = 0.0;  // column
  double scale = 1.0;
  double orientation = 0.0;
  std::vector<double> values = {};  // the descriptor
};

using FeaturePointList = std::vector<FeaturePoint>;

// Descriptor files: text, with the number of points and the number of values of the first point in the first
// line; for each point a line of x, y, scale and orientation, then its values, twenty to a line. Numbers but
// these two are "%f". Ids are not in the file.
//
//   2 3
//   17.000000 9.000000 1.000000 0.000000
//    -4.000000 0.000000 12.000000
//   ...

// Writes the list, whole or not at all; an empty one makes an empty file. 1; -1 if the file does not open,
// after the composed open text, or can't be written, after the composed write text, with the warning icon.
int WriteFeaturePoints(const std::string& path, const FeaturePointList& list);

// How the values of descriptors are read: "%f" or "%lf".
enum class FeatureNumbers { Float, Double };

// Reads a list in place of the one that is there, with scanf's rules: lines do not matter. Ids count from 0.
// An empty file is an empty list. A point that the file does not hold whole ends the list. 1; -1, with an
// empty list, if the file can't be read; -2 if it is not empty and has no first line, or has fewer whole
// points than that promises: both after the composed open text with the warning icon, the latter with the
// reason.
int ReadFeaturePoints(const std::string& path, FeaturePointList& list,
                      FeatureNumbers numbers = FeatureNumbers::Float);

}  // namespace corvane
