// The matrices of a photo.

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OpenGL/Stereo_2Cursor/PhotoFixture.h"
#include "TIN/TINPoints.h"
#include "numerics/Angles.h"

namespace corvane {
namespace {

void ExpectMatrix(ConstMatrix m, const double (&expected)[3][3], double tolerance) {
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) EXPECT_NEAR(m[i][j], expected[i][j], tolerance) << i << ", " << j;
  }
}

TEST(AerialPhotoTest, ANewPhotoHasTheDefaults) {
  const AerialPhoto photo;
  EXPECT_EQ(photo.name, "");
  EXPECT_EQ(photo.label, "");
  EXPECT_EQ(photo.frameWidth, 220.0);
  EXPECT_EQ(photo.frameHeight, 220.0);
  EXPECT_EQ(photo.principalX, 0.0);
  EXPECT_EQ(photo.principalY, 0.0);
  EXPECT_EQ(photo.pixelSizeX, 0.07);
  EXPECT_EQ(photo.pixelSizeY, 0.07);
  EXPECT_TRUE(photo.measurements.empty());
  ASSERT_EQ(photo.fiducials.size(), 8u);
  for (const Point2& fiducial : photo.fiducials) {
    EXPECT_EQ(fiducial.x, std::numeric_limits<double>::max());
    EXPECT_EQ(fiducial.y, std::numeric_limits<double>::max());
  }
  EXPECT_EQ(photo.maxRowDisparity, 1);
  EXPECT_EQ(photo.groundPoints, nullptr);
  EXPECT_TRUE(photo.windowChanged);
  EXPECT_TRUE(photo.pickedPoints.empty());
  EXPECT_TRUE(photo.markedPoints.empty());
  EXPECT_FALSE(photo.image.HasPixels());
}

TEST(AerialPhotoTest, OnlyNumbersThatMakeAnOrientationAreOne) {
  AerialPhoto photo;
  EXPECT_FALSE(photo.IsOriented());
  SetPhoto(photo, {});
  EXPECT_TRUE(photo.IsOriented());
  photo.perspectiveY = std::numeric_limits<double>::infinity();
  EXPECT_FALSE(photo.IsOriented());
  SetPhoto(photo, {});
  photo.imageToPhoto[1][1] = 0.0;
  EXPECT_FALSE(photo.IsOriented());
  SetPhoto(photo, {});
  photo.focalLength = 0.0;
  EXPECT_FALSE(photo.IsOriented());
}

TEST(AerialPhotoTest, RotationIsTheTableOfItsAngles) {
  AerialPhoto photo;
  // sin 30 = 0.5; cos 30 = h; kappa 90 makes ck 0 and sk 1.
  photo.omega = ToRadians(30.0);
  photo.phi = 0.0;
  photo.kappa = ToRadians(90.0);
  photo.ComputeRotation();
  const double h = 0.8660254037844386;
  ExpectMatrix(photo.rotation.get(), {{0.0, h, 0.5}, {-1.0, 0.0, 0.0}, {0.0, -0.5, h}}, 1e-15);

  photo.omega = 0.0;
  photo.phi = ToRadians(30.0);
  photo.kappa = 0.0;
  photo.ComputeRotation();
  ExpectMatrix(photo.rotation.get(), {{h, 0.0, -0.5}, {0.0, 1.0, 0.0}, {0.5, 0.0, h}}, 1e-15);

  // All three 30 degrees: 3/4, h/2 + h/8 ...
  photo.omega = photo.kappa = photo.phi;
  photo.ComputeRotation();
  ExpectMatrix(photo.rotation.get(),
               {{0.75, h / 2 + 0.25 * h, 0.25 - h * h / 2},
                {-h / 2, 0.75 - 0.125, h / 2 + h / 4},
                {0.5, -h / 2, 0.75}},
               1e-15);
}

TEST(AerialPhotoTest, RotationIsThatOfThreeTurns) {
  RandomPhotos photos;
  for (int n = 0; n < 100; ++n) {
    const PhotoElements elements = photos.Next();
    AerialPhoto photo;
    SetPhoto(photo, elements);
    for (std::size_t j = 0; j < 3; ++j) {
      PlainPhoto::Vector axis = {0.0L, 0.0L, 0.0L};
      axis[j] = 1.0L;
      const PlainPhoto::Vector column = PlainPhoto(elements).ToPhotoFrame(axis);
      for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(photo.rotation[i][j], static_cast<double>(column[i]), 1e-15) << n;
      }
    }
  }
}

