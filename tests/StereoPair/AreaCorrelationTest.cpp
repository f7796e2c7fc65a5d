// "Area (Correlation Coeff)" from its form to its files.

#include <gmock/gmock.h>

#include <filesystem>
#include <new>

#include "StereoPair/GridFixture.h"
#include "StereoPair/GridMatching.h"
#include "TIN/TINPoints.h"

namespace corvane {

namespace {

class AreaCorrelationTest : public GridMethodTest {
 protected:
  // Runs the method and the plain one on the same pair, and compares their pair files.
  std::vector<PlainPair> ExpectAsPlain(const PlainImage& left, const PlainImage& right,
                                       const PlainSettings& settings) {
    const auto score = PlainCorrelation(left, right, settings.width, settings.height);
    const auto expected = PlainBestGrid(left, right, settings, score);
    ExpectPairs(&StereoPair::MatchAreaCC, left, right, settings, expected);
    return expected;
  }
};

TEST_F(AreaCorrelationTest, ShiftedImageGivesItsShiftEverywhere) {
  const PlainImage left = RandomImage(90, 60, 1);
  const auto pairs = ExpectAsPlain(left, Shifted(left, 12, 0, 2), {.range = 8});
  ASSERT_EQ(pairs.size(), 42U);  // columns 23 to 83 and 3 and 13, of which the first two lack a partner
  for (const PlainPair& pair : pairs) {
    EXPECT_EQ(pair.left.col - pair.right.col, 12);
    EXPECT_EQ(pair.left.row, pair.right.row);
  }
  ExpectGround(pairs);
  EXPECT_EQ(LastStatus(),
            "42 of 54 places matched. Beside the right image at this offset: 6 places. Written: "
            "GroundPts.log, out.pts (42 points), l_GridMatchPair.txt.");  // those of column 3: -15 to 1
}

TEST_F(AreaCorrelationTest, AsksForFormThenOffset) {
  const PlainImage left = RandomImage(60, 40, 3);
  ExpectAsPlain(left, left, {.range = 3, .offset = 0});
  ASSERT_EQ(ui_.shownForms.size(), 1U);
  EXPECT_EQ(ui_.shownForms[0].GetInteger("windowWidth"), 19);
  ExpectAsked(0.75);
  EXPECT_EQ(ui_.waitDepth, 0);
  EXPECT_EQ(pair_.leftPhoto, nullptr);
  EXPECT_EQ(pair_.leftImage, nullptr);
}

TEST_F(AreaCorrelationTest, CancelOfFormLeavesNothing) {
  ExpectCancelledForm(&StereoPair::MatchAreaCC);
  EXPECT_EQ(pair_.matchThreshold, 0.75);
  EXPECT_EQ(pair_.maxDisparity, 55);
}

TEST_F(AreaCorrelationTest, CancelOfOffsetGoesOnWithMinusTen) {
  const PlainImage left = RandomImage(80, 40, 4);
  ExpectCancelledOffset(&StereoPair::MatchAreaCC, left, Shifted(left, 10, 0, 5), 1);
  EXPECT_FALSE(pair_.matchPairs.empty());
}

TEST_F(AreaCorrelationTest, OffsetIsCutToWholeColumns) {
  const PlainImage left = RandomImage(60, 40, 6);
  Store(left, left);
  Answer({.range = 3});
  ui_.values = {-7.9};
  EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kDone);
  EXPECT_EQ(pair_.columnOffset, -7);
}

TEST_F(AreaCorrelationTest, FewGreysAreFullOfTies) {
  const PlainImage left = RandomImage(70, 40, 7, 2);
  ExpectAsPlain(left, Shifted(left, 9, 1, 8), {.width = 3, .height = 3, .step = 7.0, .threshold = 0.5});
  ExpectAsPlain(left, left,
                {.width = 3, .height = 3, .step = 4.0, .threshold = 0.3, .range = 0, .offset = 0});
}

TEST_F(AreaCorrelationTest, FlatWindowsMatchWithOne) {
  const PlainImage flat{60, 40, std::vector<std::uint8_t>(60 * 40, 9)};
  const auto pairs = ExpectAsPlain(flat, flat, {.range = 4, .offset = 0});
  ASSERT_FALSE(pairs.empty());
  EXPECT_EQ(pairs[0].score, 1.0);
  EXPECT_EQ(pairs[1].right.col, pairs[1].left.col);  // the start comes first
  EXPECT_TRUE(ExpectAsPlain(RandomImage(60, 40, 9), flat, {.range = 4}).empty());
}

TEST_F(AreaCorrelationTest, EvenAndUnequalWindows) {
  const PlainImage left = RandomImage(80, 50, 10);
  ExpectAsPlain(left, Shifted(left, 10, -1, 11), {.width = 6, .height = 4, .step = 7.3, .range = 5});
  ExpectAsPlain(left, Shifted(left, 10, 1, 12), {.width = 5, .height = 12, .step = 3.7, .range = 2});
}

TEST_F(AreaCorrelationTest, RangeOfZeroAndNegativeRange) {
  const PlainImage left = RandomImage(60, 40, 13);
  ExpectAsPlain(left, Shifted(left, 10, 0, 14), {.range = 0});
  ExpectAsPlain(left, Shifted(left, 10, 0, 14), {.range = -3});
}

TEST_F(AreaCorrelationTest, ImagesOfDifferentSizes) {
  const PlainImage left = RandomImage(80, 60, 15);
  const PlainImage small = RandomImage(30, 20, 16, 3);
  ExpectAsPlain(left, small, {.width = 3, .height = 3, .threshold = 0.4, .range = 20});
  ExpectAsPlain(small, left, {.width = 3, .height = 3, .step = 4.0, .threshold = 0.4});
}

TEST_F(AreaCorrelationTest, WindowsAtLeftAndRightClip) {
  const PlainImage left = RandomImage(60, 40, 17);
  for (const long offset : {-63L, -57L, -30L, 30L, 57L, 60L, 63L, 64L}) {
    ExpectAsPlain(left, Shifted(left, 3, 0, 18),
                  {.step = 6.0, .threshold = 0.1, .range = 6, .offset = offset});
  }
}

TEST_F(AreaCorrelationTest, WindowLargerThanRightImage) {
  const PlainImage left = RandomImage(40, 40, 19);
  const PlainImage tiny = RandomImage(4, 3, 20);
  ExpectAsPlain(left, tiny, {.width = 9, .height = 9, .threshold = 0.0});
}

TEST_F(AreaCorrelationTest, WindowLargerThanLeftImageHasNoPlaces) {
  const PlainImage tiny = RandomImage(5, 5, 21);
  EXPECT_TRUE(ExpectAsPlain(tiny, RandomImage(40, 40, 22), {.width = 9, .height = 9}).empty());
  EXPECT_EQ(LastStatus(),
            "The window is larger than the left image: there is no place to match. Written: GroundPts.log, "
            "l_GridMatchPair.txt. out.pts is not written: there are no points.");
  EXPECT_FALSE(FileExists("out.pts"));
}

TEST_F(AreaCorrelationTest, SpacingThatIsNoPositiveNumberEndsWithoutPoints) {
  const PlainImage left = RandomImage(40, 40, 23);
  Store(left, left);
  for (const double spacing : {0.0, -1.0, std::nan("")}) {
    Answer({});
    Change([spacing](Form& form) { form.Find("groundSpacing")->value = spacing; });
    EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kDone);
    EXPECT_TRUE(pair_.matchPairs.empty());
    EXPECT_THAT(LastStatus(), testing::StartsWith("The ground spacing is not above 0: "));
  }
}

