// Text to binary, and Create TIN, on 1,000,000 random points, each beside its yardstick in the same run:
//   "times fscanf": how many times faster than a plain fscanf loop with the same format (wanted: 3 or more)
//   "of triangulate": the time of Create TIN over that of the bare library call (wanted: 1.4 or less)

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <filesystem>

#include "BareTriangulation.h"
#include "RandomSurvey.h"
#include "TIN/PointsHeader.h"
#include "TIN/TINPoints.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"

namespace corvane {
namespace {

constexpr std::int32_t kPoints = 1000000;

const RandomSurvey& Survey() {
  static const RandomSurvey survey(kPoints);
  return survey;
}

template <typename Work>
double SecondsOf(Work work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// What a user would write instead: fscanf, extents, fwrite.
void ConvertPlainly(const std::string& txtPath, const std::string& binPath) {
  std::FILE* in = std::fopen(txtPath.c_str(), "rt");
  std::FILE* out = std::fopen(binPath.c_str(), "wb");
  PointsHeader header;
  double record[4] = {0.0, 0.0, 0.0, 1.0};
  std::fseek(out, PointsHeader::kBytes, SEEK_SET);
  while (!std::feof(in)) {
    if (std::fscanf(in, "%lf,%lf,%lf", record, record + 1, record + 2) < 3) continue;
    const auto [x, y, z, value] = record;
    if (header.nPoints++ == 0) {
      header.minX = header.maxX = x;
      header.minY = header.maxY = y;
    }
    if (x > header.maxX) header.maxX = x;
    if (x < header.minX) header.minX = x;
    if (y > header.maxY) header.maxY = y;
    if (y < header.minY) header.minY = y;
    std::fwrite(record, sizeof record, 1, out);
  }
  const auto bytes = header.Pack();
  std::rewind(out);
  std::fwrite(bytes.data(), bytes.size(), 1, out);
  std::fclose(out);
  std::fclose(in);
}

void TextToBinary(benchmark::State& state) {
  const std::string text = Survey().GetTextPath();
  const std::string ours = Survey().PathOf("ours.pts");
  const std::string plain = Survey().PathOf("plain.pts");
  double oursSeconds = 0.0;
  double plainSeconds = 0.0;
  for (auto _ : state) {
    plainSeconds += SecondsOf([&] { ConvertPlainly(text, plain); });
    const double seconds = SecondsOf([&] { TINPoints::TextToBinary(text, ours, 1.0); });
    oursSeconds += seconds;
    state.SetIterationTime(seconds);
  }
  if (ReadWholeFile(ours) != ReadWholeFile(plain)) state.SkipWithError("the bytes differ");
  const auto bytes = static_cast<double>(std::filesystem::file_size(text));
  state.counters["MB/s"] = 1e-6 * bytes * static_cast<double>(state.iterations()) / oursSeconds;
  state.counters["times fscanf"] = plainSeconds / oursSeconds;
}
BENCHMARK(TextToBinary)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);

bool CreateTin(const std::string& pointsPath, const std::string& tinPath) {
  TINPoints points;
  Triangulation triangles;
  if (points.Read(pointsPath) < 0 || points.Triangulate(nullptr, nullptr, triangles) < 0) return false;
  OutputFile file(tinPath);
  return points.WriteTriangles(file, triangles) >= 0 && file.Commit();
}

std::vector<double> CoordinatesOf(const std::string& pointsPath) {
  TINPoints points;
  points.Read(pointsPath);
  std::vector<double> coordinates;
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    coordinates.push_back(points.GetPoint(i)->x);
    coordinates.push_back(points.GetPoint(i)->y);
  }
  return coordinates;
}

void CreateTinFile(benchmark::State& state) {
  const std::string pointsPath = Survey().GetPointsPath();
  const std::vector<double> coordinates = CoordinatesOf(pointsPath);
  double oursSeconds = 0.0;
  double bareSeconds = 0.0;
  for (auto _ : state) {
    std::vector<double> copy = coordinates;
    bareSeconds += SecondsOf([&] { benchmark::DoNotOptimize(BareTriangulation(copy)); });
    const double seconds = SecondsOf([&] { CreateTin(pointsPath, Survey().PathOf("ours.tin")); });
    oursSeconds += seconds;
    state.SetIterationTime(seconds);
  }
  state.counters["of triangulate"] = oursSeconds / bareSeconds;
}
BENCHMARK(CreateTinFile)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
