#include "OpenGL/Stereo_2Cursor/OrthoMosaic.h"

#include <algorithm>
#include <cmath>

#include "erdasimg/LanLack.h"
#include "erdasimg/RasterTools.h"
#include "io/InputFile.h"
#include "io/Paths.h"
#include "numerics/Extents.h"

namespace corvane {

namespace {

constexpr CropFractions kCropOfSeveral = {.left = 0.3, .right = 0.3, .top = 0.2, .bottom = 0.2};

// Output takes its bands and type from a header, which so has to be one. Of a pipe there is no length.
bool IsImage(const std::string& path, const ErdasHeader& header) {
  const auto nBytes = InputFile(path).BytesLeft();
  return LackOf(header, nBytes.value_or(INT64_MAX)) == LanLack::Nothing;
}

}  // namespace

OrthoMosaic::OrthoMosaic(const ErdasImg& dem, const GroundExtent& wanted, std::size_t nChosen)
    : dem_(dem),
      wanted_{wanted.minX, wanted.minY, wanted.maxX, wanted.maxY},
      crop_(nChosen > 1 ? kCropOfSeveral : CropFractions{}) {}

OrthoMosaic::Taken OrthoMosaic::Add(const std::string& path) {
  auto added = std::make_unique<Photo>();
  AerialPhoto& photo = added->photo;
  const std::string orientation = ExistingOrientation(DerivedName(path, ".orn"));
  if (photo.LoadOrientation(orientation) < 0) return Taken::NoOrientation;
  if (photo.image.ReadHeader(path) < 0) return Taken::NoHeader;
  if (!IsImage(path, *photo.image.GetHeader())) return Taken::NoImage;
  photo.name = path;

  photo.FootprintAtHeight(crop_, HeightUnder(photo), added->footprint);
  double extent[4];
  ExtentOfPoints(added->footprint.data(), 4, 2, extent);
  double covered[4];
  const bool isNumber = std::none_of(added->footprint.begin(), added->footprint.end(),
                                     [](double coordinate) { return std::isnan(coordinate); });
  if (!isNumber || IntersectExtents(extent, wanted_, covered) == 0) {
    return isNumber && photo.IsOriented() ? Taken::Outside : Taken::Unoriented;
  }
  if (photos_.empty()) std::copy_n(covered, 4, covered_);
  UnionExtents(covered_, covered);
  photos_.push_back(std::move(added));
  return Taken::Yes;
}

double OrthoMosaic::HeightUnder(const AerialPhoto& photo) const {
  double z = 0.0;
  dem_.GetPixelXY(0, photo.perspectiveX, photo.perspectiveY, z);
  return z;
}

int OrthoMosaic::MakeOutput(float cell, ErdasImg& output) const {
  ErdasHeader header = *photos_.front()->photo.image.GetHeader();
  header.xMap = static_cast<float>(covered_[0]);
  header.yMap = static_cast<float>(covered_[3]);
  header.xCell = cell;
  header.yCell = -cell;
  return MakeImage(header, (covered_[3] - covered_[1]) / cell, (covered_[2] - covered_[0]) / cell, output);
}

}  // namespace corvane
