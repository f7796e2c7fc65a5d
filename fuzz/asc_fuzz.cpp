// Any bytes as an ASCII grid.

#include "FuzzFolder.h"
#include "LargePromise.h"
#include "erdasimg/AsciiGrid.h"
#include "erdasimg/ErdasImg.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"

namespace corvane {
namespace {

void WriteGrid(const ErdasImg& image, const AsciiGridHeader& header) {
  const auto band = image.GetBands().GetBand(0);
  const std::span<const double> cells(reinterpret_cast<const double*>(band.data()),
                                      band.size() / sizeof(double));
  OutputFile file(FuzzPath("out.asc"));
  WriteAsciiGridHeader(file, header);
  WriteAsciiGridRow(file, cells);
}

void Run(const std::uint8_t* data, std::size_t size) {
  const std::string path = FuzzFile("in.asc", data, size);
  const AsciiGridHeader header = ReadGridPlace(path);
  if (IsLargePromise(8.0 * header.nCols * header.nRows)) return;
  ErdasImg image;
  if (image.ReadAsciiGrid(path) != 1) return;
  WriteGrid(image, header);
  image.Write(FuzzPath("out.lan"));
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  corvane::Run(data, size);
  return 0;
}
