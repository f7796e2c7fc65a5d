#pragma once

#include <cstdint>
#include <string>

#include "sample_survey/LaserScan.h"
#include "sample_survey/Scene.h"

namespace corvane {

struct SurveyOptions {
  static constexpr std::int64_t kMinPoints = 1000;
  static constexpr std::int64_t kMaxPoints = 1000000000;

  std::int64_t nPoints = 150000;
  std::uint64_t seed = 1;
};

// A survey and its truth: the scene, and the flight over it. The square grows with the points, so that about
// one point falls on a square metre.
class SampleSurvey {
 public:
  explicit SampleSurvey(const SurveyOptions& options);

  const SurveyOptions& GetOptions() const { return options_; }
  const Scene& GetScene() const { return scene_; }
  const LaserScan& GetScan() const { return scan_; }

 private:
  SurveyOptions options_;
  Scene scene_;
  LaserScan scan_;
};

// The files of a survey. All numbers are written from whole millimetres, so that the bytes are the same on
// every machine. Each returns false if the file can't be written.

// "X Y Z class" a line, in the order of time. Gives the number of points.
bool WriteSurveyPoints(const SampleSurvey& survey, const std::string& path, std::int64_t& nPoints);
// "X Y Z" a line: places on the bare ground, away from the edge, with the true height.
bool WriteCheckPoints(const SampleSurvey& survey, const std::string& path, std::int64_t& nPoints);
// The mask file: a rectangle, and the areas of the fixed plan that lie within the square.
bool WriteAreas(const SampleSurvey& survey, const std::string& path);
// The true ground as an ESRI ASCII grid: heights at the cells' centres, cells of 1 m or more.
bool WriteGround(const SampleSurvey& survey, const std::string& path);
// What the files hold and what stands where.
bool WriteReadme(const SampleSurvey& survey, const std::string& path, std::int64_t nPoints);

}  // namespace corvane
