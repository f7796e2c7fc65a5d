// The import of photo projects of the menu Utilities.

#include "PhotoProject/BundleAdjustment.h"
#include "commands/ProjectInput.h"
#include "commands/UtilitiesMenu.h"
#include "io/Paths.h"
#include "numerics/LeastSquares.h"
#include "numerics/MatrixText.h"

namespace corvane {

namespace {

// Forms the system and solves it, and writes both into files with the title; the project is not corrected.
BundleOutcome SolveOnce(const std::string& title, PhotoProject& project) {
  BundleSystem system;
  BuildDesign(project, system);
  const int cols = system.cols;
  const OwnedArray<double> x = NewArray<double>(cols);
  if (!system.a || !system.l || !x) return {.isHeld = false};
  const std::string systemPath = title + "BundleMat.txt";
  const std::string solutionPath = title + "Solution.txt";
  BundleOutcome outcome = {.nFiles = 2};
  if (WriteAugmentedMatrix(systemPath, system.rows, cols, system.a.get(), system.l.get(), ",") < 0) {
    project.unwrittenFiles.push_back(systemPath);
  }
  if (kWritesNormals) {
    WriteNormals(title, system, project.photoCount, static_cast<int>(project.passPoints.size()));
  }
  outcome.isSolved = LeastSquaresCholesky(system.a.get(), system.l.get(), system.rows, cols, x.get()) == 1;
  double* const row = x.get();
  if (WriteMatrixBare(solutionPath, 1, cols, &row, ",") < 0) project.unwrittenFiles.push_back(solutionPath);
  return outcome;
}

}  // namespace

CommandResult OnImportProject(CCorvaneView&) {
  const auto path = ChooseFile(kOpenProject);
  if (!path) return CommandResult::Cancelled;
  WaitCursor wait;
  PhotoProject project;
  if (!ReadProject(*path, project)) return CommandResult::Failed;
  return TellProject(project, SolveOnce(FileTitle(*path), project));
}

}  // namespace corvane
