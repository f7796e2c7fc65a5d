#include "dib/Stereogram.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

namespace corvane {

namespace {

constexpr int kDeepest = 255;                     // greatest depth value
constexpr double kInverseMu = 3.0;                // depth of the scene: 1 / 3 of the viewing distance
constexpr int kDotsPerStep = 90;                  // dots for a step of one third of the eyes' distance
constexpr int kEyeSeparation = 3 * kDotsPerStep;  // dots

// The distance from the far plane at twice the viewing distance, in depth values.
double DistanceOf(double z) {
  return 2 * kDeepest - z / kInverseMu;
}

// The distance of the two places of a row at which the eyes see a point of depth z, in dots.
int SeparationOf(double z) {
  return static_cast<int>((kDeepest - z / kInverseMu) * kEyeSeparation / DistanceOf(z) + 0.5);
}

// Whether both eyes see the point: nothing to either side of it stands in a line of sight. The place behind
// the row's last one counts as below.
bool IsSeen(const std::vector<int>& depths, int x) {
  const int width = static_cast<int>(depths.size());
  const int z = depths[static_cast<std::size_t>(x)];
  for (int t = 1;; ++t) {
    if (x - t < 0 || x + t > width) return false;
    const double zt = z + 2 * DistanceOf(z) * t / kDotsPerStep;
    if (depths[static_cast<std::size_t>(x - t)] >= zt) return false;
    if (x + t < width && depths[static_cast<std::size_t>(x + t)] >= zt) return false;
    if (zt >= kDeepest) return true;
  }
}

// Takes the link into the chain of links that begins at `left`, which runs to the right.
void Link(std::vector<int>& same, int left, int right) {
  int k = same[static_cast<std::size_t>(left)];
  while (k != left && k != right) {
    if (k < right) {
      left = k;
    } else {
      left = std::exchange(right, k);
    }
    k = same[static_cast<std::size_t>(left)];
  }
  same[static_cast<std::size_t>(left)] = right;
}

// Kept: left and right do not stand to both sides of x: right is x itself.
void LinkRow(const std::vector<int>& depths, std::vector<int>& same) {
  for (int x = 0; x < static_cast<int>(depths.size()); ++x) {
    same[static_cast<std::size_t>(x)] = x;
  }
  for (int x = 0; x < static_cast<int>(depths.size()); ++x) {
    const int left = x - SeparationOf(depths[static_cast<std::size_t>(x)]);
    if (left >= 0 && IsSeen(depths, x)) Link(same, left, x);
  }
}

// Kept: bitmaps of 24 bits get components of 0 and 1 alone, all but black.
void ColourRow(const std::vector<int>& same, std::size_t nBytes, std::span<std::uint8_t> row) {
  const int nColours = nBytes == 1 ? 256 : 2;
  for (std::size_t x = same.size(); x-- > 0;) {
    const auto from = static_cast<std::size_t>(same[x]);
    for (std::size_t i = 0; i < nBytes; ++i) {
      row[x * nBytes + i] =
          from == x ? static_cast<std::uint8_t>(std::rand() % nColours) : row[from * nBytes + i];
    }
  }
}

bool HasWholeBytes(const Dib& dib) {
  return DibBitCount(dib) == 8 || DibBitCount(dib) == 24;
}

}  // namespace

Dib MakeStereogramCanvas(const Dib& source) {
  Dib canvas = MakeBlackDib(DibWidth(source), DibHeight(source), DibBitCount(source));
  if (canvas.empty()) return canvas;
  const std::ptrdiff_t paletteBytes = std::ptrdiff_t{DibColorCount(source)} * 4;
  std::copy_n(source.begin() + DibHeaderSize(source), paletteBytes, canvas.begin() + DibHeaderSize(canvas));
  return canvas;
}

int MakeStereogram(const Dib& source, Dib& target) {
  const std::int32_t width = DibWidth(source);
  const std::int32_t height = DibHeight(source);
  if (!HasWholeBytes(source) || !HasWholeBytes(target)) return -1;
  if (DibWidth(target) != width || DibHeight(target) != height) return -1;
  const auto depthBytes = static_cast<std::size_t>(DibBitCount(source) / 8);
  const auto colourBytes = static_cast<std::size_t>(DibBitCount(target) / 8);
  std::vector<int> depths(static_cast<std::size_t>(width));
  std::vector<int> same(depths.size());
  for (std::int32_t y = height - 1; y >= 0; --y) {
    const std::span<const std::uint8_t> row = DibRow(source, y);
    for (std::size_t x = 0; x < depths.size(); ++x) depths[x] = row[x * depthBytes];
    LinkRow(depths, same);
    ColourRow(same, colourBytes, DibRow(target, y));
  }
  return 1;
}

}  // namespace corvane
