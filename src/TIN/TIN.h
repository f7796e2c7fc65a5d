#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "TIN/GridIndex.h"
#include "TIN/PointRecord.h"
#include "numerics/Extent6.h"
#include "numerics/Histogram.h"
#include "numerics/Point3.h"

namespace corvane {

class InputFile;
class OutputFile;
class VertexTable;
struct ExtentWindow;

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

// A vertex from which ReduceSurface floods a group.
struct SlopeSeed {
  double z = 0.0;
  double slope = 0.0;  // a ratio, as in vertexSlopes
  std::int32_t vertex = 0;
};

// A DEM as it was written.
struct StoredDem {
  std::int32_t nRows = 0;
  std::int32_t nCols = 0;
  int status = 1;  // as ErdasImg::Write returns it
};

// What the search finds for one point.
struct FoundTriangle {
  int result = -1;             // as TIN::FindTriangle returns it
  std::int32_t triangle = -1;  // the last one that was tested; -1: none

  friend bool operator==(const FoundTriangle&, const FoundTriangle&) = default;
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
  static constexpr double kMinNormalZ = 1e-12;       // of a plane that does not stand upright

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
  // nothing has been read (with a box), or all corners are at one (x, y), and the TIN stays as it was; -2,
  // with a box, and the TIN is empty then: a corner is no point of the ground, its triangles need too large a
  // grid, or memory runs out.
  int StoreTriangle(InputFile& file);

  // The same from a path; -1, with a warning, also if it does not open.
  int StoreTriangle(const std::string& path);

  // The same from the raw triangles in memory; 0 for a TIN that is stored already. A failure leaves the TIN
  // raw.
  int StoreRawTriangles();

  // Writes the triangles that are not deleted, straight from the model, at the present position, which must
  // be byte 0; a raw TIN writes its raw triangles. 0, or -1 if a write fails.
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

  // FindTriangle for each of the points; `found` is as long as they are. Points at random places of a large
  // TIN take a fraction of the time, because what several of them need from memory comes at once.
  void FindTriangles(std::span<const Point3> points, std::span<FoundTriangle> found) const;

  // The height at p of the triangle's plane, through its first corner; p.z if the plane stands upright
  // (|nz| < kMinNormalZ).
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

  // The slope filter and the smoother change z, and nothing but z and (the filter) normals.

  // One pass against spikes, then one against pits: the highest (lowest) corner of a triangle of at least
  // `maxSlopeDegrees` that stands out from the other two by `minElevation` or more moves to NeighbourMeanZ,
  // in the order of the triangles, and with it the normals around it. Returns the number of moves.
  // Cost: one look at each triangle, and what moves.
  std::int32_t SlopeFilter(double maxSlopeDegrees, double minElevation);

  // The mean height of the vertex's neighbours, each counted once for each triangle that it shares with the
  // vertex; kNoDataZ if the mean of its triangles' nz is above cosLimit: its surroundings are not steep.
  double NeighbourMeanZ(std::int32_t vertex, double cosLimit) const;

  // The corner 0 to 2 with the highest or lowest z, the first of equals.
  int HighestCorner(const TINTriangle& triangle) const;
  int LowestCorner(const TINTriangle& triangle) const;

  // Takes every vertex halfway to the mean of its neighbours, weighted by 1 / distance and counted once for
  // each shared triangle, all of them at once. Neighbours at no distance do not count; a vertex without any
  // other becomes not-a-number. Normals stay as they were. 1, or -1 without memory.
  int Smooth();

  // The spacing for points files, in ground units; for 0 the mean distance of the points.
  void SetPointInterval(double interval);

  // Segmentation: groups are sets of connected vertices at or above a cut.

  // Fills vertexSlopes, anew each time: the largest |dz| / plan distance to a neighbour. 1, or -1 without
  // memory.
  int ComputeSlopes();

  // Floods `group` from the vertex over all connected vertices at or above `cutZ`, breadth first, and labels
  // them, whatever label they had.
  void FloodGroup(std::int32_t vertex, double cutZ, std::int32_t label, TINGroup& group);

  // The plan area of the triangles whose corners all carry the group's label and one of which is a member.
  // Also stores it. 0 without triangleAreas.
  double GroupArea(TINGroup& group);

  // Appends the groups at or above the cut, of the vertices that still carry the incoming label, in vertex
  // order. New labels count on from it; the last one comes back.
  void LabelAboveCut(double cutZ, std::int32_t& label);

  // Appends the groups at or above the cut, of the members of group `index` that carry its own label, in
  // the order of its members. Labels count on from `label`.
  void SplitGroup(std::size_t index, double cutZ, std::int32_t& label);

  // Groups the vertices above zStart + zStep; a group with more than areaLimit square ground units of plan
  // area is split one step higher, until one would have to be split above zEnd. Groups that there are take
  // part. A group more than 20 million steps above zStart, or a million below it, does not split any more;
  // the groups of FitTiles have a cut of 0. Tells in status pane 0, now and then, how high the cuts have
  // come. Returns 1. Cost: for each cut, the members above it and their triangles.
  int SegmentByPlaneCut(double zStart, double zEnd, double zStep, double areaLimit);

  // Computes the slopes and drops the groups all of whose members have at most this slope. 1; -1, with
  // nothing done, if there are slopes already, or without memory.
  int DropFlatGroups(double slopeLimit);

  // Appends the vertices with more than this slope (by vertexSlopes) none of whose neighbours is lower.
  void FindPits(double slopeLimit, std::vector<std::int32_t>& list);

  // Marks vertices as no ground: id -1.
  void MarkVertices(std::span<const std::int32_t> list);
  void MarkGroupMembers();

