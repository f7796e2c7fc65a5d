// Least-squares matching, on one thread.
//   LeastSquaresMatches: a template of 21 x 21 in a texture, with as many passes as it takes.
//     "us per 6 passes": wanted, 150 at most; the passes that adjust and the one for the score counted
//   DisparityPasses: the form with a disparity a pixel, in windows of 9 x 9 and 19 x 19.
//     "us a pass"
//     "of dense": the time of WeightedLeastSquaresCholesky on the whole design, alone, over that of a pass

#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>
#include <vector>

#include "LsmScenes.h"
#include "PairMaker.h"
#include "StereoPair/DisparityPasses.h"
#include "StereoPair/LeastSquaresMatch.h"
#include "TakingTurns.h"
#include "numerics/LeastSquares.h"

namespace corvane {
namespace {

// The passes of a match: an empty line follows each that adjusts, and one more makes the score.
std::int64_t PassesOf(const ErdasImg& search, ErdasImg& pattern, Point2 position) {
  std::string log;
  LsmParameters parameters;
  LeastSquaresMatch(search, pattern, position, parameters, &log);
  return std::count(log.begin(), log.end(), '\n') / 2 + 1;
}

void LeastSquaresMatches(benchmark::State& state) {
  const ErdasImg search = MakeTexture(200, 160);
  ErdasImg pattern = MakeTemplate(21, 21, {.x = 100.4, .y = 79.7, .a1 = 1.04, .b1 = 0.03});
  const Point2 start = {103.0, 82.0};
  const std::int64_t nPasses = PassesOf(search, pattern, start);
  double score = 0.0;
  double seconds = 0.0;
  for (auto step : state) {
    seconds += SecondsOf([&] {
      Point2 position = start;
      LsmParameters parameters;
      score = LeastSquaresMatch(search, pattern, position, parameters);
    });
  }
  if (score < 0.99) state.SkipWithError("no match");
  const double nAll = static_cast<double>(nPasses * state.iterations());
  state.counters["passes"] = static_cast<double>(nPasses);
  state.counters["us per 6 passes"] = 6.0 * 1e6 * seconds / nAll;
}

// The design of a window with gradients of 1: what the dense solver gets in a pass.
double DenseSeconds(int side) {
  const int n = side * side;
  const DisparityLattice lattice = {static_cast<std::size_t>(side), static_cast<std::size_t>(side)};
  const OwnedMatrix design(AllocMatrix(3 * n, n));
  std::vector<double> l(3 * n, 1.0), weights(3 * n, kSmoothnessWeight), x(n);
  for (int i = 0; i < n; ++i) design[i][i] = -1.0;
  std::fill_n(weights.begin(), n, kBrightnessWeight);
  for (int k = 0; k < 2 * n; ++k) {
    const DisparityDifference difference = lattice.GetDifference(k);
    for (std::size_t j = 0; j < difference.count; ++j) {
      design[n + k][difference.unknowns[j]] = difference.factors[j];
    }
  }
  return SecondsOf(
      [&] { WeightedLeastSquaresCholesky(design.get(), l.data(), weights.data(), 3 * n, n, x.data()); });
}

void DisparityPasses(benchmark::State& state) {
  const int side = static_cast<int>(state.range(0));
  VerticalPair scene(1, 1);
  scene.left.image = MakeTexture(200, 160);
  scene.right.image = MakeImage(200, 160, [](double x, double y) { return TextureAt(x + 6.4, y); });
  scene.pair.matchThreshold = 2.0;  // so that no pass is the last one
  constexpr int kPasses = 18;
  std::vector<double> disparities, rowDisparities;
  double seconds = 0.0;
  double dense = 0.0;
  for (auto step : state) {
    seconds += SecondsOf([&] {
      scene.pair.LeastSquaresDisparity({100.0, 80.0}, {94.0, 80.0}, side, side, 16.0, kPasses + 1,
                                       disparities, rowDisparities, nullptr);
    });
    dense += DenseSeconds(side);
    scene.pair.matchPairs.clear();
    scene.pair.groundPoints.reset();
  }
  state.counters["us a pass"] = 1e6 * seconds / static_cast<double>(kPasses * state.iterations());
  state.counters["of dense"] = kPasses * dense / seconds;
}

BENCHMARK(LeastSquaresMatches)->Unit(benchmark::kMicrosecond);
BENCHMARK(DisparityPasses)->Arg(9)->Arg(19)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
