#include "StereoPair/LeastSquaresMatch.h"

#include <algorithm>
#include <cmath>

#include "StereoPair/LeastSquaresPasses.h"
#include "StereoPair/LeastSquaresPatch.h"
#include "StereoPair/WindowBytes.h"
#include "StereoPair/WindowSimilarity.h"
#include "io/NumberText.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

// Takes the unknowns as corrections that come before the parameters' own transformation.
LsmStep Compose(LsmParameters& p, const double* x) {
  const auto [r0, r1, a0, a1, a2, b0, b1, b2] = p;
  p.r0 = x[1] * r0 + x[0] + r0;
  p.r1 = x[1] * r1 + r1;
  const LsmStep step = {x[4] * b0 + x[3] * a0 + x[2], x[7] * b0 + x[6] * a0 + x[5]};
  p.a0 = a0 + step.x;
  p.a1 = x[4] * b1 + x[3] * a1 + a1;
  p.a2 = x[4] * b2 + x[3] * a2 + a2;
  p.b0 = b0 + step.y;
  p.b1 = x[7] * b1 + x[6] * a1 + b1;
  p.b2 = x[7] * b2 + x[6] * a2 + b2;
  return step;
}

// Cut to three decimals; without the sign of a zero.
double Cut(double value) {
  return std::trunc(value * 1000.0) / 1000.0 + 0.0;
}

// "0.900000 0.100000 -0.200000" and an empty line.
void AppendPassLine(std::string& text, double score, const LsmParameters& parameters) {
  AppendFixed(text, Cut(score));
  text += ' ';
  AppendFixed(text, Cut(parameters.a0));
  text += ' ';
  AppendFixed(text, Cut(parameters.b0));
  text += "\n\n";
}

void AppendLine(std::string& text, std::initializer_list<double> numbers) {
  const char* separator = "";
  for (const double number : numbers) {
    text += separator;
    AppendGeneral(text, number, 15);
    separator = " ";
  }
  text += '\n';
}

// "0.9 0.1 -0.2".
void AppendTraceLine(std::string& text, double score, const LsmParameters& parameters) {
  AppendLine(text, {Cut(score), Cut(parameters.a0), Cut(parameters.b0)});
}

// What tells the two forms of matching a template apart.
struct TemplateForm {
  LeastSquaresPatch::Adjustment adjustment;
  LsmStep (*update)(LsmParameters& parameters, const double* x);
  void (*appendPass)(std::string& text, double score, const LsmParameters& parameters);
};

constexpr TemplateForm kComposed = {{false, false, LeastSquaresPatch::kColumns}, Compose, AppendPassLine};
constexpr TemplateForm kAdditive = {
    {true, true, LeastSquaresPatch::kColumns}, AddCorrections, AppendTraceLine};

// From the template's first pixel to its centre.
Point2 CentreOf(const ErdasImg& pattern) {
  const auto [cols, rows] = pattern.GetSize();
  return {cols / 2.0 - 0.5, rows / 2.0 - 0.5};
}

void TakeTemplate(const ErdasImg& pattern, LeastSquaresPatch& patch) {
  const auto [cols, rows] = pattern.GetSize();
  const auto nCols = static_cast<std::size_t>(cols);
  const Point2 centre = CentreOf(pattern);
  for (std::int32_t row = 0; row < rows; ++row) {
    const std::size_t first = static_cast<std::size_t>(row) * nCols;
    CopyBytes(pattern, row, 0, patch.GetPattern().subspan(first, nCols));
    for (std::size_t col = 0; col < nCols; ++col) {
      patch.SetOffset(first + col, static_cast<double>(col) - centre.x, row - centre.y);
    }
  }
}

// What has become of a match when its passes are over.
struct TemplateMatch {
  int pass = 1;
  bool hasConverged = false;
  bool oscillates = false;
  double score = 0.0;
  ShiftRing ring;

  bool EndsHere() const { return hasConverged || oscillates || pass == kLastLsmPass; }
  void Judge(const LsmParameters& parameters, const LsmStep& step) {
    hasConverged = step.IsSmall();
    if (hasConverged) return;
    ring.Store(pass, parameters);
    oscillates = ring.Swings();
  }
  LsmOutcome GetOutcome() const {
    if (hasConverged) return LsmOutcome::Converged;
    if (oscillates) return LsmOutcome::Oscillating;
    return pass == kLastLsmPass ? LsmOutcome::Irregular : LsmOutcome::Diverge;
  }
  void MovePosition(const LsmParameters& parameters, double centreX, Point2& position) const;
};

