#pragma once

#include <cstdint>
#include <string>

#include "ui/Canvas.h"

namespace corvane {

enum class WindowKind { Tin, Bitmap, Graph, Log };

// The name of a kind in transcripts: "tin", "bitmap", "graph", "log".
const char* WindowKindName(WindowKind kind);

// Keys that a view may act on; letters and digits come as their upper-case character.
struct Key {
  static constexpr int kUp = 0x1001;
  static constexpr int kDown = 0x1002;
  static constexpr int kLeft = 0x1003;
  static constexpr int kRight = 0x1004;
};

struct PixelSize {
  std::int32_t width = 0;
  std::int32_t height = 0;

  friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

// The toolkit-free side of a document window. The front end shows its drawing, scrolls it, and passes keys,
// wheel and size changes on.
class WindowView {
 public:
  virtual ~WindowView() = default;

  virtual WindowKind GetKind() const = 0;
  virtual std::string GetTitle() const = 0;

  // Whether there is anything to see.
  virtual bool HasPicture() const = 0;

  // The extent of the scrollable content and the scroll position within it, in pixels.
  virtual PixelSize GetScrollSize() const = 0;
  virtual PixelPoint GetScrollPosition() const = 0;
  virtual void SetScrollPosition(PixelPoint position) = 0;

  virtual void OnDraw(Canvas& canvas) = 0;

  // The whole content, drawn at a scale that suits a picture file: its size, and the drawing.
  virtual PixelSize GetPictureSize() const = 0;
  virtual void DrawPicture(Canvas& canvas) = 0;

  // True if the view acts on the key, or the wheel, itself. `notches` is positive for a forward turn.
  virtual bool OnKeyDown(int key, int repeatCount) = 0;
  virtual bool OnMouseWheel(int notches) = 0;
  virtual void OnSize(PixelSize clientArea) = 0;
};

}  // namespace corvane
