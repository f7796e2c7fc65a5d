#pragma once

#include <string>

#include "TIN/TINPoints.h"

namespace corvane {

// Tells in the message pane if the points come from a file that has been cut short.
void TellMissing(const TINPoints& points);

// Reads a points file and tells if it has been cut short. False, with `failure` in a plain box, if it can't
// be read or holds no points.
bool ReadPoints(const std::string& path, const std::string& failure, TINPoints& points);

// What the last status text of a command ends with: that the file has been cut short, if so.
std::string MissingText(const TINPoints& points, const std::string& path);

// Points that a cut file lacks are no points at (0, 0).
void LeaveOutMissing(TINPoints& points);

}  // namespace corvane
