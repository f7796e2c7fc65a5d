#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "TIN/GridIndex.h"
#include "TIN/PointRecord.h"
#include "TIN/Region.h"
#include "TIN/Triangulation.h"
#include "numerics/Extent6.h"

namespace corvane {

class InputFile;
class OutputFile;
struct Histogram;
struct PointsHeader;

// The elevation that means "no data".
constexpr double kNoDataZ = -4096.0;

// A ground rectangle, in ground units.
struct GroundRect {
  double minX = 0.0;
  double minY = 0.0;
  double maxX = 0.0;
  double maxY = 0.0;
};

// One cell of the regular-grid mode.
struct GridCell {
  std::int32_t id = 0;  // row * nCols + col
  double z = kNoDataZ;
  double value = -1.0;
};

// A point set in memory, and the owner of the points file ".pts": a free list of points, or (grid mode) a
// regular grid of cells with row 0 at the smallest y.
//
// A ".pts" file is little-endian without padding: int32 nPoints; doubles minX, maxY, maxX, minY, spacingX,
// spacingY; then for each point the doubles x, y, z, value. A point's position in the file is its id.
//
// Operations return 1 for success and a negative status for failure where nothing else is said. They show no
// messages, but for building an index.
class TINPoints {
 public:
  // The most points that the Triangle library can take: it asks for its mesh in one piece of 112 bytes a
  // point, counted in 32 bits.
  static constexpr std::int32_t kMaxTriangulated = 38000000;

  // Empty, with spacing 1.0.
  TINPoints() = default;

  // `n` records of zeros. A negative `n`, or one too large for the memory, leaves the object empty.
  explicit TINPoints(std::int32_t n);

  // Grid mode over `rect`, all cells empty: nRows = int((maxY - minY) / spacingY + 1.0), nCols likewise. The
  // object stays empty if the rectangle is crossed, a size is no positive number, or the cells do not fit
  // 32-bit numbering or the memory, or are more than 100 for each of the `nExpected` points that they are to
  // take and 4,000,000 besides.
  TINPoints(double spacingX, double spacingY, const GroundRect& rect, std::int64_t nExpected = INT32_MAX);

  // Why such a grid stays empty, as a sentence for the person.
  static std::string WhyNoGrid(double spacingX, double spacingY, const GroundRect& rect,
                               std::int64_t nExpected);

  virtual ~TINPoints() = default;
  TINPoints(const TINPoints&) = default;
  TINPoints& operator=(const TINPoints&) = default;
  TINPoints(TINPoints&&) = default;
  TINPoints& operator=(TINPoints&&) = default;

  // Reads a whole points file from the present position; what the object held before is dropped. Crossed minY
  // and maxY of the header are exchanged. Points that a cut file lacks read as zeros, so long as it holds at
  // least about a quarter of them; a count beyond that is not believed and nothing is allocated for it.
  // -1: the file does not open, has no whole header, or holds 0 points; -3: a negative or unbelievable count,
  // a failed read, or no memory for the records; -4: no memory for the read buffer.
  int Read(InputFile& file);
  int Read(const std::string& path);

  // The points that the file read or merged last lacked, wholly or in part.
  std::int32_t GetMissingCount() const { return nMissing_; }

  // Writes header and points as they stand, the deleted ones included. Returns the number of points written,
  // or -1 if a write fails or the file does not open; the path form then leaves the old file as it was.
  std::int32_t Write(OutputFile& file) const;
  std::int32_t Write(const std::string& path) const;

  // Writes the occupied cells as points, column by column from the smallest x, with coordinates by repeated
  // addition of the spacing. Moves the object's grid origin to the smallest occupied row and column.
  // `nWritten`, if given, gets the number of points as soon as all have been written: 0 of an empty grid.
  // -1: no occupied cell, no memory, or the file does not open or take the bytes; the origin then stays.
  int WriteGrid(OutputFile& file, std::int32_t* nWritten = nullptr);
  int WriteGrid(const std::string& path);

  // Merges a points file into the grid, a point going to the cell row = int((y - gridMinY) / spacingY), col =
  // int((x - gridMinX) / spacingX), cut towards zero: the cell takes over z and value if its own value is
  // below the point's, so that of points in one cell the one with the highest value stays. Points outside
  // the grid are left out, and so are those that a cut file lacks, wholly or in part. 1; -1: no grid; -2: the
  // file does not open; -3: it can't be read as by Read, or holds no whole point; the grid may have taken
  // over a part of it.
  int MergeFromFile(const std::string& path);

