#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cmath>
#include <filesystem>

#include "ImgProcess/ImgProcess.h"
#include "ImgProcess/PlainFilters.h"
#include "io/Paths.h"
#include "numerics/SimdVersion.h"
#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNan;

constexpr double kNoSigmas[] = {-1.0, 1e9, HUGE_VAL, std::numeric_limits<double>::quiet_NaN()};

template <typename Pixel>
Plane<Pixel> SomePlane(std::size_t cols, std::size_t rows) {
  std::mt19937 random(5);
  return RandomPlane<Pixel>(cols, rows, Content::Ordinary, random);
}

// Smoothing

TEST(GaussianSmooth, IsTheKernelAlongRowsThenColumns) {
  ImgProcess process;
  const auto plane = SomePlane<std::uint8_t>(90, 50);
  const auto image = ImageOf<std::uint8_t>({plane});
  Kernel1D kernel;
  ASSERT_EQ(ImgProcess::MakeGaussian(2.0, kernel), 1);
  const auto expected = PlainBoth<float>(plane, kernel, kernel).pixels;
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    ResultImage result;
    EXPECT_EQ(process.GaussianSmooth(*image, 2.0, result), 1);
    EXPECT_EQ(CountOfOthers(BandPixelsOf<float>(*result, 0), expected), 0u);
  }
}

TEST(GaussianSmooth, OfDoublesIsOfDoubles) {
  ImgProcess process;
  const auto plane = SomePlane<double>(20, 10);
  Kernel1D kernel;
  ASSERT_EQ(ImgProcess::MakeGaussian(1.0, kernel), 1);
  ResultImage result;
  EXPECT_EQ(process.GaussianSmooth(*ImageOf<double>({plane}), 1.0, result), 1);
  EXPECT_EQ(result->GetPackType(), kPackDouble);
  EXPECT_EQ(CountOfOthers(BandPixelsOf<double>(*result, 0), PlainBoth<double>(plane, kernel, kernel).pixels),
            0u);
}

TEST(GaussianSmooth, KeepsAFlatImageToItsEdges) {
  ImgProcess process;
  ResultImage result;
  ASSERT_EQ(
      process.GaussianSmooth(*ImageOf<std::uint8_t>(5, 4, std::vector<std::uint8_t>(20, 100)), 2.0, result),
      1);
  EXPECT_THAT(BandPixelsOf<float>(*result, 0), Each(testing::FloatNear(100.0f, 1e-4f)));
}

TEST(GaussianSmooth, WithSigma0GivesPixelsThatAreNotNumbers) {
  ImgProcess process;
  ResultImage result;
  EXPECT_EQ(process.GaussianSmooth(*ImageOf<std::uint8_t>(2, 2, {0, 1, 2, 3}), 0.0, result), 1);
  EXPECT_THAT(BandPixelsOf<float>(*result, 0), Each(IsNan()));
}

TEST(GaussianSmooth, WithASigmaThatMakesNoKernelFails) {
  ImgProcess process;
  const auto image = ImageOf<std::uint8_t>(2, 2, {0, 1, 2, 3});
  for (const double sigma : kNoSigmas) {
    ResultImage result;
    EXPECT_EQ(process.GaussianSmooth(*image, sigma, result), -1);
    EXPECT_EQ(result, nullptr);
  }
}

TEST(GaussianSmooth, OfOtherTypesIsZerosAsFloats) {
  ImgProcess process;
  for (const std::uint16_t pack : {kPackUInt16, kPackInt16, kPackUInt32, kPackInt32}) {
    ErdasImg image;
    ASSERT_EQ(image.Create(HeaderOf(pack, 1, 2, 2), false), 1);
    FillWithPattern(image);
    ResultImage result;
    EXPECT_EQ(process.GaussianSmooth(image, 1.0, result), 1);
    EXPECT_EQ(result->GetPackType(), kPackFloat);
    EXPECT_THAT(BandPixelsOf<float>(*result, 0), Each(0.0f));
  }
}

