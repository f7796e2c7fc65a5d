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

}  // namespace corvane
