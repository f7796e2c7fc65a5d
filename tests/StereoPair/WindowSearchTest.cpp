// Searches by correlation against the same in their plainest form.

#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "StereoPair/PlainDense.h"
#include "numerics/SimdVersion.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

// One search, as given and as it should end.
struct Case {
  Point2 left;
  Point2 right;
  int width = 3;
  int height = 3;
  ImageRect rect;
};

std::int64_t CornerOf(double x, int size) {
  return static_cast<std::int64_t>(std::trunc(x - size / 2));
}

double PlainValue(const StereoPair& pair, const Case& given, double col, double row) {
  std::vector<double> a, b;
  for (int i = 0; i < given.height; ++i) {
    for (int j = 0; j < given.width; ++j) {
      a.push_back(ByteAt(*pair.leftImage, CornerOf(given.left.y, given.height) + i,
                         CornerOf(given.left.x, given.width) + j));
      b.push_back(ByteAt(*pair.rightImage, CornerOf(row, given.height) + i, CornerOf(col, given.width) + j));
    }
  }
  return PlainCoefficient(a, b);
}

// The same for windows far larger than the images: what is outside of them is 0 and adds nothing to the sums.
double PlainValueOfHugeWindow(const StereoPair& pair, const Case& given, double col, double row) {
  const double n = static_cast<double>(given.width) * given.height;
  const std::int64_t down = CornerOf(given.left.y, given.height) - CornerOf(row, given.height);
  const std::int64_t across = CornerOf(given.left.x, given.width) - CornerOf(col, given.width);
  double a = 0.0, aa = 0.0, b = 0.0, bb = 0.0, ab = 0.0;
  const auto [cols, rows] = pair.rightImage->GetSize();
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < cols; ++x) {  // all lie in the windows, and those of the left image, as large, too
      const double left = ByteAt(*pair.leftImage, y, x);
      const double right = ByteAt(*pair.rightImage, y, x);
      a += left;
      aa += left * left;
      b += right;
      bb += right * right;
      ab += ByteAt(*pair.leftImage, y + down, x + across) * right;
    }
  }
  const double va = aa - a * a / n;
  const double vb = bb - b * b / n;
  return (ab - a * b / n) / std::sqrt(va * vb);
}

using PlainValueOf = double (*)(const StereoPair&, const Case&, double col, double row);

struct Found {
  double best = 0.0;
  double second = std::numeric_limits<double>::lowest();
  Point2 place;

  void Take(double value, const Point2& at) {
    if (value > best) {
      second = best;
      best = value;
      place = at;
    } else if (value > second) {
      second = value;
    }
  }
};

Found PlainSearch(const StereoPair& pair, const Case& given, PlainValueOf valueOf = PlainValue) {
  const ImageRect& rect = given.rect;
  Found found;
  found.place = given.right;
  const auto x = static_cast<int>(given.right.x);
  const auto y = static_cast<int>(given.right.y);
  if (x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom) {
    found.best = valueOf(pair, given, given.right.x, given.right.y);
  }
  for (int row = rect.top; row <= rect.bottom; ++row) {
    for (int col = rect.left; col <= rect.right; ++col) {
      const Point2 place{static_cast<double>(col), static_cast<double>(row)};
      if (place != given.right) found.Take(valueOf(pair, given, place.x, place.y), place);
    }
  }
  return found;
}

Found PlainSearchInWindow(const StereoPair& pair, const Case& given, int rowRange, int colRange) {
  Found found;
  found.place = given.right;
  found.best = PlainValue(pair, given, given.right.x, given.right.y);
  for (int row = -rowRange; row <= rowRange; ++row) {
    for (int col = -colRange; col <= colRange; ++col) {
      const Point2 place{given.right.x + col, given.right.y + row};
      if (row != 0 || col != 0) found.Take(PlainValue(pair, given, place.x, place.y), place);
    }
  }
  return found;
}

std::uint64_t BitsOf(double value) {
  return std::bit_cast<std::uint64_t>(value);
}

std::string TextOf(const Case& given) {
  return "left " + std::to_string(given.left.x) + " " + std::to_string(given.left.y) + " right " +
         std::to_string(given.right.x) + " " + std::to_string(given.right.y) + " window " +
         std::to_string(given.width) + " " + std::to_string(given.height) + " rectangle " +
         std::to_string(given.rect.left) + " " + std::to_string(given.rect.top) + " " +
         std::to_string(given.rect.right) + " " + std::to_string(given.rect.bottom);
}

