#include "sample_survey/Terrain.h"

#include <algorithm>
#include <cmath>

#include "sample_survey/Random.h"

namespace corvane {

namespace {

constexpr double kMeanHeight = 286.0;

struct Octave {
  double wavelength;  // metres
  double amplitude;   // metres
};
constexpr Octave kOctaves[] = {{512.0, 48.0}, {256.0, 24.0}, {128.0, 10.0}, {64.0, 4.0},
                               {32.0, 1.5},   {16.0, 0.5},   {8.0, 0.15}};

// Layers of noise beyond the octaves.
enum Layer : std::uint64_t { kValleyLayer = 100, kRidgeLayer, kScarpLayer, kFlightLayer };

// 0 to 1 with first and second derivative 0 at both ends.
double Fade(double t) {
  return t * t * t * (t * (t * 6.0 - 15.0) + 10.0);
}

double Blend(double from, double to, double t) {
  return from + (to - from) * t;
}

// The number of the nearest of the lines 0, period, 2 * period ...
double NearestLine(double value, double period) {
  return std::floor(value / period + 0.5);
}

// The dot product of the lattice point's random gradient with the offset (du, dv) from it.
double CornerValue(std::uint64_t layerBits, std::int64_t i, std::int64_t j, double du, double dv) {
  const std::uint64_t bits = Mix(layerBits + static_cast<std::uint64_t>(i) * 0xD1B54A32D192ED03u +
                                 static_cast<std::uint64_t>(j) * 0x8CB92BA72F3D8DD7u);
  const double gradientU = static_cast<double>(bits & 0xFFFFFF) * 0x1p-23 - 1.0;
  const double gradientV = static_cast<double>(bits >> 40) * 0x1p-23 - 1.0;
  return gradientU * du + gradientV * dv;
}

}  // namespace

double Terrain::GroundHeight(double x, double y) const {
  const double east = x - kSurveyWest;
  const double north = y - kSurveySouth;
  return kMeanHeight + Hills(east, north) + Valley(east, north) + Ridge(east, north) + Scarp(east, north);
}

double Terrain::Wander(std::int64_t line, double distance) const {
  return Noise(kFlightLayer, distance / 170.0, static_cast<double>(line) + 0.5);
}

double Terrain::Noise(std::uint64_t layer, double u, double v) const {
  const double floorU = std::floor(u);
  const double floorV = std::floor(v);
  const double du = u - floorU;
  const double dv = v - floorV;
  const auto i = static_cast<std::int64_t>(floorU);
  const auto j = static_cast<std::int64_t>(floorV);
  const std::uint64_t bits = Mix(seed_ * 0x9E3779B97F4A7C15u + layer);

  const double fadeU = Fade(du);
  const double south =
      Blend(CornerValue(bits, i, j, du, dv), CornerValue(bits, i + 1, j, du - 1.0, dv), fadeU);
  const double north = Blend(CornerValue(bits, i, j + 1, du, dv - 1.0),
                             CornerValue(bits, i + 1, j + 1, du - 1.0, dv - 1.0), fadeU);
  return Blend(south, north, Fade(dv));
}

double Terrain::Hills(double x, double y) const {
  double height = 0.0;
  std::uint64_t layer = 0;
  for (const Octave& octave : kOctaves) {
    height += octave.amplitude * Noise(layer++, x / octave.wavelength, y / octave.wavelength);
  }
  return height;
}

// How far a line strays sideways, in metres: by up to `reach` near the survey's corner, where the fixed plan
// lies, and by up to some 150 m more, each line in its own way, beyond it.
double Terrain::Meander(std::uint64_t layer, double along, double line, double reach) const {
  const double beyondPlan = std::clamp((std::abs(along) - 400.0) / 800.0, 0.0, 1.0);
  return reach * Noise(layer, along / 200.0, 0.5) +
         150.0 * beyondPlan * Noise(layer, along / 600.0, line + 0.5);
}

// A rounded trough from south to north, 20 m deep and 180 m wide.
double Terrain::Valley(double x, double y) const {
  constexpr double kPeriod = 1100.0;
  const double line = NearestLine(x - 105.0, kPeriod);
  const double centre = 105.0 + line * kPeriod + Meander(kValleyLayer, y, line, 20.0);
  const double share = (x - centre) / 90.0;
  const double inside = std::max(1.0 - share * share, 0.0);
  return -20.0 * inside * inside * inside;
}

// A rise from west to east, 14 m high and 220 m wide, with a sharp crest.
double Terrain::Ridge(double x, double y) const {
  constexpr double kPeriod = 900.0;
  const double line = NearestLine(y - 300.0, kPeriod);
  const double centre = 300.0 + line * kPeriod + Meander(kRidgeLayer, x, line, 25.0);
  const double inside = std::max(1.0 - std::abs(y - centre) / 110.0, 0.0);
  return 14.0 * inside * inside;
}

// A step of 6 m within 5 m, towards the north-east; the land falls back slowly until the next one. All steps
// stray alike, so that the land is without a break between them.
double Terrain::Scarp(double x, double y) const {
  constexpr double kPeriod = 700.0;
  const double fromFirst = 0.8 * x + 0.6 * y - 330.0 - Meander(kScarpLayer, 0.8 * y - 0.6 * x, 0.0, 8.0);
  const double d = fromFirst - kPeriod * NearestLine(fromFirst, kPeriod);
  return 6.0 * (Fade(std::clamp(d / 5.0 + 0.5, 0.0, 1.0)) - 0.5 - d / kPeriod);
}

}  // namespace corvane
