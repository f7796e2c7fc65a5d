#include "numerics/ArrayStatistics.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace corvane {
namespace {

constexpr double kSkip = -4096.0;
constexpr double kLargest = 1.7e+308;

using Values = std::vector<double>;

TEST(ArrayStatistics, PassOverWhatIsSkipped) {
  const Values values = {kSkip, 1.0, 2.0, kSkip, 6.0};
  EXPECT_EQ(ArrayMean(values, kSkip), 3.0);
  // squares 1 + 4 + 36 = 41; (41 - 3 * 9) / 2 = 7
  EXPECT_EQ(ArrayStdDev(values, 3.0, kSkip), std::sqrt(7.0));
  EXPECT_EQ(ArrayRms(values, kSkip), std::sqrt(41.0 / 3.0));
  EXPECT_EQ(ArrayMin(values, kSkip), 1.0);
  EXPECT_EQ(ArrayMax(values, kSkip), 6.0);
}

TEST(ArrayStatistics, OfAnEmptyArrayAreZero) {
  EXPECT_EQ(ArrayMean({}, kSkip), 0.0);
  EXPECT_EQ(ArrayStdDev({}, 0.0, kSkip), 0.0);
  EXPECT_EQ(ArrayRms({}, kSkip), 0.0);
  EXPECT_EQ(ArrayMin({}, kSkip), 0.0);
  EXPECT_EQ(ArrayMax({}, kSkip), 0.0);
}

TEST(ArrayStatistics, WithNothingButSkippedValues) {
  const Values values = {kSkip, kSkip};
  EXPECT_EQ(ArrayMean(values, kSkip), 0.0);
  EXPECT_EQ(ArrayStdDev(values, 0.0, kSkip), 0.0);
  EXPECT_EQ(ArrayRms(values, kSkip), 0.0);
  EXPECT_EQ(ArrayMin(values, kSkip), kLargest);
  EXPECT_EQ(ArrayMax(values, kSkip), kSkip);
}

TEST(ArrayStatistics, OneValueHasNoDeviationAndItsOwnSizeAsRms) {
  const Values values = {-2.5};
  EXPECT_EQ(ArrayMean(values, kSkip), -2.5);
  EXPECT_EQ(ArrayStdDev(values, -2.5, kSkip), 0.0);
  EXPECT_EQ(ArrayRms(values, kSkip), 2.5);
}

TEST(ArrayStatistics, MinNeverLooksAtTheFirstValue) {
  EXPECT_EQ(ArrayMin(Values{-9.0, 3.0, 2.0}, kSkip), 2.0);
  EXPECT_EQ(ArrayMin(Values{-9.0}, kSkip), kLargest);
}

TEST(ArrayStatistics, MaxStartsAtTheFirstValueEvenIfThatIsSkipped) {
  EXPECT_EQ(ArrayMax(Values{kSkip, -5000.0}, kSkip), kSkip);
  EXPECT_EQ(ArrayMax(Values{kSkip, -1.0}, kSkip), -1.0);
  EXPECT_EQ(ArrayMax(Values{7.0, kSkip, 3.0}, kSkip), 7.0);
  EXPECT_EQ(ArrayMax(Values{7.0}, kSkip), 7.0);
}

TEST(ArrayStatistics, MaxPassesOverSkippedValues) {
  EXPECT_EQ(ArrayMax(Values{-7.0, 5.0, -3.0}, 5.0), -3.0);
}

TEST(ArrayStatistics, VarianceThatRoundingMakesNegativeIsZero) {
  const Values values = {0.1, 0.1, 0.1};
  // any mean a little above 0.1 leaves a difference below 0
  EXPECT_EQ(ArrayStdDev(values, 0.1000001, kSkip), 0.0);
}

TEST(ArrayStatistics, NotANumberShows) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const Values values = {1.0, nan, 2.0};
  EXPECT_TRUE(std::isnan(ArrayMean(values, kSkip)));
  EXPECT_TRUE(std::isnan(ArrayStdDev(values, nan, kSkip)));
  EXPECT_TRUE(std::isnan(ArrayRms(values, kSkip)));
  EXPECT_EQ(ArrayMin(values, kSkip), 2.0);
  EXPECT_EQ(ArrayMax(values, kSkip), 2.0);
}

}  // namespace
}  // namespace corvane
