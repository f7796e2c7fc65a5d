#include "Segmentation/SegmentImage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <limits>
#include <map>
#include <random>
#include <set>

#include "Segmentation/GaussianPlane.h"
#include "Segmentation/PixelEdges.h"
#include "Segmentation/PlainSegmentation.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::Each;
using testing::IsEmpty;
using testing::SizeIs;

using Grey = PlaneImage<std::uint8_t>;
using Colours = PlaneImage<Rgb>;

constexpr float kNoSmoothing = 0.0f;

// Rectangles of random grey, with noise over them.
Grey RandomGrey(std::int32_t width, std::int32_t height, unsigned noise) {
  std::mt19937 random(static_cast<unsigned>(width * 1000 + height));
  std::array<unsigned, 64> base;
  for (unsigned& grey : base) grey = random() % 200;
  Grey image(width, height);
  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < width; ++x) {
      const auto field = static_cast<std::size_t>(y / 13 % 8 * 8 + x / 17 % 8);
      image.Row(y)[x] = static_cast<std::uint8_t>(base[field] + random() % noise);
    }
  }
  return image;
}

Colours RandomColours(std::int32_t width, std::int32_t height, unsigned noise) {
  const Grey r = RandomGrey(width, height, noise);
  const Grey g = RandomGrey(height, width, noise);
  Colours image(width, height);
  for (std::size_t i = 0; i < image.pixels.size(); ++i) {
    image.pixels[i] = {r.pixels[i], g.pixels[i], static_cast<std::uint8_t>(r.pixels[i] / 2 + 3)};
  }
  return image;
}

std::vector<std::vector<float>> FloatsOf(const Grey& image) {
  return {{image.pixels.begin(), image.pixels.end()}};
}

std::vector<std::vector<float>> FloatsOf(const Colours& image) {
  std::vector<std::vector<float>> planes(3);
  for (const Rgb& colour : image.pixels) {
    planes[0].push_back(colour.r);
    planes[1].push_back(colour.g);
    planes[2].push_back(colour.b);
  }
  return planes;
}

template <typename Image>
void ExpectAsPlain(const Image& image, float sigma, float c, int minSize) {
  PlainSegmentation plain(FloatsOf(image), image.width, image.height, sigma, c, minSize);
  std::int32_t count = -1;
  const Colours regions = SegmentImage(image, sigma, c, minSize, count);
  EXPECT_EQ(count, plain.Count());
  EXPECT_EQ(regions.width, image.width);
  EXPECT_EQ(regions.height, image.height);
  EXPECT_TRUE(regions.pixels == plain.Picture())
      << image.width << " x " << image.height << ", sigma " << sigma << ", c " << c << ", " << minSize;
}

// A wide group of edges of the same upper bits is sorted by digits, a small one by comparisons: both occur.
TEST(SegmentImageTest, GreyImagesGiveWhatThePlainFormGives) {
  for (const auto& [width, height] : {std::pair{97, 61}, {200, 150}, {5, 300}, {300, 2}, {2, 2}}) {
    for (const unsigned noise : {1u, 9u, 55u}) {
      const Grey image = RandomGrey(width, height, noise);
      for (const float sigma : {kNoSmoothing, 0.5f, 1.0f, 3.3f}) ExpectAsPlain(image, sigma, 350.0f, 20);
      ExpectAsPlain(image, 0.8f, 1.0f, 1);
      ExpectAsPlain(image, 0.8f, 32767.0f, 150);
    }
  }
}

TEST(SegmentImageTest, ColourImagesGiveWhatThePlainFormGives) {
  for (const unsigned noise : {1u, 9u, 55u}) {
    const Colours image = RandomColours(120, 90, noise);
    for (const float sigma : {kNoSmoothing, 1.0f}) ExpectAsPlain(image, sigma, 350.0f, 20);
  }
}

