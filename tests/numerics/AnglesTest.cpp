#include "numerics/Angles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace corvane {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Whether the value is the double nearest to a reference of at least 64 bits, where that decides it.
void ExpectNearest(double value, long double reference, double argument) {
  const auto nearest = static_cast<double>(reference);
  const double other =
      std::nextafter(nearest, reference > static_cast<long double>(nearest) ? kInfinity : -kInfinity);
  const long double middle = (static_cast<long double>(nearest) + static_cast<long double>(other)) / 2.0L;
  const long double unit = std::fabs(static_cast<long double>(other) - static_cast<long double>(nearest));
  if (std::fabs(reference - middle) < unit / 256.0L) return;  // the reference's own error is too near
  EXPECT_EQ(value, nearest) << argument;
}

}  // namespace

TEST(Angles, DegreesAndRadiansAreMultipliedInTheToldOrder) {
  EXPECT_EQ(ToRadians(180.0), 3.141592653589793);
  EXPECT_EQ(ToRadians(33.3), 33.3 / 180.0 * 3.141592653589793);
  EXPECT_EQ(ToDegrees(0.1), 0.1 * 180.0 / 3.141592653589793);
}

TEST(Angles, ResultsAreTheNearestDoubles) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> angles(-10.0, 10.0);
  std::uniform_real_distribution<double> sines(-1.0, 1.0);
  for (int i = 0; i < 20000; ++i) {
    const double angle = angles(random);
    ExpectNearest(Sin(angle), std::sin(static_cast<long double>(angle)), angle);
    ExpectNearest(Cos(angle), std::cos(static_cast<long double>(angle)), angle);
    const double sine = sines(random);
    ExpectNearest(Asin(sine), std::asin(static_cast<long double>(sine)), sine);
    ExpectNearest(Atan2(angle, sine),
                  std::atan2(static_cast<long double>(angle), static_cast<long double>(sine)), angle);
  }
}

TEST(Angles, SignsOfZeroAndQuadrantsAreThoseOfTheCLibrary) {
  EXPECT_TRUE(std::signbit(Sin(-0.0)));
  EXPECT_TRUE(std::signbit(Asin(-0.0)));
  EXPECT_EQ(Cos(0.0), 1.0);
  for (const double y : {0.0, -0.0, 1.0, -1.0, kInfinity}) {
    for (const double x : {0.0, -0.0, 1.0, -1.0, kInfinity, -kInfinity}) {
      EXPECT_EQ(Atan2(y, x), std::atan2(y, x)) << y << " " << x;
      EXPECT_EQ(std::signbit(Atan2(y, x)), std::signbit(std::atan2(y, x))) << y << " " << x;
    }
  }
}

TEST(Angles, WhatHasNoValueIsNotANumber) {
  EXPECT_TRUE(std::isnan(Sin(kInfinity)));
  EXPECT_TRUE(std::isnan(Cos(std::nan(""))));
  EXPECT_TRUE(std::isnan(Asin(1.5)));
  EXPECT_TRUE(std::isnan(Atan2(std::nan(""), 1.0)));
}

TEST(Angles, TinyAnglesAreTheirOwnSines) {
  const double tiny = std::numeric_limits<double>::denorm_min();
  EXPECT_EQ(Sin(tiny), tiny);
  EXPECT_EQ(Asin(1e-300), 1e-300);
}

}  // namespace corvane
