// Dense linear algebra against the plain loops that define it, on one core:
//   "of plain loops": their time over ours (wanted: 4 or more for the normal equations of 600 unknowns at a
//   density of 3, 3 for GaussJordan of 600 and 1 of few unknowns, 4 for LuSolve of 2000);
//   "of dgesv": the time of OpenBLAS over that of LuSolve. It may add in any order, and with fused
//   multiply-add; LuSolve keeps the order and each rounding, and gives the same bits on every machine.
// Both of a pair run on the same numbers. Results are compared by the tests.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "PlainLinear.h"
#include "TakingTurns.h"
#include "numerics/NormalEquations.h"
#include "numerics/Solvers.h"

#ifdef CORVANE_OPENBLAS
extern "C" {
void openblas_set_num_threads(int count);
void dgesv_(const int* n, const int* nRhs, double* a, const int* lda, int* pivots, double* b, const int* ldb,
            int* info);
}
#endif

namespace corvane {
namespace {

class Numbers {
 public:
  double Fraction() { return static_cast<double>(random_() >> 11) * 0x1p-53; }

  OwnedMatrix RandomMatrix(int rows, int cols, double density = 1.0) {
    OwnedMatrix m(AllocMatrix(rows, cols));
    for (std::ptrdiff_t i = 0; i < static_cast<std::ptrdiff_t>(rows) * cols; ++i) {
      if (Fraction() < density) m[0][i] = 2.0 * Fraction() - 1.0;
    }
    return m;
  }

 private:
  std::mt19937_64 random_{1};
};

void SetCounter(benchmark::State& state, const Seconds& seconds) {
  state.counters["of plain loops"] = seconds.yardstick / seconds.ours;
}

int PlainLuSolve(Matrix a, int n, double* b) {
  std::vector<int> indx(n);
  double d = 0.0;
  if (PlainLuDecompose(a, n, indx.data(), &d) < 0) return -1;
  PlainLuSubstitute(a, n, indx.data(), b);
  return 1;
}

int PlainCholeskySolve(Matrix a, int n, double* b) {
  std::vector<double> p(n);
  if (PlainCholeskyDecompose(a, n, p.data()) < 0) return -1;
  PlainCholeskySubstitute(a, n, p.data(), b, b);
  return 1;
}

// Enough rows for a few milliseconds; `density` is in percent. The last figure is 1 for the weighted form.
void NormalEquations(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const double density = static_cast<double>(state.range(1)) / 100.0;
  const bool isWeighted = state.range(2) != 0;
  const int m = n == 600 ? 4000 : 2000000 / (n * n);
  Numbers numbers;
  const OwnedMatrix a = numbers.RandomMatrix(m, n, density);
  const OwnedMatrix weights = numbers.RandomMatrix(1, m);
  const double* const w = isWeighted ? weights[0] : nullptr;
  const OwnedMatrix normal(AllocMatrix(n, n));
  const auto ours = [&] { return BuildNormalMatrix(a.get(), w, m, n, normal.get()) == 1; };
  const auto plain = [&] {
    PlainNormalMatrix(a.get(), w, m, n, normal.get());
    return true;
  };
  SetCounter(state, Compare(state, ours, plain));
}
BENCHMARK(NormalEquations)
    ->ArgsProduct({{8, 60}, {3, 10, 30, 60, 100}, {0, 1}})
    ->ArgNames({"n", "density", "weighted"})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(20);
BENCHMARK(NormalEquations)
    ->ArgsProduct({{600}, {3, 30, 100}, {0, 1}})
    ->ArgNames({"n", "density", "weighted"})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

// Systems that are copied, then solved with one right side; the copy counts on both sides. Small ones are
// solved many times, and take turns, so that nothing foresees the pivots.
class System {
 public:
  explicit System(int n, double diagonal = 0.0) : n_(n), nRuns_(std::max(1, 1000000 / n / n / n)) {
    for (int i = 0; i < nSystems_ * n; ++i) {
      const int row = i % n;
      for (int j = 0; j < row && diagonal > 0.0; ++j) a_[i][j] = a_[i - row + j][row];
      a_[i][row] += diagonal;
    }
  }

