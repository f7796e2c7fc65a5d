#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"

namespace corvane {

// An orthophoto of several photos on a DEM, in two passes. The first, Add, reads orientations and headers and
// finds out what the photos cover; the second takes the photos one at a time, in their order, and paints each
// over those before it. `dem` outlives the mosaic.
//
// A photo covers its footprint: where its frame meets the plane at the height of the DEM under the camera.
// With several photos only their middle is taken: 30 % are left away on the left and the right, 20 % at the
// top and the bottom.
class OrthoMosaic {
 public:
  // What has become of a photo.
  enum class Taken {
    Yes,
    NoOrientation,
    NoHeader,    // its file does not open
    NoImage,     // by LackOf its header and the length of its file
    Unoriented,  // nothing is left of it, and its orientation is none, by its footprint or IsOriented
    Outside,
  };

  struct Photo {
    AerialPhoto photo;  // with its header, and no pixels
    Footprint footprint{};
  };

  // `wanted` is the rectangle on the ground that the image stays within. Kept: whether photos are cropped
  // follows from the number that was chosen, not from how many of them can be taken.
  OrthoMosaic(const ErdasImg& dem, const GroundExtent& wanted, std::size_t nChosen);

  // Reads the orientation beside the image, ".orn" or ".ORN", and the image's header. One that does not open
  // is told with a warning.
  Taken Add(const std::string& path);

  const std::vector<std::unique_ptr<Photo>>& GetPhotos() const { return photos_; }

  // A zeroed image, as the first photo's header says but for size, place and cell: of what the footprints
  // cover within the wanted rectangle. There must be a photo. Results as of MakeImage.
  int MakeOutput(float cell, ErdasImg& output) const;

 private:
  double HeightUnder(const AerialPhoto& photo) const;

  const ErdasImg& dem_;
  double wanted_[4];  // min x, min y, max x, max y
  CropFractions crop_;
  std::vector<std::unique_ptr<Photo>> photos_;
  double covered_[4] = {};  // as `wanted_`
};

}  // namespace corvane
