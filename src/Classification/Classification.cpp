#include "Classification/Classification.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <thread>

#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "numerics/Truncate.h"

namespace corvane {

namespace {

constexpr const char* kLogFile = "isoDataLog.txt";
constexpr std::chrono::milliseconds kDumpPause{100};
constexpr std::int32_t kNoClass = -1;

std::int64_t PixelCount(const ErdasHeader& header) {
  return std::int64_t{std::max(header.rows, 0)} * std::max(header.cols, 0);
}

// The bytes of a band that are pixels; fewer than the image has pixels where the band is shorter, and what is
// not there counts as 0.
std::span<const std::uint8_t> BytePixels(const ErdasImg& image, std::int64_t band) {
  const std::span<const std::uint8_t> bytes = image.GetBands().GetBand(band);
  return bytes.first(std::min(bytes.size(), static_cast<std::size_t>(PixelCount(*image.GetHeader()))));
}

// Adds to the counts. A table for each place in a group of eight, as a count that is changed again at once
// has to wait for the change before.
void CountBytes(std::span<const std::uint8_t> bytes, std::array<std::uint32_t, 256>& counts) {
  constexpr std::size_t kTables = 8;
  std::array<std::array<std::uint32_t, 256>, kTables> tables = {};
  std::size_t i = 0;
  for (; i + kTables <= bytes.size(); i += kTables) {
    std::uint64_t group;
    std::memcpy(&group, &bytes[i], sizeof group);
    for (std::size_t k = 0; k < kTables; ++k) ++tables[k][(group >> (8 * k)) & 0xFF];
  }
  for (; i < bytes.size(); ++i) ++counts[bytes[i]];
  for (const auto& table : tables) {
    for (std::size_t level = 0; level < table.size(); ++level) counts[level] += table[level];
  }
}

// Labels the pixels with the low bytes of their levels' labels. Two at a time through a table of all pairs:
// of either byte order, as both bytes of a pair are treated alike.
void LabelBytes(std::span<const std::uint8_t> pixels, const Classification::Labels& labels,
                std::span<std::uint8_t> classes) {
  const auto classOf = [&](std::size_t level) { return static_cast<std::uint8_t>(labels[level]); };
  std::array<std::uint16_t, 65536> classesOf;
  for (std::size_t pair = 0; pair < classesOf.size(); ++pair) {
    classesOf[pair] = static_cast<std::uint16_t>(classOf(pair >> 8) << 8 | classOf(pair & 0xFF));
  }
  std::size_t i = 0;
  for (; i + 2 <= pixels.size(); i += 2) {
    std::uint16_t pair;
    std::memcpy(&pair, &pixels[i], sizeof pair);
    std::memcpy(&classes[i], &classesOf[pair], sizeof pair);
  }
  for (; i < pixels.size(); ++i) classes[i] = classOf(pixels[i]);
}

// The last level of a class from its own center and that of the next one.
std::int64_t BoundBetween(double center, double next) {
  const double bound = (center + next) / 2 + 0.5;
  return std::isnan(bound) ? -1 : TruncateSaturated(bound);
}

std::uint32_t WrappedProduct(std::int32_t a, std::size_t b) {
  return static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b);
}

std::int32_t WrappedSum(std::int32_t a, std::uint32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + b);
}

}  // namespace

Classification::Classification(ErdasImg* image) : m_source(image) {
  if (!image) return;
  m_header = image->GetHeader();
  const auto nBands = static_cast<std::size_t>(std::max(image->GetBandCount(), 1));
  m_histogram.resize(nBands, Counts{});
  m_labels.resize(nBands);
  for (Labels& labels : m_labels) labels.fill(kNoClass);
}

void Classification::ComputeHistogram() {
  for (std::size_t band = 0; band < m_histogram.size(); ++band) {
    std::array<std::uint32_t, kLevels> counts = {};
    CountBytes(BytePixels(*m_source, static_cast<std::int64_t>(band)), counts);
    Counts& histogram = m_histogram[band];
    std::ranges::transform(histogram, counts, histogram.begin(), WrappedSum);
  }
}

int Classification::FindPeaks(std::span<const std::int32_t> histogram, std::span<double> centers) const {
  const std::size_t n = histogram.size();
  int count = 0;
  for (std::size_t i = 0; i < n; ++i) {
    if (histogram[i] <= m_minPeak) continue;
    if (i > 0 && histogram[i] <= histogram[i - 1]) continue;
    if (i + 1 < n && histogram[i] <= histogram[i + 1]) continue;
    // Kept: see the header.
    const std::size_t slot = i + 1 == n ? i : static_cast<std::size_t>(count);
    centers[slot] = static_cast<double>(i);
    ++count;
  }
  return count;
}

