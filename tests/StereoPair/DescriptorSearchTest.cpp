// The search for the best descriptor against a plain one, and "Structural Descriptor CC".

#include "StereoPair/DescriptorSearch.h"

#include "ImgProcess/ImgProcess.h"
#include "StereoPair/GridFixture.h"
#include "numerics/SimdVersion.h"

namespace corvane {

namespace {

// The descriptor by its definition: on the ring at distance k each pixel less the one next to it on the ring
// at k - 1. Empty without a middle.
std::vector<double> PlainDescriptor(const PlainImage& image, const PlainPlace& place, long size) {
  const long half = size / 2;
  if (size % 2 == 0) return {};
  std::vector<double> values;
  for (long dy = -half; dy <= half; ++dy) {
    for (long dx = -half; dx <= half; ++dx) {
      const long k = std::max(std::labs(dy), std::labs(dx));
      if (k == 0) continue;
      const long innerY = std::max(-k + 1, std::min(dy, k - 1));
      const long innerX = std::max(-k + 1, std::min(dx, k - 1));
      values.push_back(image.At(place.row + dy, place.col + dx) -
                       image.At(place.row + innerY, place.col + innerX));
    }
  }
  return values;
}

PlainScore PlainLikeness(const PlainImage& left, const PlainImage& right, long size) {
  return [&left, &right, size](const PlainPlace& l, const PlainPlace& r) {
    const auto a = PlainDescriptor(left, l, size);
    const auto b = PlainDescriptor(right, r, size);
    return a.empty() || b.empty() ? 0.0 : PlainCoefficient(a, b);
  };
}

struct Found {
  double score;
  Point2 place;
};

Found FindIn(const PlainImage& left, const PlainImage& right, const PlainPlace& from, const PlainPlace& start,
             std::int32_t size, const ImageRect& rect) {
  ErdasImg leftImage, rightImage;
  SetBytes(leftImage, left);
  SetBytes(rightImage, right);
  Found found{0.0, PointOf(start)};
  DescriptorSearch search;
  found.score = search.Find(leftImage, rightImage, PointOf(from), found.place, size, rect);
  return found;
}

void ExpectAsPlain(const PlainImage& left, const PlainImage& right, const PlainPlace& from, PlainPlace start,
                   std::int32_t size, const ImageRect& rect) {
  const Found found = FindIn(left, right, from, start, size, rect);
  const double expected = PlainBest(PlainLikeness(left, right, size), from, start,
                                    {rect.left, rect.top, rect.right, rect.bottom});
  EXPECT_EQ(found.score, expected);
  EXPECT_EQ(found.place, PointOf(start));
}

TEST(DescriptorSearchTest, RandomSearchesAreThePlainOnesBitForBit) {
  RandomNumbers random(1);
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    for (unsigned i = 0; i < 60; ++i) {
      const int nGreys = i % 3 == 0 ? 2 : 256;  // with few there are ties
      const PlainImage left = RandomImage(40, 40, i, nGreys);
      const PlainImage right = RandomImage(60, 35, i + 1000, nGreys);
      const std::int32_t firstCol = random.UpTo(60) - 5;
      const std::int32_t firstRow = random.UpTo(35) - 5;
      // The start in the rectangle or beside it, where its place does not lie in the image, or anywhere.
      const PlainPlace start = i % 2 == 0 ? PlainPlace{firstCol + random.UpTo(20), firstRow + random.UpTo(3)}
                                          : PlainPlace{random.UpTo(60), random.UpTo(35)};
      // Now and then a left window that leaves its image.
      const PlainPlace from =
          i % 4 == 1 ? PlainPlace{random.UpTo(46) - 3, random.UpTo(46) - 3} : PlainPlace{20, 20};
      ExpectAsPlain(left, right, from, start, 7,
                    {firstCol, firstRow, firstCol + random.UpTo(40), firstRow + random.UpTo(4)});
    }
  }
}

TEST(DescriptorSearchTest, WindowsOfAllOddSizes) {
  const PlainImage left = RandomImage(60, 60, 2);
  const PlainImage right = Shifted(left, 4, 1, 3);
  for (const std::int32_t size : {3, 5, 9, 19, 41}) {
    ExpectAsPlain(left, right, {30, 30}, {29, 28}, size, {20, 27, 36, 31});
    EXPECT_EQ(FindIn(left, right, {30, 30}, {29, 28}, size, {20, 27, 36, 31}).place, (Point2{26.0, 29.0}));
  }
}

TEST(DescriptorSearchTest, LargestDifferencesDoNotOverflow) {
  // A board of 0 and 255 has differences of 255 on all sides.
  PlainImage board{220, 220};
  for (long i = 0; i < 220 * 220; ++i) {
    board.bytes.push_back((i / 220 + i % 220) % 2 == 0 ? 255 : 0);
  }
  ExpectAsPlain(board, board, {110, 110}, {110, 110}, 201, {107, 109, 112, 111});
}

TEST(DescriptorSearchTest, DescriptorIsThatOfStructuralFeature) {
  const PlainImage image = RandomImage(30, 30, 4);
  ErdasImg held;
  SetBytes(held, image);
  FeaturePoint feature;
  ImgProcess process;
  ASSERT_EQ(process.StructuralFeature(held, 14.0, 15.0, 9, feature, false), 1);
  std::vector<double> plain = PlainDescriptor(image, {14, 15}, 9);
  std::sort(plain.begin(), plain.end());
  std::sort(feature.values.begin(), feature.values.end());
  EXPECT_EQ(feature.values, plain);
}

TEST(DescriptorSearchTest, CoefficientIsThatOfStructuralFeatures) {
  const PlainImage left = RandomImage(30, 30, 5);
  const PlainImage right = Shifted(left, 2, 0, 6);
  ErdasImg leftImage, rightImage;
  SetBytes(leftImage, left);
  SetBytes(rightImage, right);
  ImgProcess process;
  FeaturePoint a, b;
  ASSERT_EQ(process.StructuralFeature(leftImage, 14.0, 15.0, 9, a, false), 1);
  for (std::int32_t col = 6; col < 20; ++col) {
    ASSERT_EQ(process.StructuralFeature(rightImage, col, 15.0, 9, b, false), 1);
    const double expected = PlainCoefficient(a.values, b.values);
    const Found found = FindIn(left, right, {14, 15}, {0, 0}, 9, {col, 15, col, 15});
    EXPECT_EQ(found.score, std::max(expected, 0.0));
  }
}

TEST(DescriptorSearchTest, NoDescriptorNoMatch) {
  const PlainImage image = RandomImage(30, 30, 7);
  for (const std::int32_t size : {8, 2, 0, -3, -4}) {
    const Found found = FindIn(image, image, {14, 15}, {14, 15}, size, {10, 14, 20, 16});
    EXPECT_EQ(found.score, 0.0) << size;
    EXPECT_EQ(found.place, (Point2{14.0, 15.0})) << size;
  }
}

TEST(DescriptorSearchTest, TellsThatEvenWindowsHaveNoDescriptor) {
  EXPECT_EQ(DescriptorSearch::NoteOn(8), " The window's width is even: there is no descriptor.");
  EXPECT_EQ(DescriptorSearch::NoteOn(9), "");
}

TEST(DescriptorSearchTest, WindowsThatLeaveTheImageSeeZerosThere) {
  // Around (0, 0) the left window sees seven zeros and the other 7.
  const PlainImage small{2, 1, {7, 7}};
  const PlainImage framed{4, 3, {0, 0, 0, 0, 0, 7, 7, 0, 0, 0, 0, 0}};
  EXPECT_EQ(FindIn(small, framed, {0, 0}, {9, 9}, 3, {1, 1, 3, 2}).place, (Point2{1.0, 1.0}));
  EXPECT_EQ(FindIn(small, framed, {0, 0}, {9, 9}, 3, {1, 1, 3, 2}).score, 1.0);
  EXPECT_EQ(FindIn(framed, small, {1, 1}, {9, 9}, 3, {0, 0, 4, 4}).place, (Point2{0.0, 0.0}));

  const PlainImage left = RandomImage(30, 30, 7);
  const PlainImage right = Shifted(left, 4, 1, 20);
  ExpectAsPlain(left, right, {3, 15}, {4, 15}, 9, {-9, 13, 8, 17});      // beyond the left edge
  ExpectAsPlain(left, right, {27, 28}, {27, 27}, 9, {20, 20, 36, 36});   // and beyond the others
  ExpectAsPlain(left, right, {14, 15}, {14, 15}, 31, {10, 14, 20, 16});  // larger than the image
  ExpectAsPlain(left, right, {14, 15}, {14, 15}, 9, {-20, -20, 50, -3});
  ExpectAsPlain(left, right, {-50, 15}, {14, 15}, 9, {10, 14, 20, 16});  // nothing but zeros
}

TEST(DescriptorSearchTest, WindowsFarLargerThanTheImagesEndSoon) {
  const PlainImage left = RandomImage(50, 40, 21);
  const PlainImage right = Shifted(left, 4, 1, 22);
  EXPECT_EQ(FindIn(left, right, {25, 20}, {25, 20}, 2001, {15, 15, 35, 25}).place, (Point2{21.0, 19.0}));
  ExpectAsPlain(left, right, {25, 20}, {25, 20}, 301, {20, 18, 22, 20});
}

TEST(DescriptorSearchTest, EndlessRectanglesEndSoon) {
  constexpr std::int32_t kFar = INT32_MAX;
  const PlainImage left = RandomImage(8, 6, 23);
  const PlainImage right = Shifted(left, 2, 1, 24);
  PlainPlace start{6, 1};
  const double expected = PlainBest(PlainLikeness(left, right, 5), {4, 3}, start, {-9, -9, 20, 20});
  const Found found = FindIn(left, right, {4, 3}, {6, 1}, 5, {-kFar, -kFar, kFar, kFar});
  EXPECT_EQ(found.score, expected);
  EXPECT_EQ(found.place, PointOf(start));
  // Places far outside are all alike, so that the first one is the best of them.
  const PlainImage flat{8, 6, std::vector<std::uint8_t>(48, 0)};
  EXPECT_EQ(FindIn(flat, right, {4, 3}, {4, 3}, 5, {-kFar, -kFar, kFar, kFar}).place,
            (Point2{-double{kFar}, -double{kFar}}));
}

TEST(DescriptorSearchTest, FlatWindowsAreAlike) {
  const PlainImage flat{30, 30, std::vector<std::uint8_t>(900, 5)};
  EXPECT_EQ(FindIn(flat, flat, {14, 15}, {14, 15}, 9, {10, 14, 20, 16}).score, 1.0);
  // Beyond the edge the window is flat no more.
  EXPECT_EQ(FindIn(flat, flat, {14, 15}, {27, 15}, 9, {26, 14, 29, 16}).score, 0.0);
}

TEST(DescriptorSearchTest, StartMayBeNegative) {
  // Grey values that rise to the right, and fall: the coefficient is -1 at all places.
  PlainImage left{30, 30};
  PlainImage right{30, 30};
  for (int i = 0; i < 900; ++i) {
    left.bytes.push_back(static_cast<std::uint8_t>(5 * (i % 30)));
    right.bytes.push_back(static_cast<std::uint8_t>(255 - 5 * (i % 30)));
  }
  const Found found = FindIn(left, right, {14, 15}, {14, 15}, 9, {13, 14, 15, 16});
  EXPECT_EQ(found.score, -1.0);
  EXPECT_EQ(found.place, (Point2{14.0, 15.0}));
}

TEST(DescriptorSearchTest, StartOnTheRightOrBottomEdgeIsPassedOver) {
  const PlainImage image = RandomImage(30, 30, 9);
  EXPECT_LT(FindIn(image, image, {14, 15}, {14, 15}, 7, {10, 13, 14, 17}).score, 0.9);
  EXPECT_LT(FindIn(image, image, {14, 15}, {14, 15}, 7, {10, 13, 18, 15}).score, 0.9);
  EXPECT_EQ(FindIn(image, image, {14, 15}, {14, 15}, 7, {14, 15, 18, 17}).score, 1.0);
}

class StructuralDescriptorTest : public GridMethodTest {
 protected:
  std::vector<PlainPair> ExpectGridAsPlain(const PlainImage& left, const PlainImage& right,
                                           const PlainSettings& settings) {
    const auto expected = PlainBestGrid(left, right, settings, PlainLikeness(left, right, settings.width));
    ExpectPairs(&StereoPair::MatchStructuralDescriptor, left, right, settings, expected);
    return expected;
  }
};

TEST_F(StructuralDescriptorTest, ShiftedImageGivesItsShift) {
  const PlainImage left = RandomImage(90, 60, 10);
  const auto pairs = ExpectGridAsPlain(left, Shifted(left, 12, 0, 11), {.threshold = 0.9, .range = 8});
  EXPECT_EQ(pairs.size(), 42U);
  ExpectGround(pairs);
  EXPECT_EQ(LastStatus(),
            "42 of 54 places matched. Beside the right image at this offset: 6 places. Written: "
            "GroundPts.log, out.pts (42 points), l_GridMatchPair.txt.");
  ExpectAsked(0.5);
}

TEST_F(StructuralDescriptorTest, NoiseAndEdges) {
  const PlainImage left = RandomImage(70, 50, 12, 3);
  ExpectGridAsPlain(left, RandomImage(60, 45, 13, 3),
                    {.width = 5, .height = 4, .step = 5.5, .threshold = 0.2});
  ExpectGridAsPlain(left, Shifted(left, 40, 1, 14), {.threshold = 0.1, .range = 12, .offset = -40});
}

TEST_F(StructuralDescriptorTest, EvenWindowsMatchNothing) {
  const PlainImage left = RandomImage(70, 50, 15);
  EXPECT_TRUE(
      ExpectGridAsPlain(left, left, {.width = 6, .height = 7, .threshold = 0.0, .offset = 0}).empty());
  EXPECT_EQ(LastStatus(),
            "0 of 35 places matched. Written: GroundPts.log, l_GridMatchPair.txt. out.pts is not written: "
            "there are "
            "no points. The window's width is even: there is no descriptor.");
}

TEST_F(StructuralDescriptorTest, HugeOffsetsAndRanges) {
  const PlainImage left = RandomImage(40, 30, 16);
  for (const PlainSettings& settings : HugeSettings(0.1)) {
    ExpectGridAsPlain(left, Shifted(left, 5, 0, 17), settings);
  }
}

TEST_F(StructuralDescriptorTest, TellsProgressOnceARow) {
  const PlainImage left = RandomImage(60, 30, 18);
  pair_.progressWindow = &ui_;
  ExpectGridAsPlain(left, left, {.range = 2});
  EXPECT_EQ(ui_.EventsWith("status 0: Done").size(), 3U);
}

TEST_F(StructuralDescriptorTest, CancelOfFormLeavesNothing) {
  ExpectCancelledForm(&StereoPair::MatchStructuralDescriptor);
}

}  // namespace

}  // namespace corvane
