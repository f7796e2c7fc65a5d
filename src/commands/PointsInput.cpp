#include "commands/PointsInput.h"

#include "ui/FrontEnd.h"

namespace corvane {

void TellMissing(const TINPoints& points) {
  const std::int32_t nMissing = points.GetMissingCount();
  if (nMissing == 0) return;
  Ui().SetStatusText(0, "The points file is cut short: " + std::to_string(points.GetCount() - nMissing) +
                            " of " + std::to_string(points.GetCount()) + " points are there.");
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
