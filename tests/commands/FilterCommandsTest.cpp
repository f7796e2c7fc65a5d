// The commands that filter images, end to end. Numbers are worked out by hand; the filters have their own
// tests.

#include <gmock/gmock.h>

#include <cmath>

#include "commands/ImageFixture.h"
#include "support/FileSizeLimit.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kImageFiles = "Image Files (*.lan)|*.lan|All Files (*.*)|*.*|";
constexpr const char* kSigmaText =
    "message warning: The sigma is no number from 0 to 10000. Please enter the smoothing in pixels.";
constexpr const char* kUnfilteredText = " Pixels of this type are not filtered: all are zero.";
constexpr const char* kSigma0Text = " Sigma 0 makes every pixel not a number.";
constexpr const char* kNoOpenText = "message warning: Open file none.lan error!";

class FilterCommandsTest : public ImageCommandsTest {
 protected:
  void SetUp() override {
    ImageCommandsTest::SetUp();
    WriteFileBytes("a.lan", LanOf<std::uint8_t>(kPackByte, 3, 1, {1, 2, 4}));
  }

  // The choosers since the start: one to open and perhaps one to save.
  void ExpectChoosers(const std::string& openTitle, const std::string& defaultName = "") const {
    ASSERT_EQ(ui.choosers.size(), defaultName.empty() ? 1u : 2u);
    EXPECT_EQ(ui.choosers[0].mode, kOpen);
    EXPECT_EQ(ui.choosers[0].filter, kImageFiles);
    EXPECT_EQ(ui.choosers[0].title, openTitle);
    EXPECT_FALSE(ui.choosers[0].mustExist);
    if (defaultName.empty()) return;
    EXPECT_EQ(ui.choosers[1].mode, kSave);
    EXPECT_EQ(ui.choosers[1].title, "Choose the file to save to");
    EXPECT_EQ(ui.choosers[1].defaultName, defaultName);
    EXPECT_EQ(ui.choosers[1].defaultExtension, "*.lan");
  }

  template <typename Pixel>
  static std::vector<Pixel> PixelsIn(const std::string& path) {
    ErdasImg image;
    EXPECT_EQ(image.Read(path), 1) << path;
    return BandPixelsOf<Pixel>(image, 0);
  }
};

// Gaussian Smooth

