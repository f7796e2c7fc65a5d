#include "sample_survey/SurveyFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "Checksum.h"
#include "sample_survey/AerialPicture.h"
#include "sample_survey/Random.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

struct Row {
  double x, y, z;
  int pointClass;
};

std::vector<Row> ReadRows(const std::string& path, bool withClass) {
  std::istringstream text(ReadFileBytes(path));
  std::vector<Row> rows;
  Row row = {};
  while (text >> row.x >> row.y >> row.z && (!withClass || text >> row.pointClass)) rows.push_back(row);
  return rows;
}

std::vector<Row> WrittenPoints(const SampleSurvey& survey) {
  std::int64_t nPoints = 0;
  EXPECT_TRUE(WriteSurveyPoints(survey, "survey.txt", nPoints));
  std::vector<Row> rows = ReadRows("survey.txt", true);
  EXPECT_EQ(static_cast<std::int64_t>(rows.size()), nPoints);
  return rows;
}

class SampleSurveyTest : public testing::Test {
 protected:
  TempFolder folder_;
};

// The constants stand for the survey as it was published: a changed bit in any of these files makes results
// with it incomparable.
TEST_F(SampleSurveyTest, BytesAreTheSameOnEveryMachineAndInEveryBuild) {
  const SampleSurvey survey(SurveyOptions{20000, 1});
  std::int64_t nPoints = 0;
  std::int64_t nCheckPoints = 0;
  ASSERT_TRUE(WriteSurveyPoints(survey, "survey.txt", nPoints));
  ASSERT_TRUE(WriteCheckPoints(survey, "check_points.txt", nCheckPoints));
  ASSERT_TRUE(WriteAreas(survey, "areas.msk"));
  ASSERT_TRUE(WriteGround(survey, "ground.asc"));
  ASSERT_TRUE(WritePicture(survey, "picture.lan"));
  EXPECT_EQ(Checksum(ReadFileBytes("survey.txt")), 0x00DAADB6045144BFu);
  EXPECT_EQ(Checksum(ReadFileBytes("check_points.txt")), 0x4DBC98DB3CA3F5AAu);
  EXPECT_EQ(Checksum(ReadFileBytes("areas.msk")), 0xCC804E61894331C6u);
  EXPECT_EQ(Checksum(ReadFileBytes("ground.asc")), 0x0FE9B372F7F6C44Cu);
  EXPECT_EQ(Checksum(ReadFileBytes("picture.lan")), 0xB547907C0BDC4383u);
}

TEST_F(SampleSurveyTest, AnotherSeedMakesAnotherSurvey) {
  const auto first = WrittenPoints(SampleSurvey(SurveyOptions{5000, 1}));
  const auto second = WrittenPoints(SampleSurvey(SurveyOptions{5000, 2}));
  EXPECT_NE(first.front().z, second.front().z);
}

TEST_F(SampleSurveyTest, CountIsWithinTwoPercent) {
  for (const std::int64_t nWanted : {1000, 1003, 2500, 20000, 150000, 600000}) {
    std::int64_t nPoints = 0;
    ASSERT_TRUE(WriteSurveyPoints(SampleSurvey(SurveyOptions{nWanted, 1}), "survey.txt", nPoints));
    EXPECT_NEAR(static_cast<double>(nPoints), static_cast<double>(nWanted),
                0.02 * static_cast<double>(nWanted));
  }
}

TEST_F(SampleSurveyTest, ClassesHaveTheirShares) {
  const auto rows = WrittenPoints(SampleSurvey(SurveyOptions{}));
  std::map<int, double> shares;
  for (const Row& row : rows) shares[row.pointClass] += 100.0 / static_cast<double>(rows.size());
  const auto expectShare = [&shares](PointClass pointClass, double low, double high) {
    EXPECT_GE(shares[static_cast<int>(pointClass)], low);
    EXPECT_LE(shares[static_cast<int>(pointClass)], high);
  };
  EXPECT_EQ(shares.size(), 7u);
  expectShare(PointClass::Ground, 70.0, 90.0);
  expectShare(PointClass::Vegetation, 10.0, 25.0);
  expectShare(PointClass::Building, 1.0, 4.0);
  expectShare(PointClass::Wire, 0.1, 0.5);
  expectShare(PointClass::Pylon, 0.002, 0.1);
  expectShare(PointClass::LowNoise, 0.002, 0.03);
  expectShare(PointClass::HighNoise, 0.001, 0.03);
}

