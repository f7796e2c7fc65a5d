#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "ImgProcess/ImgProcess.h"
#include "ImgProcess/PlainFilters.h"
#include "numerics/SimdVersion.h"
#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

Kernel1D RandomKernel(std::int32_t size, std::mt19937& random) {
  Kernel1D kernel = {size, {}};
  for (std::int32_t i = 0; i < size; ++i) kernel.values.push_back(std::ldexp(random(), -31) - 1.0);
  return kernel;
}

// Lines shorter than the kernel, of one pixel, beyond whole registers, and images of several strips.
struct Shape {
  std::size_t cols;
  std::size_t rows;
  std::int32_t size;
};
constexpr Shape kShapes[] = {{1, 1, 3},  {1, 9, 5},   {9, 1, 5},   {3, 2, 13},
                             {40, 7, 1}, {70, 33, 3}, {301, 5, 7}, {2500, 70, 61}};

template <typename Types>
class ConvolveTypes : public testing::Test {};

template <typename From, typename To>
struct Types {
  using Pixel = From;
  using Sum = To;
};
using SixPairs = testing::Types<Types<std::uint8_t, float>, Types<std::uint8_t, double>, Types<float, float>,
                                Types<float, double>, Types<double, float>, Types<double, double>>;
TYPED_TEST_SUITE(ConvolveTypes, SixPairs);

TYPED_TEST(ConvolveTypes, AreThePlainSumsBitForBit) {
  using Pixel = typename TypeParam::Pixel;
  using Sum = typename TypeParam::Sum;
  std::mt19937 random(1);
  ImgProcess process;
  for (const auto& [cols, rows, size] : kShapes) {
    for (const Content content : {Content::Ordinary, Content::Wild}) {
      const std::vector<Plane<Pixel>> planes = {RandomPlane<Pixel>(cols, rows, content, random),
                                                RandomPlane<Pixel>(cols, rows, content, random)};
      const Kernel1D kernel = RandomKernel(size, random);
      const auto image = ImageOf(planes);
      for (const SimdVersion version : AvailableSimdVersions()) {
        const ForcedSimdVersion forced(version);
        ResultImage alongRows;
        ResultImage alongColumns;
        ResultImage both;
        ASSERT_EQ(process.Convolve(*image, kernel, 1, kPackOf<Sum>, alongRows), 1);
        ASSERT_EQ(process.Convolve(*image, kernel, 2, kPackOf<Sum>, alongColumns), 1);
        ASSERT_EQ(process.Convolve2D(*image, kernel, kPackOf<Sum>, both), 1);
        for (std::size_t band = 0; band < 2; ++band) {
          const auto pixelsOf = [&](const ResultImage& result) {
            return BandPixelsOf<Sum>(*result, static_cast<std::int64_t>(band));
          };
          const Plane<Pixel>& plane = planes[band];
          EXPECT_EQ(CountOfOthers(pixelsOf(alongRows), PlainRows<Sum>(plane, kernel).pixels), 0u);
          EXPECT_EQ(CountOfOthers(pixelsOf(alongColumns), PlainColumns<Sum>(plane, kernel).pixels), 0u);
          EXPECT_EQ(CountOfOthers(pixelsOf(both), PlainBoth<Sum>(plane, kernel, kernel).pixels), 0u);
        }
      }
    }
  }
}

TYPED_TEST(ConvolveTypes, MayOverwriteTheImageIfTheTypeIsOne) {
  using Pixel = typename TypeParam::Pixel;
  if constexpr (std::is_same_v<Pixel, typename TypeParam::Sum>) {
    std::mt19937 random(2);
    ImgProcess process;
    for (const auto& [cols, rows, size] : kShapes) {
      const auto plane = RandomPlane<Pixel>(cols, rows, Content::Wild, random);
      const Kernel1D kernel = RandomKernel(size, random);
      const auto columns = ImageOf<Pixel>({plane});
      ASSERT_EQ(process.ConvolveColumnsInPlace(*columns, kernel), 1);
      EXPECT_EQ(CountOfOthers(BandPixelsOf<Pixel>(*columns, 0), PlainColumns<Pixel>(plane, kernel).pixels),
                0u);
      ResultImage both = ImageOf<Pixel>({plane});
      ASSERT_EQ(process.Convolve2D(*both, kernel, kPackOf<Pixel>, both), 1);
      EXPECT_EQ(CountOfOthers(BandPixelsOf<Pixel>(*both, 0), PlainBoth<Pixel>(plane, kernel, kernel).pixels),
                0u);
    }
  }
}

