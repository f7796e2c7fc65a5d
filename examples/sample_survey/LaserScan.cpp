#include "sample_survey/LaserScan.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "sample_survey/Random.h"

namespace corvane {

namespace {

constexpr double kWantedStripStep = 120.0;  // metres
constexpr double kSwathOverStep = 1.25;     // swath width over the distance of the flight lines
constexpr double kWander = 3.0;             // metres, of the aircraft to either side
constexpr double kAimError = 0.15;          // metres, to either side

constexpr double kLowNoiseShare = 0.0001;
constexpr double kHighNoiseShare = 0.00007;

constexpr double kWireReach = 0.25;  // metres from the wire's middle to the edge of the beam
constexpr double kWireShare = 0.6;   // of the pulses that touch a wire give a return from it
constexpr double kPylonShare = 0.7;

constexpr double kSecondCrownShare = 0.45;
constexpr double kGroundUnderCrownShare = 0.55;

// Collects the returns of one pulse with the scanner's errors.
class ReturnList {
 public:
  ReturnList(LaserScan::Returns& buffer, Random& random, double x, double y, double stripOffset)
      : buffer_(buffer), random_(random), x_(x), y_(y), stripOffset_(stripOffset) {}

  void Add(double z, PointClass pointClass) {
    if (nReturns_ == buffer_.size()) return;
    SurveyPoint& point = buffer_[nReturns_++];
    point.x = ToMillimetres(x_ + kPlaneNoise * random_.Normal());
    point.y = ToMillimetres(y_ + kPlaneNoise * random_.Normal());
    point.z = ToMillimetres(z + stripOffset_ + kHeightNoise * random_.Normal());
    point.pointClass = pointClass;
  }

  std::span<const SurveyPoint> Get() const { return {buffer_.data(), nReturns_}; }

