#pragma once

#include <string>

#include "PhotoProject/BundleAdjustment.h"
#include "PhotoProject/PhotoProject.h"
#include "ui/FileChooser.h"
#include "ui/FrontEnd.h"

namespace corvane {

// What the commands on photo projects share.

inline const FileChooser kOpenProject{.filter = "Project Files (*.pj)|*.pj|All Files (*.*)|*.*|",
                                      .title = "Choose a Project File."};

// Reads a project. False, with a warning of which file has failed, if it can't be read.
bool ReadProject(const std::string& path, PhotoProject& project);

// The end of a command: tells in the message pane what the block is, what it lacks, and how many files have
// been written, a file that several photos share being one. The command has failed if some could not be
// written, of which the first is named, or if there was no memory for the equations; not if these had no
// single solution, which is told.
CommandResult TellProject(const PhotoProject& project, const BundleOutcome& outcome);

}  // namespace corvane
