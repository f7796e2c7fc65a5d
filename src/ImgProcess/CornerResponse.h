#pragma once

#include <cstddef>
#include <memory>

#include "ImgProcess/ImageFilter.h"
#include "numerics/SimdVersion.h"

namespace corvane {

template <typename Number>
struct CornerMeasureKernel {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const Number* a, const Number* b, const Number* c, Number k,
                                                Number* __restrict to, std::ptrdiff_t n) {
    for (std::ptrdiff_t i = 0; i < n; ++i) {
      const Number trace = a[i] + b[i];
      to[i] = a[i] * b[i] - c[i] * c[i] - k * (trace * trace);
    }
  }
};

// The Harris measure of a line of `n` pixels, with a and b the smoothed squares of the gradients and c their
// smoothed product: to[i] = (a * b - c * c) - k * ((a + b) * (a + b)), each step rounded by itself.
template <typename Number>
void MeasureCorners(const Number* a, const Number* b, const Number* c, Number k, Number* to,
                    std::ptrdiff_t n) {
  RunSimd<CornerMeasureKernel<Number>>(a, b, c, k, to, n);
}

// Whether there are pixels, and a result that is there already can take their response.
inline bool CanRespond(const ErdasImg& image, std::uint16_t pack, const std::unique_ptr<ErdasImg>& result) {
  if (!image.HasPixels()) return false;
  return !result || (SameShape(image, *result) && result->GetPackType() == pack && HoldsItsPixels(*result));
}

}  // namespace corvane
