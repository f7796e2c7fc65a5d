// "Area (Feature CC)" from its form to its files.

#include "StereoPair/GridFixture.h"

namespace corvane {

namespace {

// The method as it is told: rows from 1 % to 99 % of the height, every tenth one, and in them the columns
// whose feature byte is above 0.
std::vector<PlainPair> PlainFeatures(const PlainImage& left, const PlainImage& right,
                                     const std::string& features, const PlainSettings& settings) {
  const auto score = PlainCorrelation(left, right, settings.width, settings.height);
  const long halfW = settings.width / 2;
  std::vector<PlainPair> pairs;
  const long end = std::min(static_cast<long>(static_cast<double>(left.rows) * 0.99), right.cols - 1);
  for (long row = std::max(left.rows / 100, 1L); row < end; row += 10) {
    for (long col = 0; col < left.cols; ++col) {
      const auto index = static_cast<std::size_t>(128 + row * left.cols + col);
      if (index >= features.size() || features[index] == '\0') continue;
      const long s = col + settings.offset;
      if (s - settings.range > right.cols || s + settings.range < 0) continue;
      PlainPlace place{std::min(std::max(s, halfW), right.cols - halfW), row};
      const double value =
          PlainBest(score, {col, row}, place, {s - settings.range, row - 1, s + settings.range, row + 1});
      if (value > settings.threshold) pairs.push_back({{col, row}, place, value});
    }
  }
  return pairs;
}

class AreaFeatureTest : public GridMethodTest {
 protected:
  // A feature file with every `step`-th pixel set.
  static std::string Features(const PlainImage& left, std::size_t step) {
    VerticalPair made(static_cast<std::int32_t>(left.cols), static_cast<std::int32_t>(left.rows));
    const auto band = made.left.image.GetBands().GetBand(0);
    for (std::size_t i = 0; i < band.size(); i += step) band[i] = i % 2 == 0 ? 255 : 1;
    made.left.image.Write("l_0X.lan");
    return ReadFileBytes("l_0X.lan");
  }

