// Painting a TIN of about 2,000,000 triangles into an image:
//   "whole/part": the time for the whole of it over that for a zoomed view of 1 % of its area, in an image of
//   the same size (wanted: 20 or more)

#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>
#include <chrono>
#include <memory>

#include "RandomSurvey.h"
#include "picture/QtCanvas.h"
#include "shell/CorvaneApp.h"
#include "shell/CorvaneView.h"

namespace corvane {
namespace {

constexpr int kSide = 1000;  // pixels of the image

struct OpenTin {
  RandomSurvey survey{1000000};
  CCorvaneApp app{{}, ""};

  OpenTin() { app.InitInstance(survey.GetTinPath()); }
  CCorvaneView& View() { return *app.GetMainFrame().GetActiveTinView(); }
};

OpenTin& SharedTin() {
  static OpenTin tin;
  return tin;
}

// Paints the view at a scale at which `zoom` times the TIN's width fills the image; the middle of it shows.
void Paint(CCorvaneView& view, double zoom) {
  static QImage image(kSide, kSide, QImage::Format_RGB32);
  const Extent6& box = view.GetDocument().GetTIN().GetExtent();
  view.displayScale = zoom * kSide / (box.maxX - box.minX);
  const auto offset = static_cast<std::int64_t>((zoom - 1.0) * kSide / 2);
  image.fill(Qt::white);
  QPainter painter(&image);
  QtCanvas canvas(painter, {offset, offset, offset + kSide, offset + kSide}, {offset, offset});
  view.OnDraw(canvas);
}

double SecondsOf(CCorvaneView& view, double zoom) {
  const auto start = std::chrono::steady_clock::now();
  Paint(view, zoom);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void PaintWhole(benchmark::State& state) {
  for (auto _ : state) Paint(SharedTin().View(), 1.0);
}
BENCHMARK(PaintWhole)->Unit(benchmark::kMillisecond);

void PaintOnePercent(benchmark::State& state) {
  CCorvaneView& view = SharedTin().View();
  double whole = 0.0;
  double part = 0.0;
  for (auto _ : state) {
    state.PauseTiming();
    whole += SecondsOf(view, 1.0);
    state.ResumeTiming();
    part += SecondsOf(view, 10.0);
  }
  state.counters["whole/part"] = whole / part;
}
BENCHMARK(PaintOnePercent)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