void ExpectSearch(StereoPair& pair, const Case& given, PlainValueOf valueOf = PlainValue) {
  const Found expected = PlainSearch(pair, given, valueOf);
  Point2 right = given.right;
  const double best = pair.SearchCorrelation(given.left, right, given.width, given.height, given.rect, false);
  EXPECT_EQ(BitsOf(best), BitsOf(expected.best)) << best << " " << expected.best << " " << TextOf(given);
  EXPECT_EQ(right, expected.place) << TextOf(given);

  Point2 again = given.right;
  double ratio = -1.0;
  pair.SearchCorrelationRatio(given.left, again, given.width, given.height, given.rect, ratio);
  EXPECT_EQ(again, expected.place);
  const double expectedRatio = expected.best > pair.matchThreshold ? expected.best / expected.second : 0.0;
  EXPECT_EQ(BitsOf(ratio), BitsOf(expectedRatio)) << TextOf(given);
}

class RandomCases {
 public:
  explicit RandomCases(unsigned seed) : random_(seed) {}

  // From `first` to `last`, both included.
  int Number(int first, int last) {
    return first + static_cast<int>(random_() % static_cast<unsigned>(last - first + 1));
  }

  // Of few greys, so that there are ties and flat windows, or of many.
  std::vector<std::uint8_t> Pixels(int n) {
    const int nGreys = Number(0, 2) == 0 ? 256 : Number(1, 3);
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(n));
    for (auto& pixel : pixels) pixel = static_cast<std::uint8_t>(255 - Number(0, nGreys - 1));
    return pixels;
  }

  Case Search(int cols, int rows) {
    Case next;
    next.width = Number(1, 9);
    next.height = Number(1, 9);
    next.rect.left = Number(-12, cols + 4);
    next.rect.right = next.rect.left + Number(-1, 45);
    next.rect.top = Number(-12, rows + 4);
    next.rect.bottom = next.rect.top + Number(-1, 5);
    next.left = Place({0, 0, cols - 1, rows - 1});
    next.right = Place(next.rect);
    return next;
  }

  // In the rectangle, on its edges or near it; now and then between pixels.
  Point2 Place(const ImageRect& rect) {
    const double part = Number(0, 9) == 0 ? 0.25 * Number(1, 3) : 0.0;
    return {part + Number(rect.left - 1, std::max(rect.left, rect.right) + 1),
            part + Number(rect.top - 1, std::max(rect.top, rect.bottom) + 1)};
  }

 private:
  std::mt19937 random_;
};

// Tries 1500 pairs of small images with each version of the instructions, up to the first failure.
template <typename Try>
void ForRandomPairs(unsigned seed, Try tryPair) {
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    RandomCases random(seed);
    for (int i = 0; i < 1500 && !testing::Test::HasFailure(); ++i) {
      const int cols = random.Number(1, 40);
      const int rows = random.Number(1, 12);
      VerticalPair photos(cols, rows, random.Pixels(cols * rows), random.Pixels(cols * rows));
      tryPair(random, photos.pair);
    }
  }
}

TEST(WindowSearch, FindsWhatThePlainSearchFinds) {
  ForRandomPairs(3, [](RandomCases& random, StereoPair& pair) {
    const auto [cols, rows] = pair.leftImage->GetSize();
    for (int k = 0; k < 3; ++k) ExpectSearch(pair, random.Search(cols, rows));
  });
}

TEST(WindowSearch, OffsetsAroundThePlaceFindWhatThePlainSearchFinds) {
  ForRandomPairs(4, [](RandomCases& random, StereoPair& pair) {
    const auto [cols, rows] = pair.leftImage->GetSize();
    const Case given = random.Search(cols, rows);
    pair.targetWidth = given.width;
    pair.targetHeight = given.height;
    const int rowRange = random.Number(-1, 3);
    const int colRange = random.Number(-1, 20);
    const Found expected = PlainSearchInWindow(pair, given, rowRange, colRange);
    Point2 right = given.right;
    const double best = pair.SearchCorrelationInWindow(given.left, right, rowRange, colRange);
    EXPECT_EQ(BitsOf(best), BitsOf(expected.best)) << TextOf(given);
    EXPECT_EQ(right, expected.place) << TextOf(given);
  });
}

