#include "OpenGL/Stereo_2Cursor/EpipolarPair.h"

#include <algorithm>
#include <cmath>

#include "numerics/Angles.h"

namespace corvane {

namespace {

struct RotationAngles {
  double omega = 0.0;
  double phi = 0.0;
  double kappa = 0.0;
};

// The rotation of a photo whose x axis is parallel to the vector, and which is not turned about that axis.
RotationAngles AnglesAlong(double x, double y, double z) {
  const double a = Atan2(y, x);
  const double b = -Atan2(z, std::sqrt(x * x + y * y));
  const double sa = Sin(a);
  const double ca = Cos(a);
  const double sb = Sin(b);
  const double cb = Cos(b);
  // The elements of M, with the terms of a turn g about the base, which is 0: they decide on the sign of
  // zeros.
  constexpr double sg = 0.0;
  constexpr double cg = 1.0;
  const double m00 = cb * ca;
  const double m10 = sg * sb * ca - cg * sa;
  const double m20 = cg * sb * ca + sg * sa;
  const double m21 = cg * sb * sa - sg * ca;
  const double m22 = cg * cb;
  return {.omega = -Atan2(m21, m22), .phi = Asin(m20), .kappa = -Atan2(m10, m00)};
}

// The source's scale, positive, as a number of thousandths.
double CellOf(const AerialPhoto& source) {
  return std::trunc(source.GetScale() * 1000.0 + 0.5) / 1000.0;
}

}  // namespace

EpipolarPair::EpipolarPair(const AerialPhoto& leftSource, const AerialPhoto& rightSource, double overlap)
    : cell(CellOf(leftSource)) {
  Orient(leftSource, rightSource);
  const ImageSize leftSize = leftSource.image.GetSize();
  const ImageSize rightSize = rightSource.image.GetSize();
  const double leftCol = std::trunc((1.0 - overlap) * leftSize.cx);
  const double rightEnd = std::trunc(overlap * rightSize.cx);
  leftExtent = {leftCol, 0.0, 1.0, static_cast<double>(leftSize.cx), static_cast<double>(leftSize.cy), 1.0};
  rightExtent = {0.0, 0.0, 1.0, rightEnd, static_cast<double>(rightSize.cy), 1.0};
  left.MapExtentFrom(leftSource, leftExtent.data());
  right.MapExtentFrom(rightSource, rightExtent.data());
  TakeCommonRows();
}

void EpipolarPair::Orient(const AerialPhoto& leftSource, const AerialPhoto& rightSource) {
  const double f = leftSource.focalLength;
  const auto [omega, phi, kappa] = AnglesAlong(rightSource.perspectiveX - leftSource.perspectiveX,
                                               rightSource.perspectiveY - leftSource.perspectiveY,
                                               rightSource.perspectiveZ - leftSource.perspectiveZ);
  left.SetExterior(f, 0.0, 0.0, leftSource.perspectiveX, leftSource.perspectiveY, leftSource.perspectiveZ,
                   omega, phi, kappa);
  right.SetExterior(f, 0.0, 0.0, rightSource.perspectiveX, rightSource.perspectiveY, rightSource.perspectiveZ,
                    omega, phi, kappa);
}

void EpipolarPair::TakeCommonRows() {
  const double maxY = Snap(std::min(leftExtent[4], rightExtent[4]));
  const double minY = Snap(std::max(leftExtent[1], rightExtent[1]));
  for (Extent* const extent : {&leftExtent, &rightExtent}) {
    (*extent)[0] = Snap((*extent)[0]);
    (*extent)[1] = minY;
    (*extent)[4] = maxY;
  }
}

double EpipolarPair::Snap(double coordinate) const {
  return std::trunc(coordinate / cell) * cell;
}

}  // namespace corvane