  // Seeds are the vertices steeper than the steepest 5 % begin, in bins of 0.1; from the lowest one on each
  // floods a group from its own height, which stays if its area is below areaLimit. The members of all groups
  // are marked. 1; -1 without memory, or if the slopes make no histogram.
  // Cost: a sort of the vertices by height, and the groups that stay.
  int ReduceSurface(double areaLimit);

  // Fits a smooth surface (Surface.h) to each tile of about 2000 vertices, and groups the vertices of a tile
  // that lie `threshold` or more above or below it. Vertices with id -1 don't take part; a tile that can't be
  // fitted has no group, and is counted in `nSkipped`. Labels count on by tile from the last group's. Tells
  // in status pane 0 how far it is. 1, or -1 without memory. Cost: cubic in the vertices of a tile.
  int FitTiles(double lambda, double shape, double threshold, std::int64_t* nSkipped = nullptr);

  // Writes the heights at the centres of a raster's cells as an image of floats, and shows the time in a box.
  // The raster begins in the window's upper left corner and reaches to or past the lower right one. A centre
  // in no triangle, or on corner 0 of its triangle, has `defaultZ`. 0; -1, with nothing written: no cells,
  // more than 2^31, or no memory. `stored` gets the raster's size and what the image's Write returns.
  // Cost: one pass over the triangles, and the raster's cells.
  int CreateDem(const std::string& path, const ExtentWindow& window, float cellSize, double defaultZ,
                StoredDem* stored = nullptr) const;

  // Writes the triangles, raw ones or those of the model that are not deleted, as polygons of a shape file,
  // their numbers in the field "DD" of its table. 0; with a warning -1: the shape file or -2: the table can't
  // be created, -3: the field can't be added; -4: the files could not be written. All of the old files are
  // then as they were. `nPolygons` gets the number of polygons.
  int WriteShape(const std::string& path, std::int64_t* nPolygons = nullptr) const;

  // Histograms of vertexSlopes and of the vertices' z (between the extent's minZ and maxZ). 1; -1 as
  // MakeHistogram.
  int SlopeHistogram(double binSize, Histogram& histogram) const;
  int ZHistogram(double binSize, Histogram& histogram) const;

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
  friend class TinRaster;

  // The plan positions of a triangle's corners, together for the point test.
  struct CornerXY {
    double x = 0.0;
    double y = 0.0;
  };
  struct Corners {
    CornerXY c[3];
  };

  enum class StoreResult { Stored, NotRead, OnePoint, BadFile, LargeGrid, NoMemory };

  // Gives stored triangles, from where it stands, as many bytes as are asked for; says how many there were.
  using ReadStored = std::function<std::size_t(char* to, std::size_t size)>;

  TIN& operator=(TIN&&) = default;

  void Clear();
  void ClearModel();
  int FailRead(int status, const char* text);

  StoreResult ScanRaw();
  void ScanExtent();
  void ShowStatistics() const;
  int Store(const ReadStored& read, bool keepRaw);
  StoreResult BuildModel(const ReadStored& read);
  StoreResult StoreTriangles(const ReadStored& read);
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

  // Shows the corners of the triangles, raw ones or those of the model that are not deleted, until `take`
  // returns false. The number of those taken; -1 if one was not.
  using TakeTriangle = std::function<bool(const PointRecord&, const PointRecord&, const PointRecord&)>;
  std::int64_t ForEachTriangle(const TakeTriangle& take) const;

  bool TileVertices(GridIndex& tiles) const;
  bool GroupOutliers(std::span<const std::int32_t> tile, double lambda, double shape, double threshold,
                     std::int32_t label);

  template <typename IsBeyond>
  int FarthestCorner(const TINTriangle& triangle, IsBeyond isBeyond) const;
  int LevelCorner(const TINTriangle& triangle, int corner, double sign, double cosLimit, double minElevation);
  double BlendedZ(const TINVertex& vertex) const;

  std::span<const std::int32_t> NeighboursOf(std::int32_t vertex) const {
    return neighbours.empty() ? std::span<const std::int32_t>()
                              : neighbours[static_cast<std::size_t>(vertex)];
  }
  double SlopeOf(std::int32_t vertex) const;
  bool MakeLabels(std::int32_t label);
  void AddGroup(std::int32_t vertex, double cutZ, std::int32_t label);
  bool SplitAt(std::size_t index, double cut, std::int32_t& label);
  double RaiseWhole(TINGroup& group, double cut, double zStep, double zEnd, std::int32_t& label);
  void NextMarkRound();
  double SumArea(const TINGroup& group, double enough);
  int FloodFromSeeds(double areaLimit);
  std::vector<SlopeSeed> CollectSeeds(double threshold) const;
  bool FloodSmallGroup(const SlopeSeed& seed, std::int32_t label, double areaLimit);

  bool WriteRawTriangles(OutputFile& file) const;
  std::int32_t WriteLiveTriangles(OutputFile& file) const;
  std::int32_t WriteAllPoints(OutputFile& file) const;
  int WriteChosenPoints(OutputFile& file, bool live) const;

  static int TestPoint(const Point3& p, const Corners& corners);
  bool IsWithinExtent(const Point3& p) const;
  int TestCandidates(const Point3& p, std::span<const std::int32_t> candidates, std::int32_t& triangle) const;
  void FindBlock(std::span<const Point3> points, std::span<FoundTriangle> found) const;

  std::vector<Corners> corners_;         // by triangle
  std::vector<std::uint32_t> markedIn_;  // by triangle: the last round of marking that met it
  std::uint32_t markRound_ = 0;
  std::vector<std::int32_t> trianglesOfVertices_;  // the vertices' lists, one after the other
};

}  // namespace corvane
