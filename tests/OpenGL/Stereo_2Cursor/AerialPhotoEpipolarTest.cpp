// Epipolar lines, and the searches along them and along vertical lines.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "OpenGL/Stereo_2Cursor/PhotoFixture.h"

namespace corvane {
namespace {

constexpr double kNoScore = 2.220446049250313e-16;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// An image of one band of bytes.
void MakeImage(ErdasImg& image, std::int32_t cols, std::int32_t rows, double fill = 0.0) {
  ErdasHeader header;
  header.cols = cols;
  header.rows = rows;
  ASSERT_EQ(image.Create(header, false), 1);
  image.Fill(fill);
}

TEST(AerialPhotoEpipolarTest, BaseGoesToTheOtherPhoto) {
  AerialPhoto left;
  AerialPhoto right;
  SetPhoto(left, {.x = 10.0, .y = 20.0, .z = 30.0});
  SetPhoto(right, {.x = 14.0, .y = 18.0, .z = 37.0});
  left.ComputeBase(right);
  EXPECT_EQ(left.baseX, 4.0);
  EXPECT_EQ(left.baseY, -2.0);
  EXPECT_EQ(left.baseZ, 7.0);
}

TEST(AerialPhotoEpipolarTest, EpipolarMapIsTheSkewMatrixTimesTheRays) {
  RandomPhotos photos;
  for (int n = 0; n < 50; ++n) {
    AerialPhoto left;
    AerialPhoto right;
    SetPhoto(left, photos.Next());
    SetPhoto(right, photos.Next());
    left.ComputeBase(right);
    const double p[2] = {photos.In(0.0, 1000.0), photos.In(0.0, 1000.0)};
    double d[3];
    left.ImageRay(p, d);
    const double b[3] = {left.baseX, left.baseY, left.baseZ};
    const double cross[3] = {b[1] * d[2] - b[2] * d[1], b[2] * d[0] - b[0] * d[2], b[0] * d[1] - b[1] * d[0]};
    for (int i = 0; i < 3; ++i) {
      const double t = left.epipolarMap[i][0] * p[0] + left.epipolarMap[i][1] * p[1] + left.epipolarMap[i][2];
      EXPECT_NEAR(t, cross[i], 1e-11 * (std::fabs(b[0]) + std::fabs(b[1]) + std::fabs(b[2])) * 300.0);
    }
  }
}

TEST(AerialPhotoEpipolarTest, LineOfTwoVerticalPhotosIsTheRow) {
  AerialPhoto left;
  AerialPhoto right;
  SetPhoto(left, {});
  SetPhoto(right, {.x = 1600.0});
  left.ComputeBase(right);
  const double p[2] = {300.0, 412.0};
  double line[3];
  EXPECT_EQ(left.EpipolarLine(p, line), 1);
  EXPECT_NEAR(line[0] / line[1], 0.0, 1e-15);
  EXPECT_NEAR(-line[2] / line[1], 412.0, 1e-10);
}

TEST(AerialPhotoEpipolarTest, PointsOfARayLieOnTheLineInAnotherPhoto) {
  RandomPhotos photos;
  for (int n = 0; n < 50; ++n) {
    PhotoElements elements = photos.Next();
    AerialPhoto left;
    AerialPhoto right;
    SetPhoto(left, elements);
    elements.x += 700.0;
    elements.omega += 2.0;
    elements.kappa += 5.0;
    SetPhoto(right, elements);
    left.ComputeBase(right);
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) right.epipolarMap[i][j] = left.epipolarMap[i][j];
    }
    const double p[2] = {photos.In(0.0, 1000.0), photos.In(0.0, 1000.0)};
    double line[3];
    right.EpipolarLine(p, line);
    for (const double height : {-100.0, 50.0, 300.0}) {
      double x = 0.0;
      double y = 0.0;
      double col = 0.0;
      double row = 0.0;
      left.ImageToGround(p, height, x, y);
      right.GroundToImage(x, y, height, col, row);
      EXPECT_NEAR((line[0] * col + line[1] * row + line[2]) / std::hypot(line[0], line[1]), 0.0, 1e-7);
    }
  }
}

