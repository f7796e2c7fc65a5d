#include "plot/GraphCsv.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "support/GraphData.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

TEST(GraphCsv, OneRowAPointInTheShortestDigits) {
  const TempFolder folder;
  const GraphData graph({{{{636001.8, 0.1}, {1e300, -3}}, kRed}, {{}, kBlue}, {{{1.0 / 3, NAN}}, kBlue}});
  EXPECT_TRUE(WriteGraphCsv(graph.elements, "graph.csv"));
  EXPECT_EQ(ReadFileBytes("graph.csv"),
            "element,x,y\n0,636001.8,0.1\n0,1e+300,-3\n2,0.3333333333333333,nan\n");
}

TEST(GraphCsv, EmptyGraphIsTheHeading) {
  const TempFolder folder;
  EXPECT_TRUE(WriteGraphCsv({}, "graph.csv"));
  EXPECT_EQ(ReadFileBytes("graph.csv"), "element,x,y\n");
}

TEST(GraphCsv, FailureLeavesNothing) {
  const TempFolder folder;
  EXPECT_FALSE(WriteGraphCsv({}, "missing/graph.csv"));
  EXPECT_TRUE(std::filesystem::is_empty(folder.GetPath()));
}

}  // namespace
}  // namespace corvane
