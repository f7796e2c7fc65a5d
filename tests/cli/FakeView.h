#pragma once

#include <string>
#include <vector>

#include "ui/WindowView.h"

namespace corvane {

// A window with a picture of given size and segments.
class FakeView : public WindowView {
 public:
  explicit FakeView(std::string title) : title(std::move(title)) {}

  WindowKind GetKind() const override { return kind; }
  std::string GetTitle() const override { return title; }
  bool HasPicture() const override { return hasPicture; }
  PixelSize GetScrollSize() const override { return size; }
  PixelPoint GetScrollPosition() const override { return {}; }
  void SetScrollPosition(PixelPoint) override {}
  void OnDraw(Canvas& canvas) override { DrawPicture(canvas); }
  PixelSize GetPictureSize() const override { return size; }
  void DrawPicture(Canvas& canvas) override {
    canvas.SetPen({255, 0, 0}, 1);
    canvas.DrawSegments(segments);
  }
  bool OnKeyDown(int, int) override { return false; }
  bool OnMouseWheel(int) override { return false; }
  void OnSize(PixelSize) override {}

  std::string title;
  WindowKind kind = WindowKind::Bitmap;
  bool hasPicture = true;
  PixelSize size{40, 30};
  std::vector<PixelSegment> segments;
};

}  // namespace corvane
