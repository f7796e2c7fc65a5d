#include "StereoPair/LeastSquaresPasses.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace corvane {
namespace {

const double kNan = std::nan("");

TEST(LsmStep, OfExactlyTheToleranceHasNotConverged) {
  EXPECT_TRUE((LsmStep{std::nextafter(0.15, 0.0), -std::nextafter(0.15, 0.0)}.IsSmall()));
  EXPECT_FALSE((LsmStep{0.15, 0.0}.IsSmall()));
  EXPECT_FALSE((LsmStep{0.0, -0.15}.IsSmall()));
  EXPECT_FALSE((LsmStep{kNan, 0.0}.IsSmall()));
}

TEST(LsmStep, OfExactlyTheLimitHasNotDiverged) {
  EXPECT_TRUE((LsmStep{10.0, -10.0}.IsBounded()));
  EXPECT_FALSE((LsmStep{std::nextafter(10.0, 11.0), 0.0}.IsBounded()));
  EXPECT_FALSE((LsmStep{0.0, kNan}.IsBounded()));
}

TEST(HasDiverged, BeyondTheLimitNotAtIt) {
  const double beyond = std::nextafter(10.0, 11.0);
  EXPECT_FALSE(HasDiverged({.a0 = 10.0, .b0 = -10.0}, {0.5, 0.5}));
  EXPECT_TRUE(HasDiverged({.a0 = beyond}, {0.5, 0.5}));
  EXPECT_TRUE(HasDiverged({.b0 = -beyond}, {0.5, 0.5}));
  EXPECT_FALSE(HasDiverged({}, {10.0, -10.0}));
  EXPECT_TRUE(HasDiverged({}, {-beyond, 0.0}));
  EXPECT_TRUE(HasDiverged({}, {0.0, beyond}));
}

TEST(HasDiverged, NeverWithAStepThatConverges) {
  EXPECT_FALSE(HasDiverged({.a0 = 12.0, .b0 = -40.0}, {0.14, -0.14}));
  EXPECT_TRUE(HasDiverged({.a0 = 12.0}, {0.15, 0.0}));
}

TEST(HasDiverged, WithAParameterThatIsNotFinite) {
  EXPECT_TRUE(HasDiverged({.a2 = kNan}, {0.0, 0.0}));
  EXPECT_TRUE(HasDiverged({.r1 = std::numeric_limits<double>::infinity()}, {0.0, 0.0}));
}

// The ring after passes with these a0, the first of them being pass 1.
ShiftRing RingOf(const std::vector<double>& shifts) {
  ShiftRing ring;
  int pass = 0;
  for (const double shift : shifts) ring.Store(++pass, {.a0 = shift});
  return ring;
}

TEST(ShiftRing, HasThePassInSlotPassMod4) {
  ShiftRing ring;
  for (int pass = 1; pass <= 6; ++pass) ring.Store(pass, {.a0 = 1.0 * pass, .b0 = -1.0 * pass});
  EXPECT_EQ(ring.a0, (std::array<double, 4>{4.0, 5.0, 6.0, 3.0}));
  EXPECT_EQ(ring.b0, (std::array<double, 4>{-4.0, -5.0, -6.0, -3.0}));
}

// The last two slots would have to differ by more than 0.3, and slots 0 and 3 are 0.
TEST(ShiftRing, OfOneOrTwoPassesNeverSwings) {
  for (const double first : {0.0, 0.1, -0.149, 0.5, 5.0}) {
    EXPECT_FALSE(RingOf({first}).Swings()) << first;
    for (const double second : {0.0, 0.14, -0.14, 0.31, -5.0}) {
      EXPECT_FALSE(RingOf({first, second}).Swings()) << first << ' ' << second;
    }
  }
}

TEST(ShiftRing, OfThreePassesTakesTheEmptySlotForAShiftOfZero) {
  EXPECT_TRUE(RingOf({0.5, 0.1, 0.55}).Swings());
  EXPECT_TRUE(RingOf({-0.5, 0.1, -0.55}).Swings());
  EXPECT_FALSE(RingOf({0.5, 0.2, 0.55}).Swings());  // 0.2 is too far from 0
  EXPECT_FALSE(RingOf({0.5, 0.1, 0.7}).Swings());   // 0.7 from 0.5
  EXPECT_FALSE(RingOf({0.3, 0.1, 0.35}).Swings());  // neighbours differ by 0.25
}

TEST(ShiftRing, OfFourPassesAndMore) {
  EXPECT_TRUE(RingOf({5.0, 4.0, 5.1, 4.1}).Swings());
  EXPECT_FALSE(RingOf({0.5, 0.1, 0.55, 0.3}).Swings());  // pass 4 has filled the slot: 0.2 from 0.1
  EXPECT_TRUE(RingOf({9.0, 8.0, 5.0, 4.0, 5.1, 4.1}).Swings());
  EXPECT_FALSE(RingOf({5.0, 4.0, 5.1, 4.1, 6.0}).Swings());
}

TEST(ShiftRing, WithAChangeOfExactlyTheToleranceDoesNotRepeat) {
  const double below = std::nextafter(0.15, 0.0);
  EXPECT_FALSE((ShiftRing{.a0 = {0.0, 1.0, 0.15, 1.0}}.Swings()));
  EXPECT_TRUE((ShiftRing{.a0 = {0.0, 1.0, below, 1.0}}.Swings()));
  EXPECT_FALSE((ShiftRing{.a0 = {1.0, 0.0, 1.0, -0.15}}.Swings()));
  EXPECT_TRUE((ShiftRing{.a0 = {1.0, 0.0, 1.0, -below}}.Swings()));
  EXPECT_FALSE((ShiftRing{.b0 = {0.0, 1.0, -0.15, 1.0}}.Swings()));
  EXPECT_TRUE((ShiftRing{.b0 = {0.0, 1.0, -below, 1.0}}.Swings()));
  EXPECT_FALSE((ShiftRing{.b0 = {1.0, 0.0, 1.0, 0.15}}.Swings()));
  EXPECT_TRUE((ShiftRing{.b0 = {1.0, 0.0, 1.0, below}}.Swings()));
}

TEST(ShiftRing, WithNeighboursExactlyTwiceTheToleranceApartDoesNotSwing) {
  const double beyond = std::nextafter(0.3, 1.0);
  EXPECT_FALSE((ShiftRing{.a0 = {0.3, 0.0, 0.3, 0.0}}.Swings()));
  EXPECT_TRUE((ShiftRing{.a0 = {beyond, 0.0, beyond, 0.0}}.Swings()));
  EXPECT_FALSE((ShiftRing{.b0 = {0.0, 0.3, 0.0, 0.3}}.Swings()));
  EXPECT_TRUE((ShiftRing{.b0 = {0.0, beyond, 0.0, beyond}}.Swings()));
}

TEST(ShiftRing, SwingsInOneDirectionIfTheOtherRepeats) {
  EXPECT_TRUE((ShiftRing{.a0 = {2.0, 2.0, 2.0, 2.0}, .b0 = {5.0, 1.0, 5.0, 1.0}}.Swings()));
  EXPECT_TRUE((ShiftRing{.a0 = {5.0, 1.0, 5.0, 1.0}, .b0 = {2.0, 2.0, 2.0, 2.0}}.Swings()));
  EXPECT_FALSE((ShiftRing{.a0 = {5.0, 1.0, 5.0, 1.0}, .b0 = {2.0, 2.0, 3.0, 2.0}}.Swings()));
  EXPECT_FALSE((ShiftRing{.a0 = {5.0, 1.0, 5.0, 1.0}, .b0 = {2.0, kNan, 2.0, 2.0}}.Swings()));
}

// Where a match that began at column 10, row 20 ends.
Point2 EndOf(const ShiftRing& ring, double centreX) {
  Point2 position = {10.0, 20.0};
  ring.MovePosition(centreX, position);
  return position;
}

TEST(ShiftRing, MovesTheColumnByA3OrTheCentreAndByB3OrA0) {
  // The smaller ones in magnitude: A[3] and B[3]; the centre and A[0]; with negative numbers.
  EXPECT_EQ(EndOf({.a0 = {0.5, 0.0, 0.0, 1.25}, .b0 = {0.0, 0.0, 0.0, 0.25}}, 3.5), (Point2{11.5, 20.0}));
  EXPECT_EQ(EndOf({.a0 = {0.5, 0.0, 0.0, 4.0}, .b0 = {0.0, 0.0, 0.0, 0.75}}, 3.5), (Point2{14.0, 20.0}));
  EXPECT_EQ(EndOf({.a0 = {0.5, 0.0, 0.0, -1.25}, .b0 = {0.0, 0.0, 0.0, -0.25}}, 3.5), (Point2{8.5, 20.0}));
  EXPECT_EQ(EndOf({.a0 = {-0.5, 0.0, 0.0, -4.0}, .b0 = {0.0, 0.0, 0.0, 0.75}}, 3.5), (Point2{13.0, 20.0}));
}

TEST(ShiftRing, MovesTheColumnByTheCentreAndA0OfEqualOnes) {
  EXPECT_EQ(EndOf({.a0 = {0.5, 0.0, 0.0, -3.5}, .b0 = {0.0, 0.0, 0.0, -0.5}}, 3.5), (Point2{14.0, 20.0}));
  EXPECT_EQ(EndOf({.a0 = {-0.5, 0.0, 0.0, -3.5}, .b0 = {0.0, 0.0, 0.0, 0.5}}, 3.5), (Point2{13.0, 20.0}));
}

TEST(ShiftRing, MovesByNothingFromOtherSlots) {
  EXPECT_EQ(EndOf({.a0 = {0.0, 7.0, 7.0, 0.0}, .b0 = {7.0, 7.0, 7.0, 0.0}}, 3.5), (Point2{10.0, 20.0}));
}

}  // namespace
}  // namespace corvane
