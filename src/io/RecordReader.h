#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <string_view>

#include "io/InputFile.h"
#include "io/TextScanner.h"

namespace corvane {

// Scans a text file record by record through a window, so that a text of any size takes little memory.
class RecordReader {
 public:
  static constexpr std::size_t kWindow = std::size_t{1} << 20;

  explicit RecordReader(InputFile& file, std::size_t windowSize = kWindow);

  // The text from the present position, at least `windowSize` bytes long if the file has so many.
  std::string_view GetText() const { return std::string_view(window_).substr(scanner_.GetPosition()); }

  // Skips white space; then what `scan(TextScanner&)` returns, with the whole rest of the file before it.
  // It is called anew from the same position, with more text, when it has run into the window's end: so it
  // may have no effect but its result. After HasFailed() the result means nothing.
  template <typename Scan>
  auto Next(Scan scan) {
    SkipSpace();
    for (;;) {
      const TextScanner start = scanner_;
      decltype(scan(scanner_)) result = {};
      try {
        result = scan(scanner_);
      } catch (const std::bad_alloc&) {
        isOutOfMemory_ = true;
      }
      if (!scanner_.AtEnd() || isWhole_ || HasFailed()) return result;
      scanner_ = start;
      Extend();
    }
  }

  // The same, with what was scanned still to come, as after a step back in the file.
  template <typename Scan>
  auto Peek(Scan scan) {
    TextScanner start{{}};
    const auto result = Next([&](TextScanner& scanner) {
      start = scanner;
      return scan(scanner);
    });
    scanner_ = start;
    return result;
  }

  // True once a scan has run into the end of the file, as feof() after fscanf.
  bool AtEnd() const { return scanner_.AtEnd(); }

  // Whether the file could not be read to its end, or a record does not fit the memory.
  bool HasFailed() const { return isOutOfMemory_ || file_.HasFailed(); }

  // Bytes from the file's start.
  std::int64_t GetPosition() const;

  // The line, from 1, of the present position.
  std::int64_t GetLine() const;

 private:
  void SkipSpace();
  void Extend();

  InputFile& file_;
  std::size_t windowSize_;
  std::string window_;
  TextScanner scanner_{{}};
  bool isWhole_ = false;  // the window reaches to the end of the file
  bool isOutOfMemory_ = false;
  std::int64_t droppedBytes_ = 0;  // before the window
  std::int64_t droppedLines_ = 0;
};

}  // namespace corvane
