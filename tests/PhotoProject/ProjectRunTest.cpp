// Projects from their files to the last round.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "ExactBlock.h"
#include "PhotoProject/BundleAdjustment.h"
#include "PhotoProject/ProjectFiles.h"
#include "PlainAdjustment.h"
#include "numerics/Angles.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::HasSubstr;

std::string LineOf(const std::vector<double>& numbers) {
  std::ostringstream text;
  text.precision(17);
  for (const double number : numbers) text << number << ' ';
  return text.str() + "\n";
}

std::string MeasurementLines(const AerialPhoto& photo, char type, int& n) {
  std::string lines;
  for (const ImageMeasurement& measurement : photo.measurements) {
    if (measurement.type != type) continue;
    lines += measurement.name + " " + LineOf({measurement.col, measurement.row});
    ++n;
  }
  return lines;
}

std::string InteriorOf(const AerialPhoto& photo, const std::string& place) {
  const ConstMatrix a = photo.imageToPhoto.get();
  int nPass = 0;
  int nControl = 0;
  const std::string passes = MeasurementLines(photo, kPassPoint, nPass);
  const std::string controls = MeasurementLines(photo, kControlPoint, nControl);
  return "0 " + place + LineOf({a[0][0], a[0][1], a[0][2] + photo.principalX}) +
         LineOf({a[1][0], a[1][1], a[1][2] + photo.principalY}) + std::to_string(nPass) + " " +
         std::to_string(nControl) + "\n" + passes + controls;
}

std::string ExteriorOf(const AerialPhoto& photo, const std::string& place) {
  return "0 " + place + "0 0 0 0 0 0\n" +
         LineOf({ToDegrees(photo.omega), ToDegrees(photo.phi), ToDegrees(photo.kappa), photo.perspectiveX,
                 photo.perspectiveY, photo.perspectiveZ});
}

std::string GroundOf(const PhotoProject& block) {
  std::string text = "GROUND " + std::to_string(block.controlCount) + "\n";
  for (const GroundPoint& point : block.groundPoints) {
    if (point.type == kControlPoint)
      text += point.name + " 3 " + LineOf({point.x, point.y, point.z, 1, 1, 1});
  }
  return text + "0\n";
}

// The files of a block: its interior blocks stand from the last photo to the first.
ProjectFiles FilesOf(const PhotoProject& block) {
  const AerialPhoto& first = *block.photos[0][0];
  ProjectFiles files;
  files.ground = GroundOf(block);
  files.camera = "CAMERA x\nFocal 1\nFiducials 0\n1 " + LineOf({first.principalX, first.principalY});
  files.head = "PROJECT Exact cam.txt\n" + LineOf({first.focalLength, 0, 0, 0, 0});
  files.strips = std::to_string(block.stripCount) + "\n";
  files.photos.clear();
  files.interiors.clear();
  files.exteriors.clear();
  for (const auto& strip : block.photos) {
    files.strips += std::to_string(strip.size()) + " strip\n";
    for (const auto& photo : strip) {
      const std::string place =
          std::to_string(photo->stripIndex + 1) + " " + std::to_string(photo->photoIndex + 1) + " x\n";
      files.photos += photo->name + " x\n";
      files.interiors.insert(files.interiors.begin(), InteriorOf(*photo, place));
      files.exteriors.push_back(ExteriorOf(*photo, place));
    }
  }
  return files;
}

// The numbers of a file, behind so many lines of it, whatever stands between them.
std::vector<double> NumbersIn(const std::string& path, int nSkipped) {
  std::istringstream text(ReadFileBytes(path));
  std::string line;
  for (int i = 0; i < nSkipped; ++i) std::getline(text, line);
  std::vector<double> numbers;
  while (std::getline(text, line)) {
    std::replace(line.begin(), line.end(), ',', ' ');
    std::istringstream fields(line);
    for (double number = 0.0; fields >> number;) numbers.push_back(number);
  }
  return numbers;
}

// Numbers of a file, which have six decimals.
void ExpectPrinted(const std::vector<double>& numbers, const std::vector<double>& wanted) {
  ASSERT_EQ(numbers.size(), wanted.size());
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    EXPECT_NEAR(numbers[i], wanted[i], 0.51e-6 + 1e-9 * std::fabs(wanted[i])) << i;
  }
}

class ProjectRun : public testing::Test {
 protected:
  void Read(const ProjectFiles& files) {
    files.Write();
    ASSERT_EQ(project.Read("block.pj"), 1);
  }

  TempFolder folder;
  TestFrontEnd ui;
  PhotoProject project;
};

