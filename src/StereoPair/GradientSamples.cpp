#include "StereoPair/GradientSamples.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "erdasimg/BandPixels.h"
#include "numerics/SimdVersion.h"

namespace corvane {

namespace {

constexpr std::size_t kBlock = 64;  // places in the form for all images

// Five samples of each place.
void SampleOneByOne(const ErdasImg& image, std::span<const double> rows, std::span<const double> cols,
                    std::span<double> samples, std::span<double> gCol, std::span<double> gRow) {
  std::array<double, kBlock> moved;
  std::array<double, kBlock> before;
  std::array<double, kBlock> behind;
  const auto sample = [&](auto rowsThere, auto colsThere, std::span<double> to) {
    image.GetPixelsBilinear(0, rowsThere, colsThere, to);
  };
  const auto move = [&](std::span<const double> places, double step) {
    for (std::size_t i = 0; i < places.size(); ++i) moved[i] = places[i] + step;
    return std::span<const double>(moved).first(places.size());
  };
  for (std::size_t first = 0; first < rows.size(); first += kBlock) {
    const std::size_t n = std::min(kBlock, rows.size() - first);
    const auto r = rows.subspan(first, n);
    const auto c = cols.subspan(first, n);
    sample(r, c, samples.subspan(first, n));
    sample(r, move(c, -1.0), before);
    sample(r, move(c, 1.0), behind);
    for (std::size_t i = 0; i < n; ++i) gCol[first + i] = (behind[i] - before[i]) / 2.0;
    sample(move(r, -1.0), c, before);
    sample(move(r, 1.0), c, behind);
    for (std::size_t i = 0; i < n; ++i) gRow[first + i] = (behind[i] - before[i]) / 2.0;
  }
}

// The samples of a place (y, x) need the twelve pixels
//          . A B .    row i - 1
//          C D E F    row i
//          G H I J    row i + 1
//          . K L .    row i + 2
// with D at i = floor(y), j = floor(x), and the fractions of y, y + 1, x and x + 1 above their floors; those
// of y - 1 and x - 1 are those of y and x, as y and x are not less than 1. y + 1 may be rounded, where it
// reaches the next power of two, so its fraction is another one; and in rare cases it is rounded up to a
// whole number. Such places are not regular, and left to the other form.
//
// `place` is one of the two coordinates of kLanes places.
template <std::size_t width>
struct Coordinate {
  using Pack = SimdPack<double, width>;
  typedef std::int32_t Whole __attribute__((vector_size(width / 2)));
  typedef std::int64_t Flags __attribute__((vector_size(width)));

  typename Pack::Lanes fraction;
  typename Pack::Lanes nextFraction;  // of the coordinate + 1
  Whole whole;

  // Clears the flags of those that are not regular.
  [[gnu::always_inline]] void Split(const double* places, Flags& regular) {
    Pack place;
    place.Load(places);
    const auto next = place.lanes + 1.0;
    whole = __builtin_convertvector(place.lanes, Whole);
    const auto floor = __builtin_convertvector(whole, typename Pack::Lanes);
    fraction = place.lanes - floor;
    nextFraction = next - (floor + 1.0);
    const auto below = (place.lanes + 0.5) + 0.5;  // where the pixel behind is looked for
    const auto belowNext = (next + 0.5) + 0.5;
    regular &= (next < floor + 2.0) & (below < floor + 2.0) & (belowNext < floor + 3.0);
  }
};

struct SampleKernel {
  static constexpr std::size_t kMostLanes = 8;

  template <typename Lanes>
  [[gnu::always_inline]] static inline void Mix(const Lanes& fr, const Lanes& fc, const Lanes& a,
                                                const Lanes& right, const Lanes& below, const Lanes& across,
                                                Lanes& value) {
    value =
        (1.0 - fc) * (1.0 - fr) * a + (1.0 - fc) * fr * below + fc * (1.0 - fr) * right + fc * fr * across;
  }

