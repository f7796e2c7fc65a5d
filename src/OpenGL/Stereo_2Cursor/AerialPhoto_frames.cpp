// The ways between image, photo and ground.

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "OpenGL/Stereo_2Cursor/Matrix3.h"

namespace corvane {

namespace {

void Cross(const double a[3], const double b[3], double out[3]) {
  out[0] = a[1] * b[2] - a[2] * b[1];
  out[1] = a[2] * b[0] - a[0] * b[2];
  out[2] = a[0] * b[1] - a[1] * b[0];
}

double Dot(const double a[3], const double b[3]) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

// The mean of the points at which two rays are nearest to each other: with c = d1 x d2, n = c . c and
// g = c x B, these lie at (g . d2) / n and (g . d1) / n along the rays.
void IntersectOverBase(const AerialPhoto& left, const AerialPhoto& right, const double base[3],
                       const double pLeft[2], const double pRight[2], double out[3]) {
  double d1[3];
  double d2[3];
  left.ImageRay(pLeft, d1);
  right.ImageRay(pRight, d2);
  double c[3];
  double g[3];
  Cross(d1, d2, c);
  Cross(c, base, g);
  const double n = Dot(c, c);
  const double s1 = Dot(g, d2) / n;
  const double s2 = Dot(g, d1) / n;
  const double leftCentre[3] = {left.perspectiveX, left.perspectiveY, left.perspectiveZ};
  const double rightCentre[3] = {right.perspectiveX, right.perspectiveY, right.perspectiveZ};
  for (int i = 0; i < 3; ++i) {
    out[i] = ((leftCentre[i] + s1 * d1[i]) + (rightCentre[i] + s2 * d2[i])) / 2.0;
  }
}

}  // namespace

int AerialPhoto::ImageToPhoto(const double p[2], double out[3]) const {
  const double pixel[3] = {p[0], p[1], 1.0};
  MultiplyVector3(imageToPhoto.get(), pixel, out);
  out[2] = -focalLength;
  return 1;
}

int AerialPhoto::PhotoToImage(const double p[2], double out[3]) const {
  const double v[3] = {p[0], p[1], -focalLength};
  MultiplyVector3(photoToImage.get(), v, out);
  out[2] = 1.0;
  return 1;
}

int AerialPhoto::GroundToImage(double x, double y, double z, double& col, double& row) const {
  const double d[3] = {x - perspectiveX, y - perspectiveY, z - perspectiveZ};
  double n[3];
  MultiplyVector3(groundToImage.get(), d, n);
  col = n[0] / n[2];
  row = n[1] / n[2];
  return 1;
}

int AerialPhoto::GroundToPhoto(double x, double y, double z, double& photoX, double& photoY) const {
  const double d[3] = {x - perspectiveX, y - perspectiveY, z - perspectiveZ};
  double n[3];
  RotateToPhoto(d, n);
  photoX = -focalLength * n[0] / n[2];
  photoY = -focalLength * n[1] / n[2];
  return 1;
}

int AerialPhoto::RotateToGround(const double v[3], double out[3]) const {
  MultiplyTransposed3(rotation.get(), v, out);
  return 1;
}

int AerialPhoto::RotateToPhoto(const double v[3], double out[3]) const {
  MultiplyVector3(rotation.get(), v, out);
  return 1;
}

int AerialPhoto::PhotoToGround(const double v[3], double z, double& x, double& y) const {
  double d[3];
  RotateToGround(v, d);
  const double s = (z - perspectiveZ) / d[2];
  x = perspectiveX + s * d[0];
  y = perspectiveY + s * d[1];
  return 1;
}

int AerialPhoto::ImageToGround(const double p[2], double z, double& x, double& y) const {
  double v[3];
  ImageToPhoto(p, v);
  return PhotoToGround(v, z, x, y);
}

int AerialPhoto::ImageRay(const double p[2], double out[3]) const {
  const double pixel[3] = {p[0], p[1], 1.0};
  MultiplyVector3(imageToGround.get(), pixel, out);
  return 1;
}

int AerialPhoto::IntersectPlane(const double p[2], double out[3], const double plane[3]) const {
  const double a = plane[0];
  const double b = plane[1];
  double d[3];
  ImageRay(p, d);
  const double s =
      (a * perspectiveX + b * perspectiveY + plane[2] - perspectiveZ) / (d[2] - a * d[0] - b * d[1]);
  out[0] = perspectiveX + s * d[0];
  out[1] = perspectiveY + s * d[1];
  out[2] = perspectiveZ + s * d[2];
  return 1;
}

int AerialPhoto::Intersect(const AerialPhoto& other, const double pLeft[2], const double pRight[2],
                           double out[3]) const {
  const double base[3] = {baseX, baseY, baseZ};
  IntersectOverBase(*this, other, base, pLeft, pRight, out);
  return 1;
}

int IntersectRays(const AerialPhoto& left, const AerialPhoto& right, const double pLeft[2],
                  const double pRight[2], double out[3]) {
  const double base[3] = {right.perspectiveX - left.perspectiveX, right.perspectiveY - left.perspectiveY,
                          right.perspectiveZ - left.perspectiveZ};
  IntersectOverBase(left, right, base, pLeft, pRight, out);
  return 1;
}

}  // namespace corvane
