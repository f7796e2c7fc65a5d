#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <cmath>
#include <filesystem>
#include <limits>
#include <random>

#include "FakeView.h"
#include "cli/PictureBook.h"
#include "picture/QtCanvas.h"
#include "picture/SegmentClip.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

constexpr std::int64_t kFar = std::numeric_limits<std::int64_t>::max();

// The pixels of a white 40 x 30 picture that are no longer white.
std::vector<PixelPoint> DrawnPixels(const QImage& image) {
  std::vector<PixelPoint> drawn;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixel(x, y) != qRgb(255, 255, 255)) drawn.push_back({x, y});
    }
  }
  return drawn;
}

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

class PictureBookTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(book_.MakeFolder()); }

  TempFolder folder_;
  TestFrontEnd inner_;
  PictureBook book_{inner_, "out"};
  FakeView a_{"a.lan"};
  FakeView b_{"b.lan"};
};

using Paths = std::vector<std::string>;

TEST_F(PictureBookTest, SavesThePictureOfAView) {
  a_.segments = {{{5, 7}, {8, 7}}};
  book_.OpenWindow(a_);
  EXPECT_EQ(book_.Save().paths, Paths{"out/01-a.lan.png"});
  const QImage image("out/01-a.lan.png");
  EXPECT_EQ(image.size(), QSize(40, 30));
  EXPECT_EQ(DrawnPixels(image), (std::vector<PixelPoint>{{5, 7}, {6, 7}, {7, 7}, {8, 7}}));
}

TEST_F(PictureBookTest, NumbersGoByTheFirstPicture) {
  a_.hasPicture = false;
  book_.OpenWindow(a_);
  book_.OpenWindow(b_);
  EXPECT_EQ(book_.Save().paths, Paths{"out/01-b.lan.png"});
  a_.hasPicture = true;
  EXPECT_EQ(book_.Save().paths, Paths{"out/02-a.lan.png"});
}

TEST_F(PictureBookTest, OnlyNewAndRepaintedWindowsAreSaved) {
  book_.OpenWindow(a_);
  book_.OpenWindow(b_);
  EXPECT_EQ(book_.Save().paths.size(), 2u);
  EXPECT_TRUE(book_.Save().paths.empty());
  b_.title = "c/d:e.lan";
  book_.RepaintWindow(b_, true);
  EXPECT_EQ(book_.Save().paths, Paths{"out/02-c_d_e.lan.png"}) << "a window keeps its number";
}

TEST_F(PictureBookTest, ClosedWindowsAreForgotten) {
  book_.OpenWindow(a_);
  book_.Save();
  book_.CloseWindow(a_);
  book_.OpenWindow(b_);
  EXPECT_EQ(book_.Save().paths, Paths{"out/02-b.lan.png"});
  EXPECT_EQ(inner_.EventsWith("close-window"), std::vector<std::string>{"close-window: a.lan"});
}

TEST_F(PictureBookTest, RenamedWindowIsSavedAgainBesideItsOldPicture) {
  book_.OpenWindow(a_);
  book_.Save();
  a_.title = "b.lan";
  EXPECT_EQ(book_.Save().paths, Paths{"out/01-b.lan.png"});
  EXPECT_TRUE(book_.Save().paths.empty());
  EXPECT_TRUE(std::filesystem::exists("out/01-a.lan.png"));
}

TEST_F(PictureBookTest, FolderThatCantBeWrittenIsTold) {
  WriteFileBytes("file", "");
  EXPECT_FALSE(PictureBook(inner_, "file").MakeFolder());
  EXPECT_FALSE(PictureBook(inner_, "file/folder").MakeFolder());
  EXPECT_TRUE(PictureBook(inner_, "new/folder/").MakeFolder());
  EXPECT_TRUE(std::filesystem::is_empty("new/folder")) << "the trial leaves nothing behind";
}

TEST_F(PictureBookTest, FailureIsReported) {
  std::filesystem::remove("out");
  WriteFileBytes("out", "");
  book_.OpenWindow(a_);
  EXPECT_EQ(book_.Save().failures, Paths{"The picture out/01-a.lan.png could not be written."});
}

TEST(PictureFileName, HoldsWhatAFileNameCan) {
  EXPECT_EQ(PictureFileName(1, "survey.tin"), "01-survey.tin.png");
  EXPECT_EQ(PictureFileName(100, "a:2"), "100-a_2.png");
  EXPECT_EQ(PictureFileName(12, "a/b\\c\nd"), "12-a_b_c_d.png");
  EXPECT_EQ(PictureFileName(2, "H\xc3\xb6he"), "02-H\xc3\xb6he.png");
  // 150 characters of two bytes are cut at 100 of them.
  std::string title;
  for (int i = 0; i < 150; ++i) title += "\xc3\xb6";
  EXPECT_EQ(PictureFileName(1, title), "01-" + title.substr(0, 200) + ".png");
  EXPECT_EQ(PictureFileName(1, "x" + title), "01-x" + title.substr(0, 198) + ".png");
}

}  // namespace
}  // namespace corvane
