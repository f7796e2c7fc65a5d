#include "dib/DibPainter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <optional>

#include "DibFixture.h"

namespace corvane {
namespace {

// Keeps the one rectangle of pixels that is drawn.
class PixelCanvas : public Canvas {
 public:
  explicit PixelCanvas(PixelRect visible) : visible_(visible) {}

  PixelRect GetVisible() const override { return visible_; }
  void SetPen(Colour, int) override {}
  void DrawSegments(std::span<const PixelSegment>) override {}
  void DrawLabel(PixelPoint, const std::string&) override {}
  void DrawPixels(const PixelRect& drawn, std::span<const std::uint32_t> colours) override {
    ASSERT_FALSE(place);
    place = drawn;
    pixels.assign(colours.begin(), colours.end());
    ASSERT_EQ(static_cast<std::int64_t>(pixels.size()),
              (drawn.right - drawn.left) * (drawn.bottom - drawn.top));
  }

  std::uint32_t At(std::int64_t x, std::int64_t y) const {
    return pixels[static_cast<std::size_t>((y - place->top) * (place->right - place->left) + x -
                                           place->left)];
  }

  std::optional<PixelRect> place;
  std::vector<std::uint32_t> pixels;

 private:
  PixelRect visible_;
};

Dib RandomDib(int width, int height, int bitCount) {
  Dib dib = MakeBlackDib(width, height, bitCount);
  std::srand(5);
  for (std::uint8_t* at = DibBits(dib); at != dib.data() + dib.size(); ++at) {
    *at = static_cast<std::uint8_t>(std::rand());
  }
  return dib;
}

TEST(DibPainter, EnlargedPixelsAreCrisp) {
  for (const int bitCount : {1, 8, 24}) {
    const Dib dib = RandomDib(13, 9, bitCount);
    const DibColours colours(dib);
    for (const double zoom : {1.0, 1.5, 3.0, 5.0, 64.0}) {
      DibPainter painter(dib);
      const auto right = static_cast<std::int64_t>(std::ceil(13 * zoom));
      const auto bottom = static_cast<std::int64_t>(std::ceil(9 * zoom));
      PixelCanvas canvas({0, 0, right + 50, bottom + 50});
      painter.Draw(canvas, zoom);
      ASSERT_TRUE(canvas.place);
      EXPECT_EQ(*canvas.place, (PixelRect{0, 0, right, bottom}));
      for (std::int64_t y = 0; y < bottom; ++y) {
        for (std::int64_t x = 0; x < right; ++x) {
          const auto col = static_cast<std::int32_t>(std::floor(static_cast<double>(x) / zoom));
          const auto row = static_cast<std::int32_t>(std::floor(static_cast<double>(y) / zoom));
          ASSERT_EQ(canvas.At(x, y), colours.Get(DibRow(dib, row), col)) << zoom << " " << x << " " << y;
        }
      }
    }
  }
}

TEST(DibPainter, DrawsOnlyWhatIsVisible) {
  const Dib dib = RandomDib(100, 80, 8);
  for (const double zoom : {0.3, 1.0, 4.0}) {
    DibPainter whole(dib);
    PixelCanvas all({0, 0, 1000, 1000});
    whole.Draw(all, zoom);
    DibPainter painter(dib);
    PixelCanvas part({7, 5, 19, 16});
    painter.Draw(part, zoom);
    ASSERT_TRUE(part.place);
    EXPECT_EQ(*part.place, (PixelRect{7, 5, 19, 16}));
    for (std::int64_t y = 5; y < 16; ++y) {
      for (std::int64_t x = 7; x < 19; ++x) ASSERT_EQ(part.At(x, y), all.At(x, y)) << zoom;
    }
    PixelCanvas beyond({500, 500, 600, 600});
    painter.Draw(beyond, zoom);
    EXPECT_FALSE(beyond.place);
  }
}

TEST(DibPainter, AHalvedPictureHoldsMeansOfFour) {
  const Dib dib = RandomDib(20, 10, 8);
  DibPainter painter(dib);
  PixelCanvas canvas({0, 0, 10, 5});
  painter.Draw(canvas, 0.5);
  for (std::int32_t y = 0; y < 5; ++y) {
    for (std::int32_t x = 0; x < 10; ++x) {
      const auto top = DibRow(dib, 2 * y).subspan(static_cast<std::size_t>(2 * x));
      const auto bottom = DibRow(dib, 2 * y + 1).subspan(static_cast<std::size_t>(2 * x));
      const auto mean = static_cast<std::uint32_t>((top[0] + top[1] + bottom[0] + bottom[1] + 2) / 4);
      EXPECT_EQ(canvas.At(x, y), mean * 0x010101u);
    }
  }
}

TEST(DibPainter, AReducedPictureKeepsTheMeanAndTheColours) {
  // Stripes one pixel wide: any selection of rows or columns would show one of them, a mean shows neither.
  Dib dib = MakeBlackDib(256, 256, 24);
  for (std::int32_t y = 0; y < 256; ++y) {
    for (std::int32_t x = 0; x < 256; ++x) {
      const std::uint8_t color[] = {0, 40, static_cast<std::uint8_t>(x % 2 == 0 ? 200 : 100)};
      SetPixelColor(dib, x, y, color);
    }
  }
  for (const double zoom : {0.5, 1.0 / 3, 0.25, 1.0 / 64}) {
    DibPainter painter(dib);
    PixelCanvas canvas({0, 0, 400, 400});
    painter.Draw(canvas, zoom);
    ASSERT_TRUE(canvas.place);
    for (const std::uint32_t pixel : canvas.pixels) {
      EXPECT_EQ(pixel & 0xffff, 40u << 8);
      EXPECT_EQ(pixel >> 16, 150u);
    }
  }
}

TEST(DibPainter, BetweenTheHalvesPixelsAreMeansOfWhatTheyCover) {
  // Each pixel covers one and a half columns of 90, 30, 0, 90, 30, 0: (90 + 15) / 1.5, (15 + 0) / 1.5, ...
  const Dib dib = ByteDib({{90, 30, 0, 90, 30, 0}});
  DibPainter painter(dib);
  PixelCanvas canvas({0, 0, 10, 10});
  painter.Draw(canvas, 2.0 / 3);
  EXPECT_EQ(canvas.pixels, (std::vector<std::uint32_t>{0x464646, 0x0a0a0a, 0x464646, 0x0a0a0a}));
}

TEST(DibPainter, TinyBitmapsReduceToOnePixel) {
  const Dib dib = ByteDib({{90}});
  DibPainter painter(dib);
  PixelCanvas canvas({0, 0, 10, 10});
  painter.Draw(canvas, 1.0 / 64);
  ASSERT_TRUE(canvas.place);
  EXPECT_EQ(canvas.pixels, std::vector<std::uint32_t>{0x5a5a5a});
}

}  // namespace
}  // namespace corvane
