// Harris corners, prominent pixels and descriptors over a byte image of 4000 x 4000, on one thread.
// bench/compare-corners puts the time of the corners beside that of a library for image processing.
//
// The image goes to the file that the environment variable CORVANE_BENCH_IMAGE names, if there is one. Side
// files go to the current folder.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "BenchImage.h"
#include "ImgProcess/ImgProcess.h"

namespace corvane {
namespace {

constexpr int kRoofs = 20000;
constexpr HarrisParam kParam{.k = 0.04, .sigma = 2.0, .threshold = 1200.0};

// Ground with noise, and roofs of one grey each on it, 20 to 80 pixels wide.
ErdasImg MakeRoofs() {
  ErdasImg image = MakeFlatImage(90);
  std::mt19937 random(1);
  const auto bytes = image.GetBands().GetBand(0);
  for (int i = 0; i < kRoofs; ++i) {
    const auto size = 20 + random() % 60;
    const auto row = random() % (kImageSize - size);
    const auto col = random() % (kImageSize - size);
    const auto grey = static_cast<std::uint8_t>(20 + random() % 200);
    for (auto line = row; line < row + size; ++line) std::fill_n(&bytes[line * kImageSize + col], size, grey);
  }
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(byte + random() % 12);
  return image;
}

ErdasImg& Image() {
  static ErdasImg image = Shared(MakeRoofs(), "corners_bench.lan");
  return image;
}

void Require(benchmark::State& state, int status) {
  if (status != 1) state.SkipWithError("a run has failed");
}

using MakeResponse = int (ImgProcess::*)(const ErdasImg&, ResultImage&, const HarrisParam&);

void MeasureCorners(benchmark::State& state, MakeResponse makeResponse) {
  ImgProcess process;
  const ErdasImg& image = Image();
  std::vector<Point2> points;
  for (auto step : state) {
    ResultImage response;
    Require(state, (process.*makeResponse)(image, response, kParam));
    if (response) Require(state, process.ExtractCorners(*response, kParam, points));
  }
  state.counters["corners"] = static_cast<double>(points.size());
}

// The response in memory, and its corners.
void CornersInMemory(benchmark::State& state) {
  MeasureCorners(state, &ImgProcess::CornerResponse);
}

void CornersFromFiles(benchmark::State& state) {
  MeasureCorners(state, &ImgProcess::CornerResponseFromFiles);
}

// The same with the response as a durable file.
void HarrisCorners(benchmark::State& state) {
  ImgProcess process;
  const ErdasImg& image = Image();
  std::vector<Point2> points;
  for (auto step : state) Require(state, process.HarrisCorners(image, points, kParam));
  std::filesystem::remove("cornerResponse.lan");
}

void ExtractCorners(benchmark::State& state) {
  ImgProcess process;
  ResultImage response;
  Require(state, process.CornerResponse(Image(), response, kParam));
  std::vector<Point2> points;
  for (auto step : state) process.ExtractCorners(*response, kParam, points);
}

void ProminentPixels(benchmark::State& state) {
  ImgProcess process;
  const ErdasImg& image = Image();
  std::vector<double> places;
  for (auto step : state) Require(state, process.ProminentPixels(image, 0.3, places));
  state.counters["points"] = static_cast<double>(places.size()) / 2.0;
}

using MakeFeatures = int (ImgProcess::*)(ErdasImg&, const std::vector<Point2>&, std::int32_t,
                                         FeaturePointList&, bool);

void MeasureFeatures(benchmark::State& state, MakeFeatures makeFeatures, std::int32_t windowSize) {
  ImgProcess process;
  ErdasImg& image = Image();
  ResultImage response;
  std::vector<Point2> points;
  Require(state, process.CornerResponse(image, response, kParam));
  process.ExtractCorners(*response, kParam, points);
  FeaturePointList features;
  for (auto step : state) Require(state, (process.*makeFeatures)(image, points, windowSize, features, true));
  state.counters["features"] = static_cast<double>(features.size());
}

void StructuralFeatures(benchmark::State& state) {
  MeasureFeatures(state, &ImgProcess::StructuralFeatures, 7);
}

void SpiralFeatures(benchmark::State& state) {
  MeasureFeatures(state, &ImgProcess::SpiralFeatures, 17);
}

BENCHMARK(CornersInMemory)->Unit(benchmark::kMillisecond);
BENCHMARK(CornersFromFiles)->Unit(benchmark::kMillisecond);
BENCHMARK(HarrisCorners)->Unit(benchmark::kMillisecond);
BENCHMARK(ExtractCorners)->Unit(benchmark::kMillisecond);
BENCHMARK(ProminentPixels)->Unit(benchmark::kMillisecond);
BENCHMARK(StructuralFeatures)->Unit(benchmark::kMillisecond);
BENCHMARK(SpiralFeatures)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
