// How near matching comes to the truth: on the sample block, on an exact block of photos, on a rectified pair
// with measured disparities and on real aerial photos.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <memory>

#include "MatchTruth.h"
#include "OpenGL/Stereo_2Cursor/EpipolarPair.h"
#include "SampleBlock.h"
#include "StereoPair/LeastSquaresMatch.h"
#include "StereoPair/StereoPair.h"
#include "support/SharedData.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

constexpr double kPixelSize = 0.07;  // of epipolar photos, whatever their cells are

void Print(const std::string& what, const ErrorFigures& figures) {
  std::printf("%-52s n %6zu  mean %7.3f  std %6.3f  rms %6.3f  within 1: %5.1f %%  2: %5.1f %%\n",
              what.c_str(), figures.count, figures.mean, figures.stdev, figures.rms,
              100.0 * figures.withinOne, 100.0 * figures.withinTwo);
}

void Load(AerialPhoto& photo, const std::string& stem) {
  ASSERT_EQ(photo.LoadOrientation(stem + ".orn"), 1) << stem;
  photo.OpenImage(stem + ".lan");
  ASSERT_TRUE(photo.image.HasPixels()) << stem;
}

// The epipolar pair of two photos with their orientation beside them.
std::unique_ptr<EpipolarPair> MakeEpipolar(const std::string& leftStem, const std::string& rightStem,
                                           double overlap) {
  AerialPhoto left;
  AerialPhoto right;
  Load(left, leftStem);
  Load(right, rightStem);
  auto pair = std::make_unique<EpipolarPair>(left, right, overlap);
  EXPECT_EQ(pair->left.ResampleFrom(left, pair->leftExtent.data(), pair->cell), 1);
  EXPECT_EQ(pair->right.ResampleFrom(right, pair->rightExtent.data(), pair->cell), 1);
  pair->left.Recompute();
  pair->right.Recompute();
  return pair;
}

// What "Area (Correlation Coeff)" finds with its own settings on a grid of that step in pixels.
void Match(StereoPair& pair, double step, int offset) {
  pair.matchThreshold = 0.75;
  pair.maxDisparity = 55;
  pair.groundSpacingX = step * pair.leftPhoto->pixelSizeX;
  pair.groundSpacingY = step * pair.leftPhoto->pixelSizeY;
  pair.columnOffset = offset;
  ASSERT_EQ(pair.InitGeometry(), 1);
  pair.CorrelateGrid(false);
}

// The errors of the right columns; places that are not on the ground do not count.
std::vector<double> ColumnErrors(const StereoPair& pair, const TrueGround& ground) {
  std::vector<double> errors;
  for (const MatchPair& match : pair.matchPairs) {
    const auto truth = TrueRight(ground, *pair.leftPhoto, *pair.rightPhoto, match.left);
    if (truth) errors.push_back(match.right.x - truth->x);
  }
  return errors;
}

// What refinement starts from: places off by no more than this.
constexpr double kClose = 1.5;

std::vector<double> OnlyClose(const std::vector<double>& errors) {
  std::vector<double> close;
  for (const double error : errors) {
    if (std::fabs(error) <= kClose) close.push_back(error);
  }
  return close;
}

ErrorFigures CloseErrors(const StereoPair& pair, const TrueGround& ground) {
  return ErrorFigures::Of(OnlyClose(ColumnErrors(pair, ground)));
}

// The window of the left image around a place, of an odd size.
void CutTemplate(ErdasImg& image, const Point2& place, ErdasImg& patch) {
  constexpr int kHalf = 10;
  const auto col = static_cast<std::int32_t>(place.x);
  const auto row = static_cast<std::int32_t>(place.y);
  image.ExtractTo(col - kHalf, col + kHalf, row - kHalf, row + kHalf, true, patch);
  patch.m_pixelSumSq = -1.0;
}

// The errors of right columns after refinement, of those that it accepts and that it began near enough to.
std::vector<double> RefinedErrors(StereoPair& pair, const TrueGround& ground) {
  std::vector<double> errors;
  for (const MatchPair& match : pair.matchPairs) {
    const auto truth = TrueRight(ground, *pair.leftPhoto, *pair.rightPhoto, match.left);
    if (!truth || std::fabs(match.right.x - truth->x) > kClose) continue;
    ErdasImg patch;
    CutTemplate(*pair.leftImage, match.left, patch);
    Point2 place = match.right;
    LsmParameters parameters;
    const double score = LeastSquaresMatch(*pair.rightImage, patch, place, parameters, nullptr);
    if (pair.IsMatched(score)) errors.push_back(place.x - truth->x);
  }
  return errors;
}

// How far apart the rays of matched places pass, as rows of the images.
std::vector<double> RowParallaxes(const StereoPair& pair) {
  std::vector<double> parallaxes;
  for (const MatchPair& match : pair.matchPairs) parallaxes.push_back(match.right.y - match.left.y);
  return parallaxes;
}

// The mean column offset of the pair, from the truth.
int MeanOffset(const StereoPair& pair, const TrueGround& ground) {
  const auto [cols, rows] = pair.leftPhoto->image.GetSize();
  std::vector<double> offsets;
  for (int row = 0; row < rows; row += 20) {
    for (int col = 0; col < cols; col += 20) {
      const Point2 left{static_cast<double>(col), static_cast<double>(row)};
      const auto right = TrueRight(ground, *pair.leftPhoto, *pair.rightPhoto, left);
      if (right && right->x >= 0.0 && right->x < pair.rightPhoto->image.GetSize().cx) {
        offsets.push_back(right->x - left.x);
      }
    }
  }
  return static_cast<int>(ErrorFigures::Of(offsets).mean);
}

class MatchAccuracyTest : public testing::Test {
 protected:
  TempFolder folder_;
  TestFrontEnd frontEnd_;
};

