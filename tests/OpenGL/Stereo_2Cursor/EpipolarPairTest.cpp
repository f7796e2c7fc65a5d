// Pairs of epipolar photos: orientation, extents, and what they are for.

#include "OpenGL/Stereo_2Cursor/EpipolarPair.h"

#include <limits>

#include "OpenGL/Stereo_2Cursor/ResampleFixture.h"
#include "support/SharedData.h"

namespace corvane {
namespace {

using Vector = PlainPhoto::Vector;

// 600 x 400 pixels of 0.1, seen from 1500 above the ground: the photo shows 600 x 400 units.
const PhotoElements kLeft = {.x = 1000.0, .y = 2000.0, .a = 0.1, .c = -29.95, .e = -0.1, .g = 19.95};

PhotoElements Moved(PhotoElements elements, double dx, double dy, double dz) {
  elements.x += dx;
  elements.y += dy;
  elements.z += dz;
  return elements;
}

void SetPhotoAndSize(AerialPhoto& photo, const PhotoElements& elements, std::int32_t cols = 600,
                     std::int32_t rows = 400) {
  SetPhoto(photo, elements);
  photo.image.SetSize(cols, rows);
}

struct Pair {
  Pair(const PhotoElements& leftElements, const PhotoElements& rightElements) {
    SetPhotoAndSize(left, leftElements);
    SetPhotoAndSize(right, rightElements);
  }
  AerialPhoto left;
  AerialPhoto right;
};

TEST(EpipolarPair, VerticalPhotosAlongXAreNotTurned) {
  Pair sources(kLeft, Moved(kLeft, 250, 0, 0));
  const EpipolarPair pair(sources.left, sources.right, 1.0);
  for (const AerialPhoto* photo : {&pair.left, &pair.right}) {
    EXPECT_EQ(photo->omega, 0.0);
    EXPECT_EQ(photo->phi, 0.0);
    EXPECT_EQ(photo->kappa, 0.0);
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) EXPECT_EQ(photo->rotation[i][j], i == j ? 1.0 : 0.0);
    }
  }
  EXPECT_EQ(pair.left.perspectiveX, 1000.0);
  EXPECT_EQ(pair.right.perspectiveX, 1250.0);
  EXPECT_EQ(pair.right.focalLength, 150.0);
}

TEST(EpipolarPair, VerticalPhotosAlongXResampleOntoThemselves) {
  Pair sources(kLeft, Moved(kLeft, 250, 0, 0));
  MakePattern(sources.left.image, kPackByte, 1, 600, 400);
  EpipolarPair pair(sources.left, sources.right, 1.0);
  ASSERT_EQ(pair.left.ResampleFrom(sources.left, pair.leftExtent.data(), pair.cell), 1);
  // x from -29.95 and y to 19.95 snap to -29.9 and 19.9, half a pixel inside: pixel (0, 0) lies between
  // source pixels 0 and 1.
  const auto [cols, rows] = pair.left.image.GetSize();
  EXPECT_NEAR(cols, 600, 1);
  EXPECT_NEAR(rows, 399, 1);
  int nSame = 0;
  for (std::int32_t row = 0; row < rows; ++row) {
    for (std::int32_t col = 0; col < cols; ++col) {
      double value = 0.0;
      pair.left.image.GetPixel(0, row, col, value);
      for (int d = 0; d < 4; ++d) {
        double from = 0.0;
        sources.left.image.GetPixel(0, row + d / 2, col + d % 2, from);
        if (from != value) continue;
        ++nSame;
        break;
      }
    }
  }
  EXPECT_EQ(nSame, cols * rows);
}

TEST(EpipolarPair, TheBaseAlongY) {
  Pair sources(kLeft, Moved(kLeft, 0, 250, 0));
  const EpipolarPair pair(sources.left, sources.right, 1.0);
  EXPECT_NEAR(pair.left.kappa, 1.5707963267948966, 1e-15);
  EXPECT_NEAR(pair.left.omega, 0.0, 1e-15);
  EXPECT_NEAR(pair.left.phi, 0.0, 1e-15);
  // The plane's x is the ground's Y: what was 40 high is 40 wide now.
  EXPECT_NEAR(pair.leftExtent[3] - pair.leftExtent[0], 40.0, 0.2);
  EXPECT_NEAR(pair.leftExtent[4] - pair.leftExtent[1], 60.0, 0.2);
}