TEST_F(FilterCommandsTest, SmoothWritesFloats) {
  WriteFileBytes("b.lan", LanOf<std::uint8_t>(kPackByte, 3, 1, {0, 100, 0}));
  ui.files = {{"b.lan"}, {"out.lan"}};
  ui.values = {0.25};  // weights e, 1, e over their sum, with e = exp(-8)
  EXPECT_EQ(Run("Gaussian Smooth"), CommandResult::Done);
  ExpectChoosers("Choose an Image to Gaussian Smooth", "b_Smooth.lan");
  EXPECT_THAT(ui.EventsWith("value"), ElementsAre("value: Please input Sigma value of Gaussian 2"));
  const double e = std::exp(-8.0);
  const auto pixels = PixelsIn<float>("out.lan");
  ASSERT_EQ(pixels.size(), 3u);
  EXPECT_NEAR(pixels[0], 100.0 * e / (1.0 + 2.0 * e), 1e-6);
  EXPECT_NEAR(pixels[1], 100.0 / (1.0 + 2.0 * e), 1e-4);
  EXPECT_EQ(pixels[2], pixels[0]);
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Written to out.lan: 1 rows, 3 columns.");
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(FilterCommandsTest, SmoothWithSigma0WritesPixelsThatAreNotNumbers) {
  ui.files = {{"a.lan"}, {"out.lan"}};
  ui.values = {0.0};
  EXPECT_EQ(Run("Gaussian Smooth"), CommandResult::Done);
  EXPECT_THAT(PixelsIn<float>("out.lan"), ElementsAre(testing::IsNan(), testing::IsNan(), testing::IsNan()));
  EXPECT_EQ(ui.EventsWith("status").back(),
            std::string("status 0: Written to out.lan: 1 rows, 3 columns.") + kSigma0Text);
}

TEST_F(FilterCommandsTest, SmoothWithASigmaThatMakesNoKernelFails) {
  for (const double sigma : {-2.0, 1e9, 1e300, std::nan("")}) {
    ui.values = {sigma};
    ExpectFailure("Gaussian Smooth", {{"a.lan"}, {"out.lan"}}, {kSigmaText});
  }
}

TEST_F(FilterCommandsTest, SigmasAreCheckedBeforeTheImageIsRead) {
  ui.values = {-1.0};
  ExpectFailure("Gaussian Smooth", {{"none.lan"}, {"out.lan"}}, {kSigmaText});
  ui.values = {10001.0, 0.0};
  ExpectFailure("Zero Crossing", {{"none.lan"}}, {kSigmaText});
}

TEST_F(FilterCommandsTest, SmoothOfATypeWithoutAFilterWritesZerosAsFloats) {
  WriteFileBytes("b.lan", LanOf<std::uint16_t>(kPackUInt16, 2, 1, {7, 9}));
  ui.files = {{"b.lan"}, {"out.lan"}};
  ui.values = {2.0};
  EXPECT_EQ(Run("Gaussian Smooth"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.lan"), LanOf<float>(kPackFloat, 2, 1, {0, 0}));
  EXPECT_EQ(ui.EventsWith("status").back(),
            std::string("status 0: Written to out.lan: 1 rows, 2 columns.") + kUnfilteredText);
}

TEST_F(FilterCommandsTest, AllTypesWithoutAFilterAreTold) {
  for (const std::uint16_t pack : {1, 2, 3, 4, 5, 8}) {
    WriteFileBytes("b.lan", BytesOf(HeaderOf(pack, 1, 2, 1)) + std::string(8, '\x07'));
    for (const double sigma : {0.0, 2.0}) {  // no pixel is filtered: they are zero with sigma 0, too
      ui.files = {{"b.lan"}, {"out.lan"}};
      ui.values = {sigma};
      EXPECT_EQ(Run("Gaussian Smooth"), CommandResult::Done);
      EXPECT_EQ(ui.EventsWith("status").back(),
                std::string("status 0: Written to out.lan: 1 rows, 2 columns.") + kUnfilteredText)
          << pack;
    }
  }
}

TEST_F(FilterCommandsTest, SmoothThatCannotReadOrWriteFails) {
  ui.values = {2.0};
  ExpectFailure("Gaussian Smooth", {{"none.lan"}, {"out.lan"}}, {kNoOpenText});
  ui.values = {2.0};
  ExpectFailure("Gaussian Smooth", {{"a.lan"}, {"none/out.lan"}},
                {"message warning: Write file none/out.lan error!"});
}

TEST_F(FilterCommandsTest, SmoothCancelledWritesNothing) {
  ExpectCancelAtEach("Gaussian Smooth", "fvf", {"a.lan", "out.lan"});
}

// Gradient Image

TEST_F(FilterCommandsTest, GradientWritesTheMagnitudeAndItsParts) {
  ui.files = {{"a.lan"}, {"out.lan"}};
  EXPECT_EQ(Run("Gradient Image"), CommandResult::Done);
  ExpectChoosers("Choose an Image to calculate gradient", "a_Gradient.lan");
  EXPECT_THAT(ui.EventsWith("value"), IsEmpty());
  EXPECT_EQ(ReadFileBytes("out.lan"), LanOf<float>(kPackFloat, 3, 1, {0.5f, 1.5f, 1}));
  EXPECT_EQ(ReadFileBytes("GradientX.lan"), LanOf<float>(kPackFloat, 3, 1, {0.5f, 1.5f, 1}));
  EXPECT_EQ(ReadFileBytes("GradientY.lan"), LanOf<float>(kPackFloat, 3, 1, {0, 0, 0}));
  EXPECT_THAT(Files(), ElementsAre("GradientX.lan", "GradientY.lan", "a.lan", "out.lan"));
  EXPECT_EQ(ui.EventsWith("status").back(),
            "status 0: Written to out.lan: 1 rows, 3 columns. Side files: GradientX.lan, GradientY.lan.");
}

TEST_F(FilterCommandsTest, GradientOfATypeWithoutAFilterIsTold) {
  WriteFileBytes("b.lan", LanOf<std::uint16_t>(kPackUInt16, 2, 1, {7, 9}));
  ui.files = {{"b.lan"}, {"out.lan"}};
  EXPECT_EQ(Run("Gradient Image"), CommandResult::Done);
  EXPECT_EQ(ReadFileBytes("out.lan"), LanOf<float>(kPackFloat, 2, 1, {0, 0}));
  EXPECT_EQ(ui.EventsWith("status").back(),
            std::string("status 0: Written to out.lan: 1 rows, 2 columns. Side files: GradientX.lan, "
                        "GradientY.lan.") +
                kUnfilteredText);
}

TEST_F(FilterCommandsTest, GradientWithoutASideFileWritesTheRestAndFails) {
  std::filesystem::create_directory("GradientX.lan");
  ui.files = {{"a.lan"}, {"out.lan"}};
  EXPECT_EQ(Run("Gradient Image"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Write file GradientX.lan error!"));
  EXPECT_EQ(ReadFileBytes("out.lan"), LanOf<float>(kPackFloat, 3, 1, {0.5f, 1.5f, 1}));
  EXPECT_EQ(ReadFileBytes("GradientY.lan"), LanOf<float>(kPackFloat, 3, 1, {0, 0, 0}));
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: Written to out.lan: 1 rows, 3 columns.");
}

TEST_F(FilterCommandsTest, GradientOfAnImageThatDoesNotOpenFails) {
  ExpectFailure("Gradient Image", {{"none.lan"}, {"out.lan"}}, {kNoOpenText});
}

TEST_F(FilterCommandsTest, GradientCancelledWritesNothing) {
  ExpectCancelAtEach("Gradient Image", "ff", {"a.lan", "out.lan"});
}

// Zero Crossing

// A step between columns 4 and 5.
std::initializer_list<std::uint8_t> StepPixels() {
  static const std::initializer_list<std::uint8_t> kPixels = {10, 10, 10, 10, 10, 90, 90, 90, 90, 90,
                                                              10, 10, 10, 10, 10, 90, 90, 90, 90, 90,
                                                              10, 10, 10, 10, 10, 90, 90, 90, 90, 90};
  return kPixels;
}

TEST_F(FilterCommandsTest, ZeroCrossingMarksAStepOnItsDarkSide) {
  WriteFileBytes("s.lan", LanOf<std::uint8_t>(kPackByte, 10, 3, StepPixels()));
  ui.files = {{"s.lan"}};
  ui.values = {1.0, 5.0};
  EXPECT_EQ(Run("Zero Crossing"), CommandResult::Done);
  ExpectChoosers("Choose an Image.");
  EXPECT_THAT(ui.EventsWith("value"),
              ElementsAre("value: Zero-crossing smoothing sigma: 3", "value: Zero-crossing threshold is: 0"));
  EXPECT_THAT(Files(), ElementsAre("a.lan", "s.lan", "s_0X.lan", "s_LoG.lan", "s_Pt.txt"));
  // Curvature is positive before the step up and negative behind it.
  const auto laplacian = PixelsIn<float>("s_LoG.lan");
  EXPECT_GT(laplacian[4], 10.0f);
  EXPECT_LT(laplacian[5], -10.0f);
  std::vector<std::uint8_t> marks(30, 0);
  for (const std::size_t row : {0, 1, 2}) marks[row * 10 + 4] = 255;
  EXPECT_EQ(PixelsIn<std::uint8_t>("s_0X.lan"), marks);
  EXPECT_EQ(ReadFileBytes("s_Pt.txt"), "0, 4, 0\n1, 4, 1\n2, 4, 2\n");
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: Written to s_LoG.lan: 3 rows, 10 columns.",
                                                   "status 0: Written to s_0X.lan: 3 rows, 10 columns.",
                                                   "status 0: Written to s_Pt.txt: 3 zero crossings."));
}

TEST_F(FilterCommandsTest, ZeroCrossingAsksAgainWhileANumberIsNegative) {
  ui.files = {{"a.lan"}};
  ui.values = {-1.0, -2.0, 1.0, -3.0, 0.0};
  EXPECT_EQ(Run("Zero Crossing"), CommandResult::Done);
  EXPECT_THAT(
      ui.EventsWith("value"),
      ElementsAre("value: Zero-crossing smoothing sigma: 3", "value: Zero-crossing smoothing sigma: -1",
                  "value: Zero-crossing smoothing sigma: -2", "value: Zero-crossing threshold is: 0",
                  "value: Zero-crossing threshold is: -3"));
  const std::string hint = "status 0: Please enter a number that is not negative.";
  const auto texts = ui.EventsWith("status");
  ASSERT_EQ(texts.size(), 6u);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(texts[i], hint);
}

TEST_F(FilterCommandsTest, ZeroCrossingThatAsksAgainMayBeCancelled) {
  ui.files = {{"a.lan"}};
  ui.values = {-1.0};
  EXPECT_EQ(Run("Zero Crossing"), CommandResult::Cancelled);
  EXPECT_THAT(Files(), ElementsAre("a.lan"));
}

TEST_F(FilterCommandsTest, ZeroCrossingTellsSigma0AndTypesWithoutAFilter) {
  ui.files = {{"a.lan"}};
  ui.values = {0.0, 0.0};
  EXPECT_EQ(Run("Zero Crossing"), CommandResult::Done);
  EXPECT_THAT(PixelsIn<float>("a_LoG.lan"), testing::Each(testing::IsNan()));
  EXPECT_EQ(ui.EventsWith("status").back(),
            std::string("status 0: Written to a_Pt.txt: 0 zero crossings.") + kSigma0Text);
  WriteFileBytes("b.lan", LanOf<std::uint16_t>(kPackUInt16, 2, 1, {7, 9}));
  ui.files = {{"b.lan"}};
  ui.values = {1.0, 0.0};
  EXPECT_EQ(Run("Zero Crossing"), CommandResult::Done);
  EXPECT_THAT(PixelsIn<float>("b_LoG.lan"), ElementsAre(0, 0));
  EXPECT_EQ(ui.EventsWith("status").back(),
            std::string("status 0: Written to b_Pt.txt: 0 zero crossings.") + kUnfilteredText);
}

TEST_F(FilterCommandsTest, ZeroCrossingMarksWith255InTheTypeOfTheImage) {
  WriteFileBytes("d.lan", LanOf<double>(kPackDouble, 4, 1, {0, 0, 100, 100}));
  ui.files = {{"d.lan"}};
  ui.values = {0.5, 0.0};
  EXPECT_EQ(Run("Zero Crossing"), CommandResult::Done);
  EXPECT_THAT(PixelsIn<double>("d_0X.lan"), testing::Contains(255.0));
  EXPECT_EQ(ReadFileBytes("d_0X.lan").substr(0, 128), ReadFileBytes("d.lan").substr(0, 128));
  EXPECT_EQ(ReadFileBytes("d_LoG.lan").substr(0, 128), BytesOf(HeaderOf(kPackFloat, 1, 4, 1)));
}

TEST_F(FilterCommandsTest, ZeroCrossingOfAnImageThroughGdalKeepsItsFilesTogether) {
  std::filesystem::create_directory("in");
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 8, 8), false), 1);
  FillWithPattern(image);
  ASSERT_EQ(image.Write("in/p.tif"), 1);
  ui.files = {{"in/p.tif"}};
  ui.values = {1.0, 0.0};
  EXPECT_EQ(Run("Zero Crossing"), CommandResult::Done);
  EXPECT_THAT(Files(), ElementsAre("a.lan", "in"));
  for (const char* name : {"in/p_LoG.lan", "in/p_0X.lan", "in/p_Pt.txt"}) {
    EXPECT_TRUE(std::filesystem::exists(name)) << name;
  }
  EXPECT_FALSE(std::filesystem::exists("in/p_temp.tif"));
}

