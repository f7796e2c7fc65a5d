// The reduction of a surface to its ground, from the steepest vertices.

#include <algorithm>
#include <cmath>
#include <new>

#include "TIN/CutAreas.h"
#include "TIN/TIN.h"

namespace corvane {

namespace {

constexpr double kSlopeBin = 0.1;
constexpr double kSteepestShare = 0.05;

// Sums over one net in different orders differ by less than this share: 2^31 terms of 2^-53 make 2.4e-7.
constexpr double kSumTolerance = 1e-6;

}  // namespace

int TIN::SlopeHistogram(double binSize, Histogram& histogram) const {
  return MakeHistogram(
      vertexSlopes, [](double slope) { return slope; }, binSize, histogram);
}

int TIN::ZHistogram(double binSize, Histogram& histogram) const {
  return MakeHistogram(
      vertices, [](const TINVertex& vertex) { return vertex.z; }, extent.minZ, extent.maxZ, binSize,
      histogram);
}

// The vertices steeper than the threshold, low ones first; of one height in vertex order.
std::vector<SlopeSeed> TIN::CollectSeeds(double threshold) const {
  std::vector<SlopeSeed> seeds;
  for (std::size_t v = 0; v < vertices.size(); ++v) {
    if (vertexSlopes[v] > threshold) {
      seeds.push_back({vertices[v].z, vertexSlopes[v], static_cast<std::int32_t>(v)});
    }
  }
  std::stable_sort(seeds.begin(), seeds.end(),
                   [](const SlopeSeed& a, const SlopeSeed& b) { return a.z < b.z; });
  return seeds;
}

int TIN::ReduceSurface(double areaLimit) {
  try {
    return FloodFromSeeds(areaLimit);
  } catch (const std::bad_alloc&) {
    return -1;
  }
}

int TIN::FloodFromSeeds(double areaLimit) {
  if (ComputeSlopes() < 0) return -1;
  Histogram histogram;
  double threshold = kNoThreshold;
  if (SlopeHistogram(kSlopeBin, histogram) < 0) return -1;
  HistogramThreshold(nPoints, histogram, kSteepestShare, threshold);
  if (threshold == kNoThreshold) return -1;
  const std::vector<SlopeSeed> seeds = CollectSeeds(threshold);
  labels.assign(vertices.size(), -1);
  if (CalcTrianglesArea() < 0) return -1;

  // Most seeds on the ground would flood nearly everything above them, to be dropped again. A group whose
  // area is above the limit whatever the order of its sum is not flooded at all.
  const std::vector<double> areas = AreasAboveSeeds(*this, seeds);
  std::int32_t label = 0;
  for (std::size_t i = 0; i < seeds.size(); ++i) {
    if (labels[static_cast<std::size_t>(seeds[i].vertex)] != -1) continue;
    if (areas[i] - areas[i] * kSumTolerance >= areaLimit) continue;
    if (FloodSmallGroup(seeds[i], label, areaLimit)) ++label;
  }
  MarkGroupMembers();
  return 1;
}

// Whether the seed's group has stayed: its area is below the limit.
bool TIN::FloodSmallGroup(const SlopeSeed& seed, std::int32_t label, double areaLimit) {
  TINGroup group;
  FloodGroup(seed.vertex, seed.z, label, group);
  if (GroupArea(group) >= areaLimit) {
    for (const std::int32_t member : group.members) labels[static_cast<std::size_t>(member)] = -1;
    return false;
  }
  groups.push_back(std::move(group));
  return true;
}

}  // namespace corvane
