#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "OpenGL/Stereo_2Cursor/PhotoFixture.h"
#include "StereoPair/StereoPair.h"

namespace corvane {

// Makes an image of bytes, row by row from the top. What of the pixels is not given is 0.
inline void SetBytes(ErdasImg& image, std::int32_t cols, std::int32_t rows,
                     const std::vector<std::uint8_t>& bytes) {
  ErdasHeader header;
  header.cols = cols;
  header.rows = rows;
  image.Create(header, false);
  const auto band = image.GetBands().GetBand(0);
  std::copy_n(bytes.begin(), std::min(bytes.size(), band.size()), band.begin());
}

// Writes the photo's image and orientation: "a" gives a.lan and a.orn.
inline void StorePhoto(AerialPhoto& photo, const std::string& stem) {
  photo.image.Write(stem + ".lan");
  photo.StoreOrientation(stem + ".orn", "photo");
}

// Two vertical photos with f = 150 and pixels of 0.1, of which (50, 50) is the principal point. Their
// perspective centres are (1000, 2000, 1500) and `base` further along x. So the ground point (X, Y, Z) is at
//   col = 50 + 1500 (X - Xs) / (1500 - Z),  row = 50 - 1500 (Y - 2000) / (1500 - Z)
// and the disparity of height 0 is `base` pixels.
struct VerticalPair {
  VerticalPair(std::int32_t cols, std::int32_t rows, const std::vector<std::uint8_t>& leftBytes = {},
               const std::vector<std::uint8_t>& rightBytes = {}, double base = 10.0) {
    Orient(left, 1000.0);
    Orient(right, 1000.0 + base);
    SetBytes(left.image, cols, rows, leftBytes);
    SetBytes(right.image, cols, rows, rightBytes);
    pair.SetPhotos(&left, &right);
    pair.InitGeometry();
  }

  AerialPhoto left;
  AerialPhoto right;
  StereoPair pair;

 private:
  static void Orient(AerialPhoto& photo, double x) {
    SetPhoto(photo, {.x = x, .c = -5.0, .g = 5.0});
    photo.pixelSizeX = 0.1;
    photo.pixelSizeY = 0.1;
  }
};

}  // namespace corvane
