#pragma once

#include <string>

#include "TIN/TINPoints.h"

namespace corvane {

// Tells in the message pane if the points come from a file that has been cut short.
void TellMissing(const TINPoints& points);

// Reads a points file and tells if it has been cut short. False, with `failure` in a plain box, if it can't
// be read or holds no points.
bool ReadPoints(const std::string& path, const std::string& failure, TINPoints& points);

}  // namespace corvane
