// Fields, form, loading and geometry of a pair.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>

#include "StereoPair/PairMaker.h"
#include "io/InputFile.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

void ExpectCommonDefaults(const StereoPair& pair) {
  EXPECT_EQ(pair.disparityMap, nullptr);
  EXPECT_EQ(pair.rowDisparityMap, nullptr);
  EXPECT_EQ(pair.measureMap, nullptr);
  EXPECT_FALSE(pair.ownsPhotos);
  EXPECT_FALSE(pair.ownsDem);
  EXPECT_EQ(pair.targetWidth, 19);
  EXPECT_EQ(pair.targetHeight, 19);
  EXPECT_EQ(pair.groundSpacingX, 1.0);
  EXPECT_EQ(pair.groundSpacingY, 1.0);
  EXPECT_EQ(pair.demAccuracy, 2.0);
  EXPECT_EQ(pair.matchThreshold, 0.75);
  EXPECT_EQ(pair.invariantFactor, 1.6666666666666667);
  EXPECT_FALSE(pair.useDiffCheck);
  EXPECT_EQ(pair.maxDiffStdev, 25.5);
  EXPECT_EQ(pair.maxDisparity, 10);
  EXPECT_EQ(pair.regionGridStep, 10);
  EXPECT_EQ(pair.regionStepFactor, 1.5);
  EXPECT_EQ(pair.method, "CC");
  for (const std::string& path : {pair.leftImagePath, pair.rightImagePath, pair.leftOrientationPath,
                                  pair.rightOrientationPath, pair.demPath, pair.matchPointsPath}) {
    EXPECT_EQ(path, "");
  }
  EXPECT_TRUE(pair.matchPairs.empty());
  EXPECT_EQ(pair.groundPoints, nullptr);
  EXPECT_EQ(pair.dem, nullptr);
  EXPECT_EQ(pair.lsmStepLimit, 0.06);
  EXPECT_EQ(pair.leftImage, nullptr);
  EXPECT_EQ(pair.rightImage, nullptr);
  EXPECT_EQ(pair.leftFeatureFile, nullptr);
  EXPECT_EQ(pair.rightFeatureFile, nullptr);
  EXPECT_EQ(pair.disparityScale, 1);
  EXPECT_FALSE(pair.multiScaleActive);
  EXPECT_EQ(pair.polygonTolerance, 0.07);
  EXPECT_FALSE(pair.offsetTransform.has_value());
  EXPECT_EQ(pair.progressWindow, nullptr);
}

TEST(StereoPairFields, DefaultsOfANewPair) {
  const StereoPair pair;
  ExpectCommonDefaults(pair);
  EXPECT_EQ(pair.leftPhoto, nullptr);
  EXPECT_EQ(pair.rightPhoto, nullptr);
  EXPECT_EQ(pair.testPoint, (Point3{666964.0, 201572.0, 241.0}));
}

TEST(StereoPairFields, DefaultsOfAPairOfPhotos) {
  AerialPhoto left;
  AerialPhoto right;
  {
    const StereoPair pair(left, right);
    ExpectCommonDefaults(pair);
    EXPECT_EQ(pair.leftPhoto.get(), &left);
    EXPECT_EQ(pair.rightPhoto.get(), &right);
    EXPECT_EQ(pair.testPoint, (Point3{666960.0, 201600.0, 243.0}));
  }
  EXPECT_EQ(left.frameWidth, 220.0) << "the photos outlive the pair";
}

TEST(StereoPairFields, DefaultsOfAMatch) {
  const MatchPair match;
  EXPECT_EQ(match.id, -1);
  EXPECT_EQ(match.score, -1.0);
}

void ExpectPaths(const Form& form, const std::string& left, const std::string& right, const std::string& dem,
                 const std::string& points) {
  EXPECT_EQ(form.GetText("leftImage"), left);
  EXPECT_EQ(form.GetText("rightImage"), right);
  EXPECT_EQ(form.GetText("demFile"), dem);
  EXPECT_EQ(form.GetText("matchedPoints"), points);
}

