#include "StereoPair/LeastSquaresPatch.h"

#include <algorithm>
#include <climits>
#include <cmath>

#include "StereoPair/GradientSamples.h"
#include "StereoPair/LeastSquaresMatch.h"
#include "io/MachineMemory.h"
#include "numerics/LeastSquares.h"
#include "numerics/SimdVersion.h"
#include "numerics/Solvers.h"

namespace corvane {

namespace {

constexpr int kArrays = 10;  // of numbers, one a pixel

// What a pixel takes, its row of the design included.
constexpr auto kBytesPerPixel =
    static_cast<std::int64_t>(1 + (kArrays + LeastSquaresPatch::kColumns) * sizeof(double) + sizeof(double*));

constexpr int kSize = LeastSquaresPatch::kColumns;

// What LeastSquares and LeastSquaresCholesky make of a design and its observations.
struct NormalEquations {
  double matrix[kSize * kSize];
  double vector[kSize];

  // Only then is a product with a zero of the design zero, which those operations leave out of their sums.
  bool AreFinite() const {
    bool areFinite = std::isfinite(vector[0]);
    for (int i = 0; i < kSize; ++i) areFinite &= std::isfinite(matrix[i * kSize + i]);
    return areFinite;
  }

  // The first n unknowns, in `vector`.
  void Solve(int n, bool isByGaussJordan) {
    double* rows[kSize];
    double* elements[kSize];
    for (int i = 0; i < kSize; ++i) {
      rows[i] = matrix + i * kSize;
      elements[i] = vector + i;
    }
    if (isByGaussJordan) {
      GaussJordan(rows, n, elements, 1);
    } else {
      CholeskySolve(rows, n, vector);
    }
  }
};

// Adds up the normal equations of a design of kSize columns, its rows one behind the other. Each sum runs
// over the observations in their order, so every element has a lane of its own.
struct SumProducts {
  template <std::size_t width>
  [[gnu::always_inline]] static inline void Run(const double* design, const double* observations,
                                                std::size_t n, double* matrix, double* vector) {
    using Pack = SimdPack<double, width>;
    constexpr int kLanes = Pack::kLanes;
    constexpr int kPacks = kSize / kLanes;
    Pack sums[kSize][kPacks], vectorSums[kPacks], row;
    for (int j = 0; j < kPacks; ++j) {
      for (int i = 0; i < kSize; ++i) sums[i][j].Fill(0.0);
      vectorSums[j].Fill(0.0);
    }
    for (std::size_t k = 0; k < n; ++k) {
      const double* const values = design + k * kSize;
      for (int j = 0; j < kPacks; ++j) {
        row.Load(values + j * kLanes);
        for (int i = 0; i < kSize; ++i) sums[i][j].lanes += values[i] * row.lanes;
        vectorSums[j].lanes += observations[k] * row.lanes;
      }
    }
    for (int j = 0; j < kPacks; ++j) {
      for (int i = 0; i < kSize; ++i) sums[i][j].Store(matrix + i * kSize + j * kLanes);
      vectorSums[j].Store(vector + j * kLanes);
    }
  }
};

}  // namespace

bool CanMatchAt(const ErdasImg& image, const Point2& place) {
  const auto [cols, rows] = image.GetSize();
  const bool isInside = place.x >= 0.0 && place.x < cols && place.y >= 0.0 && place.y < rows;
  return image.HasPixels() && isInside && place.x != cols - 1 && place.y != rows - 1;
}

std::int64_t LeastSquaresPatch::MostPixels() {
  return std::min<std::int64_t>(BytesOfMachine() / kBytesPerPixel, INT_MAX);
}

LeastSquaresPatch::LeastSquaresPatch(const ErdasImg& search, std::int64_t n) : search_(search) {
  if (n <= 0 || n > MostPixels()) return;
  n_ = static_cast<std::size_t>(n);
  pattern_ = NewArray<std::uint8_t>(n);
  numbers_ = NewArray<double>(kArrays * n);
  design_.reset(AllocMatrix(n, kColumns));
  if (!HasRoom()) return;
  std::span<double> left(numbers_.get(), kArrays * n_);
  for (std::span<double>* const array :
       {&dx_, &dy_, &placeX_, &placeY_, &cols_, &rows_, &samples_, &gCol_, &gRow_, &observations_}) {
    *array = left.first(n_);
    left = left.subspan(n_);
  }
}

void LeastSquaresPatch::Sample(const LsmParameters& parameters, const Point2& position) {
  const auto& [r0, r1, a0, a1, a2, b0, b1, b2] = parameters;
  for (std::size_t i = 0; i < n_; ++i) {
    placeX_[i] = a0 + a1 * dx_[i] + a2 * dy_[i];
    placeY_[i] = b0 + b1 * dx_[i] + b2 * dy_[i];
    cols_[i] = placeX_[i] + position.x;
    rows_[i] = placeY_[i] + position.y;
  }
  SampleWithGradients(search_, rows_, cols_, samples_, gCol_, gRow_);
  for (std::size_t i = 0; i < n_; ++i) {
    samples_[i] = r1 * samples_[i] + r0;
    gCol_[i] *= r1;
    gRow_[i] *= r1;
  }
  for (std::size_t i = 0; i < n_; ++i) {
    if (!IsOutside(i)) continue;
    samples_[i] = pattern_[i];
    gCol_[i] = 0.0;
    gRow_[i] = 0.0;
  }
}

// Of a place that is no number, too.
bool LeastSquaresPatch::IsOutside(std::size_t i) const {
  const auto [cols, rows] = search_.GetSize();
  return !(rows_[i] >= 0.0 && rows_[i] < rows && cols_[i] >= 0.0 && cols_[i] < cols);
}

double LeastSquaresPatch::GetScore(double sum, double sumSq) const {
  return CorrelationOfPatch({pattern_.get(), n_}, samples_, sum, sumSq);
}

void LeastSquaresPatch::Adjust(const Adjustment& adjustment, double* x) {
  FillDesign(adjustment.usesPlaces);
  const int n = adjustment.nUnknowns;
  NormalEquations equations;
  RunSimd<SumProducts>(static_cast<const double*>(design_[0]),
                       static_cast<const double*>(observations_.data()), n_, equations.matrix,
                       equations.vector);
  std::fill_n(x, kColumns, 0.0);
  if (equations.AreFinite()) {
    equations.Solve(n, adjustment.isByGaussJordan);
    std::copy_n(equations.vector, n, x);
  } else if (adjustment.isByGaussJordan) {
    LeastSquares(design_.get(), observations_.data(), static_cast<int>(n_), n, x);
  } else {
    LeastSquaresCholesky(design_.get(), observations_.data(), static_cast<int>(n_), n, x);
  }
}

void LeastSquaresPatch::FillDesign(bool usesPlaces) {
  const std::span<const double> offsetX = usesPlaces ? placeX_ : dx_;
  const std::span<const double> offsetY = usesPlaces ? placeY_ : dy_;
  for (std::size_t i = 0; i < n_; ++i) {
    double* const row = design_[i];
    row[0] = 1.0;
    row[1] = samples_[i];
    row[2] = gCol_[i];
    row[3] = offsetX[i] * gCol_[i];
    row[4] = offsetY[i] * gCol_[i];
    row[5] = gRow_[i];
    row[6] = offsetX[i] * gRow_[i];
    row[7] = offsetY[i] * gRow_[i];
    observations_[i] = pattern_[i] - samples_[i];
  }
}

}  // namespace corvane
