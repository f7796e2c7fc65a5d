#include <gmock/gmock.h>

#include <bit>

#include "PhotoProject/PhotoProject.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CameraFile : public testing::Test {
 protected:
  void Read(const std::string& text) {
    WriteFileBytes("cam.txt", text);
    EXPECT_EQ(project.ReadCamera("cam.txt"), 1);
    EXPECT_THAT(ui.events, IsEmpty());
  }

  std::vector<double> Params() const {
    return {project.cameraParam1, project.cameraParam2, project.cameraParam3, project.cameraParam4};
  }

  TempFolder folder;
  TestFrontEnd ui;
  PhotoProject project;
};

// A whole number's low half is zero: no fiducial is read, and the last line is taken from the first of them.
TEST_F(CameraFile, FiducialsAreNotRead) {
  Read(
      "CAMERA calibration\nFocal 99.5\nFiducials 2\n1 0.5 -0.25\n"
      "7 106 -106.5\n2 -107 107.5\n9 1 2 3 4 5\n");
  EXPECT_EQ(project.principalX, 0.5);
  EXPECT_EQ(project.principalY, -0.25);
  EXPECT_EQ(project.fiducialCountRaw, 2.0);
  for (const Point2& fiducial : project.fiducials) EXPECT_EQ(fiducial, Point2());
  // "7 106 -106.5 2 -107 107.5": 7 joins the focal length, 106 is not kept.
  EXPECT_THAT(Params(), ElementsAre(-106.5, 2, -107, 107.5));
}

// 99.5 is 0x4058E00000000000.
TEST_F(CameraFile, IntegerOfTheLastLineIsTheLowHalfOfTheFocalLength) {
  Read("CAMERA x\nFocal 99.5\nFiducials 0\n1 0.5 -0.25\n7 0 1 2 3 4\n");
  EXPECT_EQ(std::bit_cast<std::uint64_t>(project.focalLength), 0x4058E00000000007u);
  Read("CAMERA x\nFocal 99.5\nFiducials 0\n1 0.5 -0.25\n-1 0 1 2 3 4\n");
  EXPECT_EQ(std::bit_cast<std::uint64_t>(project.focalLength), 0x4058E000FFFFFFFFu);
}

// The number's low half is 3. Fiducials have the numbers 0 to 7.
TEST_F(CameraFile, CountWithALowHalfReadsAsManyFiducials) {
  Read(
      "CAMERA x\nFocal 99.5\nFiducials 0x1.0000000000003p0\n1 0.5 -0.25\n"
      "7 106 -106.5\n8 1 2\n-1 3 4\n9 1 2 3 4 5\n");
  EXPECT_EQ(project.fiducials[7], (Point2{106, -106.5}));
  for (std::size_t i = 0; i < 7; ++i) EXPECT_EQ(project.fiducials[i], Point2()) << i;
  EXPECT_THAT(Params(), ElementsAre(2, 3, 4, 5));
}

// 0.3 is 0x3FD3333333333333, which asks for 858993459 fiducials; 0.1 ends in 0x9999999A, a negative count.
TEST_F(CameraFile, FractionAsCountEndsAtTheFirstLineThatDoesNotFit) {
  Read("CAMERA x\nFocal 99.5\nFiducials 0.3\n1 0.5 -0.25\n0 1 2\n1 3 4\nEND\n");
  EXPECT_EQ(project.fiducials[0], (Point2{1, 2}));
  EXPECT_EQ(project.fiducials[1], (Point2{3, 4}));
  EXPECT_EQ(project.focalLength, 99.5);
  Read("CAMERA x\nFocal 99.5\nFiducials 0.1\n1 0.5 -0.25\n2 1 2 3 4 5\n");
  EXPECT_EQ(project.fiducials[2], Point2());
  EXPECT_THAT(Params(), ElementsAre(2, 3, 4, 5));
}

TEST_F(CameraFile, LinesAreNotTested) {
  Read("");
  Read("CAMERA x\nFocal long\n");
  EXPECT_EQ(project.focalLength, 0.0);
  Read("CAMERA x\nFocal 99.5\nFiducials 0\n1 0.5 wide\n");
  EXPECT_EQ(project.principalX, 0.5);
  EXPECT_EQ(project.principalY, 0.0);
}

TEST_F(CameraFile, ThatDoesNotOpenShowsAPlainBox) {
  EXPECT_EQ(project.ReadCamera("none.txt"), -11);
  EXPECT_THAT(
      ui.events,
      ElementsAre("status 0: The camera file none.txt, the third word of the project file, does not open.",
                  "message message: Open camera calibration file error!"));
}

}  // namespace
}  // namespace corvane
