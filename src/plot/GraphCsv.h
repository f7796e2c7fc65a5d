#pragma once

#include <span>
#include <string>

#include "ui/GraphView.h"

namespace corvane {

// Writes the points of a graph as text: the heading "element,x,y" and a line a point, with the numbers in the
// fewest digits that read back as the same ones. The file appears whole or not at all; false if it can't be
// written.
bool WriteGraphCsv(std::span<const GraphElement> elements, const std::string& path);

}  // namespace corvane
