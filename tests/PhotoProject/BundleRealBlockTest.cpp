// An adjustment of the block of photos of the test data, whose orientations and check points are exact.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "ExactBlock.h"
#include "PhotoProject/BundleAdjustment.h"
#include "numerics/LeastSquares.h"
#include "numerics/Point3.h"
#include "support/SharedData.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

constexpr int kStrips = 2;
constexpr int kPhotos = 3;
constexpr double kPixels = 600.0;  // of a photo, in either direction

class BundleRealBlock : public testing::Test {
 protected:
  void SetUp() override {
    const std::string pointsPath = SharedData("block/hills_check_points.txt");
    if (pointsPath.empty()) GTEST_SKIP() << "no test data";
    std::istringstream text(ReadFileBytes(pointsPath));
    for (Point3 point; text >> point.x >> point.y >> point.z;) points_.push_back(point);
    ASSERT_EQ(points_.size(), 20u);
    for (int strip = 0; strip < kStrips; ++strip) {
      project_.photos.emplace_back();
      for (int i = 0; i < kPhotos; ++i) AddPhoto(strip, i);
    }
    project_.photoCount = kStrips * kPhotos;
    AddPoints();
    for (auto& strip : project_.photos) {
      for (auto& photo : strip) Measure(*photo);
    }
  }

  void AddPhoto(int strip, int i) {
    auto photo = std::make_unique<AerialPhoto>();
    photo->name = "hills_s" + std::to_string(strip + 1) + "p" + std::to_string(i + 1);
    ASSERT_EQ(photo->LoadOrientation(SharedData("block/" + photo->name + ".orn")), 1);
    photo->stripIndex = strip;
    photo->photoIndex = i;
    project_.photos.back().push_back(std::move(photo));
  }

  // Every fourth is a pass point, without a position.
  void AddPoints() {
    for (std::size_t n = 0; n < points_.size(); ++n) {
      GroundPoint point;
      point.name = std::to_string(n + 1);
      if (n % 4 == 3) {
        point.type = kPassPoint;
        ++project_.passCount;
      } else {
        point.x = points_[n].x;
        point.y = points_[n].y;
        point.z = points_[n].z;
        ++project_.controlCount;
      }
      project_.AddGroundPoint(point);
    }
  }

  void Measure(AerialPhoto& photo) {
    for (std::size_t n = 0; n < points_.size(); ++n) {
      const GroundPoint& point = project_.groundPoints[n];
      ImageMeasurement measurement = {point.type, point.name, 0.0, 0.0, static_cast<int>(n)};
      photo.GroundToImage(points_[n].x, points_[n].y, points_[n].z, measurement.col, measurement.row);
      const double outside =
          std::max(std::fabs(measurement.col - kPixels / 2), std::fabs(measurement.row - kPixels / 2));
      if (outside < kPixels / 2) JoinMeasurement(project_, photo, measurement);
    }
  }

  // The orientations of all photos: omega, phi, kappa, X, Y, Z each.
  std::vector<double> Orientations() const {
    std::vector<double> numbers;
    for (const auto& strip : project_.photos) {
      for (const auto& photo : strip) {
        numbers.insert(numbers.end(), {photo->omega, photo->phi, photo->kappa, photo->perspectiveX,
                                       photo->perspectiveY, photo->perspectiveZ});
      }
    }
    return numbers;
  }

  void Perturb(double angle, double place) {
    std::mt19937_64 random(5);
    const auto noise = [&](double size) {
      return size * (static_cast<double>(random() >> 11) * 0x1p-52 - 1.0);
    };
    for (auto& strip : project_.photos) {
      for (auto& photo : strip) {
        for (double* const value : {&photo->omega, &photo->phi, &photo->kappa}) *value += noise(angle);
        for (double* const value : {&photo->perspectiveX, &photo->perspectiveY, &photo->perspectiveZ}) {
          *value += noise(place);
        }
        photo->Recompute();
      }
    }
  }

  TempFolder folder_;
  std::vector<Point3> points_;
  PhotoProject project_;
};

// The largest differences of angles and of places.
std::pair<double, double> Differences(const std::vector<double>& a, const std::vector<double>& b) {
  double angle = 0.0;
  double place = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    double& largest = i % 6 < 3 ? angle : place;
    largest = std::max(largest, std::fabs(a[i] - b[i]));
  }
  return {angle, place};
}

TEST_F(BundleRealBlock, StaysWhereItIsIfItIsTrue) {
  const std::vector<double> truth = Orientations();
  RunBundleAdjustment(project_);
  const auto [angle, place] = Differences(Orientations(), truth);
  EXPECT_LT(angle, 1e-9);
  EXPECT_LT(place, 1e-6);
}

// The rotations of the start stay in all rounds, and with them what the angles lack: each round adds it once
// more. So the angles are near the truth after the first round, and as far beyond it as twice their error at
// the start after the third. The places come back for good.
TEST_F(BundleRealBlock, ComesBackNearTheTruth) {
  const std::vector<double> truth = Orientations();
  Perturb(0.0005, 1.0);
  const std::vector<double> start = Orientations();
  BundleSystem system;
  BuildDesign(project_, system);
  project_.measurementCursor = 0;
  std::vector<double> x(static_cast<std::size_t>(system.cols));
  ASSERT_EQ(LeastSquares(system.a.get(), system.l.get(), system.rows, system.cols, x.data()), 1);
  for (std::size_t i = 0; i < start.size(); ++i) {
    EXPECT_NEAR(start[i] + x[i], truth[i], i % 6 < 3 ? 1e-4 : 0.1) << i;
  }

  RunBundleAdjustment(project_);
  const std::vector<double> end = Orientations();
  for (std::size_t i = 0; i < end.size(); ++i) {
    const bool isAngle = i % 6 < 3;
    const double wanted = isAngle ? start[i] + 3.0 * (truth[i] - start[i]) : truth[i];
    EXPECT_NEAR(end[i], wanted, isAngle ? 1e-4 : 0.01) << i;
  }
}

}  // namespace
}  // namespace corvane
