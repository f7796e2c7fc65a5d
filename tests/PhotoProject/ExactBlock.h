#pragma once

#include <vector>

#include "PhotoProject/PhotoProject.h"
#include "numerics/Point3.h"

namespace corvane {

// A block of vertical photos over hilly ground, for tests and benchmarks of the adjustment: f 150, frames of
// 230 x 230 and pixels of 0.1, 1500 above the ground, each photo 0.4 frames from its neighbours in both
// directions. Names are "c0", "c1", ... and "p0", "p1", ...
struct BlockShape {
  int nStrips = 2;
  int nPhotos = 3;  // of a strip
  int nAlong = 6;   // ground points in the direction of the strips
  int nAcross = 4;
  int controlEvery = 5;  // every fifth ground point is a control point; 0: none
  double principalX = 0.0;
  double principalY = 0.0;
  double angleNoise = 0.002;  // of the start values, in radians; 0: they are true
  double placeNoise = 3.0;
};

// What was true when the measurements were made.
struct BlockTruth {
  struct Exterior {
    double values[6];  // omega, phi, kappa, X, Y, Z
  };
  std::vector<Exterior> photos;
  std::vector<Point3> groundPoints;  // in the order of PhotoProject::groundPoints
};

// Joins the measurement of a ground point that is there to its photo and that point, and to the pass points.
void JoinMeasurement(PhotoProject& project, AerialPhoto& photo, const ImageMeasurement& measurement);

// Adds the block to an empty project: control points known, pass points not. Measurements are exact.
BlockTruth MakeExactBlock(const BlockShape& shape, PhotoProject& project);

}  // namespace corvane
