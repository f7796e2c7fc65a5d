// Harris corners: the response, the points, and prominent pixels.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <random>

#include "ImgProcess/ImgProcess.h"
#include "erdasimg/ImageBytes.h"
#include "numerics/SimdVersion.h"
#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

ErdasImg ImageOf(std::uint16_t packType, std::int32_t cols, std::int32_t rows, std::uint16_t nBands = 1) {
  ErdasImg image;
  image.Create(HeaderOf(packType, nBands, cols, rows), false);
  return image;
}

// Whole numbers from 0 to 255; a few of the floats are none, or infinite, if `isWild`.
void FillAtRandom(ErdasImg& image, unsigned seed, bool isWild = false) {
  std::mt19937 random(seed);
  const auto [cols, rows] = image.GetSize();
  for (std::int32_t band = 0; band < image.GetBandCount(); ++band) {
    for (std::int32_t i = 0; i < cols * rows; ++i) {
      double value = random() % 256;
      if (isWild && random() % 50 == 0) value = random() % 2 ? kNan : kInfinity;
      image.SetPixel(band, i / cols, i % cols, value);
    }
  }
}

// The numbers of a band as text, in which all not-a-numbers are the same.
template <typename Number>
std::vector<std::string> NumbersOf(const ErdasImg& image, std::int64_t band) {
  std::vector<std::string> texts;
  for (const Number number : BandPixelsOf<Number>(image, band)) {
    texts.push_back(std::isnan(number) ? "nan"
                                       : std::string(reinterpret_cast<const char*>(&number), sizeof number));
  }
  return texts;
}

void ExpectSameNumbers(const ErdasImg& a, const ErdasImg& b) {
  ASSERT_TRUE(a.SameGeometry(b));
  for (std::int64_t band = 0; band < a.GetBandCount(); ++band) {
    if (a.GetPackType() == kPackDouble) {
      EXPECT_TRUE(NumbersOf<double>(a, band) == NumbersOf<double>(b, band));
    } else {
      EXPECT_TRUE(NumbersOf<float>(a, band) == NumbersOf<float>(b, band));
    }
  }
}

// The response as the definition has it, image by image.
template <typename Number>
ResultImage PlainResponse(const ErdasImg& image, std::uint16_t pack, const HarrisParam& param) {
  ImgProcess process;
  Kernel1D difference;
  process.MakeCentralDifference(difference);
  ResultImage gx, gy, product, c, a, b;
  EXPECT_EQ(process.Convolve(image, difference, 1, pack, gx), 1);
  EXPECT_EQ(process.Convolve(image, difference, 2, pack, gy), 1);
  EXPECT_EQ(process.Multiply(*gx, *gy, product), 1);
  process.Square(*gx);
  process.Square(*gy);
  EXPECT_EQ(process.GaussianSmooth(*product, param.sigma, c), 1);
  EXPECT_EQ(process.GaussianSmooth(*gx, param.sigma, a), 1);
  EXPECT_EQ(process.GaussianSmooth(*gy, param.sigma, b), 1);
  const Number k = static_cast<Number>(param.k);
  for (std::int32_t band = 0; band < image.GetBandCount(); ++band) {
    auto* const as = reinterpret_cast<Number*>(a->GetBands()[band]);
    auto* const bs = reinterpret_cast<Number*>(b->GetBands()[band]);
    auto* const cs = reinterpret_cast<Number*>(c->GetBands()[band]);
    for (std::int32_t i = 0; i < image.GetSize().cx * image.GetSize().cy; ++i) {
      const Number sum = as[i] + bs[i];
      const Number squaredSum = sum * sum;
      const Number products = as[i] * bs[i];
      const Number squaredC = cs[i] * cs[i];
      const Number weighted = k * squaredSum;
      const Number determinant = products - squaredC;
      as[i] = determinant - weighted;
    }
  }
  return a;
}

ResultImage PlainResponse(const ErdasImg& image, std::uint16_t pack, const HarrisParam& param) {
  return pack == kPackDouble ? PlainResponse<double>(image, pack, param)
                             : PlainResponse<float>(image, pack, param);
}

