#include "sample_survey/GroundTone.h"

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

constexpr double kRoadHalfWidth = 2.5;  // metres
constexpr double kRoadTone = 205.0;
constexpr double kGrassTone = 125.0;
constexpr double kWoodFloorTone = 75.0;

// The direction to the sun: east, north, up; a unit vector.
constexpr double kSunEast = 0.48;
constexpr double kSunNorth = -0.36;
constexpr double kSunUp = 0.8;

// Crops stand in rows, north-south or east-west, and each field has its own tone.
double FieldTone(std::uint64_t seed, double east, double north) {
  const auto col = static_cast<std::int64_t>(std::floor(east / Scene::kParcel));
  const auto row = static_cast<std::int64_t>(std::floor(north / Scene::kParcel));
  Random field(seed, Random::kField, col, row);
  const double tone = 95.0 + 15.0 * static_cast<double>(field.Between(0, 5));
  const double across = field.Next() % 2 == 0 ? east : north;
  const double phase = across / 4.0 - std::floor(across / 4.0);
  return tone + (phase < 0.5 ? 4.0 : -4.0);
}

// Roads run between parcels, along villages.
bool IsRoad(const Scene& scene, double east, double north) {
  const auto distance = [](double at) {
    return std::abs(at - std::floor(at / Scene::kParcel + 0.5) * Scene::kParcel);
  };
  const bool alongWest = distance(east) <= kRoadHalfWidth;
  const bool alongSouth = distance(north) <= kRoadHalfWidth;
  if (!alongWest && !alongSouth) return false;
  for (const double dx : {-kRoadHalfWidth * 2.0, kRoadHalfWidth * 2.0}) {
    for (const double dy : {-kRoadHalfWidth * 2.0, kRoadHalfWidth * 2.0}) {
      if (scene.LandUseAt(kSurveyWest + east + dx, kSurveySouth + north + dy) == LandUse::Village)
        return true;
    }
  }
  return false;
}

}  // namespace

double Grain(std::uint64_t seed, Random::Purpose purpose, std::int64_t i, std::int64_t j) {
  return 2.0 * Random(seed, purpose, i, j).Uniform() - 1.0;
}

double GroundTone(const Scene& scene, std::uint64_t seed, double east, double north) {
  if (IsRoad(scene, east, north)) return kRoadTone;
  switch (scene.LandUseAt(kSurveyWest + east, kSurveySouth + north)) {
    case LandUse::Village:
      return kGrassTone;
    case LandUse::Wood:
      return kWoodFloorTone;
    default:
      return FieldTone(seed, east, north);
  }
}

double SunLight(double slopeEast, double slopeNorth) {
  const double towardsSun = (kSunUp - slopeEast * kSunEast - slopeNorth * kSunNorth) /
                            std::sqrt(1.0 + slopeEast * slopeEast + slopeNorth * slopeNorth);
  return kSkyLight + (1.0 - kSkyLight) * std::max(towardsSun, 0.0) / kSunUp;
}

}  // namespace corvane
