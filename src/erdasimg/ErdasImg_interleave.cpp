#include <algorithm>
#include <array>
#include <cstring>
#include <exception>

#include "erdasimg/ErdasImg.h"
#include "erdasimg/PixelCopy.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

constexpr std::int32_t kMostSamples = 3;  // of a pixel on display
constexpr std::int64_t kBlock = 1 << 16;  // bytes read at a time

// The header of a device-independent bitmap, little-endian.
struct DibHeader {
  std::uint32_t size = 40;
  std::int32_t width = 0;   // pixels, a multiple of 4
  std::int32_t height = 0;  // positive: rows go from the bottom up
  std::uint16_t planes = 1;
  std::uint16_t bitsPerPixel = 0;
  std::uint32_t compression = 0;
  std::uint32_t imageSize = 0;  // bytes
  std::int32_t xPerMetre = 0;
  std::int32_t yPerMetre = 0;
  std::uint32_t coloursUsed = 0;
  std::uint32_t coloursImportant = 0;
};
static_assert(sizeof(DibHeader) == 40);

constexpr std::int64_t kPaletteBytes = 256 * 4;
constexpr std::int64_t kLargestDib = UINT32_MAX;  // bytes that the header can tell of

std::vector<std::uint8_t> ZeroedBytes(std::int64_t size) {
  try {
    return std::vector<std::uint8_t>(static_cast<std::size_t>(size));
  } catch (const std::exception&) {
    return {};
  }
}

// A row of a band as bytes, `cols` of them, one a pixel, as far as the band holds them.
std::span<const std::uint8_t> ByteRow(const ErdasImg& image, std::int32_t row, std::int32_t band) {
  const auto bytes = image.m_bands.GetBand(band);
  const std::int64_t first = std::int64_t{row} * image.m_header.cols;
  const std::int64_t nLeft = static_cast<std::int64_t>(bytes.size()) - first;
  if (nLeft <= 0) return {};
  return bytes.subspan(static_cast<std::size_t>(first),
                       static_cast<std::size_t>(std::min<std::int64_t>(nLeft, image.m_header.cols)));
}

// Puts the samples of a row to their places, `nSamples` bytes apart.
void PutRow(const ErdasImg& image, std::int32_t row, std::int32_t nSamples, std::uint8_t* to) {
  for (std::int32_t band = 0; band < nSamples; ++band) {
    const auto from = ByteRow(image, row, band);
    CopyPixels(from.data(), 1, to + band, static_cast<std::size_t>(nSamples),
               static_cast<std::int64_t>(from.size()), 1);
  }
}

void PutGreyPalette(std::uint8_t* to) {
  for (int grey = 0; grey < 256; ++grey) std::fill_n(to + 4 * grey, 4, static_cast<std::uint8_t>(grey));
}

DibHeader DibHeaderOf(const ErdasHeader& header, std::int64_t width, std::int32_t nSamples) {
  DibHeader dib;
  dib.width = static_cast<std::int32_t>(width);
  dib.height = header.rows;
  dib.bitsPerPixel = static_cast<std::uint16_t>(8 * nSamples);
  dib.imageSize = static_cast<std::uint32_t>(width * header.rows * nSamples);
  dib.xPerMetre = TruncateSaturated(1000000.0 / header.xCell);
  dib.yPerMetre = TruncateSaturated(1000000.0 / header.yCell);
  return dib;
}

std::vector<std::uint8_t> DibOf(const ErdasImg& image, std::int32_t nSamples) {
  const ErdasHeader& header = image.m_header;
  if (!image.m_bands || nSamples <= 0 || header.cols <= 0 || header.rows <= 0) return {};
  const std::int64_t width = (std::int64_t{header.cols} + 3) / 4 * 4;
  if (width * nSamples > kLargestDib / header.rows) return {};
  const std::int64_t paletteBytes = nSamples == 1 ? kPaletteBytes : 0;
  const std::int64_t rowBytes = width * nSamples;
  const DibHeader dibHeader = DibHeaderOf(header, width, nSamples);
  auto dib = ZeroedBytes(std::int64_t{sizeof dibHeader} + paletteBytes + rowBytes * header.rows);
  if (dib.empty()) return {};
  std::memcpy(dib.data(), &dibHeader, sizeof dibHeader);
  std::uint8_t* to = dib.data() + sizeof dibHeader;
  if (paletteBytes > 0) PutGreyPalette(to);
  to += paletteBytes;
  if (nSamples == 2) return dib;  // Kept: two bands have no picture
  for (std::int32_t row = header.rows - 1; row >= 0; --row) {
    PutRow(image, row, nSamples, to);
    const std::int64_t nUsed = std::int64_t{header.cols} * nSamples;
    std::fill(to + nUsed, to + rowBytes, std::uint8_t{0xFF});
    to += rowBytes;
  }
  return dib;
}

