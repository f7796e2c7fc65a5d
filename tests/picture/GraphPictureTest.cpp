#include <gtest/gtest.h>

#include <QImage>

#include "picture/Picture.h"
#include "support/GraphData.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

TEST(GraphPicture, HoldsAllCurvesInTheSizeOfTheGraph) {
  const TempFolder folder;
  OffscreenGui gui;
  gui.Start();
  const GraphData graph({{{{0, 0}, {10, 10}}, kRed, 3}, {{{10, 0}, {0, 10}}, kBlue, 3}});
  ASSERT_TRUE(SavePicture(graph, "graph.png"));
  const QImage image("graph.png");
  EXPECT_EQ(image.size(), QSize(400, 300));
  int red = 0;
  int blue = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      red += image.pixel(x, y) == qRgb(255, 0, 0);
      blue += image.pixel(x, y) == qRgb(0, 0, 255);
    }
  }
  EXPECT_GT(red, 300);
  EXPECT_GT(blue, 300);
}

TEST(GraphPicture, FailuresLeaveNoFile) {
  const TempFolder folder;
  OffscreenGui gui;
  gui.Start();
  GraphData graph;
  EXPECT_FALSE(SavePicture(graph, "missing/graph.png"));
  graph.size = {0, 300};
  EXPECT_FALSE(SavePicture(graph, "graph.png"));
  EXPECT_EQ(ReadFileBytes("graph.png"), "");
  EXPECT_FALSE(WritePng(QImage(), "graph.png"));
}

}  // namespace
}  // namespace corvane
