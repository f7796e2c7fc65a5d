#include "StereoPair/WindowSimilarity.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "StereoPair/PixelPairs.h"

namespace corvane {

namespace {

// Pixels that the 16-bit sums in each half of the lanes surely have room for: 128 packs of 16 bytes, of which
// each half takes two.
constexpr std::size_t kMaxSummed = 2048;

constexpr std::size_t kLeastSummed = 64;  // bytes of a pack of the widest registers

// Bytes in lanes of four, to be seen as pairs of pixels: every other one, and those between.
template <std::size_t width>
struct SplitBytes {
  PixelPairs<width> even, odd;

  [[gnu::always_inline]] explicit SplitBytes(const PixelPairs<width>& bytes) {
    even.lanes = bytes.lanes & 0x00FF00FFu;
    odd.lanes = (bytes.lanes >> 8) & 0x00FF00FFu;
  }
};

// Sums of pixels of two windows in lanes.
template <std::size_t width>
struct PixelSums {
  PixelPairs<width> a{}, b{}, aa{}, bb{}, ab{};

  [[gnu::always_inline]] void Add(const PixelPairs<width>& bytesA, const PixelPairs<width>& bytesB) {
    const SplitBytes<width> splitA(bytesA), splitB(bytesB);
    AddPairs<width>(a, splitA.even);
    AddPairs<width>(a, splitA.odd);
    AddPairs<width>(b, splitB.even);
    AddPairs<width>(b, splitB.odd);
    AddPairProducts<width>(aa, splitA.even, splitA.even);
    AddPairProducts<width>(aa, splitA.odd, splitA.odd);
    AddPairProducts<width>(bb, splitB.even, splitB.even);
    AddPairProducts<width>(bb, splitB.odd, splitB.odd);
    AddPairProducts<width>(ab, splitA.even, splitB.even);
    AddPairProducts<width>(ab, splitA.odd, splitB.odd);
  }
};

// Loaded from its n-th byte on, a mask that keeps the last n bytes of a pack.
template <std::size_t width>
constexpr std::array<std::uint8_t, 2 * width> kKeepLast = [] {
  std::array<std::uint8_t, 2 * width> mask{};
  std::fill(mask.begin() + width, mask.end(), std::uint8_t{0xFF});
  return mask;
}();

template <std::size_t width>
[[gnu::always_inline]] inline void LoadBytes(const std::uint8_t* from, PixelPairs<width>& bytes) {
  std::memcpy(&bytes.lanes, from, width);
}

// The pack of bytes that ends at `end`, all but the last n of them 0.
template <std::size_t width>
[[gnu::always_inline]] inline void LoadLast(const std::uint8_t* end, std::size_t n,
                                            PixelPairs<width>& bytes) {
  PixelPairs<width> mask;
  LoadBytes<width>(kKeepLast<width>.data() + n, mask);
  LoadBytes<width>(end - width, bytes);
  bytes.lanes &= mask.lanes;
}

template <std::size_t width>
[[gnu::always_inline]] inline double AddUpLanes(const PixelPairs<width>& pack) {
  std::uint32_t lanes[width / 4];
  pack.Store(lanes);
  PixelPairs<16> sum, part;
  sum.Load(lanes);
  for (std::size_t i = 4; i < width / 4; i += 4) {
    part.Load(lanes + i);
    sum.lanes += part.lanes;
  }
  sum.lanes += __builtin_shufflevector(sum.lanes, sum.lanes, 2, 3, 0, 1);
  sum.lanes += __builtin_shufflevector(sum.lanes, sum.lanes, 1, 0, 3, 2);
  return sum.lanes[0];
}

// Adds the sums of at most kMaxSummed pixels, but no fewer than a pack of them.
struct AddPixelSums {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const std::uint8_t* a, const std::uint8_t* b, std::size_t n,
                                                CorrelationSums* to) {
    PixelSums<width> sums;
    PixelPairs<width> bytesA, bytesB;
    for (std::size_t i = 0; i + width <= n; i += width) {
      LoadBytes<width>(a + i, bytesA);
      LoadBytes<width>(b + i, bytesB);
      sums.Add(bytesA, bytesB);
    }
    LoadLast<width>(a + n, n % width, bytesA);
    LoadLast<width>(b + n, n % width, bytesB);
    sums.Add(bytesA, bytesB);
    JoinHalves<width>(sums.a);
    JoinHalves<width>(sums.b);
    to->a += AddUpLanes<width>(sums.a);
    to->aa += AddUpLanes<width>(sums.aa);
    to->b += AddUpLanes<width>(sums.b);
    to->bb += AddUpLanes<width>(sums.bb);
    to->ab += AddUpLanes<width>(sums.ab);
  }
};

// The same of any number of pixels.
void AddSums(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b, CorrelationSums& sums) {
  if (a.size() < kLeastSummed) {
    std::array<std::uint8_t, kLeastSummed> padded[2] = {};
    std::copy(a.begin(), a.end(), padded[0].begin());
    std::copy(b.begin(), b.end(), padded[1].begin());
    RunSimd<AddPixelSums>(padded[0].data(), padded[1].data(), kLeastSummed, &sums);
  } else {
    RunSimd<AddPixelSums>(a.data(), b.data(), a.size(), &sums);
  }
}

// Adds term(a, b) over all pixels.
template <typename Sum, typename Term>
Sum AddUp(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b, Term term) {
  const std::size_t n = std::min(a.size(), b.size());
  Sum sum = 0;
  for (std::size_t i = 0; i < n; ++i) sum += term(int{a[i]}, int{b[i]});
  return sum;
}

}  // namespace

