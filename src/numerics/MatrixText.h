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

// The pieces of such texts, for files that are made of rows of several kinds.

// How an exact zero is written: "0" or, if negative, "-0"; or as any other number.
enum class Zeros { Short, Long };

// Appends one number. A NaN has no sign here, as not every machine gives the same one to the NaN of the same
// operation.
void AppendElement(std::string& text, double value, Zeros zeros);

// Appends a line of WriteMatrix; there is at least one column.
void AppendMatrixRow(std::string& text, const double* row, int cols, std::string_view sep);

}  // namespace corvane
