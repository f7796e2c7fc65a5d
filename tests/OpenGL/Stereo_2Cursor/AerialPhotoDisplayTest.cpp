// The window of a display, and points picked in it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "TIN/TINPoints.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class AerialPhotoDisplayTest : public testing::Test {
 protected:
  // An image of 20 columns and 10 rows, whose pixels are 20 row + col.
  void SetUp() override {
    ErdasHeader header;
    header.cols = 20;
    header.rows = 10;
    ASSERT_EQ(photo.image.Create(header, false), 1);
    for (std::int32_t i = 0; i < 200; ++i) photo.image.SetPixel(0, i / 20, i % 20, i);
  }

  // left, top, right, bottom, offsetX, offsetY
  std::vector<int> Window() const {
    return {photo.windowLeft,   photo.windowTop,     photo.windowRight,
            photo.windowBottom, photo.windowOffsetX, photo.windowOffsetY};
  }

  // Points at these columns and rows, under the ids 10, 11, ...
  void PutPoints(const std::vector<Point2>& places) {
    photo.groundPoints = std::make_unique<TINPoints>();
    std::int32_t id = 10;
    for (const Point2& place : places) photo.groundPoints->AddPoint({id++, place.x, place.y, 5.0, 0.5});
  }

  static std::vector<std::int32_t> IdsOf(const std::vector<PointRecord>& points) {
    std::vector<std::int32_t> ids;
    for (const PointRecord& point : points) ids.push_back(point.id);
    return ids;
  }

  AerialPhoto photo;
};

TEST_F(AerialPhotoDisplayTest, TheWindowIsCentredOnThePlace) {
  EXPECT_EQ(photo.SetViewWindow(10.9, 5.2, 5, 4), 1);
  EXPECT_THAT(Window(), ElementsAre(8, 3, 12, 6, 0, 0));
}

TEST_F(AerialPhotoDisplayTest, TheWindowIsCutToTheImage) {
  EXPECT_EQ(photo.SetViewWindow(1.0, 9.0, 7, 7), 1);
  EXPECT_THAT(Window(), ElementsAre(0, 6, 4, 9, 2, 0));
  EXPECT_EQ(photo.SetViewWindow(19.0, 0.0, 7, 7), 1);
  EXPECT_THAT(Window(), ElementsAre(16, 0, 19, 3, 0, 3));
  EXPECT_EQ(photo.SetViewWindow(10.0, 5.0, 1 << 30, std::numeric_limits<int>::max()), 1);
  EXPECT_EQ(photo.windowLeft, 0);
  EXPECT_EQ(photo.windowRight, 19);
  EXPECT_EQ(photo.windowBottom, 9);
}

TEST_F(AerialPhotoDisplayTest, AWindowBesideTheImageIsEmpty) {
  for (const Point2 place :
       {Point2{-10.0, 5.0}, {40.0, 5.0}, {5.0, -10.0}, {5.0, 30.0}, {kNaN, 5.0}, {5.0, 1e300}}) {
    EXPECT_EQ(photo.SetViewWindow(place.x, place.y, 5, 5), 0);
    EXPECT_THAT(Window(), ElementsAre(0, 0, -1, -1, 0, 0));
  }
  EXPECT_EQ(photo.SetViewWindow(5.0, 5.0, 0, 5), 0);
  EXPECT_EQ(photo.SetViewWindow(5.0, 5.0, 5, -5), 0);
  EXPECT_EQ(photo.FetchWindow(), -1);
  EXPECT_EQ(AerialPhoto().SetViewWindow(0.0, 0.0, 2, 2), 0) << "an image without pixels has one of 1 x 1";
}

TEST_F(AerialPhotoDisplayTest, TheWindowIsFetchedOnceUntilItMoves) {
  EXPECT_TRUE(photo.windowChanged);
  photo.SetViewWindow(10.0, 5.0, 3, 2);
  EXPECT_EQ(photo.FetchWindow(), 1);
  EXPECT_FALSE(photo.windowChanged);
  const auto pixels = photo.image.GetSubsetBands().GetBand(0);
  EXPECT_THAT(std::vector<int>(pixels.begin(), pixels.end()), ElementsAre(89, 90, 91, 109, 110, 111));
  EXPECT_EQ(photo.FetchWindow(), 0);
  photo.SetViewWindow(10.4, 5.7, 3, 2);
  EXPECT_FALSE(photo.windowChanged) << "the same pixels";
  photo.SetViewWindow(11.0, 5.0, 3, 2);
  EXPECT_TRUE(photo.windowChanged);
  EXPECT_EQ(photo.FetchWindow(), 1);
}

TEST_F(AerialPhotoDisplayTest, TheWindowIsFetchedAgainAfterAnotherSubset) {
  photo.SetViewWindow(10.0, 5.0, 3, 2);
  photo.FetchWindow();
  photo.image.GetSubset(0, 2, 0, 1);
  EXPECT_EQ(photo.FetchWindow(), 1);
  EXPECT_EQ(photo.image.GetSubsetBands()[0][0], 89);
}

