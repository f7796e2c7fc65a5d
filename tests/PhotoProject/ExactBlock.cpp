#include "ExactBlock.h"

#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <utility>

namespace corvane {

namespace {

constexpr double kFocal = 150.0;
constexpr double kFrame = 230.0;
constexpr double kPixel = 0.1;
constexpr double kHeight = 1500.0;
constexpr double kGroundFrame = kFrame * kHeight / kFocal;
constexpr double kStep = 0.4 * kGroundFrame;
constexpr double kMargin = 0.05 * kGroundFrame;

class Noise {
 public:
  // Between -size and size.
  double Of(double size) { return size * (static_cast<double>(random_() >> 11) * 0x1p-52 - 1.0); }

 private:
  std::mt19937_64 random_{7};
};

std::unique_ptr<AerialPhoto> NewPhoto(const BlockShape& shape) {
  auto photo = std::make_unique<AerialPhoto>();
  const double rows[3][3] = {{kPixel, 0.0, -kFrame / 2.0 - shape.principalX},
                             {0.0, -kPixel, kFrame / 2.0 - shape.principalY},
                             {0.0, 0.0, -kFocal}};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) photo->imageToPhoto[i][j] = rows[i][j];
  }
  return photo;
}

void SetExterior(AerialPhoto& photo, const BlockShape& shape, const double (&values)[6]) {
  photo.SetExterior(kFocal, shape.principalX, shape.principalY, values[3], values[4], values[5], values[0],
                    values[1], values[2]);
  photo.Recompute();
}

// The photos in their true places.
void AddPhotos(const BlockShape& shape, PhotoProject& project, BlockTruth& truth, Noise& noise) {
  for (int strip = 0; strip < shape.nStrips; ++strip) {
    project.photos.emplace_back();
    project.stripPhotoCounts.push_back(shape.nPhotos);
    for (int i = 0; i < shape.nPhotos; ++i) {
      auto photo = NewPhoto(shape);
      photo->name = "s" + std::to_string(strip) + "p" + std::to_string(i) + ".lan";
      photo->stripIndex = strip;
      photo->photoIndex = i;
      const BlockTruth::Exterior exterior = {
          {noise.Of(0.02), noise.Of(0.02), noise.Of(0.02), 5000.0 + i * kStep + noise.Of(20.0),
           8000.0 - strip * kStep + noise.Of(20.0), 300.0 + kHeight + noise.Of(20.0)}};
      SetExterior(*photo, shape, exterior.values);
      truth.photos.push_back(exterior);
      project.photos.back().push_back(std::move(photo));
    }
  }
  project.stripCount = shape.nStrips;
  project.photoCount = shape.nStrips * shape.nPhotos;
}

// Ground points over all that two photos see in either direction; control points first.
void AddGroundPoints(const BlockShape& shape, PhotoProject& project, BlockTruth& truth, Noise& noise) {
  const double width = (shape.nPhotos - 1) * kStep + 2.0 * kMargin;
  const double depth = (shape.nStrips - 1) * kStep + 2.0 * kMargin;
  std::vector<Point3> passes;
  for (int n = 0; n < shape.nAlong * shape.nAcross; ++n) {
    const double x = 5000.0 - kMargin + (n % shape.nAlong + 0.5) * width / shape.nAlong;
    const double y = 8000.0 + kMargin - (n / shape.nAlong + 0.5) * depth / shape.nAcross;
    const Point3 place = {x + noise.Of(40.0), y + noise.Of(40.0),
                          300.0 + 80.0 * std::sin(x / 700.0) * std::sin(y / 900.0)};
    if (shape.controlEvery == 0 || n % shape.controlEvery != 0) {
      passes.push_back(place);
      continue;
    }
    GroundPoint control;
    control.name = "c" + std::to_string(project.controlCount++);
    control.x = place.x;
    control.y = place.y;
    control.z = place.z;
    project.AddGroundPoint(control);
    truth.groundPoints.push_back(place);
  }
  for (const Point3& place : passes) {
    GroundPoint pass;
    pass.type = kPassPoint;
    pass.name = "p" + std::to_string(project.passCount++);
    project.AddGroundPoint(pass);
    truth.groundPoints.push_back(place);
  }
}

// What the photo sees of the ground points.
void Measure(PhotoProject& project, AerialPhoto& photo, const BlockTruth& truth) {
  for (std::size_t n = 0; n < truth.groundPoints.size(); ++n) {
    const GroundPoint& point = project.groundPoints[n];
    const Point3& place = truth.groundPoints[n];
    ImageMeasurement measurement = {point.type, point.name, 0.0, 0.0, static_cast<int>(n)};
    photo.GroundToImage(place.x, place.y, place.z, measurement.col, measurement.row);
    const double nPixels = kFrame / kPixel;
    if (!(measurement.col >= 0.0 && measurement.col <= nPixels)) continue;
    if (!(measurement.row >= 0.0 && measurement.row <= nPixels)) continue;
    JoinMeasurement(project, photo, measurement);
  }
}

}  // namespace

void JoinMeasurement(PhotoProject& project, AerialPhoto& photo, const ImageMeasurement& measurement) {
  GroundPoint& point = project.groundPoints[static_cast<std::size_t>(measurement.groundIndex)];
  point.stripIndices.push_back(photo.stripIndex);
  point.photoIndices.push_back(photo.photoIndex);
  point.measurementIndices.push_back(static_cast<int>(photo.measurements.size()));
  photo.measurements.push_back(measurement);
  if (point.type == kPassPoint && project.FindPassPoint(point.name) < 0) project.AddPassPoint(measurement);
}

BlockTruth MakeExactBlock(const BlockShape& shape, PhotoProject& project) {
  Noise noise;
  BlockTruth truth;
  AddPhotos(shape, project, truth, noise);
  AddGroundPoints(shape, project, truth, noise);
  std::size_t k = 0;
  for (auto& strip : project.photos) {
    for (auto& photo : strip) {
      Measure(project, *photo, truth);
      BlockTruth::Exterior start = truth.photos[k++];
      for (int i = 0; i < 6; ++i) start.values[i] += noise.Of(i < 3 ? shape.angleNoise : shape.placeNoise);
      SetExterior(*photo, shape, start.values);
    }
  }
  return truth;
}

}  // namespace corvane