  // `n` is a whole number of registers. False if a place is not regular; the results are then not used.
  template <std::size_t width>
  [[gnu::always_inline]] static inline bool Run(const std::uint8_t* pixels, std::ptrdiff_t stride,
                                                const double* rows, const double* cols, std::size_t n,
                                                double* samples, double* gCol, double* gRow) {
    using Pack = SimdPack<double, width>;
    using Axis = Coordinate<width>;
    using Whole = typename Axis::Whole;
    constexpr std::size_t kLanes = Pack::kLanes;
    typename Axis::Flags regular;
    std::memset(&regular, 0xFF, sizeof regular);
    for (std::size_t k = 0; k < n; k += kLanes) {
      Axis y, x;
      y.Split(rows + k, regular);
      x.Split(cols + k, regular);
      Whole lines[4];  // of each place, four pixels from column j - 1 on in each of the four rows
      for (std::size_t lane = 0; lane < kLanes; ++lane) {
        const std::uint8_t* const first = pixels + (y.whole[lane] - 1) * stride + (x.whole[lane] - 1);
        for (std::ptrdiff_t line = 0; line < 4; ++line) {
          std::int32_t bytes;
          std::memcpy(&bytes, first + line * stride, sizeof bytes);
          lines[line][lane] = bytes;
        }
      }
      typename Pack::Lanes p[4][4];
      for (int line = 0; line < 4; ++line) {
        for (int i = 0; i < 4; ++i) {
          const Whole values = (lines[line] >> (8 * i)) & 255;
          p[line][i] = __builtin_convertvector(values, typename Pack::Lanes);
        }
      }
      Pack centre, left, right, above, below;
      Mix(y.fraction, x.fraction, p[1][1], p[1][2], p[2][1], p[2][2], centre.lanes);
      Mix(y.fraction, x.fraction, p[1][0], p[1][1], p[2][0], p[2][1], left.lanes);
      Mix(y.fraction, x.nextFraction, p[1][2], p[1][3], p[2][2], p[2][3], right.lanes);
      Mix(y.fraction, x.fraction, p[0][1], p[0][2], p[1][1], p[1][2], above.lanes);
      Mix(y.nextFraction, x.fraction, p[2][1], p[2][2], p[3][1], p[3][2], below.lanes);
      centre.Store(samples + k);
      right.lanes = (right.lanes - left.lanes) / 2.0;
      right.Store(gCol + k);
      below.lanes = (below.lanes - above.lanes) / 2.0;
      below.Store(gRow + k);
    }
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      if (regular[lane] == 0) return false;
    }
    return true;
  }
};

// Whether the twelve pixels of all places are in the image; not of one that is no number.
bool AreInside(const ErdasImg& image, std::span<const double> rows, std::span<const double> cols) {
  const auto [nCols, nRows] = image.GetSize();
  const double endRow = nRows - 2.0;
  const double endCol = nCols - 2.0;
  bool areInside = true;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const double row = rows[i];
    const double col = cols[i];
    areInside &= (row >= 1.0) & (row < endRow) & (col >= 1.0) & (col < endCol);
  }
  return areInside;
}

bool HoldsBytes(const ErdasImg& image) {
  const auto isByte = [](auto pixel) { return sizeof pixel == 1; };
  return image.HasPixels() && WithPixelType(image.GetPackType(), isByte) &&
         BandPixels<std::uint8_t>(image, 0).IsPlain();
}

}  // namespace

void SampleWithGradients(const ErdasImg& image, std::span<const double> rows, std::span<const double> cols,
                         std::span<double> samples, std::span<double> gCol, std::span<double> gRow) {
  std::size_t nDone = 0;
  const std::size_t nWhole = rows.size() - rows.size() % SampleKernel::kMostLanes;
  if (HoldsBytes(image) && AreInside(image, rows, cols)) {
    const std::uint8_t* const pixels = image.GetBands()[0];
    const auto stride = static_cast<std::ptrdiff_t>(image.GetSize().cx);
    const bool areRegular = RunSimd<SampleKernel>(pixels, stride, rows.data(), cols.data(), nWhole,
                                                  samples.data(), gCol.data(), gRow.data());
    if (areRegular) nDone = nWhole;
  }
  SampleOneByOne(image, rows.subspan(nDone), cols.subspan(nDone), samples.subspan(nDone), gCol.subspan(nDone),
                 gRow.subspan(nDone));
}

}  // namespace corvane
