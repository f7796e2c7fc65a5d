#pragma once

#include <span>
#include <string>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "numerics/Point2.h"
#include "numerics/Point3.h"

namespace corvane {

// Ground points by approximation, from photos whose matrices are made (AerialPhoto::Recompute).

// A pixel of a photo (col, row of the whole scan), and so a ray.
struct PhotoRay {
  const AerialPhoto* photo = nullptr;
  Point2 pixel;
};

// The height at which the place on the left pixel's ray shows nearest to the right pixel in the right photo,
// in pixels. From the height z on, each round goes to where the image distance would vanish if it changed
// with the height as it does at the present one; a change of less than 0.01 ground units is the last, as is
// that of round 10.
//
// 1, with z; 0 if round 10 still changed it more, with z as it is then; -1, with z as it was, if the right
// photo shows no movement along the ray, or a number is not finite.
int RefineHeight(const AerialPhoto& left, const AerialPhoto& right, const double pLeft[2],
                 const double pRight[2], double& z);

// The ground point nearest to n rays: the sum of squares of its distances from their pixels, in photo units,
// is smallest. It starts where the first two rays meet, as IntersectRays has it. Each round solves the
// linearised collinearity equations by LeastSquaresCholesky; it is the last if all three corrections are
// below 1e-6 ground units, as is round 10. What each round solves and finds is added to `log`, if given:
// "\nB:\n" and the design matrix, "\nE:\n" and the observations, "\ndeltaParam:\n" and the corrections,
// numbers as "%f" with ", " between them, a line a row.
//
// 1; 0 if round 10 still corrected it by more; -1, with the point as it was, for fewer than two rays, rays
// that do not determine a point, numbers that are not finite, or no memory.
int IntersectMany(std::span<const PhotoRay> rays, Point3& point, std::string* log = nullptr);

}  // namespace corvane
