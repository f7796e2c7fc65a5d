#pragma once

#include <array>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"

namespace corvane {

// The geometry of a pair of epipolar photos: two virtual photos with the perspective centres of a stereo
// pair, which share one image plane whose x axis is parallel to the base between the centres. So rays to one
// point on the ground meet it at one y, and conjugate points share a row of the images.
//
// The base B = right centre - left centre is turned onto the x axis by
//   M = (cb ca, cb sa, -sb; -sa, ca, 0; sb ca, sb sa, cb),  a = atan2(By, Bx), b = -atan2(Bz, |(Bx, By)|),
// which is the rotation of both photos, as angles. Both have the left photo's focal length, no principal
// point, and the same cells.
//
// Worked example: vertical photos one beside the other, B = (500, 0, 0), have M = identity: the images keep
// their pixels. For B = (0, 500, 0) kappa is 90 degrees, so that the images' columns run along the base, Y.
//
// The photos' images need no pixels, only the headers. There is no failure value: where sizes or centres make
// no image, AerialPhoto::ResampleFrom finds none.
class EpipolarPair {
 public:
  using Extent = std::array<double, 6>;  // min x, min y, z, max x, max y, z in photo coordinates

  // `overlap` is the part of their width that the photos share: 0.6 keeps the right six tenths of the left
  // image and the left six tenths of the right one, 1.0 all of both. Above that extents reach beyond the
  // images.
  EpipolarPair(const AerialPhoto& leftSource, const AerialPhoto& rightSource, double overlap);

  AerialPhoto left;
  AerialPhoto right;
  double cell = 0.0;  // size of a pixel in photo units: the left photo's scale, rounded to a thousandth
  Extent leftExtent{};
  Extent rightExtent{};  // with the rows of the left one

 private:
  void Orient(const AerialPhoto& leftSource, const AerialPhoto& rightSource);
  void TakeCommonRows();
  double Snap(double coordinate) const;
};

}  // namespace corvane
