#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <random>

#include "TIN/TINPoints.h"
#include "io/TextScanner.h"
#include "numerics/Histogram.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;

class ReadTextTest : public testing::Test {
 protected:
  std::vector<PointRecord> Read(const std::string& text) {
    WriteFileBytes("a.txt", text);
    TINPoints points;
    EXPECT_EQ(points.ReadText("a.txt"), 1);
    EXPECT_EQ(points.GetCount(), points.capacity);
    return points.points;
  }

  std::string LastStatus() const { return ui.events.empty() ? "" : ui.events.back(); }

  TempFolder folder;
  TestFrontEnd ui;
};

TEST_F(ReadTextTest, TheNumberOfFieldsDecidesWhatTheyAre) {
  EXPECT_THAT(Read("7 1 2\n8 3 4\n"), ElementsAre(PointRecord{7, 1, 2, 0, 0}, PointRecord{8, 3, 4, 0, 0}));
  EXPECT_THAT(Read("7 1 2 0.5\n"), ElementsAre(PointRecord{7, 1, 2, 0, 0.5}));
  EXPECT_THAT(Read("7 1 2 3 0.5\n"), ElementsAre(PointRecord{7, 1, 2, 3, 0.5}));
  EXPECT_THAT(Read("7 1 2 3 4 0.5\n"), ElementsAre(PointRecord{7, 1, 2, 0, 0.5}));
  EXPECT_THAT(Read("7 1 2 3 4 5 6 7 8 9 10 0.5\n"), ElementsAre(PointRecord{7, 1, 2, 0, 0.5}));
}

TEST_F(ReadTextTest, TheFirstLineDecidesBetweenCommasAndBlanks) {
  EXPECT_THAT(Read("7, 1, 2, 3, 0.5\r\n8,3,4,5,0.25"),
              ElementsAre(PointRecord{7, 1, 2, 3, 0.5}, PointRecord{8, 3, 4, 5, 0.25}));
  EXPECT_THAT(Read("7\t1\t2\t3\t0.5\n"), ElementsAre(PointRecord{7, 1, 2, 3, 0.5}));
  EXPECT_THAT(Read("1.5 2 3 4\n"), ElementsAre(PointRecord{1, 0.5, 2, 0, 3}));  // an id ends at the point
}

TEST_F(ReadTextTest, ShortRecordsOfThreeFieldsAndMoreCount) {
  EXPECT_THAT(
      Read("1,1,2,3,0.5\n2,1,2\n3,1\n4\n5,1,2,0.25\n"),
      ElementsAre(PointRecord{1, 1, 2, 3, 0.5}, PointRecord{2, 1, 2, 0, 0}, PointRecord{5, 1, 2, 0, 0.25}));
  EXPECT_EQ(LastStatus(), "status 0: Points read: 3. 2 records with too few fields were left out.");
}

TEST_F(ReadTextTest, EndsBeforeWhatIsNoNumber) {
  EXPECT_THAT(Read("1 1 2 0.5\nx 1 2 0.5\n3 1 2 0.5\n"), ElementsAre(PointRecord{1, 1, 2, 0, 0.5}));
  EXPECT_EQ(LastStatus(), "status 0: Points read: 1. Stopped at line 2 of a.txt: not a number.");
}

TEST_F(ReadTextTest, TextsWithoutPointsAreEmpty) {
  for (const std::string text : {"", "\n", "1\n2\n3\n", "1 2\n", "id x y value\n"}) {
    EXPECT_TRUE(Read(text).empty()) << text;
  }
  EXPECT_TRUE(Read(std::string("\0\0\0", 3)).empty());
}

TEST_F(ReadTextTest, TellsOfAFirstFieldThatIsNoWholeNumber) {
  const std::string note = "The first field of line 1 is no whole number; records are id, x, y, z, value.";
  Read("451100.25 5423100.5 120.25 1\n");
  // 451100, 0.25, 5423100.5, 120.25, and then 1 alone
  EXPECT_EQ(LastStatus(), "status 0: Points read: 1. 1 record with too few fields was left out. " + note);
  Read("1e3,2,3,4\n");
  EXPECT_THAT(LastStatus(), testing::HasSubstr(note));
  Read("id x y value\n");
  EXPECT_EQ(LastStatus(), "status 0: Points read: 0. Line 1 of a.txt is no point: id x y value");
  for (const std::string text : {"", "\n7 1 2\n", "7 1 2\n", " -7\t1 2\n", "+7,1,2\r\n"}) {
    Read(text);
    EXPECT_THAT(LastStatus(), testing::Not(testing::HasSubstr("whole number"))) << text;
  }
}

