// Area matching on a grid.

#include <new>

#include "StereoPair/DescriptorSearch.h"
#include "StereoPair/DifferenceSearch.h"
#include "StereoPair/GridMatching.h"
#include "StereoPair/StereoPair.h"

namespace corvane {

namespace {

constexpr double kCorrelationThreshold = 0.75;
constexpr double kOtherThreshold = 0.5;

}  // namespace

int StereoPair::MatchAreaCC() {
  return RunGridMethod(*this, kCorrelationThreshold, true, SearchOfCorrelation(*this));
}

int StereoPair::CorrelateGrid(bool addsGroundPoints) {
  PlaceMatcher matcher(*this, SearchOfCorrelation(*this), {.groundPoints = addsGroundPoints});
  try {
    return MatchGrid(matcher) ? 1 : -1;
  } catch (const std::bad_alloc&) {
    return -1;
  }
}

int StereoPair::MatchAreaDifference() {
  DifferenceSearch differences;
  // The difference decides on the place, the correlation on whether it counts.
  const auto search = [&](const Point2& left, Point2& right, const ImageRect& rect) {
    differences.Find(*leftImage, *rightImage, left, right, {targetWidth, targetHeight}, rect);
    return CompareWindows(left, right, true, targetWidth, targetHeight, useDiffCheck);
  };
  return RunGridMethod(*this, kOtherThreshold, false, search);
}

int StereoPair::MatchStructuralDescriptor() {
  DescriptorSearch descriptors;
  const auto search = [&](const Point2& left, Point2& right, const ImageRect& rect) {
    return descriptors.Find(*leftImage, *rightImage, left, right, targetWidth, rect);
  };
  return RunGridMethod(*this, kOtherThreshold, true, search, DescriptorSearch::NoteOn);
}

}  // namespace corvane