void ExpectNumbers(const Form& form, double accuracy, const ImageSize& window, double spacing,
                   double threshold, std::int64_t range) {
  EXPECT_EQ(form.GetReal("demAccuracy"), accuracy);
  EXPECT_EQ(form.GetInteger("windowWidth"), window.cx);
  EXPECT_EQ(form.GetInteger("windowHeight"), window.cy);
  EXPECT_EQ(form.GetReal("groundSpacing"), spacing);
  EXPECT_EQ(form.GetReal("matchThreshold"), threshold);
  EXPECT_EQ(form.GetInteger("maxDisparity"), range);
}

class StereoPairForm : public testing::Test {
 protected:
  // Values of the form that is shown next; on OK they are taken over.
  void Enter(const std::string& left, const std::string& dem, const std::string& points) {
    ui.forms.push_back([=](Form& form) {
      form.Find("leftImage")->value = left;
      form.Find("rightImage")->value = std::string("r.lan");
      form.Find("demFile")->value = dem;
      form.Find("matchedPoints")->value = points;
      form.Find("demAccuracy")->value = 7.5;
      form.Find("windowWidth")->value = std::int64_t{11};
      form.Find("windowHeight")->value = std::int64_t{13};
      form.Find("groundSpacing")->value = 0.5;
      form.Find("matchThreshold")->value = 0.625;
      form.Find("maxDisparity")->value = std::int64_t{31};
      return true;
    });
  }

  TempFolder folder;
  TestFrontEnd ui;
  StereoPair pair;
};

TEST_F(StereoPairForm, TheFirstFormShowsATestPairAndTheFields) {
  pair.matchThreshold = 0.5;
  pair.maxDisparity = 55;
  EXPECT_EQ(pair.RunMatchDialog(), -1);
  ASSERT_EQ(ui.shownForms.size(), 1u);
  ExpectPaths(ui.shownForms[0], "127epi_part.lan", "128epi_part.lan", "", "127epi_part_Match.pts");
  ExpectNumbers(ui.shownForms[0], 2.0, {19, 19}, 1.0, 0.5, 55);
}

TEST_F(StereoPairForm, CancelLeavesThePairAsItWas) {
  pair.demPath = "dem.lan";
  EXPECT_EQ(pair.RunMatchDialog(), -1);
  EXPECT_EQ(pair.demPath, "dem.lan");
  pair.demPath = "";
  ExpectCommonDefaults(pair);
  EXPECT_THAT(ui.EventsWith("message"), IsEmpty());
}

TEST_F(StereoPairForm, OkTakesAllFieldsOver) {
  Enter("a/l.lan", "d.lan", "m.pts");
  EXPECT_EQ(pair.RunMatchDialog(), 1);
  EXPECT_EQ(pair.leftImagePath, "a/l.lan");
  EXPECT_EQ(pair.rightImagePath, "r.lan");
  EXPECT_EQ(pair.leftOrientationPath, "a/l.ORN");
  EXPECT_EQ(pair.rightOrientationPath, "r.ORN");
  EXPECT_EQ(pair.demPath, "d.lan");
  EXPECT_EQ(pair.matchPointsPath, "m.pts");
  EXPECT_EQ(pair.demAccuracy, 7.5);
  EXPECT_EQ(pair.targetWidth, 11);
  EXPECT_EQ(pair.targetHeight, 13);
  EXPECT_EQ(pair.groundSpacingX, 0.5);
  EXPECT_EQ(pair.groundSpacingY, 0.5);
  EXPECT_EQ(pair.matchThreshold, 0.625);
  EXPECT_EQ(pair.maxDisparity, 31);
}

TEST_F(StereoPairForm, TheSecondFormShowsTheFirstOneWithoutADem) {
  Enter("a/l.lan", "d.lan", "");
  EXPECT_EQ(pair.RunMatchDialog(), 1);
  EXPECT_EQ(pair.RunMatchDialog(), -1);
  // The matched points are as they were left, not the test pair's.
  ExpectPaths(ui.shownForms.at(1), "a/l.lan", "r.lan", "", "");
  ExpectNumbers(ui.shownForms.at(1), 7.5, {11, 13}, 0.5, 0.625, 31);
}

