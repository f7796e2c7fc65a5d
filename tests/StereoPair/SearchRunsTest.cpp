#include "StereoPair/SearchRuns.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>

namespace corvane {
namespace {

std::vector<SearchRun> RunsOf(double base, std::int64_t first, std::int64_t last, std::int32_t length,
                              std::int32_t size) {
  std::vector<SearchRun> runs;
  FindSearchRuns(base, first, last, length, size, runs);
  return runs;
}

// The windows' first pixels by place.
std::map<std::int64_t, std::int64_t> CornersOf(const std::vector<SearchRun>& runs) {
  std::map<std::int64_t, std::int64_t> corners;
  for (const SearchRun& run : runs) {
    for (std::int64_t i = 0; i < run.n; ++i) corners[run.first + i] = run.corner + i;
  }
  return corners;
}

TEST(SearchRuns, OfARangeInTheImageAreOneRun) {
  EXPECT_EQ(RunsOf(0.0, 10, 20, 5, 100), (std::vector<SearchRun>{{10, 8, 11}}));
  EXPECT_EQ(RunsOf(50.0, -2, 2, 5, 100), (std::vector<SearchRun>{{-2, 46, 5}}));
}

TEST(SearchRuns, OfAnEmptyRangeAreNone) {
  EXPECT_TRUE(RunsOf(0.0, 3, 2, 5, 100).empty());
}

TEST(SearchRuns, TakeEachPlaceWhoseWindowTouchesTheImageAndTheFirstThree) {
  for (const double base : {0.0, 3.0, 0.5, -7.25, 1e-20, 0.9999999999999999}) {
    const auto corners = CornersOf(RunsOf(base, -100, 100, 4, 6));
    EXPECT_LT(corners.size(), 25U);
    for (std::int64_t place = -100; place <= 100; ++place) {
      const auto corner = static_cast<std::int64_t>(std::trunc(base + static_cast<double>(place) - 2));
      const auto found = corners.find(place);
      if (found != corners.end()) {
        EXPECT_EQ(found->second, corner) << base << " " << place;
      } else {
        EXPECT_TRUE(place > -98 && (corner <= -4 || corner >= 6)) << base << " " << place;
      }
    }
  }
}

TEST(SearchRuns, TruncationPutsTwoPositionsOnTheFirstPixel) {
  // Positions -1.5, -0.5, 0.5, 1.5 with windows of one pixel.
  const std::vector<SearchRun> expected{{-2, -1, 2}, {0, 0, 2}};
  EXPECT_EQ(RunsOf(0.5, -2, 1, 1, 10), expected);
}

TEST(SearchRuns, OfEndlessRangesAreFew) {
  constexpr std::int64_t kFar = std::numeric_limits<std::int32_t>::max();
  const auto around = RunsOf(0.0, -kFar, kFar, 19, 100);
  EXPECT_LT(CornersOf(around).size(), 150U);
  EXPECT_EQ(around.front(), (SearchRun{-kFar, -kFar - 9, 3}));
  EXPECT_EQ(RunsOf(0.0, 1000, kFar, 19, 100), (std::vector<SearchRun>{{1000, 991, 3}}));
  for (const double base :
       {1e300, -1e300, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_LT(CornersOf(RunsOf(base, -kFar, kFar, 19, 100)).size(), 150U);
  }
}

}  // namespace
}  // namespace corvane