TEST(GaussianSmooth, MakesAResultThatFits) {
  ImgProcess process;
  const auto plane = SomePlane<std::uint8_t>(8, 6);
  Kernel1D kernel;
  ASSERT_EQ(ImgProcess::MakeGaussian(1.0, kernel), 1);
  ResultImage result = ImageOf<std::uint8_t>({plane});
  result->GetHeader()->xMap = 4.5f;
  ASSERT_EQ(process.GaussianSmooth(*result, 1.0, result), 1);
  EXPECT_EQ(result->GetPackType(), kPackFloat);
  EXPECT_EQ(result->GetHeader()->xMap, 4.5f);
  const auto smooth = PlainBoth<float>(plane, kernel, kernel);
  EXPECT_EQ(CountOfOthers(BandPixelsOf<float>(*result, 0), smooth.pixels), 0u);
  ASSERT_EQ(process.GaussianSmooth(*result, 1.0, result), 1);
  EXPECT_EQ(CountOfOthers(BandPixelsOf<float>(*result, 0), PlainBoth<float>(smooth, kernel, kernel).pixels),
            0u);
}

// Gradient

TEST(Gradient, IsTheMagnitudeOfCentralDifferences) {
  const TempFolder folder;
  ImgProcess process;
  // gx is (4 - 1) / 2 in the middle column; gy is (7 - 1) / 2 and so on in the middle row.
  const auto image = ImageOf<std::uint8_t>(3, 3, {1, 2, 4, 3, 5, 6, 7, 8, 12});
  ResultImage result;
  ASSERT_EQ(process.Gradient(*image, kPackFloat, result), 1);
  const std::vector<float> gx = {0.5f, 1.5f, 1, 1, 1.5f, 0.5f, 0.5f, 2.5f, 2};
  const std::vector<float> gy = {1, 1.5f, 1, 3, 3, 4, 2, 1.5f, 3};
  const auto magnitudes = BandPixelsOf<float>(*result, 0);
  for (std::size_t i = 0; i < 9; ++i) EXPECT_EQ(magnitudes[i], std::sqrt(gx[i] * gx[i] + gy[i] * gy[i])) << i;
  for (const auto& [name, expected] : {std::pair("GradientX.lan", gx), std::pair("GradientY.lan", gy)}) {
    ErdasImg part;
    ASSERT_EQ(part.Read(name), 1);
    EXPECT_EQ(BytesOf(*part.GetHeader()), BytesOf(HeaderOf(kPackFloat, 1, 3, 3)));
    EXPECT_EQ(BandPixelsOf<float>(part, 0), expected);
  }
}

TEST(Gradient, DoesNotGoIntoAResultOfAnotherType) {
  const TempFolder folder;
  ImgProcess process;
  ResultImage result = ImageOf<double>(3, 1, {7, 8, 9});
  EXPECT_EQ(process.Gradient(*ImageOf<float>(3, 1, {1, 2, 4}), kPackFloat, result), -1);
  EXPECT_THAT(BandPixelsOf<double>(*result, 0), ElementsAre(7, 8, 9));
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST(Gradient, RewritesItsFilesEachTime) {
  const TempFolder folder;
  ImgProcess process;
  WriteFileBytes("GradientX.lan", "old");
  ResultImage result;
  ASSERT_EQ(process.Gradient(*ImageOf<float>(3, 1, {1, 2, 4}), kPackDouble, result), 1);
  EXPECT_EQ(ReadFileBytes("GradientX.lan"),
            BytesOf(HeaderOf(kPackDouble, 1, 3, 1)) + PixelBytes<double>({0.5, 1.5, 1}));
}

TEST(Gradient, IsMadeEvenIfItsFilesCanNotBeWritten) {
  const TempFolder folder;
  TestFrontEnd ui;
  ImgProcess process;
  std::filesystem::create_directory("GradientX.lan");
  ResultImage result;
  EXPECT_EQ(process.Gradient(*ImageOf<float>(3, 1, {1, 2, 4}), kPackFloat, result), -3);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Write file GradientX.lan error!"));
  EXPECT_THAT(BandPixelsOf<float>(*result, 0), ElementsAre(0.5f, 1.5f, 1.0f));
  EXPECT_FALSE(ReadFileBytes("GradientY.lan").empty());
}

TEST(Gradient, IsMadeOfItsPartsForAllBandsAndTypes) {
  const TempFolder folder;
  ImgProcess process;
  const auto image = ImageOf<double>({SomePlane<double>(33, 9), SomePlane<double>(33, 9)});
  Kernel1D kernel;
  ImgProcess::MakeCentralDifference(kernel);
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    ResultImage whole;
    ASSERT_EQ(process.Gradient(*image, kPackFloat, whole), 1);
    const auto gx = PlainRows<float>(SomePlane<double>(33, 9), kernel).pixels;
    const auto gy = PlainColumns<float>(SomePlane<double>(33, 9), kernel).pixels;
    std::vector<float> expected;
    for (std::size_t i = 0; i < gx.size(); ++i) expected.push_back(std::sqrt(gx[i] * gx[i] + gy[i] * gy[i]));
    EXPECT_EQ(BandPixelsOf<float>(*whole, 0), expected);
    EXPECT_EQ(BandPixelsOf<float>(*whole, 1), expected);
  }
}

