#pragma once

#include <cstdint>
#include <vector>

namespace corvane {

// The Triangle library alone, quiet, with the switches of "Create TIN", on x, y pairs. Returns the number of
// triangles; `corners`, if given, gets three point indices for each.
std::int64_t BareTriangulation(std::vector<double>& coordinates,
                               std::vector<std::int32_t>* corners = nullptr);

}  // namespace corvane
