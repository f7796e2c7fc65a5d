#include "StereoPair/WindowScores.h"

#include <cmath>
#include <cstring>

#include "StereoPair/PixelPairs.h"
#include "StereoPair/WindowBytes.h"
#include "numerics/SimdVersion.h"

namespace corvane {

namespace {

constexpr std::int64_t kMaxPlaces = 256;  // of a row, side by side
constexpr std::int64_t kMaxLanes = 16;    // of 32 bits, of the widest registers
constexpr std::int64_t kStripSize = 1 << 16;
constexpr std::int64_t kMaxStripSize = 1 << 20;
constexpr std::size_t kPacksAtATime = 4;
constexpr std::size_t kMaxSteps = 256;  // for which 16-bit sums surely have room

std::int64_t RoundUp(std::int64_t n) {
  return (n + kMaxLanes - 1) / kMaxLanes * kMaxLanes;
}

// Pairs of rows of pixels: to[j] = from[j] and from[j + 1].
struct PairPixels {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const std::uint8_t* from, std::ptrdiff_t fromStride,
                                                std::uint32_t* __restrict to, std::ptrdiff_t toStride,
                                                std::int64_t nRows) {
    for (std::int64_t i = 0; i < nRows; ++i, from += fromStride, to += toStride) {
      for (std::ptrdiff_t j = 0; j < toStride; ++j) to[j] = from[j] | std::uint32_t{from[j + 1]} << 16;
    }
  }
};

// The left window and the strip, both from the first row of the windows on.
struct RowOfWindows {
  const std::uint32_t* leftPairs;
  std::size_t width;
  std::size_t height;
  const std::uint32_t* strip;
  std::size_t stride;

  std::size_t GetStepsPerRow() const { return (width + 1) / 2; }
};

// A part of the window: rows and steps of two columns, ends not included.
struct WindowPart {
  std::size_t firstRow, endRow;
  std::size_t firstStep, endStep;
};

template <std::size_t width, std::size_t nPacks>
struct LaneSums {
  PixelPairs<width> b[nPacks] = {}, bb[nPacks] = {}, ab[nPacks] = {};

  [[gnu::always_inline]] void AddStep(std::uint32_t left, const std::uint32_t* strip, std::uint32_t mask) {
    PixelPairs<width> leftPair, pair;
    leftPair.Fill(left);
    for (std::size_t k = 0; k < nPacks; ++k) {
      pair.Load(strip + k * pair.kLanes);
      pair.lanes &= mask;
      AddPairs<width>(b[k], pair);
      AddPairProducts<width>(bb[k], pair, pair);
      AddPairProducts<width>(ab[k], leftPair, pair);
    }
  }

  [[gnu::always_inline]] void AddPart(const RowOfWindows& row, const WindowPart& part, std::size_t place) {
    const std::size_t nSteps = row.GetStepsPerRow();
    const bool endsHalf = row.width % 2 != 0 && part.endStep == nSteps;
    const std::size_t endWhole = part.endStep - (endsHalf ? 1 : 0);
    for (std::size_t i = part.firstRow; i < part.endRow; ++i) {
      const std::uint32_t* left = row.leftPairs + i * nSteps;
      const std::uint32_t* strip = row.strip + i * row.stride + place;
      for (std::size_t s = part.firstStep; s < endWhole; ++s) AddStep(left[s], strip + 2 * s, 0xFFFFFFFFu);
      if (endsHalf) AddStep(left[endWhole], strip + 2 * endWhole, 0xFFFFu);
    }
  }

  [[gnu::always_inline]] static void AddTo(double* to, const PixelPairs<width>& pack) {
    std::int32_t lanes[pack.kLanes];
    std::memcpy(lanes, &pack.lanes, width);
    for (std::size_t i = 0; i < pack.kLanes; ++i) to[i] += lanes[i];
  }