 private:
  LaserScan::Returns& buffer_;
  Random& random_;
  double x_;
  double y_;
  double stripOffset_;
  std::size_t nReturns_ = 0;
};

// Reflections from birds and mist, and from light that took a longer way. True if the pulse was lost to one.
bool AddNoise(double groundZ, Random& random, ReturnList& returns) {
  const double chance = random.Uniform();
  if (chance >= kLowNoiseShare + kHighNoiseShare) return false;
  if (chance < kLowNoiseShare) {
    returns.Add(groundZ - 3.0 - 9.0 * random.Uniform(), PointClass::LowNoise);
  } else {
    returns.Add(groundZ + 35.0 + 45.0 * random.Uniform(), PointClass::HighNoise);
  }
  return true;
}

void AddWireOrPylon(const Scene& scene, double x, double y, Random& random, ReturnList& returns) {
  if (const auto pylon = scene.PylonHeights(x, y)) {
    const double z = pylon->bottomZ + (pylon->topZ - pylon->bottomZ) * random.Uniform();
    if (random.Uniform() < kPylonShare) returns.Add(z, PointClass::Pylon);
  } else if (const auto wire = scene.WireHeight(x, y, kWireReach)) {
    if (random.Uniform() < kWireShare) returns.Add(*wire, PointClass::Wire);
  }
}

// The returns from within a crown. True if the pulse goes on to what lies beneath.
bool AddCrown(const HeightRange& crown, double solidZ, Random& random, ReturnList& returns) {
  const double bottom = std::max(crown.bottomZ, solidZ);
  const double depth = crown.topZ - bottom;
  const double chance = random.Uniform();
  const double first = crown.topZ - 0.3 * depth * chance * chance;
  returns.Add(first, PointClass::Vegetation);
  if (first - bottom > 2.0 && random.Uniform() < kSecondCrownShare) {
    returns.Add(bottom + (first - 1.0 - bottom) * random.Uniform(), PointClass::Vegetation);
  }
  return random.Uniform() < kGroundUnderCrownShare;
}

}  // namespace

struct LaserScan::Shot {
  double x;
  double y;
};

LaserScan::LaserScan(const Scene& scene, std::uint64_t seed, std::int64_t nPoints)
    : scene_(scene), seed_(seed) {
  const double side = scene.GetSide();
  nStrips_ = std::max<std::int64_t>(static_cast<std::int64_t>(side / kWantedStripStep + 0.5), 1);
  stripStep_ = side / static_cast<double>(nStrips_);
  nPulsesPerStrip_ = nPoints / nStrips_ + 1;
  for (int attempt = 0; attempt < 20; ++attempt) {
    const std::int64_t estimate = EstimatePoints();
    if (std::abs(estimate - nPoints) <= nPoints / 100) return;
    const double factor =
        static_cast<double>(nPoints) / static_cast<double>(std::max<std::int64_t>(estimate, 1));
    nPulsesPerStrip_ = static_cast<std::int64_t>(static_cast<double>(nPulsesPerStrip_) * factor) + 1;
  }
}

// All points that come at the present pulse rate: counted, or for many pulses told from a part of them.
std::int64_t LaserScan::EstimatePoints() const {
  constexpr std::int64_t kCounted = 300000;
  const std::int64_t step = std::max<std::int64_t>(nStrips_ * nPulsesPerStrip_ / kCounted, 1);
  Returns buffer;
  std::int64_t nFound = 0;
  for (std::int64_t number = 0; number < nStrips_ * nPulsesPerStrip_; number += step) {
    nFound += static_cast<std::int64_t>(
        GetReturns(number / nPulsesPerStrip_, number % nPulsesPerStrip_, buffer).size());
  }
  return nFound * step;
}

// Where the pulse meets the ground. The mirror swings from side to side while the aircraft flies on: one
// swing for every stretch of the flight that is as long as two points lie apart.
LaserScan::Shot LaserScan::Aim(std::int64_t strip, std::int64_t pulse, Random& random) const {
  const double side = scene_.GetSide();
  const double swath = stripStep_ * kSwathOverStep;
  const double share = (static_cast<double>(pulse) + 0.5) / static_cast<double>(nPulsesPerStrip_);
  const double spacing = std::sqrt(side * swath / static_cast<double>(nPulsesPerStrip_));
  const double swing = share * side / spacing;  // in whole scan lines
  const double phase = swing - 2.0 * std::floor(swing * 0.5);
  const double across = std::abs(phase - 1.0) - 0.5;  // from -0.5 to 0.5 of the swath

  const double along = share * side;
  const double centre = (static_cast<double>(strip) + 0.5) * stripStep_;
  const double wander = std::min(kWander, 0.05 * stripStep_) * scene_.GetTerrain().Wander(strip, along);
  const double errorX = kAimError * (2.0 * random.Uniform() - 1.0);
  const double errorY = kAimError * (2.0 * random.Uniform() - 1.0);
  return {kSurveyWest + centre + wander + across * swath + errorX, kSurveySouth + along + errorY};
}

std::span<const SurveyPoint> LaserScan::GetReturns(std::int64_t strip, std::int64_t pulse,
                                                   Returns& buffer) const {
  Random random(seed_, Random::kPulse, strip, pulse);
  const Shot shot = Aim(strip, pulse, random);
  if (!scene_.IsWithin(shot.x, shot.y)) return {};

  const double stripOffset = kStripOffset * (2.0 * Random(seed_, Random::kStrip, strip).Uniform() - 1.0);
  ReturnList returns(buffer, random, shot.x, shot.y, stripOffset);
  const double groundZ = scene_.GroundHeight(shot.x, shot.y);
  if (AddNoise(groundZ, random, returns)) return returns.Get();

  AddWireOrPylon(scene_, shot.x, shot.y, random, returns);
  const std::optional<double> roof = scene_.RoofHeight(shot.x, shot.y);
  const double solidZ = roof ? *roof : groundZ;
  const std::optional<HeightRange> crown = scene_.HighestCrown(shot.x, shot.y);
  if (crown && crown->topZ > solidZ && !AddCrown(*crown, solidZ, random, returns)) return returns.Get();
  returns.Add(solidZ, roof ? PointClass::Building : PointClass::Ground);
  return returns.Get();
}

}  // namespace corvane
