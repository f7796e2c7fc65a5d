// The search for the least difference against a plain one, and "Area (Difference)".

#include "StereoPair/DifferenceSearch.h"

#include "StereoPair/GridFixture.h"
#include "numerics/SimdVersion.h"

namespace corvane {

namespace {

struct TwoImages {
  TwoImages(const PlainImage& plainLeft, const PlainImage& plainRight) {
    SetBytes(left, plainLeft);
    SetBytes(right, plainRight);
  }

  ErdasImg left;
  ErdasImg right;
};

void ExpectAsPlain(const PlainImage& left, const PlainImage& right, const PlainPlace& from, PlainPlace start,
                   const ImageSize& size, const ImageRect& rect) {
  TwoImages images(left, right);
  Point2 place = PointOf(start);
  DifferenceSearch search;
  const auto sum = search.Find(images.left, images.right, PointOf(from), place, size, rect);
  const double expected = PlainLeast(PlainDifference(left, right, size.cx, size.cy), from, start,
                                     {rect.left, rect.top, rect.right, rect.bottom});
  EXPECT_EQ(static_cast<double>(sum), expected);
  EXPECT_EQ(place, PointOf(start));
}

TEST(DifferenceSearchTest, RandomSearchesAreThePlainOnes) {
  RandomNumbers random(1);
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    for (unsigned i = 0; i < 60; ++i) {
      const int nGreys = i % 3 == 0 ? 2 : 256;  // with few there are ties
      const PlainImage left = RandomImage(50, 40, i, nGreys);
      const PlainImage right = RandomImage(60, 30, i + 1000, nGreys);
      const std::int32_t firstCol = random.UpTo(70) - 10;
      const std::int32_t firstRow = random.UpTo(40) - 5;
      ExpectAsPlain(left, right, {random.UpTo(50), random.UpTo(40)}, {random.UpTo(70) - 5, random.UpTo(30)},
                    {1 + random.UpTo(24), 1 + random.UpTo(24)},
                    {firstCol, firstRow, firstCol + random.UpTo(80), firstRow + random.UpTo(4)});
    }
  }
}

TEST(DifferenceSearchTest, LargestDifferencesOfLargeWindows) {
  // 300 x 20 pixels of 255 each are more than 16 bits hold, in a single row, too.
  const PlainImage white{320, 24, std::vector<std::uint8_t>(320 * 24, 255)};
  const PlainImage black{320, 24, std::vector<std::uint8_t>(320 * 24, 0)};
  TwoImages images(white, black);
  Point2 place{160.0, 12.0};
  DifferenceSearch search;
  EXPECT_EQ(search.Find(images.left, images.right, {160.0, 12.0}, place, {300, 20}, {155, 11, 165, 13}),
            300 * 20 * 255);
  EXPECT_EQ(place, (Point2{160.0, 12.0}));
}

TEST(DifferenceSearchTest, EmptyRectangleLeavesTheStart) {
  const PlainImage image = RandomImage(30, 30, 2);
  ExpectAsPlain(image, image, {15, 15}, {12, 14}, {5, 5}, {20, 10, 19, 12});
  ExpectAsPlain(image, image, {15, 15}, {12, 14}, {5, 5}, {10, 16, 19, 12});
}

TEST(DifferenceSearchTest, SizeThatIsNotPositive) {
  const PlainImage image = RandomImage(30, 30, 3);
  TwoImages images(image, image);
  Point2 place{3.0, 4.0};
  DifferenceSearch search;
  EXPECT_EQ(search.Find(images.left, images.right, {5.0, 5.0}, place, {0, 5}, {0, 0, 9, 9}), -1);
  EXPECT_EQ(search.Find(images.left, images.right, {5.0, 5.0}, place, {5, -1}, {0, 0, 9, 9}), -1);
  EXPECT_EQ(place, (Point2{3.0, 4.0}));
}

class AreaDifferenceTest : public GridMethodTest {
 protected:
  std::vector<PlainPair> ExpectGridAsPlain(const PlainImage& left, const PlainImage& right,
                                           const PlainSettings& settings) {
    const auto difference = PlainDifference(left, right, settings.width, settings.height);
    const auto correlation = PlainCorrelation(left, right, settings.width, settings.height);
    const auto expected =
        PlainGrid(left, right, settings, [&](const PlainPlace& l, PlainPlace& r, const PlainRect& rect) {
          PlainLeast(difference, l, r, rect);
          return correlation(l, r);
        });
    Store(left, right);
    Answer(settings);
    pair_.groundPoints.reset();
    EXPECT_EQ(pair_.MatchAreaDifference(), StereoPair::kDone);
    EXPECT_EQ(static_cast<std::size_t>(pair_.groundPoints->GetCount()), expected.size());
    const auto lines = Numbers("GroundPts.log");
    EXPECT_EQ(lines.size(), expected.size());
    for (std::size_t i = 0; i < std::min(lines.size(), expected.size()); ++i) {
      EXPECT_NEAR(lines[i].back(), expected[i].score, 1e-12);
    }
    return expected;
  }
};

TEST_F(AreaDifferenceTest, ShiftedImageGivesItsShiftWithoutPairs) {
  const PlainImage left = RandomImage(90, 60, 4);
  const auto pairs = ExpectGridAsPlain(left, Shifted(left, 13, 0, 5), {.threshold = 0.9, .range = 6});
  ASSERT_FALSE(pairs.empty());
  ExpectGround(pairs);
  EXPECT_TRUE(pair_.matchPairs.empty());
  EXPECT_FALSE(FileExists("l_GridMatchPair.txt"));
  EXPECT_EQ(LastStatus(), std::to_string(pairs.size()) +
                              " of 54 places matched. Beside the right image at this offset: 6 places. "
                              "Written: GroundPts.log, out.pts (" +
                              std::to_string(pairs.size()) + " points).");
  ExpectAsked(0.5);
}

TEST_F(AreaDifferenceTest, DifferencePicksWhatCorrelationRejects) {
  // Low threshold, noise and edges: the places are those of the difference, the scores of the correlation.
  const PlainImage left = RandomImage(70, 50, 6, 4);
  ExpectGridAsPlain(left, RandomImage(60, 45, 7, 4),
                    {.width = 5, .height = 4, .step = 5.5, .threshold = 0.2});
  ExpectGridAsPlain(left, Shifted(left, 40, 1, 8), {.threshold = 0.1, .range = 12, .offset = -40});
}

TEST_F(AreaDifferenceTest, IdsCountAcceptedPoints) {
  const PlainImage left = RandomImage(90, 60, 9);
  ExpectGridAsPlain(left, Shifted(left, 30, 0, 10), {.threshold = 0.9, .range = 30});
  const std::vector<std::int32_t> ids = SortedIds();
  for (std::size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(ids[i], static_cast<std::int32_t>(i));
  EXPECT_FALSE(ids.empty());
  EXPECT_LT(ids.size(), 54U);
}

TEST_F(AreaDifferenceTest, StartOutsideOfTheRectangleIsCompared) {
  const PlainImage left = RandomImage(40, 30, 11);
  const PlainImage tiny = RandomImage(4, 3, 12);  // smaller than a window: the rectangle is empty
  ExpectGridAsPlain(left, tiny, {.width = 9, .height = 9, .threshold = 0.0});
  ExpectGridAsPlain(left, Shifted(left, 10, 0, 13), {.threshold = 0.5, .range = -1});
}

TEST_F(AreaDifferenceTest, HugeOffsetsAndRanges) {
  const PlainImage left = RandomImage(40, 30, 14);
  for (const PlainSettings& settings : HugeSettings(0.5)) {
    ExpectGridAsPlain(left, Shifted(left, 5, 0, 15), settings);
  }
}

TEST_F(AreaDifferenceTest, TellsProgressOnceARow) {
  const PlainImage left = RandomImage(60, 30, 16);
  pair_.progressWindow = &ui_;
  ExpectGridAsPlain(left, left, {.range = 2});
  const std::vector<std::string> expected = {"status 0: Done 0% ...", "status 0: Done 33% ...",
                                             "status 0: Done 66% ..."};
  EXPECT_EQ(ui_.EventsWith("status 0: Done"), expected);
}

TEST_F(AreaDifferenceTest, CancelOfFormLeavesNothing) {
  ExpectCancelledForm(&StereoPair::MatchAreaDifference);
}

TEST_F(AreaDifferenceTest, CancelOfOffsetGoesOnWithMinusTen) {
  const PlainImage left = RandomImage(60, 30, 17);
  ExpectCancelledOffset(&StereoPair::MatchAreaDifference, left, left, 2);
}

}  // namespace

}  // namespace corvane
