// The commands of the menu Features, end to end.

#include <gmock/gmock.h>

#include "ImgProcess/ImgProcess.h"
#include "commands/ImageFixture.h"
#include "shell/DibView.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr const char* kImageFiles = "Image Files (*.lan)|*.lan|All Files (*.*)|*.*|";
const std::string kSigma = "value: Input the sigma value 2";
const std::string kThreshold = "value: Input corner strength thresh 1200";

class FeatureCommandsTest : public ImageCommandsTest {
 protected:
  void SetUp() override {
    ImageCommandsTest::SetUp();
    WriteFileBytes("a.lan", lan);
  }

  // A chessboard of squares of 20 pixels, 0 and 200, whose lines lie on pixels of 100: on columns and rows
  // 10, 30, 50, and on column 70.
  static std::string Chessboard() {
    const auto sign = [](int i) { return i % 20 == 10 ? 0 : (i + 10) / 20 % 2 == 0 ? 1 : -1; };
    std::string bytes = BytesOf(HeaderOf(kPackByte, 1, 81, 61));
    for (int row = 0; row < 61; ++row) {
      for (int col = 0; col < 81; ++col) bytes += static_cast<char>(100 + 100 * sign(row) * sign(col));
    }
    return bytes;
  }

  // x and y in turn.
  static std::vector<double> Crossings() {
    std::vector<double> places;
    for (int row = 10; row < 61; row += 20) {
      for (int col = 10; col < 81; col += 20) places.insert(places.end(), {1.0 * col, 1.0 * row});
    }
    return places;
  }

  std::vector<double> ShownPoints() { return app.GetMainFrame().GetDibView()->m_points; }
  std::string Status() const { return ui.EventsWith("status").back(); }

  const std::string lan = Chessboard();
  const std::string crossingLines =
      "0, 10, 10\n1, 30, 10\n2, 50, 10\n3, 70, 10\n"
      "4, 10, 30\n5, 30, 30\n6, 50, 30\n7, 70, 30\n"
      "8, 10, 50\n9, 30, 50\n10, 50, 50\n11, 70, 50\n";
};

// Points

