// Vertices that lie far from a smooth surface through their surroundings.

#include <cmath>
#include <new>

#include "Surface/Surface.h"
#include "TIN/TIN.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr double kVerticesPerTile = 2000.0;

bool AreFinite(const std::vector<double>& values) {
  for (const double value : values) {
    if (!std::isfinite(value)) return false;
  }
  return true;
}

// Fits a surface to the points. False if there is none: fewer than three points, two at one place, a system
// without a solution, or no memory.
bool FitTile(const std::vector<Point3>& points, double lambda, double shape, Surface& surface) {
  const auto n = static_cast<std::int32_t>(points.size());
  return surface.Fit(n, points.data(), kThinPlateKernel, lambda, shape) > 0 &&
         AreFinite(surface.coefficients);
}

}  // namespace

// The vertices by tile, row by row of tiles from minX, minY on. False without memory.
bool TIN::TileVertices(GridIndex& tiles) const {
  const double w = extent.maxX - extent.minX;
  const double h = extent.maxY - extent.minY;
  const double extent4[] = {extent.minX, extent.maxX, extent.minY, extent.maxY};
  if (w * h > 0.0) {
    tiles.Size(extent4, nPoints, kVerticesPerTile);
  } else {
    tiles.SizeWithCell(extent4, w + h + 1.0);  // one tile
  }
  const auto vertexAt = [this](std::int32_t v) -> const TINVertex& {
    return vertices[static_cast<std::size_t>(v)];
  };
  return tiles.InsertAll(nPoints, vertexAt) >= 0;
}

int TIN::FitTiles(double lambda, double shape, double threshold, std::int64_t* nSkipped) {
  GridIndex tiles;
  if (!MakeLabels(-1) || !TileVertices(tiles)) return -1;
  std::int32_t label = groups.empty() ? -1 : groups.back().label;
  const std::string nTiles = std::to_string(std::int64_t{tiles.nRows} * tiles.nCols);
  std::int64_t nDone = 0;
  try {
    for (std::int32_t row = 0; row < tiles.nRows; ++row) {
      for (std::int32_t col = 0; col < tiles.nCols; ++col) {
        Ui().SetStatusText(0, "Fitting tile " + std::to_string(++nDone) + " of " + nTiles + " ...");
        const auto tile = tiles.GetCell(row, col);
        const bool isFitted = GroupOutliers(tile, lambda, shape, threshold, ++label);
        if (!isFitted && !tile.empty() && nSkipped) ++*nSkipped;
      }
    }
  } catch (const std::bad_alloc&) {
    return -1;
  }
  return 1;
}

// Fits a surface to the tile's vertices and groups those that lie off it. False if there is no surface.
bool TIN::GroupOutliers(std::span<const std::int32_t> tile, double lambda, double shape, double threshold,
                        std::int32_t label) {
  std::vector<std::int32_t> live;
  std::vector<Point3> points;
  for (const std::int32_t v : tile) {
    const TINVertex& vertex = vertices[static_cast<std::size_t>(v)];
    if (vertex.id == -1) continue;
    live.push_back(v);
    points.push_back({vertex.x, vertex.y, vertex.z});
  }
  Surface surface;
  if (!FitTile(points, lambda, shape, surface)) return false;
  TINGroup group;
  group.label = label;
  for (std::size_t i = 0; i < live.size(); ++i) {
    Point3 fitted = points[i];
    surface.Evaluate(fitted);
    if (!(std::fabs(fitted.z - points[i].z) >= threshold)) continue;
    group.members.push_back(live[i]);
    labels[static_cast<std::size_t>(live[i])] = label;
  }
  if (!group.members.empty()) groups.push_back(std::move(group));
  return true;
}

}  // namespace corvane
