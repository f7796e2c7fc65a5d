// The command "Space Intersection", with photos on disk and with the real data.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <iostream>
#include <map>
#include <sstream>

#include "StereoPair/PairMaker.h"
#include "io/InputFile.h"
#include "support/SharedData.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class SpaceIntersection : public testing::Test {
 protected:
  void EnterPhotos(const std::string& left, const std::string& right) {
    ui.forms.push_back([=](Form& form) {
      form.Find("leftImage")->value = left;
      form.Find("rightImage")->value = right;
      form.Find("matchedPoints")->value = std::string("unused.pts");
      return true;
    });
  }

  void EnterMadePhotos() {
    StorePhoto(made.left, "l");
    StorePhoto(made.right, "r");
    EnterPhotos("l.lan", "r.lan");
  }

  // The command on the made photos with this pair file.
  int Run(const std::string& text, const std::string& path = "pairs.txt") {
    EnterMadePhotos();
    WriteFileBytes(path, text);
    ui.files.push_back({path});
    return pair.IntersectPairFile();
  }

  std::string LastStatus() const { return ui.EventsWith("status").back(); }

  void ExpectClosed() const {
    EXPECT_EQ(pair.leftPhoto, nullptr);
    EXPECT_EQ(pair.rightPhoto, nullptr);
    EXPECT_EQ(pair.leftImage, nullptr);
    EXPECT_EQ(ui.waitDepth, 0);
  }

  TempFolder folder;
  TestFrontEnd ui;
  VerticalPair made{4, 4};
  StereoPair pair;
};

constexpr const char* kTwoPairs =
    "7, 62.500000, 75.000000, 62.500000, 62.500000, 0.500000\n"    // (1020, 1990, 300)
    "9, 50.000000, 50.000000, 50.000000, 40.000000, -1.000000\n";  // (1000, 2000, 0)

TEST_F(SpaceIntersection, PairsBecomePointsBesideTheirFile) {
  EXPECT_EQ(Run(kTwoPairs), StereoPair::kDone);
  TINPoints points;
  ASSERT_EQ(points.Read("pairs.pts"), 1);
  ASSERT_EQ(points.nPoints, 2);
  EXPECT_NEAR(points.GetPoint(0)->x, 1020.0, 1e-6);
  EXPECT_NEAR(points.GetPoint(0)->y, 1990.0, 1e-6);
  EXPECT_NEAR(points.GetPoint(0)->z, 300.0, 1e-6);
  EXPECT_EQ(points.GetPoint(0)->value, 0.5);
  EXPECT_NEAR(points.GetPoint(1)->z, 0.0, 1e-6);
  EXPECT_EQ(points.GetPoint(1)->value, -1.0);
  EXPECT_EQ(points.spacingX, 1.0);
  EXPECT_EQ(LastStatus(), "status 0: 2 pairs intersected. Written: pairs.pts (2 points).");
  EXPECT_THAT(ui.EventsWith("message"), IsEmpty());
  EXPECT_TRUE(pair.ownsPhotos);
  EXPECT_FALSE(std::filesystem::exists("unused.pts"));
  EXPECT_FALSE(std::filesystem::exists("GroundPts.log"));
  ExpectClosed();
}

TEST_F(SpaceIntersection, PromptsInOrder) {
  Run(kTwoPairs);
  EXPECT_EQ(ui.events[0], "form: MatchInput");
  EXPECT_EQ(ui.events[1], "open: Match Point Pair Files (*.txt)|*.txt|All Files (*.*)|*.*|");
  EXPECT_EQ(ui.choosers.at(0).title, "Please choose an match point pair file");
}

TEST_F(SpaceIntersection, CancelOfTheForm) {
  EXPECT_EQ(pair.IntersectPairFile(), StereoPair::kCancelled);
  EXPECT_THAT(ui.events, ElementsAre("form: MatchInput"));
}

TEST_F(SpaceIntersection, CancelOfTheChooser) {
  EnterMadePhotos();
  EXPECT_EQ(pair.IntersectPairFile(), StereoPair::kCancelled);
  EXPECT_THAT(ui.EventsWith("message"), IsEmpty());
  EXPECT_EQ(pair.groundPoints, nullptr);
  ExpectClosed();
}