void TemplateMatch::MovePosition(const LsmParameters& parameters, double centreX, Point2& position) const {
  if (hasConverged || pass == kLastLsmPass) {
    position.x += parameters.a0;
    position.y += parameters.b0;
  } else if (oscillates) {
    ring.MovePosition(centreX, position);
  }
}

TemplateMatch RunPasses(LeastSquaresPatch& patch, const ErdasImg& pattern, const Point2& position,
                        LsmParameters& parameters, const TemplateForm& form, std::string* text) {
  TemplateMatch match;
  for (;; ++match.pass) {
    patch.Sample(parameters, position);
    match.score = patch.GetScore(pattern.m_pixelSum, pattern.m_pixelSumSq);
    if (match.EndsHere()) return match;
    double x[LeastSquaresPatch::kColumns];
    patch.Adjust(form.adjustment, x);
    const LsmStep step = form.update(parameters, x);
    if (text) form.appendPass(*text, match.score, parameters);
    if (HasDiverged(parameters, step)) {
      match.score = 0.0;
      return match;
    }
    match.Judge(parameters, step);
  }
}

double MatchTemplate(const ErdasImg& search, ErdasImg& pattern, Point2& position, LsmParameters& parameters,
                     const TemplateForm& form, std::string* text) {
  if (!CanMatchAt(search, position) || !pattern.HasPixels()) return -1.0;
  const auto [cols, rows] = pattern.GetSize();
  LeastSquaresPatch patch(search, std::int64_t{cols} * rows);
  if (!patch.HasRoom()) return -1.0;
  TakeTemplate(pattern, patch);
  if (pattern.m_pixelSumSq < 0.0) pattern.ComputeSums();
  const TemplateMatch match = RunPasses(patch, pattern, position, parameters, form, text);
  match.MovePosition(parameters, CentreOf(pattern).x, position);
  if (text) *text += std::string(LsmOutcomeName(match.GetOutcome())) + '\n';
  return match.score;
}

// Whether numbers, one at least, differ by no more than bilinear samples of one grey value may.
bool AreFlat(std::span<const double> samples) {
  constexpr double kRounding = 1e-12;
  const auto [least, most] = std::minmax_element(samples.begin(), samples.end());
  return *most - *least <= kRounding * std::max(std::fabs(*least), std::fabs(*most));
}

template <typename Number>
double Correlate(std::span<const Number> pattern, std::span<const double> samples, double sum, double sumSq) {
  const std::size_t n = std::min(pattern.size(), samples.size());
  if (n == 0) return 0.0;
  CorrelationSums sums = {.n = static_cast<double>(n), .a = sum, .aa = sumSq};
  for (std::size_t i = 0; i < n; ++i) {
    sums.b += samples[i];
    sums.bb += samples[i] * samples[i];
    sums.ab += pattern[i] * samples[i];
  }
  if (AreFlat(samples.first(n))) sums.bb = sums.b * sums.b / sums.n;
  return sums.GetCoefficient();
}

}  // namespace

const char* LsmOutcomeName(LsmOutcome outcome) {
  constexpr const char* kNames[] = {"Converged", "Oscillating", "Irregular", "Diverge"};
  return kNames[static_cast<std::size_t>(outcome)];
}

double CorrelationOfPatch(std::span<const std::uint8_t> pattern, std::span<const double> samples, double sum,
                          double sumSq) {
  return Correlate(pattern, samples, sum, sumSq);
}

double CorrelationOfPatchDoubles(std::span<const double> pattern, std::span<const double> samples, double sum,
                                 double sumSq) {
  return Correlate(pattern, samples, sum, sumSq);
}

double LeastSquaresMatch(const ErdasImg& search, ErdasImg& pattern, Point2& position,
                         LsmParameters& parameters, std::string* log) {
  return MatchTemplate(search, pattern, position, parameters, kComposed, log);
}

double LeastSquaresMatchTemplate(const ErdasImg& search, ErdasImg& pattern, Point2& position,
                                 LsmParameters& parameters, std::string* log) {
  std::string text;
  const double score = MatchTemplate(search, pattern, position, parameters, kAdditive, &text);
  if (text.empty()) return score;
  AppendLine(text, {position.x, position.y});
  if (log) {
    *log += text;
  } else {
    Ui().Trace(text);
  }
  return score;
}

}  // namespace corvane
