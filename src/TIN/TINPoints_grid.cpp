// The regular grid of cells: merging files into it, putting single points in, writing it as a points file.

#include <algorithm>
#include <array>
#include <cmath>

#include "TIN/PointBlocks.h"
#include "TIN/PointsHeader.h"
#include "TIN/Prefetch.h"
#include "TIN/RecordExtent.h"
#include "TIN/Resize.h"
#include "TIN/TINPoints.h"
#include "io/InputFile.h"
#include "io/OutputFile.h"

namespace corvane {

namespace {

std::size_t CellIndex(std::int32_t row, std::int32_t col, std::int32_t nCols) {
  return static_cast<std::size_t>(row) * static_cast<std::size_t>(nCols) + static_cast<std::size_t>(col);
}

// Where a point lies in a grid, in cells from the origin.
struct CellAddress {
  double row = 0.0;
  double col = 0.0;

  bool IsNode() const { return std::trunc(row) == row && std::trunc(col) == col; }
};

// Finds the cells of points. It holds what it needs of the grid, which so need not be loaded anew whenever a
// cell has been written.
class CellLocator {
 public:
  explicit CellLocator(const TINPoints& grid)
      : minX_(grid.gridMinX),
        minY_(grid.gridMinY),
        spacingX_(grid.spacingX),
        spacingY_(grid.spacingY),
        nRows_(grid.nRows),
        nCols_(grid.nCols) {}

  CellAddress Locate(const PointRecord& point) const {
    return {(point.y - minY_) / spacingY_, (point.x - minX_) / spacingX_};
  }

  // Kept: an address is cut towards zero, so that less than a cell below the origin counts as inside.
  bool IsInside(const CellAddress& address) const {
    return address.row > -1.0 && address.row < nRows_ && address.col > -1.0 && address.col < nCols_;
  }

  // Of an address inside.
  std::size_t IndexOf(const CellAddress& address) const {
    return CellIndex(static_cast<std::int32_t>(address.row), static_cast<std::int32_t>(address.col), nCols_);
  }

 private:
  double minX_;
  double minY_;
  double spacingX_;
  double spacingY_;
  std::int32_t nRows_;
  std::int32_t nCols_;
};

bool IsWithin(const PointRecord& point, const GroundRect& rect) {
  return rect.minX <= point.x && point.x <= rect.maxX && rect.minY <= point.y && point.y <= rect.maxY;
}

// The number of occupied cells of a grid, and the rows and columns that hold them.
struct OccupiedCells {
  std::int32_t count = 0;
  std::int32_t minRow = 0;
  std::int32_t maxRow = 0;
  std::int32_t minCol = 0;
  std::int32_t maxCol = 0;
};

// Writes the occupied cells of a grid column by column. Cells stand row by row, so several columns are
// gathered at once: walking a single one would use a few bytes of each cache line. A column too tall for
// that is written piece by piece, so that what is gathered never takes more than 8 MB.
class ColumnWriter {
 public:
  ColumnWriter(const TINPoints& grid, OutputFile& file) : grid_(grid), file_(file) {
    occupied_.minRow = grid.nRows;
    occupied_.minCol = grid.nCols;
  }

  // False without memory or if a write fails.
  bool WriteAll() {
    if (grid_.cells.empty()) return true;
    pieceRows_ = std::min(grid_.nRows, kBlockCells);
    if (!Resize(columns_, static_cast<std::size_t>(std::clamp(kBlockCells / grid_.nRows, 1, kMaxColumns))) ||
        !Resize(bytes_, columns_.size() * GetPieceBytes())) {
      return false;
    }
    double x = grid_.gridMinX;
    for (std::int32_t col = 0; col < grid_.nCols;) {
      const std::span<Column> columns = TakeColumns(col, x);
      if (!WriteColumns(col, columns)) return false;
      col += static_cast<std::int32_t>(columns.size());
    }
    return true;
  }

  const OccupiedCells& GetOccupied() const { return occupied_; }

 private:
  static constexpr std::int32_t kBlockCells = 1 << 18;
  static constexpr std::int32_t kMaxColumns = 32;

  // The occupied cells of one column, or of a piece of it, as records.
  struct Column {
    double x = 0.0;
    char* begin = nullptr;
    std::int32_t count = 0;
    std::int32_t firstRow = 0;
    std::int32_t lastRow = 0;
    char* end = nullptr;  // of its records
  };

  std::size_t GetPieceBytes() const { return static_cast<std::size_t>(pieceRows_) * kPointBytes; }

  // The columns from `firstCol` on, as many as there is room for. Moves x to the column behind them.
  std::span<Column> TakeColumns(std::int32_t firstCol, double& x) {
    const auto nLeft = static_cast<std::size_t>(grid_.nCols - firstCol);
    const std::span<Column> columns(columns_.data(), std::min(columns_.size(), nLeft));
    char* begin = bytes_.data();
    for (Column& column : columns) {
      column = {.x = x, .begin = begin};
      begin += GetPieceBytes();
      x += grid_.spacingX;
    }
    return columns;
  }

  // Several whole columns, or a single one in pieces.
  bool WriteColumns(std::int32_t firstCol, std::span<Column> columns) {
    double y = grid_.gridMinY;
    for (std::int32_t row = 0; row < grid_.nRows;) {
      const std::int32_t endRow = row + std::min(pieceRows_, grid_.nRows - row);
      for (Column& column : columns) column = {.x = column.x, .begin = column.begin, .end = column.begin};
      for (; row < endRow; ++row, y += grid_.spacingY) {
        const GridCell* cell = grid_.cells.data() + CellIndex(row, firstCol, grid_.nCols);
        for (Column& column : columns) Append(column, row, y, *cell++);
      }
      std::int32_t col = firstCol;
      for (const Column& column : columns) {
        if (!WriteColumn(col++, column)) return false;
      }
    }
    return true;
  }