TEST(EpipolarPair, TheRotationIsTheDocumentedMatrix) {
  RandomPhotos random;
  for (int n = 0; n < 200; ++n) {
    const PhotoElements from = random.Next();
    const double b[3] = {random.In(-1000, 1000), random.In(-1000, 1000), random.In(-300, 300)};
    Pair sources(from, Moved(from, b[0], b[1], b[2]));
    const EpipolarPair pair(sources.left, sources.right, 0.6);
    const double flat = std::hypot(b[0], b[1]);
    const double length = std::hypot(flat, b[2]);
    const double ca = b[0] / flat;
    const double sa = b[1] / flat;
    const double cb = flat / length;
    const double sb = -b[2] / length;
    const double m[3][3] = {{cb * ca, cb * sa, -sb}, {-sa, ca, 0.0}, {sb * ca, sb * sa, cb}};
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        EXPECT_NEAR(pair.left.rotation[i][j], m[i][j], 1e-11);
        EXPECT_EQ(pair.left.rotation[i][j], pair.right.rotation[i][j]);
      }
    }
  }
}

TEST(EpipolarPair, CellIsTheScaleInThousandths) {
  for (const auto& [scale, cell] : {std::pair{0.1234, 0.123},
                                    {0.1235, 0.124},
                                    {-0.15, 0.15},
                                    {0.0005, 0.001},
                                    {0.00049, 0.0},
                                    {0.0, 0.0},
                                    {2.0, 2.0}}) {
    PhotoElements elements = kLeft;
    elements.a = scale;
    Pair sources(elements, Moved(kLeft, 250, 0, 0));
    EXPECT_EQ(EpipolarPair(sources.left, sources.right, 0.6).cell, cell) << scale;
  }
}

// The extents before the common rows are taken: those of the corners on the plane.
void ExpectColumns(const AerialPhoto& source, const AerialPhoto& photo, const EpipolarPair::Extent& actual,
                   double firstCol, double endCol, double cell) {
  double extent[6] = {firstCol, 0, 1, endCol, 400, 1};
  photo.MapExtentFrom(source, extent);
  EXPECT_NEAR(actual[0], std::trunc(extent[0] / cell) * cell, 1e-12);
  EXPECT_EQ(actual[3], extent[3]);
}

TEST(EpipolarPair, OverlapKeepsTheRightOfTheLeftImageAndTheLeftOfTheRightOne) {
  PhotoElements elements = kLeft;
  elements.omega = 1.0;
  elements.phi = -2.0;
  elements.kappa = 3.0;
  Pair sources(elements, Moved(kLeft, 250, 10, -5));
  for (const auto& [overlap, firstCol, endCol] :
       {std::tuple{0.6, 240.0, 360.0}, {0.601, 239.0, 360.0}, {1.0, 0.0, 600.0}, {1.5, -300.0, 900.0}}) {
    const EpipolarPair pair(sources.left, sources.right, overlap);
    ExpectColumns(sources.left, pair.left, pair.leftExtent, firstCol, 600.0, 0.1);
    ExpectColumns(sources.right, pair.right, pair.rightExtent, 0.0, endCol, 0.1);
  }
}

TEST(EpipolarPair, RowsAreCommonAndColumnsDiffer) {
  PhotoElements tilted = kLeft;
  tilted.omega = 2.0;
  Pair sources(tilted, Moved(kLeft, 250, 60, 0));
  MakePattern(sources.left.image, kPackByte, 1, 600, 400);
  MakePattern(sources.right.image, kPackByte, 1, 600, 400);
  EpipolarPair pair(sources.left, sources.right, 0.7);
  EXPECT_EQ(pair.leftExtent[1], pair.rightExtent[1]);
  EXPECT_EQ(pair.leftExtent[4], pair.rightExtent[4]);
  double left[6] = {180, 0, 1, 600, 400, 1};
  double right[6] = {0, 0, 1, 420, 400, 1};
  pair.left.MapExtentFrom(sources.left, left);
  pair.right.MapExtentFrom(sources.right, right);
  EXPECT_EQ(pair.leftExtent[4], std::trunc(std::fmin(left[4], right[4]) / 0.1) * 0.1);
  EXPECT_EQ(pair.leftExtent[1], std::trunc(std::fmax(left[1], right[1]) / 0.1) * 0.1);
  ASSERT_EQ(pair.left.ResampleFrom(sources.left, pair.leftExtent.data(), pair.cell), 1);
  ASSERT_EQ(pair.right.ResampleFrom(sources.right, pair.rightExtent.data(), pair.cell), 1);
  EXPECT_EQ(pair.left.image.GetSize().cy, pair.right.image.GetSize().cy);
  EXPECT_NE(pair.left.image.GetSize().cx, pair.right.image.GetSize().cx);
}

