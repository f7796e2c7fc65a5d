#include "StereoPair/MatchTexts.h"

#include <algorithm>
#include <cmath>

#include "StereoPair/StereoPair.h"
#include "io/Paths.h"

namespace corvane {

namespace {

bool IsPlaced(const PointRecord& point) {
  return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

bool IsPart(const AerialPhoto& photo) {
  return photo.image.m_header.xStart != 0 || photo.image.m_header.yStart != 0;
}

}  // namespace

std::string Counted(std::int64_t n, const std::string& noun) {
  return std::to_string(n) + " " + noun + (n == 1 ? "" : "s");
}

std::string PointsText(std::int64_t nPoints, std::int64_t nNew) {
  return Counted(nPoints, "point") + (nPoints > nNew ? ", with those of earlier commands" : "");
}

std::string UnplacedText(const TINPoints& points, std::int64_t nLast) {
  const auto end = points.points.begin() + points.nPoints;
  const std::int64_t nPlaced = std::count_if(end - nLast, end, IsPlaced);
  if (nPlaced == nLast) return "";
  return " Without a place (parallel rays, or no numbers): " + Counted(nLast - nPlaced, "point") + ".";
}

std::string OriginText(const StereoPair& pair) {
  const bool hasParts = IsPart(*pair.leftPhoto) || IsPart(*pair.rightPhoto);
  return hasParts ? " The origins of the images are not added." : "";
}

std::string UnwrittenText(const std::string& path, const std::string& reason) {
  return " " + FileName(path) + " is not written: " + reason + "." +
         (FileExists(path) ? " An older one stays." : "");
}

}  // namespace corvane
