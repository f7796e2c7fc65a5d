// Merging 20 grids of 1,000,000 points each, five by four, with a fifth of each side shared with the
// neighbour. The merged grid is made durable (fsync) before it takes its place, as every output is. Its
// speed:
//   "of plain copying": over that of copying the same files as cp does, which leaves the bytes to the system
//     and waits for no disk (0.2 or more)
//   "of durable copying": over that of copying them with an fsync of each copy
//   "of durable reading and writing": over reading those files and writing as many bytes as the merge does,
//     with an fsync

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <vector>

#include "RandomSurvey.h"
#include "TIN/GridMerge.h"
#include "TIN/PointRecord.h"
#include "TIN/PointsHeader.h"
#include "TakingTurns.h"

namespace corvane {
namespace {

constexpr std::int32_t kSide = 1000;  // points along a side of a grid
constexpr int kStep = 800;            // from one grid to the next, in points
constexpr int kGridCols = 5;
constexpr int kGridRows = 4;
constexpr std::int64_t kMerged =
    std::int64_t{(kGridCols - 1) * kStep + kSide} * ((kGridRows - 1) * kStep + kSide);

const RandomSurvey& Folder() {
  static const RandomSurvey folder(0);
  return folder;
}

// A grid at whole coordinates, column by column, with random heights and scores.
void WriteGridFile(const std::string& path, int minX, int minY, std::mt19937_64& random) {
  std::uniform_real_distribution<double> height(0.0, 100.0);
  std::uniform_real_distribution<double> score(0.0, 1.0);
  TINPoints points(kSide * kSide);
  for (std::int32_t i = 0; i < kSide * kSide; ++i) {
    points.SetPoint(i, minX + i / kSide, minY + i % kSide, height(random), score(random), i);
  }
  points.RecalcExtent();
  if (points.Write(path) < 0) std::abort();
}

std::vector<std::string> MakeGridFiles() {
  std::mt19937_64 random(1);
  std::vector<std::string> paths;
  for (int i = 0; i < kGridRows * kGridCols; ++i) {
    paths.push_back(Folder().PathOf("grid" + std::to_string(i) + ".pts"));
    WriteGridFile(paths.back(), i % kGridCols * kStep, i / kGridCols * kStep, random);
  }
  return paths;
}

const std::vector<std::string>& GridFiles() {
  static const std::vector<std::string> paths = MakeGridFiles();
  return paths;
}

bool Merge(const std::string& outPath) {
  GridMerge merge;
  for (const std::string& path : GridFiles()) merge.AddFile(path);
  return merge.Write(outPath) == static_cast<int>(GridFiles().size());
}

// Plain reads and writes of a megabyte each.
class PlainFile {
 public:
  PlainFile(const std::string& path, int flags) : descriptor_(open(path.c_str(), flags, 0600)) {}
  ~PlainFile() { close(descriptor_); }
  PlainFile(const PlainFile&) = delete;
  PlainFile& operator=(const PlainFile&) = delete;

  // The bytes that came; 0 at the end.
  std::size_t Read() {
    const ssize_t got = read(descriptor_, Block().data(), Block().size());
    return got < 0 ? 0 : static_cast<std::size_t>(got);
  }
  bool Write(std::size_t size) {
    return write(descriptor_, Block().data(), size) == static_cast<ssize_t>(size);
  }
  bool Sync() { return fsync(descriptor_) == 0; }

 private:
  static std::vector<char>& Block() {
    static std::vector<char> block(std::size_t{1} << 20);
    return block;
  }

  int descriptor_;
};

constexpr int kNewFile = O_WRONLY | O_CREAT | O_TRUNC;

bool CopyFile(const std::string& from, const std::string& to, bool isDurable) {
  PlainFile in(from, O_RDONLY);
  PlainFile out(to, kNewFile);
  while (const std::size_t got = in.Read()) {
    if (!out.Write(got)) return false;
  }
  return !isDurable || out.Sync();
}

bool CopyAll(bool isDurable) {
  bool good = true;
  for (const std::string& path : GridFiles()) good = CopyFile(path, path + ".copy", isDurable) && good;
  return good;
}

constexpr std::size_t kMergedBytes = PointsHeader::kBytes + static_cast<std::size_t>(kMerged) * kPointBytes;

bool ReadAllAndWrite() {
  for (const std::string& path : GridFiles()) {
    PlainFile in(path, O_RDONLY);
    while (in.Read() > 0) {
    }
  }
  PlainFile out(Folder().PathOf("plain.pts"), kNewFile);
  std::size_t n = 0;
  for (std::size_t nLeft = kMergedBytes; nLeft > 0; nLeft -= n) {
    n = std::min(nLeft, std::size_t{1} << 20);
    if (!out.Write(n)) return false;
  }
  return out.Sync();
}

void MergeGrids(benchmark::State& state, const char* ratio, bool (*yardstick)()) {
  GridFiles();
  const std::string outPath = Folder().PathOf("merged.pts");
  const Seconds seconds = Compare(
      state, [&] { return Merge(outPath); }, yardstick);
  if (std::filesystem::file_size(outPath) != kMergedBytes) state.SkipWithError("not all nodes are there");
  state.counters[ratio] = seconds.yardstick / seconds.ours;
}

void Options(benchmark::internal::Benchmark* benchmark) {
  benchmark->Iterations(4)->UseManualTime()->Unit(benchmark::kMillisecond);
}
BENCHMARK_CAPTURE(
    MergeGrids, plainCopying, "of plain copying", +[] { return CopyAll(false); })
    ->Apply(Options);
BENCHMARK_CAPTURE(
    MergeGrids, durableCopying, "of durable copying", +[] { return CopyAll(true); })
    ->Apply(Options);
BENCHMARK_CAPTURE(MergeGrids, bytes, "of durable reading and writing", ReadAllAndWrite)->Apply(Options);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
