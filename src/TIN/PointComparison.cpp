#include "TIN/PointComparison.h"

#include <algorithm>
#include <new>
#include <stdexcept>

#include "TIN/Prefetch.h"
#include "TIN/Resize.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "io/Paths.h"
#include "numerics/ArrayStatistics.h"

namespace corvane {

namespace {

constexpr int kDigits = 15;

// The corner whose height is read for a found triangle.
int CornerOf(const FoundTriangle& found) {
  return found.result < 3 ? found.result : 0;
}

// For a point that is in a triangle.
double HeightIn(const TIN& tin, const Point3& p, const FoundTriangle& found) {
  return found.result < 3 ? tin.GetVertex(found.triangle, found.result).z
                          : tin.InterpolateZ(p, found.triangle);
}

// Brings what HeightIn reads nearer: all triangles, and when they are there, the vertices.
void PrefetchHeights(const TIN& tin, std::span<const FoundTriangle> found) {
  for (const FoundTriangle& one : found) {
    if (one.result >= 0) Prefetch(&tin.GetTriangle(one.triangle));
  }
  for (const FoundTriangle& one : found) {
    if (one.result >= 0) Prefetch(&tin.GetVertex(one.triangle, CornerOf(one)));
  }
}

}  // namespace

int HeightAt(const TIN& tin, const Point3& p, double& z) {
  FoundTriangle found;
  found.result = tin.FindTriangle(p, found.triangle);
  if (found.result >= 0) z = HeightIn(tin, p, found);
  return found.result;
}

PointComparison::PointComparison(const TIN& tin, Row row, OutputFile& log)
    : tin_(tin), row_(row), log_(log) {}

bool PointComparison::Allocate(std::size_t n) {
  if (!Resize(differences_, n)) return false;
  std::fill(differences_.begin(), differences_.end(), kNoDataZ);
  return true;
}

void PointComparison::Compare(std::size_t i, const Point3& p) {
  points_[nPending_] = p;
  places_[nPending_] = i;
  if (++nPending_ == kBlock) CompareBlock();
}

void PointComparison::CompareBlock() {
  std::array<FoundTriangle, kBlock> all;
  const auto found = std::span(all).first(nPending_);
  tin_.FindTriangles(std::span(points_).first(nPending_), found);
  PrefetchHeights(tin_, found);
  text_.clear();
  for (std::size_t k = 0; k < nPending_; ++k) {
    if (found[k].result < 0) continue;
    const double height = HeightIn(tin_, points_[k], found[k]);
    const double difference = height - points_[k].z;
    differences_[places_[k]] = difference;
    ++count_;
    AppendRow(places_[k], points_[k], height, difference);
  }
  log_.Write(text_);
  nPending_ = 0;
}

void PointComparison::AppendRow(std::size_t i, const Point3& p, double height, double difference) {
  switch (row_) {
    case Row::Numbered:
      AppendInt(text_, static_cast<std::int64_t>(i));
      text_ += ", ";
      AppendNumbers(text_, {p.x, p.y, p.z, difference}, kDigits);
      break;
    case Row::Plan:
      AppendNumbers(text_, {p.x, p.y, difference}, kDigits);
      break;
    case Row::WithHeights:
      AppendNumbers(text_, {p.x, p.y, p.z, height}, kDigits);
      text_ += " ,";
      AppendNumbers(text_, {difference}, kDigits);
      break;
  }
  text_ += '\n';
}

ComparisonSummary PointComparison::Finish() {
  CompareBlock();
  ComparisonSummary summary;
  summary.nPoints = static_cast<std::int64_t>(differences_.size());
  summary.count = count_;
  summary.mean = ArrayMean(differences_, kNoDataZ);
  summary.stdDev = ArrayStdDev(differences_, summary.mean, kNoDataZ);
  summary.rms = ArrayRms(differences_, kNoDataZ);
  summary.min = ArrayMin(differences_, kNoDataZ);
  summary.max = ArrayMax(differences_, kNoDataZ);

  text_.clear();
  AppendInt(text_, summary.count);
  text_ += ", ";
  AppendNumbers(text_, {summary.min, summary.max, summary.mean, summary.stdDev, summary.rms}, kDigits);
  log_.Write(text_ += '\n');
  return summary;
}

bool OpenLog(OutputFile& log, const std::string& path, const std::vector<std::string>& inputs) {
  return !IsOneOfFiles(path, inputs) && log.Open(path);
}

bool CollectInRegions(const TINPoints& points, std::span<const Region> regions,
                      std::vector<std::int32_t>& list) {
  try {
    for (const Region& region : regions) {
      points.CollectInRegion(region, list);
      if (list.size() > INT32_MAX) return false;
    }
  } catch (const std::bad_alloc&) {
    return false;
  } catch (const std::length_error&) {
    return false;
  }
  return true;
}

void CompareListed(PointComparison& comparison, const TINPoints& points, std::span<const std::int32_t> list) {
  for (std::size_t i = 0; i < list.size(); ++i) {
    const PointRecord& point = points.points[static_cast<std::size_t>(list[i])];
    comparison.Compare(i, {point.x, point.y, point.z});
  }
}

}  // namespace corvane