// The columns of an image from `first` on are those of the other one, and all others are zero but for the one
// next to them on each side, which the photo's outermost pixels may reach.
void ExpectWidened(const ErdasImg& wide, const ErdasImg& image, std::int32_t first) {
  const auto [cols, rows] = image.GetSize();
  ASSERT_EQ(wide.GetSize().cy, rows);
  for (std::int32_t row = 0; row < rows; ++row) {
    for (std::int32_t col = 0; col < wide.GetSize().cx; ++col) {
      if (col == first - 1 || col == first + cols) continue;
      double expected = 0.0;
      double value = -1.0;
      image.GetPixel(0, row, col - first, expected);
      wide.GetPixel(0, row, col, value);
      ASSERT_EQ(value, expected) << row << " " << col;
    }
  }
}

TEST(EpipolarPair, AnOverlapAboveOneAddsColumnsOfZeros) {
  PhotoElements offset = kLeft;  // so that places are off the edges of pixels
  offset.c = -29.92;
  offset.g = 19.92;
  Pair sources(offset, Moved(offset, 250, 0, 0));
  MakePattern(sources.left.image, kPackByte, 1, 600, 400);
  MakePattern(sources.right.image, kPackByte, 1, 600, 400);
  EpipolarPair whole(sources.left, sources.right, 1.0);
  EpipolarPair wide(sources.left, sources.right, 1.5);
  for (EpipolarPair* const pair : {&whole, &wide}) {
    ASSERT_EQ(pair->left.ResampleFrom(sources.left, pair->leftExtent.data(), pair->cell), 1);
    ASSERT_EQ(pair->right.ResampleFrom(sources.right, pair->rightExtent.data(), pair->cell), 1);
  }
  EXPECT_EQ(wide.left.image.GetSize().cx, whole.left.image.GetSize().cx + 300);
  EXPECT_EQ(wide.right.image.GetSize().cx, whole.right.image.GetSize().cx + 300);
  ExpectWidened(wide.left.image, whole.left.image, 300);
  ExpectWidened(wide.right.image, whole.right.image, 0);
}

TEST(EpipolarPair, WhatMakesNoImages) {
  const double infinity = std::numeric_limits<double>::infinity();
  Pair sources(kLeft, Moved(kLeft, 250, 0, 0));
  for (const double overlap : {1e9, 1e300, infinity, 1e-9}) {
    EpipolarPair pair(sources.left, sources.right, overlap);
    EXPECT_EQ(pair.right.ResampleFrom(sources.right, pair.rightExtent.data(), pair.cell), -1) << overlap;
  }
  PhotoElements fine = kLeft;
  fine.a = 0.0004;
  Pair zeroCell(fine, Moved(kLeft, 250, 0, 0));
  EpipolarPair pair(zeroCell.left, zeroCell.right, 0.6);
  EXPECT_EQ(pair.left.ResampleFrom(zeroCell.left, pair.leftExtent.data(), pair.cell), -1);
  Pair singular({.f = 0.0, .a = 0.0, .c = 0.0, .e = 0.0, .g = 0.0}, kLeft);
  EpipolarPair none(singular.left, singular.right, 0.6);
  EXPECT_EQ(none.left.ResampleFrom(singular.left, none.leftExtent.data(), none.cell), -1);
}

TEST(EpipolarPair, EqualCentresMakeVerticalPhotos) {
  PhotoElements tilted = kLeft;
  tilted.phi = 4.0;
  Pair sources(tilted, tilted);
  const EpipolarPair pair(sources.left, sources.right, 1.0);
  EXPECT_EQ(pair.left.rotation[0][0], 1.0);
  EXPECT_EQ(pair.left.rotation[2][2], 1.0);
}

// The rows of a ground point in both photos: y is the plane's, rows go down from the extents' common top.
void ExpectOneRow(const EpipolarPair& pair, double x, double y, double z) {
  double leftX, leftY, rightX, rightY;
  pair.left.GroundToPhoto(x, y, z, leftX, leftY);
  pair.right.GroundToPhoto(x, y, z, rightX, rightY);
  const double leftRow = (pair.leftExtent[4] - leftY) / pair.cell;
  const double rightRow = (pair.rightExtent[4] - rightY) / pair.cell;
  EXPECT_LT(std::fabs(leftRow - rightRow), 1e-6);
}

