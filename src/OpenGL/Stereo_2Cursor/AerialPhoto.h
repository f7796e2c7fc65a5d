#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "OpenGL/Stereo_2Cursor/ImageMeasurement.h"
#include "TIN/PointRecord.h"
#include "erdasimg/ErdasImg.h"
#include "numerics/Matrix.h"
#include "numerics/Point2.h"
#include "numerics/Point3.h"

namespace corvane {

class TINPoints;
class TextScanner;

// A photo's footprint on the ground: four corners, x and y of each.
using Footprint = std::array<double, 8>;

// The parts of an image's frame that are left away on its sides.
struct CropFractions {
  double left = 0.0;
  double right = 0.0;
  double top = 0.0;
  double bottom = 0.0;
};

// Photo coordinates of fiducials, by their number.
using Fiducials = std::array<Point2, 8>;

// A photograph with what ties its pixels to the ground, and the owner of the orientation file ".orn".
//
// A pixel travels through three frames:
//   image   col, row in pixels of the whole scan; whole numbers are the pixels' centres. The file may hold a
//           window of the scan whose pixel (0, 0) is (xStart, yStart);
//   photo   x, y, z = -focalLength in the units of the interior orientation, customarily millimetres:
//           (x, y, -f) = A (col, row, 1), A being imageToPhoto with the principal point inside;
//   ground  X, Y, Z in the units of the exterior orientation.
//
// R, the rotation, takes ground vectors to the photo frame. With sw, cw for omega, sp, cp for phi, sk, ck for
// kappa:
//         cp ck    cw sk + sw sp ck    sw sk - cw sp ck
//   R =  -cp sk    cw ck - sw sp sk    sw ck + cw sp sk
//         sp      -sw cp               cw cp
// so that with (U, V, W) = R D, D = ground point - perspective centre, x = -f U / W and y = -f V / W.
//
// Angles are radians in memory and degrees in files. Operations return 1 for success and show nothing where
// nothing else is said; those between the frames can't fail: a point on the vanishing line divides by zero.
class AerialPhoto {
 public:
  AerialPhoto();
  ~AerialPhoto();
  AerialPhoto(const AerialPhoto&) = delete;
  AerialPhoto& operator=(const AerialPhoto&) = delete;

  // Files (AerialPhoto_orn.cpp). An orientation record is nine lines of words and numbers:
  //   ORIENTATION name word           three words, which readers skip
  //   f
  //   X Y Z                           of the perspective centre
  //   omega phi kappa                 in degrees
  //   frameWidth 0.0 0.0              which readers skip
  //   a b c                           x = a col + b row + c
  //   d e g                           y = d col + e row + g
  //   principalX principalY
  //   pixelSizeX pixelSizeY           may be missing

  // Reads a record. What a short or malformed text lacks stays as it was. 1; -1 for null.
  // Kept: at the end the angles are turned from degrees and the principal point comes off A whether or not
  // they have been read.
  int ReadOrientation(TextScanner* text);

  // Reads the file and makes all matrices. -1, silently, if it does not open or the path is empty.
  int LoadOrientation(const std::string& path);

  // Reads the file without making the matrices. -1, with a warning, if it does not open.
  int LoadOrientationChecked(const std::string& path);

  // Writes the record, with `word` as the third word of its first line. White space in the name or the word
  // is written as "_", and so is an empty one, so that there are three words. The file appears whole or not
  // at all. -1, with a warning, if it can't be written.
  int WriteOrientation(const std::string& path, const std::string& word) const;

  // The same, silently.
  int StoreOrientation(const std::string& path, const std::string& word) const;

  // Reads the image, and takes startX and startY from its header. Always 1.
  int OpenImage(const std::string& path);
  void CloseImage() { image.Free(); }

  // Orientation (AerialPhoto.cpp).