class SearchEpipolarTest : public testing::Test {
 protected:
  static constexpr std::int32_t kCols = 40;
  static constexpr std::int32_t kRows = 20;

  void SetUp() override {
    MakeImage(photo.image, kCols, kRows, 100.0);
    MakeImage(window, 3, 3, 100.0);
    window.SetPixel(0, 1, 1, 200.0);
  }

  // A pixel that stands out of its surroundings by `value`.
  void PutSpot(std::int32_t col, std::int32_t row, double value = 200.0) {
    photo.image.SetPixel(0, row, col, value);
  }

  double Search(int firstCol, int lastCol, double slope, double intercept) {
    const double line[2] = {slope, intercept};
    return photo.SearchEpipolar(window, firstCol, lastCol, line, best);
  }

  AerialPhoto photo;
  ErdasImg window;
  Point2 best{-7.0, -8.0};
};

TEST_F(SearchEpipolarTest, TheSpotOnTheLineIsFound) {
  PutSpot(17, 9);
  EXPECT_NEAR(Search(0, kCols - 1, 0.0, 9.0), 1.0, 1e-15);
  EXPECT_EQ(best, (Point2{17.0, 9.0}));
}

TEST_F(SearchEpipolarTest, WithoutAProminentPixelBestStays) {
  EXPECT_EQ(Search(0, kCols - 1, 0.0, 9.0), kNoScore);
  PutSpot(17, 9, 129.0);  // 29 / 129 is not above 0.3
  EXPECT_EQ(Search(0, kCols - 1, 0.0, 9.0), kNoScore);
  EXPECT_EQ(best, (Point2{-7.0, -8.0}));
}

TEST_F(SearchEpipolarTest, WithoutAScoreAboveZeroBestStays) {
  photo.maxRowDisparity = 0;
  PutSpot(17, 9, 10.0);
  EXPECT_EQ(Search(17, 17, 0.0, 9.0), kNoScore) << "dark where the window is bright";
  window.Fill(100.0);
  EXPECT_EQ(Search(17, 17, 0.0, 9.0), kNoScore) << "a flat window has no correlation";
  EXPECT_EQ(best, (Point2{-7.0, -8.0}));
}

TEST_F(SearchEpipolarTest, RowsToEitherSideAreLookedAtAndNoOthers) {
  photo.maxRowDisparity = 2;
  for (const int row : {7, 11}) {
    PutSpot(17, row);
    EXPECT_GT(Search(17, 17, 0.0, 9.0), 0.9) << row;
    EXPECT_EQ(best, (Point2{17.0, static_cast<double>(row)}));
    photo.image.Fill(100.0);
  }
  for (const int row : {5, 13}) {
    PutSpot(17, row);
    EXPECT_EQ(Search(17, 17, 0.0, 9.0), kNoScore) << row;
    photo.image.Fill(100.0);
  }
  photo.maxRowDisparity = -1;
  PutSpot(17, 9);
  EXPECT_EQ(Search(17, 17, 0.0, 9.0), kNoScore);
}

TEST_F(SearchEpipolarTest, BothEndsOfTheColumnsBelongToTheSearch) {
  PutSpot(10, 9);
  EXPECT_GT(Search(10, 12, 0.0, 9.0), 0.9);
  EXPECT_GT(Search(8, 10, 0.0, 9.0), 0.9);
  EXPECT_EQ(Search(12, 20, 0.0, 9.0), kNoScore);
  EXPECT_EQ(Search(0, 8, 0.0, 9.0), kNoScore);
  EXPECT_EQ(Search(12, 8, 0.0, 9.0), kNoScore) << "crossed";
}

TEST_F(SearchEpipolarTest, TheFirstOfEqualsStays) {
  PutSpot(10, 9);
  PutSpot(20, 9);
  EXPECT_NEAR(Search(0, kCols - 1, 0.0, 9.0), 1.0, 1e-15);
  EXPECT_EQ(best, (Point2{10.0, 9.0}));
}

