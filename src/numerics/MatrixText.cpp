#include "numerics/MatrixText.h"

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "io/NumberText.h"
#include "io/OutputFile.h"

namespace corvane {

namespace {

void AppendInner(std::string& text, const double* row, int count, Zeros zeros, std::string_view sep) {
  const std::string zero = "0" + std::string(sep) + " ";
  for (int j = 0; j < count; ++j) {
    if (row[j] == 0.0 && zeros == Zeros::Short && !std::signbit(row[j])) {  // nearly all of a design matrix
      text += zero;
      continue;
    }
    AppendElement(text, row[j], zeros);
    text += sep;
    text += ' ';
  }
}

std::string Header(int rows, std::int64_t cols, std::string_view sep) {
  std::string text;
  AppendInt(text, rows);
  text += sep;
  AppendInt(text, cols);
  return text += '\n';
}

// A line a row, appended by `appendRow(text, i)`.
template <typename AppendRow>
int WriteLines(const std::string& path, std::string text, int rows, AppendRow appendRow) {
  OutputFile file(path);
  if (!file.IsOpen()) return -1;
  for (int i = 0; i < rows; ++i) {
    appendRow(text, i);
    text += '\n';
    if (!file.Write(text)) return -1;
    text.clear();
  }
  file.Write(text);
  return file.Commit() ? 1 : -1;
}

// A matrix without columns has a header, but no lines.
int WritePlain(const std::string& path, std::string header, int rows, int cols, ConstMatrix m, Zeros inner,
               Zeros last, std::string_view sep) {
  return WriteLines(path, std::move(header), cols > 0 ? rows : 0, [&](std::string& text, int i) {
    AppendInner(text, m[i], cols - 1, inner, sep);
    AppendElement(text, m[i][cols - 1], last);
  });
}

}  // namespace

void AppendElement(std::string& text, double value, Zeros zeros) {
  if (std::isnan(value)) {
    text += "nan";
    return;
  }
  AppendFixed(text, value, value == 0.0 && zeros == Zeros::Short ? 0 : 6);
}

void AppendMatrixRow(std::string& text, const double* row, int cols, std::string_view sep) {
  AppendInner(text, row, cols - 1, Zeros::Short, sep);
  AppendElement(text, row[cols - 1], Zeros::Long);
  text += '\n';
}

int WriteMatrixBare(const std::string& path, int rows, int cols, ConstMatrix m, std::string_view sep) {
  return WritePlain(path, "", rows, cols, m, Zeros::Long, Zeros::Short, sep);
}

int WriteAugmentedMatrix(const std::string& path, int rows, int cols, ConstMatrix m, const double* rhs,
                         std::string_view sep) {
  const std::string header = Header(rows, std::int64_t{cols} + 1, sep);
  return WriteLines(path, header, rows, [&](std::string& text, int i) {
    AppendInner(text, m[i], cols, Zeros::Short, sep);
    AppendElement(text, rhs[i], Zeros::Short);
  });
}

int WriteMatrix(const std::string& path, int rows, int cols, ConstMatrix m, std::string_view sep) {
  return WritePlain(path, Header(rows, cols, sep), rows, cols, m, Zeros::Short, Zeros::Long, sep);
}

}  // namespace corvane
