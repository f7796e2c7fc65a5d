#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sample_survey/SurveyFiles.h"

namespace corvane {

// A grey picture of the survey from straight above, without any relief displacement: fields, roads, roofs and
// trees in the light of a sun in the south-east, with their shadows.
//
// Only + - * / sqrt and floor on doubles are used, so that its bytes are the same on every machine.
class AerialPicture {
 public:
  static constexpr double kCellSize = 0.5;    // metres
  static constexpr double kMostSide = 400.0;  // metres: a larger survey shows its south-west corner

  explicit AerialPicture(const SampleSurvey& survey);

  std::int32_t GetSize() const { return size_; }  // columns and rows

  // Row 0 is the northern one.
  std::uint8_t GetPixel(std::int32_t row, std::int32_t col) const {
    return pixels_[static_cast<std::size_t>(row) * static_cast<std::size_t>(size_) +
                   static_cast<std::size_t>(col)];
  }

  // Where the square of the picture ends in the north; in the south and west it is the survey's corner.
  double GetNorth() const { return kSurveySouth + size_ * kCellSize; }

 private:
  std::int32_t size_ = 0;
  std::vector<std::uint8_t> pixels_;
};

// Writes the picture as a .lan with its place on the ground. False if it can't be written.
bool WritePicture(const SampleSurvey& survey, const std::string& path);

}  // namespace corvane
