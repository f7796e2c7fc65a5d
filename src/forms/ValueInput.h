#pragma once

#include <string>

namespace corvane {

// The form for one number. Set `title` and `value`, show it, read `value`.
class ValueInput {
 public:
  std::string title = "Please input a value.";
  double value = 1.0;

  // True on OK. On Cancel `value` stays as it was.
  bool Ask();
};

}  // namespace corvane