TYPED_TEST(ConvolveTypes, GoToFilesAsToImages) {
  using Pixel = typename TypeParam::Pixel;
  using Sum = typename TypeParam::Sum;
  const TempFolder folder;
  std::mt19937 random(3);
  const auto image = ImageOf<Pixel>(
      {RandomPlane<Pixel>(17, 12, Content::Wild, random), RandomPlane<Pixel>(17, 12, Content::Wild, random)});
  image->GetHeader()->xMap = 12.5f;
  const Kernel1D kernel = RandomKernel(5, random);
  ImgProcess process;
  for (const int direction : {1, 2}) {
    ResultImage result;
    ASSERT_EQ(process.Convolve(*image, kernel, direction, kPackOf<Sum>, result), 1);
    ASSERT_EQ(result->Write("memory.lan"), 1);
    ASSERT_EQ(process.ConvolveToFile(*image, kernel, direction, kPackOf<Sum>, "file.lan"), 1);
    ErdasImg read;
    ASSERT_EQ(read.Read("file.lan"), 1);
    EXPECT_EQ(BytesOf(*read.GetHeader()), BytesOf(*result->GetHeader()));
    for (std::int64_t band = 0; band < 2; ++band) {
      EXPECT_EQ(CountOfOthers(BandPixelsOf<Sum>(read, band), BandPixelsOf<Sum>(*result, band)), 0u);
    }
  }
}

const Kernel1D kSteps = {3, {1.0, 10.0, 100.0}};

TEST(Convolve, RepeatsTheEdgePixelAndDoesNotReverseTheKernel) {
  ImgProcess process;
  const auto image = ImageOf<std::uint8_t>(3, 1, {1, 2, 3});
  ResultImage result;
  ASSERT_EQ(process.Convolve(*image, kSteps, 1, kPackFloat, result), 1);
  EXPECT_THAT(BandPixelsOf<float>(*result, 0), ElementsAre(211, 321, 332));
  const auto turned = ImageOf<std::uint8_t>(1, 3, {1, 2, 3});
  ResultImage down;
  ASSERT_EQ(process.Convolve(*turned, kSteps, 2, kPackDouble, down), 1);
  EXPECT_THAT(BandPixelsOf<double>(*down, 0), ElementsAre(211, 321, 332));
}

TEST(Convolve, NarrowsTheKernelToFloatsAndRoundsEveryStep) {
  ImgProcess process;
  const auto image = ImageOf<std::uint8_t>(1, 1, {3});
  ResultImage narrow;
  ResultImage wide;
  const Kernel1D kernel = {3, {0.1, 16777216.0, 0.1}};
  ASSERT_EQ(process.Convolve(*image, kernel, 1, kPackFloat, narrow), 1);
  ASSERT_EQ(process.Convolve(*image, kernel, 1, kPackDouble, wide), 1);
  // 3 * 0.1f is lost in 3 * 2^24, where floats stand 4 apart.
  EXPECT_THAT(BandPixelsOf<float>(*narrow, 0), ElementsAre(50331648.0f));
  EXPECT_THAT(BandPixelsOf<double>(*wide, 0), ElementsAre(3 * 0.1 + 50331648.0 + 3 * 0.1));
}