  // Sets z and value of the cells at whose nodes points lie, those within `rect`, edges included. A point
  // lies at a node if (x - gridMinX) / spacingX and (y - gridMinY) / spacingY are whole numbers without any
  // rounding; others are left out. (0.3 / 0.1 is 2.9999999999999996.) Returns the number of points taken
  // over; -1: no grid.
  std::int32_t ReplaceFrom(const TINPoints& from, const GroundRect& rect);

  // Writes "id, x, y, z, value" a line, six significant digits. An empty path means "tinPoint.txt". If the
  // file can't be written, the debug stream says so.
  void DumpText(const std::string& path) const;

  std::int32_t GetCount() const { return nPoints; }

  // The point at position `i`, or null beyond the points.
  const PointRecord* GetPoint(std::int32_t i) const;

  // Overwrites the point at position `i`; -1 if there is none. SetPointXY leaves z and value alone.
  int SetPoint(std::int32_t id, double x, double y, double z, double value, std::int32_t i);
  int SetPointXY(std::int32_t id, double x, double y, std::int32_t i);

  // Keeps the first `n` points and drops the index. 0 if there are fewer, or `n` is negative.
  int Truncate(std::int32_t n);

  void GetExtent(Extent6& extent) const;

  // Takes over the first 2, 4 or 6 entries of `values`; any other `n` changes nothing.
  void SetExtent(int n, const Extent6& values);

  void GetSpacing(double& x, double& y) const;
  void SetSpacing(double x, double y);

  // All six extents from all points, the deleted ones included. Without points they stay as they are.
  void RecalcExtent();

  // Appends the point, and inserts it in the index if there is one; -1 if that fails (the point then stays
  // appended) or memory runs out.
  int AddPoint(const PointRecord& record);

  // Marks the point at position `i` deleted, with id -1, and takes it out of the index; -1 if there is none.
  int RemovePoint(std::int32_t i);

  // Moves the live points down in order and takes extents in x and y, but not in z, from them. Drops the
  // index, whose positions are no longer true.
  void Compact();

  // Sorts the points by y, those of one y by x; equal ones keep their order, and a NaN comes after all
  // numbers. The points keep their ids. Drops the index, whose positions are no longer true.
  void SortByPlace();

  // Reads a mask: the number of regions, then for each its type, its vertex count and the vertices. Fills
  // `regions` with as many whole regions as the text holds, and tells in status pane 0 if that is fewer than
  // announced, or if the text begins with no number. Regions of an unknown type, rectangles of fewer than two
  // pairs and polygons without vertices are left out. -1: the file does not open or read.
  static int ReadRegions(const std::string& path, std::vector<Region>& regions);

  // Turns a text of x, y, z and optional value into a points file of this spacing. The first line decides
  // between commas and white space and whether there is a value; fields are scanned as scanf does, records
  // may run over line ends, and a value that is missing is the last one read (1.0 at first). Reading ends
  // where the text does, or before something that is no number. Prints "x, y, z". Tells in status pane 0
  // how far it is in a long text, and at the end how many points there are, what was left out and why.
  // 0, or -1: an empty path, the text does not open or read, or a record in it does not fit the memory, or
  // the points file can't be written. The points file then is as it was.
  static int TextToBinary(const std::string& txtPath, const std::string& binPath, double spacing);

  // The same for records "id, x, y, z, value", the value being optional; the id is dropped.
  // Kept: a coordinate that raises the maximum is not tested against the minimum, so that strictly rising
  // ones leave a minimum of 1.7e+308 in the header.
  static int TextIdToBinary(const std::string& txtPath, const std::string& binPath, double spacing);

  // Reads a text of points "id, x, y, z, value" in place of what the object held; z, or z and value, may be
  // missing (0). The first line decides between commas and white space and on the number of fields; of more
  // than five, x and y are the second and third, value is the last, and z is left 0. Fields are scanned as
  // scanf does, records may run over line ends, and those of fewer than three fields are left out. Reading
  // ends where the text does, or before something that is no number. Extents and spacing stay as they are.
  // Tells in status pane 0 what was left out. 1, also without any points; -1: the text does not open or read,
  // or does not fit the memory.
  int ReadText(const std::string& path);

  // The histogram of the points' values in bins of this width, from the smallest value on. Values that are no
  // numbers do not count. 1; -1: no bins, as MakeHistogram, or no value at all.
  int ValueHistogram(double binSize, Histogram& histogram) const;

  // The Delaunay triangulation of x and y of all points, deleted ones included. `attributes` and `markers`, a
  // number a point or null for none, go along to the triangulator. Of points at one (x, y) only one becomes a
  // corner; coordinates within 1e-60 of 0 count as 0. The triangulator reports on standard output.
  // -1: fewer than three distinct points, all on one line, or coordinates that are not numbers or beyond
  // 1e70; -2: no memory; -3: more than kMaxTriangulated points.
  int Triangulate(const double* attributes, const int* markers, Triangulation& out) const;