  // Turns the file's six coefficients, which A holds, into A: the principal point comes off, and the last row
  // is (0, 0, -f).
  void CompleteInterior(double f);
  // All matrices from A, the angles and f: ComputeInverse, ComputeRotation, P and Q.
  void Recompute();
  // photoToImage from A. Of a singular A it holds what GaussJordan has left.
  void ComputeInverse();
  // R from the angles; P and Q stay.
  void ComputeRotation();
  // Stores the elements and makes R alone: P and Q stay.
  void SetExterior(double f, double principalX, double principalY, double x, double y, double z, double omega,
                   double phi, double kappa);
  // Whether the numbers make an orientation: all finite, f not 0, A with an inverse. What was read of a short
  // or malformed file does not; no operation looks, but a person wants to know.
  bool IsOriented() const;
  // Photo units a pixel: |A[0][0]|.
  double GetScale() const;

  // Between the frames (AerialPhoto_frames.cpp).

  // (x, y, -f) of a pixel p (col, row).
  int ImageToPhoto(const double p[2], double out[3]) const;
  // (col, row, 1) of p (x, y).
  int PhotoToImage(const double p[2], double out[3]) const;
  int GroundToImage(double x, double y, double z, double& col, double& row) const;
  int GroundToPhoto(double x, double y, double z, double& photoX, double& photoY) const;
  // Turn a vector; `out` is not v.
  int RotateToGround(const double v[3], double out[3]) const;
  int RotateToPhoto(const double v[3], double out[3]) const;
  // The place on the plane at height z on the ray of a photo vector, or of a pixel p (col, row).
  int PhotoToGround(const double v[3], double z, double& x, double& y) const;
  int ImageToGround(const double p[2], double z, double& x, double& y) const;
  // The direction of a pixel's ray in the ground frame.
  int ImageRay(const double p[2], double out[3]) const;
  // The point (X, Y, Z) where a pixel's ray meets the plane Z = a X + b Y + c, plane = (a, b, c).
  int IntersectPlane(const double p[2], double out[3], const double plane[3]) const;
  // The middle of the shortest line between this photo's ray of pLeft and the other's of pRight, which need
  // not meet. ComputeBase(other) must have run.
  int Intersect(const AerialPhoto& other, const double pLeft[2], const double pRight[2], double out[3]) const;

  // Epipolar geometry (AerialPhoto_epipolar.cpp).

  // The vector to the other photo's perspective centre, and with it epipolarMap = S Rt A.
  void ComputeBase(const AerialPhoto& other);
  // The coefficients (a, b, c) of the line a col + b row + c = 0 on which the other photo shows what the
  // pixel p shows: Qt (epipolarMap (col, row, 1)). Both matrices are this photo's: Q is the other's only for
  // photos of one rotation and interior orientation. Else the other photo takes this one's epipolarMap over,
  // and is asked for the line.
  int EpipolarLine(const double p[2], double out[3]) const;
  // Looks along the line row = line[0] col + line[1] for the prominent pixel (threshold 0.3) whose
  // surroundings correlate best with `window`, whose sums it makes: in the columns from firstCol to lastCol,
  // and in maxRowDisparity rows to either side of the line, cut to a whole row. The first of equals goes to
  // `best`, whole numbers. All are columns and rows of the whole scan. Returns the score;
  // 2.220446049250313e-16, with `best` as it was, if none is above zero.
  double SearchEpipolar(ErdasImg& window, int firstCol, int lastCol, const double line[2],
                        Point2& best) const;

  // Epipolar images (AerialPhoto_resample.cpp): this photo is the epipolar one, a virtual photo with the
  // source's perspective centre. Extents are (min x, min y, 1, max x, max y, 1), on the plane with z = -f in
  // the place of 1.

