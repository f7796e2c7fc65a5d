// Any bytes as a text of points, through both converters.

#include "FuzzFolder.h"
#include "TIN/TINPoints.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = corvane::FuzzFile("in.txt", data, size);
  corvane::TINPoints::TextToBinary(text, corvane::FuzzPath("out.pts"), 1.0);
  corvane::TINPoints::TextIdToBinary(text, corvane::FuzzPath("out.pts"), 1.0);
  return 0;
}