// Its first 255 characters decide on the fields, as fgets with 256 bytes sees them.
TEST_F(ReadTextTest, OfALongFirstLineTheBeginningCounts) {
  // "7 1 2 3" and the blanks fit; 0.5 begins behind them
  EXPECT_THAT(Read("7 1 2 3" + std::string(248, ' ') + "0.5\n"), ElementsAre(PointRecord{7, 1, 2, 0, 3}));
  // a field cut in two is one
  EXPECT_THAT(Read("7 1 2 3" + std::string(247, ' ') + "0.5\n8 3 4 5 0.25\n"),
              ElementsAre(PointRecord{7, 1, 2, 3, 0.5}, PointRecord{8, 3, 4, 5, 0.25}));
}

TEST_F(ReadTextTest, OfManyFieldsTheLastIsTheValue) {
  std::string line = "7 1 2";
  for (int i = 0; i < 100; ++i) line += " 9";
  EXPECT_THAT(Read(line + " 0.5\n"), ElementsAre(PointRecord{7, 1, 2, 0, 0.5}));
}

TEST_F(ReadTextTest, WhatWasThereIsDropped) {
  WriteFileBytes("a.txt", "1 1 2 0.5\n");
  TINPoints points(5);
  points.SetExtent(4, {0, 1, 0, 1, 0, 0});
  ASSERT_EQ(points.BuildIndex(1.0), 1);
  EXPECT_EQ(points.ReadText("a.txt"), 1);
  EXPECT_EQ(points.GetCount(), 1);
  EXPECT_EQ(points.GetIndex(), nullptr);
  EXPECT_EQ(points.ReadText("none.txt"), -1);
  EXPECT_EQ(points.GetCount(), 0);
  EXPECT_EQ(points.ReadText("."), -1);
}

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// What a plain loop of fscanf makes of a text of at most ten fields in the first line.
std::vector<PointRecord> ScanPlainly(const std::string& path) {
  const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "r"));
  char line[256] = "";
  char copy[256] = "";
  if (!std::fgets(line, sizeof line, file.get())) line[0] = '\0';
  std::strcpy(copy, line);
  int nFields = 0;
  for (char* field = std::strtok(copy, " ,\t\n"); field; field = std::strtok(nullptr, " ,\t\n")) ++nFields;
  int id = 0;
  double v[9] = {};
  std::string separator = ",%lf";
  if (nFields > 1 && std::sscanf(line, "%d, %lf", &id, v) != 2) separator = " %lf";
  std::string format = "%d";
  for (int i = 1; i < nFields; ++i) format += separator;
  std::rewind(file.get());
  std::vector<PointRecord> points;
  for (;;) {
    std::fill(v, v + 9, 0.0);
    const int n = std::fscanf(file.get(), format.c_str(), &id, v, v + 1, v + 2, v + 3, v + 4, v + 5, v + 6,
                              v + 7, v + 8);
    if (n < 1) return points;
    if (n > 2) points.push_back({id, v[0], v[1], n == 5 ? v[2] : 0.0, n > 3 ? v[n - 2] : 0.0});
  }
}

TEST_F(ReadTextTest, IsALoopOfFscanfOnAnyText) {
  std::mt19937 random(11);
  constexpr char kCharacters[] = "0123456789012345678901234567890123456789..--+eExinfa, ,,  \t\n\n";
  for (int round = 0; round < 1500; ++round) {
    std::string text;
    const bool commas = random() % 2 == 0;
    const unsigned nFields = 1 + random() % 6;
    for (unsigned row = 0; row < 1 + random() % 6; ++row) {
      text += std::to_string(random() % 100);
      for (unsigned i = 1; i < nFields; ++i) {
        text += (commas ? "," : " ") + std::to_string(0.25 * static_cast<double>(random() % 1000));
      }
      text += '\n';
    }
    for (unsigned damage = random() % 4; damage > 0; --damage) {
      text[random() % text.size()] = kCharacters[random() % (sizeof kCharacters - 1)];
    }
    if (CountFields(FirstLine(text)) > 10) continue;  // lines joined by the damage
    WriteFileBytes("a.txt", text);
    const auto expected = ScanPlainly("a.txt");
    const auto points = Read(text);
    ASSERT_EQ(points.size(), expected.size()) << text;
    for (std::size_t i = 0; i < points.size(); ++i) {
      const auto bytesOf = [](const PointRecord& point) {
        std::string bytes(kVertexBytes, '\0');
        PackVertex(point, bytes.data());
        return bytes;
      };
      ASSERT_EQ(bytesOf(points[i]), bytesOf(expected[i])) << text;  // not-a-number equals itself here
    }
  }
}

