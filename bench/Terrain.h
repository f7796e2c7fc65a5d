#pragma once

#include "RandomSurvey.h"
#include "TIN/TIN.h"

namespace corvane {

// Heights as of a landscape: hills of 20 m, one block of houses in four, 8 m high, on a grid of 40 m.
double TerrainZ(double x, double y);

// The survey's TIN with these heights, and normals to match.
void LoadTerrain(const RandomSurvey& survey, double (*height)(double x, double y), TIN& tin);

}  // namespace corvane
