// Photos with known orientation: an exact synthetic block, and real pairs with measured points.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "support/SharedData.h"

namespace corvane {
namespace {

std::vector<std::string> BlockPhotos() {
  return {"hills_s1p1", "hills_s1p2", "hills_s1p3", "hills_s2p1", "hills_s2p2", "hills_s2p3"};
}

bool LoadShared(AerialPhoto& photo, const std::string& name) {
  const std::string path = SharedData(name);
  return !path.empty() && photo.LoadOrientation(path) == 1;
}

// The lines of a text that are not remarks.
std::vector<std::string> Lines(const std::string& path) {
  std::vector<std::string> lines;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line[0] != '#') lines.push_back(line);
  }
  return lines;
}

// The distance of a pixel from where the photo shows a ground point.
double DistanceInPhoto(const AerialPhoto& photo, const double ground[3], const double pixel[2]) {
  double col = 0.0;
  double row = 0.0;
  photo.GroundToImage(ground[0], ground[1], ground[2], col, row);
  return std::hypot(col - pixel[0], row - pixel[1]);
}

TEST(AerialPhotoDataTest, PixelsOfTheBlockComeBackFromTheGround) {
  for (const std::string& name : BlockPhotos()) {
    AerialPhoto photo;
    if (!LoadShared(photo, "block/" + name + ".orn")) GTEST_SKIP() << "no block";
    for (int i = 0; i <= 10; ++i) {
      for (int j = 0; j <= 10; ++j) {
        const double p[2] = {59.9 * i, 59.9 * j};
        double ground[3] = {0.0, 0.0, 440.0 + i};
        photo.ImageToGround(p, ground[2], ground[0], ground[1]);
        EXPECT_LT(DistanceInPhoto(photo, ground, p), 1e-9) << name;
        double v[3];
        double back[3];
        photo.ImageToPhoto(p, v);
        photo.PhotoToImage(v, back);
        EXPECT_NEAR(back[0], p[0], 1e-9);
        EXPECT_NEAR(back[1], p[1], 1e-9);
      }
    }
  }
}

TEST(AerialPhotoDataTest, CheckPointsOfTheBlockShowWhereTheyShould) {
  const std::string groundPath = SharedData("block/hills_check_points.txt");
  const std::string imagePath = SharedData("block/hills_check_points_image.txt");
  if (groundPath.empty() || imagePath.empty()) GTEST_SKIP() << "no block";
  const std::vector<std::string> ground = Lines(groundPath);
  std::map<std::string, AerialPhoto> photos;
  for (const std::string& name : BlockPhotos())
    ASSERT_TRUE(LoadShared(photos[name], "block/" + name + ".orn"));
  int n = 0;
  for (const std::string& line : Lines(imagePath)) {
    std::istringstream text(line);
    std::size_t point = 0;
    std::string name;
    double pixel[2];
    ASSERT_TRUE(text >> point >> name >> pixel[0] >> pixel[1]) << line;
    ASSERT_LE(point, ground.size());
    std::istringstream place(ground[point - 1]);
    double p[3];
    ASSERT_TRUE(place >> p[0] >> p[1] >> p[2]);
    // Ground coordinates are printed to a millimetre and heights to a tenth of one, at 0.75 m a pixel.
    EXPECT_LT(DistanceInPhoto(photos[name], p, pixel), 0.0012) << line;
    ++n;
  }
  EXPECT_GE(n, 40);
}

// The pair's tie points: place in both photos, the rays' intersection, and how far it is from both places.
void ExpectTiePoints(const std::string& left, const std::string& right, const std::string& points,
                     double groundTolerance) {
  AerialPhoto leftPhoto;
  AerialPhoto rightPhoto;
  const std::string path = SharedData(points);
  if (!LoadShared(leftPhoto, left) || !LoadShared(rightPhoto, right) || path.empty()) {
    GTEST_SKIP() << "no photos";
  }
  leftPhoto.ComputeBase(rightPhoto);
  const std::vector<std::string> lines = Lines(path);
  EXPECT_EQ(lines.size(), 30u);
  for (const std::string& line : lines) {
    std::istringstream text(line);
    int number = 0;
    double p[2];
    double q[2];
    double expected[3];
    double residual = 0.0;
    ASSERT_TRUE(text >> number >> p[0] >> p[1] >> q[0] >> q[1] >> expected[0] >> expected[1] >> expected[2] >>
                residual)
        << line;
    double out[3];
    leftPhoto.Intersect(rightPhoto, p, q, out);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(out[i], expected[i], groundTolerance) << line;
    EXPECT_NEAR(DistanceInPhoto(leftPhoto, out, p) + DistanceInPhoto(rightPhoto, out, q), residual, 0.003)
        << line;
  }
}

// Pixels are printed to a thousandth.
TEST(AerialPhotoDataTest, TiePointsOfTheAerialPair) {
  ExpectTiePoints("photos/ngi_06_0251.orn", "photos/ngi_06_0253.orn", "photos/ngi_06_tie_points.txt", 0.015);
}

TEST(AerialPhotoDataTest, TiePointsOfTheCloseRangePair) {
  ExpectTiePoints("photos/herz_jesus_p8_0003.orn", "photos/herz_jesus_p8_0004.orn",
                  "photos/herz_jesus_p8_tie_points.txt", 1.5e-4);
}

TEST(AerialPhotoDataTest, RealOrientationsRoundTrip) {
  for (const char* name : {"photos/ngi_06_0251.orn", "photos/ngi_06_0253.orn",
                           "photos/herz_jesus_p8_0003.orn", "photos/herz_jesus_p8_0004.orn"}) {
    AerialPhoto photo;
    if (!LoadShared(photo, name)) GTEST_SKIP() << "no photos";
    const double p[2] = {320.25, 577.75};
    double ground[3] = {0.0, 0.0, photo.perspectiveZ - 0.9 * std::fabs(photo.perspectiveZ) - 10.0};
    photo.ImageToGround(p, ground[2], ground[0], ground[1]);
    EXPECT_LT(DistanceInPhoto(photo, ground, p), 1e-9) << name;
  }
}

}  // namespace
}  // namespace corvane
