#include "io/RecordReader.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace corvane
