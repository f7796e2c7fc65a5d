// Reading of whole projects.

#include <gmock/gmock.h>

#include <filesystem>
#include <limits>
#include <sstream>

#include "PhotoProject/PhotoProject.h"
#include "PhotoProject/ProjectFiles.h"
#include "numerics/Angles.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr double kUnknown = std::numeric_limits<double>::max();

class ProjectRead : public testing::Test {
 protected:
  int Read() {
    files.Write();
    return project.Read("block.pj");
  }

  // Reads the files, as they are now, into a project of its own.
  int ReadAgain() {
    files.Write();
    PhotoProject again;
    return again.Read("block.pj");
  }

  static std::vector<double> RowOf(const AerialPhoto& photo, int row) {
    const double* const a = photo.imageToPhoto[static_cast<std::size_t>(row)];
    return {a[0], a[1], a[2]};
  }

  TempFolder folder;
  TestFrontEnd ui;
  ProjectFiles files;
  PhotoProject project;
};

TEST_F(ProjectRead, HeadAndCamera) {
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(project.projectTitle, "Hills");
  EXPECT_EQ(project.cameraFile, "cam.txt");
  // The project's own line counts, not the camera file's.
  EXPECT_EQ(project.focalLength, 100.0);
  EXPECT_THAT(
      (std::vector{project.cameraParam1, project.cameraParam2, project.cameraParam3, project.cameraParam4}),
      ElementsAre(1.5, 2.5, 3.5, 4.5));
  EXPECT_EQ(project.principalX, 0.5);
  EXPECT_EQ(project.principalY, -0.25);
  EXPECT_EQ(project.name, "");
  EXPECT_EQ(project.measurementCursor, 0);
  EXPECT_THAT(ui.events, IsEmpty());
}

TEST_F(ProjectRead, StripsAndPhotos) {
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(project.stripCount, 2);
  EXPECT_THAT(project.stripPhotoCounts, ElementsAre(2, 1));
  EXPECT_EQ(project.photoCount, 3);
  EXPECT_THAT(project.modelNames, ElementsAre("North", "South"));
  ASSERT_EQ(project.photos.size(), 2u);
  ASSERT_EQ(project.photos[0].size(), 2u);
  ASSERT_EQ(project.photos[1].size(), 1u);
  const AerialPhoto& photo = *project.GetPhoto(0, 1);
  EXPECT_EQ(photo.name, "n2.lan");
  EXPECT_EQ(photo.label, "N2");
  EXPECT_EQ(photo.stripIndex, 0);
  EXPECT_EQ(photo.photoIndex, 1);
  EXPECT_EQ(project.GetPhoto(1, 0)->stripIndex, 1);
  EXPECT_EQ(project.GetPhoto(1, 0)->photoIndex, 0);
}

TEST_F(ProjectRead, InteriorBlock) {
  EXPECT_EQ(Read(), 1);
  const AerialPhoto& photo = *project.GetPhoto(0, 0);
  EXPECT_EQ(photo.fiducialCount, 1);
  EXPECT_EQ(photo.fiducials[3], (Point2{10, 20}));
  EXPECT_EQ(photo.fiducials[0].x, AerialPhoto::kUnset);
  EXPECT_EQ(photo.principalX, 0.5);
  EXPECT_EQ(photo.principalY, -0.25);
  EXPECT_THAT(RowOf(photo, 0), ElementsAre(0.1, 0, -5.5));
  EXPECT_THAT(RowOf(photo, 1), ElementsAre(0, -0.1, 4.25));
  EXPECT_THAT(RowOf(photo, 2), ElementsAre(0, 0, -100));
  EXPECT_EQ(RowOf(*project.GetPhoto(0, 1), 0)[0], 0.2);  // blocks stand in any order
  EXPECT_EQ(RowOf(*project.GetPhoto(1, 0), 0)[0], 0.3);
}

