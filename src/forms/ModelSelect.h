#pragma once

#include <string>
#include <vector>

namespace corvane {

// The form that chooses any number of stereo models from a list.
class ModelSelect {
 public:
  std::vector<std::string> items;
  std::vector<int> models;  // positions in `items`, ascending

  // True on OK, with `models` as chosen; on Cancel it stays as it was.
  bool Ask();
};

}  // namespace corvane