  // Writes the triangles as a ".tin" file: int32 count, then three 36-byte vertices a triangle, copied from
  // these points. 0, or -1: there are no triangles, a corner is no point, or a write fails.
  int WriteTriangles(OutputFile& file, const Triangulation& out) const;

  static void FreeTriangulation(Triangulation& out);

  // Indexes all points over the header's extents, with about `density` points a cell.
  // -1: there are no points; or, with a warning, the grid would be too large or is no number, or a point lies
  // outside.
  int BuildIndex(double density);

  // The same with square cells of the given size. One that is no positive number makes no grid.
  int BuildIndexWithCell(double cellSize);

  // The index, or null if none is built.
  const GridIndex* GetIndex() const;

  // The live point nearest to (x, y) among those of its own index cell, nearer than `radius`; the first of
  // equals. -1: none, no index, or outside of it.
  std::int32_t NearestWithin(std::int32_t x, std::int32_t y, double radius) const;

  // The same over the whole cell, at any distance.
  std::int32_t NearestInCell(std::int32_t x, std::int32_t y) const;

  // The neighbour of point `i` along an axis, towards smaller x (0), larger x (1), smaller y (2) or larger
  // y (3). Candidates lie ahead and less than the spacing (spacingX for 0 and 1, spacingY for 2 and 3) to the
  // side; the first index cell on the way that has any decides by the smallest distance ahead plus half the
  // distance aside. -1: no index or no such point; -2: the point is outside the index; -3: another direction;
  // -4: none.
  std::int32_t NearestInDirection(std::int32_t i, int direction) const;

  // Appends the positions of the points in the region to `list`, in the order of the index. A rectangle is
  // cut to whole numbers, all edges included. A polygon must be convex and closed; its edges belong to it if
  // it is counter-clockwise. -1: no index, an unknown type, a coordinate that is not a number, or too few
  // vertices (4 of a polygon, the repeated first one included).
  int CollectInRegion(const Region& region, std::vector<std::int32_t>& list) const;

  // Marks the same points deleted instead. A point's x and y are cut to whole numbers before the test against
  // a rectangle, and its right and bottom edges do not belong to it.
  int MarkRegion(const Region& region);

  // The same selection for a shape of scan lines: y cut to a whole number is a point's row, and its x lies in
  // one of the row's runs.
  int CollectInRuns(const ScanShape& scanShape, std::vector<std::int32_t>& list) const;

  // Writes to a points file what a grid of samples over the extents picks: rows int(int(maxY - minY) /
  // spacing), columns int(int(maxX - minX) / spacing), from (minX, minY) on by repeated addition. Each sample
  // takes one point of the index cell in which it lies, any of them at random, with its own coordinates.
  // Cells are the index's: a spacing below theirs takes points more than once. The generator is the C
  // library's, unseeded, so that runs in a new process pick alike. Tells in status pane 0 how far a long run
  // is. `nWritten`, if given, gets the number of points written. 0; -1: the file does not open or take the
  // bytes; -2: no index, or a spacing that is no positive number; -3: more samples than 100 for each point
  // and 1,000,000 besides, or than 2^31 - 1.
  int Resample(OutputFile& file, double spacing, std::int32_t* nWritten = nullptr) const;
  int Resample(const std::string& path, double spacing) const;

  double minX = 0.0;
  double maxY = 0.0;
  double maxX = 0.0;
  double minY = 0.0;
  double minZ = 0.0;
  double maxZ = 0.0;
  std::int32_t nPoints = 0;   // in use
  std::int32_t capacity = 0;  // allocated: the size of `points`
  double spacingX = 1.0;
  double spacingY = 1.0;
  std::vector<PointRecord> points;
  std::vector<GridCell> cells;  // grid mode: row * nCols + col
  std::int32_t nRows = 0;
  std::int32_t nCols = 0;
  double gridMinX = 0.0;
  double gridMinY = 0.0;
  GridIndex index;  // of positions in `points`; empty until built

 private:
  std::span<const PointRecord> InUse() const { return {points.data(), static_cast<std::size_t>(nPoints)}; }
  std::span<PointRecord> InUse() { return {points.data(), static_cast<std::size_t>(nPoints)}; }
  void MergeRecords(std::span<const char> records);
  bool WriteSampleRow(double y, std::int32_t nSamples, PointsHeader& header, OutputFile& file) const;
  bool WriteSample(double x, double y, PointsHeader& header, OutputFile& file) const;
  bool HasPoint(std::int32_t i) const { return i >= 0 && i < nPoints; }

  std::int32_t nMissing_ = 0;
};

}  // namespace corvane
