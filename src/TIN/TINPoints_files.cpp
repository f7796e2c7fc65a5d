// The points file, and the debugging dump.

#include <algorithm>
#include <new>
#include <optional>

#include "TIN/PointBlocks.h"
#include "TIN/PointsHeader.h"
#include "TIN/RecordExtent.h"
#include "TIN/TINPoints.h"
#include "io/InputFile.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr std::size_t kBlockPoints = 32768;

// All records of a file, with their positions as ids; nothing if the count is not believed, the memory does
// not do or a read fails.
std::optional<std::vector<PointRecord>> ReadAllRecords(PointBlocks& blocks, std::int32_t count) {
  try {
    std::vector<PointRecord> records;
    if (blocks.IsSizeKnown() && blocks.IsBelievable()) records.reserve(static_cast<std::size_t>(count));
    for (auto block = blocks.Next(); !block.empty(); block = blocks.Next()) {
      const std::size_t first = records.size();
      records.resize(first + block.size() / kPointBytes);
      UnpackPoints(block.data(), static_cast<std::int32_t>(first), std::span(records).subspan(first));
    }
    if (blocks.IsComplete()) return records;
  } catch (const std::bad_alloc&) {
  }
  return std::nullopt;
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

  const auto header = PointsHeader::Read(file);
  if (!header) return file.HasFailed() ? -3 : -1;
  minX = header->minX;
  maxY = header->maxY;
  maxX = header->maxX;
  minY = header->minY;
  spacingX = header->spacingX;
  spacingY = header->spacingY;
  if (header->nPoints == 0) return -1;
  if (!(minY <= maxY)) std::swap(minY, maxY);

  PointBlocks blocks(file, header->nPoints);
  if (!blocks.Allocate()) return -4;
  auto records = ReadAllRecords(blocks, header->nPoints);
  if (!records) return -3;
  points = std::move(*records);
  nPoints = capacity = header->nPoints;
  nMissing_ = blocks.GetMissingCount();
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
