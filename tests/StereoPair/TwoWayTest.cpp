// "Two-Way Match" from its form to its files.

#include <gmock/gmock.h>

#include <map>

#include "StereoPair/GridFixture.h"
#include "TIN/TINPoints.h"

namespace corvane {

namespace {

double PlainEntropy(const PlainImage& image, const PlainPlace& place, long width, long height) {
  std::map<double, double> counts;
  const auto pixels = PlainWindow(image, place, width, height);
  for (const double pixel : pixels) counts[pixel] += 1.0;
  const auto n = static_cast<double>(pixels.size());
  double entropy = std::log(n);
  for (const auto& [pixel, count] : counts) entropy -= count * std::log(count) / n;
  return entropy;
}

// The pairs that are left of those of the way there.
std::vector<PlainPair> PlainBothWays(const PlainImage& left, const PlainImage& right,
                                     const PlainSettings& settings, const std::vector<PlainPair>& there) {
  const auto score = PlainCorrelation(right, left, settings.width, settings.height);
  const long halfW = settings.width / 2;
  const long halfH = settings.height / 2;
  std::vector<PlainPair> kept;
  for (const PlainPair& pair : there) {
    if (PlainEntropy(left, pair.left, settings.width, settings.height) < 3.0) continue;
    PlainPlace place{pair.right.col - settings.offset, pair.right.row};
    const PlainRect rect = {std::max(place.col - settings.range, halfW), std::max(place.row - 1, halfH),
                            std::min(place.col + settings.range, left.cols - 1 - halfW),
                            std::min(place.row + 1, left.rows - 1 - halfH)};
    const double value = PlainBest(score, pair.right, place, rect);
    if (value > settings.threshold && std::labs(pair.left.col - place.col) <= 1) kept.push_back(pair);
  }
  return kept;
}

// 50 x 40 pixels of smooth waves.
PlainImage SmoothImage(double wavesDown) {
  PlainImage image{50, 40};
  for (int i = 0; i < 50 * 40; ++i) {
    const double x = i % 50;
    const double y = i / 50;
    image.bytes.push_back(
        static_cast<std::uint8_t>(125.0 + 60.0 * std::sin(0.3 * x) + 40.0 * std::sin(wavesDown * y)));
  }
  return image;
}

// Black and white noise but in `rect`, edges included, which shows what `image` has so far to the right and
// down.
PlainImage NoiseAround(const PlainImage& image, const PlainRect& rect, long right, long down) {
  PlainImage noise = RandomImage(image.cols, image.rows, 7, 2);
  for (auto& byte : noise.bytes) byte = static_cast<std::uint8_t>(byte * 255);
  for (long row = rect.top; row <= rect.bottom; ++row) {
    for (long col = rect.left; col <= rect.right; ++col) {
      noise.bytes[static_cast<std::size_t>(row * image.cols + col)] =
          static_cast<std::uint8_t>(image.At(row + down, col + right));
    }
  }
  return noise;
}

class TwoWayTest : public GridMethodTest {
 protected:
  struct Ways {
    std::vector<PlainPair> there;
    std::vector<PlainPair> both;
  };

  // The ids of the pairs that are kept are those of the way there.
  static std::string KeptText(const Ways& ways) {
    std::string text;
    for (const PlainPair& pair : ways.both) {
      const auto isThis = [&pair](const PlainPair& other) {
        return other.left.col == pair.left.col && other.left.row == pair.left.row;
      };
      text += PairLine(std::find_if(ways.there.begin(), ways.there.end(), isThis) - ways.there.begin(), pair);
    }
    return text;
  }