TEST_F(ProjectRead, MeasurementsOfPassPointsStandBeforeThoseOfControlPoints) {
  EXPECT_EQ(Read(), 1);
  const auto& measurements = project.GetPhoto(0, 0)->measurements;
  ASSERT_EQ(measurements.size(), 2u);
  EXPECT_EQ(measurements[0].type, 'p');
  EXPECT_EQ(measurements[0].name, "A");
  EXPECT_EQ(measurements[0].col, 10.0);
  EXPECT_EQ(measurements[0].row, 20.0);
  EXPECT_EQ(measurements[0].groundIndex, 1);
  EXPECT_EQ(measurements[1].type, 'c');
  EXPECT_EQ(measurements[1].name, "C1");
  EXPECT_EQ(measurements[1].groundIndex, 0);
  EXPECT_EQ(project.MeasurementCount(), 5);
}

TEST_F(ProjectRead, RaysOfAPointFollowTheBlocks) {
  EXPECT_EQ(Read(), 1);
  const GroundPoint& a = project.groundPoints.at(1);
  EXPECT_EQ(a.name, "A");
  EXPECT_THAT(a.stripIndices, ElementsAre(0, 1, 0));
  EXPECT_THAT(a.photoIndices, ElementsAre(0, 0, 1));
  EXPECT_THAT(a.measurementIndices, ElementsAre(0, 0, 1));
  const GroundPoint& c = project.groundPoints.at(0);
  EXPECT_THAT(c.stripIndices, ElementsAre(0));
  EXPECT_THAT(c.measurementIndices, ElementsAre(1));
}

TEST_F(ProjectRead, PointThatIsNotInTheGroundPointFileIsAddedWithoutAPosition) {
  EXPECT_EQ(Read(), 1);
  ASSERT_EQ(project.groundPoints.size(), 3u);
  const GroundPoint& b = project.groundPoints[2];
  EXPECT_EQ(b.name, "B");
  EXPECT_EQ(b.type, 'p');
  EXPECT_TRUE(b.IsUnknown());
  EXPECT_THAT((std::vector{b.x, b.y, b.z}), ElementsAre(kUnknown, kUnknown, kUnknown));
  EXPECT_EQ(b.dimension, 3);
  EXPECT_EQ(b.sigmaX, 1.0);
  EXPECT_EQ(project.controlCount, 1);
  EXPECT_EQ(project.passCount, 2);
}

TEST_F(ProjectRead, OneNameAsControlAndAsPassPointIsTwoPoints) {
  files.interiors[1] = "0 2 1 s1\n0.3 0 -7 0 -0.3 6\n2 1\nA 13 23\nC1 1 2\nA 3 4\n";
  EXPECT_EQ(Read(), 1);
  ASSERT_EQ(project.groundPoints.size(), 5u);
  EXPECT_EQ(project.groundPoints[2].type, 'p');
  EXPECT_EQ(project.groundPoints[2].name, "C1");
  EXPECT_EQ(project.groundPoints[3].type, 'c');
  EXPECT_EQ(project.groundPoints[3].name, "A");
  // An added control point counts among the pass points.
  EXPECT_EQ(project.controlCount, 1);
  EXPECT_EQ(project.passCount, 4);
  EXPECT_EQ(ReadFileBytes("_PassPt.txt"), "A, 10, 20\nC1, 1, 2\nB, 12.5, 22.125\n");
}

TEST_F(ProjectRead, PassPointListFollowsTheFirstMeasurements) {
  files.interiors[0] = "0 1 1 n1\n1 0 0 0 1 0\n2 0\nA 10.123456789012345 1e20\nZ 0.00001 -0\n";
  EXPECT_EQ(Read(), 1);
  ASSERT_EQ(project.passPoints.size(), 3u);
  EXPECT_EQ(project.passPoints[0].groundIndex, 1);
  EXPECT_EQ(project.FindPassPoint("B"), 2);
  EXPECT_EQ(ReadFileBytes("_PassPt.txt"), "A, 10.1234567890123, 1e+20\nZ, 1e-05, -0\nB, 12.5, 22.125\n");
}

TEST_F(ProjectRead, PassPointListHasTheProjectsName) {
  project.name = "hills";
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(ReadFileBytes("hills_PassPt.txt"), "A, 10, 20\nB, 12.5, 22.125\n");
  EXPECT_FALSE(std::filesystem::exists("_PassPt.txt"));
}

