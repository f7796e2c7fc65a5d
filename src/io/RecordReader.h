#pragma once

#include <cstddef>
#include <cstdint>
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

  // What `scan(TextScanner&)` returns at the present position, with the whole rest of the file before it.
  // It is called anew from the same position, with more text, when it has run into the window's end: so it
  // may have no effect but its result.
  template <typename Scan>
  auto Next(Scan scan) {
    for (;;) {
      const TextScanner start = scanner_;
      auto result = scan(scanner_);
      if (!scanner_.AtEnd() || isWhole_) return result;
      scanner_ = start;
      Extend();
    }
  }

  // True once a scan has run into the end of the file, as feof() after fscanf.
  bool AtEnd() const { return scanner_.AtEnd(); }

  // Bytes from the file's start.
  std::int64_t GetPosition() const;

  // The line, from 1, of the present position.
  std::int64_t GetLine() const;

 private:
  void Extend();

  InputFile& file_;
  std::size_t windowSize_;
  std::string window_;
  TextScanner scanner_{{}};
  bool isWhole_ = false;           // the window reaches to the end of the file
  std::int64_t droppedBytes_ = 0;  // before the window
  std::int64_t droppedLines_ = 0;
};

}  // namespace corvane