TEST_F(SearchEpipolarTest, TheStartOfTheImageIsTakenOffAndAdded) {
  photo.startX = 1000;
  photo.startY = -500;
  PutSpot(30, 15);
  // At scan column 1030 the line is at row 0.5 * 1030 - 1000.3 = -485.3, image row 14.7, cut to 14.
  photo.maxRowDisparity = 0;
  EXPECT_EQ(Search(1030, 1030, 0.5, -1000.3), kNoScore) << "row 14 shows a neighbour of the spot";
  photo.maxRowDisparity = 1;
  EXPECT_GT(Search(1000, 1039, 0.5, -1000.3), 0.9);
  EXPECT_EQ(best, (Point2{1030.0, -485.0}));
}

TEST_F(SearchEpipolarTest, RowsAreCutTowardsZero) {
  photo.maxRowDisparity = 0;
  photo.image.Fill(100.0);
  PutSpot(5, 0, 255.0);
  EXPECT_GT(Search(5, 5, 0.0, -0.9), 0.0) << "-0.9 is row 0";
  EXPECT_EQ(Search(5, 5, 0.0, -1.0), kNoScore);
}

TEST_F(SearchEpipolarTest, OddLinesAndColumnsEnd) {
  PutSpot(0, 0, 255.0);
  constexpr int kMost = std::numeric_limits<int>::max();
  constexpr int kLeast = std::numeric_limits<int>::min();
  for (const double odd : {kNaN, kInfinity, -kInfinity, 1e300, -1e300}) {
    EXPECT_EQ(Search(kLeast, kMost, 0.0, odd), kNoScore);
    EXPECT_EQ(Search(1, kMost, odd, 0.0), kNoScore);
  }
  photo.maxRowDisparity = kMost;
  EXPECT_GT(Search(kLeast, kMost, 0.0, 9.0), 0.0);
  photo.startX = kLeast;
  photo.startY = kMost;
  Search(kLeast, kMost, 0.0, 9.0);
  ErdasImg none;
  const double line[2] = {0.0, 9.0};
  EXPECT_EQ(photo.SearchEpipolar(none, 0, 39, line, best), kNoScore) << "a window without pixels";
  photo.image.Free();
  EXPECT_EQ(Search(0, 39, 0.0, 9.0), kNoScore);
  EXPECT_EQ(AerialPhoto().SearchEpipolar(window, 0, 39, line, best), kNoScore);
}

// Two vertical photos 600 apart over a plane at height 300, painted with numbers of the ground's places.
class VerticalLineSearchTest : public testing::Test {
 protected:
  static constexpr double kPlane = 300.0;

  void SetUp() override {
    Paint(left, {});
    Paint(right, {.x = 1600.0});
  }

  static void Paint(AerialPhoto& photo, const PhotoElements& elements) {
    SetPhoto(photo, elements);
    MakeImage(photo.image, 1000, 1000);
    for (std::int32_t row = 300; row < 700; ++row) {
      for (std::int32_t col = 0; col < 1000; ++col) {
        const double p[2] = {1.0 * col, 1.0 * row};
        double x = 0.0;
        double y = 0.0;
        photo.ImageToGround(p, kPlane, x, y);
        const auto i = static_cast<std::int64_t>(std::floor(x + 0.5));
        const auto j = static_cast<std::int64_t>(std::floor(y + 0.5));
        photo.image.SetPixel(0, row, col, static_cast<double>((i * 7919 + j * 104729 + i * j * 31) & 255));
      }
    }
  }

  double Search(double zStart, double zEnd, double zStep, int width = 15, int height = 15) {
    return VerticalLineSearch(left, right, point, zEnd, zStart, zStep, width, height);
  }

  AerialPhoto left;
  AerialPhoto right;
  Point3 point{1300.0, 2030.0, -1.0};
};

TEST_F(VerticalLineSearchTest, TheHeightOfThePlaneIsFound) {
  EXPECT_NEAR(Search(250.0, 350.0, 10.0), 1.0, 1e-12);
  EXPECT_EQ(point.z, 300.0);
  EXPECT_EQ(point.x, 1300.0);
  EXPECT_EQ(point.y, 2030.0);
}