TEST_F(SpaceIntersection, WithoutPhotos) {
  EnterPhotos("none.lan", "none.lan");
  EXPECT_EQ(pair.IntersectPairFile(), StereoPair::kNotLoaded);
  EXPECT_THAT(ui.EventsWith("message"),
              ElementsAre("message message: Open Left Orientation Parameters File error!"));
  EXPECT_THAT(ui.choosers, IsEmpty());
  ExpectClosed();
}

TEST_F(SpaceIntersection, APairFileThatDoesNotOpen) {
  EnterMadePhotos();
  ui.files.push_back({"none.txt"});
  EXPECT_EQ(pair.IntersectPairFile(), StereoPair::kNoInput);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Open file none.txt error!"));
  ExpectClosed();
}

TEST_F(SpaceIntersection, ThePairFileIsNotOverwritten) {
  EXPECT_EQ(Run(kTwoPairs, "pairs.pts"), StereoPair::kNotWritten);
  EXPECT_EQ(ReadFileBytes("pairs.pts"), kTwoPairs);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Write file pairs.pts error!\n"
                                                    "It is one of the files that the command reads."));
  ExpectClosed();
}

TEST_F(SpaceIntersection, AnImageIsNotOverwritten) {
  StorePhoto(made.left, "l");
  std::filesystem::create_symlink("l.lan", "pairs.pts");
  const std::string image = ReadFileBytes("l.lan");
  EXPECT_EQ(Run(kTwoPairs), StereoPair::kNotWritten);
  EXPECT_EQ(ReadFileBytes("l.lan"), image);
}

TEST_F(SpaceIntersection, PointsThatCanNotBeWritten) {
  std::filesystem::create_directory("pairs.pts");
  EXPECT_EQ(Run(kTwoPairs), StereoPair::kNotWritten);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Write file pairs.pts error!"));
  EXPECT_EQ(LastStatus(), "status 0: 2 pairs intersected.");
  ExpectClosed();
}

TEST_F(SpaceIntersection, ASecondRunAppendsWithIdsThatRepeat) {
  Run(kTwoPairs);
  Run("3, 50, 50, 50, 40, 0.25\n", "more.txt");
  TINPoints points;
  ASSERT_EQ(points.Read("more.pts"), 1);
  EXPECT_EQ(points.nPoints, 3);
  EXPECT_EQ(LastStatus(),
            "status 0: 1 pair intersected. Written: more.pts (3 points, with those of earlier commands).");
  std::vector<std::int32_t> ids;
  for (std::int32_t i = 0; i < 3; ++i) ids.push_back(pair.groundPoints->GetPoint(i)->id);
  EXPECT_THAT(ids, testing::UnorderedElementsAre(0, 1, 0));
}

TEST_F(SpaceIntersection, NoPairNoPointsFile) {
  for (const char* const text : {"", "no pairs here\n1, 2, 3, 4, 5, 6\n"}) {
    EXPECT_EQ(Run(text), StereoPair::kNoInput);
    EXPECT_THAT(LastStatus(),
                HasSubstr("The file holds no pair. pairs.pts is not written: there are no points."));
    EXPECT_FALSE(std::filesystem::exists("pairs.pts"));
  }
  EXPECT_THAT(LastStatus(), HasSubstr("Reading ended at line 1, which begins with no number."));
}

TEST_F(SpaceIntersection, NoPairLeavesAnOlderPointsFile) {
  WriteFileBytes("pairs.pts", "of before");
  EXPECT_EQ(Run(""), StereoPair::kNoInput);
  EXPECT_EQ(LastStatus(),
            "status 0: The file holds no pair. pairs.pts is not written: there are no points. An older one "
            "stays.");
  EXPECT_EQ(ReadFileBytes("pairs.pts"), "of before");
}

TEST_F(SpaceIntersection, AFirstLineOfFewFieldsIsTold) {
  EXPECT_EQ(Run(std::string("1, 2, 3\n") + kTwoPairs), StereoPair::kNoInput);
  EXPECT_EQ(LastStatus(),
            "status 0: The file holds no pair. pairs.pts is not written: there are no points. Left out: 3 "
            "lines without a pair. The first line decides on separator and columns, and has 3 fields.");
  EXPECT_EQ(Run(std::string("2\n") + kTwoPairs), StereoPair::kNoInput);
  EXPECT_THAT(LastStatus(), HasSubstr(" and has 1 field."));
}

TEST_F(SpaceIntersection, ColumnsThatAreNotReadAreTold) {
  EXPECT_EQ(Run("0 50 50 50 40 1 7 8\n"), StereoPair::kDone);
  EXPECT_EQ(LastStatus(),
            "status 0: 1 pair intersected. Written: pairs.pts (1 point). Of 8 columns six are read.");
}

