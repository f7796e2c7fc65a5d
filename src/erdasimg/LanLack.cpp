#include "erdasimg/LanLack.h"

#include <algorithm>

#include "erdasimg/ErdasImg.h"

namespace corvane {

LanLack LackOf(const ErdasHeader& header, std::int64_t nFileBytes) {
  if (nFileBytes < std::int64_t{sizeof header}) return LanLack::Header;
  if (header.cols <= 0 || header.rows <= 0 || header.bandCount == 0) return LanLack::Size;
  const double nPixelBytes =  // it may be beyond 64 bits
      1.0 * header.cols * header.rows * header.bandCount * BytesOfPackType(header.packType);
  const auto nHeld = static_cast<double>(nFileBytes);
  const double nMissing = sizeof header + nPixelBytes - nHeld;
  const bool lacksMost = nMissing > std::max(static_cast<double>(ErdasImg::kMaxFilledBytes), nHeld);
  return lacksMost ? LanLack::Pixels : LanLack::Nothing;
}

}  // namespace corvane
