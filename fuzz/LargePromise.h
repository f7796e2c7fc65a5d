#pragma once

#include <string>

#include "erdasimg/AsciiGrid.h"
#include "erdasimg/ErdasImg.h"
#include "io/InputFile.h"
#include "io/RecordReader.h"

namespace corvane {

constexpr double kFewBytes = 1 << 16;

// Whether an image of this many bytes is large, but not beyond the `most` that a file may promise without
// holding it: reading it takes room and time, and finds nothing new.
inline bool IsLargePromise(double bytes, double most = ErdasImg::kMaxMissingBytes) {
  return bytes > kFewBytes && bytes < 2.0 * most;
}

// The first five lines of a grid.
inline AsciiGridHeader ReadGridPlace(const std::string& path) {
  InputFile file(path);
  RecordReader reader(file, 16);
  AsciiGridHeader header;
  ReadAsciiGridPlace(reader, header);
  return header;
}

}  // namespace corvane
