// Pair files against scanf itself, and the texts that matching writes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <random>

#include "StereoPair/PairFile.h"
#include "StereoPair/PairMaker.h"
#include "support/FileSizeLimit.h"
#include "support/PointsBytes.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    lines.push_back(text.substr(at, end - at));
    if (end < text.size() && lines.back().ends_with('\r')) lines.back().pop_back();
    at = end + 1;
  }
  return lines;
}

int PlainColumns(std::string line) {
  int n = 0;
  for (char* field = std::strtok(line.data(), " ,\t\n"); field; field = std::strtok(nullptr, " ,\t\n")) ++n;
  return n;
}

std::string PlainFormat(const std::string& line) {
  const std::string first = std::string(line.substr(0, 255).c_str());
  const int nColumns = PlainColumns(first);
  double a = 0.0;
  double b = 0.0;
  const bool hasBlanks = nColumns > 1 && std::sscanf(first.c_str(), "%lf,%lf", &a, &b) != 2;
  std::string format = "%d";
  for (int i = 1; i < std::min(nColumns, 6); ++i) format += hasBlanks ? " %lf" : ",%lf";
  return format;
}

std::vector<MatchPair> PlainPairs(const std::string& text, bool stopsAtNothing) {
  std::vector<MatchPair> pairs;
  const auto lines = LinesOf(text);
  const std::string format = lines.empty() ? "" : PlainFormat(lines[0]);
  for (const std::string& line : lines) {
    MatchPair pair;
    const int nItems = std::sscanf(line.c_str(), format.c_str(), &pair.id, &pair.left.y, &pair.left.x,
                                   &pair.right.y, &pair.right.x, &pair.score);
    if (nItems < 1 && stopsAtNothing) break;
    if (nItems >= 5) pairs.push_back(pair);
  }
  return pairs;
}