TEST_F(FeatureCommandsTest, PointsShowsProminentPixels) {
  WriteFileBytes("b.lan", LanOf<std::uint8_t>(kPackByte, 5, 4, {90, 90, 90, 90, 0,   //
                                                                90, 90, 90, 90, 90,  //
                                                                90, 90, 90, 90, 90,  //
                                                                90, 90, 90, 90, 90}));
  ui.files = {{"b.lan"}};
  EXPECT_EQ(Run("Features > Points"), CommandResult::Done);
  ExpectChoosers({{kOpen, kImageFiles}});
  EXPECT_THAT(ShownPoints(), ElementsAre(3, 1));
  EXPECT_THAT(ui.EventsWith("open-window"), ElementsAre("open-window: b.lan"));
  EXPECT_THAT(ui.EventsWith("overlay"), testing::Contains("overlay: b.lan 1 0 0"));
  EXPECT_EQ(Status(), "status 0: 1 prominent points.");
  EXPECT_THAT(Files(), ElementsAre("a.lan", "b.lan"));
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(FeatureCommandsTest, PointsOfAnImageThatDoesNotOpen) {
  ExpectFailure("Features > Points", {{"none.lan"}}, {"message warning: Open file none.lan error!"});
  EXPECT_THAT(ui.EventsWith("open-window"), IsEmpty());
}

TEST_F(FeatureCommandsTest, CancellingLeavesNothing) {
  ExpectCancelAtEach("Features > Points", "f", {"a.lan"});
  ExpectCancelAtEach("Features > Harris Corner", "fvv", {"a.lan"});
  ExpectCancelAtEach("Features > Structural Feature", "fvv", {"a.lan"});
  ExpectCancelAtEach("Features > Spiral Descriptor", "fvv", {"a.lan"});
  EXPECT_THAT(ui.EventsWith("open-window"), IsEmpty());
}

// Harris Corner

TEST_F(FeatureCommandsTest, HarrisCornerShowsAndWritesCorners) {
  ui.files = {{"a.lan"}};
  ui.values = {2.0, 1200.0};
  EXPECT_EQ(Run("Features > Harris Corner"), CommandResult::Done);
  ExpectChoosers({{kOpen, kImageFiles}});
  EXPECT_THAT(ui.EventsWith("value"), ElementsAre(kSigma, kThreshold));
  EXPECT_THAT(ShownPoints(), ElementsAreArray(Crossings()));
  EXPECT_THAT(ui.EventsWith("open-window"), ElementsAre("open-window: a.lan"));
  EXPECT_THAT(ui.EventsWith("overlay"), testing::Contains("overlay: a.lan 12 0 0"));
  EXPECT_EQ(ReadFileBytes("a_Pt.txt"), crossingLines);
  EXPECT_THAT(Files(), ElementsAre("a.lan", "a_Pt.txt", "cornerResponse.lan"));
  EXPECT_EQ(Status(), "status 0: Written to a_Pt.txt: 12 corners. Side file: cornerResponse.lan.");
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(FeatureCommandsTest, HarrisCornerWritesTheResponseInFloats) {
  ui.files = {{"a.lan"}};
  ui.values = {1.5, 1200.0};
  ASSERT_EQ(Run("Features > Harris Corner"), CommandResult::Done);
  ErdasImg image;
  image.Read("a.lan");
  ResultImage response;
  ASSERT_EQ(ImgProcess().CornerResponse(image, response, {.k = 0.04, .sigma = 1.5}), 1);
  EXPECT_EQ(ReadFileBytes("cornerResponse.lan"), BytesOf(*response->GetHeader()) + BandBytes(*response, 0));
}

TEST_F(FeatureCommandsTest, TheThresholdIsCutToAWholeNumber) {
  ErdasImg image;
  image.Read("a.lan");
  ResultImage response;
  ASSERT_EQ(ImgProcess().CornerResponse(image, response, {}), 1);
  double strongest = 0.0;
  response->GetPixel(0, 30, 30, strongest);
  const double whole = std::floor(strongest);
  ASSERT_LT(whole, strongest);
  ASSERT_LT(whole, 2147483647.0);
  ui.files = {{"a.lan"}};
  ui.values = {2.0, std::nextafter(whole + 1.0, 0.0)};
  EXPECT_EQ(Run("Features > Harris Corner"), CommandResult::Done);
  EXPECT_THAT(ReadFileBytes("a_Pt.txt"), testing::HasSubstr(", 30, 30\n"));
}

TEST_F(FeatureCommandsTest, NoCornersStillWriteTheFile) {
  ui.files = {{"a.lan"}};
  ui.values = {2.0, 1e300};  // held at the largest whole number of 32 bits
  WriteFileBytes("a_Pt.txt", "old");
  WriteFileBytes("a.lan", LanOf<std::uint8_t>(kPackByte, 3, 3, {7, 7, 7, 7, 7, 7, 7, 7, 7}));
  EXPECT_EQ(Run("Features > Harris Corner"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("a_Pt.txt"), "");
  EXPECT_THAT(Files(), testing::Contains("a_Pt.txt"));
  EXPECT_THAT(ShownPoints(), IsEmpty());
  EXPECT_EQ(Status(), "status 0: Written to a_Pt.txt: 0 corners. Side file: cornerResponse.lan.");
}

TEST_F(FeatureCommandsTest, APathWithoutAnExtensionGivesTheSuffixAlone) {
  WriteFileBytes("photo", lan);
  ui.files = {{"photo"}};
  ui.values = {2.0, 1200.0};
  EXPECT_EQ(Run("Features > Harris Corner"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("_Pt.txt"), crossingLines);
}

TEST_F(FeatureCommandsTest, SigmasWithoutAGaussianAreTold) {
  for (const double sigma : {-1.0, 1e300}) {
    ui.values = {sigma, 1200.0};
    ExpectFailure(
        "Features > Harris Corner", {{"a.lan"}},
        {"message warning: The sigma is no number from 0 to 10000. Please enter the smoothing in pixels."});
  }
}

TEST_F(FeatureCommandsTest, ASigmaOf0HasNoCorners) {
  ui.files = {{"a.lan"}};
  ui.values = {0.0, -1e300};
  EXPECT_EQ(Run("Features > Harris Corner"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("a_Pt.txt"), "");
  EXPECT_EQ(Status(),
            "status 0: Written to a_Pt.txt: 0 corners. Side file: cornerResponse.lan. Sigma 0 makes every "
            "pixel not a number.");
}

TEST_F(FeatureCommandsTest, AnImageThatDoesNotOpenEndsTheCommandBeforeItsValues) {
  for (const char* name : {"Harris Corner", "Structural Feature", "Spiral Descriptor"}) {
    ExpectFailure(std::string("Features > ") + name, {{"none.lan"}},
                  {"message warning: Open file none.lan error!"});
    EXPECT_THAT(ui.EventsWith("value"), IsEmpty());
  }
}

TEST_F(FeatureCommandsTest, AResponseThatCannotBeWrittenIsToldAndTheCornersAreShown) {
  std::filesystem::create_directory("cornerResponse.lan");
  ui.files = {{"a.lan"}};
  ui.values = {2.0, 1200.0};
  EXPECT_EQ(Run("Features > Harris Corner"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Write file cornerResponse.lan error!"));
  EXPECT_THAT(ShownPoints(), ElementsAreArray(Crossings()));
  EXPECT_EQ(ReadFileBytes("a_Pt.txt"), crossingLines);
  EXPECT_EQ(Status(), "status 0: Written to a_Pt.txt: 12 corners.");
  ui.files = {{"a.lan"}};
  ui.values = {1200.0, 11.0};
  EXPECT_EQ(Run("Features > Structural Feature"), CommandResult::Failed);
  EXPECT_EQ(Status(), "status 0: Written to a_Pt.txt: 12 corners. To Descriptor.txt: 2 descriptors.");
}

TEST_F(FeatureCommandsTest, DescriptorsThatCannotBeWrittenAreToldAndTheCornersAreShown) {
  std::filesystem::create_directory("Descriptor.txt");
  ui.files = {{"a.lan"}};
  ui.values = {1200.0, 7.0};
  EXPECT_EQ(Run("Features > Structural Feature"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Open file Descriptor.txt error!"));
  EXPECT_THAT(ShownPoints(), ElementsAreArray(Crossings()));
  EXPECT_EQ(ReadFileBytes("a_Pt.txt"), crossingLines);
  EXPECT_EQ(Status(), "status 0: Written to a_Pt.txt: 12 corners. Side file: cornerResponse.lan.");
}

TEST_F(FeatureCommandsTest, AListOfPointsThatCannotBeWrittenIsTold) {
  std::filesystem::create_directory("a_Pt.txt");
  ui.values = {2.0, 1200.0};
  WriteFileBytes("cornerResponse.lan", "");
  ExpectFailure("Features > Harris Corner", {{"a.lan"}}, {"message warning: Open file a_Pt.txt error!"});
}

TEST_F(FeatureCommandsTest, TypesWithoutAFilterAreTold) {
  WriteFileBytes("b.lan", LanOf<std::uint16_t>(kPackUInt16, 3, 1, {7, 700, 9}));
  const std::string corners = "status 0: Written to b_Pt.txt: 0 corners.";
  const std::string unfiltered = " Pixels of this type are not filtered: all are zero.";
  ui.files = {{"b.lan"}};
  ui.values = {0.0, 1200.0};  // zero with sigma 0, too
  EXPECT_EQ(Run("Features > Harris Corner"), CommandResult::Done);
  EXPECT_EQ(Status(), corners + " Side file: cornerResponse.lan." + unfiltered);
  ui.files = {{"b.lan"}};
  ui.values = {1200.0, 7.0};
  EXPECT_EQ(Run("Features > Structural Feature"), CommandResult::Done);
  EXPECT_EQ(Status(), corners + " To Descriptor.txt: 0 descriptors. Side file: cornerResponse.lan." +
                          unfiltered + " Its pixels count as bytes.");
}

TEST_F(FeatureCommandsTest, WiderPixelsCountAsBytesWhichIsTold) {
  WriteFileBytes("b.lan", LanOf<float>(kPackFloat, 3, 1, {7, 700, 9}));
  ui.files = {{"b.lan"}};
  EXPECT_EQ(Run("Features > Points"), CommandResult::Done);
  EXPECT_EQ(Status(), "status 0: 0 prominent points. Its pixels count as bytes.");
  ui.files = {{"b.lan"}};
  ui.values = {1200.0, 17.0};
  EXPECT_EQ(Run("Features > Spiral Descriptor"), CommandResult::Done);
  EXPECT_EQ(Status(),
            "status 0: Written to b_Pt.txt: 0 corners. To Spiral_Descrip.txt: 0 descriptors. Side file: "
            "cornerResponse.lan. Its pixels count as bytes.");
  ui.files = {{"b.lan"}};
  ui.values = {2.0, 1200.0};
  EXPECT_EQ(Run("Features > Harris Corner"), CommandResult::Done);
  EXPECT_EQ(Status(), "status 0: Written to b_Pt.txt: 0 corners. Side file: cornerResponse.lan.");
}

TEST_F(FeatureCommandsTest, ACutImageIsTold) {
  WriteFileBytes("a.lan", lan.substr(0, lan.size() - 10));
  ui.files = {{"a.lan"}};
  ui.values = {2.0, 1200.0};
  EXPECT_EQ(Run("Features > Harris Corner"), CommandResult::Done);
  EXPECT_THAT(Status(), testing::HasSubstr("The image is cut short: bytes missing: 10."));
}

// Structural Feature, Spiral Descriptor

TEST_F(FeatureCommandsTest, StructuralFeatureWritesDescriptorsOfCornersWithinTheMargin) {
  ui.files = {{"a.lan"}};
  ui.values = {1200.0, 11.0};
  EXPECT_EQ(Run("Features > Structural Feature"), CommandResult::Done);
  ExpectChoosers({{kOpen, kImageFiles}});
  EXPECT_THAT(ui.EventsWith("value"),
              ElementsAre(kThreshold, "value: Input feature descriptor window size 7"));
  // Corners at rows and columns of 10, and at column 70 of 81, are in the overlay but get no descriptor.
  EXPECT_THAT(ShownPoints(), ElementsAreArray(Crossings()));
  EXPECT_EQ(ReadFileBytes("a_Pt.txt"), crossingLines);
  FeaturePointList features;
  ASSERT_EQ(ReadFeaturePoints("Descriptor.txt", features), 1);
  ASSERT_EQ(features.size(), 2u);
  EXPECT_EQ(features[0].x, 30);
  EXPECT_EQ(features[0].y, 30);
  EXPECT_EQ(features[1].x, 50);
  EXPECT_EQ(features[0].values.size(), 120u);
  // The first step: all of the window's means are 100, and a diagonal within a square has no step but at the
  // middle: (200 - 100) / 100.
  EXPECT_EQ(std::abs(features[0].values[0]), 1.0);
  EXPECT_EQ(features[0].values[8], 0.0);
  EXPECT_THAT(Files(), ElementsAre("Descriptor.txt", "a.lan", "a_Pt.txt", "cornerResponse.lan"));
  EXPECT_EQ(Status(),
            "status 0: Written to a_Pt.txt: 12 corners. To Descriptor.txt: 2 descriptors. Side file: "
            "cornerResponse.lan.");
}

TEST_F(FeatureCommandsTest, AnEvenWindowIsRefusedBeforeAnythingIsWritten) {
  const std::pair<double, std::string> sizes[] = {
      {8.9, "message warning: The window size 8 is not odd."},
      {0.0, "message warning: The window size 0 is not odd."},
      {-7.0, "message warning: The window size -7 is not positive."}};
  for (const auto& [size, why] : sizes) {
    ui.values = {1200.0, size};
    ExpectFailure("Features > Structural Feature", {{"a.lan"}}, {why});
  }
}

TEST_F(FeatureCommandsTest, AWindowTooLargeForAllCornersIsTold) {
  ui.files = {{"a.lan"}};
  ui.values = {1200.0, 45.0};
  EXPECT_EQ(Run("Features > Structural Feature"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("Descriptor.txt"), "");
  EXPECT_EQ(
      Status(),
      "status 0: Written to a_Pt.txt: 12 corners. To Descriptor.txt: 0 descriptors. No corner lies 45 pixels "
      "or more inside the image's edges. Side file: cornerResponse.lan.");
}

TEST_F(FeatureCommandsTest, ASpiralOutsideOfTheMarginIsTold) {
  const std::string written =
      "status 0: Written to a_Pt.txt: 12 corners. To Spiral_Descrip.txt: 0 descriptors. ";
  ui.files = {{"a.lan"}};
  ui.values = {1200.0, 46.0};  // even, which does not matter
  EXPECT_EQ(Run("Features > Spiral Descriptor"), CommandResult::Done);
  EXPECT_EQ(Status(), written + "No corner lies 46 pixels or more inside the image's edges." +
                          " Side file: cornerResponse.lan.");
}

TEST_F(FeatureCommandsTest, TheSpiralsWindowKeepsAMarginOf8Pixels) {
  // A bright square at the left and upper edge, with one corner within the image at (6, 6).
  std::string bytes = BytesOf(HeaderOf(kPackByte, 1, 40, 40));
  for (int i = 0; i < 40 * 40; ++i) bytes += i / 40 <= 6 && i % 40 <= 6 ? '\x7f' : '\0';
  WriteFileBytes("b.lan", bytes);
  ui.files = {{"b.lan"}};
  ui.values = {1200.0, 3.0};
  EXPECT_EQ(Run("Features > Spiral Descriptor"), CommandResult::Done);
  EXPECT_THAT(Status(),
              testing::HasSubstr("0 descriptors. No corner lies 8 pixels or more inside the image's edges."));
}

TEST_F(FeatureCommandsTest, WindowSizesOutOfRangeAreHarmless) {
  for (const double size : {0.0, -1e300, 1e300, -7.0, 2147483647.0}) {
    ui.files = {{"a.lan"}};
    ui.values = {1200.0, size};
    const bool canBe = size > 1e9;  // cut to 2147483647, which is odd
    EXPECT_EQ(Run("Features > Structural Feature"), canBe ? CommandResult::Done : CommandResult::Failed)
        << size;
    EXPECT_EQ(ReadFileBytes("Descriptor.txt"), "");
    ui.files = {{"a.lan"}};
    ui.values = {1200.0, size};
    EXPECT_EQ(Run("Features > Spiral Descriptor"), CommandResult::Done) << size;
  }
}

TEST_F(FeatureCommandsTest, SpiralDescriptorWrites41Values) {
  ui.files = {{"a.lan"}};
  ui.values = {1200.0, 17.0};
  EXPECT_EQ(Run("Features > Spiral Descriptor"), CommandResult::Done);
  ExpectChoosers({{kOpen, kImageFiles}});
  EXPECT_THAT(ui.EventsWith("value"),
              ElementsAre(kThreshold, "value: Input feature descriptor window size 17"));
  FeaturePointList features;
  ASSERT_EQ(ReadFeaturePoints("Spiral_Descrip.txt", features), 1);
  ASSERT_EQ(features.size(), 2u);
  EXPECT_EQ(features[1].x, 50);
  ASSERT_EQ(features[1].values.size(), 41u);
  EXPECT_EQ(features[1].values[0], 1.0);  // the middle, of 100, as the window's mean
  EXPECT_EQ(ReadFileBytes("a_Pt.txt"), crossingLines);
  EXPECT_THAT(Files(), ElementsAre("Spiral_Descrip.txt", "a.lan", "a_Pt.txt", "cornerResponse.lan"));
  EXPECT_THAT(Messages(), IsEmpty());
}

}  // namespace
}  // namespace corvane
