// How near epipolar images, orthophoto and adjustment of the sample block come to its truth.

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "OpenGL/Stereo_2Cursor/EpipolarPair.h"
#include "OpenGL/Stereo_2Cursor/OrthoMosaic.h"
#include "PhotoProject/BundleAdjustment.h"
#include "PhotoProject/PhotoProject.h"
#include "SampleBlock.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

constexpr std::size_t kGroundPoints = 200;

class BlockAccuracyTest : public testing::Test {
 protected:
  void SetUp() override { WriteSampleBlock(); }

  // The epipolar pair of two photos, resampled.
  std::unique_ptr<EpipolarPair> MakePair(const std::string& leftName, const std::string& rightName) {
    AerialPhoto left;
    AerialPhoto right;
    for (const auto& [photo, name] : {std::pair(&left, leftName), std::pair(&right, rightName)}) {
      EXPECT_EQ(photo->LoadOrientation(name + ".orn"), 1);
      photo->OpenImage(name + ".lan");
    }
    auto pair = std::make_unique<EpipolarPair>(left, right, 0.6);
    EXPECT_EQ(pair->left.ResampleFrom(left, pair->leftExtent.data(), pair->cell), 1);
    EXPECT_EQ(pair->right.ResampleFrom(right, pair->rightExtent.data(), pair->cell), 1);
    pair->left.Recompute();
    pair->right.Recompute();
    return pair;
  }

  TempFolder folder_;
  TestFrontEnd frontEnd_;
};

struct PlacePair {
  PhotoPlace left;
  PhotoPlace right;
};

PhotoPlace PlaceIn(const AerialPhoto& photo, const GroundPlace& at) {
  PhotoPlace place;
  photo.GroundToImage(at.x, at.y, at.z, place.col, place.row);
  return place;
}

bool IsInside(const ErdasImg& image, const PhotoPlace& place, double margin) {
  return place.col >= margin && place.col < image.GetSize().cx - margin && place.row >= margin &&
         place.row < image.GetSize().cy - margin;
}

// Whether windows of the two images around the place show the same: on a steep slope they do not.
bool IsGentle(double east, double north) {
  constexpr double kReach = 6.0;
  constexpr double kMostRise = 1.5;
  const double z = SampleBlock().GetGround().HeightAt(east, north);
  for (const double dEast : {-kReach, 0.0, kReach}) {
    for (const double dNorth : {-kReach, 0.0, kReach}) {
      const double at = SampleBlock().GetGround().HeightAt(east + dEast, north + dNorth);
      if (std::abs(at - z) > kMostRise) return false;
    }
  }
  return true;
}

// Ground points on a grid that both photos of the pair show, evenly taken from all of them.
std::vector<PlacePair> PlacesInBoth(const EpipolarPair& pair) {
  constexpr double kMargin = 22.0;
  constexpr double kStep = 9.0;
  std::vector<PlacePair> all;
  for (double east = 0.0; east < 390.0; east += kStep) {
    for (double north = -70.0; north < 460.0; north += kStep) {
      const GroundPlace at = {kSurveyWest + east, kSurveySouth + north,
                              SampleBlock().GetGround().HeightAt(east, north)};
      const PlacePair both = {PlaceIn(pair.left, at), PlaceIn(pair.right, at)};
      if (IsGentle(east, north) && IsInside(pair.left.image, both.left, kMargin) &&
          IsInside(pair.right.image, both.right, kMargin)) {
        all.push_back(both);
      }
    }
  }
  std::vector<PlacePair> taken;
  for (std::size_t i = 0; i < kGroundPoints; ++i) taken.push_back(all.at(i * all.size() / kGroundPoints));
  return taken;
}

// How alike two windows around pixels are: the correlation coefficient.
double Correlation(const ErdasImg& a, int colA, int rowA, const ErdasImg& b, int colB, int rowB) {
  constexpr int kHalf = 16;
  double n = 0.0;
  double sums[5] = {};
  for (int dRow = -kHalf; dRow <= kHalf; ++dRow) {
    for (int dCol = -kHalf; dCol <= kHalf; ++dCol) {
      double u = 0.0;
      double v = 0.0;
      a.GetPixel(0, rowA + dRow, colA + dCol, u);
      b.GetPixel(0, rowB + dRow, colB + dCol, v);
      const double terms[5] = {u, v, u * u, v * v, u * v};
      for (int i = 0; i < 5; ++i) sums[i] += terms[i];
      ++n;
    }
  }
  return (n * sums[4] - sums[0] * sums[1]) /
         std::sqrt((n * sums[2] - sums[0] * sums[0]) * (n * sums[3] - sums[1] * sums[1]));
}

// By how many rows the window of the right image that is most like the left one's stands below it: the peak
// of the scores in the best column, between rows.
double RowDifference(const EpipolarPair& pair, const PlacePair& places) {
  const auto nearest = [](double value) { return static_cast<int>(std::floor(value + 0.5)); };
  const int colLeft = nearest(places.left.col);
  const int rowLeft = nearest(places.left.row);
  const auto score = [&](int col, int dRow) {
    return Correlation(pair.left.image, colLeft, rowLeft, pair.right.image, col, rowLeft + dRow);
  };
  int bestCol = 0;
  int bestRow = 0;
  double most = -1.0;
  for (int dRow = -2; dRow <= 2; ++dRow) {
    for (int col = nearest(places.right.col) - 2; col <= nearest(places.right.col) + 2; ++col) {
      if (score(col, dRow) <= most) continue;
      most = score(col, dRow);
      bestCol = col;
      bestRow = dRow;
    }
  }
  const double above = score(bestCol, bestRow - 1);
  const double below = score(bestCol, bestRow + 1);
  return bestRow + 0.5 * (above - below) / (above - 2.0 * most + below);
}

}  // namespace

