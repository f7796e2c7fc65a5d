#pragma once

#include <cstddef>
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

// What lies over a picture.
struct OverlayCounts {
  std::size_t points = 0;
  std::size_t polylines = 0;
  std::size_t labels = 0;
};

// What the Edit menu does in a window.
enum class EditItem { Copy, Paste };

// What the View menu of a bitmap window does.
enum class ZoomItem { In, Out, OneToOne, OneToFive };

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

  // Pixels of the screen for one of the picture; 0 for a view that has no zoom of its own. The wheel then
  // zooms, and dragging moves the picture.
  virtual double GetZoom() const { return 0.0; }

  // Zooms by whole steps, in for positive ones. What lies under `anchor`, a place in the client area, stays
  // there as far as the picture reaches.
  virtual void OnZoomSteps(int /*steps*/, PixelPoint /*anchor*/) {}

  // The pointer is over this place of the content.
  virtual void OnMouseMove(PixelPoint /*place*/) {}

  // The items of the menu bar that belong to the view.
  virtual bool IsEnabled(EditItem /*item*/) const { return false; }
  virtual void OnEditItem(EditItem /*item*/) {}
  virtual void OnZoomItem(ZoomItem /*item*/) {}
};

}  // namespace corvane
