// ".tin" files in their raw form, and what a TIN writes.

#include <algorithm>
#include <array>
#include <new>

#include "TIN/PointsHeader.h"
#include "TIN/RecordExtent.h"
#include "TIN/TIN.h"
#include "io/InputFile.h"
#include "io/LargePages.h"
#include "io/NumberText.h"
#include "io/OutputFile.h"
#include "ui/ErrorTexts.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

bool WritePoint(OutputFile& file, const PointRecord& record) {
  std::array<char, kPointBytes> stored{};
  PackPoint(record, stored.data());
  return file.Write(stored.data(), stored.size());
}

bool WriteHeader(OutputFile& file, const PointsHeader& header) {
  const auto stored = header.Pack();
  return file.Write(stored.data(), stored.size());
}

bool WriteCount(OutputFile& file, std::int32_t count) {
  return file.Write(&count, sizeof count);
}

}  // namespace

int TIN::ReadTIN(const std::string& path) {
  InputFile file(path);
  if (file.IsOpen()) return ReadTIN(file);
  Clear();
  ShowWarning(OpenErrorText(path));
  return -1;
}

int TIN::ReadTIN(InputFile& file) {
  Clear();
  std::int32_t count = 0;
  if (file.Read(&count, sizeof count) != sizeof count) return FailRead(-2, "ReadTIN: Read TIN error!");
  std::string line = "Number of triangles = ";
  AppendInt(line, count);
  Ui().Print(line + "\n");
  if (count < 0) return FailRead(-1, "ReadTIN: Memory allocation error!");
  const std::int64_t size = count * static_cast<std::int64_t>(kTriangleBytes);
  if (size > file.BytesLeft().value_or(0)) return FailRead(-2, "ReadTIN: Read TIN error!");
  try {
    rawRecords = std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(size));
  } catch (const std::bad_alloc&) {
    return FailRead(-1, "ReadTIN: Memory allocation error!");
  }
  UseLargePages(rawRecords.get(), static_cast<std::size_t>(size));
  if (file.Read(rawRecords.get(), static_cast<std::size_t>(size)) != static_cast<std::size_t>(size)) {
    return FailRead(-2, "ReadTIN: Read TIN error!");
  }
  nTriangles = count;
  return 0;
}

int TIN::FailRead(int status, const char* text) {
  Clear();
  ShowMessage(text);
  return status;
}

void TIN::Clear() {
  *this = TIN();
}

int TIN::WriteTIN(OutputFile& file) const {
  if (!WriteCount(file, nTriangles)) return -1;
  if (rawRecords) return WriteRawTriangles(file) ? 0 : -1;
  const std::int32_t written = WriteLiveTriangles(file);
  if (written < 0) return -1;
  // Kept: the real count lands on the first corner's id, and the count at byte 0 stays.
  if (written < nTriangles && !(file.Seek(kFirstTriangle) && WriteCount(file, written))) return -1;
  return 0;
}

int TIN::WriteCompactTIN(OutputFile& file) const {
  if (nTriangles > 0 && !IsStored()) return -1;
  const auto isLive = [](const TINTriangle& triangle) { return triangle.id >= 0; };
  const auto nLive = std::count_if(triangles.begin(), triangles.end(), isLive);
  if (!WriteCount(file, static_cast<std::int32_t>(nLive))) return -1;
  return WriteLiveTriangles(file) < 0 ? -1 : 0;
}

int TIN::WriteCompactTIN(const std::string& path) const {
  OutputFile file(path);
  return file.IsOpen() && WriteCompactTIN(file) == 0 && file.Commit() ? 0 : -1;
}

bool TIN::WriteRawTriangles(OutputFile& file) const {
  return file.Write(rawRecords.get(), static_cast<std::size_t>(nTriangles) * kTriangleBytes);
}

// The number of triangles written, or -1 if a write fails.
std::int32_t TIN::WriteLiveTriangles(OutputFile& file) const {
  std::array<char, kTriangleBytes> stored{};
  std::int32_t written = 0;
  for (const TINTriangle& triangle : triangles) {
    if (triangle.id < 0) continue;
    for (std::size_t k = 0; k < 3; ++k) {
      PackVertex(vertices[static_cast<std::size_t>(triangle.v[k])], stored.data() + k * kVertexBytes);
    }
    if (!file.Write(stored.data(), stored.size())) return -1;
    ++written;
  }
  return written;
}

std::int32_t TIN::WritePoints(const std::string& path, int mode) const {
  OutputFile file(path);
  if (!file.IsOpen()) {
    ShowWarning(WriteErrorText(path));
    return -1;
  }
  const std::int32_t written = WritePoints(file, mode);
  return written >= 0 && file.Commit() ? written : -2;
}

std::int32_t TIN::WritePoints(OutputFile& file, int mode) const {
  if (vertices.empty()) return -1;
  if (mode == 0) return WriteAllPoints(file);
  if (mode == 1 || mode == 2) return WriteChosenPoints(file, mode == 1);
  return -1;
}

std::int32_t TIN::WriteAllPoints(OutputFile& file) const {
  const PointsHeader header = {nPoints, ptsMinX, ptsMaxY, ptsMaxX, ptsMinY, spacingX, spacingY};
  if (!WriteHeader(file, header)) return -1;
  for (const TINVertex& vertex : vertices) {
    if (!WritePoint(file, vertex)) return -1;
  }
  return nPoints;
}

// The vertices with id >= 0, or those below, and behind them the header, which counts and bounds them.
int TIN::WriteChosenPoints(OutputFile& file, bool live) const {
  // Kept: the bounds start crossed, so without any chosen vertex the header carries the stored ones crossed.
  PointsHeader header = {0, ptsMaxX, ptsMinY, ptsMinX, ptsMaxY, spacingX, spacingY};
  if (!file.Seek(PointsHeader::kBytes)) return -1;
  for (const TINVertex& vertex : vertices) {
    if ((vertex.id >= 0) != live) continue;
    if (!WritePoint(file, vertex)) return -1;
    ++header.nPoints;
    Widen(header.minX, header.maxX, vertex.x);
    Widen(header.minY, header.maxY, vertex.y);
  }
  return file.Seek(0) && WriteHeader(file, header) ? 1 : -1;
}

}  // namespace corvane
