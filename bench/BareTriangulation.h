#pragma once

#include <cstdint>
#include <vector>

namespace corvane {

// The Triangle library alone, quiet, with the switches of "Create TIN", on x, y pairs. Returns the number of
// triangles.
std::int64_t BareTriangulation(std::vector<double>& coordinates);

}  // namespace corvane
