#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>

#include "erdasimg/ErdasImg.h"

namespace corvane {

// The pixels of one band in the type that the pack type says, each by its index row * cols + col. Callers may
// have changed the header, the pixel size or the bands, so that these no longer fit each other: a pixel that
// the band's buffer does not hold reads as 0, and what is stored there is dropped.
template <typename Pixel>
class BandPixels {
 public:
  BandPixels(std::span<std::uint8_t> bytes, std::int32_t bytesPerPixel, std::int32_t rows, std::int32_t cols)
      : cols_(cols), rows_(rows) {
    if (bytesPerPixel <= 0 || bytes.size() < sizeof(Pixel)) return;
    first_ = bytes.data();
    step_ = bytesPerPixel;
    nHeld_ = static_cast<std::int64_t>(bytes.size() - sizeof(Pixel)) / step_ + 1;
  }
  BandPixels(const ErdasImg& image, std::int64_t band)
      : BandPixels(image.m_bands.GetBand(band), image.m_bytesPerPixel, image.m_header.rows,
                   image.m_header.cols) {}

  bool IsInside(std::int64_t row, std::int64_t col) const {
    return row >= 0 && row < rows_ && col >= 0 && col < cols_;
  }
  std::int64_t IndexOf(std::int64_t row, std::int64_t col) const { return row * cols_ + col; }

  // Pixels of the image, and how many of them, from the first one on, the buffer holds.
  std::int64_t GetCount() const { return std::int64_t{std::max(rows_, 0)} * std::max(cols_, 0); }
  std::int64_t GetHeldCount() const { return std::min(nHeld_, GetCount()); }

  // Whether the buffer holds all pixels, one behind the other.
  bool IsPlain() const { return step_ == sizeof(Pixel) && nHeld_ >= GetCount(); }

  // Of an index that is not negative.
  Pixel Get(std::int64_t index) const {
    Pixel pixel{};
    if (index < nHeld_) std::memcpy(&pixel, first_ + index * step_, sizeof pixel);
    return pixel;
  }
  void Set(std::int64_t index, Pixel pixel) const {
    if (index < nHeld_) std::memcpy(first_ + index * step_, &pixel, sizeof pixel);
  }

  // Of an index below GetHeldCount() in a plain buffer.
  Pixel GetPlain(std::int64_t index) const {
    Pixel pixel;
    std::memcpy(&pixel, first_ + index * static_cast<std::int64_t>(sizeof pixel), sizeof pixel);
    return pixel;
  }
  void SetPlain(std::int64_t index, Pixel pixel) const {
    std::memcpy(first_ + index * static_cast<std::int64_t>(sizeof pixel), &pixel, sizeof pixel);
  }

 private:
  std::uint8_t* first_ = nullptr;
  std::int64_t step_ = 0;
  std::int64_t nHeld_ = 0;
  std::int32_t cols_;
  std::int32_t rows_;
};

}  // namespace corvane
