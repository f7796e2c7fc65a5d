#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "PlainCoefficient.h"
#include "StereoPair/LeastSquaresMatch.h"
#include "numerics/LeastSquares.h"
#include "numerics/Matrix.h"

namespace corvane {

// Least-squares matching as it is defined: pixel by pixel, with the whole design, and nothing shared between
// the forms but the samples of an image and the solvers.

struct PlainPixel {
  double dx;
  double dy;
  std::uint8_t value;
};

inline std::vector<PlainPixel> PlainPixels(const ErdasImg& pattern) {
  const auto [cols, rows] = pattern.GetSize();
  std::vector<PlainPixel> pixels;
  for (int row = 0; row < rows; ++row) {
    for (int col = 0; col < cols; ++col) {
      const std::uint8_t value = pattern.GetBands()[0][row * cols + col];
      pixels.push_back({col - (cols / 2.0 - 0.5), row - (rows / 2.0 - 0.5), value});
    }
  }
  return pixels;
}

struct PlainForm {
  bool usesPlaces = false;
  bool isComposed = true;  // with Cholesky; otherwise added, with Gauss-Jordan
  int nUnknowns = 8;
};

// The unknowns of one pass, and its score.
inline double PlainPass(const ErdasImg& search, const std::vector<PlainPixel>& pixels, const Point2& at,
                        const LsmParameters& p, const PlainForm& form, double* x) {
  const int m = static_cast<int>(pixels.size());
  const OwnedMatrix design(AllocMatrix(m, form.nUnknowns));
  std::vector<double> l, pattern, values;
  for (int i = 0; i < m; ++i) {
    const auto [dx, dy, value] = pixels[static_cast<std::size_t>(i)];
    const double placeX = p.a0 + p.a1 * dx + p.a2 * dy;
    const double placeY = p.b0 + p.b1 * dx + p.b2 * dy;
    const double X = placeX + at.x;
    const double Y = placeY + at.y;
    double v = value, gCol = 0.0, gRow = 0.0;
    if (Y >= 0.0 && Y < search.GetSize().cy && X >= 0.0 && X < search.GetSize().cx) {
      search.GetPixelBilinear(0, Y, X, v);
      search.GetGradientBilinear(0, Y, X, gCol, gRow);
      v = p.r1 * v + p.r0;
      gCol *= p.r1;
      gRow *= p.r1;
    }
    const double fx = form.usesPlaces ? placeX : dx;
    const double fy = form.usesPlaces ? placeY : dy;
    const double row[8] = {1.0, v, gCol, fx * gCol, fy * gCol, gRow, fx * gRow, fy * gRow};
    std::copy_n(row, form.nUnknowns, design[i]);
    l.push_back(value - v);
    pattern.push_back(value);
    values.push_back(v);
  }
  std::fill_n(x, 8, 0.0);
  const auto solve = form.isComposed ? LeastSquaresCholesky : LeastSquares;
  solve(design.get(), l.data(), m, form.nUnknowns, x);
  return PlainCoefficient(pattern, values);
}

// The steps of a0 and b0.
inline Point2 PlainUpdate(LsmParameters& p, const double* x, bool isComposed) {
  const LsmParameters o = p;
  if (!isComposed) {
    p = {o.r0 + x[0], o.r1 + x[1], o.a0 + x[2], o.a1 + x[3],
         o.a2 + x[4], o.b0 + x[5], o.b1 + x[6], o.b2 + x[7]};
    return {x[2], x[5]};
  }
  const double da0 = x[4] * o.b0 + x[3] * o.a0 + x[2];
  const double db0 = x[7] * o.b0 + x[6] * o.a0 + x[5];
  p = {x[1] * o.r0 + x[0] + o.r0,
       x[1] * o.r1 + o.r1,
       o.a0 + da0,
       x[4] * o.b1 + x[3] * o.a1 + o.a1,
       x[4] * o.b2 + x[3] * o.a2 + o.a2,
       o.b0 + db0,
       x[7] * o.b1 + x[6] * o.a1 + o.b1,
       x[7] * o.b2 + x[6] * o.a2 + o.b2};
  return {da0, db0};
}

struct PlainMatch {
  double score = 0.0;
  std::string word;
  Point2 position;
  LsmParameters parameters;
  int nAdjusted = 0;  // passes
};

// Both forms of matching a template, `at` being a place where a match may begin.
inline PlainMatch MatchPlainly(const ErdasImg& search, const ErdasImg& pattern, const Point2& at,
                               const LsmParameters& start, const PlainForm& form) {
  const std::vector<PlainPixel> pixels = PlainPixels(pattern);
  PlainMatch match;
  match.position = at;
  match.parameters = start;
  LsmParameters& p = match.parameters;
  double A[4] = {}, B[4] = {}, x[8];
  bool converged = false, oscillating = false;
  for (int pass = 1; match.word.empty(); ++pass) {
    match.score = PlainPass(search, pixels, at, p, form, x);
    if (converged || oscillating || pass == 19) {
      match.word = converged ? "Converged" : oscillating ? "Oscillating" : "Irregular";
      if (converged || pass == 19) {
        match.position = {at.x + p.a0, at.y + p.b0};
      } else {
        const double cx = pattern.GetSize().cx / 2.0 - 0.5;
        match.position.x += std::fabs(A[3]) < std::fabs(cx) ? A[3] : cx;
        match.position.x += std::fabs(B[3]) < std::fabs(A[0]) ? B[3] : A[0];
      }
      break;
    }
    const Point2 step = PlainUpdate(p, x, form.isComposed);
    ++match.nAdjusted;
    if (std::fabs(step.x) < 0.15 && std::fabs(step.y) < 0.15) {
      converged = true;
    } else if (std::fabs(p.a0) > 10.0 || std::fabs(p.b0) > 10.0 || std::fabs(step.x) > 10.0 ||
               std::fabs(step.y) > 10.0) {
      match.word = "Diverge";
      match.score = 0.0;
    } else {
      A[pass % 4] = p.a0;
      B[pass % 4] = p.b0;
      oscillating = std::fabs(A[2] - A[0]) < 0.15 && std::fabs(A[3] - A[1]) < 0.15 &&
                    std::fabs(B[2] - B[0]) < 0.15 && std::fabs(B[3] - B[1]) < 0.15 &&
                    (std::fabs(A[2] - A[3]) > 0.3 || std::fabs(B[2] - B[3]) > 0.3);
    }
  }
  return match;
}

}  // namespace corvane