TEST_F(SpaceIntersection, PartsOfScansAreTold) {
  made.left.image.GetHeader()->xStart = 30;
  EXPECT_EQ(Run(kTwoPairs), StereoPair::kDone);
  EXPECT_EQ(LastStatus(),
            "status 0: 2 pairs intersected. Written: pairs.pts (2 points). The origins of the images are not "
            "added.");
  EXPECT_NEAR(pair.groundPoints->GetPoint(0)->x, 1020.0, 1e-6);
  made.left.image.GetHeader()->xStart = 0;
  made.right.image.GetHeader()->yStart = -1;
  EXPECT_EQ(Run(kTwoPairs), StereoPair::kDone);
  EXPECT_THAT(LastStatus(), HasSubstr("The origins of the images are not added."));
}

TEST_F(SpaceIntersection, WhatIsLeftOutIsTold) {
  EXPECT_EQ(Run(std::string(kTwoPairs) + "1, 2, 3\n\n" + kTwoPairs), StereoPair::kDone);
  EXPECT_EQ(LastStatus(),
            "status 0: 2 pairs intersected. Written: pairs.pts (2 points). Left out: 1 line without a pair. "
            "Reading ended at line 4, which is empty.");
}

TEST_F(SpaceIntersection, ParallelRaysAreTold) {
  EXPECT_EQ(Run("0, 50, 50, 50, 40, 1\n1, 50, 50, 50, 50, 1\n"), StereoPair::kDone);
  EXPECT_EQ(
      LastStatus(),
      "status 0: 2 pairs intersected. Without a place (parallel rays, or no numbers): 1 point. Written: "
      "pairs.pts (2 points).");
}

// A place that both photos show, with its ground point.
struct Tie {
  Point2 left;
  Point2 right;
  Point3 ground;
};

std::vector<Tie> ReadTies(const std::string& path) {
  std::vector<Tie> ties;
  std::istringstream text(ReadWholeFile(path).value_or(""));
  for (std::string line; std::getline(text, line);) {
    std::istringstream fields(line);
    int n = 0;
    Tie tie;
    if (fields >> n >> tie.left.x >> tie.left.y >> tie.right.x >> tie.right.y >> tie.ground.x >>
        tie.ground.y >> tie.ground.z) {
      ties.push_back(tie);
    }
  }
  return ties;
}

// Root mean squares over ground points: of the distance, in pixels and both photos taken together, from the
// places to where the points are projected, and the largest distances on the ground.
struct Quality {
  double parallax = 0.0;
  double maxPlan = 0.0;
  double maxHeight = 0.0;
};

class RealSpaceIntersection : public SpaceIntersection {
 protected:
  // Runs the command on a pair file of the ties.
  void RunOn(const std::string& leftPath, const std::string& rightPath, const std::vector<Tie>& ties) {
    std::string text;
    char line[200];
    for (std::size_t i = 0; i < ties.size(); ++i) {
      const Tie& tie = ties[i];
      std::snprintf(line, sizeof line, "%d, %f, %f, %f, %f, %f\n", static_cast<int>(i), tie.left.y,
                    tie.left.x, tie.right.y, tie.right.x, 1.0);
      text += line;
    }
    WriteFileBytes("ties.txt", text);
    EnterPhotos(leftPath, rightPath);
    ui.files.push_back({"ties.txt"});
    ASSERT_EQ(pair.IntersectPairFile(), StereoPair::kDone);
    ASSERT_EQ(pair.groundPoints->nPoints, static_cast<std::int32_t>(ties.size()));
  }

  Quality Judge(const std::string& leftOrientation, const std::string& rightOrientation,
                const std::vector<Tie>& ties) const {
    AerialPhoto left;
    AerialPhoto right;
    left.LoadOrientation(leftOrientation);
    right.LoadOrientation(rightOrientation);
    Quality quality;
    for (const PointRecord& point : pair.groundPoints->points) {
      if (&point - pair.groundPoints->points.data() >= pair.groundPoints->nPoints) break;
      const Tie& tie = ties[static_cast<std::size_t>(point.id)];
      quality.maxPlan = std::max(quality.maxPlan, std::hypot(point.x - tie.ground.x, point.y - tie.ground.y));
      quality.maxHeight = std::max(quality.maxHeight, std::fabs(point.z - tie.ground.z));
      for (const auto& [photo, place] : {std::pair(&left, tie.left), std::pair(&right, tie.right)}) {
        double col = 0.0;
        double row = 0.0;
        photo->GroundToImage(point.x, point.y, point.z, col, row);
        quality.parallax += (col - place.x) * (col - place.x) + (row - place.y) * (row - place.y);
      }
    }
    quality.parallax = std::sqrt(quality.parallax / static_cast<double>(ties.size()));
    return quality;
  }
};