TEST(Convolve, OfDoublesToFloatsRoundsSumsAndNotPixels) {
  ImgProcess process;
  // 2^24 + 1 is no float: the sums are 2^24, then 2^24 - (2^24 + 1).
  const Kernel1D kernel = {3, {1.0, -1.0, 0.0}};
  for (const int direction : {1, 2}) {
    ResultImage result;
    ASSERT_EQ(process.Convolve(*ImageOf<double>(1, 1, {16777217.0}), kernel, direction, kPackFloat, result),
              1);
    EXPECT_THAT(BandPixelsOf<float>(*result, 0), ElementsAre(-1.0f));
  }
  // The columns take the floats that come out of the rows: -1, -1, ...
  ResultImage both;
  ASSERT_EQ(process.Convolve2D(*ImageOf<double>(1, 1, {16777217.0}), kernel, kPackFloat, both), 1);
  EXPECT_THAT(BandPixelsOf<float>(*both, 0), ElementsAre(0.0f));
}

TEST(Convolve, OfDoublesToFloatsNarrowsTheKernel) {
  ImgProcess process;
  ResultImage result;
  ASSERT_EQ(process.Convolve(*ImageOf<double>(1, 1, {13.0}), {1, {0.1}}, 1, kPackFloat, result), 1);
  // 13 * 0.1f is 1.3 + 1.94e-8: 6.7e-8 above 1.3f, and 5.2e-8 below the next float.
  EXPECT_THAT(BandPixelsOf<float>(*result, 0), ElementsAre(std::nextafter(1.3f, 2.0f)));
}

TEST(Convolve, SumsBeginWithPlus0) {
  ImgProcess process;
  const auto image = ImageOf<std::uint8_t>(2, 1, {0, 0});
  ResultImage result;
  ASSERT_EQ(process.Convolve(*image, {1, {-1.0}}, 1, kPackFloat, result), 1);
  EXPECT_FALSE(std::signbit(BandPixelsOf<float>(*result, 0)[0]));
}

TEST(Convolve, NewResultTakesTheInputsHeader) {
  ImgProcess process;
  const auto image = ImageOf<std::uint8_t>(2, 1, {1, 2});
  image->GetHeader()->xMap = 7.5f;
  image->GetHeader()->xStart = 3;
  ResultImage result;
  ASSERT_EQ(process.Convolve(*image, kSteps, 1, kPackDouble, result), 1);
  ErdasHeader expected = *image->GetHeader();
  expected.packType = kPackDouble;
  EXPECT_EQ(BytesOf(*result->GetHeader()), BytesOf(expected));
}

TEST(Convolve, ResultThatIsThereKeepsItsType) {
  ImgProcess process;
  const auto image = ImageOf<std::uint8_t>(3, 1, {1, 2, 3});
  ResultImage result = ImageOf<double>(3, 1, {9, 9, 9});
  ASSERT_EQ(process.Convolve(*image, kSteps, 1, kPackFloat, result), 1);
  EXPECT_THAT(BandPixelsOf<double>(*result, 0), ElementsAre(211, 321, 332));
}

TEST(Convolve, TypesWithoutAFilterAreLeftAsTheyAre) {
  ImgProcess process;
  for (const std::uint16_t pack : {1, 2, 3, 4, 5, 8, 0xFFFF}) {
    ErdasImg image;
    ASSERT_EQ(image.Create(HeaderOf(pack, 1, 3, 1), false), 1);
    FillWithPattern(image);
    ResultImage result;
    EXPECT_EQ(process.Convolve(image, kSteps, 1, kPackFloat, result), 1) << pack;
    EXPECT_THAT(BandPixelsOf<float>(*result, 0), ElementsAre(0, 0, 0));
    const std::string before = BandBytes(image, 0);
    EXPECT_EQ(process.ConvolveColumnsInPlace(image, kSteps), 1);
    EXPECT_EQ(process.ConvolveRows(*ImageOf<float>(3, 1, {1, 2, 3}), kSteps, image), 1);
    EXPECT_EQ(BandBytes(image, 0), before);
  }
}

