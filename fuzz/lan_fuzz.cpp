// Any bytes as a .lan: its header, its pixels, what is cut from them, and writing it again in all forms.

#include "FuzzFolder.h"
#include "LargePromise.h"
#include "erdasimg/ErdasImg.h"

namespace corvane {
namespace {

constexpr std::int32_t kSlowBands = 200;  // GDAL's time to make a file grows with the square of the bands

void WriteAll(ErdasImg& image) {
  image.Write(FuzzPath("out.lan"));
  if (image.GetBandCount() < kSlowBands) image.Write(FuzzPath("out.tif"));
  image.WriteText(FuzzPath("out.txt"));
}

void CutOut(ErdasImg& image) {
  image.GetSubset(-2, 3, 1, 4);
  image.GetSubsetFlipped(-2, 3, 1, 4, true);
  ImageRect rect = {-5, -5, 5, 5};
  image.ClipToImage(rect);
  double value = 0.0;
  image.GetPixel(0, 0, 0, value);
  image.GetPixelBicubic(1, 0.5, 1.5, value);
  image.ComputeSums();
  image.MakeDib();
}

double BytesOfPixels(const ErdasHeader& header) {
  return 1.0 * header.cols * header.rows * header.bandCount * BytesOfPackType(header.packType);
}

void Run(const std::uint8_t* data, std::size_t size) {
  const std::string path = FuzzFile("in.lan", data, size);
  ErdasImg image;
  image.ReadHeader(path);
  WriteAll(image);
  if (IsLargePromise(BytesOfPixels(*image.GetHeader()))) return;
  image.Read(path);
  CutOut(image);
  WriteAll(image);
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  corvane::Run(data, size);
  return 0;
}
