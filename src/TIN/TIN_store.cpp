// From the triangles of a file to vertices that know their triangles, normals and grids.

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <numeric>
#include <utility>

#include "TIN/RecordExtent.h"
#include "TIN/TIN.h"
#include "TIN/VertexTable.h"
#include "io/InputFile.h"
#include "io/LargePages.h"
#include "io/NumberText.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::int32_t kBlock = 4096;  // triangles read at a time
constexpr std::int32_t kMaxVertices = std::numeric_limits<std::int32_t>::max();

// A sane triangle touches a handful of cells. Triangles that all span the whole grid would need more memory
// than any file justifies.
constexpr std::int64_t kCellsPerTriangle = 256;
constexpr std::int64_t kSpareCells = 16000000;

std::size_t BlockBytes(std::int32_t trianglesLeft) {
  return static_cast<std::size_t>(std::min(kBlock, trianglesLeft)) * kTriangleBytes;
}

}  // namespace

// The mean occupancy of the grid, which nothing shows, is not computed.
int TIN::StoreTriangle(const std::string& path) {
  InputFile file(path);
  if (!file.IsOpen()) {
    ShowWarning(OpenErrorText(path));
    return -1;
  }
  file.Seek(kFirstTriangle);
  return StoreTriangle(file);
}

int TIN::StoreTriangle(InputFile& file) {
  return Store([&file](char* to, std::size_t size) { return file.Read(to, size); }, false);
}

int TIN::StoreRawTriangles() {
  if (IsStored()) return 0;
  const auto fromMemory = [this, next = std::size_t{0}](char* to, std::size_t size) mutable {
    std::memcpy(to, rawRecords.get() + next, size);
    next += size;
    return size;
  };
  return Store(fromMemory, true);
}

// The raw records, where they are not kept as the source, make room for the model.
int TIN::Store(const ReadStored& read, bool keepRaw) {
  StoreResult result = StoreResult::NoMemory;
  try {
    result = ScanRaw();
    if (result == StoreResult::Stored) {
      if (!keepRaw) rawRecords.reset();
      result = BuildModel(read);
    }
  } catch (const std::bad_alloc&) {
  }
  if (result == StoreResult::Stored) {
    rawRecords.reset();
    return 0;
  }
  if (result != StoreResult::NotRead) ClearModel();
  if (result == StoreResult::NotRead) ShowMessage("StoreTriangle: No TIN read");
  if (result == StoreResult::BadFile) ShowMessage("StoreTriangle: Read TIN error!");
  if (result == StoreResult::LargeGrid) ShowMessage("StoreTriangle: The triangles need too large a grid!");
  if (result == StoreResult::NoMemory) ShowMessage("StoreTriangle: Memory allocation error!");
  return result == StoreResult::NotRead || result == StoreResult::OnePoint ? -1 : -2;
}

// Drops what has been built. A TIN whose raw triangles are still there stays raw, so that it can be saved.
void TIN::ClearModel() {
  auto raw = std::move(rawRecords);
  const std::int32_t count = raw ? nTriangles : 0;
  Clear();
  rawRecords = std::move(raw);
  nTriangles = count;
}

// Whether there is something to store: its extents are known then.
TIN::StoreResult TIN::ScanRaw() {
  if (nTriangles == 0 || !rawRecords) return StoreResult::NotRead;
  ScanExtent();
  ShowStatistics();
  const bool isOnePoint = extent.maxX == extent.minX && extent.maxY == extent.minY;
  return isOnePoint ? StoreResult::OnePoint : StoreResult::Stored;
}

TIN::StoreResult TIN::BuildModel(const ReadStored& read) {
  const auto count = static_cast<std::size_t>(nTriangles);
  ReserveLarge(triangles, count);
  ReserveLarge(corners_, count);
  vertexCapacity = nTriangles >= 20 ? static_cast<std::int32_t>(nTriangles * 0.6) : nTriangles;
  ReserveLarge(vertices, static_cast<std::size_t>(vertexCapacity));
  const double extent4[4] = {extent.minX, extent.maxX, extent.minY, extent.maxY};
  triangleGrid.Size(extent4, nTriangles, 1.0);
  vertexGrid.Size(extent4, nTriangles, 1.0);
  const StoreResult stored = StoreTriangles(read);
  if (stored != StoreResult::Stored) return stored;
  TakeCorners();
  if (!HasRoomForGrids()) return StoreResult::LargeGrid;
  if (!FillGrids()) return StoreResult::NoMemory;
  LinkVertices();
  ComputeNormals();
  return StoreResult::Stored;
}

// Over all corners of the file, those of vertices that are stored once included.
void TIN::ScanExtent() {
  const char* stored = rawRecords.get();
  extent = ExtentOf(UnpackVertex(stored));
  const char* const end = stored + static_cast<std::size_t>(nTriangles) * kTriangleBytes;
  for (; stored != end; stored += kVertexBytes) Widen(extent, UnpackVertex(stored));
  ptsMinX = extent.minX;
  ptsMaxY = extent.maxY;
  ptsMaxX = extent.maxX;
  ptsMinY = extent.minY;
  ptsMinZ = extent.minZ;
  ptsMaxZ = extent.maxZ;
}

void TIN::ShowStatistics() const {
  std::string text = "triangles: ";
  AppendInt(text, nTriangles);
  const auto append = [&text](const char* label, double x, double y, double z) {
    text += label;
    for (const double value : {x, y, z}) {
      text += ' ';
      AppendFixed(text, value);
    }
  };
  append("\nmin:", extent.minX, extent.minY, extent.minZ);
  append("\nmax:", extent.maxX, extent.maxY, extent.maxZ);
  ShowInformation(text);
}

