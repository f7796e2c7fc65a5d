#pragma once

#include <cstdint>

namespace corvane {

// A place in a photo, in pixels; whole numbers are the pixels' centres, row 0 is at the top.
struct PhotoPlace {
  double col = 0.0;
  double row = 0.0;
};

struct GroundPlace {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

// The orientation of a photo in the whole units in which it is written: millionths of a degree, and
// millimetres.
struct Exterior {
  std::int64_t omega = 0;
  std::int64_t phi = 0;
  std::int64_t kappa = 0;
  std::int64_t x = 0;
  std::int64_t y = 0;
  std::int64_t z = 0;
};

// An exact perspective camera: a frame of kSize x kSize pixels with the principal point in its middle. It is
// written from the definition of the angles alone, so that it can serve as truth: turning the ground's axes
// by omega about x, then by phi about the new y, then by kappa about the new z gives the photo's axes.
class SampleCamera {
 public:
  static constexpr int kSize = 800;                     // pixels along each side
  static constexpr double kPixel = 0.15;                // millimetres
  static constexpr double kFocalLength = 150.0;         // millimetres
  static constexpr double kMiddle = (kSize - 1) / 2.0;  // col and row of the principal point
  static constexpr double kCorner = kMiddle * kPixel;   // photo coordinates of the corner pixels

  explicit SampleCamera(const Exterior& exterior);

  PhotoPlace Project(const GroundPlace& place) const;

  // The ray of a place in the photo: for each metre that it goes down, how far it goes east and north.
  struct Ray {
    double east = 0.0;
    double north = 0.0;
  };
  Ray RayOf(const PhotoPlace& place) const;

  const GroundPlace& GetCentre() const { return centre_; }

 private:
  GroundPlace centre_;
  double toPhoto_[3][3];  // from ground axes to photo axes
};

}  // namespace corvane
