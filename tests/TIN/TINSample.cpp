#include "TINSample.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace corvane {

std::string TinBytes(std::int32_t count, const std::vector<SampleTriangle>& triangles) {
  std::string bytes(4 + triangles.size() * 3 * kVertexBytes, '\0');
  std::memcpy(bytes.data(), &count, sizeof count);
  char* to = bytes.data() + 4;
  for (const SampleTriangle& triangle : triangles) {
    for (const PointRecord& corner : triangle) {
      PackVertex(corner, to);
      to += kVertexBytes;
    }
  }
  return bytes;
}

std::string TinBytes(const std::vector<SampleTriangle>& triangles) {
  return TinBytes(static_cast<std::int32_t>(triangles.size()), triangles);
}

namespace {

// rows x cols points, row by row, as triangles.
std::vector<SampleTriangle> MeshOf(int rows, int cols, const std::vector<PointRecord>& points) {
  std::vector<SampleTriangle> triangles;
  for (int row = 0; row + 1 < rows; ++row) {
    for (int col = 0; col + 1 < cols; ++col) {
      const auto at = [&](int r, int c) {
        return points[static_cast<std::size_t>((row + r) * cols + col + c)];
      };
      triangles.push_back({at(0, 0), at(0, 1), at(1, 1)});
      triangles.push_back({at(0, 0), at(1, 1), at(1, 0)});
    }
  }
  return triangles;
}

}  // namespace

std::vector<SampleTriangle> JitteredMesh(int rows, int cols, unsigned seed) {
  std::mt19937 random(seed);
  const auto jitter = [&random] { return (static_cast<double>(random()) / 4294967296.0 - 0.5) * 0.6; };
  std::vector<PointRecord> points;
  for (int row = 0; row < rows; ++row) {
    for (int col = 0; col < cols; ++col) {
      const double x = 1000.0 + col + jitter();
      const double y = -500.0 + row + jitter();
      points.push_back({row * cols + col, x, y, 5.0 * jitter(), 1.0});
    }
  }
  return MeshOf(rows, cols, points);
}

std::vector<SampleTriangle> GridMesh(int rows, int cols, double spacing,
                                     const std::function<double(int row, int col)>& height) {
  std::vector<PointRecord> points;
  for (int row = 0; row < rows; ++row) {
    for (int col = 0; col < cols; ++col) {
      points.push_back({row * cols + col, col * spacing, row * spacing, height(row, col), 1.0});
    }
  }
  return MeshOf(rows, cols, points);
}

std::vector<SampleTriangle> TwoTriangles() {
  const PointRecord a = {0, 0.0, 0.0, 1.0, 0.5};
  const PointRecord b = {1, 10.0, 0.0, 2.0, 0.5};
  const PointRecord c = {2, 10.0, 10.0, 3.0, 0.5};
  const PointRecord d = {3, 0.0, 10.0, 4.0, 0.5};
  return {{a, b, c}, {a, c, d}};
}

bool Load(TIN& tin, const std::string& path) {
  return tin.ReadTIN(path) == 0 && tin.StoreTriangle(path) == 0;
}

ReferenceTin::ReferenceTin(const std::vector<SampleTriangle>& input) {
  const PointRecord& first = input[0][0];
  minX = maxX = first.x;
  minY = maxY = first.y;
  minZ = maxZ = first.z;
  for (const SampleTriangle& triangle : input) {
    for (const PointRecord& p : triangle) {
      if (p.x < minX)
        minX = p.x;
      else if (p.x > maxX)
        maxX = p.x;
      if (p.y < minY)
        minY = p.y;
      else if (p.y > maxY)
        maxY = p.y;
      if (p.z < minZ)
        minZ = p.z;
      else if (p.z > maxZ)
        maxZ = p.z;
    }
  }
  cellSize =
      std::sqrt(std::fabs(maxX - minX) * std::fabs(maxY - minY) * 1.0 / static_cast<double>(input.size()));
  nCols = static_cast<std::int32_t>(std::fabs(maxX - minX) / cellSize + 1.0);
  nRows = static_cast<std::int32_t>(std::fabs(maxY - minY) / cellSize + 1.0);
  for (std::int32_t i = 0; i < static_cast<std::int32_t>(input.size()); ++i) {
    const SampleTriangle& triangle = input[static_cast<std::size_t>(i)];
    std::array<std::int32_t, 3> v{};
    for (std::size_t k = 0; k < 3; ++k) v[k] = StoreVertex(triangle[k], i);
    triangles.push_back(v);
    StoreInCells(i);
  }
  for (std::int32_t i = 0; i < static_cast<std::int32_t>(input.size()); ++i) normals.push_back(NormalOf(i));
}

