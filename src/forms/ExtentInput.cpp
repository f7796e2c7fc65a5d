#include "forms/ExtentInput.h"

#include <cmath>

#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// A start value; 0 for what is no number, which no form could accept as shown.
double Shown(double value) {
  return std::isfinite(value) ? value : 0.0;
}

}  // namespace

int ExtentInput::Ask(const double extent4[4], ExtentWindow& window, float* cellSize) {
  return ShowWidened(extent4, *cellSize, minCorrCoeff, window, cellSize, &minCorrCoeff);
}

int ExtentInput::AskWithCorrelation(double minX, double maxY, double maxX, double minY, ExtentWindow& window,
                                    float* cellSize, float* minCorr) {
  const double extent4[4] = {minX, maxX, minY, maxY};
  return ShowWidened(extent4, 1.0f, 0.5f, window, cellSize, minCorr);
}

int ExtentInput::AskPoints(double minX, double maxY, double maxX, double minY, double spacingX,
                           ExtentWindow& window, float* cellSize, float* minCorr) {
  const double extent4[4] = {minX, maxX, minY, maxY};
  return ShowWidened(extent4, static_cast<float>(spacingX), 0.5f, window, cellSize, minCorr);
}

int ExtentInput::AskAsShown(ExtentWindow& window, float* cellSize) {
  return Show(minCorrCoeffLabel, window, *cellSize, minCorrCoeff);
}

int ExtentInput::ShowWidened(const double extent4[4], float cellSizeShown, float minCorrShown,
                             ExtentWindow& window, float* cellSize, float* minCorr) const {
  ExtentWindow entered = {std::trunc(extent4[0]) - 1.0, std::trunc(extent4[2]) - 1.0,
                          std::trunc(extent4[1]) + 1.0, std::trunc(extent4[3]) + 1.0};
  if (Show(minCorrCoeffLabel, entered, cellSizeShown, minCorrShown) < 0) return -1;
  window = entered;
  *cellSize = cellSizeShown;
  *minCorr = minCorrShown;
  return 0;
}

int ExtentInput::Show(const std::string& label, ExtentWindow& window, float& cellSize, float& minCorr) {
  Form form;
  form.name = "ExtentInput";
  form.title = "Input the extent for the image";
  form.fields = {
      RealField("xStart", "XStart:", Shown(window.xStart)),
      RealField("yStart", "YStart:", Shown(window.yStart)),
      RealField("xEnd", "XEnd", Shown(window.xEnd)),
      RealField("yEnd", "YEnd:", Shown(window.yEnd)),
      FloatField("cellSize", "Cell Size", static_cast<float>(Shown(cellSize))),
      FloatField("minCorrCoeff", label, minCorr),
  };
  if (!Ui().AskForm(form)) return -1;
  window = {form.GetReal("xStart"), form.GetReal("yStart"), form.GetReal("xEnd"), form.GetReal("yEnd")};
  cellSize = static_cast<float>(form.GetReal("cellSize"));
  minCorr = static_cast<float>(form.GetReal("minCorrCoeff"));
  return 0;
}

}  // namespace corvane