// A measured place is off by at most kNormalLimit deviations; on a slope that moves the height, too.
TEST_F(SampleSurveyTest, GroundPointsLieWithinTheNoiseOfTheTrueGround) {
  const SampleSurvey survey(SurveyOptions{});
  const Scene& scene = survey.GetScene();
  const double reach = Random::kNormalLimit * kPlaneNoise + 0.001;
  const double noise = Random::kNormalLimit * kHeightNoise + kStripOffset + 0.001;
  double sum = 0.0;
  double nGround = 0.0;
  for (const Row& row : WrittenPoints(survey)) {
    if (row.pointClass != static_cast<int>(PointClass::Ground)) continue;
    const double truth = scene.GroundHeight(row.x, row.y);
    double rise = 0.0;
    for (const double dx : {-reach, 0.0, reach}) {
      for (const double dy : {-reach, 0.0, reach}) {
        rise = std::max(rise, std::abs(scene.GroundHeight(row.x + dx, row.y + dy) - truth));
      }
    }
    EXPECT_LE(std::abs(row.z - truth), noise + 1.1 * rise + 0.005);
    sum += (row.z - truth) * (row.z - truth);
    ++nGround;
  }
  EXPECT_NEAR(std::sqrt(sum / nGround), kHeightNoise, 0.015);
}

TEST_F(SampleSurveyTest, OutliersLieFarFromEverything) {
  const SampleSurvey survey(SurveyOptions{});
  for (const Row& row : WrittenPoints(survey)) {
    const double overGround = row.z - survey.GetScene().GroundHeight(row.x, row.y);
    if (row.pointClass == static_cast<int>(PointClass::LowNoise)) {
      EXPECT_LT(overGround, -2.0);
    } else if (row.pointClass == static_cast<int>(PointClass::HighNoise)) {
      EXPECT_GT(overGround, 30.0);
    }
  }
}

TEST_F(SampleSurveyTest, PointsAreDenserWhereStripsOverlap) {
  // Three strips 388 / 3 m apart, 1.25 times as wide: they overlap around 129 and 259 m.
  const auto rows = WrittenPoints(SampleSurvey(SurveyOptions{}));
  double nInOverlap = 0.0;
  double nInMiddle = 0.0;
  for (const Row& row : rows) {
    const double east = row.x - kSurveyWest;
    if (row.pointClass != 2) continue;
    if (east >= 122.0 && east < 136.0) ++nInOverlap;
    if (east >= 92.0 && east < 106.0) ++nInMiddle;
  }
  EXPECT_GT(nInOverlap, 1.6 * nInMiddle);
}

TEST_F(SampleSurveyTest, CheckPointsAreExactAndOnBareGroundAwayFromTheEdge) {
  const SampleSurvey survey(SurveyOptions{});
  std::int64_t nPoints = 0;
  ASSERT_TRUE(WriteCheckPoints(survey, "check_points.txt", nPoints));
  const auto rows = ReadRows("check_points.txt", false);
  ASSERT_EQ(rows.size(), 375u);
  EXPECT_EQ(nPoints, 375);
  const Scene& scene = survey.GetScene();
  for (const Row& row : rows) {
    EXPECT_NEAR(row.z, scene.GroundHeight(row.x, row.y), 0.0005001);
    EXPECT_EQ(scene.SurfaceAt(row.x, row.y).pointClass, PointClass::Ground);
    EXPECT_GE(row.x, kSurveyWest + 20.0);
    EXPECT_LE(row.x, kSurveyWest + scene.GetSide() - 20.0);
    EXPECT_GE(row.y, kSurveySouth + 20.0);
    EXPECT_LE(row.y, kSurveySouth + scene.GetSide() - 20.0);
  }
}

struct Corner {
  double x, y;
};

// Positive where a, b, c turn to the left.
double Turn(const Corner& a, const Corner& b, const Corner& c) {
  return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
}

