#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "erdasimg/ErdasImg.h"

namespace corvane {

// A classifier of grey levels: ISODATA without merging and splitting, on the histogram alone. The classes
// start at the histogram's peaks; each is an interval of grey levels, with bounds halfway between the means
// of neighbouring classes, and a few rounds move means and bounds. The image itself is walked over twice, to
// count its levels and to label its pixels.
//
// Pixels count as bytes whatever their type: of each band the first rows * cols bytes. Only band 0 decides.
//
//   Classification isodata(&image);
//   isodata.Classify();
//   isodata.GetClassImage().Write("image_cls.lan");  // one band of class numbers, from 1
class Classification {
 public:
  static constexpr int kLevels = 256;
  using Counts = std::array<std::int32_t, kLevels>;
  using Labels = std::array<std::int32_t, kLevels>;

  // Without an image the tables stay empty, and nothing happens. The image must outlive the object.
  explicit Classification(ErdasImg* image = nullptr);
  virtual ~Classification() = default;
  Classification(const Classification&) = delete;
  Classification& operator=(const Classification&) = delete;

  // Adds the pixels of all bands to the histograms. The counts are 32 bits wide and wrap around.
  void ComputeHistogram();

  // Stores the grey levels of the peaks, ascending, and returns their number. A peak has more than m_minPeak
  // pixels, and more than each of its neighbours. `centers` has room for as many numbers as `histogram`.
  // Kept: a peak at the last level counts, but its level goes to the last slot of `centers` instead of the
  // next one, which stays as it is.
  int FindPeaks(std::span<const std::int32_t> histogram, std::span<double> centers) const;

  // Gives each level the number of the class, from 1, in whose interval it lies, and makes each center the
  // mean of its interval. Returns the fraction of the image's pixels whose class has changed.
  // Kept: the center of a class is replaced before the bound of the next one is made from it; the products
  // of level and count are 32 bits wide, without a sign, and wrap around at 2^32. The center of an interval
  // without pixels is not a number, and a bound made from it is below the first level.
  double ReassignClasses(std::span<const std::int32_t> histogram, std::span<double> centers,
                         std::span<std::int32_t> labels, int classCount) const;

  // The whole run; leaves an empty isoDataLog.txt in the current folder. 1; -1 without an image; -2 without
  // memory for the class image.
  int Classify();

  // Makes the class image, one of bytes whatever the image's pixels are: for each pixel the low byte of its
  // level's label, 255 where there is none. The results of Classify.
  int ApplyLabels();

  // After Classify, the number of classes to which no pixel of band 0 belongs.
  int CountEmptyClasses() const;

  ErdasImg& GetClassImage() { return m_classImage; }

  // The classes with their centers and the levels of band 0 with counts and labels, a line each; then a pause
  // of 100 milliseconds.
  void DumpHistogram(const std::function<void(const std::string&)>& stream) const;

  // Turns the class image into a map of the places where classes meet: 0 where the 3 x 3 block that begins at
  // the pixel has one value, m_maxValue elsewhere. The outermost pixels stay.
  void MarkNonUniform();

  const ErdasHeader* m_header = nullptr;  // the image's
  ErdasImg* m_source = nullptr;
  ErdasImg m_classImage;
  std::vector<Counts> m_histogram;  // one a band
  int m_maxValue = kLevels - 1;
  int m_classCount = 0;
  std::vector<double> m_centers;  // mean level of each class; kLevels of them
  std::vector<Labels> m_labels;   // one a band; -1 for no class
  int m_maxIterations = 20;
  double m_changeThreshold = 0.05;  // fraction of the pixels
  int m_minPeak = 1;                // pixels
};

}  // namespace corvane
