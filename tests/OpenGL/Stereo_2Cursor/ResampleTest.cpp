// Images resampled from one photo into another with the same centre.

#include <limits>

#include "OpenGL/Stereo_2Cursor/ResampleFixture.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A vertical photo of 20 x 10 pixels of 0.5, whose pixel (0, 0) is at (-5, 2.5).
const PhotoElements kVertical = {.f = 100.0, .a = 0.5, .c = -5.0, .e = -0.5, .g = 2.5};

// The documented loop, a pixel at a time.
void ResamplePlainly(const AerialPhoto& source, ConstMatrix h, ErdasImg& output) {
  const ImageSize size = source.image.GetSize();
  const auto [cols, rows] = output.GetSize();
  for (std::int32_t row = 0; row < rows; ++row) {
    for (std::int32_t col = 0; col < cols; ++col) {
      double uvw[3];
      for (int i = 0; i < 3; ++i) uvw[i] = h[i][0] * col + h[i][1] * row + h[i][2] * 1.0;
      const double sourceCol = std::trunc(uvw[0] / uvw[2] + 0.5);
      const double sourceRow = std::trunc(uvw[1] / uvw[2] + 0.5);
      const bool isInside =
          sourceCol >= 0.0 && sourceCol < size.cx && sourceRow >= 0.0 && sourceRow < size.cy;
      for (std::int32_t band = 0; band < output.GetBandCount(); ++band) {
        double value = 0.0;
        if (isInside) {
          source.image.GetPixel(band, static_cast<std::int32_t>(sourceRow),
                                static_cast<std::int32_t>(sourceCol), value);
        }
        output.SetPixel(band, row, col, value);
      }
    }
  }
}

// The photo, resampled by each version of the machine code, is what the plain loop gives. Returns how many
// pixels come from the source.
int ExpectAsPlain(const AerialPhoto& source, AerialPhoto& photo, const double extent[6], double cell) {
  ErdasImg expected;
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    EXPECT_EQ(photo.ResampleFrom(source, extent, cell), 1);
    if (!expected.HasPixels()) {
      expected.Create(*photo.image.GetHeader(), false);
      ResamplePlainly(source, photo.resampleMap.get(), expected);
    }
    ExpectSamePixels(photo.image, expected);
  }
  return CountPainted(expected);
}

TEST(MapExtentFrom, APhotoOntoItself) {
  AerialPhoto photo;
  SetPhoto(photo, kVertical);
  double extent[6] = {0, 0, 1, 20, 10, 1};
  photo.MapExtentFrom(photo, extent);
  const double expected[6] = {-5, -2.5, -100, 5, 2.5, -100};
  for (int i = 0; i < 6; ++i) EXPECT_DOUBLE_EQ(extent[i], expected[i]) << i;
}

TEST(MapExtentFrom, APhotoTurnedByARightAngleAndOfTwiceTheFocalLength) {
  // With kappa = 90 degrees R is (0, 1, 0; -1, 0, 0; 0, 0, 1): x becomes -y, and y becomes x.
  AerialPhoto source;
  SetPhoto(source, kVertical);
  AerialPhoto turned;
  PhotoElements elements = kVertical;
  elements.kappa = 90.0;
  elements.f = 200.0;
  SetPhoto(turned, elements);
  double extent[6] = {2, 1, 1, 20, 10, 1};  // x from -4 to 5, y from -2.5 to 2
  turned.MapExtentFrom(source, extent);
  const double expected[6] = {-5, -10, -200, 4, 8, -200};
  for (int i = 0; i < 6; ++i) EXPECT_NEAR(extent[i], expected[i], 1e-12) << i;
}

TEST(MapExtentFrom, TiltedPhotosAsTheRaysGo) {
  RandomPhotos random;
  for (int n = 0; n < 20; ++n) {
    const PhotoElements from = random.Next();
    PhotoElements onto = random.Next();
    AerialPhoto source;
    AerialPhoto photo;
    SetPhoto(source, from);
    SetPhoto(photo, onto);
    double extent[6] = {10, 20, 1, 1000, 800, 1};
    photo.MapExtentFrom(source, extent);
    long double expected[4] = {1e30L, 1e30L, -1e30L, -1e30L};
    for (const double col : {10.0, 1000.0}) {
      for (const double row : {20.0, 800.0}) {
        const auto v = PlainPhoto(onto).ToPhotoFrame(PlainPhoto(from).Ray(col, row));
        const long double xy[2] = {-onto.f * v[0] / v[2], -onto.f * v[1] / v[2]};
        for (int k = 0; k < 2; ++k) {
          expected[k] = std::fmin(expected[k], xy[k]);
          expected[2 + k] = std::fmax(expected[2 + k], xy[k]);
        }
      }
    }
    EXPECT_NEAR(extent[0], static_cast<double>(expected[0]), 1e-9);
    EXPECT_NEAR(extent[1], static_cast<double>(expected[1]), 1e-9);
    EXPECT_NEAR(extent[3], static_cast<double>(expected[2]), 1e-9);
    EXPECT_NEAR(extent[4], static_cast<double>(expected[3]), 1e-9);
  }
}

