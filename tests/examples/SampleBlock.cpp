#include "SampleBlock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <stdexcept>

#include "sample_survey/PhotoBlockFiles.h"
#include "support/TempFolder.h"

namespace corvane {

const PhotoBlock& SampleBlock() {
  static const PhotoBlock block(SampleSurvey(SurveyOptions{1000, 1}));
  return block;
}

const SignalPoint& SignalOf(const std::string& name) {
  for (const SignalPoint& point : SampleBlock().GetSignals()) {
    if (point.name == name) return point;
  }
  throw std::invalid_argument(name);
}

void WriteSampleBlock() {
  std::string failed;
  ASSERT_TRUE(WritePhotoBlock(SampleBlock(), ".", failed)) << failed;
}

std::vector<SignalPlace> ReadSignalPlaces() {
  std::istringstream text(ReadFileBytes("signals_image.txt"));
  std::vector<SignalPlace> places;
  SignalPlace line;
  while (text >> line.point >> line.photo >> line.place.col >> line.place.row) places.push_back(line);
  return places;
}

PhotoPlace DiscMiddle(const ErdasImg& image, const PhotoPlace& place) {
  PhotoPlace sum;
  double n = 0.0;
  for (int row = static_cast<int>(place.row) - 4; row <= static_cast<int>(place.row) + 4; ++row) {
    for (int col = static_cast<int>(place.col) - 4; col <= static_cast<int>(place.col) + 4; ++col) {
      double value = 0.0;
      if (std::hypot(col - place.col, row - place.row) > 4.0) continue;
      if (!image.GetPixel(0, row, col, value) || value < 150.0) continue;
      sum.col += col;
      sum.row += row;
      ++n;
    }
  }
  return {sum.col / n, sum.row / n};
}

}  // namespace corvane
