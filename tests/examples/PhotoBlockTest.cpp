// The sample survey's block of photos, and what the photo's own geometry makes of it.

#include "sample_survey/PhotoBlock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "Checksum.h"
#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "PhotoProject/PhotoProject.h"
#include "SampleBlock.h"
#include "sample_survey/PhotoBlockFiles.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

class PhotoBlockTest : public testing::Test {
 protected:
  void SetUp() override { WriteSampleBlock(); }

  TempFolder folder_;
  TestFrontEnd frontEnd_;
};

}  // namespace

// The constants stand for the block as it was published: a changed bit in any of these files makes results
// with it incomparable.
TEST_F(PhotoBlockTest, BytesAreTheSameOnEveryMachineAndInEveryBuild) {
  EXPECT_EQ(Checksum(ReadFileBytes("s1p1.lan")), 0x0EE9B17B0E5AF516u);
  EXPECT_EQ(Checksum(ReadFileBytes("s2p3.lan")), 0xD8AA0B360CF7360Eu);
  EXPECT_EQ(Checksum(ReadFileBytes("ground.lan")), 0x3DE2621E64C8A237u);
  EXPECT_EQ(Checksum(ReadFileBytes("signals_image.txt")), 0x8166930FDB07A0D8u);
  EXPECT_EQ(Checksum(ReadFileBytes("start.pj")), 0xE58F184B3DF72CA6u);
}

TEST_F(PhotoBlockTest, OrientationFilesProjectTheSignalsToTheirPlaces) {
  for (const SignalPlace& line : ReadSignalPlaces()) {
    AerialPhoto photo;
    ASSERT_EQ(photo.LoadOrientation(line.photo + ".orn"), 1);
    const GroundPlace place = SignalOf(line.point).GetPlace();
    double col = 0.0;
    double row = 0.0;
    photo.GroundToImage(place.x, place.y, place.z, col, row);
    EXPECT_NEAR(col, line.place.col, 1e-6) << line.point << " " << line.photo;
    EXPECT_NEAR(row, line.place.row, 1e-6) << line.point << " " << line.photo;
  }
}

TEST_F(PhotoBlockTest, SignalsLieOnTheGroundAndInTwoPhotosAtLeast) {
  std::map<std::string, int> rays;
  for (const SignalPlace& line : ReadSignalPlaces()) ++rays[line.point];
  ASSERT_EQ(SampleBlock().GetSignals().size(), 50u);
  for (const SignalPoint& point : SampleBlock().GetSignals()) {
    const GroundPlace place = point.GetPlace();
    const double z = SampleBlock().GetGround().HeightAt(place.x - kSurveyWest, place.y - kSurveySouth);
    EXPECT_NEAR(place.z, z, 0.0005 + 1e-9) << point.name;
    EXPECT_GE(rays[point.name], 2) << point.name;
  }
}

TEST_F(PhotoBlockTest, SignalsShowWhereTheyShould) {
  std::map<std::string, ErdasImg> images;
  for (const BlockPhoto& photo : SampleBlock().GetPhotos()) {
    ASSERT_EQ(images[photo.name].Read(photo.name + ".lan"), 1);
  }
  for (const SignalPlace& line : ReadSignalPlaces()) {
    const PhotoPlace found = DiscMiddle(images[line.photo], line.place);
    EXPECT_NEAR(found.col, line.place.col, 0.75) << line.point << " " << line.photo;
    EXPECT_NEAR(found.row, line.place.row, 0.75) << line.point << " " << line.photo;
  }
}

TEST_F(PhotoBlockTest, GroundRasterHoldsTheHeightsBetweenWhichTheGroundIsBilinear) {
  ErdasImg ground;
  ASSERT_EQ(ground.Read("ground.lan"), 1);
  EXPECT_EQ(ground.GetHeader()->xMap, 450800.0f);
  EXPECT_EQ(ground.GetHeader()->yMap, 5423510.0f);
  double cells[4] = {};
  for (int i = 0; i < 4; ++i) ASSERT_TRUE(ground.GetPixel(0, 300 + i / 2, 200 + i % 2, cells[i]));
  // The centre of cell (300, 200) lies half a metre within it; a quarter of a metre on in both directions.
  const double east = GroundRaster::kEast + 200.5 + 0.25;
  const double north = GroundRaster::kNorth + 630.0 - 300.5 - 0.25;
  const double expected =
      (cells[0] * 0.75 + cells[1] * 0.25) * 0.75 + (cells[2] * 0.75 + cells[3] * 0.25) * 0.25;
  EXPECT_NEAR(SampleBlock().GetGround().HeightAt(east, north), expected, 1e-9);
}

TEST_F(PhotoBlockTest, FileThatCannotBeWrittenIsNamed) {
  WriteFileBytes("taken", "");
  std::string failed;
  EXPECT_FALSE(WritePhotoBlock(SampleBlock(), "taken", failed));
  EXPECT_EQ(failed, "taken/s1p1.lan");
}

}  // namespace corvane
