// Ground points over the photo that is shown, end to end.

#include <fstream>
#include <limits>
#include <sstream>

#include "commands/ImageFixture.h"
#include "shell/DibView.h"
#include "support/PointsBytes.h"
#include "support/SharedData.h"

namespace corvane {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kCommand = "Show Ground Pts";

// From (100, 200, 1500), straight down: at height 0 a pixel is 1 unit, and (col, row) is (X - 90, 205 - Y) in
// the whole scan.
constexpr const char* kOrientation =
    "ORIENTATION a.lan photo\n150\n100 200 1500\n0 0 0\n220 0 0\n0.1 0 -1\n0 -0.1 0.5\n0 0\n0.1 0.1\n";

class ShowGroundPointsTest : public ImageCommandsTest {
 protected:
  CDibView* Window() { return app.GetMainFrame().GetDibView(); }

  // A photo of 20 columns and 10 rows, in its own folder.
  void ShowPhoto(const std::string& name = "deep/a.lan", std::int32_t xStart = 0, std::int32_t yStart = 0) {
    std::filesystem::create_directory("deep");
    ErdasHeader header = HeaderOf(kPackByte, 1, 20, 10);
    header.xStart = xStart;
    header.yStart = yStart;
    WriteFileBytes(name, BytesOf(header) + std::string(200, 'p'));
    ui.files = {{name}};
    ASSERT_EQ(Run("Show Image"), CommandResult::Done);
    ui.events.clear();
    ui.choosers.clear();
  }

  // Three points, the third one beside the photo.
  static void StorePoints(std::size_t cut = 0) {
    std::string bytes = PointsBytes(3, {95, 203, 140, 196, 1, 1},
                                    {95, 203, 0, 0.756, 105, 196, 0, 1.5, 140, 200, 0, -12.345});
    WriteFileBytes("p.pts", bytes.substr(0, bytes.size() - cut));
  }

  std::vector<std::string> Labels() {
    std::vector<std::string> texts;
    for (const ViewLabel& label : Window()->m_labels) texts.push_back(label.text);
    return texts;
  }