TEST(SegmentImageTest, ALargeNoisyImageGivesWhatThePlainFormGives) {
  ExpectAsPlain(RandomGrey(700, 500, 40), 1.0f, 350.0f, 150);
}

TEST(SegmentImageTest, ASigmaBeyondTheImageGivesWhatThePlainFormGives) {
  ExpectAsPlain(RandomGrey(23, 17, 9), 30.0f, 350.0f, 5);
  ExpectAsPlain(RandomGrey(3, 2, 9), 10000.0f, 350.0f, 5);
}

TEST(SegmentImageTest, AnImageOfOnePixelIsOneRegion) {
  const Grey image(1, 1);
  std::int32_t count = 0;
  EXPECT_THAT(SegmentImage(image, 1.0f, 350.0f, 150, count).pixels, SizeIs(1));
  EXPECT_EQ(count, 1);
  ExpectAsPlain(image, 1.0f, 350.0f, 150);
  ExpectAsPlain(Colours(1, 1), 1.0f, 350.0f, 150);
}

TEST(SegmentImageTest, ImagesOfOneRowOrColumn) {
  ExpectAsPlain(RandomGrey(50, 1, 9), 1.0f, 10.0f, 3);
  ExpectAsPlain(RandomGrey(1, 50, 9), 1.0f, 10.0f, 3);
}

TEST(SegmentImageTest, AUniformImageIsOneRegion) {
  Grey image(40, 30);
  std::ranges::fill(image.pixels, std::uint8_t{77});
  std::int32_t count = 0;
  const Colours regions = SegmentImage(image, 1.0f, 1.0f, 1, count);
  EXPECT_EQ(count, 1);
  EXPECT_THAT(regions.pixels, Each(regions.pixels[0]));
}

TEST(SegmentImageTest, AStepIsTwoRegions) {
  Grey image(40, 30);
  for (std::int32_t y = 0; y < 30; ++y) std::fill_n(image.Row(y), 25, std::uint8_t{200});
  std::int32_t count = 0;
  const Colours regions = SegmentImage(image, kNoSmoothing, 100.0f, 10, count);
  EXPECT_EQ(count, 2);
  for (std::int32_t y = 0; y < 30; ++y) {
    for (std::int32_t x = 0; x < 40; ++x) EXPECT_EQ(regions.Row(y)[x], regions.Row(0)[x < 25 ? 0 : 39]);
  }
}

TEST(SegmentImageTest, WithAScaleOf1SmallRegionsAreMergedByTheirSizeOnly) {
  // All neighbours differ by more than 1, and by more than any threshold of 1 / size allows.
  Grey image(32, 32);
  for (std::int32_t y = 0; y < 32; ++y) {
    for (std::int32_t x = 0; x < 32; ++x)
      image.Row(y)[x] = static_cast<std::uint8_t>((x % 8) * 8 + (y % 8) * 3);
  }
  std::int32_t count = 0;
  SegmentImage(image, kNoSmoothing, 1.0f, 1, count);
  EXPECT_EQ(count, 1024);
  SegmentImage(image, kNoSmoothing, 1.0f, 100, count);
  EXPECT_LE(count, 10);
  EXPECT_GE(count, 1);
}