ReferenceTin::Cell ReferenceTin::CellOf(double x, double y) const {
  return {static_cast<std::int32_t>((y - minY) / cellSize), static_cast<std::int32_t>((x - minX) / cellSize)};
}

std::int32_t ReferenceTin::StoreVertex(const PointRecord& record, std::int32_t triangle) {
  std::vector<std::int32_t>& cell = vertexCells[CellOf(record.x, record.y)];
  for (const std::int32_t v : cell) {
    Vertex& vertex = vertices[static_cast<std::size_t>(v)];
    if (vertex.record.id != record.id) continue;
    vertex.triangles.push_back(triangle);
    return v;
  }
  vertices.push_back({record, {triangle}});
  cell.push_back(static_cast<std::int32_t>(vertices.size()) - 1);
  return cell.back();
}

void ReferenceTin::StoreInCells(std::int32_t triangle) {
  const auto& v = triangles[static_cast<std::size_t>(triangle)];
  const auto at = [&](std::size_t k) { return vertices[static_cast<std::size_t>(v[k])].record; };
  const Cell low = CellOf(std::min({at(0).x, at(1).x, at(2).x}), std::min({at(0).y, at(1).y, at(2).y}));
  const Cell high = CellOf(std::max({at(0).x, at(1).x, at(2).x}), std::max({at(0).y, at(1).y, at(2).y}));
  for (std::int32_t row = low.first; row <= high.first; ++row) {
    for (std::int32_t col = low.second; col <= high.second; ++col)
      triangleCells[{row, col}].push_back(triangle);
  }
}

std::array<double, 3> ReferenceTin::NormalOf(std::int32_t triangle) const {
  const auto& v = triangles[static_cast<std::size_t>(triangle)];
  const PointRecord& a = vertices[static_cast<std::size_t>(v[0])].record;
  const PointRecord& b = vertices[static_cast<std::size_t>(v[1])].record;
  const PointRecord& c = vertices[static_cast<std::size_t>(v[2])].record;
  const double e1[3] = {b.x - a.x, b.y - a.y, b.z - a.z};
  const double e2[3] = {c.x - b.x, c.y - b.y, c.z - b.z};
  const double nx = e1[1] * e2[2] - e2[1] * e1[2];
  const double ny = e1[2] * e2[0] - e2[2] * e1[0];
  const double nz = e1[0] * e2[1] - e2[0] * e1[1];
  const double s = nx * nx + ny * ny + nz * nz;
  if (s == 0.0) return {0.0, 0.0, 1.0};
  const double factor = 1.0 / std::sqrt(s);
  return {nx * factor, ny * factor, nz * factor};
}

int ReferenceTin::Find(double x, double y, std::int32_t& triangle) const {
  if (x < minX || x > maxX || y < minY || y > maxY) return -1;
  const auto cell = triangleCells.find(CellOf(x, y));
  if (cell == triangleCells.end()) return -2;
  for (const std::int32_t t : cell->second) {
    triangle = t;
    int result = 3;
    for (std::size_t k = 0; k < 3 && result == 3; ++k) {
      const auto& v = triangles[static_cast<std::size_t>(t)];
      const PointRecord& a = vertices[static_cast<std::size_t>(v[k])].record;
      const PointRecord& b = vertices[static_cast<std::size_t>(v[(k + 1) % 3])].record;
      if (x == a.x && y == a.y)
        result = static_cast<int>(k);
      else if ((b.x - a.x) * (y - a.y) - (x - a.x) * (b.y - a.y) < 0)
        result = -1;
    }
    if (result >= 0) return result;
  }
  return -2;
}

}  // namespace corvane
