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
  return Show(extent4, *cellSize, minCorrCoeff, window, cellSize, &minCorrCoeff);
}

int ExtentInput::AskWithCorrelation(double minX, double maxY, double maxX, double minY, ExtentWindow& window,
                                    float* cellSize, float* minCorr) {
  const double extent4[4] = {minX, maxX, minY, maxY};
  return Show(extent4, 1.0f, 0.5f, window, cellSize, minCorr);
}

int ExtentInput::AskPoints(double minX, double maxY, double maxX, double minY, double spacingX,
                           ExtentWindow& window, float* cellSize, float* minCorr) {
  const double extent4[4] = {minX, maxX, minY, maxY};
  return Show(extent4, static_cast<float>(spacingX), 0.5f, window, cellSize, minCorr);
}

int ExtentInput::Show(const double extent4[4], float cellSizeShown, float minCorrShown, ExtentWindow& window,
                      float* cellSize, float* minCorr) {
  Form form;
  form.name = "ExtentInput";
  form.title = "Input the extent for the image";
  form.fields = {
      RealField("xStart", "XStart:", Shown(std::trunc(extent4[0]) - 1.0)),
      RealField("yStart", "YStart:", Shown(std::trunc(extent4[2]) - 1.0)),
      RealField("xEnd", "XEnd", Shown(std::trunc(extent4[1]) + 1.0)),
      RealField("yEnd", "YEnd:", Shown(std::trunc(extent4[3]) + 1.0)),
      FloatField("cellSize", "Cell Size", static_cast<float>(Shown(cellSizeShown))),
      FloatField("minCorrCoeff", minCorrCoeffLabel, minCorrShown),
  };
  if (!Ui().AskForm(form)) return -1;
  window = {form.GetReal("xStart"), form.GetReal("yStart"), form.GetReal("xEnd"), form.GetReal("yEnd")};
  *cellSize = static_cast<float>(form.GetReal("cellSize"));
  *minCorr = static_cast<float>(form.GetReal("minCorrCoeff"));
  return 0;
}

}  // namespace corvane