// Windows of more pixels than one part of the sums takes, and of more than a strip does.
TEST(WindowSearch, OfLongAndLargeWindowsFindsWhatThePlainSearchFinds) {
  constexpr int kCols = 700;
  constexpr int kRows = 300;
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    RandomCases random(5);
    VerticalPair photos(kCols, kRows, random.Pixels(kCols * kRows), random.Pixels(kCols * kRows));
    for (const auto& [width, height] :
         {std::pair{601, 2}, {2, 290}, {1, 299}, {530, 1}, {40, 41}, {270, 260}}) {
      ExpectSearch(photos.pair, {.left = {350.0, 150.0},
                                 .right = {352.0, 150.0},
                                 .width = width,
                                 .height = height,
                                 .rect = {345, 149, 352, 151}});
    }
    // Large windows that leave the image: by half, and to the left and above by all but a pixel, or wholly
    for (const ImageRect& rect : {ImageRect{690, 279, 694, 281}, ImageRect{-136, -131, -133, -129}}) {
      ExpectSearch(photos.pair, {.left = {350.0, 150.0},
                                 .right = {rect.left + 1.0, rect.top + 1.0},
                                 .width = 270,
                                 .height = 260,
                                 .rect = rect});
    }
    // More places in a row than one strip has, with the image's ends among them
    ExpectSearch(photos.pair, {.left = {350.0, 150.0},
                               .right = {600.0, 151.0},
                               .width = 3,
                               .height = 2,
                               .rect = {-20, 150, 720, 151}});
  }
}

TEST(WindowSearch, OfWindowsFarLargerThanTheImagesEndsSoon) {
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    VerticalPair photos(50, 40, Noise(50 * 40, 1), Moved(Noise(50 * 40, 1), 50, 2, -7));
    ExpectSearch(photos.pair,
                 {.left = {25.0, 20.0},
                  .right = {20.0, 20.0},
                  .width = 5001,
                  .height = 5001,
                  .rect = {-30, 10, 80, 30}},
                 PlainValueOfHugeWindow);
    Point2 right{20.0, 20.0};
    photos.pair.SearchCorrelation({25.0, 20.0}, right, 5001, 5001, {-30, 10, 80, 30}, false);
    EXPECT_EQ(right, (Point2{18.0, 22.0}));
  }
}

TEST(WindowSearch, WithoutAnyRangeComparesOnlyTheStartPlace) {
  // The place beside the start would be a perfect match.
  VerticalPair photos(30, 20, Noise(30 * 20, 1), Moved(Noise(30 * 20, 1), 30, 0, 1));
  photos.pair.targetWidth = 5;
  photos.pair.targetHeight = 3;
  Point2 right{14.0, 9.0};
  const double value = photos.pair.CompareWindows({14.0, 9.0}, right, true, 5, 3, false);
  EXPECT_LT(value, 0.9);
  EXPECT_EQ(photos.pair.SearchCorrelationInWindow({14.0, 9.0}, right, 0, 0), value);
  EXPECT_EQ(right, (Point2{14.0, 9.0}));
  // In a rectangle of one place that is its right and bottom edge, which the walk passes over, too.
  EXPECT_EQ(photos.pair.SearchCorrelation({14.0, 9.0}, right, 5, 3, {14, 9, 14, 9}, false), 0.0);
  EXPECT_EQ(right, (Point2{14.0, 9.0}));
}

TEST(WindowSearch, OfManyRowsFindsTheFirstOfEqualPlaces) {
  // Stripes of a period of 300 columns and 4 rows, so that there are equal places in all parts of the search.
  constexpr int kCols = 640;
  constexpr int kRows = 300;
  std::vector<std::uint8_t> pixels(kCols * kRows);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    pixels[i] = static_cast<std::uint8_t>((i % kCols % 300 == 10 ? 100 : 0) + (i / kCols % 4 == 1 ? 50 : 0));
  }
  VerticalPair photos(kCols, kRows, pixels, pixels);
  Point2 right{5.0, 5.0};
  EXPECT_NEAR(photos.pair.SearchCorrelation({610.0, 201.0}, right, 5, 3, {300, 3, 630, 290}, false), 1.0,
              1e-12);
  EXPECT_EQ(right, (Point2{310.0, 5.0}));
}