TEST(ResampleFrom, OutputPixelZeroIsTheUpperLeftCorner) {
  AerialPhoto source;
  SetPhoto(source, kVertical);
  MakePattern(source.image, kPackByte, 1, 20, 10);
  AerialPhoto photo;
  SetPhoto(photo, kVertical);
  const double extent[6] = {-1.25, -2.0, 1, 3.0, 1.75, 1};
  ASSERT_EQ(photo.ResampleFrom(source, extent, 0.25), 1);
  const double origin[2] = {0, 0};
  const double lower[2] = {3, 2};
  double out[3];
  photo.ImageToPhoto(origin, out);
  EXPECT_EQ(out[0], -1.25);
  EXPECT_EQ(out[1], 1.75);
  photo.ImageToPhoto(lower, out);
  EXPECT_EQ(out[0], -0.5);
  EXPECT_EQ(out[1], 1.25);
  EXPECT_EQ(photo.imageToPhoto[2][2], -100.0);
}

TEST(ResampleFrom, HeaderIsTheSourcesButForSizePlaceAndCell) {
  AerialPhoto source;
  SetPhoto(source, kVertical);
  MakePattern(source.image, kPackByte, 2, 20, 10);
  ErdasHeader& header = *source.image.GetHeader();
  header.xStart = 7;
  header.yStart = -8;
  header.mapType = 3;
  header.classCount = 9;
  header.reserved10[2] = 5;
  header.reserved32[55] = 6;
  header.reserved92[0] = 4;
  AerialPhoto photo;
  SetPhoto(photo, kVertical);
  const double extent[6] = {-1.25, -2.0, 1, 3.1, 1.75, 1};
  ASSERT_EQ(photo.ResampleFrom(source, extent, -0.25), 1);  // a cell counts without its sign
  ErdasHeader expected = header;
  expected.cols = 17;  // 4.35 / 0.25 = 17.4
  expected.rows = 15;
  expected.xMap = -1.25f;
  expected.yMap = 1.75f;
  expected.xCell = 0.25f;
  expected.yCell = -0.25f;
  EXPECT_EQ(BytesOf(*photo.image.GetHeader()), BytesOf(expected));
}

TEST(ResampleFrom, AnImageOntoItself) {
  AerialPhoto source;
  SetPhoto(source, kVertical);
  MakePattern(source.image, kPackByte, 1, 20, 10);
  AerialPhoto photo;
  SetPhoto(photo, kVertical);
  double extent[6] = {0, 0, 1, 20, 10, 1};
  photo.MapExtentFrom(source, extent);
  ASSERT_EQ(photo.ResampleFrom(source, extent, 0.5), 1);
  EXPECT_EQ(photo.image.GetSize(), source.image.GetSize());
  EXPECT_EQ(BandBytes(photo.image, 0), BandBytes(source.image, 0));
}

TEST(ResampleFrom, FirstPixelReachesFromMinusOneAndAHalf) {
  // Output columns 0, 1, 2, 3 lie at source columns -1.5, -1, -0.5, 0, in row 0.
  AerialPhoto source;
  SetPhoto(source, kVertical);
  MakePattern(source.image, kPackByte, 1, 20, 10);
  AerialPhoto photo;
  SetPhoto(photo, kVertical);
  const double extent[6] = {-5.75, 2.25, 1, -4.75, 2.5, 1};
  ASSERT_EQ(photo.ResampleFrom(source, extent, 0.25), 1);
  ASSERT_EQ(photo.image.GetSize(), (ImageSize{4, 1}));
  EXPECT_EQ(BandPixelsOf<std::uint8_t>(photo.image, 0), (std::vector<std::uint8_t>{0, 1, 1, 1}));
}

TEST(ResampleFrom, IsZeroOutsideOfTheSource) {
  AerialPhoto source;
  SetPhoto(source, kVertical);
  MakePattern(source.image, kPackByte, 1, 20, 10);
  AerialPhoto photo;
  SetPhoto(photo, kVertical);
  const double extent[6] = {5.0, -5.0, 1, 10.0, 0.0, 1};  // from source column 20 on
  ASSERT_EQ(photo.ResampleFrom(source, extent, 0.5), 1);
  EXPECT_EQ(photo.image.GetSize(), (ImageSize{10, 10}));
  EXPECT_EQ(CountPainted(photo.image), 0);
}

TEST(ResampleFrom, FastLoopsGiveThePixelsOfThePlainOne) {
  RandomPhotos random;
  int nPainted = 0;
  for (const std::uint16_t packType : {0, 1, 2, 3, 4, 5, 6, 7, 300}) {
    for (const std::uint16_t nBands : {1, 3}) {
      PhotoElements elements = random.Next();
      AerialPhoto source;
      SetPhoto(source, elements);
      MakePattern(source.image, packType, nBands, 83, 61);
      AerialPhoto photo;
      elements.omega += random.In(-5.0, 5.0);
      elements.phi += random.In(-5.0, 5.0);
      elements.kappa += random.In(-180.0, 180.0);
      SetPhoto(photo, elements);
      double extent[6] = {-9, -7, 1, 90, 70, 1};
      photo.MapExtentFrom(source, extent);
      nPainted += ExpectAsPlain(source, photo, extent, elements.a * random.In(0.7, 1.3));
    }
  }
  EXPECT_GT(nPainted, 18 * 1000);
}

