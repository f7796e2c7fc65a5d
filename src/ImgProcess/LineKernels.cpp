#include "ImgProcess/LineKernels.h"

#include <cmath>
#include <cstring>

#include "numerics/SimdVersion.h"

namespace corvane {

namespace {

// The numbers of a pack in another type.
template <typename To, typename Number, std::size_t width>
struct ConvertedPack {
  typedef To Lanes __attribute__((vector_size(width / sizeof(Number) * sizeof(To))));

  [[gnu::always_inline]] explicit ConvertedPack(const SimdPack<Number, width>& pack)
      : lanes(__builtin_convertvector(pack.lanes, Lanes)) {}
  [[gnu::always_inline]] void CopyTo(SimdPack<Number, width>& pack) const {
    pack.lanes = __builtin_convertvector(lanes, typename SimdPack<Number, width>::Lanes);
  }
  [[gnu::always_inline]] void Store(To* to) const { std::memcpy(to, &lanes, sizeof lanes); }

  Lanes lanes;
};

template <typename Number, typename Sum>
struct WeightedSumKernel {
  // Takes `nPacks` packs of each line at a time: enough sums to add to while others are still on their way.
  template <std::size_t width, int nPacks>
  [[gnu::always_inline]] static inline void Step(const Number* const* lines, const Sum* weights,
                                                 std::ptrdiff_t nLines, Sum* to, std::ptrdiff_t i) {
    constexpr auto kLanes = static_cast<std::ptrdiff_t>(SimdPack<Number, width>::kLanes);
    SimdPack<Number, width> sums[nPacks] = {};
    SimdPack<Number, width> term;
    for (std::ptrdiff_t j = 0; j < nLines; ++j) {
      const Number* const line = lines[j] + i;
      for (int p = 0; p < nPacks; ++p) {
        term.Load(line + p * kLanes);
        sums[p].lanes += term.lanes * static_cast<Number>(weights[j]);
        if constexpr (kIsNarrower) ConvertedPack<Sum, Number, width>(sums[p]).CopyTo(sums[p]);
      }
    }
    for (int p = 0; p < nPacks; ++p) ConvertedPack<Sum, Number, width>(sums[p]).Store(to + i + p * kLanes);
  }

  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const Number* const* lines, const Sum* weights,
                                                std::ptrdiff_t nLines, Sum* to, std::ptrdiff_t n) {
    constexpr auto kLanes = static_cast<std::ptrdiff_t>(SimdPack<Number, width>::kLanes);
    std::ptrdiff_t i = 0;
    for (; i + 8 * kLanes <= n; i += 8 * kLanes) Step<width, 8>(lines, weights, nLines, to, i);
    for (; i + kLanes <= n; i += kLanes) Step<width, 1>(lines, weights, nLines, to, i);
    for (; i < n; ++i) {
      Sum sum = 0;
      for (std::ptrdiff_t j = 0; j < nLines; ++j) {
        sum = static_cast<Sum>(sum + lines[j][i] * static_cast<Number>(weights[j]));
      }
      to[i] = sum;
    }
  }

  static constexpr bool kIsNarrower = sizeof(Sum) < sizeof(Number);
};

template <typename Pixel, typename Number>
struct ConvertKernel {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const std::uint8_t* pixels, Number* __restrict to,
                                                std::ptrdiff_t n) {
    for (std::ptrdiff_t i = 0; i < n; ++i) {
      Pixel pixel;
      std::memcpy(&pixel, pixels + i * static_cast<std::ptrdiff_t>(sizeof pixel), sizeof pixel);
      to[i] = static_cast<Number>(pixel);
    }
  }
};

template <typename Number>
struct AddKernel {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(Number* to, const Number* line, std::ptrdiff_t n) {
    for (std::ptrdiff_t i = 0; i < n; ++i) to[i] += line[i];
  }
};

template <typename Number>
struct MagnitudeKernel {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const Number* x, const Number* y, Number* to,
                                                std::ptrdiff_t n) {
    for (std::ptrdiff_t i = 0; i < n; ++i) to[i] = std::sqrt(x[i] * x[i] + y[i] * y[i]);
  }
};

template <typename Number>
struct MultiplyKernel {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const Number* a, const Number* b, Number* to,
                                                std::ptrdiff_t n) {
    for (std::ptrdiff_t i = 0; i < n; ++i) to[i] = a[i] * b[i];
  }
};

}  // namespace

template <typename Number, typename Sum>
void WeightedSum(const Number* const* lines, const Sum* weights, std::ptrdiff_t nLines, Sum* to,
                 std::ptrdiff_t n) {
  RunSimd<WeightedSumKernel<Number, Sum>>(lines, weights, nLines, to, n);
}

template <typename Pixel, typename Number>
void ConvertLine(const std::uint8_t* pixels, Number* to, std::ptrdiff_t n) {
  RunSimd<ConvertKernel<Pixel, Number>>(pixels, to, n);
}

template <typename Number>
void AddLine(Number* to, const Number* line, std::ptrdiff_t n) {
  RunSimd<AddKernel<Number>>(to, line, n);
}

template <typename Number>
void MagnitudeLine(const Number* x, const Number* y, Number* to, std::ptrdiff_t n) {
  RunSimd<MagnitudeKernel<Number>>(x, y, to, n);
}

template <typename Number>
void MultiplyLine(const Number* a, const Number* b, Number* to, std::ptrdiff_t n) {
  RunSimd<MultiplyKernel<Number>>(a, b, to, n);
}

template void WeightedSum(const float* const*, const float*, std::ptrdiff_t, float*, std::ptrdiff_t);
template void WeightedSum(const double* const*, const double*, std::ptrdiff_t, double*, std::ptrdiff_t);
template void WeightedSum(const double* const*, const float*, std::ptrdiff_t, float*, std::ptrdiff_t);
template void ConvertLine<std::uint8_t>(const std::uint8_t*, float*, std::ptrdiff_t);
template void ConvertLine<std::uint8_t>(const std::uint8_t*, double*, std::ptrdiff_t);
template void ConvertLine<float>(const std::uint8_t*, float*, std::ptrdiff_t);
template void ConvertLine<float>(const std::uint8_t*, double*, std::ptrdiff_t);
template void ConvertLine<double>(const std::uint8_t*, float*, std::ptrdiff_t);
template void ConvertLine<double>(const std::uint8_t*, double*, std::ptrdiff_t);
template void AddLine(float*, const float*, std::ptrdiff_t);
template void AddLine(double*, const double*, std::ptrdiff_t);
template void MagnitudeLine(const float*, const float*, float*, std::ptrdiff_t);
template void MagnitudeLine(const double*, const double*, double*, std::ptrdiff_t);
template void MultiplyLine(const float*, const float*, float*, std::ptrdiff_t);
template void MultiplyLine(const double*, const double*, double*, std::ptrdiff_t);

}  // namespace corvane
