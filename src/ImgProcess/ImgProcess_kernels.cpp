#include <cmath>
#include <new>

#include "ImgProcess/ImgProcess.h"

namespace corvane {

namespace {

// The distance of a weight from the centre, in pixels.
double DistanceOf(std::size_t i, const Kernel1D& kernel) {
  return static_cast<double>(static_cast<std::int64_t>(i) - kernel.GetReach());
}

}  // namespace

bool ImgProcess::HasGaussian(double sigma) {
  return sigma >= 0.0 && sigma <= kMaxSigma;
}

int ImgProcess::MakeGaussian(double sigma, Kernel1D& kernel) {
  kernel = {};
  if (!HasGaussian(sigma)) return -1;
  const auto size = 2 * static_cast<std::int32_t>(std::ceil(3.0 * sigma)) + 1;
  try {
    kernel.values.resize(static_cast<std::size_t>(size));
  } catch (const std::bad_alloc&) {
    return -1;
  }
  kernel.size = size;
  double sum = 0.0;
  for (std::size_t i = 0; i < kernel.values.size(); ++i) {
    const double x = DistanceOf(i, kernel);
    kernel.values[i] = std::exp(-(x * x) / (2.0 * sigma * sigma));
    sum += kernel.values[i];
  }
  for (double& value : kernel.values) value /= sum;
  return 1;
}

int ImgProcess::MakeGaussian2nd(double sigma, Kernel1D& kernel) {
  if (MakeGaussian(sigma, kernel) < 0) return -1;
  const double variance = sigma * sigma;
  double sum = 0.0;
  for (std::size_t i = 0; i < kernel.values.size(); ++i) {
    const double x = DistanceOf(i, kernel);
    kernel.values[i] *= (x * x - variance) / (variance * variance);
    sum += kernel.values[i];
  }
  const double mean = sum / kernel.size;
  for (double& value : kernel.values) value -= mean;
  return 1;
}

void ImgProcess::MakeCentralDifference(Kernel1D& kernel) {
  kernel.size = 3;
  kernel.values = {-0.5, 0.0, 0.5};
}

}  // namespace corvane
