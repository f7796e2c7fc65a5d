// Any bytes as a text of points, through both converters and the reader, and as a list of words.

#include <string>

#include "FuzzFolder.h"
#include "TIN/TINPoints.h"
#include "io/TextScanner.h"
#include "numerics/Histogram.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvane;
  const std::string text = FuzzFile("in.txt", data, size);
  TINPoints::TextToBinary(text, FuzzPath("out.pts"), 1.0);
  TINPoints::TextIdToBinary(text, FuzzPath("out.pts"), 1.0);

  TINPoints points;
  Histogram histogram;
  if (points.ReadText(text) > 0) points.ValueHistogram(0.05, histogram);

  TextScanner scanner({reinterpret_cast<const char*>(data), size});
  std::string word;
  while (scanner.ScanWord(word)) scanner.SkipSpace();
  return 0;
}