TEST(WindowSearch, TiesGoToThePositionGivenAndThenToTheFirstPlace) {
  std::vector<std::uint8_t> pixels(20 * 9);
  for (const int col : {3, 9, 15}) pixels[static_cast<std::size_t>(4 * 20 + col)] = 200;
  VerticalPair photos(20, 9, pixels, pixels);
  Point2 right{9.0, 4.0};
  photos.pair.SearchCorrelation({3.0, 4.0}, right, 3, 3, {1, 1, 18, 7}, false);
  EXPECT_EQ(right, (Point2{9.0, 4.0}));
  right = {10.0, 4.0};
  photos.pair.SearchCorrelation({3.0, 4.0}, right, 3, 3, {4, 1, 18, 7}, false);
  EXPECT_EQ(right, (Point2{9.0, 4.0}));
}

TEST(WindowSearch, APositionOnTheRightOrBottomEdgeIsNotComparedAtAll) {
  std::vector<std::uint8_t> pixels(20 * 9);
  pixels[4 * 20 + 9] = 200;
  VerticalPair photos(20, 9, pixels, pixels);
  for (const ImageRect& rect : {ImageRect{9, 4, 9, 5}, ImageRect{9, 4, 10, 4}, ImageRect{9, 4, 9, 4}}) {
    Point2 right{9.0, 4.0};
    EXPECT_LT(photos.pair.SearchCorrelation({9.0, 4.0}, right, 3, 3, rect, false), 0.99);
  }
  Point2 right{9.0, 4.0};
  EXPECT_EQ(photos.pair.SearchCorrelation({9.0, 4.0}, right, 3, 3, {9, 4, 9, 4}, false), 0.0);
  EXPECT_EQ(right, (Point2{9.0, 4.0}));
}

TEST(WindowSearch, NegativeCoefficientsNeverReplaceAPositionThatIsOutside) {
  // Right is left upside down: each 1 x 3 window has the coefficient -1 at its own place.
  VerticalPair photos(3, 3, {1, 1, 1, 2, 2, 2, 3, 3, 3}, {3, 3, 3, 2, 2, 2, 1, 1, 1});
  Point2 right{7.0, 7.0};
  EXPECT_EQ(photos.pair.SearchCorrelation({1.0, 1.0}, right, 1, 3, {0, 1, 2, 1}, false), 0.0);
  EXPECT_EQ(right, (Point2{7.0, 7.0}));
}

TEST(WindowSearch, ANegativeValueAtThePositionGivenIsABest) {
  VerticalPair photos(3, 3, {1, 1, 1, 2, 2, 2, 3, 3, 3}, {3, 3, 3, 2, 2, 2, 1, 1, 1});
  Point2 right{1.0, 1.0};
  EXPECT_EQ(photos.pair.SearchCorrelation({1.0, 1.0}, right, 1, 3, {1, 1, 2, 2}, false), -1.0);
  EXPECT_EQ(right, (Point2{1.0, 1.0}));
}

TEST(WindowSearch, EndlessRectanglesEndSoon) {
  constexpr std::int32_t kFar = std::numeric_limits<std::int32_t>::max();
  VerticalPair flat(4, 4);
  Point2 right{2.0, 2.0};
  // All places are alike: two flat windows
  EXPECT_EQ(flat.pair.SearchCorrelation({2.0, 2.0}, right, 3, 3, {-kFar, -kFar, kFar, kFar}, false), 1.0);
  EXPECT_EQ(right, (Point2{2.0, 2.0}));
  right = {5e9, 2.0};
  EXPECT_EQ(flat.pair.SearchCorrelation({2.0, 2.0}, right, 3, 3, {-kFar, -kFar, kFar, kFar}, false), 1.0);
  EXPECT_EQ(right, (Point2{-double{kFar}, -double{kFar}}));
  right = {-double{kFar}, -double{kFar}};
  EXPECT_EQ(flat.pair.SearchCorrelationInWindow({2.0, 2.0}, right, kFar, kFar), 1.0);
}

