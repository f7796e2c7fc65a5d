#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "OpenGL/Stereo_2Cursor/ImageMeasurement.h"
#include "TIN/PointRecord.h"
#include "erdasimg/ErdasImg.h"
#include "numerics/Matrix.h"
#include "numerics/Point2.h"

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

  // Reads a record. What a short or malformed text lacks stays as it was. -1 for null.
  int ReadOrientation(TextScanner* text);

  // Reads the file and makes all matrices. -1, silently, if it does not open or the path is empty.
  int LoadOrientation(const std::string& path);

  // Reads the file without making the matrices. -1, with a warning, if it does not open.
  int LoadOrientationChecked(const std::string& path);

  // Writes the record, with `word` as the third word of its first line. White space in the name or the word
  // is written as "_", and so is an empty one, so that there are three words. The file appears whole or not
  // at all. -1, with a warning, if it can't be written.
  int WriteOrientation(const std::string& path, const std::string& word) const;

  // Reads the image, and takes startX and startY from its header. Always 1.
  int OpenImage(const std::string& path);
  void CloseImage() { image.Free(); }

  // Orientation (AerialPhoto.cpp).

  // All matrices from A, the angles and f: ComputeInverse, ComputeRotation, P and Q.
  void Recompute();
  // photoToImage from A. Of a singular A it holds what GaussJordan has left.
  void ComputeInverse();
  // R from the angles; P and Q stay.
  void ComputeRotation();
  // Stores the elements and makes R alone: P and Q stay.
  void SetExterior(double f, double principalX, double principalY, double x, double y, double z, double omega,
                   double phi, double kappa);
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
  // The coefficients (a, b, c) of a col + b row + c = 0 in the other photo, of a pixel p of the photo whose
  // epipolarMap this is: Qt (epipolarMap (col, row, 1)), Q being the other photo's. The caller sees to it
  // that this photo's Q is the other's, as it is for photos of one rotation and interior orientation.
  int EpipolarLine(const double p[2], double out[3]) const;

  // Epipolar images (AerialPhoto_resample.cpp): this photo is the epipolar one, a virtual photo with the
  // source's perspective centre. Extents are (min x, min y, 1, max x, max y, 1).

  // Replaces the extent, pixels of the source, by what its corners cover on this photo's plane.
  void MapExtentFrom(const AerialPhoto& source, double extent[6]) const;
  // H = source photoToImage x source R x this Rt x this A: from this photo's pixels to the source's.
  void BuildResampleMap(const AerialPhoto& source);
  // Makes `image` and A for the extent, photo coordinates, in cells of |cell|: for each pixel the source's
  // nearest one, or 0 in all bands outside of it. -1 if there is no image of that size, or no memory for it.
  int ResampleFrom(const AerialPhoto& source, const double extent[6], double cell);

  // Orthophotos (AerialPhoto_ortho.cpp).

  // What the image's frame, cropped, covers on the plane at height z.
  // Kept: rows are taken for columns there, and columns for rows.
  void FootprintAtHeight(const CropFractions& fractions, double z, Footprint& out) const;
  // Paints this photo's pixels into those of `output` (xMap, yMap, xCell, yCell) that the footprint covers,
  // each at its height in `dem`. Cells beyond the DEM take the height of the cell before them, first 0.0.
  // 1; 0 for a null argument, or at a scan line with an odd number of crossings, where painting stops.
  int OrthoFill(const Footprint* footprint, bool footprintIsInImage, const ErdasImg* dem,
                ErdasImg* output) const;

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
  static constexpr int kFiducials = 8;
  std::array<Point2, kFiducials> fiducials;  // photo coordinates, by number; kUnset: not measured
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

  // A window of the image for display.
  int windowOffsetX = 0;
  int windowOffsetY = 0;
  int windowTop = 0;
  int windowBottom = 0;
  int windowLeft = 0;
  int windowRight = 0;
  std::unique_ptr<TINPoints> groundPoints;  // projected into this image
  bool windowChanged = true;                // since the image was fetched last
  std::vector<PointRecord> pickedPoints;
  std::vector<PointRecord> markedPoints;
};

// AerialPhoto::Intersect with the base from both perspective centres.
int IntersectRays(const AerialPhoto& left, const AerialPhoto& right, const double pLeft[2],
                  const double pRight[2], double out[3]);

// The path of an orientation file as it is, or with its extension in the other case, ".ORN" for ".orn" or the
// other way round, if only that is there.
std::string ExistingOrientation(const std::string& path);

}  // namespace corvane
