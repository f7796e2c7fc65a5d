// Objects from horizontal plane cuts: connected groups of vertices at or above a height.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <new>

#include "TIN/TIN.h"
#include "io/NumberText.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// Two thousand kilometres in steps of 0.1. Beyond, a group counts as one that does not split.
constexpr double kMaxCuts = 2e7;

// A hundred kilometres below the start, from where each cut makes a group of its own.
constexpr double kMaxCutsBelow = 1e6;

// Tells in status pane 0, now and then, how high the cuts have come.
class CutProgress {
 public:
  explicit CutProgress(double zEnd) : zEnd_(zEnd) {}

  void Follow(double cut) {
    const auto now = std::chrono::steady_clock::now();
    if (now < next_) return;
    next_ = now + kInterval;
    Ui().SetStatusText(0, "Cutting at height " + FixedText(cut, 1) + " of " + FixedText(zEnd_, 1));
  }

 private:
  static constexpr std::chrono::seconds kInterval{1};

  double zEnd_;
  std::chrono::steady_clock::time_point next_ = std::chrono::steady_clock::now() + kInterval;
};

std::size_t Index(std::int32_t i) {
  return static_cast<std::size_t>(i);
}

}  // namespace

int TIN::ComputeSlopes() {
  if (BuildNeighbours() < 0) return -1;
  try {
    vertexSlopes.assign(vertices.size(), 0.0);
  } catch (const std::bad_alloc&) {
    return -1;
  }
  for (std::size_t v = 0; v < vertices.size(); ++v) vertexSlopes[v] = SlopeOf(static_cast<std::int32_t>(v));
  return 1;
}

double TIN::SlopeOf(std::int32_t vertex) const {
  const TINVertex& v = vertices[Index(vertex)];
  double slope = 0.0;
  for (const std::int32_t neighbour : NeighboursOf(vertex)) {
    const TINVertex& n = vertices[Index(neighbour)];
    const double dx = v.x - n.x;
    const double dy = v.y - n.y;
    const double d = std::sqrt(dx * dx + dy * dy);
    if (d == 0.0) continue;
    const double ratio = std::fabs(v.z - n.z) / d;
    if (ratio > slope) slope = ratio;
  }
  return slope;
}