TEST(WindowSearch, RatioIsZeroWithoutAMatchAndTinyWithoutASecondValue) {
  VerticalPair photos(5, 3, Noise(15, 1), Noise(15, 1));
  double ratio = -1.0;
  Point2 right{2.0, 1.0};
  EXPECT_EQ(photos.pair.SearchCorrelationRatio({2.0, 1.0}, right, 3, 3, {2, 1, 2, 1}, ratio), 0.0);
  EXPECT_EQ(ratio, 0.0);
  right = {0.0, 0.0};  // does not count, so that the second best is 0.0
  EXPECT_NEAR(photos.pair.SearchCorrelationRatio({2.0, 1.0}, right, 3, 3, {2, 1, 2, 1}, ratio), 1.0, 1e-12);
  EXPECT_EQ(ratio, std::numeric_limits<double>::infinity());
}

TEST(WindowSearch, WithoutImagesOrASizeThereIsNoValue) {
  StereoPair none;
  Point2 right{1.0, 1.0};
  EXPECT_EQ(none.CompareWindows({1.0, 1.0}, right, true, 3, 3, false), -1.0);
  EXPECT_EQ(none.SearchCorrelation({1.0, 1.0}, right, 3, 3, {0, 0, 2, 2}, false), -1.0);
  VerticalPair photos(5, 5);
  EXPECT_EQ(photos.pair.CompareWindows({1.0, 1.0}, right, true, 0, 3, false), -1.0);
  EXPECT_EQ(photos.pair.CompareWindows({1.0, 1.0}, right, true, 3, -1, false), -1.0);
  EXPECT_EQ(photos.pair.SearchCorrelation({1.0, 1.0}, right, -3, 3, {5, 5, 6, 6}, false), 0.0);
  EXPECT_EQ(right, (Point2{1.0, 1.0}));
}

TEST(WindowSearch, AHeaderThatPromisesMorePixelsThanThereAreReadsZeros) {
  RandomCases random(6);
  const auto pixels = random.Pixels(20 * 10);
  VerticalPair photos(20, 10, pixels, pixels);
  photos.right.image.SetSize(20, 50);
  photos.left.image.SetSize(90, 10);
  ExpectSearch(photos.pair, {.left = {3.0, 4.0}, .right = {10.0, 9.0}, .rect = {5, 0, 19, 49}});
  photos.left.image.SetSize(20, 10);
  photos.right.image.SetSize(90, 10);
  ExpectSearch(photos.pair, {.left = {3.0, 4.0}, .right = {10.0, 9.0}, .rect = {-5, -5, 95, 15}});
}

TEST(WindowSearch, PixelsOfOtherTypesAreReadAsBytes) {
  RandomCases random(8);
  const auto pixels = random.Pixels(20 * 10);
  VerticalPair photos(20, 10, pixels, pixels);
  ErdasHeader header;
  header.packType = kPackFloat;
  header.cols = 20;
  header.rows = 10;
  photos.right.image.Create(header, false);
  for (int i = 0; i < 200; ++i) photos.right.image.SetPixel(0, i / 20, i % 20, 1000.0 / (i + 1));
  ExpectSearch(photos.pair, {.left = {8.0, 4.0}, .right = {10.0, 9.0}, .rect = {-3, -3, 23, 13}});
}

TEST(WindowSearch, WithTheCheckOfDifferencesComparesPlaceByPlace) {
  VerticalPair photos(5, 1, {10, 20, 30, 20, 10}, {10, 20, 90, 20, 10});
  TestFrontEnd frontEnd;
  Point2 right{3.0, 0.0};
  photos.pair.SearchCorrelation({1.0, 0.0}, right, 1, 1, {2, 0, 4, 1}, true);
  // The position first, then the five others of the rectangle; single pixels are flat.
  EXPECT_EQ(frontEnd.EventsWith("trace: "), std::vector<std::string>(6, "trace: CCC: 1, diffStdev: 0\n"));
  EXPECT_EQ(right, (Point2{3.0, 0.0}));

  // The coefficient is 1 at column 2, too, but the differences spread there.
  photos.pair.maxDiffStdev = 5.0;
  right = {3.0, 0.0};
  const double best = photos.pair.SearchCorrelation({1.0, 0.0}, right, 2, 1, {1, 0, 4, 0}, true);
  EXPECT_EQ(best, 1.0);
  EXPECT_EQ(right, (Point2{1.0, 0.0}));
}

}  // namespace
}  // namespace corvane
