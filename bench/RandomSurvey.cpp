#include "RandomSurvey.h"

#include <stdlib.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <random>

#include "TIN/TINPoints.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "io/Paths.h"

namespace corvane {

namespace {

void Check(bool good, const char* step) {
  if (good) return;
  std::fprintf(stderr, "the benchmark's survey can not be made: %s\n", step);
  std::exit(1);
}

// From 0 up to 1, in steps of 2^-53.
double Uniform(std::mt19937_64& random) {
  return static_cast<double>(random() >> 11) * 0x1p-53;
}

TINPoints RandomPoints(std::int32_t nPoints) {
  TINPoints points(nPoints);
  std::mt19937_64 random(1);
  const double side = std::sqrt(static_cast<double>(nPoints));
  for (std::int32_t i = 0; i < nPoints; ++i) {
    const double x = side * Uniform(random);
    const double y = side * Uniform(random);
    points.SetPoint(i, x, y, 100.0 * Uniform(random), 1.0, i);
  }
  points.RecalcExtent();
  return points;
}

bool WriteText(const TINPoints& points, RandomSurvey::TextForm form, const std::string& path) {
  using Form = RandomSurvey::TextForm;
  const char* const separator = form == Form::Commas ? "," : form == Form::Blanks ? " " : ", ";
  OutputFile file(path);
  std::string line;
  for (std::int32_t i = 0; i < points.GetCount(); ++i) {
    const PointRecord& point = *points.GetPoint(i);
    line = form == Form::Ids ? std::to_string(i) + separator : "";
    line += ShortestText(point.x) + separator + ShortestText(point.y) + separator + ShortestText(point.z);
    file.Write(line += '\n');
  }
  return file.Commit();
}

bool WriteTin(const std::string& pointsPath, const std::string& path) {
  TINPoints points;
  Triangulation triangles;
  if (points.Read(pointsPath) < 0 || points.Triangulate(nullptr, nullptr, triangles) < 0) return false;
  OutputFile file(path);
  return points.WriteTriangles(file, triangles) >= 0 && file.Commit();
}

}  // namespace

RandomSurvey::RandomSurvey(std::int32_t nPoints) : nPoints_(nPoints) {
  std::string pattern = (std::filesystem::temp_directory_path() / "corvane-bench-XXXXXX").string();
  Check(mkdtemp(pattern.data()) != nullptr, "no temporary folder");
  folder_ = pattern;
}

RandomSurvey::~RandomSurvey() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::string RandomSurvey::GetTextPath(TextForm form) const {
  const std::string path = PathOf("survey" + std::to_string(static_cast<int>(form)) + ".txt");
  if (!FileExists(path)) Check(WriteText(RandomPoints(nPoints_), form, path), "the text");
  return path;
}

std::string RandomSurvey::GetPointsPath() const {
  const std::string path = PathOf("survey.pts");
  if (!FileExists(path)) Check(RandomPoints(nPoints_).Write(path) == nPoints_, "the points file");
  return path;
}

std::string RandomSurvey::GetTinPath() const {
  const std::string path = PathOf("survey.tin");
  if (!FileExists(path)) Check(WriteTin(GetPointsPath(), path), "the TIN");
  return path;
}

}  // namespace corvane