class CornersTest : public testing::Test {
 protected:
  std::vector<std::string> Files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("."))
      names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  // A chessboard of squares of 10 pixels, 0 and 200, whose lines lie on pixels of 100: on columns 5, 15, ...
  // 65 and rows 5, 15, ... 55.
  static ErdasImg Chessboard() {
    ErdasImg image = ImageOf(kPackByte, 71, 61);
    const auto sign = [](std::int32_t i) { return i % 10 == 5 ? 0 : (i + 5) / 10 % 2 == 0 ? 1 : -1; };
    for (std::int32_t row = 0; row < 61; ++row) {
      for (std::int32_t col = 0; col < 71; ++col)
        image.SetPixel(0, row, col, 100 + 100 * sign(row) * sign(col));
    }
    return image;
  }

  static std::vector<Point2> Crossings() {
    std::vector<Point2> points;
    for (int row = 5; row < 61; row += 10) {
      for (int col = 5; col < 71; col += 10) points.push_back({1.0 * col, 1.0 * row});
    }
    return points;
  }

  ImgProcess process;
  TempFolder folder;
  TestFrontEnd ui;
};

// The response

TEST_F(CornersTest, ResponseOfASlopeByHand) {
  // Columns 0, 10, 20, ...: gx is 10 but 5 at both ends; gy is 0. So B and C are 0 and R = -k * A^2.
  ErdasImg image = ImageOf(kPackByte, 21, 5);
  for (std::int32_t i = 0; i < 21 * 5; ++i) image.SetPixel(0, i / 21, i % 21, i % 21 * 10);
  ResultImage response;
  process.SetOutPack(kPackDouble);
  ASSERT_EQ(process.CornerResponse(image, response, {.k = 0.25, .sigma = 1.0}), 1);
  double value = 0.0;
  response->GetPixel(0, 2, 10, value);
  EXPECT_NEAR(value, -0.25 * 100 * 100, 1e-9);
  // At the left edge the weights of pixels -3 to 0 meet 25, those of 1 to 3 meet 100.
  const double sum = 1 + 2 * (std::exp(-0.5) + std::exp(-2.0) + std::exp(-4.5));
  const double right = (std::exp(-0.5) + std::exp(-2.0) + std::exp(-4.5)) / sum;
  response->GetPixel(0, 2, 0, value);
  const double a = 25 * (1 - right) + 100 * right;
  EXPECT_NEAR(value, -0.25 * a * a, 1e-9);
}

TEST_F(CornersTest, ResponseIsThatOfTheStepsImageByImage) {
  for (const std::uint16_t inPack : {kPackByte, kPackFloat, kPackDouble}) {
    for (const std::uint16_t outPack : {kPackFloat, kPackDouble}) {
      process.SetOutPack(outPack);
      for (const auto& [cols, rows] :
           std::vector<std::pair<int, int>>{{1, 1}, {1, 9}, {7, 1}, {2, 3}, {5, 40}, {83, 37}}) {
        ErdasImg image = ImageOf(inPack, cols, rows, 2);
        FillAtRandom(image, 1, inPack != kPackByte);
        for (const double sigma : {0.3, 2.0, 5.5}) {
          const HarrisParam param{.sigma = sigma};
          const ResultImage plain = PlainResponse(image, outPack, param);
          for (const SimdVersion version : AvailableSimdVersions()) {
            const ForcedSimdVersion forced(version);
            ResultImage response;
            ASSERT_EQ(process.CornerResponse(image, response, param), 1);
            ExpectSameNumbers(*response, *plain);
          }
        }
      }
    }
  }
}

TEST_F(CornersTest, ResponseTakesTheInputsHeader) {
  ErdasImg image = ImageOf(kPackByte, 9, 8);
  image.GetHeader()->xMap = 12.5f;
  image.GetHeader()->classCount = 3;
  ResultImage response;
  ASSERT_EQ(process.CornerResponse(image, response, {}), 1);
  ErdasHeader header = *image.GetHeader();
  header.packType = kPackFloat;
  EXPECT_EQ(BytesOf(*response->GetHeader()), BytesOf(header));
}

