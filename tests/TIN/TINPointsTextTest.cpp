#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <random>

#include "TIN/TINPoints.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "support/SharedData.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"

namespace corvane {
namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

struct Bounds {
  double min = 0.0;
  double max = 0.0;

  void Follow(double value) {
    if (value > max) {
      max = value;
    } else if (value < min) {
      min = value;
    }
  }
};

// The points file of the records `text` (x, y, z, value), with the header's extents in their order.
std::string PointsBytes(const Bounds& x, const Bounds& y, double spacing, const std::string& records) {
  const auto count = static_cast<std::int32_t>(records.size() / 32);
  std::string bytes(reinterpret_cast<const char*>(&count), sizeof count);
  for (const double number : {x.min, y.max, x.max, y.min, spacing, spacing}) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
  }
  return bytes + records;
}

void AppendRecord(std::string& records, const double (&record)[4]) {
  records.append(reinterpret_cast<const char*>(record), sizeof record);
}

// The format string for an x, y, z text, by its first line.
std::string FormatOf(std::FILE* file) {
  char line[256] = "";
  char copy[256] = "";
  if (!std::fgets(line, sizeof line, file)) line[0] = '\0';
  if (char* lineEnd = std::strstr(line, "\r\n")) std::strcpy(lineEnd, "\n");
  std::strcpy(copy, line);
  int nFields = 0;
  for (char* field = std::strtok(copy, " ,\t\n"); field; field = std::strtok(nullptr, " ,\t\n")) ++nFields;
  double a = 0.0;
  double b = 0.0;
  std::string separator = ",%lf";
  if (nFields > 1 && std::sscanf(line, "%lf, %lf", &a, &b) != 2) separator = " %lf";
  std::string format = "%lf";
  for (int i = 0; i < (nFields < 4 ? 2 : 3); ++i) format += separator;
  return format;
}

// What a plain loop of fscanf makes of a text; it ends where it would turn in place.
std::string ReferenceXyz(const std::string& path, double spacing) {
  const File file(std::fopen(path.c_str(), "rt"));
  const std::string format = FormatOf(file.get());
  std::rewind(file.get());
  Bounds x, y;
  std::string records;
  double record[4] = {0.0, 0.0, 0.0, 1.0};
  long last = -1;
  while (!std::feof(file.get()) && std::ftell(file.get()) != last) {
    last = std::ftell(file.get());
    const int n = std::fscanf(file.get(), format.c_str(), record, record + 1, record + 2, record + 3);
    if (n < 3) continue;
    if (records.empty()) {
      x = {record[0], record[0]};
      y = {record[1], record[1]};
    }
    x.Follow(record[0]);
    y.Follow(record[1]);
    AppendRecord(records, record);
  }
  return PointsBytes(x, y, spacing, records);
}

std::string ReferenceId(const std::string& path, double spacing) {
  const File file(std::fopen(path.c_str(), "rt"));
  Bounds x = {1.7e+308, -1.7e+308};
  Bounds y = x;
  std::string records;
  double record[4] = {0.0, 0.0, 0.0, 1.0};
  int id = 0;
  while (!std::feof(file.get())) {
    const int n = std::fscanf(file.get(), "%d, \t%lf, \t%lf, \t%lf, \t%lf\n", &id, record, record + 1,
                              record + 2, record + 3);
    if (n < 1) break;
    if (n <= 3) continue;
    x.Follow(record[0]);
    y.Follow(record[1]);
    AppendRecord(records, record);
  }
  return PointsBytes(x, y, spacing, records);
}

void ExpectBothAsReference(const std::string& text) {
  WriteFileBytes("a.txt", text);
  ASSERT_EQ(TINPoints::TextToBinary("a.txt", "a.pts", 2.5), 0);
  ASSERT_EQ(ReadFileBytes("a.pts"), ReferenceXyz("a.txt", 2.5)) << text;
  ASSERT_EQ(TINPoints::TextIdToBinary("a.txt", "a.pts", 2.5), 0);
  ASSERT_EQ(ReadFileBytes("a.pts"), ReferenceId("a.txt", 2.5)) << text;
}

// The points that TextToBinary makes of a text.
std::vector<PointRecord> Converted(const std::string& text) {
  WriteFileBytes("a.txt", text);
  EXPECT_EQ(TINPoints::TextToBinary("a.txt", "a.pts", 1.0), 0);
  TINPoints points;
  EXPECT_EQ(points.Read("a.pts"), ReadFileBytes("a.pts").size() > 52 ? 1 : -1);
  return points.points;
}

