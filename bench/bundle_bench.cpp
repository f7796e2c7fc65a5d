// The adjustment of a block of 100 photos and 600 pass points, on one core: about 8,000 equations for 2,400
// unknowns. Wanted: one round, text files included, in 15 s at most, with at most 400 MB beyond the two
// matrices. Counters:
//   "seconds of a round", and "MB beyond": the peak memory of a whole adjustment less what A and N occupy of
//     it, "MB of matrices": the pages of A that hold nothing but zeros take none
//   "of plain loops": the time of the loops that define the normal matrix over that of ours, for a quarter of
//     the block, as that of the whole takes them minutes
//   "of printf": the time of fprintf for each number over that of WriteAugmentedMatrix
// The results are compared by the tests.

#include <benchmark/benchmark.h>

#include <cstdio>

#include "ExactBlock.h"
#include "PeakMemory.h"
#include "PhotoProject/BundleAdjustment.h"
#include "TakingTurns.h"
#include "numerics/MatrixText.h"
#include "numerics/NormalEquations.h"
#include "numerics/PlainLinear.h"
#include "numerics/Solvers.h"
#include "support/TempFolder.h"

namespace corvane {
namespace {

constexpr double kMegabyte = 1048576.0;
constexpr int kRounds = 3;

const BlockShape kLarge = {.nStrips = 10, .nPhotos = 10, .nAlong = 26, .nAcross = 25, .controlEvery = 13};
const BlockShape kQuarter = {.nStrips = 5, .nPhotos = 5, .nAlong = 13, .nAcross = 13, .controlEvery = 13};

// The first equations of the block.
struct FirstSystem {
  explicit FirstSystem(const BlockShape& shape) {
    MakeExactBlock(shape, project);
    BuildDesign(project, system);
    normal.reset(AllocMatrix(system.cols, system.cols));
    rhs.reset(AllocMatrix(system.cols, 1));
  }

  PhotoProject project;
  BundleSystem system;
  OwnedMatrix normal;
  OwnedMatrix rhs;
};

void Design(benchmark::State& state) {
  FirstSystem block(kLarge);
  for (auto _ : state) {
    block.project.measurementCursor = 0;
    BuildDesign(block.project, block.system);
  }
  state.counters["rows"] = block.system.rows;
  state.counters["cols"] = block.system.cols;
}
BENCHMARK(Design)->Unit(benchmark::kMillisecond)->Iterations(5);

bool PrintAugmentedMatrix(const char* path, const BundleSystem& system) {
  std::FILE* const file = std::fopen(path, "wt");
  if (!file) return false;
  std::fprintf(file, "%d%s%d\n", system.rows, ",", system.cols + 1);
  for (int i = 0; i < system.rows; ++i) {
    for (int j = 0; j < system.cols; ++j) {
      std::fprintf(file, system.a[i][j] == 0.0 ? "%.0f%s " : "%f%s ", system.a[i][j], ",");
    }
    std::fprintf(file, system.l[i] == 0.0 ? "%.0f\n" : "%f\n", system.l[i]);
  }
  return std::fclose(file) == 0;
}

void WriteSystem(benchmark::State& state) {
  const TempFolder folder;
  const FirstSystem block(kLarge);
  const BundleSystem& system = block.system;
  const auto ours = [&] {
    return WriteAugmentedMatrix("ours.txt", system.rows, system.cols, system.a.get(), system.l.get(), ",") ==
           1;
  };
  const auto printed = [&] { return PrintAugmentedMatrix("printf.txt", system); };
  const Seconds seconds = Compare(state, ours, printed);
  state.counters["of printf"] = seconds.yardstick / seconds.ours;
}
BENCHMARK(WriteSystem)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(4);

void NormalMatrixOfSystem(benchmark::State& state) {
  const FirstSystem block(kQuarter);
  const BundleSystem& system = block.system;
  const auto ours = [&] {
    return BuildNormalMatrix(system.a.get(), nullptr, system.rows, system.cols, block.normal.get()) == 1;
  };
  const auto plain = [&] {
    PlainNormalMatrix(system.a.get(), nullptr, system.rows, system.cols, block.normal.get());
    return true;
  };
  const Seconds seconds = Compare(state, ours, plain);
  state.counters["of plain loops"] = seconds.yardstick / seconds.ours;
}
BENCHMARK(NormalMatrixOfSystem)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(4);

void Solve(benchmark::State& state) {
  const FirstSystem block(kLarge);
  const BundleSystem& system = block.system;
  for (auto _ : state) {
    state.PauseTiming();
    BuildNormalMatrix(system.a.get(), nullptr, system.rows, system.cols, block.normal.get());
    BuildNormalVector(system.a.get(), system.l.get(), nullptr, system.rows, system.cols, block.rhs[0]);
    state.ResumeTiming();
    if (GaussJordan(block.normal.get(), system.cols, block.rhs.get(), 1) < 0) state.SkipWithError("singular");
  }
}
BENCHMARK(Solve)->Unit(benchmark::kMillisecond)->Iterations(2);

// What A and N of a project occupy, in bytes: A what filling it takes, N, which the solver fills, all of it.
double BytesOfMatrices(PhotoProject& project) {
  ResetPeak();
  const double before = PeakBytes();
  BundleSystem system;
  BuildDesign(project, system);
  project.measurementCursor = 0;
  const double cols = system.cols;
  return PeakBytes() - before - system.rows * sizeof(double) + cols * cols * sizeof(double);
}

void Adjust(benchmark::State& state) {
  const TempFolder folder;
  for (auto _ : state) {
    state.PauseTiming();
    PhotoProject project;
    MakeExactBlock(kLarge, project);
    const double matrices = BytesOfMatrices(project);
    ResetPeak();
    const double before = PeakBytes();
    state.ResumeTiming();
    const double seconds = SecondsOf([&] { RunBundleAdjustment(project); });
    state.counters["seconds of a round"] = seconds / kRounds;
    state.counters["MB of matrices"] = matrices / kMegabyte;
    state.counters["MB beyond"] = (PeakBytes() - before - matrices) / kMegabyte;
  }
}
BENCHMARK(Adjust)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