TEST_F(CornersTest, ResponseGoesIntoAnImageThatFits) {
  ErdasImg image = ImageOf(kPackByte, 9, 8);
  auto response = std::make_unique<ErdasImg>(ImageOf(kPackFloat, 9, 8));
  response->Fill(5);
  ErdasImg* const before = response.get();
  EXPECT_EQ(process.CornerResponse(image, response, {}), 1);
  EXPECT_EQ(response.get(), before);
  EXPECT_EQ(BandPixelsOf<float>(*response, 0), std::vector<float>(72, 0.0f));
  for (const ErdasImg& other : {ImageOf(kPackDouble, 9, 8), ImageOf(kPackFloat, 8, 9)}) {
    auto unfit = std::make_unique<ErdasImg>();
    other.CopyTo(*unfit);
    EXPECT_EQ(process.CornerResponse(image, unfit, {}), -1);
    EXPECT_EQ(process.CornerResponseFromFiles(image, unfit, {}), -1);
  }
}

TEST_F(CornersTest, ResponseOfOtherTypesIsZero) {
  for (const std::uint16_t pack : {kPackUInt16, kPackInt32}) {
    ErdasImg image = ImageOf(pack, 9, 8);
    FillAtRandom(image, 1);
    ResultImage response;
    EXPECT_EQ(process.CornerResponseFromFiles(image, response, {}), 1);
    EXPECT_EQ(BandPixelsOf<float>(*response, 0), std::vector<float>(72, 0.0f));
  }
  process.SetOutPack(kPackInt16);
  ErdasImg image = ImageOf(kPackByte, 9, 8);
  FillAtRandom(image, 1);
  ResultImage response;
  EXPECT_EQ(process.CornerResponse(image, response, {}), 1);
  EXPECT_EQ(BandPixelsOf<std::int16_t>(*response, 0), std::vector<std::int16_t>(72, 0));
}

TEST_F(CornersTest, ASigmaOf0GivesNoNumbers) {
  ErdasImg image = ImageOf(kPackByte, 9, 8);
  ResultImage response;
  ASSERT_EQ(process.CornerResponse(image, response, {.sigma = 0.0}), 1);
  for (const float number : BandPixelsOf<float>(*response, 0)) EXPECT_TRUE(std::isnan(number));
  std::vector<Point2> points;
  EXPECT_EQ(process.HarrisCorners(image, points, {.sigma = 0.0, .threshold = -kInfinity}), 1);
  EXPECT_THAT(points, IsEmpty());
}

