#pragma once

#include <string>
#include <string_view>

#include "numerics/Matrix.h"

namespace corvane {

// Plain dumps of matrices (rows x cols), a line a row, numbers as "%f" with `sep` and a blank between them.
// An exact zero is "0" ("-0" if negative) where told, so that mostly empty matrices read well; what is not
// finite is "inf", "-inf" or, whatever its sign, "nan". The files appear whole or not at all. Results: 1; -1
// if the file can't be written.

// No header line. Zeros are "0.000000", in the last column "0".
int WriteMatrixBare(const std::string& path, int rows, int cols, ConstMatrix m, std::string_view sep);

// The header line is "<rows><sep><cols + 1>". Each row ends with the element of rhs (rows). Zeros are "0".
int WriteAugmentedMatrix(const std::string& path, int rows, int cols, ConstMatrix m, const double* rhs,
                         std::string_view sep);

// The header line is "<rows><sep><cols>". Zeros are "0", in the last column "0.000000".
int WriteMatrix(const std::string& path, int rows, int cols, ConstMatrix m, std::string_view sep);

}  // namespace corvane