TEST_F(VerticalLineSearchTest, TheStartIsNotTriedAndTheEndIs) {
  Search(300.0, 350.0, 10.0);
  EXPECT_NE(point.z, 300.0);
  EXPECT_NEAR(Search(270.0, 300.0, 10.0), 1.0, 1e-12);
  EXPECT_EQ(point.z, 300.0);
  // The last trial is the first that is not below the end.
  EXPECT_NEAR(Search(290.0, 291.0, 10.0), 1.0, 1e-12);
  EXPECT_EQ(point.z, 300.0);
}

TEST_F(VerticalLineSearchTest, AStepThatDoesNotRiseTriesOneHeight) {
  const double lowest = std::numeric_limits<double>::lowest();
  for (const double step : {0.0, -0.0}) {
    EXPECT_NEAR(Search(300.0, 350.0, step), 1.0, 1e-12);
    EXPECT_EQ(point.z, 300.0);
  }
  EXPECT_NEAR(Search(310.0, 350.0, -10.0), 1.0, 1e-12);
  EXPECT_EQ(point.z, 300.0);
  point.z = -1.0;
  for (const double step : {kNaN, kInfinity, -kInfinity, lowest}) {
    EXPECT_EQ(Search(300.0, 350.0, step), kNoScore) << step;
    EXPECT_EQ(point.z, -1.0);
  }
  EXPECT_EQ(Search(kNaN, 350.0, 1.0), kNoScore);
  EXPECT_EQ(Search(-kInfinity, 350.0, 1.0), kNoScore);
  EXPECT_NEAR(Search(299.0, kNaN, 1.0), 1.0, 1e-12) << "one height";
}

TEST_F(VerticalLineSearchTest, SmallStepsEnd) {
  point = {1e9, 1e9, 0.0};  // beside both images: two flat windows
  EXPECT_EQ(Search(0.0, 1e9, 1e-3, 1, 1), 1.0);
  EXPECT_EQ(point.z, 0.001) << "the first of equals";
  EXPECT_EQ(Search(1e17, kInfinity, 1.0, 1, 1), 1.0) << "a step that is lost in rounding";
}

TEST_F(VerticalLineSearchTest, WindowsMayReachBeyondTheImages) {
  point = {700.0, 2000.0, 0.0};  // in the left image, and at column -625 of the right one
  EXPECT_EQ(Search(290.0, 310.0, 10.0), kNoScore) << "flat against not flat";
  EXPECT_EQ(point.z, 0.0);
}

TEST_F(VerticalLineSearchTest, PhotosWithoutPixelsHaveNoScore) {
  const AerialPhoto unread;
  AerialPhoto alsoUnread;
  Point3 point = {1.0, 2.0, 3.0};
  EXPECT_EQ(VerticalLineSearch(alsoUnread, unread, point, 100.0, 0.0, 10.0, 5, 5), 2.220446049250313e-16);
  EXPECT_EQ(point, (Point3{1.0, 2.0, 3.0}));
}

TEST_F(VerticalLineSearchTest, WindowsThatCanNotBeHaveNoScore) {
  for (const auto& [width, height] : {std::pair{0, 5}, {5, 0}, {-3, 5}, {1 << 30, 1 << 30}}) {
    EXPECT_EQ(Search(290.0, 310.0, 10.0, width, height), kNoScore);
    EXPECT_EQ(point.z, -1.0);
  }
  point = {kNaN, 2000.0, -1.0};
  EXPECT_EQ(Search(290.0, 310.0, 10.0), kNoScore);
  point = {1e300, 2000.0, -1.0};
  EXPECT_EQ(Search(290.0, 310.0, 10.0), kNoScore);
}

TEST_F(VerticalLineSearchTest, TheStartOfTheImagesIsTakenOff) {
  left.startX = 40;
  right.startX = 40;
  left.startY = right.startY = -7;
  // The same pixels now stand 40 columns and -7 rows further in the scan.
  const double dx = 40.0 * (1500.0 - kPlane) * 0.1 / 150.0;
  const double dy = 7.0 * (1500.0 - kPlane) * 0.1 / 150.0;
  point.x += dx;
  point.y += dy;
  EXPECT_NEAR(Search(250.0, 350.0, 10.0), 1.0, 1e-12);
  EXPECT_EQ(point.z, 300.0);
}

}  // namespace
}  // namespace corvane