TEST_F(AreaCorrelationTest, SpacingBelowAPixelIsTold) {
  const PlainImage left = RandomImage(20, 12, 43);
  ExpectAsPlain(left, left, {.step = 0.5, .range = 1, .offset = 0});
  EXPECT_THAT(LastStatus(), testing::EndsWith(" The ground spacing is below a pixel: places repeat."));
  ExpectAsPlain(left, left, {.step = 2.0, .range = 1, .offset = 0});
  EXPECT_THAT(LastStatus(), testing::Not(testing::HasSubstr("repeat")));
}

TEST_F(AreaCorrelationTest, NegativeMaxDisparityIsTold) {
  const PlainImage left = RandomImage(60, 40, 44);
  ExpectAsPlain(left, left, {.range = -1, .offset = 0});
  EXPECT_THAT(LastStatus(),
              testing::StartsWith("0 of 24 places matched. Max Disparity is negative: the range "
                                  "of columns is empty. Written: "));
}

TEST_F(AreaCorrelationTest, PlacesBesideTheRightImageAreTold) {
  // Columns 3 to 53 and 100 - 2 more are 101 and beyond: behind column 60, and so are all places.
  const PlainImage left = RandomImage(60, 40, 45);
  ExpectAsPlain(left, left, {.range = 2, .offset = 100});
  EXPECT_THAT(LastStatus(), testing::StartsWith("0 of 24 places matched. Beside the right image at this "
                                                "offset: 24 places. Written: "));
}