// What a file does not hold any more is zeros.
TIN::StoreResult TIN::StoreTriangles(const ReadStored& read) {
  VertexTable table(static_cast<std::size_t>(nTriangles));
  std::vector<char> block(kBlock * kTriangleBytes);
  for (std::int32_t i = 0; i < nTriangles; ++i) {
    const std::int32_t inBlock = i % kBlock;
    if (inBlock == 0) {
      const std::size_t got = read(block.data(), BlockBytes(nTriangles - i));
      std::memset(block.data() + got, 0, block.size() - got);
    }
    const char* const stored = block.data() + static_cast<std::size_t>(inBlock) * kTriangleBytes;
    TINTriangle triangle;
    triangle.id = i;
    for (std::size_t k = 0; k < 3; ++k) {
      const PointRecord record = UnpackVertex(stored + k * kVertexBytes);
      const StoreResult result = StoreVertex(record, table, triangle.v[k]);
      if (result != StoreResult::Stored) return result;
    }
    triangles.push_back(triangle);
  }
  return StoreResult::Stored;
}

// Of records with one id in one cell the first gives the vertex its place and height.
TIN::StoreResult TIN::StoreVertex(const PointRecord& record, VertexTable& table, std::int32_t& vertex) {
  std::int32_t col = 0;
  std::int32_t row = 0;
  vertexGrid.CellOf(record.x, record.y, col, row);
  if (!vertexGrid.HasCell(row, col)) return StoreResult::BadFile;
  vertex = table.FindOrAdd(record.id, std::int64_t{row} * vertexGrid.nCols + col);
  if (vertex < nPoints) return StoreResult::Stored;
  if (nPoints == kMaxVertices) return StoreResult::NoMemory;
  AddVertex(record);
  return StoreResult::Stored;
}

// The array itself grows faster than the documented steps, which would copy it too often.
void TIN::AddVertex(const PointRecord& record) {
  if (nPoints == vertexCapacity) {
    const std::int64_t grown =
        std::int64_t{vertexCapacity} + std::max(10, static_cast<int>(vertexCapacity * 0.01));
    vertexCapacity = static_cast<std::int32_t>(std::min<std::int64_t>(grown, kMaxVertices));
  }
  vertices.push_back({record, {}});
  ++nPoints;
}

void TIN::TakeCorners() {
  for (const TINTriangle& triangle : triangles) {
    Corners& corners = corners_.emplace_back();
    for (std::size_t k = 0; k < 3; ++k) {
      const TINVertex& vertex = vertices[static_cast<std::size_t>(triangle.v[k])];
      corners.c[k] = {vertex.x, vertex.y};
    }
  }
}

CellRange TIN::CellsOfTriangle(std::int32_t i) const {
  const auto& c = corners_[static_cast<std::size_t>(i)].c;
  const auto [left, right] = std::minmax({c[0].x, c[1].x, c[2].x});
  const auto [bottom, top] = std::minmax({c[0].y, c[1].y, c[2].y});
  CellRange range;
  triangleGrid.CellOf(left, bottom, range.firstCol, range.firstRow);
  triangleGrid.CellOf(right, top, range.lastCol, range.lastRow);
  return range;
}

// Whether the grids stay within what the file justifies.
bool TIN::HasRoomForGrids() const {
  if (!triangleGrid.IsWithinLimits()) return false;
  std::int64_t entriesLeft = kCellsPerTriangle * nTriangles + kSpareCells;
  for (std::int32_t i = 0; i < nTriangles && entriesLeft >= 0; ++i) {
    entriesLeft -= CellsOfTriangle(i).GetCount();
  }
  return entriesLeft >= 0;
}

bool TIN::FillGrids() {
  const auto vertexAt = [this](std::int32_t v) -> const TINVertex& {
    return vertices[static_cast<std::size_t>(v)];
  };
  if (vertexGrid.InsertAll(nPoints, vertexAt) < 0) return false;

  std::vector<CellRange> ranges;
  ReserveLarge(ranges, triangles.size());
  for (std::int32_t i = 0; i < nTriangles; ++i) ranges.push_back(CellsOfTriangle(i));
  const auto rangeAt = [&ranges](std::int32_t i) { return ranges[static_cast<std::size_t>(i)]; };
  return triangleGrid.FillCells(nTriangles, rangeAt) >= 0;
}

// Gives each vertex the list of its triangles, in file order; a triangle with one vertex at two corners is
// listed twice.
void TIN::LinkVertices() {
  std::vector<std::size_t> next(vertices.size() + 1, 0);  // where each list goes on
  for (const TINTriangle& triangle : triangles) {
    for (const std::int32_t v : triangle.v) ++next[static_cast<std::size_t>(v) + 1];
  }
  std::partial_sum(next.begin(), next.end(), next.begin());
  ReserveLarge(trianglesOfVertices_, next.back());
  trianglesOfVertices_.resize(next.back());
  for (std::size_t v = 0; v < vertices.size(); ++v) {
    vertices[v].triangles = {trianglesOfVertices_.data() + next[v], next[v + 1] - next[v]};
  }
  for (const TINTriangle& triangle : triangles) {
    for (const std::int32_t v : triangle.v) {
      std::size_t& place = next[static_cast<std::size_t>(v)];
      trianglesOfVertices_[place] = triangle.id;
      ++place;
    }
  }
}

}  // namespace corvane
