#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "sample_survey/Scene.h"

namespace corvane {

class Random;

// One return of a laser pulse: whole millimetres on the ground.
struct SurveyPoint {
  std::int64_t x = 0;
  std::int64_t y = 0;
  std::int64_t z = 0;
  PointClass pointClass = PointClass::Ground;
};

// The errors of the scanner, in metres: standard deviations of single points, and the most by which the
// heights of a whole strip are off. No single error goes beyond Random::kNormalLimit deviations.
constexpr double kHeightNoise = 0.03;
constexpr double kPlaneNoise = 0.05;
constexpr double kStripOffset = 0.02;

// A flight over the scene with a laser scanner: strips to the north that overlap by a quarter, zigzag scan
// lines, about one point a square metre and about twice as many where strips overlap. Pulses go straight
// down; a pulse may give several returns, on wires, in crowns and on the ground beneath.
class LaserScan {
 public:
  static constexpr std::size_t kMaxReturns = 4;
  using Returns = std::array<SurveyPoint, kMaxReturns>;

  // Chooses the pulse rate so that about `nPoints` points come, within 1 percent.
  LaserScan(const Scene& scene, std::uint64_t seed, std::int64_t nPoints);

  std::int64_t GetStripCount() const { return nStrips_; }
  std::int64_t GetPulsesPerStrip() const { return nPulsesPerStrip_; }

  // The returns of a pulse from top to bottom, written to `buffer`. None if the pulse misses the square.
  // Strips count from the west, pulses from the south in the order of time.
  std::span<const SurveyPoint> GetReturns(std::int64_t strip, std::int64_t pulse, Returns& buffer) const;

 private:
  struct Shot;

  Shot Aim(std::int64_t strip, std::int64_t pulse, Random& random) const;
  std::int64_t EstimatePoints() const;

  const Scene& scene_;
  std::uint64_t seed_;
  std::int64_t nStrips_;
  double stripStep_;  // metres from one flight line to the next
  std::int64_t nPulsesPerStrip_;
};

}  // namespace corvane
