#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <type_traits>
#include <vector>

#include "ImgProcess/Kernel1D.h"
#include "erdasimg/ErdasImg.h"
#include "erdasimg/ImageBytes.h"

namespace corvane {

// The filters as their descriptions say it, pixel by pixel: what the fast ones are compared with.

template <typename Pixel>
constexpr std::uint16_t kPackOf = std::is_same_v<Pixel, float>    ? kPackFloat
                                  : std::is_same_v<Pixel, double> ? kPackDouble
                                                                  : kPackByte;

template <typename Pixel>
struct Plane {
  std::size_t cols;
  std::size_t rows;
  std::vector<Pixel> pixels;

  Pixel At(std::size_t row, std::size_t col) const { return pixels[row * cols + col]; }
};

template <typename Sum, typename Pixel>
std::vector<Sum> PlainLine(const std::vector<Pixel>& line, const Kernel1D& kernel) {
  using Number = std::conditional_t<std::is_same_v<Pixel, double>, double, Sum>;  // doubles are not narrowed
  const auto half = static_cast<std::size_t>(kernel.size / 2);
  std::vector<Pixel> padded(half, line.front());
  padded.insert(padded.end(), line.begin(), line.end());
  padded.insert(padded.end(), half, line.back());
  std::vector<Sum> filtered;
  for (std::size_t i = 0; i < line.size(); ++i) {
    Sum sum = 0;
    for (std::size_t j = 0; j < kernel.values.size(); ++j) {
      const Number product = static_cast<Number>(padded[i + j]) * static_cast<Sum>(kernel.values[j]);
      sum = static_cast<Sum>(sum + product);
    }
    filtered.push_back(sum);
  }
  return filtered;
}

template <typename Sum, typename Pixel>
Plane<Sum> PlainRows(const Plane<Pixel>& plane, const Kernel1D& kernel) {
  Plane<Sum> filtered{plane.cols, plane.rows, {}};
  for (std::size_t row = 0; row < plane.rows; ++row) {
    const auto first = plane.pixels.begin() + static_cast<std::ptrdiff_t>(row * plane.cols);
    const std::vector<Pixel> line(first, first + static_cast<std::ptrdiff_t>(plane.cols));
    const std::vector<Sum> sums = PlainLine<Sum>(line, kernel);
    filtered.pixels.insert(filtered.pixels.end(), sums.begin(), sums.end());
  }
  return filtered;
}

template <typename Pixel>
Plane<Pixel> Turned(const Plane<Pixel>& plane) {
  Plane<Pixel> turned{plane.rows, plane.cols, {}};
  for (std::size_t col = 0; col < plane.cols; ++col) {
    for (std::size_t row = 0; row < plane.rows; ++row) turned.pixels.push_back(plane.At(row, col));
  }
  return turned;
}

template <typename Sum, typename Pixel>
Plane<Sum> PlainColumns(const Plane<Pixel>& plane, const Kernel1D& kernel) {
  return Turned(PlainRows<Sum>(Turned(plane), kernel));
}

// Rows, then the columns of what comes out.
template <typename Sum, typename Pixel>
Plane<Sum> PlainBoth(const Plane<Pixel>& plane, const Kernel1D& along, const Kernel1D& down) {
  return PlainColumns<Sum>(PlainRows<Sum>(plane, along), down);
}

inline bool PlainCrossing(const Plane<double>& plane, std::size_t row, std::size_t col, double threshold) {
  const auto at = [&](int down, int right) {
    const auto r = std::clamp<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(row) + down, 0,
                                              static_cast<std::ptrdiff_t>(plane.rows) - 1);
    const auto c = std::clamp<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(col) + right, 0,
                                              static_cast<std::ptrdiff_t>(plane.cols) - 1);
    return plane.At(static_cast<std::size_t>(r), static_cast<std::size_t>(c));
  };
  const double c = at(0, 0);
  if (c > 0) {
    const double t = c - threshold < 0 ? c - threshold : 0;
    for (int down = -1; down <= 1; ++down) {
      for (int right = -1; right <= 1; ++right) {
        if ((down != 0 || right != 0) && at(down, right) < t) return true;
      }
    }
  }
  if (c == 0) {
    const int pairs[4][2] = {{-1, -1}, {-1, 0}, {-1, 1}, {0, -1}};
    for (const auto& [down, right] : pairs) {
      const double a = at(down, right);
      const double b = at(-down, -right);
      if (a < 0 && a + 2 * threshold < b) return true;
      if (a > 0 && a - 2 * threshold > b) return true;
    }
  }
  return false;
}

enum class Content {
  Ordinary,
  Wild
};  // Wild: NaN, infinities, both zeros and the largest numbers among them

template <typename Pixel>
Plane<Pixel> RandomPlane(std::size_t cols, std::size_t rows, Content content, std::mt19937& random) {
  Plane<Pixel> plane{cols, rows, {}};
  using Limits = std::numeric_limits<Pixel>;
  const Pixel wild[] = {Limits::quiet_NaN(),      Limits::infinity(), static_cast<Pixel>(-Limits::infinity()),
                        static_cast<Pixel>(-0.0), Pixel{0},           Limits::max(),
                        Limits::lowest()};
  for (std::size_t i = 0; i < cols * rows; ++i) {
    const bool isWild = content == Content::Wild && std::is_floating_point_v<Pixel> && random() % 16 == 0;
    const double number =
        std::is_floating_point_v<Pixel> ? std::ldexp(random(), -24) - 128.0 : random() % 256;
    plane.pixels.push_back(isWild ? wild[random() % 7] : static_cast<Pixel>(number));
  }
  return plane;
}

// An image whose bands are these planes.
template <typename Pixel>
std::unique_ptr<ErdasImg> ImageOf(const std::vector<Plane<Pixel>>& planes) {
  auto image = std::make_unique<ErdasImg>();
  image->Create(
      HeaderOf(kPackOf<Pixel>, static_cast<std::uint16_t>(planes.size()),
               static_cast<std::int32_t>(planes[0].cols), static_cast<std::int32_t>(planes[0].rows)),
      false);
  for (std::size_t band = 0; band < planes.size(); ++band) {
    const auto bytes = image->GetBands().GetBand(static_cast<std::int64_t>(band));
    std::memcpy(bytes.data(), planes[band].pixels.data(), bytes.size());
  }
  return image;
}

template <typename Pixel>
std::unique_ptr<ErdasImg> ImageOf(std::size_t cols, std::size_t rows, std::vector<Pixel> pixels) {
  return ImageOf<Pixel>({Plane<Pixel>{cols, rows, std::move(pixels)}});
}

// The number of pixels whose bits differ; any not-a-number is as good as any other.
template <typename Pixel>
std::size_t CountOfOthers(const std::vector<Pixel>& a, const std::vector<Pixel>& b) {
  if (a.size() != b.size()) return std::max(a.size(), b.size());
  std::size_t n = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const bool bothNaN = a[i] != a[i] && b[i] != b[i];
    if (!bothNaN && std::memcmp(&a[i], &b[i], sizeof(Pixel)) != 0) ++n;
  }
  return n;
}

}  // namespace corvane
