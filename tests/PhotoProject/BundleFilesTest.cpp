// The files of solutions and results.

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>

#include "PhotoProject/BundleAdjustment.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

class BundleFiles : public testing::Test {
 protected:
  void AddPhoto(std::size_t strip, const std::string& name) {
    if (project.photos.size() <= strip) project.photos.resize(strip + 1);
    AerialPhoto& photo = *project.photos[strip].emplace_back(std::make_unique<AerialPhoto>());
    photo.name = name;
    photo.omega = 0.5;
    photo.kappa = -0.25;
    photo.perspectiveX = 1000.0;
  }

  void AddPoint(char type, const std::string& name, double x) {
    GroundPoint point;
    point.type = type;
    point.name = name;
    point.x = x;
    point.y = 2.0;
    point.z = 0.0;
    project.AddGroundPoint(point);
    ++(type == kControlPoint ? project.controlCount : project.passCount);
  }

  TempFolder folder;
  PhotoProject project;
};

TEST_F(BundleFiles, SolutionHasALineAPhotoAndALineAPoint) {
  const double x[] = {0.5, 0, -0.0, 1e-7, -2, 0, 1, 2, 3, 4, 5, 6, 0, 0.25, -0.0};
  ASSERT_EQ(WriteSolution("s.txt", 2, 1, x, ","), 1);
  EXPECT_EQ(ReadFileBytes("s.txt"),
            "0.500000, 0, -0, 0.000000, -2.000000, 0.000000\n"
            "1.000000, 2.000000, 3.000000, 4.000000, 5.000000, 6.000000\n"
            "0, 0.250000, -0.000000\n");
}

TEST_F(BundleFiles, SolutionTakesTheSeparator) {
  const double x[] = {1, 2, 3};
  ASSERT_EQ(WriteSolution("s.txt", 0, 1, x, ";"), 1);
  EXPECT_EQ(ReadFileBytes("s.txt"), "1.000000; 2.000000; 3.000000\n");
}

TEST_F(BundleFiles, SolutionOfWhatIsNotFinite) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double x[] = {std::numeric_limits<double>::infinity(), -nan, nan};
  ASSERT_EQ(WriteSolution("s.txt", 0, 1, x, ","), 1);
  EXPECT_EQ(ReadFileBytes("s.txt"), "inf, nan, nan\n");
}

TEST_F(BundleFiles, FailWhereTheFileDoesNotOpen) {
  const double x[] = {1, 2, 3};
  EXPECT_EQ(WriteSolution("no/s.txt", 0, 1, x, ","), -1);
  EXPECT_EQ(WriteResult(project, "no/r.txt"), -1);
}

TEST_F(BundleFiles, ResultHasThePhotosByStripAndThePoints) {
  AddPhoto(0, "a.lan");
  AddPhoto(1, "b.lan");
  AddPoint(kControlPoint, "c1", 1.5);
  AddPoint(kControlPoint, "c2", -1e-9);
  AddPoint(kPassPoint, "p1", 3.0);
  ASSERT_EQ(WriteResult(project, "r.txt"), 1);
  EXPECT_EQ(ReadFileBytes("r.txt"),
            "Strip: 0, PhotoName: a.lan\n"
            "0.500000, 0.000000, -0.250000, 1000.000000, 0.000000, 0.000000\n\n"
            "Strip: 1, PhotoName: b.lan\n"
            "0.500000, 0.000000, -0.250000, 1000.000000, 0.000000, 0.000000\n\n"
            "c1: 1.500000, 2.000000, 0.000000\n"
            "c2: -0.000000, 2.000000, 0.000000\n\n"
            "p1: 3.000000, 2.000000, 0.000000\n");
}

TEST_F(BundleFiles, ResultWithoutControlPointsHasNoEmptyLineAmongThePoints) {
  AddPoint(kPassPoint, "p1", 1.0);
  AddPoint(kPassPoint, "p2", 2.0);
  ASSERT_EQ(WriteResult(project, "r.txt"), 1);
  EXPECT_EQ(ReadFileBytes("r.txt"), "p1: 1.000000, 2.000000, 0.000000\np2: 2.000000, 2.000000, 0.000000\n");
}

// A control point that only the project has measured stands among the pass points, and counts as one.
TEST_F(BundleFiles, ResultHasTheEmptyLineAfterTheLastControlPointOfTheGroundPointFile) {
  AddPoint(kControlPoint, "c1", 1.0);
  AddPoint(kPassPoint, "p1", 2.0);
  AddPoint(kControlPoint, "c2", 3.0);
  --project.controlCount;
  ++project.passCount;
  ASSERT_EQ(WriteResult(project, "r.txt"), 1);
  EXPECT_EQ(ReadFileBytes("r.txt"),
            "c1: 1.000000, 2.000000, 0.000000\n\n"
            "p1: 2.000000, 2.000000, 0.000000\n"
            "c2: 3.000000, 2.000000, 0.000000\n");
}

TEST_F(BundleFiles, ResultEndsWithTheCountedPoints) {
  AddPoint(kPassPoint, "p1", 1.0);
  AddPoint(kPassPoint, "p2", 2.0);
  project.passCount = 1;
  ASSERT_EQ(WriteResult(project, "r.txt"), 1);
  EXPECT_EQ(ReadFileBytes("r.txt"), "p1: 1.000000, 2.000000, 0.000000\n");
  project.passCount = 2147483647;
  project.controlCount = 2147483647;
  ASSERT_EQ(WriteResult(project, "r.txt"), 1);
  EXPECT_EQ(ReadFileBytes("r.txt"), "p1: 1.000000, 2.000000, 0.000000\np2: 2.000000, 2.000000, 0.000000\n");
}

TEST_F(BundleFiles, ResultOfNothingIsEmpty) {
  ASSERT_EQ(WriteResult(project, "r.txt"), 1);
  EXPECT_EQ(ReadFileBytes("r.txt"), "");
}

}  // namespace
}  // namespace corvane
