// Triangles from points, through the Triangle library. Its header brings macros and plain names along, so
// this is the only source that includes it.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "TIN/TINPoints.h"
#include "io/OutputFile.h"

extern "C" {
#include <triangle.h>
}

namespace corvane {

namespace {

// The library takes about 204 bytes a point, at any number of points, with its result; it ends the process
// when it gets no more.
constexpr std::size_t kLibraryBytes = 250;      // a point, with a margin
constexpr std::size_t kLibraryStart = 1 << 20;  // at least

// Its exact tests take products of four coordinates: beyond these limits they overflow or underflow, and the
// library then crashes or gives wrong triangles.
constexpr double kLargest = 1e70;
constexpr double kSmallest = 1e-60;

constexpr std::size_t kBlockTriangles = 16384;

// The lists that the library has allocated.
struct LibraryLists : triangulateio {
  LibraryLists() : triangulateio() {}
  ~LibraryLists() {
    trifree(pointlist);
    trifree(pointmarkerlist);
    trifree(trianglelist);
    trifree(neighborlist);
  }
  LibraryLists(const LibraryLists&) = delete;
  LibraryLists& operator=(const LibraryLists&) = delete;
};

double WithoutTiny(double coordinate) {
  return std::fabs(coordinate) < kSmallest ? 0.0 : coordinate;
}

// x and y of all points, in order.
std::vector<double> PlanCoordinates(std::span<const PointRecord> points) {
  std::vector<double> coordinates(2 * points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    coordinates[2 * i] = WithoutTiny(points[i].x);
    coordinates[2 * i + 1] = WithoutTiny(points[i].y);
  }
  return coordinates;
}

bool AreWithinLimits(const std::vector<double>& coordinates) {
  return std::all_of(coordinates.begin(), coordinates.end(),
                     [](double coordinate) { return std::fabs(coordinate) <= kLargest; });
}

// Whether the library will get its memory. The pointer is volatile so that the trial takes place.
bool HasMemoryFor(std::size_t nPoints) {
  void* volatile trial = std::malloc(kLibraryStart + nPoints * kLibraryBytes);
  const bool good = trial != nullptr;
  std::free(trial);
  return good;
}

// Whether there are three points of different places. The library ends the process or crashes without.
bool HasThreePlaces(const std::vector<double>& coordinates) {
  const auto differ = [&coordinates](std::size_t i, std::size_t k) {
    return coordinates[i] != coordinates[k] || coordinates[i + 1] != coordinates[k + 1];
  };
  std::size_t second = 0;
  for (std::size_t i = 2; i < coordinates.size(); i += 2) {
    if (!differ(i, 0)) continue;
    if (second == 0) second = i;
    if (differ(i, second)) return true;
  }
  return false;
}

}  // namespace

int TINPoints::Triangulate(const double* attributes, const int* markers, Triangulation& out) const {
  FreeTriangulation(out);
  if (nPoints > kMaxTriangulated) return -3;
  try {
    LibraryLists result;
    {
      std::vector<double> coordinates = PlanCoordinates(InUse());
      if (!AreWithinLimits(coordinates) || !HasThreePlaces(coordinates)) return -1;
      if (!HasMemoryFor(InUse().size())) return -2;
      triangulateio in = {};
      in.pointlist = coordinates.data();
      in.pointattributelist = const_cast<double*>(attributes);  // both are only read
      in.pointmarkerlist = const_cast<int*>(markers);
      in.numberofpoints = nPoints;
      in.numberofcorners = 3;
      result.numberofpoints = nPoints;
      result.numberofcorners = 3;
      char switches[] = "znO";  // indices from 0, neighbours, no holes; without Q its messages are printed
      std::fflush(stdout);
      triangulate(switches, &in, &result, nullptr);
      std::fflush(stdout);
    }
    if (!result.pointlist || !result.trianglelist || result.numberoftriangles < 1) return -1;
    out.corners.assign(result.trianglelist, result.trianglelist + 3 * std::int64_t{result.numberoftriangles});
    out.nTriangles = result.numberoftriangles;
    return 1;
  } catch (const std::bad_alloc&) {
    return -2;
  }
}

int TINPoints::WriteTriangles(OutputFile& file, const Triangulation& out) const {
  const std::span<const std::int32_t> corners = out.corners;
  const auto nTriangles = static_cast<std::size_t>(std::max(out.nTriangles, 0));
  if (nTriangles == 0 || corners.size() < 3 * nTriangles) return -1;
  if (!std::all_of(corners.begin(), corners.end(), [this](std::int32_t i) { return HasPoint(i); })) return -1;
  std::vector<char> block;
  try {
    block.resize(std::min(nTriangles, kBlockTriangles) * kTriangleBytes);
  } catch (const std::bad_alloc&) {
    return -1;
  }
  bool good = file.Write(&out.nTriangles, sizeof out.nTriangles);
  for (std::size_t first = 0; good && first < nTriangles; first += kBlockTriangles) {
    char* to = block.data();
    for (const std::int32_t i :
         corners.subspan(3 * first, 3 * std::min(kBlockTriangles, nTriangles - first))) {
      PackVertex(points[static_cast<std::size_t>(i)], to);
      to += kVertexBytes;
    }
    good = file.Write(block.data(), static_cast<std::size_t>(to - block.data()));
  }
  return good ? 0 : -1;
}

void TINPoints::FreeTriangulation(Triangulation& out) {
  out = {};
}

}  // namespace corvane
