#include "erdasimg/Topaz.h"

#include "io/InputFile.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "io/Paths.h"
#include "io/RecordReader.h"

namespace corvane {

namespace {

// The line of the NODATA value: scanf's "%s %lf\n".
void SkipNoData(RecordReader& reader) {
  reader.Next([](TextScanner& scanner) {
    std::string label;
    double value = 0.0;
    return scanner.ScanWord(label, kLabelWidth) && scanner.ScanDouble(value);
  });
}

}  // namespace

std::string TopazName(const std::string& asciiPath) {
  return asciiPath.substr(0, asciiPath.size() - FileName(asciiPath).size()) + "DEDNM.INP";
}

int AsciiGridToTopaz(InputFile& ascii, OutputFile& topaz, AsciiGridHeader& header, std::int64_t& nCells) {
  RecordReader reader(ascii);
  header.nCols = header.nRows = -1;
  ReadAsciiGridPlace(reader, header);
  SkipNoData(reader);
  if (reader.HasFailed() || header.nCols < 0 || header.nRows < 0) return -1;

  const std::int64_t nWanted = std::int64_t{header.nRows} * header.nCols;
  std::string line;
  for (nCells = 0; nCells < nWanted; ++nCells) {
    const auto cell = ReadAsciiGridCell(reader);
    if (reader.HasFailed()) return -1;
    if (!cell) return nCells > 0 ? 1 : -1;
    line.clear();
    AppendFixed(line, *cell);
    line += '\n';
    if (!topaz.Write(line)) return -2;
  }
  return 1;
}

}  // namespace corvane