TEST_F(FilterCommandsTest, ZeroCrossingWithASigmaThatMakesNoKernelFails) {
  for (const double sigma : {10001.0, 1e300, std::nan("")}) {
    ui.values = {sigma, 0.0};
    ExpectFailure("Zero Crossing", {{"a.lan"}}, {kSigmaText});
  }
}

TEST_F(FilterCommandsTest, ZeroCrossingOfAnImageThatDoesNotOpenFails) {
  ui.values = {1.0, 0.0};
  ExpectFailure("Zero Crossing", {{"none.lan"}}, {kNoOpenText});
}

TEST_F(FilterCommandsTest, ZeroCrossingTellsEachFileThatCannotBeWritten) {
  for (const char* name : {"a_LoG.lan", "a_Pt.txt"}) std::filesystem::create_directory(name);
  ui.files = {{"a.lan"}};
  ui.values = {1.0, 0.0};
  EXPECT_EQ(Run("Zero Crossing"), CommandResult::Failed);
  EXPECT_THAT(Messages(), ElementsAre("message warning: Write file a_LoG.lan error!",
                                      "message warning: Open file a_Pt.txt error!"));
  EXPECT_EQ(PixelsIn<std::uint8_t>("a_0X.lan").size(), 3u);
}

TEST_F(FilterCommandsTest, ZeroCrossingOnAFullDiskLeavesNothing) {
  ui.values = {1.0, 0.0};
  const FileSizeLimit limit(64);
  ExpectFailure("Zero Crossing", {{"a.lan"}}, {"message warning: Write file a_temp.lan error!"});
}

TEST_F(FilterCommandsTest, ZeroCrossingCancelledWritesNothing) {
  ExpectCancelAtEach("Zero Crossing", "fvv", {"a.lan"});
}

}  // namespace
}  // namespace corvane