TEST_F(BlockAccuracyTest, ConjugatePointsShareARowOfTheEpipolarPhotos) {
  for (const auto& [leftName, rightName] : {std::pair("s1p1", "s1p2"), std::pair("s2p2", "s2p3")}) {
    const auto pair = MakePair(leftName, rightName);
    const std::vector<PlacePair> places = PlacesInBoth(*pair);
    ASSERT_EQ(places.size(), kGroundPoints);
    for (const PlacePair& both : places) EXPECT_NEAR(both.left.row, both.right.row, 1e-6);
  }
}

TEST_F(BlockAccuracyTest, ConjugatePointsShareARowOfTheEpipolarImages) {
  const auto pair = MakePair("s1p1", "s1p2");
  double sum = 0.0;
  for (const PlacePair& both : PlacesInBoth(*pair)) {
    const double difference = RowDifference(*pair, both);
    EXPECT_LT(std::abs(difference), 1.0) << both.left.col << " " << both.left.row;
    sum += difference;
  }
  EXPECT_NEAR(sum / static_cast<double>(kGroundPoints), 0.0, 0.05);
}

TEST_F(BlockAccuracyTest, SignalsShareARowOfTheEpipolarImages) {
  int nShared = 0;
  for (const auto& [leftName, rightName] : {std::pair("s1p1", "s1p2"), std::pair("s2p2", "s2p3")}) {
    const auto pair = MakePair(leftName, rightName);
    for (const SignalPoint& point : SampleBlock().GetSignals()) {
      const PlacePair both = {PlaceIn(pair->left, point.GetPlace()), PlaceIn(pair->right, point.GetPlace())};
      if (!IsInside(pair->left.image, both.left, 6.0) || !IsInside(pair->right.image, both.right, 6.0))
        continue;
      const double left = DiscMiddle(pair->left.image, both.left).row;
      EXPECT_LT(std::abs(left - DiscMiddle(pair->right.image, both.right).row), 1.0) << point.name;
      ++nShared;
    }
  }
  EXPECT_GE(nShared, 30);
}

TEST_F(BlockAccuracyTest, SignalsOfAnOrthophotoStandWithinACellOfTheirPlaces) {
  ErdasImg ground;
  ASSERT_EQ(ground.Read("ground.lan"), 1);
  const ErdasHeader& header = *ground.GetHeader();
  const GroundExtent all = {header.xMap, header.yMap - 1.0 * header.rows, header.xMap + 1.0 * header.cols,
                            header.yMap};
  constexpr float kCell = 0.5f;
  int nMarks = 0;
  for (const std::string name : {"s1p1", "s1p3", "s2p2"}) {
    OrthoMosaic mosaic(ground, all, 1);
    ASSERT_EQ(mosaic.Add(name + ".lan"), OrthoMosaic::Taken::Yes);
    ErdasImg output;
    ASSERT_EQ(mosaic.MakeOutput(kCell, output), 1);
    AerialPhoto& photo = mosaic.GetPhotos()[0]->photo;
    photo.OpenImage(photo.name);
    ASSERT_EQ(photo.OrthoFill(&mosaic.GetPhotos()[0]->footprint, false, &ground, &output), 1);
    for (const SignalPlace& line : ReadSignalPlaces()) {
      if (line.photo != name) continue;
      // A cell takes what its upper left corner shows.
      const GroundPlace at = SignalOf(line.point).GetPlace();
      const PhotoPlace place = {(at.x - output.GetHeader()->xMap) / kCell,
                                (output.GetHeader()->yMap - at.y) / kCell};
      if (!IsInside(output, place, 4.0)) continue;
      const PhotoPlace found = DiscMiddle(output, place);
      EXPECT_NEAR(found.col, place.col, 1.0) << line.point << " " << name;
      EXPECT_NEAR(found.row, place.row, 1.0) << line.point << " " << name;
      ++nMarks;
    }
  }
  EXPECT_GE(nMarks, 50);
}

TEST_F(BlockAccuracyTest, AdjustmentBringsTheCheckPointsBackToAMillimetre) {
  PhotoProject project;
  ASSERT_EQ(project.Read("start.pj"), 1);
  RunBundleAdjustment(project);
  int nChecked = 0;
  for (const SignalPoint& point : SampleBlock().GetSignals()) {
    if (point.role == SignalPoint::Role::Control) continue;
    const int place = project.FindGroundPoint(kPassPoint, point.name);
    ASSERT_GE(place, 0) << point.name;
    const GroundPoint& found = project.groundPoints[static_cast<std::size_t>(place)];
    EXPECT_NEAR(found.x, point.GetPlace().x, 0.001) << point.name;
    EXPECT_NEAR(found.y, point.GetPlace().y, 0.001) << point.name;
    EXPECT_NEAR(found.z, point.GetPlace().z, 0.001) << point.name;
    ++nChecked;
  }
  EXPECT_EQ(nChecked, 38);
}

TEST_F(BlockAccuracyTest, ImportWritesTheExactOrientationsAgain) {
  AerialPhoto before;
  ASSERT_EQ(before.LoadOrientation("s2p1.orn"), 1);
  PhotoProject project;
  ASSERT_EQ(project.Read("block.pj"), 1);
  AerialPhoto after;
  ASSERT_EQ(after.LoadOrientation("s2p1.orn"), 1);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      EXPECT_EQ(after.groundToImage[i][j], before.groundToImage[i][j]);
    }
  }
  EXPECT_EQ(after.perspectiveX, before.perspectiveX);
  EXPECT_EQ(after.perspectiveY, before.perspectiveY);
  EXPECT_EQ(after.perspectiveZ, before.perspectiveZ);
}

}  // namespace corvane
