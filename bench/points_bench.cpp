// Text to binary, and Create TIN, on 1,000,000 random points, each beside its yardstick in the same run:
//   "times fscanf": how many times faster than a plain fscanf loop with the same format, and bytes (wanted: 3
//   or more) "of triangulate": the time of Create TIN over that of the bare library call, of the same
//   triangles (wanted: 1.4 or less)

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "BareTriangulation.h"
#include "RandomSurvey.h"
#include "TIN/PointsHeader.h"
#include "TIN/TINPoints.h"
#include "TakingTurns.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"

namespace corvane {
namespace {

using TextForm = RandomSurvey::TextForm;

constexpr std::int32_t kPoints = 1000000;

const RandomSurvey& Survey() {
  static const RandomSurvey survey(kPoints);
  return survey;
}

void Follow(double value, double& min, double& max) {
  if (value > max) {
    max = value;
  } else if (value < min) {
    min = value;
  }
}

// Scans the next record with the format of its text; returns the numbers that it has, the id left out.
int ScanPlainly(std::FILE* in, TextForm form, double (&record)[4]) {
  auto& [x, y, z, value] = record;
  int id = 0;
  switch (form) {
    case TextForm::Commas:
      return std::fscanf(in, "%lf,%lf,%lf", &x, &y, &z);
    case TextForm::Blanks:
      return std::fscanf(in, "%lf %lf %lf", &x, &y, &z);
    case TextForm::Ids:
      return std::fscanf(in, "%d, \t%lf, \t%lf, \t%lf, \t%lf\n", &id, &x, &y, &z, &value) - 1;
  }
  return 0;
}

// What a user would write instead: fscanf, extents, fwrite.
bool ConvertPlainly(const std::string& txtPath, TextForm form, const std::string& binPath) {
  std::FILE* in = std::fopen(txtPath.c_str(), "rt");
  std::FILE* out = std::fopen(binPath.c_str(), "wb");
  if (!in || !out) return false;
  PointsHeader header = {0, 1.7e+308, -1.7e+308, -1.7e+308, 1.7e+308, 1.0, 1.0};
  double record[4] = {0.0, 0.0, 0.0, 1.0};
  std::fseek(out, PointsHeader::kBytes, SEEK_SET);
  while (!std::feof(in)) {
    if (ScanPlainly(in, form, record) < 3) continue;
    const auto [x, y, z, value] = record;
    if (header.nPoints++ == 0 && form != TextForm::Ids) {
      header.minX = header.maxX = x;
      header.minY = header.maxY = y;
    }
    Follow(x, header.minX, header.maxX);
    Follow(y, header.minY, header.maxY);
    std::fwrite(record, sizeof record, 1, out);
  }
  const auto bytes = header.Pack();
  std::rewind(out);
  std::fwrite(bytes.data(), bytes.size(), 1, out);
  const bool good = !std::ferror(in) && !std::ferror(out);
  std::fclose(in);
  return std::fclose(out) == 0 && good;
}

void TextToBinary(benchmark::State& state, TextForm form) {
  const std::string text = Survey().GetTextPath(form);
  const std::string ours = Survey().PathOf("ours.pts");
  const std::string plain = Survey().PathOf("plain.pts");
  const auto convert = form == TextForm::Ids ? TINPoints::TextIdToBinary : TINPoints::TextToBinary;
  const Seconds seconds = Compare(
      state, [&] { return convert(text, ours, 1.0) == 0; },
      [&] { return ConvertPlainly(text, form, plain); });
  const auto bytes = ReadWholeFile(ours);
  const bool same = bytes && bytes->size() == PointsHeader::kBytes + kPoints * kPointBytes;
  if (!same || bytes != ReadWholeFile(plain)) state.SkipWithError("the bytes differ");
  const auto read = static_cast<double>(std::filesystem::file_size(text));
  state.counters["MB/s"] = 1e-6 * read * static_cast<double>(state.iterations()) / seconds.ours;
  state.counters["times fscanf"] = seconds.yardstick / seconds.ours;
}

void Options(benchmark::internal::Benchmark* benchmark) {
  benchmark->Iterations(6)->UseManualTime()->Unit(benchmark::kMillisecond);
}
BENCHMARK_CAPTURE(TextToBinary, commas, TextForm::Commas)->Apply(Options);
BENCHMARK_CAPTURE(TextToBinary, blanks, TextForm::Blanks)->Apply(Options);
BENCHMARK_CAPTURE(TextToBinary, ids, TextForm::Ids)->Apply(Options);

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

// Whether a ".tin" file has exactly these corners, in their order.
bool HasCorners(const std::string& tinPath, const std::vector<std::int32_t>& corners) {
  const auto bytes = ReadWholeFile(tinPath);
  if (!bytes || bytes->size() != sizeof(std::int32_t) + corners.size() * kVertexBytes) return false;
  const char* at = bytes->data() + sizeof(std::int32_t);
  return std::all_of(corners.begin(), corners.end(), [&at](std::int32_t corner) {
    const bool same = UnpackVertex(at).id == corner;
    at += kVertexBytes;
    return same;
  });
}

void CreateTinFile(benchmark::State& state) {
  const std::string pointsPath = Survey().GetPointsPath();
  const std::string tinPath = Survey().PathOf("ours.tin");
  std::vector<double> coordinates = CoordinatesOf(pointsPath);
  const Seconds seconds = Compare(
      state, [&] { return CreateTin(pointsPath, tinPath); },
      [&] { return BareTriangulation(coordinates) > 0; });
  std::vector<std::int32_t> corners;
  BareTriangulation(coordinates, &corners);
  if (!HasCorners(tinPath, corners)) state.SkipWithError("the triangles differ");
  state.counters["of triangulate"] = seconds.ours / seconds.yardstick;
}
BENCHMARK(CreateTinFile)->Apply(Options);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
