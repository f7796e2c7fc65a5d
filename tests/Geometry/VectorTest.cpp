#include "Geometry/Vector.h"

#include <gtest/gtest.h>

#include <span>

namespace corvane {
namespace {

Vector V2(double x, double y) {
  const double values[] = {x, y};
  return Vector(2, values);
}

Vector V3(double x, double y, double z) {
  const double values[] = {x, y, z};
  return Vector(3, values);
}

void ExpectVector(const Vector& v, int dim, double x, double y, double z, int err = Point::Enot) {
  EXPECT_EQ(v.dim, dim);
  EXPECT_EQ(v.x, x);
  EXPECT_EQ(v.y, y);
  EXPECT_EQ(v.z, z);
  EXPECT_EQ(v.err, err);
}

TEST(Vector, AssignmentCopiesAllFields) {
  Vector v = V2(1, 2);
  v.err = Point::Esum;
  Vector w;
  w = v;
  ExpectVector(w, 2, 1, 2, 0, Point::Esum);
}

TEST(Vector, TheOppositeHasTheSameDimension) {
  ExpectVector(-V2(1, -2), 2, -1, 2, 0);
}

TEST(Vector, ThePerpendicularTurnsToTheLeft) {
  ExpectVector(~V2(3, 4), 2, -4, 3, 0);
}

TEST(Vector, ThePerpendicularOfASpatialVectorHasAnError) {
  ExpectVector(~V3(1, 2, 5), 3, -2, 1, 5, Point::Edim);
}

TEST(Vector, ScalingKeepsTheDimension) {
  ExpectVector(2 * V2(1, 2), 2, 2, 4, 0);
  ExpectVector(V3(1, 2, 3) * 0.5, 3, 0.5, 1, 1.5);
  ExpectVector(V2(1, 2) / 4, 2, 0.25, 0.5, 0);
  Vector v = V2(1, 2);
  ExpectVector(v *= 6, 2, 6, 12, 0);
  ExpectVector(v /= 3, 2, 2, 4, 0);
}

TEST(Vector, SumsHaveTheLargerDimension) {
  ExpectVector(V2(1, 2) + V3(10, 20, 30), 3, 11, 22, 30);
  ExpectVector(V3(10, 20, 30) - V2(1, 2), 3, 9, 18, 30);
  Vector v = V2(1, 2);
  ExpectVector(v += V3(10, 20, 30), 3, 11, 22, 30);
  ExpectVector(v -= V2(1, 2), 3, 10, 20, 30);
}

TEST(Vector, DotProductOfAllCoordinates) {
  EXPECT_EQ(V3(1, 2, 3) * V3(4, 5, 6), 32.0);
}

TEST(Vector, PerpProductInThePlane) {
  Vector v = V2(3, 1);
  EXPECT_EQ(v | V2(2, 4), 10.0);
  EXPECT_EQ(v.err, Point::Enot);
  EXPECT_EQ(v | V3(2, 4, 9), 10.0);
  EXPECT_EQ(v.err, Point::Edim);
}

TEST(Vector, CrossProductInSpace) {
  ExpectVector(V3(1, 2, 3) ^ V3(4, 5, 6), 3, -3, 6, -3);
  ExpectVector(V2(1, 0) ^ V2(0, 1), 3, 0, 0, 1);
  Vector v = V2(1, 0);
  ExpectVector(v ^= V2(0, 1), 3, 0, 0, 1);
}

TEST(Vector, WhatChangesItInPlaceLeavesItsError) {
  const auto expectKept = [](auto change) {
    Vector v = V3(1, 0, 0);
    v.err = Point::Esum;
    change(v);
    EXPECT_EQ(v.err, Point::Esum);
  };
  expectKept([](Vector& v) { v ^= V3(0, 1, 0); });
  expectKept([](Vector& v) { v += V3(0, 1, 0); });
  expectKept([](Vector& v) { v -= V3(0, 1, 0); });
  expectKept([](Vector& v) { v *= 2.0; });
  expectKept([](Vector& v) { v /= 2.0; });
  expectKept([](Vector& v) { v.Normalize(); });
}

TEST(Vector, ResultsHaveNoErrorOfTheirOperands) {
  Vector v = V3(1, 2, 3);
  v.err = Point::Esum;
  ExpectVector(v + v, 3, 2, 4, 6);
  ExpectVector(2 * v, 3, 2, 4, 6);
  ExpectVector(-v, 3, -1, -2, -3);
  ExpectVector(v ^ v, 3, 0, 0, 0);
}

TEST(Vector, CrossProductWithItselfInPlace) {
  Vector v = V3(1, 2, 3);
  ExpectVector(v ^= v, 3, 0, 0, 0);
}

TEST(Vector, Lengths) {
  EXPECT_EQ(V3(2, 3, 6).Len(), 7.0);
  EXPECT_EQ(V3(2, 3, 6).Len2(), 49.0);
}

TEST(Vector, NormalizingMakesTheLengthOne) {
  Vector v = V2(3, 4);
  v.Normalize();
  ExpectVector(v, 2, 0.6, 0.8, 0);
  Vector zero;
  zero.Normalize();
  ExpectVector(zero, 3, 0, 0, 0);
}

TEST(Vector, WeightedSumsNeedNotBeAffine) {
  const int weights[] = {2, 3};
  const double halves[] = {0.5, 0.25};
  const Vector vectors[] = {V2(1, 10), V3(100, 1000, 4)};
  ExpectVector(Sum(weights, vectors), 3, 302, 3020, 12);
  ExpectVector(Sum(halves, vectors), 3, 25.5, 255, 1);
}

TEST(Vector, TheShorterListCountsInAWeightedSum) {
  const double weights[] = {2, 3};
  const Vector vectors[] = {V2(1, 10), V3(100, 1000, 4)};
  ExpectVector(Sum(std::span(weights).first(1), vectors), 2, 2, 20, 0);
  ExpectVector(Sum(weights, std::span(vectors).first(1)), 2, 2, 20, 0);
  ExpectVector(Sum(std::span(weights).first(0), vectors), 1, 0, 0, 0);
}

}  // namespace
}  // namespace corvane
