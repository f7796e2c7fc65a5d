#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "TIN/Prefetch.h"
#include "numerics/Truncate.h"

namespace corvane {

// What is shown when items do not fit their extents, or those make no grid.
constexpr const char* kExtensionError = "There is error in points extension!!";

// A block of cells, both ends included. Empty if an end lies before its start.
struct CellRange {
  std::int32_t firstRow = 0;
  std::int32_t lastRow = -1;
  std::int32_t firstCol = 0;
  std::int32_t lastCol = -1;

  std::int64_t GetCount() const {
    if (lastRow < firstRow || lastCol < firstCol) return 0;
    return (std::int64_t{lastRow} - firstRow + 1) * (std::int64_t{lastCol} - firstCol + 1);
  }

  friend bool operator==(const CellRange&, const CellRange&) = default;
};

// A uniform grid of square cells over a rectangle of the ground; each cell holds a list of identifiers in the
// order of insertion. It knows nothing of what they mean and stores no coordinates: queries give candidates.
//
// The cell of a point is row = int((y - minY) / cellSize), col = int((x - minX) / cellSize), cut towards
// zero, so row 0 is at minY, and a point less than a cell below minX or minY still counts as inside.
//
//   over x 0..10, y 0..5 with cellSize 2: 6 columns, 3 rows; (3.9, 4.0) is in row 2, column 1
//
// The lists stand in one array. A whole set is indexed with InsertAll or FillCells, in time linear in the
// lists, which then stand one after the other and need four bytes a cell and four an entry. Single insertions
// and removals give each list room of its own; a full one moves to the array's end, at amortized constant
// cost.
class GridIndex {
 public:
  // Sets rectangle, cell size, rows and columns for `n` items with `density` of them in a cell. Cells that
  // are there are dropped, and none are made. `extent4` is minX, maxX, minY, maxY. cellSize = sqrt(w * h *
  // density / n); a rectangle without width or height becomes one column or row, a single point one cell of
  // size 1.0. Rows or columns that are no number, or beyond 32 bits, become 0.
  void Size(std::span<const double, 4> extent4, std::int64_t n, double density);

  // The same for a given cell size; `n` only bounds the cells that Allocate accepts.
  void SizeWithCell(std::span<const double, 4> extent4, double cellSize, std::int64_t n = 0);

  // Makes all cells, empty. 0; or -1, with no cells, if there is no row or column, more cells than 100 for
  // each of the `n` items and 1,000,000 besides, or no memory.
  int Allocate();

  // Whether Allocate would accept the rows and columns, memory aside.
  bool IsWithinLimits() const { return CountCells() > 0; }

  // Drops all cells and lists; rectangle and cell size stay.
  void Free();

  bool HasCells() const { return !begins_.empty() || !lists_.empty(); }

  // Appends `id` to the cell of (x, y), making the cells at first use. 1; -1 without memory; -2, with a
  // warning, if the point lies outside.
  int Insert(double x, double y, std::int32_t id);

  // Takes the first `id` out of the cell of (x, y); the others keep their order. 1; 0 if it is not there;
  // -1 without cells; -2, with a warning, if the point lies outside.
  int Remove(double x, double y, std::int32_t id);

  // The address of (x, y), unchecked against the grid. Beyond 32 bits it is held at the nearest end;
  // a coordinate that is no number gives the lowest address.
  void CellOf(double x, double y, std::int32_t& col, std::int32_t& row) const {
    row = Address((y - minY) / cellSize);
    col = Address((x - minX) / cellSize);
  }

  bool HasCell(std::int32_t row, std::int32_t col) const {
    return row >= 0 && row < nRows && col >= 0 && col < nCols;
  }

  // The list of a cell, in order; empty beyond the grid or without cells. Valid until the index changes.
  std::span<const std::int32_t> GetCell(std::int32_t row, std::int32_t col) const {
    if (!HasCell(row, col) || !HasCells()) return {};
    const std::size_t cell = CellIndex(row, col);
    if (begins_.empty()) return {items_.data() + lists_[cell].begin, lists_[cell].size};
    return {items_.data() + begins_[cell], begins_[cell + 1] - begins_[cell]};
  }

  // Brings what GetCell reads nearer, for a caller with more cells to look up.
  void PrefetchCell(std::int32_t row, std::int32_t col) const {
    if (HasCell(row, col) && !begins_.empty()) Prefetch(begins_.data() + CellIndex(row, col));
  }

