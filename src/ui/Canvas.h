#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace corvane {

struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;

  friend bool operator==(const Colour&, const Colour&) = default;
};

// Positions on a canvas are whole pixels of the view's content: x to the right and y down from the content's
// top left corner, whatever part of it a window shows.
struct PixelPoint {
  std::int64_t x = 0;
  std::int64_t y = 0;

  friend bool operator==(const PixelPoint&, const PixelPoint&) = default;
};

struct PixelSegment {
  PixelPoint from;
  PixelPoint to;

  friend bool operator==(const PixelSegment&, const PixelSegment&) = default;
};

// Left and top belong to the rectangle, right and bottom do not.
struct PixelRect {
  std::int64_t left = 0;
  std::int64_t top = 0;
  std::int64_t right = 0;
  std::int64_t bottom = 0;

  friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

// What a view draws on: a window on screen, or a picture.
class Canvas {
 public:
  virtual ~Canvas() = default;

  // The part of the content that needs painting; what is drawn outside of it does not show.
  virtual PixelRect GetVisible() const = 0;

  // Solid lines of this colour and width from now on.
  virtual void SetPen(Colour colour, int width) = 0;

  virtual void DrawSegments(std::span<const PixelSegment> segments) = 0;

  // Fills `place` with pixels 0x00rrggbb, row by row from the top: as many as it has.
  virtual void DrawPixels(const PixelRect& place, std::span<const std::uint32_t> pixels) = 0;

  // A line of text to the right of the place and above it, in the pen's colour on a light ground, in the size
  // of the desktop's own text.
  virtual void DrawLabel(PixelPoint place, const std::string& text) = 0;
};

}  // namespace corvane
