// Raw floats with a text file beside them, and ASCII grids.

#include <algorithm>
#include <cstring>

#include "erdasimg/AsciiGrid.h"
#include "erdasimg/ErdasImg.h"
#include "io/InputFile.h"
#include "io/Paths.h"
#include "io/RecordReader.h"
#include "io/TextCase.h"

namespace corvane {

namespace {

// One band of that type over the grid.
ErdasHeader HeaderOfGrid(const AsciiGridHeader& grid, PackType packType) {
  ErdasHeader header;
  header.packType = packType;
  header.cols = grid.nCols;
  header.rows = grid.nRows;
  header.xMap = static_cast<float>(grid.xllCorner);
  header.yMap = static_cast<float>(grid.yllCorner);  // Kept: the lower edge
  header.xCell = static_cast<float>(grid.cellSize);
  header.yCell = -header.xCell;
  return header;
}

// Whether the sixth line, a label and a word, says that the first byte of a number is its highest.
bool IsHighByteFirst(RecordReader& reader) {
  return reader.Next([](TextScanner& scanner) {
    std::string word;
    return scanner.ScanWord(word, kLabelWidth) && scanner.ScanWord(word, kLabelWidth) && word == "MSBFIRST";
  });
}

void SwapBytes(std::span<std::uint8_t> floats) {
  std::uint32_t bits = 0;
  for (std::size_t at = 0; at + sizeof bits <= floats.size(); at += sizeof bits) {
    std::memcpy(&bits, &floats[at], sizeof bits);
    bits = __builtin_bswap32(bits);
    std::memcpy(&floats[at], &bits, sizeof bits);
  }
}

// Reads the line of the no-data value if there is one; otherwise its first word counts as a cell.
double ReadNoData(RecordReader& reader, double otherwise) {
  const bool isThere = reader.Peek([](TextScanner& scanner) {
    std::string word;
    return scanner.ScanWord(word, kLabelWidth) && EqualIgnoringCase(word, "NODATA_value");
  });
  return isThere ? ReadLabelledReal(reader, otherwise) : otherwise;
}

// Returns how many cells could not be read, and are `noData`.
std::int64_t ReadCells(RecordReader& reader, std::span<double> cells, double noData) {
  auto nUnread = static_cast<std::int64_t>(cells.size());
  while (!cells.empty() && !reader.HasFailed()) {
    const std::int64_t before = reader.GetPosition();
    const auto cell = ReadAsciiGridCell(reader);
    cells.front() = cell.value_or(noData);
    if (cell) --nUnread;
    // At the end of the file, or at a character that no number begins with, nothing more will come.
    if (reader.GetPosition() == before) break;
    cells = cells.subspan(1);
  }
  std::ranges::fill(cells, noData);
  return nUnread;
}

}  // namespace

int ErdasImg::ReadFloatGrid(const std::string& path) {
  InputFile sidecar(DerivedName(path, ".hdr"));
  if (!sidecar.IsOpen()) return -1;
  RecordReader reader(sidecar);
  AsciiGridHeader grid;
  ReadAsciiGridPlace(reader, grid);
  const bool isHighByteFirst = IsHighByteFirst(reader);
  m_header = HeaderOfGrid(grid, kPackFloat);
  missingBytes_ = 0;

  InputFile data(path);
  if (!AllocateUpTo(data.BytesLeft().value_or(0) + kMaxMissingBytes, false)) return -3;
  if (!data.IsOpen()) return -2;
  const auto pixels = m_bands.GetBand(0);
  const std::size_t got = data.Read(pixels.data(), pixels.size());
  missingBytes_ = static_cast<std::int64_t>(pixels.size() - got);
  if (isHighByteFirst) SwapBytes(pixels.first(got + (pixels.size() - got) % sizeof(float)));
  return 1;
}

int ErdasImg::ReadAsciiGrid(const std::string& path, std::int64_t* nUnread) {
  InputFile file(path);
  if (!file.IsOpen()) return -1;
  const std::int64_t maxCells = file.BytesLeft().value_or(0) / 2 + 1;  // a digit and a blank
  RecordReader reader(file);
  AsciiGridHeader grid;
  ReadAsciiGridPlace(reader, grid);
  grid.noData = ReadNoData(reader, grid.noData);
  m_header = HeaderOfGrid(grid, kPackDouble);
  missingBytes_ = 0;

  constexpr std::int64_t kCellBytes = sizeof(double);
  if (!AllocateUpTo(maxCells * kCellBytes + kMaxFilledBytes, false)) return -3;
  const auto band = m_bands.GetBand(0);
  const std::span cells{reinterpret_cast<double*>(band.data()), band.size() / sizeof(double)};
  const std::int64_t nNoData = ReadCells(reader, cells, grid.noData);
  if (nUnread) *nUnread = nNoData;
  return 1;
}

}  // namespace corvane
