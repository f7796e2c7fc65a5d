#include "dib/Stereogram.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include "DibFixture.h"

namespace corvane {
namespace {

Dib FlatDepths(int width, int height, std::uint8_t z) {
  return ByteDib(std::vector(static_cast<std::size_t>(height),
                             std::vector<std::uint8_t>(static_cast<std::size_t>(width), z)));
}

// trunc((255 - z / 3) * 270 / (510 - z / 3) + 0.5): 135 for 0, 108 for 255, 124 for 120.
int Separation(int z) {
  return z == 0 ? 135 : z == 255 ? 108 : 124;
}

TEST(Stereogram, AFlatImageRepeatsWithThePeriodOfItsDepth) {
  for (const int z : {0, 120, 255}) {
    const Dib depths = FlatDepths(600, 2, static_cast<std::uint8_t>(z));
    Dib picture = MakeBlackDib(600, 2, 8);
    std::srand(1);
    ASSERT_EQ(MakeStereogram(depths, picture), 1);
    const auto row = DibRow(picture, 0);
    const int s = Separation(z);
    // Where the sight is free on both sides each dot equals the one a period to its left: away from the
    // edges, as t climbs only until zt reaches 255.
    int nEqual = 0;
    for (int x = 300; x < 450; ++x)
      nEqual += row[static_cast<std::size_t>(x)] == row[static_cast<std::size_t>(x - s)];
    EXPECT_EQ(nEqual, 150) << z;
    std::set<int> colours(row.begin() + 300, row.begin() + 300 + s);
    EXPECT_GT(colours.size(), 50u) << "the period itself is random";
  }
}

TEST(Stereogram, APixelWithLeftBelowZeroKeepsItsOwnRandomColour) {
  // A row narrower than the separation has no links: colours come from right to left, bottom row last.
  const Dib depths = FlatDepths(100, 2, 255);
  Dib picture = MakeBlackDib(100, 2, 8);
  std::srand(9);
  ASSERT_EQ(MakeStereogram(depths, picture), 1);
  std::srand(9);
  for (const int y : {1, 0}) {
    for (int x = 99; x >= 0; --x) {
      EXPECT_EQ(DibRow(picture, y)[static_cast<std::size_t>(x)], std::rand() % 256);
    }
  }
}

// The steps as they are told, with nothing left out but what would be read outside of the row.
std::vector<int> PlainLinks(const std::vector<int>& z, bool& isInside) {
  const int width = static_cast<int>(z.size());
  std::vector<int> same(z.size());
  for (int x = 0; x < width; ++x) same[static_cast<std::size_t>(x)] = x;
  for (int x = 0; x < width; ++x) {
    const double depth = z[static_cast<std::size_t>(x)];
    const int s = static_cast<int>((255 - depth / 3) * 270 / (2 * 255 - depth / 3) + 0.5);
    int left = x - s;
    int right = left + s;
    if (left < 0 || right >= width) continue;
    int t = 0;
    double zt = 0;
    bool visible = false;
    do {
      ++t;
      zt = depth + 2 * (2 * 255 - depth / 3) * t / 90;
      visible = x - t >= 0 && x + t <= width && z[static_cast<std::size_t>(x - t)] < zt &&
                (x + t == width || z[static_cast<std::size_t>(x + t)] < zt);
    } while (visible && zt < 255);
    if (!visible) continue;
    int k = same[static_cast<std::size_t>(left)];
    while (k != left && k != right) {
      if (k < right) {
        left = k;
      } else {
        left = right;
        right = k;
      }
      k = same[static_cast<std::size_t>(left)];
    }
    same[static_cast<std::size_t>(left)] = right;
    isInside = isInside && left < width && right < width;
  }
  return same;
}

TEST(Stereogram, RandomDepthsEqualThePlainSteps) {
  std::srand(3);
  for (int trial = 0; trial < 40; ++trial) {
    std::vector<int> z(700);
    int depth = 100;
    for (int& value : z) {
      if (std::rand() % 40 == 0) depth = std::rand() % 256;
      value = depth;
    }
    bool isInside = true;
    const std::vector<int> same = PlainLinks(z, isInside);
    ASSERT_TRUE(isInside);
    const Dib depths = ByteDib({std::vector<std::uint8_t>(z.begin(), z.end())});
    Dib picture = MakeBlackDib(700, 1, 8);
    std::srand(static_cast<unsigned>(trial));
    ASSERT_EQ(MakeStereogram(depths, picture), 1);
    std::srand(static_cast<unsigned>(trial));
    std::vector<int> expected(700);
    for (int x = 699; x >= 0; --x) {
      const auto at = static_cast<std::size_t>(x);
      expected[at] = same[at] == x ? std::rand() % 256 : expected[static_cast<std::size_t>(same[at])];
    }
    for (std::size_t x = 0; x < 700; ++x) ASSERT_EQ(DibRow(picture, 0)[x], expected[x]) << trial << " " << x;
  }
}

TEST(Stereogram, TwentyFourBitsGetComponentsOfZeroAndOne) {
  const Dib depths = MakeBlackDib(50, 1, 24);
  Dib picture = depths;
  std::srand(4);
  ASSERT_EQ(MakeStereogram(depths, picture), 1);
  std::srand(4);
  for (int x = 49; x >= 0; --x) {
    for (int i = 0; i < 3; ++i)
      EXPECT_EQ(DibRow(picture, 0)[static_cast<std::size_t>(3 * x + i)], std::rand() % 2);
  }
}

TEST(Stereogram, TheCanvasHasAColourForEachDot) {
  Dib depths = MakeBlackDib(3, 2, 8);
  DibBits(depths)[0] = 9;
  depths[40 + 4] = 77;  // blue of colour 1
  depths[32] = 2;       // two colours alone
  depths.erase(depths.begin() + 40 + 8, depths.begin() + 40 + 1024);
  ASSERT_TRUE(IsDib(depths));
  const Dib canvas = MakeStereogramCanvas(depths);
  EXPECT_EQ(DibColorCount(canvas), 256);
  EXPECT_EQ(DibColours(canvas).Get(std::vector<std::uint8_t>{1}, 0), 0x01014du);
  EXPECT_EQ(DibColours(canvas).Get(std::vector<std::uint8_t>{200}, 0), 0xc8c8c8u);
  EXPECT_EQ(DibBits(canvas)[0], 0);
  EXPECT_EQ(DibRowBytes(canvas), 4);
  EXPECT_TRUE(MakeStereogramCanvas({}).empty());
}

TEST(Stereogram, RefusesOtherFormatsAndSizes) {
  Dib picture = MakeBlackDib(8, 8, 8);
  const Dib untouched = picture;
  EXPECT_EQ(MakeStereogram(MakeBlackDib(8, 8, 1), picture), -1);
  EXPECT_EQ(MakeStereogram(MakeBlackDib(8, 7, 8), picture), -1);
  EXPECT_EQ(MakeStereogram({}, picture), -1);
  EXPECT_EQ(picture, untouched);
}

}  // namespace
}  // namespace corvane