TEST_F(ProjectRun, EqualsThePlainAdjustmentInAllRoundsAndFiles) {
  PhotoProject made;
  MakeExactBlock({.controlEvery = 3, .principalX = 0.03, .principalY = 0.02}, made);
  Read(FilesOf(made));
  ASSERT_EQ(project.MeasurementCount(), made.MeasurementCount());
  ASSERT_EQ(project.passPoints.size(), made.passPoints.size());
  EXPECT_NEAR(project.photos[1][2]->kappa, made.photos[1][2]->kappa, 1e-15);
  PlainAdjustment plain(project);
  project.name = "run";
  const BundleOutcome outcome = RunBundleAdjustment(project);
  EXPECT_TRUE(outcome.isSolved);
  for (int round = 0; round < 3; ++round) {
    SCOPED_TRACE(testing::Message() << "round " << round);
    const std::string end = std::to_string(round) + ".txt";
    plain.Build();
    std::vector<double> wanted;
    for (std::size_t i = 0; i < plain.a.size(); ++i) {
      wanted.insert(wanted.end(), plain.a[i].begin(), plain.a[i].end());
      wanted.push_back(plain.l[i]);
    }
    ExpectPrinted(NumbersIn("runBundleMat" + end, 1), wanted);
    const std::vector<double> x = plain.Solve();
    ExpectPrinted(NumbersIn("runSolution" + end, 0), x);
    plain.Apply(x);
  }
  ExpectSameState(project, plain);
}

// The strip and photo whose columns a row of the design matrix fills, from 0.
int PhotoOfRow(const BundleSystem& system, int row) {
  const double* const first = system.a[row];
  const double* const found = std::find_if(first, first + system.cols, [](double a) { return a != 0.0; });
  return static_cast<int>(found - first) / 6;
}

// Pass points are counted as the file's blocks come, rows as strips and photos do.
TEST_F(ProjectRun, PassPointsFollowTheBlocksAndRowsThePhotos) {
  ProjectFiles files;
  std::reverse(files.interiors.begin(),
               files.interiors.end());  // n2 with B and A, s1 with A, n1 with A and C1
  Read(files);
  EXPECT_EQ(ReadFileBytes("_PassPt.txt"), "B, 12.5, 22.125\nA, 11, 21\n");
  BundleSystem system;
  BuildDesign(project, system);
  ASSERT_EQ(system.rows, 10);
  ASSERT_EQ(system.cols, 3 * 6 + 2 * 3);
  // n1's A and C1; n2's B, which has no second ray and no row, and A; s1's A
  for (const auto& [row, photo] : {std::pair(0, 0), std::pair(2, 0), std::pair(6, 1), std::pair(8, 2)}) {
    EXPECT_EQ(PhotoOfRow(system, row), photo) << row;
    EXPECT_EQ(PhotoOfRow(system, row + 1), photo) << row;
  }
  EXPECT_EQ(PhotoOfRow(system, 4), 4) << "beyond all columns";
  // A is the second pass point.
  for (const int row : {0, 6, 8}) {
    EXPECT_EQ(std::count(system.a[row] + 18, system.a[row] + 21, 0.0), 3) << row;
    EXPECT_LT(std::count(system.a[row] + 21, system.a[row] + 24, 0.0), 3) << row;
  }
  EXPECT_EQ(std::count(system.a[2] + 18, system.a[2] + 24, 0.0), 6);
}

// Two rays of one photo have no base: the point's place is no number, and so is all that is solved.
TEST_F(ProjectRun, PointOfTwoRaysInOnePhotoIsNoNumberInAllFiles) {
  PhotoProject made;
  MakeExactBlock({.nStrips = 1, .nPhotos = 2}, made);
  ImageMeasurement twice = made.photos[0][0]->measurements[0];
  twice.type = kPassPoint;
  twice.name = "twice";
  made.photos[0][0]->measurements.push_back(twice);
  made.photos[0][0]->measurements.push_back(twice);
  Read(FilesOf(made));
  const BundleOutcome outcome = RunBundleAdjustment(project);
  EXPECT_FALSE(outcome.isSolved);
  EXPECT_TRUE(project.unwrittenFiles.empty());
  EXPECT_EQ(project.writtenFiles.size(), 2u + 1u + 10u);
  for (const char* path :
       {"BundleMat0.txt", "Solution0.txt", "Result0.txt", "BundleMat1.txt", "Solution1.txt", "Result1.txt",
        "BundleMat2.txt", "Solution2.txt", "Result2.txt"}) {
    const std::string text = ReadFileBytes(path);
    EXPECT_THAT(text, HasSubstr("nan")) << path;
    EXPECT_THAT(text, testing::Not(HasSubstr("-nan"))) << path;
  }
  EXPECT_THAT(ReadFileBytes("Result0.txt"), HasSubstr("twice: nan, nan, nan\n"));
}

}  // namespace
}  // namespace corvane
