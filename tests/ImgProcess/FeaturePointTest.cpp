#include "ImgProcess/FeaturePoint.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

#include "support/FileSizeLimit.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FeaturePointTest : public testing::Test {
 protected:
  // The points of a file with this text.
  FeaturePointList Read(const std::string& text, FeatureNumbers numbers = FeatureNumbers::Double) {
    WriteFileBytes("in.txt", text);
    FeaturePointList list(3);
    EXPECT_EQ(ReadFeaturePoints("in.txt", list, numbers), 1);
    return list;
  }

  // The same of a file that does not hold what it promises.
  FeaturePointList ReadPart(const std::string& text) {
    WriteFileBytes("in.txt", text);
    ui.events.clear();
    FeaturePointList list(3);
    EXPECT_EQ(ReadFeaturePoints("in.txt", list, FeatureNumbers::Double), -2);
    EXPECT_THAT(ui.events, ElementsAre("message warning: Open file in.txt error!\n"
                                       "It is no list of descriptors, or it is cut short."));
    return list;
  }

  TempFolder folder;
  TestFrontEnd ui;
};

TEST_F(FeaturePointTest, TheDefaultsAreThoseOfAPlainPoint) {
  const FeaturePoint point;
  EXPECT_EQ(point.id, 0);
  EXPECT_EQ(point.scale, 1.0);
  EXPECT_EQ(point.orientation, 0.0);
  EXPECT_THAT(point.values, IsEmpty());
}

TEST_F(FeaturePointTest, WritesPointsAndTheirValues) {
  const FeaturePointList list = {
      {.id = 0, .y = 9, .x = 17, .values = {-4, 0.5, 12}},
      {.id = 1, .y = 2.25, .x = 3, .scale = 2, .orientation = -1.5, .values = {1, 2, 3}}};
  EXPECT_EQ(WriteFeaturePoints("out.txt", list), 1);
  EXPECT_EQ(ReadFileBytes("out.txt"),
            "2 3\n"
            "17.000000 9.000000 1.000000 0.000000\n"
            " -4.000000 0.500000 12.000000\n"
            "3.000000 2.250000 2.000000 -1.500000\n"
            " 1.000000 2.000000 3.000000\n");
}

TEST_F(FeaturePointTest, TwentyValuesStandInALine) {
  FeaturePoint point;
  point.values.assign(41, 7.0);
  EXPECT_EQ(WriteFeaturePoints("out.txt", {point}), 1);
  std::string twenty;
  for (int i = 0; i < 20; ++i) twenty += " 7.000000";
  EXPECT_EQ(ReadFileBytes("out.txt"),
            "1 41\n0.000000 0.000000 1.000000 0.000000\n" + twenty + "\n" + twenty + "\n 7.000000\n");
  point.values.resize(20);
  EXPECT_EQ(WriteFeaturePoints("out.txt", {point}), 1);
  EXPECT_EQ(ReadFileBytes("out.txt"), "1 20\n0.000000 0.000000 1.000000 0.000000\n" + twenty + "\n");
}

TEST_F(FeaturePointTest, TheFirstLineCountsTheValuesOfTheFirstPointOnly) {
  EXPECT_EQ(WriteFeaturePoints("out.txt", {{.values = {1}}, {.values = {1, 2}}}), 1);
  EXPECT_EQ(ReadFileBytes("out.txt").substr(0, 4), "2 1\n");
}

TEST_F(FeaturePointTest, PointsWithoutValuesHaveNoLineOfThem) {
  EXPECT_EQ(WriteFeaturePoints("out.txt", {{}, {}}), 1);
  EXPECT_EQ(ReadFileBytes("out.txt"),
            "2 0\n0.000000 0.000000 1.000000 0.000000\n0.000000 0.000000 1.000000 0.000000\n");
}

TEST_F(FeaturePointTest, AnEmptyListWritesNothingAtAll) {
  EXPECT_EQ(WriteFeaturePoints("out.txt", {}), 1);
  EXPECT_TRUE(std::filesystem::exists("out.txt"));
  EXPECT_EQ(ReadFileBytes("out.txt"), "");
}

TEST_F(FeaturePointTest, NumbersThatAreNotFiniteAreWrittenAsTheyFall) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(WriteFeaturePoints("out.txt", {{.values = {infinity, -infinity, std::abs(infinity - infinity)}}}),
            1);
  EXPECT_EQ(ReadFileBytes("out.txt"), "1 3\n0.000000 0.000000 1.000000 0.000000\n inf -inf nan\n");
}

TEST_F(FeaturePointTest, AFileThatDoesNotOpenForWritingIsTold) {
  EXPECT_EQ(WriteFeaturePoints("none/out.txt", {{}}), -1);
  EXPECT_THAT(ui.events, ElementsAre("message warning: Open file none/out.txt error!"));
}

