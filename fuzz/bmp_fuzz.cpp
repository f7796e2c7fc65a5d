// Any bytes as a bitmap file.

#include <cstdlib>

#include "FuzzFolder.h"
#include "dib/DibIo.h"
#include "dib/DibPainter.h"
#include "dib/Stereogram.h"

namespace corvane {
namespace {

// Takes whatever is drawn.
class BlindCanvas : public Canvas {
 public:
  PixelRect GetVisible() const override { return {0, 0, 50, 50}; }
  void SetPen(Colour, int) override {}
  void DrawSegments(std::span<const PixelSegment>) override {}
  void DrawPixels(const PixelRect&, std::span<const std::uint32_t>) override {}
  void DrawLabel(PixelPoint, const std::string&) override {}
};

void Run(const std::uint8_t* data, std::size_t size) {
  Dib dib;
  InputFile file(FuzzFile("in.bmp", data, size));
  if (ReadDib(file, dib) != 1) {
    if (!dib.empty()) std::abort();
    return;
  }
  if (!IsDib(dib)) std::abort();
  std::uint8_t color[3];
  GetPixelColor(dib, DibWidth(dib) - 1, DibHeight(dib) - 1, color);
  BlindCanvas canvas;
  DibPainter painter(dib);
  for (const double zoom : {1.0 / 64, 0.3, 1.0, 7.0}) painter.Draw(canvas, zoom);
  Dib picture = dib;
  MakeStereogram(dib, picture);

  OutputFile written(FuzzPath("out.bmp"));
  if (WriteDib(dib, written) != 1 || !written.Commit()) std::abort();
  InputFile again(FuzzPath("out.bmp"));
  Dib read;
  if (ReadDib(again, read) != 1 || read != dib) std::abort();
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  corvane::Run(data, size);
  return 0;
}