TEST(SegmentImageTest, RegionsHaveTheLeastSizeAndAreConnected) {
  const Grey image = RandomGrey(128, 100, 30);
  PlainSegmentation plain(FloatsOf(image), 128, 100, 0.8f, 100.0f, 40);
  std::int32_t count = 0;
  const Colours regions = SegmentImage(image, 0.8f, 100.0f, 40, count);
  // The plain form's roots tell regions apart that happen to have the same colour.
  std::map<int, int> sizes;
  const std::vector<int> roots = plain.Roots();
  for (const int root : roots) ++sizes[root];
  EXPECT_EQ(std::ssize(sizes), count);
  for (const auto& [root, size] : sizes) EXPECT_GE(size, 40);
  for (std::size_t i = 0; i < roots.size(); ++i) {
    EXPECT_EQ(regions.pixels[i], regions.pixels[static_cast<std::size_t>(roots[i])]);
  }
  // Flood each region from its root over the eight neighbours.
  std::set<int> reached;
  std::vector<int> open;
  for (const auto& [root, size] : sizes) open.push_back(root);
  while (!open.empty()) {
    const int pixel = open.back();
    open.pop_back();
    if (!reached.insert(pixel).second) continue;
    for (int y = std::max(pixel / 128 - 1, 0); y <= std::min(pixel / 128 + 1, 99); ++y) {
      for (int x = std::max(pixel % 128 - 1, 0); x <= std::min(pixel % 128 + 1, 127); ++x) {
        const int next = y * 128 + x;
        if (roots[static_cast<std::size_t>(next)] == roots[static_cast<std::size_t>(pixel)])
          open.push_back(next);
      }
    }
  }
  EXPECT_EQ(reached.size(), roots.size());
}

TEST(SegmentImageTest, SigmaZeroCountsAsAHundredth) {
  const Grey image = RandomGrey(60, 50, 20);
  std::int32_t count = 0;
  const Colours zero = SegmentImage(image, 0.0f, 100.0f, 10, count);
  for (const float sigma : {0.01f, -3.0f, std::numeric_limits<float>::quiet_NaN()}) {
    EXPECT_TRUE(SegmentImage(image, sigma, 100.0f, 10, count).pixels == zero.pixels) << sigma;
  }
}

TEST(SegmentImageTest, ColoursAreTheSameInEveryRun) {
  const Grey image = RandomGrey(60, 50, 20);
  std::int32_t count = 0;
  const Colours first = SegmentImage(image, 1.0f, 100.0f, 10, count);
  std::srand(1);
  std::rand();
  EXPECT_TRUE(SegmentImage(image, 1.0f, 100.0f, 10, count).pixels == first.pixels);
}

TEST(SegmentImageTest, RegionsMayHaveTheSameColourByChance) {
  // 70000 pixels of which all neighbours differ, each a region of its own with its own place in the sequence.
  Grey image(700, 100);
  for (std::int32_t y = 0; y < 100; ++y) {
    for (std::int32_t x = 0; x < 700; ++x)
      image.Row(y)[x] = static_cast<std::uint8_t>(x % 5 * 50 + y % 5 * 9);
  }
  std::int32_t count = 0;
  const Colours regions = SegmentImage(image, kNoSmoothing, 1.0f, 1, count);
  EXPECT_EQ(count, 70000);
  std::srand(55);
  std::set<std::array<int, 3>> expected, found;
  for (const Rgb& colour : regions.pixels) {
    std::array<int, 3> next;
    for (int& component : next) component = std::rand() & 255;
    expected.insert(next);
    found.insert({colour.r, colour.g, colour.b});
  }
  EXPECT_EQ(found, expected);
  EXPECT_LT(found.size(), 70000u);
}

TEST(SegmentImageTest, TheStepsOfALargeImageAreTold) {
  TestFrontEnd ui;
  std::int32_t count = 0;
  SegmentImage(Grey(2000, 2000), kNoSmoothing, 350.0f, 150, count);
  EXPECT_THAT(ui.events, IsEmpty());
  SegmentImage(Grey(2001, 2000), kNoSmoothing, 350.0f, 150, count);
  EXPECT_THAT(ui.events, testing::ElementsAre("status 0: Smoothing ...", "status 0: Building edges ...",
                                              "status 0: Sorting edges ...", "status 0: Merging ..."));
}

TEST(SegmentImageTest, NoImageAndSigmasThatAreTooLargeGiveNothing) {
  std::int32_t count = 7;
  EXPECT_THAT(SegmentImage(Grey(), 1.0f, 350.0f, 150, count).pixels, IsEmpty());
  EXPECT_EQ(count, 0);
  for (const float sigma : {10001.0f, 1e30f, std::numeric_limits<float>::infinity()}) {
    count = 7;
    EXPECT_THAT(SegmentImage(Grey(3, 3), sigma, 350.0f, 150, count).pixels, IsEmpty()) << sigma;
    EXPECT_EQ(count, 0);
  }
}

