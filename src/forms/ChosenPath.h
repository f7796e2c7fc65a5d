#pragma once

#include <string>

#include "ui/FileChooser.h"

namespace corvane {

// The path that a chooser gives for a typed name: the default extension is appended to a name that has none.
// Where there is a file whose extension differs from it only in case, that one is meant. An open chooser
// takes a file that exists as typed, a save chooser a device.
std::string ChosenPath(const FileChooser& chooser, const std::string& typed);

}  // namespace corvane
