#include "OpenGL/Stereo_2Cursor/PhotoIntersection.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "OpenGL/Stereo_2Cursor/Collinearity.h"
#include "OpenGL/Stereo_2Cursor/Matrix3.h"
#include "numerics/LeastSquares.h"
#include "numerics/MatrixText.h"

namespace corvane {

namespace {

constexpr int kMaxRounds = 10;
constexpr double kLeastHeightChange = 0.01;  // ground units
constexpr double kLeastCorrection = 1e-6;    // ground units

// a - b, or zero where that is nothing but rounding.
double Difference(double a, double b) {
  constexpr double kRounding = 1e-13;
  const double difference = a - b;
  return std::fabs(difference) <= kRounding * (std::fabs(a) + std::fabs(b)) ? 0.0 : difference;
}

// The change of height after which the place on a ray shows nearest to a pixel, if its place in the photo
// went on changing as it does; not a number if it does not change. `direction` is the ray's with a third
// component of 1, so that it is also the change of the ground point with the height.
double HeightStep(const AerialPhoto& photo, const Point3& ground, const double direction[3],
                  const double pixel[2]) {
  const ConstMatrix p = photo.groundToImage.get();
  const double d[3] = {ground.x - photo.perspectiveX, ground.y - photo.perspectiveY,
                       ground.z - photo.perspectiveZ};
  double n[3];       // homogeneous place in the image
  double change[3];  // of it with the height
  MultiplyVector3(p, d, n);
  MultiplyVector3(p, direction, change);
  const double perHeight[2] = {Difference(change[0] * n[2], n[0] * change[2]) / (n[2] * n[2]),
                               Difference(change[1] * n[2], n[1] * change[2]) / (n[2] * n[2])};
  const double rest[2] = {pixel[0] - n[0] / n[2], pixel[1] - n[1] / n[2]};
  return (rest[0] * perHeight[0] + rest[1] * perHeight[1]) /
         (perHeight[0] * perHeight[0] + perHeight[1] * perHeight[1]);
}

void AppendRow(std::string& text, const double* numbers, int n) {
  for (int i = 0; i < n; ++i) {
    if (i > 0) text += ", ";
    AppendElement(text, numbers[i], Zeros::Long);
  }
  text += '\n';
}

// The equations of all rays, two rows each, for three corrections.
struct RaySystem {
  explicit RaySystem(int nRays) : rows(2 * nRays), b(AllocMatrix(rows, 3)), e(NewArray<double>(rows)) {}

  bool IsThere() const { return b && e; }

  void Build(std::span<const PhotoRay> rays, const Point3& point) {
    for (std::size_t i = 0; i < rays.size(); ++i) BuildRay(rays[i], point, 2 * static_cast<int>(i));
  }

  void AppendTo(std::string& log) const {
    log += "\nB:\n";
    for (int row = 0; row < rows; ++row) AppendRow(log, b[row], 3);
    log += "\nE:\n";
    for (int row = 0; row < rows; ++row) AppendRow(log, &e[static_cast<std::size_t>(row)], 1);
  }

  int rows;
  OwnedMatrix b;         // rows x 3
  OwnedArray<double> e;  // rows

 private:
  void BuildRay(const PhotoRay& ray, const Point3& point, int row) {
    const AerialPhoto& photo = *ray.photo;
    const double pixel[2] = {ray.pixel.x, ray.pixel.y};
    double v[3];
    photo.ImageToPhoto(pixel, v);
    const ObservationRecord record = {.type = ObservationRecord::kPass,
                                      .x = v[0],
                                      .y = v[1],
                                      .groundX = point.x,
                                      .groundY = point.y,
                                      .groundZ = point.z};
    // ImageToPhoto has taken the principal point off.
    const InteriorElements interior = {.focalLength = photo.focalLength};
    const ExteriorElements exterior = {.omega = photo.omega,
                                       .phi = photo.phi,
                                       .kappa = photo.kappa,
                                       .x = photo.perspectiveX,
                                       .y = photo.perspectiveY,
                                       .z = photo.perspectiveZ};
    CollinearityPointRow(record, interior, exterior, photo.rotation.get(), b.get() + row, e.get() + row, 0);
  }
};

bool IsFinite(const Point3& point) {
  return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

Point3 IntersectFirstTwo(std::span<const PhotoRay> rays) {
  const double p[2] = {rays[0].pixel.x, rays[0].pixel.y};
  const double q[2] = {rays[1].pixel.x, rays[1].pixel.y};
  double out[3];
  IntersectRays(*rays[0].photo, *rays[1].photo, p, q, out);
  return {out[0], out[1], out[2]};
}

}  // namespace

int RefineHeight(const AerialPhoto& left, const AerialPhoto& right, const double pLeft[2],
                 const double pRight[2], double& z) {
  double ray[3];
  left.ImageRay(pLeft, ray);
  const double direction[3] = {ray[0] / ray[2], ray[1] / ray[2], 1.0};
  double height = z;
  for (int round = 0; round < kMaxRounds; ++round) {
    const double below = height - left.perspectiveZ;
    const Point3 ground = {left.perspectiveX + below * direction[0], left.perspectiveY + below * direction[1],
                           height};
    const double step = HeightStep(right, ground, direction, pRight);
    if (!std::isfinite(step)) return -1;
    height += step;
    if (std::fabs(step) < kLeastHeightChange) {
      z = height;
      return 1;
    }
  }
  z = height;
  return 0;
}

int IntersectMany(std::span<const PhotoRay> rays, Point3& point, std::string* log) {
  constexpr std::size_t kMostRays = std::numeric_limits<int>::max() / 2;
  if (rays.size() < 2 || rays.size() > kMostRays) return -1;
  RaySystem system(static_cast<int>(rays.size()));
  Point3 found = IntersectFirstTwo(rays);
  if (!system.IsThere() || !IsFinite(found)) return -1;
  bool isSmall = false;
  for (int round = 0; round < kMaxRounds && !isSmall; ++round) {
    system.Build(rays, found);
    if (log) system.AppendTo(*log);
    double x[3];
    if (LeastSquaresCholesky(system.b.get(), system.e.get(), system.rows, 3, x) < 0) return -1;
    if (log) {
      *log += "\ndeltaParam:\n";
      AppendRow(*log, x, 3);
    }
    found = {found.x + x[0], found.y + x[1], found.z + x[2]};
    if (!IsFinite(found)) return -1;
    isSmall = std::all_of(x, x + 3, [](double change) { return std::fabs(change) < kLeastCorrection; });
  }
  point = found;
  return isSmall ? 1 : 0;
}

}  // namespace corvane
