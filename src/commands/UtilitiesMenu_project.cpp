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
  BundleOutcome outcome;
  const BundleStep step = {
      .title = "Import: ", .path = title + "BundleMat.txt", .solver = LeastSquaresCholesky};
  const OwnedArray<double> x = SolveSystem(step, project, system, outcome);
  if (!x) return outcome;
  const std::string solutionPath = title + "Solution.txt";
  const double* const row = x.get();
  project.NoteFile(solutionPath, WriteMatrixBare(solutionPath, 1, system.cols, &row, ",") > 0);
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
