#pragma once

#include <cstdint>

namespace corvane {

// The south-west corner of every sample survey, in metres.
constexpr double kSurveyWest = 451000.0;
constexpr double kSurveySouth = 5423000.0;

// The landscape of the sample survey, without end in all directions: hills in seven octaves, a valley, a
// ridge and a scarp that come again every kilometre or so. Heights lie between about 240 and 330 m.
//
// All is made of + - * / and floor on doubles, so that heights are the same bits on every machine.
class Terrain {
 public:
  explicit Terrain(std::uint64_t seed) : seed_(seed) {}

  // Height of the bare ground in metres, at ground coordinates in metres.
  double GroundHeight(double x, double y) const;

  // How far a flight line strays sideways, from -1 to 1, smoothly along `distance` in metres.
  double Wander(std::int64_t line, double distance) const;

 private:
  // Gradient noise on the whole-numbered lattice, within about -1 to 1, with continuous second derivatives.
  double Noise(std::uint64_t layer, double u, double v) const;
  double Meander(std::uint64_t layer, double along, double line, double reach) const;
  double Hills(double x, double y) const;
  double Valley(double x, double y) const;
  double Ridge(double x, double y) const;
  double Scarp(double x, double y) const;

  std::uint64_t seed_;
};

}  // namespace corvane
