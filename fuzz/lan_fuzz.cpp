// Any bytes as a .lan: its header, its pixels, what is cut from them and added to them, its samples pixel by
// pixel, and writing it again in all forms.

#include <algorithm>
#include <vector>

#include "FuzzFolder.h"
#include "LargePromise.h"
#include "erdasimg/ErdasImg.h"
#include "io/InputFile.h"

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

// Bytes of the samples that ReadInterleaved takes.
double BytesOfSamples(const ErdasHeader& header) {
  return 1.0 * header.cols * header.rows * std::min<std::int32_t>(header.bandCount, 3);
}

void ReadSamples(const std::string& path) {
  ErdasImg image;
  image.ReadHeader(path);
  if (IsLargePromise(BytesOfSamples(*image.GetHeader()), ErdasImg::kMaxFilledBytes)) return;
  InputFile file(path);
  std::vector<std::uint8_t> samples;
  image.ReadInterleaved(file, samples);
}

// Writes an image that is in memory from samples that stand pixel by pixel. One of no bands may have any
// size.
void WriteSamples(ErdasImg& image) {
  if (image.GetBands().size() == 0) return;
  const std::int64_t nBands = std::max(image.GetBandCount(), 3);  // WriteInterleavedLan takes three
  std::vector<std::uint8_t> samples(static_cast<std::size_t>(image.GetImageBytes() * nBands), 7);
  image.GetInterleaved(samples.data());
  image.SetFromInterleaved(samples.data());
  if (image.GetBandCount() < kSlowBands) image.WriteInterleaved(FuzzPath("samples.tif"), samples.data());
  image.WriteInterleaved(FuzzPath("samples.lan"), samples.data());
}

double BytesOfPixels(const ErdasHeader& header) {
  return 1.0 * header.cols * header.rows * header.bandCount * BytesOfPackType(header.packType);
}

void Run(const std::uint8_t* data, std::size_t size) {
  const std::string path = FuzzFile("in.lan", data, size);
  ErdasImg image;
  image.ReadHeader(path);
  WriteAll(image);
  ReadSamples(path);
  if (IsLargePromise(BytesOfPixels(*image.GetHeader()))) return;
  image.Read(path);
  CutOut(image);
  image.AddImage(path);
  WriteAll(image);
  WriteSamples(image);
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  corvane::Run(data, size);
  return 0;
}
