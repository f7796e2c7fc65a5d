// The ways between image, photo and ground.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "OpenGL/Stereo_2Cursor/PhotoFixture.h"

namespace corvane {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;

// A photo looking straight down from (1000, 2000, 1500), 1000 pixels of 0.1 with the middle at (500, 500).
struct VerticalPhoto {
  VerticalPhoto() { SetPhoto(photo, {}); }
  AerialPhoto photo;
};

TEST(AerialPhotoFramesTest, ImageToPhotoIsTheInteriorOrientation) {
  const VerticalPhoto vertical;
  const double p[2] = {700.0, 400.0};
  double out[3];
  EXPECT_EQ(vertical.photo.ImageToPhoto(p, out), 1);
  EXPECT_THAT(out, ElementsAre(DoubleNear(20.0, 1e-13), DoubleNear(10.0, 1e-13), -150.0));
}

TEST(AerialPhotoFramesTest, TheThirdComponentIsTheFocalLengthNow) {
  VerticalPhoto vertical;
  vertical.photo.focalLength = 99.0;  // A still has 150
  const double p[2] = {0.0, 0.0};
  double out[3];
  vertical.photo.ImageToPhoto(p, out);
  EXPECT_EQ(out[2], -99.0);
}

TEST(AerialPhotoFramesTest, PhotoToImageOfImageToPhotoReturnsThePixel) {
  RandomPhotos photos;
  for (int n = 0; n < 1000; ++n) {
    AerialPhoto photo;
    SetPhoto(photo, photos.Next());
    const double p[2] = {photos.In(-100.0, 12000.0), photos.In(-100.0, 12000.0)};
    double v[3];
    double back[3];
    photo.ImageToPhoto(p, v);
    EXPECT_EQ(photo.PhotoToImage(v, back), 1);
    EXPECT_NEAR(back[0], p[0], 1e-9);
    EXPECT_NEAR(back[1], p[1], 1e-9);
    EXPECT_EQ(back[2], 1.0);
  }
}

TEST(AerialPhotoFramesTest, GroundToImageByHand) {
  const VerticalPhoto vertical;
  double col = 0.0;
  double row = 0.0;
  // 100 to the east and 50 to the north, 1500 below: x = 10, y = 5.
  EXPECT_EQ(vertical.photo.GroundToImage(1100.0, 2050.0, 0.0, col, row), 1);
  EXPECT_NEAR(col, 600.0, 1e-10);
  EXPECT_NEAR(row, 450.0, 1e-10);
  double x = 0.0;
  double y = 0.0;
  EXPECT_EQ(vertical.photo.GroundToPhoto(1100.0, 2050.0, 0.0, x, y), 1);
  EXPECT_NEAR(x, 10.0, 1e-13);
  EXPECT_NEAR(y, 5.0, 1e-13);
}

TEST(AerialPhotoFramesTest, GroundToImageOfImageToGroundReturnsThePixel) {
  RandomPhotos photos;
  for (int n = 0; n < 1000; ++n) {
    const PhotoElements elements = photos.Next();
    AerialPhoto photo;
    SetPhoto(photo, elements);
    const double height = photos.In(-100.0, 500.0);
    const double p[2] = {photos.In(0.0, 1500.0), photos.In(0.0, 1500.0)};
    double x = 0.0;
    double y = 0.0;
    double col = 0.0;
    double row = 0.0;
    EXPECT_EQ(photo.ImageToGround(p, height, x, y), 1);
    photo.GroundToImage(x, y, height, col, row);
    EXPECT_NEAR(col, p[0], 1e-9) << n;
    EXPECT_NEAR(row, p[1], 1e-9) << n;
    const auto plain = PlainPhoto(elements).Project(x, y, height);
    EXPECT_NEAR(col, static_cast<double>(plain[0]), 1e-9) << n;
    EXPECT_NEAR(row, static_cast<double>(plain[1]), 1e-9) << n;
  }
}

TEST(AerialPhotoFramesTest, GroundToPhotoIsTheCollinearityEquation) {
  RandomPhotos photos;
  for (int n = 0; n < 200; ++n) {
    const PhotoElements elements = photos.Next();
    AerialPhoto photo;
    SetPhoto(photo, elements);
    const double x = elements.x + photos.In(-500.0, 500.0);
    const double y = elements.y + photos.In(-500.0, 500.0);
    double photoX = 0.0;
    double photoY = 0.0;
    photo.GroundToPhoto(x, y, 100.0, photoX, photoY);
    const auto plain = PlainPhoto(elements).Photo(x, y, 100.0);
    EXPECT_NEAR(photoX, static_cast<double>(plain[0]), 1e-10);
    EXPECT_NEAR(photoY, static_cast<double>(plain[1]), 1e-10);
  }
}

TEST(AerialPhotoFramesTest, TurnsAreEachOthersInverse) {
  AerialPhoto photo;
  SetPhoto(photo, {.omega = 3.0, .phi = -5.0, .kappa = 100.0});
  const double v[3] = {1.0, -2.0, 3.0};
  double turned[3];
  double back[3];
  EXPECT_EQ(photo.RotateToGround(v, turned), 1);
  EXPECT_EQ(photo.RotateToPhoto(turned, back), 1);
  EXPECT_THAT(back, ElementsAre(DoubleNear(1.0, 1e-15), DoubleNear(-2.0, 1e-15), DoubleNear(3.0, 1e-15)));
  EXPECT_NEAR(turned[0] * turned[0] + turned[1] * turned[1] + turned[2] * turned[2], 14.0, 1e-14);
}

TEST(AerialPhotoFramesTest, PhotoToGroundGoesToThePlane) {
  const VerticalPhoto vertical;
  const double v[3] = {10.0, 5.0, -150.0};
  double x = 0.0;
  double y = 0.0;
  EXPECT_EQ(vertical.photo.PhotoToGround(v, 750.0, x, y), 1);
  EXPECT_NEAR(x, 1050.0, 1e-10);
  EXPECT_NEAR(y, 2025.0, 1e-10);
}

TEST(AerialPhotoFramesTest, ImageRayIsThePhotoVectorOnTheGround) {
  RandomPhotos photos;
  const PhotoElements elements = photos.Next();
  AerialPhoto photo;
  SetPhoto(photo, elements);
  const double p[2] = {123.0, 456.0};
  double ray[3];
  EXPECT_EQ(photo.ImageRay(p, ray), 1);
  const auto plain = PlainPhoto(elements).Ray(123.0, 456.0);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(ray[i], static_cast<double>(plain[i]), 1e-11);
}

TEST(AerialPhotoFramesTest, IntersectPlaneByHand) {
  const VerticalPhoto vertical;
  const double p[2] = {600.0, 500.0};  // goes down 150 for each 10 to the east
  double out[3];
  const double level[3] = {0.0, 0.0, 300.0};
  EXPECT_EQ(vertical.photo.IntersectPlane(p, out, level), 1);
  EXPECT_THAT(out, ElementsAre(DoubleNear(1080.0, 1e-9), DoubleNear(2000.0, 1e-9), DoubleNear(300.0, 1e-9)));
  // Z = X - 1000: 1500 - 15 t = t, t = 93.75 to the east.
  const double slope[3] = {1.0, 0.0, -1000.0};
  vertical.photo.IntersectPlane(p, out, slope);
  EXPECT_THAT(out, ElementsAre(DoubleNear(1093.75, 1e-9), DoubleNear(2000.0, 1e-9), DoubleNear(93.75, 1e-9)));
}

TEST(AerialPhotoFramesTest, ThePointOnAPlaneLiesOnItAndShowsAtThePixel) {
  RandomPhotos photos;
  for (int n = 0; n < 100; ++n) {
    AerialPhoto photo;
    SetPhoto(photo, photos.Next());
    const double plane[3] = {photos.In(-0.2, 0.2), photos.In(-0.2, 0.2), photos.In(-50.0, 50.0)};
    // In coordinates beside the photo, so that the plane is not steep there.
    const double level = -plane[0] * photo.perspectiveX - plane[1] * photo.perspectiveY;
    const double shifted[3] = {plane[0], plane[1], plane[2] + level};
    const double p[2] = {photos.In(300.0, 900.0), photos.In(300.0, 900.0)};
    double out[3];
    photo.IntersectPlane(p, out, shifted);
    EXPECT_NEAR(out[2], plane[0] * out[0] + plane[1] * out[1] + shifted[2], 1e-7);
    double col = 0.0;
    double row = 0.0;
    photo.GroundToImage(out[0], out[1], out[2], col, row);
    EXPECT_NEAR(col, p[0], 1e-9);
    EXPECT_NEAR(row, p[1], 1e-9);
  }
}

TEST(AerialPhotoFramesTest, APointOnTheVanishingLineDividesByZero) {
  const VerticalPhoto vertical;
  double col = 0.0;
  double row = 0.0;
  EXPECT_EQ(vertical.photo.GroundToImage(1100.0, 2050.0, 1500.0, col, row), 1);
  EXPECT_FALSE(std::isfinite(col));
  EXPECT_FALSE(std::isfinite(row));
}

TEST(AerialPhotoFramesTest, IntersectOfRaysThatMeet) {
  VerticalPhoto left;
  VerticalPhoto right;
  right.photo.perspectiveX = 1600.0;
  left.photo.ComputeBase(right.photo);
  // (1300, 2150, 300): 300 and 150 off, 1200 below the left one.
  const double pLeft[2] = {875.0, 312.5};
  const double pRight[2] = {125.0, 312.5};
  double out[3];
  EXPECT_EQ(left.photo.Intersect(right.photo, pLeft, pRight, out), 1);
  EXPECT_THAT(out, ElementsAre(DoubleNear(1300.0, 1e-9), DoubleNear(2150.0, 1e-9), DoubleNear(300.0, 1e-9)));
}

TEST(AerialPhotoFramesTest, IntersectOfRaysThatPassIsTheMiddle) {
  // The left ray goes straight down at Y 2000. The right one, 150 more to the north at its own centre, goes
  // down and to the west: the nearest points are both at (1000, ., 300), 150 apart.
  VerticalPhoto left;
  VerticalPhoto right;
  right.photo.perspectiveX = 1600.0;
  right.photo.perspectiveY = 2150.0;
  const double pLeft[2] = {500.0, 500.0};
  const double pRight[2] = {-250.0, 500.0};
  double out[3];
  EXPECT_EQ(IntersectRays(left.photo, right.photo, pLeft, pRight, out), 1);
  EXPECT_THAT(out, ElementsAre(DoubleNear(1000.0, 1e-9), DoubleNear(2075.0, 1e-9), DoubleNear(300.0, 1e-9)));
}

// The two places found by solving for the shortest distance between two lines, in long double.
std::array<double, 3> PlainIntersection(const PhotoElements& left, const PhotoElements& right,
                                        const double pLeft[2], const double pRight[2]) {
  const auto u = PlainPhoto(left).Ray(pLeft[0], pLeft[1]);
  const auto v = PlainPhoto(right).Ray(pRight[0], pRight[1]);
  const PlainPhoto::Vector w = {left.x - static_cast<long double>(right.x),
                                left.y - static_cast<long double>(right.y),
                                left.z - static_cast<long double>(right.z)};
  const auto dot = [](const PlainPhoto::Vector& p, const PlainPhoto::Vector& q) {
    return p[0] * q[0] + p[1] * q[1] + p[2] * q[2];
  };
  const long double a = dot(u, u), b = dot(u, v), c = dot(v, v), d = dot(u, w), e = dot(v, w);
  const long double s = (b * e - c * d) / (a * c - b * b);
  const long double t = (a * e - b * d) / (a * c - b * b);
  return {static_cast<double>((left.x + s * u[0] + right.x + t * v[0]) / 2),
          static_cast<double>((left.y + s * u[1] + right.y + t * v[1]) / 2),
          static_cast<double>((left.z + s * u[2] + right.z + t * v[2]) / 2)};
}

TEST(AerialPhotoFramesTest, IntersectIsThatOfAPlainReference) {
  RandomPhotos photos;
  for (int n = 0; n < 200; ++n) {
    PhotoElements leftElements = photos.Next();
    leftElements.kappa = photos.In(-5.0, 5.0);
    PhotoElements rightElements = leftElements;
    rightElements.x += 0.5 * leftElements.z;
    rightElements.y += 0.02 * leftElements.z;
    rightElements.z *= 1.01;
    rightElements.omega += 1.0;
    rightElements.phi -= 2.0;
    rightElements.kappa += 3.0;
    AerialPhoto left;
    AerialPhoto right;
    SetPhoto(left, leftElements);
    SetPhoto(right, rightElements);
    // A place between both, seen a little off in the right photo.
    double pLeft[2];
    double pRight[2];
    const double x = leftElements.x + 0.25 * leftElements.z;
    const double y = leftElements.y + photos.In(-100.0, 100.0);
    left.GroundToImage(x, y, 50.0, pLeft[0], pLeft[1]);
    right.GroundToImage(x, y, 50.0, pRight[0], pRight[1]);
    pRight[0] += photos.In(-2.0, 2.0);
    pRight[1] += photos.In(-2.0, 2.0);

    double out[3];
    IntersectRays(left, right, pLeft, pRight, out);
    const auto plain = PlainIntersection(leftElements, rightElements, pLeft, pRight);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(out[i], plain[i], 1e-7) << n;
    double again[3];
    left.ComputeBase(right);
    left.Intersect(right, pLeft, pRight, again);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(again[i], out[i]) << n;
  }
}

TEST(AerialPhotoFramesTest, ParallelRaysGiveNoNumbers) {
  VerticalPhoto left;
  VerticalPhoto right;
  right.photo.perspectiveX = 1600.0;
  const double p[2] = {500.0, 500.0};
  double out[3];
  EXPECT_EQ(IntersectRays(left.photo, right.photo, p, p, out), 1);
  EXPECT_FALSE(std::isfinite(out[2]));
}

}  // namespace
}  // namespace corvane
