#include "PhotoProject/BundleAdjustment.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include "OpenGL/Stereo_2Cursor/Collinearity.h"
#include "io/MachineMemory.h"
#include "numerics/LeastSquares.h"
#include "numerics/MatrixText.h"
#include "ui/FrontEnd.h"

namespace corvane {

namespace {

constexpr int kRounds = 3;

// p: as many photos as there are, whatever the project file has counted.
int CountPhotos(const PhotoProject& project) {
  std::size_t count = 0;
  for (const auto& strip : project.photos) count += strip.size();
  return static_cast<int>(count);
}

int CountPassPoints(const PhotoProject& project) {
  return static_cast<int>(project.passPoints.size());
}

// Whether the design and the normal matrix of so many rows and columns are something that this machine holds.
bool CanBeHeld(std::int64_t rows, std::int64_t cols) {
  if (rows > std::numeric_limits<int>::max() || cols > std::numeric_limits<int>::max()) return false;
  const double bytes = static_cast<double>(rows + cols) * static_cast<double>(cols) * sizeof(double);
  return bytes < static_cast<double>(BytesOfMachine());
}

// Makes what is null.
void Allocate(const PhotoProject& project, BundleSystem& system) {
  if (system.a && system.l) return;
  const std::int64_t rows = 2 * project.MeasurementCount();
  const std::int64_t cols = std::int64_t{kPhotoUnknowns} * CountPhotos(project) +
                            std::int64_t{kPointUnknowns} * CountPassPoints(project);
  if (!CanBeHeld(rows, cols)) return;
  system.rows = static_cast<int>(rows);
  system.cols = static_cast<int>(cols);
  if (!system.a) system.a.reset(AllocMatrix(rows, cols));
  if (!system.l) system.l = NewArray<double>(rows);
}

void AddPhoto(PhotoProject& project, const AerialPhoto& photo, int photoColumn, BundleSystem& system) {
  for (const ImageMeasurement& measurement : photo.measurements) {
    const std::int64_t row = 2 * std::int64_t{project.measurementCursor};
    if (row + 2 > system.rows) return;
    AddObservation(project, photo, photoColumn, measurement, system.a.get() + row, system.l.get() + row);
    ++project.measurementCursor;
  }
}

// The place of the n-th ray of a point in its photo; null if there is no such photo or measurement.
const ImageMeasurement* RayOf(const PhotoProject& project, const GroundPoint& point, std::size_t n,
                              const AerialPhoto** photo) {
  *photo = project.GetPhoto(point.stripIndices[n], point.photoIndices[n]);
  const auto index = static_cast<std::size_t>(point.measurementIndices[n]);
  return *photo && index < (*photo)->measurements.size() ? &(*photo)->measurements[index] : nullptr;
}

ObservationRecord RecordOf(const AerialPhoto& photo, const ImageMeasurement& measurement,
                           const GroundPoint& point) {
  const double pixel[2] = {measurement.col, measurement.row};
  double onPhoto[3];
  photo.ImageToPhoto(pixel, onPhoto);
  ObservationRecord record;
  record.type = measurement.type == kPassPoint ? ObservationRecord::kPass : ObservationRecord::kControl;
  record.x = onPhoto[0];
  record.y = onPhoto[1];
  record.groundX = point.x;
  record.groundY = point.y;
  record.groundZ = point.z;
  return record;
}

void TellStep(int round, const std::string& step) {
  Ui().SetStatusText(0,
                     "Round " + std::to_string(round + 1) + " of " + std::to_string(kRounds) + ": " + step);
}

// Counts a file, of a writer's result.
void Note(const std::string& path, int result, PhotoProject& project, BundleOutcome& outcome) {
  ++outcome.nFiles;
  if (result < 0) project.unwrittenFiles.push_back(path);
}

void RunRound(int round, PhotoProject& project, BundleSystem& system, BundleOutcome& outcome) {
  BuildDesign(project, system);
  const OwnedArray<double> x = NewArray<double>(system.cols);
  if (!system.a || !system.l || !x) {
    outcome.isHeld = false;
    return;
  }
  const int nPhotos = CountPhotos(project);
  const int nPoints = CountPassPoints(project);
  const std::string end = std::to_string(round) + ".txt";
  const std::string systemPath = project.name + "BundleMat" + end;
  const std::string solutionPath = project.name + "Solution" + end;
  const std::string resultPath = project.name + "Result" + end;

  TellStep(round, "writing " + std::to_string(system.rows) + " equations ...");
  Note(systemPath,
       WriteAugmentedMatrix(systemPath, system.rows, system.cols, system.a.get(), system.l.get(), ","),
       project, outcome);
  if (kWritesNormals) WriteNormals(project.name, system, nPhotos, nPoints);
  TellStep(round, "solving for " + std::to_string(system.cols) + " unknowns ...");
  if (LeastSquares(system.a.get(), system.l.get(), system.rows, system.cols, x.get()) < 0) {
    outcome.isSolved = false;
  }
  Note(solutionPath, WriteSolution(solutionPath, nPhotos, nPoints, x.get(), ","), project, outcome);
  ApplyCorrections(project, x.get());
  Note(resultPath, WriteResult(project, resultPath), project, outcome);
}

}  // namespace

void BuildDesign(PhotoProject& project, BundleSystem& system) {
  Allocate(project, system);
  if (!system.a || !system.l) return;
  int photoColumn = 0;
  for (const auto& strip : project.photos) {
    for (const auto& photo : strip) {
      AddPhoto(project, *photo, photoColumn, system);
      photoColumn += kPhotoUnknowns;
    }
  }
}

int AddObservation(PhotoProject& project, const AerialPhoto& photo, int photoColumn,
                   const ImageMeasurement& measurement, Matrix rows, double* l) {
  const auto index = static_cast<std::size_t>(measurement.groundIndex);  // a negative one is past the end
  if (index >= project.groundPoints.size()) return -1;
  GroundPoint& point = project.groundPoints[index];
  if (point.IsUnknown() && InitialPoint(project, point) < 0) return -1;
  const ObservationRecord record = RecordOf(photo, measurement, point);
  const int place = project.FindPassPoint(measurement.name);
  if (record.type == ObservationRecord::kPass && place < 0) return -1;
  CollinearityRow(
      record, {photo.focalLength, photo.principalX, photo.principalY},
      {photo.omega, photo.phi, photo.kappa, photo.perspectiveX, photo.perspectiveY, photo.perspectiveZ},
      photo.rotation.get(), rows, l, photoColumn,
      kPhotoUnknowns * CountPhotos(project) + kPointUnknowns * place);
  return 1;
}

int InitialPoint(const PhotoProject& project, GroundPoint& point) {
  if (point.stripIndices.size() < 2) return -1;
  const AerialPhoto* left = nullptr;
  const AerialPhoto* right = nullptr;
  const ImageMeasurement* const inLeft = RayOf(project, point, 0, &left);
  const ImageMeasurement* const inRight = RayOf(project, point, 1, &right);
  if (!inLeft || !inRight) return -1;
  const double leftPixel[2] = {inLeft->col, inLeft->row};
  const double rightPixel[2] = {inRight->col, inRight->row};
  double position[3];
  IntersectRays(*left, *right, leftPixel, rightPixel, position);
  point.x = position[0];
  point.y = position[1];
  point.z = position[2];
  return 1;
}

void ApplyCorrections(PhotoProject& project, const double* x) {
  for (const auto& strip : project.photos) {
    for (const auto& photo : strip) {
      for (double* const element : {&photo->omega, &photo->phi, &photo->kappa, &photo->perspectiveX,
                                    &photo->perspectiveY, &photo->perspectiveZ}) {
        *element += *x++;
      }
    }
  }
  for (const ImageMeasurement& pass : project.passPoints) {
    const double* const correction = x;
    x += kPointUnknowns;
    const auto index = static_cast<std::size_t>(pass.groundIndex);
    if (index >= project.groundPoints.size()) continue;
    project.groundPoints[index].x += correction[0];
    project.groundPoints[index].y += correction[1];
    project.groundPoints[index].z += correction[2];
  }
}

BundleOutcome RunBundleAdjustment(PhotoProject& project) {
  BundleOutcome outcome;
  const std::string startPath = project.name + "ResultInit.txt";
  Note(startPath, WriteResult(project, startPath), project, outcome);
  BundleSystem system;
  for (int round = 0; round < kRounds; ++round) {
    RunRound(round, project, system, outcome);
    project.measurementCursor = 0;
  }
  return outcome;
}

}  // namespace corvane
