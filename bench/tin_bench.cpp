// Loading a TIN of about 2,000,000 triangles, and random queries on it:
//   "seconds": one load (wanted: 0.8 or less)
//   "of two reads": the time of a load over that of reading the file twice with plain fread
//   "memory of file": the peak that a load adds, over the file's size (wanted: 3 or less)
//   "queries": FindTriangle, points uniformly random (wanted: 2,000,000 a second or more)

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <vector>

#include "PeakMemory.h"
#include "RandomSurvey.h"
#include "TIN/TIN.h"

namespace corvane {
namespace {

constexpr std::int32_t kPoints = 1000000;
constexpr std::size_t kQueries = 1000000;

const std::string& TinPath() {
  static const RandomSurvey survey(kPoints);
  static const std::string path = survey.GetTinPath();
  return path;
}

template <typename Work>
double SecondsOf(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void ReadTwice(const std::string& path) {
  std::vector<char> buffer(std::size_t{1} << 18);
  std::FILE* file = std::fopen(path.c_str(), "rb");
  for (int pass = 0; pass < 2; ++pass) {
    std::rewind(file);
    while (std::fread(buffer.data(), 1, buffer.size(), file) == buffer.size()) benchmark::ClobberMemory();
  }
  std::fclose(file);
}

void Load(TIN& tin, const std::string& path) {
  if (tin.ReadTIN(path) < 0 || tin.StoreTriangle(path) < 0) std::abort();
}

void LoadTin(benchmark::State& state) {
  const std::string& path = TinPath();
  ResetPeak();
  const double before = PeakBytes();
  double load = 0.0;
  double plain = 0.0;
  for (auto step : state) {
    plain += SecondsOf([&] { ReadTwice(path); });
    TIN tin;
    const double seconds = SecondsOf([&] { Load(tin, path); });
    state.SetIterationTime(seconds);
    load += seconds;
  }
  state.counters["seconds"] = load / static_cast<double>(state.iterations());
  state.counters["of two reads"] = load / plain;
  state.counters["memory of file"] =
      (PeakBytes() - before) / static_cast<double>(std::filesystem::file_size(path));
}
BENCHMARK(LoadTin)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

void FindTriangle(benchmark::State& state) {
  TIN tin;
  Load(tin, TinPath());
  const Extent6& extent = tin.GetExtent();
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> x(extent.minX, extent.maxX);
  std::uniform_real_distribution<double> y(extent.minY, extent.maxY);
  std::vector<Point3> points(kQueries);
  for (Point3& point : points) point = {x(random), y(random), 0.0};
  for (auto step : state) {
    for (const Point3& point : points) {
      std::int32_t triangle = 0;
      benchmark::DoNotOptimize(tin.FindTriangle(point, triangle));
      benchmark::DoNotOptimize(triangle);
    }
  }
  state.counters["queries"] =
      benchmark::Counter(static_cast<double>(kQueries), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(FindTriangle)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
