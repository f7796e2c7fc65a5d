#pragma once

#include <functional>
#include <initializer_list>
#include <memory>

#include "ImgProcess/SeparableFilter.h"

namespace corvane {

// Whether both images have the same columns, rows and number of bands.
bool SameShape(const ErdasImg& a, const ErdasImg& b);

// Whether the image has all its bands, each with all its pixels, which stand where a pixel of the type may
// stand in memory.
bool HoldsItsPixels(const ErdasImg& image);

// Puts a new image with that header where there is none. 1; as Create, with none left, if that fails.
int MakeMissing(const ErdasHeader& header, std::unique_ptr<ErdasImg>& result);

// Calls `visit` with a pixel of the image's type and one of the result's, and returns true, if there is a
// filter from the one to the other: from bytes, floats or doubles to floats or doubles.
template <typename Visit>
bool WithFilterTypes(const ErdasImg& image, const ErdasHeader& result, Visit visit) {
  const auto withSum = [&](auto pixel) {
    if (image.GetBytesPerPixel() != sizeof pixel) return false;
    if (result.packType == kPackFloat) visit(pixel, float{});
    if (result.packType == kPackDouble) visit(pixel, double{});
    return result.packType == kPackFloat || result.packType == kPackDouble;
  };
  if (image.GetPackType() == kPackByte) return withSum(std::uint8_t{});
  if (image.GetPackType() == kPackFloat) return withSum(float{});
  return image.GetPackType() == kPackDouble && withSum(double{});
}

// Puts the sum of the filters' outputs, added from left to right, into the result, which may be the image
// itself. 1, with the result as it was if there is no filter for the pixel types; -1 if an image has no
// pixels or a kernel no weights, or their shapes differ; -2 without memory.
int FilterImage(const ErdasImg& image, std::initializer_list<FilterKernels> filters, ErdasImg& result);

// Takes the next bytes of a file; false if they cannot be written.
using WriteBytes = std::function<bool(const void* bytes, std::size_t size)>;

// Writes the filter's output as the .lan with that header, whose shape is the image's, row by row: zeros if
// there is no filter for the pixel types. 1; -1 and -2 as FilterImage; -3 if a write fails.
int WriteFiltered(const ErdasImg& image, const FilterKernels& filter, const ErdasHeader& header,
                  const WriteBytes& write);

}  // namespace corvane