TEST_F(StereoPairForm, ForPhotosThePathsAreShownAsTheyAre) {
  AerialPhoto left;
  AerialPhoto right;
  pair.SetPhotos(&left, &right);
  pair.SetImagePaths("x.lan", "y.lan");
  pair.SetMatchPointsPath("z.pts");
  pair.demPath = "dem.lan";
  Enter("a/l.lan", "dem.lan", "m.pts");
  EXPECT_EQ(pair.RunMatchDialogForPhotos(), 1);
  ExpectPaths(ui.shownForms.at(0), "x.lan", "y.lan", "dem.lan", "z.pts");
  EXPECT_EQ(pair.leftPhoto.get(), &left);
  EXPECT_EQ(pair.rightPhoto.get(), &right);
  EXPECT_EQ(pair.leftOrientationPath, "a/l.ORN");
  EXPECT_EQ(pair.RunMatchDialogForPhotos(), -1);
}

TEST_F(StereoPairForm, AnOrientationInSmallLettersIsFound) {
  WriteFileBytes("l.orn", "");
  pair.SetImagePaths("l.lan", "r.lan");
  EXPECT_EQ(pair.leftOrientationPath, "l.orn");
  EXPECT_EQ(pair.rightOrientationPath, "r.ORN");
  WriteFileBytes("l.ORN", "");
  pair.SetImagePaths("l.lan", "r.lan");
  EXPECT_EQ(pair.leftOrientationPath, "l.ORN") << "the first choice";
}

class StereoPairLoading : public testing::Test {
 protected:
  StereoPairLoading() {
    StorePhoto(made.left, "l");
    StorePhoto(made.right, "r");
    SetBytes(dem, 2, 2, {1, 2, 3, 4});
    dem.Write("dem.lan");
    pair.SetImagePaths("l.lan", "r.lan");
    pair.demPath = "dem.lan";
  }

  // LoadPair fails with this box as the last one; of a file that does not open the reader's own comes before.
  void ExpectFailure(const std::string& text) {
    EXPECT_EQ(pair.LoadPair(), -1);
    const auto boxes = ui.EventsWith("message");
    ASSERT_FALSE(boxes.empty());
    EXPECT_EQ(boxes.back(), "message message: " + text);
  }

  // The same, and this status is the only one.
  void ExpectFailure(const std::string& text, const std::string& status) {
    ExpectFailure(text);
    EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: " + status));
  }

  TempFolder folder;
  TestFrontEnd ui;
  VerticalPair made{3, 2, {11, 12, 13}, {21, 22, 23}};
  ErdasImg dem;
  StereoPair pair;
};

TEST_F(StereoPairLoading, AllIsLoaded) {
  EXPECT_EQ(pair.LoadPair(), 1);
  EXPECT_EQ(pair.leftPhoto->focalLength, 150.0);
  EXPECT_EQ(pair.leftPhoto->perspectiveX, 1000.0);
  EXPECT_EQ(pair.rightPhoto->perspectiveX, 1010.0);
  EXPECT_EQ(pair.leftPhoto->image.GetBands().GetBand(0)[1], 12);
  EXPECT_EQ(pair.rightPhoto->image.GetBands().GetBand(0)[2], 23);
  EXPECT_EQ(pair.dem->GetBands().GetBand(0)[3], 4);
  EXPECT_EQ(pair.leftPhoto->name, "l.lan");
  EXPECT_THAT(ui.EventsWith("message"), IsEmpty());
}

TEST_F(StereoPairLoading, AnEmptyDemPathLeavesTheDemNull) {
  pair.demPath = "";
  EXPECT_EQ(pair.LoadPair(), 1);
  EXPECT_EQ(pair.dem, nullptr);
  EXPECT_EQ(pair.ExtentFromDem(), -1);
}

TEST_F(StereoPairLoading, ADemThatIsOwnedIsLetGo) {
  EXPECT_EQ(pair.LoadPair(), 1);
  pair.demPath = "";
  EXPECT_EQ(pair.LoadPair(), 1);
  EXPECT_NE(pair.dem, nullptr);
  pair.ownsDem = true;
  EXPECT_EQ(pair.LoadPair(), 1);
  EXPECT_EQ(pair.dem, nullptr);
}

TEST_F(StereoPairLoading, WithoutTheLeftOrientation) {
  std::filesystem::remove("l.orn");
  std::filesystem::remove("r.orn");
  ExpectFailure("Open Left Orientation Parameters File error!");
  EXPECT_THAT(ui.EventsWith("message").size(), 1);
}