TEST_F(ProjectRead, ExteriorBlockMakesAllMatrices) {
  EXPECT_EQ(Read(), 1);
  const AerialPhoto& turned = *project.GetPhoto(0, 0);
  EXPECT_EQ(turned.focalLength, 100.0);
  EXPECT_DOUBLE_EQ(turned.omega, kPi / 2);
  EXPECT_DOUBLE_EQ(turned.phi, -kPi / 4);
  EXPECT_DOUBLE_EQ(turned.kappa, kPi / 10);
  EXPECT_THAT((std::vector{turned.perspectiveX, turned.perspectiveY, turned.perspectiveZ}),
              ElementsAre(1000.5, 200.25, 1000));
  // Straight below the camera is the photo's origin: 0.3 col - 7.5 = 0 and -0.3 row + 6.25 = 0.
  double col = 0.0;
  double row = 0.0;
  project.GetPhoto(1, 0)->GroundToImage(1000, 100, 0, col, row);
  EXPECT_NEAR(col, 25, 1e-12);
  EXPECT_NEAR(row, 6.25 / 0.3, 1e-12);
}

TEST_F(ProjectRead, OrientationFilesStandBesideThePhotos) {
  std::filesystem::create_directory("north");
  files.photos = "north/n1.lan N1\nn2.lan N2\ns1.lan S1\n";
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(ReadFileBytes("north/n1.orn"),
            "ORIENTATION north/n1.lan RightPhoto\n"
            "\t100.000000\n"
            "\t1000.500000\t200.250000\t1000.000000\n"
            "\t90.000000\t-45.000000\t18.000000\n"
            "\t220.000000\t0.000000\t0.000000\n"
            "\t0.100000\t0.000000\t-5.000000\n"
            "\t0.000000\t-0.100000\t4.000000\n"
            "0.500000 -0.250000\n"
            "0.070000 0.070000\n");
  EXPECT_THAT(ReadFileBytes("n2.orn"), HasSubstr("ORIENTATION n2.lan RightPhoto\n"));
  EXPECT_THAT(ReadFileBytes("s1.orn"), HasSubstr("ORIENTATION s1.lan RightPhoto\n"));
  EXPECT_THAT(project.unwrittenFiles, IsEmpty());
}

TEST_F(ProjectRead, NamesLoseThreeBytesWhateverTheirExtension) {
  files.photos = "n1.tiff N1\nn2.x N2\nabcd S1\n";
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(ReadFileBytes("n1.torn"), HasSubstr("ORIENTATION n1.tiff "));
  EXPECT_THAT(ReadFileBytes("norn"), HasSubstr("ORIENTATION n2.x "));
  EXPECT_THAT(ReadFileBytes("aorn"), HasSubstr("ORIENTATION abcd "));
}

TEST_F(ProjectRead, NamesUnderThreeLettersHaveAnEmptyStem) {
  files.photos = "n N1\nn2.lan N2\ns1.lan S1\n";
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(ReadFileBytes("orn"), HasSubstr("ORIENTATION n RightPhoto\n"));
}

// Results of reading.

TEST_F(ProjectRead, GroundPointFileComesFirst) {
  EXPECT_EQ(project.Read("block.pj"), -11);
  WriteFileBytes("block.gpt", "x 1 C");
  EXPECT_EQ(project.Read("block.pj"), -12);
  WriteFileBytes("block.gpt", files.ground);
  EXPECT_EQ(project.Read("block.pj"), -21);
  EXPECT_THAT(ui.EventsWith("message"), IsEmpty());
  EXPECT_EQ(ui.events.back(), "status 0: The project file block.pj does not open.");
}

TEST_F(ProjectRead, GroundPointFileIsNamedByTheLastPoint) {
  files.Write();
  std::filesystem::rename("block.pj", "block.v2.pj");
  EXPECT_EQ(project.Read("block.v2.pj"), -11);
  std::filesystem::rename("block.gpt", "block.v2.gpt");
  EXPECT_EQ(project.Read("block.v2.pj"), 1);
}