using Points = std::vector<PointRecord>;
using Converter = int (*)(const std::string& txtPath, const std::string& binPath, double spacing);

TEST(TextToBinary, CommasBlanksAndTabs) {
  TempFolder folder;
  const Points expected = {{0, 1, 2, 3, 1}, {1, 4, 5, 6, 1}};
  EXPECT_EQ(Converted("1,2,3\n4,5,6\n"), expected);
  EXPECT_EQ(Converted("1, 2, 3\n4, 5, 6"), expected);
  EXPECT_EQ(Converted("1 2 3\n4 5 6\n"), expected);
  EXPECT_EQ(Converted("1\t2\t3\r\n4\t5\t6\r\n"), expected);
  EXPECT_EQ(Converted("1 2 3 \r\n4 5 6 \r\n"), expected);  // the "\r" is no fourth field
}

TEST(TextToBinary, AValueIsReadWhereTheFirstLineHasOne) {
  TempFolder folder;
  EXPECT_EQ(Converted("1,2,3,9\n4,5,6,8\n"), (Points{{0, 1, 2, 3, 9}, {1, 4, 5, 6, 8}}));
  EXPECT_EQ(Converted("1 2 3 9\n4 5 6 8\n"), (Points{{0, 1, 2, 3, 9}, {1, 4, 5, 6, 8}}));
}

TEST(TextToBinary, AMissingValueIsTheLastOneRead) {
  TempFolder folder;
  EXPECT_EQ(Converted("1,2,3,9\n4,5,6\n7,8,9\n"),
            (Points{{0, 1, 2, 3, 9}, {1, 4, 5, 6, 9}, {2, 7, 8, 9, 9}}));
}

TEST(TextToBinary, RecordsRunOverLineEnds) {
  TempFolder folder;
  EXPECT_EQ(Converted("1 2 3 9\n4 5 6\n7 8 9\n"), (Points{{0, 1, 2, 3, 9}, {1, 4, 5, 6, 7}}));
}

TEST(TextToBinary, ATwoFieldFirstLineStillScansThreeFieldsARecord) {
  TempFolder folder;
  EXPECT_EQ(Converted("1 2\n3 4 5 6\n"), (Points{{0, 1, 2, 3, 1}, {1, 4, 5, 6, 1}}));
  EXPECT_EQ(Converted("1,2\n3,4,5\n"), (Points{{0, 3, 4, 5, 1}}));
}

TEST(TextToBinary, HeaderHoldsExtentsAndSpacing) {
  TempFolder folder;
  WriteFileBytes("a.txt", "5,1,3\n4,9,6\n6,2,0\n");
  EXPECT_EQ(TINPoints::TextToBinary("a.txt", "a.pts", 0.5), 0);
  TINPoints points;
  EXPECT_EQ(points.Read("a.pts"), 1);
  Extent6 extent;
  points.GetExtent(extent);
  EXPECT_EQ(extent, (Extent6{4, 6, 1, 9, 0, 6}));
  EXPECT_EQ(points.spacingX, 0.5);
  EXPECT_EQ(points.spacingY, 0.5);
}

TEST(TextToBinary, ATextWithoutRecordsGivesAHeaderOfZeros) {
  TempFolder folder;
  for (const char* text : {"", "\n\n", "no points\n", "1,2\n"}) {
    WriteFileBytes("a.txt", text);
    EXPECT_EQ(TINPoints::TextToBinary("a.txt", "a.pts", 1.0), 0);
    EXPECT_EQ(ReadFileBytes("a.pts"), PointsBytes({}, {}, 1.0, "")) << text;
  }
}

TEST(TextToBinary, StopsWhereTheScanMakesNoWayAndKeepsWhatWasRead) {
  TempFolder folder;
  EXPECT_EQ(Converted("1,2,3\n4,5,6\nend\n7,8,9\n"), (Points{{0, 1, 2, 3, 1}, {1, 4, 5, 6, 1}}));
  EXPECT_EQ(Converted("1,2,3,4,5\n6,7,8,9,10\n"), (Points{{0, 1, 2, 3, 4}}));
  EXPECT_EQ(Converted("1 ,2 ,3\n"), Points());
}

