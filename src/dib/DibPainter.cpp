#include "dib/DibPainter.h"

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

std::uint8_t Mean(unsigned a, unsigned b, unsigned c, unsigned d) {
  return static_cast<std::uint8_t>((a + b + c + d + 2) / 4);
}

bool IsGrey(const Dib& dib, const DibColours& colours) {
  if (DibBitCount(dib) != 8) return false;
  for (int i = 0; i < 256; ++i) {
    const auto index = static_cast<std::uint8_t>(i);
    const std::uint32_t colour = colours.Get({&index, 1}, 0);
    if (colour != (colour & 255) * 0x010101u) return false;
  }
  return true;
}

// The content that `size` pixels of the bitmap cover.
std::int64_t Covered(std::int32_t size, double zoom) {
  return static_cast<std::int64_t>(std::ceil(size * zoom));
}

// Where each place of a row of the content is sampled: between sample `index` and the next one, by `weight`
// / 256.
struct Sample {
  std::int32_t index = 0;
  std::uint32_t weight = 0;
};

// Places are pixels of the content from `from` on, `scale` of them a sample; samples stand at the middle of
// what they cover. The edge samples reach outwards.
std::vector<Sample> SampleAxis(std::int64_t from, std::int64_t to, double scale, std::int32_t nSamples) {
  std::vector<Sample> samples(static_cast<std::size_t>(to - from));
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const double at = std::clamp((static_cast<double>(from) + static_cast<double>(i) + 0.5) / scale - 0.5,
                                 0.0, nSamples - 1.0);
    samples[i].index = std::min(static_cast<std::int32_t>(at), std::max(nSamples - 2, 0));
    samples[i].weight = static_cast<std::uint32_t>((at - samples[i].index) * 256.0 + 0.5);
  }
  return samples;
}

}  // namespace

DibPainter::DibPainter(const Dib& dib)
    : dib_(dib), colours_(dib), nChannels_(IsGrey(dib, colours_) ? 1 : 3) {}

void DibPainter::Draw(Canvas& canvas, double zoom) {
  const PixelRect visible = canvas.GetVisible();
  const PixelRect place = {std::max<std::int64_t>(visible.left, 0), std::max<std::int64_t>(visible.top, 0),
                           std::min(visible.right, Covered(DibWidth(dib_), zoom)),
                           std::min(visible.bottom, Covered(DibHeight(dib_), zoom))};
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
    cols[i] = source(place.left + static_cast<std::int64_t>(i), DibWidth(dib_));
  }
  std::vector<std::uint32_t> pixels(width * height);
  std::int32_t shown = -1;
  for (std::size_t j = 0; j < height; ++j) {
    const std::int32_t y = source(place.top + static_cast<std::int64_t>(j), DibHeight(dib_));
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

// Between the samples of the level that is reduced by no more than the zoom.
void DibPainter::DrawReduced(Canvas& canvas, const PixelRect& place, double zoom) {
  int index = 0;
  double scale = zoom * 2.0;
  while (scale <= 0.5) {
    scale *= 2.0;
    ++index;
  }
  const Level& level = GetLevel(index);
  const std::vector<Sample> cols = SampleAxis(place.left, place.right, scale, level.width);
  const std::vector<Sample> rows = SampleAxis(place.top, place.bottom, scale, level.height);
  const auto n = static_cast<std::size_t>(nChannels_);
  const std::size_t right = level.width > 1 ? n : 0;
  const std::size_t rowStep = static_cast<std::size_t>(level.width) * n;
  const std::size_t below = level.height > 1 ? rowStep : 0;
  std::vector<std::uint32_t> pixels;
  pixels.reserve(cols.size() * rows.size());
  for (const Sample& row : rows) {
    const std::uint8_t* from = level.samples.data() + static_cast<std::size_t>(row.index) * rowStep;
    for (const Sample& col : cols) {
      const std::uint8_t* at = from + static_cast<std::size_t>(col.index) * n;
      std::uint32_t rgb = 0;
      for (std::size_t channel = 0; channel < n; ++channel, ++at) {
        const std::uint32_t top = at[0] * (256 - col.weight) + at[right] * col.weight;
        const std::uint32_t bottom = at[below] * (256 - col.weight) + at[below + right] * col.weight;
        rgb = rgb << 8 | ((top * (256 - row.weight) + bottom * row.weight + 32768) >> 16);
      }
      pixels.push_back(n == 1 ? rgb * 0x010101u : rgb);
    }
  }
  canvas.DrawPixels(place, pixels);
}

const DibPainter::Level& DibPainter::GetLevel(int index) {
  while (levels_.size() <= static_cast<std::size_t>(index)) {
    levels_.push_back(levels_.empty() ? ReduceBitmap() : ReduceLevel(levels_.back()));
  }
  return levels_[static_cast<std::size_t>(index)];
}

// The last column or row of an odd size counts twice.
DibPainter::Level DibPainter::ReduceBitmap() const {
  const std::int32_t width = DibWidth(dib_);
  const std::int32_t height = DibHeight(dib_);
  Level level{(width + 1) / 2, (height + 1) / 2, {}};
  level.samples.resize(static_cast<std::size_t>(level.width) * static_cast<std::size_t>(level.height) *
                       static_cast<std::size_t>(nChannels_));
  std::uint8_t* to = level.samples.data();
  for (std::int32_t y = 0; y < level.height; ++y) {
    const std::span<const std::uint8_t> top = DibRow(dib_, 2 * y);
    const std::span<const std::uint8_t> bottom = DibRow(dib_, std::min(2 * y + 1, height - 1));
    for (std::int32_t x = 0; x < level.width; ++x) {
      const std::int32_t right = std::min(2 * x + 1, width - 1);
      const std::uint32_t a = colours_.Get(top, 2 * x);
      const std::uint32_t b = colours_.Get(top, right);
      const std::uint32_t c = colours_.Get(bottom, 2 * x);
      const std::uint32_t d = colours_.Get(bottom, right);
      for (int shift = 8 * (nChannels_ - 1); shift >= 0; shift -= 8) {
        *to++ = Mean(a >> shift & 255, b >> shift & 255, c >> shift & 255, d >> shift & 255);
      }
    }
  }
  return level;
}

DibPainter::Level DibPainter::ReduceLevel(const Level& larger) const {
  Level level{(larger.width + 1) / 2, (larger.height + 1) / 2, {}};
  const auto n = static_cast<std::size_t>(nChannels_);
  level.samples.resize(static_cast<std::size_t>(level.width) * static_cast<std::size_t>(level.height) * n);
  const auto sampleOf = [&](std::int32_t x, std::int32_t y) {
    const std::int32_t col = std::min(x, larger.width - 1);
    const std::int32_t row = std::min(y, larger.height - 1);
    return larger.samples.data() + (static_cast<std::size_t>(row) * static_cast<std::size_t>(larger.width) +
                                    static_cast<std::size_t>(col)) *
                                       n;
  };
  std::uint8_t* to = level.samples.data();
  for (std::int32_t y = 0; y < level.height; ++y) {
    for (std::int32_t x = 0; x < level.width; ++x) {
      const std::uint8_t* a = sampleOf(2 * x, 2 * y);
      const std::uint8_t* b = sampleOf(2 * x + 1, 2 * y);
      const std::uint8_t* c = sampleOf(2 * x, 2 * y + 1);
      const std::uint8_t* d = sampleOf(2 * x + 1, 2 * y + 1);
      for (std::size_t i = 0; i < n; ++i) *to++ = Mean(a[i], b[i], c[i], d[i]);
    }
  }
  return level;
}

}  // namespace corvane