  template <typename Solve>
  bool Run(Solve solve) const {
    bool isGood = true;
    for (int run = 0; run < nRuns_; ++run) {
      const int first = run % nSystems_ * n_;
      std::copy_n(a_[first], static_cast<std::ptrdiff_t>(n_) * n_, scratchA_[0]);
      std::copy_n(b_[first], n_, scratchB_[0]);
      isGood = solve(scratchA_.get(), scratchB_.get()) == 1 && isGood;
    }
    return isGood;
  }

 private:
  const int n_;
  const int nRuns_;
  const int nSystems_ = std::min(nRuns_, 100);
  const OwnedMatrix a_ = Numbers().RandomMatrix(nSystems_ * n_, n_);
  const OwnedMatrix b_ = Numbers().RandomMatrix(nSystems_ * n_, 1);
  const OwnedMatrix scratchA_{AllocMatrix(n_, n_)};
  const OwnedMatrix scratchB_{AllocMatrix(n_, 1)};
};

template <typename Ours, typename Plain>
void CompareSolvers(benchmark::State& state, const System& system, Ours ours, Plain plain) {
  SetCounter(state, Compare(
                        state, [&] { return system.Run(ours); }, [&] { return system.Run(plain); }));
}

void SolveByGaussJordan(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const System system(n);
  const auto ours = [&](Matrix a, Matrix b) { return GaussJordan(a, n, b, 1); };
  const auto plain = [&](Matrix a, Matrix b) { return PlainGaussJordan(a, n, b, 1); };
  CompareSolvers(state, system, ours, plain);
}
BENCHMARK(SolveByGaussJordan)
    ->Arg(2)
    ->Arg(3)
    ->Arg(6)
    ->Arg(8)
    ->Arg(12)
    ->Arg(16)
    ->Arg(17)
    ->Arg(30)
    ->Arg(100)
    ->Arg(600)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10);

void SolveByCholesky(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const System system(n, n);
  const auto ours = [&](Matrix a, Matrix b) { return CholeskySolve(a, n, b[0]); };
  const auto plain = [&](Matrix a, Matrix b) { return PlainCholeskySolve(a, n, b[0]); };
  CompareSolvers(state, system, ours, plain);
}
BENCHMARK(SolveByCholesky)
    ->Arg(8)
    ->Arg(600)
    ->Arg(2000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(4);

#ifdef CORVANE_OPENBLAS
// Columns stand one behind the other there: the transposed system is as good a yardstick.
int SolveByOpenBlas(Matrix a, int n, double* b) {
  const int one = 1;
  int info = 0;
  std::vector<int> pivots(n);
  openblas_set_num_threads(1);
  dgesv_(&n, &one, a[0], &n, pivots.data(), b, &n, &info);
  return info == 0 ? 1 : -1;
}

template <typename Ours>
void CompareWithOpenBlas(benchmark::State& state, const System& system, int n, Ours ours) {
  const auto openBlas = [&](Matrix a, Matrix b) { return SolveByOpenBlas(a, n, b[0]); };
  Seconds seconds;
  system.Run(openBlas);  // makes its buffers
  for (int run = 0; run < 3; ++run) {
    seconds.yardstick += SecondsOf([&] { system.Run(openBlas); });
    seconds.ours += SecondsOf([&] { system.Run(ours); });
  }
  state.counters["of dgesv"] = seconds.yardstick / seconds.ours;
}
#else
template <typename Ours>
void CompareWithOpenBlas(benchmark::State& state, const System&, int, Ours) {
  state.SetLabel("no OpenBLAS here to compare with");
}
#endif

void SolveByLu(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const System system(n);
  const auto ours = [&](Matrix a, Matrix b) { return LuSolve(a, n, b[0]); };
  const auto plain = [&](Matrix a, Matrix b) { return PlainLuSolve(a, n, b[0]); };
  CompareSolvers(state, system, ours, plain);
  CompareWithOpenBlas(state, system, n, ours);
}
BENCHMARK(SolveByLu)
    ->Arg(8)
    ->Arg(300)
    ->Arg(2000)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