double Classification::ReassignClasses(std::span<const std::int32_t> histogram, std::span<double> centers,
                                       std::span<std::int32_t> labels, int classCount) const {
  classCount = std::min(classCount, static_cast<int>(centers.size()));
  std::int64_t start = 0;
  double changed = 0.0;
  for (int c = 1; c <= classCount; ++c) {
    double& center = centers[static_cast<std::size_t>(c - 1)];
    const std::int64_t end =
        c < classCount ? BoundBetween(center, centers[static_cast<std::size_t>(c)]) : m_maxValue;
    double sum = 0.0;
    double count = 0.0;
    const std::int64_t last = std::min(end, std::ssize(histogram) - 1);
    for (std::int64_t level = std::max<std::int64_t>(start, 0); level <= last; ++level) {
      const auto v = static_cast<std::size_t>(level);
      if (labels[v] != c) changed += histogram[v];
      labels[v] = c;
      sum += WrappedProduct(histogram[v], v);
      count += histogram[v];
    }
    center = sum / count;
    start = end + 1;
  }
  return changed / static_cast<double>(m_header ? PixelCount(*m_header) : 0);
}

int Classification::Classify() {
  if (!m_source) return -1;
  OutputFile log(kLogFile);
  ComputeHistogram();
  m_centers.assign(kLevels, 0.0);
  m_changeThreshold = 0.0;
  m_maxIterations = 5;
  m_minPeak = 1000;
  m_classCount = FindPeaks(m_histogram[0], m_centers);
  double changed = 1.0;
  for (int round = 0; round < m_maxIterations && changed > m_changeThreshold; ++round) {
    changed = ReassignClasses(m_histogram[0], m_centers, m_labels[0], m_classCount);
  }
  const int status = ApplyLabels();
  log.Commit();
  return status;
}

int Classification::ApplyLabels() {
  if (!m_source) return -1;
  if (!m_classImage.GetBands()) {
    ErdasHeader header = *m_header;
    header.bandCount = 1;
    header.packType = kPackByte;
    if (const int status = m_classImage.Create(header, false); status < 0) return status;
  }
  const auto pixels = BytePixels(*m_source, 0);
  auto classes = m_classImage.GetBands().GetBand(0);
  classes = classes.first(std::min(classes.size(), static_cast<std::size_t>(PixelCount(*m_header))));
  const std::size_t nPixels = std::min(pixels.size(), classes.size());
  LabelBytes(pixels.first(nPixels), m_labels[0], classes);
  std::ranges::fill(classes.subspan(nPixels), static_cast<std::uint8_t>(m_labels[0][0]));
  return 1;
}

int Classification::CountEmptyClasses() const {
  if (m_histogram.empty()) return 0;
  std::vector<bool> isEmpty(static_cast<std::size_t>(m_classCount), true);
  for (std::size_t level = 0; level < kLevels; ++level) {
    const std::int32_t label = m_labels[0][level];
    const bool isOfClass = label >= 1 && label <= m_classCount;
    if (isOfClass && m_histogram[0][level] != 0) isEmpty[static_cast<std::size_t>(label - 1)] = false;
  }
  return static_cast<int>(std::ranges::count(isEmpty, true));
}

void Classification::DumpHistogram(const std::function<void(const std::string&)>& stream) const {
  if (m_histogram.empty()) return;
  std::string text;
  const auto nClasses = std::min(static_cast<std::size_t>(m_classCount), m_centers.size());
  for (std::size_t c = 0; c < nClasses; ++c) {
    text = std::to_string(c + 1) + "\t";
    AppendGeneral(text, m_centers[c], 6);
    stream(text + "\n");
  }
  for (std::size_t level = 0; level < kLevels; ++level) {
    text = std::to_string(level) + "\t" + std::to_string(m_histogram[0][level]) + "\t" +
           std::to_string(m_labels[0][level]);
    stream(text + "\n");
  }
  std::this_thread::sleep_for(kDumpPause);
}

void Classification::MarkNonUniform() {
  const auto [cols, rows] = m_classImage.GetSize();
  for (std::int32_t row = 1; row < rows - 1; ++row) {
    for (std::int32_t col = 1; col < cols - 1; ++col) {
      const bool isUniform = m_classImage.IsUniform3x3(0, row, col);
      m_classImage.SetPixel(0, row, col, isUniform ? 0 : m_maxValue);
    }
  }
}

}  // namespace corvane
