#pragma once

#include <cstdint>

#include "sample_survey/Random.h"
#include "sample_survey/Scene.h"

namespace corvane {

// From -1 to 1, another number at each place of a purpose.
double Grain(std::uint64_t seed, Random::Purpose purpose, std::int64_t i, std::int64_t j);

// How bright the ground is in full light, 0 to 255: fields with crops in rows, each in a tone of its own, the
// grass and the roads of villages, the floor of woods. Places are metres from the survey's corner.
double GroundTone(const Scene& scene, std::uint64_t seed, double east, double north);

constexpr double kSkyLight = 0.3;  // the share of light that does not come from the sun

// The share of the light of level ground that falls on a slope, metres a metre towards east and north, in
// full sun. It stands in the south-east.
double SunLight(double slopeEast, double slopeNorth);

}  // namespace corvane