TEST_F(StereoPairLoading, WithoutTheRightOrientationTheLeftPhotoStays) {
  std::filesystem::remove("r.orn");
  std::filesystem::remove("l.lan");
  ExpectFailure("Open Right Orientation Parameters File error!");
  EXPECT_THAT(ui.EventsWith("message").size(), 1) << "no image has been asked for";
  EXPECT_EQ(pair.leftPhoto->focalLength, 150.0);
  ASSERT_NE(pair.rightPhoto, nullptr);
  EXPECT_EQ(pair.rightPhoto->focalLength, 0.0);
}

TEST_F(StereoPairLoading, WithoutTheLeftImage) {
  std::filesystem::remove("l.lan");
  std::filesystem::remove("r.lan");
  ExpectFailure("Open Left Image error!");
  EXPECT_THAT(ui.EventsWith("message").size(), 2) << "the reader's own before";
  EXPECT_EQ(pair.rightPhoto->focalLength, 150.0);
}

TEST_F(StereoPairLoading, WithoutTheRightImage) {
  std::filesystem::remove("r.lan");
  std::filesystem::remove("dem.lan");
  ExpectFailure("Open Right Image error!");
  EXPECT_THAT(ui.EventsWith("message").size(), 2);
  EXPECT_TRUE(pair.leftPhoto->image.HasPixels());
}

TEST_F(StereoPairLoading, WithoutTheDem) {
  std::filesystem::remove("dem.lan");
  ExpectFailure("Open DEM File error!");
  EXPECT_TRUE(pair.rightPhoto->image.HasPixels());
  EXPECT_EQ(pair.OpenPair(), StereoPair::kNotLoaded);
  pair.FreePair();
  EXPECT_EQ(pair.leftPhoto, nullptr);
  EXPECT_EQ(pair.rightPhoto, nullptr);
  EXPECT_EQ(pair.dem, nullptr);
}

TEST_F(StereoPairLoading, AnImageWithoutPixelsIsNoImage) {
  WriteFileBytes("r.lan", "too short for a header");
  ExpectFailure("Open Right Image error!");
}

TEST_F(StereoPairLoading, NoNamesAtAll) {
  StereoPair empty;
  EXPECT_EQ(empty.LoadPair(), -1);
  EXPECT_THAT(ui.EventsWith("message"),
              ElementsAre("message message: Open Left Orientation Parameters File error!"));
  EXPECT_EQ(empty.LoadImagesOfPhotos(), -1) << "the photos are there, but not their images";
  EXPECT_EQ(empty.LoadDem(), 1);
}

TEST_F(StereoPairLoading, AnEmptyImagePathNamesNoFile) {
  WriteFileBytes(".ORN", ReadFileBytes("l.orn"));
  pair.SetImagePaths("", "r.lan");
  EXPECT_EQ(pair.leftOrientationPath, "");
  ExpectFailure("Open Left Orientation Parameters File error!",
                "Left Orientation Parameters File: no file is named.");
  ui.events.clear();
  pair.SetImagePaths("l.lan", "");
  ExpectFailure("Open Right Orientation Parameters File error!",
                "Right Orientation Parameters File: no file is named.");
}

TEST_F(StereoPairLoading, AnImageWithoutAnExtensionHasNoOrientationBesideIt) {
  WriteFileBytes(".ORN", ReadFileBytes("l.orn"));
  pair.SetImagePaths("a.b/left", "r.lan");
  EXPECT_EQ(pair.leftOrientationPath, "");
  ExpectFailure("Open Left Orientation Parameters File error!",
                "a.b/left has no extension: the orientation beside it has no name.");
}

TEST_F(StereoPairLoading, OpenPairForgetsThePairsOfTheMethodBefore) {
  pair.matchPairs.resize(3);
  EXPECT_EQ(pair.OpenPair(), StereoPair::kDone);
  EXPECT_TRUE(pair.matchPairs.empty());
  EXPECT_EQ(pair.leftImage, &pair.leftPhoto->image);
  EXPECT_EQ(pair.rightImage, &pair.rightPhoto->image);
}

TEST_F(StereoPairLoading, ImagesGoOneByOne) {
  EXPECT_EQ(pair.LoadPair(), 1);
  pair.FreeImages(true, false);
  EXPECT_FALSE(pair.leftPhoto->image.HasPixels());
  EXPECT_TRUE(pair.rightPhoto->image.HasPixels());
  pair.FreeImages(false, true);
  EXPECT_FALSE(pair.rightPhoto->image.HasPixels());
  EXPECT_EQ(pair.LoadImagesOfPhotos(), 1);
  EXPECT_TRUE(pair.leftPhoto->image.HasPixels());
  pair.FreePair();
  pair.FreeImages(true, true);
}

