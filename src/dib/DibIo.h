#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "dib/Dib.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"

namespace corvane {

// .bmp and .dib files: a file header of 14 bytes, the bitmap behind it.

constexpr std::size_t kDibFileHeaderBytes = 14;

// The header of the bitmap's file: "BM", the file's size, 4 bytes of 0, the place of the pixels. Its fields
// are not aligned. Kept: the size is 32 bits in the file; one of a larger bitmap is cut.
std::array<std::uint8_t, kDibFileHeaderBytes> DibFileHeader(const Dib& dib);

// Reads a bitmap that is not compressed, of 1, 4, 8, 16, 24 or 32 bits a pixel, with a header of 40 bytes or
// more. Rows that stand top-down come out bottom-up. 1; below 0 with an empty bitmap: -1: it is no bitmap, or
// cut short; -2: it is compressed, or of another kind; -3: no memory.
int ReadDib(InputFile& file, Dib& dib);

// Writes file header and bitmap. 1; -1 if that fails, or for what is no bitmap.
int WriteDib(const Dib& dib, OutputFile& file);

// The same on a path, with the failure told in a warning.
int ReadDib(const std::string& path, Dib& dib);
int WriteDib(const Dib& dib, const std::string& path);

}  // namespace corvane
