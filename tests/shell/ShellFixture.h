#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "shell/CorvaneApp.h"
#include "shell/CorvaneView.h"
#include "support/TempFolder.h"
#include "support/TestFrontEnd.h"
#include "support/TinBytes.h"

namespace corvane {

// An application with no commands of its own, in an empty folder.
class ShellTest : public testing::Test {
 protected:
  void Start(const std::string& file = "") { ASSERT_TRUE(app.InitInstance(file)); }

  CCorvaneView& View() { return *app.GetMainFrame().GetActiveTinView(); }
  CCorvaneDoc& Document() { return View().GetDocument(); }

  TempFolder folder;
  TestFrontEnd ui;
  CCorvaneApp app{{}, ""};
};

// A canvas that keeps what is drawn.
class RecordingCanvas : public Canvas {
 public:
  explicit RecordingCanvas(PixelRect visible) : visible_(visible) {}

  struct Edge {
    Colour colour;
    PixelSegment segment;
  };
  std::vector<Edge> edges;

  PixelRect GetVisible() const override { return visible_; }
  void SetPen(Colour colour, int) override { colour_ = colour; }
  void DrawSegments(std::span<const PixelSegment> segments) override {
    for (const PixelSegment& segment : segments) edges.push_back({colour_, segment});
  }

 private:
  PixelRect visible_;
  Colour colour_;
};

}  // namespace corvane
