#pragma once

#include <string>

#include "ui/Form.h"

namespace corvane {

// A rectangle on the ground as the form gives it.
struct ExtentWindow {
  double xStart = 0.0;
  double yStart = 0.0;
  double xEnd = 0.0;
  double yEnd = 0.0;
};

// The form for a rectangle, a cell size and a third value, by default a minimum correlation coefficient.
// Extents are shown truncated towards zero and then widened by a whole unit on each side; 0 is shown for what
// is no finite number.
class ExtentInput {
 public:
  std::string minCorrCoeffLabel = "Min CorrCoeff:";
  float minCorrCoeff = 0.0f;  // shown by Ask, and what was entered after it

  // `extent4` is minX, maxX, minY, maxY. Shows the given cell size; on OK fills window and cell size.
  // 0 on OK, -1 on Cancel with nothing changed.
  int Ask(const double extent4[4], ExtentWindow& window, float* cellSize);

  // The same from four numbers, with cell size 1.0 and correlation 0.5 set by the form.
  int AskWithCorrelation(double minX, double maxY, double maxX, double minY, ExtentWindow& window,
                         float* cellSize, float* minCorr);

  // The same for the extents of a point set, with its own spacing as cell size.
  int AskPoints(double minX, double maxY, double maxX, double minY, double spacingX, ExtentWindow& window,
                float* cellSize, float* minCorr);

  // Shows `window`, the cell size and `minCorrCoeff` as they are, not widened, and takes over what was
  // entered.
  int AskAsShown(ExtentWindow& window, float* cellSize);

 private:
  // All arguments hold what is shown, and on OK what was entered.
  static int Show(const std::string& label, ExtentWindow& window, float& cellSize, float& minCorr);
  int ShowWidened(const double extent4[4], float cellSizeShown, float minCorrShown, ExtentWindow& window,
                  float* cellSize, float* minCorr) const;
};

}  // namespace corvane