  [[gnu::always_inline]] void AddTo(double* sums, std::size_t sumStride) {
    for (std::size_t k = 0; k < nPacks; ++k) {
      JoinHalves<width>(b[k]);
      double* to = sums + k * PixelPairs<width>::kLanes;
      AddTo(to, b[k]);
      AddTo(to + sumStride, bb[k]);
      AddTo(to + 2 * sumStride, ab[k]);
    }
  }
};

// Adds the sums b, bb, ab of a row of places, `sumStride` of each, a whole number of the widest packs. They
// are made in 32 bits for parts of the window that are small enough.
struct SumWindows {
  template <std::size_t width, std::size_t nPacks>
  [[gnu::always_inline]] static inline void AddPlaces(const RowOfWindows& row, std::size_t place,
                                                      double* sums, std::size_t sumStride) {
    const std::size_t nSteps = row.GetStepsPerRow();
    const std::size_t nPartRows = std::max(kMaxSteps / nSteps, std::size_t{1});
    for (std::size_t i = 0; i < row.height; i += nPartRows) {
      for (std::size_t s = 0; s < nSteps; s += kMaxSteps) {
        LaneSums<width, nPacks> part;
        part.AddPart(row, {i, std::min(i + nPartRows, row.height), s, std::min(s + kMaxSteps, nSteps)},
                     place);
        part.AddTo(sums + place, sumStride);
      }
    }
  }

  // Takes `nPacks` packs of places at a time, as long as there are more than one less.
  template <std::size_t width, std::size_t nPacks>
  [[gnu::always_inline]] static inline void AddRow(const RowOfWindows& row, std::size_t place,
                                                   std::size_t nPlaces, double* sums, std::size_t sumStride) {
    constexpr std::size_t kLanes = PixelPairs<width>::kLanes;
    for (; place + (nPacks - 1) * kLanes < nPlaces; place += nPacks * kLanes) {
      AddPlaces<width, nPacks>(row, place, sums, sumStride);
    }
    if constexpr (nPacks > 1) AddRow<width, nPacks - 1>(row, place, nPlaces, sums, sumStride);
  }

  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const RowOfWindows* row, std::size_t nPlaces, double* sums,
                                                std::size_t sumStride) {
    AddRow<width, kPacksAtATime>(*row, 0, nPlaces, sums, sumStride);
  }
};

// The coefficients from the sums, operation by operation those of CorrelationSums.
struct MakeScores {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const CorrelationSums* left, const double* b,
                                                const double* bb, const double* ab, double* __restrict scores,
                                                std::ptrdiff_t nPlaces) {
    const double n = left->n;
    const double a = left->a;
    const double varianceA = left->aa - a * a / n;
    if (varianceA == 0.0) {
      for (std::ptrdiff_t k = 0; k < nPlaces; ++k) scores[k] = bb[k] - b[k] * b[k] / n == 0.0 ? 1.0 : 0.0;
      return;
    }
    for (std::ptrdiff_t k = 0; k < nPlaces; ++k) {
      const double varianceB = bb[k] - b[k] * b[k] / n;
      const double score = (ab[k] - a * b[k] / n) / std::sqrt(varianceA * varianceB);
      scores[k] = varianceB == 0.0 ? 0.0 : score;
    }
  }
};

}  // namespace

void WindowScores::SetLeft(std::span<const std::uint8_t> pixels, std::int32_t width, std::int32_t height) {
  width_ = width;
  height_ = height;
  left_ = pixels;
  leftSums_ = SumPixels(pixels, pixels);
  leftSums_.b = leftSums_.bb = leftSums_.ab = 0.0;
  if (!IsStripped()) return;
  leftPairs_.resize(static_cast<std::size_t>(height) * ((static_cast<std::size_t>(width) + 1) / 2));
  std::uint32_t* to = leftPairs_.data();
  const std::uint8_t* from = pixels.data();
  for (std::int32_t row = 0; row < height; ++row) {
    std::int32_t col = 0;
    for (; col + 1 < width; col += 2, from += 2) *to++ = from[0] | std::uint32_t{from[1]} << 16;
    if (col < width) *to++ = *from++;
  }
}

std::int64_t WindowScores::GetMaxCols() const {
  if (!IsStripped()) return kMaxPlaces;
  return std::clamp(kMaxStripSize / height_ - width_, kMaxLanes, kMaxPlaces);
}

std::int64_t WindowScores::GetMaxRows(std::int64_t nCols) const {
  if (!IsStripped()) return kMaxPlaces;
  return std::max<std::int64_t>(kStripSize / GetStride(nCols) - height_ + 1, 1);
}