  // Replaces the extent, pixels of the source, by what its corners cover on this photo's plane.
  void MapExtentFrom(const AerialPhoto& source, double extent[6]) const;
  // H = source photoToImage x source R x this Rt x this A: from this photo's pixels to the source's.
  void BuildResampleMap(const AerialPhoto& source);
  // Makes `image` and A for the extent, photo coordinates, in cells of |cell|: pixel (0, 0) is its upper left
  // corner. Each pixel is the source's nearest one, col = trunc(u / w + 0.5), row = trunc(v / w + 0.5) of
  // (u, v, w) = H (col, row, 1), or 0 in all bands outside of it. The header is the source's but for size,
  // place and cell. 1; -1, with A made and no image, if there is none of that size, or no memory for it, or
  // if it has more than 2^26 pixels and more than 256 for each of the source's.
  int ResampleFrom(const AerialPhoto& source, const double extent[6], double cell);

  // Orthophotos (AerialPhoto_ortho.cpp).

  // What the image's frame, cropped, covers on the plane at height z.
  // Kept: rows are taken for columns there, and columns for rows.
  void FootprintAtHeight(const CropFractions& fractions, double z, Footprint& out) const;
  // Paints this photo's pixels into those of `output` (xMap, yMap, xCell, yCell) that the footprint covers,
  // each at its height in `dem`. Cells beyond the DEM take the height of the cell before them in the run,
  // first 0.0. A footprint in the image, (col, row) each, is that of the plane at the height under the
  // camera. 1; 0 for a null argument, for numbers that make no raster, without memory, or at a scan line with
  // an odd number of crossings, where painting stops. `nPainted`, if there is one, becomes the number of
  // cells that have been painted.
  int OrthoFill(const Footprint* footprint, bool footprintIsInImage, const ErdasImg* dem, ErdasImg* output,
                std::int64_t* nPainted = nullptr) const;

  // Ground points in the image (AerialPhoto_points.cpp).

  // Makes groundPoints anew: the points under their ids, with their heights and values, but at the columns
  // and rows of the image in memory. Its extent in x and y is that of the eight corners of `points`' extent,
  // and 1000 pixels more on each side. Its spacing is what that of `points` comes to in whole pixels below
  // the perspective centre at the lowest height, 0 if it is less than a pixel. It has no index. Points that
  // can't be projected are at places that are no numbers. 1; -1, with no groundPoints, without memory.
  // Kept: what is taken off columns and rows are the low 16 bits of xStart and yStart, with a sign.
  int ProjectPoints(const TINPoints& points);
  // Projects a ground point to the position in groundPoints that is its id. -1 if there is none.
  int AddPoint(const PointRecord& point);
  // Moves a ground point along its ray, so that it comes to be higher by `difference`: X += (X - Xs)
  // difference / (Z - Zs), Y likewise.
  int RaiseToHeight(double difference, Point3& point) const;

  // A display of the image (AerialPhoto_display.cpp). Columns and rows are those of the image in memory, as
  // in groundPoints.

  // The window of nCols x nRows pixels, at most, around a place of the image: it begins at trunc(col) -
  // nCols / 2, and is cut to the image. windowChanged becomes true if it is not the one before. 1; 0 if
  // nothing is left: the window is empty then, which windowRight and windowBottom of -1 tell.
  int SetViewWindow(double col, double row, int nCols, int nRows);
  // Cuts the window out of the image, whose subset it becomes, and sets windowChanged to false. 1; 0 if the
  // subset is this window already; -1 if there is no window, or no memory for it, which is told.
  int FetchWindow();
  // The position in groundPoints of the live point that is nearest to a place and nearer than `radius`, the
  // first of equals; -1 if there is none.
  std::int32_t FindPoint(double col, double row, double radius) const;
  // Adds that point to pickedPoints by AddPicked, or appends it to the list. Its position, or -1.
  std::int32_t PickPoint(double col, double row, double radius);
  std::int32_t PickPointIntoList(double col, double row, double radius, std::vector<PointRecord>& list) const;
  // Adds to pickedPoints the live points of a rectangle, all edges included. Returns how many are new.
  std::int32_t PickInRegion(double left, double top, double right, double bottom);
  // Appends a point to pickedPoints. 1; 0 if one of its id is there already.
  int AddPicked(const PointRecord& point);
  void ClearPicked() { pickedPoints.clear(); }
  // Appends the points picked to a list, such as markedPoints.
  void CopyPicked(std::vector<PointRecord>& list) const;
  // Takes the first point off markedPoints. False if there is none.
  bool TakeFirstMarked(PointRecord& point);

