#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "TIN/Region.h"
#include "TIN/TIN.h"
#include "TIN/TINPoints.h"
#include "numerics/Point3.h"

namespace corvane {

class OutputFile;

// What is shown when the check points do not fit the memory.
constexpr const char* kPointsMemoryError = "Can not allocate memory for points!\n";

// The TIN's height at p: that of a corner which p is exactly on, otherwise that of the triangle's plane.
// Returns what TIN::FindTriangle does; below 0 there is no height, and z stays.
int HeightAt(const TIN& tin, const Point3& p, double& z);

// The measure of a TIN against check points: statistics of the differences, TIN height minus point height.
struct ComparisonSummary {
  std::int64_t nPoints = 0;  // all that were to be measured
  std::int64_t count = 0;    // of the points that have a height
  double min = 0.0;
  double max = 0.0;
  double mean = 0.0;
  double stdDev = 0.0;
  double rms = 0.0;
};

// Measures a TIN against check points, and writes a log of it: a row for each point that has a height, in the
// order of the points, and a last line "count, min, max, mean, standard deviation, RMS". Numbers have up to
// 15 significant digits. A point without a height has no row and no part in the statistics.
class PointComparison {
 public:
  // What stands in a row.
  enum class Row {
    Numbered,     // i, x, y, z, difference
    Plan,         // x, y, difference
    WithHeights,  // x, y, z, TIN height ,difference: the last separator is a blank and a comma
  };

  // `log` need not be open, or take all that is written; its own Commit tells.
  PointComparison(const TIN& tin, Row row, OutputFile& log);

  // Makes room for `n` differences, each "no data" until it is measured. Comes before the first Compare().
  // False without the memory.
  bool Allocate(std::size_t n);

  // Measures the point of difference `i`, which is below n. Points are measured block by block: Finish ends
  // the last one.
  void Compare(std::size_t i, const Point3& p);

  // Writes the last line.
  // Kept: a difference that is exactly "no data" counts and has its row, but the statistics pass it over.
  ComparisonSummary Finish();

 private:
  static constexpr std::size_t kBlock = 64;  // points

  void CompareBlock();
  void AppendRow(std::size_t i, const Point3& p, double height, double difference);

  const TIN& tin_;
  Row row_;
  OutputFile& log_;
  std::vector<double> differences_;
  std::int64_t count_ = 0;
  std::size_t nPending_ = 0;  // points that wait to be measured
  std::array<Point3, kBlock> points_;
  std::array<std::size_t, kBlock> places_ = {};  // of their differences
  std::string text_;
};

// Opens the log of a comparison of these input files. False if it can't be written, or would take the place
// of one of them.
bool OpenLog(OutputFile& log, const std::string& path, const std::vector<std::string>& inputs);

// The points in any of the regions, as positions in the set: region by region, so that a point in two of them
// is there twice. Regions that select nothing because they are none are passed over. False without the
// memory, or if they would be more than 2^31 - 1.
bool CollectInRegions(const TINPoints& points, std::span<const Region> regions,
                      std::vector<std::int32_t>& list);

// Measures the listed points, whose differences are in the order of the list.
void CompareListed(PointComparison& comparison, const TINPoints& points, std::span<const std::int32_t> list);

}  // namespace corvane
