#include "PhotoProject/BundleAdjustment.h"

#include <algorithm>
#include <cmath>
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

// Whether there is room for what a solver makes of so many unknowns, so that its failure is not for want of
// it.
bool HasRoomToSolve(int cols) {
  constexpr std::int64_t kBeside = 64;  // numbers a row, more than the solvers and what they are given take
  return OwnedMatrix(AllocMatrix(cols, cols + kBeside)) != nullptr;
}

void AddPhoto(PhotoProject& project, const AerialPhoto& photo, int photoColumn, int firstPointColumn,
              BundleSystem& system) {
  for (const ImageMeasurement& measurement : photo.measurements) {
    const std::int64_t row = 2 * std::int64_t{project.measurementCursor};
    if (row + 2 > system.rows) return;
    AddObservation(project, photo, photoColumn, firstPointColumn, measurement, system.a.get() + row,
                   system.l.get() + row);
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

void RunRound(int round, PhotoProject& project, BundleSystem& system, BundleOutcome& outcome) {
  const std::string end = std::to_string(round) + ".txt";
  const BundleStep step = {
      .title = "Round " + std::to_string(round + 1) + " of " + std::to_string(kRounds) + ": ",
      .path = project.name + "BundleMat" + end,
      .solver = LeastSquares};
  const OwnedArray<double> x = SolveSystem(step, project, system, outcome);
  if (!x) return;
  const std::string solutionPath = project.name + "Solution" + end;
  const std::string resultPath = project.name + "Result" + end;
  project.NoteFile(solutionPath, WriteSolution(solutionPath, CountPhotos(project), CountPassPoints(project),
                                               x.get(), ",") > 0);
  ApplyCorrections(project, x.get());
  project.NoteFile(resultPath, WriteResult(project, resultPath) > 0);
}

}  // namespace

void BuildDesign(PhotoProject& project, BundleSystem& system) {
  Allocate(project, system);
  if (!system.a || !system.l) return;
  const int firstPointColumn = kPhotoUnknowns * CountPhotos(project);
  int photoColumn = 0;
  for (const auto& strip : project.photos) {
    for (const auto& photo : strip) {
      AddPhoto(project, *photo, photoColumn, firstPointColumn, system);
      photoColumn += kPhotoUnknowns;
    }
  }
}

int AddObservation(PhotoProject& project, const AerialPhoto& photo, int photoColumn, int firstPointColumn,
                   const ImageMeasurement& measurement, Matrix rows, double* l) {
  const auto index = static_cast<std::size_t>(measurement.groundIndex);  // a negative one is past the end
  if (index >= project.groundPoints.size()) return -1;
  GroundPoint& point = project.groundPoints[index];
  if (point.IsUnknown() && InitialPoint(project, point) < 0) return -1;
  const ObservationRecord record = RecordOf(photo, measurement, point);
  const int place = project.FindPassPoint(measurement.name);
  if (record.type == ObservationRecord::kPass && place < 0) return -1;  // it has no columns to write to
  CollinearityRow(
      record, {photo.focalLength, photo.principalX, photo.principalY},
      {photo.omega, photo.phi, photo.kappa, photo.perspectiveX, photo.perspectiveY, photo.perspectiveZ},
      photo.rotation.get(), rows, l, photoColumn, firstPointColumn + kPointUnknowns * place);
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

OwnedArray<double> SolveSystem(const BundleStep& step, PhotoProject& project, BundleSystem& system,
                               BundleOutcome& outcome) {
  BuildDesign(project, system);
  const Matrix a = system.a.get();
  const double* const l = system.l.get();
  const int cols = system.cols;
  OwnedArray<double> x = NewArray<double>(cols);
  if (!a || !l || !x || !HasRoomToSolve(cols)) {
    outcome.isHeld = false;
    return nullptr;
  }
  Ui().SetStatusText(0, step.title + "writing " + std::to_string(system.rows) + " equations ...");
  project.NoteFile(step.path, WriteAugmentedMatrix(step.path, system.rows, cols, a, l, ",") > 0);
  if (kWritesNormals) WriteNormals(system, CountPhotos(project), CountPassPoints(project));
  Ui().SetStatusText(0, step.title + "solving for " + std::to_string(cols) + " unknowns ...");
  const bool isSolved = step.solver(a, l, system.rows, cols, x.get()) > 0;
  const bool isFinite =
      std::all_of(x.get(), x.get() + cols, [](double number) { return std::isfinite(number); });
  outcome.isSolved = outcome.isSolved && isSolved && isFinite;
  return x;
}

BundleOutcome RunBundleAdjustment(PhotoProject& project) {
  BundleOutcome outcome;
  const std::string startPath = project.name + "ResultInit.txt";
  project.NoteFile(startPath, WriteResult(project, startPath) > 0);
  BundleSystem system;
  for (int round = 0; round < kRounds; ++round) {
    RunRound(round, project, system, outcome);
    project.measurementCursor = 0;
  }
  return outcome;
}

}  // namespace corvane