  std::string name;   // the image's path, or the first word of its line in a project
  std::string label;  // the second word there
  double frameWidth = 220.0;
  double frameHeight = 220.0;
  double focalLength = 0.0;
  double principalX = 0.0;
  double principalY = 0.0;
  double pixelSizeX = 0.07;
  double pixelSizeY = 0.07;
  std::vector<ImageMeasurement> measurements;
  int fiducialCount = 0;
  int stripIndex = 0;  // place in a project, from 0
  int photoIndex = 0;
  static constexpr int kFiducials = static_cast<int>(std::tuple_size_v<Fiducials>);
  Fiducials fiducials;  // photo coordinates, by number; kUnset: not measured
  static constexpr double kUnset = std::numeric_limits<double>::max();

  // All 3 x 3.
  OwnedMatrix imageToPhoto;  // A, the interior orientation
  OwnedMatrix photoToImage;  // the inverse of A
  double omega = 0.0;
  double phi = 0.0;
  double kappa = 0.0;
  double perspectiveX = 0.0;
  double perspectiveY = 0.0;
  double perspectiveZ = 0.0;
  double baseX = 0.0;  // to a second photo's perspective centre
  double baseY = 0.0;
  double baseZ = 0.0;
  OwnedMatrix rotation;        // R
  OwnedMatrix groundToImage;   // P = photoToImage x R
  OwnedMatrix imageToGround;   // Q = Rt x A
  OwnedMatrix epipolarMap;     // S Rt A, of ComputeBase
  OwnedMatrix resampleMap;     // H, of BuildResampleMap
  OwnedMatrix inverseScratch;  // the inverse of A, too: left by ComputeInverse

  ErdasImg image;
  std::int32_t startX = 0;  // of the image's header when OpenImage ran
  std::int32_t startY = 0;
  int maxRowDisparity = 1;  // rows to either side of an epipolar line

  // A window of the image for display, all ends included, and the columns and rows that cutting it to the
  // image has taken off at its left and top.
  int windowOffsetX = 0;
  int windowOffsetY = 0;
  int windowTop = 0;
  int windowBottom = -1;
  int windowLeft = 0;
  int windowRight = -1;
  std::unique_ptr<TINPoints> groundPoints;  // projected into this image
  bool windowChanged = true;                // since the image was fetched last
  std::vector<PointRecord> pickedPoints;
  std::vector<PointRecord> markedPoints;

 private:
  PointRecord Projected(const PointRecord& point) const;
};

// AerialPhoto::Intersect with the base from both perspective centres.
int IntersectRays(const AerialPhoto& left, const AerialPhoto& right, const double pLeft[2],
                  const double pRight[2], double out[3]);

// Looks for the height at which both photos show the same around (point.x, point.y): from zStart + zStep on
// by repeated addition, up to the first that is not below zEnd. Windows of width x height pixels, of which
// the first is the projected place less half the window, cut to whole numbers, are compared by
// ErdasImg::CorrelateWindow. The height with the highest score, the lowest of equals, goes to point.z.
// Returns the score; 2.220446049250313e-16, with the point as it was, if none is above zero.
//
// Also ends where a step does not raise the height, and after kMaxHeights. A window without pixels, or with
// more than kMaxWindow, has no score.
// Kept: windows may reach beyond the images, where pixels are 0; two flat ones score 1.0.
double VerticalLineSearch(AerialPhoto& left, const AerialPhoto& right, Point3& point, double zEnd,
                          double zStart, double zStep, int width, int height);
constexpr int kMaxHeights = 1 << 20;
constexpr std::int64_t kMaxWindow = std::int64_t{1} << 26;

// The path of an orientation file as it is, or with its extension in the other case, ".ORN" for ".orn" or the
// other way round, if only that is there.
std::string ExistingOrientation(const std::string& path);

}  // namespace corvane
