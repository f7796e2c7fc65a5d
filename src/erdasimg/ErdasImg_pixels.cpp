#include <algorithm>
#include <new>
#include <stdexcept>

#include "erdasimg/BandPixels.h"
#include "erdasimg/ErdasImg.h"
#include "erdasimg/PixelCopy.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

// The row or column of a place; not-a-number lies before the first one.
std::int64_t PixelNumber(double place) {
  return place == place ? TruncateTo64(place) : -1;
}

// What a run of pixels in a row has inside of the image: positions in the run, from `begin` to `end`.
struct RunInside {
  std::int64_t begin = 0;
  std::int64_t end = 0;
};

RunInside InsideOf(const ErdasHeader& header, std::int32_t row, std::int32_t firstCol, std::size_t count) {
  if (row < 0 || row >= header.rows) return {};
  const std::int64_t begin = std::max<std::int64_t>(-std::int64_t{firstCol}, 0);
  const std::int64_t end =
      std::min<std::int64_t>(std::int64_t{header.cols} - firstCol, static_cast<std::int64_t>(count));
  return begin < end ? RunInside{begin, end} : RunInside{};
}

template <typename Pixel>
void GetRun(const BandPixels<Pixel>& pixels, std::int64_t first, RunInside run, double* values) {
  const std::int64_t plainEnd =
      pixels.IsPlain() ? run.end : run.begin;  // up to here without a look at the bounds
  for (std::int64_t i = run.begin; i < plainEnd; ++i) {
    values[i] = static_cast<double>(pixels.GetPlain(first + i));
  }
  for (std::int64_t i = plainEnd; i < run.end; ++i) values[i] = static_cast<double>(pixels.Get(first + i));
}

template <typename Pixel>
void SetRun(const BandPixels<Pixel>& pixels, std::int64_t first, RunInside run, const double* values) {
  const std::int64_t plainEnd = pixels.IsPlain() ? run.end : run.begin;
  for (std::int64_t i = run.begin; i < plainEnd; ++i) {
    pixels.SetPlain(first + i, PixelFrom<Pixel>(values[i]));
  }
  for (std::int64_t i = plainEnd; i < run.end; ++i) pixels.Set(first + i, PixelFrom<Pixel>(values[i]));
}

// The pixels of a column that the band holds, the first of them in row 0.
struct HeldColumn {
  std::uint8_t* first = nullptr;
  std::int64_t nHeld = 0;
  std::size_t rowStep = 0;    // bytes
  std::size_t pixelSize = 0;  // bytes
};

HeldColumn HeldColumnOf(const ErdasImg& image, std::int32_t col, std::int32_t band) {
  const ErdasHeader& header = image.m_header;
  if (image.m_bytesPerPixel <= 0 || col < 0 || col >= header.cols) return {};
  const auto bytes = image.m_bands.GetBand(band);
  const std::int64_t nPixels = static_cast<std::int64_t>(bytes.size()) / image.m_bytesPerPixel;
  if (col >= nPixels || header.rows <= 0) return {};
  const std::int64_t nHeld = std::min<std::int64_t>((nPixels - col - 1) / header.cols + 1, header.rows);
  const auto pixelSize = static_cast<std::size_t>(image.m_bytesPerPixel);
  return {bytes.data() + static_cast<std::size_t>(col) * pixelSize, nHeld,
          static_cast<std::size_t>(header.cols) * pixelSize, pixelSize};
}

}  // namespace

bool ErdasImg::GetPixel(std::int32_t band, std::int32_t row, std::int32_t col, double& value) const {
  if (row < 0 || row >= m_header.rows || col < 0 || col >= m_header.cols) return false;
  value = WithPixelType(m_header.packType, [&](auto pixel) {
    const BandPixels<decltype(pixel)> pixels(*this, band);
    return static_cast<double>(pixels.Get(pixels.IndexOf(row, col)));
  });
  return true;
}

bool ErdasImg::GetPixels(std::int32_t row, std::int32_t col, double* values) const {
  if (row < 0 || row >= m_header.rows || col < 0 || col >= m_header.cols) return false;
  for (std::int32_t band = 0; band < GetBandCount(); ++band) GetPixel(band, row, col, values[band]);
  return true;
}

bool ErdasImg::GetPixelXY(std::int32_t band, double x, double y, double& value) const {
  const std::int64_t col = PixelNumber((x - m_header.xMap) / m_header.xCell);
  const std::int64_t row = PixelNumber(-((m_header.yMap - y) / m_header.yCell));
  if (row < 0 || row >= m_header.rows || col < 0 || col >= m_header.cols) return false;
  return GetPixel(band, static_cast<std::int32_t>(row), static_cast<std::int32_t>(col), value);
}

