#include "ImgProcess/ImageFilter.h"
#include "ImgProcess/ImgProcess.h"
#include "io/OutputFile.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// Of a direction that there is not, neither.
FilterKernels Along(int direction, const Kernel1D& kernel) {
  return {direction == 1 ? &kernel : nullptr, direction == 2 ? &kernel : nullptr};
}

ErdasHeader HeaderWith(const ErdasImg& image, std::uint16_t pack) {
  ErdasHeader header = *image.GetHeader();
  header.packType = pack;
  return header;
}

int FilterInto(const ErdasImg& image, const FilterKernels& filter, std::uint16_t pack, ResultImage& result) {
  if (!image.HasPixels()) return -1;
  const int status = MakeMissing(HeaderWith(image, pack), result);
  return status < 0 ? status : FilterImage(image, {filter}, *result);
}

}  // namespace

int ImgProcess::Convolve(const ErdasImg& image, const Kernel1D& kernel, int direction, std::uint16_t pack,
                         ResultImage& result) {
  if (direction != 1 && direction != 2) return -1;
  return FilterInto(image, Along(direction, kernel), pack, result);
}

int ImgProcess::Convolve2D(const ErdasImg& image, const Kernel1D& kernel, std::uint16_t pack,
                           ResultImage& result) {
  return FilterInto(image, {&kernel, &kernel}, pack, result);
}

int ImgProcess::ConvolveRows(const ErdasImg& image, const Kernel1D& kernel, ErdasImg& result) {
  return FilterImage(image, {Along(1, kernel)}, result);
}

int ImgProcess::ConvolveColumns(const ErdasImg& image, const Kernel1D& kernel, ErdasImg& result) {
  return FilterImage(image, {Along(2, kernel)}, result);
}

int ImgProcess::ConvolveColumnsInPlace(ErdasImg& result, const Kernel1D& kernel) {
  return FilterImage(result, {Along(2, kernel)}, result);
}

int ImgProcess::ConvolveToFile(const ErdasImg& image, const Kernel1D& kernel, int direction,
                               std::uint16_t pack, const std::string& path) {
  if (direction != 1 && direction != 2) return -1;
  OutputFile file(path);
  const auto write = [&](const void* bytes, std::size_t size) { return file.Write(bytes, size); };
  const int status = WriteFiltered(image, Along(direction, kernel), HeaderWith(image, pack), write);
  if (status == -1 || status == -2) return status;
  if (status == 1 && file.Commit()) return 1;
  ShowWarning(WriteErrorText(path));
  return -3;
}

}  // namespace corvane
