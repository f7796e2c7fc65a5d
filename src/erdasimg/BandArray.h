#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace corvane {

// The pixel buffers of an image, one a band. Copies share the buffers; the last one that goes releases them,
// so that a window of an image may outlive it. Moved from, an array is empty.
class BandArray {
 public:
  // No buffers at all: the state of an empty image.
  BandArray() = default;
  BandArray(const BandArray&) = default;
  BandArray(BandArray&& other) noexcept { Swap(other); }
  BandArray& operator=(BandArray other) noexcept {
    Swap(other);
    return *this;
  }

  // Zeroed buffers of `bandBytes` each, in one allocation one after the other if `contiguous`. Without
  // buffers if a number is negative or there is no memory.
  static BandArray Allocate(std::int32_t nBands, std::int64_t bandBytes, bool contiguous);

  // Whether there are buffers.
  explicit operator bool() const { return isAllocated_; }

  std::size_t size() const { return bands_.size(); }
  std::size_t GetBandBytes() const { return bandBytes_; }

  // Whether all bands lie in one allocation, one after the other.
  bool IsContiguous() const { return isContiguous_; }

  // Whether another array holds these buffers, too.
  bool IsShared() const {
    const auto nOwn = isContiguous_ ? static_cast<long>(bands_.size()) : 1L;  // all bands are one block then
    return !bands_.empty() && bands_.front().use_count() > nOwn;
  }

  // The first byte of a band; null for one that is not there.
  std::uint8_t* operator[](std::int64_t band) const {
    return band >= 0 && band < static_cast<std::int64_t>(bands_.size())
               ? bands_[static_cast<std::size_t>(band)].get()
               : nullptr;
  }

  // The bytes of a band; empty for one that is not there.
  std::span<std::uint8_t> GetBand(std::int64_t band) const {
    std::uint8_t* const first = (*this)[band];
    return {first, first ? bandBytes_ : 0};
  }

  // The bytes of all bands of a contiguous allocation; those of the first band otherwise.
  std::span<std::uint8_t> GetBlock() const {
    return {(*this)[0], bands_.empty() ? 0 : (isContiguous_ ? bandBytes_ * bands_.size() : bandBytes_)};
  }

 private:
  void Swap(BandArray& other) noexcept {
    std::swap(bands_, other.bands_);
    std::swap(bandBytes_, other.bandBytes_);
    std::swap(isContiguous_, other.isContiguous_);
    std::swap(isAllocated_, other.isAllocated_);
  }

  std::vector<std::shared_ptr<std::uint8_t>> bands_;
  std::size_t bandBytes_ = 0;
  bool isContiguous_ = false;
  bool isAllocated_ = false;
};

}  // namespace corvane