  static void Append(Column& column, std::int32_t row, double y, const GridCell& cell) {
    if (cell.z == kNoDataZ) return;
    if (column.count++ == 0) column.firstRow = row;
    column.lastRow = row;
    PackPoint({0, column.x, y, cell.z, cell.value}, column.end);
    column.end += kPointBytes;
  }

  // Kept: the bounds follow the cells one after the other, the minimum first. Of a column's rows, which rise,
  // only the first can be a minimum and the last is the largest; the column's own number sets the minimum
  // when it comes the first time, and the maximum only when it comes again.
  bool WriteColumn(std::int32_t col, const Column& column) {
    if (column.count == 0) return true;
    occupied_.count += column.count;
    FollowMinFirst(column.firstRow, occupied_.minRow, occupied_.maxRow);
    FollowMinFirst(col, occupied_.minCol, occupied_.maxCol);
    if (column.count > 1) {
      FollowMinFirst(column.lastRow, occupied_.minRow, occupied_.maxRow);
      FollowMinFirst(col, occupied_.minCol, occupied_.maxCol);
    }
    return file_.Write(column.begin, static_cast<std::size_t>(column.end - column.begin));
  }

  const TINPoints& grid_;
  OutputFile& file_;
  OccupiedCells occupied_;
  std::int32_t pieceRows_ = 0;  // the most rows that are gathered at once
  std::vector<Column> columns_;
  std::vector<char> bytes_;
};

}  // namespace

int TINPoints::MergeFromFile(const std::string& path) {
  if (cells.empty()) return -1;
  InputFile file(path);
  if (!file.IsOpen()) return -2;
  const auto header = PointsHeader::Read(file);
  if (!header || header->nPoints == 0) return -3;
  PointBlocks blocks(file, header->nPoints);
  if (!blocks.Allocate()) return -3;
  nMissing_ = 0;
  for (auto block = blocks.Next(); !block.empty(); block = blocks.Next()) {
    const std::int32_t nMissingHere = blocks.GetMissingCount() - nMissing_;  // they stand at the block's end
    nMissing_ += nMissingHere;
    MergeRecords(block.first(block.size() - static_cast<std::size_t>(nMissingHere) * kPointBytes));
  }
  return blocks.IsComplete() && nMissing_ < header->nPoints ? 1 : -3;
}

// The cells of some records are all asked for before the first is looked at: a file's order is seldom that of
// the cells in memory.
void TINPoints::MergeRecords(std::span<const char> records) {
  constexpr std::size_t kAhead = 64;
  const CellLocator locator(*this);
  std::array<GridCell*, kAhead> targets{};
  while (!records.empty()) {
    const std::size_t n = std::min(records.size() / kPointBytes, kAhead);
    for (std::size_t i = 0; i < n; ++i) {
      const CellAddress address = locator.Locate(UnpackPoint(records.data() + i * kPointBytes, 0));
      targets[i] = locator.IsInside(address) ? &cells[locator.IndexOf(address)] : nullptr;
      if (targets[i]) Prefetch(targets[i]);
    }
    for (std::size_t i = 0; i < n; ++i) {
      const PointRecord point = UnpackPoint(records.data() + i * kPointBytes, 0);
      if (!targets[i] || !(targets[i]->value < point.value)) continue;
      targets[i]->z = point.z;
      targets[i]->value = point.value;
    }
    records = records.subspan(n * kPointBytes);
  }
}

std::int32_t TINPoints::ReplaceFrom(const TINPoints& from, const GroundRect& rect) {
  if (cells.empty()) return -1;
  const CellLocator locator(*this);
  std::int32_t count = 0;
  for (const PointRecord& point : from.InUse()) {
    const CellAddress address = locator.Locate(point);
    if (!IsWithin(point, rect) || !locator.IsInside(address) || !address.IsNode()) continue;
    GridCell& cell = cells[locator.IndexOf(address)];
    cell.z = point.z;
    cell.value = point.value;
    ++count;
  }
  return count;
}

int TINPoints::WriteGrid(const std::string& path) {
  OutputFile file(path);
  if (!file.IsOpen()) return -1;
  const double oldMinX = gridMinX;
  const double oldMinY = gridMinY;
  if (WriteGrid(file) >= 0 && file.Commit()) return 1;
  gridMinX = oldMinX;
  gridMinY = oldMinY;
  return -1;
}

int TINPoints::WriteGrid(OutputFile& file, std::int32_t* nWritten) {
  file.Seek(PointsHeader::kBytes);
  ColumnWriter writer(*this, file);
  const OccupiedCells& occupied = writer.GetOccupied();
  if (!writer.WriteAll()) return -1;
  if (nWritten) *nWritten = occupied.count;
  if (occupied.count < 1) return -1;

  const double newMaxX = occupied.maxCol * spacingX + gridMinX;
  const double newMaxY = occupied.maxRow * spacingY + gridMinY;
  const double newMinX = gridMinX + occupied.minCol * spacingX;
  const double newMinY = gridMinY + occupied.minRow * spacingY;
  const PointsHeader header = {occupied.count, newMinX, newMaxY, newMaxX, newMinY, spacingX, spacingY};
  const auto bytes = header.Pack();
  if (!file.Seek(0) || !file.Write(bytes.data(), bytes.size())) return -1;
  gridMinX = newMinX;
  gridMinY = newMinY;
  return 1;
}

}  // namespace corvane
