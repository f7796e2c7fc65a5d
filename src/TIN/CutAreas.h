#pragma once

#include <span>
#include <vector>

#include "TIN/TIN.h"

namespace corvane {

// For each seed, ascending in z, the plan area of the set of connected vertices at or above the seed's height
// that holds it: the triangles all of whose corners belong to it, by `triangleAreas`. Sums are in no
// particular order.
//
// One sweep from the highest vertex down, in which sets only grow together.
// Cost: a sort of the vertices by height.
std::vector<double> AreasAboveSeeds(const TIN& tin, std::span<const SlopeSeed> seeds);

}  // namespace corvane