TEST(SegmentImageTest, ImagesBeyondTheMemoryAreRefused) {
  EXPECT_TRUE(HasMemoryToSegment(1000000));
  EXPECT_FALSE(HasMemoryToSegment(std::int64_t{1} << 40));
  EXPECT_FALSE(HasMemoryToSegment(PixelEdges::kMostPixels + 1));
}

TEST(SegmentImageTest, OddScalesAndSizesDoNoHarm) {
  const Grey image = RandomGrey(20, 20, 20);
  for (const float c : {0.0f, -5.0f, 1e30f, std::numeric_limits<float>::quiet_NaN()}) {
    for (const std::int32_t minSize : {INT32_MIN, 0, INT32_MAX}) ExpectAsPlain(image, 1.0f, c, minSize);
  }
}

// Parts

TEST(GaussianMaskTest, HasTheLengthAndSumOfItsSigma) {
  EXPECT_THAT(GaussianMask(1.0f), SizeIs(5));
  EXPECT_THAT(GaussianMask(0.01f), testing::ElementsAre(1.0f, 0.0f));
  EXPECT_THAT(GaussianMask(1.1f), SizeIs(6));  // ceil(4.4) + 1
  const std::vector<float> mask = GaussianMask(2.0f);
  float sum = mask[0];
  for (std::size_t i = 1; i < mask.size(); ++i) sum += 2 * mask[i];
  EXPECT_NEAR(sum, 1.0f, 1e-6f);
  EXPECT_NEAR(mask[2] / mask[0], std::exp(-0.5f), 1e-6f);
}

TEST(SmoothPlaneTest, IsTwoPassesThatTurnTheImage) {
  std::mt19937 random(5);
  for (const auto& [width, height] : {std::pair{31, 20}, {1, 9}, {9, 1}, {1, 1}}) {
    PlaneImage<float> plane(width, height);
    for (float& value : plane.pixels) value = static_cast<float>(random() % 25500) / 100.0f;
    for (const float sigma : {0.01f, 0.7f, 2.0f, 11.0f}) {
      const auto turned = PlainSegmentation::Convolved(plane.pixels, width, height, sigma);
      const auto expected = PlainSegmentation::Convolved(turned, height, width, sigma);
      PlaneImage<float> smooth = plane;
      SmoothPlane(smooth, GaussianMask(sigma));
      EXPECT_EQ(smooth.pixels, expected);
    }
  }
}

TEST(PixelEdgesTest, GoFromEachPixelToFourNeighboursByWeight) {
  // 0 3
  // 4 9
  PlaneImage<float> plane(2, 2);
  plane.pixels = {0.0f, 3.0f, 4.0f, 9.0f};
  std::vector<PlaneImage<float>> planes = {plane, PlaneImage<float>(2, 2), PlaneImage<float>(2, 2)};
  PixelEdges edges(std::move(planes));
  edges.Sort();
  ASSERT_EQ(edges.size(), 6u);
  const float weights[] = {1.0f, 3.0f, 4.0f, 5.0f, 6.0f, 9.0f};
  const int pixels[][2] = {{2, 1}, {0, 1}, {0, 2}, {2, 3}, {1, 3}, {0, 3}};
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(edges[i].w, weights[i]);
    EXPECT_EQ(edges[i].a, pixels[i][0]);
    EXPECT_EQ(edges[i].b, pixels[i][1]);
  }
}