TEST(TextToBinary, TellsWhereItStoppedAndHowManyPointsThereAre) {
  TempFolder folder;
  TestFrontEnd frontEnd;
  Converted("1,2,3\n4,5,6\nend\n");
  EXPECT_EQ(frontEnd.events, (std::vector<std::string>{
                                 "print: x, y, z\n",
                                 "status 0: Points written: 2. Stopped at line 3 of a.txt: not a number."}));
  frontEnd.events.clear();
  Converted("1,2,3");
  EXPECT_EQ(frontEnd.events, (std::vector<std::string>{"print: x, y, z\n", "status 0: Points written: 1."}));
}

// What the status bar shows of the conversion of a text.
std::string Reported(const std::string& text, Converter convert = TINPoints::TextToBinary) {
  TestFrontEnd frontEnd;
  WriteFileBytes("a.txt", text);
  EXPECT_EQ(convert("a.txt", "a.pts", 1.0), 0);
  const auto shown = frontEnd.EventsWith("status 0: ");
  return shown.size() == 1 ? shown[0].substr(10) : "not one text";
}

TEST(TextToBinary, TellsWhyThereAreNoPoints) {
  TempFolder folder;
  EXPECT_EQ(Reported(""), "Points written: 0.");
  EXPECT_EQ(Reported("X,Y,Z\n1,2,3\n"), "Points written: 0. Line 1 of a.txt is no point: X,Y,Z");
  EXPECT_EQ(Reported("\xEF\xBB\xBF"
                     "1,2,3\n"),
            "Points written: 0. Line 1 of a.txt is no point: ???1,2,3");
  EXPECT_EQ(Reported("a\tb\x1b\r\n"), "Points written: 0. Line 1 of a.txt is no point: a?b?");
  EXPECT_EQ(Reported(std::string(100, 'y')),
            "Points written: 0. Line 1 of a.txt is no point: " + std::string(60, 'y') + "...");
  EXPECT_EQ(Reported("\n\nX,Y,Z\n"), "Points written: 0. Stopped at line 3 of a.txt: not a number.");
}

TEST(TextToBinary, TellsOfRecordsWithTooFewFields) {
  TempFolder folder;
  EXPECT_EQ(Reported("1,2\n1,2,3\n"), "Points written: 1. 1 record with too few fields was left out.");
  EXPECT_EQ(Reported("1,2,3\n1,2\n1\n1,2,3\n1,2"),
            "Points written: 2. 3 records with too few fields were left out.");
  // What is no number cuts its record short: told once.
  EXPECT_EQ(Reported("1,2,3\n4,5,end\n"), "Points written: 1. Stopped at line 2 of a.txt: not a number.");
}

TEST(TextToBinary, AsksAboutFieldsThatAreNotRead) {
  TempFolder folder;
  EXPECT_EQ(Reported("1 2 3 4 5\n6 7 8 9 10\n"),
            "Points written: 2. 1 record with too few fields was left out. "
            "Lines have 5 fields, of which 4 are read: are these points?");
  EXPECT_EQ(Reported("1,2,3,4,5\n"),
            "Points written: 1. Lines have 5 fields, of which 4 are read: are these points? "
            "Stopped at line 1 of a.txt: not a number.");
}

TEST(TextIdToBinary, TellsTheSame) {
  TempFolder folder;
  EXPECT_EQ(Reported("1,2,3,4,5\n2,3\n", TINPoints::TextIdToBinary),
            "Points written: 1. 1 record with too few fields was left out.");
  EXPECT_EQ(Reported("id,x,y,z\n1,2,3,4\n", TINPoints::TextIdToBinary),
            "Points written: 0. Line 1 of a.txt is no point: id,x,y,z");
  EXPECT_EQ(Reported("1,2,3,4,5,6\n", TINPoints::TextIdToBinary),
            "Points written: 1. Lines have 6 fields, of which 5 are read: are these points? "
            "Stopped at line 1 of a.txt: not a number.");
}

constexpr std::size_t kStep = 64000000;  // bytes between two texts of progress

