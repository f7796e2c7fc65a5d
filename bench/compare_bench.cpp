// Measuring a TIN of about 2,000,000 triangles against 1,000,000 check points in memory: lookup, differences,
// log written and put in place, statistics.
//   "points": check points a second (wanted: 1,500,000 or more)
//   "of plain program": the same over that of a program with FindTriangle and a stream of precision 15
// Random points are the hard case: each one needs another part of the TIN. Points in scan order are what
// comes from an instrument.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <random>
#include <vector>

#include "RandomSurvey.h"
#include "TIN/PointComparison.h"
#include "TIN/StoredPoints.h"
#include "TakingTurns.h"
#include "io/OutputFile.h"

namespace corvane {
namespace {

constexpr std::int32_t kPoints = 1000000;
constexpr std::size_t kChecks = 1000000;

enum class Order { Random, Scan };

const RandomSurvey& Survey() {
  static const RandomSurvey survey(kPoints);
  return survey;
}

const TIN& Tin() {
  static TIN tin;
  const std::string path = Survey().GetTinPath();
  if (!tin.IsStored() && (tin.ReadTIN(path) < 0 || tin.StoreTriangle(path) < 0)) std::abort();
  return tin;
}

// Within the TIN's extents; in scan order along rows of about a unit.
std::vector<StoredPoint> CheckPoints(Order order) {
  const Extent6& extent = Tin().GetExtent();
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> x(extent.minX, extent.maxX);
  std::uniform_real_distribution<double> y(extent.minY, extent.maxY);
  std::uniform_real_distribution<double> z(0.0, 100.0);
  std::vector<StoredPoint> points(kChecks);
  for (StoredPoint& point : points) point = {x(random), y(random), z(random), 1.0};
  if (order == Order::Random) return points;
  std::sort(points.begin(), points.end(), [](const StoredPoint& a, const StoredPoint& b) {
    return std::floor(a.y) != std::floor(b.y) ? a.y < b.y : a.x < b.x;
  });
  return points;
}

bool MeasureHere(const std::vector<StoredPoint>& points) {
  OutputFile log(Survey().PathOf("here.log"));
  PointComparison comparison(Tin(), PointComparison::Row::Numbered, log);
  if (!comparison.Allocate(points.size())) return false;
  for (std::size_t i = 0; i < points.size(); ++i) {
    comparison.Compare(i, {points[i].x, points[i].y, points[i].z});
  }
  return comparison.Finish().count > 0 && log.Commit();
}

bool MeasurePlainly(const std::vector<StoredPoint>& points) {
  std::ofstream log(Survey().PathOf("plain.log"));
  log << std::setprecision(15);
  double sum = 0.0;
  int count = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point3 p = {points[i].x, points[i].y, points[i].z};
    double height = 0.0;
    if (HeightAt(Tin(), p, height) < 0) continue;
    log << i << ", " << p.x << ", " << p.y << ", " << p.z << ", " << height - p.z << "\n";
    sum += height - p.z;
    ++count;
  }
  log << count << ", " << sum / count << "\n";
  return log.flush().good();
}

void CheckTin(benchmark::State& state, Order order) {
  const std::vector<StoredPoint> points = CheckPoints(order);
  const Seconds seconds = Compare(
      state, [&] { return MeasureHere(points); }, [&] { return MeasurePlainly(points); });
  const double nMeasured = static_cast<double>(kChecks) * static_cast<double>(state.iterations());
  state.counters["points"] = nMeasured / seconds.ours;
  state.counters["of plain program"] = seconds.yardstick / seconds.ours;
}
BENCHMARK_CAPTURE(CheckTin, random, Order::Random)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(6);
BENCHMARK_CAPTURE(CheckTin, scan, Order::Scan)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(6);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
