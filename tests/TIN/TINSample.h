#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "TIN/PointRecord.h"
#include "TIN/TIN.h"

namespace corvane {

using SampleTriangle = std::array<PointRecord, 3>;

// The bytes of a ".tin" file with these triangles.
std::string TinBytes(const std::vector<SampleTriangle>& triangles);

// The same with a count of its own.
std::string TinBytes(std::int32_t count, const std::vector<SampleTriangle>& triangles);

// rows x cols points about a unit apart, each moved at random by less than a third of that, with ids row by
// row, split into 2 * (rows - 1) * (cols - 1) counter-clockwise triangles. The same for the same seed.
std::vector<SampleTriangle> JitteredMesh(int rows, int cols, unsigned seed);

// A regular mesh of rows x cols points `spacing` apart from (0, 0) on, with ids row by row and these heights.
std::vector<SampleTriangle> GridMesh(int rows, int cols, double spacing,
                                     const std::function<double(int row, int col)>& height);

// The square (0, 0), (10, 0), (10, 10), (0, 10) with ids 0 to 3 and heights 1 to 4, as the triangles 0 1 2
// and 0 2 3.
std::vector<SampleTriangle> TwoTriangles();

// Reads and stores the file; true if both went well.
bool Load(TIN& tin, const std::string& path);

// The stored model, written down word for word: lists for each vertex and each cell, everything by search.
struct ReferenceTin {
  struct Vertex {
    PointRecord record;
    std::vector<std::int32_t> triangles;
  };
  using Cell = std::pair<std::int32_t, std::int32_t>;  // row, column

  explicit ReferenceTin(const std::vector<SampleTriangle>& input);

  // As TIN::FindTriangle.
  int Find(double x, double y, std::int32_t& triangle) const;

  double minX = 0.0, maxX = 0.0, minY = 0.0, maxY = 0.0, minZ = 0.0, maxZ = 0.0;
  double cellSize = 1.0;
  std::int32_t nRows = 0;
  std::int32_t nCols = 0;
  std::vector<Vertex> vertices;
  std::vector<std::array<std::int32_t, 3>> triangles;
  std::vector<std::array<double, 3>> normals;
  std::map<Cell, std::vector<std::int32_t>> triangleCells;
  std::map<Cell, std::vector<std::int32_t>> vertexCells;

 private:
  Cell CellOf(double x, double y) const;
  std::int32_t StoreVertex(const PointRecord& record, std::int32_t triangle);
  void StoreInCells(std::int32_t triangle);
  std::array<double, 3> NormalOf(std::int32_t triangle) const;
};

}  // namespace corvane
