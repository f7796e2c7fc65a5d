// Any bytes as a list of descriptors: what has been read is written, and reads back with as many points.

#include <cstdlib>

#include "FuzzFolder.h"
#include "ImgProcess/FeaturePoint.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvane;
  const std::string path = FuzzFile("in.txt", data, size);
  const std::string copy = FuzzPath("out.txt");
  FeaturePointList list;
  ReadFeaturePoints(path, list, FeatureNumbers::Float);
  if (ReadFeaturePoints(path, list, FeatureNumbers::Double) == -1) std::abort();
  if (WriteFeaturePoints(copy, list) != 1) std::abort();
  FeaturePointList again;
  if (ReadFeaturePoints(copy, again, FeatureNumbers::Double) != 1) std::abort();
  if (again.size() != list.size()) std::abort();
  return 0;
}
