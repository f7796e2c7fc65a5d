#include "StereoPair/RowSearch.h"

#include <algorithm>
#include <cmath>

#include "StereoPair/PixelPairs.h"
#include "StereoPair/WindowBytes.h"
#include "numerics/SimdVersion.h"

namespace corvane {

namespace {

constexpr std::int64_t kMaxPixels = 65536;   // of a window: times 255^2 that still fits 32 bits
constexpr std::int64_t kMaxPairs = 1 << 22;  // of an image
constexpr std::size_t kMaxLanes = 16;        // of 32 bits, of the widest registers
constexpr std::size_t kPacks = 4;            // registers side by side
constexpr std::size_t kBlock = kPacks * kMaxLanes;

std::size_t RoundUp(std::size_t n) {
  return (n + kBlock - 1) / kBlock * kBlock;
}

// Elements of a row of pairs. Blocks of lanes may reach beyond the last window: what they read there does not
// matter, but is there.
std::size_t StrideOf(std::int32_t cols, std::int32_t width) {
  return RoundUp(static_cast<std::size_t>(cols) + static_cast<std::size_t>(width)) + kBlock;
}

// The first pixels of the windows side by side, and what they are multiplied with.
struct PairRows {
  const std::uint32_t* pairs;
  std::size_t stride;
};

// Sums over windows of `windowWidth` x `windowHeight` pixels, a lane a window: n of them, rounded up to whole
// blocks, from `a` on and, lane by lane, from `b` on.
//
// One step takes two columns of the window; the last column of an odd one is half a pair.
template <typename Term>
struct SumWindows {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const PairRows* a, const PairRows* b, std::size_t windowWidth,
                                                std::size_t windowHeight, std::size_t n,
                                                std::uint32_t* sums) {
    constexpr std::size_t kLanes = PixelPairs<width>::kLanes;
    for (std::size_t first = 0; first < n; first += kPacks * kLanes) {
      PixelPairs<width> total[kPacks] = {};
      for (std::size_t row = 0; row < windowHeight; ++row) {
        const std::uint32_t* fromA = a->pairs + row * a->stride + first;
        const std::uint32_t* fromB = b->pairs + row * b->stride + first;
        const std::uint32_t* const endWhole = fromA + windowWidth / 2 * 2;
        for (; fromA != endWhole; fromA += 2, fromB += 2) AddStep<width, false>(fromA, fromB, total);
        if (windowWidth % 2 != 0) AddStep<width, true>(fromA, fromB, total);
      }
      for (std::size_t k = 0; k < kPacks; ++k) total[k].Store(sums + first + k * kLanes);
    }
  }

  template <std::size_t width, bool isHalf>
  [[gnu::always_inline]] static inline void AddStep(const std::uint32_t* fromA, const std::uint32_t* fromB,
                                                    PixelPairs<width>* total) {
    for (std::size_t k = 0; k < kPacks; ++k) {
      PixelPairs<width> pairA, pairB;
      pairA.Load(fromA + k * pairA.kLanes);
      pairB.Load(fromB + k * pairB.kLanes);
      if constexpr (isHalf) pairA.lanes &= 0xFFFFu;
      Term::template Add<width>(total[k], pairA, pairB);
    }
  }
};

// a b
struct Products {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Add(PixelPairs<width>& total, const PixelPairs<width>& a,
                                                const PixelPairs<width>& b) {
    AddPairProducts<width>(total, a, b);
  }
};

// a
struct Values {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Add(PixelPairs<width>& total, const PixelPairs<width>& a,
                                                const PixelPairs<width>&) {
    total.lanes += (a.lanes & 0xFFFFu) + (a.lanes >> 16);
  }
};

// One shift for n windows: their coefficients, operation by operation those of CorrelationSums, and where one
// is above the best score so far, the score and the shift.
struct TakeBetter {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const double* a, const double* varianceA, const double* b,
                                                const double* varianceB, const std::uint32_t* ab,
                                                double nPixels, double shift, double* __restrict best,
                                                double* __restrict bestShift, std::ptrdiff_t n) {
    for (std::ptrdiff_t i = 0; i < n; ++i) {
      const double ofTexture =
          (static_cast<double>(ab[i]) - a[i] * b[i] / nPixels) / std::sqrt(varianceA[i] * varianceB[i]);
      const double ofFlat = varianceA[i] == varianceB[i] ? 1.0 : 0.0;
      const bool isFlat = (varianceA[i] == 0.0) | (varianceB[i] == 0.0);
      const double score = isFlat ? ofFlat : ofTexture;
      const bool isBetter = score > best[i];
      best[i] = isBetter ? score : best[i];
      bestShift[i] = isBetter ? shift : bestShift[i];
    }
  }
};

}  // namespace