TEST_F(StereoPairLoading, TheOutcomeNamesWhatIsWrongWithTheInputs) {
  WriteFileBytes("r.orn", "ORIENTATION a b\n150");
  EXPECT_EQ(pair.OpenPair(), StereoPair::kDone);
  pair.TellOutcome("Done.");
  EXPECT_EQ(
      ui.EventsWith("status").back(),
      "status 0: Done. The numbers in r.orn make no orientation: it is cut short, or a word stands among "
      "them.");
}

// A pair with this base; the left perspective centre is (1000.5, 2000.5, 1500).
class StereoPairGeometry : public testing::Test {
 protected:
  void SetBase(double x, double y, double spacing, double leftX = 1000.5) {
    SetPhoto(left, {.x = leftX, .y = 2000.5});
    SetPhoto(right, {.x = leftX + x, .y = 2000.5 + y, .z = 1510.0});
    pair.SetPhotos(&left, &right);
    pair.groundSpacingX = pair.groundSpacingY = spacing;
    EXPECT_EQ(pair.InitGeometry(), 1);
    EXPECT_EQ(pair.InitGroundExtent(), 1);
  }

  std::vector<double> Extent() const {
    return {pair.groundMinX, pair.groundMinY, pair.groundMaxX, pair.groundMaxY};
  }

  AerialPhoto left;
  AerialPhoto right;
  StereoPair pair;
};

TEST_F(StereoPairGeometry, WithoutAPhotoThereIsNone) {
  EXPECT_EQ(pair.InitGeometry(), -1);
  pair.SetPhotos(&left, nullptr);
  EXPECT_EQ(pair.InitGeometry(), -1);
  pair.SetPhotos(nullptr, &right);
  EXPECT_EQ(pair.InitGeometry(), -1);
}

TEST_F(StereoPairGeometry, BaseAndMeanHeight) {
  SetBase(60.0, -80.0, 1.0);
  EXPECT_EQ(pair.overlap, 0.6);
  EXPECT_EQ(pair.baseX, 60.0);
  EXPECT_EQ(pair.baseY, -80.0);
  EXPECT_EQ(pair.baseZ, 10.0);
  EXPECT_NEAR(pair.meanGroundZ, 1500.0 - 100.0 * 150.0 / (0.4 * 220.0), 1e-9) << "baseZ does not count";
  EXPECT_EQ(pair.leftImage, &left.image);
  EXPECT_EQ(pair.rightImage, &right.image);
}

// For a base of 100 the rectangle is x from -25 to 125, y from -125 to 125, before it is turned: 150 x 250,
// or 21 x 35 cells of 7.
TEST_F(StereoPairGeometry, GroundExtentOfABaseAlongX) {
  SetBase(100.0, 0.0, 7.0);
  // 1000.5 - 25 = 975.5: 975, 139 * 7; 2000.5 - 125 = 1875.5: 1875, 267 * 7
  EXPECT_THAT(Extent(), ElementsAre(973.0, 1869.0, 973.0 + 147.0, 1869.0 + 245.0));
}

TEST_F(StereoPairGeometry, GroundExtentOfABaseAlongY) {
  SetBase(0.0, 100.0, 7.0);
  // x from -125 to 125, y from -25 to 125: 875, 125 * 7; 1975, 282 * 7
  EXPECT_THAT(Extent(), ElementsAre(875.0, 1974.0, 875.0 + 245.0, 1974.0 + 147.0));
}

TEST_F(StereoPairGeometry, GroundExtentOfANegativeBase) {
  SetBase(-100.0, 0.0, 7.0);
  // x from -125 to 25
  EXPECT_THAT(Extent(), ElementsAre(875.0, 1869.0, 875.0 + 147.0, 1869.0 + 245.0));
}

