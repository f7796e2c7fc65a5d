// "Area Correlation" from its form to its files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

#include "StereoPair/DenseScene.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class DenseCommand : public testing::Test {
 protected:
  DenseCommand() {
    TexturedPair made;
    StorePhoto(made.left, "left");
    StorePhoto(made.right, "right");
  }

  TempFolder folder_;
  TestFrontEnd frontEnd_;
  StereoPair pair_;
};

TEST_F(DenseCommand, AsksMatchesAndWrites) {
  frontEnd_.forms.push_back(
      FilledForm([](Form& form) { form.Find("maxDisparity")->value = std::int64_t{3}; }));
  frontEnd_.values = {-3.9};
  pair_.matchThreshold = 0.1;
  pair_.maxDisparity = 10;
  ASSERT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kDone);

  ASSERT_EQ(frontEnd_.shownForms.size(), 1u);
  EXPECT_EQ(frontEnd_.shownForms[0].GetReal("matchThreshold"), 0.75);
  EXPECT_EQ(frontEnd_.shownForms[0].GetInteger("maxDisparity"), 55);
  EXPECT_THAT(frontEnd_.EventsWith("value"), ElementsAre("value: Please input a value. -10"));
  EXPECT_EQ(pair_.columnOffset, -3);
  EXPECT_EQ(frontEnd_.waitDepth, 0);
  EXPECT_EQ(pair_.leftPhoto, nullptr);

  TexturedPair made;
  const auto expected = made.PlainMapsAtOffset();
  ExpectMaps(pair_, expected);
  ErdasImg disparities, scores;
  ASSERT_EQ(disparities.Read("left_DispMap.lan"), 1);
  ExpectBytes(disparities, expected.disparities);
  ASSERT_EQ(scores.Read("left_MeasureMap.lan"), 1);
  ExpectBytes(scores, expected.scores);
  int nMatched = 0;
  for (int row = 2; row < kRows - 2; ++row) {
    for (int col = 3; col < kCols - 3; ++col) nMatched += PixelAt(disparities, row, col) != -128.0;
  }
  EXPECT_EQ(frontEnd_.events.back(),
            "status 0: " + std::to_string(nMatched) +
                " of 680 places matched. Written: left_DispMap.lan, left_MeasureMap.lan.");
}

TEST_F(DenseCommand, CancelledFormEndsIt) {
  EXPECT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kCancelled);
  EXPECT_THAT(frontEnd_.events, ElementsAre("form: MatchInput"));
}

TEST_F(DenseCommand, CancelledOffsetEndsIt) {
  frontEnd_.forms.push_back(FilledForm());
  pair_.columnOffset = 77;
  EXPECT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kCancelled);
  EXPECT_EQ(pair_.columnOffset, 77);
  EXPECT_EQ(pair_.leftPhoto, nullptr);
  EXPECT_EQ(frontEnd_.waitDepth, 0);
  EXPECT_FALSE(std::filesystem::exists("left_DispMap.lan"));
  EXPECT_THAT(frontEnd_.EventsWith("message"), IsEmpty());
}

TEST_F(DenseCommand, MissingImageEndsIt) {
  frontEnd_.forms.push_back(FilledForm());
  frontEnd_.values = {0.0};
  std::filesystem::remove("right.lan");
  EXPECT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kNotLoaded);
  EXPECT_THAT(frontEnd_.EventsWith("value"), IsEmpty());
  EXPECT_EQ(pair_.leftPhoto, nullptr);
}

TEST_F(DenseCommand, ResultThatReplacesAnInputIsRefused) {
  std::filesystem::rename("right.lan", "left_DispMap.lan");
  std::filesystem::rename("right.orn", "left_DispMap.orn");
  frontEnd_.forms.push_back(
      FilledForm([](Form& form) { form.Find("rightImage")->value = std::string("left_DispMap.lan"); }));
  frontEnd_.values = {0.0};
  const std::string before = ReadFileBytes("left_DispMap.lan");
  EXPECT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kNotWritten);
  EXPECT_THAT(frontEnd_.EventsWith("message"),
              ElementsAre("message warning: Write file left_DispMap.lan error!\n"
                          "It is one of the files that the command reads."));
  EXPECT_EQ(ReadFileBytes("left_DispMap.lan"), before);
  EXPECT_EQ(pair_.leftPhoto, nullptr);
}

TEST_F(DenseCommand, ResultThatCannotBeWrittenIsTold) {
  std::filesystem::create_directory("left_DispMap.lan");
  frontEnd_.forms.push_back(FilledForm());
  frontEnd_.values = {-3.0};
  EXPECT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kNotWritten);
  EXPECT_THAT(frontEnd_.EventsWith("message"), ElementsAre(HasSubstr("Write file left_DispMap.lan error!")));
  EXPECT_THAT(frontEnd_.events.back(), HasSubstr(" Written: left_MeasureMap.lan."));
}

TEST_F(DenseCommand, SpacingThatIsNotAboveZeroIsTold) {
  for (const double spacing : {0.0, -2.0, kNaN}) {
    frontEnd_.forms = {FilledForm([spacing](Form& form) { form.Find("groundSpacing")->value = spacing; })};
    frontEnd_.values = {-3.0};
    EXPECT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kDone);
    EXPECT_EQ(frontEnd_.events.back(),
              "status 0: There is no place to match in the left image. The ground spacing is not above 0. "
              "Written: left_DispMap.lan, left_MeasureMap.lan.");
  }
}

TEST_F(DenseCommand, NothingToMatchIsTold) {
  frontEnd_.forms.push_back(
      FilledForm([](Form& form) { form.Find("windowWidth")->value = std::int64_t{1000}; }));
  frontEnd_.values = {-3.0};
  EXPECT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kDone);
  EXPECT_EQ(frontEnd_.events.back(),
            "status 0: There is no place to match in the left image. "
            "Written: left_DispMap.lan, left_MeasureMap.lan.");
}

TEST_F(DenseCommand, ReadsTheDemOfTheForm) {
  FloatImage(kCols, kRows, std::vector<double>(kCols * kRows, 4.0)).Write("truth.lan");
  frontEnd_.forms.push_back(FilledForm([](Form& form) {
    form.Find("demFile")->value = std::string("truth.lan");
    form.Find("demAccuracy")->value = 1.0;
  }));
  frontEnd_.values = {100.0};
  ASSERT_EQ(pair_.DenseAreaCorrelation(), StereoPair::kDone);
  TexturedPair made;
  ExpectMaps(pair_, PlainDense(
                        made.pair, [](int, int) { return 4.0; }, 1, 1));
}

}  // namespace
}  // namespace corvane