TEST_F(AreaCorrelationTest, PointsWithoutAPlaceAreTold) {
  // Photos of one place and no disparity: all rays of partners are parallel.
  const PlainImage left = RandomImage(60, 40, 46);
  Store(left, left, 0.0);
  Answer({.range = 2, .offset = 0});
  EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kDone);
  EXPECT_THAT(LastStatus(), testing::StartsWith(
                                "24 of 24 places matched. Without a place (parallel rays, or no numbers): 24 "
                                "points. Written: GroundPts.log, out.pts (24 points), "));
  const std::string log = ReadFileBytes("GroundPts.log");
  EXPECT_THAT(log, testing::StartsWith("nan nan nan 1\n"));
  EXPECT_THAT(log, testing::Not(testing::HasSubstr("-nan")));
}

TEST_F(AreaCorrelationTest, ResultThatIsAnotherResultIsRefused) {
  const PlainImage left = RandomImage(60, 40, 47);
  Store(left, left);
  for (const std::string path : {"l_GridMatchPair.txt", "./l_GridMatchPair.txt", "GroundPts.log"}) {
    ui_.events.clear();
    Answer({});
    Change([path](Form& form) { form.Find("matchedPoints")->value = path; });
    EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kNotWritten);
    EXPECT_EQ(ui_.EventsWith("message"),
              std::vector<std::string>{"message warning: Write file " + path +
                                       " error!\nIt is another result of the command."});
    EXPECT_TRUE(ui_.EventsWith("value: ").empty());
    EXPECT_FALSE(FileExists(path));
  }
  EXPECT_EQ(pair_.leftPhoto, nullptr);
  EXPECT_EQ(ui_.waitDepth, 0);
}

TEST_F(AreaCorrelationTest, LinksToOneResultAreRefused) {
  const PlainImage left = RandomImage(60, 40, 48);
  Store(left, left);
  WriteFileBytes("GroundPts.log", "of before");
  std::filesystem::create_symlink("GroundPts.log", "out.pts");
  Answer({});
  EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kNotWritten);
  EXPECT_EQ(ReadFileBytes("GroundPts.log"), "of before");
}

TEST_F(AreaCorrelationTest, EmptyLeftImageFieldNamesNoFile) {
  WriteFileBytes(".ORN", "of something else");
  Answer({});
  Change([](Form& form) { form.Find("leftImage")->value = std::string(); });
  EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kNotLoaded);
  EXPECT_EQ(ui_.EventsWith("message"),
            std::vector<std::string>{"message message: Open Left Orientation Parameters File error!"});
  EXPECT_EQ(LastStatus(), "Left Orientation Parameters File: no file is named.");
  EXPECT_TRUE(ui_.EventsWith("value: ").empty());
}

TEST_F(AreaCorrelationTest, NoPointsLeaveAnOlderPointsFile) {
  const PlainImage flat{40, 30, std::vector<std::uint8_t>(40 * 30, 9)};
  WriteFileBytes("out.pts", "of before");
  ExpectAsPlain(flat, flat, {.threshold = 1.0, .offset = 0});
  EXPECT_THAT(LastStatus(),
              testing::EndsWith(" out.pts is not written: there are no points. An older one stays."));
  EXPECT_EQ(ReadFileBytes("out.pts"), "of before");
}

TEST_F(AreaCorrelationTest, HugeOffsetsAndRanges) {
  const PlainImage left = RandomImage(40, 30, 24);
  const long huge = 2000000000;
  for (const long offset : {-huge, -10L, huge}) {
    for (const long range : {-huge, 3L, huge, 2147483647L}) {
      const PlainSettings settings{.threshold = 0.2, .range = range, .offset = offset};
      const auto pairs = ExpectAsPlain(left, Shifted(left, 4, 0, 25), settings);
      EXPECT_EQ(pairs.empty(), offset == -10 ? range < 0 : range < huge);
    }
  }
}

