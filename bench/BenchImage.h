#pragma once

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>

#include "erdasimg/ErdasImg.h"

namespace corvane {

// Byte images that benchmarks work on.

constexpr std::int32_t kImageSize = 4000;  // rows and columns

// An image of one grey level.
inline ErdasImg MakeFlatImage(std::uint8_t grey) {
  ErdasHeader header;
  header.cols = kImageSize;
  header.rows = kImageSize;
  ErdasImg image;
  if (image.Create(header, false) != 1) std::abort();
  image.Fill(grey);
  return image;
}

// Waves of light and dark with noise over them, as ground has.
inline ErdasImg MakeWaves() {
  ErdasImg image = MakeFlatImage(0);
  std::mt19937 random(1);
  const auto bytes = image.GetBands().GetBand(0);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const double row = static_cast<double>(i / kImageSize);
    const double col = static_cast<double>(i % kImageSize);
    const double wave = std::sin(0.05 * row) * std::sin(0.03 * col + 0.01 * row);
    bytes[i] = static_cast<std::uint8_t>(110.0 + 80.0 * wave + static_cast<double>(random() % 40));
  }
  return image;
}

// Writes the image to the file that the environment variable CORVANE_BENCH_IMAGE names, if there is one,
// where a yardstick finds it; it then has `name` as its file name, so that side files go to the current
// folder.
inline ErdasImg Shared(ErdasImg image, const char* name) {
  const char* const path = std::getenv("CORVANE_BENCH_IMAGE");
  if (path && image.Write(path) != 1) std::abort();
  image.SetFileName(name);
  return image;
}

}  // namespace corvane
