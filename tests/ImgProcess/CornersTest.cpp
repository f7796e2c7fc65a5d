// The response for Harris corners, in memory and through files, and the corners that come of it.

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
#include "support/MemoryLimit.h"
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

TEST_F(CornersTest, FilesNeedNoMemoryButForTheResponse) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer needs memory of its own";
#endif
  ErdasImg image = ImageOf(kPackByte, 2000, 2000);
  image.SetFileName("photo.lan");
  const auto respond = [&] {
    ResultImage response;  // of 16 MB
    return process.CornerResponseFromFiles(image, response, {});
  };
  EXPECT_EXIT(RunWithin(std::size_t{20} << 20, respond), testing::ExitedWithCode(9), "");
  EXPECT_EXIT(RunWithin(std::size_t{10} << 20, respond), testing::ExitedWithCode(12), "");
  EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(CornersTest, AResponseOf500MiBGoesThroughFiles) {
  ErdasImg image = ImageOf(kPackByte, 12800, 10240);
  ASSERT_EQ(4 * image.GetImageBytes(), 524288000);
  image.SetFileName("photo.lan");
  std::filesystem::create_directory("photo_GradX.lan");  // in the way
  std::vector<Point2> points;
  EXPECT_EQ(process.HarrisCorners(image, points, {}), -3);
  EXPECT_THAT(ui.events, ElementsAre("message warning: Write file photo_GradX.lan error!"));
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

TEST_F(CornersTest, AResponseThatCannotBeWrittenIsToldAndItsCornersAreThere) {
  std::filesystem::create_directory("cornerResponse.lan");
  std::vector<Point2> points(3);
  EXPECT_EQ(process.HarrisCorners(Chessboard(), points, {.sigma = 1.0}), -5);
  EXPECT_THAT(points, ElementsAreArray(Crossings()));
  FeaturePointList features;
  EXPECT_EQ(process.HarrisFeatures(Chessboard(), features, {.sigma = 1.0}), -5);
  EXPECT_EQ(features.size(), points.size());
  const std::string message = "message warning: Write file cornerResponse.lan error!";
  EXPECT_THAT(ui.events, ElementsAre(message, message));
}

TEST_F(CornersTest, AFlatAreaHasNoCorners) {
  ErdasImg image = ImageOf(kPackByte, 30, 30);
  image.Fill(77);
  std::vector<Point2> points;
  EXPECT_EQ(process.HarrisCorners(image, points, {.threshold = -1e9}), 1);
  EXPECT_THAT(points, IsEmpty());
}

}  // namespace
}  // namespace corvane
