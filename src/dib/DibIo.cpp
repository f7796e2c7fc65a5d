#include "dib/DibIo.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "dib/DibHeader.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr int kNoBitmap = -1;
constexpr int kOtherKind = -2;
constexpr int kNoMemory = -3;

constexpr std::uint32_t kMostHeaderBytes = 1024;  // of headers that go on behind the part known here

constexpr std::size_t kFileSizeAt = 2;
constexpr std::size_t kBitsOffsetAt = 10;

struct FileLayout {
  DibHeader header;  // of the bitmap that is made: rows bottom-up
  bool isTopDown = false;
  std::int64_t bitsOffset = 0;     // of the pixels, from the start of the file
  std::int64_t paletteOffset = 0;  // of the palette
};

// Reads both headers: 1, or why there is no bitmap.
int ReadLayout(InputFile& file, FileLayout& layout) {
  std::uint8_t fileHeader[kDibFileHeaderBytes];
  DibHeader& header = layout.header;
  if (file.Read(fileHeader, sizeof fileHeader) != sizeof fileHeader) return kNoBitmap;
  if (fileHeader[0] != 'B' || fileHeader[1] != 'M') return kNoBitmap;
  if (file.Read(&header, sizeof header) != sizeof header) return kNoBitmap;
  if (header.size < sizeof header || header.size > kMostHeaderBytes) return kOtherKind;
  if (header.compression != 0 || !IsDibBitCount(header.bitCount)) return kOtherKind;
  if (header.width <= 0 || header.height == 0 || header.height == INT32_MIN) return kNoBitmap;
  layout.isTopDown = header.height < 0;
  header.height = std::abs(header.height);

  std::uint32_t bitsOffset = 0;
  std::memcpy(&bitsOffset, fileHeader + kBitsOffsetAt, sizeof bitsOffset);
  layout.paletteOffset = static_cast<std::int64_t>(kDibFileHeaderBytes) + header.size;
  layout.bitsOffset = bitsOffset;
  const std::int32_t nColours = PaletteSize(header.bitCount, header.colorsUsed);
  const std::int64_t paletteEnd =
      layout.paletteOffset + nColours * static_cast<std::int64_t>(kPaletteEntryBytes);
  if (layout.bitsOffset < paletteEnd) return kNoBitmap;
  header.size = sizeof header;
  header.planes = 1;
  const bool isWholePalette = nColours == PaletteSize(header.bitCount, 0);
  header.colorsUsed = isWholePalette ? 0 : static_cast<std::uint32_t>(nColours);
  header.colorsImportant = 0;
  return 1;
}

// Whether the file, which is open, holds all the pixels: 1, or why not.
int CheckSize(InputFile& file, const FileLayout& layout) {
  const std::int64_t rowBytes = PaddedRowBytes(layout.header.width, layout.header.bitCount);
  if (rowBytes > kMaxDibBytes / layout.header.height) return kNoMemory;
  if (!file.Seek(layout.bitsOffset)) return kNoBitmap;
  const auto left = file.BytesLeft();
  return left && *left / rowBytes >= layout.header.height ? 1 : kNoBitmap;
}

int ReadParts(InputFile& file, const FileLayout& layout, Dib& dib) {
  const auto nColours =
      static_cast<std::size_t>(PaletteSize(layout.header.bitCount, layout.header.colorsUsed));
  const std::size_t paletteBytes = nColours * kPaletteEntryBytes;
  const std::size_t rowBytes =
      static_cast<std::size_t>(PaddedRowBytes(layout.header.width, layout.header.bitCount));
  const std::size_t bitsBytes = rowBytes * static_cast<std::size_t>(layout.header.height);
  dib.resize(kDibHeaderBytes + paletteBytes + bitsBytes);
  DibHeader header = layout.header;
  header.imageSize = static_cast<std::uint32_t>(bitsBytes);
  std::memcpy(dib.data(), &header, sizeof header);

  std::uint8_t* palette = dib.data() + kDibHeaderBytes;
  if (!file.Seek(layout.paletteOffset) || file.Read(palette, paletteBytes) != paletteBytes) return kNoBitmap;
  std::uint8_t* bits = palette + paletteBytes;
  if (!file.Seek(layout.bitsOffset) || file.Read(bits, bitsBytes) != bitsBytes) return kNoBitmap;
  if (!layout.isTopDown) return 1;
  for (std::size_t top = 0, bottom = bitsBytes - rowBytes; top < bottom;
       top += rowBytes, bottom -= rowBytes) {
    std::swap_ranges(bits + top, bits + top + rowBytes, bits + bottom);
  }
  return 1;
}

const char* ReasonOf(int status) {
  switch (status) {
    case kOtherKind:
      return "\nIt is compressed, or of a kind that is not known here.";
    case kNoMemory:
      return "\nIt is too large for this machine.";
    default:
      return "\nIt is no bitmap file, or it is cut short.";
  }
}

}  // namespace

int ReadDib(InputFile& file, Dib& dib) {
  dib.clear();
  FileLayout layout;
  int status = ReadLayout(file, layout);
  if (status == 1) status = CheckSize(file, layout);
  if (status != 1) return status;
  try {
    status = ReadParts(file, layout, dib);
  } catch (const std::bad_alloc&) {
    status = kNoMemory;
  }
  if (status != 1) dib.clear();
  return status;
}

std::array<std::uint8_t, kDibFileHeaderBytes> DibFileHeader(const Dib& dib) {
  const auto fileBytes = static_cast<std::uint32_t>(kDibFileHeaderBytes + dib.size());
  const auto bitsOffset =
      static_cast<std::uint32_t>(kDibFileHeaderBytes) + static_cast<std::uint32_t>(DibBits(dib) - dib.data());
  std::array<std::uint8_t, kDibFileHeaderBytes> header = {'B', 'M'};
  std::memcpy(header.data() + kFileSizeAt, &fileBytes, sizeof fileBytes);
  std::memcpy(header.data() + kBitsOffsetAt, &bitsOffset, sizeof bitsOffset);
  return header;
}

int WriteDib(const Dib& dib, OutputFile& file) {
  if (!IsDib(dib)) return -1;
  const auto header = DibFileHeader(dib);
  return file.Write(header.data(), header.size()) && file.Write(dib.data(), dib.size()) ? 1 : -1;
}

int ReadDib(const std::string& path, Dib& dib) {
  InputFile file(path);
  if (!file.IsOpen()) {
    dib.clear();
    ShowWarning(OpenErrorText(path));
    return -1;
  }
  const int status = ReadDib(file, dib);
  if (status != 1) ShowWarning(OpenErrorText(path) + ReasonOf(status));
  return status;
}

int WriteDib(const Dib& dib, const std::string& path) {
  OutputFile file(path);
  if (WriteDib(dib, file) == 1 && file.Commit()) return 1;
  ShowWarning(WriteErrorText(path));
  return -1;
}

}  // namespace corvane