TEST(TextToBinary, WhiteSpaceLongerThanTheWindowIsSkippedWithProgress) {
  TempFolder folder;
  WriteFileBytes("a.txt", "1,2,3,4,5\n" + std::string(kStep, '\n') + "6,7,8,9,10\n");
  for (const auto convert : {TINPoints::TextToBinary, TINPoints::TextIdToBinary}) {
    TestFrontEnd frontEnd;
    EXPECT_EQ(convert("a.txt", "a.pts", 1.0), 0);
    const auto shown = frontEnd.EventsWith("status");
    // The XYZ form stops at the fifth field.
    ASSERT_EQ(shown.size(), convert == TINPoints::TextToBinary ? 1u : 2u);
    if (shown.size() == 1) continue;
    EXPECT_EQ(shown[0], "status 0: Read 64 MB of a.txt");
    EXPECT_EQ(shown[1], "status 0: Points written: 2.");
  }
  WriteFileBytes("a.txt", "1,2,3\n" + std::string(kStep, ' ') + "4,5,6\n");
  TestFrontEnd frontEnd;
  EXPECT_EQ(TINPoints::TextToBinary("a.txt", "a.pts", 1.0), 0);
  EXPECT_EQ(frontEnd.EventsWith("status"),
            (std::vector<std::string>{"status 0: Read 64 MB of a.txt", "status 0: Points written: 2."}));
}

TEST(TextToBinary, StopsAtTheFirstFailedWrite) {
  TempFolder folder;
  if (!OutputFile("/dev/full").IsOpen()) GTEST_SKIP() << "no such device on this system";
  std::string text;
  while (text.size() < 1000000) text += "1,2,3\n";
  WriteFileBytes("a.txt", text + std::string(kStep, ' ') + "4,5,6\n");
  TestFrontEnd frontEnd;
  EXPECT_EQ(TINPoints::TextToBinary("a.txt", "/dev/full", 1.0), -1);
  EXPECT_TRUE(frontEnd.EventsWith("status").empty());  // it did not come to the first 64 MB
}

TEST(TextToBinary, AFailedReadLeavesTheOldFile) {
  if (!InputFile("/proc/self/mem").IsOpen()) GTEST_SKIP() << "no such file on this system";
  TempFolder folder;
  WriteFileBytes("a.pts", "old");
  TestFrontEnd frontEnd;
  for (const auto convert : {TINPoints::TextToBinary, TINPoints::TextIdToBinary}) {
    EXPECT_EQ(convert("/proc/self/mem", "a.pts", 1.0), -1);
  }
  EXPECT_EQ(ReadFileBytes("a.pts"), "old");
  EXPECT_TRUE(frontEnd.EventsWith("status").empty());
}

TEST(TextToBinary, FailuresWriteNothing) {
  TempFolder folder;
  WriteFileBytes("a.txt", "1,2,3\n");
  WriteFileBytes("a.pts", "old");
  for (const auto convert : {TINPoints::TextToBinary, TINPoints::TextIdToBinary}) {
    EXPECT_EQ(convert("", "a.pts", 1.0), -1);
    EXPECT_EQ(convert("a.txt", "", 1.0), -1);
    EXPECT_EQ(convert("none.txt", "a.pts", 1.0), -1);
    EXPECT_EQ(convert(".", "a.pts", 1.0), -1);
    EXPECT_EQ(convert("a.txt", "none/a.pts", 1.0), -1);
    EXPECT_EQ(convert("a.txt", ".", 1.0), -1);
  }
  EXPECT_EQ(ReadFileBytes("a.pts"), "old");
}

TEST(TextToBinary, MixedTextsConvertAsAPlainScanDoes) {
  TempFolder folder;
  for (const std::string& text :
       {std::string("1,2,3\n\n\n4,5,6\n"), std::string("1 2 3\n+4 -5 6e2\n.5 5. 0x10\n"),
        std::string("inf,nan,1\n2,3,4\n"), std::string("1,2,3,4,\n5,6,7,8\n"), std::string("x y z\n1 2 3\n"),
        std::string("1 2 3\0 4 5 6\n", 14), std::string(300, ' ') + "1 2 3\n",
        std::string("1,2,3\n-,4,5,6\n"), std::string("1;2;3\n"), std::string("1,2,3"),
        std::string("1, \t2, \t3, \t4\n2,3,4,5,6\n"), std::string("1,2,3,4,5\n2,3,4\n3,1,2,3\n"),
        std::string("1e,2,3\n4,5,6\n"), std::string("nnn 1 2 3\n"), std::string("1 2 3 \r\n4 5 6 \r\n")}) {
    ExpectBothAsReference(text);
  }
}

