#include <algorithm>
#include <array>
#include <cmath>

#include "erdasimg/BandPixels.h"
#include "erdasimg/ErdasImg.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

constexpr double kBackground = 215.0;  // of pixels outside of the image: a light grey

// The floor without the call that it costs for any double; of -0.0 it is 0.0 here.
double Floor(double x) {
  if (!(x > -2147483648.0 && x < 2147483648.0)) return std::floor(x);
  const double whole = static_cast<std::int32_t>(x);
  return whole > x ? whole - 1.0 : whole;
}

double Fraction(double x) {
  return x - Floor(x) + 0.0;  // of -0.0, too, it is 0.0
}

// What the four samples around a place weigh.
std::array<double, 4> CubicWeights(double place) {
  const double fraction = Fraction(place);
  const double t = fraction >= 0.5 ? fraction - 0.5 : fraction + 0.5;
  const double t2 = t * t;
  const double t3 = t2 * t;
  return {-t + 2.0 * t2 - t3, 1.0 - 2.0 * t2 + t3, t + t2 - t3, -t2 + t3};
}

// Samples of one band. The pixel's type is known here, so that it is looked up once for many places.
template <typename Pixel>
class BandSampler {
 public:
  BandSampler(const ErdasImg& image, std::int32_t band) : pixels_(image, band) {
    const ErdasHeader& header = image.m_header;
    if (band < 0 || band >= header.bandCount || header.rows <= 0 || header.cols <= 0) return;
    nRows_ = header.rows;
    nCols_ = header.cols;
  }

  bool Nearest(double row, double col, double& value) const {
    const double r = row + 0.5;
    const double c = col + 0.5;
    // What is cut towards zero is 0 from behind -1 on.
    if (!(r > -1.0 && r < nRows_ && c > -1.0 && c < nCols_)) return false;
    value = static_cast<double>(
        pixels_.Get(pixels_.IndexOf(static_cast<std::int32_t>(r), static_cast<std::int32_t>(c))));
    return true;
  }

  double Bilinear(double row, double col) const {
    const auto corners = GetBlock<2>({row - 0.5, row + 0.5}, {col - 0.5, col + 0.5});
    const double fr = Fraction(row);
    const double fc = Fraction(col);
    return (1.0 - fc) * (1.0 - fr) * corners[0] + (1.0 - fc) * fr * corners[2] +
           fc * (1.0 - fr) * corners[1] + fc * fr * corners[3];
  }

  double Bicubic(double row, double col) const {
    const double row0 = Floor(row + 0.5) - 2.0;
    const double col0 = Floor(col + 0.5) - 2.0;
    const auto samples =
        GetBlock<4>({row0, row0 + 1.0, row0 + 2.0, row0 + 3.0}, {col0, col0 + 1.0, col0 + 2.0, col0 + 3.0});
    const auto rowWeights = CubicWeights(row);
    const auto colWeights = CubicWeights(col);
    double sum = 0.0;
    for (std::size_t i = 0; i < 4; ++i) {
      double rowSum = 0.0;
      for (std::size_t j = 0; j < 4; ++j) rowSum += colWeights[j] * samples[4 * i + j];
      sum += rowWeights[i] * rowSum;
    }
    return std::clamp(sum, 0.0, 255.0);
  }

 private:
  template <std::size_t kSide>
  using Side = std::array<double, kSide>;
  template <std::size_t kSide>
  using Block = std::array<double, kSide * kSide>;

  // The nearest pixels of all rows and columns, which ascend, row by row; the background outside.
  template <std::size_t kSide>
  Block<kSide> GetBlock(const Side<kSide>& rows, const Side<kSide>& cols) const {
    const bool isInside = rows.front() + 0.5 > -1.0 && rows.back() + 0.5 < nRows_ &&
                          cols.front() + 0.5 > -1.0 && cols.back() + 0.5 < nCols_;
    return isInside && pixels_.IsPlain() ? GetInnerBlock<kSide>(rows, cols)
                                         : GetBorderBlock<kSide>(rows, cols);
  }

  template <std::size_t kSide>
  Block<kSide> GetInnerBlock(const Side<kSide>& rows, const Side<kSide>& cols) const {
    Block<kSide> block;
    for (std::size_t i = 0; i < kSide; ++i) {
      const std::int64_t first = pixels_.IndexOf(static_cast<std::int32_t>(rows[i] + 0.5), 0);
      for (std::size_t j = 0; j < kSide; ++j) {
        const auto col = static_cast<std::int32_t>(cols[j] + 0.5);
        block[i * kSide + j] = static_cast<double>(pixels_.GetPlain(first + col));
      }
    }
    return block;
  }

  template <std::size_t kSide>
  Block<kSide> GetBorderBlock(const Side<kSide>& rows, const Side<kSide>& cols) const {
    Block<kSide> block;
    for (std::size_t i = 0; i < kSide * kSide; ++i) {
      block[i] = kBackground;
      Nearest(rows[i / kSide], cols[i % kSide], block[i]);
    }
    return block;
  }

  BandPixels<Pixel> pixels_;
  // -1, so that no place is inside, for a band that is not there and an image without rows or columns.
  double nRows_ = -1.0;
  double nCols_ = -1.0;
};

