#include "Segmentation/GaussianPlane.h"

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

void SetCentre(float* to, const float* from, float weight, std::int32_t n) {
  for (std::int32_t i = 0; i < n; ++i) to[i] = weight * from[i];
}

void AddPair(float* to, const float* before, const float* behind, float weight, std::int32_t n) {
  for (std::int32_t i = 0; i < n; ++i) to[i] += weight * (before[i] + behind[i]);
}

void SmoothRows(PlaneImage<float>& plane, const std::vector<float>& mask) {
  const auto reach = static_cast<std::ptrdiff_t>(mask.size()) - 1;
  std::vector<float> line(static_cast<std::size_t>(plane.width + 2 * reach));
  float* const centre = line.data() + reach;
  for (std::int32_t y = 0; y < plane.height; ++y) {
    float* const row = plane.Row(y);
    std::fill(line.data(), centre, row[0]);
    std::copy_n(row, plane.width, centre);
    std::fill_n(centre + plane.width, reach, row[plane.width - 1]);
    SetCentre(row, centre, mask[0], plane.width);
    for (std::ptrdiff_t i = 1; i <= reach; ++i) {
      AddPair(row, centre - i, centre + i, mask[static_cast<std::size_t>(i)], plane.width);
    }
  }
}

void SmoothColumns(PlaneImage<float>& plane, const std::vector<float>& mask) {
  const PlaneImage<float> from = plane;
  const auto reach = static_cast<std::int32_t>(mask.size()) - 1;
  for (std::int32_t y = 0; y < plane.height; ++y) {
    float* const row = plane.Row(y);
    SetCentre(row, from.Row(y), mask[0], plane.width);
    for (std::int32_t i = 1; i <= reach; ++i) {
      const std::int32_t above = std::max(y - i, 0);
      const std::int32_t below = y < plane.height - i ? y + i : plane.height - 1;
      AddPair(row, from.Row(above), from.Row(below), mask[static_cast<std::size_t>(i)], plane.width);
    }
  }
}

}  // namespace

std::vector<float> GaussianMask(float sigma) {
  std::vector<float> mask(static_cast<std::size_t>(std::ceil(sigma * 4.0)) + 1);
  for (std::size_t i = 0; i < mask.size(); ++i) {
    const float distance = static_cast<float>(i) / sigma;
    mask[i] = static_cast<float>(std::exp(-0.5 * static_cast<double>(distance * distance)));
  }
  float sum = 0.0f;
  for (std::size_t i = 1; i < mask.size(); ++i) sum += mask[i];
  sum = 2.0f * sum + mask[0];
  for (float& weight : mask) weight /= sum;
  return mask;
}

void SmoothPlane(PlaneImage<float>& plane, const std::vector<float>& mask) {
  if (plane.pixels.empty()) return;
  SmoothRows(plane, mask);
  SmoothColumns(plane, mask);
}

}  // namespace corvane