TEST(Magnitude, IsTheRootOfTheSumOfSquares) {
  ImgProcess process;
  ResultImage result;
  ASSERT_EQ(process.Magnitude(*ImageOf<float>(2, 1, {3, -5}), *ImageOf<float>(2, 1, {4, 12}), result), 1);
  EXPECT_THAT(BandPixelsOf<float>(*result, 0), ElementsAre(5, 13));
  EXPECT_EQ(process.Magnitude(*ImageOf<float>(2, 1, {3, 5}), *ImageOf<float>(1, 2, {4, 12}), result), -1);
  EXPECT_EQ(process.Magnitude(*ImageOf<float>(2, 1, {3, 5}), *ImageOf<double>(2, 1, {4, 12}), result), -1);
}

// Laplacian of Gaussian

struct LaplacianKernels {
  explicit LaplacianKernels(double sigma) {
    ImgProcess::MakeGaussian(sigma, smooth);
    ImgProcess::MakeGaussian2nd(sigma, curve);
  }
  Kernel1D smooth;
  Kernel1D curve;
};

template <typename Sum, typename Pixel>
std::vector<Sum> PlainLaplacian(const Plane<Pixel>& plane, double sigma) {
  const LaplacianKernels kernels(sigma);
  std::vector<Sum> sums = PlainBoth<Sum>(plane, kernels.smooth, kernels.curve).pixels;
  const std::vector<Sum> others = PlainBoth<Sum>(plane, kernels.curve, kernels.smooth).pixels;
  for (std::size_t i = 0; i < sums.size(); ++i) sums[i] += others[i];
  return sums;
}

template <typename Types>
class LaplacianTypes : public testing::Test {};

template <typename From, typename To>
struct Types {
  using Pixel = From;
  using Sum = To;
};
using SomePairs = testing::Types<Types<std::uint8_t, float>, Types<float, double>, Types<double, float>>;
TYPED_TEST_SUITE(LaplacianTypes, SomePairs);

TYPED_TEST(LaplacianTypes, AreTheSumsOfBothFiltersInBothForms) {
  using Sum = typename TypeParam::Sum;
  const TempFolder folder;
  ImgProcess process;
  const auto plane = SomePlane<typename TypeParam::Pixel>(50, 40);
  const auto image = ImageOf<typename TypeParam::Pixel>({plane, plane});
  image->SetFileName("photo.lan");
  const std::vector<Sum> expected = PlainLaplacian<Sum>(plane, 1.5);
  for (const SimdVersion version : AvailableSimdVersions()) {
    const ForcedSimdVersion forced(version);
    ErdasImg inMemory;
    ErdasImg throughFile;
    ASSERT_EQ(inMemory.Create(HeaderOf(kPackOf<Sum>, 2, 50, 40), false), 1);
    ASSERT_EQ(throughFile.Create(HeaderOf(kPackOf<Sum>, 2, 50, 40), false), 1);
    ASSERT_EQ(process.LaplacianOfGaussian(*image, 1.5, inMemory), 1);
    ASSERT_EQ(process.LaplacianOfGaussianLowMemory(*image, 1.5, throughFile), 1);
    for (std::int64_t band = 0; band < 2; ++band) {
      EXPECT_EQ(CountOfOthers(BandPixelsOf<Sum>(inMemory, band), expected), 0u);
      EXPECT_EQ(CountOfOthers(BandPixelsOf<Sum>(throughFile, band), expected), 0u);
    }
    EXPECT_TRUE(std::filesystem::is_empty("."));
  }
}

TEST(LaplacianOfGaussian, OfAFlatImageIsNearly0) {
  ImgProcess process;
  const auto image = ImageOf<std::uint8_t>(9, 9, std::vector<std::uint8_t>(81, 200));
  ErdasImg result;
  ASSERT_EQ(result.Create(HeaderOf(kPackDouble, 1, 9, 9), false), 1);
  ASSERT_EQ(process.LaplacianOfGaussian(*image, 1.0, result), 1);
  EXPECT_THAT(BandPixelsOf<double>(result, 0), Each(testing::DoubleNear(0.0, 1e-12)));
}