template <typename Sample>
decltype(auto) WithSampler(const ErdasImg& image, std::int32_t band, Sample sample) {
  return WithPixelType(image.m_header.packType,
                       [&](auto pixel) { return sample(BandSampler<decltype(pixel)>(image, band)); });
}

// The places for which there is all that is needed.
std::size_t CountOf(std::span<const double> rows, std::span<const double> cols, std::span<double> values) {
  return std::min({rows.size(), cols.size(), values.size()});
}

using Sampler = bool (ErdasImg::*)(std::int32_t band, double row, double col, double& value) const;

// The samples one pixel before and behind a place in each direction; the place's own where there is none.
struct Neighbours {
  double left;
  double right;
  double above;
  double below;
};

Neighbours NeighboursOf(const ErdasImg& image, Sampler sample, std::int32_t band, double row, double col,
                        double centre) {
  Neighbours v = {centre, centre, centre, centre};
  (image.*sample)(band, row, col - 1.0, v.left);
  (image.*sample)(band, row, col + 1.0, v.right);
  (image.*sample)(band, row - 1.0, col, v.above);
  (image.*sample)(band, row + 1.0, col, v.below);
  return v;
}

bool CentralGradient(const ErdasImg& image, Sampler sample, std::int32_t band, double row, double col,
                     double& gCol, double& gRow) {
  double centre = 0.0;
  if (!(image.*sample)(band, row, col, centre)) return false;
  const Neighbours v = NeighboursOf(image, sample, band, row, col, centre);
  gCol = (v.right - v.left) / 2.0;
  gRow = (v.below - v.above) / 2.0;
  return true;
}

}  // namespace

bool ErdasImg::GetPixelNearest(std::int32_t band, double row, double col, double& value) const {
  return WithSampler(*this, band, [&](const auto& sampler) { return sampler.Nearest(row, col, value); });
}

bool ErdasImg::GetPixelBilinear(std::int32_t band, double row, double col, double& value) const {
  value = WithSampler(*this, band, [&](const auto& sampler) { return sampler.Bilinear(row, col); });
  return true;
}

bool ErdasImg::GetPixelBicubic(std::int32_t band, double row, double col, double& value) const {
  value = WithSampler(*this, band, [&](const auto& sampler) { return sampler.Bicubic(row, col); });
  return true;
}

void ErdasImg::GetPixelsNearest(std::int32_t band, std::span<const double> rows, std::span<const double> cols,
                                std::span<double> values) const {
  const std::size_t count = CountOf(rows, cols, values);
  WithSampler(*this, band, [&](const auto& sampler) {
    for (std::size_t i = 0; i < count; ++i) sampler.Nearest(rows[i], cols[i], values[i]);
  });
}

void ErdasImg::GetPixelsBilinear(std::int32_t band, std::span<const double> rows,
                                 std::span<const double> cols, std::span<double> values) const {
  const std::size_t count = CountOf(rows, cols, values);
  WithSampler(*this, band, [&](const auto& sampler) {
    for (std::size_t i = 0; i < count; ++i) values[i] = sampler.Bilinear(rows[i], cols[i]);
  });
}

void ErdasImg::GetPixelsBicubic(std::int32_t band, std::span<const double> rows, std::span<const double> cols,
                                std::span<double> values) const {
  const std::size_t count = CountOf(rows, cols, values);
  WithSampler(*this, band, [&](const auto& sampler) {
    for (std::size_t i = 0; i < count; ++i) values[i] = sampler.Bicubic(rows[i], cols[i]);
  });
}

bool ErdasImg::GetGradientNearest(std::int32_t band, double row, double col, double& gCol,
                                  double& gRow) const {
  return CentralGradient(*this, &ErdasImg::GetPixelNearest, band, row, col, gCol, gRow);
}

bool ErdasImg::GetGradientBilinear(std::int32_t band, double row, double col, double& gCol,
                                   double& gRow) const {
  return CentralGradient(*this, &ErdasImg::GetPixelBilinear, band, row, col, gCol, gRow);
}

bool ErdasImg::GetGradientBicubic(std::int32_t band, double row, double col, double& gCol,
                                  double& gRow) const {
  return CentralGradient(*this, &ErdasImg::GetPixelBicubic, band, row, col, gCol, gRow);
}

bool ErdasImg::GetGradientBilinearBack(std::int32_t band, double row, double col, double& gCol,
                                       double& gRow) const {
  double centre = 0.0;
  double left = 0.0;
  double above = 0.0;
  GetPixelBilinear(band, row, col, centre);
  GetPixelBilinear(band, row, col - 1.0, left);
  GetPixelBilinear(band, row - 1.0, col, above);
  gCol = (centre - left) / 2.0;
  gRow = (centre - above) / 2.0;
  return true;
}

bool ErdasImg::GetGradientBilinearFore(std::int32_t band, double row, double col, double& gCol,
                                       double& gRow) const {
  double centre = 0.0;
  double right = 0.0;
  double below = 0.0;
  GetPixelBilinear(band, row, col, centre);
  GetPixelBilinear(band, row, col + 1.0, right);
  GetPixelBilinear(band, row + 1.0, col, below);
  gCol = (right - centre) / 2.0;
  gRow = (below - centre) / 2.0;
  return true;
}

}  // namespace corvane