std::int64_t WindowScores::GetStride(std::int64_t nCols) const {
  return RoundUp(RoundUp(nCols) + width_);
}

void WindowScores::CutStrip(const ErdasImg& right, const Part& part) {
  if (!IsStripped()) return;
  const std::int64_t stride = GetStride(part.nCols);
  const std::int64_t nRows = part.nRows + height_ - 1;
  strip_.resize(static_cast<std::size_t>(nRows * stride));
  const std::int64_t imageCols = right.m_header.cols;
  const auto held = right.m_bands.GetBand(0);
  const bool isInside = part.row >= 0 && part.col >= 0 && part.row + nRows <= right.m_header.rows &&
                        part.col + part.nCols + width_ - 1 <= imageCols;
  // Lanes that are no place may hold anything, the pixels of the next row, say.
  const std::int64_t first = isInside ? part.row * imageCols + part.col : 0;
  const std::int64_t end = first + (nRows - 1) * imageCols + stride + 1;
  if (isInside && end <= static_cast<std::int64_t>(held.size())) {
    RunSimd<PairPixels>(held.data() + first, imageCols, strip_.data(), stride, nRows);
    return;
  }
  cut_.resize(static_cast<std::size_t>(nRows * (stride + 1)));
  for (std::int64_t i = 0; i < nRows; ++i) {
    const auto at = static_cast<std::size_t>(i * (stride + 1));
    CopyBytes(right, part.row + i, part.col,
              std::span(cut_).subspan(at, static_cast<std::size_t>(stride + 1)));
  }
  RunSimd<PairPixels>(cut_.data(), stride + 1, strip_.data(), stride, nRows);
}

std::span<double> WindowScores::ScoreRow(const ErdasImg& right, const Part& part, std::int64_t i) {
  const auto nPlaces = static_cast<std::size_t>(part.nCols);
  const auto padded = static_cast<std::size_t>(RoundUp(part.nCols));
  scores_.resize(padded);
  if (!IsStripped()) {
    ScoreLargeWindows(right, part, i);
  } else {
    const auto stride = static_cast<std::size_t>(GetStride(part.nCols));
    const RowOfWindows row = {leftPairs_.data(), static_cast<std::size_t>(width_),
                              static_cast<std::size_t>(height_),
                              strip_.data() + static_cast<std::size_t>(i) * stride, stride};
    sums_.assign(3 * padded, 0.0);
    RunSimd<SumWindows>(&row, nPlaces, sums_.data(), padded);
    RunSimd<MakeScores>(&leftSums_, sums_.data(), sums_.data() + padded, sums_.data() + 2 * padded,
                        scores_.data(), part.nCols);
  }
  return std::span(scores_).first(nPlaces);
}

void WindowScores::ScoreLargeWindows(const ErdasImg& right, const Part& part, std::int64_t i) {
  for (std::int64_t k = 0; k < part.nCols; ++k) {
    scores_[static_cast<std::size_t>(k)] = SumOverlap(right, {part.col + k, part.row + i}).GetCoefficient();
  }
}

// Pixels outside of the image are 0 and add nothing to the sums, but count in n.
CorrelationSums WindowScores::SumOverlap(const ErdasImg& right, const WindowCorner& corner) {
  const auto [cols, rows] = right.GetSize();
  const std::int64_t firstCol = std::clamp<std::int64_t>(-corner.col, 0, width_);
  const std::int64_t endCol = std::clamp<std::int64_t>(cols - corner.col, firstCol, width_);
  const std::int64_t firstRow = std::clamp<std::int64_t>(-corner.row, 0, height_);
  const std::int64_t endRow = std::clamp<std::int64_t>(rows - corner.row, firstRow, height_);
  const auto nCols = static_cast<std::size_t>(endCol - firstCol);
  cut_.resize(nCols);
  CorrelationSums sums = leftSums_;
  for (std::int64_t row = firstRow; row < endRow && nCols > 0; ++row) {
    CopyBytes(right, corner.row + row, corner.col + firstCol, cut_);
    const auto at = static_cast<std::size_t>(row * width_ + firstCol);
    const CorrelationSums part = SumPixels(left_.subspan(at, nCols), cut_);
    sums.b += part.b;
    sums.bb += part.bb;
    sums.ab += part.ab;
  }
  return sums;
}

}  // namespace corvane
