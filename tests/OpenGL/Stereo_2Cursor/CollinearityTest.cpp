#include "OpenGL/Stereo_2Cursor/Collinearity.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "numerics/Angles.h"

namespace corvane {
namespace {

using Rotation = std::array<std::array<double, 3>, 3>;

// Turns about the axes one after the other: omega about X, then phi about Y, then kappa about Z.
Rotation Product(const Rotation& a, const Rotation& b) {
  Rotation c = {};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      for (std::size_t k = 0; k < 3; ++k) c[i][j] += a[i][k] * b[k][j];
    }
  }
  return c;
}

Rotation RotationOf(const ExteriorElements& e) {
  const double sw = std::sin(e.omega), cw = std::cos(e.omega);
  const double sp = std::sin(e.phi), cp = std::cos(e.phi);
  const double sk = std::sin(e.kappa), ck = std::cos(e.kappa);
  const Rotation aboutX = {{{1, 0, 0}, {0, cw, sw}, {0, -sw, cw}}};
  const Rotation aboutY = {{{cp, 0, -sp}, {0, 1, 0}, {sp, 0, cp}}};
  const Rotation aboutZ = {{{ck, sk, 0}, {-sk, ck, 0}, {0, 0, 1}}};
  return Product(aboutZ, Product(aboutY, aboutX));
}

// Photo coordinates by the collinearity equations.
std::array<double, 2> Project(double f, const ExteriorElements& e, const double (&ground)[3]) {
  const Rotation r = RotationOf(e);
  const double d[3] = {ground[0] - e.x, ground[1] - e.y, ground[2] - e.z};
  double n[3] = {};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) n[i] += r[i][j] * d[j];
  }
  return {-f * n[0] / n[2], -f * n[1] / n[2]};
}

// Two rows of nine columns: six of the photo, three of the point, which begin as 7.
class Collinearity : public testing::Test {
 protected:
  static constexpr int kCols = 9;

  Collinearity() {
    for (int i = 0; i < 2 * kCols; ++i) rows_[0][i] = 7.0;
  }

  void SetRotation(const Rotation& r) {
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j)
        rotation_[i][j] = r[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
    }
  }

  std::vector<double> Row(int i) const { return {rows_[i], rows_[i] + kCols}; }

  void Run(const ObservationRecord& record, const InteriorElements& interior,
           const ExteriorElements& exterior) {
    CollinearityRow(record, interior, exterior, rotation_.get(), rows_.get(), l_, 0, 6);
  }

  const OwnedMatrix rotation_{AllocMatrix(3, 3)};
  const OwnedMatrix rows_{AllocMatrix(2, kCols)};
  double l_[2] = {7.0, 7.0};
};

// A level photo 1500 above the ground, D = (300, 150, -1500): the point lies at (30, 15) in it. By hand, from
// the table of derivatives.
TEST_F(Collinearity, OfALevelPhoto) {
  SetRotation({{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}});
  const ObservationRecord record = {ObservationRecord::kPass, 30.5, 14.75, 1300.0, 2150.0, 100.0};
  Run(record, {150.0, 0.0, 0.0}, {0.0, 0.0, 0.0, 1000.0, 2000.0, 1600.0});
  const double x[] = {-3.0, 156.0, 15.0, -0.1, 0.0, -0.02, 0.1, 0.0, 0.02};
  const double y[] = {-151.5, 3.0, -30.0, 0.0, -0.1, -0.01, 0.0, 0.1, 0.01};
  for (int j = 0; j < kCols; ++j) {
    EXPECT_DOUBLE_EQ(rows_[0][j], x[j]) << j;
    EXPECT_DOUBLE_EQ(rows_[1][j], y[j]) << j;
  }
  EXPECT_DOUBLE_EQ(l_[0], 0.5);
  EXPECT_DOUBLE_EQ(l_[1], -0.25);
}

