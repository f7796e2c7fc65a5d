#pragma once

#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

#include "erdasimg/ErdasImg.h"

namespace corvane {

inline ErdasHeader HeaderOf(std::uint16_t packType, std::uint16_t nBands, std::int32_t cols,
                            std::int32_t rows) {
  ErdasHeader header;
  header.packType = packType;
  header.bandCount = nBands;
  header.cols = cols;
  header.rows = rows;
  return header;
}

inline std::string BytesOf(const ErdasHeader& header) {
  return {reinterpret_cast<const char*>(&header), sizeof header};
}

template <typename Pixel>
std::string PixelBytes(std::initializer_list<Pixel> pixels) {
  std::string bytes(pixels.size() * sizeof(Pixel), '\0');
  std::memcpy(bytes.data(), pixels.begin(), bytes.size());
  return bytes;
}

// The bytes of a band as they stand in memory; "" for one that is not there.
inline std::string BandBytes(const ErdasImg& image, std::int64_t band) {
  const auto bytes = image.GetBands().GetBand(band);
  return {bytes.begin(), bytes.end()};
}

// The pixels of a band in the type that they are stored in.
template <typename Pixel>
std::vector<Pixel> BandPixelsOf(const ErdasImg& image, std::int64_t band) {
  const auto bytes = image.GetBands().GetBand(band);
  std::vector<Pixel> pixels(bytes.size() / sizeof(Pixel));
  if (!pixels.empty()) std::memcpy(pixels.data(), bytes.data(), bytes.size());
  return pixels;
}

// Fills all bands with bytes that differ from pixel to pixel and band to band. As floats and doubles they are
// ordinary numbers.
inline void FillWithPattern(ErdasImg& image) {
  for (std::int64_t band = 0; band < image.GetBandCount(); ++band) {
    const auto bytes = image.GetBands().GetBand(band);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      bytes[i] = static_cast<std::uint8_t>(1 + (7 * i + 31 * static_cast<std::size_t>(band)) % 113);
    }
  }
}

}  // namespace corvane
