#include "Classification/Classification.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <random>

#include "support/TempFolder.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Counts = Classification::Counts;

// A one-row image of a byte band that holds each level as often as told.
struct Levels {
  std::int32_t level;
  std::int32_t count;
};

ErdasImg ImageOf(std::initializer_list<Levels> levels, std::uint16_t nBands = 1) {
  ErdasHeader header;
  header.bandCount = nBands;
  header.cols = 0;
  for (const auto& [level, count] : levels) header.cols += count;
  ErdasImg image;
  EXPECT_EQ(image.Create(header, false), 1);
  auto* pixel = image.GetBands()[0];
  for (const auto& [level, count] : levels)
    pixel = std::fill_n(pixel, count, static_cast<std::uint8_t>(level));
  return image;
}

Counts CountsOf(std::initializer_list<Levels> levels) {
  Counts counts = {};
  for (const auto& [level, count] : levels) counts[static_cast<std::size_t>(level)] = count;
  return counts;
}

class ClassificationTest : public testing::Test {
 protected:
  // The classes of an image's levels; 255 for none.
  std::vector<int> ClassesOf(ErdasImg& image, std::initializer_list<int> levels) {
    Classification isodata(&image);
    EXPECT_EQ(isodata.Classify(), 1);
    const auto from = image.GetBands().GetBand(0);
    const auto to = isodata.GetClassImage().GetBands().GetBand(0);
    std::vector<int> classes;
    for (const int level : levels) {
      const auto found = std::ranges::find(from, level) - from.begin();
      classes.push_back(to[static_cast<std::size_t>(found)]);
    }
    return classes;
  }

  TempFolder folder;
};

// Histogram

TEST_F(ClassificationTest, HistogramCountsAllPixelsOfAllBandsAndAdds) {
  ErdasHeader header;
  header.cols = 1003;
  header.rows = 7;
  header.bandCount = 2;
  ErdasImg image;
  ASSERT_EQ(image.Create(header, false), 1);
  std::mt19937 random(3);
  std::vector<Counts> expected(2, Counts{});
  for (std::size_t band = 0; band < 2; ++band) {
    for (auto& pixel : image.GetBands().GetBand(static_cast<std::int64_t>(band))) {
      pixel = static_cast<std::uint8_t>(random() % (band == 0 ? 256 : 3));
      expected[band][pixel] += 2;
    }
  }
  Classification classification(&image);
  classification.ComputeHistogram();
  classification.ComputeHistogram();
  EXPECT_EQ(classification.m_histogram, expected);
}

TEST_F(ClassificationTest, PixelsOfOtherTypesCountAsBytes) {
  ErdasHeader header;
  header.packType = kPackUInt16;
  header.cols = 4;
  ErdasImg image;
  ASSERT_EQ(image.Create(header, false), 1);
  image.Fill(0x0102);
  Classification classification(&image);
  classification.ComputeHistogram();
  EXPECT_EQ(classification.m_histogram[0], CountsOf({{1, 2}, {2, 2}}));
}

// Peaks

TEST_F(ClassificationTest, PeaksNeedMoreThanTheLeastCountAndBothNeighbours) {
  Classification classification;
  classification.m_minPeak = 1000;
  std::vector<double> centers(256, 0.0);
  const auto find = [&](std::initializer_list<Levels> levels) {
    std::ranges::fill(centers, 0.0);
    return classification.FindPeaks(CountsOf(levels), centers);
  };
  EXPECT_EQ(find({{50, 1000}}), 0);
  EXPECT_EQ(find({{50, 1001}}), 1);
  EXPECT_EQ(centers[0], 50.0);
  EXPECT_EQ(find({{50, 2000}, {51, 1999}, {150, 5000}}), 2);
  EXPECT_EQ(centers[0], 50.0);
  EXPECT_EQ(centers[1], 150.0);
}

TEST_F(ClassificationTest, APlateauOfTwoEqualBinsIsNoPeak) {
  Classification classification;
  std::vector<double> centers(256, 0.0);
  EXPECT_EQ(classification.FindPeaks(CountsOf({{50, 2000}, {51, 2000}}), centers), 0);
  EXPECT_EQ(classification.FindPeaks(CountsOf({{254, 2000}, {255, 2000}}), centers), 0);
  EXPECT_EQ(classification.FindPeaks(CountsOf({{0, 2000}, {1, 2000}}), centers), 0);
}

