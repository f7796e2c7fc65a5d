#include "dib/DibPainter.h"

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

constexpr std::uint32_t kWhole = 256;  // what the weights of a mean add up to

// The samples whose mean a pixel of the content shows, along one axis: up to three, from `first` on.
struct Taps {
  std::int32_t first = 0;
  std::array<std::uint32_t, 3> weights{};
};

// Of the pixels from `from` to before `to`, each of which covers 1 / scale samples, less than two.
std::vector<Taps> TapsOfAxis(std::int64_t from, std::int64_t to, double scale, std::int32_t nSamples) {
  std::vector<Taps> axis(static_cast<std::size_t>(to - from));
  for (std::size_t i = 0; i < axis.size(); ++i) {
    const double left = static_cast<double>(from + static_cast<std::int64_t>(i)) / scale;
    const double right = std::min(left + 1.0 / scale, static_cast<double>(nSamples));
    Taps& taps = axis[i];
    taps.first = std::min(static_cast<std::int32_t>(left), nSamples - 1);
    std::uint32_t rest = kWhole;
    for (std::size_t j = 2; j > 0; --j) {
      const double start = taps.first + static_cast<double>(j);
      const double covered = std::clamp(right - start, 0.0, 1.0);
      taps.weights[j] = std::min(rest, static_cast<std::uint32_t>(covered / (right - left) * kWhole + 0.5));
      rest -= taps.weights[j];
    }
    taps.weights[0] = rest;
  }
  return axis;
}

// The means of two by two samples. The last column of an odd number counts twice.
void HalveRows(const std::uint8_t* top, const std::uint8_t* bottom, std::int32_t nCols,
               std::int32_t nChannels, std::uint8_t* to) {
  const auto mean = [&](std::ptrdiff_t a, std::ptrdiff_t b) {
    return static_cast<std::uint8_t>((top[a] + top[b] + bottom[a] + bottom[b] + 2) / 4);
  };
  const std::ptrdiff_t n = nChannels;
  for (std::int32_t col = 0; col < nCols / 2; ++col) {
    for (std::ptrdiff_t i = 0; i < n; ++i) *to++ = mean(2 * col * n + i, (2 * col + 1) * n + i);
  }
  if (nCols % 2 == 0) return;
  for (std::ptrdiff_t i = (nCols - 1) * n; i < nCols * n; ++i) *to++ = mean(i, i);
}

// Adds `weight` times the means along a row of samples, which begin with sample `firstCol`.
void AddRow(const std::uint8_t* samples, std::int32_t firstCol, const std::vector<Taps>& cols,
            std::int32_t nChannels, std::uint32_t weight, std::vector<std::uint32_t>& sums) {
  std::uint32_t* sum = sums.data();
  for (const Taps& taps : cols) {
    const std::uint8_t* at = samples + static_cast<std::ptrdiff_t>(taps.first - firstCol) * nChannels;
    for (std::int32_t i = 0; i < nChannels; ++i, ++at) {
      *sum++ += weight * (at[0] * taps.weights[0] + at[nChannels] * taps.weights[1] +
                          at[2 * nChannels] * taps.weights[2]);
    }
  }
}

std::uint32_t Rounded(std::uint32_t sum) {
  return (sum + kWhole * kWhole / 2) / (kWhole * kWhole);
}

std::int32_t Halved(std::int32_t size, int times) {
  for (; times > 0; --times) size = (size + 1) / 2;
  return size;
}

// The content that `size` pixels of the bitmap cover.
std::int64_t Covered(std::int32_t size, double zoom) {
  return static_cast<std::int64_t>(std::ceil(size * zoom));
}

}  // namespace

DibPainter::DibPainter(const Dib& dib)
    : dib_(dib),
      colours_(dib),
      width_(DibWidth(dib)),
      height_(DibHeight(dib)),
      bitCount_(DibBitCount(dib)),
      nChannels_(bitCount_ == 8 ? 1 : 3) {
  if (bitCount_ != 8) return;
  for (std::size_t i = 0; i < greys_.size(); ++i) {
    const auto index = static_cast<std::uint8_t>(i);
    const std::uint32_t colour = colours_.Get({&index, 1}, 0);
    greys_[i] = static_cast<std::uint8_t>(colour & 255);
    if (colour != greys_[i] * 0x010101u) nChannels_ = 3;
  }
}

void DibPainter::Draw(Canvas& canvas, double zoom) {
  const PixelRect visible = canvas.GetVisible();
  const PixelRect place = {std::max<std::int64_t>(visible.left, 0), std::max<std::int64_t>(visible.top, 0),
                           std::min(visible.right, Covered(width_, zoom)),
                           std::min(visible.bottom, Covered(height_, zoom))};
  if (place.left >= place.right || place.top >= place.bottom) return;
  if (zoom >= 1.0) {
    DrawEnlarged(canvas, place, zoom);
  } else {
    DrawReduced(canvas, place, zoom);
  }
}

