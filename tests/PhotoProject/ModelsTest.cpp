// Looking up and listing what a project holds.

#include <gmock/gmock.h>

#include "PhotoProject/PhotoProject.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

void AddStrip(PhotoProject& project, const std::vector<std::string>& names) {
  project.stripPhotoCounts.push_back(static_cast<int>(names.size()));
  auto& strip = project.photos.emplace_back();
  for (const std::string& name : names) {
    strip.push_back(std::make_unique<AerialPhoto>());
    strip.back()->name = name;
  }
}

GroundPoint PointOf(char type, const std::string& name) {
  GroundPoint point;
  point.type = type;
  point.name = name;
  return point;
}

TEST(PhotoProject, NamesOfModelsStandBehindThoseOfStrips) {
  PhotoProject project;
  project.modelNames = {"North"};
  AddStrip(project, {"C:\\block\\n1.lan", "n2.lan", "block/n3.lan"});
  project.BuildModelNames();
  EXPECT_THAT(project.modelNames, ElementsAre("North", "n1.lan   n2.lan", "n2.lan   n3.lan"));
}

TEST(PhotoProject, BothPhotosOfAModelLieInOneStrip) {
  PhotoProject project;
  AddStrip(project, {"a", "b", "c"});
  AddStrip(project, {"d"});
  AddStrip(project, {});
  AddStrip(project, {"e", "f"});
  project.BuildModelNames();
  EXPECT_THAT(project.modelNames, ElementsAre("a   b", "b   c", "e   f"));
}

TEST(PhotoProject, LocatesModelsStripByStrip) {
  PhotoProject project;
  AddStrip(project, {"a", "b", "c"});
  AddStrip(project, {"d"});
  AddStrip(project, {});
  AddStrip(project, {"e", "f"});
  const std::vector<std::pair<int, int>> places = {{0, 0}, {0, 1}, {3, 0}};
  for (int model = 0; model < 3; ++model) {
    int strip = -1;
    int photo = -1;
    EXPECT_TRUE(project.LocateModel(model, strip, photo));
    EXPECT_EQ(std::pair(strip, photo), places[static_cast<std::size_t>(model)]);
  }
  int strip = -1;
  int photo = -1;
  EXPECT_FALSE(project.LocateModel(3, strip, photo));
  EXPECT_FALSE(project.LocateModel(-1, strip, photo));
  EXPECT_EQ(strip, -1);
  EXPECT_EQ(photo, -1);
}

TEST(PhotoProject, GetsPhotosThatAreThere) {
  PhotoProject project;
  AddStrip(project, {"a", "b"});
  EXPECT_EQ(project.GetPhoto(0, 1)->name, "b");
  EXPECT_EQ(project.GetPhoto(0, 2), nullptr);
  EXPECT_EQ(project.GetPhoto(1, 0), nullptr);
  EXPECT_EQ(project.GetPhoto(-1, 0), nullptr);
  EXPECT_EQ(project.GetPhoto(0, -1), nullptr);
}

TEST(PhotoProject, CountsTheMeasurementsOfAllPhotos) {
  PhotoProject project;
  EXPECT_EQ(project.MeasurementCount(), 0);
  AddStrip(project, {"a", "b"});
  AddStrip(project, {"c"});
  project.photos[0][0]->measurements.resize(2);
  project.photos[1][0]->measurements.resize(3);
  EXPECT_EQ(project.MeasurementCount(), 5);
}

TEST(PhotoProject, FindsTheFirstPointOfATypeAndName) {
  PhotoProject project;
  EXPECT_EQ(project.AddGroundPoint(PointOf('c', "1")), 0);
  EXPECT_EQ(project.AddGroundPoint(PointOf('p', "1")), 1);
  EXPECT_EQ(project.AddGroundPoint(PointOf('p', "1")), 2);
  EXPECT_EQ(project.AddGroundPoint(PointOf('p', "A name of many letters")), 3);
  EXPECT_EQ(project.FindGroundPoint('c', "1"), 0);
  EXPECT_EQ(project.FindGroundPoint('p', "1"), 1);
  EXPECT_EQ(project.FindGroundPoint('x', "1"), -1);
  EXPECT_EQ(project.FindGroundPoint('c', "2"), -1);
  EXPECT_EQ(project.FindGroundPoint('p', "A name of many words"), 3);
  EXPECT_EQ(project.groundPoints[3].name, "A name of many");
}

TEST(PhotoProject, FindsMeasurementsByNameAlone) {
  const std::vector<ImageMeasurement> list = {
      {.type = 'p', .name = "2"}, {.type = 'c', .name = "1"}, {.type = 'p', .name = "1"}};
  EXPECT_EQ(PhotoProject::FindMeasurement(list, {.type = 'p', .name = "1"}), 1);
  EXPECT_EQ(PhotoProject::FindMeasurement(list, {.name = "3"}), -1);
  EXPECT_EQ(PhotoProject::FindMeasurement({}, {.name = "1"}), -1);
  EXPECT_EQ(PhotoProject::FindMeasurement({{.name = "ABCDEFGHIJKLMN"}}, {.name = "ABCDEFGHIJKLMNO"}), 0);
}

TEST(PhotoProject, FindsPassPoints) {
  PhotoProject project;
  EXPECT_EQ(project.AddPassPoint({.type = 'p', .name = "ABCDEFGHIJKLMNO", .col = 1.0}), 0);
  EXPECT_EQ(project.AddPassPoint({.type = 'p', .name = "2", .col = 2.0}), 1);
  EXPECT_EQ(project.AddPassPoint({.type = 'p', .name = "2", .col = 3.0}), 2);
  EXPECT_EQ(project.FindPassPoint("2"), 1);
  EXPECT_EQ(project.FindPassPoint("ABCDEFGHIJKLMN"), 0);
  EXPECT_EQ(project.FindPassPoint("3"), -1);
  EXPECT_EQ(project.passPoints[0].name, "ABCDEFGHIJKLMN");
}

TEST(PhotoProject, DumpsGroundPointsAndTheirRays) {
  PhotoProject project;
  GroundPoint control = PointOf('c', "C1");
  control.x = 1234567.25;
  control.y = 0.5;
  control.z = -3.0;
  control.stripIndices = {0, 1};
  control.photoIndices = {1, 2};
  control.measurementIndices = {7, 8};
  project.AddGroundPoint(control);
  project.AddGroundPoint(PointOf('p', "P1"));
  project.AddGroundPoint(PointOf('d', "D1"));
  std::string text = "Points\n";
  project.DumpGroundPoints(text);
  EXPECT_EQ(text,
            "Points\n"
            "C1, c\n1.23457e+06, 0.5, -3\n1, 2\n2, 3\n"
            "P1, p\n1.79769e+308, 1.79769e+308, 1.79769e+308\n"
            "D1, This point was deleted\n1.79769e+308, 1.79769e+308, 1.79769e+308\n");
}

}  // namespace
}  // namespace corvane