TEST_F(SampleSurveyTest, MaskHoldsARectangleAndConvexCounterClockwisePolygons) {
  const SampleSurvey survey(SurveyOptions{});
  ASSERT_TRUE(WriteAreas(survey, "areas.msk"));
  std::istringstream text(ReadFileBytes("areas.msk"));
  int nRegions = 0;
  text >> nRegions;
  ASSERT_EQ(nRegions, 5);
  for (int region = 0; region < nRegions; ++region) {
    int type = -1;
    int nVertices = 0;
    text >> type >> nVertices;
    ASSERT_EQ(type, region == 0 ? 0 : 1);
    std::vector<Corner> corners(static_cast<std::size_t>(nVertices));
    for (Corner& corner : corners) {
      text >> corner.x >> corner.y;
      EXPECT_TRUE(survey.GetScene().IsWithin(corner.x, corner.y));
    }
    ASSERT_TRUE(text);
    if (type == 0) {
      EXPECT_EQ(nVertices, 2);
      continue;
    }
    ASSERT_GE(nVertices, 4);
    EXPECT_EQ(corners.front().x, corners.back().x);
    EXPECT_EQ(corners.front().y, corners.back().y);
    corners.push_back(corners[1]);
    for (std::size_t i = 0; i + 2 < corners.size(); ++i) {
      EXPECT_GT(Turn(corners[i], corners[i + 1], corners[i + 2]), 0.0);
    }
  }
  std::string rest;
  EXPECT_FALSE(text >> rest);
}

TEST_F(SampleSurveyTest, SmallSurveyKeepsTheAreasThatFit) {
  ASSERT_TRUE(WriteAreas(SampleSurvey(SurveyOptions{1000, 1}), "areas.msk"));  // 32 m
  EXPECT_EQ(ReadFileBytes("areas.msk"), "1\n0 2\n451008.000 5423008.000\n451024.000 5423024.000\n");
}

TEST_F(SampleSurveyTest, GroundGridHoldsTheTrueHeightsOfCellCentres) {
  const SampleSurvey survey(SurveyOptions{2500, 1});  // 50 m
  ASSERT_TRUE(WriteGround(survey, "ground.asc"));
  std::istringstream text(ReadFileBytes("ground.asc"));
  const char* labels[] = {"ncols", "nrows", "xllcorner", "yllcorner", "cellsize", "NODATA_value"};
  const double values[] = {50, 50, kSurveyWest, kSurveySouth, 1, -4096};
  for (int i = 0; i < 6; ++i) {
    std::string label;
    double value = 0.0;
    text >> label >> value;
    EXPECT_EQ(label, labels[i]);
    EXPECT_EQ(value, values[i]);
  }
  for (int row = 49; row >= 0; --row) {
    for (int col = 0; col < 50; ++col) {
      double height = 0.0;
      ASSERT_TRUE(text >> height);
      EXPECT_NEAR(height, survey.GetScene().GroundHeight(kSurveyWest + col + 0.5, kSurveySouth + row + 0.5),
                  0.0005001);
    }
  }
}

TEST_F(SampleSurveyTest, LargeGroundGridStaysAtAFewMillionCells) {
  // 2237 m: cells of 2 m, the last metre left over.
  const SampleSurvey survey(SurveyOptions{5000000, 1});
  ASSERT_TRUE(WriteGround(survey, "ground.asc"));
  EXPECT_EQ(ReadFileBytes("ground.asc").substr(0, 22), "ncols 1118\nnrows 1118\n");
}

TEST_F(SampleSurveyTest, ReadmeListsEveryBuildingAndPylon) {
  const SampleSurvey survey(SurveyOptions{});
  ASSERT_TRUE(WriteReadme(survey, "survey_README.txt", 12345));
  const std::string text = ReadFileBytes("survey_README.txt");
  EXPECT_NE(text.find("12345 points"), std::string::npos);
  std::istringstream lines(text.substr(text.find("PYLONS")));
  std::size_t nPylons = 0;
  std::size_t nBuildings = 0;
  for (std::string line; std::getline(lines, line);) {
    nPylons += line.rfind("451", 0) == 0;
    nBuildings += line.rfind("flat ", 0) == 0 || line.rfind("gable ", 0) == 0 || line.rfind("hip ", 0) == 0;
  }
  EXPECT_EQ(nPylons, survey.GetScene().GetPylons().size());
  EXPECT_EQ(nBuildings, survey.GetScene().GetBuildings().size());
}

TEST_F(SampleSurveyTest, FileThatCannotBeWrittenIsReported) {
  const SampleSurvey survey(SurveyOptions{1000, 1});
  std::int64_t nPoints = 0;
  EXPECT_FALSE(WriteSurveyPoints(survey, "missing/survey.txt", nPoints));
  EXPECT_FALSE(WriteGround(survey, folder_.GetPath()));
}