  void ExpectPoints(const std::vector<double>& expected) {
    ASSERT_EQ(Window()->m_points.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_NEAR(Window()->m_points[i], expected[i], 1e-9) << i;
    }
    ASSERT_EQ(2 * Window()->m_labels.size(), expected.size());
    for (std::size_t i = 0; i < Window()->m_labels.size(); ++i) {
      EXPECT_EQ(Window()->m_labels[i].x, Window()->m_points[2 * i]);
      EXPECT_EQ(Window()->m_labels[i].y, Window()->m_points[2 * i + 1]);
    }
  }
};

TEST_F(ShowGroundPointsTest, PointsAreDrawnOverThePhotoWithTheirValues) {
  ShowPhoto();
  StorePoints();
  WriteFileBytes("deep/a.ORN", kOrientation);
  Window()->m_showOverlay = 0;
  const CDibView* const photo = Window();
  ui.files = {{"p.pts"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  ExpectChoosers({{kOpen, "Points Files (*.pts)|*.pts|All Files (*.*)|*.*|"}});
  EXPECT_EQ(Window(), photo);
  ExpectPoints({5, 2, 15, 9, 50, 5});
  EXPECT_THAT(Labels(), ElementsAre("0.76", "1.50", "-12.35"));
  EXPECT_EQ(Window()->m_showOverlay, 1);
  EXPECT_THAT(ui.EventsWith("overlay"), ElementsAre("overlay: a.lan 3 0 3"));
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: 3 points projected, 2 of them in the image."));
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_EQ(ui.waitDepth, 0);
}

TEST_F(ShowGroundPointsTest, TheOrientationMayHaveASmallExtension) {
  ShowPhoto();
  StorePoints();
  WriteFileBytes("deep/a.orn", kOrientation);
  ui.files = {{"p.pts"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  ExpectPoints({5, 2, 15, 9, 50, 5});
}

TEST_F(ShowGroundPointsTest, TheStartOfTheImageIsTakenOff) {
  ShowPhoto("deep/a.lan", 3, -2);
  StorePoints();
  WriteFileBytes("deep/a.ORN", kOrientation);
  ui.files = {{"p.pts"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  ExpectPoints({2, 4, 12, 11, 47, 7});
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: 3 points projected, 1 of them in the image."));
}

TEST_F(ShowGroundPointsTest, AForeignFormatHasNoStart) {
  ShowPhoto();
  ui.files = {{"deep/a.lan"}};
  ErdasImg image;
  image.Read("deep/a.lan");
  ASSERT_EQ(image.Write("b.tif"), 1);
  ui.files = {{"b.tif"}};
  ASSERT_EQ(Run("Show Image"), CommandResult::Done);
  StorePoints();
  WriteFileBytes("b.ORN", kOrientation);
  ui.files = {{"p.pts"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  ExpectPoints({5, 2, 15, 9, 50, 5});
}

TEST_F(ShowGroundPointsTest, PointsTakeThePlaceOfThoseBefore) {
  ShowPhoto();
  StorePoints();
  WriteFileBytes("deep/a.ORN", kOrientation);
  ui.files = {{"p.pts"}, {"p.pts"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  EXPECT_EQ(Window()->m_points.size(), 6u);
  EXPECT_EQ(Window()->m_labels.size(), 3u);
}

TEST_F(ShowGroundPointsTest, WithoutAnImageAnEmptyWindowTakesTheirExtent) {
  StorePoints();
  ui.files = {{"p.pts"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  ASSERT_NE(Window(), nullptr);
  EXPECT_EQ(Window()->GetTitle(), "p.pts");
  EXPECT_EQ(Window()->GetScrollSize(), (PixelSize{46, 8}));
  EXPECT_TRUE(Window()->GetDocument().GetDib().empty());
  ExpectPoints({0, 0, 10, 7, 45, 3});
  EXPECT_THAT(Labels(), ElementsAre("0.76", "1.50", "-12.35"));
  EXPECT_THAT(ui.EventsWith("status"), ElementsAre("status 0: 3 points, without an image."));
}

TEST_F(ShowGroundPointsTest, AHugeExtentCapsThePicture) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  WriteFileBytes("far.pts", PointsBytes(3, {0, 0, 0, 0, 1, 1},
                                        {-1e300, 0, 0, 1, 1e300, 1e12, 0, kNaN, kNaN, 0, 0, 1e300}));
  ui.files = {{"far.pts"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  EXPECT_GT(Window()->GetPictureSize().width, 0);
  EXPECT_LE(Window()->GetPictureSize().width, 4000);
  EXPECT_LE(Window()->GetPictureSize().height, 4000);
}

TEST_F(ShowGroundPointsTest, WithoutAnOrientationNothingIsDrawn) {
  ShowPhoto();
  StorePoints();
  ExpectFailure(
      kCommand, {{"p.pts"}},
      {"message warning: Open file deep/a.ORN error!\nThe orientation of a.lan stands beside it, in a "
       "file .ORN or .orn."});
  EXPECT_THAT(Window()->m_points, IsEmpty());
}

TEST_F(ShowGroundPointsTest, APlanOfPointsIsNoPhoto) {
  StorePoints();
  ui.files = {{"p.pts"}, {"p.pts"}};
  ASSERT_EQ(Run(kCommand), CommandResult::Done);
  const CDibView* const first = Window();
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  EXPECT_NE(Window(), first);
  ExpectPoints({0, 0, 10, 7, 45, 3});
}

TEST_F(ShowGroundPointsTest, AWindowWithoutAnImageFileHasNoOrientation) {
  StorePoints();
  ErdasImg made;
  ASSERT_EQ(made.Create(HeaderOf(kPackByte, 1, 4, 4), false), 1);
  OpenBitmapWindow(app.GetMainFrame(), made.MakeDib(), "made");
  ExpectFailure(
      kCommand, {{"p.pts"}},
      {"message warning: The window made shows no image file, and so no orientation goes with it."});
}

TEST_F(ShowGroundPointsTest, AnImageFileThatHasGoneIsTold) {
  ShowPhoto();
  StorePoints();
  WriteFileBytes("deep/a.ORN", kOrientation);
  std::filesystem::remove("deep/a.lan");
  ExpectFailure(kCommand, {{"p.pts"}}, {"message warning: Open file deep/a.lan error!"});
}

TEST_F(ShowGroundPointsTest, PointsThatCanNotBeReadAreTold) {
  ExpectFailure(kCommand, {{"none.pts"}}, {"message warning: Open point file none.pts error!"});
  WriteFileBytes("short.pts", "short");
  ExpectFailure(kCommand, {{"short.pts"}}, {"message warning: Open point file short.pts error!"});
  EXPECT_EQ(Window(), nullptr);
}

TEST_F(ShowGroundPointsTest, PointsMissingInACutFileAreLeftOut) {
  ShowPhoto();
  StorePoints(40);  // the last point, and a part of the second
  WriteFileBytes("deep/a.ORN", kOrientation);
  ui.files = {{"p.pts"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  EXPECT_THAT(
      ui.EventsWith("status"),
      ElementsAre("status 0: 1 points projected, 1 of them in the image. Points missing in p.pts: 2."));
  ExpectPoints({5, 2});
}

TEST_F(ShowGroundPointsTest, AnEmptyOrientationDoesNoHarm) {
  ShowPhoto();
  StorePoints();
  for (const char* text :
       {"", "ORIENTATION a b\n150\n1 2 3\n", "O N W\n0\n0 0 0\n0 0 0\n1e999 1 1\n1 1 1\n"}) {
    WriteFileBytes("deep/a.ORN", text);
    ui.files = {{"p.pts"}};
    EXPECT_EQ(Run(kCommand), CommandResult::Done);
    EXPECT_EQ(Window()->m_points.size(), 6u);
    EXPECT_THAT(
        ui.EventsWith("status").back(),
        testing::EndsWith("The numbers in deep/a.ORN make no orientation: it is cut short, or a word stands "
                          "among them."));
  }
}

TEST_F(ShowGroundPointsTest, APointAboveTheCameraIsNotInTheImage) {
  ShowPhoto();
  WriteFileBytes("deep/a.ORN", kOrientation);
  WriteFileBytes("p.pts", PointsBytes(2, {95, 203, 105, 196, 1, 1}, {95, 203, 0, 1, 105, 197, 3000, 2}));
  ui.files = {{"p.pts"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  EXPECT_EQ(Window()->m_points.size(), 4u) << "it is drawn all the same";
  EXPECT_EQ(ui.EventsWith("status").back(), "status 0: 2 points projected, 1 of them in the image.");
}

TEST_F(ShowGroundPointsTest, LabelsThatWereHiddenShow) {
  ShowPhoto();
  StorePoints();
  WriteFileBytes("deep/a.ORN", kOrientation);
  Window()->m_showLabels = 0;
  ui.files = {{"p.pts"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  EXPECT_EQ(Window()->m_showLabels, 1);
}

TEST_F(ShowGroundPointsTest, WithoutAnImageTheExtentIsThatOfTheSet) {
  WriteFileBytes("p.pts", PointsBytes(2, {0, 300, 200, 0, 1, 1}, {95, 203, 0, 1, 105, 196, 0, 2}));
  ui.files = {{"p.pts"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  EXPECT_EQ(Window()->GetScrollSize(), (PixelSize{201, 301}));
  ExpectPoints({95, 97, 105, 104});
}

TEST_F(ShowGroundPointsTest, PointsWithoutAPlaceDoNotSpoilTheOthers) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  WriteFileBytes("p.pts",
                 PointsBytes(3, {0, 0, 0, 0, 1, 1}, {kNaN, kNaN, 0, 1, 95, 203, 0, 1, 105, 196, 0, 2}));
  WriteFileBytes("none.pts", PointsBytes(1, {0, 0, 0, 0, 1, 1}, {kNaN, 1, 0, 1}));
  ui.files = {{"p.pts"}};
  EXPECT_EQ(Run(kCommand), CommandResult::Done);
  EXPECT_EQ(Window()->GetScrollSize(), (PixelSize{11, 8}));
  EXPECT_EQ(ui.EventsWith("status").back(),
            "status 0: 3 points, without an image. Points without a place: 1.");
  ExpectFailure(kCommand, {{"none.pts"}}, {"message warning: Open point file none.pts error!"});
}

TEST_F(ShowGroundPointsTest, CancelShowsNothing) {
  EXPECT_EQ(Run(kCommand), CommandResult::Cancelled);
  EXPECT_EQ(Window(), nullptr);
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(ShowGroundPointsTest, CheckPointsOfABlockShowWhereTheyWereMeasured) {
  const std::string photo = SharedData("block/hills_s1p2.lan");
  const std::string ground = SharedData("block/hills_check_points.txt");
  const std::string measured = SharedData("block/hills_check_points_image.txt");
  if (photo.empty() || ground.empty() || measured.empty()) GTEST_SKIP() << "no block";
  std::vector<double> records;
  std::ifstream groundText(ground);
  for (double x, y, z; groundText >> x >> y >> z;) records.insert(records.end(), {x, y, z, 1.0});
  ASSERT_EQ(records.size(), 80u);
  WriteFileBytes("check.pts", PointsBytes(20, {1000, 6080, 2200, 5000, 2, 2}, records));
  ui.files = {{photo}, {"check.pts"}};
  ASSERT_EQ(Run("Show Image"), CommandResult::Done);
  EXPECT_EQ(Run(kCommand), CommandResult::Done);

  std::ifstream text(measured);
  int n = 0;
  for (std::string line; std::getline(text, line);) {
    std::istringstream fields(line);
    std::size_t point = 0;
    std::string name;
    double col = 0.0;
    double row = 0.0;
    if (!(fields >> point >> name >> col >> row) || name != "hills_s1p2") continue;
    EXPECT_THAT(Window()->m_points[2 * point - 2], DoubleNear(col, 0.0012)) << line;
    EXPECT_THAT(Window()->m_points[2 * point - 1], DoubleNear(row, 0.0012)) << line;
    ++n;
  }
  EXPECT_GE(n, 8);
}

}  // namespace
}  // namespace corvane