TEST_F(ClassificationTest, APeakInTheFirstBinCounts) {
  Classification classification;
  std::vector<double> centers(256, 7.0);
  EXPECT_EQ(classification.FindPeaks(CountsOf({{0, 2000}, {9, 2000}}), centers), 2);
  EXPECT_EQ(centers[0], 0.0);
  EXPECT_EQ(centers[1], 9.0);
}

TEST_F(ClassificationTest, APeakInTheLastBinGoesToTheLastSlot) {
  Classification classification;
  std::vector<double> centers(256, 0.0);
  EXPECT_EQ(classification.FindPeaks(CountsOf({{9, 2000}, {255, 2000}}), centers), 2);
  EXPECT_EQ(centers[0], 9.0);
  EXPECT_EQ(centers[1], 0.0);
  EXPECT_EQ(centers[255], 255.0);
}

// Rounds

class RoundTest : public ClassificationTest {
 protected:
  RoundTest() { labels.fill(-1); }

  double Run(const Counts& counts, std::vector<double>& centers, int classCount) {
    return classification.ReassignClasses(counts, centers, labels, classCount);
  }

  ErdasImg image = ImageOf({{0, 4000}});  // 4000 pixels, for the fractions
  Classification classification{&image};
  Classification::Labels labels;
};

TEST_F(RoundTest, TheBoundOfPeaksAt50And150Is100) {
  std::vector<double> centers = {50.0, 150.0};
  const Counts counts = CountsOf({{50, 1000}, {100, 1000}, {101, 1000}, {150, 1000}});
  EXPECT_EQ(Run(counts, centers, 2), 1.0);
  EXPECT_EQ(labels[100], 1);
  EXPECT_EQ(labels[101], 2);
  EXPECT_EQ(labels[0], 1);
  EXPECT_EQ(labels[255], 2);
  EXPECT_THAT(centers, ElementsAre(75.0, 125.5));
  EXPECT_EQ(Run(counts, centers, 2), 0.0);  // (75 + 125.5) / 2 + 0.5 is 100.75
}

TEST_F(RoundTest, TheFractionIsThatOfThePixelsThatChange) {
  std::vector<double> centers = {50.0, 150.0};
  const Counts counts = CountsOf({{50, 1000}, {90, 1000}, {150, 2000}});
  Run(counts, centers, 2);
  centers = {20.0, 150.0};  // the bound is 85 now
  EXPECT_EQ(Run(counts, centers, 2), 0.25);
  EXPECT_EQ(labels[90], 2);
}

TEST_F(RoundTest, ABoundIsMadeFromTheNewCenterBelowAndTheOldOneAbove) {
  // Class 1 to 35, its center stays 10. Class 2 from 36 to (60 + 100) / 2 + 0.5 = 80: its center becomes 70,
  // but the bound before it was made from 60.
  std::vector<double> centers = {10.0, 60.0, 100.0};
  Run(CountsOf({{10, 10}, {70, 10}, {100, 10}}), centers, 3);
  EXPECT_THAT(centers, ElementsAre(10.0, 70.0, 100.0));
  EXPECT_EQ(labels[35], 1);
  EXPECT_EQ(labels[36], 2);
  EXPECT_EQ(labels[80], 2);
  EXPECT_EQ(labels[81], 3);
}

TEST_F(RoundTest, AnEmptyClassLeavesNoNumberAndTheNextOneStartsAtTheFirstLevel) {
  // Class 1 to 50, and class 2 from 51 to 75 is empty. In the next round the bounds on both sides of it are
  // no numbers: classes 1 and 2 then have no levels, and class 3 has all.
  std::vector<double> centers = {40.0, 60.0, 90.0};
  const Counts counts = CountsOf({{40, 10}, {90, 10}});
  Run(counts, centers, 3);
  EXPECT_EQ(centers[0], 40.0);
  EXPECT_TRUE(std::isnan(centers[1]));
  EXPECT_EQ(centers[2], 90.0);
  Run(counts, centers, 3);
  EXPECT_TRUE(std::isnan(centers[0]));
  EXPECT_TRUE(std::isnan(centers[1]));
  EXPECT_EQ(centers[2], 65.0);
  EXPECT_THAT(labels, testing::Each(3));
}