TEST_F(AreaCorrelationTest, OffsetBeyond32BitsIsHeldThere) {
  const PlainImage left = RandomImage(40, 30, 26);
  Store(left, left);
  for (const double offset : {1e300, -1e300}) {
    Answer({});
    ui_.values = {offset};
    EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kDone);
    EXPECT_EQ(pair_.columnOffset, offset > 0.0 ? INT32_MAX : INT32_MIN);
    EXPECT_TRUE(pair_.matchPairs.empty());
  }
}

TEST_F(AreaCorrelationTest, ScoreEqualToThresholdIsRejected) {
  const PlainImage flat{40, 30, std::vector<std::uint8_t>(40 * 30, 9)};
  EXPECT_TRUE(ExpectAsPlain(flat, flat, {.threshold = 1.0, .offset = 0}).empty());
  EXPECT_EQ(
      LastStatus(),
      "0 of 12 places matched. Written: GroundPts.log, l_GridMatchPair.txt. out.pts is not written: there "
      "are no points.");
  EXPECT_EQ(ReadFileBytes("GroundPts.log"), "");
}

TEST_F(AreaCorrelationTest, GroundPointsHaveTheOriginsAndPairsDoNot) {
  const PlainImage left = RandomImage(60, 40, 27);
  const PlainImage right = Shifted(left, 10, 0, 28);
  Store(left, right, 10.0, {.x = 30, .y = 20}, {.x = 25, .y = 20});
  Answer({.range = 2});
  EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kDone);
  std::vector<PlainPair> pairs;
  for (const MatchPair& pair : pair_.matchPairs) {
    EXPECT_EQ(pair.left.x - pair.right.x, 10.0);
    const auto col = static_cast<long>(pair.left.x);
    const auto row = static_cast<long>(pair.left.y);
    pairs.push_back({{col, row}, {col - 10, row}, 1.0});
  }
  ASSERT_FALSE(pairs.empty());
  ExpectGround(pairs, 10.0, {.x = 30, .y = 20}, {.x = 25, .y = 20});
}

TEST_F(AreaCorrelationTest, SecondRunAppendsPointsWithIdsFromZero) {
  const PlainImage left = RandomImage(60, 40, 29);
  const auto pairs = ExpectAsPlain(left, Shifted(left, 10, 0, 30), {.range = 2});
  ASSERT_FALSE(pairs.empty());
  const auto n = static_cast<std::int32_t>(pairs.size());
  EXPECT_EQ(pair_.groundPoints->GetCount(), n);
  ExpectAsPlain(left, Shifted(left, 10, 0, 30), {.range = 2});
  ASSERT_EQ(pair_.groundPoints->GetCount(), 2 * n);
  const auto ids = SortedIds();
  for (std::size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(ids[i], static_cast<std::int32_t>(i / 2));
  EXPECT_EQ(pair_.matchPairs.size(), pairs.size());
  TINPoints written;
  EXPECT_EQ(written.Read("out.pts"), 1);
  EXPECT_EQ(written.GetCount(), 2 * n);
}

TEST_F(AreaCorrelationTest, ThresholdAndRangeAreSetAgainOthersStay) {
  const PlainImage left = RandomImage(60, 40, 31);
  ExpectAsPlain(left, left, {.width = 9, .height = 5, .threshold = 0.6, .range = 3});
  EXPECT_EQ(pair_.matchThreshold, 0.6);
  EXPECT_EQ(pair_.maxDisparity, 3);
  EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kCancelled);
  ASSERT_EQ(ui_.shownForms.size(), 2U);
  EXPECT_EQ(ui_.shownForms[1].GetReal("matchThreshold"), 0.75);
  EXPECT_EQ(ui_.shownForms[1].GetInteger("maxDisparity"), 55);
  EXPECT_EQ(ui_.shownForms[1].GetInteger("windowWidth"), 9);
  EXPECT_EQ(ui_.shownForms[1].GetInteger("windowHeight"), 5);
  EXPECT_EQ(ui_.shownForms[1].GetReal("groundSpacing"), 1.0);
}

TEST_F(AreaCorrelationTest, TellsProgressOnceARow) {
  const PlainImage left = RandomImage(60, 40, 32);
  pair_.progressWindow = &ui_;
  ExpectAsPlain(left, left, {.range = 2});
  const std::vector<std::string> expected = {"status 0: Done 0% ...", "status 0: Done 25% ...",
                                             "status 0: Done 50% ...", "status 0: Done 75% ..."};
  EXPECT_EQ(ui_.EventsWith("status 0: Done"), expected);  // (40 - 7 - 2) / 10 + 1 rows
}

