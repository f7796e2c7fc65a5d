#pragma once

#include <cstdint>
#include <string>

namespace corvane {

// The form for the graph segmentation.
class SegmentParam {
 public:
  std::int32_t m_minRegionSize = 150;  // pixels
  std::int16_t m_scale = 350;          // the larger, the larger the regions
  std::string m_inputPath;
  std::string m_outputPath;
  float m_sigma = 1.0f;  // of the Gaussian that smooths the image first, in pixels

  // True on OK, with the fields as entered; on Cancel they stay as they were.
  bool Ask();
};

}  // namespace corvane
