#pragma once

#include <array>
#include <cmath>
#include <random>
#include <string>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "support/TempFolder.h"

namespace corvane {

// The elements of a photo: angles in degrees, x = a col + b row + c and y = d col + e row + g.
struct PhotoElements {
  double f = 150.0;
  double principalX = 0.0;
  double principalY = 0.0;
  double x = 1000.0;
  double y = 2000.0;
  double z = 1500.0;
  double omega = 0.0;
  double phi = 0.0;
  double kappa = 0.0;
  double a = 0.1;
  double b = 0.0;
  double c = -50.0;
  double d = 0.0;
  double e = -0.1;
  double g = 50.0;
};

inline void SetPhoto(AerialPhoto& photo, const PhotoElements& elements) {
  const auto radians = [](double degrees) { return degrees / 180.0 * 3.141592653589793; };
  photo.SetExterior(elements.f, elements.principalX, elements.principalY, elements.x, elements.y, elements.z,
                    radians(elements.omega), radians(elements.phi), radians(elements.kappa));
  const double rows[3][3] = {{elements.a, elements.b, elements.c - elements.principalX},
                             {elements.d, elements.e, elements.g - elements.principalY},
                             {0.0, 0.0, -elements.f}};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) photo.imageToPhoto[i][j] = rows[i][j];
  }
  photo.Recompute();
}

// The same geometry in its plainest form: the rotation as three turns about one axis each, the interior
// orientation solved by Cramer's rule, all in long double.
class PlainPhoto {
 public:
  using Vector = std::array<long double, 3>;

  explicit PlainPhoto(const PhotoElements& elements) : elements_(elements) {}

  Vector ToPhotoFrame(Vector v) const {
    v = Turn(v, 1, 2, elements_.omega);
    v = Turn(v, 2, 0, elements_.phi);
    return Turn(v, 0, 1, elements_.kappa);
  }

  Vector ToGroundFrame(Vector v) const {
    v = Turn(v, 0, 1, -elements_.kappa);
    v = Turn(v, 2, 0, -elements_.phi);
    return Turn(v, 1, 2, -elements_.omega);
  }

  // Photo coordinates of a ground point.
  std::array<long double, 2> Photo(long double x, long double y, long double z) const {
    const Vector v = ToPhotoFrame({x - elements_.x, y - elements_.y, z - elements_.z});
    return {-elements_.f * v[0] / v[2], -elements_.f * v[1] / v[2]};
  }

  // (col, row) of a ground point.
  std::array<long double, 2> Project(long double x, long double y, long double z) const {
    const auto photo = Photo(x, y, z);
    const long double u = photo[0] - (elements_.c - elements_.principalX);
    const long double v = photo[1] - (elements_.g - elements_.principalY);
    const long double determinant =
        static_cast<long double>(elements_.a) * elements_.e - elements_.b * elements_.d;
    return {(u * elements_.e - v * elements_.b) / determinant,
            (v * elements_.a - u * elements_.d) / determinant};
  }

  Vector Ray(long double col, long double row) const {
    return ToGroundFrame({elements_.a * col + elements_.b * row + (elements_.c - elements_.principalX),
                          elements_.d * col + elements_.e * row + (elements_.g - elements_.principalY),
                          -elements_.f});
  }

 private:
  // Turns the frame about the third axis, so that axis i moves towards axis j.
  static Vector Turn(const Vector& v, std::size_t i, std::size_t j, long double degrees) {
    const long double angle = degrees * 3.14159265358979323846264338327950288L / 180.0L;
    Vector turned = v;
    turned[i] = std::cos(angle) * v[i] + std::sin(angle) * v[j];
    turned[j] = std::cos(angle) * v[j] - std::sin(angle) * v[i];
    return turned;
  }

  PhotoElements elements_;
};

// Photos as they are flown: some thousand units high, a few degrees off the vertical, in any direction.
class RandomPhotos {
 public:
  PhotoElements Next() {
    return {.f = In(80.0, 300.0),
            .principalX = In(-0.5, 0.5),
            .principalY = In(-0.5, 0.5),
            .x = In(-60000.0, 60000.0),
            .y = In(-60000.0, 60000.0),
            .z = In(800.0, 6000.0),
            .omega = In(-8.0, 8.0),
            .phi = In(-8.0, 8.0),
            .kappa = In(-180.0, 180.0),
            .a = In(0.01, 0.15),
            .b = In(-0.001, 0.001),
            .c = In(-100.0, -80.0),
            .d = In(-0.001, 0.001),
            .e = In(-0.15, -0.01),
            .g = In(80.0, 100.0)};
  }

  double In(double least, double most) {
    return std::uniform_real_distribution<double>(least, most)(random_);
  }

 private:
  std::mt19937 random_{20240611};
};

}  // namespace corvane