TEST_F(RoundTest, ProductsOfLevelAndCountWrapAroundAt2To32) {
  std::vector<double> centers = {200.0};
  Run(CountsOf({{200, 20000000}}), centers, 1);  // 4e9, which is above 2^31
  EXPECT_EQ(centers[0], 200.0);
  Run(CountsOf({{200, 30000000}}), centers, 1);  // 6e9 - 2^32 = 1705032704
  EXPECT_EQ(centers[0], 1705032704.0 / 30000000.0);
}

// A round as it is defined, on 64-bit sums of products cut to 32 bits.
void PlainRound(const Counts& counts, std::vector<double>& centers, Classification::Labels& labels) {
  const int classCount = static_cast<int>(centers.size());
  int start = 0;
  for (int c = 1; c <= classCount; ++c) {
    double& center = centers[static_cast<std::size_t>(c - 1)];
    int end = 255;
    if (c < classCount) {
      const double bound = (center + centers[static_cast<std::size_t>(c)]) / 2 + 0.5;
      end = std::isnan(bound) ? -1 : static_cast<int>(bound);
    }
    std::int64_t sum = 0;
    std::int64_t count = 0;
    for (int v = start; v <= std::min(end, 255); ++v) {
      labels[static_cast<std::size_t>(v)] = c;
      sum += std::int64_t{counts[static_cast<std::size_t>(v)]} * v % (std::int64_t{1} << 32);
      count += counts[static_cast<std::size_t>(v)];
    }
    center = static_cast<double>(sum) / static_cast<double>(count);
    start = end + 1;
  }
}

TEST_F(RoundTest, RoundsGiveWhatThePlainFormGives) {
  std::mt19937 random(7);
  for (int i = 0; i < 200; ++i) {
    Counts counts;
    for (auto& count : counts) {
      count = random() % 3 == 0 ? static_cast<std::int32_t>(random() % (i % 2 == 0 ? 5000 : 50000000)) : 0;
    }
    std::vector<double> centers;
    for (unsigned level = random() % 60; level < 256; level += 1 + random() % 90) centers.push_back(level);
    std::vector<double> plainCenters = centers;
    Classification::Labels plainLabels = labels;
    for (int round = 0; round < 5; ++round) {
      Run(counts, centers, static_cast<int>(centers.size()));
      PlainRound(counts, plainCenters, plainLabels);
      ASSERT_EQ(labels, plainLabels) << i << " " << round;
      for (std::size_t c = 0; c < centers.size(); ++c) {
        const bool areEqual = centers[c] == plainCenters[c];
        EXPECT_TRUE(areEqual || (std::isnan(centers[c]) && std::isnan(plainCenters[c]))) << i << " " << c;
      }
    }
  }
}

TEST_F(RoundTest, NoClassesChangeNothing) {
  std::vector<double> centers;
  EXPECT_EQ(Run(CountsOf({{9, 10}}), centers, 0), 0.0);
  EXPECT_THAT(labels, testing::Each(-1));
}

// The whole run

TEST_F(ClassificationTest, LabelsCountFromOne) {
  ErdasImg image = ImageOf({{10, 1500}, {11, 1200}, {90, 3000}, {95, 100}, {200, 2000}});
  EXPECT_THAT(ClassesOf(image, {10, 11, 90, 95, 200}), ElementsAre(1, 1, 2, 2, 3));
}

TEST_F(ClassificationTest, EveryPixelGetsTheLowByteOfItsLevelsLabel) {
  for (const std::int32_t n : {1, 2, 1003}) {
    ErdasImg image = ImageOf({{0, n}});
    std::mt19937 random(1);
    for (auto& pixel : image.GetBands().GetBand(0)) pixel = static_cast<std::uint8_t>(random());
    Classification isodata(&image);
    for (std::int32_t level = 0; level < 256; ++level) {
      isodata.m_labels[0][static_cast<std::size_t>(level)] = 7 * level - 300;
    }
    ASSERT_EQ(isodata.ApplyLabels(), 1);
    for (std::int32_t i = 0; i < n; ++i) {
      const int label = 7 * image.GetBands()[0][i] - 300;
      EXPECT_EQ(isodata.GetClassImage().GetBands()[0][i], (label + 1024) % 256) << i;
    }
  }
}

