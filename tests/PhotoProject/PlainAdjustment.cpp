#include "PlainAdjustment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "numerics/PlainLinear.h"

namespace corvane {

namespace {

using Row = PlainAdjustment::Row;
using Rotation = PlainAdjustment::Rotation;

constexpr double kLargest = std::numeric_limits<double>::max();

double Dot(const Row& a, const Row& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Rotation Product(const Rotation& a, const Rotation& b) {
  Rotation c = {};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      for (std::size_t k = 0; k < 3; ++k) c[i][j] += a[i][k] * b[k][j];
    }
  }
  return c;
}

Rotation AboutX(double s, double c) {
  return {{{1, 0, 0}, {0, c, s}, {0, -s, c}}};
}
Rotation AboutZ(double s, double c) {
  return {{{c, s, 0}, {-s, c, 0}, {0, 0, 1}}};
}

// omega about X, then phi about Y, then kappa about Z.
Rotation RotationOf(const std::array<double, 6>& e) {
  const double s = std::sin(e[1]), c = std::cos(e[1]);
  const Rotation aboutY = {{{c, 0, -s}, {0, 1, 0}, {s, 0, c}}};
  return Product(AboutZ(std::sin(e[2]), std::cos(e[2])),
                 Product(aboutY, AboutX(std::sin(e[0]), std::cos(e[0]))));
}

// The derivative of RotationOf by phi.
Rotation RotationByPhi(const std::array<double, 6>& e) {
  const double s = std::sin(e[1]), c = std::cos(e[1]);
  const Rotation aboutY = {{{-s, 0, -c}, {0, 0, 0}, {c, 0, -s}}};
  return Product(AboutZ(std::sin(e[2]), std::cos(e[2])),
                 Product(aboutY, AboutX(std::sin(e[0]), std::cos(e[0]))));
}

Rotation RotationIn(ConstMatrix m) {
  Rotation r = {};
  for (std::size_t i = 0; i < 3; ++i) std::copy_n(m[i], 3, r[i].begin());
  return r;
}

}  // namespace

PlainAdjustment::PlainAdjustment(const PhotoProject& project) : passPoints(project.passPoints) {
  std::vector<int> firstPhotos;
  for (const auto& strip : project.photos) {
    firstPhotos.push_back(static_cast<int>(photos.size()));
    for (const auto& photo : strip) {
      const std::array<double, 6> exterior = {photo->omega,        photo->phi,          photo->kappa,
                                              photo->perspectiveX, photo->perspectiveY, photo->perspectiveZ};
      photos.push_back({exterior,
                        photo->focalLength,
                        {photo->principalX, photo->principalY},
                        RotationIn(photo->imageToPhoto.get()),
                        RotationOf(exterior),
                        photo->measurements});
    }
  }
  for (const GroundPoint& point : project.groundPoints) {
    points.push_back({{point.x, point.y, point.z}, {}});
    for (std::size_t i = 0; i < point.stripIndices.size(); ++i) {
      const int first = firstPhotos[static_cast<std::size_t>(point.stripIndices[i])];
      points.back().rays.push_back({first + point.photoIndices[i], point.measurementIndices[i]});
    }
  }
}

// The direction on the ground: R transposed times the photo vector.
Row PlainAdjustment::RayOf(const Photo& photo, const ImageMeasurement& measurement) const {
  Row onPhoto = {};
  for (std::size_t i = 0; i < 3; ++i)
    onPhoto[i] = Dot(photo.interior[i], {measurement.col, measurement.row, 1.0});
  Row ray = {};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) ray[i] += photo.rotation[j][i] * onPhoto[j];
  }
  return ray;
}

// Where two rays are nearest: the lengths s, t along them solve the normal equations of s d - t e = B.
bool PlainAdjustment::FindPlace(Point& point) const {
  if (point.rays.size() < 2) return false;
  Row rays[2];
  Row centres[2];
  for (std::size_t i = 0; i < 2; ++i) {
    const Photo& photo = photos[static_cast<std::size_t>(point.rays[i][0])];
    rays[i] = RayOf(photo, photo.measurements[static_cast<std::size_t>(point.rays[i][1])]);
    centres[i] = {photo.exterior[3], photo.exterior[4], photo.exterior[5]};
  }
  const Row base = {centres[1][0] - centres[0][0], centres[1][1] - centres[0][1],
                    centres[1][2] - centres[0][2]};
  const double dd = Dot(rays[0], rays[0]), de = Dot(rays[0], rays[1]), ee = Dot(rays[1], rays[1]);
  const double db = Dot(rays[0], base), eb = Dot(rays[1], base);
  const double s = (db * ee - eb * de) / (dd * ee - de * de);
  const double t = (db * de - eb * dd) / (dd * ee - de * de);
  for (std::size_t i = 0; i < 3; ++i) {
    point.place[i] = 0.5 * (centres[0][i] + s * rays[0][i]) + 0.5 * (centres[1][i] + t * rays[1][i]);
  }
  return true;
}

