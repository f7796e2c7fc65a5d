#pragma once

#include <cstdint>
#include <string>

namespace corvane {

// Uniformly random points, each number with a full mantissa of noise, as files in a folder of its own that
// ends with the object. The same points on every machine.
class RandomSurvey {
 public:
  // x and y within a square of about one point a unit, z from 0 to 100.
  explicit RandomSurvey(std::int32_t nPoints);
  ~RandomSurvey();
  RandomSurvey(const RandomSurvey&) = delete;
  RandomSurvey& operator=(const RandomSurvey&) = delete;

  std::string PathOf(const std::string& name) const { return folder_ + "/" + name; }

  enum class TextForm { Commas, Blanks, Ids };  // "x,y,z", "x y z" or "id, x, y, z" a line

  // The points as text, as a points file, and triangulated. Each is made at the first call.
  std::string GetTextPath(TextForm form = TextForm::Commas) const;
  std::string GetPointsPath() const;
  std::string GetTinPath() const;

 private:
  std::int32_t nPoints_;
  std::string folder_;
};

}  // namespace corvane
