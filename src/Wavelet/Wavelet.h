#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace corvane {

// A one-dimensional discrete wavelet transform with the filters of Daubechies: the signal is extended at its
// ends by its first and last sample, filtered by a low-pass and a high-pass, and every second sample is kept.
//
// One level gives the approximation and behind it the detail, both of the same size, which is that of half
// the signal and a little more for longer filters. Several levels decompose the approximation again and
// again; `coefficients` then holds the coarsest approximation and the details from the coarsest level to the
// finest, and `lengths` their sizes in the same order, so that it has one entry more than there are levels.
//
//   Wavelet wavelet;
//   wavelet.SetFilter("db1");
//   wavelet.Decompose(std::vector<double>{1, 1, 3, 3}, result);  // sqrt(2), 3 sqrt(2), 0, 0
//
// All transforms return 1; -1, with empty results, without a filter, for an empty signal and for numbers that
// fit no signal. A result may be the vector that the input stands in.
class Wavelet {
 public:
  // From here on more levels no longer make a signal shorter.
  static constexpr int kMostLevels = 64;

  virtual ~Wavelet() = default;

  // 1 for the names of filters that SetFilter takes, "db1" and "db2"; -1 for others.
  // Kept: -1 for "db3", too, whose filter is there.
  static int IsKnown(std::string_view name);

  // Lets the filters go and takes those of that name. The result of IsKnown; without filters if that is -1.
  int SetFilter(std::string_view name);

  // One level: (n - 1 + m_length) / 2 coefficients of either kind for n samples.
  int Decompose(std::span<const std::uint8_t> signal, std::vector<double>& result) const;
  int Decompose(std::span<const double> signal, std::vector<double>& result) const;

  // The signal of one level's coefficients: n - m_length + 2 samples, which for a signal of odd length is one
  // more than it had.
  int Reconstruct(std::span<const double> coefficients, std::vector<double>& result) const;

  // Also -1 for less than one level, and for more than kMostLevels.
  int DecomposeLevels(std::span<const std::uint8_t> signal, std::vector<double>& coefficients,
                      std::vector<std::int32_t>& lengths, int levels) const;
  int DecomposeLevels(std::span<const double> signal, std::vector<double>& coefficients,
                      std::vector<std::int32_t>& lengths, int levels) const;
  int ReconstructLevels(std::span<const double> coefficients, std::span<const std::int32_t> lengths,
                        std::vector<double>& result, int levels) const;

  // The signal without what its details of these levels tell: as many samples as it has. An empty `result` is
  // given that size; of another one only as much is overwritten as it has room for. On failure it stays.
  int ApproximateBytes(std::span<const std::uint8_t> bytes, std::vector<double>& result, int levels) const;

  int m_length = 0;           // of each filter
  std::vector<double> m_loD;  // decomposition, low-pass
  std::vector<double> m_hiD;  // decomposition, high-pass
  std::vector<double> m_loR;  // reconstruction, low-pass
  std::vector<double> m_hiR;  // reconstruction, high-pass
};

}  // namespace corvane
