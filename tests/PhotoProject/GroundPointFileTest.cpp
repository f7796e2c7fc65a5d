#include <gmock/gmock.h>

#include "PhotoProject/PhotoProject.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class GroundPointFile : public testing::Test {
 protected:
  int Read(const std::string& text) {
    WriteFileBytes("points.txt", text);
    return project.ReadGroundPoints("points.txt");
  }

  TempFolder folder;
  TestFrontEnd ui;
  PhotoProject project;
};

TEST_F(GroundPointFile, HoldsControlPointsThenPassPoints) {
  EXPECT_EQ(
      Read("Points\n2\nC1 3\n1 2 3\n0.1 0.2 0.3\nC2 2 4 5 6 0.4 0.5 0.6\r\n1\nP1 0\n-7 8e1 .9\n1 1 1\n"), 1);
  EXPECT_EQ(project.controlCount, 2);
  EXPECT_EQ(project.passCount, 1);
  ASSERT_EQ(project.groundPoints.size(), 3u);
  const GroundPoint& first = project.groundPoints[0];
  EXPECT_EQ(first.type, 'c');
  EXPECT_EQ(first.name, "C1");
  EXPECT_THAT((std::vector{first.x, first.y, first.z}), ElementsAre(1, 2, 3));
  EXPECT_EQ(first.dimension, 3);
  EXPECT_THAT((std::vector{first.sigmaX, first.sigmaY, first.sigmaZ}), ElementsAre(0.1, 0.2, 0.3));
  EXPECT_FALSE(first.IsUnknown());
  EXPECT_EQ(project.groundPoints[1].name, "C2");
  EXPECT_EQ(project.groundPoints[1].dimension, 2);
  EXPECT_EQ(project.groundPoints[1].sigmaZ, 0.6);
  const GroundPoint& last = project.groundPoints[2];
  EXPECT_EQ(last.type, 'p');
  EXPECT_THAT((std::vector{last.x, last.y, last.z}), ElementsAre(-7, 80, 0.9));
  EXPECT_THAT(ui.events, IsEmpty());
}

TEST_F(GroundPointFile, ThatDoesNotOpenShowsNoBox) {
  EXPECT_EQ(project.ReadGroundPoints("none.txt"), -11);
  EXPECT_THAT(ui.events, ElementsAre("status 0: The ground point file none.txt does not open."));
}

TEST_F(GroundPointFile, ThatMissesItsPassPoints) {
  EXPECT_EQ(Read("Points\n1\nC1 3\n1 2 3\n1 1 1\n"), -12);
  EXPECT_EQ(project.groundPoints.size(), 1u);
  EXPECT_EQ(project.controlCount, 1);
  EXPECT_THAT(ui.events, ElementsAre("status 0: The file points.txt ends too early, on line 6."));
}

TEST_F(GroundPointFile, WithNoPassPointsHasACountOfZero) {
  EXPECT_EQ(Read("Points\n1\nC1 3\n1 2 3\n1 1 1\n0\n"), 1);
  EXPECT_EQ(project.passCount, 0);
}

TEST_F(GroundPointFile, EachFieldThatIsMissingFails) {
  const std::vector<std::string> fields = {"W", "1", "C", "3", "1", "2", "3", "1", "1", "1",
                                           "1", "P", "3", "1", "2", "3", "1", "1", "1"};
  for (std::size_t n = 0; n <= fields.size(); ++n) {
    std::string text;
    for (std::size_t i = 0; i < n; ++i) text += fields[i] + " ";
    WriteFileBytes("points.txt", text);
    PhotoProject cut;
    EXPECT_EQ(cut.ReadGroundPoints("points.txt"), n == fields.size() ? 1 : -12) << n;
    EXPECT_EQ(cut.groundPoints.size(), n < 10 ? 0u : n < fields.size() ? 1u : 2u) << n;
  }
}

TEST_F(GroundPointFile, ThatFailsKeepsThePointsBefore) {
  EXPECT_EQ(Read("Points\n2\nC1 3\n1 2 3\n1 1 1\nC2 3\n1 x 3\n1 1 1\n0\n"), -12);
  ASSERT_EQ(project.groundPoints.size(), 1u);
  EXPECT_EQ(project.FindGroundPoint('c', "C1"), 0);
  EXPECT_THAT(ui.events, ElementsAre("status 0: Line 7 of points.txt can't be read."));
}

TEST_F(GroundPointFile, CountsAreNotTrusted) {
  EXPECT_EQ(Read("Points 2000000000 C1 3 1 2 3 1 1 1"), -12);
  EXPECT_EQ(project.groundPoints.size(), 1u);
  EXPECT_EQ(Read("Points -1 0"), -12);
  EXPECT_EQ(Read("Points x 0"), -12);
  EXPECT_EQ(project.groundPoints.size(), 1u);
}

TEST_F(GroundPointFile, LongNamesAreCutTo14Bytes) {
  EXPECT_EQ(Read("Points 1 ABCDEFGHIJKLMNOP 3 1 2 3 1 1 1 0"), 1);
  EXPECT_EQ(project.groundPoints[0].name, "ABCDEFGHIJKLMN");
  EXPECT_EQ(project.groundPoints[0].x, 1.0);
  EXPECT_EQ(project.FindGroundPoint('c', "ABCDEFGHIJKLMNxyz"), 0);
  EXPECT_EQ(project.FindGroundPoint('c', "ABCDEFGHIJKLM"), -1);
}

TEST_F(GroundPointFile, SecondOneAddsItsPoints) {
  EXPECT_EQ(Read("Points 1 C1 3 1 2 3 1 1 1 0"), 1);
  EXPECT_EQ(Read("Points 1 C1 3 4 5 6 1 1 1 1 P1 3 7 8 9 1 1 1"), 1);
  EXPECT_EQ(project.groundPoints.size(), 3u);
  EXPECT_EQ(project.controlCount, 2);
  EXPECT_EQ(project.passCount, 1);
  EXPECT_EQ(project.FindGroundPoint('c', "C1"), 0);
}

}  // namespace
}  // namespace corvane
