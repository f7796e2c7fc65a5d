#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <new>

#include "OpenGL/Stereo_2Cursor/Matrix3.h"
#include "TIN/TINPoints.h"
#include "numerics/Angles.h"
#include "numerics/Solvers.h"

namespace corvane {

OwnedMatrix NewMatrix3() {
  OwnedMatrix m(AllocMatrix(3, 3));
  if (!m) throw std::bad_alloc();
  return m;
}

AerialPhoto::AerialPhoto()
    : imageToPhoto(NewMatrix3()),
      photoToImage(NewMatrix3()),
      rotation(NewMatrix3()),
      groundToImage(NewMatrix3()),
      imageToGround(NewMatrix3()),
      epipolarMap(NewMatrix3()),
      resampleMap(NewMatrix3()),
      inverseScratch(NewMatrix3()) {
  fiducials.fill({kUnset, kUnset});
}

AerialPhoto::~AerialPhoto() = default;

void AerialPhoto::CompleteInterior(double f) {
  const Matrix a = imageToPhoto.get();
  a[0][2] -= principalX;
  a[1][2] -= principalY;
  a[2][0] = 0.0;
  a[2][1] = 0.0;
  a[2][2] = -f;
}

void AerialPhoto::Recompute() {
  ComputeInverse();
  ComputeRotation();
  MultiplySquare(photoToImage.get(), rotation.get(), groundToImage.get(), 3, 3);
  const OwnedMatrix transposed = NewMatrix3();
  TransposeMatrix(rotation.get(), transposed.get(), 3, 3);
  MultiplySquare(transposed.get(), imageToPhoto.get(), imageToGround.get(), 3, 3);
}

void AerialPhoto::ComputeInverse() {
  Matrix identity = inverseScratch.get();
  IdentityMatrix(&identity, 3);
  std::memcpy(photoToImage[0], imageToPhoto[0], 9 * sizeof(double));
  GaussJordan(photoToImage.get(), 3, identity, 3);
}

void AerialPhoto::ComputeRotation() {
  const double sw = Sin(omega);
  const double cw = Cos(omega);
  const double sp = Sin(phi);
  const double cp = Cos(phi);
  const double sk = Sin(kappa);
  const double ck = Cos(kappa);
  const double rows[3][3] = {{cp * ck, cw * sk + sw * sp * ck, sw * sk - cw * sp * ck},
                             {-cp * sk, cw * ck - sw * sp * sk, sw * ck + cw * sp * sk},
                             {sp, -sw * cp, cw * cp}};
  std::memcpy(rotation[0], rows, sizeof rows);
}

void AerialPhoto::SetExterior(double f, double px, double py, double x, double y, double z, double newOmega,
                              double newPhi, double newKappa) {
  focalLength = f;
  principalX = px;
  principalY = py;
  perspectiveX = x;
  perspectiveY = y;
  perspectiveZ = z;
  omega = newOmega;
  phi = newPhi;
  kappa = newKappa;
  ComputeRotation();
}

bool AerialPhoto::IsOriented() const {
  const ConstMatrix a = imageToPhoto.get();
  const double numbers[] = {focalLength, omega,   phi,     kappa,   perspectiveX, perspectiveY, perspectiveZ,
                            a[0][0],     a[0][1], a[0][2], a[1][0], a[1][1],      a[1][2]};
  const auto isFinite = [](double number) { return std::isfinite(number); };
  if (!std::all_of(std::begin(numbers), std::end(numbers), isFinite)) return false;
  return focalLength != 0.0 && a[0][0] * a[1][1] - a[0][1] * a[1][0] != 0.0;
}

double AerialPhoto::GetScale() const {
  return std::fabs(imageToPhoto[0][0]);
}

}  // namespace corvane