bool TIN::MakeLabels(std::int32_t label) {
  if (labels.size() == vertices.size()) return true;
  try {
    labels.assign(vertices.size(), label);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

void TIN::FloodGroup(std::int32_t vertex, double cutZ, std::int32_t label, TINGroup& group) {
  if (!MakeLabels(-1)) return;
  group.label = label;
  group.cutHeight = cutZ;
  group.members.assign(1, vertex);
  labels[Index(vertex)] = label;
  for (std::size_t next = 0; next < group.members.size(); ++next) {
    for (const std::int32_t neighbour : NeighboursOf(group.members[next])) {
      std::int32_t& seen = labels[Index(neighbour)];
      if (seen == label || !(vertices[Index(neighbour)].z >= cutZ)) continue;
      seen = label;
      group.members.push_back(neighbour);
    }
  }
}

double TIN::GroupArea(TINGroup& group) {
  group.area = SumArea(group, std::numeric_limits<double>::infinity());
  return group.area;
}

// The group's area, or what the sum has come to where it goes beyond `enough`: areas are never negative, so
// it does not fall again.
double TIN::SumArea(const TINGroup& group, double enough) {
  double sum = 0.0;
  if (triangleAreas.size() != triangles.size() || labels.size() != vertices.size()) return sum;
  NextMarkRound();
  for (const std::int32_t member : group.members) {
    for (const std::int32_t t : vertices[Index(member)].triangles) {
      if (markedIn_[Index(t)] == markRound_) continue;
      markedIn_[Index(t)] = markRound_;
      const TINTriangle& triangle = GetTriangle(t);
      const auto belongs = [&](std::int32_t corner) { return labels[Index(corner)] == group.label; };
      if (std::all_of(std::begin(triangle.v), std::end(triangle.v), belongs)) {
        sum += std::fabs(triangleAreas[Index(t)]);
      }
    }
    if (sum > enough) break;
  }
  return sum;
}

// From here on no triangle is marked; clears the marks only where the rounds begin anew.
void TIN::NextMarkRound() {
  ++markRound_;
  if (markRound_ != 0 && markedIn_.size() == triangles.size()) return;
  markedIn_.assign(triangles.size(), 0);
  markRound_ = 1;
}

void TIN::LabelAboveCut(double cutZ, std::int32_t& label) {
  const std::int32_t unlabelled = label;
  if (!MakeLabels(unlabelled)) return;
  for (std::int32_t v = 0; v < nPoints; ++v) {
    if (labels[Index(v)] == unlabelled && vertices[Index(v)].z >= cutZ) AddGroup(v, cutZ, ++label);
  }
}

void TIN::SplitGroup(std::size_t index, double cutZ, std::int32_t& label) {
  const std::int32_t own = groups[index].label;
  // The list of groups grows meanwhile, and may move.
  for (std::size_t i = 0; i < groups[index].members.size(); ++i) {
    const std::int32_t v = groups[index].members[i];
    if (labels[Index(v)] == own && vertices[Index(v)].z >= cutZ) AddGroup(v, cutZ, ++label);
  }
}

void TIN::AddGroup(std::int32_t vertex, double cutZ, std::int32_t label) {
  FloodGroup(vertex, cutZ, label, groups.emplace_back());
}

int TIN::SegmentByPlaneCut(double zStart, double zEnd, double zStep, double areaLimit) {
  BuildNeighbours();
  CalcTrianglesArea();
  const bool isFirstRun = groups.empty() && labels.empty();
  const double highestCut = zStart + kMaxCuts * zStep;
  const double lowestCut = zStart - kMaxCutsBelow * zStep;
  std::int32_t label = -1;
  double cut = zStart + zStep;
  LabelAboveCut(cut, label);

  CutProgress progress(zEnd);
  std::size_t kept = 0;  // groups before this place stay; from there to `next` they have been split up
  std::size_t next = 0;
  for (; next < groups.size() && cut <= zEnd; ++next) {
    progress.Follow(cut);
    groups[next].area = SumArea(groups[next], areaLimit);
    const bool isTooLarge = !(groups[next].area <= areaLimit);
    if (isTooLarge && isFirstRun && next + 1 == groups.size()) {
      cut = RaiseWhole(groups[next], cut, zStep, std::min(zEnd, highestCut), label);
      if (!(cut <= zEnd)) break;
    }
    // Kept: one running value for all groups; the first one to reach zEnd ends the whole loop.
    if (isTooLarge) cut = zStep + groups[next].cutHeight;
    if (isTooLarge && cut >= lowestCut && cut <= highestCut && SplitAt(next, cut, label)) {
      groups[next] = {};
      continue;
    }
    if (isTooLarge) GroupArea(groups[next]);
    if (kept != next) groups[kept] = std::move(groups[next]);
    ++kept;
  }
  groups.erase(groups.begin() + static_cast<std::ptrdiff_t>(kept),
               groups.begin() + static_cast<std::ptrdiff_t>(next));
  return 1;
}

// Whether new groups have arisen from the group. A cut that does not rise above the last one makes none.
bool TIN::SplitAt(std::size_t index, double cut, std::int32_t& label) {
  if (!(cut > groups[index].cutHeight)) return false;
  const std::int32_t lastLabel = label;
  SplitGroup(index, cut, label);
  return label != lastLabel;
}

// Splits the last group for as long as that gives it back whole: no member lies below the next cut, so the
// flood from its first member meets the same members in the same order, and the child stands where the parent
// stood. One low outlier can lie a million cuts below everything else. Returns the last cut made.
double TIN::RaiseWhole(TINGroup& group, double cut, double zStep, double zEnd, std::int32_t& label) {
  double lowest = std::numeric_limits<double>::infinity();
  for (const std::int32_t member : group.members) lowest = std::min(lowest, vertices[Index(member)].z);
  const std::int32_t firstLabel = label;
  for (;;) {
    const double next = zStep + group.cutHeight;
    if (!(next > group.cutHeight && next <= lowest && cut <= zEnd)) break;
    group.cutHeight = cut = next;
    group.label = ++label;
  }
  if (label == firstLabel) return cut;
  group.area = 0.0;
  for (const std::int32_t member : group.members) labels[Index(member)] = label;
  return cut;
}

int TIN::DropFlatGroups(double slopeLimit) {
  if (!vertexSlopes.empty()) return -1;
  if (ComputeSlopes() < 0) return -1;
  const auto isFlat = [&](const TINGroup& group) {
    return std::all_of(group.members.begin(), group.members.end(),
                       [&](std::int32_t member) { return vertexSlopes[Index(member)] <= slopeLimit; });
  };
  std::erase_if(groups, isFlat);
  return 1;
}

void TIN::FindPits(double slopeLimit, std::vector<std::int32_t>& list) {
  if (BuildNeighbours() < 0 || vertexSlopes.size() != vertices.size()) return;
  for (std::int32_t v = 0; v < nPoints; ++v) {
    if (!(vertexSlopes[Index(v)] > slopeLimit)) continue;
    const auto isLower = [&](std::int32_t n) { return vertices[Index(n)].z < vertices[Index(v)].z; };
    const auto around = NeighboursOf(v);
    if (std::none_of(around.begin(), around.end(), isLower)) list.push_back(v);
  }
}

void TIN::MarkVertices(std::span<const std::int32_t> list) {
  for (const std::int32_t v : list) vertices[Index(v)].id = -1;
}

void TIN::MarkGroupMembers() {
  for (const TINGroup& group : groups) MarkVertices(group.members);
}

}  // namespace corvane
