#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace corvane {

class InputFile;

// The records of a points file, from the file's present position, handed out in blocks. Records that a cut
// file lacks, and the missing bytes of its last one, read as zeros, so long as the file holds at least about
// a quarter of those announced; a count beyond that is not believed.
class PointBlocks {
 public:
  // `nPoints` is the count in the file's header.
  PointBlocks(InputFile& file, std::int32_t nPoints);

  // Makes room for a block; false without the memory. Comes before the first Next().
  bool Allocate();

  // Whether the file may hold the records, as far as its size is known before it is read.
  bool IsSizeKnown() const { return size_.has_value(); }
  bool IsBelievable() const;

  // The next stored records, kPointBytes each; valid until the next call. Empty after the last one, and as
  // soon as a read fails or the count turns out unbelievable.
  std::span<const char> Next();

  // Whether all records have been handed out.
  bool IsComplete() const { return nHanded_ == nPoints_; }

  // Of the records handed out, those that the file lacks, wholly or in part.
  std::int32_t GetMissingCount() const;

 private:
  InputFile& file_;
  std::int32_t nPoints_;
  std::optional<std::int64_t> size_;  // of all records, in bytes
  std::int32_t nHanded_ = 0;
  std::int64_t nBytes_ = 0;  // that came from the file
  bool hasEnded_ = false;    // the file has no more bytes
  std::vector<char> block_;
};

// Tells in status pane 0 that a file of `nPoints` points has been cut short, if any are missing.
void TellMissing(std::int32_t nMissing, std::int32_t nPoints);

}  // namespace corvane
