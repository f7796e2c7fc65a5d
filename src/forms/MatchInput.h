#pragma once

#include <cstdint>
#include <string>

namespace corvane {

// The form that every matching method opens on its pair of images.
class MatchInput {
 public:
  std::string leftImage;
  std::string rightImage;
  std::string demFile;
  std::string matchedPoints;
  double demAccuracy = 2.0;       // ground units
  std::int32_t windowWidth = 9;   // pixels
  std::int32_t windowHeight = 9;  // pixels
  double groundSpacing = 1.0;     // ground units
  double matchThreshold = 0.75;
  std::int32_t maxDisparity = 0;  // pixels

  // True on OK, with the fields as entered; on Cancel they stay as they were.
  bool Ask();
};

}  // namespace corvane