TEST_F(ProjectRead, CameraFileThatDoesNotOpen) {
  files.head = "PROJECT Hills none.txt\n100 1.5 2.5 3.5 4.5\n";
  EXPECT_EQ(Read(), -11);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message message: Open camera calibration file error!"));
}

TEST_F(ProjectRead, EmptyProjectDoesNotAskForItsCamera) {
  files.Write();
  WriteFileBytes("block.pj", "");
  EXPECT_EQ(project.Read("block.pj"), -23);
  EXPECT_THAT(ui.EventsWith("message"), IsEmpty());
}

TEST_F(ProjectRead, ProjectWithoutStripsIsRead) {
  files.strips = "0\n";
  files.photos = "";
  files.interiors = {};
  files.exteriors = {};
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(project.photoCount, 0);
  EXPECT_EQ(project.MeasurementCount(), 0);
  EXPECT_TRUE(std::filesystem::exists("_PassPt.txt"));
  EXPECT_EQ(ReadFileBytes("_PassPt.txt"), "");
}

// Words and numbers up to the strips' count are 9, those of the strips 4.
TEST_F(ProjectRead, EachFieldThatIsMissingFails) {
  std::vector<std::string> fields;
  std::istringstream text(files.Project());
  for (std::string field; text >> field;) fields.push_back(field);
  std::string cut;
  for (std::size_t n = 0; n < fields.size(); ++n) {
    files.Write();
    WriteFileBytes("block.pj", cut);
    PhotoProject short_;
    EXPECT_EQ(short_.Read("block.pj"), n >= 9 && n < 13 ? -22 : -23) << n;
    cut += fields[n] + "\n";
  }
  WriteFileBytes("block.pj", cut);
  EXPECT_EQ(project.Read("block.pj"), 1);
}

TEST_F(ProjectRead, LineThatDoesNotFitIsTold) {
  files.strips = "2\n2 North\nx South\n";
  EXPECT_EQ(Read(), -22);
  EXPECT_THAT(ui.events, ElementsAre("status 0: Line 5 of block.pj can't be read."));
}

TEST_F(ProjectRead, StripOrPhotoThatIsNotInTheBlock) {
  const std::vector<std::string> places = {"0 1", "3 1",  "1 0",           "1 3",
                                           "2 2", "-1 1", "1 -2147483648", "2147483647 2147483647"};
  for (const std::string& place : places) {
    ProjectFiles changed;
    changed.interiors[0] = "0 " + place + " n1\n1 0 0 0 1 0\n0 0\n";
    files = changed;
    EXPECT_EQ(ReadAgain(), -23) << place;
    changed = {};
    changed.exteriors[0] = "0 " + place + " n1\n0 0 0 0 0 0\n0 0 0 0 0 0\n";
    files = changed;
    EXPECT_EQ(ReadAgain(), -23) << place;
  }
}

TEST_F(ProjectRead, NegativeCountsFail) {
  files.strips = "-1\n";
  EXPECT_EQ(ReadAgain(), -23);
  files.strips = "2\n-2 North\n1 South\n";
  EXPECT_EQ(ReadAgain(), -22);
  files = {};
  files.interiors[0] = "-1 1 1 n1\n1 0 0 0 1 0\n0 0\n";
  EXPECT_EQ(ReadAgain(), -23);
  files.interiors[0] = "0 1 1 n1\n1 0 0 0 1 0\n-1 0\n";
  EXPECT_EQ(ReadAgain(), -23);
  files.interiors[0] = "0 1 1 n1\n1 0 0 0 1 0\n0 -1\n";
  EXPECT_EQ(ReadAgain(), -23);
}