TEST_F(AreaCorrelationTest, ProgressWindowMayBeNull) {
  const PlainImage left = RandomImage(60, 40, 33);
  ExpectAsPlain(left, left, {.range = 2});
  EXPECT_TRUE(ui_.EventsWith("status 0: Done").empty());
}

TEST_F(AreaCorrelationTest, WiderPixelsAreTakenAsBytes) {
  const PlainImage left = RandomImage(40, 30, 34);
  for (const std::uint16_t packType : {kPackUInt16, kPackFloat}) {
    VerticalPair made(40, 30, left.bytes, left.bytes);
    ErdasHeader header = *made.left.image.GetHeader();
    header.packType = packType;
    made.left.image.Create(header, false);
    const auto band = made.left.image.GetBands().GetBand(0);
    for (std::size_t i = 0; i < band.size(); ++i) band[i] = static_cast<std::uint8_t>(i * 37 % 251);
    const PlainImage asBytes{40, 30, {band.begin(), band.begin() + 40 * 30}};
    StorePhoto(made.left, "l");
    StorePhoto(made.right, "r");
    const PlainSettings settings{.step = 5.0, .threshold = 0.1};
    const auto score = PlainCorrelation(asBytes, left, 7, 7);
    const auto expected =
        PlainGrid(asBytes, left, settings, [&](const PlainPlace& l, PlainPlace& r, const PlainRect& rect) {
          return PlainBest(score, l, r, rect);
        });
    Answer(settings);
    EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kDone);
    EXPECT_EQ(ReadFileBytes("l_GridMatchPair.txt"), PairText(expected));
  }
}

TEST_F(AreaCorrelationTest, DiffCheckRejectsUnlikeWindows) {
  const PlainImage left = RandomImage(60, 40, 35, 128);
  PlainImage right = Shifted(left, 10, 0, 36);
  for (auto& byte : right.bytes) byte = static_cast<std::uint8_t>(byte % 128 * 2);  // correlates fully
  Store(left, right);
  for (const bool checks : {false, true}) {
    pair_.useDiffCheck = checks;
    Answer({.range = 1});
    EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kDone);
    EXPECT_EQ(pair_.matchPairs.empty(), checks);
  }
  EXPECT_FALSE(ui_.EventsWith("trace: CCC: ").empty());
}

TEST_F(AreaCorrelationTest, ResultThatIsAnInputIsRefused) {
  const PlainImage left = RandomImage(60, 40, 37);
  Store(left, left);
  const std::string before = ReadFileBytes("r.lan");
  Answer({});
  Change([](Form& form) { form.Find("matchedPoints")->value = std::string("r.lan"); });
  EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kNotWritten);
  EXPECT_EQ(ui_.EventsWith("message"),
            std::vector<std::string>{"message warning: Write file r.lan error!\n"
                                     "It is one of the files that the command reads."});
  EXPECT_TRUE(ui_.EventsWith("value: ").empty());
  EXPECT_EQ(ReadFileBytes("r.lan"), before);
  EXPECT_FALSE(FileExists("GroundPts.log"));
  EXPECT_EQ(pair_.leftPhoto, nullptr);
  EXPECT_EQ(ui_.waitDepth, 0);
}

TEST_F(AreaCorrelationTest, UnwritableResultFailsAfterTheOthers) {
  const PlainImage left = RandomImage(60, 40, 38);
  Store(left, left);
  Answer({.range = 2, .offset = 0});
  Change([](Form& form) { form.Find("matchedPoints")->value = std::string("no/such/folder.pts"); });
  EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kNotWritten);
  EXPECT_EQ(ui_.EventsWith("message"),
            std::vector<std::string>{"message warning: Write file no/such/folder.pts error!"});
  EXPECT_THAT(LastStatus(), testing::StartsWith("24 of 24 places matched."));
  EXPECT_THAT(LastStatus(), testing::EndsWith(" Written: GroundPts.log, l_GridMatchPair.txt."));
  EXPECT_FALSE(ReadFileBytes("l_GridMatchPair.txt").empty());
}