// One row of the picture at a time; those that show the same row of the bitmap are equal.
void DibPainter::DrawEnlarged(Canvas& canvas, const PixelRect& place, double zoom) const {
  const auto width = static_cast<std::size_t>(place.right - place.left);
  const auto height = static_cast<std::size_t>(place.bottom - place.top);
  const auto source = [zoom](std::int64_t at, std::int32_t size) {
    return std::min(static_cast<std::int32_t>(static_cast<double>(at) / zoom), size - 1);
  };
  std::vector<std::int32_t> cols(width);
  for (std::size_t i = 0; i < width; ++i) {
    cols[i] = source(place.left + static_cast<std::int64_t>(i), width_);
  }
  std::vector<std::uint32_t> pixels(width * height);
  std::int32_t shown = -1;
  for (std::size_t j = 0; j < height; ++j) {
    const std::int32_t y = source(place.top + static_cast<std::int64_t>(j), height_);
    std::uint32_t* to = pixels.data() + j * width;
    if (y == shown) {
      std::copy_n(to - width, width, to);
      continue;
    }
    shown = y;
    const std::span<const std::uint8_t> row = DibRow(dib_, y);
    std::transform(cols.begin(), cols.end(), to, [&](std::int32_t x) { return colours_.Get(row, x); });
  }
  canvas.DrawPixels(place, pixels);
}

// Means of the level that is not yet half as large again as the content.
void DibPainter::DrawReduced(Canvas& canvas, const PixelRect& place, double zoom) {
  int k = 0;
  double scale = zoom;
  for (; scale <= 0.5; scale *= 2.0) ++k;
  MakeLevels(k);
  const std::vector<Taps> cols = TapsOfAxis(place.left, place.right, scale, WidthOf(k));
  const std::vector<Taps> rows = TapsOfAxis(place.top, place.bottom, scale, HeightOf(k));
  const std::int32_t firstCol = cols.front().first;
  const std::int32_t nCols = std::min(cols.back().first + 3, WidthOf(k)) - firstCol;
  const auto n = static_cast<std::size_t>(nChannels_);

  // Taps of no weight may stand behind the last sample.
  std::vector<std::uint8_t> line((static_cast<std::size_t>(nCols) + 2) * n);
  std::vector<std::uint32_t> sums(cols.size() * n);
  std::vector<std::uint32_t> pixels;
  pixels.reserve(cols.size() * rows.size());
  for (const Taps& row : rows) {
    std::fill(sums.begin(), sums.end(), 0u);
    for (std::int32_t j = 0; j < 3; ++j) {
      const std::uint32_t weight = row.weights[static_cast<std::size_t>(j)];
      if (weight == 0) continue;
      ReadSamples(k, row.first + j, firstCol, nCols, line.data());
      AddRow(line.data(), firstCol, cols, nChannels_, weight, sums);
    }
    for (std::size_t i = 0; i < sums.size(); i += n) {
      pixels.push_back(n == 1 ? Rounded(sums[i]) * 0x010101u
                              : Rounded(sums[i]) << 16 | Rounded(sums[i + 1]) << 8 | Rounded(sums[i + 2]));
    }
  }
  canvas.DrawPixels(place, pixels);
}

std::int32_t DibPainter::WidthOf(int k) const {
  return Halved(width_, k);
}

std::int32_t DibPainter::HeightOf(int k) const {
  return Halved(height_, k);
}

void DibPainter::MakeLevels(int k) {
  while (static_cast<int>(levels_.size()) < k)
    levels_.push_back(MakeLevel(static_cast<int>(levels_.size()) + 1));
}

// From level k - 1. The last row of an odd number counts twice.
DibPainter::Level DibPainter::MakeLevel(int k) const {
  const std::int32_t width = WidthOf(k - 1);
  const std::int32_t height = HeightOf(k - 1);
  Level level{WidthOf(k), HeightOf(k), {}};
  const std::size_t rowBytes = static_cast<std::size_t>(level.width) * static_cast<std::size_t>(nChannels_);
  level.samples.resize(rowBytes * static_cast<std::size_t>(level.height));
  const std::size_t lineBytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(nChannels_);
  std::vector<std::uint8_t> top(lineBytes);
  std::vector<std::uint8_t> bottom(lineBytes);
  for (std::int32_t row = 0; row < level.height; ++row) {
    ReadSamples(k - 1, 2 * row, 0, width, top.data());
    ReadSamples(k - 1, std::min(2 * row + 1, height - 1), 0, width, bottom.data());
    HalveRows(top.data(), bottom.data(), width, nChannels_,
              level.samples.data() + static_cast<std::size_t>(row) * rowBytes);
  }
  return level;
}

void DibPainter::ReadSamples(int k, std::int32_t row, std::int32_t firstCol, std::int32_t nCols,
                             std::uint8_t* samples) const {
  if (k == 0) return ExpandPixels(DibRow(dib_, row), firstCol, nCols, samples);
  const Level& level = levels_[static_cast<std::size_t>(k) - 1];
  const std::int64_t first = (std::int64_t{row} * level.width + firstCol) * nChannels_;
  std::copy_n(level.samples.data() + first, std::int64_t{nCols} * nChannels_, samples);
}

void DibPainter::ExpandPixels(std::span<const std::uint8_t> row, std::int32_t firstCol, std::int32_t nCols,
                              std::uint8_t* samples) const {
  if (nChannels_ == 1) {
    const std::uint8_t* from = row.data() + firstCol;
    std::transform(from, from + nCols, samples, [this](std::uint8_t index) { return greys_[index]; });
    return;
  }
  for (std::int32_t col = firstCol; col < firstCol + nCols; ++col, samples += 3) {
    const std::uint32_t rgb = colours_.Get(row, col);
    samples[0] = static_cast<std::uint8_t>(rgb >> 16);
    samples[1] = static_cast<std::uint8_t>(rgb >> 8);
    samples[2] = static_cast<std::uint8_t>(rgb);
  }
}

}  // namespace corvane