TEST_F(ProjectRead, HugeCountsEndWithTheFile) {
  files.strips = "2000000000\n2 North\n1 South\n";
  EXPECT_EQ(ReadAgain(), -22);
  files.strips = "1\n2000000000 North\n";
  EXPECT_EQ(ReadAgain(), -23);
  files.strips = "2\n2000000000 North\n2000000000 South\n";  // together beyond 2^31
  EXPECT_EQ(ReadAgain(), -22);
  files = {};
  files.interiors[0] = "2000000000 1 1 n1\n1 0 0 0 1 0\n0 0\n";
  EXPECT_EQ(ReadAgain(), -23);
  files.interiors[0] = "0 1 1 n1\n1 0 0 0 1 0\n2147483647 2147483647\nA 1 2\n";
  EXPECT_EQ(ReadAgain(), -23);
}

// As many names as a count asks for, but nothing behind them, don't become photos.
TEST_F(ProjectRead, PhotosWithoutBlocksAreNotMade) {
  files.strips = "1\n1000000 North\n";
  files.photos.clear();
  for (int i = 0; i < 1000000; ++i) files.photos += "n N\n";
  files.interiors.clear();
  files.exteriors.clear();
  EXPECT_EQ(Read(), -23);
  EXPECT_THAT(project.photos, IsEmpty());
  EXPECT_THAT(ui.events, ElementsAre("status 0: The file block.pj ends too early, on line 1000005."));
}

// Oddities that are no failure.

TEST_F(ProjectRead, FiducialNumbersOutsideOf0To7AreDropped) {
  files.interiors[0] = "3 1 1 n1\n-1 1 2\n8 3 4\n7 5 6\n0.1 0 -5 0 -0.1 4\n0 0\n";
  EXPECT_EQ(Read(), 1);
  const AerialPhoto& photo = *project.GetPhoto(0, 0);
  EXPECT_EQ(photo.fiducialCount, 3);
  EXPECT_EQ(photo.fiducials[7], (Point2{5, 6}));
  EXPECT_EQ(photo.fiducials[0].x, AerialPhoto::kUnset);
  EXPECT_EQ(RowOf(photo, 0)[0], 0.1);
}

TEST_F(ProjectRead, LongPointNamesAreOneByTheirFirst14Bytes) {
  files.interiors[1] = "0 2 1 s1\n0.3 0 -7 0 -0.3 6\n1 0\nABCDEFGHIJKLMNOP 13 23\n";
  files.interiors[2] = "0 1 2 n2\n0.2 0 -6 0 -0.2 5\n1 0\nABCDEFGHIJKLMNXY 1 2\n";
  EXPECT_EQ(Read(), 1);
  ASSERT_EQ(project.groundPoints.size(), 3u);
  EXPECT_EQ(project.groundPoints[2].name, "ABCDEFGHIJKLMN");
  EXPECT_EQ(project.groundPoints[2].stripIndices.size(), 2u);
  EXPECT_EQ(project.GetPhoto(1, 0)->measurements[0].name, "ABCDEFGHIJKLMN");
  EXPECT_EQ(project.GetPhoto(1, 0)->measurements[0].col, 13.0);
  EXPECT_EQ(ReadFileBytes("_PassPt.txt"), "A, 10, 20\nABCDEFGHIJKLMN, 13, 23\n");
}

TEST_F(ProjectRead, TitleAndCameraPathAreCutTo256Bytes) {
  const std::string longest(256, 'a');
  files.head = "PROJECT " + longest + "bcd cam.txt\n100 1.5 2.5 3.5 4.5\n";
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(project.projectTitle, longest);
  EXPECT_EQ(project.cameraFile, "cam.txt") << "what is cut off is no next word";
  const std::string path = std::string(249, '/') + "cam.txt";  // of 256 bytes
  files.head = "PROJECT Hills " + path + "bcd\n100 1.5 2.5 3.5 4.5\n";
  files.Write();
  PhotoProject cut;
  EXPECT_EQ(cut.Read("block.pj"), -11);
  EXPECT_EQ(cut.cameraFile, path);
}