TEST_F(AreaCorrelationTest, MissingInputsAreNamed) {
  const PlainImage left = RandomImage(60, 40, 39);
  Store(left, left);
  std::remove("r.orn");
  Answer({});
  EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kNotLoaded);
  EXPECT_EQ(ui_.EventsWith("message"),
            std::vector<std::string>{"message message: Open Right Orientation Parameters File error!"});
  EXPECT_TRUE(ui_.EventsWith("value: ").empty());
  EXPECT_EQ(pair_.leftPhoto, nullptr);
}

TEST_F(AreaCorrelationTest, NoPointsPathNoPointsFile) {
  const PlainImage left = RandomImage(60, 40, 40);
  Store(left, left);
  Answer({.range = 2, .offset = 0});
  Change([](Form& form) { form.Find("matchedPoints")->value = std::string(); });
  EXPECT_EQ(pair_.MatchAreaCC(), StereoPair::kDone);
  EXPECT_THAT(LastStatus(), testing::StartsWith("24 of 24 places matched."));
  EXPECT_THAT(LastStatus(), testing::EndsWith(" Written: GroundPts.log, l_GridMatchPair.txt."));
}

TEST_F(AreaCorrelationTest, MemoryThatRunsOutEndsTheMethod) {
  const PlainImage left = RandomImage(60, 40, 42);
  Store(left, left);
  Answer({});
  const auto search = [](const Point2&, Point2&, const ImageRect&) -> double { throw std::bad_alloc(); };
  EXPECT_EQ(RunGridMethod(pair_, 0.75, true, search), StereoPair::kNoInput);
  EXPECT_EQ(ui_.EventsWith("message"),
            std::vector<std::string>{"message warning: There is no memory for the matches."});
  EXPECT_EQ(pair_.leftPhoto, nullptr);
  EXPECT_FALSE(FileExists("GroundPts.log"));
  EXPECT_EQ(ui_.waitDepth, 0);
}

TEST_F(AreaCorrelationTest, GridOnAnOpenPairAppends) {
  const PlainImage left = RandomImage(60, 40, 41);
  VerticalPair made(60, 40, left.bytes, left.bytes);
  made.pair.targetWidth = 7;
  made.pair.targetHeight = 7;
  made.pair.matchPairs.push_back(MatchPair());
  EXPECT_EQ(made.pair.CorrelateGrid(false), 1);
  EXPECT_EQ(made.pair.matchPairs.size(), 25U);
  EXPECT_EQ(made.pair.matchPairs[1].id, 0);
  EXPECT_EQ(made.pair.groundPoints, nullptr);
  EXPECT_EQ(made.pair.CorrelateGrid(true), 1);
  EXPECT_EQ(made.pair.groundPoints->GetCount(), 24);
}

TEST_F(AreaCorrelationTest, RowsToEitherSideAreTheRightPhotos) {
  const PlainImage left = RandomImage(60, 40, 49);
  const PlainImage right = Shifted(left, 10, 3, 50);  // the partner lies three rows further up
  const auto score = PlainCorrelation(left, right, 7, 7);
  const auto search = [&](const PlainPlace& l, PlainPlace& r, const PlainRect& rect) {
    return PlainBest(score, l, r, rect);
  };
  for (const int margin : {0, 2, 3, 5}) {
    VerticalPair made(60, 40, left.bytes, right.bytes);
    made.left.maxRowDisparity = 9;  // does not count
    made.right.maxRowDisparity = margin;
    made.pair.targetWidth = 7;
    made.pair.targetHeight = 7;
    made.pair.maxDisparity = 4;
    made.pair.columnOffset = -10;
    EXPECT_EQ(made.pair.CorrelateGrid(true), 1);
    const auto expected = PlainGrid(left, right, {.range = 4, .margin = margin}, search);
    EXPECT_EQ(expected.empty(), margin < 3);
    ASSERT_EQ(made.pair.matchPairs.size(), expected.size()) << margin;
    EXPECT_EQ(made.pair.GetGroundPoints().GetCount(), static_cast<std::int32_t>(expected.size()));
    for (std::size_t i = 0; i < expected.size(); ++i) {
      const MatchPair& found = made.pair.matchPairs[i];
      EXPECT_EQ(found.left.y, static_cast<double>(expected[i].left.row));
      EXPECT_EQ(found.right, (Point2{static_cast<double>(expected[i].right.col),
                                     static_cast<double>(expected[i].right.row)}));
      EXPECT_EQ(found.score, expected[i].score);
      EXPECT_EQ(found.right.y, found.left.y - 3.0);
    }
  }
}

}  // namespace

}  // namespace corvane