// Every twelfth place of the left photo, at the whole column and row of the right one that lies nearest to
// what corresponds: what a search leaves to the refinement.
void StartFromTruth(StereoPair& pair, const TrueGround& ground) {
  constexpr double kMargin = 25.0;
  constexpr int kStep = 12;
  const auto isWithin = [](const AerialPhoto& photo, const Point2& place) {
    const auto [cols, rows] = photo.image.GetSize();
    return place.x >= kMargin && place.x < cols - kMargin && place.y >= kMargin && place.y < rows - kMargin;
  };
  const auto [cols, rows] = pair.leftPhoto->image.GetSize();
  for (int row = 0; row < rows; row += kStep) {
    for (int col = 0; col < cols; col += kStep) {
      const Point2 left{static_cast<double>(col), static_cast<double>(row)};
      const auto right = TrueRight(ground, *pair.leftPhoto, *pair.rightPhoto, left);
      if (!right || !isWithin(*pair.leftPhoto, left) || !isWithin(*pair.rightPhoto, *right)) continue;
      const Point2 nearest{std::floor(right->x + 0.5), std::floor(right->y + 0.5)};
      pair.matchPairs.push_back({.left = left, .right = nearest});
    }
  }
}

// Matches a pair of neighbours in a block as epipolar images, and refines that and the pair of photos itself.
void ExpectAccuracy(const std::string& folder, const TrueGround& ground, const std::string& leftStem,
                    const std::string& rightStem) {
  const std::string name = leftStem + " - " + rightStem;
  const auto epipolar = MakeEpipolar(folder + leftStem, folder + rightStem, 0.6);
  StereoPair pair(epipolar->left, epipolar->right);
  Match(pair, 6.0, -10);
  const ErrorFigures found = ErrorFigures::Of(ColumnErrors(pair, ground));
  Print(name + ", columns", found);
  EXPECT_GT(found.count, 2000U);
  EXPECT_GE(found.withinOne, 0.9);

  const ErrorFigures refined = ErrorFigures::Of(RefinedErrors(pair, ground));
  Print("  refined; of images of nearest pixels", refined);
  EXPECT_LT(refined.stdev, 0.6 * CloseErrors(pair, ground).stdev);

  AerialPhoto left;
  AerialPhoto right;
  Load(left, folder + leftStem);
  Load(right, folder + rightStem);
  StereoPair photos(left, right);
  ASSERT_EQ(photos.InitGeometry(), 1);
  StartFromTruth(photos, ground);
  const ErrorFigures exact = ErrorFigures::Of(RefinedErrors(photos, ground));
  Print("  refined; of the photos themselves", exact);
  EXPECT_GT(exact.count, 500U);
  EXPECT_LT(exact.stdev, 0.15);
}

TEST_F(MatchAccuracyTest, SampleBlock) {
  WriteSampleBlock();
  const TrueGround ground("ground.lan");
  ExpectAccuracy("", ground, "s1p1", "s1p2");
  ExpectAccuracy("", ground, "s2p2", "s2p3");
}

TEST_F(MatchAccuracyTest, ExactBlock) {
  const std::string dem = SharedData("block/hills_dem.lan");
  if (dem.empty()) GTEST_SKIP() << "no real data here";
  const std::string folder = dem.substr(0, dem.size() - std::string("hills_dem.lan").size());
  const TrueGround ground(dem);
  ExpectAccuracy(folder, ground, "hills_s1p1", "hills_s1p2");
  ExpectAccuracy(folder, ground, "hills_s2p2", "hills_s2p3");
}

TEST_F(MatchAccuracyTest, RectifiedPairWithMeasuredDisparities) {
  const std::string path = SharedData("stereo/teddy_disp_left.lan");
  if (path.empty()) GTEST_SKIP() << "no real data here";
  ErdasImg truth;
  ASSERT_EQ(truth.Read(path), 1);
  AerialPhoto left;
  AerialPhoto right;
  left.OpenImage(SharedData("stereo/teddy_left.lan"));
  right.OpenImage(SharedData("stereo/teddy_right.lan"));
  StereoPair pair(left, right);
  Match(pair, 3.0, -32);
  std::vector<double> errors;
  for (const MatchPair& match : pair.matchPairs) {
    double disparity = 0.0;
    truth.GetPixel(0, static_cast<std::int32_t>(match.left.y), static_cast<std::int32_t>(match.left.x),
                   disparity);
    if (disparity > 0.0) errors.push_back(match.right.x - (match.left.x - disparity));
  }
  const ErrorFigures figures = ErrorFigures::Of(errors);
  Print("teddy, columns", figures);
  EXPECT_GT(figures.count, 5000U);
  EXPECT_GE(figures.withinTwo, 0.8);
}

TEST_F(MatchAccuracyTest, RealAerialPair) {
  const std::string dem = SharedData("photos/ngi_06_dem.lan");
  if (dem.empty()) GTEST_SKIP() << "no real data here";
  const std::string folder = dem.substr(0, dem.size() - std::string("ngi_06_dem.lan").size());
  const TrueGround ground(dem);
  const auto epipolar = MakeEpipolar(folder + "ngi_06_0251", folder + "ngi_06_0253", 1.0);
  StereoPair pair(epipolar->left, epipolar->right);
  Match(pair, 4.0, MeanOffset(pair, ground));
  const ErrorFigures columns = ErrorFigures::Of(ColumnErrors(pair, ground));
  Print("ngi, columns against a DEM of 24 m cells", columns);
  Print("ngi, parallax of rows", ErrorFigures::Of(RowParallaxes(pair)));
  EXPECT_GT(columns.count, 500U);
  EXPECT_GE(columns.withinTwo, 0.5);
}

}  // namespace
}  // namespace corvane
