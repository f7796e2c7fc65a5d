#include "io/RecordReader.h"

#include <algorithm>

namespace corvane {

namespace {

std::int64_t CountLines(std::string_view text) {
  return std::count(text.begin(), text.end(), '\n');
}

}  // namespace

RecordReader::RecordReader(InputFile& file, std::size_t windowSize)
    : file_(file), windowSize_(std::max<std::size_t>(windowSize, 1)) {
  Extend();
}

std::int64_t RecordReader::GetPosition() const {
  return droppedBytes_ + static_cast<std::int64_t>(scanner_.GetPosition());
}

std::int64_t RecordReader::GetLine() const {
  return droppedLines_ + CountLines(std::string_view(window_).substr(0, scanner_.GetPosition())) + 1;
}

// Window by window, so that white space of any length takes no more room.
void RecordReader::SkipSpace() {
  scanner_.SkipSpace();
  while (scanner_.AtEnd() && !isWhole_ && !HasFailed()) {
    Extend();
    scanner_.SkipSpace();
  }
}

// Drops what has been scanned and reads on. A record longer than the window makes it grow, twofold, so that
// scanning it again and again stays cheap.
void RecordReader::Extend() {
  const std::size_t scanned = scanner_.GetPosition();
  droppedBytes_ += static_cast<std::int64_t>(scanned);
  droppedLines_ += CountLines(std::string_view(window_).substr(0, scanned));
  window_.erase(0, scanned);

  const std::size_t kept = window_.size();
  const std::size_t wanted = std::max(windowSize_, kept);
  try {
    window_.resize(kept + wanted);
    const std::size_t got = file_.Read(window_.data() + kept, wanted);
    window_.resize(kept + got);
    isWhole_ = got < wanted;
  } catch (const std::bad_alloc&) {
    isOutOfMemory_ = true;
  }
  scanner_ = TextScanner(window_);
}

}  // namespace corvane
