#include "TIN/GridIndex.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "TIN/Resize.h"
#include "io/NumberText.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::int64_t kCellsPerItem = 100;
constexpr std::int64_t kSpareCells = 1000000;
constexpr std::int64_t kMaxItems = std::numeric_limits<std::int32_t>::max();

// Cells along a side of the given length; 0 if that is no number of 32 bits.
std::int32_t CellsAlong(double length, double cellSize) {
  return TruncateToInt(length / cellSize + 1.0).value_or(0);
}

}  // namespace

void GridIndex::SetRectangle(std::span<const double, 4> extent4, std::int64_t n) {
  Free();
  minX = extent4[0];
  maxX = extent4[1];
  minY = extent4[2];
  maxY = extent4[3];
  const std::int64_t counted = std::clamp<std::int64_t>(n, 0, kMaxItems);
  maxCells_ = kCellsPerItem * counted + kSpareCells;
}

void GridIndex::Size(std::span<const double, 4> extent4, std::int64_t n, double density) {
  SetRectangle(extent4, n);
  const double w = std::fabs(maxX - minX);
  const double h = std::fabs(maxY - minY);
  const double count = static_cast<double>(n);
  if (w == 0.0 && h == 0.0) {
    cellSize = 1.0;
  } else if (w == 0.0) {
    cellSize = density * h / count;
  } else if (h == 0.0) {
    cellSize = density * w / count;
  } else {
    cellSize = std::sqrt(w * h * density / count);
  }
  nCols = w == 0.0 ? 1 : CellsAlong(w, cellSize);
  nRows = h == 0.0 ? 1 : CellsAlong(h, cellSize);
}

void GridIndex::SizeWithCell(std::span<const double, 4> extent4, double size, std::int64_t n) {
  SetRectangle(extent4, n);
  cellSize = size;
  nCols = CellsAlong(std::fabs(maxX - minX), cellSize);
  nRows = CellsAlong(std::fabs(maxY - minY), cellSize);
}

// 0 if there can't be any.
std::size_t GridIndex::CountCells() const {
  if (nRows < 1 || nCols < 1) return 0;
  const std::int64_t nCells = std::int64_t{nRows} * nCols;
  return nCells <= maxCells_ ? static_cast<std::size_t>(nCells) : 0;
}

int GridIndex::Allocate() {
  Free();
  const std::size_t nCells = CountCells();
  return nCells > 0 && Resize(lists_, nCells) ? 0 : -1;
}

void GridIndex::Free() {
  items_ = {};
  begins_ = {};
  lists_ = {};
}

// Before a bulk build: begins_ counts the entries of each cell.
bool GridIndex::AllocateCounts() {
  Free();
  const std::size_t nCells = CountCells();
  return nCells > 0 && Resize(begins_, nCells + 1);
}

// Without memory for the lists, or beyond 32 bits, the grid is left without cells.
bool GridIndex::TurnCountsIntoBegins() {
  std::uint64_t total = 0;
  for (std::uint32_t& begin : begins_) {
    const std::uint32_t count = begin;
    begin = static_cast<std::uint32_t>(total);
    total += count;
  }
  if (total <= std::numeric_limits<std::uint32_t>::max() && Resize(items_, total)) return true;
  Free();
  return false;
}

// After a bulk build has moved each cell's begin to its end, which is the next one's begin.
void GridIndex::TurnEndsIntoBegins() {
  std::copy_backward(begins_.begin(), begins_.end() - 1, begins_.end());
  begins_.front() = 0;
}

// Gives each list a record of its own, so that single ones can change.
bool GridIndex::Loosen() {
  if (!HasCells()) return Allocate() == 0;
  if (begins_.empty()) return true;
  if (!Resize(lists_, begins_.size() - 1)) return false;
  for (std::size_t cell = 0; cell < lists_.size(); ++cell) {
    const std::uint32_t size = begins_[cell + 1] - begins_[cell];
    lists_[cell] = {begins_[cell], size, size};
  }
  begins_ = {};
  return true;
}

int GridIndex::Insert(double x, double y, std::int32_t id) {
  std::int32_t col = 0;
  std::int32_t row = 0;
  CellOf(x, y, col, row);
  if (!Loosen()) return -1;
  if (!HasCell(row, col)) return ReportOutside(row, col);
  List& list = lists_[CellIndex(row, col)];
  if (list.size == list.capacity && !MakeRoom(list)) return -1;
  items_[list.begin + list.size] = id;
  ++list.size;
  return 1;
}

