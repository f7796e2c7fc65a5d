#pragma once

#include <array>
#include <vector>

#include "PhotoProject/BundleAdjustment.h"
#include "PhotoProject/PhotoProject.h"

namespace corvane {

// The adjustment as its definition reads, on vectors of its own: what RunBundleAdjustment has to come to. It
// shares no code with it but the plain solver.
class PlainAdjustment {
 public:
  using Row = std::array<double, 3>;
  using Rotation = std::array<Row, 3>;

  struct Photo {
    std::array<double, 6> exterior;  // omega, phi, kappa, X, Y, Z
    double f;
    double principal[2];
    Rotation interior;  // A
    Rotation rotation;  // R of the start
    std::vector<ImageMeasurement> measurements;
  };

  struct Point {
    std::array<double, 3> place;
    std::vector<std::array<int, 2>> rays;  // photo, measurement
  };

  explicit PlainAdjustment(const PhotoProject& project);

  void Build();
  std::vector<double> Solve() const;  // x
  void Apply(const std::vector<double>& x);

  std::vector<Photo> photos;
  std::vector<Point> points;
  std::vector<ImageMeasurement> passPoints;
  std::vector<std::vector<double>> a;
  std::vector<double> l;

 private:
  bool FindPlace(Point& point) const;
  void Observe(std::size_t photo, const ImageMeasurement& measurement, std::size_t row);
  Row RayOf(const Photo& photo, const ImageMeasurement& measurement) const;
};

// Expects of each number of A that it differs by at most `tolerance` times the larger of 1 and the wanted
// one, and of l ten times as much: there nearly equal numbers are subtracted.
void ExpectSameSystem(const BundleSystem& system, const PlainAdjustment& plain, double tolerance);
// Expects orientations and ground points within 1e-9 of the wanted ones.
void ExpectSameState(const PhotoProject& project, const PlainAdjustment& plain);

}  // namespace corvane