TEST(ResampleFrom, WiderThanAStrip) {
  AerialPhoto source;
  SetPhoto(source, {.a = 0.1, .c = -70.0, .e = -0.1, .g = 0.5});
  MakePattern(source.image, kPackByte, 1, 1400, 11);
  AerialPhoto photo;
  SetPhoto(photo, {.omega = 0.3, .phi = -0.2, .kappa = 0.1});
  const double extent[6] = {-71, -1, 1, 69, 1, 1};
  EXPECT_GT(ExpectAsPlain(source, photo, extent, 0.1), 10000);
}

TEST(ResampleFrom, AcrossTheHorizon) {
  // Where w passes through 0 coordinates are infinite, and behind it the source is upside down.
  AerialPhoto source;
  SetPhoto(source, kVertical);
  MakePattern(source.image, kPackByte, 1, 20, 10);
  AerialPhoto photo;
  PhotoElements level = kVertical;
  level.omega = 88.0;
  SetPhoto(photo, level);
  const double extent[6] = {-400, -400, 1, 400, 400, 1};
  ExpectAsPlain(source, photo, extent, 3.0);
  AerialPhoto empty;  // H is zero: places are no numbers
  AerialPhoto other;
  SetPhoto(other, kVertical);
  MakePattern(empty.image, kPackByte, 1, 20, 10);
  ASSERT_EQ(other.ResampleFrom(empty, extent, 50.0), 1);
  EXPECT_EQ(CountPainted(other.image), 0);
}

TEST(ResampleFrom, PixelsThatTheBandsDoNotHoldAreZero) {
  AerialPhoto source;
  SetPhoto(source, kVertical);
  MakePattern(source.image, kPackByte, 2, 20, 10);
  source.image.GetHeader()->bandCount = 3;
  source.image.SetSize(20, 12);  // two rows more than there are
  AerialPhoto photo;
  SetPhoto(photo, kVertical);
  const double extent[6] = {-5.0, -3.5, 1, 5.0, 2.5, 1};
  EXPECT_EQ(ExpectAsPlain(source, photo, extent, 0.5), 200);
  EXPECT_EQ(CountPainted(photo.image, 2), 0);
}

TEST(ResampleFrom, SizesThatMakeNoImage) {
  AerialPhoto source;
  SetPhoto(source, kVertical);
  MakePattern(source.image, kPackByte, 1, 20, 10);
  AerialPhoto photo;
  SetPhoto(photo, kVertical);
  const double good[6] = {-5, -2.5, 1, 5, 2.5, 1};
  for (const double cell : {0.0, kNaN, kInfinity, 20.0, 1e-300, 1e-9}) {
    EXPECT_EQ(photo.ResampleFrom(source, good, cell), -1) << cell;
    EXPECT_FALSE(photo.image.HasPixels());
    EXPECT_EQ(photo.imageToPhoto[1][2], 2.5);  // A is made all the same
  }
  for (const double maxX : {-5.0, -6.0, kNaN, kInfinity, 1e300, 1e12}) {
    const double extent[6] = {-5, -2.5, 1, maxX, 2.5, 1};
    EXPECT_EQ(photo.ResampleFrom(source, extent, 0.5), -1) << maxX;
  }
}

// 2^26 pixels, or 256 for each of the source's. Headers alone do: no pixel is there.
TEST(ResampleFrom, SizesThatNobodyMeansMakeNoImage) {
  TestFrontEnd ui;
  AerialPhoto source;
  source.name = "photos/a.lan";
  AerialPhoto photo;
  const auto resample = [&](double cols, double rows) {
    const double extent[6] = {0, 0, 1, cols, rows, 1};
    const int status = photo.ResampleFrom(source, extent, 1.0);
    EXPECT_EQ(photo.image.HasPixels(), status == 1);
    return status;
  };
  source.image.SetSize(20, 10);
  EXPECT_EQ(resample(8192.9, 8192.9), 1);
  EXPECT_EQ(resample(8193, 8192), -1);
  EXPECT_EQ(resample(8192, 8193), -1);
  EXPECT_EQ(resample(2e9, 2e9), -1);
  EXPECT_TRUE(ui.EventsWith("status").empty());
  source.image.SetSize(512, 520);  // times 256 is 8192 times 8320
  EXPECT_EQ(resample(8192, 8320), 1);
  EXPECT_EQ(resample(8192, 8321), -1);
  // The way there is told strip by strip.
  const auto told = ui.EventsWith("status");
  ASSERT_EQ(told.size(), 16u);
  EXPECT_EQ(told.front(), "status 0: Resampling a.lan, 6 %");
  EXPECT_EQ(told.back(), "status 0: Resampling a.lan, 100 %");
}

}  // namespace
}  // namespace corvane
