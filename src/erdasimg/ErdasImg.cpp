#include "erdasimg/ErdasImg.h"

#include <algorithm>

namespace corvane {

ErdasImg::ErdasImg() = default;

ErdasImg::~ErdasImg() = default;

int ErdasImg::Create(const ErdasHeader& header, bool contiguous) {
  m_header = header;
  if (m_header.cols <= 0 || m_header.rows <= 0) return -1;
  FreeBands(m_bands);  // first, so that both are never there together
  m_bands = AllocateBands(m_header.bandCount, m_header.rows, m_header.cols,
                          BytesPerPixelOf(m_header.packType), contiguous);
  return m_bands ? 1 : -2;
}

BandArray ErdasImg::AllocateBands(std::int32_t bands, std::int32_t rows, std::int32_t cols,
                                  std::int32_t bytesPerPixel, bool contiguous) {
  m_bandsContiguous = contiguous ? 1 : 0;
  std::int64_t bandBytes = 0;
  const bool isTooLarge =
      __builtin_mul_overflow(std::int64_t{rows} * cols, std::int64_t{bytesPerPixel}, &bandBytes);
  return rows < 0 || cols < 0 || isTooLarge ? BandArray() : BandArray::Allocate(bands, bandBytes, contiguous);
}

bool ErdasImg::AllocateUpTo(std::int64_t maxBytes, bool contiguous) {
  FreeBands(m_bands);
  std::int64_t bytes = std::int64_t{m_header.cols} * m_header.rows;
  const std::int64_t bytesOfAllBands = std::int64_t{BytesPerPixelOf(m_header.packType)} * GetBandCount();
  if (__builtin_mul_overflow(bytes, bytesOfAllBands, &bytes) || bytes > maxBytes) return false;
  m_bands = AllocateBands(GetBandCount(), m_header.rows, m_header.cols, m_bytesPerPixel, contiguous);
  return static_cast<bool>(m_bands);
}

void ErdasImg::FreeBands(BandArray& bands) {
  bands = {};
}

void ErdasImg::Free() {
  FreeBands(m_bands);
  FreeBands(m_subset);
}

int ErdasImg::CopyTo(ErdasImg& other) const {
  const BandArray bands = m_bands;  // the other image may be this one
  const int status = other.Create(m_header, false);
  if (status < 0) return status;
  for (std::int32_t band = 0; band < GetBandCount(); ++band) {
    const auto from = bands.GetBand(band);
    const auto to = other.m_bands.GetBand(band);
    std::copy_n(from.data(), std::min(from.size(), to.size()), to.data());
  }
  return status;
}

std::int32_t ErdasImg::BytesPerPixelOf(std::uint16_t packType) {
  m_bytesPerPixel = BytesOfPackType(packType);
  return m_bytesPerPixel;
}

bool ErdasImg::SameGeometry(const ErdasImg& other) const {
  const ErdasHeader& a = m_header;
  const ErdasHeader& b = other.m_header;
  return a.bandCount == b.bandCount && a.cols == b.cols && a.rows == b.rows && a.packType == b.packType &&
         a.xCell == b.xCell && a.yCell == b.yCell && a.xMap == b.xMap && a.yMap == b.yMap;
}

}  // namespace corvane