double CorrelationSums::GetCoefficient() const {
  const double varianceA = aa - a * a / n;
  const double varianceB = bb - b * b / n;
  if (varianceA == 0.0 && varianceB == 0.0) return 1.0;
  if (varianceA == 0.0 || varianceB == 0.0) return 0.0;
  return (ab - a * b / n) / std::sqrt(varianceA * varianceB);
}

CorrelationSums SumPixels(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b) {
  const std::size_t n = std::min(a.size(), b.size());
  CorrelationSums sums{.n = static_cast<double>(n)};
  for (std::size_t first = 0; first < n; first += kMaxSummed) {
    const std::size_t count = std::min(kMaxSummed, n - first);
    AddSums(a.subspan(first, count), b.subspan(first, count), sums);
  }
  return sums;
}

double CorrelationCoefficient(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b) {
  return SumPixels(a, b).GetCoefficient();
}

double CorrelationCoefficientOfDoubles(std::span<const double> a, std::span<const double> b) {
  const std::size_t n = std::min(a.size(), b.size());
  CorrelationSums sums{.n = static_cast<double>(n)};
  for (std::size_t i = 0; i < n; ++i) {
    sums.a += a[i];
    sums.aa += a[i] * a[i];
    sums.b += b[i];
    sums.bb += b[i] * b[i];
    sums.ab += a[i] * b[i];
  }
  return sums.GetCoefficient();
}

double CorrelationCoefficientMasked(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b,
                                    std::span<const std::uint8_t> mask) {
  const std::size_t n = std::min({a.size(), b.size(), mask.size()});
  CorrelationSums sums;
  for (std::size_t i = 0; i < n; ++i) {
    if (mask[i] != 1) continue;
    const double left = a[i];
    const double right = b[i];
    sums.n += 1.0;
    sums.a += left;
    sums.aa += left * left;
    sums.b += right;
    sums.bb += right * right;
    sums.ab += left * right;
  }
  return sums.GetCoefficient();
}

double SumAbsDifference(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b) {
  return static_cast<double>(AddUp<std::int64_t>(a, b, [](int x, int y) { return std::abs(x - y); }));
}

double RelativeAbsDifference(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b) {
  const double sum =
      AddUp<double>(a, b, [](int x, int y) { return static_cast<double>(std::abs(x - y)) / x; });
  return sum / static_cast<double>(std::min(a.size(), b.size()));
}

double SumSquaredDifference(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b) {
  return static_cast<double>(AddUp<std::int64_t>(a, b, [](int x, int y) { return (x - y) * (x - y); }));
}

double DiffStdev(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b) {
  const auto n = static_cast<double>(std::min(a.size(), b.size()));
  if (n < 2.0) return 0.0;
  const double mean = static_cast<double>(AddUp<std::int64_t>(a, b, [](int x, int y) { return x - y; })) / n;
  return std::sqrt(std::max((SumSquaredDifference(a, b) - n * mean * mean) / (n - 1.0), 0.0));
}

std::int64_t MatchedPixelCount(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b,
                               std::optional<std::uint8_t> background) {
  const int left_out = background ? *background : -1;
  return AddUp<std::int64_t>(a, b, [left_out](int x, int y) { return x == y && x != left_out ? 1 : 0; });
}

std::int64_t NonBackgroundCount(std::span<const std::uint8_t> pixels,
                                std::optional<std::uint8_t> background) {
  const auto nPixels = static_cast<std::int64_t>(pixels.size());
  return background ? nPixels - std::count(pixels.begin(), pixels.end(), *background) : nPixels;
}

}  // namespace corvane