void PlainAdjustment::Observe(std::size_t k, const ImageMeasurement& measurement, std::size_t row) {
  const Photo& photo = photos[k];
  const auto& e = photo.exterior;
  Point& point = points[static_cast<std::size_t>(measurement.groundIndex)];
  if (point.place == std::array<double, 3>{kLargest, kLargest, kLargest} && !FindPlace(point)) return;

  const Row d = {point.place[0] - e[3], point.place[1] - e[4], point.place[2] - e[5]};
  const Rotation byPhi = RotationByPhi(e);
  const double w = Dot(photo.rotation[2], d);
  for (std::size_t i = 0; i < 2; ++i) {  // the x and the y row: of -f n / w
    std::vector<double>& equation = a[row + i];
    const double n = Dot(photo.rotation[i], d);
    const auto quotient = [&](double ofN, double ofW) { return -photo.f * (ofN * w - n * ofW) / (w * w); };
    const Row byOmega = {0.0, d[2], -d[1]};  // d R / d omega is R times a turn about X
    equation[6 * k] = quotient(Dot(photo.rotation[i], byOmega), Dot(photo.rotation[2], byOmega));
    equation[6 * k + 1] = quotient(Dot(byPhi[i], d), Dot(byPhi[2], d));
    const double other = Dot(photo.rotation[1 - i], d);
    equation[6 * k + 2] = quotient(i == 0 ? other : -other, 0.0);
    for (std::size_t j = 0; j < 3; ++j) {
      const double byPlace = quotient(photo.rotation[i][j], photo.rotation[2][j]);
      equation[6 * k + 3 + j] = -byPlace;
      if (measurement.type != kPassPoint) continue;
      const auto isSame = [&](const ImageMeasurement& pass) { return pass.name == measurement.name; };
      const auto place = std::find_if(passPoints.begin(), passPoints.end(), isSame) - passPoints.begin();
      equation[6 * photos.size() + 3 * static_cast<std::size_t>(place) + j] = byPlace;
    }
    const double onPhoto = Dot(photo.interior[i], {measurement.col, measurement.row, 1.0});
    l[row + i] = onPhoto - photo.principal[i] + photo.f * n / w;
  }
}

void PlainAdjustment::Build() {
  std::size_t nRows = 0;
  for (const Photo& photo : photos) nRows += 2 * photo.measurements.size();
  a.resize(nRows, std::vector<double>(6 * photos.size() + 3 * passPoints.size(), 0.0));
  l.resize(nRows, 0.0);
  std::size_t row = 0;
  for (std::size_t k = 0; k < photos.size(); ++k) {
    for (const ImageMeasurement& measurement : photos[k].measurements) {
      Observe(k, measurement, row);
      row += 2;
    }
  }
}

std::vector<double> PlainAdjustment::Solve() const {
  const int m = static_cast<int>(a.size());
  const int n = static_cast<int>(6 * photos.size() + 3 * passPoints.size());
  std::vector<const double*> rows;
  for (const auto& row : a) rows.push_back(row.data());
  const OwnedMatrix normal(AllocMatrix(n, n));
  const OwnedMatrix x(AllocMatrix(n, 1));
  PlainNormalMatrix(rows.data(), nullptr, m, n, normal.get());
  PlainNormalVector(rows.data(), l.data(), nullptr, m, n, x[0]);
  PlainGaussJordan(normal.get(), n, x.get(), 1);
  return {x[0], x[0] + n};
}

void ExpectSameSystem(const BundleSystem& system, const PlainAdjustment& plain, double tolerance) {
  ASSERT_EQ(static_cast<std::size_t>(system.rows), plain.a.size());
  for (int i = 0; i < system.rows; ++i) {
    const auto& row = plain.a[static_cast<std::size_t>(i)];
    ASSERT_EQ(static_cast<std::size_t>(system.cols), row.size());
    for (int j = 0; j < system.cols; ++j) {
      const double wanted = row[static_cast<std::size_t>(j)];
      EXPECT_NEAR(system.a[i][j], wanted, tolerance * std::max(1.0, std::fabs(wanted))) << i << ", " << j;
    }
    const double wanted = plain.l[static_cast<std::size_t>(i)];
    EXPECT_NEAR(system.l[i], wanted, 10 * tolerance * std::max(1.0, std::fabs(wanted))) << i;
  }
}

void ExpectSameState(const PhotoProject& project, const PlainAdjustment& plain) {
  const auto expectNear = [](double value, double wanted, const std::string& what) {
    EXPECT_NEAR(value, wanted, 1e-9 * std::fabs(wanted) + 1e-12) << what;
  };
  std::size_t k = 0;
  for (const auto& strip : project.photos) {
    for (const auto& photo : strip) {
      const double values[] = {photo->omega,        photo->phi,          photo->kappa,
                               photo->perspectiveX, photo->perspectiveY, photo->perspectiveZ};
      for (std::size_t i = 0; i < 6; ++i) expectNear(values[i], plain.photos[k].exterior[i], photo->name);
      ++k;
    }
  }
  for (std::size_t j = 0; j < plain.points.size(); ++j) {
    const GroundPoint& point = project.groundPoints[j];
    expectNear(point.x, plain.points[j].place[0], point.name);
    expectNear(point.y, plain.points[j].place[1], point.name);
    expectNear(point.z, plain.points[j].place[2], point.name);
  }
}

void PlainAdjustment::Apply(const std::vector<double>& x) {
  for (std::size_t k = 0; k < photos.size(); ++k) {
    for (std::size_t i = 0; i < 6; ++i) photos[k].exterior[i] += x[6 * k + i];
  }
  for (std::size_t j = 0; j < passPoints.size(); ++j) {
    Point& point = points[static_cast<std::size_t>(passPoints[j].groundIndex)];
    for (std::size_t i = 0; i < 3; ++i) point.place[i] += x[6 * photos.size() + 3 * j + i];
  }
}

}  // namespace corvane
