#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "picture/Picture.h"
#include "picture/QtCanvas.h"
#include "picture/SegmentClip.h"
#include "support/Pixels.h"

namespace corvane {
namespace {

constexpr std::int64_t kFar = std::numeric_limits<std::int64_t>::max();

// A canvas of 40 x 30 pixels, white at first, on the content at `origin`.
template <typename Draw>
QImage DrawnBy(const Draw& draw, PixelPoint origin = {}) {
  QImage image(40, 30, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  QtCanvas canvas(painter, {origin.x, origin.y, origin.x + 40, origin.y + 30}, origin);
  canvas.SetPen({255, 0, 0}, 1);
  draw(canvas);
  painter.end();
  return image;
}

QImage Drawn(const std::vector<PixelSegment>& segments, PixelPoint origin = {}) {
  return DrawnBy([&](QtCanvas& canvas) { canvas.DrawSegments(segments); }, origin);
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

// Pixels 0x00rrggbb whose colours tell column and row.
std::vector<std::uint32_t> ChartPixels(int width, int height) {
  std::vector<std::uint32_t> pixels;
  for (int row = 0; row < height; ++row) {
    for (int col = 0; col < width; ++col) {
      pixels.push_back(static_cast<std::uint32_t>(col << 16 | row << 8 | 7));
    }
  }
  return pixels;
}

TEST(QtCanvas, PixelsStandWhereTheyBelong) {
  const auto pixels = ChartPixels(3, 2);
  const QImage image = DrawnBy([&](QtCanvas& canvas) { canvas.DrawPixels({10, 20, 13, 22}, pixels); });
  ASSERT_EQ(DrawnPixels(image).size(), 6u);
  for (int row = 0; row < 2; ++row) {
    for (int col = 0; col < 3; ++col) EXPECT_EQ(image.pixel(10 + col, 20 + row), qRgb(col, row, 7));
  }
}

TEST(QtCanvas, PixelsFarFromTheContentsOriginStandWhereTheyBelong) {
  const std::int64_t far = 4000000000000;
  const auto pixels = ChartPixels(3, 2);
  const QImage image = DrawnBy(
      [&](QtCanvas& canvas) {
        canvas.DrawPixels({far + 1, far + 2, far + 4, far + 4}, pixels);
      },
      {far, far});
  ASSERT_EQ(DrawnPixels(image).size(), 6u);
  EXPECT_EQ(image.pixel(3, 3), qRgb(2, 1, 7));
}

TEST(QtCanvas, PixelsAreCutAtTheVisiblePart) {
  const auto pixels = ChartPixels(200, 100);
  const QImage image = DrawnBy([&](QtCanvas& canvas) { canvas.DrawPixels({-50, -60, 150, 40}, pixels); });
  EXPECT_EQ(DrawnPixels(image).size(), 40u * 30u);
  EXPECT_EQ(image.pixel(0, 0), qRgb(50, 60, 7));
  EXPECT_EQ(image.pixel(39, 29), qRgb(89, 89, 7));
  EXPECT_TRUE(DrawnPixels(DrawnBy([&](QtCanvas& canvas) {
                canvas.DrawPixels({kFar - 200, 0, kFar, 100}, pixels);
                canvas.DrawPixels({40, 0, 240, 100}, pixels);
                canvas.DrawPixels({5, 5, 5, 5}, {});
              })).empty());
}

TEST(QtCanvas, PixelsAreOpaqueOnSurfacesWithTransparency) {
  QImage image(4, 4, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  QtCanvas canvas(painter, {0, 0, 4, 4});
  canvas.DrawPixels({0, 0, 2, 1}, ChartPixels(2, 1));
  painter.end();
  EXPECT_EQ(image.pixel(1, 0), qRgba(1, 0, 7, 255));
  EXPECT_EQ(qAlpha(image.pixel(2, 0)), 0);
}

// Text needs a running Qt with its fonts; this one has no display.
class LabelTest : public testing::Test {
 protected:
  LabelTest() { gui_.Start(); }

  // A label at (20, 40) of a picture of 200 x 60 of one colour.
  static QImage Label(QColor picture, const std::string& text, Colour pen = {255, 0, 0}) {
    QImage image(200, 60, QImage::Format_RGB32);
    image.fill(picture);
    QPainter painter(&image);
    QtCanvas canvas(painter, {0, 0, 200, 60});
    canvas.SetPen(pen, 1);
    canvas.DrawLabel({20, 40}, text);
    return image;
  }

 private:
  OffscreenGui gui_;
};

int Count(const QImage& image, const std::function<bool(QRgb)>& isWanted) {
  int count = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) count += isWanted(image.pixel(x, y));
  }
  return count;
}

bool IsReddish(QRgb pixel) {
  return qRed(pixel) > 150 && qGreen(pixel) < 80 && qBlue(pixel) < 80;
}

TEST_F(LabelTest, ReadsOnDarkAndOnLightPictures) {
  for (const QColor picture : {QColor(Qt::black), QColor(Qt::white), QColor(Qt::gray)}) {
    const QImage image = Label(picture, "Haus 17");
    EXPECT_GT(Count(image, IsReddish), 40);
    EXPECT_LT(Count(image, IsReddish), 1500);
    if (picture == Qt::white) continue;
    const int nLight = Count(image, [](QRgb pixel) { return qRed(pixel) > 180 && qGreen(pixel) > 180; });
    EXPECT_GT(nLight, 200) << "the ground";
  }
}

TEST_F(LabelTest, StandsAboveItsPlaceAndToTheRight) {
  const QImage image = Label(Qt::black, "17");
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (x > 20 && y < 40) continue;
      ASSERT_EQ(image.pixel(x, y), qRgb(0, 0, 0)) << x << ", " << y;
    }
  }
  EXPECT_NE(image.pixel(25, 36), qRgb(0, 0, 0));
}

TEST_F(LabelTest, HasTheColourOfThePen) {
  const auto isGreen = [](QRgb pixel) { return qGreen(pixel) > 120 && qRed(pixel) < 60; };
  EXPECT_GT(Count(Label(Qt::white, "17", {0, 160, 0}), isGreen), 10);
}

TEST_F(LabelTest, LongerTextsTakeMoreRoomAndAmpersandsShow) {
  const auto ground = [](const std::string& text) {
    return Count(Label(Qt::black, text), [](QRgb pixel) { return pixel != qRgb(0, 0, 0); });
  };
  EXPECT_GT(ground("1234567"), ground("12") + 100);
  EXPECT_GT(ground("a&b"), ground("ab"));
  EXPECT_GT(Count(Label(Qt::white, "&&&&"), IsReddish), 4 * 8);
}

TEST_F(LabelTest, FarPlacesAreSafe) {
  const QImage image = DrawnBy([](QtCanvas& canvas) {
    for (const std::int64_t x : {-kFar - 1, std::int64_t{-100000}, std::int64_t{20}, kFar}) {
      for (const std::int64_t y : {-kFar - 1, std::int64_t{0}, std::int64_t{100000}, kFar}) {
        canvas.DrawLabel({x, y}, "far");
      }
    }
  });
  EXPECT_TRUE(DrawnPixels(image).empty());
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
