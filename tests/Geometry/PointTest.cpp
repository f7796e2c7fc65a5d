#include "Geometry/Point.h"

#include <gtest/gtest.h>

#include <cmath>
#include <locale>
#include <span>
#include <sstream>
#include <string>

#include "Geometry/Line.h"
#include "Geometry/Vector.h"

namespace corvane {
namespace {

Point P2(double x, double y) {
  const double values[] = {x, y};
  return Point(2, values);
}

Point P3(double x, double y, double z) {
  const double values[] = {x, y, z};
  return Point(3, values);
}

Vector V3(double x, double y, double z) {
  const double values[] = {x, y, z};
  return Vector(3, values);
}

void ExpectPoint(const Point& p, int dim, double x, double y, double z, int err = Point::Enot) {
  EXPECT_EQ(p.dim, dim);
  EXPECT_EQ(p.x, x);
  EXPECT_EQ(p.y, y);
  EXPECT_EQ(p.z, z);
  EXPECT_EQ(p.err, err);
}

std::string TextOf(const Point& p) {
  std::ostringstream out;
  out << p;
  return out.str();
}

TEST(Point, StartsAtTheOriginOfSpace) {
  ExpectPoint(Point(), 3, 0, 0, 0);
}

TEST(Point, TakesAsManyValuesAsItHasDimensions) {
  const int ints[] = {1, 2, 3};
  const double doubles[] = {1.5, 2.5, 3.5};
  ExpectPoint(Point(1, ints), 1, 1, 0, 0);
  ExpectPoint(Point(2, ints), 2, 1, 2, 0);
  ExpectPoint(Point(3, doubles), 3, 1.5, 2.5, 3.5);
}

TEST(Point, AnotherDimensionGivesAZeroPointWithAnError) {
  const double values[] = {1, 2, 3, 4};
  for (const int dim : {4, 0, -1}) {
    const Point p(dim, values);
    EXPECT_EQ(p.err, Point::Edim);
    EXPECT_EQ(p.x, 0.0);
    EXPECT_EQ(p.y, 0.0);
    EXPECT_EQ(p.z, 0.0);
  }
}

TEST(Point, AChangedDimensionClearsTheCoordinatesBeyond) {
  Point p = P3(1, 2, 3);
  EXPECT_EQ(p.SetDim(3), 3);
  ExpectPoint(p, 3, 1, 2, 3);
  EXPECT_EQ(p.SetDim(2), 2);
  ExpectPoint(p, 2, 1, 2, 0);
  EXPECT_EQ(p.SetDim(1), 1);
  ExpectPoint(p, 1, 1, 0, 0);
  EXPECT_EQ(p.SetDim(7), 1);
  ExpectPoint(p, 1, 1, 0, 0, Point::Edim);
}

TEST(Point, ErrorsHaveTexts) {
  Point p;
  EXPECT_STREQ(p.ErrorText(), "no error");
  p.err = Point::Edim;
  EXPECT_STREQ(p.ErrorText(), "error: invalid dimension for operation");
  p.err = Point::Esum;
  EXPECT_STREQ(p.ErrorText(), "error: Point sum is not affine");
  for (const int other : {3, -1}) {
    p.err = other;
    EXPECT_STREQ(p.ErrorText(), "error: unknown err value");
  }
}

TEST(Point, PointsOfOtherDimensionsAreUnequal) {
  EXPECT_FALSE(P2(1, 2) == P3(1, 2, 0));
  EXPECT_TRUE(P2(1, 2) != P3(1, 2, 0));
  EXPECT_TRUE(P3(1, 2, 3) == P3(1, 2, 3));
  EXPECT_FALSE(P3(1, 2, 3) == P3(1, 2, 4));
}

TEST(Point, OnlyTheCoordinatesOfTheDimensionAreCompared) {
  Point p = P2(1, 2);
  p.z = 9.0;
  EXPECT_TRUE(p == P2(1, 2));
  EXPECT_FALSE(P2(1, 2) == P2(1, 3));
}

TEST(Point, DifferencesAreVectors) {
  const Vector v = P3(5, 7, 9) - P2(1, 2);
  ExpectPoint(v, 3, 4, 5, 9);
}

TEST(Point, AVectorMovesAPoint) {
  ExpectPoint(P2(1, 2) + V3(10, 20, 30), 3, 11, 22, 30);
  ExpectPoint(P2(1, 2) - V3(10, 20, 30), 3, -9, -18, -30);
  Point p = P2(1, 2);
  ExpectPoint(p += V3(10, 20, 30), 3, 11, 22, 30);
  ExpectPoint(p -= V3(1, 1, 1), 3, 10, 21, 29);
}

TEST(Point, ScalingKeepsTheDimension) {
  ExpectPoint(2 * P2(1, 2), 2, 2, 4, 0);
  ExpectPoint(P2(1, 2) * 0.5, 2, 0.5, 1, 0);
  ExpectPoint(P3(1, 2, 3) / 4, 3, 0.25, 0.5, 0.75);
  EXPECT_TRUE(std::isinf((P2(1, 2) / 0).x));
}

TEST(Point, PointsAddUpForAffineSums) {
  ExpectPoint(P2(1, 2) + P3(10, 20, 30), 3, 11, 22, 30);
}

TEST(Point, AffineSumOfHalves) {
  const double weights[] = {0.5, 0.5};
  const Point points[] = {P2(0, 2), P2(4, 6)};
  ExpectPoint(Asum(weights, points), 2, 2, 4, 0);
}

TEST(Point, ASumThatIsNotAffineIsGivenWithAnError) {
  const int weights[] = {1, 1};
  const Point points[] = {P2(0, 2), P3(4, 6, 8)};
  ExpectPoint(Asum(weights, points), 3, 4, 8, 8, Point::Esum);
  const double tenths[] = {0.1, 0.2, 0.7 + 1e-9};
  const Point three[] = {P2(1, 1), P2(1, 1), P2(1, 1)};
  EXPECT_EQ(Asum(tenths, three).err, Point::Esum);
  const int good[] = {2, -1};
  ExpectPoint(Asum(good, points), 3, -4, -2, -8);
}

TEST(Point, TheShorterListCountsInAnAffineSum) {
  const double weights[] = {1, 3};
  const Point points[] = {P2(1, 10), P3(100, 1000, 4)};
  ExpectPoint(Asum(std::span(weights).first(1), points), 2, 1, 10, 0);
  ExpectPoint(Asum(weights, std::span(points).first(1)), 2, 1, 10, 0);
  ExpectPoint(Asum(weights, std::span(points).first(0)), 1, 0, 0, 0, Point::Esum);
}

TEST(Point, DistancesAreThoseOfSpace) {
  EXPECT_EQ(Distance(P3(1, 2, 3), P3(3, 5, 9)), 7.0);
  EXPECT_EQ(Distance2(P3(1, 2, 3), P3(3, 5, 9)), 49.0);
}

TEST(Point, LeftIsPositive) {
  Point p0 = P2(0, 0);
  EXPECT_EQ(IsLeft(p0, P2(4, 0), P2(1, 3)), 12.0);
  EXPECT_EQ(IsLeft(p0, P2(4, 0), P2(1, -3)), -12.0);
  EXPECT_EQ(IsLeft(p0, P2(4, 0), P2(9, 0)), 0.0);
  EXPECT_EQ(p0.err, Point::Enot);
  EXPECT_EQ(IsLeft(p0, P3(4, 0, 0), P2(1, 3)), 12.0);
  EXPECT_EQ(p0.err, Point::Edim);
}

TEST(Point, WritesAsManyCoordinatesAsItHas) {
  const double values[] = {1.5, -2, 3000000};
  EXPECT_EQ(TextOf(Point(1, values)), "(1.5)");
  EXPECT_EQ(TextOf(Point(2, values)), "(1.5, -2)");
  EXPECT_EQ(TextOf(Point(3, values)), "(1.5, -2, 3e+06)");
  EXPECT_EQ(TextOf(Point(4, values)), "Error: P.dim = 4");
}

struct DecimalComma : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(Point, TextIsThatOfTheCLocale) {
  const std::locale comma(std::locale::classic(), new DecimalComma);
  std::ostringstream out;
  out.imbue(comma);
  out << P2(1234.5, 0.5) << 0.5;
  EXPECT_EQ(out.str(), "(1234.5, 0.5)0,5");
  std::istringstream in("(1.25,2)");
  in.imbue(comma);
  Point p;
  in >> p;
  ExpectPoint(p, 2, 1.25, 2, 0);
}

TEST(Point, ReadsOneTwoOrThreeCoordinates) {
  std::istringstream in("(1) (1.5, 2) ( 1 ,2 , 3 ) ");
  Point p;
  in >> p;
  ExpectPoint(p, 1, 1, 0, 0);
  in >> p;
  ExpectPoint(p, 2, 1.5, 2, 0);
  in >> p;
  ExpectPoint(p, 3, 1, 2, 3);
}

TEST(Point, AnyCharacterDoesForBracketsAndCommas) {
  std::istringstream in("<1;2;3>[4/5)");
  Point p;
  in >> p;
  ExpectPoint(p, 3, 1, 2, 3);
  in >> p;
  ExpectPoint(p, 2, 4, 5, 0);
}

TEST(Point, APointThatCannotBeReadStays) {
  for (const char* const text : {"", "(", "(x)", "(1", "(1, ", "(1, 2, )"}) {
    std::istringstream in(text);
    Point p = P3(7, 8, 9);
    in >> p;
    EXPECT_TRUE(in.fail()) << text;
    ExpectPoint(p, 3, 7, 8, 9);
  }
}

TEST(Point, ReadingLeavesTheError) {
  Point p;
  p.err = Point::Esum;
  std::istringstream in("(1, 2) (x");
  in >> p;
  ExpectPoint(p, 2, 1, 2, 0, Point::Esum);
  in >> p;
  ExpectPoint(p, 2, 1, 2, 0, Point::Esum);
}

TEST(Line, HasTwoPointsAndTwoInThePlane) {
  Line line;
  ExpectPoint(line.P0, 3, 0, 0, 0);
  ExpectPoint(line.P1, 3, 0, 0, 0);
  EXPECT_EQ(line.a, (Point2D{0, 0}));
  EXPECT_EQ(line.b, (Point2D{0, 0}));
}

}  // namespace
}  // namespace corvane
