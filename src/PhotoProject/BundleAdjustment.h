#pragma once

#include <string>
#include <string_view>

#include "PhotoProject/PhotoProject.h"
#include "numerics/Matrix.h"

namespace corvane {

// The adjustment of a block by the collinearity equations. With p photos and q pass points there are
// 6 p + 3 q unknowns: columns 6 k to 6 k + 5 are the corrections of omega, phi, kappa (radians), X, Y, Z of
// photo k, counted strip by strip; columns 6 p + 3 j to 6 p + 3 j + 2 those of pass point j of passPoints.
// Control points are held fixed. Each measurement gives two rows, in the order of photos and, in each, of
// its measurements.

// Observations, unknowns, and room for the system.
struct BundleSystem {
  int rows = 0;   // 2 m
  int cols = 0;   // 6 p + 3 q
  OwnedMatrix a;  // design matrix, rows x cols; null until BuildDesign has run, or if memory can't be had
  OwnedArray<double> l;  // observations, rows
};

// Fills the system from the project's present values. It is allocated, with zeros, only where it is null:
// a later round fills the same matrix again. Rows of a measurement that AddObservation refuses stay as they
// are. Without memory, or without rows or columns, it stays null.
void BuildDesign(PhotoProject& project, BundleSystem& system);

// Writes the two equations of a measurement, a pair of rows and their entries of l. A ground point without a
// position gets one first, by InitialPoint. 1; -1, with the rows as they were, if the measurement has no
// ground point or that has no position.
int AddObservation(PhotoProject& project, const AerialPhoto& photo, int photoColumn,
                   const ImageMeasurement& measurement, Matrix rows, double* l);

// The position of a ground point from its first two rays. -1 if it has fewer.
int InitialPoint(const PhotoProject& project, GroundPoint& point);

// Adds the corrections x to all photos and pass points. Kept: no photo's R, P and Q are made anew, so that
// all rounds run with the rotation of the first.
void ApplyCorrections(PhotoProject& project, const double* x);

// Three rounds of building, solving and correcting; there is no test for convergence. In the current folder,
// named by the project: "ResultInit.txt", and for each round d from 0 "BundleMat<d>.txt", "Solution<d>.txt"
// and "Result<d>.txt". A singular system is not noticed, and a file that can't be written not told.
void RunBundleAdjustment(PhotoProject& project);

// The corrections, a line a photo and then a line a pass point. -1 if the file can't be written.
int WriteSolution(const std::string& path, int p, int q, const double* x, std::string_view separator);

// The orientation of all photos, and the ground points. -1 if the file can't be written.
int WriteResult(const PhotoProject& project, const std::string& path);

// The normal equations N x = v of the system, allocated. 1, or -1.
int NormalEquations(ConstMatrix a, const double* l, int rows, int cols, Matrix* normal, double** v);

// The normal equations with the pass points eliminated: Nr = N11 - N12 N22^-1 N21 and
// vr = v1 - N12 N22^-1 v2, for p photos and q pass points, allocated. 1, or -1.
int ReducedNormal(ConstMatrix normal, const double* v, int p, int q, Matrix* reduced, double** reducedV);

}  // namespace corvane
