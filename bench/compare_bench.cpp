// Measuring a TIN of about 2,000,000 triangles against 1,000,000 check points: lookup, differences, log
// written and put in place, statistics. CheckTin has the points in memory; CompareWithPoints is the whole
// command on an open TIN, which reads them from their file and tests them against the rectangle, and so does
// its yardstick.
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
#include <sstream>
#include <vector>

#include "RandomSurvey.h"
#include "TIN/PointComparison.h"
#include "TIN/PointsHeader.h"
#include "TIN/StoredPoints.h"
#include "TakingTurns.h"
#include "cli/ScriptedFrontEnd.h"
#include "io/OutputFile.h"
#include "shell/CorvaneApp.h"
#include "shell/CorvaneView.h"

namespace corvane {
namespace {

constexpr std::int32_t kPoints = 1000000;
constexpr std::size_t kChecks = 1000000;

enum class Order { Random, Scan };

const RandomSurvey& Survey() {
  static const RandomSurvey survey(kPoints);
  return survey;
}

// The program on the survey's TIN, with a front end that accepts every form as it is shown.
struct OpenTin {
  std::ostringstream out;
  std::ostringstream err;
  Console console{out, err, false};
  ScriptedFrontEnd frontEnd{console, {.quiet = true}, [] { std::abort(); }};
  InstalledFrontEnd installed{frontEnd};
  CCorvaneApp app{{}, ""};

  OpenTin() {
    if (!app.InitInstance(Survey().GetTinPath()) || !Document().GetTIN().IsStored()) std::abort();
  }
  CCorvaneDoc& Document() { return app.GetMainFrame().GetTinView()->GetDocument(); }
};

OpenTin& SharedTin() {
  static OpenTin tin;
  return tin;
}

const TIN& Tin() {
  return SharedTin().Document().GetTIN();
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

void SetCounters(benchmark::State& state, const Seconds& seconds) {
  const double nMeasured = static_cast<double>(kChecks) * static_cast<double>(state.iterations());
  state.counters["points"] = nMeasured / seconds.ours;
  state.counters["of plain program"] = seconds.yardstick / seconds.ours;
}

void CheckTin(benchmark::State& state, Order order) {
  const std::vector<StoredPoint> points = CheckPoints(order);
  const Seconds seconds = Compare(
      state, [&] { return MeasureHere(points); }, [&] { return MeasurePlainly(points); });
  SetCounters(state, seconds);
}
BENCHMARK_CAPTURE(CheckTin, random, Order::Random)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(6);
BENCHMARK_CAPTURE(CheckTin, scan, Order::Scan)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(6);

std::string WritePoints(Order order) {
  const std::vector<StoredPoint> points = CheckPoints(order);
  const Extent6& extent = Tin().GetExtent();
  const PointsHeader header = {
      static_cast<std::int32_t>(points.size()), extent.minX, extent.maxY, extent.maxX, extent.minY, 1.0, 1.0};
  const auto bytes = header.Pack();
  std::string path = Survey().PathOf("checks.pts");
  OutputFile file(path);
  file.Write(bytes.data(), bytes.size());
  file.Write(points.data(), points.size() * kPointBytes);
  if (!file.Commit()) std::abort();
  return path;
}

// The rectangle is the TIN's, which holds all points.
bool ReadAndMeasurePlainly(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  file.seekg(PointsHeader::kBytes);
  std::vector<StoredPoint> points(kChecks);
  file.read(reinterpret_cast<char*>(points.data()), static_cast<std::streamsize>(kChecks * kPointBytes));
  return file.good() && MeasurePlainly(points);
}

void CompareWithPoints(benchmark::State& state, Order order) {
  const std::string path = WritePoints(order);
  OpenTin& open = SharedTin();
  const auto compare = [&] {
    open.frontEnd.SetAnswers({"@ok"});
    return open.Document().CompareWithPoints(path) > 0;
  };
  const Seconds seconds = Compare(state, compare, [&] { return ReadAndMeasurePlainly(path); });
  SetCounters(state, seconds);
}
BENCHMARK_CAPTURE(CompareWithPoints, random, Order::Random)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(6);
BENCHMARK_CAPTURE(CompareWithPoints, scan, Order::Scan)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(6);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
