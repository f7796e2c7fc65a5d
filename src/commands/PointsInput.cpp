#include "commands/PointsInput.h"

#include "TIN/PointBlocks.h"
#include "ui/FrontEnd.h"

namespace corvane {

void TellMissing(const TINPoints& points) {
  TellMissing(points.GetMissingCount(), points.GetCount());
}

bool ReadPoints(const std::string& path, const std::string& failure, TINPoints& points) {
  if (points.Read(path) < 1) {
    ShowMessage(failure);
    return false;
  }
  TellMissing(points);
  return true;
}

std::string MissingText(const TINPoints& points, const std::string& path) {
  const std::int32_t nMissing = points.GetMissingCount();
  return nMissing > 0 ? " Points missing in " + path + ": " + std::to_string(nMissing) + "." : "";
}

void LeaveOutMissing(TINPoints& points) {
  points.Truncate(points.GetCount() - points.GetMissingCount());
}

}  // namespace corvane