int GridIndex::Remove(double x, double y, std::int32_t id) {
  if (!HasCells() || !Loosen()) return -1;
  std::int32_t col = 0;
  std::int32_t row = 0;
  CellOf(x, y, col, row);
  if (!HasCell(row, col)) return ReportOutside(row, col);
  List& list = lists_[CellIndex(row, col)];
  const auto begin = items_.begin() + static_cast<std::ptrdiff_t>(list.begin);
  const auto end = begin + list.size;
  const auto found = std::find(begin, end, id);
  if (found == end) return 0;
  std::copy(found + 1, end, found);
  --list.size;
  return 1;
}

// Moves a full list to the end of the array, with room for as many again.
bool GridIndex::MakeRoom(List& list) {
  const std::size_t begin = items_.size();
  const std::uint64_t capacity = std::max<std::uint64_t>(4, std::uint64_t{list.size} * 2);
  if (capacity > std::numeric_limits<std::uint32_t>::max()) return false;
  if (!Resize(items_, begin + capacity)) return false;
  std::copy_n(items_.begin() + static_cast<std::ptrdiff_t>(list.begin), list.size,
              items_.begin() + static_cast<std::ptrdiff_t>(begin));
  list.begin = begin;
  list.capacity = static_cast<std::uint32_t>(capacity);
  return true;
}

int GridIndex::ReportOutside(std::int32_t row, std::int32_t col) const {
  std::string text = "rectangle: ";
  for (const double bound : {minX, maxY, maxX, minY}) {
    AppendFixed(text, bound);
    text += ", ";
  }
  text += "row: ";
  AppendInt(text, row);
  text += ", col: ";
  AppendInt(text, col);
  Ui().Trace(text + "\n");
  ShowWarning(kExtensionError);
  return -2;
}

int GridIndex::FailOutside(std::int32_t row, std::int32_t col) {
  Free();
  return ReportOutside(row, col);
}

int GridIndex::QueryRect(std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom,
                         std::vector<std::int32_t>& list) const {
  std::int32_t col0 = 0;
  std::int32_t row0 = 0;
  std::int32_t col1 = 0;
  std::int32_t row1 = 0;
  CellOf(left, top, col0, row0);
  CellOf(right, bottom, col1, row1);
  if (!HasCells() || row1 < 0 || col1 < 0 || row0 >= nRows || col0 >= nCols) return 0;
  const std::int32_t lastRow = std::min(row1, nRows - 1);
  const std::int32_t lastCol = std::min(col1, nCols - 1);
  for (std::int32_t row = std::max(row0, 0); row <= lastRow; ++row) {
    for (std::int32_t col = std::max(col0, 0); col <= lastCol; ++col) {
      const auto cell = GetCell(row, col);
      list.insert(list.end(), cell.begin(), cell.end());
    }
  }
  return 1;
}

int GridIndex::QueryPolygon(std::span<const double> coords, std::vector<std::int32_t>& list) const {
  const std::size_t nPairs = coords.size() / 2;
  if (nPairs < 4) return 0;
  double left = coords[0];
  double right = coords[0];
  double top = coords[1];
  double bottom = coords[1];
  for (std::size_t i = 0; i + 1 < nPairs; ++i) {
    const double x = coords[2 * i];
    const double y = coords[2 * i + 1];
    if (std::isnan(x) || std::isnan(y)) return 0;
    left = std::min(left, x);
    right = std::max(right, x);
    top = std::min(top, y);
    bottom = std::max(bottom, y);
  }
  return QueryRect(TruncateSaturated(left), TruncateSaturated(top), TruncateSaturated(right),
                   TruncateSaturated(bottom), list);
}

std::int64_t GridIndex::MeanOccupancy() const {
  if (!HasCells()) return 0;
  std::uint64_t total = begins_.empty() ? 0 : begins_.back();
  for (const List& list : lists_) total += list.size;
  const double nCells = static_cast<double>(nRows) * nCols;
  return TruncateTo64(static_cast<double>(total) / nCells + 0.5);
}

}  // namespace corvane
