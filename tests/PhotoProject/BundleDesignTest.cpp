// The equations of a block, and what is made of their solution.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "ExactBlock.h"
#include "PhotoProject/BundleAdjustment.h"
#include "PlainAdjustment.h"

namespace corvane {
namespace {

constexpr double kLargest = GroundPoint::kUnknown;

std::vector<double> RowOf(const BundleSystem& system, int row) {
  return {system.a[row], system.a[row] + system.cols};
}

bool IsZero(const std::vector<double>& numbers) {
  return std::all_of(numbers.begin(), numbers.end(), [](double number) { return number == 0.0; });
}

// Adds a level photo at (x, 0, 1000) with pixels of 0.1 and f 100: pixel (col, row) looks at
// (x + col, -row, 0).
AerialPhoto& AddLevelPhoto(PhotoProject& project, double x) {
  if (project.photos.empty()) project.photos.emplace_back();
  AerialPhoto& photo = *project.photos[0].emplace_back(std::make_unique<AerialPhoto>());
  photo.imageToPhoto[0][0] = 0.1;
  photo.imageToPhoto[1][1] = -0.1;
  photo.imageToPhoto[2][2] = -100.0;
  photo.SetExterior(100.0, 0.0, 0.0, x, 0.0, 1000.0, 0.0, 0.0, 0.0);
  photo.Recompute();
  photo.photoIndex = project.photoCount++;
  return photo;
}

// Adds a measurement of the ground point with all that Read would do.
void AddMeasurement(PhotoProject& project, int photoIndex, char type, const std::string& name, double col,
                    double row) {
  ImageMeasurement measurement = {type, name, col, row, project.FindGroundPoint(type, name)};
  if (measurement.groundIndex < 0) {
    GroundPoint added;
    added.type = type;
    added.name = name;
    measurement.groundIndex = project.AddGroundPoint(added);
    ++project.passCount;
  }
  JoinMeasurement(project, *project.GetPhoto(0, photoIndex), measurement);
}

// Two photos 500 apart that both see the pass point "a" at (200, -50, 0) and the control point "c" at
// (300, 20, 0).
void MakeSmallBlock(PhotoProject& project) {
  AddLevelPhoto(project, 0.0);
  AddLevelPhoto(project, 500.0);
  GroundPoint control;
  control.name = "c";
  control.x = 300.0;
  control.y = 20.0;
  control.z = 0.0;
  project.AddGroundPoint(control);
  project.controlCount = 1;
  AddMeasurement(project, 0, kPassPoint, "a", 200.0, 50.0);
  AddMeasurement(project, 0, kControlPoint, "c", 300.0, -20.0);
  AddMeasurement(project, 1, kPassPoint, "a", -300.0, 50.0);
  AddMeasurement(project, 1, kControlPoint, "c", -200.0, -20.0);
}

TEST(BundleDesign, HasTwoRowsAMeasurementAndItsColumns) {
  PhotoProject project;
  MakeSmallBlock(project);
  BundleSystem system;
  BuildDesign(project, system);
  ASSERT_EQ(system.rows, 8);
  ASSERT_EQ(system.cols, 2 * 6 + 3);
  EXPECT_EQ(project.measurementCursor, 4);

  // Row 0 is x of the pass point in photo 0, D = (200, -50, -1000): by its angles and X, Y, Z of the centre,
  // then by X, Y, Z of the point.
  const std::vector<double> x = {1.0, 104.0, -5.0, -0.1, 0.0, -0.02, 0, 0, 0, 0, 0, 0, 0.1, 0.0, 0.02};
  const std::vector<double> first = RowOf(system, 0);
  for (std::size_t j = 0; j < x.size(); ++j) EXPECT_NEAR(first[j], x[j], 1e-12) << j;
  // Row 6 is x of the control point in photo 1: nothing in the point's columns, and nothing in photo 0's.
  const std::vector<double> last = RowOf(system, 6);
  EXPECT_TRUE(IsZero({last.begin(), last.begin() + 6}));
  EXPECT_NEAR(last[9], -0.1, 1e-15);
  EXPECT_TRUE(IsZero({last.begin() + 12, last.end()}));
  for (int i = 0; i < 8; ++i) EXPECT_NEAR(system.l[i], 0.0, 1e-12) << i;
}

TEST(BundleDesign, IntersectsAPassPointWithoutAPosition) {
  PhotoProject project;
  MakeSmallBlock(project);
  BundleSystem system;
  BuildDesign(project, system);
  const GroundPoint& point = project.groundPoints[1];
  EXPECT_NEAR(point.x, 200.0, 1e-10);
  EXPECT_NEAR(point.y, -50.0, 1e-10);
  EXPECT_NEAR(point.z, 0.0, 1e-10);
}

TEST(BundleDesign, KeepsThePositionOfAPointThatHasOne) {
  PhotoProject project;
  MakeSmallBlock(project);
  GroundPoint& point = project.groundPoints[1];
  point.x = kLargest;  // not in all three coordinates
  point.y = -50.0;
  point.z = 0.0;
  BundleSystem system;
  BuildDesign(project, system);
  EXPECT_EQ(point.x, kLargest);
  EXPECT_EQ(point.y, -50.0);
}

// The middle of the shortest line between the rays, by hand: one runs straight down at (0, 0), the other at
// y = 10 from (500, 10, 1000) to (0, 10, 0).
TEST(BundleDesign, InitialPointLiesBetweenItsFirstTwoRays) {
  PhotoProject project;
  AddLevelPhoto(project, 0.0);
  AddLevelPhoto(project, 500.0).perspectiveY = 10.0;
  AddLevelPhoto(project, 900.0);
  AddMeasurement(project, 0, kPassPoint, "a", 0.0, 0.0);
  AddMeasurement(project, 1, kPassPoint, "a", -500.0, 0.0);
  AddMeasurement(project, 2, kPassPoint, "a", 1.0, 1.0);
  GroundPoint point = project.groundPoints[0];
  ASSERT_EQ(InitialPoint(project, point), 1);
  EXPECT_NEAR(point.x, 0.0, 1e-10);
  EXPECT_NEAR(point.y, 5.0, 1e-10);
  EXPECT_NEAR(point.z, 0.0, 1e-10);
}

TEST(BundleDesign, InitialPointNeedsTwoRays) {
  PhotoProject project;
  AddLevelPhoto(project, 0.0);
  AddMeasurement(project, 0, kPassPoint, "a", 0.0, 0.0);
  GroundPoint point = project.groundPoints[0];
  EXPECT_EQ(InitialPoint(project, point), -1);
  EXPECT_TRUE(point.IsUnknown());
}

TEST(BundleDesign, InitialPointRefusesRaysThatAreNotThere) {
  PhotoProject project;
  MakeSmallBlock(project);
  for (const auto& [photo, measurement] :
       {std::pair(2, 0), std::pair(-1, 0), std::pair(1, 2), std::pair(1, -1)}) {
    GroundPoint point = project.groundPoints[1];
    point.photoIndices[1] = photo;
    point.measurementIndices[1] = measurement;
    EXPECT_EQ(InitialPoint(project, point), -1);
    EXPECT_TRUE(point.IsUnknown());
  }
}

TEST(BundleDesign, AddObservationRefusesAMeasurementWithoutAGroundPoint) {
  PhotoProject project;
  MakeSmallBlock(project);
  const OwnedMatrix rows(AllocMatrix(2, 15));
  double l[2] = {7.0, 7.0};
  ImageMeasurement measurement = project.photos[0][0]->measurements[0];
  for (const int index : {-1, 2, 1000}) {
    measurement.groundIndex = index;
    EXPECT_EQ(AddObservation(project, *project.photos[0][0], 0, 12, measurement, rows.get(), l), -1);
  }
  measurement.groundIndex = 1;
  measurement.name = "b";  // is no pass point
  EXPECT_EQ(AddObservation(project, *project.photos[0][0], 0, 12, measurement, rows.get(), l), -1);
  EXPECT_TRUE(IsZero({rows[0], rows[0] + 30}));
  EXPECT_EQ(l[0], 7.0);
  EXPECT_EQ(l[1], 7.0);
}

TEST(BundleDesign, OfAPassPointWithOneRayIsZero) {
  PhotoProject project;
  MakeSmallBlock(project);
  AddMeasurement(project, 1, kPassPoint, "lone", 10.0, 10.0);
  BundleSystem system;
  BuildDesign(project, system);
  ASSERT_EQ(system.rows, 10);
  ASSERT_EQ(system.cols, 18);
  EXPECT_TRUE(IsZero(RowOf(system, 8)));
  EXPECT_TRUE(IsZero(RowOf(system, 9)));
  EXPECT_EQ(system.l[8], 0.0);
  for (int i = 0; i < system.rows; ++i) EXPECT_TRUE(IsZero({system.a[i] + 15, system.a[i] + 18})) << i;
  EXPECT_EQ(project.measurementCursor, 5);
}

// A control point that is missing from the ground point file is intersected, too, and then held fixed.
TEST(BundleDesign, OfAControlPointWithoutAPositionHasNoColumnsOfItsOwn) {
  PhotoProject project;
  MakeSmallBlock(project);
  AddMeasurement(project, 0, kControlPoint, "new", 250.0, 0.0);
  AddMeasurement(project, 1, kControlPoint, "new", -250.0, 0.0);
  BundleSystem system;
  BuildDesign(project, system);
  EXPECT_EQ(system.cols, 15);
  EXPECT_NEAR(project.groundPoints[2].x, 250.0, 1e-10);
  EXPECT_FALSE(IsZero(RowOf(system, 4)));
  EXPECT_TRUE(IsZero({system.a[4] + 12, system.a[4] + 15}));
}

// One name may be that of a control point and of a pass point.
TEST(BundleDesign, OfAControlPointNamedAsAPassPointHasNoColumnsOfItsOwn) {
  PhotoProject project;
  MakeSmallBlock(project);
  GroundPoint control;
  control.name = "a";
  control.x = 250.0;
  control.y = 0.0;
  control.z = 0.0;
  project.AddGroundPoint(control);
  AddMeasurement(project, 0, kControlPoint, "a", 250.0, 0.0);
  BundleSystem system;
  BuildDesign(project, system);
  ASSERT_EQ(project.FindPassPoint("a"), 0);
  ASSERT_EQ(system.cols, 15);
  for (const int row : {4, 5}) {
    EXPECT_FALSE(IsZero(RowOf(system, row)));
    EXPECT_TRUE(IsZero({system.a[row] + 12, system.a[row] + 15}));
  }
}

TEST(BundleDesign, IsFilledAgainWithoutBeingZeroed) {
  PhotoProject project;
  MakeSmallBlock(project);
  BundleSystem system;
  BuildDesign(project, system);
  const std::vector<double> before = RowOf(system, 0);
  const double* const block = system.a[0];
  system.l[0] = 3.0;
  system.a[2][12] = 5.0;  // no column of a control point's measurement
  project.photos[0][0]->measurements[0].groundIndex = -1;
  project.measurementCursor = 0;
  BuildDesign(project, system);
  EXPECT_EQ(system.a[0], block);
  EXPECT_EQ(RowOf(system, 0), before);
  EXPECT_EQ(system.l[0], 3.0);
  EXPECT_EQ(system.a[2][12], 5.0);
}

// The cursor counts on: nothing is written beyond the rows that there are.
TEST(BundleDesign, BeginsAtTheCursor) {
  PhotoProject project;
  MakeSmallBlock(project);
  project.measurementCursor = 3;
  BundleSystem system;
  BuildDesign(project, system);
  EXPECT_TRUE(IsZero(RowOf(system, 5)));
  EXPECT_NEAR(system.a[6][12], 0.1, 1e-15);  // the first measurement, of the pass point
  EXPECT_EQ(project.measurementCursor, 4);
}

// Measurements exact, orientations true: what is left is the principal point, as it is subtracted twice.
TEST(BundleDesign, SubtractsThePrincipalPointOnceMore) {
  PhotoProject project;
  MakeExactBlock({.principalX = 0.25, .principalY = -0.5, .angleNoise = 0.0, .placeNoise = 0.0}, project);
  BundleSystem system;
  BuildDesign(project, system);
  ASSERT_GT(system.rows, 0);
  for (int i = 0; i < system.rows; i += 2) {
    EXPECT_NEAR(system.l[i], -0.25, 1e-9);
    EXPECT_NEAR(system.l[i + 1], 0.5, 1e-9);
  }
}

TEST(BundleDesign, EqualsThePlainOne) {
  PhotoProject project;
  MakeExactBlock({.principalX = 0.02, .principalY = 0.01}, project);
  PlainAdjustment plain(project);
  BundleSystem system;
  BuildDesign(project, system);
  plain.Build();
  ExpectSameSystem(system, plain, 1e-12);
}

TEST(BundleDesign, WithoutAnythingIsEmpty) {
  PhotoProject project;
  BundleSystem system;
  BuildDesign(project, system);
  EXPECT_EQ(system.rows, 0);
  EXPECT_EQ(system.cols, 0);
}

// 60000 measurements of 60000 pass points: the matrices would take 430 GB.
TEST(BundleDesign, BeyondTheMemoryIsNull) {
  PhotoProject project;
  AddLevelPhoto(project, 0.0);
  constexpr std::size_t kMany = 60000;
  for (std::size_t i = 0; i < kMany; ++i) {
    project.passPoints.push_back({kPassPoint, "a", 0.0, 0.0, -1});
    project.photos[0][0]->measurements.push_back({kPassPoint, "a", 0.0, 0.0, -1});
  }
  BundleSystem system;
  BuildDesign(project, system);
  if (system.a) GTEST_SKIP() << "this machine holds them";
  EXPECT_FALSE(system.l);
  EXPECT_EQ(project.measurementCursor, 0);
}

TEST(BundleDesign, CorrectionsGoToPhotosAndPassPointsInTheOrderOfTheColumns) {
  PhotoProject project;
  MakeSmallBlock(project);
  BundleSystem system;
  BuildDesign(project, system);
  const GroundPoint before = project.groundPoints[1];
  const double x[15] = {0.01, 0.02, 0.03, 4, 5, 6, 0.07, 0.08, 0.09, 10, 11, 12, 13, 14, 15};
  ApplyCorrections(project, x);
  const AerialPhoto& first = *project.photos[0][0];
  const AerialPhoto& second = *project.photos[0][1];
  EXPECT_EQ(first.omega, 0.01);
  EXPECT_EQ(first.phi, 0.02);
  EXPECT_EQ(first.kappa, 0.03);
  EXPECT_EQ(first.perspectiveX, 4.0);
  EXPECT_EQ(first.perspectiveY, 5.0);
  EXPECT_EQ(first.perspectiveZ, 1006.0);
  EXPECT_EQ(second.omega, 0.07);
  EXPECT_EQ(second.perspectiveX, 510.0);
  EXPECT_EQ(project.groundPoints[0].x, 300.0);
  EXPECT_EQ(project.groundPoints[1].x, before.x + 13);
  EXPECT_EQ(project.groundPoints[1].y, before.y + 14);
  EXPECT_EQ(project.groundPoints[1].z, before.z + 15);
}

TEST(BundleDesign, CorrectionsLeaveTheMatricesOfThePhotos) {
  PhotoProject project;
  MakeSmallBlock(project);
  const AerialPhoto& photo = *project.photos[0][0];
  const std::vector<double> r(photo.rotation[0], photo.rotation[0] + 9);
  const std::vector<double> q(photo.imageToGround[0], photo.imageToGround[0] + 9);
  const std::vector<double> p(photo.groundToImage[0], photo.groundToImage[0] + 9);
  const double x[15] = {0.1, 0.2, 0.3};
  ApplyCorrections(project, x);
  EXPECT_EQ(std::vector<double>(photo.rotation[0], photo.rotation[0] + 9), r);
  EXPECT_EQ(std::vector<double>(photo.imageToGround[0], photo.imageToGround[0] + 9), q);
  EXPECT_EQ(std::vector<double>(photo.groundToImage[0], photo.groundToImage[0] + 9), p);
}

TEST(BundleDesign, CorrectionsOfAPointThatIsNotThereAreDropped) {
  PhotoProject project;
  MakeSmallBlock(project);
  project.passPoints[0].groundIndex = -1;
  const double x[15] = {};
  ApplyCorrections(project, x);
  EXPECT_TRUE(project.groundPoints[1].IsUnknown());
}

}  // namespace
}  // namespace corvane
