#include "io/RecordReader.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/TempFolder.h"

namespace corvane {
namespace {

struct Step {
  bool match = false;
  double value = 0.0;
  std::int64_t position = 0;
  bool atEnd = false;

  friend bool operator==(const Step&, const Step&) = default;
};

Step ScanStep(TextScanner& scanner) {
  Step step;
  step.match = scanner.ScanDouble(step.value);
  return step;
}

std::vector<Step> StepsThroughWindow(const std::string& path, std::size_t windowSize, int nSteps) {
  InputFile file(path);
  RecordReader reader(file, windowSize);
  std::vector<Step> steps;
  for (int i = 0; i < nSteps; ++i) {
    Step step = reader.Next(ScanStep);
    step.position = reader.GetPosition();
    step.atEnd = reader.AtEnd();
    steps.push_back(step);
  }
  return steps;
}

TEST(RecordReader, AnyWindowGivesTheStepsOfTheWholeText) {
  TempFolder folder;
  for (const std::string text :
       {"1.25 -3e5\n\n  17\n+x inf 0x1.8p1 infix 2", "", "   ", "12345678901234567890", "7 ", "in"}) {
    WriteFileBytes("a", text);
    const auto expected = StepsThroughWindow("a", 1000, 12);
    for (std::size_t windowSize = 1; windowSize < 40; ++windowSize) {
      EXPECT_EQ(StepsThroughWindow("a", windowSize, 12), expected) << text << ", window " << windowSize;
    }
  }
}

TEST(RecordReader, CountsLinesFromOne) {
  TempFolder folder;
  WriteFileBytes("a", "1\n2\n\n3\nx");
  InputFile file("a");
  RecordReader reader(file, 2);
  EXPECT_EQ(reader.GetLine(), 1);
  EXPECT_EQ(reader.Next(ScanStep).value, 1.0);
  EXPECT_EQ(reader.GetLine(), 1);
  EXPECT_EQ(reader.Next(ScanStep).value, 2.0);
  EXPECT_EQ(reader.GetLine(), 2);
  EXPECT_EQ(reader.Next(ScanStep).value, 3.0);
  EXPECT_EQ(reader.GetLine(), 4);
  EXPECT_FALSE(reader.Next(ScanStep).match);
  EXPECT_EQ(reader.GetLine(), 5);
  EXPECT_FALSE(reader.AtEnd());
}

TEST(RecordReader, TextHoldsAWindow) {
  TempFolder folder;
  WriteFileBytes("a", "abcdef");
  InputFile file("a");
  EXPECT_EQ(RecordReader(file, 4).GetText(), "abcd");
}

TEST(RecordReader, WhiteSpaceLongerThanTheWindowDoesNotWidenIt) {
  TempFolder folder;
  WriteFileBytes("a", std::string(1000, ' ') + "1" + std::string(1000, '\n') + "2 3");
  InputFile file("a");
  RecordReader reader(file, 8);
  for (const double expected : {1.0, 2.0}) {
    EXPECT_EQ(reader.Next(ScanStep).value, expected);
    EXPECT_LE(reader.GetText().size(), 8u);
  }
  EXPECT_EQ(reader.GetLine(), 1001);
  EXPECT_EQ(reader.GetPosition(), 2002);
  EXPECT_EQ(reader.Next(ScanStep).value, 3.0);
  EXPECT_TRUE(reader.AtEnd());
  EXPECT_FALSE(reader.HasFailed());
}

TEST(RecordReader, AFailedReadIsNotTheEnd) {
  InputFile file("/proc/self/mem");  // opens, but nothing stands at its start
  if (!file.IsOpen()) GTEST_SKIP() << "no such file on this system";
  RecordReader reader(file, 100);
  EXPECT_FALSE(reader.Next(ScanStep).match);
  EXPECT_TRUE(reader.HasFailed());
}

// The status that a process ends with which has `spareBytes` of memory left for a record of 64 MB.
[[noreturn]] void ScanLongRecord(std::size_t spareBytes) {
  InputFile file("a");
  RecordReader reader(file);
  std::ifstream statm("/proc/self/statm");
  std::size_t nPages = 0;
  statm >> nPages;
  const rlim_t limit = nPages * static_cast<std::size_t>(getpagesize()) + spareBytes;
  const rlimit limits = {limit, limit};
  setrlimit(RLIMIT_AS, &limits);
  const bool match = reader.Next(ScanStep).match;
  _exit(reader.HasFailed() ? 2 : match ? 1 : 0);
}

TEST(RecordReader, ARecordBeyondTheMemoryFails) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer ends the process without memory";
#endif
  TempFolder folder;
  WriteFileBytes("a", std::string(std::size_t{64} << 20, '1') + " 2\n");
  EXPECT_EXIT(ScanLongRecord(std::size_t{40} << 20), testing::ExitedWithCode(2), "");
  EXPECT_EXIT(ScanLongRecord(std::size_t{1} << 30), testing::ExitedWithCode(1), "");
}

TEST(RecordReader, PeekLeavesTheRecordToCome) {
  const TempFolder folder;
  WriteFileBytes("a.txt", "1 \n  word 2 last");
  const auto scanWord = [](TextScanner& scanner) {
    std::string word;
    scanner.ScanWord(word);
    return word;
  };
  for (const std::size_t windowSize : {1, 3, 100}) {
    InputFile file("a.txt");
    RecordReader reader(file, windowSize);
    EXPECT_EQ(reader.Peek(scanWord), "1");
    EXPECT_EQ(reader.Next(ScanStep).value, 1.0);
    EXPECT_EQ(reader.Peek(scanWord), "word");
    EXPECT_EQ(reader.GetPosition(), 5);
    EXPECT_EQ(reader.Next(scanWord), "word");
    EXPECT_EQ(reader.Next(scanWord), "2");
    EXPECT_EQ(reader.Peek(scanWord), "last");
    EXPECT_FALSE(reader.AtEnd());
    EXPECT_EQ(reader.Next(scanWord), "last");
    EXPECT_TRUE(reader.AtEnd());
    EXPECT_EQ(reader.Peek(scanWord), "");
  }
}

}  // namespace
}  // namespace corvane