  Ways ExpectAsPlain(const PlainImage& left, const PlainImage& right, const PlainSettings& settings) {
    const auto score = PlainCorrelation(left, right, settings.width, settings.height);
    Ways ways;
    ways.there = PlainBestGrid(left, right, settings, score);
    ways.both = PlainBothWays(left, right, settings, ways.there);
    std::remove("l_GridMatchPair2Way.txt");
    ExpectPairs(&StereoPair::MatchTwoWay, left, right, settings, ways.there);
    EXPECT_EQ(ReadFileBytes("l_GridMatchPair2Way.txt"), KeptText(ways));
    EXPECT_EQ(pair_.matchPairs.size(), ways.both.size());
    EXPECT_EQ(pair_.columnOffset, settings.offset);
    return ways;
  }
};

TEST_F(TwoWayTest, ShiftedImageKeepsAllPairs) {
  const PlainImage left = RandomImage(90, 60, 1);
  const Ways ways = ExpectAsPlain(left, Shifted(left, 12, 0, 2), {.range = 8});
  EXPECT_EQ(ways.there.size(), 42U);
  EXPECT_EQ(ways.both.size(), 42U);
  ExpectGround(ways.both);
  EXPECT_EQ(LastStatus(),
            "42 of 54 places matched. 42 of them matched both ways. Beside the right image at this offset: 6 "
            "places. Written: GroundPts.log, l_GridMatchPair.txt, l_GridMatchPair2Way.txt, out.pts (42 "
            "points).");
  ExpectAsked(0.75);
  EXPECT_EQ(pair_.leftPhoto, nullptr);
  EXPECT_EQ(ui_.waitDepth, 0);
}

TEST_F(TwoWayTest, NoiseKeepsSome) {
  const PlainImage left = RandomImage(90, 50, 3);
  const Ways ways = ExpectAsPlain(left, RandomImage(80, 45, 4),
                                  {.width = 5, .height = 5, .step = 4.0, .threshold = 0.35, .range = 12});
  EXPECT_LT(ways.both.size(), ways.there.size());
  EXPECT_FALSE(ways.both.empty());
}

TEST_F(TwoWayTest, EvenWindowsAreNotMatchedBack) {
  // Twelve greys: entropies lie around log(12) = 2.48, those of the right half around log(49).
  PlainImage left = RandomImage(90, 50, 5);
  for (std::size_t i = 0; i < left.bytes.size(); ++i) {
    if (i % 90 < 45) left.bytes[i] %= 12;
  }
  const Ways ways = ExpectAsPlain(left, Shifted(left, 10, 0, 6), {.range = 2});
  ASSERT_FALSE(ways.both.empty());
  EXPECT_LT(ways.both.size(), ways.there.size());
  for (const PlainPair& pair : ways.both) EXPECT_GT(pair.left.col, 42);
  const auto nEven = std::count_if(ways.there.begin(), ways.there.end(), [&left](const PlainPair& pair) {
    return PlainEntropy(left, pair.left, 7, 7) < 3.0;
  });
  EXPECT_THAT(LastStatus(), testing::HasSubstr(" Left out for lack of texture (entropy below 3.0): " +
                                               std::to_string(nEven) + " pairs."));
}

TEST_F(TwoWayTest, BackMatchOneColumnAsidePasses) {
  // The one part of the right image that is no noise, around column 14, shows a smooth left image around
  // column 24 + aside: it is the best partner of column 24, but leads back to 24 + aside.
  const PlainImage left = SmoothImage(0.5);
  for (const long aside : {0L, 1L, 2L}) {
    const PlainImage right = NoiseAround(left, {10, 0, 18, 39}, 10 + aside, 0);
    const Ways ways = ExpectAsPlain(left, right, {.width = 9, .height = 9, .threshold = 0.8, .range = 4});
    ASSERT_FALSE(ways.there.empty());
    for (const PlainPair& pair : ways.there) EXPECT_EQ(pair.left.col, 24);
    EXPECT_EQ(ways.both.size(), aside <= 1 ? ways.there.size() : 0U);
  }
}

TEST_F(TwoWayTest, PartnerInAnotherRowLeadsBack) {
  // The rows of the right image lie one further down there: found at row + 1, and back at row.
  const PlainImage left = RandomImage(60, 40, 9);
  const Ways ways = ExpectAsPlain(left, Shifted(left, 10, -1, 10), {.range = 2});
  ASSERT_FALSE(ways.both.empty());
  for (const PlainPair& pair : ways.both) EXPECT_EQ(pair.right.row - pair.left.row, 1);
}

TEST_F(TwoWayTest, BackMatchInAnotherRowPasses) {
  // The one part of the right image that is no noise is the window around (14, 15). It shows the smooth left
  // image around (24, 16): it is the best partner of (24, 15), but leads back to row 16.
  const PlainImage left = SmoothImage(0.3);
  const PlainImage right = NoiseAround(left, {10, 11, 18, 19}, 10, 1);
  const Ways ways = ExpectAsPlain(left, right, {.width = 9, .height = 9, .threshold = 0.9, .range = 4});
  ASSERT_EQ(ways.there.size(), 1U);
  EXPECT_EQ(ways.there[0].left.row, 15);
  EXPECT_EQ(ways.there[0].right.row, 15);
  EXPECT_EQ(ways.there[0].right.col, 14);
  PlainPlace back{24, 15};
  EXPECT_EQ(PlainBest(PlainCorrelation(right, left, 9, 9), {14, 15}, back, {20, 14, 28, 16}), 1.0);
  EXPECT_EQ(back.col, 24);
  EXPECT_EQ(back.row, 16) << "not the row that it began in";
  EXPECT_EQ(ways.both.size(), 1U);
}

TEST_F(TwoWayTest, NoPairsEndsAfterTheWayThere) {
  const PlainImage left = RandomImage(60, 40, 11);
  const Ways ways = ExpectAsPlain(left, RandomImage(60, 40, 12), {.range = 3});
  EXPECT_TRUE(ways.there.empty());
  EXPECT_FALSE(FileExists("l_GridMatchPair2Way.txt"));
  EXPECT_FALSE(FileExists("out.pts"));
  EXPECT_EQ(
      LastStatus(),
      "0 of 24 places matched. Beside the right image at this offset: 4 places. Written: GroundPts.log, "
      "l_GridMatchPair.txt. out.pts is not written: there are no points. l_GridMatchPair2Way.txt is not "
      "written: no pair is left.");
}

TEST_F(TwoWayTest, NoPairsWithoutAPathLeaveAnOlderFile) {
  const PlainImage left = RandomImage(60, 40, 11);
  Store(left, RandomImage(60, 40, 12));
  WriteFileBytes("l_TwoWay.pts", "of before");
  WriteFileBytes("l_GridMatchPair2Way.txt", "of before");
  Answer({.range = 3});
  Change([](Form& form) { form.Find("matchedPoints")->value = std::string(); });
  EXPECT_EQ(pair_.MatchTwoWay(), StereoPair::kDone);
  EXPECT_THAT(
      LastStatus(),
      testing::EndsWith(" l_GridMatchPair2Way.txt is not written: no pair is left. An older one stays."
                        " l_TwoWay.pts is not written: no pair is left. An older one stays."));
  EXPECT_EQ(ReadFileBytes("l_TwoWay.pts"), "of before");
}

TEST_F(TwoWayTest, NoneLeftWritesNoSecondPairFile) {
  const PlainImage flat{60, 40, std::vector<std::uint8_t>(60 * 40, 9)};
  const Ways ways = ExpectAsPlain(flat, flat, {.range = 3});
  EXPECT_FALSE(ways.there.empty());
  EXPECT_TRUE(ways.both.empty());
  EXPECT_FALSE(FileExists("l_GridMatchPair2Way.txt"));
  EXPECT_FALSE(FileExists("out.pts"));
  EXPECT_EQ(ReadFileBytes("GroundPts.log"), "");
  EXPECT_THAT(LastStatus(),
              testing::EndsWith("Written: GroundPts.log, l_GridMatchPair.txt. out.pts is not written: there "
                                "are no points. l_GridMatchPair2Way.txt is not written: no pair is left."));
}

TEST_F(TwoWayTest, WithoutPathPointsGoBesideTheLeftImage) {
  const PlainImage left = RandomImage(60, 40, 13);
  Store(left, Shifted(left, 10, 0, 14));
  Answer({.range = 2});
  Change([](Form& form) { form.Find("matchedPoints")->value = std::string(); });
  EXPECT_EQ(pair_.MatchTwoWay(), StereoPair::kDone);
  TINPoints written;
  EXPECT_EQ(written.Read("l_TwoWay.pts"), 1);
  EXPECT_EQ(written.GetCount(), static_cast<std::int32_t>(pair_.matchPairs.size()));
}

TEST_F(TwoWayTest, GroundPointsTakeCoordinatesAsTheyAreAndCountOn) {
  const PlainImage left = RandomImage(60, 40, 15);
  Store(left, Shifted(left, 10, 0, 16), 10.0, {.x = 30, .y = 20}, {.x = 25, .y = 20});
  pair_.GetGroundPoints().AddPoint({0, 5.0, -1e6, 6.0, 0.5});
  Answer({.range = 2});
  EXPECT_EQ(pair_.MatchTwoWay(), StereoPair::kDone);
  std::vector<PlainPair> pairs;
  for (const MatchPair& pair : pair_.matchPairs) {
    const auto col = static_cast<long>(pair.left.x);
    const auto row = static_cast<long>(pair.left.y);
    pairs.push_back({{col, row}, {col - 10, row}, pair.score});
  }
  ASSERT_FALSE(pairs.empty());
  EXPECT_THAT(LastStatus(), testing::HasSubstr(" The origins of the images are not added."));
  ExpectGround(pairs, 10.0, {}, {}, 1);
  const std::vector<std::int32_t> ids = SortedIds();
  for (std::size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(ids[i], static_cast<std::int32_t>(i));
}

TEST_F(TwoWayTest, HugeOffsetsAndRanges) {
  const PlainImage left = RandomImage(40, 30, 17);
  for (const long range : {-2000000000L, 2000000000L, 2147483647L}) {
    for (const long offset : {-2147483648L, -2000000000L, -10L, 2000000000L}) {
      ExpectAsPlain(left, Shifted(left, 5, 0, 18), {.threshold = 0.3, .range = range, .offset = offset});
    }
  }
}

TEST_F(TwoWayTest, ImagesOfDifferentSizes) {
  const PlainImage left = RandomImage(70, 50, 19);
  const PlainImage right = RandomImage(40, 30, 20);
  ExpectAsPlain(left, right, {.width = 4, .height = 6, .step = 5.0, .threshold = 0.3, .range = 30});
  ExpectAsPlain(right, left, {.width = 4, .height = 6, .step = 5.0, .threshold = 0.3, .range = 30});
}

TEST_F(TwoWayTest, CancelOfFormLeavesNothing) {
  ExpectCancelledForm(&StereoPair::MatchTwoWay);
}

TEST_F(TwoWayTest, CancelOfOffsetGoesOnWithMinusTen) {
  const PlainImage left = RandomImage(60, 40, 21);
  ExpectCancelledOffset(&StereoPair::MatchTwoWay, left, Shifted(left, 10, 0, 22), 2);
  EXPECT_FALSE(pair_.matchPairs.empty());
}

TEST_F(TwoWayTest, UnwritableResultFailsAfterTheOthers) {
  const PlainImage left = RandomImage(60, 40, 23);
  Store(left, left);
  Answer({.range = 2, .offset = 0});
  Change([](Form& form) { form.Find("matchedPoints")->value = std::string("no/such/folder.pts"); });
  EXPECT_EQ(pair_.MatchTwoWay(), StereoPair::kNotWritten);
  EXPECT_EQ(ui_.EventsWith("message"),
            std::vector<std::string>{"message warning: Write file no/such/folder.pts error!"});
  EXPECT_TRUE(FileExists("l_GridMatchPair2Way.txt"));
  EXPECT_EQ(Numbers("GroundPts.log").size(), 24U);
}

TEST_F(TwoWayTest, ResultThatIsAnInputIsRefused) {
  const PlainImage left = RandomImage(60, 40, 24);
  Store(left, left);
  Answer({});
  Change([](Form& form) { form.Find("matchedPoints")->value = std::string("l.orn"); });
  EXPECT_EQ(pair_.MatchTwoWay(), StereoPair::kNotWritten);
  EXPECT_FALSE(FileExists("GroundPts.log"));
  EXPECT_EQ(pair_.leftPhoto, nullptr);
}

TEST_F(TwoWayTest, ResultThatIsAnotherResultIsRefused) {
  const PlainImage left = RandomImage(60, 40, 24);
  Store(left, left);
  for (const std::string path : {"l_GridMatchPair2Way.txt", "l_GridMatchPair.txt", "GroundPts.log"}) {
    Answer({});
    Change([path](Form& form) { form.Find("matchedPoints")->value = path; });
    EXPECT_EQ(pair_.MatchTwoWay(), StereoPair::kNotWritten);
    EXPECT_EQ(ui_.EventsWith("message").back(),
              "message warning: Write file " + path + " error!\nIt is another result of the command.");
    EXPECT_FALSE(FileExists(path));
  }
}

TEST_F(TwoWayTest, TellsProgressOnceARowOnBothWays) {
  const PlainImage left = RandomImage(60, 40, 25);
  pair_.progressWindow = &ui_;
  ExpectAsPlain(left, left, {.range = 2, .offset = 0});
  const std::vector<std::string> way = {"status 0: Done 0% ...", "status 0: Done 25% ...",
                                        "status 0: Done 50% ...", "status 0: Done 75% ..."};
  std::vector<std::string> expected = way;
  expected.insert(expected.end(), way.begin(), way.end());
  EXPECT_EQ(ui_.EventsWith("status 0: Done"), expected);
}

}  // namespace

}  // namespace corvane