bool SameNumber(double a, double b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

bool SamePair(const MatchPair& a, const MatchPair& b) {
  return a.id == b.id && SameNumber(a.left.x, b.left.x) && SameNumber(a.left.y, b.left.y) &&
         SameNumber(a.right.x, b.right.x) && SameNumber(a.right.y, b.right.y) && SameNumber(a.score, b.score);
}

class PairFiles : public testing::Test {
 protected:
  std::vector<MatchPair> Read(const std::string& text) {
    WriteFileBytes("pairs.txt", text);
    std::vector<MatchPair> pairs(3);  // of before
    EXPECT_EQ(StereoPair::ReadPairs("pairs.txt", pairs), 1);
    return pairs;
  }

  void ReadPoints(const std::string& text) {
    WriteFileBytes("pairs.txt", text);
    EXPECT_EQ(StereoPair::ReadPairsAsPoints("pairs.txt", left, right, &lines), 1);
  }

  void ExpectAsScanf(const std::string& text) {
    const auto pairs = Read(text);
    const auto expected = PlainPairs(text, false);
    EXPECT_TRUE(std::equal(pairs.begin(), pairs.end(), expected.begin(), expected.end(), SamePair))
        << testing::PrintToString(text);
    ReadPoints(text);
    const auto upToNothing = PlainPairs(text, true);
    const auto n = static_cast<std::int32_t>(upToNothing.size());
    ASSERT_EQ(left.nPoints, n) << testing::PrintToString(text);
    ASSERT_EQ(right.nPoints, n);
    for (std::int32_t i = 0; i < n; ++i) {
      const PointRecord& l = *left.GetPoint(i);
      const PointRecord& r = *right.GetPoint(i);
      const MatchPair pair = {upToNothing[static_cast<std::size_t>(i)].id, {l.x, l.y}, {r.x, r.y}, l.value};
      EXPECT_TRUE(SamePair(pair, upToNothing[static_cast<std::size_t>(i)])) << testing::PrintToString(text);
      EXPECT_EQ(l.id, i);
      EXPECT_EQ(r.id, i);
      EXPECT_EQ(l.z, 0.0);
      EXPECT_TRUE(SameNumber(l.value, r.value));
    }
  }

  TempFolder folder;
  TestFrontEnd ui;
  TINPoints left{5};
  TINPoints right{7};
  PairLines lines;
};

TEST_F(PairFiles, TheRowStandsBeforeTheColumn) {
  EXPECT_THAT(Read("4, 10.5, 20.25, 30, 40, 0.75\n"),
              ElementsAre(MatchPair{4, {20.25, 10.5}, {40, 30}, 0.75}));
}

TEST_F(PairFiles, CommasOrBlanks) {
  const MatchPair pair{1, {3, 2}, {5, 4}, 6};
  for (const char* const text :
       {"1,2,3,4,5,6", "1, 2, 3, 4, 5, 6\r\n", "1 2 3 4 5 6", "  1\t2  3\t4 5 6 \n", "1,\t2, 3,4,5,6"}) {
    EXPECT_THAT(Read(text), ElementsAre(pair)) << text;
  }
}

TEST_F(PairFiles, FiveColumnsScoreMinusOne) {
  EXPECT_THAT(Read("1, 2, 3, 4, 5\n7, 6, 5, 4, 3, 2\n"),
              ElementsAre(MatchPair{1, {3, 2}, {5, 4}, -1.0}, MatchPair{7, {5, 6}, {3, 4}, -1.0}));
  EXPECT_THAT(Read("1, 2, 3, 4, 5, 6\n1, 2, 3, 4, 5\n"),
              ElementsAre(MatchPair{1, {3, 2}, {5, 4}, 6}, MatchPair{1, {3, 2}, {5, 4}, -1.0}));
}

TEST_F(PairFiles, ALineOfFourColumnsIsLeftOut) {
  const std::string text = "1 2 3 4 5 6\n1 2 3 4\n9 8 7 6 5 4\n";
  const MatchPair first{1, {3, 2}, {5, 4}, 6};
  const MatchPair last{9, {7, 8}, {5, 6}, 4};
  EXPECT_THAT(Read(text), ElementsAre(first, last));
  ReadPoints(text);
  EXPECT_EQ(left.nPoints, 2);
  EXPECT_EQ(*left.GetPoint(1), (PointRecord{1, 7, 8, 0, 4}));
  EXPECT_EQ(*right.GetPoint(1), (PointRecord{1, 5, 6, 0, 4}));
  EXPECT_EQ(lines.nLeftOut, 1);
  EXPECT_EQ(lines.stopLine, 0);
}

TEST_F(PairFiles, AnEmptyLineEndsPointsAlone) {
  const std::string text = "1 2 3 4 5 6\n\n1 2 3 4 5 6\n";
  EXPECT_EQ(Read(text).size(), 2u);
  ReadPoints(text);
  EXPECT_EQ(left.nPoints, 1);
  EXPECT_EQ(right.nPoints, 1);
  EXPECT_EQ(lines.stopLine, 2);
  EXPECT_TRUE(lines.stopIsEmpty);
  EXPECT_EQ(lines.nLeftOut, 0);
}

TEST_F(PairFiles, ALineOfWordsEndsPointsAlone) {
  const std::string text = "1 2 3 4 5 6\n1 2 x\nend of it\n1 2 3 4 5 6\n";
  EXPECT_EQ(Read(text).size(), 2u);
  ReadPoints(text);
  EXPECT_EQ(left.nPoints, 1);
  EXPECT_EQ(lines.stopLine, 3);
  EXPECT_FALSE(lines.stopIsEmpty);
  EXPECT_EQ(lines.nLeftOut, 1);
}

TEST_F(PairFiles, BlankLinesAtTheEndLoseNothing) {
  ReadPoints("1 2 3 4 5 6\n \r\n\n  ");
  EXPECT_EQ(left.nPoints, 1);
  EXPECT_EQ(lines.stopLine, 0);
}

TEST_F(PairFiles, AFirstLineOfOneColumnLeavesNothing) {
  const std::string text = "12\n1,2,3,4,5,6\n";
  EXPECT_THAT(Read(text), IsEmpty());
  ReadPoints(text);
  EXPECT_EQ(left.nPoints, 0);
  EXPECT_EQ(lines.nLeftOut, 2);
  EXPECT_EQ(lines.nColumns, 1);
}

TEST_F(PairFiles, ColumnsBeyondTheSixthHaveNoMeaning) {
  EXPECT_THAT(Read("1 2 3 4 5 6 7\n1 2 3 4 5 6 x\n"),
              ElementsAre(MatchPair{1, {3, 2}, {5, 4}, 6}, MatchPair{1, {3, 2}, {5, 4}, 6}));
  ReadPoints("1 2 3 4 5 6 7 8\n");
  EXPECT_EQ(lines.nColumns, 8);
}

TEST_F(PairFiles, OnlyTheFirst255CharactersOfTheFirstLineCount) {
  // The sixth number begins at character 256, so that there are five columns.
  const std::string five = "1 2 3 4 5";
  const std::string text = five + std::string(255 - five.size(), ' ') + "6\n1 2 3 4 5 6\n";
  EXPECT_THAT(Read(text),
              ElementsAre(MatchPair{1, {3, 2}, {5, 4}, -1.0}, MatchPair{1, {3, 2}, {5, 4}, -1.0}));
  const std::string shorter = five + std::string(254 - five.size(), ' ') + "6\n";
  EXPECT_THAT(Read(shorter), ElementsAre(MatchPair{1, {3, 2}, {5, 4}, 6.0}));
}

TEST_F(PairFiles, AZeroEndsALine) {
  using namespace std::string_literals;
  EXPECT_THAT(Read("1 2 3 4 5 6\n1 2 3 4 5\0 6\n1 2\0 3 4 5 6\n7 2 3 4 5 6"s),
              ElementsAre(MatchPair{1, {3, 2}, {5, 4}, 6}, MatchPair{1, {3, 2}, {5, 4}, -1.0},
                          MatchPair{7, {3, 2}, {5, 4}, 6}));
}

TEST_F(PairFiles, NothingAtAll) {
  EXPECT_THAT(Read(""), IsEmpty());
  ReadPoints("");
  EXPECT_EQ(left.nPoints, 0);
  EXPECT_EQ(right.nPoints, 0);
  EXPECT_EQ(lines.stopLine, 0);
}

TEST_F(PairFiles, AFileThatDoesNotOpen) {
  std::vector<MatchPair> pairs(3);
  EXPECT_EQ(StereoPair::ReadPairs("none.txt", pairs), -1);
  EXPECT_EQ(pairs.size(), 3u);
  EXPECT_EQ(StereoPair::ReadPairs(".", pairs), -1);
  EXPECT_EQ(StereoPair::ReadPairsAsPoints("none.txt", left, right), -1);
  EXPECT_EQ(left.nPoints, 5);
  EXPECT_THAT(ui.EventsWith("message"), IsEmpty());
}

TEST_F(PairFiles, OddNumbersAreScanfs) {
  for (const char* const text :
       {"99999999999999999999, nan, inf, -inf, 1e999, -1e-999\n", "-2147483649 1 2 3 4 5\n",
        "1.5 2 3 4 5 6\n", "1.5,2,3,4,5,6\n", "0x10 1 2 3 4 5\n", "1 0x10 2 3 4 5\n", "1 , 2, 3, 4, 5, 6\n",
        "1,2 ,3,4,5,6\n", "id,r,c,r,c,s\n1,2,3,4,5,6\n", "1 2 3 4 5 6\n1,2,3,4,5,6\n",
        "1,2,3,4,5,6\n1 2 3 4 5 6\n", "1 2 3 4 5 x\n", "\n1 2 3 4 5 6\n", "1;2;3;4;5;6\n", ",1,2,3,4,5\n",
        "1,,2,3,4,5\n", "+1 +2 -3 4. .5 5e0"}) {
    ExpectAsScanf(text);
  }
}

TEST_F(PairFiles, RandomTextsAreReadAsByScanf) {
  const std::vector<std::string> fields = {"1",   "2.5",  "-3",  "12", "7.25", "0",
                                           "1e2", "nan",  "inf", "ab", "-",    "4.x",
                                           "5..", "0x1p", "1e",  "+6", "",     "88888888888"};
  std::mt19937 random(7);
  const auto pick = [&random](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  int nPairs = 0;
  for (int n = 0; n < 3000; ++n) {
    const std::vector<std::string> separators = {n % 2 ? "," : " ", n % 2 ? ", " : "\t"};
    std::string text;
    const std::size_t nLines = pick(6);
    for (std::size_t line = 0; line < nLines; ++line) {
      const std::size_t nFields = pick(8) ? 5 + pick(2) : pick(9);
      for (std::size_t i = 0; i < nFields; ++i) {
        if (i > 0) text += pick(30) ? separators[pick(2)] : " , ";
        text += fields[pick(pick(5) ? 7 : fields.size())];
      }
      text += std::vector<std::string>{"\n", "\r\n", " \n", line + 1 < nLines ? "\n" : ""}[pick(4)];
    }
    ExpectAsScanf(text);
    nPairs += left.nPoints;
    if (HasFailure()) return;
  }
  EXPECT_GT(nPairs, 1000);
}

class PairWriting : public testing::Test {
 protected:
  static std::vector<MatchPair> Pairs(int n) {
    std::vector<MatchPair> pairs;
    for (int i = 0; i < n; ++i) pairs.push_back({i, {i + 0.5, 10.0 + i}, {20.0 + i, 30.0 + i}, 0.25 * i});
    return pairs;
  }

  // The ids that are written.
  std::string Written(std::int64_t start, std::int64_t step) {
    EXPECT_EQ(StereoPair::WritePairs("out.txt", Pairs(7), start, step), 1);
    std::vector<MatchPair> pairs;
    EXPECT_EQ(StereoPair::ReadPairs("out.txt", pairs), 1);
    std::string ids;
    for (const MatchPair& pair : pairs) ids += std::to_string(pair.id);
    return ids;
  }

  TempFolder folder;
  TestFrontEnd ui;
};

TEST_F(PairWriting, LinesAreIdRowColumnRowColumnScore) {
  const std::vector<MatchPair> pairs = {{0, {20.25, 10.5}, {-40, 30}, 0.123456789},
                                        {-7, {kNaN, kInfinity}, {}, -1.0}};
  EXPECT_EQ(StereoPair::WritePairs("out.txt", pairs, 0, 1), 1);
  EXPECT_EQ(ReadFileBytes("out.txt"),
            "0, 10.500000, 20.250000, 30.000000, -40.000000, 0.123457\n"
            "-7, inf, nan, 0.000000, 0.000000, -1.000000\n");
}

TEST_F(PairWriting, NumbersThatAreNoneHaveNoSign) {
  const double negative = std::copysign(kNaN, -1.0);
  const std::vector<MatchPair> pairs = {{3, {negative, kNaN}, {kNaN, negative}, negative}};
  EXPECT_EQ(StereoPair::WritePairs("out.txt", pairs, 0, 1), 1);
  EXPECT_EQ(ReadFileBytes("out.txt"), "3, nan, nan, nan, nan, nan\n");
  StereoPair pair;
  pair.GetGroundPoints().AddPoint({0, negative, kNaN, negative, 0.5});
  EXPECT_EQ(pair.WriteGroundLog("out.log"), 1);
  EXPECT_EQ(ReadFileBytes("out.log"), "nan nan nan 0.5\n");
}

TEST_F(PairWriting, EveryStepthFromTheStart) {
  EXPECT_EQ(Written(0, 1), "0123456");
  EXPECT_EQ(Written(1, 2), "135");
  EXPECT_EQ(Written(0, 3), "036");
  EXPECT_EQ(Written(6, 1), "6");
  EXPECT_EQ(Written(7, 1), "");
  EXPECT_EQ(Written(3, INT64_MAX), "3");
  EXPECT_EQ(Written(INT64_MAX, INT64_MAX), "");
}

TEST_F(PairWriting, AStartBelowZeroCountsFromZero) {
  EXPECT_EQ(Written(-5, 2), "0246");
  EXPECT_EQ(Written(INT64_MIN, 1), "0123456");
}

TEST_F(PairWriting, AStepBelowOneEndsAfterTheFirst) {
  EXPECT_EQ(Written(2, 0), "2");
  EXPECT_EQ(Written(0, -1), "0");
  EXPECT_EQ(Written(5, INT64_MIN), "5");
}

TEST_F(PairWriting, NoPairsAnEmptyFile) {
  WriteFileBytes("out.txt", "old");
  EXPECT_EQ(StereoPair::WritePairs("out.txt", {}, 0, 1), 1);
  EXPECT_EQ(ReadFileBytes("out.txt"), "");
  EXPECT_TRUE(std::filesystem::exists("out.txt"));
}

TEST_F(PairWriting, AFileThatCanNotBeWritten) {
  EXPECT_EQ(StereoPair::WritePairs("none/out.txt", Pairs(1), 0, 1), -1);
  EXPECT_THAT(ui.EventsWith("message"), IsEmpty());
  EXPECT_EQ(StereoPair::StorePairs("none/out.txt", Pairs(1)), -1);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Write file none/out.txt error!"));
  EXPECT_EQ(StereoPair::StorePairs("out.txt", Pairs(1)), 1);
}

TEST_F(PairWriting, AFullDiskLeavesTheOldFile) {
  WriteFileBytes("out.txt", "old");
  const FileSizeLimit limit(100);
  EXPECT_EQ(StereoPair::WritePairs("out.txt", Pairs(10), 0, 1), -1);
  EXPECT_EQ(ReadFileBytes("out.txt"), "old");
}

class GroundFiles : public testing::Test {
 protected:
  void Add(double x, double y, double z, double value) {
    TINPoints& points = pair.GetGroundPoints();
    EXPECT_EQ(points.AddPoint({points.nPoints, x, y, z, value}), 1);
  }

  TempFolder folder;
  TestFrontEnd ui;
  StereoPair pair;
};

TEST_F(GroundFiles, TheLogHasFifteenDigits) {
  const double numbers[2][4] = {{666964.123456789012, 1.0 / 3.0, 1e-20, -1.0},
                                {1e15, 123456789012345678.0, 0.1, 0}};
  std::string expected;
  for (const auto& row : numbers) {
    Add(row[0], row[1], row[2], row[3]);
    char line[200];
    std::snprintf(line, sizeof line, "%.15g %.15g %.15g %.15g\n", row[0], row[1], row[2], row[3]);
    expected += line;
  }
  EXPECT_EQ(pair.WriteGroundLog(), 1);
  EXPECT_EQ(ReadFileBytes("GroundPts.log"), expected);
  EXPECT_EQ(expected.substr(0, 40), "666964.123456789 0.333333333333333 1e-20");
}

TEST_F(GroundFiles, NumbersThatAreNotFiniteAreWords) {
  Add(kInfinity, -kInfinity, kNaN, 0.5);
  EXPECT_EQ(pair.WriteGroundLog("other.log"), 1);
  EXPECT_EQ(ReadFileBytes("other.log"), "inf -inf nan 0.5\n");
  EXPECT_FALSE(std::filesystem::exists("GroundPts.log"));
}

TEST_F(GroundFiles, TheLogTakesEveryStepthPoint) {
  for (int i = 0; i < 5; ++i) Add(i, 0, 0, 0);
  EXPECT_EQ(pair.WriteGroundLog("a.log", 2), 1);
  EXPECT_EQ(ReadFileBytes("a.log"), "0 0 0 0\n2 0 0 0\n4 0 0 0\n");
  EXPECT_EQ(pair.WriteGroundLog("a.log", 0), 1);
  EXPECT_EQ(ReadFileBytes("a.log"), "0 0 0 0\n");
}

TEST_F(GroundFiles, WithoutPointsTheLogIsEmptyAndThereIsNoPointsFile) {
  WriteFileBytes("GroundPts.log", "of before");
  EXPECT_EQ(pair.WriteGroundLog(), 1);
  EXPECT_EQ(ReadFileBytes("GroundPts.log"), "");
  EXPECT_EQ(pair.SaveGroundPoints("a.pts"), 0);
  pair.GetGroundPoints();
  EXPECT_EQ(pair.WriteGroundLog(), 1);
  EXPECT_EQ(pair.SaveGroundPoints("a.pts"), 0);
  Add(1, 2, 3, 4);
  EXPECT_EQ(pair.SaveGroundPoints(""), 0);
  EXPECT_FALSE(std::filesystem::exists("a.pts"));
}

TEST_F(GroundFiles, PointsAreSortedByYThenX) {
  Add(5, 2, 30, 0.5);
  Add(1, 3, 10, 0.25);
  Add(4, 2, 20, 0.75);
  EXPECT_EQ(pair.SaveGroundPoints("a.pts"), 1);
  EXPECT_EQ(ReadFileBytes("a.pts"),
            PointsBytes(3, {1, 3, 5, 2, 1, 1}, {4, 2, 20, 0.75, 5, 2, 30, 0.5, 1, 3, 10, 0.25}));
  EXPECT_EQ(pair.groundPoints->GetPoint(0)->id, 2) << "ids go along";
  EXPECT_EQ(pair.groundPoints->minZ, 10);
  EXPECT_EQ(pair.groundPoints->maxZ, 30);
}

TEST_F(GroundFiles, PointsOfOnePlaceStayInTheirOrder) {
  // More of them than a sort would leave in order by chance, between two other places.
  for (int i = 0; i < 100; ++i) {
    Add(7, 7, 100 + i, i);
    Add(i % 2 == 0 ? 6 : 8, 7, i, i);
  }
  EXPECT_EQ(pair.SaveGroundPoints("a.pts"), 1);
  for (std::int32_t i = 0; i < 100; ++i) {
    const PointRecord& point = *pair.groundPoints->GetPoint(50 + i);
    EXPECT_EQ(point.x, 7);
    EXPECT_EQ(point.value, i);
  }
  for (std::int32_t i = 0; i < 50; ++i) {
    EXPECT_EQ(pair.groundPoints->GetPoint(i)->value, 2 * i);
    EXPECT_EQ(pair.groundPoints->GetPoint(150 + i)->value, 2 * i + 1);
  }
}

TEST_F(GroundFiles, NumbersThatAreNotFiniteComeLast) {
  Add(kNaN, kNaN, kNaN, 1);
  Add(1, kInfinity, 0, 2);
  Add(kNaN, 7, 0, 3);
  Add(3, 7, 0, 4);
  EXPECT_EQ(pair.SaveGroundPoints("a.pts"), 1);
  std::vector<double> values;
  for (std::int32_t i = 0; i < 4; ++i) values.push_back(pair.groundPoints->GetPoint(i)->value);
  EXPECT_THAT(values, ElementsAre(4, 3, 2, 1));
  EXPECT_EQ(pair.groundPoints->minX, 1);
  EXPECT_EQ(pair.groundPoints->minY, 7);
  EXPECT_EQ(pair.groundPoints->maxX, 3);
  EXPECT_EQ(pair.groundPoints->maxY, kInfinity);
}

TEST_F(GroundFiles, FilesThatCanNotBeWritten) {
  Add(1, 2, 3, 4);
  EXPECT_EQ(pair.WriteGroundLog("none/a.log"), -1);
  EXPECT_EQ(pair.SaveGroundPoints("none/a.pts"), -1);
  EXPECT_THAT(ui.EventsWith("message"), ElementsAre("message warning: Write file none/a.log error!",
                                                    "message warning: Write file none/a.pts error!"));
}

TEST_F(GroundFiles, NamesBesideTheLeftImage) {
  pair.leftImagePath = "a.b/left.x.lan";
  EXPECT_EQ(pair.GetLeftName("_MatchPair.txt"), "a.b/left.x_MatchPair.txt");
}

TEST_F(GroundFiles, AnInputAmongTheResultsIsFound) {
  for (const char* const name : {"l.lan", "r.lan", "l.orn", "r.ORN", "d.lan", "new.pts"})
    WriteFileBytes(name, "x");
  pair.SetImagePaths("l.lan", "./r.lan");
  pair.demPath = "d.lan";
  EXPECT_EQ(pair.FindInputAmong({"new.pts", "none.pts", ""}), "");
  EXPECT_EQ(pair.FindInputAmong({}), "");
  for (const char* const name : {"l.lan", "r.lan", "l.orn", "r.ORN", "d.lan"}) {
    EXPECT_EQ(pair.FindInputAmong({"new.pts", name, "l.lan"}), name);
  }
  std::filesystem::create_symlink("r.lan", "link.pts");
  EXPECT_EQ(pair.FindInputAmong({"link.pts"}), "link.pts");
}

}  // namespace
}  // namespace corvane
