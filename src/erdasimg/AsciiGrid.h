#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace corvane {

class OutputFile;
class RecordReader;

// ASCII grids: lines of a label and a value, then the cells, top row first.
//
//   ncols 3
//   nrows 2
//   xllcorner 100
//   yllcorner 200
//   cellsize 10
//   NODATA_value -4096
//   1 2.5 3
//   4 5 -4096

// What stands before the cells, in ground units.
struct AsciiGridHeader {
  std::int32_t nCols = 0;
  std::int32_t nRows = 0;
  double xllCorner = 0.0;  // the lower left corner
  double yllCorner = 0.0;
  double cellSize = 0.0;
  double noData = -9999.0;  // stands for cells without a value
};

// The most characters of a label that are read as one word.
constexpr std::size_t kLabelWidth = 255;

// Numbers have 10 significant digits: "%.10g".
constexpr int kAsciiGridDigits = 10;

// Writes the six lines. False if a write fails.
bool WriteAsciiGridHeader(OutputFile& file, const AsciiGridHeader& header);

// Writes one line of cells with a blank between them. False if a write fails.
bool WriteAsciiGridRow(OutputFile& file, std::span<const double> cells);

// Reads the five lines up to the cell size, as scanf's "%s %d\n" and "%s %lf\n": labels are not looked at,
// and a value that does not match stays as it was.
void ReadAsciiGridPlace(RecordReader& reader, AsciiGridHeader& header);

// Reads one such line of a label and a number: the number, or `otherwise`.
double ReadLabelledReal(RecordReader& reader, double otherwise);

// Reads a cell, as scanf's "%lf"; nothing where no number stands.
std::optional<double> ReadAsciiGridCell(RecordReader& reader);

}  // namespace corvane