TEST(TextToBinary, RandomTextsConvertAsAPlainScanDoes) {
  TempFolder folder;
  std::mt19937 random(6);
  const std::string pieces[] = {"1",  "-2.5",    "3e2",     ",",   ", ", " ", "\n", "\n",
                                "\t", "7,8,9\n", "1 2 3\n", "inf", "x",  "-", "."};
  for (int round = 0; round < 500; ++round) {
    const bool comma = random() % 2 == 0;
    std::string text = comma ? "1,2,3,4\n" : "1 2 3\n";
    for (auto n = random() % 30; n > 0; --n) {
      // Mostly numbers and separators; now and then something odd.
      text += random() % 4 ? std::to_string(random() % 1000) + (random() % 4 ? (comma ? "," : " ") : "\n")
                           : pieces[random() % std::size(pieces)];
    }
    ExpectBothAsReference(text);
    if (HasFatalFailure()) return;
  }
}

TEST(TextToBinary, ATextOfManyWindowsConvertsAsAPlainScanDoes) {
  TempFolder folder;
  std::mt19937 random(7);
  std::string text;
  while (text.size() < 3500000) {
    char line[100];
    std::snprintf(line, sizeof line, "%.3f,%.3f,%.2f\n", random() / 1000.0, random() / 1000.0,
                  random() / 1e7);
    text += line;
  }
  WriteFileBytes("a.txt", text);
  EXPECT_EQ(TINPoints::TextToBinary("a.txt", "a.pts", 1.0), 0);
  EXPECT_TRUE(ReadFileBytes("a.pts") == ReferenceXyz("a.txt", 1.0));
}

TEST(TextIdToBinary, TheIdIsDropped) {
  TempFolder folder;
  WriteFileBytes("a.txt", "17, 5, 1, 3, 9\n18,\t4,\t9,\t6,\t8\n19, 3, 2, 1\n");
  EXPECT_EQ(TINPoints::TextIdToBinary("a.txt", "a.pts", 1.0), 0);
  TINPoints points;
  EXPECT_EQ(points.Read("a.pts"), 1);
  EXPECT_EQ(points.points, (Points{{0, 5, 1, 3, 9}, {1, 4, 9, 6, 8}, {2, 3, 2, 1, 8}}));
}

TEST(TextIdToBinary, StrictlyRisingCoordinatesLeaveTheMinimumAtItsStart) {
  TempFolder folder;
  WriteFileBytes("a.txt", "1, 5, 9, 3, 1\n2, 6, 8, 3, 1\n3, 7, 7, 3, 1\n");
  EXPECT_EQ(TINPoints::TextIdToBinary("a.txt", "a.pts", 1.0), 0);
  TINPoints points;
  EXPECT_EQ(points.Read("a.pts"), 1);
  EXPECT_EQ(points.minX, 1.7e+308);
  EXPECT_EQ(points.maxX, 7.0);
  EXPECT_EQ(points.minY, 7.0);
  EXPECT_EQ(points.maxY, 9.0);
}

TEST(TextIdToBinary, ATextWithoutRecordsKeepsTheStartValues) {
  TempFolder folder;
  WriteFileBytes("a.txt", "");
  EXPECT_EQ(TINPoints::TextIdToBinary("a.txt", "a.pts", 3.0), 0);
  const Bounds start = {1.7e+308, -1.7e+308};
  EXPECT_EQ(ReadFileBytes("a.pts"), PointsBytes(start, start, 3.0, ""));
}

TEST(TextIdToBinary, StopsAtARecordWithoutId) {
  TempFolder folder;
  TestFrontEnd frontEnd;
  WriteFileBytes("a.txt", "1, 5, 9, 3, 1\nend\n2, 6, 8, 3, 1\n");
  EXPECT_EQ(TINPoints::TextIdToBinary("a.txt", "a.pts", 1.0), 0);
  EXPECT_EQ(ReadFileBytes("a.pts").size(), 52u + 32u);
  EXPECT_EQ(
      frontEnd.EventsWith("status"),
      (std::vector<std::string>{"status 0: Points written: 1. Stopped at line 2 of a.txt: not a number."}));
}

TEST(TextToBinary, RealLaserPoints) {
  const std::string path = SharedData("lidar/autzen_trim.xyz");
  if (path.empty()) GTEST_SKIP() << "no real data here";
  TempFolder folder;
  EXPECT_EQ(TINPoints::TextToBinary(path, "a.pts", 1.0), 0);
  EXPECT_TRUE(ReadFileBytes("a.pts") == ReferenceXyz(path, 1.0));
  EXPECT_GT(ReadFileBytes("a.pts").size(), 52u + 32u * 1000u);
}

}  // namespace
}  // namespace corvane