TEST(TerrainTest, HasNoBreaks) {
  const Terrain terrain(1);
  // A step of 1 cm: nowhere steeper than the scarp (6 m in 5 m, 1.875 times as steep half way up) and hills.
  for (int i = 0; i < 200000; ++i) {
    const double x = kSurveyWest - 2000.0 + 0.037 * i;
    const double y = kSurveySouth - 3000.0 + 0.051 * i;
    EXPECT_LT(std::abs(terrain.GroundHeight(x + 0.01, y) - terrain.GroundHeight(x, y)), 0.04);
  }
}

TEST(TerrainTest, HeightsStayBetween220And350) {
  const Terrain terrain(1);
  for (int row = 0; row < 300; ++row) {
    for (int col = 0; col < 300; ++col) {
      const double height = terrain.GroundHeight(kSurveyWest + col * 17.0, kSurveySouth + row * 17.0);
      EXPECT_GT(height, 220.0);
      EXPECT_LT(height, 350.0);
    }
  }
}

TEST(TerrainTest, ValleyIsDeepAndScarpIsSteep) {
  const Terrain terrain(1);
  const auto height = [&terrain](double east, double north) {
    return terrain.GroundHeight(kSurveyWest + east, kSurveySouth + north);
  };
  // The means along 200 m of the valley's floor and of its rims.
  double floor = 0.0;
  double rims = 0.0;
  for (double north = 0.0; north < 200.0; ++north) {
    floor += height(105.0, north) / 200.0;
    rims += (height(0.0, north) + height(210.0, north)) / 400.0;
  }
  EXPECT_LT(floor, rims - 10.0);
  // 16 m across the scarp at (264, 198), which strays by at most 8 m.
  EXPECT_GT(height(264.0 + 0.8 * 11.0, 198.0 + 0.6 * 11.0) - height(264.0 - 0.8 * 11.0, 198.0 - 0.6 * 11.0),
            2.0);
}

TEST(BuildingTest, RoofHeights) {
  Building building;
  building.halfLength = 8.0;
  building.halfWidth = 4.0;
  building.eaveZ = 10.0;
  EXPECT_EQ(building.RoofHeight(7.9, 3.9), 10.0);
  EXPECT_FALSE(building.RoofHeight(8.1, 0.0));
  EXPECT_FALSE(building.RoofHeight(0.0, -4.1));

  building.roof = RoofKind::Gable;
  building.rise = 2.0;
  EXPECT_EQ(building.RoofHeight(8.0, 0.0), 12.0);  // the ridge ends in the gable
  EXPECT_EQ(building.RoofHeight(0.0, 2.0), 11.0);
  EXPECT_EQ(building.RoofHeight(0.0, -4.0), 10.0);

  building.roof = RoofKind::Hip;
  EXPECT_EQ(building.RoofHeight(0.0, 0.0), 12.0);
  EXPECT_EQ(building.RoofHeight(8.0, 0.0), 10.0);
  EXPECT_EQ(building.RoofHeight(6.0, 0.0), 11.0);

  building.rotation = {0, 1, 1};  // length to the north
  EXPECT_EQ(building.RoofHeight(0.0, 6.0), 11.0);
  EXPECT_FALSE(building.RoofHeight(6.0, 0.0));
}

TEST(SceneTest, SameThingsStandAtTheSamePlacesWhateverTheSize) {
  const Scene small(1, 388.0);
  const Scene large(1, 1000.0);
  for (double east = 1.0; east < 388.0; east += 3.0) {
    for (double north = 1.0; north < 380.0; north += 3.0) {
      const double x = kSurveyWest + east;
      const double y = kSurveySouth + north;
      EXPECT_EQ(small.SurfaceAt(x, y).z, large.SurfaceAt(x, y).z);
    }
  }
}

TEST(SceneTest, WiresHangBetweenPylons) {
  const Scene scene(1, 388.0);
  const auto pylons = scene.GetPylons();
  ASSERT_EQ(pylons.size(), 3u);
  const Pylon& a = pylons[0];
  const Pylon& b = pylons[1];
  EXPECT_NEAR(std::hypot(b.x - a.x, b.y - a.y), 150.0, 0.002);
  // Half way the middle wire hangs 5 m below the line between its ends, 26 m up.
  const auto height = scene.WireHeight((a.x + b.x) / 2, (a.y + b.y) / 2, 0.25);
  ASSERT_TRUE(height);
  EXPECT_NEAR(*height, (a.baseZ + b.baseZ) / 2 + 21.0, 0.001);
  EXPECT_FALSE(scene.WireHeight(a.x + 20.0, a.y, 0.25));
  const auto tower = scene.PylonHeights(a.x, a.y);
  ASSERT_TRUE(tower);
  EXPECT_NEAR(tower->topZ, a.baseZ + 28.0, 1e-9);
}