TEST_F(ReadTextTest, TextsBeyondOneWindowAreOneText) {
  std::string text;
  for (int i = 0; i < 200000; ++i) text += std::to_string(i) + " 1.5 2.5 0.125\n";
  const auto points = Read(text);
  ASSERT_EQ(points.size(), 200000u);
  EXPECT_EQ(points[199999], (PointRecord{199999, 1.5, 2.5, 0, 0.125}));
}

TINPoints PointsWithValues(const std::vector<double>& values) {
  TINPoints points(static_cast<std::int32_t>(values.size()));
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    points.SetPoint(i, 0, 0, 0, values[static_cast<std::size_t>(i)], i);
  }
  return points;
}

TEST(ValueHistogram, BinsBeginAtTheSmallestValue) {
  Histogram histogram;
  EXPECT_EQ(PointsWithValues({2.0, 1.0, 1.5, 3.25, 1.25}).ValueHistogram(0.5, histogram), 1);
  EXPECT_THAT(histogram.binStarts, ElementsAre(1.0, 1.5, 2.0, 2.5, 3.0));
  EXPECT_THAT(histogram.counts, ElementsAre(2, 1, 1, 0, 1));
}

TEST(ValueHistogram, EqualValuesHaveOneBin) {
  Histogram histogram;
  EXPECT_EQ(PointsWithValues({-4, -4}).ValueHistogram(0.05, histogram), 1);
  EXPECT_THAT(histogram.binStarts, ElementsAre(-4));
  EXPECT_THAT(histogram.counts, ElementsAre(2));
}

TEST(ValueHistogram, WhatIsNoNumberDoesNotCount) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  Histogram histogram;
  EXPECT_EQ(PointsWithValues({nan, 1, nan, 2}).ValueHistogram(1.0, histogram), 1);
  EXPECT_THAT(histogram.binStarts, ElementsAre(1, 2));
  EXPECT_THAT(histogram.counts, ElementsAre(1, 1));
  EXPECT_EQ(PointsWithValues({nan}).ValueHistogram(1.0, histogram), -1);
  EXPECT_EQ(TINPoints().ValueHistogram(1.0, histogram), -1);
}

TEST(ValueHistogram, TenMillionBinsAreTheMost) {
  Histogram histogram;
  EXPECT_EQ(PointsWithValues({5, 10000004}).ValueHistogram(1.0, histogram), 1);
  EXPECT_EQ(histogram.GetBinCount(), 10000000);
  EXPECT_EQ(histogram.counts.front(), 1);
  EXPECT_EQ(histogram.counts.back(), 1);
  EXPECT_EQ(histogram.binStarts.back(), 10000004);
  EXPECT_EQ(PointsWithValues({5, 10000005}).ValueHistogram(1.0, histogram), -1);
  EXPECT_EQ(histogram.GetBinCount(), 0);
}

TEST(ValueHistogram, AbsurdRangesAndBinsAreRefused) {
  const double inf = std::numeric_limits<double>::infinity();
  Histogram histogram;
  for (const double bin : {0.0, -1.0, 1e-300, 1e-8, inf, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(PointsWithValues({0, 1}).ValueHistogram(bin, histogram), -1) << bin;
  }
  EXPECT_EQ(PointsWithValues({0, inf}).ValueHistogram(1.0, histogram), -1);
  EXPECT_EQ(PointsWithValues({-1e308, 1e308}).ValueHistogram(1.0, histogram), -1);
}

}  // namespace
}  // namespace corvane