bool ErdasImg::SetPixel(std::int32_t band, std::int32_t row, std::int32_t col, double value) {
  if (row < 0 || row >= m_header.rows || col < 0 || col >= m_header.cols) return true;
  WithPixelType(m_header.packType, [&](auto pixel) {
    using Pixel = decltype(pixel);
    const BandPixels<Pixel> pixels(*this, band);
    pixels.Set(pixels.IndexOf(row, col), PixelFrom<Pixel>(value));
  });
  return true;
}

bool ErdasImg::SetPixels(std::int32_t row, std::int32_t col, const double* values) {
  for (std::int32_t band = 0; band < GetBandCount(); ++band) SetPixel(band, row, col, values[band]);
  return true;
}

void ErdasImg::Fill(double value) {
  WithPixelType(m_header.packType, [&](auto type) {
    using Pixel = decltype(type);
    const Pixel pixel = PixelFrom<Pixel>(value);
    for (std::int32_t band = 0; band < GetBandCount(); ++band) {
      const BandPixels<Pixel> pixels(*this, band);
      const std::int64_t nHeld = pixels.GetHeldCount();
      for (std::int64_t index = 0; index < nHeld; ++index) pixels.Set(index, pixel);
    }
  });
}

void ErdasImg::GetPixelRow(std::int32_t band, std::int32_t row, std::int32_t firstCol,
                           std::span<double> values) const {
  const RunInside run = InsideOf(m_header, row, firstCol, values.size());
  WithPixelType(m_header.packType, [&](auto pixel) {
    const BandPixels<decltype(pixel)> pixels(*this, band);
    GetRun(pixels, pixels.IndexOf(row, firstCol), run, values.data());
  });
}

void ErdasImg::SetPixelRow(std::int32_t band, std::int32_t row, std::int32_t firstCol,
                           std::span<const double> values) {
  const RunInside run = InsideOf(m_header, row, firstCol, values.size());
  WithPixelType(m_header.packType, [&](auto pixel) {
    const BandPixels<decltype(pixel)> pixels(*this, band);
    SetRun(pixels, pixels.IndexOf(row, firstCol), run, values.data());
  });
}

void ErdasImg::GetRow(std::int32_t row, std::int32_t band, std::vector<std::uint8_t>& buffer) const {
  const std::int64_t rowBytes = std::int64_t{m_header.cols} * m_bytesPerPixel;
  if (m_header.cols <= 0 || rowBytes <= 0) return;
  try {
    if (buffer.empty()) buffer.resize(static_cast<std::size_t>(rowBytes));
  } catch (const std::exception&) {  // no memory for a row that long
    return;
  }
  const auto held = HeldRow(*this, row, band);
  const std::size_t nWanted = std::min(buffer.size(), static_cast<std::size_t>(rowBytes));
  const std::size_t nHeld = std::min(nWanted, held.size());
  std::copy_n(held.data(), nHeld, buffer.data());
  std::fill_n(buffer.data() + nHeld, nWanted - nHeld, std::uint8_t{0});
}

void ErdasImg::CopyRow(std::int32_t row, std::int32_t band, std::uint8_t* buffer) const {
  const std::int64_t rowBytes = std::int64_t{m_header.cols} * m_bytesPerPixel;
  if (!buffer || m_header.cols <= 0 || rowBytes <= 0) return;
  const auto held = HeldRow(*this, row, band);
  std::copy_n(held.data(), held.size(), buffer);
  std::fill_n(buffer + held.size(), static_cast<std::size_t>(rowBytes) - held.size(), std::uint8_t{0});
}

void ErdasImg::GetRowPointer(std::int32_t row, std::int32_t band, std::uint8_t*& pointer) const {
  const auto held = HeldRow(*this, row, band);
  const std::int64_t rowBytes = std::int64_t{m_header.cols} * m_bytesPerPixel;
  pointer = !held.empty() && static_cast<std::int64_t>(held.size()) == rowBytes ? held.data() : nullptr;
}

void ErdasImg::GetColumn(std::int32_t col, std::int32_t band, std::uint8_t* buffer) const {
  if (!buffer || m_header.rows <= 0 || m_bytesPerPixel <= 0) return;
  const HeldColumn held = HeldColumnOf(*this, col, band);
  const auto pixelSize = static_cast<std::size_t>(m_bytesPerPixel);
  CopyPixels(held.first, held.rowStep, buffer, pixelSize, held.nHeld, pixelSize);
  const auto nMissing = static_cast<std::size_t>(m_header.rows - held.nHeld);
  std::fill_n(buffer + static_cast<std::size_t>(held.nHeld) * pixelSize, nMissing * pixelSize,
              std::uint8_t{0});
}

void ErdasImg::SetColumn(std::int32_t col, std::int32_t band, const std::uint8_t* buffer) {
  const HeldColumn held = HeldColumnOf(*this, col, band);
  if (!buffer) return;
  CopyPixels(buffer, held.pixelSize, held.first, held.rowStep, held.nHeld, held.pixelSize);
}

}  // namespace corvane
