#pragma once

namespace corvane {

// The form for the slope filter's limits.
class ParamInput {
 public:
  double pointsInterval = 1.0;  // ground units, for the points output; read after Ask

  // Shows the two values and takes over what was entered: the slope in degrees, the elevation in ground
  // units. 0 on OK, -1 on Cancel.
  int Ask(double* maxSlope, double* minElevation);
};

}  // namespace corvane
