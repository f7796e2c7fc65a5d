#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "TIN/GridIndex.h"
#include "TIN/PointRecord.h"
#include "numerics/Extent6.h"
#include "numerics/Point3.h"

namespace corvane {

class InputFile;
class OutputFile;
class VertexTable;

struct TINTriangle {
  std::int32_t id = 0;               // position in `triangles`; negative: deleted
  std::int32_t v[3] = {-1, -1, -1};  // positions in `vertices`, counter-clockwise
  double nx = 0.0;                   // unit normal; nz is the cosine of the slope
  double ny = 0.0;
  double nz = 0.0;
};

struct TINVertex : PointRecord {
  std::span<const std::int32_t> triangles;  // that use the vertex, in file order
};

// One connected set of vertices at or above a horizontal cut.
struct TINGroup {
  std::int32_t label = 0;
  double cutHeight = 0.0;              // elevation of the cut
  double area = 0.0;                   // plan area of the group's inner triangles
  std::vector<std::int32_t> members;   // vertex indices
  std::vector<std::int32_t> boundary;  // vertices next to lower ones
};

// A list of vertex indices for each vertex, all in one array.
class NeighbourLists {
 public:
  bool empty() const { return begins_.empty(); }
  std::size_t size() const { return begins_.empty() ? 0 : begins_.size() - 1; }
  std::span<const std::int32_t> operator[](std::size_t vertex) const {
    return {items_.data() + begins_[vertex], begins_[vertex + 1] - begins_[vertex]};
  }

 private:
  friend class TIN;
  std::vector<std::size_t> begins_;  // of each list, and the end of the last
  std::vector<std::int32_t> items_;
};

// A triangulated irregular network, and the owner of the file ".tin".
//
// A ".tin" file is little-endian without padding: int32 nTriangles; then for each triangle its three corners,
// counter-clockwise, as 36-byte vertices: int32 id, doubles x, y, z, value. Each vertex is repeated for every
// triangle that holds it; its id, together with its place, tells that it is the same one.
//
// A TIN is empty, raw after ReadTIN, and stored after StoreTriangle. Its connectivity and its x and y never
// change after that; filters change z, and mark vertices or triangles by a negative id.
class TIN {
 public:
  static constexpr std::int64_t kFirstTriangle = 4;  // its place in the file, behind the count

  TIN();
  virtual ~TIN();
  TIN(const TIN&) = delete;
  TIN& operator=(const TIN&) = delete;

  // Reads count and corners from the start of a file, in place of what the TIN held, and prints the count.
  // 0; -1: a negative count or no memory; -2: the file ends before its count says. Each failure shows a box
  // and leaves the TIN empty.
  int ReadTIN(InputFile& file);

  // The same from a path; -1, with a warning, also if it does not open.
  int ReadTIN(const std::string& path);

  // Builds the model after ReadTIN, reading the file a second time from byte 4 on, at which it must stand,
  // and shows count and extents in a box. Corners that the file has lost in between read as zeros. 0; -1:
  // nothing has been read (with a box), or all corners are at one (x, y); -2, with a box: a corner is no
  // point of the ground, its triangles need too large a grid, or memory runs out. A failure leaves the TIN
  // empty, unless it is that of a stored TIN which nothing has been read for.
  int StoreTriangle(InputFile& file);

  // The same from a path; -1, with a warning, also if it does not open.
  int StoreTriangle(const std::string& path);

  // Writes the triangles that are not deleted, straight from the model, at the present position, which must
  // be byte 0. 0, or -1 if a write fails or the TIN is raw.
  // Kept: with deleted triangles the count at byte 0 stays, and the real one overwrites the first corner's
  // id.
  int WriteTIN(OutputFile& file) const;

  // Writes the triangles that are not deleted, under their own count. 0, or -1 if a write fails; the path
  // form then leaves the old file as it was.
  int WriteCompactTIN(OutputFile& file) const;
  int WriteCompactTIN(const std::string& path) const;

  // Writes vertices as a points file: mode 0 all of them, with the stored extents in the header, 1 those with
  // id >= 0, 2 those with id < 0, with their own bounds in x and y. Without any such vertex, modes 1 and 2
  // write a header whose bounds are the stored ones, crossed.
  // Mode 0 returns the number of points, modes 1 and 2 return 1; -1: there is no vertex at all, a write
  // fails, or another mode.
  std::int32_t WritePoints(OutputFile& file, int mode) const;

  // The same to a path. -1, with a warning, if it can't be opened; -2 if nothing can be written. The old file
  // is then as it was.
  std::int32_t WritePoints(const std::string& path, int mode) const;

  // Whether there is a model with triangles: a raw TIN has none yet.
  bool IsStored() const { return !triangles.empty(); }

  std::int32_t GetTriangleCount() const { return nTriangles; }
  std::int32_t GetPointCount() const { return nPoints; }
  const Extent6& GetExtent() const { return extent; }
  const TINTriangle& GetTriangle(std::int32_t i) const { return triangles[static_cast<std::size_t>(i)]; }

