#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sample_survey/SampleCamera.h"
#include "sample_survey/SurveyFiles.h"

namespace corvane {

// The bare ground as a raster of heights, which is the truth of the photos: heights belong to the cells'
// centres, between which they are bilinear.
class GroundRaster {
 public:
  static constexpr double kCellSize = 1.0;  // metres
  static constexpr std::int64_t kCols = 790;
  static constexpr std::int64_t kRows = 630;
  // The corner in the south-west, from the survey's corner.
  static constexpr double kEast = -200.0;
  static constexpr double kNorth = -120.0;

  explicit GroundRaster(const Scene& scene);

  // Row 0 is the southern one.
  float GetCell(std::int64_t row, std::int64_t col) const { return z_[IndexOf(row, col)]; }

  // At metres from the survey's corner. Beyond the outer cells' centres it goes on level.
  double HeightAt(double east, double north) const;

 private:
  static std::size_t IndexOf(std::int64_t row, std::int64_t col) {
    return static_cast<std::size_t>(row * kCols + col);
  }

  std::vector<float> z_;
};

// A point with a signal painted around it. It lies on the ground, to a half millimetre.
struct SignalPoint {
  enum class Role { Control, Pass, Check };

  Role role = Role::Pass;
  std::string name;
  std::int64_t x = 0;  // millimetres
  std::int64_t y = 0;
  std::int64_t z = 0;

  GroundPlace GetPlace() const;
};

struct BlockPhoto {
  std::string name;  // "s1p2": strip 1, photo 2
  Exterior exterior;
};

// A block of two strips of three photos, flown east, with 60 % overlap along a strip and 64 % across. It
// covers the survey's south-west corner.
class PhotoBlock {
 public:
  static constexpr int kStrips = 2;
  static constexpr int kPhotos = 3;  // in a strip

  explicit PhotoBlock(const SampleSurvey& survey);

  std::uint64_t GetSeed() const { return seed_; }
  const GroundRaster& GetGround() const { return ground_; }
  const std::vector<SignalPoint>& GetSignals() const { return signals_; }
  const std::vector<BlockPhoto>& GetPhotos() const { return photos_; }

  // What a photo of GetPhotos() shows: kSize rows of kSize pixels. It is the bare ground with its fields and
  // roads, as if nothing stood on it. The mean of four rays is a pixel.
  std::vector<std::uint8_t> Expose(std::size_t photo) const;

  // Whether the photo shows the place, not too near to its edge.
  static bool IsShown(const PhotoPlace& place);

 private:
  void PaintGround(const SampleSurvey& survey);
  void PaintSoil(std::uint64_t seed);
  void PlaceSignals(std::uint64_t seed);
  void PaintSignal(const SignalPoint& point);
  double BrightnessAt(double east, double north) const;
  double ExposeRay(const SampleCamera& camera, const PhotoPlace& place) const;

  std::uint64_t seed_;
  GroundRaster ground_;
  // The ground's brightness at the centres of small squares; row 0 is the southern one.
  std::vector<float> paint_;
  std::vector<SignalPoint> signals_;
  std::vector<BlockPhoto> photos_;
};

}  // namespace corvane