// A name is what stands before its first zero.
TEST_F(ProjectRead, ZeroInANameEndsIt) {
  files.photos = "b.pj\0zzz N1\nn2.lan N\0N\nblock.pj\0ab S1\n"s;
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(ReadFileBytes("block.pj"), files.Project());
  EXPECT_EQ(project.GetPhoto(0, 0)->name, "b.pj");
  EXPECT_EQ(project.GetPhoto(0, 1)->label, "N");
  EXPECT_EQ(project.GetPhoto(1, 0)->name, "block.pj");
  EXPECT_THAT(ReadFileBytes("born"), HasSubstr("ORIENTATION b.pj RightPhoto\n"));
  EXPECT_THAT(project.writtenFiles, ElementsAre("n2.orn", "born", "blockorn", "_PassPt.txt"));
}

TEST_F(ProjectRead, PhotoOfTwoBlocksTakesTheLaterAndThatOfNoneStaysZero) {
  files.interiors[2] = "0 1 1 n1\n0.4 0 -6 0 -0.4 5\n2 0\nB 1 2\nA 11 21\n";
  files.exteriors[0] = "0 1 1 n1\n0 0 0 0 0 0\n0 0 0 7 8 9\n";
  EXPECT_EQ(Read(), 1);
  const AerialPhoto& twice = *project.GetPhoto(0, 0);
  EXPECT_EQ(RowOf(twice, 0)[0], 0.4);
  EXPECT_EQ(twice.measurements.size(), 4u);
  EXPECT_EQ(twice.perspectiveX, 1000.5);  // its exterior blocks are the first and the second
  EXPECT_THAT(project.groundPoints[1].measurementIndices, ElementsAre(0, 0, 1));
  const AerialPhoto& never = *project.GetPhoto(0, 1);
  for (int row = 0; row < 3; ++row) EXPECT_THAT(RowOf(never, row), ElementsAre(0, 0, 0));
  EXPECT_EQ(never.rotation[0][0], 0.0);
  EXPECT_EQ(never.focalLength, 0.0);
  EXPECT_EQ(never.perspectiveX, 0.0);
  EXPECT_THAT(project.photosWithoutBlock, ElementsAre("n2.lan"));
  EXPECT_FALSE(std::filesystem::exists("n2.orn"));
}

TEST_F(ProjectRead, SingularInteriorIsRead) {
  files.interiors[0] = "0 1 1 n1\n0 0 0 0 0 0\n0 0\n";
  EXPECT_EQ(Read(), 1);
}

TEST_F(ProjectRead, PhotoWithOneBlockOfTwoIsWithout) {
  files.interiors[2] = files.interiors[1];
  files.exteriors[2] = files.exteriors[1];
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(project.photosWithoutBlock, ElementsAre("n2.lan", "s1.lan"));
}

TEST_F(ProjectRead, NumbersThatAreNoneAreWrittenWithoutASign) {
  files.interiors[0] = "0 1 1 n1\n1 0 0 0 1 0\n1 0\nA -nan -inf\n";
  files.exteriors[1] = "0 1 1 n1\n0 0 0 0 0 0\n-nan 0 0 inf -nan 0\n";
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(ReadFileBytes("_PassPt.txt"), "A, nan, -inf\nB, 12.5, 22.125\n");
  EXPECT_THAT(ReadFileBytes("n1.orn"), HasSubstr("\n\tinf\tnan\t0.000000\n\tnan\t0.000000\t0.000000\n"));
  std::string dump;
  project.groundPoints[0].x = -std::numeric_limits<double>::quiet_NaN();
  project.DumpGroundPoints(dump);
  EXPECT_THAT(dump, HasSubstr("C1, c\nnan, 600, 70\n"));
}

// Progress.

TEST_F(ProjectRead, LargeBlockTellsHowFarItIs) {
  files.strips = "1\n120 North\n";
  files.photos = "";
  files.interiors.assign(120, "0 1 1 n\n1 0 0 0 1 0\n0 0\n");
  files.exteriors.assign(120, "0 1 1 n\n0 0 0 0 0 0\n0 0 0 0 0 0\n");
  for (int i = 0; i < 120; ++i) files.photos += "n.lan N\n";
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(ui.events, ElementsAre("status 0: Orientation files: 50 of 120 ...",
                                     "status 0: Orientation files: 100 of 120 ..."));
}

}  // namespace
}  // namespace corvane
