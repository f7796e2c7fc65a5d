#include "Wavelet/Wavelet.h"

#include <algorithm>

namespace corvane {

namespace {

struct BaseFilter {
  std::string_view name;
  std::vector<double> taps;
};

const std::vector<double>* FindBaseFilter(std::string_view name) {
  static const BaseFilter kFilters[] = {
      {"db1", {0.70710678118655, 0.70710678118655}},
      {"db2", {-0.12940952255092, 0.22414386804186, 0.83651630373747, 0.48296291314469}},
      {"db3",
       {0.0352262918821, -0.08544127388224, -0.13501102001039, 0.45987750211933, 0.80689150931334,
        0.33267055295096}},
  };
  const auto found = std::ranges::find(kFilters, name, &BaseFilter::name);
  return found == std::end(kFilters) ? nullptr : &found->taps;
}

// The samples as doubles, with the first one repeated `nLeft` times in front and the last one `nRight` times
// behind.
template <typename Sample>
std::vector<double> Extended(std::span<const Sample> signal, std::size_t nLeft, std::size_t nRight) {
  std::vector<double> extended(nLeft, static_cast<double>(signal.front()));
  extended.reserve(nLeft + signal.size() + nRight);
  extended.insert(extended.end(), signal.begin(), signal.end());
  extended.insert(extended.end(), nRight, static_cast<double>(signal.back()));
  return extended;
}

template <typename Sample>
int DecomposeSamples(const Wavelet& wavelet, std::span<const Sample> signal, std::vector<double>& result) {
  if (wavelet.m_length < 2 || signal.empty()) {
    result.clear();
    return -1;
  }
  const auto length = static_cast<std::size_t>(wavelet.m_length);
  const std::size_t n = signal.size();
  const std::vector<double> buffer = Extended(signal, length - 2, n % 2 + length - 2);
  const std::size_t half = (n - 1 + length) / 2;
  std::vector<double> coefficients(2 * half);
  for (std::size_t i = 0; i < half; ++i) {
    for (std::size_t j = 0; j < length; ++j) {
      coefficients[i] += buffer[2 * i + j] * wavelet.m_loD[length - j - 1];
      coefficients[i + half] += buffer[2 * i + j] * wavelet.m_hiD[length - j - 1];
    }
  }
  result = std::move(coefficients);
  return 1;
}

template <typename Sample>
int DecomposeSampleLevels(const Wavelet& wavelet, std::span<const Sample> signal,
                          std::vector<double>& coefficients, std::vector<std::int32_t>& lengths, int levels) {
  std::vector<double> level;
  const bool isInRange = levels >= 1 && levels <= Wavelet::kMostLevels;
  if (!isInRange || DecomposeSamples(wavelet, signal, level) < 0) {
    coefficients.clear();
    lengths.clear();
    return -1;
  }

  std::vector<double> all;                   // the approximation first
  std::vector<std::vector<double>> details;  // the finest first
  for (int i = levels; i >= 1; --i) {
    all.assign(level.begin(), level.begin() + std::ssize(level) / 2);
    details.emplace_back(level.begin() + std::ssize(level) / 2, level.end());
    if (i > 1) wavelet.Decompose(all, level);
  }
  lengths = {static_cast<std::int32_t>(all.size())};
  for (auto detail = details.rbegin(); detail != details.rend(); ++detail) {
    lengths.push_back(static_cast<std::int32_t>(detail->size()));
    all.insert(all.end(), detail->begin(), detail->end());
  }
  coefficients = std::move(all);
  return 1;
}

}  // namespace

int Wavelet::IsKnown(std::string_view name) {
  return name == "db1" || name == "db2" ? 1 : -1;
}

int Wavelet::SetFilter(std::string_view name) {
  *this = Wavelet();
  const int status = IsKnown(name);
  const std::vector<double>* const base = status == 1 ? FindBaseFilter(name) : nullptr;
  if (!base) return -1;
  const std::size_t n = base->size();
  m_length = static_cast<int>(n);
  m_loD = *base;
  for (std::size_t i = 1; i <= n; ++i) {
    const double sign = i % 2 == 0 ? 1.0 : -1.0;
    m_hiD.push_back(sign * m_loD[n - i]);
    m_loR.push_back(m_loD[n - i]);
    m_hiR.push_back(-sign * m_loD[i - 1]);
  }
  return status;
}

int Wavelet::Decompose(std::span<const std::uint8_t> signal, std::vector<double>& result) const {
  return DecomposeSamples(*this, signal, result);
}

int Wavelet::Decompose(std::span<const double> signal, std::vector<double>& result) const {
  return DecomposeSamples(*this, signal, result);
}

int Wavelet::Reconstruct(std::span<const double> coefficients, std::vector<double>& result) const {
  const auto length = static_cast<std::size_t>(m_length);
  const std::size_t count = coefficients.size();
  const std::size_t half = count / 2;
  if (m_length < 2 || half == 0 || count + 2 <= length) {
    result.clear();
    return -1;
  }
  // A zero in front of each coefficient and one behind the last; an odd count is given one more.
  std::vector<double> approximation(count + 1);
  std::vector<double> detail(count + 1);
  for (std::size_t i = 0; i < half; ++i) {
    approximation[2 * i + 1] = coefficients[i];
    detail[2 * i + 1] = coefficients[half + i];
  }
  std::vector<double> signal(count + 2 - length);
  for (std::size_t i = 0; i < signal.size(); ++i) {
    for (std::size_t j = 0; j < length; ++j) {
      signal[i] += m_loR[length - j - 1] * approximation[i + j] + m_hiR[length - j - 1] * detail[i + j];
    }
  }
  result = std::move(signal);
  return 1;
}

int Wavelet::DecomposeLevels(std::span<const std::uint8_t> signal, std::vector<double>& coefficients,
                             std::vector<std::int32_t>& lengths, int levels) const {
  return DecomposeSampleLevels(*this, signal, coefficients, lengths, levels);
}

int Wavelet::DecomposeLevels(std::span<const double> signal, std::vector<double>& coefficients,
                             std::vector<std::int32_t>& lengths, int levels) const {
  return DecomposeSampleLevels(*this, signal, coefficients, lengths, levels);
}

int Wavelet::ReconstructLevels(std::span<const double> coefficients, std::span<const std::int32_t> lengths,
                               std::vector<double>& result, int levels) const {
  std::vector<double> left(coefficients.begin(), coefficients.end());
  std::vector<double> signal;
  result.clear();
  if (levels < 1 || levels > kMostLevels || std::ssize(lengths) <= levels) return -1;
  std::size_t offset = 0;
  for (std::size_t i = 1; i <= static_cast<std::size_t>(levels); ++i) {
    if (lengths[i] < 1) return -1;
    const std::size_t size = 2 * static_cast<std::size_t>(lengths[i]);
    if (size > left.size() - offset) return -1;
    if (Reconstruct(std::span(left).subspan(offset, size), signal) < 0) return -1;
    if (i == static_cast<std::size_t>(levels)) break;
    // The signal becomes the approximation that stands in front of the next details.
    if (lengths[i + 1] < 1 || std::ssize(signal) < lengths[i + 1]) return -1;
    const auto next = static_cast<std::size_t>(lengths[i + 1]);
    offset += size - next;
    std::copy_n(signal.begin(), next, left.begin() + static_cast<std::ptrdiff_t>(offset));
  }
  result = std::move(signal);
  return 1;
}

int Wavelet::ApproximateBytes(std::span<const std::uint8_t> bytes, std::vector<double>& result,
                              int levels) const {
  std::vector<double> coefficients;
  std::vector<std::int32_t> lengths;
  std::vector<double> signal;
  if (DecomposeLevels(bytes, coefficients, lengths, levels) < 0) return -1;
  std::fill(coefficients.begin() + lengths[0], coefficients.end(), 0.0);
  if (ReconstructLevels(coefficients, lengths, signal, levels) < 0) return -1;
  if (result.empty()) result.resize(bytes.size());
  std::copy_n(signal.begin(), std::min({result.size(), bytes.size(), signal.size()}), result.begin());
  return 1;
}

}  // namespace corvane
