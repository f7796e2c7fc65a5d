// The normal equations, and those of the photos alone.

#include "PhotoProject/BundleAdjustment.h"
#include "numerics/MatrixText.h"
#include "numerics/Solvers.h"

namespace corvane {

namespace {

// The block of a matrix from (row, col) on; null if memory can't be had.
OwnedMatrix BlockOf(ConstMatrix m, int row, int nRows, int col, int nCols) {
  Matrix block = nullptr;
  CopySubMatrix(m, row, row + nRows - 1, col, col + nCols - 1, &block);
  return OwnedMatrix(block);
}

// N12 N22^-1, a x b; null if memory can't be had.
OwnedMatrix Eliminator(ConstMatrix normal, int a, int b) {
  const OwnedMatrix n12 = BlockOf(normal, 0, a, a, b);
  const OwnedMatrix n22 = BlockOf(normal, a, b, a, b);
  OwnedMatrix product(AllocMatrix(a, b));
  Matrix inverse = nullptr;
  if (!n12 || !n22 || !product || InvertMatrix(n22.get(), &inverse, b) < 0) return nullptr;
  const OwnedMatrix owner(inverse);
  // MultiplySquare, which gives n x n, is for K alone: with n = a it would leave columns of this product out,
  // or write beyond them.
  MultiplyMatrix(n12.get(), inverse, product.get(), a, b, b);
  return product;
}

}  // namespace

int NormalEquations(ConstMatrix a, const double* l, int rows, int cols, Matrix* normal, double** v) {
  const int result = NormalMatrix(a, rows, cols, normal);
  return result < 0 ? result : NormalVector(a, l, rows, cols, v);
}

int ReducedNormal(ConstMatrix normal, const double* v, int p, int q, Matrix* reduced, double** reducedV) {
  const int a = kPhotoUnknowns * p;
  const int b = kPointUnknowns * q;
  const OwnedMatrix m = Eliminator(normal, a, b);
  const OwnedMatrix n11 = BlockOf(normal, 0, a, 0, a);
  const OwnedMatrix n21 = BlockOf(normal, a, b, 0, a);
  const OwnedMatrix k(AllocMatrix(a, a));
  const OwnedMatrix ofPoints(AllocMatrix(1, a));
  if (!*reduced) *reduced = AllocMatrix(a, a);
  if (!*reducedV) *reducedV = NewArray<double>(a).release();
  if (!m || !n11 || !n21 || !k || !ofPoints || !*reduced || !*reducedV) return -1;
  MultiplySquare(m.get(), n21.get(), k.get(), a, b);
  SubtractMatrix(n11.get(), k.get(), *reduced, a, a);
  MultiplyMatrixVector(m.get(), v + a, ofPoints[0], a, b);
  SubtractMatrix(&v, ofPoints.get(), reducedV, 1, a);
  return 1;
}

int WriteNormals(const BundleSystem& system, int p, int q) {
  Matrix normal = nullptr;
  Matrix reduced = nullptr;
  double* v = nullptr;
  double* reducedV = nullptr;
  int result = NormalEquations(system.a.get(), system.l.get(), system.rows, system.cols, &normal, &v);
  if (result > 0) result = ReducedNormal(normal, v, p, q, &reduced, &reducedV);
  const OwnedMatrix matrices[] = {OwnedMatrix(normal), OwnedMatrix(reduced)};
  const OwnedArray<double> vectors[] = {OwnedArray<double>(v), OwnedArray<double>(reducedV)};
  if (result < 0) return result;
  const int a = kPhotoUnknowns * p;
  result = WriteAugmentedMatrix("NormalMat.txt", system.cols, system.cols, normal, v, ",");
  const int second = WriteAugmentedMatrix("ReducedMat.txt", a, a, reduced, reducedV, ",");
  return result < 0 ? result : second;
}

}  // namespace corvane
