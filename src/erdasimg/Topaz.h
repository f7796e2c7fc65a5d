#pragma once

#include <cstdint>
#include <string>

#include "erdasimg/AsciiGrid.h"

namespace corvane {

class InputFile;
class OutputFile;

// The name of the TOPAZ file: always "DEDNM.INP", in the folder of the ASCII grid.
std::string TopazName(const std::string& asciiPath);

// Copies the cells of an ASCII grid, one a line as "%f", top row first and without a header. All six lines
// are needed before them: without the NODATA line the first two cells are taken for it. Copying ends early
// where the text does, or before something that is no number. `header` gets what those lines say, `nCells`
// the number of cells copied. 1; -1: the counts are no numbers or negative, the text can't be read, or not
// even one cell of those announced; -2: a write fails.
int AsciiGridToTopaz(InputFile& ascii, OutputFile& topaz, AsciiGridHeader& header, std::int64_t& nCells);

}  // namespace corvane
