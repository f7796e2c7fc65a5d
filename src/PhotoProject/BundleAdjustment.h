#pragma once

#include <string>
#include <string_view>

#include "PhotoProject/PhotoProject.h"
#include "numerics/Matrix.h"

namespace corvane {

// The adjustment of a block by the collinearity equations. With p photos and q pass points there are
// 6 p + 3 q unknowns: columns 6 k to 6 k + 5 are the corrections of omega, phi, kappa (radians) and of the
// perspective centre's X, Y, Z of photo k, counted strip by strip; columns 6 p + 3 j to 6 p + 3 j + 2 those
// of X, Y, Z of passPoints[j]. Control points are held fixed. Each measurement gives two rows, in the order
// of the photos and, in each, of its measurements.

constexpr int kPhotoUnknowns = 6;
constexpr int kPointUnknowns = 3;

// The system A x = l of a block; both are null before BuildDesign, and if memory can't be had.
struct BundleSystem {
  int rows = 0;          // two a measurement
  int cols = 0;          // 6 p + 3 q
  OwnedMatrix a;         // design matrix, rows x cols
  OwnedArray<double> l;  // observations, rows
};

// The equations (BundleAdjustment.cpp).

// Fills the system from the project's present values, from the row pair measurementCursor on, which counts on
// to the number of measurements. What is null is allocated, with zeros. Kept: what is not null is not zeroed
// again, so the rows of a measurement that AddObservation refuses keep what an earlier round has left there.
void BuildDesign(PhotoProject& project, BundleSystem& system);

// Writes the two equations of a measurement into rows[0], rows[1] and l[0], l[1], which have the photo's
// unknowns from photoColumn on and those of passPoints[0] from firstPointColumn on. A ground point without a
// position gets one first, by InitialPoint. 1; -1, with the rows as they were, if the measurement has no
// ground point, or that has no position. The measurement of a pass point that is not among passPoints is
// refused in the same way, on purpose: there are no columns for it.
int AddObservation(PhotoProject& project, const AerialPhoto& photo, int photoColumn, int firstPointColumn,
                   const ImageMeasurement& measurement, Matrix rows, double* l);

// The position of a ground point from its first two rays. -1 if it has fewer, or one of them is not there.
int InitialPoint(const PhotoProject& project, GroundPoint& point);

// Adds the corrections x to all photos and pass points.
// Kept: no photo's R, P and Q are made anew, so that all rounds run with the rotations of the first.
void ApplyCorrections(PhotoProject& project, const double* x);

// How an adjustment went.
struct BundleOutcome {
  bool isHeld = true;    // false: memory for the system, or for solving it, could not be had
  bool isSolved = true;  // false: in some round it had no single solution, or one that is not finite
};

// One solution of a system.
struct BundleStep {
  std::string title;  // what the texts of its progress begin with
  std::string path;   // where the system is written
  // LeastSquares or LeastSquaresCholesky.
  int (*solver)(ConstMatrix a, const double* l, int m, int n, double* x);
};

// Builds the system, writes it, which joins the project's written or unwritten files, and solves it. Progress
// is told in the message pane. The solution, cols numbers, of a singular system what the solver has left;
// null, with nothing written, if memory can't be had.
OwnedArray<double> SolveSystem(const BundleStep& step, PhotoProject& project, BundleSystem& system,
                               BundleOutcome& outcome);

// Three rounds of building, solving and correcting; there is no test for convergence. In the current folder,
// named by the project: "ResultInit.txt", and for each round d from 0 "BundleMat<d>.txt", "Solution<d>.txt"
// and "Result<d>.txt", which join the project's written or unwritten files.
//
// Nothing ends the rounds: of a singular system x is what the solver has left, and the next round goes on
// from there. Without memory for the system, a round does nothing.
//
// Cost of a round: with n unknowns up to n^3 products and differences, and 3 bytes of text for each zero of
// A.
BundleOutcome RunBundleAdjustment(PhotoProject& project);

// The normal equations (BundleAdjustment_normal.cpp).

// N x = v, N = At A and v = At l, for a system of `rows` x `cols`; each is allocated where it is null.
// 1, or -1 if memory can't be had.
int NormalEquations(ConstMatrix a, const double* l, int rows, int cols, Matrix* normal, double** v);

// The normal equations of p photos and q pass points with the points eliminated, which leaves the photos' 6 p
// unknowns: Nr = N11 - N12 N22^-1 N21 and vr = v1 - N12 N22^-1 v2, where 1 stands for the photos and 2 for
// the points. Each is allocated where it is null. 1, or -1 if memory can't be had; a singular N22 is not
// noticed.
int ReducedNormal(ConstMatrix normal, const double* v, int p, int q, Matrix* reduced, double** reducedV);

// Kept: the commands have a place for the two, but do not take it in this release.
constexpr bool kWritesNormals = false;

// What stands there: writes both, with their right sides, to "NormalMat.txt" and "ReducedMat.txt", in the
// form of WriteAugmentedMatrix. 1; -1 if memory can't be had or a file can't be written.
int WriteNormals(const BundleSystem& system, int p, int q);

// Files (BundleAdjustment_files.cpp). They appear whole or not at all. 1; -1 if the file can't be written.

// The corrections: a line of six for each of p photos, then a line of three for each of q pass points. Exact
// zeros are "0", in a line's last place "0.000000".
int WriteSolution(const std::string& path, int p, int q, const double* x, std::string_view separator);

// The orientation of all photos, angles in radians, and the ground points; after the last control point of
// the ground point file stands an empty line.
int WriteResult(const PhotoProject& project, const std::string& path);

}  // namespace corvane