TEST_F(ClassificationTest, OfASmallImageEveryPixelIs255) {
  ErdasImg image = ImageOf({{10, 1000}, {90, 1000}});
  EXPECT_THAT(ClassesOf(image, {10, 90}), ElementsAre(255, 255));
}

TEST_F(ClassificationTest, RoundsMoveTheBounds) {
  // Peaks at 100 and 200: the bound is 150, and class 2 takes the many at 151 to 155, so that its mean falls
  // to about 157; class 1 is then up to (100 + 157) / 2.
  ErdasImg image = ImageOf({{100, 5000}, {140, 100}, {151, 1500}, {152, 1500}, {200, 1600}});
  // Round 1: class 1 has 100 and 140: 100.8; class 2: (226500 + 228000 + 320000) / 4600 = 168.4. Round 2: the
  // bound is 135.1: 140 changes to class 2.
  EXPECT_THAT(ClassesOf(image, {100, 140, 151, 200}), ElementsAre(1, 2, 2, 2));
}

TEST_F(ClassificationTest, ThereAreFiveRoundsAtMost) {
  // Until nothing changes it would take nine: 199 comes back to class 3 in the fifth one, 192 in the sixth.
  ErdasImg image = ImageOf({{3, 750},
                            {56, 500},
                            {69, 34},
                            {128, 295},
                            {132, 807},
                            {146, 759},
                            {162, 2757},
                            {185, 593},
                            {187, 1412},
                            {192, 101},
                            {199, 1768},
                            {222, 881},
                            {238, 356}});
  EXPECT_THAT(ClassesOf(image, {3, 69, 128, 162, 185, 187, 192, 199, 222, 238}),
              ElementsAre(1, 1, 2, 2, 2, 2, 2, 3, 3, 3));
}

TEST_F(ClassificationTest, ClassifySetsItsLimits) {
  ErdasImg image = ImageOf({{10, 1500}});
  Classification isodata(&image);
  isodata.Classify();
  EXPECT_EQ(isodata.m_maxIterations, 5);
  EXPECT_EQ(isodata.m_changeThreshold, 0.0);
  EXPECT_EQ(isodata.m_minPeak, 1000);
  EXPECT_THAT(isodata.m_centers, SizeIs(256));
  EXPECT_EQ(isodata.m_centers[0], 10.0);
}

TEST_F(ClassificationTest, ASaturatedPhotoIsClassified) {
  // The peak at 255 raises the count without a center of its own: 50, 150, 0. Class 1 is up to 100, class 2
  // up to (150 + 0) / 2 + 0.5 = 75: it has no levels, and class 3 starts at 76. So 150 is of class 3, as is
  // 255; class 2 is no number from here on, and so is the bound of class 1 in the next round.
  ErdasImg image = ImageOf({{50, 2000}, {150, 2000}, {255, 3000}});
  EXPECT_THAT(ClassesOf(image, {50, 150, 255}), ElementsAre(3, 3, 3));
  Classification isodata(&image);
  isodata.Classify();
  EXPECT_EQ(isodata.m_classCount, 3);
  EXPECT_EQ(isodata.CountEmptyClasses(), 2);
}

TEST_F(ClassificationTest, ClassesWithPixelsAreNotEmpty) {
  ErdasImg image = ImageOf({{10, 1500}, {90, 3000}, {200, 2000}});
  Classification isodata(&image);
  EXPECT_EQ(isodata.CountEmptyClasses(), 0);  // there are none yet
  isodata.Classify();
  EXPECT_EQ(isodata.m_classCount, 3);
  EXPECT_EQ(isodata.CountEmptyClasses(), 0);
}

TEST_F(ClassificationTest, ClassesOfWidePixelsAreThoseOfTheFirstBytes) {
  ErdasHeader header;
  header.packType = kPackUInt16;
  header.cols = 4000;
  ErdasImg image;
  ASSERT_EQ(image.Create(header, false), 1);
  for (std::int32_t col = 0; col < 2000; ++col) image.SetPixel(0, 0, col, 0x6414);  // the bytes 20 and 100
  for (std::int32_t col = 2000; col < 4000; ++col) image.SetPixel(0, 0, col, 0xC8C8);
  Classification isodata(&image);
  ASSERT_EQ(isodata.Classify(), 1);
  const ErdasImg& classes = isodata.GetClassImage();
  EXPECT_EQ(classes.GetPackType(), kPackByte);
  ASSERT_EQ(classes.GetBands().GetBandBytes(), 4000u);
  for (std::int32_t i = 0; i < 4000; ++i) ASSERT_EQ(classes.GetBands()[0][i], 1 + i % 2) << i;
}

