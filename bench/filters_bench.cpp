// Filters over a byte image of 4000 x 4000: the documented sums, in floats, with a new image for each result.
// bench/compare-filters puts these times beside those of a library for image processing.
//
// The image goes to the file that the environment variable CORVANE_BENCH_IMAGE names, if there is one. Side
// files go to the current folder.

#include <benchmark/benchmark.h>

#include <filesystem>

#include "BenchImage.h"
#include "ImgProcess/ImgProcess.h"

namespace corvane {
namespace {

constexpr double kSmoothSigma = 2.0;
constexpr double kCrossingSigma = 3.0;

ErdasImg& Image() {
  static ErdasImg image = Shared(MakeWaves(), "filters_bench.lan");
  return image;
}

void Require(benchmark::State& state, int status) {
  if (status != 1) state.SkipWithError("a run has failed");
}

void GaussianSmooth(benchmark::State& state) {
  ImgProcess process;
  const ErdasImg& image = Image();
  for (auto step : state) {
    ResultImage result;
    Require(state, process.GaussianSmooth(image, kSmoothSigma, result));
  }
}

// gx, gy and the magnitude, each an image in memory.
void GradientInMemory(benchmark::State& state) {
  ImgProcess process;
  const ErdasImg& image = Image();
  Kernel1D kernel;
  ImgProcess::MakeCentralDifference(kernel);
  for (auto step : state) {
    ResultImage gx;
    ResultImage gy;
    ResultImage result;
    Require(state, process.Convolve(image, kernel, 1, kPackFloat, gx));
    Require(state, process.Convolve(image, kernel, 2, kPackFloat, gy));
    Require(state, process.Magnitude(*gx, *gy, result));
  }
}

// The magnitude in memory, gx and gy as durable files.
void GradientWithFiles(benchmark::State& state) {
  ImgProcess process;
  const ErdasImg& image = Image();
  for (auto step : state) {
    ResultImage result;
    Require(state, process.Gradient(image, kPackFloat, result));
  }
  std::filesystem::remove("GradientX.lan");
  std::filesystem::remove("GradientY.lan");
}

using Laplacian = int (ImgProcess::*)(const ErdasImg&, double, ErdasImg&);

void MeasureCrossing(benchmark::State& state, Laplacian laplacian) {
  ImgProcess process;
  const ErdasImg& image = Image();
  ErdasHeader header = *image.GetHeader();
  header.packType = kPackFloat;
  for (auto step : state) {
    ErdasImg curvature;
    ErdasImg marks;
    Require(state, curvature.Create(header, false));
    Require(state, (process.*laplacian)(image, kCrossingSigma, curvature));
    Require(state, marks.Create(*image.GetHeader(), false));
    Require(state, process.ZeroCrossing(curvature, 0.0, marks));
  }
}

void ZeroCrossing(benchmark::State& state) {
  MeasureCrossing(state, &ImgProcess::LaplacianOfGaussian);
}

void ZeroCrossingLowMemory(benchmark::State& state) {
  MeasureCrossing(state, &ImgProcess::LaplacianOfGaussianLowMemory);
}

// Single runs, so that the least time is one that nothing has disturbed.
void ManyRuns(benchmark::internal::Benchmark* benchmark) {
  benchmark->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(15);
}

BENCHMARK(GaussianSmooth)->Apply(ManyRuns);
BENCHMARK(GradientInMemory)->Apply(ManyRuns);
BENCHMARK(GradientWithFiles)->Apply(ManyRuns);
BENCHMARK(ZeroCrossing)->Apply(ManyRuns);
BENCHMARK(ZeroCrossingLowMemory)->Apply(ManyRuns);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
