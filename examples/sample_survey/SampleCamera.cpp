#include "sample_survey/SampleCamera.h"

#include "numerics/Angles.h"

namespace corvane {

namespace {

using Turn = double[3][3];

// Coordinates along axes that are turned by `angle` about one of them.
void SetTurn(int axis, double angle, Turn& turn) {
  const int next = (axis + 1) % 3;
  const int last = (axis + 2) % 3;
  for (auto& row : turn) {
    for (double& element : row) element = 0.0;
  }
  turn[axis][axis] = 1.0;
  turn[next][next] = Cos(angle);
  turn[next][last] = Sin(angle);
  turn[last][next] = -Sin(angle);
  turn[last][last] = Cos(angle);
}

void Multiply(const Turn& a, const Turn& b, Turn& out) {
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) out[i][j] = a[i][0] * b[0][j] + a[i][1] * b[1][j] + a[i][2] * b[2][j];
  }
}

double Metres(std::int64_t millimetres) {
  return static_cast<double>(millimetres) / 1000.0;
}

double Radians(std::int64_t microdegrees) {
  return ToRadians(static_cast<double>(microdegrees) / 1e6);
}

}  // namespace

SampleCamera::SampleCamera(const Exterior& exterior)
    : centre_{Metres(exterior.x), Metres(exterior.y), Metres(exterior.z)} {
  Turn omega;
  Turn phi;
  Turn kappa;
  Turn both;
  SetTurn(0, Radians(exterior.omega), omega);
  SetTurn(1, Radians(exterior.phi), phi);
  SetTurn(2, Radians(exterior.kappa), kappa);
  Multiply(phi, omega, both);
  Multiply(kappa, both, toPhoto_);
}

PhotoPlace SampleCamera::Project(const GroundPlace& place) const {
  const double d[3] = {place.x - centre_.x, place.y - centre_.y, place.z - centre_.z};
  double v[3];
  for (int i = 0; i < 3; ++i) v[i] = toPhoto_[i][0] * d[0] + toPhoto_[i][1] * d[1] + toPhoto_[i][2] * d[2];
  const double x = -kFocalLength * v[0] / v[2];
  const double y = -kFocalLength * v[1] / v[2];
  return {.col = kMiddle + x / kPixel, .row = kMiddle - y / kPixel};
}

SampleCamera::Ray SampleCamera::RayOf(const PhotoPlace& place) const {
  const double v[3] = {(place.col - kMiddle) * kPixel, (kMiddle - place.row) * kPixel, -kFocalLength};
  double d[3];
  for (int i = 0; i < 3; ++i) d[i] = toPhoto_[0][i] * v[0] + toPhoto_[1][i] * v[1] + toPhoto_[2][i] * v[2];
  return {.east = d[0] / -d[2], .north = d[1] / -d[2]};
}

}  // namespace corvane
