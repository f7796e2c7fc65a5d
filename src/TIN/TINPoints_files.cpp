// The points file, the grid of cells written as one, and the debugging dump.

#include <algorithm>
#include <array>
#include <new>
#include <optional>

#include "TIN/PointsHeader.h"
#include "TIN/TINPoints.h"
#include "io/InputFile.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::size_t kBlockPoints = 32768;

// Whether a file with so many bytes of records may be one of `count` points that has been cut short.
bool IsBelievable(std::int64_t count, std::int64_t bytes) {
  return count <= 4 * (bytes / static_cast<std::int64_t>(kPointBytes)) + 4096;
}

// Reads the records of the next `count` points, or as many as there are, and zeros for the last one's missing
// bytes. Returns the bytes that came. Throws std::bad_alloc.
std::int64_t ReadRecords(InputFile& file, std::size_t count, std::vector<char>& block,
                         std::vector<PointRecord>& records) {
  std::int64_t total = 0;
  while (records.size() < count) {
    const std::size_t wanted = std::min(count - records.size(), kBlockPoints) * kPointBytes;
    const std::size_t got = file.Read(block.data(), wanted);
    total += static_cast<std::int64_t>(got);
    const std::size_t first = records.size();
    const std::size_t nRead = (got + kPointBytes - 1) / kPointBytes;
    std::fill(block.begin() + static_cast<std::ptrdiff_t>(got),
              block.begin() + static_cast<std::ptrdiff_t>(nRead * kPointBytes), '\0');
    records.resize(first + nRead);
    UnpackPoints(block.data(), static_cast<std::int32_t>(first), std::span(records).subspan(first));
    if (got < wanted) break;
  }
  return total;
}

// The records of a file of `count` points, and how many of them it lacks, wholly or in part; nothing if the
// count is not believed, the memory does not do or a read fails.
std::optional<std::vector<PointRecord>> ReadAllRecords(InputFile& file, std::int32_t count,
                                                       std::vector<char>& block, std::int32_t& nMissing) {
  const auto bytesLeft = file.BytesLeft();
  if (count < 0 || (bytesLeft && !IsBelievable(count, *bytesLeft))) return std::nullopt;
  try {
    std::vector<PointRecord> records;
    if (bytesLeft) records.reserve(static_cast<std::size_t>(count));
    const std::int64_t bytes = ReadRecords(file, static_cast<std::size_t>(count), block, records);
    if (file.HasFailed() || !IsBelievable(count, bytes)) return std::nullopt;
    const std::size_t nRead = records.size();
    records.resize(static_cast<std::size_t>(count));
    nMissing = count - static_cast<std::int32_t>(bytes / static_cast<std::int64_t>(kPointBytes));
    for (std::size_t i = nRead; i < records.size(); ++i) records[i].id = static_cast<std::int32_t>(i);
    return records;
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  }
}

// Kept: the first of the two bounds that a number passes is the only one it is tested against. The first
// occupied row or column of a grid so sets the minimum alone.
template <typename T>
void FollowMinFirst(T number, T& min, T& max) {
  if (number < min) {
    min = number;
  } else if (number > max) {
    max = number;
  }
}

}  // namespace

int TINPoints::Read(const std::string& path) {
  InputFile file(path);
  return file.IsOpen() ? Read(file) : -1;
}

