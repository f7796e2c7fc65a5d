#pragma once

#include <cstdint>

namespace corvane {

// Arrays whose indices run from a low to a high bound, both included, as the caller wants them: the pointers
// are shifted so that v[nl] is the first element. Elements are not set. Nothing is padded; high = low - 1 is
// an empty range. If memory can't be had, or a high bound is lower than that, the program ends through
// nrerror with "allocation failure in <name>()". Each kind has its release, which takes the pointer and the
// same low bounds.

// Writes the text to the standard error stream, framed by two lines of its own, and ends the program with
// exit status 1.
[[noreturn]] void nrerror(const char* text);

// v[nl..nh], of floats, ints, bytes, 32-bit unsigned numbers and doubles.
float* vector(std::int64_t nl, std::int64_t nh);
int* ivector(std::int64_t nl, std::int64_t nh);
std::uint8_t* cvector(std::int64_t nl, std::int64_t nh);
std::uint32_t* lvector(std::int64_t nl, std::int64_t nh);
double* dvector(std::int64_t nl, std::int64_t nh);

// Row pointers over one block: m[nrl..nrh][ncl..nch]. All three fail as "matrix", with 1 for the table and 2
// for the block: "allocation failure 1 in matrix()".
float** matrix(std::int64_t nrl, std::int64_t nrh, std::int64_t ncl, std::int64_t nch);
double** dmatrix(std::int64_t nrl, std::int64_t nrh, std::int64_t ncl, std::int64_t nch);
int** imatrix(std::int64_t nrl, std::int64_t nrh, std::int64_t ncl, std::int64_t nch);

// A table of row pointers into a's block: a[oldrl..oldrh][oldcl..oldch] is seen as [newrl..][newcl..].
float** submatrix(float** a, std::int64_t oldrl, std::int64_t oldrh, std::int64_t oldcl, std::int64_t oldch,
                  std::int64_t newrl, std::int64_t newcl);

// A table of row pointers over the flat block a, row by row, seen as [nrl..nrh][ncl..nch].
float** convert_matrix(float* a, std::int64_t nrl, std::int64_t nrh, std::int64_t ncl, std::int64_t nch);

// t[nrl..nrh][ncl..nch][ndl..ndh]: a table of rows, a table of columns, and one block, which fail
// with 1, 2 and 3.
float*** f3tensor(std::int64_t nrl, std::int64_t nrh, std::int64_t ncl, std::int64_t nch, std::int64_t ndl,
                  std::int64_t ndh);

// The releases. Those of submatrix and convert_matrix free their table only.
void free_vector(float* v, std::int64_t nl);
void free_ivector(int* v, std::int64_t nl);
void free_cvector(std::uint8_t* v, std::int64_t nl);
void free_lvector(std::uint32_t* v, std::int64_t nl);
void free_dvector(double* v, std::int64_t nl);
void free_matrix(float** m, std::int64_t nrl, std::int64_t ncl);
void free_dmatrix(double** m, std::int64_t nrl, std::int64_t ncl);
void free_imatrix(int** m, std::int64_t nrl, std::int64_t ncl);
void free_submatrix(float** m, std::int64_t nrl, std::int64_t ncl);
void free_convert_matrix(float** m, std::int64_t nrl, std::int64_t ncl);
void free_f3tensor(float*** t, std::int64_t nrl, std::int64_t ncl, std::int64_t ndl);

}  // namespace corvane
