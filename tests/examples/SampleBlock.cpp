#include "SampleBlock.h"

#include <gtest/gtest.h>

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

}  // namespace corvane
