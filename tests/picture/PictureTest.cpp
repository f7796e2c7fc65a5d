#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <cmath>
#include <limits>
#include <random>

#include "picture/QtCanvas.h"
#include "picture/SegmentClip.h"
#include "support/Pixels.h"

namespace corvane {
namespace {

constexpr std::int64_t kFar = std::numeric_limits<std::int64_t>::max();

QImage Drawn(const std::vector<PixelSegment>& segments, PixelPoint origin = {}) {
  QImage image(40, 30, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  QtCanvas canvas(painter, {origin.x, origin.y, origin.x + 40, origin.y + 30}, origin);
  canvas.SetPen({255, 0, 0}, 1);
  canvas.DrawSegments(segments);
  painter.end();
  return image;
}

TEST(QtCanvas, DrawsInItsColourWithoutSmoothing) {
  const QImage image = Drawn({{{5, 7}, {8, 7}}});
  EXPECT_EQ(DrawnPixels(image), (std::vector<PixelPoint>{{5, 7}, {6, 7}, {7, 7}, {8, 7}}));
  EXPECT_EQ(image.pixel(6, 7), qRgb(255, 0, 0));
}

TEST(QtCanvas, OriginIsTheContentAtTheTopLeft) {
  const std::int64_t far = 2000000000;
  EXPECT_EQ(DrawnPixels(Drawn({{{far + 5, far + 7}, {far + 6, far + 7}}}, {far, far})),
            (std::vector<PixelPoint>{{5, 7}, {6, 7}}));
}

TEST(QtCanvas, HugeCoordinatesAreSafe) {
  const auto across = DrawnPixels(Drawn({{{-kFar - 1, 3}, {kFar, 3}}}));
  ASSERT_EQ(across.size(), 40u);
  for (const PixelPoint& pixel : across) EXPECT_EQ(pixel.y, 3);
  EXPECT_TRUE(DrawnPixels(Drawn({{{kFar, kFar}, {kFar, -kFar}}})).empty());
  EXPECT_EQ(DrawnPixels(Drawn({{{-4000000000, -4000000000}, {4000000000, 4000000000}}})).size(), 30u);
}

TEST(QtCanvas, ManySegmentsAreAllDrawn) {
  std::vector<PixelSegment> segments(10000, {{0, 0}, {0, 0}});
  segments.push_back({{9, 9}, {9, 10}});
  EXPECT_EQ(DrawnPixels(Drawn(segments)), (std::vector<PixelPoint>{{0, 0}, {9, 9}, {9, 10}}));
}

TEST(SegmentClip, CutsAtTheEdges) {
  const ClipBox box{0, 0, 10, 10};
  const auto cut = ClipToBox({-10, 5, 30, 5}, box);
  ASSERT_TRUE(cut);
  EXPECT_EQ(cut->x0, 0.0);
  EXPECT_EQ(cut->x1, 10.0);
  EXPECT_EQ(cut->y0, 5.0);
  EXPECT_FALSE(ClipToBox({-10, 11, 30, 11}, box));
  EXPECT_FALSE(ClipToBox({-6, 5, 5, -6}, box)) << "crosses both edges' lines outside of the corner";
  EXPECT_TRUE(ClipToBox({3, 3, 3, 3}, box)) << "a point inside";
  EXPECT_FALSE(ClipToBox({30, 3, 30, 3}, box));
}

// Independent reference: points stepped along the segment.
TEST(SegmentClip, AgreesWithSteppedPoints) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> uniform(-30.0, 40.0);
  const ClipBox box{0, 0, 10, 10};
  for (int round = 0; round < 2000; ++round) {
    const ClipSegment s{uniform(random), uniform(random), uniform(random), uniform(random)};
    double first = 2.0;
    double last = -1.0;
    for (int step = 0; step <= 4000; ++step) {
      const double t = step / 4000.0;
      const double x = s.x0 + t * (s.x1 - s.x0);
      const double y = s.y0 + t * (s.y1 - s.y0);
      if (x < 0 || x > 10 || y < 0 || y > 10) continue;
      first = std::min(first, t);
      last = t;
    }
    if (last < 0.0) continue;
    const auto cut = ClipToBox(s, box);
    ASSERT_TRUE(cut);
    EXPECT_NEAR(cut->x0, s.x0 + first * (s.x1 - s.x0), 0.03);
    EXPECT_NEAR(cut->y1, s.y0 + last * (s.y1 - s.y0), 0.03);
  }
}

}  // namespace
}  // namespace corvane
