// The triangles of a TIN as polygons of a shape file.

#include <shapefil.h>

#include <array>
#include <filesystem>
#include <memory>
#include <span>
#include <system_error>

#include "TIN/TIN.h"
#include "io/Paths.h"
#include "io/StagedFiles.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

struct CloseShapes {
  void operator()(SHPInfo* file) const { SHPClose(file); }
};
struct CloseTable {
  void operator()(DBFInfo* file) const { DBFClose(file); }
};
using ShapeFile = std::unique_ptr<SHPInfo, CloseShapes>;
using TableFile = std::unique_ptr<DBFInfo, CloseTable>;

constexpr int kNumberWidth = 5;  // digits

// The bytes of a closed triangle in a shape file, and of the file's header.
constexpr std::uintmax_t kPolygonBytes = 120;
constexpr std::uintmax_t kHeaderBytes = 100;

// A ring: the corners of a triangle, the first one again at the end.
struct Ring {
  std::array<double, 4> x;
  std::array<double, 4> y;
};

Ring RingOf(const PointRecord& a, const PointRecord& b, const PointRecord& c) {
  return {{a.x, b.x, c.x, a.x}, {a.y, b.y, c.y, a.y}};
}

// Appends the ring as a polygon, and its number to the table.
bool WriteRing(const Ring& ring, SHPInfo* shapes, DBFInfo* table) {
  const int firstOfPart = 0;
  SHPObject* const polygon = SHPCreateObject(SHPT_POLYGON, -1, 1, &firstOfPart, nullptr, 4, ring.x.data(),
                                             ring.y.data(), nullptr, nullptr);
  if (!polygon) return false;
  const int number = SHPWriteObject(shapes, -1, polygon);
  SHPDestroyObject(polygon);
  // Kept: a number with more digits than the field loses its last ones.
  DBFWriteIntegerAttribute(table, DBFGetRecordCount(table), 0, number);
  return number >= 0;
}

// The library does not tell when what it still held did not get to the disk.
bool HasAllPolygons(const std::string& path, std::uintmax_t nPolygons) {
  std::error_code error;
  return !std::filesystem::is_regular_file(path, error) ||
         std::filesystem::file_size(path, error) == kHeaderBytes + nPolygons * kPolygonBytes;
}

}  // namespace

std::int64_t TIN::ForEachTriangle(const TakeTriangle& take) const {
  std::int64_t nTaken = 0;
  for (std::int32_t i = 0; i < nTriangles; ++i) {
    bool isTaken = false;
    if (rawRecords) {
      const char* const stored = rawRecords.get() + static_cast<std::size_t>(i) * kTriangleBytes;
      isTaken = take(UnpackVertex(stored), UnpackVertex(stored + kVertexBytes),
                     UnpackVertex(stored + 2 * kVertexBytes));
    } else {
      if (GetTriangle(i).id < 0) continue;
      isTaken = take(GetVertex(i, 0), GetVertex(i, 1), GetVertex(i, 2));
    }
    if (!isTaken) return -1;
    ++nTaken;
  }
  return nTaken;
}

int TIN::WriteShape(const std::string& path) const {
  StagedFiles shapeStage(path);
  ShapeFile shapes(shapeStage.IsOpen() ? SHPCreate(shapeStage.GetPath().c_str(), SHPT_POLYGON) : nullptr);
  if (!shapes) {
    ShowWarning("Unable to create:" + path + ".");
    return -1;
  }
  const std::string tablePath = DerivedName(path, ".dbf");
  StagedFiles tableStage(tablePath);
  TableFile table(tableStage.IsOpen() ? DBFCreate(tableStage.GetPath().c_str()) : nullptr);
  if (!table) {
    ShowWarning("DBFCreate(" + tablePath + ") failed.");
    return -2;
  }
  // Kept: the message names another field.
  if (DBFAddField(table.get(), "DD", FTInteger, kNumberWidth, 0) == -1) {
    ShowWarning("DBFAddField(ID,FTInteger," + std::to_string(kNumberWidth) + ",0) failed.");
    return -3;
  }
  const std::int64_t nWritten =
      ForEachTriangle([&](const PointRecord& a, const PointRecord& b, const PointRecord& c) {
        return WriteRing(RingOf(a, b, c), shapes.get(), table.get());
      });
  shapes.reset();
  table.reset();
  const bool isWhole =
      nWritten >= 0 && HasAllPolygons(shapeStage.GetPath(), static_cast<std::uintmax_t>(nWritten));
  return isWhole && tableStage.Commit() && shapeStage.Commit() ? 0 : -4;
}

}  // namespace corvane