  // Indexes the identifiers 0 to n - 1 in place of all that was there, with the same lists as inserting them
  // one by one. `pointAt(id)` gives something with x and y, and is called twice for each id.
  // 1; -1 without memory, for 2^32 entries or more, or if Allocate refuses; -2, with one warning, at the
  // first point outside. After a failure the grid has no cells.
  template <typename PointAt>
  int InsertAll(std::int32_t n, PointAt pointAt);

  // The same for items that touch blocks of cells: `cellsOf(id)` gives the CellRange.
  template <typename CellsOf>
  int FillCells(std::int32_t n, CellsOf cellsOf);

  // Appends the lists of all cells that the rectangle covers, ends included, row by row from the lowest
  // y; `top` is the smaller y. 1, or 0 if the rectangle misses the grid or there are no cells.
  int QueryRect(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom,
                std::vector<std::int32_t>& list) const;

  // QueryRect for the bounds, cut to whole numbers, of a closed polygon: x, y pairs, the first vertex
  // repeated at the end. 0 if there are fewer than three vertices besides the repeated one, or bounds that
  // are no numbers.
  int QueryPolygon(std::span<const double> coords, std::vector<std::int32_t>& list) const;

  // The mean length of a list, rounded; 0 without cells.
  std::int64_t MeanOccupancy() const;

  std::int32_t nRows = 0;
  std::int32_t nCols = 0;
  double minX = 0.0;  // the covered rectangle, ground units
  double maxY = 0.0;
  double maxX = 0.0;
  double minY = 0.0;
  double cellSize = 1.0;  // ground units

 private:
  // A cell's piece of items_.
  struct List {
    std::size_t begin = 0;
    std::uint32_t size = 0;
    std::uint32_t capacity = 0;
  };

  static std::int32_t Address(double cells) {
    return cells == cells ? TruncateSaturated(cells) : std::numeric_limits<std::int32_t>::min();
  }

  std::size_t CellIndex(std::int32_t row, std::int32_t col) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(nCols) + static_cast<std::size_t>(col);
  }

  void SetRectangle(std::span<const double, 4> extent4, std::int64_t n);
  int ReportOutside(std::int32_t row, std::int32_t col) const;
  int FailOutside(std::int32_t row, std::int32_t col);
  std::size_t CountCells() const;
  bool AllocateCounts();
  bool TurnCountsIntoBegins();
  void TurnEndsIntoBegins();
  bool Loosen();
  bool MakeRoom(List& list);

  template <typename Visit>
  void ForEachCell(const CellRange& range, Visit visit);

  std::int64_t maxCells_ = 1000000;
  std::vector<std::int32_t> items_;    // the lists
  std::vector<std::uint32_t> begins_;  // row * nCols + col, and the end of the last: after a bulk build
  std::vector<List> lists_;            // the same after single changes; at most one of the two is there
};

template <typename Visit>
void GridIndex::ForEachCell(const CellRange& range, Visit visit) {
  for (std::int32_t row = range.firstRow; row <= range.lastRow; ++row) {
    const std::size_t cells = CellIndex(row, 0);
    for (std::int32_t col = range.firstCol; col <= range.lastCol; ++col) {
      visit(begins_[cells + static_cast<std::size_t>(col)]);
    }
  }
}

template <typename CellsOf>
int GridIndex::FillCells(std::int32_t n, CellsOf cellsOf) {
  if (!AllocateCounts()) return -1;
  for (std::int32_t id = 0; id < n; ++id) {
    const CellRange range = cellsOf(id);
    if (!HasCell(range.firstRow, range.firstCol)) return FailOutside(range.firstRow, range.firstCol);
    if (!HasCell(range.lastRow, range.lastCol)) return FailOutside(range.lastRow, range.lastCol);
    ForEachCell(range, [](std::uint32_t& count) { ++count; });
  }
  if (!TurnCountsIntoBegins()) return -1;
  for (std::int32_t id = 0; id < n; ++id) {
    ForEachCell(cellsOf(id), [this, id](std::uint32_t& next) { items_[next++] = id; });
  }
  TurnEndsIntoBegins();
  return 1;
}

template <typename PointAt>
int GridIndex::InsertAll(std::int32_t n, PointAt pointAt) {
  return FillCells(n, [this, &pointAt](std::int32_t id) {
    const auto& point = pointAt(id);
    CellRange cell;
    CellOf(point.x, point.y, cell.firstCol, cell.firstRow);
    cell.lastCol = cell.firstCol;
    cell.lastRow = cell.firstRow;
    return cell;
  });
}

}  // namespace corvane
