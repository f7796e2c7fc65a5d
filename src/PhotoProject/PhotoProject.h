#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "OpenGL/Stereo_2Cursor/ImageMeasurement.h"

namespace corvane {

// A point's name as it is stored and compared, of a word of any length.
inline std::string_view PointName(std::string_view word) {
  return word.substr(0, kMaxPointName);
}

// A point on the ground that photos measure.
struct GroundPoint {
  // In all three coordinates: the position isn't known yet.
  static constexpr double kUnknown = std::numeric_limits<double>::max();

  char type = kControlPoint;  // kControlPoint or kPassPoint; any other is a deleted point
  std::string name;           // at most kMaxPointName bytes
  double x = kUnknown;
  double y = kUnknown;
  double z = kUnknown;
  std::int32_t dimension = 3;  // not used
  double sigmaX = 1.0;         // not used
  double sigmaY = 1.0;
  double sigmaZ = 1.0;
  // The rays to it, in three parallel lists: strip, photo, and the measurement's number in its block.
  std::vector<int> stripIndices;
  std::vector<int> photoIndices;
  std::vector<int> measurementIndices;

  bool IsUnknown() const { return x == kUnknown && y == kUnknown && z == kUnknown; }
};

// The path of a photo's orientation file: whatever its extension is, three bytes are what gives way.
std::string OrientationPath(const std::string& photoName);

// A block of aerial photos: strips of photos, one camera, and the ground points that the photos measure. It
// is read from a project file (".pj"), which names a camera calibration file, and from a ground point file
// (".gpt") beside it. In all three white space of any kind separates fields.
//
// Operations return 1 for success. Negative results are read by decade: -1 to -9 the camera file, -10 to -19
// the ground points, -20 to -29 the project file. Where reading has stopped is told in the message pane. A
// failure leaves the project partly filled, to be thrown away, and what has been written in place.
class PhotoProject {
 public:
  PhotoProject() = default;
  PhotoProject(const PhotoProject&) = delete;
  PhotoProject& operator=(const PhotoProject&) = delete;

  // Reading (PhotoProject_read.cpp, PhotoProject_ground.cpp, PhotoProject_camera.cpp).

  // Reads the ground points, the project and its camera into a new project. As each photo's exterior
  // orientation is read, its ".orn" is written: the photo's name with its last three bytes replaced. At the
  // end the pass points go to `name` + "_PassPt.txt" in the current folder: name, column, row a line. A file
  // that can't be written does not end the reading: it is told in a box (of many ".orn" the first). Paths in
  // the project file are relative to the current folder.
  //
  // A point that is measured but is not in the ground point file is added, without a position. The same name
  // as control and as pass point makes two points. A photo to which no block belongs is left with zeros, and
  // named in photosWithoutBlock; of two blocks of a photo the later one counts, but for their measurements,
  // which all do.
  //
  // The ground points' negative result, then the camera's, end the reading with that code; -21: the project
  // does not open; -22: a strip's line; -23: any other line, a negative count, a strip or photo number that
  // is not in the block, or a project beyond the memory.
  int Read(const std::string& path);

  // Reads the ground points alone, adding to those that are there. -11: the file does not open; -12: a line
  // lacks a field, a count is negative, or the points are beyond the memory; those before it stay.
  int ReadGroundPoints(const std::string& path);

  // Reads the camera. -11, with a plain box, if the file does not open or is beyond the memory; its lines are
  // not tested.
  // Kept: the count of fiducials is scanned as a real number but its low 32 bits are what counts, and these
  // are zero for every whole number below 2^21. So the fiducials of such a file are not read, and the last
  // line's numbers are taken from the first of them, their integer into the low half of focalLength; a
  // project has these numbers of its own.
  int ReadCamera(const std::string& path);

  // Looking up.

  // The first ground point of that type and name; -1 if there is none.
  int FindGroundPoint(char type, std::string_view pointName) const;

  // The first entry of the list with the record's name; -1 if there is none.
  static int FindMeasurement(const std::vector<ImageMeasurement>& list, const ImageMeasurement& record);

  // FindMeasurement in passPoints, at once.
  int FindPassPoint(std::string_view pointName) const;

  // Appends, keeping the two above in step: so lists are made, not by changing them from outside.
  int AddGroundPoint(GroundPoint point);  // its place
  int AddPassPoint(const ImageMeasurement& measurement);

  // The photo, or null if there is none.
  AerialPhoto* GetPhoto(int strip, int photo) const;

  // Appends to modelNames, for each two neighbours in a strip, their file names behind the last separator:
  // left, three blanks, right.
  void BuildModelNames();

  // Where a model stands, models being counted strip by strip: its strip, and its left photo there. False
  // if there is no such model.
  bool LocateModel(int modelIndex, int& strip, int& photo) const;

  // Adds a file that has been written, or should have been, to one of the two lists.
  void NoteFile(const std::string& path, bool isWritten);

  // Measurements of all photos together.
  std::int64_t MeasurementCount() const;

  // Writes each ground point: name and type, position, and a line for each ray. No command calls it.
  void DumpGroundPoints(std::string& text) const;

  std::vector<std::string> modelNames;  // the strips' names as read, then those of BuildModelNames
  int stripCount = 0;
  std::vector<int> stripPhotoCounts;
  int photoCount = 0;
  int measurementCursor = 0;  // the row pair at which the design matrix stands while it is built
  int controlCount = 0;       // control points of the ground point file
  int passCount = 0;          // its pass points, and every point of either type that the project added
  std::string name;           // what the output files' names begin with; may be empty
  std::vector<ImageMeasurement> passPoints;  // one entry for each pass point, in order of first measurement
  std::vector<GroundPoint> groundPoints;
  std::string projectTitle;
  std::string cameraFile;
  double focalLength = 0.0;
  double principalX = 0.0;
  double principalY = 0.0;
  double cameraParam1 = 0.0;  // not used
  double cameraParam2 = 0.0;
  double cameraParam3 = 0.0;
  double cameraParam4 = 0.0;
  double fiducialCountRaw = 0.0;  // of the camera file; its low 32 bits, an integer, are what counts
  Fiducials fiducials{};
  std::vector<std::vector<std::unique_ptr<AerialPhoto>>> photos;  // [strip][photo]
  std::vector<std::string> photosWithoutBlock;                    // names: no interior or no exterior one
  std::vector<std::string> writtenFiles;                          // by Read and by what came after it
  std::vector<std::string> unwrittenFiles;                        // that should have been

 private:
  // Type and name of a ground point, or name of a pass point, to its first place.
  std::unordered_map<std::string, int> groundPlaces_;
  std::unordered_map<std::string, int> passPlaces_;
};

}  // namespace corvane
