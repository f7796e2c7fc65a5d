#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
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

  CCorvaneView& View() { return *app.GetMainFrame().GetTinView(); }
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

  // The pixels that are shown, by their place in the visible part; and the labels.
  struct Label {
    Colour colour;
    PixelPoint place;
    std::string text;
  };
  std::map<std::pair<std::int64_t, std::int64_t>, std::uint32_t> pixels;
  std::vector<Label> labels;
  std::vector<std::string> order;  // "pixels", "segments", "label" as they were drawn

  PixelRect GetVisible() const override { return visible_; }
  void SetPen(Colour colour, int) override { colour_ = colour; }
  void DrawSegments(std::span<const PixelSegment> segments) override {
    order.push_back("segments");
    for (const PixelSegment& segment : segments) edges.push_back({colour_, segment});
  }
  void DrawPixels(const PixelRect& place, std::span<const std::uint32_t> drawn) override {
    order.push_back("pixels");
    std::size_t i = 0;
    for (std::int64_t y = place.top; y < place.bottom; ++y) {
      for (std::int64_t x = place.left; x < place.right; ++x) pixels[{x, y}] = drawn[i++];
    }
  }
  void DrawLabel(PixelPoint place, const std::string& text) override {
    order.push_back("label");
    labels.push_back({colour_, place, text});
  }

 private:
  PixelRect visible_;
  Colour colour_;
};

}  // namespace corvane
