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

// The bytes of a file of closed triangles: its header with what ends it, and each triangle.
struct FileSize {
  const char* extension;
  std::uintmax_t ofHeader;
  std::uintmax_t ofTriangle;
};
constexpr FileSize kFileSizes[] = {{".shp", 100, 120}, {".shx", 100, 8}, {".dbf", 66, kNumberWidth + 1}};

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

// Whether the files are as long as so many triangles make them: the library does not tell when what it still
// held did not get to the disk.
bool AreWhole(const std::vector<std::string>& files, std::int64_t nTriangles) {
  std::error_code error;
  for (const std::string& file : files) {
    for (const auto& [extension, ofHeader, ofTriangle] : kFileSizes) {
      const std::uintmax_t size = ofHeader + static_cast<std::uintmax_t>(nTriangles) * ofTriangle;
      if (FileExtension(file) == extension && std::filesystem::file_size(file, error) != size) return false;
    }
  }
  return true;
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

int TIN::WriteShape(const std::string& path, std::int64_t* nPolygons) const {
  StagedFiles shapeStage(path);
  const bool canStage = shapeStage.IsOpen() && !shapeStage.IsDirect();  // three files are no device
  ShapeFile shapes(canStage ? SHPCreate(shapeStage.GetPath().c_str(), SHPT_POLYGON) : nullptr);
  if (!shapes) {
    ShowWarning("Unable to create:" + path + ".");
    return -1;
  }
  const std::string tablePath = DerivedName(path, ".dbf");
  StagedFiles tableStage(tablePath);
  TableFile table(tableStage.IsOpen() && !tableStage.IsDirect() ? DBFCreate(tableStage.GetPath().c_str())
                                                                : nullptr);
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
      nWritten >= 0 && AreWhole(shapeStage.GetFiles(), nWritten) && AreWhole(tableStage.GetFiles(), nWritten);
  if (!isWhole || !StagedFiles::CommitTogether({&tableStage, &shapeStage})) return -4;
  if (nPolygons) *nPolygons = nWritten;
  return 0;
}

}  // namespace corvane
