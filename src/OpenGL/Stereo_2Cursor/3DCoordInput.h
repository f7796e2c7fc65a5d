#pragma once

namespace corvane {

// The form for a ground point.
class C3DCoordInput {
 public:
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  // True on OK, with the fields as entered; on Cancel they stay as they were.
  bool Ask();
};

}  // namespace corvane