TEST_F(FeaturePointTest, AFullDiskLeavesTheOldFile) {
  WriteFileBytes("out.txt", "old");
  const FeaturePointList list(1000);
  const FileSizeLimit limit(100);
  EXPECT_EQ(WriteFeaturePoints("out.txt", list), -1);
  EXPECT_THAT(ui.events, ElementsAre("message warning: Write file out.txt error!"));
  EXPECT_EQ(ReadFileBytes("out.txt"), "old");
}

TEST_F(FeaturePointTest, ReadsWhatItWrites) {
  FeaturePointList list = {{.id = 0, .y = 9, .x = 17},
                           {.id = 1, .y = 2.25, .x = 3, .scale = 2, .orientation = 0.5}};
  for (FeaturePoint& point : list) {
    for (int i = 0; i < 48; ++i) point.values.push_back(i / 8.0 + point.id);
  }
  ASSERT_EQ(WriteFeaturePoints("out.txt", list), 1);
  for (const FeatureNumbers numbers : {FeatureNumbers::Float, FeatureNumbers::Double}) {
    const FeaturePointList read = Read(ReadFileBytes("out.txt"), numbers);
    ASSERT_EQ(read.size(), 2u);
    for (std::size_t i = 0; i < 2; ++i) {
      EXPECT_EQ(read[i].id, list[i].id);
      EXPECT_EQ(read[i].x, list[i].x);
      EXPECT_EQ(read[i].y, list[i].y);
      EXPECT_EQ(read[i].scale, list[i].scale);
      EXPECT_EQ(read[i].orientation, list[i].orientation);
      EXPECT_EQ(read[i].values, list[i].values);
    }
  }
}

TEST_F(FeaturePointTest, ValuesAreReadAsFloatsOrDoubles) {
  const std::string text = "1 1\n5 6 1 0\n0.1\n";
  EXPECT_EQ(Read(text, FeatureNumbers::Float).at(0).values.at(0), static_cast<double>(0.1f));
  EXPECT_EQ(Read(text, FeatureNumbers::Double).at(0).values.at(0), 0.1);
}

TEST_F(FeaturePointTest, LinesDoNotMatterToTheReader) {
  const FeaturePointList list = Read("2\n2 1 2\t3\n4 5\r\n6 7 8 9\n\n10 11 12");
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[1].x, 7);
  EXPECT_EQ(list[1].y, 8);
  EXPECT_EQ(list[1].orientation, 10);
  EXPECT_THAT(list[1].values, ElementsAre(11, 12));
}

TEST_F(FeaturePointTest, APointThatIsNotWholeEndsTheListAndIsTold) {
  const FeaturePointList list = ReadPart("3 2\n1 2 1 0\n5 6\n1 2 1 0\n5");
  ASSERT_EQ(list.size(), 1u);
  EXPECT_THAT(list[0].values, ElementsAre(5, 6));
  EXPECT_EQ(ReadPart("3 2\n1 2 1 0\n5 6\n1 2 x 0\n5 6").size(), 1u);
  EXPECT_EQ(ReadPart("2 0\n1 2 1 0\n").size(), 1u);
  EXPECT_EQ(ReadPart("1 1\n1 2 1").size(), 0u);
}

TEST_F(FeaturePointTest, ATextWithoutAFirstLineIsTold) {
  for (const char* text : {"\n", " ", "a b", "3", "3 x\n1 2 1 0"}) {
    EXPECT_THAT(ReadPart(text), IsEmpty()) << text;
  }
}

TEST_F(FeaturePointTest, AnEmptyFileIsAnEmptyList) {
  EXPECT_THAT(Read(""), IsEmpty());
  EXPECT_THAT(ui.events, IsEmpty());
}

TEST_F(FeaturePointTest, CountsThatAreNotPositivePromiseNothing) {
  EXPECT_THAT(Read("-1 5\n1 2 3 4 5"), IsEmpty());
  EXPECT_THAT(Read("0 1\n1 2 3 4 5"), IsEmpty());
  EXPECT_EQ(Read("1 -5\n1 2 3 4 5").at(0).values.size(), 0u);
  EXPECT_THAT(ui.events, IsEmpty());
}

TEST_F(FeaturePointTest, HugePromisesTakeNoMemory) {
  EXPECT_EQ(ReadPart("2147483647 2147483647\n1 2 1 0\n3 4 5").size(), 0u);
  EXPECT_EQ(ReadPart("2147483647 0\n1 2 1 0\n3 4 1 0").size(), 2u);
  EXPECT_EQ(Read("99999999999999999999 1\n1 2 1 0 7").size(), 0u);  // held at 64 bits, then cut: -1
}

TEST_F(FeaturePointTest, AFileThatIsNotThereIsTold) {
  FeaturePointList list(2);
  EXPECT_EQ(ReadFeaturePoints("none.txt", list), -1);
  EXPECT_THAT(list, IsEmpty());
  EXPECT_THAT(ui.events, ElementsAre("message warning: Open file none.txt error!"));
}

}  // namespace
}  // namespace corvane