TEST(RandomTest, NormalNumbersHaveTheirMomentsAndLimit) {
  Random random(1, Random::kPulse, 0);
  double sum = 0.0;
  double squares = 0.0;
  constexpr int kCount = 100000;
  for (int i = 0; i < kCount; ++i) {
    const double value = random.Normal();
    EXPECT_LE(std::abs(value), Random::kNormalLimit);
    sum += value;
    squares += value * value;
  }
  EXPECT_NEAR(sum / kCount, 0.0, 0.02);
  EXPECT_NEAR(squares / kCount, 1.0, 0.02);
}

// The pixel at a place on the ground, in metres from the survey's corner.
int PixelAt(const AerialPicture& picture, double east, double north) {
  const auto col = static_cast<std::int32_t>(east / AerialPicture::kCellSize);
  const auto row = picture.GetSize() - 1 - static_cast<std::int32_t>(north / AerialPicture::kCellSize);
  return picture.GetPixel(row, col);
}

TEST_F(SampleSurveyTest, PictureShowsRoofsBrighterAndTreesDarkerThanWhatIsAround) {
  const SampleSurvey survey(SurveyOptions{150000, 1});
  const AerialPicture picture(survey);
  EXPECT_EQ(picture.GetSize(), 776);  // 388 m
  int nRoofs = 0;
  for (const Building& building : survey.GetScene().GetBuildings()) {
    if (building.roof != RoofKind::Flat) continue;  // pitched ones have a side away from the sun
    ++nRoofs;
    EXPECT_GT(PixelAt(picture, building.x - kSurveyWest, building.y - kSurveySouth), 180);
  }
  EXPECT_GT(nRoofs, 5);
  int nTrees = 0;
  int nDark = 0;
  for (const Tree& tree : survey.GetScene().GetTrees()) {
    if (!survey.GetScene().IsWithin(tree.x, tree.y)) continue;
    if (survey.GetScene().SurfaceAt(tree.x, tree.y).pointClass != PointClass::Vegetation) continue;
    ++nTrees;
    nDark += PixelAt(picture, tree.x - kSurveyWest, tree.y - kSurveySouth) < 100;
  }
  EXPECT_GT(nTrees, 500);
  EXPECT_GT(nDark, nTrees * 9 / 10);
  EXPECT_GT(PixelAt(picture, 192.0, 200.0), 170);  // the road between two parcels of the village
}

TEST_F(SampleSurveyTest, PictureOfALargeSurveyShowsItsCorner) {
  const AerialPicture large(SampleSurvey(SurveyOptions{1000000, 1}));
  EXPECT_EQ(large.GetSize(), 800);
  const AerialPicture usual(SampleSurvey(SurveyOptions{150000, 1}));
  // The same fields; shadows and slopes at the edge may differ.
  for (std::int32_t i = 50; i < 700; i += 13) {
    EXPECT_EQ(usual.GetPixel(775 - i, i), large.GetPixel(799 - i, i)) << i;
  }
}

TEST_F(SampleSurveyTest, PictureIsALanWithItsPlaceOnTheGround) {
  ASSERT_TRUE(WritePicture(SampleSurvey(SurveyOptions{20000, 1}), "picture.lan"));
  const std::string bytes = ReadFileBytes("picture.lan");
  const std::int32_t size = 284;  // 142 m
  ASSERT_EQ(bytes.size(), 128u + static_cast<std::size_t>(size * size));
  EXPECT_EQ(bytes.substr(0, 6), "HEAD74");
  float place[4];
  std::memcpy(place, bytes.data() + 112, sizeof place);
  EXPECT_THAT(place, testing::ElementsAre(451000.0f, 5423142.0f, 0.5f, -0.5f));
  EXPECT_FALSE(WritePicture(SampleSurvey(SurveyOptions{1000, 1}), "no/folder.lan"));
}

}  // namespace
}  // namespace corvane