TEST(LaplacianOfGaussian, FailsWithoutAKernelOrAnImageThatFits) {
  const TempFolder folder;
  ImgProcess process;
  const auto image = ImageOf<std::uint8_t>(2, 1, {1, 2});
  const auto result = ImageOf<float>(2, 1, {8, 9});
  for (const double sigma : kNoSigmas) {
    EXPECT_EQ(process.LaplacianOfGaussian(*image, sigma, *result), -1);
    EXPECT_EQ(process.LaplacianOfGaussianLowMemory(*image, sigma, *result), -1);
  }
  const auto turned = ImageOf<float>(1, 2, {8, 9});
  EXPECT_EQ(process.LaplacianOfGaussian(*image, 1.0, *turned), -1);
  EXPECT_EQ(process.LaplacianOfGaussianLowMemory(*image, 1.0, *turned), -1);
  EXPECT_THAT(BandPixelsOf<float>(*result, 0), ElementsAre(8, 9));
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST(LaplacianOfGaussianLowMemory, PutsTempInFrontOfTheLastFourCharacters) {
  const TempFolder folder;
  TestFrontEnd ui;
  ImgProcess process;
  const auto image = ImageOf<std::uint8_t>(2, 1, {1, 2});
  const auto result = ImageOf<float>(2, 1, {8, 9});
  const std::pair<const char*, const char*> names[] = {
      {"none/a.lan", "none/a_temp.lan"}, {"none/a.jpeg", "none/a._tempjpeg"}, {"none/a", "none/_tempa"}};
  for (const auto& [name, tempName] : names) {
    ui.events.clear();
    image->SetFileName(name);
    EXPECT_EQ(process.LaplacianOfGaussianLowMemory(*image, 1.0, *result), -3);
    EXPECT_THAT(ui.EventsWith("message"),
                ElementsAre(std::string("message warning: Write file ") + tempName + " error!"));
  }
  image->SetFileName("");
  EXPECT_EQ(process.LaplacianOfGaussianLowMemory(*image, 1.0, *result), 1);
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST(LaplacianOfGaussianLowMemory, FailsIfItsFileDoesNotReadBack) {
  const TempFolder folder;
  TestFrontEnd ui;
  ImgProcess process;
  const auto image = ImageOf<std::uint8_t>(2, 1, {1, 2});
  const auto result = ImageOf<float>(2, 1, {8, 9});
  image->SetFileName("photo.lan");
  std::filesystem::create_symlink("/dev/null", "photo_temp.lan");
  EXPECT_EQ(process.LaplacianOfGaussianLowMemory(*image, 1.0, *result), -3);
  EXPECT_THAT(ui.EventsWith("message"),
              ElementsAre("message warning: Open file photo_temp.lan error!\nIt is cut short."));
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST(LaplacianOfGaussianLowMemory, TakesAPlaceThatIsNotANumber) {
  const TempFolder folder;
  ImgProcess process;
  const auto plane = SomePlane<std::uint8_t>(20, 10);
  ErdasHeader header = HeaderOf(kPackFloat, 1, 20, 10);
  header.xMap = std::nanf("");
  ErdasImg result;
  ASSERT_EQ(result.Create(header, false), 1);
  EXPECT_EQ(process.LaplacianOfGaussianLowMemory(*ImageOf<std::uint8_t>({plane}), 1.0, result), 1);
  EXPECT_EQ(CountOfOthers(BandPixelsOf<float>(result, 0), PlainLaplacian<float>(plane, 1.0)), 0u);
}

TEST(LaplacianOfGaussianLowMemory, LeavesNoFileOnAFullDisk) {
  const TempFolder folder;
  TestFrontEnd ui;
  ImgProcess process;
  const auto image = ImageOf<std::uint8_t>({SomePlane<std::uint8_t>(200, 100)});
  image->SetFileName("photo.lan");
  ErdasImg result;
  ASSERT_EQ(result.Create(HeaderOf(kPackFloat, 1, 200, 100), false), 1);
  const FileSizeLimit limit(10000);
  EXPECT_EQ(process.LaplacianOfGaussianLowMemory(*image, 1.0, result), -3);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Write file photo_temp.lan error!"));
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

// The most memory that the process has had, in bytes.
std::int64_t PeakBytes() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return std::int64_t{usage.ru_maxrss} * 1024;
}

TEST(LaplacianOfGaussianLowMemory, HoldsRowsBesideTheTwoImages) {
  const TempFolder folder;
  ImgProcess process;
  ErdasImg image;
  ErdasImg result;
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 3000, 4000), false), 1);
  ASSERT_EQ(result.Create(HeaderOf(kPackFloat, 1, 3000, 4000), false), 1);
  FillWithPattern(image);
  result.Fill(1.0);
  image.SetFileName("photo.lan");
  const std::int64_t before = PeakBytes();
  ASSERT_EQ(process.LaplacianOfGaussianLowMemory(image, 3.0, result), 1);
  EXPECT_LT(PeakBytes() - before, 4 << 20);  // an image of floats has 48 MB
}