class TiePoints : public RealSpaceIntersection, public testing::WithParamInterface<const char*> {};

TEST_P(TiePoints, AreIntersected) {
  const std::string name = GetParam();
  const bool isAerial = name == "ngi";
  const std::string stem = isAerial ? "photos/ngi_06_" : "photos/herz_jesus_p8_";
  const std::string leftStem = SharedData(stem + (isAerial ? "0251.lan" : "0003.lan"));
  const std::string rightStem = SharedData(stem + (isAerial ? "0253.lan" : "0004.lan"));
  const std::string tiePath = SharedData(stem + "tie_points.txt");
  if (leftStem.empty() || rightStem.empty() || tiePath.empty()) GTEST_SKIP() << "no shared data";
  const auto ties = ReadTies(tiePath);
  ASSERT_EQ(ties.size(), 30u);
  RunOn(leftStem, rightStem, ties);
  const auto orientation = [](const std::string& path) { return path.substr(0, path.size() - 4) + ".orn"; };
  const Quality quality = Judge(orientation(leftStem), orientation(rightStem), ties);
  std::cout << name << ": parallax " << quality.parallax << " px RMS, off the list by at most "
            << quality.maxPlan << " in plan, " << quality.maxHeight << " in height\n";
  EXPECT_LT(quality.parallax, 0.5);
  // The list gives thousandths of pixels, which are 5 mm on the ground of the aerial photos.
  EXPECT_LT(quality.maxPlan, isAerial ? 0.02 : 0.001);
  EXPECT_LT(quality.maxHeight, isAerial ? 0.05 : 0.005);
}

INSTANTIATE_TEST_SUITE_P(Photos, TiePoints, testing::Values("ngi", "herz_jesus"));

// Places of a photo by the number of their check point.
std::map<int, Point2> ReadPlaces(const std::string& path, const std::string& photo) {
  std::map<int, Point2> places;
  std::istringstream text(ReadWholeFile(path).value_or(""));
  for (std::string line; std::getline(text, line);) {
    std::istringstream fields(line);
    int number = 0;
    std::string name;
    Point2 place;
    if (fields >> number >> name >> place.x >> place.y && name == photo) places[number] = place;
  }
  return places;
}

TEST_F(RealSpaceIntersection, CheckPointsOfTheBlock) {
  const std::string groundPath = SharedData("block/hills_check_points.txt");
  const std::string imagePath = SharedData("block/hills_check_points_image.txt");
  if (groundPath.empty() || imagePath.empty()) GTEST_SKIP() << "no shared data";
  std::vector<Point3> ground;
  std::istringstream text(ReadWholeFile(groundPath).value_or(""));
  for (Point3 point; text >> point.x >> point.y >> point.z;) ground.push_back(point);
  const auto left = ReadPlaces(imagePath, "hills_s1p1");
  const auto right = ReadPlaces(imagePath, "hills_s1p2");
  std::vector<Tie> ties;
  for (const auto& [number, place] : left) {
    const auto found = right.find(number);
    if (found == right.end()) continue;
    ties.push_back({place, found->second, ground.at(static_cast<std::size_t>(number - 1))});
  }
  ASSERT_FALSE(ties.empty());
  const std::string leftPath = SharedData("block/hills_s1p1.lan");
  const std::string rightPath = SharedData("block/hills_s1p2.lan");
  RunOn(leftPath, rightPath, ties);
  const Quality quality = Judge(SharedData("block/hills_s1p1.orn"), SharedData("block/hills_s1p2.orn"), ties);
  std::cout << ties.size() << " check points: parallax " << quality.parallax
            << " px RMS, off the truth by at most " << quality.maxPlan << " in plan, " << quality.maxHeight
            << " in height\n";
  EXPECT_LT(quality.parallax, 0.001);
  EXPECT_LT(quality.maxPlan, 0.001);
  EXPECT_LT(quality.maxHeight, 0.002);
}

}  // namespace
}  // namespace corvane