TEST(PixelEdgesTest, OfEqualWeightKeepTheOrderOfPixelsAndNeighbours) {
  std::vector<PlaneImage<float>> planes;
  planes.emplace_back(3, 2);
  PixelEdges edges(std::move(planes));
  edges.Sort();
  const int pixels[][2] = {{0, 1}, {0, 3}, {0, 4}, {1, 2}, {1, 4}, {1, 5},
                           {2, 5}, {3, 4}, {3, 1}, {4, 5}, {4, 2}};
  ASSERT_EQ(edges.size(), std::size(pixels));
  for (std::size_t i = 0; i < edges.size(); ++i) {
    EXPECT_EQ(edges[i].a, pixels[i][0]) << i;
    EXPECT_EQ(edges[i].b, pixels[i][1]) << i;
  }
}

TEST(PixelEdgesTest, KeepIfDropsWhatIsRefused) {
  std::vector<PlaneImage<float>> planes;
  planes.emplace_back(20, 20);
  PixelEdges edges(std::move(planes));
  edges.Sort();
  const std::size_t before = edges.size();
  std::size_t nAsked = 0;
  edges.KeepIf(DisjointSet(400), [&](const SegEdge& edge) {
    ++nAsked;
    return edge.a == 7;
  });
  EXPECT_EQ(nAsked, before);
  ASSERT_EQ(edges.size(), 3u);  // in the first row there is no neighbour above
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(edges[i].a, 7);
}

TEST(DisjointSetTest, JoinGoesByRankAndFindTiesTheElementAlone) {
  DisjointSet sets(8);
  EXPECT_EQ(sets.SetCount(), 8);
  sets.Join(0, 1);
  EXPECT_EQ(sets.Find(0), 1);  // of equal ranks the second remains
  EXPECT_EQ(sets.Size(1), 2);
  sets.Join(1, 2);  // rank 1 is above rank 0
  EXPECT_EQ(sets.Find(2), 1);
  sets.Join(3, 1);
  EXPECT_EQ(sets.Find(3), 1);
  sets.Join(4, 5);
  sets.Join(1, 5);  // both of rank 1
  EXPECT_EQ(sets.Find(0), 5);
  EXPECT_EQ(sets.Size(5), 6);
  EXPECT_EQ(sets.SetCount(), 3);
}

TEST(SegmentGraphTest, ThresholdsGrowLooserWithC) {
  std::vector<SegEdge> edges = {{5.0f, 2, 3}, {1.0f, 0, 1}, {2.0f, 1, 2}};
  // c = 2: 0 and 1 join at 1, their threshold is 1 + 2 / 2; 2 joins at 2, which is not above it: 2 + 2 / 3.
  DisjointSet sets = SegmentGraph(4, edges, 2.0f);
  EXPECT_EQ(sets.SetCount(), 2);
  EXPECT_EQ(sets.Find(0), sets.Find(2));
  EXPECT_NE(sets.Find(0), sets.Find(3));
  EXPECT_EQ(edges[0].w, 1.0f);
  EXPECT_EQ(edges[2].w, 5.0f);
  EXPECT_EQ(SegmentGraph(4, edges, 1.9f).SetCount(), 3);
  EXPECT_EQ(SegmentGraph(4, edges, 9.0f).SetCount(), 1);
  EXPECT_EQ(SegmentGraph(3, {}, 9.0f).SetCount(), 3);
}

TEST(SegmentGraphTest, OverThePixelEdgesGivesTheRegionsOfTheImage) {
  const Grey image = RandomGrey(90, 70, 25);
  std::vector<PlaneImage<float>> planes;
  planes.emplace_back(90, 70);
  std::ranges::copy(image.pixels, planes[0].pixels.begin());
  const PixelEdges sorted(std::move(planes));
  std::vector<SegEdge> edges;
  for (std::size_t i = 0; i < sorted.size(); ++i) edges.push_back(sorted[i]);
  std::int32_t count = 0;
  SegmentImage(image, kNoSmoothing, 200.0f, 0, count);
  EXPECT_EQ(SegmentGraph(90 * 70, edges, 200.0f).SetCount(), count);
}

}  // namespace
}  // namespace corvane