// Reads a line of bytes to places `step` bytes apart, or past it without a place. False if it is not whole.
bool ReadLine(InputFile& file, std::int64_t cols, std::uint8_t* to, std::size_t step) {
  std::array<std::uint8_t, kBlock> block;
  while (cols > 0) {
    const auto size = static_cast<std::size_t>(std::min(cols, kBlock));
    const std::size_t got = file.Read(block.data(), size);
    if (to) {
      CopyPixels(block.data(), 1, to, step, static_cast<std::int64_t>(got), 1);
      to += got * step;
    }
    if (got < size) return false;
    cols -= static_cast<std::int64_t>(size);
  }
  return true;
}

// Reads the lines of a .lan, whose header has been read, to their places between those of the other bands.
void ReadLines(InputFile& file, const ErdasHeader& header, std::int32_t nSamples, std::uint8_t* to) {
  const auto step = static_cast<std::size_t>(nSamples);
  for (std::int32_t row = 0; row < header.rows; ++row) {
    for (std::int32_t band = 0; band < header.bandCount; ++band) {
      if (!ReadLine(file, header.cols, band < nSamples ? to + band : nullptr, step)) return;
    }
    to += static_cast<std::size_t>(header.cols) * step;
  }
}

}  // namespace

std::vector<std::uint8_t> ErdasImg::MakeDib8() const {
  return DibOf(*this, 1);
}

std::vector<std::uint8_t> ErdasImg::MakeDib() const {
  return DibOf(*this, std::min(GetBandCount(), kMostSamples));
}

void ErdasImg::GetInterleaved(std::uint8_t* buffer) const {
  const std::int32_t nSamples = std::min(GetBandCount(), kMostSamples);
  if (!buffer || nSamples == 0 || m_header.cols <= 0 || m_header.rows <= 0) return;
  const std::size_t rowBytes = static_cast<std::size_t>(m_header.cols) * static_cast<std::size_t>(nSamples);
  for (std::int32_t row = 0; row < m_header.rows; ++row) {
    std::fill_n(buffer, rowBytes, std::uint8_t{0});
    PutRow(*this, row, nSamples, buffer);
    buffer += rowBytes;
  }
}

int ErdasImg::ReadInterleaved(InputFile& file, std::vector<std::uint8_t>& buffer) {
  buffer.clear();
  file.Read(&m_header, sizeof m_header);
  const std::int32_t nSamples = std::min(GetBandCount(), kMostSamples);
  if (m_header.cols <= 0 || m_header.rows <= 0) return -1;
  const std::int64_t limit = file.BytesLeft().value_or(0) + kMaxFilledBytes;
  const std::int64_t nPixels = std::int64_t{m_header.cols} * m_header.rows;
  if (nSamples > 0 && nPixels > limit / nSamples) return -1;
  buffer = ZeroedBytes(nPixels * nSamples);
  if (buffer.empty()) return nSamples > 0 ? -1 : 1;
  ReadLines(file, m_header, nSamples, buffer.data());
  return 1;
}

void ErdasImg::SetFromInterleaved(const std::uint8_t* buffer) {
  if (!buffer || m_header.cols <= 0 || m_header.rows <= 0 || m_bytesPerPixel <= 0) return;
  const auto size = static_cast<std::size_t>(m_bytesPerPixel);
  const std::size_t step = size * static_cast<std::size_t>(GetBandCount());
  const std::int64_t nPixels = std::int64_t{m_header.cols} * m_header.rows;
  for (std::int32_t band = 0; band < GetBandCount(); ++band) {
    const auto bytes = m_bands.GetBand(band);
    const std::int64_t nHeld = std::min(nPixels, static_cast<std::int64_t>(bytes.size() / size));
    if (nHeld < 2) continue;
    // Kept: the first pixel stays.
    CopyPixels(buffer + step + static_cast<std::size_t>(band) * size, step, bytes.data() + size, size,
               nHeld - 1, size);
  }
}

int ErdasImg::WriteInterleaved(const std::string& path, const std::uint8_t* buffer) {
  if (IsLan(path)) return WriteInterleavedLan(path, buffer);
  SetFromInterleaved(buffer);
  return Write(path);
}

int ErdasImg::WriteInterleavedLan(const std::string& path, const std::uint8_t* buffer) {
  OutputFile file(path);
  if (!file.IsOpen()) return -1;
  m_header.bandCount = kMostSamples;  // Kept: packType stays, though the samples are bytes
  const std::int32_t cols = buffer ? std::max(m_header.cols, 0) : 0;
  auto line = ZeroedBytes(cols);
  bool good = file.Write(&m_header, sizeof m_header) && static_cast<std::int64_t>(line.size()) == cols;
  for (std::int32_t row = 0; good && cols > 0 && row < m_header.rows; ++row) {
    for (std::int32_t band = 0; band < kMostSamples; ++band) {
      CopyPixels(buffer + band, kMostSamples, line.data(), 1, cols, 1);
      good = file.Write(line.data(), line.size()) && good;
    }
    buffer += std::size_t{kMostSamples} * static_cast<std::size_t>(cols);
  }
  return good && file.Commit() ? 1 : -1;
}

}  // namespace corvane