TEST_F(ClassificationTest, ThreeBandsAreClassifiedOnTheFirst) {
  ErdasImg image = ImageOf({{10, 1500}, {90, 3000}}, 3);
  std::ranges::fill(image.GetBands().GetBand(1), std::uint8_t{200});
  image.GetHeader()->xMap = 12.0f;
  Classification isodata(&image);
  EXPECT_EQ(isodata.Classify(), 1);
  ErdasImg& classes = isodata.GetClassImage();
  EXPECT_EQ(classes.GetBandCount(), 1);
  EXPECT_THAT(classes.GetBands(), SizeIs(1));
  EXPECT_EQ(classes.GetSize(), image.GetSize());
  EXPECT_EQ(classes.GetHeader()->xMap, 12.0f);
  EXPECT_EQ(classes.GetBands()[0][0], 1);
  EXPECT_EQ(classes.GetBands()[0][4499], 2);
}

TEST_F(ClassificationTest, TheLogFileIsEmpty) {
  ErdasImg image = ImageOf({{10, 1500}});
  Classification(&image).Classify();
  ASSERT_TRUE(std::filesystem::exists("isoDataLog.txt"));
  EXPECT_EQ(std::filesystem::file_size("isoDataLog.txt"), 0u);
}

TEST_F(ClassificationTest, WithoutAnImageNothingHappens) {
  Classification isodata;
  EXPECT_EQ(isodata.Classify(), -1);
  EXPECT_EQ(isodata.ApplyLabels(), -1);
  isodata.ComputeHistogram();
  isodata.MarkNonUniform();
  isodata.DumpHistogram([](const std::string&) { ADD_FAILURE(); });
  EXPECT_THAT(isodata.m_histogram, IsEmpty());
  EXPECT_EQ(isodata.CountEmptyClasses(), 0);
  EXPECT_FALSE(isodata.GetClassImage().GetBands());
  EXPECT_FALSE(std::filesystem::exists("isoDataLog.txt"));
}

TEST_F(ClassificationTest, AnImageWithoutPixelsIsOfNoClass) {
  ErdasImg image;  // a header of 1 x 1, without bands
  Classification isodata(&image);
  EXPECT_EQ(isodata.Classify(), 1);
  EXPECT_THAT(isodata.GetClassImage().GetBands().GetBand(0), ElementsAre(255));
  image.SetSize(0, -3);
  Classification empty(&image);
  EXPECT_EQ(empty.Classify(), -1);
}

TEST_F(ClassificationTest, DumpListsClassesAndLevels) {
  ErdasImg image = ImageOf({{10, 1500}, {11, 500}});
  Classification isodata(&image);
  isodata.Classify();
  std::vector<std::string> lines;
  isodata.DumpHistogram([&](const std::string& line) { lines.push_back(line); });
  ASSERT_THAT(lines, SizeIs(257));
  EXPECT_EQ(lines[0], "1\t10.25\n");
  EXPECT_EQ(lines[1], "0\t0\t1\n");
  EXPECT_EQ(lines[11], "10\t1500\t1\n");
  EXPECT_EQ(lines[256], "255\t0\t1\n");
}

TEST_F(ClassificationTest, MarksWhereTheBlockIsNotUniform) {
  ErdasHeader header;
  header.cols = 6;
  header.rows = 5;
  ErdasImg image;
  image.Create(header, false);
  Classification classification(&image);
  classification.ApplyLabels();
  auto classes = classification.GetClassImage().GetBands().GetBand(0);
  std::ranges::fill(classes, std::uint8_t{1});
  classes[3 * 6 + 4] = 2;  // row 3, column 4: in the blocks that begin in rows 1 to 3, columns 2 to 4
  classification.MarkNonUniform();
  EXPECT_THAT(classes, ElementsAre(1, 1, 1, 1, 1, 1,        //
                                   1, 0, 255, 255, 255, 1,  //
                                   1, 0, 255, 255, 255, 1,  //
                                   1, 0, 255, 255, 255, 1,  //
                                   1, 1, 1, 1, 1, 1));
}

}  // namespace
}  // namespace corvane