  std::vector<PlainPair> ExpectAsPlain(const PlainImage& left, const PlainImage& right,
                                       const std::string& features, const PlainSettings& settings) {
    const auto expected = PlainFeatures(left, right, features, settings);
    WriteFileBytes("l_0X.lan", features);
    Store(left, right);
    Answer(settings);
    EXPECT_EQ(pair_.MatchAreaFeatureCC(), StereoPair::kDone);
    EXPECT_EQ(pair_.matchPairs.size(), expected.size());
    for (std::size_t i = 0; i < std::min(expected.size(), pair_.matchPairs.size()); ++i) {
      const auto& [left_, right_, value] = expected[i];
      const MatchPair pair{static_cast<std::int32_t>(i),
                           {static_cast<double>(left_.col), static_cast<double>(left_.row)},
                           {static_cast<double>(right_.col), static_cast<double>(right_.row)},
                           value};
      EXPECT_EQ(pair_.matchPairs[i], pair) << i;
    }
    return expected;
  }
};

TEST_F(AreaFeatureTest, ShiftedImageGivesItsShiftAtFeatures) {
  const PlainImage left = RandomImage(90, 40, 1);
  const auto pairs =
      ExpectAsPlain(left, Shifted(left, 12, 0, 2), Features(left, 7), {.threshold = 0.9, .range = 5});
  ASSERT_FALSE(pairs.empty());
  EXPECT_EQ(pairs[0].left.row, 1);  // 1 % is row 0, raised to the row tolerance
  ExpectGround(pairs);
  EXPECT_FALSE(FileExists("l_GridMatchPair.txt"));
  EXPECT_TRUE(FileExists("out.pts"));
  EXPECT_EQ(ui_.EventsWith("value: "), std::vector<std::string>{"value: Please input a value. -10"});
  EXPECT_EQ(pair_.leftFeatureFile, nullptr);
  EXPECT_EQ(ui_.waitDepth, 0);
}

TEST_F(AreaFeatureTest, OutcomeCountsFeatures) {
  const PlainImage left = RandomImage(50, 21, 3);
  std::string features(128 + 50 * 21, '\0');
  for (const int col : {5, 25, 30}) features[static_cast<std::size_t>(128 + 11 * 50 + col)] = '\1';
  features[128 + 12 * 50 + 20] = '\1';  // no tenth row from 1 on
  ExpectAsPlain(left, left, features, {.threshold = 0.9, .range = 2, .offset = 0});
  EXPECT_TRUE(
      LastStatus().starts_with("3 of 3 places matched. Without a place (parallel rays, or no numbers): 3 "
                               "points. Written: GroundPts.log, out.pts (3 points)."));
}

TEST_F(AreaFeatureTest, ThresholdStaysThatOfTheCommandBefore) {
  pair_.matchThreshold = 0.625;
  EXPECT_EQ(pair_.MatchAreaFeatureCC(), StereoPair::kCancelled);
  EXPECT_EQ(ui_.shownForms[0].GetReal("matchThreshold"), 0.625);
  EXPECT_EQ(ui_.shownForms[0].GetInteger("maxDisparity"), 55);
  EXPECT_EQ(ui_.events, std::vector<std::string>{"form: MatchInput"});
}

TEST_F(AreaFeatureTest, RowsFromOneToNinetyNinePercent) {
  const PlainImage left = RandomImage(20, 350, 4);
  const PlainImage right = RandomImage(400, 350, 5);
  const auto pairs =
      ExpectAsPlain(left, right, Features(left, 1), {.width = 3, .height = 3, .threshold = 0.1, .range = 3});
  ASSERT_FALSE(pairs.empty());
  EXPECT_EQ(pairs.front().left.row, 3);   // 350 / 100
  EXPECT_EQ(pairs.back().left.row, 343);  // below 346
}

TEST_F(AreaFeatureTest, LastRowIsHeldBelowTheColumnsOfTheRightImage) {
  const PlainImage left = RandomImage(40, 200, 6);
  const PlainImage right = RandomImage(53, 200, 7);
  const auto pairs =
      ExpectAsPlain(left, right, Features(left, 1), {.width = 3, .height = 3, .threshold = 0.1, .range = 3});
  ASSERT_FALSE(pairs.empty());
  EXPECT_EQ(pairs.back().left.row, 42);  // rows 2, 12, ... below 53 - 1
}

TEST_F(AreaFeatureTest, WindowsBesideTheImageSeeZeros) {
  // Flat parts: a flat window scores 1.0 with any other, first with the start, then with the first of the
  // rectangle, which may lie far beside the image.
  PlainImage left = RandomImage(60, 30, 8, 3);
  for (std::size_t i = 0; i < left.bytes.size(); ++i) {
    if (i % 60 < 25) left.bytes[i] = 9;
  }
  const PlainImage right = RandomImage(60, 30, 9, 3);
  for (const long range : {0L, 3L, 20L, 80L, 200L}) {
    for (const long offset : {-70L, -10L, 0L, 45L, 64L}) {
      ExpectAsPlain(left, right, Features(left, 1),
                    {.width = 5, .height = 5, .threshold = 0.2, .range = range, .offset = offset});
    }
  }
}

TEST_F(AreaFeatureTest, HugeRangeReachesFarBesideTheImage) {
  const PlainImage flat{40, 20, std::vector<std::uint8_t>(800, 7)};
  const PlainImage noise = RandomImage(40, 20, 10);
  Store(flat, noise);
  std::string features(128 + 800, '\0');
  features[128 + 11 * 40 + 12] = '\1';
  WriteFileBytes("l_0X.lan", features);
  Answer({.threshold = 0.5, .range = 2000000000, .offset = 0});
  EXPECT_EQ(pair_.MatchAreaFeatureCC(), StereoPair::kDone);
  ASSERT_EQ(pair_.matchPairs.size(), 1U);
  EXPECT_EQ(pair_.matchPairs[0].right, (Point2{12.0 - 2000000000.0, 10.0}));
  EXPECT_EQ(pair_.matchPairs[0].score, 1.0);
}

TEST_F(AreaFeatureTest, HugeOffsetsFindNothing) {
  const PlainImage left = RandomImage(40, 20, 11);
  for (const long offset : {-2000000000L, 2000000000L}) {
    for (const long range : {-2000000000L, 0L, 5L}) {
      EXPECT_TRUE(
          ExpectAsPlain(left, left, Features(left, 3), {.threshold = 0.1, .range = range, .offset = offset})
              .empty());
    }
  }
}

TEST_F(AreaFeatureTest, FeatureFileThatIsCutShortIsZeroThere) {
  const PlainImage left = RandomImage(40, 30, 12);
  const std::string features = Features(left, 3);
  ExpectAsPlain(left, left, features.substr(0, 128 + 11 * 40 + 20),
                {.threshold = 0.9, .range = 1, .offset = 0});
  EXPECT_TRUE(ExpectAsPlain(left, left, features.substr(0, 100), {.offset = 0}).empty());
  EXPECT_TRUE(LastStatus().ends_with(" l_0X.lan is no image of bytes of the left image's size."));
  EXPECT_TRUE(ExpectAsPlain(left, left, "", {.offset = 0}).empty());
  EXPECT_TRUE(LastStatus().starts_with("There is no feature in the rows 1, 11, 21. Written: "));
}

TEST_F(AreaFeatureTest, WithoutFeaturesTheRowsAreTold) {
  const auto outcome = [this](long cols, long rows) {
    const PlainImage left = RandomImage(cols, rows, 19);
    Store(left, left);
    WriteFileBytes("l_0X.lan", std::string(static_cast<std::size_t>(128 + cols * rows), '\0'));
    Answer({.offset = 0});
    EXPECT_EQ(pair_.MatchAreaFeatureCC(), StereoPair::kDone);
    return LastStatus().substr(0, LastStatus().find(" Written"));
  };
  EXPECT_EQ(outcome(900, 345), "There is no feature in the rows 3, 13, ..., 333.");  // below 341
  EXPECT_EQ(outcome(60, 32), "There is no feature in the rows 1, 11, 21.");          // below 31
  EXPECT_EQ(outcome(60, 20), "There is no feature in the rows 1, 11.");
  EXPECT_EQ(outcome(60, 9), "There is no feature in the row 1.");
  EXPECT_EQ(outcome(3, 200),
            "There is no row to match: they begin at 2, and end before 2.");  // 3 - 1 columns
}

TEST_F(AreaFeatureTest, FeaturesBesideTheRightImageAreTold) {
  const PlainImage left = RandomImage(50, 11, 20);
  std::string features(128 + 50 * 11, '\0');
  for (const int col : {4, 5, 30}) features[static_cast<std::size_t>(128 + 50 + col)] = '\1';
  ExpectAsPlain(left, left, features, {.threshold = 0.99, .range = 2, .offset = -7});
  EXPECT_TRUE(LastStatus().starts_with(
      "0 of 3 places matched. Beside the right image at this offset: 1 place. Written: "));  // -5 to -1
}

TEST_F(AreaFeatureTest, FeatureFileOfAnotherSizeIsTold) {
  const PlainImage left = RandomImage(40, 30, 13);
  const std::string features = Features(RandomImage(30, 30, 14), 5);
  ExpectAsPlain(left, left, features, {.threshold = 0.9, .range = 1, .offset = 0});
  EXPECT_TRUE(LastStatus().ends_with(". l_0X.lan is no image of bytes of the left image's size."));
}

TEST_F(AreaFeatureTest, MissingFeatureFile) {
  const PlainImage left = RandomImage(40, 30, 15);
  Store(left, left);
  Answer({});
  EXPECT_EQ(pair_.MatchAreaFeatureCC(), StereoPair::kNoInput);
  EXPECT_EQ(ui_.EventsWith("message"),
            std::vector<std::string>{"message message: Open file Zero-crossing file(s) error!"});
  EXPECT_EQ(LastStatus(), "l_0X.lan does not open. Image > Zero Crossing writes it.");
  EXPECT_TRUE(ui_.EventsWith("value: ").empty()) << "before the offset is asked for";
  EXPECT_EQ(pair_.leftFeatureFile, nullptr);
  EXPECT_EQ(pair_.leftPhoto, nullptr);
  EXPECT_FALSE(FileExists("GroundPts.log"));
  EXPECT_EQ(ui_.waitDepth, 0);
}

TEST_F(AreaFeatureTest, ResultThatIsTheFeatureFileIsRefused) {
  const PlainImage left = RandomImage(40, 30, 16);
  Store(left, left);
  const std::string features = Features(left, 3);
  Answer({});
  Change([](Form& form) { form.Find("matchedPoints")->value = std::string("./l_0X.lan"); });
  EXPECT_EQ(pair_.MatchAreaFeatureCC(), StereoPair::kNotWritten);
  EXPECT_EQ(ui_.EventsWith("message").size(), 1U);
  EXPECT_TRUE(ui_.EventsWith("value: ").empty());
  EXPECT_EQ(ReadFileBytes("l_0X.lan"), features);
}

TEST_F(AreaFeatureTest, CancelOfOffsetGoesOnWithMinusTen) {
  const PlainImage left = RandomImage(40, 30, 17);
  Store(left, left);
  Features(left, 3);
  Answer({.range = 1});
  ui_.values.clear();
  EXPECT_EQ(pair_.MatchAreaFeatureCC(), StereoPair::kDone);
  EXPECT_EQ(pair_.columnOffset, -10);
}

TEST_F(AreaFeatureTest, TellsProgressOnceARow) {
  const PlainImage left = RandomImage(40, 31, 18);
  pair_.progressWindow = &ui_;
  ExpectAsPlain(left, left, Features(left, 9), {.range = 1, .offset = 0});
  const std::vector<std::string> expected = {"status 0: Done 0% ...", "status 0: Done 33% ...",
                                             "status 0: Done 66% ..."};
  EXPECT_EQ(ui_.EventsWith("status 0: Done"), expected);  // rows 1, 11, 21, below 30
}

}  // namespace

}  // namespace corvane
