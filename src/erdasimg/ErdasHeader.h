#pragma once

#include <cstdint>

namespace corvane {

// The header of a raster image: 128 bytes in the layout of the ERDAS 7.4 .lan file, little-endian, held and
// written as they stand.
struct ErdasHeader {
  char magic[6] = {'H', 'E', 'A', 'D', '7', '4'};
  std::uint16_t packType = 0;  // the pixel type: see PackType.h
  std::uint16_t bandCount = 1;
  std::uint8_t reserved10[6] = {};
  std::int32_t cols = 1;    // width in pixels
  std::int32_t rows = 1;    // height in pixels
  std::int32_t xStart = 0;  // image-file coordinate of column 0
  std::int32_t yStart = 0;  // image-file coordinate of row 0
  std::uint8_t reserved32[56] = {};
  std::uint16_t mapType = 1;     // never interpreted
  std::uint16_t classCount = 0;  // classes or regions
  std::uint8_t reserved92[20] = {};
  float xMap = 0.0f;    // ground X of the image's left edge
  float yMap = 0.0f;    // ground Y of the image's top edge
  float xCell = 1.0f;   // ground size of a pixel along a row
  float yCell = -1.0f;  // ground size of a pixel down a column: negative, Y falls as the row grows
};
static_assert(sizeof(ErdasHeader) == 128);

}  // namespace corvane