TEST_F(Collinearity, RowsAreTheDerivatives) {
  const double f = 152.3;
  const ExteriorElements exterior = {0.12, -0.21, 1.9, 5010.0, 7990.0, 1810.0};
  const double ground[3] = {5400.0, 7700.0, 310.0};
  SetRotation(RotationOf(exterior));
  Run({ObservationRecord::kPass, 0.0, 0.0, ground[0], ground[1], ground[2]}, {f, 0.0, 0.0}, exterior);

  const double steps[kCols] = {1e-5, 1e-5, 1e-5, 0.1, 0.1, 0.1, 0.1, 0.1, 0.1};
  for (int j = 0; j < kCols; ++j) {
    const auto at = [&](double step) {
      ExteriorElements e = exterior;
      double g[3] = {ground[0], ground[1], ground[2]};
      double* const unknowns[kCols] = {&e.omega, &e.phi, &e.kappa, &e.x, &e.y, &e.z, &g[0], &g[1], &g[2]};
      *unknowns[j] += step;
      return Project(f, e, g);
    };
    const auto ahead = at(steps[j]);
    const auto behind = at(-steps[j]);
    for (int i = 0; i < 2; ++i) {
      const auto k = static_cast<std::size_t>(i);
      const double difference = (ahead[k] - behind[k]) / (2.0 * steps[j]);
      EXPECT_NEAR(rows_[i][j], difference, 1e-7 * (1.0 + std::fabs(difference)))
          << "row " << i << ", column " << j;
    }
  }
  const auto place = Project(f, exterior, ground);
  EXPECT_NEAR(l_[0], -place[0], 1e-11);
  EXPECT_NEAR(l_[1], -place[1], 1e-11);
}

// Later rounds hand over new angles with the first rotation: the derivative by phi follows the angles, all
// others and U, V, W the rotation. To the bit, by the table.
TEST_F(Collinearity, TakesTheRotationAsGivenAndTheSinesOfTheAngles) {
  const Rotation r = RotationOf({0.05, -0.03, 0.4, 0.0, 0.0, 0.0});
  SetRotation(r);
  const ExteriorElements e = {0.3, 0.2, -0.7, 100.0, 200.0, 900.0};
  const double f = 150.0;
  Run({ObservationRecord::kControl, 1.5, -2.5, 350.0, 120.0, 55.0}, {f, 0.0, 0.0}, e);

  const double dX = 250.0, dY = -80.0, dZ = -845.0;
  const double U = r[0][0] * dX + r[0][1] * dY + r[0][2] * dZ;
  const double V = r[1][0] * dX + r[1][1] * dY + r[1][2] * dZ;
  const double W = r[2][0] * dX + r[2][1] * dY + r[2][2] * dZ;
  const double sw = Sin(0.3), cw = Cos(0.3), sp = Sin(0.2), cp = Cos(0.2), sk = Sin(-0.7), ck = Cos(-0.7);
  const double T = cp * dX + sw * sp * dY - cw * sp * dZ;
  const double x[] = {f * ((-r[2][2] * dY + r[2][1] * dZ) * U - (-r[0][2] * dY + r[0][1] * dZ) * W) / (W * W),
                      f * (T * U - (-sp * ck * dX + sw * cp * ck * dY - cw * cp * ck * dZ) * W) / (W * W),
                      -f * V / W,
                      -f * (U * r[2][0] - W * r[0][0]) / (W * W),
                      -f * (U * r[2][1] - W * r[0][1]) / (W * W),
                      -f * (U * r[2][2] - W * r[0][2]) / (W * W)};
  const double y[] = {f * ((-r[2][2] * dY + r[2][1] * dZ) * V - (-r[1][2] * dY + r[1][1] * dZ) * W) / (W * W),
                      f * (T * V - (sp * sk * dX - sw * cp * sk * dY + cw * cp * sk * dZ) * W) / (W * W),
                      f * U / W,
                      -f * (V * r[2][0] - W * r[1][0]) / (W * W),
                      -f * (V * r[2][1] - W * r[1][1]) / (W * W),
                      -f * (V * r[2][2] - W * r[1][2]) / (W * W)};
  for (int j = 0; j < 6; ++j) {
    EXPECT_EQ(rows_[0][j], x[j]) << j;
    EXPECT_EQ(rows_[1][j], y[j]) << j;
  }
  EXPECT_EQ(l_[0], 1.5 + f * U / W);
  EXPECT_EQ(l_[1], -2.5 + f * V / W);
}

