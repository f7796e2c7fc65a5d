#include "numerics/Truncate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace corvane {
namespace {

TEST(Truncate, CutsTowardsZero) {
  EXPECT_EQ(TruncateToInt(2.9), 2);
  EXPECT_EQ(TruncateToInt(-2.9), -2);
  EXPECT_EQ(TruncateToInt(-0.5), 0);
}

TEST(Truncate, RefusesWhatDoesNotFit32Bits) {
  EXPECT_EQ(TruncateToInt(2147483647.9), INT32_MAX);
  EXPECT_EQ(TruncateToInt(2147483648.0), std::nullopt);
  EXPECT_EQ(TruncateToInt(-2147483648.9), INT32_MIN);
  EXPECT_EQ(TruncateToInt(-2147483649.0), std::nullopt);
  EXPECT_EQ(TruncateToInt(NAN), std::nullopt);
  EXPECT_EQ(TruncateToInt(INFINITY), std::nullopt);
}

TEST(Truncate, SaturatesOnRequest) {
  EXPECT_EQ(TruncateSaturated(1e300), INT32_MAX);
  EXPECT_EQ(TruncateSaturated(-1e300), INT32_MIN);
  EXPECT_EQ(TruncateSaturated(NAN), 0);
  EXPECT_EQ(TruncateSaturated(-3.7), -3);
  EXPECT_EQ(TruncateTo64(1e300), std::int64_t{1} << 62);
  EXPECT_EQ(TruncateTo64(-INFINITY), -(std::int64_t{1} << 62));
  EXPECT_EQ(TruncateTo64(NAN), 0);
  EXPECT_EQ(TruncateTo64(-5e9 - 0.5), -5000000000);
}

}  // namespace
}  // namespace corvane
