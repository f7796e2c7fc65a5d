// The orientation of photos of the menu Image.

#include "OpenGL/Stereo_2Cursor/AerialPhoto.h"
#include "commands/Failures.h"
#include "commands/ImageFiles.h"
#include "commands/ImageMenu.h"
#include "commands/ProjectInput.h"
#include "io/Paths.h"

namespace corvane {

namespace {

const FileChooser kOpenPhoto{.filter = "Lan Files (*.lan)|*.lan|All Files (*.*)|*.*|",
                             .defaultExtension = ".lan",
                             .title = "Please select a image"};

const FileChooser kOpenControl{.filter = "Ground Point Files (*.txt)|*.txt|All Files (*.*)|*.*|",
                               .title = "Please choose a Ground Control Point file"};

}  // namespace

// Kept: what a resection would start from is read and let go; there is no resection.
CommandResult OnSpaceResection(CCorvaneView&) {
  const auto path = ChooseFile(kOpenPhoto);
  if (!path) return CommandResult::Cancelled;
  AerialPhoto photo;
  const std::string startPath = DerivedName(*path, ".ini");
  if (photo.LoadOrientation(startPath) < 0) {
    Ui().SetStatusText(0, "The file " + startPath + " does not open.");
    return FailWithWarning("Open Initial Orientation Parameters File error!");
  }
  photo.OpenImage(*path);
  const auto controlPath = ChooseFile(kOpenControl);
  if (!controlPath) return CommandResult::Cancelled;
  PhotoProject project;
  if (project.ReadGroundPoints(*controlPath) < 0) return CommandResult::Failed;
  Ui().SetStatusText(
      0, "Ground points: " + std::to_string(project.groundPoints.size()) + ". No resection is computed.");
  return ResultOf(photo.image.HasPixels());
}

CommandResult OnBundleAdjustment(CCorvaneView&) {
  const auto path = ChooseFile(kOpenProject);
  if (!path) return CommandResult::Cancelled;
  WaitCursor wait;
  PhotoProject project;
  project.name = FileTitle(*path);
  if (!ReadProject(*path, project)) return CommandResult::Failed;
  return TellProject(project, RunBundleAdjustment(project));
}

}  // namespace corvane