  // The vertex at a triangle's corner 0, 1 or 2.
  const TINVertex& GetVertex(std::int32_t triangle, int corner) const {
    return vertices[static_cast<std::size_t>(GetTriangle(triangle).v[corner])];
  }

  // The triangle that holds p in plan. 0, 1 or 2: p is exactly on that corner; 3: inside or on an edge, which
  // belongs to the first of its triangles in the cell's list. -1: outside the extents; -2: in no triangle.
  // `triangle` is the last one that was tested.
  // Cost: one grid cell and the few triangles that touch it.
  int FindTriangle(const Point3& p, std::int32_t& triangle) const;

  // The height at p of the triangle's plane, through its first corner; p.z if the plane stands upright
  // (|nz| < 1e-12).
  double InterpolateZ(const Point3& p, std::int32_t triangle) const;

  // The same for the plane through `vertex` with unit normal `normal`.
  static double InterpolateZ(const Point3& p, const PointRecord& vertex, const Point3& normal);

  // The bounding box of a triangle.
  void TriangleBox(std::int32_t i, Extent6& box) const;

  // Takes ptsMinZ, ptsMaxZ and the extent's minZ, maxZ from the vertices.
  void RecalcZExtent();

  // Recomputes the normals of the vertex's triangles, with length twice the triangle's area.
  void RecomputeNormals(std::int32_t vertex);

  // Brings them to unit length; a triangle without area gets (0, 0, 1).
  void NormalizeNormals(std::int32_t vertex);

  // Fills triangleAreas with the signed plan areas, in square ground units. 1; -1, with a box, if there is
  // no triangle; -1 without memory.
  int CalcTrianglesArea();

  // Fills `neighbours`, once: for each vertex the other corners of its triangles, in the order in which they
  // are first seen. 1, or -1 without memory.
  int BuildNeighbours();

  std::int32_t nTriangles = 0;
  Extent6 extent;  // of all corners
  std::vector<TINTriangle> triangles;
  std::int32_t nPoints = 0;  // vertices in use: the size of `vertices`
  double ptsMinX = 0.0;      // the vertices' own extents, in the order of a points file's header
  double ptsMaxY = 0.0;
  double ptsMaxX = 0.0;
  double ptsMinY = 0.0;
  double ptsMinZ = 0.0;
  double ptsMaxZ = 0.0;
  double spacingX = 1.0;  // for points files
  double spacingY = 1.0;
  std::int32_t vertexCapacity = 0;
  std::vector<TINVertex> vertices;
  GridIndex triangleGrid;              // cells list the triangles whose bounding box touches them
  GridIndex vertexGrid;                // the same cells; they list the vertices
  std::unique_ptr<char[]> rawRecords;  // between ReadTIN and StoreTriangle: 3 * nTriangles stored vertices
  NeighbourLists neighbours;           // by vertex; built on demand, as are the next three
  std::vector<double> triangleAreas;   // by triangle
  std::vector<double> vertexSlopes;    // by vertex
  std::vector<std::int32_t> labels;    // by vertex
  std::vector<TINGroup> groups;
  std::vector<std::int32_t> highlight;  // triangles that the view draws in the second colour

 private:
  // The plan positions of a triangle's corners, together for the point test.
  struct CornerXY {
    double x = 0.0;
    double y = 0.0;
  };
  struct Corners {
    CornerXY c[3];
  };

  enum class StoreResult { Stored, NotRead, OnePoint, BadFile, LargeGrid, NoMemory };

  TIN& operator=(TIN&&) = default;

  void Clear();
  int FailRead(int status, const char* text);

  StoreResult BuildModel(InputFile& file);
  void ScanExtent();
  void ShowStatistics() const;
  StoreResult StoreTriangles(InputFile& file);
  StoreResult StoreVertex(const PointRecord& record, VertexTable& table, std::int32_t& vertex);
  void AddVertex(const PointRecord& record);
  void TakeCorners();
  bool HasRoomForGrids() const;
  bool FillGrids();
  CellRange CellsOfTriangle(std::int32_t i) const;
  void LinkVertices();

  void ComputeNormal(TINTriangle& triangle) const;
  void ComputeNormals();
  void AppendNeighbours(std::int32_t vertex, std::vector<std::int32_t>& seenBy,
                        std::vector<std::int32_t>& list) const;

  std::int32_t WriteLiveTriangles(OutputFile& file) const;
  std::int32_t WriteAllPoints(OutputFile& file) const;
  int WriteChosenPoints(OutputFile& file, bool live) const;

  static int TestPoint(const Point3& p, const Corners& corners);

  std::vector<Corners> corners_;                   // by triangle
  std::vector<std::int32_t> trianglesOfVertices_;  // the vertices' lists, one after the other
};

}  // namespace corvane