int TINPoints::Read(InputFile& file) {
  points.clear();
  nPoints = capacity = nMissing_ = 0;
  index.Free();

  std::array<char, PointsHeader::kBytes> bytes = {};
  if (file.Read(bytes.data(), bytes.size()) != bytes.size()) return file.HasFailed() ? -3 : -1;
  const PointsHeader header = PointsHeader::Unpack(bytes);
  minX = header.minX;
  maxY = header.maxY;
  maxX = header.maxX;
  minY = header.minY;
  spacingX = header.spacingX;
  spacingY = header.spacingY;
  if (header.nPoints == 0) return -1;
  if (!(minY <= maxY)) std::swap(minY, maxY);

  std::vector<char> block;
  try {
    block.resize(kBlockPoints * kPointBytes);
  } catch (const std::bad_alloc&) {
    return -4;
  }
  auto records = ReadAllRecords(file, header.nPoints, block, nMissing_);
  if (!records) return -3;
  points = std::move(*records);
  nPoints = capacity = header.nPoints;
  minZ = maxZ = points[0].z;
  for (const PointRecord& point : points) FollowMinFirst(point.z, minZ, maxZ);
  return 1;
}

std::int32_t TINPoints::Write(const std::string& path) const {
  OutputFile file(path);
  if (!file.IsOpen()) return -1;
  const std::int32_t written = Write(file);
  return written >= 0 && file.Commit() ? written : -1;
}

std::int32_t TINPoints::Write(OutputFile& file) const {
  const auto header = PointsHeader{nPoints, minX, maxY, maxX, minY, spacingX, spacingY}.Pack();
  file.Write(header.data(), header.size());

  std::vector<char> block;
  try {
    block.resize(std::min(InUse().size(), kBlockPoints) * kPointBytes);
  } catch (const std::bad_alloc&) {
    return -1;
  }
  bool good = true;
  for (std::size_t first = 0; good && first < InUse().size(); first += kBlockPoints) {
    const auto records = InUse().subspan(first, std::min(kBlockPoints, InUse().size() - first));
    PackPoints(records, block.data());
    good = file.Write(block.data(), records.size() * kPointBytes);
  }
  return good ? nPoints : -1;
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

int TINPoints::WriteGrid(OutputFile& file) {
  file.Seek(PointsHeader::kBytes);
  std::int32_t count = 0;
  std::int32_t minRow = nRows, maxRow = 0;
  std::int32_t minCol = nCols, maxCol = 0;
  PointRecord node;
  char bytes[kPointBytes];
  node.x = gridMinX;
  for (std::int32_t col = 0; col < nCols; ++col, node.x += spacingX) {
    node.y = gridMinY;
    for (std::int32_t row = 0; row < nRows; ++row, node.y += spacingY) {
      const GridCell& cell = cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(nCols) +
                                   static_cast<std::size_t>(col)];
      if (cell.z == kNoDataZ) continue;
      ++count;
      FollowMinFirst(row, minRow, maxRow);
      FollowMinFirst(col, minCol, maxCol);
      node.z = cell.z;
      node.value = cell.value;
      PackPoint(node, bytes);
      file.Write(bytes, sizeof bytes);
    }
  }
  if (count < 1) return -1;

  const double newMaxX = maxCol * spacingX + gridMinX;
  const double newMaxY = maxRow * spacingY + gridMinY;
  const double newMinX = gridMinX + minCol * spacingX;
  const double newMinY = gridMinY + minRow * spacingY;
  const auto header = PointsHeader{count, newMinX, newMaxY, newMaxX, newMinY, spacingX, spacingY}.Pack();
  if (!file.Seek(0) || !file.Write(header.data(), header.size())) return -1;
  gridMinX = newMinX;
  gridMinY = newMinY;
  return 1;
}

void TINPoints::DumpText(const std::string& path) const {
  constexpr const char* kCannotDump = "Unable to open file for dump";
  OutputFile file(path.empty() ? "tinPoint.txt" : path);
  if (!file.IsOpen()) {
    Ui().Trace(kCannotDump);
    return;
  }
  std::string line;
  for (const PointRecord& point : InUse()) {
    line.clear();
    AppendInt(line, point.id);
    for (const double number : {point.x, point.y, point.z, point.value}) {
      line += ", ";
      AppendGeneral(line, number, 6);
    }
    line += '\n';
    file.Write(line);
  }
  if (!file.Commit()) Ui().Trace(kCannotDump);
}

}  // namespace corvane
