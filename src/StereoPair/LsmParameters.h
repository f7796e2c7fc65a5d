#pragma once

namespace corvane {

// The model of least-squares matching, which ties a patch of a search image to a template. For a pixel at
// (dx, dy) from the centre of the template, and a patch at (x, y) in the search image, in pixels:
//   x' = a0 + a1 dx + a2 dy + x            its column in the search image
//   y' = b0 + b1 dx + b2 dy + y            its row
//   v  = r1 (grey value at x', y') + r0    which is to be the template's grey value
// A new record is the identity. Kept: kernels start from the record as it is, and leave the last estimate in
// it, so that who matches once more sets it back.
struct LsmParameters {
  double r0 = 0.0;
  double r1 = 1.0;
  double a0 = 0.0;
  double a1 = 1.0;
  double a2 = 0.0;
  double b0 = 0.0;
  double b1 = 0.0;
  double b2 = 1.0;

  friend bool operator==(const LsmParameters&, const LsmParameters&) = default;
};

}  // namespace corvane