TEST_F(AerialPhotoDisplayTest, TheNearestPointIsFound) {
  EXPECT_EQ(photo.FindPoint(5.0, 5.0, 100.0), -1) << "no points";
  PutPoints({{1.0, 1.0}, {5.0, 4.0}, {5.0, 6.0}, {kNaN, 5.0}});
  EXPECT_EQ(photo.FindPoint(5.0, 4.5, 3.0), 1);
  EXPECT_EQ(photo.FindPoint(5.0, 5.0, 3.0), 1) << "the first of equals";
  EXPECT_EQ(photo.FindPoint(5.0, 5.0, 1.0), -1) << "at the radius is not nearer";
  EXPECT_EQ(photo.FindPoint(5.0, 5.0, 1.001), 1);
  photo.groundPoints->RemovePoint(1);
  EXPECT_EQ(photo.FindPoint(5.0, 4.5, 3.0), 2) << "a deleted point is none";
  for (const double radius : {0.0, -3.0, kNaN}) EXPECT_EQ(photo.FindPoint(5.0, 6.0, radius), -1);
  EXPECT_EQ(photo.FindPoint(kNaN, 6.0, 3.0), -1);
}

TEST_F(AerialPhotoDisplayTest, PickedPointsAreThoseOfTheSetOnceEach) {
  PutPoints({{1.0, 1.0}, {5.0, 4.0}});
  EXPECT_EQ(photo.PickPoint(5.0, 4.2, 2.0), 1);
  EXPECT_EQ(photo.PickPoint(5.0, 4.2, 2.0), 1);
  EXPECT_EQ(photo.PickPoint(1.0, 1.2, 2.0), 0);
  EXPECT_EQ(photo.PickPoint(10.0, 10.0, 2.0), -1);
  EXPECT_THAT(IdsOf(photo.pickedPoints), ElementsAre(11, 10));
  EXPECT_EQ(photo.pickedPoints[0], (PointRecord{11, 5.0, 4.0, 5.0, 0.5}));
  EXPECT_EQ(photo.AddPicked({11, 0.0, 0.0, 0.0, 0.0}), 0);
  EXPECT_EQ(photo.AddPicked({12, 0.0, 0.0, 0.0, 0.0}), 1);
  photo.ClearPicked();
  EXPECT_THAT(photo.pickedPoints, IsEmpty());
}

TEST_F(AerialPhotoDisplayTest, AListTakesEveryPick) {
  PutPoints({{1.0, 1.0}, {5.0, 4.0}});
  std::vector<PointRecord> list;
  EXPECT_EQ(photo.PickPointIntoList(5.0, 4.2, 2.0, list), 1);
  EXPECT_EQ(photo.PickPointIntoList(5.0, 4.2, 2.0, list), 1);
  EXPECT_EQ(photo.PickPointIntoList(15.0, 4.2, 2.0, list), -1);
  EXPECT_THAT(IdsOf(list), ElementsAre(11, 11));
  EXPECT_THAT(photo.pickedPoints, IsEmpty());
}

TEST_F(AerialPhotoDisplayTest, ARegionPicksWhatIsInItEdgesIncluded) {
  EXPECT_EQ(photo.PickInRegion(0.0, 0.0, 100.0, 100.0), 0) << "no points";
  PutPoints({{1.0, 1.0}, {5.0, 4.0}, {5.01, 4.0}, {kNaN, 2.0}, {3.0, 3.0}});
  photo.groundPoints->RemovePoint(4);
  EXPECT_EQ(photo.PickInRegion(1.0, 1.0, 5.0, 4.0), 2);
  EXPECT_THAT(IdsOf(photo.pickedPoints), ElementsAre(10, 11));
  EXPECT_EQ(photo.PickInRegion(0.0, 0.0, 20.0, 20.0), 1) << "those picked before are not new";
  EXPECT_THAT(IdsOf(photo.pickedPoints), ElementsAre(10, 11, 12));
  EXPECT_EQ(photo.PickInRegion(5.0, 4.0, 1.0, 1.0), 0) << "crossed";
}

TEST_F(AerialPhotoDisplayTest, MarkedPointsAreTakenInOrder) {
  PutPoints({{1.0, 1.0}, {5.0, 4.0}});
  photo.PickInRegion(0.0, 0.0, 20.0, 20.0);
  photo.CopyPicked(photo.markedPoints);
  PointRecord point;
  EXPECT_TRUE(photo.TakeFirstMarked(point));
  EXPECT_EQ(point.id, 10);
  EXPECT_TRUE(photo.TakeFirstMarked(point));
  EXPECT_EQ(point.id, 11);
  EXPECT_FALSE(photo.TakeFirstMarked(point));
  EXPECT_EQ(point.id, 11) << "stays";
  EXPECT_THAT(IdsOf(photo.pickedPoints), ElementsAre(10, 11));
  photo.CopyPicked(photo.pickedPoints);
  EXPECT_THAT(IdsOf(photo.pickedPoints), ElementsAre(10, 11, 10, 11));
}

}  // namespace
}  // namespace corvane