TEST(AerialPhotoTest, AnglesComeBackFromTheRotation) {
  AerialPhoto photo;
  photo.omega = 0.3;
  photo.phi = -0.2;
  photo.kappa = 2.5;
  photo.ComputeRotation();
  EXPECT_NEAR(-std::atan2(photo.rotation[2][1], photo.rotation[2][2]), 0.3, 1e-15);
  EXPECT_NEAR(std::asin(photo.rotation[2][0]), -0.2, 1e-15);
  EXPECT_NEAR(-std::atan2(photo.rotation[1][0], photo.rotation[0][0]), 2.5, 1e-15);
}

TEST(AerialPhotoTest, InverseOfTheInteriorOrientation) {
  AerialPhoto photo;
  SetPhoto(photo, {.f = 100.0, .a = 0.5, .b = 0.0, .c = -20.0, .d = 0.0, .e = -0.25, .g = 10.0});
  // col = (x + 20) / 0.5 with 1 = z / -100: col = 2 x - 0.4 z, row = -4 y - 0.4 z.
  const double expected[3][3] = {{2.0, 0.0, -0.4}, {0.0, -4.0, -0.4}, {0.0, 0.0, -0.01}};
  ExpectMatrix(photo.photoToImage.get(), expected, 1e-15);
  ExpectMatrix(photo.inverseScratch.get(), expected, 1e-15);
}

TEST(AerialPhotoTest, RecomputeMakesTheProducts) {
  AerialPhoto photo;
  SetPhoto(photo, {.f = 100.0, .omega = 30.0, .a = 0.5, .c = -20.0, .e = -0.25, .g = 10.0});
  const double h = 0.8660254037844386;
  // R = {1, 0, 0}, {0, h, 0.5}, {0, -0.5, h}.
  ExpectMatrix(photo.groundToImage.get(),
               {{2.0, 0.4 * 0.5, -0.4 * h},
                {0.0, -4.0 * h + 0.4 * 0.5, -4.0 * 0.5 - 0.4 * h},
                {0.0, 0.01 * 0.5, -0.01 * h}},
               1e-14);
  ExpectMatrix(photo.imageToGround.get(),
               {{0.5, 0.0, -20.0},
                {0.0, -0.25 * h, 10.0 * h - 0.5 * -100.0},
                {0.0, -0.25 * 0.5, 10.0 * 0.5 + h * -100.0}},
               1e-13);
}

TEST(AerialPhotoTest, SetExteriorLeavesProductsStale) {
  AerialPhoto photo;
  SetPhoto(photo, {});
  const double before = photo.groundToImage[0][0];
  photo.SetExterior(77.0, 1.0, 2.0, 3.0, 4.0, 5.0, 0.0, 0.0, kPi / 2);
  EXPECT_EQ(photo.focalLength, 77.0);
  EXPECT_EQ(photo.principalX, 1.0);
  EXPECT_EQ(photo.principalY, 2.0);
  EXPECT_EQ(photo.perspectiveX, 3.0);
  EXPECT_EQ(photo.perspectiveY, 4.0);
  EXPECT_EQ(photo.perspectiveZ, 5.0);
  ExpectMatrix(photo.rotation.get(), {{0.0, 1.0, 0.0}, {-1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}}, 1e-15);
  EXPECT_EQ(photo.groundToImage[0][0], before);
  EXPECT_EQ(photo.imageToPhoto[2][2], -150.0) << "A is not touched";
}

TEST(AerialPhotoTest, ScaleIsTheFirstCoefficientWithoutSign) {
  AerialPhoto photo;
  photo.imageToPhoto[0][0] = -0.0625;
  EXPECT_EQ(photo.GetScale(), 0.0625);
}

TEST(AerialPhotoTest, SingularInteriorOrientationIsNoTrouble) {
  AerialPhoto photo;
  SetPhoto(photo, {.a = 0.0, .b = 0.0, .d = 0.0, .e = 0.0});
  double col = 0.0;
  double row = 0.0;
  EXPECT_EQ(photo.GroundToImage(1.0, 2.0, 3.0, col, row), 1);
}

}  // namespace
}  // namespace corvane