// A tilted pair in which 200 ground points have marks.
class EpipolarMarks : public testing::Test {
 protected:
  void SetUp() override {
    leftElements.omega = 1.5;
    leftElements.phi = -1.0;
    leftElements.kappa = 4.0;
    rightElements = Moved(leftElements, 240, 35, 12);
    rightElements.omega = -2.0;
    rightElements.phi = 1.2;
    rightElements.kappa = -2.5;
    SetPhotoAndSize(left, leftElements);
    SetPhotoAndSize(right, rightElements);
    ASSERT_EQ(left.image.Create(HeaderOf(kPackByte, 1, 600, 400), false), 1);
    ASSERT_EQ(right.image.Create(HeaderOf(kPackByte, 1, 600, 400), false), 1);
    RandomPhotos random;
    for (int i = 0; i < 200; ++i) {
      // On a grid of 20 x 10 over what both photos show, so that marks keep apart; heights are hills of 60.
      const double x = 940.0 + 18.5 * (i % 20) + random.In(-0.5, 0.5);
      const double y = 1880.0 + 30.0 * (i / 20) + random.In(-0.5, 0.5);
      points.push_back({x, y, 30.0 * std::sin(0.03 * x) * std::cos(0.02 * y)});
      Mark(left, leftElements, points.back());
      Mark(right, rightElements, points.back());
    }
  }

  static void Mark(AerialPhoto& photo, const PhotoElements& elements, const Vector& point) {
    const auto place = PlainPhoto(elements).Project(point[0], point[1], point[2]);
    const auto col = static_cast<double>(place[0]);
    const auto row = static_cast<double>(place[1]);
    AddMark(photo.image, col, row);
    EXPECT_TRUE(col > 8.0 && col < 591.0 && row > 8.0 && row < 391.0) << col << " " << row;
  }

  PhotoElements leftElements = kLeft;
  PhotoElements rightElements;
  AerialPhoto left;
  AerialPhoto right;
  std::vector<Vector> points;
};

TEST_F(EpipolarMarks, ConjugatePointsShareARowInExactProjection) {
  const EpipolarPair pair(left, right, 1.0);
  for (const Vector& point : points) {
    ExpectOneRow(pair, static_cast<double>(point[0]), static_cast<double>(point[1]),
                 static_cast<double>(point[2]));
  }
}

// The row of a point's mark, which lies within a pixel of its place; false if the image does not hold it
// whole.
bool FindRow(const AerialPhoto& photo, const Vector& point, double& foundRow) {
  double x, y;
  photo.GroundToPhoto(static_cast<double>(point[0]), static_cast<double>(point[1]),
                      static_cast<double>(point[2]), x, y);
  const double col = (x - photo.imageToPhoto[0][2]) / photo.imageToPhoto[0][0];
  const double row = (y - photo.imageToPhoto[1][2]) / photo.imageToPhoto[1][1];
  double foundCol = 0.0;
  if (!FindMark(photo.image, col, row, foundCol, foundRow)) return false;
  EXPECT_LT(std::fabs(foundCol - col), 1.0);
  EXPECT_LT(std::fabs(foundRow - row), 1.0);
  return true;
}

TEST_F(EpipolarMarks, ConjugateMarksShareARowAfterResampling) {
  EpipolarPair pair(left, right, 1.0);
  ASSERT_EQ(pair.left.ResampleFrom(left, pair.leftExtent.data(), pair.cell), 1);
  ASSERT_EQ(pair.right.ResampleFrom(right, pair.rightExtent.data(), pair.cell), 1);
  for (const Vector& point : points) {
    double leftRow = 0.0;
    double rightRow = 0.0;
    ASSERT_TRUE(FindRow(pair.left, point, leftRow) && FindRow(pair.right, point, rightRow));
    EXPECT_LT(std::fabs(leftRow - rightRow), 1.0);
  }
}

// Photos with their orientations of the real test data.
bool LoadShared(const std::string& name, AerialPhoto& photo) {
  const std::string stem = "block/hills_" + name;
  return !SharedData(stem + ".lan").empty() && photo.LoadOrientation(SharedData(stem + ".orn")) == 1 &&
         photo.image.Read(SharedData(stem + ".lan")) == 1;
}

