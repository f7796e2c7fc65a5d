#include "forms/ParamInput.h"

#include "ui/FrontEnd.h"

namespace corvane {

int ParamInput::Ask(double* maxSlope, double* minElevation) {
  Form form;
  form.name = "ParamInput";
  form.title = "Input Slope Filter Parameters";
  form.fields = {
      RealField("maxSlope", "Maximum Slope:", *maxSlope, FieldLimits{0.0, 90.0}),
      RealField("minElevation", "Minimum Elevation:", *minElevation, FieldLimits{0.0, 100.0}),
      RealField("pointsInterval", "(For Points Output) Points Interval:", pointsInterval,
                FieldLimits{1e-10, 1e10}),
  };
  form.fields[0].hint = "(eg. 30 degree)";
  form.fields[1].hint = "(eg. 1m)";
  if (!Ui().AskForm(form)) return -1;
  *maxSlope = form.GetReal("maxSlope");
  *minElevation = form.GetReal("minElevation");
  pointsInterval = form.GetReal("pointsInterval");
  return 0;
}

}  // namespace corvane