TEST_F(Collinearity, OfAControlPointLeavesThePointsColumns) {
  SetRotation({{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}});
  Run({ObservationRecord::kControl, 0.0, 0.0, 300.0, 150.0, -1500.0}, {150.0, 0.0, 0.0}, {});
  for (int j = 6; j < kCols; ++j) {
    EXPECT_EQ(rows_[0][j], 7.0);
    EXPECT_EQ(rows_[1][j], 7.0);
  }
}

TEST_F(Collinearity, OfAPassPointHasTheNegativesOfTheCentreInThePointsColumns) {
  SetRotation(RotationOf({0.1, 0.2, 0.3, 0.0, 0.0, 0.0}));
  Run({ObservationRecord::kPass, 0.0, 0.0, 300.0, 150.0, -1500.0}, {150.0, 0.0, 0.0}, {0.1, 0.2, 0.3});
  for (int j = 0; j < 3; ++j) {
    EXPECT_EQ(rows_[0][6 + j], -rows_[0][3 + j]);
    EXPECT_EQ(rows_[1][6 + j], -rows_[1][3 + j]);
  }
}

TEST_F(Collinearity, WritesIntoTheColumnsTold) {
  SetRotation({{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}});
  const OwnedMatrix wide(AllocMatrix(2, 14));
  const ObservationRecord record = {ObservationRecord::kPass, 0.0, 0.0, 300.0, 150.0, -1500.0};
  CollinearityRow(record, {150.0, 0.0, 0.0}, {}, rotation_.get(), wide.get(), l_, 2, 10);
  Run(record, {150.0, 0.0, 0.0}, {});
  for (int j = 0; j < 14; ++j) {
    const bool isPhoto = j >= 2 && j < 8;
    const bool isPoint = j >= 10 && j < 13;
    EXPECT_EQ(wide[0][j], isPhoto ? rows_[0][j - 2] : isPoint ? rows_[0][j - 4] : 0.0) << j;
  }
}

// The photo coordinates of a record already have it taken off; it is taken off again.
TEST_F(Collinearity, TakesThePrincipalPointOffOnceMore) {
  SetRotation({{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}});
  const ObservationRecord record = {ObservationRecord::kControl, 30.0, 15.0, 300.0, 150.0, -1500.0};
  Run(record, {150.0, 0.25, -0.5}, {});
  EXPECT_DOUBLE_EQ(l_[0], -0.25);
  EXPECT_DOUBLE_EQ(l_[1], 0.5);
}

TEST_F(Collinearity, OfAPointAloneHasItsColumnsWhateverTheType) {
  SetRotation(RotationOf({0.1, 0.2, 0.3, 0.0, 0.0, 0.0}));
  ObservationRecord record = {ObservationRecord::kPass, 3.0, 4.0, 300.0, 150.0, -1500.0};
  Run(record, {150.0, 0.25, -0.5}, {0.1, 0.2, 0.3});
  const OwnedMatrix alone(AllocMatrix(2, 4));
  double l[2] = {};
  record.type = ObservationRecord::kControl;
  CollinearityPointRow(record, {150.0, 0.25, -0.5}, {0.1, 0.2, 0.3}, rotation_.get(), alone.get(), l, 1);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(alone[i][0], 0.0);
    for (int j = 0; j < 3; ++j) EXPECT_EQ(alone[i][1 + j], rows_[i][6 + j]);
    EXPECT_EQ(l[i], l_[i]);
  }
}

// A point in the plane of the perspective centre has no place in the photo.
TEST_F(Collinearity, OfAPointBesideTheCentreIsNotFinite) {
  SetRotation({{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}});
  Run({ObservationRecord::kControl, 0.0, 0.0, 300.0, 150.0, 0.0}, {150.0, 0.0, 0.0}, {});
  EXPECT_FALSE(std::isfinite(rows_[0][0]));
  EXPECT_FALSE(std::isfinite(l_[0]));
}

}  // namespace
}  // namespace corvane
