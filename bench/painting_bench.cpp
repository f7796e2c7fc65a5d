// Painting into an image of 1000 x 1000 pixels.
// A TIN of about 2,000,000 triangles:
//   "whole/part": the time for the whole of it over that for a zoomed view of 1 % of its area (wanted: 20 or
//   more)
// A bitmap of 10,000 x 10,000 pixels: at several zooms, in percent; when the first wheel steps reduce it; and
// a move aslant of 20 pixels, of which the two strips that come into sight are painted.

#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>
#include <chrono>
#include <memory>

#include "RandomSurvey.h"
#include "picture/QtCanvas.h"
#include "shell/CorvaneApp.h"
#include "shell/CorvaneView.h"
#include "shell/DibView.h"

namespace corvane {
namespace {

constexpr int kSide = 1000;  // pixels of the image

struct OpenTin {
  RandomSurvey survey{1000000};
  CCorvaneApp app{{}, ""};

  OpenTin() { app.InitInstance(survey.GetTinPath()); }
  CCorvaneView& View() { return *app.GetMainFrame().GetTinView(); }
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

constexpr std::int32_t kBitmapSide = 10000;

struct OpenBitmap {
  CCorvaneApp app{{}, ""};
  CDibView* view = nullptr;

  OpenBitmap() {
    app.InitInstance("");
    Dib dib = MakeBlackDib(kBitmapSide, kBitmapSide, 8);
    std::uint32_t state = 1;
    for (std::uint8_t* bytes = DibBits(dib); bytes < dib.data() + dib.size(); ++bytes) {
      state = state * 1664525u + 1013904223u;
      *bytes = static_cast<std::uint8_t>(state >> 24);
    }
    view = &OpenBitmapWindow(app.GetMainFrame(), std::move(dib), "bitmap");
    view->OnSize({kSide, kSide});
  }
};

CDibView& SharedBitmap() {
  static OpenBitmap bitmap;
  return *bitmap.view;
}

// Paints a part of a window of kSide x kSide pixels, as it is scrolled.
void PaintBitmap(CDibView& view, const PixelRect& part) {
  static QImage image(kSide, kSide, QImage::Format_RGB32);
  const PixelPoint origin = view.GetScrollPosition();
  QPainter painter(&image);
  QtCanvas canvas(painter,
                  {origin.x + part.left, origin.y + part.top, origin.x + part.right, origin.y + part.bottom},
                  origin);
  view.OnDraw(canvas);
}

void BitmapAtZoom(benchmark::State& state) {
  CDibView& view = SharedBitmap();
  view.SetZoom(0, static_cast<double>(state.range(0)) / 100.0);
  view.SetScrollPosition({50, 50});
  PaintBitmap(view, {0, 0, kSide, kSide});
  for (auto _ : state) PaintBitmap(view, {0, 0, kSide, kSide});
}
BENCHMARK(BitmapAtZoom)->Arg(10)->Arg(33)->Arg(67)->Arg(100)->Arg(400)->Unit(benchmark::kMillisecond);

void BitmapMovedAslant(benchmark::State& state) {
  constexpr std::int64_t kMove = 20;
  CDibView& view = SharedBitmap();
  view.SetZoom(0, 0.5);
  PaintBitmap(view, {0, 0, kSide, kSide});
  for (auto _ : state) {
    PaintBitmap(view, {0, 0, kSide, kMove});
    PaintBitmap(view, {0, 0, kMove, kSide});
  }
}
BENCHMARK(BitmapMovedAslant)->Unit(benchmark::kMillisecond);

// The n-th wheel step away from 1:1, in a window that has not been zoomed before.
void BitmapAfterFirstSteps(benchmark::State& state) {
  CDibView& view = SharedBitmap();
  for (auto _ : state) {
    state.PauseTiming();
    view.OnUpdate();  // as after a change of the bitmap
    view.SetZoom(0, 1.0);
    for (int i = 1; i < state.range(0); ++i) {
      view.OnZoomSteps(-1, {kSide / 2, kSide / 2});
      PaintBitmap(view, {0, 0, kSide, kSide});
    }
    state.ResumeTiming();
    view.OnZoomSteps(-1, {kSide / 2, kSide / 2});
    PaintBitmap(view, {0, 0, kSide, kSide});
  }
}
BENCHMARK(BitmapAfterFirstSteps)->DenseRange(1, 6)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
