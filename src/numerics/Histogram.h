#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>
#include <vector>

#include "numerics/Truncate.h"

namespace corvane {

// Counts of values in bins of one width: bin i reaches from binStarts[i], which belongs to it, to the next.
struct Histogram {
  static constexpr std::int32_t kMaxBins = 10000000;

  std::vector<double> binStarts;
  std::vector<std::int32_t> counts;

  std::int32_t GetBinCount() const { return static_cast<std::int32_t>(binStarts.size()); }
};

// int((max - min) / binSize) + 1 bins from `min` on, all empty. 1; -1, with the histogram empty: the bins
// are no number, not a positive one or more than kMaxBins, their width is no positive number, or memory runs
// out.
inline int MakeBins(double min, double max, double binSize, Histogram& histogram) {
  histogram = {};
  const std::optional<std::int32_t> whole = TruncateToInt((max - min) / binSize);
  if (!whole || *whole < 0 || *whole >= Histogram::kMaxBins) return -1;
  if (!(binSize > 0.0 && std::isfinite(binSize))) return -1;
  const auto nBins = static_cast<std::size_t>(*whole) + 1;
  try {
    histogram.binStarts.reserve(nBins);
    histogram.counts.assign(nBins, 0);
  } catch (const std::bad_alloc&) {
    histogram = {};
    return -1;
  }
  for (std::size_t i = 0; i < nBins; ++i)
    histogram.binStarts.push_back(min + static_cast<double>(i) * binSize);
  return 1;
}

// The histogram of value(item) over all items, a value v in bin int((v - min) / binSize). What lies in no
// bin, or is no number, is not counted. Where `min` and `max` are both 0, they are the least and the greatest
// value. Results as MakeBins; -1 also if there is no such value.
template <typename Items, typename Value>
int MakeHistogram(const Items& items, Value value, double min, double max, double binSize,
                  Histogram& histogram) {
  if (min == 0.0 && max == 0.0) {
    min = std::numeric_limits<double>::infinity();
    max = -min;
    for (const auto& item : items) {
      const double number = value(item);
      min = number < min ? number : min;  // not-a-number is neither
      max = number > max ? number : max;
    }
  }
  if (MakeBins(min, max, binSize, histogram) < 0) return -1;
  for (const auto& item : items) {
    const std::optional<std::int32_t> bin = TruncateToInt((value(item) - min) / binSize);
    if (bin && *bin >= 0 && *bin < histogram.GetBinCount())
      ++histogram.counts[static_cast<std::size_t>(*bin)];
  }
  return 1;
}

// The same between the least and the greatest value.
template <typename Items, typename Value>
int MakeHistogram(const Items& items, Value value, double binSize, Histogram& histogram) {
  return MakeHistogram(items, value, 0.0, 0.0, binSize, histogram);
}

// What HistogramThreshold leaves where it finds none.
constexpr double kNoThreshold = std::numeric_limits<double>::max();

// Adds counts from the top bin down until they reach int(n * fraction) of `n` values, and gives the lower
// edge of the bin reached; `threshold` stays as it is if they never do. Returns the sum; -1 for a histogram
// without bins, or without as many counts as bins.
inline std::int64_t HistogramThreshold(std::int32_t n, const Histogram& histogram, double fraction,
                                       double& threshold) {
  if (histogram.counts.empty() || histogram.counts.size() != histogram.binStarts.size()) return -1;
  const std::int64_t target = TruncateTo64(n * fraction);
  std::int64_t sum = 0;
  for (std::size_t i = histogram.counts.size(); i-- > 0;) {
    sum += histogram.counts[i];  // Kept: before the test, so that a target of 0 is reached in the top bin
    if (sum < target) continue;
    threshold = histogram.binStarts[i];
    break;
  }
  return sum;
}

// The same, but where the counts never reach the target, the threshold is the edge of the first bin, at which
// the walk ends.
inline std::int64_t HistogramThresh(std::int32_t n, const Histogram& histogram, double fraction,
                                    double& threshold) {
  double found = histogram.binStarts.empty() ? threshold : histogram.binStarts.front();
  const std::int64_t sum = HistogramThreshold(n, histogram, fraction, found);
  if (sum >= 0) threshold = found;
  return sum;
}

// The entropy of the distribution of `n` values over the bins, in nats: log(n) less the sum of c * log(c)
// over bins that are not empty, divided by n. Not a number without values.
template <typename Counts>
double HistogramEntropy(std::int64_t n, const Counts& counts) {
  double sum = 0.0;
  for (const auto count : counts) {
    const double number = static_cast<double>(count);
    if (count > 0) sum += number * std::log(number);
  }
  return std::log(static_cast<double>(n)) - sum / static_cast<double>(n);
}

}  // namespace corvane