// How alike windows of 15 x 15 pixels around two places are: their correlation coefficient.
double Correlate(const ErdasImg& a, int colA, int rowA, const ErdasImg& b, int colB, int rowB) {
  double n = 0, sa = 0, sb = 0, saa = 0, sbb = 0, sab = 0;
  for (int dr = -7; dr <= 7; ++dr) {
    for (int dc = -7; dc <= 7; ++dc) {
      double va = 0.0;
      double vb = 0.0;
      if (!a.GetPixel(0, rowA + dr, colA + dc, va) || !b.GetPixel(0, rowB + dr, colB + dc, vb)) return -2.0;
      n += 1;
      sa += va;
      sb += vb;
      saa += va * va;
      sbb += vb * vb;
      sab += va * vb;
    }
  }
  return (sab - sa * sb / n) / std::sqrt((saa - sa * sa / n) * (sbb - sb * sb / n));
}

// By how many rows the right image is off at conjugate places: the top of a parabola through the correlations
// of neighbouring rows, each the best of three columns.
double RowOffset(const EpipolarPair& pair, int leftCol, int rightCol, int row) {
  constexpr int kReach = 3;
  double scores[2 * kReach + 1];
  int best = kReach;
  for (int i = 0; i <= 2 * kReach; ++i) {
    scores[i] = -2.0;
    for (int c = -1; c <= 1; ++c) {
      const double score =
          Correlate(pair.left.image, leftCol, row, pair.right.image, rightCol + c, row + i - kReach);
      scores[i] = std::fmax(scores[i], score);
    }
    if (scores[i] > scores[best]) best = i;
  }
  if (best == 0 || best == 2 * kReach) return kReach;
  const double before = scores[best - 1];
  const double behind = scores[best + 1];
  return best - kReach + 0.5 * (before - behind) / (before - 2.0 * scores[best] + behind);
}

// Where a ground point is shown in the images of a pair, to the nearest pixel.
struct Conjugate {
  int leftCol;
  int rightCol;
  int row;
};

Conjugate Show(const EpipolarPair& pair, double x, double y, double z) {
  double leftX, rightX, photoY;
  pair.right.GroundToPhoto(x, y, z, rightX, photoY);
  pair.left.GroundToPhoto(x, y, z, leftX, photoY);
  return {static_cast<int>(std::lround((leftX - pair.leftExtent[0]) / pair.cell)),
          static_cast<int>(std::lround((rightX - pair.rightExtent[0]) / pair.cell)),
          static_cast<int>(std::lround((pair.leftExtent[4] - photoY) / pair.cell))};
}

// Looks at the first 200 of the DEM's cells, in a mixed order, that both images show alike.
void ExpectPointsInOneRow(const EpipolarPair& pair, const ErdasImg& dem) {
  int nPoints = 0;
  double sum = 0.0;
  for (int i = 0; nPoints < 200; ++i) {
    ASSERT_LT(i, 100000);
    const double x = 1000.0 + 1.0 + 2.0 * (i * 97 % 600);  // centres of the cells
    const double y = 6080.0 - 1.0 - 2.0 * (i * 61 % 540);
    double z = 0.0;
    dem.GetPixelXY(0, x, y, z);
    const auto [leftCol, rightCol, row] = Show(pair, x, y, z);
    const double alike = Correlate(pair.left.image, leftCol, row, pair.right.image, rightCol, row);
    if (!(alike >= 0.9)) continue;  // not in both images, or steep
    ++nPoints;
    ExpectOneRow(pair, x, y, z);
    const double offset = RowOffset(pair, leftCol, rightCol, row);
    EXPECT_LT(std::fabs(offset), 1.0) << x << " " << y;
    sum += offset;
  }
  EXPECT_LT(std::fabs(sum / nPoints), 0.1);
}

TEST(EpipolarHills, TwoHundredGroundPointsOfEachPairShareARow) {
  ErdasImg dem;
  if (SharedData("block/hills_dem.lan").empty()) GTEST_SKIP() << "no real test data";
  ASSERT_EQ(dem.Read(SharedData("block/hills_dem.lan")), 1);
  for (const auto& [leftName, rightName] :
       {std::pair{"s1p1", "s1p2"}, {"s1p2", "s1p3"}, {"s2p1", "s2p2"}, {"s1p1", "s2p1"}}) {
    SCOPED_TRACE(std::string(leftName) + " " + rightName);
    AerialPhoto left;
    AerialPhoto right;
    ASSERT_TRUE(LoadShared(leftName, left) && LoadShared(rightName, right));
    EpipolarPair pair(left, right, 1.0);
    ASSERT_EQ(pair.left.ResampleFrom(left, pair.leftExtent.data(), pair.cell), 1);
    ASSERT_EQ(pair.right.ResampleFrom(right, pair.rightExtent.data(), pair.cell), 1);
    ExpectPointsInOneRow(pair, dem);
  }
}

}  // namespace
}  // namespace corvane
