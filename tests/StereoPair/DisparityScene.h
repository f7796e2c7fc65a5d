#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "LsmScenes.h"
#include "PairMaker.h"
#include "StereoPair/StereoPair.h"

namespace corvane {

using Numbers = std::vector<double>;
constexpr std::int32_t kSceneCols = 100;
constexpr std::int32_t kSceneRows = 80;

// A pair whose left image is the texture, and whose right one shows at (x, y) what the texture has at
// (x + disparity, y), changed by gain and shift.
struct DisparityScene : VerticalPair {
  explicit DisparityScene(double disparity, double gain = 1.0, double shift = 0.0)
      : DisparityScene([=](double x, double y) { return gain * TextureAt(x + disparity, y) + shift; }) {}
  explicit DisparityScene(const std::function<double(double, double)>& rightGrey) : VerticalPair(1, 1) {
    left.image = MakeTexture(kSceneCols, kSceneRows);
    right.image = MakeImage(kSceneCols, kSceneRows, rightGrey);
  }
};

struct DisparityResult {
  double score = 0.0;
  Numbers disparities;
  Numbers rowDisparities;
};

using DisparityForm = double (StereoPair::*)(const Point2&, const Point2&, int, int, double, int, Numbers&,
                                             Numbers&, const ErdasImg*);
constexpr DisparityForm kDisparityForms[] = {&StereoPair::LeastSquaresDisparity,
                                             &StereoPair::LeastSquaresDisparityGain,
                                             &StereoPair::LeastSquaresDisparityGrid};

inline DisparityResult MatchDisparities(StereoPair& pair, const Point2& left, const Point2& right, int width,
                                        int height, double limit = 16.0, int iterations = 20,
                                        const ErdasImg* map = nullptr,
                                        DisparityForm form = &StereoPair::LeastSquaresDisparity) {
  DisparityResult result;
  result.score = (pair.*form)(left, right, width, height, limit, iterations, result.disparities,
                              result.rowDisparities, map);
  return result;
}

}  // namespace corvane