TEST(Convolve, FailsOnImagesAndKernelsThatDoNotFit) {
  ImgProcess process;
  const auto image = ImageOf<float>(3, 2, {1, 2, 3, 4, 5, 6});
  ResultImage result;
  for (const Kernel1D& kernel : {Kernel1D{}, Kernel1D{3, {1.0}}, Kernel1D{-1, {}}, Kernel1D{1, {1.0, 2.0}}}) {
    EXPECT_EQ(process.Convolve(*image, kernel, 1, kPackFloat, result), -1);
  }
  result.reset();
  for (const int direction : {0, 3, -1}) {
    EXPECT_EQ(process.Convolve(*image, kSteps, direction, kPackFloat, result), -1);
  }
  EXPECT_EQ(process.Convolve(ErdasImg(), kSteps, 1, kPackFloat, result), -1);
  EXPECT_EQ(result, nullptr);
  const auto narrow = ImageOf<float>(2, 2, {1, 2, 3, 4});
  EXPECT_EQ(process.ConvolveRows(*image, kSteps, *narrow), -1);
  EXPECT_EQ(process.ConvolveColumns(*image, kSteps, *narrow), -1);
  EXPECT_THAT(BandPixelsOf<float>(*narrow, 0), ElementsAre(1, 2, 3, 4));
}

TEST(Convolve, OfAnAbsurdSizeFailsWithoutMemory) {
  ImgProcess process;
  const auto image = ImageOf<float>(1, 1, {1});
  image->SetSize(INT32_MAX, INT32_MAX);
  ResultImage result;
  EXPECT_LT(process.Convolve(*image, kSteps, 1, kPackFloat, result), 0);
  EXPECT_EQ(result, nullptr);
}

TEST(Convolve, PixelsThatTheBandLacksAre0) {
  ImgProcess process;
  const auto image = ImageOf<float>(2, 2, {1, 2, 3, 4});
  image->SetSize(3, 2);  // the second row lacks two of its three pixels
  ResultImage result;
  ASSERT_EQ(process.Convolve(*image, {1, {1.0}}, 1, kPackFloat, result), 1);
  EXPECT_THAT(BandPixelsOf<float>(*result, 0), ElementsAre(1, 2, 3, 4, 0, 0));
}

TEST(ConvolveToFile, ThatCanNotBeWrittenIsTold) {
  const TempFolder folder;
  TestFrontEnd ui;
  ImgProcess process;
  const auto image = ImageOf<float>(3, 1, {1, 2, 3});
  EXPECT_EQ(process.ConvolveToFile(*image, kSteps, 1, kPackFloat, "none/a.lan"), -3);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Write file none/a.lan error!"));
  EXPECT_EQ(process.ConvolveToFile(ErdasImg(), kSteps, 1, kPackFloat, "a.lan"), -1);
  EXPECT_EQ(ReadFileBytes("a.lan"), "");
}

TEST(ConvolveToFile, LeavesTheOldFileOnAFullDisk) {
  const TempFolder folder;
  TestFrontEnd ui;
  ImgProcess process;
  WriteFileBytes("a.lan", "old");
  const auto image = ImageOf<float>(300, 1, std::vector<float>(300, 1.0f));
  const FileSizeLimit limit(256);
  EXPECT_EQ(process.ConvolveToFile(*image, kSteps, 1, kPackFloat, "a.lan"), -3);
  EXPECT_EQ(ReadFileBytes("a.lan"), "old");
}

TEST(ConvolveToFile, OfATypeWithoutAFilterIsZeros) {
  const TempFolder folder;
  ImgProcess process;
  ErdasImg image;
  ASSERT_EQ(image.Create(HeaderOf(kPackUInt16, 2, 2, 1), false), 1);
  FillWithPattern(image);
  EXPECT_EQ(process.ConvolveToFile(image, kSteps, 1, kPackFloat, "a.lan"), 1);
  EXPECT_EQ(ReadFileBytes("a.lan"), BytesOf(HeaderOf(kPackFloat, 2, 2, 1)) + std::string(16, '\0'));
}

}  // namespace
}  // namespace corvane
