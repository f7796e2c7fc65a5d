#include "Segmentation/SegmentImage.h"

#include <algorithm>
#include <cstdlib>
#include <exception>

#include "Segmentation/GaussianPlane.h"
#include "Segmentation/PixelEdges.h"
#include "io/MachineMemory.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::int64_t kBytesPerPixel = 70;  // at the peak: edges, and the largest group of them once more
constexpr unsigned kColourSeed = 55;

using Planes = std::vector<PlaneImage<float>>;

template <typename Pixel, typename Sample>
PlaneImage<float> PlaneOf(const PlaneImage<Pixel>& image, Sample sample) {
  PlaneImage<float> plane(image.width, image.height);
  std::ranges::transform(image.pixels, plane.pixels.begin(),
                         [&](const Pixel& pixel) { return static_cast<float>(sample(pixel)); });
  return plane;
}

Planes PlanesOf(const PlaneImage<std::uint8_t>& image) {
  Planes planes;
  planes.push_back(PlaneOf(image, [](std::uint8_t grey) { return grey; }));
  return planes;
}

Planes PlanesOf(const PlaneImage<Rgb>& image) {
  Planes planes;
  for (const auto sample : {&Rgb::r, &Rgb::g, &Rgb::b}) {
    planes.push_back(PlaneOf(image, [sample](const Rgb& colour) { return colour.*sample; }));
  }
  return planes;
}

// Tells of a step of the work on so many pixels, if it takes a while.
void TellStep(std::size_t nPixels, const char* text) {
  constexpr std::size_t kMany = 4000000;
  if (nPixels > kMany) Ui().SetStatusText(0, text);
}

// The regions of at least `minSize` pixels, as far as they have neighbours.
DisjointSet RegionsOf(Planes planes, float c, std::int32_t minSize) {
  const std::size_t nPixels = planes[0].pixels.size();
  TellStep(nPixels, "Building edges ...");
  PixelEdges edges(std::move(planes));
  TellStep(nPixels, "Sorting edges ...");
  edges.Sort();
  TellStep(nPixels, "Merging ...");
  RegionGrower grower(static_cast<std::int32_t>(nPixels), c);
  DisjointSet& sets = grower.GetSets();
  edges.KeepIf(sets, [&](const SegEdge& edge) { return grower.Separates(edge); });
  // An edge within a region stays there, so that those are all that small regions can be joined along.
  edges.KeepIf(sets, [&](const SegEdge& edge) {
    const std::int32_t a = sets.Find(edge.a);
    const std::int32_t b = sets.Find(edge.b);
    if (a != b && (sets.Size(a) < minSize || sets.Size(b) < minSize)) sets.Join(a, b);
    return false;
  });
  return std::move(sets);
}

std::uint8_t RandomByte() {
  return static_cast<std::uint8_t>(std::rand() & 0xFF);
}

// Only roots need a colour, but each pixel has its turn in the sequence.
void ColourRoots(DisjointSet& sets, PlaneImage<Rgb>& regions) {
  std::srand(kColourSeed);
  for (std::size_t i = 0; i < regions.pixels.size(); ++i) {
    Rgb colour;
    colour.r = RandomByte();
    colour.g = RandomByte();
    colour.b = RandomByte();
    const auto pixel = static_cast<std::int32_t>(i);
    if (sets.Find(pixel) == pixel) regions.pixels[i] = colour;
  }
}

void ColourAll(DisjointSet& sets, PlaneImage<Rgb>& regions) {
  for (std::size_t i = 0; i < regions.pixels.size(); ++i) {
    const std::int32_t root = sets.Find(static_cast<std::int32_t>(i));
    regions.pixels[i] = regions.pixels[static_cast<std::size_t>(root)];
  }
}

template <typename Pixel>
PlaneImage<Rgb> Segment(const PlaneImage<Pixel>& image, float sigma, float c, std::int32_t minSize,
                        std::int32_t& regionCount) {
  regionCount = 0;
  if (image.pixels.empty() || sigma > kLargestSigma) return {};
  if (!HasMemoryToSegment(static_cast<std::int64_t>(image.pixels.size()))) return {};
  TellStep(image.pixels.size(), "Smoothing ...");
  const std::vector<float> mask = GaussianMask(sigma > 0.01f ? sigma : 0.01f);
  Planes planes = PlanesOf(image);
  for (PlaneImage<float>& plane : planes) SmoothPlane(plane, mask);
  DisjointSet sets = RegionsOf(std::move(planes), c, minSize);
  PlaneImage<Rgb> regions(image.width, image.height);
  ColourRoots(sets, regions);
  ColourAll(sets, regions);
  regionCount = sets.SetCount();
  return regions;
}

template <typename Pixel>
PlaneImage<Rgb> SegmentIfMemory(const PlaneImage<Pixel>& image, float sigma, float c, std::int32_t minSize,
                                std::int32_t& regionCount) {
  try {
    return Segment(image, sigma, c, minSize, regionCount);
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace

bool HasMemoryToSegment(std::int64_t nPixels) {
  return nPixels <= PixelEdges::kMostPixels && nPixels * kBytesPerPixel <= BytesOfMachine();
}

PlaneImage<Rgb> SegmentImage(const PlaneImage<std::uint8_t>& image, float sigma, float c,
                             std::int32_t minSize, std::int32_t& regionCount) {
  return SegmentIfMemory(image, sigma, c, minSize, regionCount);
}

PlaneImage<Rgb> SegmentImage(const PlaneImage<Rgb>& image, float sigma, float c, std::int32_t minSize,
                             std::int32_t& regionCount) {
  return SegmentIfMemory(image, sigma, c, minSize, regionCount);
}

}  // namespace corvane
