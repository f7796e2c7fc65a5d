#include "erdasimg/AsciiGrid.h"

#include <algorithm>
#include <string>

#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "io/RecordReader.h"

namespace corvane {

namespace {

constexpr std::size_t kCellsTogether = 4096;
constexpr std::size_t kUsualRoom = 12;  // bytes of a cell's text

// "%s %d\n"
std::int32_t ReadCount(RecordReader& reader, std::int32_t otherwise) {
  return reader.Next([otherwise](TextScanner& scanner) {
    std::string label;
    std::int32_t count = otherwise;
    if (scanner.ScanWord(label, kLabelWidth)) scanner.ScanInt(count);
    return count;
  });
}

}  // namespace

bool WriteAsciiGridHeader(OutputFile& file, const AsciiGridHeader& header) {
  std::string text;
  const auto addLine = [&](const char* label, double value) {
    text += label;
    AppendGeneral(text, value, kAsciiGridDigits);
    text += '\n';
  };
  addLine("ncols ", header.nCols);
  addLine("nrows ", header.nRows);
  addLine("xllcorner ", header.xllCorner);
  addLine("yllcorner ", header.yllCorner);
  addLine("cellsize ", header.cellSize);
  addLine("NODATA_value ", header.noData);
  return file.Write(text);
}

bool WriteAsciiGridRow(OutputFile& file, std::span<const double> cells) {
  std::string text;
  text.reserve(std::min(cells.size(), kCellsTogether) * kUsualRoom);
  while (!cells.empty()) {
    const auto together = cells.first(std::min(cells.size(), kCellsTogether));
    cells = cells.subspan(together.size());
    for (const double cell : together) {
      AppendGeneral(text, cell, kAsciiGridDigits);
      text += ' ';
    }
    if (cells.empty()) text.pop_back();
    if (!file.Write(text)) return false;
    text.clear();
  }
  return file.Write("\n");
}

double ReadLabelledReal(RecordReader& reader, double otherwise) {
  return reader.Next([otherwise](TextScanner& scanner) {
    std::string label;
    double value = otherwise;
    if (scanner.ScanWord(label, kLabelWidth)) scanner.ScanDouble(value);
    return value;
  });
}

void ReadAsciiGridPlace(RecordReader& reader, AsciiGridHeader& header) {
  header.nCols = ReadCount(reader, header.nCols);
  header.nRows = ReadCount(reader, header.nRows);
  header.xllCorner = ReadLabelledReal(reader, header.xllCorner);
  header.yllCorner = ReadLabelledReal(reader, header.yllCorner);
  header.cellSize = ReadLabelledReal(reader, header.cellSize);
}

std::optional<double> ReadAsciiGridCell(RecordReader& reader) {
  return reader.Next([](TextScanner& scanner) {
    double value = 0.0;
    return scanner.ScanDouble(value) ? std::optional(value) : std::nullopt;
  });
}

}  // namespace corvane
