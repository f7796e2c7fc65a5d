#include "TIN/PointBlocks.h"

#include <algorithm>

#include "TIN/PointRecord.h"
#include "TIN/Resize.h"
#include "io/InputFile.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::int32_t kBlockPoints = 32768;

// Whether a file with so many bytes of records may be one of `count` points that has been cut short.
bool MayHold(std::int64_t bytes, std::int32_t count) {
  return count >= 0 && count <= 4 * (bytes / static_cast<std::int64_t>(kPointBytes)) + 4096;
}

}  // namespace

PointBlocks::PointBlocks(InputFile& file, std::int32_t nPoints)
    : file_(file), nPoints_(nPoints), size_(file.BytesLeft()) {}

bool PointBlocks::Allocate() {
  return Resize(block_, static_cast<std::size_t>(std::clamp(nPoints_, 1, kBlockPoints)) * kPointBytes);
}

bool PointBlocks::IsBelievable() const {
  return nPoints_ >= 0 && (!size_ || MayHold(*size_, nPoints_));
}

std::span<const char> PointBlocks::Next() {
  if (!IsBelievable()) return {};
  const std::size_t wanted =
      std::min<std::size_t>(static_cast<std::size_t>(nPoints_ - nHanded_) * kPointBytes, block_.size());
  if (wanted == 0) return {};
  const std::size_t got = hasEnded_ ? 0 : file_.Read(block_.data(), wanted);
  nBytes_ += static_cast<std::int64_t>(got);
  hasEnded_ = got < wanted;
  if (hasEnded_ && (file_.HasFailed() || !MayHold(nBytes_, nPoints_))) return {};
  std::fill(block_.begin() + static_cast<std::ptrdiff_t>(got), block_.end(), '\0');
  nHanded_ += static_cast<std::int32_t>(wanted / kPointBytes);
  return {block_.data(), wanted};
}

std::int32_t PointBlocks::GetMissingCount() const {
  return nHanded_ - static_cast<std::int32_t>(nBytes_ / static_cast<std::int64_t>(kPointBytes));
}

void TellMissing(std::int32_t nMissing, std::int32_t nPoints) {
  if (nMissing == 0) return;
  Ui().SetStatusText(0, "The points file is cut short: " + std::to_string(nPoints - nMissing) + " of " +
                            std::to_string(nPoints) + " points are there.");
}

}  // namespace corvane