bool RowSearch::Takes(std::int32_t width, std::int32_t height, std::int32_t cols) {
  if (width <= 0 || height <= 0 || cols < width || std::int64_t{width} * height > kMaxPixels) return false;
  return static_cast<std::int64_t>(StrideOf(cols, width)) * height <= kMaxPairs;
}

void RowSearch::Windows::Set(const ErdasImg& image, std::int64_t top, std::int32_t width,
                             std::int32_t height) {
  nCols = image.GetSize().cx;
  stride = StrideOf(image.GetSize().cx, width);
  pairs.resize(static_cast<std::size_t>(height) * stride);
  bytes.resize(stride + 1);
  for (std::int32_t i = 0; i < height; ++i) {
    CopyBytes(image, top + i, 0, bytes);
    std::uint32_t* const to = pairs.data() + static_cast<std::size_t>(i) * stride;
    for (std::size_t j = 0; j < stride; ++j) to[j] = bytes[j] | std::uint32_t{bytes[j + 1]} << 16;
  }

  const auto n = static_cast<std::size_t>(nCols - width + 1);
  const auto windowWidth = static_cast<std::size_t>(width);
  const auto windowHeight = static_cast<std::size_t>(height);
  const double nPixels = static_cast<double>(std::int64_t{width} * height);
  const PairRows rows = {pairs.data(), stride};
  scratch.resize(RoundUp(n));
  RunSimd<SumWindows<Values>>(&rows, &rows, windowWidth, windowHeight, n, scratch.data());
  sums.assign(scratch.begin(), scratch.begin() + static_cast<std::ptrdiff_t>(n));
  RunSimd<SumWindows<Products>>(&rows, &rows, windowWidth, windowHeight, n, scratch.data());
  variances.resize(n);
  for (std::size_t i = 0; i < n; ++i) {
    variances[i] = static_cast<double>(scratch[i]) - sums[i] * sums[i] / nPixels;
  }
}

void RowSearch::SetRows(const ErdasImg& left, std::int64_t leftTop, const ErdasImg& right,
                        std::int64_t rightTop, std::int32_t width, std::int32_t height) {
  width_ = width;
  height_ = height;
  left_.Set(left, leftTop, width, height);
  right_.Set(right, rightTop, width, height);
}

void RowSearch::Search(std::int64_t firstCol, std::int64_t endCol, const ShiftRange& shifts) {
  const std::int64_t half = width_ / 2;
  const std::int64_t firstRight = half;
  const std::int64_t endRight = right_.nCols - half;
  scores_.assign(static_cast<std::size_t>(left_.nCols), 0.0);
  shifts_.assign(static_cast<std::size_t>(left_.nCols), static_cast<double>(shifts.leftOut));
  products_.resize(RoundUp(static_cast<std::size_t>(left_.nCols)));
  // Shifts at which no window lies in the right image are not gone over.
  const std::int64_t lastShift = std::min(shifts.last, endRight - 1 - firstCol);
  for (std::int64_t shift = std::max(shifts.first, firstRight - (endCol - 1)); shift <= lastShift; ++shift) {
    const std::int64_t first = std::max(firstCol, firstRight - shift);
    const std::int64_t n = std::min(endCol, endRight - shift) - first;
    if (n <= 0 || shift == shifts.leftOut) continue;
    const std::int64_t left = first - half;  // where the first windows begin
    const std::int64_t right = left + shift;
    const PairRows leftRows = {left_.pairs.data() + left, left_.stride};
    const PairRows rightRows = {right_.pairs.data() + right, right_.stride};
    RunSimd<SumWindows<Products>>(&leftRows, &rightRows, static_cast<std::size_t>(width_),
                                  static_cast<std::size_t>(height_), static_cast<std::size_t>(n),
                                  products_.data());
    RunSimd<TakeBetter>(left_.sums.data() + left, left_.variances.data() + left, right_.sums.data() + right,
                        right_.variances.data() + right, products_.data(),
                        static_cast<double>(std::int64_t{width_} * height_), static_cast<double>(shift),
                        scores_.data() + first, shifts_.data() + first, n);
  }
}

}  // namespace corvane
