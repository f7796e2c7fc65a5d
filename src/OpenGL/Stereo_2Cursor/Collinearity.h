#pragma once

#include "numerics/Matrix.h"

namespace corvane {

// The linearised collinearity equations
//   x = -f U / W,  y = -f V / W,  (U, V, W) = R D,  D = ground point - perspective centre,
// R being the rotation from ground to photo of AerialPhoto. Unknowns are corrections to a photo's exterior
// orientation and to the coordinates of a pass point.

// What an equation is about: a point's place in a photo and on the ground.
struct ObservationRecord {
  static constexpr int kControl = 0;
  static constexpr int kPass = 2;

  int type = kControl;
  double x = 0.0;  // photo coordinates, from AerialPhoto::ImageToPhoto
  double y = 0.0;
  double groundX = 0.0;
  double groundY = 0.0;
  double groundZ = 0.0;
  double weightX = 1.0;  // not used
  double weightY = 1.0;
};

// Focal length and principal point.
struct InteriorElements {
  double focalLength = 0.0;
  double principalX = 0.0;
  double principalY = 0.0;
};

// Angles in radians, and the perspective centre.
struct ExteriorElements {
  double omega = 0.0;
  double phi = 0.0;
  double kappa = 0.0;
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

// Writes the two equations of a measurement into rows[0] (x) and rows[1] (y) of the design matrix and into l
// (2 entries). Columns photoColumn to photoColumn + 5 take the partial derivatives by omega, phi, kappa and
// the perspective centre's X, Y, Z; for a pass point the columns pointColumn to pointColumn + 2 those by its
// coordinates, the negatives of the latter three. All other columns stay as they are. R (3 x 3) is taken as
// given, also where it does not belong to the angles, whose sines and cosines enter the derivative by phi.
//
// Kept: l_x = x - principalX + f U / W, though x has come through a matrix that holds the principal point.
void CollinearityRow(const ObservationRecord& record, const InteriorElements& interior,
                     const ExteriorElements& exterior, ConstMatrix rotation, Matrix rows, double* l,
                     int photoColumn, int pointColumn);

// The same with the ground point alone as unknown, whatever the record's type: three columns and l.
void CollinearityPointRow(const ObservationRecord& record, const InteriorElements& interior,
                          const ExteriorElements& exterior, ConstMatrix rotation, Matrix rows, double* l,
                          int pointColumn);

}  // namespace corvane
