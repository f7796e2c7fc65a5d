#pragma once

#include <cstdint>
#include <string>

namespace corvane {

class StereoPair;
class TINPoints;

// What the last status text says in the same words after several methods. All but the first two are sentences
// with a blank before them, or "" where there is nothing to say.

// "1 line", "2 lines".
std::string Counted(std::int64_t n, const std::string& noun);

// "371 points, with those of earlier commands": what a points file holds, of which `nNew` are this command's.
std::string PointsText(std::int64_t nPoints, std::int64_t nNew);

// How many of the last `nLast` points have coordinates that are not finite.
std::string UnplacedText(const TINPoints& points, std::int64_t nLast);

// That one of the images is a part of a scan, where ground points take coordinates as they are.
std::string OriginText(const StereoPair& pair);

// That a result is not written, why, and whether there is one of before.
std::string UnwrittenText(const std::string& path, const std::string& reason);

}  // namespace corvane