// Its cosine and sine are 0.6 and 0.8: the corners (-25, -+125), (125, -+125) come to (85, -95), (-115, 55),
// (175, 25), (-25, 175), which are 290 x 270, or 41 x 38 cells of 7.
TEST_F(StereoPairGeometry, GroundExtentOfAnObliqueBase) {
  SetBase(60.0, 80.0, 7.0);
  // 1000.5 - 115 = 885.5: 885, 126 * 7; 2000.5 - 95 = 1905.5: 1905, 272 * 7
  EXPECT_THAT(Extent(), ElementsAre(882.0, 1904.0, 882.0 + 287.0, 1904.0 + 266.0));
}

TEST_F(StereoPairGeometry, NegativeCoordinatesAreCutTowardsZero) {
  SetBase(100.0, 0.0, 7.0, -1000.5);
  EXPECT_EQ(pair.groundMinX, -146.0 * 7.0) << "-1025.5: -1025, -146.4 * 7";
  EXPECT_EQ(pair.groundMaxX, -146.0 * 7.0 + 147.0);
}

TEST_F(StereoPairGeometry, ANegativeSpacingCountsDownTwice) {
  SetBase(100.0, 0.0, -7.0);
  EXPECT_THAT(Extent(), ElementsAre(973.0, 1869.0, 973.0 + 147.0, 1869.0 + 245.0));
}

TEST_F(StereoPairGeometry, NoSpacingMakesNoRectangle) {
  for (const double spacing : {0.0, kNaN}) {
    SetBase(100.0, 0.0, spacing);
    for (const double number : Extent()) EXPECT_TRUE(std::isnan(number));
  }
}

TEST_F(StereoPairGeometry, ExtentFromDemGrowsToTheSpacing) {
  EXPECT_EQ(pair.ExtentFromDem(), -1) << "without a DEM";
  pair.dem = std::make_unique<ErdasImg>();
  EXPECT_EQ(pair.ExtentFromDem(), -1) << "without pixels";
  SetBytes(*pair.dem, 4, 3, {});
  ErdasHeader& header = *pair.dem->GetHeader();
  header.xMap = 10.5F;
  header.yMap = 100.5F;
  header.xCell = 2.0F;
  header.yCell = -2.0F;
  // x from 10.5 to 18.5, y from 94.5 to 100.5
  EXPECT_EQ(pair.ExtentFromDem(), 1);
  EXPECT_THAT(Extent(), ElementsAre(10.0, 94.0, 19.0, 101.0));
  pair.groundSpacingX = 0.5;
  pair.groundSpacingY = 5.0;
  EXPECT_EQ(pair.ExtentFromDem(), 1);
  EXPECT_THAT(Extent(), ElementsAre(10.5, 90.0, 18.5, 105.0));
  header.yCell = 2.0F;
  EXPECT_EQ(pair.ExtentFromDem(), 1) << "y from 100.5 to 106.5";
  EXPECT_THAT(Extent(), ElementsAre(10.5, 100.0, 18.5, 110.0));
}

TEST_F(StereoPairGeometry, AnEmptyDemExtentChangesNothing) {
  SetBase(100.0, 0.0, 7.0);
  const auto before = Extent();
  pair.dem = std::make_unique<ErdasImg>();
  SetBytes(*pair.dem, 4, 3, {});
  ErdasHeader& header = *pair.dem->GetHeader();
  header.xCell = -2.0F;
  EXPECT_EQ(pair.ExtentFromDem(), -1) << "columns that run down";
  header.xCell = 0.0F;
  EXPECT_EQ(pair.ExtentFromDem(), -1);
  header.xCell = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(pair.ExtentFromDem(), -1);
  header.xCell = 2.0F;
  for (const double spacing : {0.0, kNaN}) {
    pair.groundSpacingX = spacing;
    EXPECT_EQ(pair.ExtentFromDem(), -1);
  }
  EXPECT_EQ(Extent(), before);
}

TEST(StereoPairProgress, IsTheShareThatIsDone) {
  TestFrontEnd ui;
  StereoPair pair;
  pair.TellDone(1, 2);
  EXPECT_THAT(ui.events, IsEmpty()) << "without a progress window";
  pair.progressWindow = &ui;
  pair.TellDone(0, 7);
  pair.TellDone(6, 7);
  pair.TellDone(0, 0);
  pair.TellDone(std::int64_t{1} << 40, std::int64_t{1} << 41);
  EXPECT_THAT(ui.events,
              ElementsAre("status 0: Done 0% ...", "status 0: Done 85% ...", "status 0: Done 50% ..."));
}

}  // namespace
}  // namespace corvane
