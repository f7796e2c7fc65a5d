// Dense linear algebra against the plain loops that define it, on one core:
//   "of plain loops": their time over ours (wanted: 4 or more for NormalMatrix on a mostly empty design
//   matrix, 3 for GaussJordan, 4 for LuSolve) "of dgesv": the time of OpenBLAS over that of LuSolve. It may
//   add in any order, and with fused multiply-add; LuSolve keeps the order and each rounding, and gives the
//   same bits on every machine.
// Both of a pair run on the same numbers. Results are compared by the tests.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "PlainLinear.h"
#include "TakingTurns.h"
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

void Copy(const OwnedMatrix& from, const OwnedMatrix& to, int rows, int cols) {
  std::copy_n(from[0], static_cast<std::ptrdiff_t>(rows) * cols, to[0]);
}

void SetCounter(benchmark::State& state, const Seconds& seconds) {
  state.counters["of plain loops"] = seconds.yardstick / seconds.ours;
}

int PlainLuSolve(Matrix a, int n, double* b) {
  std::vector<int> indx(n);
  double d = 0.0;
  if (PlainLuDecompose(a, n, indx.data(), &d) < 0) return -1;
  LuSubstitute(a, n, indx.data(), b);
  return 1;
}

int PlainCholeskySolve(Matrix a, int n, double* b) {
  std::vector<double> p(n);
  if (PlainCholeskyDecompose(a, n, p.data()) < 0) return -1;
  CholeskySubstitute(a, n, p.data(), b, b);
  return 1;
}

// 4000 observations of 600 unknowns; the density in percent.
void NormalEquations(benchmark::State& state) {
  constexpr int m = 4000;
  constexpr int n = 600;
  const OwnedMatrix a = Numbers().RandomMatrix(m, n, static_cast<double>(state.range(0)) / 100.0);
  const OwnedMatrix normal(AllocMatrix(n, n));
  const auto ours = [&] {
    Matrix pointer = normal.get();
    return NormalMatrix(a.get(), m, n, &pointer) == 1;
  };
  const auto plain = [&] {
    PlainNormalMatrix(a.get(), nullptr, m, n, normal.get());
    return true;
  };
  SetCounter(state, Compare(state, ours, plain));
}
BENCHMARK(NormalEquations)
    ->Arg(3)
    ->Arg(100)
    ->ArgName("density")
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(2);

// A system that is copied, then solved with one right side; the copy counts on both sides.
class System {
 public:
  explicit System(int n, double diagonal = 0.0)
      : n_(n), a_(Numbers().RandomMatrix(n, n)), b_(Numbers().RandomMatrix(n, 1)) {
    for (int i = 0; i < n; ++i) {
      for (int j = 0; j < i && diagonal > 0.0; ++j) a_[i][j] = a_[j][i];
      a_[i][i] += diagonal;
    }
  }

  template <typename Solve>
  bool Run(Solve solve) const {
    Copy(a_, scratchA_, n_, n_);
    Copy(b_, scratchB_, n_, 1);
    return solve(scratchA_.get(), scratchB_.get()) == 1;
  }

 private:
  const int n_;
  const OwnedMatrix a_;
  const OwnedMatrix b_;
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
    ->Arg(8)
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