TEST_F(CornersTest, SigmasWithoutAKernelFail) {
  ErdasImg image = ImageOf(kPackByte, 9, 8);
  for (const double sigma : {-1.0, 1e300, kNan, kInfinity}) {
    ResultImage response;
    EXPECT_EQ(process.CornerResponse(image, response, {.sigma = sigma}), -1) << sigma;
    EXPECT_EQ(process.CornerResponseFromFiles(image, response, {.sigma = sigma}), -1) << sigma;
    EXPECT_FALSE(response);
    std::vector<Point2> points(3);
    EXPECT_EQ(process.HarrisCorners(image, points, {.sigma = sigma}), -1);
    EXPECT_THAT(points, IsEmpty());
  }
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(CornersTest, AKernelWiderThanTheImage) {
  ErdasImg image = ImageOf(kPackByte, 13, 11);
  FillAtRandom(image, 2);
  const HarrisParam param{.sigma = 300.0};
  ResultImage response;
  ASSERT_EQ(process.CornerResponse(image, response, param), 1);
  ExpectSameNumbers(*response, *PlainResponse(image, kPackFloat, param));
}

TEST_F(CornersTest, AnImageWithoutPixelsFails) {
  ErdasImg image;
  ResultImage response;
  EXPECT_EQ(process.CornerResponse(image, response, {}), -1);
  EXPECT_EQ(process.CornerResponseFromFiles(image, response, {}), -1);
  FeaturePointList features(2);
  EXPECT_EQ(process.HarrisFeatures(image, features, {}), -1);
  EXPECT_THAT(features, IsEmpty());
  EXPECT_THAT(Files(), IsEmpty());
}

// The response through files

TEST_F(CornersTest, FilesGiveTheSameResponseAndAreRemoved) {
  for (const std::uint16_t inPack : {kPackByte, kPackFloat, kPackDouble}) {
    for (const std::uint16_t outPack : {kPackFloat, kPackDouble}) {
      process.SetOutPack(outPack);
      for (const std::uint16_t nBands : {1, 3}) {
        ErdasImg image = ImageOf(inPack, 31, 17, nBands);
        FillAtRandom(image, 1, inPack != kPackByte);
        image.SetFileName("photo.lan");
        ResultImage fromFiles, response;
        ASSERT_EQ(process.CornerResponse(image, response, {}), 1);
        ASSERT_EQ(process.CornerResponseFromFiles(image, fromFiles, {}), 1);
        ExpectSameNumbers(*fromFiles, *response);
        EXPECT_THAT(Files(), IsEmpty());
      }
    }
  }
  EXPECT_THAT(ui.events, IsEmpty());
}

TEST_F(CornersTest, EachFileHasItsNameBesideTheImage) {
  ErdasImg image = ImageOf(kPackByte, 9, 8);
  std::filesystem::create_directory("a");
  image.SetFileName("a/photo.lan");
  for (const std::string suffix : {"_GradX", "_GradY", "_SmoothX2", "_SmoothY2", "_SmoothProduct"}) {
    const std::string path = "a/photo" + suffix + ".lan";
    std::filesystem::create_directory(path);  // in the way
    ui.events.clear();
    ResultImage response;
    EXPECT_EQ(process.CornerResponseFromFiles(image, response, {}), -3);
    EXPECT_FALSE(response);
    EXPECT_THAT(ui.events, ElementsAre("message warning: Write file " + path + " error!"));
    EXPECT_TRUE(std::filesystem::remove(path));
    EXPECT_TRUE(std::filesystem::is_empty("a"));
  }
}

TEST_F(CornersTest, AnImageWithoutANameHasItsFilesInTheCurrentFolder) {
  ErdasImg image = ImageOf(kPackByte, 9, 8);
  std::filesystem::create_directory("_GradX");
  ResultImage response;
  EXPECT_EQ(process.CornerResponseFromFiles(image, response, {}), -3);
  EXPECT_THAT(ui.events, ElementsAre("message warning: Write file _GradX error!"));
}

TEST_F(CornersTest, AFullDiskIsToldAndLeavesNoFiles) {
  ErdasImg image = ImageOf(kPackByte, 200, 200);
  image.SetFileName("photo.lan");
  const FileSizeLimit limit(1000);
  ResultImage response;
  EXPECT_EQ(process.CornerResponseFromFiles(image, response, {}), -3);
  EXPECT_THAT(ui.events, ElementsAre("message warning: Write file photo_GradX.lan error!"));
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(CornersTest, AFileThatDoesNotReadBackIsTold) {
  ErdasImg image = ImageOf(kPackByte, 9, 8);
  image.SetFileName("photo.lan");
  std::filesystem::create_symlink("/dev/null", "photo_SmoothY2.lan");
  ResultImage response;
  EXPECT_EQ(process.CornerResponseFromFiles(image, response, {}), -3);
  EXPECT_THAT(ui.events, ElementsAre("message warning: Open file photo_SmoothY2.lan error!"));
  EXPECT_THAT(Files(), IsEmpty());
}

// Corners

TEST_F(CornersTest, TheCornersOfAChessboardAreItsCrossings) {
  std::vector<Point2> points(1);
  ASSERT_EQ(process.HarrisCorners(Chessboard(), points, {.sigma = 1.0}), 1);
  EXPECT_THAT(points, ElementsAreArray(Crossings()));
}

TEST_F(CornersTest, HarrisFeaturesAreTheSameWithIdsAndNoValues) {
  FeaturePointList features(1);
  ASSERT_EQ(process.HarrisFeatures(Chessboard(), features, {.sigma = 1.0}), 1);
  const std::vector<Point2> points = Crossings();
  ASSERT_EQ(features.size(), points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    EXPECT_EQ(features[i].id, static_cast<std::int32_t>(i));
    EXPECT_EQ(features[i].x, points[i].x);
    EXPECT_EQ(features[i].y, points[i].y);
    EXPECT_EQ(features[i].scale, 1.0);
    EXPECT_THAT(features[i].values, IsEmpty());
  }
}

TEST_F(CornersTest, TheResponseIsRewrittenInEachRun) {
  WriteFileBytes("cornerResponse.lan", "old");
  std::vector<Point2> points;
  const ErdasImg image = Chessboard();
  ASSERT_EQ(process.HarrisCorners(image, points, {}), 1);
  EXPECT_THAT(Files(), ElementsAre("cornerResponse.lan"));
  ErdasImg written;
  ASSERT_EQ(written.Read("cornerResponse.lan"), 1);
  ExpectSameNumbers(written, *PlainResponse(image, kPackFloat, {}));
}

TEST_F(CornersTest, AResponseThatCannotBeWrittenFails) {
  std::filesystem::create_directory("cornerResponse.lan");
  std::vector<Point2> points(3);
  EXPECT_EQ(process.HarrisCorners(Chessboard(), points, {}), -3);
  EXPECT_THAT(points, IsEmpty());
  EXPECT_THAT(ui.events, ElementsAre("message warning: Write file cornerResponse.lan error!"));
}

TEST_F(CornersTest, AFlatAreaHasNoCorners) {
  ErdasImg image = ImageOf(kPackByte, 30, 30);
  image.Fill(77);
  std::vector<Point2> points;
  EXPECT_EQ(process.HarrisCorners(image, points, {.threshold = -1e9}), 1);
  EXPECT_THAT(points, IsEmpty());
}

// Local maxima

TEST_F(CornersTest, EqualNeighboursAreNoCorners) {
  ErdasImg response = ImageOf(kPackFloat, 5, 1);
  for (const auto& [col, value] : std::vector<std::pair<int, double>>{{0, 3}, {1, 3}, {3, 2}}) {
    response.SetPixel(0, 0, col, value);
  }
  std::vector<Point2> points;
  process.ExtractCorners(response, {.threshold = 0}, points);
  EXPECT_THAT(points, ElementsAre(Point2{3, 0}));
}

TEST_F(CornersTest, AResponseEqualToTheThresholdIsNoCorner) {
  ErdasImg response = ImageOf(kPackFloat, 3, 3);
  response.SetPixel(0, 1, 1, 1200);
  std::vector<Point2> points;
  process.ExtractCorners(response, {.threshold = 1200}, points);
  EXPECT_THAT(points, IsEmpty());
  process.ExtractCorners(response, {.threshold = std::nextafter(1200.0, 0.0)}, points);
  EXPECT_THAT(points, ElementsAre(Point2{1, 1}));
}

TEST_F(CornersTest, PixelsAtTheEdgeHaveTheNeighboursWithinTheImage) {
  ErdasImg response = ImageOf(kPackFloat, 7, 5);
  for (const auto& [row, col] :
       std::vector<std::pair<int, int>>{{0, 0}, {0, 3}, {0, 6}, {2, 0}, {2, 6}, {4, 0}, {4, 6}}) {
    response.SetPixel(0, row, col, 9);
  }
  std::vector<Point2> points;
  process.ExtractCorners(response, {.threshold = 0}, points);
  EXPECT_THAT(points, ElementsAre(Point2{0, 0}, Point2{3, 0}, Point2{6, 0}, Point2{0, 2}, Point2{6, 2},
                                  Point2{0, 4}, Point2{6, 4}));
}

TEST_F(CornersTest, CornersAreThoseOfIsLocalMaxPixelByPixel) {
  std::mt19937 random(3);
  const double values[] = {-kInfinity, -1.5, 0.0, 0.1, 0.5, 1.0, 1.25, 2.0, kInfinity, kNan};
  for (const std::uint16_t pack : {kPackFloat, kPackDouble, kPackByte, kPackInt16}) {
    for (const auto& [cols, rows] : std::vector<std::pair<int, int>>{
             {1, 1}, {1, 20}, {20, 1}, {2, 2}, {3, 3}, {17, 9}, {64, 20}, {66, 5}, {131, 31}}) {
      ErdasImg response = ImageOf(pack, cols, rows);
      for (std::int32_t i = 0; i < cols * rows; ++i)
        response.SetPixel(0, i / cols, i % cols, values[random() % 10]);
      for (const double threshold : {-kInfinity, -2.0, 0.1, 0.5, 1e300, kInfinity, kNan}) {
        std::vector<Point2> expected;
        for (std::int32_t i = 0; i < cols * rows; ++i) {
          double value = 0.0;
          response.GetPixel(0, i / cols, i % cols, value);
          if (value > threshold && response.IsLocalMax(0, i / cols, i % cols))
            expected.push_back({1.0 * (i % cols), 1.0 * (i / cols)});
        }
        for (const SimdVersion version : AvailableSimdVersions()) {
          const ForcedSimdVersion forced(version);
          std::vector<Point2> points;
          process.ExtractCorners(response, {.threshold = threshold}, points);
          EXPECT_EQ(points, expected) << pack << " " << cols << " " << rows << " " << threshold;
        }
      }
    }
  }
}

TEST_F(CornersTest, AResponseWithoutPixelsHasNoCorners) {
  ErdasImg empty;
  empty.GetHeader()->packType = kPackFloat;
  std::vector<Point2> points(2);
  process.ExtractCorners(empty, {.threshold = -1}, points);
  empty.SetSize(-5, 3);
  process.ExtractCorners(empty, {.threshold = -1}, points);
  EXPECT_THAT(points, IsEmpty());
}

// Prominent pixels

TEST_F(CornersTest, ProminentPixelsAreThoseOfIsProminent) {
  ErdasImg image = ImageOf(kPackByte, 150, 40);
  std::mt19937 random(4);
  for (std::int32_t i = 0; i < 150 * 40; ++i) {
    image.GetBands()[0][i] = static_cast<std::uint8_t>(i % 150 < 50    ? random() % 3
                                                       : i % 150 < 100 ? 150 + random() % 60
                                                                       : random());
  }
  for (const double threshold : {0.3, 0.0, 0.25, 0.99, 1.0, -0.5, -2.0, kNan, kInfinity}) {
    std::vector<double> expected = {-1.0};
    for (std::int32_t row = 1; row < 39; ++row) {
      for (std::int32_t col = 1; col < 149; ++col) {
        if (image.IsProminent(col, row, threshold) > 0)
          expected.insert(expected.end(), {1.0 * col, 1.0 * row});
      }
    }
    for (const SimdVersion version : AvailableSimdVersions()) {
      const ForcedSimdVersion forced(version);
      std::vector<double> places = {-1.0};
      process.ProminentPixels(image, threshold, places);
      EXPECT_EQ(places, expected) << threshold;
    }
  }
}

TEST_F(CornersTest, ABlackAreaHasNoProminentPixels) {
  ErdasImg image = ImageOf(kPackByte, 9, 9);
  EXPECT_EQ(image.IsProminent(4, 4, 0.3), 0);
  std::vector<double> places;
  process.ProminentPixels(image, 0.3, places);
  EXPECT_THAT(places, IsEmpty());
}

TEST_F(CornersTest, TheOutermostRingHasNoProminentPixels) {
  ErdasImg image = ImageOf(kPackByte, 3, 3);
  image.SetPixel(0, 0, 0, 200);
  std::vector<double> places;
  process.ProminentPixels(image, 0.3, places);
  EXPECT_THAT(places, ElementsAre(1, 1));
  ErdasImg small = ImageOf(kPackByte, 2, 9);
  process.ProminentPixels(small, 0.3, places);
  EXPECT_THAT(places, ElementsAre(1, 1));
}

TEST_F(CornersTest, ProminentPixelsOfABandThatIsTooShort) {
  ErdasImg image = ImageOf(kPackByte, 9, 4);
  image.Fill(90);
  image.SetSize(9, 9);
  std::vector<double> places;
  process.ProminentPixels(image, 0.3, places);
  EXPECT_THAT(places, ElementsAre(1, 3, 2, 3, 3, 3, 4, 3, 5, 3, 6, 3, 7, 3, 1, 4, 2, 4, 3, 4, 4, 4, 5, 4, 6,
                                  4, 7, 4));
  ErdasImg empty;
  places.clear();
  process.ProminentPixels(empty, 0.3, places);
  EXPECT_THAT(places, IsEmpty());
}

}  // namespace
}  // namespace corvane
