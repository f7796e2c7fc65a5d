#include "sample_survey/AerialPicture.h"

#include <algorithm>
#include <cmath>

#include "erdasimg/ErdasImg.h"
#include "sample_survey/GroundTone.h"

namespace corvane {

namespace {

// The scene is sampled at a half of the picture's cells; four samples make a pixel.
constexpr int kSamplesPerCell = 2;
constexpr double kStep = AerialPicture::kCellSize / kSamplesPerCell;  // metres

// The sun over the map: where it stands, and how far it rises.
constexpr double kSunRise = 4.0 / 3.0;  // metres a metre on the map
constexpr double kSunHeading[2] = {0.8, -0.6};
constexpr double kLongestShadow = 20.0;  // metres

// Samples of the scene from above: heights in metres, and how bright the surface is in full light.
struct Relief {
  std::int64_t size = 0;  // samples along each side; row 0 is the southern one
  std::vector<double> z;
  std::vector<double> tone;

  std::size_t IndexOf(std::int64_t row, std::int64_t col) const {
    return static_cast<std::size_t>(row * size + col);
  }
  static double Place(double corner, std::int64_t number) {
    return corner + (static_cast<double>(number) + 0.5) * kStep;
  }
};

// The samples within reach of a thing, as a square.
struct Square {
  std::int64_t west, south, east, north;
};

Square SquareAround(double x, double y, double reach, std::int64_t size) {
  const auto number = [size](double offset) {
    return std::clamp<std::int64_t>(static_cast<std::int64_t>(std::floor(offset / kStep)), 0, size - 1);
  };
  return {number(x - reach - kSurveyWest), number(y - reach - kSurveySouth), number(x + reach - kSurveyWest),
          number(y + reach - kSurveySouth)};
}

void LayGround(const SampleSurvey& survey, Relief& relief) {
  const Scene& scene = survey.GetScene();
  for (std::int64_t row = 0; row < relief.size; ++row) {
    for (std::int64_t col = 0; col < relief.size; ++col) {
      const double x = Relief::Place(kSurveyWest, col);
      const double y = Relief::Place(kSurveySouth, row);
      const std::size_t i = relief.IndexOf(row, col);
      relief.z[i] = scene.GroundHeight(x, y);
      relief.tone[i] = GroundTone(scene, survey.GetOptions().seed, x - kSurveyWest, y - kSurveySouth);
    }
  }
}

// Raises the samples within reach to what `heightAt` says, where that is higher, and gives them `toneAt`.
template <typename HeightAt, typename ToneAt>
void Cover(Relief& relief, double x, double y, double reach, HeightAt heightAt, ToneAt toneAt) {
  const Square square = SquareAround(x, y, reach, relief.size);
  for (std::int64_t row = square.south; row <= square.north; ++row) {
    for (std::int64_t col = square.west; col <= square.east; ++col) {
      const std::optional<double> height =
          heightAt(Relief::Place(kSurveyWest, col), Relief::Place(kSurveySouth, row));
      const std::size_t i = relief.IndexOf(row, col);
      if (!height || *height <= relief.z[i]) continue;
      relief.z[i] = *height;
      relief.tone[i] = toneAt(row, col);
    }
  }
}

void PutUpBuildings(const SampleSurvey& survey, Relief& relief) {
  for (const Building& building : survey.GetScene().GetBuildings()) {
    Random roof(survey.GetOptions().seed, Random::kRoof, ToMillimetres(building.x),
                ToMillimetres(building.y));
    const double tone = 185.0 + static_cast<double>(roof.Between(0, 5)) * 12.0;
    Cover(
        relief, building.x, building.y, building.halfLength + building.halfWidth,
        [&](double x, double y) { return building.RoofHeight(x, y); },
        [tone](std::int64_t, std::int64_t) { return tone; });
  }
}

void PlantTrees(const SampleSurvey& survey, Relief& relief) {
  const std::uint64_t seed = survey.GetOptions().seed;
  for (const Tree& tree : survey.GetScene().GetTrees()) {
    const double tone =
        78.0 + 10.0 * Grain(seed, Random::kCrown, ToMillimetres(tree.x), ToMillimetres(tree.y));
    Cover(
        relief, tree.x, tree.y, tree.crownRadius, [&](double x, double y) { return tree.CrownTop(x, y); },
        [&](std::int64_t row, std::int64_t col) {
          return tone + 14.0 * Grain(seed, Random::kLeaves, row, col);
        });
  }
}

// The slope at a sample along a direction, metres a metre: the gentler one to its two sides, so that walls do
// not count.
double Slope(const Relief& relief, std::int64_t row, std::int64_t col, std::int64_t dRow, std::int64_t dCol) {
  const auto heightAt = [&](std::int64_t sign) {
    return relief.z[relief.IndexOf(std::clamp<std::int64_t>(row + sign * dRow, 0, relief.size - 1),
                                   std::clamp<std::int64_t>(col + sign * dCol, 0, relief.size - 1))];
  };
  const double back = heightAt(0) - heightAt(-1);
  const double fore = heightAt(1) - heightAt(0);
  return (std::abs(back) < std::abs(fore) ? back : fore) / kStep;
}

bool IsInShadow(const Relief& relief, std::int64_t row, std::int64_t col) {
  const double z = relief.z[relief.IndexOf(row, col)];
  for (double distance = kStep; distance <= kLongestShadow; distance += kStep) {
    const auto atCol = static_cast<std::int64_t>(
        std::floor(static_cast<double>(col) + kSunHeading[0] * distance / kStep + 0.5));
    const auto atRow = static_cast<std::int64_t>(
        std::floor(static_cast<double>(row) + kSunHeading[1] * distance / kStep + 0.5));
    if (atCol < 0 || atCol >= relief.size || atRow < 0 || atRow >= relief.size) return false;
    if (relief.z[relief.IndexOf(atRow, atCol)] > z + kSunRise * distance) return true;
  }
  return false;
}

// The share of the light of level ground in full sun.
double Light(const Relief& relief, std::int64_t row, std::int64_t col) {
  if (IsInShadow(relief, row, col)) return kSkyLight;
  const double east = Slope(relief, row, col, 0, 1);
  const double north = Slope(relief, row, col, 1, 0);
  return SunLight(east, north);
}

double Brightness(const Relief& relief, std::int64_t row, std::int64_t col) {
  return relief.tone[relief.IndexOf(row, col)] * Light(relief, row, col);
}

std::uint8_t ToByte(double value) {
  return static_cast<std::uint8_t>(std::clamp(value + 0.5, 0.0, 255.0));
}

}  // namespace

AerialPicture::AerialPicture(const SampleSurvey& survey)
    : size_(static_cast<std::int32_t>(std::min(survey.GetScene().GetSide(), kMostSide) / kCellSize)) {
  Relief relief;
  relief.size = std::int64_t{size_} * kSamplesPerCell;
  relief.z.resize(static_cast<std::size_t>(relief.size * relief.size));
  relief.tone.resize(relief.z.size());
  LayGround(survey, relief);
  PutUpBuildings(survey, relief);
  PlantTrees(survey, relief);

  constexpr double kNoise = 1.5;
  for (std::int64_t row = size_ - 1; row >= 0; --row) {
    for (std::int64_t col = 0; col < size_; ++col) {
      double sum = 0.0;
      for (std::int64_t i = 0; i < kSamplesPerCell; ++i) {
        for (std::int64_t j = 0; j < kSamplesPerCell; ++j) {
          sum += Brightness(relief, row * kSamplesPerCell + i, col * kSamplesPerCell + j);
        }
      }
      const double noise = kNoise * Grain(survey.GetOptions().seed, Random::kSensor, row, col);
      pixels_.push_back(ToByte(sum / (kSamplesPerCell * kSamplesPerCell) + noise));
    }
  }
}

bool WritePicture(const SampleSurvey& survey, const std::string& path) {
  const AerialPicture picture(survey);
  ErdasHeader header;
  header.cols = picture.GetSize();
  header.rows = picture.GetSize();
  header.xMap = static_cast<float>(kSurveyWest);
  header.yMap = static_cast<float>(picture.GetNorth());
  header.xCell = static_cast<float>(AerialPicture::kCellSize);
  header.yCell = static_cast<float>(-AerialPicture::kCellSize);
  ErdasImg image;
  if (image.Create(header, true) != 1) return false;
  for (std::int32_t row = 0; row < picture.GetSize(); ++row) {
    for (std::int32_t col = 0; col < picture.GetSize(); ++col) {
      image.SetPixel(0, row, col, picture.GetPixel(row, col));
    }
  }
  return image.Write(path) == 1;
}

}  // namespace corvane
