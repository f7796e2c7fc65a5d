// Any bytes as a polygon, in a grid of any origin and cells: its rows, and what they cut from a small image.

#include <cmath>
#include <cstring>
#include <span>
#include <vector>

#include "erdasimg/ErdasImg.h"
#include "erdasimg/ScanRegion.h"

namespace corvane {
namespace {

// A tall polygon may have millions of rows, and a wide one a subset of gigabytes: valid, but each takes
// seconds and finds nothing that fewer do not. Of too many rows nothing is made, which is quick again.
constexpr double kSlowRows = 1 << 12;
constexpr double kTooManyRows = 1 << 23;
constexpr std::int32_t kSlowArea = 1 << 20;

constexpr std::size_t kGridNumbers = 4;  // origin and cells

// The bytes behind the first one, which tells how: as doubles, which are anything, or as quarters from 16-bit
// numbers, most of which make a polygon in the image.
std::vector<double> NumbersOf(bool asDoubles, std::span<const std::uint8_t> bytes) {
  std::vector<double> numbers;
  const std::size_t size = asDoubles ? sizeof(double) : sizeof(std::int16_t);
  for (; bytes.size() >= size; bytes = bytes.subspan(size)) {
    double number = 0.0;
    std::int16_t quarters = 0;
    std::memcpy(asDoubles ? static_cast<void*>(&number) : &quarters, bytes.data(), size);
    numbers.push_back(asDoubles ? number : quarters / 4.0);
  }
  return numbers;
}

double RowsOf(std::span<const double> points, double cellY) {
  double least = points[1];
  double most = points[1];
  for (std::size_t i = 3; i < points.size(); i += 2) {
    least = std::fmin(least, points[i]);
    most = std::fmax(most, points[i]);
  }
  return std::abs((most - least) / cellY);
}

// 3 bands of 20 x 15 pixels of any type.
void MakeImage(ErdasImg& image, std::uint16_t packType) {
  ErdasHeader header;
  header.packType = packType;
  header.bandCount = 3;
  header.cols = 20;
  header.rows = 15;
  image.Create(header, false);
  image.Fill(1.0);
}

void Run(std::span<const std::uint8_t> bytes) {
  if (bytes.empty()) return;
  const std::uint8_t form = bytes[0];
  const auto numbers = NumbersOf(form % 2 != 0, bytes.subspan(1));
  if (numbers.size() < kGridNumbers) return;
  const auto points = std::span(numbers).subspan(kGridNumbers);
  const std::size_t nPoints = points.size() / 2;
  const double nRows = nPoints > 0 ? RowsOf(points.first(2 * nPoints), numbers[2]) : 0.0;
  if (nRows > kSlowRows && nRows < kTooManyRows) return;

  ScanRegion region;
  RasterizePolygon(static_cast<std::int32_t>(nPoints), points.data(), numbers[0], numbers[1], numbers[2],
                   numbers[3], region);
  ErdasImg image;
  MakeImage(image, form / 2 % 8);
  image.GetSubset(-2, 12, 3, 20);
  image.ClearSubsetRegion(region);
  if (region.area > kSlowArea) return;
  image.GetSubsetRegion(region);
  image.ClearSubsetRegion(region);
}

}  // namespace
}  // namespace corvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  corvane::Run({data, size});
  return 0;
}
