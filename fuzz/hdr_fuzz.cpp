// Any bytes as the text file beside a float grid, whose data are the same bytes.

#include "FuzzFolder.h"
#include "LargePromise.h"
#include "erdasimg/ErdasImg.h"

namespace corvane {
namespace {

void Run(const std::uint8_t* data, std::size_t size) {
  const AsciiGridHeader place = ReadGridPlace(FuzzFile("in.hdr", data, size));
  if (IsLargePromise(4.0 * place.nCols * place.nRows)) return;
  ErdasImg image;
  image.ReadFloatGrid(FuzzFile("in.bil", data, size));
  image.Write(FuzzPath("out.lan"));
  image.WriteText(FuzzPath("out.txt"));
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  corvane::Run(data, size);
  return 0;
}