TEST(Gradient, HoldsRowsBesideTheTwoImages) {
  const TempFolder folder;
  ImgProcess process;
  ErdasImg image;
  ResultImage result = std::make_unique<ErdasImg>();
  ASSERT_EQ(image.Create(HeaderOf(kPackByte, 1, 3000, 4000), false), 1);
  ASSERT_EQ(result->Create(HeaderOf(kPackFloat, 1, 3000, 4000), false), 1);
  FillWithPattern(image);
  result->Fill(1.0);
  const std::int64_t before = PeakBytes();
  ASSERT_EQ(process.Gradient(image, kPackFloat, result), 1);
  EXPECT_LT(PeakBytes() - before, 4 << 20);
}

// Pixel by pixel

TEST(Square, TakesFloatsAndDoublesInPlace) {
  ImgProcess process;
  const auto floats = ImageOf<float>({{2, 1, {3, -0.5f}}, {2, 1, {1e30f, 2}}});
  EXPECT_EQ(process.Square(*floats), 1);
  EXPECT_THAT(BandPixelsOf<float>(*floats, 0), ElementsAre(9, 0.25f));
  EXPECT_THAT(BandPixelsOf<float>(*floats, 1), ElementsAre(std::numeric_limits<float>::infinity(), 4));
  const auto doubles = ImageOf<double>(1, 1, {1e30});
  EXPECT_EQ(process.Square(*doubles), 1);
  EXPECT_THAT(BandPixelsOf<double>(*doubles, 0), ElementsAre(1e30 * 1e30));
  const auto bytes = ImageOf<std::uint8_t>(1, 1, {3});
  EXPECT_EQ(process.Square(*bytes), 1);
  EXPECT_THAT(BandPixelsOf<std::uint8_t>(*bytes, 0), ElementsAre(3));
  ErdasImg empty;
  EXPECT_EQ(process.Square(empty), -1);
}

TEST(Multiply, TakesFloatsAndDoublesOfOneGeometry) {
  ImgProcess process;
  ResultImage result;
  ASSERT_EQ(process.Multiply(*ImageOf<float>(2, 1, {3, 4}), *ImageOf<float>(2, 1, {5, -0.5f}), result), 1);
  EXPECT_THAT(BandPixelsOf<float>(*result, 0), ElementsAre(15, -2));
  EXPECT_EQ(process.Multiply(*ImageOf<float>(2, 1, {3, 4}), *ImageOf<double>(2, 1, {5, 6}), result), -1);
  EXPECT_EQ(process.Multiply(*ImageOf<double>(2, 1, {3, 4}), *ImageOf<double>(2, 1, {5, 6}), result), -1);
  const auto moved = ImageOf<float>(2, 1, {1, 1});
  moved->GetHeader()->xMap = 1.0f;
  EXPECT_EQ(process.Multiply(*ImageOf<float>(2, 1, {3, 4}), *moved, result), -1);
  EXPECT_THAT(BandPixelsOf<float>(*result, 0), ElementsAre(15, -2));
  ResultImage bytes;
  ASSERT_EQ(process.Multiply(*ImageOf<std::uint8_t>(1, 1, {3}), *ImageOf<std::uint8_t>(1, 1, {5}), bytes), 1);
  EXPECT_THAT(BandPixelsOf<std::uint8_t>(*bytes, 0), ElementsAre(0));
}

}  // namespace
}  // namespace corvane
